#include "ibis/source/nuibis_ebdmdl.h"

#include "ibis/source/nuibis_field.h"
#include "ibis/source/nuibis_fork.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_list.h"
#include "ibis/source/nuibis_sect.h"

#include <algorithm>
#include <array>

namespace
{

constexpr unsigned PIN_LIMIT = 8;
constexpr unsigned SIGNAL_LIMIT = 20;
constexpr unsigned REFDES_LIMIT = 10;
constexpr unsigned FILE_LIMIT = 44;
constexpr unsigned NAME_LIMIT = 40;

// Module state, reset by EBDMDL_Init. There is one board at a time.
EBDMDL* gpCurEbdMdl = nullptr;  // board being read, null between boards
EBDPATH* gpCurPath = nullptr;   // path being read
bool gbPinListSeen = false;
bool gbRefDesMapSeen = false;
bool gbEndBoardSeen = false;
bool gbPinCountSeen = false;
nuibis_keyword geLastEbdKeyword = NOT_KEY;  // data lines belong to it
unsigned guiEbdPinIndex = 0;                // pins stored so far
FORK_Chain<ebdpathelement> gChain;          // end of the path being read
LIST_Tail<EBDPATH> gPaths;
CMN_Set<std::string_view> gPinNames;
LIST_Repeats gPathNames;
CMN_Map<std::string_view, unsigned> gRefDesNames;  // how many map entries have it

// Follows the list that was last looked into.
LIST_Index<EBDMDL, &EBDMDL::szName> gBoards;

void ForgetBoard()
{
    gpCurEbdMdl = nullptr;
    gpCurPath = nullptr;
    gChain.reset();
    gPinNames.clear();
    gPathNames.reset();
    gRefDesNames.clear();
}

// Keyword lines; `text` is what follows the bracket ------------------------------------------------------

void ReadName(std::string_view text)
{
    CMN_SetString(gpCurEbdMdl->szName, text, NAME_LIMIT, "Define Ebd Model");
    CMN_CheckReserved(gpCurEbdMdl->szName);
}

void ReadManufacturer(std::string_view text)
{
    CMN_SetString(gpCurEbdMdl->szManufacturer, text, NAME_LIMIT, "Manufacturer");
}

void ReadPinCount(std::string_view text)
{
    if (gbPinCountSeen) {
        MSG_ErrorLine(4309);
    }
    gbPinCountSeen = true;
    FIELD_ReadCount(text, {4310, 4311, 4312, 4313, 4314}, &gpCurEbdMdl->uiPinCount);
}

void OpenPinList(std::string_view text)
{
    if (gbPinListSeen) {
        MSG_ErrorLine(4336);
        return;
    }
    gbPinListSeen = true;
    const CMN_TokenList tokens = CMN_Split(text, 1);
    if (tokens.iFound == 0) {
        MSG_ErrorLine(4337);
        return;
    }
    if (!CMN_Equal(tokens[0], "signal_name")) {
        MSG_ErrorLine(4338);
    }
    if (tokens.iFound > 1) {
        MSG_ErrorLine(4339);
    }
}

void ReportOpenForks()
{
    if (gChain.hasOpenFork()) {
        MSG_ErrorLine(4303);
        gChain.forgetForks();
    }
}

void OpenPath(std::string_view text)
{
    ReportOpenForks();
    gChain.reset();
    gpCurPath = nullptr;
    if (!CMN_Alloc(gpCurPath)) {
        MSG_ErrorLine(4353);
        return;
    }
    gPaths.append(gpCurEbdMdl->pPaths, gpCurPath);
    CMN_ReplaceString(gpCurPath->szName, text, NAME_LIMIT, "Path Description");
    CMN_CheckReserved(gpCurPath->szName);
    for (unsigned repeats = gPathNames.add(gpCurPath->szName); repeats > 0; --repeats) {
        MSG_ErrorLine(4354, gpCurPath->szName);
    }
}

void OpenBlock(std::string_view text, std::string_view label, bool& seen)
{
    if (seen) {
        MSG_ErrorLine(4334, label);
        return;
    }
    if (!text.empty()) {
        MSG_ErrorLine(4335, label);
    }
    seen = true;
}

void OpenRefDesMap(std::string_view text)
{
    OpenBlock(text, "Reference_Designator_Map", gbRefDesMapSeen);
}

void EndBoard(std::string_view text)
{
    OpenBlock(text, "End_Board_Description", gbEndBoardSeen);
}

// [Pin List] ----------------------------------------------------------------------------------------------

EBDPIN* NewPin(std::string_view name)
{
    EBDMDL& board = *gpCurEbdMdl;
    if (board.uiPinCount == 0) {
        MSG_ErrorLine(4318);
        return nullptr;
    }
    if (guiEbdPinIndex >= board.uiPinCount) {
        MSG_ErrorLine(4320);
        return nullptr;
    }
    if (!CMN_GrowPointers(board.ppPins, guiEbdPinIndex)) {
        MSG_ErrorLine(4319);
        return nullptr;
    }
    EBDPIN* pin = nullptr;
    if (!CMN_Alloc(pin)) {
        MSG_ErrorLine(4321);
        return nullptr;
    }
    CMN_CopyText(pin->szPin, name);
    board.ppPins[guiEbdPinIndex++] = pin;
    if (!gPinNames.insert(pin->szPin).second) {
        MSG_ErrorLine(4322, pin->szPin);
    }
    return pin;
}

void AddPin(std::string_view text)
{
    const CMN_TokenList tokens = CMN_Split(text, 2);
    if (tokens.iFound == 0) {
        MSG_ErrorLine(4316);
        return;
    }
    if (tokens[0].size() > PIN_LIMIT) {
        MSG_ErrorLine(4317);
    }
    EBDPIN* const pin = NewPin(tokens[0]);
    if (pin == nullptr) {
        return;
    }
    if (tokens.iFound == 1) {
        MSG_ErrorLine(4323);
        return;
    }
    if (tokens[1].size() > SIGNAL_LIMIT) {
        MSG_ErrorLine(4324);
    }
    CMN_CopyText(pin->szSignal, tokens[1]);
    if (tokens.iFound > 2) {
        MSG_ErrorLine(4325);
    }
}

// [Path Description] --------------------------------------------------------------------------------------

void ReleasePayload(ebdpathelement& element)
{
    if (element.eKind == EBDPATH_SECTION) {
        SECT_Free(EBDPATH_Payload<SECT>(element));
    } else {
        CMN_Release(element.pData);
    }
}

// Without memory for an element the path is lost: what follows has nothing to be chained to.
void LosePath()
{
    MSG_ErrorLine(4360);
    FORK_Free(gpCurPath->pHead, ReleasePayload);
    gChain.reset();
}

// Takes the payload over; it is released when memory is out.
bool ChainElement(EBDPATH_Kind kind, void* payload)
{
    ebdpathelement draft{nullptr, kind, payload};
    ebdpathelement* element = nullptr;
    if (!CMN_Alloc(element)) {
        if (kind == EBDPATH_PIN || kind == EBDPATH_NODE) {
            MSG_ErrorLine(4365);
        }
        ReleasePayload(draft);
        LosePath();
        return false;
    }
    *element = draft;
    gChain.append(gpCurPath->pHead, element);
    return true;
}

// The word behind "Pin" or "Node".
std::string_view TakeWord(std::string_view& cursor)
{
    return CMN_NextToken(cursor);
}

void ReadSection(std::string_view token, std::string_view& cursor)
{
    if (!gChain.hasTail()) {
        MSG_ErrorLine(4342);
        cursor = {};
        return;
    }
    // The section reader wants the name too.
    cursor = std::string_view(token.data(), token.size() + cursor.size());
    SECT* section = nullptr;
    if (SECT_ParseNext(cursor, &section) && section != nullptr) {
        ChainElement(EBDPATH_SECTION, section);
    }
}

void ReadNC(std::string_view, std::string_view&)
{
    if (gChain.hasTail()) {
        ChainElement(EBDPATH_NC, nullptr);
    } else {
        MSG_ErrorLine(4344);
    }
}

void OpenFork(std::string_view, std::string_view&)
{
    if (!gChain.hasTail()) {
        MSG_ErrorLine(4345);
    } else if (ChainElement(EBDPATH_FORK, nullptr)) {
        gChain.openFork();
    }
}

void CloseFork(std::string_view, std::string_view&)
{
    if (!gChain.hasTail()) {
        MSG_ErrorLine(4346);
    } else if (!gChain.hasOpenFork()) {
        MSG_ErrorLine(4348);
    } else if (!gChain.closeFork()) {
        MSG_ErrorLine(4347);
    }
}

void ReadPin(std::string_view, std::string_view& cursor)
{
    const std::string_view name = TakeWord(cursor);
    if (name.empty()) {
        MSG_ErrorLine(4349);
        return;
    }
    if (name.size() > PIN_LIMIT) {
        MSG_ErrorLine(4361);
    }
    const std::string_view cut = name.substr(0, PIN_LIMIT);
    SECT_WarnName(cut, {4363, 4362, 4364});
    char* copy = nullptr;
    if (!CMN_Alloc(copy, PIN_LIMIT + 1)) {
        MSG_ErrorLine(4366);
        LosePath();
        return;
    }
    CMN_CopyText({copy, PIN_LIMIT + 1}, cut);
    ChainElement(EBDPATH_PIN, copy);
}

void ReadNode(std::string_view, std::string_view& cursor)
{
    const std::string_view text = TakeWord(cursor);
    if (text.empty()) {
        MSG_ErrorLine(4350);
        return;
    }
    if (!gChain.hasTail()) {
        MSG_ErrorLine(4351);
        return;
    }
    EBDNODE* node = nullptr;
    if (!CMN_Alloc(node)) {
        MSG_ErrorLine(4367);
        LosePath();
        return;
    }
    const std::size_t period = text.find('.');
    const std::string_view refDes = text.substr(0, period);
    CMN_CopyText(node->szRefDes, refDes);
    if (period == std::string_view::npos) {
        MSG_ErrorLine(4368);
    } else {
        CMN_CopyText(node->szPin, text.substr(period + 1));
    }
    SECT_WarnName(refDes, {4371, 4372, 4373});
    ChainElement(EBDPATH_NODE, node);
}

// One word of the path grammar; `token` is the word, the cursor stands behind it.
struct PathWord {
    std::string_view sWord;
    void (*read)(std::string_view token, std::string_view& cursor);
};

constexpr std::array<PathWord, 6> PATH_WORDS{{
    {"Len", ReadSection},
    {"NC", ReadNC},
    {"Fork", OpenFork},
    {"Endfork", CloseFork},
    {"Pin", ReadPin},
    {"Node", ReadNode},
}};

void SkipSeparators(std::string_view& cursor)
{
    for (; !cursor.empty(); cursor.remove_prefix(1)) {
        if (cursor.front() == '=') {
            MSG_ErrorLine(4340);
        } else if (cursor.front() == '/') {
            MSG_ErrorLine(4341);
        } else if (cursor.front() != ' ' && cursor.front() != '\t') {
            return;
        }
    }
}

void ReadPathLine(std::string_view text)
{
    if (gpCurPath == nullptr) {
        return;
    }
    for (SkipSeparators(text); !text.empty(); SkipSeparators(text)) {
        const std::string_view token = text.substr(0, text.find_first_of(" \t="));
        text.remove_prefix(token.size());
        const auto* const word = std::find_if(PATH_WORDS.begin(), PATH_WORDS.end(),
                                              [token](const PathWord& w) { return w.sWord == token; });
        if (word == PATH_WORDS.end()) {
            MSG_ErrorLine(4352, token);
        } else {
            word->read(token, text);
        }
    }
}

// [Reference Designator Map] ------------------------------------------------------------------------------

bool CheckExtension(std::string_view file)
{
    const std::size_t period = file.rfind('.');
    if (period == std::string_view::npos) {
        MSG_ErrorLine(4384, file);
        return false;
    }
    const std::string_view extension = file.substr(period);
    if (extension != ".ibs" && extension != ".ebd") {
        MSG_ErrorLine(4385, extension);
        return false;
    }
    return true;
}

// File names are those of the old file systems.
bool CheckCharacters(std::string_view file)
{
    constexpr std::string_view signs = "`!#$%&'()-@^_{}~";
    bool good = true;
    int periods = 0;
    for (const char c : file) {
        if (c == '.') {
            if (++periods > 1) {
                MSG_ErrorLine(4388, file);
                good = false;
            }
        } else if (!CMN_IsAlpha(c) && !CMN_IsDigit(c) && signs.find(c) == std::string_view::npos) {
            MSG_ErrorLine(4387, file, c);
            good = false;
        }
    }
    return good;
}

void ReadRefDes(EBDREFDES& entry, std::string_view name)
{
    if (name.size() > REFDES_LIMIT) {
        MSG_ErrorLine(4375, name);
    }
    CMN_CopyText(entry.szRefDes, name);
    for (unsigned repeats = gRefDesNames[entry.szRefDes]++; repeats > 0; --repeats) {
        MSG_ErrorLine(4376, entry.szRefDes);
    }
}

// False if the entry stays without a file.
bool ReadFileName(EBDREFDES& entry, std::string_view file)
{
    if (file.empty()) {
        MSG_ErrorLine(4379);
        return false;
    }
    if (file.size() > FILE_LIMIT) {
        MSG_ErrorLine(4378, file);
        return false;
    }
    const bool goodExtension = CheckExtension(file);
    entry.bFileOk = CheckCharacters(file) && goodExtension;
    CMN_CopyText(entry.szFile, file);
    return true;
}

// The rest of the line, with its blanks.
void ReadComponentName(EBDREFDES& entry, std::string_view name)
{
    if (name.empty()) {
        MSG_ErrorLine(4383);
        return;
    }
    if (name.size() > NAME_LIMIT) {
        MSG_ErrorLine(4380, name);
    }
    CMN_CopyText(entry.szComponent, name);
    entry.bComponentOk = true;
}

void AddRefDes(std::string_view text)
{
    EBDREFDES* entry = nullptr;
    if (!CMN_Alloc(entry)) {
        MSG_ErrorLine(4374);
        return;
    }
    entry->pNext = gpCurEbdMdl->pRefDesMap;
    gpCurEbdMdl->pRefDesMap = entry;
    const std::string_view name = CMN_NextToken(text);
    if (name.empty()) {
        MSG_ErrorLine(4377);
        return;
    }
    ReadRefDes(*entry, name);
    if (ReadFileName(*entry, CMN_NextToken(text))) {
        CMN_SkipSpace(text);
        ReadComponentName(*entry, text);
    }
}

// The keyword table ---------------------------------------------------------------------------------------

void RefuseData(std::string_view)
{
    MSG_ErrorLine(4302);
}

using Reader = void (*)(std::string_view text);

struct Keyword {
    nuibis_keyword eCode;
    Reader keywordLine;
    Reader dataLine;
};

constexpr std::array<Keyword, 7> KEYWORDS{{
    {KEY_BEGIN_BOARD_DESCRIPTION, ReadName, RefuseData},
    {KEY_EBD_MANUFACTURER, ReadManufacturer, RefuseData},
    {KEY_EBD_NUMBER_OF_PINS, ReadPinCount, RefuseData},
    {KEY_PIN_LIST, OpenPinList, AddPin},
    {KEY_PATH_DESCRIPTION, OpenPath, ReadPathLine},
    {KEY_REFERENCE_DESIGNATOR_MAP, OpenRefDesMap, AddRefDes},
    {KEY_END_BOARD_DESCRIPTION, EndBoard, RefuseData},
}};

const Keyword* FindKeyword(nuibis_keyword code)
{
    const auto* const row =
        std::find_if(KEYWORDS.begin(), KEYWORDS.end(), [code](const Keyword& k) { return k.eCode == code; });
    return row == KEYWORDS.end() ? nullptr : row;
}

void ReadKeyword(nuibis_keyword code, std::string_view text)
{
    const Keyword* const keyword = FindKeyword(code);
    if (keyword == nullptr) {
        MSG_BugLine(4304, __FILE_NAME__, __LINE__);
        return;
    }
    CMN_SkipKeyword(text);
    geLastEbdKeyword = code;
    keyword->keywordLine(text);
}

// End of a board ------------------------------------------------------------------------------------------

// How often each pin stands on the paths of a board.
CMN_Map<std::string_view, int> CountPins(const EBDMDL& board)
{
    CMN_Map<std::string_view, int> counts;
    for (const EBDPATH* path = board.pPaths; path != nullptr; path = path->pNext) {
        FORK_ForEach(static_cast<const ebdpathelement*>(path->pHead),
                     [&counts](const ebdpathelement& element) {
                         if (element.eKind == EBDPATH_PIN) {
                             ++counts[EBDPATH_Payload<char>(element)];
                         }
                     });
    }
    return counts;
}

// A pin belongs to exactly one path, unless it goes straight to a plane.
void CheckPinUse(const EBDPIN& pin, int count)
{
    const std::string_view signal = pin.szSignal;
    const bool plane = signal.starts_with("POWER") || signal.starts_with("GND");
    if (count == 0) {
        if (CMN_IsNotReserved(signal) && !plane) {
            MSG_Error(4328, pin.szPin);
        }
    } else if (plane) {
        MSG_Warning(4329, pin.szPin);
    } else if (count > 1) {
        MSG_Error(4330, pin.szPin, count);
    }
}

void CheckPins(const EBDMDL& board)
{
    if (!gbPinListSeen) {
        MSG_Error(4326);
        return;
    }
    if (board.uiPinCount == 0) {
        return;
    }
    if (board.ppPins == nullptr) {
        MSG_Error(4327);
        return;
    }
    const CMN_Map<std::string_view, int> counts = CountPins(board);
    for (unsigned i = 0; i < guiEbdPinIndex; ++i) {
        const auto count = counts.find(board.ppPins[i]->szPin);
        CheckPinUse(*board.ppPins[i], count == counts.end() ? 0 : count->second);
    }
    if (guiEbdPinIndex != board.uiPinCount) {
        MSG_Error(4331, board.uiPinCount, guiEbdPinIndex);
    }
}

void CheckElement(const EBDPATH& path, const ebdpathelement& element)
{
    if (element.eKind == EBDPATH_PIN) {
        if (const char* const pin = EBDPATH_Payload<char>(element); !gPinNames.contains(pin)) {
            MSG_Error(4358, pin, path.szName);
        }
    } else if (element.eKind == EBDPATH_NODE) {
        if (const auto* const node = EBDPATH_Payload<EBDNODE>(element);
            !gRefDesNames.contains(node->szRefDes)) {
            MSG_Error(4359, node->szRefDes, path.szName);
        }
    } else if (element.eKind == EBDPATH_NC && element.pNext != nullptr) {
        MSG_Error(4357, path.szName);
    }
}

void CheckPaths(const EBDMDL& board)
{
    if (board.pPaths == nullptr) {
        MSG_Error(4355, board.szName);
    }
    for (const EBDPATH* path = board.pPaths; path != nullptr; path = path->pNext) {
        if (path->pHead == nullptr) {
            MSG_Error(4356, path->szName);
        } else {
            FORK_ForEach(static_cast<const ebdpathelement*>(path->pHead),
                         [path](const ebdpathelement& element) { CheckElement(*path, element); });
        }
    }
}

void CheckBoard(const EBDMDL& board)
{
    if (board.szName[0] == '\0') {
        MSG_Error(4308);
    }
    if (board.szManufacturer[0] == '\0') {
        MSG_Error(4333, "Manufacturer", board.szName);
    }
    if (board.uiPinCount == 0) {
        MSG_Error(4315, board.szName);
    }
    CheckPins(board);
    ReportOpenForks();
    CheckPaths(board);
    if (!gbEndBoardSeen) {
        MSG_Error(4332);
    }
}

}  // namespace

void EBDMDL_Init()
{
    ForgetBoard();
    gbPinListSeen = gbRefDesMapSeen = gbEndBoardSeen = gbPinCountSeen = false;
    geLastEbdKeyword = NOT_KEY;
    guiEbdPinIndex = 0;
    ibis* root = nullptr;
    if (!IBIS_GetCurrent(&root)) {
        MSG_BugLine(4300, __FILE_NAME__, __LINE__);
        return;
    }
    if (!CMN_Alloc(gpCurEbdMdl)) {
        MSG_ErrorLine(4307);
        return;
    }
    IBIS_Add<&ibis::pBoards>(root, gpCurEbdMdl);
}

void EBDMDL_Line(line_type lineType, nuibis_keyword code, std::string_view text)
try {
    if (lineType != LINE_KEYWORD && lineType != LINE_DATA) {
        MSG_BugLine(4305, __FILE_NAME__, __LINE__);
    } else if (gpCurEbdMdl == nullptr) {
        if (lineType == LINE_KEYWORD) {
            MSG_ErrorLine(4301);
        } else {
            MSG_ErrorLine(4302);
        }
    } else if (lineType == LINE_KEYWORD) {
        ReadKeyword(code, text);
    } else if (const Keyword* keyword = FindKeyword(geLastEbdKeyword); keyword != nullptr) {
        keyword->dataLine(text);
    } else {
        MSG_ErrorLine(4302);
    }
} catch (const std::bad_alloc&) {
    // Told by the allocation itself; what was being read of the line is lost.
}

// [Begin Board Description] itself lies outside, so that a new board ends the one before.
void EBDMDL_Leave(nuibis_keyword newCode)
try {
    const bool stays = newCode > KEY_BEGIN_BOARD_DESCRIPTION && newCode <= KEY_END_BOARD_DESCRIPTION;
    if (!stays && gpCurEbdMdl != nullptr) {
        CheckBoard(*gpCurEbdMdl);
        ForgetBoard();
    }
} catch (const std::bad_alloc&) {
    ForgetBoard();
}

EBDMDL* EBDMDL_Find(EBDMDL* list, std::string_view name)
{
    return gBoards.find(list, name);
}

void EBDMDL_FreeList(EBDMDL* list)
{
    ForgetBoard();
    gBoards.reset();
    CMN_FreeList(list, [](EBDMDL& board) {
        for (std::size_t i = 0; board.ppPins != nullptr && board.ppPins[i] != nullptr; ++i) {
            CMN_Free(board.ppPins[i]);
        }
        CMN_Release(board.ppPins);
        CMN_FreeList(board.pPaths, [](EBDPATH& path) { FORK_Free(path.pHead, ReleasePayload); });
        CMN_FreeList(board.pRefDesMap);
    });
}
