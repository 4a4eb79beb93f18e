// Queries about electrical boards. Of several boards in a file the last one answers: it heads the list.

#include "ibis/interface/talibis.h"
#include "ibis/interface/talibis_print.h"
#include "ibis/source/nuibis_ebdmdl.h"
#include "ibis/source/nuibis_fork.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_sect.h"

#include <array>
#include <span>
#include <unordered_map>

namespace
{

constexpr std::size_t NAME_WIDTH = 9;

std::string NodeName(const ebdpathelement& element)
{
    const EBDNODE& node = *EBDPATH_Payload<EBDNODE>(element);
    return std::string(node.szRefDes) + "." + node.szPin;
}

// The nodes of a chain of elements and of the branches within it.
template <class Sink> void CollectNodes(const ebdpathelement* element, Sink sink)
{
    FORK_ForEach(element, [&](const ebdpathelement& each) {
        if (each.eKind == EBDPATH_NODE) {
            sink(NodeName(each));
        }
    });
}

// A path is known by the pin that it starts from.
std::string_view PathName(const EBDPATH& path)
{
    return path.pHead != nullptr && path.pHead->eKind == EBDPATH_PIN ? EBDPATH_Payload<char>(*path.pHead)
                                                                     : "";
}

const EBDPATH* FindPath(const EBDMDL* board, const char* name)
{
    const EBDPATH* path = board == nullptr || name == nullptr ? nullptr : board->pPaths;
    while (path != nullptr && PathName(*path) != name) {
        path = path->pNext;
    }
    return path;
}

std::span<EBDPIN* const> PinsOf(const EBDMDL* board)
{
    std::size_t count = 0;
    while (board != nullptr && board->ppPins != nullptr && count < board->uiPinCount &&
           board->ppPins[count] != nullptr) {
        ++count;
    }
    return {count == 0 ? nullptr : board->ppPins, count};
}

// One path, flattened: six strings an element. Depth tells the branches apart.
class Flattener
{
  public:
    explicit Flattener(TalIbisListQueryData& list) : mList(list) {}

    void walk(const ebdpathelement* element)
    {
        while (element != nullptr) {
            const ebdpathelement* next = element->pNext;
            if (element->eKind == EBDPATH_FORK) {
                mForks.push_back(element);
                next = FORK_Branch(*element);
                mBranchBehindBranch = mBranchBehindBranch || mAfterPop;
            } else {
                insert(*element);
            }
            mAfterPop = next == nullptr && !mForks.empty();
            while (next == nullptr && !mForks.empty()) {
                next = mForks.back()->pNext;
                mForks.pop_back();
            }
            element = next;
        }
    }

  private:
    void insert(const ebdpathelement& element)
    {
        if (element.eKind == EBDPATH_SECTION) {
            const SECT& section = *EBDPATH_Payload<SECT>(element);
            insertElement("", {section.pdLen, section.pdL, section.pdC, section.pdR});
        } else if (element.eKind == EBDPATH_NODE) {
            insertElement(NodeName(element), {});
        } else if (element.eKind == EBDPATH_PIN) {
            // The first pin is the path's own start.
            if (mStarted) {
                insertElement("Pin." + std::string(EBDPATH_Payload<char>(element)), {});
            }
            mStarted = true;
        }
    }
    // A branch right behind a closed one has level -1, which tells it from a step down a chain.
    void insertElement(const std::string& name, const std::array<const double*, 4>& values)
    {
        insertRow(mList, mBranchBehindBranch ? "-1" : std::to_string(mForks.size()));
        mBranchBehindBranch = false;
        insertRow(mList, name);
        for (const double* value : values) {
            insertRow(mList, value == nullptr ? "0" : printNumber(*value));
        }
    }

    TalIbisListQueryData& mList;
    std::vector<const ebdpathelement*> mForks;
    bool mStarted = false;
    bool mAfterPop = false;
    bool mBranchBehindBranch = false;
};

}  // namespace

const EBDMDL* TalIbis::findBoard() const
{
    return pIbis == nullptr ? nullptr : pIbis->pBoards;
}

void TalIbis::getEbdRefList(TalIbisListQueryData& list) const
{
    static constexpr std::size_t fileWidth = 34;
    static constexpr std::size_t componentWidth = 54;
    static constexpr std::size_t dashes = 57;
    answerQuery(list, [&] {
        const EBDMDL* const board = findBoard();
        if (board == nullptr || board->pRefDesMap == nullptr) {
            if (pszFileName != nullptr) {
                list.setFormatedError(
                    QueryEmpty, "No Reference Designator detected in the IBIS EBD file '%s'", pszFileName);
            }
            return;
        }
        insertTitle(list,
                    {{NAME_WIDTH, "Ref Des"}, {fileWidth, "File Name"}, {componentWidth, "Component Names"}},
                    dashes);
        for (const EBDREFDES* entry = board->pRefDesMap; entry != nullptr; entry = entry->pNext) {
            insertRow(list, {{NAME_WIDTH, entry->szRefDes},
                             {fileWidth, entry->szFile},
                             {componentWidth, entry->szComponent}});
        }
    });
}

void TalIbis::getEbdRefListQt(std::vector<std::string>* refs, std::vector<std::string>* files,
                              std::vector<std::string>* components) const
try {
    refs->clear();
    const EBDMDL* const board = findBoard();
    for (const EBDREFDES* entry = board == nullptr ? nullptr : board->pRefDesMap; entry != nullptr;
         entry = entry->pNext) {
        refs->emplace_back(entry->szRefDes);
        files->emplace_back(entry->szFile);
        components->emplace_back(entry->szComponent);
    }
} catch (const std::bad_alloc&) {
    refs->clear();
}

void TalIbis::getEbdPinListQt(std::vector<std::string>* pins, std::vector<std::string>* signals) const
try {
    pins->clear();
    signals->clear();
    for (const EBDPIN* pin : PinsOf(findBoard())) {
        pins->emplace_back(pin->szPin);
        signals->emplace_back(pin->szSignal);
    }
} catch (const std::bad_alloc&) {
    pins->clear();
    signals->clear();
}

void TalIbis::getEbdNodeList(const char* path, TalIbisListQueryData& list) const
{
    answerQuery(list, [&] {
        if (const EBDPATH* const found = FindPath(findBoard(), path); found != nullptr) {
            CollectNodes(found->pHead, [&](const std::string& node) { insertRow(list, node); });
        }
    });
}

void TalIbis::getEbdNodeListQt(const char* path, std::vector<std::string>* nodes) const
try {
    nodes->clear();
    if (const EBDPATH* const found = FindPath(findBoard(), path); found != nullptr) {
        CollectNodes(found->pHead, [&](std::string node) { nodes->push_back(std::move(node)); });
    }
} catch (const std::bad_alloc&) {
    nodes->clear();
}

void TalIbis::EbdNodeFork(const ebdpathelement* fork, TalIbisListQueryData& list) const
{
    extendQuery(list, [&] {
        if (fork != nullptr && fork->eKind == EBDPATH_FORK) {
            CollectNodes(FORK_Branch(*fork), [&](const std::string& node) { insertRow(list, node); });
        }
    });
}

void TalIbis::EbdNodeForkQt(const ebdpathelement* fork, std::vector<std::string>* nodes) const
try {
    if (fork != nullptr && fork->eKind == EBDPATH_FORK) {
        CollectNodes(FORK_Branch(*fork), [&](std::string node) { nodes->push_back(std::move(node)); });
    }
} catch (const std::bad_alloc&) {
    // The vector keeps what it held: it is not this query's to clear.
}

void TalIbis::getIbisEbdModel(const char* path, TalIbisListQueryData& list) const
{
    answerQuery(list, [&] {
        if (const EBDPATH* const found = FindPath(findBoard(), path); found != nullptr) {
            Flattener(list).walk(found->pHead);
        }
    });
}

void TalIbis::getBoardPins(TalIbisListQueryData& list) const
{
    static constexpr std::size_t width = 24;
    static constexpr std::size_t nodeWidth = 8;
    static constexpr std::size_t dashes = 57;
    const EBDMDL* const board = findBoard();
    const auto pins = PinsOf(board);
    if (pins.empty()) {
        if (pszFileName != nullptr) {
            list.setFormatedError(QueryEmpty, "No pin detected in the IBIS EBD file '%s'", pszFileName);
        }
        return;
    }
    std::unordered_map<std::string_view, const EBDPATH*> paths;
    for (const EBDPATH* path = board->pPaths; path != nullptr; path = path->pNext) {
        paths.try_emplace(PathName(*path), path);
    }
    insertTitle(list, {{NAME_WIDTH, "Name"}, {width, "Signal Name"}, {width, "Node Names"}}, dashes);
    for (const EBDPIN* pin : pins) {
        std::string nodes;
        std::size_t count = 0;
        if (const auto path = paths.find(pin->szPin); path != paths.end()) {
            CollectNodes(path->second->pHead, [&](const std::string& node) {
                nodes += node + " ";
                ++count;
            });
        }
        insertRow(list,
                  {{NAME_WIDTH, pin->szPin}, {width, pin->szSignal}, {nodeWidth * count + width, nodes}});
    }
}
