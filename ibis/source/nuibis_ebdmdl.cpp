#include "ibis/source/nuibis_ebdmdl.h"

#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_field.h"
#include "ibis/source/nuibis_fork.h"
#include "ibis/source/nuibis_hdr.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_list.h"
#include "ibis/source/nuibis_parse.h"
#include "ibis/source/nuibis_pin.h"
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

template <class T> T* Payload(const ebdpathelement& element)
{
    return static_cast<T*>(element.pData);
}

void ReleasePayload(ebdpathelement& element)
{
    if (element.eKind == EBDPATH_SECTION) {
        SECT_Free(Payload<SECT>(element));
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
                             ++counts[Payload<char>(element)];
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
        if (const char* const pin = Payload<char>(element); !gPinNames.contains(pin)) {
            MSG_Error(4358, pin, path.szName);
        }
    } else if (element.eKind == EBDPATH_NODE) {
        if (const auto* const node = Payload<EBDNODE>(element); !gRefDesNames.contains(node->szRefDes)) {
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

// References to other boards and files --------------------------------------------------------------------

// What must be found in a referred file.
struct PINREF {
    PINREF* pNext;
    char szComponent[41];  // the referred component or board
    char szBoard[41];      // the board that refers
    char szPin[14];
};

struct FILEREF {
    FILEREF* pNext;
    char szFile[1032];
    PINREF* pPinRefs;  // newest first
};

// The pins of many boards or components, found by owner and name.
class PinTable
{
  public:
    void add(const EBDMDL* list)
    {
        for (; list != nullptr; list = list->pNext) {
            for (std::size_t i = 0; list->ppPins != nullptr && list->ppPins[i] != nullptr; ++i) {
                mPins.emplace(list, list->ppPins[i]->szPin);
            }
        }
    }
    void add(const CMPNT* list)
    {
        for (; list != nullptr; list = list->pNext) {
            for (const PIN* pin = list->pPins; pin != nullptr; pin = pin->pNext) {
                mPins.emplace(list, pin->szPin);
            }
        }
    }
    bool contains(const void* owner, std::string_view pin) const { return mPins.contains({owner, pin}); }

  private:
    CMN_Set<std::pair<const void*, std::string_view>> mPins;
};

// [File Name] of the current file, or null.
const char* CurrentFileName()
{
    ibis* root = nullptr;
    const char* name = nullptr;
    if (IBIS_GetCurrent(&root) && root->pHeaders != nullptr) {
        HDR_GetFileName(root->pHeaders, &name);
    }
    return name;
}

// Gathers what the boards of a file refer to. What stands in the same file is checked at once.
class References
{
  public:
    References(EBDMDL* boards, const char* fileName) : mpBoards(boards), mpszFile(fileName)
    {
        mPins.add(boards);
    }
    ~References()
    {
        CMN_FreeList(mpFiles, [](FILEREF& file) { CMN_FreeList(file.pPinRefs); });
    }
    References(const References&) = delete;
    References& operator=(const References&) = delete;

    void collect(const EBDMDL& board)
    {
        LIST_Index<EBDREFDES, &EBDREFDES::szRefDes> map;
        for (const EBDPATH* path = board.pPaths; path != nullptr; path = path->pNext) {
            FORK_ForEach(static_cast<const ebdpathelement*>(path->pHead), [&](const ebdpathelement& element) {
                if (element.eKind == EBDPATH_NODE) {
                    const auto& node = *Payload<EBDNODE>(element);
                    if (EBDREFDES* entry = map.find(board.pRefDesMap, node.szRefDes); entry != nullptr) {
                        take(*entry, node.szPin, board);
                    }
                }
            });
        }
    }

    const FILEREF* files() const { return mpFiles; }

  private:
    void take(EBDREFDES& entry, std::string_view pin, const EBDMDL& board)
    {
        if (!entry.bFileOk || !entry.bComponentOk || mpszFile == nullptr) {
            return;
        }
        const std::string_view component = entry.szComponent;
        if (std::string_view(entry.szFile) != mpszFile) {
            addPin(entry, pin, board);
        } else if (component == board.szName) {
            MSG_Error(4381, entry.szRefDes, component);
            entry.bComponentOk = false;  // told once
        } else if (const EBDMDL* other = EBDMDL_Find(mpBoards, component);
                   other == nullptr || other->ppPins == nullptr) {
            MSG_Error(4390, component, mpszFile);
        } else if (!mPins.contains(other, pin)) {
            MSG_Error(4389, pin, component, mpszFile);
        }
    }

    void addPin(const EBDREFDES& entry, std::string_view pin, const EBDMDL& board)
    {
        FILEREF* const file = fileOf(entry.szFile);
        PINREF* reference = nullptr;
        if (file == nullptr) {
            return;
        }
        if (!CMN_Alloc(reference)) {
            MSG_Error(4391);
            return;
        }
        CMN_CopyText(reference->szComponent, entry.szComponent);
        CMN_CopyText(reference->szBoard, board.szName);
        CMN_CopyText(reference->szPin, pin);
        reference->pNext = file->pPinRefs;
        file->pPinRefs = reference;
    }

    FILEREF* fileOf(std::string_view name)
    {
        FILEREF* file = mFileNames.find(mpFiles, name);
        if (file != nullptr) {
            return file;
        }
        if (!CMN_Alloc(file)) {
            MSG_Error(4392);
            return nullptr;
        }
        CMN_CopyText(file->szFile, name);
        file->pNext = mpFiles;
        mpFiles = file;
        return file;
    }

    EBDMDL* mpBoards;
    const char* mpszFile;
    PinTable mPins;
    FILEREF* mpFiles = nullptr;  // newest first
    LIST_Index<FILEREF, &FILEREF::szFile> mFileNames;
};

// The boards of the referred file that is the current root.
void CheckBoardRefs(EBDMDL* boards, const FILEREF& file, const char* path, const char* callingFile)
{
    // The board defined last stands for the whole file here.
    if (boards != nullptr && file.pPinRefs != nullptr) {
        for (const EBDREFDES* entry = boards->pRefDesMap; entry != nullptr; entry = entry->pNext) {
            if (std::string_view(entry->szFile) == callingFile &&
                std::string_view(entry->szComponent) == file.pPinRefs->szBoard) {
                MSG_Error(4394, path, file.pPinRefs->szBoard, callingFile);
            }
        }
    }
    PinTable pins;
    pins.add(boards);
    for (const PINREF* ref = file.pPinRefs; ref != nullptr; ref = ref->pNext) {
        const EBDMDL* const board = EBDMDL_Find(boards, ref->szComponent);
        if (board == nullptr || board->ppPins == nullptr) {
            MSG_Error(4390, ref->szComponent, path);
        } else if (!pins.contains(board, ref->szPin)) {
            MSG_Error(4389, ref->szPin, ref->szComponent, path);
        }
    }
}

void CheckComponentRefs(CMPNT* components, const FILEREF& file, const char* path)
{
    LIST_Index<CMPNT, &CMPNT::szName> names;
    PinTable pins;
    pins.add(components);
    for (const PINREF* ref = file.pPinRefs; ref != nullptr; ref = ref->pNext) {
        if (std::string_view(ref->szPin).size() > PIN_NAME_LIMIT) {
            MSG_Error(4393, ref->szPin, ref->szComponent);
            continue;
        }
        const CMPNT* const component = names.find(components, ref->szComponent);
        if (component == nullptr) {
            MSG_Error(4390, ref->szComponent, path);
        } else if (!pins.contains(component, ref->szPin)) {
            MSG_Error(4389, ref->szPin, ref->szComponent, path);
        }
    }
}

// A root of its own for a nested read: what is read goes away with it, and the totals are printed.
class NestedRoot
{
  public:
    NestedRoot()
    {
        if (IBIS_Create()) {
            IBIS_GetCurrent(&mpRoot);
        }
    }
    ~NestedRoot()
    {
        if (mpRoot != nullptr) {
            IBIS_Free(mpRoot);
            MSG_Summary();
        }
    }
    NestedRoot(const NestedRoot&) = delete;
    NestedRoot& operator=(const NestedRoot&) = delete;

    ibis* get() const { return mpRoot; }

  private:
    ibis* mpRoot = nullptr;
};

void CheckFileRef(const FILEREF& file, std::string_view directory, const char* callingFile)
{
    std::array<char, CMN_PATH_LIMIT + sizeof file.szFile + 1> path;
    CMN_CopyText(path, directory);
    std::size_t length = directory.size();
    if (length != 0 && directory.back() != '/') {
        path[length++] = '/';
    }
    CMN_CopyText(std::span(path).subspan(length), file.szFile);
    const bool isComponentFile = std::string_view(file.szFile).ends_with(".ibs");
    const ibis_file_type type = isComponentFile ? IBIS_FILE_IBS : IBIS_FILE_EBD;
    const NestedRoot nested;
    const int result = nested.get() == nullptr ? 0 : PARSE_ReadFile(path.data(), type);
    if (!result) {
        return;
    }
    IBIS_Finish(path.data(), type, result);
    if (isComponentFile) {
        CheckComponentRefs(nested.get()->pComponents, file, path.data());
    } else {
        CheckBoardRefs(nested.get()->pBoards, file, path.data(), callingFile);
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

void EBDMDL_CheckFile(EBDMDL* list, bool nested)
try {
    const CMN_PlaceKeeper keeper;
    const char* const fileName = CurrentFileName();
    References references(list, fileName);
    LIST_Pairs<EBDMDL, &EBDMDL::szName> repeats(list);
    for (const EBDMDL* board = list; board != nullptr; board = board->pNext) {
        for (unsigned pairs = repeats.behind(*board); pairs > 0; --pairs) {
            MSG_Error(4306, board->szName);
        }
        references.collect(*board);
    }
    if (nested) {
        return;
    }
    for (const FILEREF* file = references.files(); file != nullptr; file = file->pNext) {
        CMN_SetDirectory(keeper.directory());
        CheckFileRef(*file, keeper.directory(), fileName);
    }
} catch (const std::bad_alloc&) {
    // Told by the allocation itself; the rest of the pass falls away.
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
