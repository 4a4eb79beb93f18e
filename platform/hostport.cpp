#include "platform/hostport.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>

#include <locale.h>
#include <sys/stat.h>

namespace
{

unsigned char Lower(char c) noexcept
{
    return static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
}

}  // namespace

int hst_stat(const char* path, hst_stat_t* out) noexcept
{
    if (path == nullptr || out == nullptr) {
        errno = EINVAL;
        return -1;
    }
    struct stat status;
    if (::stat(path, &status) != 0) {
        return -1;
    }
    *out = {status.st_mtime, status.st_size, S_ISDIR(status.st_mode), S_ISREG(status.st_mode)};
    return 0;
}

int hst_strcmp(const char* a, const char* b) noexcept
{
    if (a == nullptr || b == nullptr) {
        return (a != nullptr) - (b != nullptr);
    }
    return std::strcmp(a, b);
}

int hst_stricmp(const char* a, const char* b) noexcept
{
    if (a == nullptr || b == nullptr) {
        return (a != nullptr) - (b != nullptr);
    }
    while (*a != '\0' && Lower(*a) == Lower(*b)) {
        ++a;
        ++b;
    }
    return Lower(*a) - Lower(*b);
}

std::int64_t hst_time() noexcept
{
    // Not std::time, whose coarse clock can lag behind the stamp of a file that was just written.
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::seconds>(sinceEpoch).count();
}

double hst_strtod(const char* text, char** end) noexcept
{
    static const locale_t cLocale = ::newlocale(LC_ALL_MASK, "C", nullptr);
    if (text == nullptr || cLocale == nullptr) {
        if (end != nullptr) {
            *end = const_cast<char*>(text);
        }
        return 0.0;
    }
    return ::strtod_l(text, end, cLocale);
}
