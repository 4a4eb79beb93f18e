#include "ibis/source/nuibis_sniff.h"

#include "ibis/source/nuibis_cmn.h"

namespace
{

constexpr std::size_t SNIFF_LIMIT = 120;

// "6.0" and "6.1" are told apart by the second character behind the "6"; "6" alone is 6.0.
ibis_ver VersionOfSix(std::string_view version)
{
    const bool period = version.size() > 1 && version[1] == '.';
    if (version.size() > 1 && !period) {
        return IBIS_VER_NONE;
    }
    if (version.size() < 3 || version[2] == '0') {
        return IBIS_VER_6_0;
    }
    return version[2] == '1' ? IBIS_VER_6_1 : IBIS_VER_NONE;
}

ibis_ver VersionOf(std::string_view line)
{
    if (!CMN_EqualN(line, "[IBIS Ver]", 10) && !CMN_EqualN(line, "[IBIS_Ver]", 10)) {
        return IBIS_VER_NONE;
    }
    CMN_SkipKeyword(line);
    if (line.empty()) {
        return IBIS_VER_NONE;
    }
    if (line.front() >= '1' && line.front() <= '5') {
        return static_cast<ibis_ver>(line.front() - '0');
    }
    return line.front() == '6' ? VersionOfSix(line) : IBIS_VER_NONE;
}

}  // namespace

ibis_ver CMN_SniffVersion(std::string_view name, int* lineCount, ibis_file_type type)
{
    CMN_Stream stream;
    CMN_Path baseName;
    if (!CMN_OpenFile(name.substr(0, CMN_PATH_LIMIT), type, stream, baseName)) {
        return IBIS_VER_NONE;
    }
    std::string_view line;
    while (CMN_ReadLine(stream, SNIFF_LIMIT, line)) {
        ++*lineCount;
        CMN_SkipSpace(line);
        if (line.starts_with('[')) {
            return VersionOf(line);
        }
    }
    return IBIS_VER_NONE;
}
