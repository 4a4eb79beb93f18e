#include "ibis/source/nuibis_amirules.h"

#include "ibis/source/nuibis_amiformat.h"
#include "ibis/source/nuibis_list.h"

#include <algorithm>
#include <array>

namespace
{

constexpr std::string_view RESERVED = "Reserved_Parameters";
constexpr std::string_view MODEL_SPECIFIC = "Model_Specific";

// State of one file, reset by AMI_CheckFile.
//
// The version keeps what stands behind its first character, so a declared "6.1" leaves ".1": it reads "5.0"
// only for a file that declares none of the versions, which is all that the rules ask.
std::array<char, 4> gszAmiVersion{};
std::size_t guiPairs = 0;  // pairs of equal names and tips that were looked at

bool DeclaresVersion()
{
    return std::string_view(gszAmiVersion.data()) != "5.0";
}

// Branches ------------------------------------------------------------------------------------------------

// A branch of parameters, a parameter, or a group of them, and what its leaves have told so far.
struct Branch {
    // The leaves of one kind; nearly always there is one.
    struct Leaves {
        const _tagLeafStruct* pFirst;
        int iCount;
    };

    Branch(const _tagBranchStruct& record, bool top) : branch(record), bTop(top)
    {
        for (const AMI_NODE& node : AMI_Children(record)) {
            if (const _tagLeafStruct* leaf = AMI_AsLeaf(node); leaf != nullptr) {
                Leaves& leaves = aLeaves[static_cast<std::size_t>(leaf->eLeafType)];
                leaves = {leaves.iCount == 0 ? leaf : leaves.pFirst, leaves.iCount + 1};
            } else {
                bBranches = true;
            }
        }
    }

    const _tagBranchStruct& branch;
    bool bTop;                                            // Reserved_Parameters or Model_Specific itself
    bool bBranches = false;                               // it has branches
    std::array<Leaves, AMI_LEAF_LIST_TIP + 1> aLeaves{};  // by their type
    const char* pszName = branch.pszName;
    bool bType = false;  // a leaf of that kind stands there, good or bad
    bool bFormat = false;
    bool bDefault = false;
    bool bUsage = false;
    AMI_Keyword eType = AMI_NO_KEYWORD;       // base type, of a valid type leaf
    const _tagLeafStruct* pTypes = nullptr;   // last type leaf
    const _tagLeafStruct* pFormat = nullptr;  // last format, if it is a leaf

    bool isParameter() const { return bType || bFormat || bDefault || bUsage; }
};

template <class Visit> void VisitLeaves(const Branch& b, AMI_LeafType kind, Visit visit)
{
    const Branch::Leaves& leaves = b.aLeaves[static_cast<std::size_t>(kind)];
    if (leaves.iCount == 1) {
        visit(*leaves.pFirst);
    } else if (leaves.iCount > 1) {
        for (const AMI_NODE& node : AMI_Children(b.branch)) {
            if (const _tagLeafStruct* leaf = AMI_AsLeaf(node); leaf != nullptr && leaf->eLeafType == kind) {
                visit(*leaf);
            }
        }
    }
}

// The leaves of one kind, with what all kinds have in common: values, and no second one. `word` is the leaf's
// name for messages. True if there is one.
template <class Check> bool ForLeaves(const Branch& b, AMI_LeafType kind, const char* word, Check check)
{
    int count = 0;
    VisitLeaves(b, kind, [&](const _tagLeafStruct& leaf) {
        if (leaf.iValueCount == 0) {
            MSG_Error(4626, word, b.pszName);
        } else {
            check(leaf);
        }
        if (++count == 2) {
            MSG_Error(4640, b.pszName, word);
        }
    });
    return count != 0;
}

void CheckNames(const Branch& b)
{
    if (!b.bBranches) {
        return;
    }
    CMN_Vector<std::string_view> names;
    for (const AMI_NODE& node : AMI_Children(b.branch)) {
        if (const _tagBranchStruct* child = AMI_AsBranch(node); child != nullptr) {
            names.push_back(child->pszName);
        }
    }
    const CMN_Vector<std::size_t> next = LIST_NextEqual(names, std::less<>());
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (names[i].empty()) {
            MSG_Error(4695);
        }
        for (std::size_t j = next[i]; j < names.size() && guiPairs < LIST_PAIR_LIMIT;
             j = next[j], ++guiPairs) {
            MSG_Error(4666, b.pszName, names[i]);
        }
    }
}

void CheckType(Branch& b, const _tagLeafStruct& leaf)
{
    const std::span<const AMI_VALUE> words = AMI_Values(leaf);
    const auto bad = std::find_if(words.begin(), words.end(),
                                  [](const AMI_VALUE& word) { return !AMI_IsType(word.eKeyword); });
    if (bad != words.end()) {
        MSG_Error(4627, "Type", bad->pszText, b.pszName);
        b.eType = AMI_NO_KEYWORD;
        return;
    }
    b.eType = words.front().eKeyword;
    if (words.back().eKeyword == AMI_TAP && !AMI_IsInteger(b.pszName)) {
        MSG_Error(4665, b.pszName);
    }
}

void CheckTypes(Branch& b)
{
    b.bType = ForLeaves(b, AMI_LEAF_TYPE, "Type", [&](const _tagLeafStruct& leaf) { CheckType(b, leaf); });
    VisitLeaves(b, AMI_LEAF_TYPE, [&](const _tagLeafStruct& leaf) { b.pTypes = &leaf; });
}

// A branch that holds the table of a parameter.
bool IsTable(const Branch& b, const _tagBranchStruct& child)
{
    const std::string_view name = child.pszName;
    return !b.bTop && (name == "Format" || name == "Table");
}

// A format is a leaf, or a branch of a table.
void CheckFormats(Branch& b)
{
    int count = 0;
    const auto countFormat = [&] {
        if (++count == 2) {
            MSG_Error(4640, b.pszName, "Format");
        }
    };
    const auto checkLeaf = [&](const _tagLeafStruct& leaf) {
        AMI_CheckFormat(leaf, b.eType, b.pszName);
        b.pFormat = &leaf;
        countFormat();
    };
    if (!b.bBranches) {
        VisitLeaves(b, AMI_LEAF_FORMAT, checkLeaf);
    } else {
        for (const AMI_NODE& node : AMI_Children(b.branch)) {
            const _tagLeafStruct* const leaf = AMI_AsLeaf(node);
            const _tagBranchStruct* const branch = AMI_AsBranch(node);
            if (leaf != nullptr && leaf->eLeafType == AMI_LEAF_FORMAT) {
                checkLeaf(*leaf);
            } else if (branch != nullptr && IsTable(b, *branch)) {
                AMI_CheckTable(*branch, b.pTypes, b.pszName);
                b.pFormat = nullptr;
                countFormat();
            }
        }
    }
    b.bFormat = count != 0;
}

// The usage that depends on other parameters came with the first version after 5.0.
void CheckUsage(const Branch& b, const _tagLeafStruct& leaf)
{
    const AMI_VALUE& word = leaf.pValues[0];
    const AMI_Keyword last = DeclaresVersion() ? AMI_DEP : AMI_INOUT;
    if (word.eKeyword < AMI_IN || word.eKeyword > last) {
        MSG_Error(4627, "Usage", word.pszText, b.pszName);
    }
}

void CheckListTips(const Branch& b)
{
    if (AMI_IsType(b.eType) && b.pFormat != nullptr && AMI_FirstKeyword(*b.pFormat) == AMI_LIST) {
        ForLeaves(b, AMI_LEAF_LIST_TIP, "ListTip", [&](const _tagLeafStruct& leaf) {
            AMI_CheckListTip(leaf, *b.pFormat, b.eType, b.pszName, guiPairs);
        });
    }
}

using BranchStack = CMN_Vector<const _tagBranchStruct*>;

// A parameter has no branches but tables; those of a group are parameters and groups in their turn, left on
// `pending` with the first of them on top.
void CheckOthers(const Branch& b, BranchStack& pending)
{
    if (!b.bBranches) {
        return;
    }
    const std::size_t base = pending.size();
    for (const AMI_NODE& node : AMI_Children(b.branch)) {
        const _tagBranchStruct* const child = AMI_AsBranch(node);
        if (child == nullptr || IsTable(b, *child)) {
            continue;
        }
        if (b.isParameter()) {
            MSG_Error(4628, child->pszName, b.pszName);
        } else {
            pending.push_back(child);
        }
    }
    std::reverse(pending.begin() + static_cast<std::ptrdiff_t>(base), pending.end());
}

void CheckWhole(const Branch& b)
{
    if (!b.isParameter()) {
        return;
    }
    if (!b.bType) {
        MSG_Error(4630, "Type", b.pszName);
    }
    if (!b.bFormat && !b.bDefault) {
        MSG_Error(4641, b.pszName);
    }
}

void CheckOneBranch(Branch b, BranchStack& pending)
{
    const auto nothing = [](const _tagLeafStruct&) {};
    CheckNames(b);
    CheckTypes(b);
    CheckFormats(b);
    b.bDefault = ForLeaves(b, AMI_LEAF_DEFAULT, "Default", nothing);
    b.bUsage =
        ForLeaves(b, AMI_LEAF_USAGE, "Usage", [&](const _tagLeafStruct& leaf) { CheckUsage(b, leaf); });
    ForLeaves(b, AMI_LEAF_DESCRIPTION, "Description", nothing);
    CheckListTips(b);
    CheckOthers(b, pending);
    CheckWhole(b);
}

// A branch of the root and all below it, each ahead of its children.
void CheckBranches(const _tagBranchStruct& top)
{
    BranchStack pending;
    CheckOneBranch({top, true}, pending);
    while (!pending.empty()) {
        const _tagBranchStruct& branch = *pending.back();
        pending.pop_back();
        CheckOneBranch({branch, false}, pending);
    }
}

// The root ------------------------------------------------------------------------------------------------

// The version stands in a default, or behind the word of a value.
void ReadVersion(const _tagBranchStruct& root)
{
    CMN_CopyText(gszAmiVersion, "5.0");
    const _tagBranchStruct* const reserved = AMI_FindBranch(root, RESERVED);
    const _tagBranchStruct* const version =
        reserved == nullptr ? nullptr : AMI_FindBranch(*reserved, "AMI_Version");
    if (version == nullptr) {
        return;
    }
    for (const AMI_NODE& node : AMI_Children(*version)) {
        const _tagLeafStruct* const leaf = AMI_AsLeaf(node);
        const bool value = leaf != nullptr && leaf->eLeafType == AMI_LEAF_FORMAT &&
                           AMI_FirstKeyword(*leaf) == AMI_VALUE_FORMAT;
        if (leaf == nullptr || (leaf->eLeafType != AMI_LEAF_DEFAULT && !value)) {
            continue;
        }
        const int place = value ? 1 : 0;
        const std::string_view text = place < leaf->iValueCount ? leaf->pValues[place].pszText : "";
        if (text == "5.1" || text == "6.0" || text == "6.1") {
            CMN_CopyText(gszAmiVersion, text.substr(1));
        }
    }
}

// What of the root was seen so far.
struct Root {
    const char* pszName;
    bool bReserved = false;
    bool bReservedFirst = false;
    bool bModelSpecific = false;
    int iDescriptions = 0;
};

void CheckRootBranch(const _tagBranchStruct& branch, Root& root)
{
    const std::string_view name = branch.pszName;
    if (name != RESERVED && name != MODEL_SPECIFIC) {
        MSG_Error(4623, name);
        return;
    }
    bool& seen = name == RESERVED ? root.bReserved : root.bModelSpecific;
    if (seen) {
        MSG_Error(4642, name);
    }
    seen = true;
    root.bReservedFirst |= name == RESERVED && !root.bModelSpecific;
    CheckBranches(branch);
}

void CheckRootLeaf(const _tagLeafStruct& leaf, Root& root)
{
    if (leaf.eLeafType != AMI_LEAF_DESCRIPTION) {
        MSG_Error(4644, root.pszName, leaf.pszName);
        return;
    }
    if (leaf.iValueCount == 0) {
        MSG_Error(4626, leaf.pszName, root.pszName);
    }
    if (++root.iDescriptions == 2) {
        MSG_Error(4640, root.pszName, leaf.pszName);
    }
}

void CheckRequired(const Root& root, ibis_file_type type)
{
    if (type == IBIS_FILE_PARAM) {
        if (root.bReserved) {
            MSG_Error(4685);
        }
        if (!root.bModelSpecific) {
            MSG_Error(4622, MODEL_SPECIFIC);
        }
        return;
    }
    if (!root.bReserved) {
        MSG_Error(4622, RESERVED);
    }
    if (DeclaresVersion() && !root.bReservedFirst) {
        MSG_Error(4643);
    }
}

}  // namespace

void AMI_CheckFile(const _tagBranchStruct* branch, ibis_file_type type)
try {
    if (branch == nullptr) {
        MSG_Error(4684);
        return;
    }
    guiPairs = 0;
    ReadVersion(*branch);
    Root root{branch->pszName};
    if (branch->pszName[0] == '\0') {
        MSG_Error(4682);
    }
    for (const AMI_NODE& node : AMI_Children(*branch)) {
        if (const _tagBranchStruct* child = AMI_AsBranch(node); child != nullptr) {
            CheckRootBranch(*child, root);
        } else {
            CheckRootLeaf(*AMI_AsLeaf(node), root);
        }
    }
    CheckRequired(root, type);
} catch (const std::bad_alloc&) {
    // Told by the allocation itself, as an error: the tree does not outlive it.
}
