#include "ibis/source/nuibis_ibis11.h"

#include "ibis/source/nuibis_ibis11_cmpnt.h"
#include "ibis/source/nuibis_ibis11_model.h"
#include "ibis/source/nuibis_ibis11_text.h"

#include <algorithm>
#include <new>
#include <utility>

namespace
{

constexpr std::string_view EXTENSION = ".ibs";

// A path with room for the extension.
using OldPath = std::array<char, CMN_PATH_LIMIT + EXTENSION.size() + 1>;

constexpr unsigned DATE_LIMIT = 40;
constexpr std::size_t FILE_STEM_LIMIT = 8;

// A keyword was seen if its text is there.
struct Header {
    char szVersion[IBIS11_ITEM_LIMIT + 1];
    char szFileName[IBIS11_ITEM_LIMIT + 1];
    char szFileRev[IBIS11_ITEM_LIMIT + 1];
    char szDate[DATE_LIMIT + 1];
    bool bSource;
    bool bNotes;
    bool bEnd;
};

// Reset by IBIS11_Open.
Header gHeader;
unsigned guiComponentCount = 0;

// Opening ---------------------------------------------------------------------------------------------------

// Completes the path and the bare name, which messages and listeners take from gszFileName.
bool CompletePath(std::span<char> path)
{
    const std::string_view whole = path.data();
    const std::string_view bare = whole.substr(whole.find_last_of("\\/") + 1);
    const std::size_t dot = bare.rfind('.');
    if (dot == std::string_view::npos) {
        CMN_CopyText(path.subspan(whole.size()), EXTENSION);
    } else if (bare.substr(dot) != EXTENSION && bare.substr(dot) != ".IBS") {
        IBIS11_Tell(5);
        return false;
    }
    CMN_CopyText(gszFileName, bare.data());
    return true;
}

bool IBIS11_Open(std::span<char> path)
{
    guiOldBugs = guiOldErrors = guiOldWarnings = 0;
    guiComponentCount = 0;
    gHeader = {};
    IBIS11_ResetModels();
    if (!CompletePath(path)) {
        return false;
    }
    std::FILE* const file = CMN_FOpenInAnyCase(path);
    if (file == nullptr) {
        IBIS11_Tell(7, path.data());
        return false;
    }
    IBIS11_OpenText(file);
    return true;
}

// Header ----------------------------------------------------------------------------------------------------

bool IsRepeated(bool seen, IBIS11_Kind keyword)
{
    if (seen) {
        IBIS11_Tell(21, IBIS11_KeywordName(keyword));
    }
    return seen;
}

// False if there is nothing to go on with.
bool ReadVersion()
{
    if (IsRepeated(gHeader.szVersion[0] != '\0', IBIS11_IBIS_VER)) {
        return true;
    }
    if (guiKeywordCount != 1) {
        IBIS11_Tell(40);
    }
    const IBIS11_Items items = IBIS11_Split();
    IBIS11_CheckCount(true, items.iCount, 1, 1, IBIS11_KeywordName(IBIS11_IBIS_VER));
    if (items.iCount == 0) {
        IBIS11_Tell(41);
        return false;
    }
    if (items[0] != "1.0" && items[0] != "1.1") {
        IBIS11_Tell(42, items[0]);
        return false;
    }
    CMN_CopyText(gHeader.szVersion, items[0]);
    return true;
}

// Names follow the oldest file systems: eight characters and an extension, in lower case.
void CheckFileName(std::string_view name)
{
    constexpr std::string_view legal = "abcdefghijklmnopqrstuvwxyz0123456789_^$~!#%&-{}()@'`";
    const std::size_t dot = name.find('.');
    if (dot == std::string_view::npos) {
        IBIS11_Tell(38);
        return;
    }
    if (dot > FILE_STEM_LIMIT) {
        IBIS11_Tell(36);
        return;
    }
    if (name.substr(dot) != EXTENSION) {
        IBIS11_Tell(38);
        return;
    }
    for (std::size_t i = 0; i < dot; ++i) {
        if (legal.find(name[i]) == std::string_view::npos) {
            IBIS11_Tell(39, name.substr(i));
        }
    }
}

// The only item of [File Name] or [File Rev], without data if there is none or the keyword is repeated.
std::string_view ReadOnlyItem(IBIS11_Kind keyword, std::string_view what, std::span<char> field)
{
    if (IsRepeated(field[0] != '\0', keyword)) {
        return {};
    }
    const IBIS11_Items items = IBIS11_Split();
    if (items.iCount == 0) {
        IBIS11_Tell(20, IBIS11_KeywordName(keyword), what);
        return {};
    }
    IBIS11_CheckCount(true, items.iCount, 1, 1, IBIS11_KeywordName(keyword));
    CMN_CopyText(field, items[0]);
    return field.data();
}

void ReadFileName()
{
    const std::string_view name = ReadOnlyItem(IBIS11_FILE_NAME, "filename", gHeader.szFileName);
    if (name.data() == nullptr) {
        return;
    }
    if (!CMN_Equal(name, PARSE_GetFileName())) {
        IBIS11_Tell(37, PARSE_GetFileName(), name);
    }
    CheckFileName(name);
}

void ReadDate()
{
    if (IsRepeated(gHeader.szDate[0] != '\0', IBIS11_DATE)) {
        return;
    }
    const std::string_view text = IBIS11_LineText();
    IBIS11_CheckLength(text, DATE_LIMIT, IBIS11_KeywordName(IBIS11_DATE));
    CMN_CopyText(gHeader.szDate, text);
}

void PassOverText()
{
    while (IBIS11_NextDataLine()) {
    }
}

void ReadText(IBIS11_Kind keyword, bool& seen)
{
    IsRepeated(std::exchange(seen, true), keyword);
    PassOverText();
}

// First pass ------------------------------------------------------------------------------------------------

// Components wait for the second pass.
void PassOverComponent()
{
    IBIS11_Kind kind = IBIS11_DATA;
    while (IBIS11_NextLine(kind)) {
        if (kind != IBIS11_DATA && kind != IBIS11_MANUFACTURER && kind != IBIS11_PACKAGE &&
            kind != IBIS11_PIN) {
            IBIS11_PutBack();
            return;
        }
    }
}

void ReportOrphan(IBIS11_Kind keyword, IBIS11_Kind owner)
{
    IBIS11_Tell(25, IBIS11_KeywordName(keyword), IBIS11_KeywordName(owner));
    gbSkipData = true;
}

void ReadKeyword(IBIS11_Kind kind)
{
    switch (kind) {
    case IBIS11_FILE_NAME:
        return ReadFileName();
    case IBIS11_FILE_REV:
        ReadOnlyItem(kind, "revision", gHeader.szFileRev);
        return;
    case IBIS11_DATE:
        return ReadDate();
    case IBIS11_SOURCE:
        return ReadText(kind, gHeader.bSource);
    case IBIS11_NOTES:
        return ReadText(kind, gHeader.bNotes);
    case IBIS11_DISCLAIMER:
        return PassOverText();
    case IBIS11_COMPONENT:
        return PassOverComponent();
    case IBIS11_MANUFACTURER:
    case IBIS11_PACKAGE:
    case IBIS11_PIN:
        return ReportOrphan(kind, IBIS11_COMPONENT);
    case IBIS11_MODEL:
        gbSkipData = !IBIS11_ReadModel();
        return;
    default:
        return ReportOrphan(kind, IBIS11_MODEL);
    }
}

// True if [End] was reached.
bool ReadModels()
{
    IBIS11_Kind kind = IBIS11_DATA;
    while (IBIS11_NextLine(kind)) {
        if (kind == IBIS11_END) {
            gHeader.bEnd = true;
            return true;
        }
        if (kind == IBIS11_DATA) {
            IBIS11_Tell(27);
        } else if (kind != IBIS11_IBIS_VER) {
            ReadKeyword(kind);
        } else if (!ReadVersion()) {
            return false;
        }
    }
    return false;
}

// Second pass -----------------------------------------------------------------------------------------------

void ReadEnd()
{
    IBIS11_CheckCount(true, IBIS11_Split().iCount, 0, 0, IBIS11_KeywordName(IBIS11_END));
    gbLineCheck = true;
    IBIS11_Kind kind = IBIS11_DATA;
    while (IBIS11_NextLine(kind)) {
        IBIS11_Tell(33);
    }
}

void ReadComponents()
{
    IBIS11_Kind kind = IBIS11_DATA;
    while (IBIS11_NextLine(kind)) {
        if (kind == IBIS11_DATA) {
            IBIS11_Tell(27);
        } else if (kind == IBIS11_COMPONENT) {
            guiComponentCount += IBIS11_ReadComponent() ? 1 : 0;
        } else if (kind == IBIS11_END) {
            ReadEnd();
        } else {
            gbSkipData = true;
        }
    }
}

void IBIS11_Run()
try {
    if (!ReadModels()) {
        return;
    }
    if (!IBIS11_RewindText()) {
        IBIS11_Tell(8);
        return;
    }
    ReadComponents();
} catch (const std::bad_alloc&) {
    // 1906 has been reported
}

// A file without [End] was not read for its components, so nothing is said of them.
int IBIS11_Finish()
{
    const bool hasComponent = guiPass == 1 || guiComponentCount != 0;
    const std::pair<bool, IBIS11_Kind> required[]{
        {gHeader.szVersion[0] != '\0', IBIS11_IBIS_VER}, {gHeader.szFileName[0] != '\0', IBIS11_FILE_NAME},
        {gHeader.szFileRev[0] != '\0', IBIS11_FILE_REV}, {hasComponent, IBIS11_COMPONENT},
        {IBIS11_ModelCount() != 0, IBIS11_MODEL},        {gHeader.bEnd, IBIS11_END}};
    for (const auto& [seen, keyword] : required) {
        if (!seen) {
            IBIS11_Tell(6, IBIS11_KeywordName(keyword));
        }
    }
    IBIS11_CloseText();
    return guiOldBugs != 0 || guiOldErrors != 0 ? 1 : 0;
}

}  // namespace

void IBIS11_CheckFile(std::string_view name)
{
    OldPath path{};
    CMN_CopyText(path, name, CMN_PATH_LIMIT);
    if (IBIS11_Open(path)) {
        IBIS11_Run();
        IBIS11_CloseText();
    }
}

int IBIS11_Main(int argc, const char* const* argv)
{
    if (argc != 2) {
        std::fputs("Checks an IBIS file of version 1.0 or 1.1.\nUsage: ibis11 FILE\n", stderr);
        return 1;
    }
    OldPath path{};
    CMN_CopyText(path, argv[1], CMN_PATH_LIMIT);
    if (!IBIS11_Open(path)) {
        return 1;
    }
    IBIS11_Run();
    return IBIS11_Finish();
}
