#include "ibis/source/nuibis_tree.h"

#include "ibis/source/nuibis_list.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <limits>

namespace
{

constexpr std::size_t UNSET = std::string_view::npos;

// Words and names -----------------------------------------------------------------------------------------

struct Word {
    std::string_view sText;
    AMI_Keyword eKeyword;
    AMI_LeafType eLeafType;  // of a leaf of that name
};

constexpr std::array<Word, AMI_WORD_COUNT> WORDS{{
    {"In", AMI_IN, AMI_LEAF_ROW},
    {"Out", AMI_OUT, AMI_LEAF_ROW},
    {"Info", AMI_INFO, AMI_LEAF_ROW},
    {"InOut", AMI_INOUT, AMI_LEAF_ROW},
    {"Dep", AMI_DEP, AMI_LEAF_ROW},
    {"Float", AMI_FLOAT, AMI_LEAF_ROW},
    {"Integer", AMI_INTEGER, AMI_LEAF_ROW},
    {"String", AMI_STRING, AMI_LEAF_ROW},
    {"Boolean", AMI_BOOLEAN, AMI_LEAF_ROW},
    {"Tap", AMI_TAP, AMI_LEAF_ROW},
    {"UI", AMI_UI, AMI_LEAF_ROW},
    {"Value", AMI_VALUE_FORMAT, AMI_LEAF_FORMAT},
    {"Range", AMI_RANGE, AMI_LEAF_FORMAT},
    {"List", AMI_LIST, AMI_LEAF_FORMAT},
    {"Corner", AMI_CORNER, AMI_LEAF_FORMAT},
    {"Increment", AMI_INCREMENT, AMI_LEAF_FORMAT},
    {"Steps", AMI_STEPS, AMI_LEAF_FORMAT},
    {"Table", AMI_TABLE_FORMAT, AMI_LEAF_FORMAT},
    {"Gaussian", AMI_GAUSSIAN, AMI_LEAF_FORMAT},
    {"Dual-Dirac", AMI_DUAL_DIRAC, AMI_LEAF_FORMAT},
    {"DjRj", AMI_DJRJ, AMI_LEAF_FORMAT},
    {"Usage", AMI_NO_KEYWORD, AMI_LEAF_USAGE},
    {"Type", AMI_NO_KEYWORD, AMI_LEAF_TYPE},
    {"Format", AMI_NO_KEYWORD, AMI_LEAF_FORMAT},
    {"Default", AMI_NO_KEYWORD, AMI_LEAF_DEFAULT},
    {"Description", AMI_NO_KEYWORD, AMI_LEAF_DESCRIPTION},
    {"Labels", AMI_NO_KEYWORD, AMI_LEAF_LABELS},
    {"List_Tip", AMI_NO_KEYWORD, AMI_LEAF_LIST_TIP},
}};

// Nearly every text of a file is looked up here. No two words share both length and first letter.
class WordPlaces
{
  public:
    constexpr WordPlaces()
    {
        for (std::size_t i = 0; i < WORDS.size(); ++i) {
            std::uint8_t& place = mPlaces[slotOf(WORDS[i].sText)];
            mIsUnique = mIsUnique && place == 0;
            place = static_cast<std::uint8_t>(i + 1);
        }
    }
    constexpr bool isUnique() const { return mIsUnique; }
    constexpr const Word* find(std::string_view text) const
    {
        if (text.empty() || text.size() > LONGEST || text.front() < 'A' || text.front() > 'Z') {
            return nullptr;
        }
        const std::size_t place = mPlaces[slotOf(text)];
        return place != 0 && WORDS[place - 1].sText == text ? &WORDS[place - 1] : nullptr;
    }

  private:
    static constexpr std::size_t LETTERS = 26;
    static constexpr std::size_t LONGEST = std::string_view("Description").size();

    static constexpr std::size_t slotOf(std::string_view text)
    {
        return text.size() * LETTERS + static_cast<std::size_t>(text.front() - 'A');
    }

    std::array<std::uint8_t, (LONGEST + 1) * LETTERS> mPlaces{};  // from 1; 0: no such word
    bool mIsUnique = true;
};

constexpr WordPlaces PLACES;
static_assert(PLACES.isUnique());

constexpr std::string_view TABLE = "Table";
constexpr const Word& FORMAT = *PLACES.find("Format");

// Characters that end a name or a value, or begin a quoted one.
enum CharClass : std::uint8_t {
    CHAR_SPACE = 1,
    CHAR_PAREN = 2,
    CHAR_QUOTE = 4,
};

constexpr auto CLASSES = [] {
    std::array<std::uint8_t, 256> classes{};
    for (const unsigned char c : {' ', '\t', '\n', '\v', '\f', '\r'}) {
        classes[c] = CHAR_SPACE;
    }
    classes['('] = classes[')'] = CHAR_PAREN;
    classes['"'] = CHAR_QUOTE;
    return classes;
}();

// Place of the next character of these classes, or the end.
inline std::size_t FindClass(std::string_view text, std::size_t at, unsigned classes)
{
    while (at < text.size() && (CLASSES[static_cast<unsigned char>(text[at])] & classes) == 0) {
        ++at;
    }
    return at;
}

std::string_view TrimEnd(std::string_view text)
{
    while (!text.empty() && CMN_IsSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

// Numbers -------------------------------------------------------------------------------------------------

// Whether a number may begin so: by a digit, a sign, a point, or as "inf" and "nan" do.
bool MayBeNumber(std::string_view text)
{
    static constexpr std::string_view others = "+-.iInN";
    CMN_SkipSpace(text);
    return !text.empty() && (CMN_IsDigit(text.front()) || others.find(text.front()) != UNSET);
}

// As strtol with base 10 takes the whole of it: white space ahead and a sign are allowed.
bool IsPlainInteger(std::string_view text)
{
    constexpr std::size_t anyDigits = std::numeric_limits<long>::digits10;
    CMN_SkipSpace(text);
    const std::string_view digits = text.substr(text.starts_with('-') || text.starts_with('+') ? 1 : 0);
    if (digits.empty() || !std::all_of(digits.begin(), digits.end(), CMN_IsDigit)) {
        return false;
    }
    text.remove_prefix(text.front() == '+' ? 1 : 0);
    long value = 0;
    return digits.size() <= anyDigits ||
           std::from_chars(text.data(), text.data() + text.size(), value).ec == std::errc();
}

// "1e3" is a whole number, "1e-3" and "1.0e3" are none.
bool IsIntegerWithExponent(std::string_view text, double value)
{
    if (std::any_of(text.begin(), text.end(), [](char c) { return c == '.' || c == 'x' || c == 'X'; })) {
        return false;
    }
    std::size_t exponent = text.find('e');
    if (exponent == UNSET) {
        exponent = text.find('E');
    }
    return exponent != UNSET && exponent + 1 < text.size() && text[exponent + 1] != '-' && value >= INT_MIN &&
           value <= INT_MAX;
}

// AMI_KIND_NONE for what is no number.
AMI_ValueKind NumberKind(std::string_view text)
{
    if (!MayBeNumber(text)) {
        return AMI_KIND_NONE;
    }
    if (IsPlainInteger(text)) {
        return AMI_KIND_INTEGER;
    }
    double value = 0.0;
    if (CMN_ReadDouble(text, &value) != text.size()) {
        return AMI_KIND_NONE;
    }
    return IsIntegerWithExponent(text, value) ? AMI_KIND_INTEGER : AMI_KIND_REAL;
}

// Texts and values of a tree ------------------------------------------------------------------------------

// A text for as long as the tree lives; null when memory is out. `word` is the word that it is, or null.
char* KeepText(_tagTree& tree, std::string_view text, const Word* word)
{
    if (word == nullptr) {
        return BLOCK_CopyText(tree.texts, text);
    }
    char*& known = tree.aWords[static_cast<std::size_t>(word - WORDS.data())];
    if (known == nullptr) {
        known = BLOCK_CopyText(tree.texts, word->sText);
    }
    return known;
}

bool AppendValue(_tagTree& tree, _tagLeafStruct& leaf, const AMI_VALUE& value)
{
    if (value.pszText == nullptr ||
        !BLOCK_Grow(tree.records, leaf.pValues, static_cast<std::size_t>(leaf.iValueCount))) {
        return false;
    }
    leaf.pValues[leaf.iValueCount++] = value;
    return true;
}

// The value that a text, kept as `kept`, is. No word is a number.
AMI_VALUE ValueOf(std::string_view text, const Word* word, char* kept)
{
    return {kept, word == nullptr ? AMI_ClassifyValue(text) : AMI_KIND_WORD,
            word == nullptr ? AMI_NO_KEYWORD : word->eKeyword};
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
    Scanner(std::string_view text, _tagTree& tree) : msText(text), mTree(tree) {}

    /// Writes the next node; `found` is false at the end of the text.
    AMI_Result next(AMI_NODE& node, bool& found);
    int position() const { return static_cast<int>(mAt); }

  private:
    enum class After { Branch, Leaf, End, Fault };

    bool atEnd() const { return mAt == msText.size(); }
    char current() const { return msText[mAt]; }
    std::string_view textFrom(std::size_t begin) const { return msText.substr(begin, mAt - begin); }
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
    After readName(std::string_view& name);
    bool isTableFormat(std::string_view name) const;
    AMI_Result makeBranch(std::string_view name, AMI_NODE& node);
    AMI_Result makeLeaf(std::string_view name, AMI_NODE& node);
    AMI_Result readValues(_tagLeafStruct& leaf);
    std::string_view readValue();

    std::string_view msText;
    _tagTree& mTree;
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
bool Scanner::isTableFormat(std::string_view name) const
{
    const std::string_view rest = msText.substr(mAt);
    return rest.size() > TABLE.size() && rest.starts_with(TABLE) && name.starts_with(FORMAT.sText);
}

// Closes the branches that end here, and reads a name with the white space behind it.
Scanner::After Scanner::readName(std::string_view& name)
{
    while (!atEnd() && current() == ')') {
        if (!close()) {
            return After::Fault;
        }
        open();
    }
    const std::size_t begin = mAt;
    mAt = FindClass(msText, mAt, CHAR_SPACE | CHAR_PAREN);
    name = textFrom(begin);
    skipSpace();
    if (isTableFormat(name)) {
        name = msText.substr(mAt, TABLE.size());
        mAt += TABLE.size();
        skipSpace();
    }
    return atEnd() ? After::End : current() == '(' ? After::Branch : After::Leaf;
}

AMI_Result Scanner::makeBranch(std::string_view name, AMI_NODE& node)
{
    ++mDepth;
    _tagBranchStruct* branch = nullptr;
    if (!BLOCK_Take(mTree.records, branch)) {
        return AMI_NO_MEMORY;
    }
    node = {AMI_BRANCH, mDepth / 2, branch};
    branch->pszName = KeepText(mTree, name, PLACES.find(name));
    return branch->pszName == nullptr ? AMI_NO_MEMORY : AMI_OK;
}

// A format's word and the name of a table's row are the first of their leaf's values.
AMI_Result Scanner::makeLeaf(std::string_view name, AMI_NODE& node)
{
    ++mDepth;
    _tagLeafStruct* leaf = nullptr;
    if (!BLOCK_Take(mTree.records, leaf)) {
        return AMI_NO_MEMORY;
    }
    node = {AMI_LEAF, mDepth / 2, leaf};
    const Word* const word = PLACES.find(name);
    char* const kept = KeepText(mTree, name, word);
    leaf->eLeafType = word == nullptr ? AMI_LEAF_ROW : word->eLeafType;
    const bool isFormat = leaf->eLeafType == AMI_LEAF_FORMAT;
    leaf->pszName = isFormat ? KeepText(mTree, FORMAT.sText, &FORMAT) : kept;
    if (leaf->pszName == nullptr) {
        return AMI_NO_MEMORY;
    }
    const bool isValue = isFormat ? word != &FORMAT : leaf->eLeafType == AMI_LEAF_ROW;
    return !isValue || AppendValue(mTree, *leaf, ValueOf(name, word, kept)) ? AMI_OK : AMI_NO_MEMORY;
}

// A value runs to white space or a parenthesis, or lies between quotes; what stands ahead of them is lost,
// and the closing quote ends it as white space would.
std::string_view Scanner::readValue()
{
    const std::size_t begin = mAt;
    mAt = FindClass(msText, mAt, CHAR_SPACE | CHAR_PAREN | CHAR_QUOTE);
    if (atEnd() || current() != '"') {
        return textFrom(begin);
    }
    const std::size_t quoted = ++mAt;
    mAt = std::min(msText.find('"', mAt), msText.size());
    const std::string_view value = TrimEnd(textFrom(quoted));
    mAt += atEnd() ? 0 : 1;
    return value;
}

// A leaf that does not end takes the rest of the text, but not the value that it was at. Of empty values in
// quotes the last one is no value.
AMI_Result Scanner::readValues(_tagLeafStruct& leaf)
{
    for (;;) {
        const std::string_view text = readValue();
        skipSpace();
        if (atEnd()) {
            return AMI_OK;
        }
        if (current() == '(') {
            return AMI_NESTED_VALUES;
        }
        const bool isLast = current() == ')';
        if ((!isLast || !text.empty()) && !AMI_AddValue(mTree, leaf, text)) {
            return AMI_NO_MEMORY;
        }
        if (isLast) {
            return close() ? AMI_OK : AMI_NOT_OPEN;
        }
    }
}

AMI_Result Scanner::next(AMI_NODE& node, bool& found)
{
    open();
    std::string_view name;
    const After after = readName(name);
    found = after == After::Branch || after == After::Leaf;
    switch (after) {
    case After::Branch:
        return makeBranch(name, node);
    case After::Leaf:
        break;
    case After::Fault:
        return AMI_NOT_OPEN;
    case After::End:
        return AMI_OK;
    }
    const AMI_Result result = makeLeaf(name, node);
    return result == AMI_OK ? readValues(*static_cast<_tagLeafStruct*>(node.p)) : result;
}

// The tree ------------------------------------------------------------------------------------------------

// Hangs each node, in text order, under the last branch that is one level higher; a node with a gap above it
// is dropped. What a branch holds is known when it ends. Children that stand side by side among the nodes of
// the tree, as the leaves of a parameter do, are used there; other branches get an array.
class Linker
{
  public:
    explicit Linker(_tagTree& tree) : mTree(tree) {}

    /// The last node of the tree.
    AMI_Result add();
    AMI_Result finish();

  private:
    struct Branch {
        const AMI_NODE* pNode;
        std::size_t uiFirst;  // of its children, among `mChildren`
    };

    bool close();

    _tagTree& mTree;
    CMN_Vector<Branch> mOpen;               // from the root down
    CMN_Vector<const AMI_NODE*> mChildren;  // of all open branches
};

AMI_Result Linker::add()
{
    const AMI_NODE& node = mTree.pNodes[mTree.iCount - 1];
    if (mOpen.empty() && node.eKind == AMI_BRANCH) {
        mOpen.push_back({&node, 0});
        return AMI_OK;
    }
    if (mOpen.empty()) {
        return AMI_NO_PARENT;
    }
    while (mOpen.back().pNode->iLevel >= node.iLevel) {
        if (mOpen.size() == 1) {
            return AMI_ABOVE_ROOT;
        }
        if (!close()) {
            return AMI_NO_MEMORY;
        }
    }
    if (mOpen.back().pNode->iLevel + 1 != node.iLevel) {
        return AMI_OK;
    }
    mChildren.push_back(&node);
    if (node.eKind == AMI_BRANCH) {
        mOpen.push_back({&node, mChildren.size()});
    }
    return AMI_OK;
}

AMI_Result Linker::finish()
{
    while (!mOpen.empty()) {
        if (!close()) {
            return AMI_NO_MEMORY;
        }
    }
    return AMI_OK;
}

bool Linker::close()
{
    const Branch last = mOpen.back();
    auto& branch = *static_cast<_tagBranchStruct*>(last.pNode->p);
    const std::span children = std::span(mChildren).subspan(last.uiFirst);
    const auto count = static_cast<std::ptrdiff_t>(children.size());
    if (count != 0 && children.back() - children.front() == count - 1) {
        branch.pNodes = mTree.pNodes + (children.front() - mTree.pNodes);
    } else if (count != 0) {
        if (!BLOCK_Take(mTree.records, branch.pNodes, children.size())) {
            return false;
        }
        std::transform(children.begin(), children.end(), branch.pNodes,
                       [](const AMI_NODE* child) { return *child; });
    }
    branch.iNodeCount = static_cast<std::int32_t>(count);
    mChildren.resize(last.uiFirst);
    mOpen.pop_back();
    return true;
}

}  // namespace

bool AMI_IsInteger(std::string_view text)
{
    return NumberKind(text) == AMI_KIND_INTEGER;
}

AMI_ValueKind AMI_ClassifyValue(std::string_view text)
{
    if (text.empty()) {
        return AMI_KIND_NONE;
    }
    if (text.front() == '"') {
        return text.size() > 1 && text.find('"', 1) == text.size() - 1 ? AMI_KIND_QUOTED : AMI_KIND_NONE;
    }
    if (const AMI_ValueKind kind = NumberKind(text); kind != AMI_KIND_NONE) {
        return kind;
    }
    if (text == "True" || text == "False") {
        return AMI_KIND_BOOLEAN;
    }
    return text.find('"') == UNSET ? AMI_KIND_WORD : AMI_KIND_NONE;
}

bool AMI_AddValue(_tagTree& tree, _tagLeafStruct& leaf, std::string_view text)
{
    const Word* const word = PLACES.find(text);
    return AppendValue(tree, leaf, ValueOf(text, word, KeepText(tree, text, word)));
}

bool AMI_CountParens(std::string_view text, int* opens, int* errorPosition)
{
    int closes = 0;
    *opens = 0;
    *errorPosition = AMI_NO_POSITION;
    for (std::size_t i = 0; (i = FindClass(text, i, CHAR_PAREN | CHAR_QUOTE)) < text.size(); ++i) {
        if (text[i] == '(') {
            ++*opens;
        } else if (text[i] == '"') {
            i = std::min(text.find('"', i + 1), text.size() - 1);
        } else {
            ++closes;
            std::size_t next = i + 1;
            while (next < text.size() && CMN_IsSpace(text[next])) {
                ++next;
            }
            if (next < text.size() && text[next] != '(' && text[next] != ')') {
                *errorPosition = static_cast<int>(next);
                return false;
            }
            i = next - 1;
        }
    }
    return *opens == closes;
}

AMI_Result AMI_ParseNodes(std::string_view text, _tagTree& tree, int capacity, int* errorPosition)
try {
    Scanner scanner(text, tree);
    Linker linker(tree);
    AMI_Result linked = AMI_OK;
    bool found = true;
    while (found && tree.iCount < capacity) {
        AMI_NODE node{};
        const AMI_Result result = scanner.next(node, found);
        if (node.p != nullptr) {
            tree.pNodes[tree.iCount++] = node;
            linked = linked == AMI_OK ? linker.add() : linked;
        }
        if (result == AMI_NESTED_VALUES) {
            *errorPosition = scanner.position();
        }
        if (result != AMI_OK) {
            return result;
        }
    }
    return linked == AMI_OK ? linker.finish() : linked;
} catch (const std::bad_alloc&) {
    return AMI_NO_MEMORY;
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
    const AMI_Result result = CMN_Alloc((*tree)->pNodes, static_cast<std::size_t>(opens))
                                  ? AMI_ParseNodes(text, **tree, opens, errorPosition)
                                  : AMI_NO_MEMORY;
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
    BLOCK_Free((*tree)->records);
    BLOCK_Free((*tree)->texts);
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
