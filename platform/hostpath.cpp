#include "platform/hostpath.h"

#include "platform/hostcore.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

// Asked before the opening, since merely opening a device can have an effect.
bool IsReadable(const char* path) noexcept
{
    struct stat status;
    if (::stat(path, &status) != 0) {
        return false;
    }
    if (S_ISREG(status.st_mode) || S_ISFIFO(status.st_mode)) {
        return true;
    }
    errno = S_ISDIR(status.st_mode) ? EISDIR : ENODEV;
    return false;
}

// O_NONBLOCK is for the opening of a FIFO alone: with it left on, reading would fail whenever the writer is
// slower than the reader.
std::FILE* OpenForReading(const char* path, const char* mode) noexcept
{
    if (!IsReadable(path)) {
        return nullptr;
    }
    const int file = ::open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (file < 0) {
        return nullptr;
    }
    std::FILE* stream = ::fcntl(file, F_SETFL, O_RDONLY) == 0 ? ::fdopen(file, mode) : nullptr;
    if (stream == nullptr) {
        const int error = errno;
        ::close(file);
        errno = error;
    }
    return stream;
}

}  // namespace

HostPath::HostPath(std::string_view utf8) noexcept
{
    try {
        m_szPath = utf8.substr(0, utf8.find('\0'));
    } catch (...) {
        m_szPath.clear();
    }
}

std::FILE* HostPath::fopen(const char* mode) const noexcept
{
    if (mode == nullptr) {
        errno = EINVAL;
        return nullptr;
    }
    const std::string_view flags = mode;
    if (flags.starts_with('r') && flags.find('+') == flags.npos) {
        return OpenForReading(m_szPath.c_str(), mode);
    }
    return std::fopen(m_szPath.c_str(), mode);
}

bool HostPath::remove() const noexcept
{
    return hst_remove(m_szPath.c_str()) == 0;
}

std::string HostPath::absolute() const noexcept
{
    try {
        std::error_code error;
        const std::filesystem::path path = std::filesystem::absolute(m_szPath, error);
        return error ? std::string() : path.string();
    } catch (...) {
        return {};
    }
}

std::vector<std::string> HostPath::list() const noexcept
{
    try {
        std::vector<std::string> names;
        std::error_code error;
        for (std::filesystem::directory_iterator entry(m_szPath, error), end; !error && entry != end;
             entry.increment(error)) {
            names.push_back(entry->path().filename().string());
        }
        if (error) {
            return {};
        }
        std::sort(names.begin(), names.end());
        return names;
    } catch (...) {
        return {};
    }
}

std::string HostPath::currentDirectory() noexcept
{
    try {
        std::error_code error;
        const std::filesystem::path path = std::filesystem::current_path(error);
        return error ? std::string() : path.string();
    } catch (...) {
        return {};
    }
}
