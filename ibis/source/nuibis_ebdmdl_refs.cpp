// What boards refer to: the pins of other boards, and of components in other files.

#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_ebdmdl.h"
#include "ibis/source/nuibis_fork.h"
#include "ibis/source/nuibis_hdr.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_list.h"
#include "ibis/source/nuibis_parse.h"
#include "ibis/source/nuibis_pin.h"

#include <array>

namespace
{

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
                    const auto& node = *EBDPATH_Payload<EBDNODE>(element);
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
