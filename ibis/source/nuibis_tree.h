// The syntax tree of a parameter file: one nested parenthesised list of branches, "(name (...) (...))", and
// leaves, "(name value value)". Whoever reads parameters reads this tree.
//
// Comments are gone and lines are joined when a text gets here. A name runs to the first white space or
// parenthesis; a "(" behind it makes a branch, a value or ")" a leaf. A value is a run of characters that are
// not blank, or text in double quotes.

#pragma once

#include "ibis/source/nuibis_block.h"

/// Kinds of values, by their text.
enum AMI_ValueKind : std::int32_t {
    AMI_KIND_NONE = -1,    ///< no text, or a stray double quote
    AMI_KIND_QUOTED = 0,   ///< text within its double quotes; the tree holds texts without them
    AMI_KIND_INTEGER = 1,  ///< a whole number, also as "1e3"
    AMI_KIND_BOOLEAN = 2,  ///< "True" or "False"
    AMI_KIND_REAL = 3,     ///< any other number of the C library; no scale letter makes one
    AMI_KIND_WORD = 4,
};

/// Codes of the words that have a meaning of their own.
enum AMI_Keyword : std::int32_t {
    AMI_NO_KEYWORD = -1,
    // usages
    AMI_IN = 0,
    AMI_OUT = 1,
    AMI_INFO = 2,
    AMI_INOUT = 3,
    AMI_DEP = 4,
    // types
    AMI_FLOAT = 5,
    AMI_INTEGER = 6,
    AMI_STRING = 7,
    AMI_BOOLEAN = 8,
    AMI_TAP = 9,
    AMI_UI = 10,
    // formats
    AMI_VALUE_FORMAT = 11,
    AMI_RANGE = 12,
    AMI_LIST = 13,
    AMI_CORNER = 14,
    AMI_INCREMENT = 15,
    AMI_STEPS = 16,
    AMI_TABLE_FORMAT = 17,
    AMI_GAUSSIAN = 18,
    AMI_DUAL_DIRAC = 19,
    AMI_DJRJ = 20,
};

constexpr bool AMI_IsUsage(AMI_Keyword word)
{
    return word >= AMI_IN && word <= AMI_DEP;
}
constexpr bool AMI_IsType(AMI_Keyword word)
{
    return word >= AMI_FLOAT && word <= AMI_UI;
}
constexpr bool AMI_IsFormat(AMI_Keyword word)
{
    return word >= AMI_VALUE_FORMAT && word <= AMI_DJRJ;
}

/// What a leaf is, by its name.
enum AMI_LeafType : std::int32_t {
    AMI_LEAF_USAGE = 1,
    AMI_LEAF_TYPE = 2,
    AMI_LEAF_FORMAT = 3,  ///< "Format", or the word of a format, which then stands first among the values
    AMI_LEAF_DEFAULT = 4,
    AMI_LEAF_DESCRIPTION = 5,
    AMI_LEAF_LABELS = 6,
    AMI_LEAF_ROW = 7,  ///< any other name: a row of a table, its name standing first among the values
    AMI_LEAF_LIST_TIP = 9,
};

/// How many words have a meaning of their own: those with a code, and the names of leaves.
inline constexpr std::size_t AMI_WORD_COUNT = 28;

enum AMI_NodeKind : std::uint32_t {
    AMI_BRANCH = 0,
    AMI_LEAF = 1,
};

struct AMI_VALUE {
    char* pszText;  ///< never null; quotes removed
    AMI_ValueKind eValueKind;
    AMI_Keyword eKeyword;
};

/// A branch or a leaf. Copies of a node share its record.
struct AMI_NODE {
    AMI_NodeKind eKind;
    std::int32_t iLevel;  ///< depth; the root has 1
    void* p;              ///< `_tagBranchStruct` or `_tagLeafStruct`
};

struct _tagBranchStruct {
    char* pszName;
    /// Children, in text order; within the tree's nodes where they stand there side by side.
    AMI_NODE* pNodes;
    std::int32_t iNodeCount;
};

struct _tagLeafStruct {
    char* pszName;
    AMI_VALUE* pValues;
    std::int32_t iValueCount;
    AMI_LeafType eLeafType;
};

/// Owns its nodes and all that they refer to.
struct _tagTree {
    AMI_NODE* pNodes;     ///< all nodes of the file, in text order; the first is the root
    std::int32_t iCount;  ///< nodes in use
    BLOCK_Room records;   ///< branches, leaves, their values and children
    BLOCK_Room texts;     ///< names and values, each kept once for a word with a meaning of its own
    std::array<char*, AMI_WORD_COUNT> aWords;  ///< those words, as far as they occurred
};

/// How a parse ended.
enum AMI_Result : int {
    AMI_OK = 0,
    AMI_BAD_PARENTHESES = 1,  ///< unbalanced (no position), or a token right behind a ")" (at its position)
    AMI_NO_OPENING = 2,       ///< the text does not begin with "("
    AMI_NO_PARENT = 3,        ///< no text, or a node that belongs to no branch
    AMI_NO_MEMORY = 4,
    AMI_ABOVE_ROOT = 5,     ///< a second root
    AMI_NOT_OPEN = 6,       ///< a ")" with nothing open
    AMI_NESTED_VALUES = 9,  ///< a "(" among the values of a leaf (at its position)
};

/// Position of a parse that has none to tell.
inline constexpr int AMI_NO_POSITION = -1;

/// Builds the tree of a text in time proportional to it, whatever it holds. The position of a fault counts
/// from the first "(" of the text.
AMI_Result AMI_ParseTree(std::string_view text, _tagTree** tree, int* errorPosition);
/// The one pass over the text, which begins at the first "(": all nodes, as many as the tree has room for,
/// each hung under its branch. A fault of the text is told ahead of one of the tree, wherever they stand.
AMI_Result AMI_ParseNodes(std::string_view text, _tagTree& tree, int capacity, int* errorPosition);
/// The check of the parentheses alone. Gives the number of "(", those within quotes left out; false with the
/// position of a token right behind a ")", or with no position if the parentheses are unbalanced.
bool AMI_CountParens(std::string_view text, int* opens, int* errorPosition);
/// Appends a value to a leaf of a tree; false when memory is out. Values are added leaf by leaf: one that is
/// not the last takes new room for all that it has.
bool AMI_AddValue(_tagTree& tree, _tagLeafStruct& leaf, std::string_view text);
/// Kind of a text that still has its quotes, if any.
AMI_ValueKind AMI_ClassifyValue(std::string_view text);
/// Whether a text is a whole number.
bool AMI_IsInteger(std::string_view text);
/// Releases a tree and clears the pointer; null is fine.
void AMI_FreeTree(_tagTree** tree);

/// The record of a node, or null if the node is of the other kind.
inline const _tagBranchStruct* AMI_AsBranch(const AMI_NODE& node)
{
    return node.eKind == AMI_BRANCH ? static_cast<const _tagBranchStruct*>(node.p) : nullptr;
}
inline const _tagLeafStruct* AMI_AsLeaf(const AMI_NODE& node)
{
    return node.eKind == AMI_LEAF ? static_cast<const _tagLeafStruct*>(node.p) : nullptr;
}
/// The root branch of a tree; null without one.
const _tagBranchStruct* AMI_Root(const _tagTree* tree);

inline std::span<const AMI_NODE> AMI_Children(const _tagBranchStruct& branch)
{
    return {branch.pNodes, static_cast<std::size_t>(branch.iNodeCount)};
}
inline std::span<const AMI_VALUE> AMI_Values(const _tagLeafStruct& leaf)
{
    return {leaf.pValues, static_cast<std::size_t>(leaf.iValueCount)};
}
/// The code of a leaf's first value, or `AMI_NO_KEYWORD` if it has none.
inline AMI_Keyword AMI_FirstKeyword(const _tagLeafStruct& leaf)
{
    return leaf.iValueCount == 0 ? AMI_NO_KEYWORD : leaf.pValues[0].eKeyword;
}
/// How many values of a format leaf belong to its format, the word included: as many as the format takes, or
/// all of a list or table, but no more than there are. 1 at most for any other word.
std::size_t AMI_FormatTokenCount(const _tagLeafStruct& leaf);
/// The first child branch of that name, or null. No walk: a branch is indexed when it is first looked into.
const _tagBranchStruct* AMI_FindBranch(const _tagBranchStruct& branch, std::string_view name);
