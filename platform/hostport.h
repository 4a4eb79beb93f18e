#pragma once

#include <cstdint>

/// What `hst_stat` tells of a file.
struct hst_stat_t {
    std::int64_t tModified;  ///< last change of the content, seconds since 1970-01-01 UTC
    std::int64_t iSize;      ///< bytes
    bool bDirectory;
    bool bRegular;
};

/// Fills `out` for the file behind `path` (UTF-8; symbolic links are followed). Gives 0, or -1 with `errno`
/// set and `out` unchanged. A null argument is a failure (EINVAL).
int hst_stat(const char* path, hst_stat_t* out) noexcept;

/// Compares two texts bytewise, in exact case: below 0, 0 or above 0 in the manner of `strcmp`. A null text
/// comes before any other, the empty one included, and equals only another null.
int hst_strcmp(const char* a, const char* b) noexcept;

/// The same with A-Z taken as a-z. All other bytes count as they are, whatever locale the host has set.
int hst_stricmp(const char* a, const char* b) noexcept;

/// The wall clock: seconds since 1970-01-01 UTC, the scale of `hst_stat_t::tModified`.
std::int64_t hst_time() noexcept;

/// `strtod` by the rules of the "C" locale whatever locale the host has set: the decimal sign is ".".
/// `end`, if given, is set behind the number, or to `text` where there is none (result 0.0). Overflow gives
/// +-HUGE_VAL with `errno` ERANGE. A null text reads as no number.
double hst_strtod(const char* text, char** end) noexcept;
