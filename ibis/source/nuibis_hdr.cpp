#include "ibis/source/nuibis_hdr.h"

#include "ibis/source/nuibis_ibis.h"

#include <algorithm>
#include <array>
#include <utility>

namespace
{

constexpr std::size_t KEYWORDS = KEY_COPYRIGHT + 1;

// A text that grows line by line: its field in the record, and the room that the field's block has.
struct GrowingText {
    std::size_t uiLength;
    std::size_t uiCapacity;
};

// Module state, reset by HDR_Init.
HDR* gpCurrentHdr = nullptr;  // open header, null outside the group
std::array<bool, KEYWORDS> gabSeen{};
std::array<GrowingText, KEYWORDS> gaTexts{};
nuibis_keyword geHdrKeyword = NOT_KEY;  // text keyword that data lines continue

// [Source], [Notes], [Disclaimer] and [Copyright]: the field, and what a second keyword gets. A second
// [Disclaimer] goes on with the same text.
struct TextKeyword {
    nuibis_keyword eCode;
    char* HDR::*ppszField;
    MSG_Plain duplicate;
};

constexpr std::array<TextKeyword, 4> TEXT_KEYWORDS{{
    {KEY_SOURCE, &HDR::pszSource, 1017},
    {KEY_NOTES, &HDR::pszNotes, 1018},
    {KEY_DISCLAIMER, &HDR::pszDisclaimer, 0},
    {KEY_COPYRIGHT, &HDR::pszCopyright, 1019},
}};

const TextKeyword* FindTextKeyword(nuibis_keyword code)
{
    const auto* const row = std::find_if(TEXT_KEYWORDS.begin(), TEXT_KEYWORDS.end(),
                                         [code](const TextKeyword& k) { return k.eCode == code; });
    return row == TEXT_KEYWORDS.end() ? nullptr : row;
}

void AddText(const TextKeyword& keyword, std::string_view line)
{
    char*& text = gpCurrentHdr->*keyword.ppszField;
    GrowingText& size = gaTexts[static_cast<std::size_t>(keyword.eCode)];
    const bool first = text == nullptr;  // an empty first line is a line too
    const std::size_t needed = size.uiLength + line.size() + 2;
    if (needed > size.uiCapacity) {
        const std::size_t capacity = std::max(needed, 2 * size.uiCapacity);
        if (!CMN_Realloc(text, capacity)) {
            MSG_ErrorLine(1020);
            return;
        }
        size.uiCapacity = capacity;
    }
    if (!first) {
        text[size.uiLength++] = '\n';
    }
    CMN_CopyText(std::span(text, size.uiCapacity).subspan(size.uiLength), line);
    size.uiLength += line.size();
}

void ReadText(const TextKeyword& keyword, bool seen, std::string_view value)
{
    if (seen && keyword.duplicate) {
        MSG_ErrorLine(keyword.duplicate);
        return;
    }
    AddText(keyword, value);
}

void ReadVersion(bool seen, std::string_view value)
{
    static constexpr std::array<std::string_view, 12> versions{"2.0", "2.1", "3.0", "3.1", "3.2", "4.0",
                                                               "4.1", "4.2", "5.0", "5.1", "6.0", "6.1"};
    if (std::any_of(gabSeen.begin() + KEY_FILE_NAME, gabSeen.end(), [](bool other) { return other; })) {
        MSG_ErrorLine(1007);
    }
    if (seen) {
        MSG_ErrorLine(1005);
        return;
    }
    CMN_SetString(gpCurrentHdr->szIbisVer, value, 70, "IBIS_Version");
    const std::string_view version = gpCurrentHdr->szIbisVer;
    if (version.empty()) {
        return;
    }
    if (std::find(versions.begin(), versions.end(), version) == versions.end()) {
        MSG_ErrorLine(1008, version);
        return;
    }
    geIbisVersion = version == "6.1" ? IBIS_VER_6_1 : static_cast<ibis_ver>(version.front() - '0');
}

// Names that every file system of the format's early days could hold.
void CheckFileNameCharacters(std::string_view name)
{
    static constexpr std::string_view punctuation = "!#$%&'()-@^_`{}~";
    int periods = 0;
    for (const char c : name) {
        if (c == '.') {
            if (++periods > 1) {
                MSG_ErrorLine(1012, name);
            }
        } else if (!CMN_IsAlpha(c) && !CMN_IsDigit(c) && punctuation.find(c) == std::string_view::npos) {
            MSG_ErrorLine(1011, name, c);
        }
    }
    if (periods == 0) {
        MSG_ErrorLine(1013, name);
    }
}

void ReadFileName(bool seen, std::string_view value)
{
    if (seen) {
        MSG_ErrorLine(1009);
        return;
    }
    char(&field)[1025] = gpCurrentHdr->szFileName;
    if (geIbisVersion < IBIS_VER_3) {
        CMN_SetString(field, value, 12, "File_name");
    } else {
        CMN_SetStringStrict(field, value, geIbisVersion == IBIS_VER_3 ? 24 : 44, "File_name");
    }
    const std::string_view name = field;
    if (name.empty()) {
        return;
    }
    CheckFileNameCharacters(name);
    if (!CMN_Equal(PARSE_GetFileName(), name)) {
        MSG_ErrorLine(1014, PARSE_GetFileName(), name);
    }
    CMN_CheckReserved(name);
}

void ReadShortText(std::span<char> field, bool seen, std::string_view value, unsigned limit,
                   std::string_view label, MSG_Plain duplicate)
{
    if (seen) {
        MSG_ErrorLine(duplicate);
        return;
    }
    CMN_SetString(field, value, limit, label);
    CMN_CheckReserved(field.data());
}

void ReadKeyword(nuibis_keyword code, std::string_view text)
{
    geHdrKeyword = code;
    CMN_SkipKeyword(text);
    const TextKeyword* const textKeyword = FindTextKeyword(code);
    const bool known = code == KEY_IBIS_VER || (code >= KEY_FILE_NAME && code <= KEY_COPYRIGHT);
    if (!known) {
        MSG_BugLine(1003);
        return;
    }
    const bool seen = std::exchange(gabSeen[static_cast<std::size_t>(code)], true);
    if (textKeyword != nullptr) {
        ReadText(*textKeyword, seen, text);
    } else if (code == KEY_IBIS_VER) {
        ReadVersion(seen, text);
    } else if (code == KEY_FILE_NAME) {
        ReadFileName(seen, text);
    } else if (code == KEY_FILE_REV) {
        ReadShortText(gpCurrentHdr->szFileRev, seen, text, 70, "File_Rev", 1015);
    } else {
        ReadShortText(gpCurrentHdr->szDate, seen, text, 40, "Date", 1016);
    }
}

int GiveText(const char* text, const char** out)
{
    *out = text != nullptr && text[0] != '\0' ? text : nullptr;
    return *out != nullptr ? 1 : 0;
}

}  // namespace

void HDR_Init()
{
    ibis* root = nullptr;
    if (!IBIS_GetCurrent(&root)) {
        MSG_Bug(1000);
        return;
    }
    gabSeen = {};
    gaTexts = {};
    geHdrKeyword = NOT_KEY;
    if (!CMN_Alloc(gpCurrentHdr)) {
        MSG_Error(1006);
        return;
    }
    IBIS_Add<&ibis::pHeaders>(root, gpCurrentHdr);
}

void HDR_Line(line_type lineType, nuibis_keyword code, std::string_view text)
{
    if (gpCurrentHdr == nullptr) {
        if (lineType == LINE_KEYWORD) {
            MSG_ErrorLine(1001);
        } else {
            MSG_ErrorLine(1002);
        }
        return;
    }
    if (lineType == LINE_KEYWORD) {
        ReadKeyword(code, text);
    } else if (lineType != LINE_DATA) {
        MSG_BugLine(1004);
    } else if (const TextKeyword* keyword = FindTextKeyword(geHdrKeyword); keyword != nullptr) {
        AddText(*keyword, text);
    } else {
        MSG_ErrorLine(1002);
    }
}

void HDR_Leave(nuibis_keyword newCode)
{
    if (gpCurrentHdr == nullptr) {
        return;
    }
    if (newCode == KEY_IBIS_VER) {
        MSG_ErrorLine(1005);
    } else if (newCode > KEY_COPYRIGHT) {
        CMN_RequireKeyword("IBIS_Version", gabSeen[KEY_IBIS_VER]);
        CMN_RequireKeyword("File_name", gabSeen[KEY_FILE_NAME]);
        CMN_RequireKeyword("File_Rev", gabSeen[KEY_FILE_REV]);
        gpCurrentHdr = nullptr;
    }
}

void HDR_FreeList(HDR* list)
{
    gpCurrentHdr = nullptr;
    CMN_FreeList(list, [](HDR& header) {
        for (const TextKeyword& keyword : TEXT_KEYWORDS) {
            CMN_Release(header.*keyword.ppszField);
        }
    });
}

int HDR_GetIbisVer(const HDR* header, const char** out)
{
    return GiveText(header->szIbisVer, out);
}

int HDR_GetFileName(const HDR* header, const char** out)
{
    return GiveText(header->szFileName, out);
}

int HDR_GetFileRev(const HDR* header, const char** out)
{
    return GiveText(header->szFileRev, out);
}

int HDR_GetDate(const HDR* header, const char** out)
{
    return GiveText(header->szDate, out);
}

int HDR_GetSource(const HDR* header, const char** out)
{
    return GiveText(header->pszSource, out);
}

int HDR_GetNotes(const HDR* header, const char** out)
{
    return GiveText(header->pszNotes, out);
}

int HDR_GetDisclaimer(const HDR* header, const char** out)
{
    return GiveText(header->pszDisclaimer, out);
}

int HDR_GetCopyright(const HDR* header, const char** out)
{
    return GiveText(header->pszCopyright, out);
}
