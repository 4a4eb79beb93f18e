#include "platform/hostcore.h"

#include <cerrno>
#include <cstdlib>

#include <unistd.h>

int hst_remove(const char* path) noexcept
{
    if (path == nullptr) {
        errno = EINVAL;
        return -1;
    }
    return ::unlink(path);
}

std::string hst_tempnam(const char* prefix) noexcept
{
    if (prefix == nullptr) {
        errno = EINVAL;
        return {};
    }
    try {
        for (const char* directory : {static_cast<const char*>(std::getenv("TMPDIR")), "/tmp"}) {
            if (directory == nullptr || *directory == '\0') {
                continue;
            }
            std::string path = std::string(directory) + "/" + prefix + "XXXXXX";
            const int file = ::mkstemp(path.data());
            if (file >= 0) {
                ::close(file);
                return path;
            }
        }
    } catch (...) {
        errno = ENOMEM;
    }
    return {};
}

bool HostTempFile::remove() noexcept
{
    const bool bRemoved = !m_szPath.empty() && hst_remove(m_szPath.c_str()) == 0;
    m_szPath.clear();
    return bRemoved;
}
