#include "ibis/source/nuibis_tree.h"

#include "ibis/source/nuibis_list.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>

namespace
{

constexpr std::size_t UNSET = std::string_view::npos;
constexpr std::string_view TABLE = "Table";

// Words and names -----------------------------------------------------------------------------------------

constexpr std::array<std::string_view, 21> KEYWORDS{
    "In",     "Out",       "Info",  "InOut", "Dep",      "Float",      "Integer",
    "String", "Boolean",   "Tap",   "UI",    "Value",    "Range",      "List",
    "Corner", "Increment", "Steps", "Table", "Gaussian", "Dual-Dirac", "DjRj"};

struct LeafName {
    std::string_view sName;
    AMI_LeafType eType;
};

constexpr std::array<LeafName, 7> LEAF_NAMES{{
    {"Usage", AMI_LEAF_USAGE},
    {"Type", AMI_LEAF_TYPE},
    {"Format", AMI_LEAF_FORMAT},
    {"Default", AMI_LEAF_DEFAULT},
    {"Description", AMI_LEAF_DESCRIPTION},
    {"Labels", AMI_LEAF_LABELS},
    {"List_Tip", AMI_LEAF_LIST_TIP},
}};

std::string_view TrimEnd(std::string_view text)
{
    while (!text.empty() && CMN_IsSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

// Numbers -------------------------------------------------------------------------------------------------

// As strtol with base 10 takes the whole of it: white space ahead and a sign are allowed.
bool IsPlainInteger(std::string_view text)
{
    CMN_SkipSpace(text);
    if (text.size() > 1 && text.front() == '+' && CMN_IsDigit(text[1])) {
        text.remove_prefix(1);
    }
    long value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

bool IsNumber(std::string_view text, double* value)
{
    return !text.empty() && CMN_ReadDouble(text, value) == text.size();
}

// "1e3" is a whole number, "1e-3" and "1.0e3" are none.
bool IsIntegerWithExponent(std::string_view text)
{
    double value = 0.0;
    if (text.find_first_of(".xX") != UNSET || !IsNumber(text, &value)) {
        return false;
    }
    std::size_t exponent = text.find('e');
    if (exponent == UNSET) {
        exponent = text.find('E');
    }
    return exponent != UNSET && exponent + 1 < text.size() && text[exponent + 1] != '-' && value >= INT_MIN &&
           value <= INT_MAX;
}

// Growing arrays ------------------------------------------------------------------------------------------

// Room for one more element: the capacity is the count rounded up to a power of two, so that it needs no
// field.
template <class T> bool Grow(T*& array, std::int32_t count)
{
    const auto used = static_cast<std::uint32_t>(count);
    return (used & (used - 1)) != 0 || CMN_Realloc(array, std::max<std::size_t>(1, 2 * std::size_t{used}));
}

bool AppendChild(_tagBranchStruct& branch, const AMI_NODE& node)
{
    if (!Grow(branch.pNodes, branch.iNodeCount)) {
        return false;
    }
    branch.pNodes[branch.iNodeCount++] = node;
    return true;
}

void FreeBranch(_tagBranchStruct* branch)
{
    CMN_Release(branch->pszName);
    CMN_Release(branch->pNodes);
    CMN_Free(branch);
}

void FreeLeaf(_tagLeafStruct* leaf)
{
    for (const AMI_VALUE& value : AMI_Values(*leaf)) {
        CMN_Free(value.pszText);
    }
    CMN_Release(leaf->pValues);
    CMN_Release(leaf->pszName);
    CMN_Free(leaf);
}

void FreeNodes(std::span<AMI_NODE> nodes)
{
    for (const AMI_NODE& node : nodes) {
        if (node.eKind == AMI_BRANCH) {
            FreeBranch(static_cast<_tagBranchStruct*>(node.p));
        } else {
            FreeLeaf(static_cast<_tagLeafStruct*>(node.p));
        }
    }
}

// Branches by name ----------------------------------------------------------------------------------------

// The child branches of those branches that were looked into, the first of a name winning. Reset whenever a
// tree is freed.
class BranchIndex
{
  public:
    const _tagBranchStruct* find(const _tagBranchStruct& branch, std::string_view name)
    try {
        if (mKnown.insert(&branch).second) {
            for (const AMI_NODE& node : AMI_Children(branch)) {
                if (const _tagBranchStruct* child = AMI_AsBranch(node); child != nullptr) {
                    mChildren.try_emplace({&branch, child->pszName}, child);
                }
            }
        }
        const auto found = mChildren.find({&branch, name});
        return found == mChildren.end() ? nullptr : found->second;
    } catch (const std::bad_alloc&) {
        reset();
        return nullptr;
    }
    void reset()
    {
        mKnown.clear();
        mChildren.clear();
    }

  private:
    CMN_Set<const _tagBranchStruct*> mKnown;
    CMN_Map<std::pair<const _tagBranchStruct*, std::string_view>, const _tagBranchStruct*> mChildren;
};

BranchIndex gBranches;

// The flat pass -------------------------------------------------------------------------------------------

// Finds one node after the other. Each "(" and each name raises the depth by one, each ")" lowers it by two,
// so that the level of a node is half the depth behind its name.
class Scanner
{
  public:
    explicit Scanner(std::string_view text) : msText(text) {}

    /// Writes the next node; `found` is false at the end of the text.
    AMI_Result next(AMI_NODE& node, bool& found);
    int position() const { return static_cast<int>(mAt); }

  private:
    struct Name {
        std::size_t uiBegin = 0;
        std::size_t uiEnd = UNSET;  // set by the first white space behind the name
        bool bSeen = false;         // the name has a character
    };
    enum class After { Branch, Leaf, Values, End, Fault };

    bool atEnd() const { return mAt == msText.size(); }
    char current() const { return msText[mAt]; }
    void skipSpace()
    {
        while (!atEnd() && CMN_IsSpace(current())) {
            ++mAt;
        }
    }
    // To the start of a name.
    void open()
    {
        if (!atEnd() && current() == '(') {
            ++mAt;
            ++mDepth;
        }
        skipSpace();
    }
    bool close();
    After readName(Name& name);
    bool isTableFormat(const Name& name) const;
    std::string_view nameText(const Name& name) const;
    AMI_Result makeBranch(const Name& name, AMI_NODE& node);
    AMI_Result makeLeaf(const Name& name, AMI_NODE& node);
    AMI_Result readValues(_tagLeafStruct& leaf);
    void skipQuoted(std::size_t& start, std::size_t& gap);

    std::string_view msText;
    std::size_t mAt = 0;
    int mDepth = 0;
};

// Steps over a ")"; false if nothing is open.
bool Scanner::close()
{
    ++mAt;
    skipSpace();
    if (mDepth < 2) {
        return false;
    }
    mDepth -= 2;
    return true;
}

// "(Format Table ...)" is the branch "Table".
bool Scanner::isTableFormat(const Name& name) const
{
    const std::string_view rest = msText.substr(mAt);
    return rest.size() > TABLE.size() && rest.starts_with(TABLE) &&
           msText.substr(name.uiBegin).starts_with("Format");
}

Scanner::After Scanner::readName(Name& name)
{
    name.uiBegin = mAt;
    while (!atEnd()) {
        if (current() == '(') {
            return After::Branch;
        }
        if (current() == ')') {
            if (name.bSeen) {
                return After::Leaf;
            }
            if (!close()) {
                return After::Fault;
            }
            open();
            name.uiBegin = mAt;
            continue;
        }
        if (CMN_IsSpace(current())) {
            name.uiEnd = std::min(name.uiEnd, mAt);
        } else if (name.uiEnd == UNSET) {
            name.bSeen = true;
        } else if (isTableFormat(name)) {
            name.uiBegin = mAt;
            mAt += TABLE.size();
            name.uiEnd = mAt;
            continue;
        } else {
            return After::Values;
        }
        ++mAt;
    }
    return After::End;
}

std::string_view Scanner::nameText(const Name& name) const
{
    return msText.substr(name.uiBegin, std::min(name.uiEnd, mAt) - name.uiBegin);
}

AMI_Result Scanner::makeBranch(const Name& name, AMI_NODE& node)
{
    ++mDepth;
    _tagBranchStruct* branch = nullptr;
    if (!CMN_Alloc(branch)) {
        return AMI_NO_MEMORY;
    }
    node = {AMI_BRANCH, mDepth / 2, branch};
    branch->pszName = CMN_StrDup(nameText(name));
    return branch->pszName == nullptr ? AMI_NO_MEMORY : AMI_OK;
}

// A format's word and the name of a table's row are the first of their leaf's values.
AMI_Result Scanner::makeLeaf(const Name& name, AMI_NODE& node)
{
    ++mDepth;
    _tagLeafStruct* leaf = nullptr;
    if (!CMN_Alloc(leaf)) {
        return AMI_NO_MEMORY;
    }
    node = {AMI_LEAF, mDepth / 2, leaf};
    const std::string_view text = nameText(name);
    const auto* const row = std::find_if(LEAF_NAMES.begin(), LEAF_NAMES.end(),
                                         [text](const LeafName& known) { return known.sName == text; });
    const bool named = row != LEAF_NAMES.end();
    const bool format = !named && AMI_IsFormat(AMI_KeywordOf(text));
    leaf->eLeafType = named ? row->eType : format ? AMI_LEAF_FORMAT : AMI_LEAF_ROW;
    leaf->pszName = CMN_StrDup(format ? "Format" : text);
    if (leaf->pszName == nullptr || (!named && !AMI_AddValue(*leaf, text))) {
        return AMI_NO_MEMORY;
    }
    return AMI_OK;
}

// The token lies between the quotes, what stands ahead of them is lost, and the closing quote ends it as
// white space would. Without a closing quote the leaf takes the rest of the text and no token.
void Scanner::skipQuoted(std::size_t& start, std::size_t& gap)
{
    start = mAt + 1;
    mAt = std::min(msText.find('"', start), msText.size());
    gap = mAt;
}

AMI_Result Scanner::readValues(_tagLeafStruct& leaf)
{
    std::size_t start = mAt;
    std::size_t gap = UNSET;  // first white space behind the token
    while (!atEnd()) {
        if (current() == '(') {
            return AMI_NESTED_VALUES;
        }
        if (current() == ')') {
            const std::string_view token = TrimEnd(msText.substr(start, std::min(gap, mAt) - start));
            if (!token.empty() && !AMI_AddValue(leaf, token)) {
                return AMI_NO_MEMORY;
            }
            return close() ? AMI_OK : AMI_NOT_OPEN;
        }
        if (CMN_IsSpace(current())) {
            gap = std::min(gap, mAt);
        } else if (gap != UNSET) {
            if (!AMI_AddValue(leaf, TrimEnd(msText.substr(start, gap - start)))) {
                return AMI_NO_MEMORY;
            }
            start = mAt;
            gap = UNSET;
            continue;
        } else if (current() == '"') {
            skipQuoted(start, gap);
        }
        if (!atEnd()) {
            ++mAt;
        }
    }
    return AMI_OK;
}

AMI_Result Scanner::next(AMI_NODE& node, bool& found)
{
    open();
    Name name;
    const After after = readName(name);
    found = after != After::End && after != After::Fault;
    switch (after) {
    case After::Branch:
        return makeBranch(name, node);
    case After::Fault:
        return AMI_NOT_OPEN;
    case After::End:
        return AMI_OK;
    case After::Leaf:
    case After::Values:
        break;
    }
    const AMI_Result result = makeLeaf(name, node);
    return result == AMI_OK ? readValues(*static_cast<_tagLeafStruct*>(node.p)) : result;
}

// The tree ------------------------------------------------------------------------------------------------

// Hangs each node under the last branch that is one level higher; a node with a gap above it is dropped.
// `stack` has room for the branches from the root down.
AMI_Result LinkNodes(std::span<const AMI_NODE> nodes, AMI_NODE* stack)
{
    std::size_t top = 0;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        const AMI_NODE& node = nodes[i];
        if (i == 0 && node.eKind == AMI_BRANCH) {
            stack[0] = node;
            continue;
        }
        while (stack[top].iLevel >= node.iLevel) {
            if (top == 0) {
                return AMI_ABOVE_ROOT;
            }
            --top;
        }
        auto* const parent = static_cast<_tagBranchStruct*>(stack[top].p);
        if (parent == nullptr) {
            return AMI_NO_PARENT;
        }
        if (stack[top].iLevel + 1 != node.iLevel) {
            continue;
        }
        if (!AppendChild(*parent, node)) {
            return AMI_NO_MEMORY;
        }
        if (node.eKind == AMI_BRANCH) {
            stack[++top] = node;
        }
    }
    return AMI_OK;
}

AMI_Result BuildTree(std::string_view text, int opens, _tagTree& tree, int* errorPosition)
{
    if (!CMN_Alloc(tree.pNodes, static_cast<std::size_t>(opens))) {
        return AMI_NO_MEMORY;
    }
    tree.iCount = opens;
    if (const AMI_Result result = AMI_ParseNodes(text, tree.pNodes, &tree.iCount, errorPosition);
        result != AMI_OK) {
        return result;
    }
    const std::span<const AMI_NODE> nodes(tree.pNodes, static_cast<std::size_t>(tree.iCount));
    std::int32_t deepest = 0;
    for (const AMI_NODE& node : nodes) {
        deepest = std::max(deepest, node.iLevel);
    }
    AMI_NODE* stack = nullptr;
    if (!CMN_Alloc(stack, static_cast<std::size_t>(deepest) + 1)) {
        return AMI_NO_MEMORY;
    }
    const AMI_Result result = LinkNodes(nodes, stack);
    CMN_Free(stack);
    return result;
}

}  // namespace

AMI_Keyword AMI_KeywordOf(std::string_view word)
{
    const auto* const row = std::find(KEYWORDS.begin(), KEYWORDS.end(), word);
    return row == KEYWORDS.end() ? AMI_NO_KEYWORD : static_cast<AMI_Keyword>(row - KEYWORDS.begin());
}

bool AMI_IsInteger(std::string_view text)
{
    return IsPlainInteger(text) || IsIntegerWithExponent(text);
}

AMI_ValueKind AMI_ClassifyValue(std::string_view text)
{
    double number = 0.0;
    if (text.empty()) {
        return AMI_KIND_NONE;
    }
    if (text.front() == '"') {
        return text.size() > 1 && text.find('"', 1) == text.size() - 1 ? AMI_KIND_QUOTED : AMI_KIND_NONE;
    }
    if (AMI_IsInteger(text)) {
        return AMI_KIND_INTEGER;
    }
    if (IsNumber(text, &number)) {
        return AMI_KIND_REAL;
    }
    if (text == "True" || text == "False") {
        return AMI_KIND_BOOLEAN;
    }
    return text.find('"') == UNSET ? AMI_KIND_WORD : AMI_KIND_NONE;
}

bool AMI_AddValue(_tagLeafStruct& leaf, std::string_view text)
{
    if (!Grow(leaf.pValues, leaf.iValueCount)) {
        return false;
    }
    char* const copy = CMN_StrDup(text);
    if (copy == nullptr) {
        return false;
    }
    const AMI_ValueKind kind = AMI_ClassifyValue(text);
    leaf.pValues[leaf.iValueCount++] = {copy, kind,
                                        kind == AMI_KIND_WORD ? AMI_KeywordOf(text) : AMI_NO_KEYWORD};
    return true;
}

bool AMI_CountParens(std::string_view text, int* opens, int* errorPosition)
{
    int closes = 0;
    bool inQuotes = false;
    bool afterClose = false;
    *opens = 0;
    *errorPosition = AMI_NO_POSITION;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '(' && !inQuotes) {
            ++*opens;
            afterClose = false;
        } else if (text[i] == ')' && !inQuotes) {
            ++closes;
            afterClose = true;
        } else if (!CMN_IsSpace(text[i])) {
            inQuotes ^= text[i] == '"';
            if (afterClose) {
                *errorPosition = static_cast<int>(i);
                return false;
            }
        }
    }
    return *opens == closes;
}

AMI_Result AMI_ParseNodes(std::string_view text, AMI_NODE* nodes, int* count, int* errorPosition)
{
    Scanner scanner(text);
    const int capacity = *count;
    *count = 0;
    while (*count < capacity) {
        AMI_NODE node{};
        bool found = false;
        const AMI_Result result = scanner.next(node, found);
        if (node.p != nullptr) {
            nodes[(*count)++] = node;
        }
        if (result == AMI_NESTED_VALUES) {
            *errorPosition = scanner.position();
        }
        if (result != AMI_OK || !found) {
            return result;
        }
    }
    return AMI_OK;
}

AMI_Result AMI_ParseTree(std::string_view text, _tagTree** tree, int* errorPosition)
{
    *tree = nullptr;
    *errorPosition = AMI_NO_POSITION;
    if (text.data() == nullptr) {
        return AMI_NO_PARENT;
    }
    if (text.size() >= INT_MAX) {
        return AMI_NO_MEMORY;
    }
    CMN_SkipSpace(text);
    if (!text.starts_with('(')) {
        return AMI_NO_OPENING;
    }
    int opens = 0;
    if (!AMI_CountParens(text, &opens, errorPosition)) {
        return AMI_BAD_PARENTHESES;
    }
    if (!CMN_Alloc(*tree)) {
        return AMI_NO_MEMORY;
    }
    const AMI_Result result = BuildTree(text, opens, **tree, errorPosition);
    if (result != AMI_OK) {
        AMI_FreeTree(tree);
    }
    return result;
}

void AMI_FreeTree(_tagTree** tree)
{
    if (*tree == nullptr) {
        return;
    }
    gBranches.reset();
    FreeNodes({(*tree)->pNodes, static_cast<std::size_t>((*tree)->iCount)});
    CMN_Release((*tree)->pNodes);
    CMN_FreeAndClear(*tree);
}

const _tagBranchStruct* AMI_Root(const _tagTree* tree)
{
    return tree == nullptr || tree->iCount == 0 ? nullptr : AMI_AsBranch(tree->pNodes[0]);
}

std::size_t AMI_FormatTokenCount(const _tagLeafStruct& leaf)
{
    // In the order of the words; 0: all.
    static constexpr std::array<std::size_t, 10> counts{2, 4, 0, 4, 5, 5, 0, 3, 4, 4};
    const AMI_Keyword word = AMI_FirstKeyword(leaf);
    const auto values = static_cast<std::size_t>(leaf.iValueCount);
    const std::size_t count =
        AMI_IsFormat(word) ? counts[static_cast<std::size_t>(word - AMI_VALUE_FORMAT)] : 1;
    return count == 0 ? values : std::min(count, values);
}

const _tagBranchStruct* AMI_FindBranch(const _tagBranchStruct& branch, std::string_view name)
{
    return gBranches.find(branch, name);
}
