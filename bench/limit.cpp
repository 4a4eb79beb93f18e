// The floor of any reader: reads files, splits every line into tokens, turns each numeric token into a
// double, and does nothing else.
//
//     talibis_limit FILE...

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <memory>
#include <system_error>
#include <vector>

namespace
{

struct Sums {
    std::size_t uiLines = 0;
    std::size_t uiTokens = 0;
    double dNumbers = 0.0;  // keeps the conversions from being left out
};

bool IsBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r';
}

bool BeginsNumber(char c)
{
    return (c >= '0' && c <= '9') || c == '-' || c == '+' || c == '.';
}

void SplitLine(const char* at, const char* end, Sums& sums)
{
    for (;;) {
        while (at != end && IsBlank(*at)) {
            ++at;
        }
        if (at == end) {
            return;
        }
        const char* const token = at;
        while (at != end && !IsBlank(*at)) {
            ++at;
        }
        ++sums.uiTokens;
        if (BeginsNumber(*token)) {
            double value = 0.0;
            std::from_chars(token + (*token == '+' ? 1 : 0), at, value);
            sums.dNumbers += value;
        }
    }
}

// Takes the complete lines and gives how many bytes they have.
std::size_t SplitLines(const char* begin, const char* end, Sums& sums)
{
    const char* at = begin;
    while (const void* found = std::memchr(at, '\n', static_cast<std::size_t>(end - at))) {
        const char* const feed = static_cast<const char*>(found);
        SplitLine(at, feed, sums);
        ++sums.uiLines;
        at = feed + 1;
    }
    return static_cast<std::size_t>(at - begin);
}

// In blocks that stay in the cache, which is faster than the whole file at once.
bool ReadFile(const char* path, Sums& sums)
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path, "rb"), std::fclose);
    if (file == nullptr) {
        return false;
    }
    std::vector<char> buffer(64 * 1024);
    std::size_t kept = 0;
    while (const std::size_t got = std::fread(buffer.data() + kept, 1, buffer.size() - kept, file.get())) {
        const std::size_t size = kept + got;
        const std::size_t used = SplitLines(buffer.data(), buffer.data() + size, sums);
        kept = size - used;
        std::memmove(buffer.data(), buffer.data() + used, kept);
        if (kept == buffer.size()) {
            buffer.resize(2 * buffer.size());
        }
    }
    SplitLine(buffer.data(), buffer.data() + kept, sums);
    return true;
}

}  // namespace

int main(int argc, char** argv)
{
    Sums sums;
    for (int i = 1; i < argc; ++i) {
        if (!ReadFile(argv[i], sums)) {
            std::cerr << "talibis_limit: " << argv[i] << " cannot be read\n";
            return EXIT_FAILURE;
        }
    }
    std::cout << sums.uiLines << " lines, " << sums.uiTokens << " tokens, sum " << sums.dNumbers << '\n';
    return EXIT_SUCCESS;
}
