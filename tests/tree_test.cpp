#include "ibis/source/nuibis_tree.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

struct Parse {
    AMI_Result eResult;
    int iPosition;
    _tagTree* pTree = nullptr;

    explicit Parse(std::string_view text) { eResult = AMI_ParseTree(text, &pTree, &iPosition); }
    ~Parse() { AMI_FreeTree(&pTree); }
    Parse(const Parse&) = delete;
    Parse& operator=(const Parse&) = delete;
};

// "name:type(text/kind text/kind:keyword)"
std::string LeafText(const _tagLeafStruct& leaf)
{
    std::string text = leaf.pszName + (":" + std::to_string(leaf.eLeafType)) + "(";
    for (const AMI_VALUE& value : AMI_Values(leaf)) {
        text += (text.back() == '(' ? "" : " ") + std::string(value.pszText) + "/" +
                std::to_string(value.eValueKind);
        text += value.eKeyword == AMI_NO_KEYWORD ? "" : ":" + std::to_string(value.eKeyword);
    }
    return text + ")";
}

// "name{child child}"
std::string BranchText(const _tagBranchStruct& branch)
{
    std::string text = branch.pszName + std::string("{");
    for (const AMI_NODE& node : AMI_Children(branch)) {
        text += text.back() == '{' ? "" : " ";
        text += node.eKind == AMI_BRANCH ? BranchText(*AMI_AsBranch(node)) : LeafText(*AMI_AsLeaf(node));
    }
    return text + "}";
}

std::string TreeText(std::string_view text)
{
    const Parse parse(text);
    const _tagBranchStruct* const root = AMI_Root(parse.pTree);
    return root == nullptr ? "result " + std::to_string(parse.eResult) : BranchText(*root);
}

std::string Repeat(std::string_view part, int times)
{
    std::string text;
    for (int i = 0; i < times; ++i) {
        text += part;
    }
    return text;
}

}  // namespace

TEST(AmiTree, FaultsHaveResultAndPosition)
{
    const struct {
        const char* pszText;
        AMI_Result eResult;
        int iPosition;
    } rows[] = {
        {"", AMI_NO_OPENING, -1},
        {" \t x(a)", AMI_NO_OPENING, -1},
        {"(a (b 1)", AMI_BAD_PARENTHESES, -1},
        {"(a (b 1)))", AMI_BAD_PARENTHESES, -1},
        {"(a (b \")\"", AMI_BAD_PARENTHESES, -1},
        {"(a (b 1) x)", AMI_BAD_PARENTHESES, 9},
        {"  (a (b 1) x)", AMI_BAD_PARENTHESES, 9},
        {"(a (b 1)\"x\")", AMI_BAD_PARENTHESES, 8},
        {"(root)", AMI_NO_PARENT, -1},
        {"(root 1)", AMI_NO_PARENT, -1},
        {"(a (b 1)) (c (d 1))", AMI_ABOVE_ROOT, -1},
        {"(a (b 1)) (c 1)", AMI_ABOVE_ROOT, -1},
        {"()", AMI_NOT_OPEN, -1},
        {"(a ())", AMI_NOT_OPEN, -1},
        {"(a () (b 1))", AMI_NOT_OPEN, -1},
        {"(a (b 1 (c)))", AMI_NESTED_VALUES, 8},
        {"(a b (c 1))", AMI_NESTED_VALUES, 5},
        {" (a (b \"(\" 2 (c)))", AMI_NESTED_VALUES, 12},
    };
    for (const auto& row : rows) {
        const Parse parse(row.pszText);
        EXPECT_EQ(parse.eResult, row.eResult) << row.pszText;
        EXPECT_EQ(parse.iPosition, row.iPosition) << row.pszText;
        EXPECT_EQ(parse.pTree, nullptr) << row.pszText;
    }
    EXPECT_EQ(Parse(std::string_view()).eResult, AMI_NO_PARENT);
}

TEST(AmiTree, BranchesAndLeaves)
{
    const struct {
        const char* pszText;
        const char* pszTree;
    } rows[] = {
        {" ( a ( b 1 )\n( c ( d 2 ) )\t) ", "a{b:7(b/4 1/1) c{d:7(d/4 2/1)}}"},
        {"(a (b) )", "a{b:7(b/4)}"},
        {"(a(b(c 1))(d 2))", "a{b{c:7(c/4 1/1)} d:7(d/4 2/1)}"},
        {"((p 1))", "{p:7(p/4 1/1)}"},
        {"(a ( (b 1)))", "a{{b:7(b/4 1/1)}}"},
        {"(a (b 1) ( (c 2)) (d 3))", "a{b:7(b/4 1/1) {c:7(c/4 2/1)} d:7(d/4 3/1)}"},
        {"(a (b\"x 1))", "result 1"},
        {"(a (b\"x\" 1))", "a{b\"x\":7(b\"x\"/-1 1/1)}"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(TreeText(row.pszText), row.pszTree) << row.pszText;
    }
}

TEST(AmiTree, NamesOfLeavesTellTheirKind)
{
    EXPECT_EQ(TreeText("(a (Usage In) (Type UI) (Default 3) (Description x) (Labels x) (List_Tip a b) (-1 2) "
                       "(usage In))"),
              "a{Usage:1(In/4:0) Type:2(UI/4:10) Default:4(3/1) Description:5(x/4) Labels:6(x/4) "
              "List_Tip:9(a/4 b/4) "
              "-1:7(-1/1 2/1) usage:7(usage/4 In/4:0)}");
    EXPECT_EQ(TreeText("(a (Format Range 1 0 2) (Range 1 0 2) (Dual-Dirac 1 2 3) (Format) (Value))"),
              "a{Format:3(Range/4:12 1/1 0/1 2/1) Format:3(Range/4:12 1/1 0/1 2/1) "
              "Format:3(Dual-Dirac/4:19 1/1 2/1 3/1) Format:3() Format:3(Value/4:11)}");
}

TEST(AmiTree, ATableIsABranch)
{
    EXPECT_EQ(TreeText("(a (Format Table (Labels x)))"), "a{Table{Labels:6(x/4)}}");
    EXPECT_EQ(TreeText("(a (Table (1 2)))"), "a{Table{1:7(1/1 2/1)}}");
    EXPECT_EQ(TreeText("(a (Format Table))"), "a{Format:3(Table/4:17)}");
    EXPECT_EQ(TreeText("(a (Format Table x))"), "a{Format:3(Table/4:17 x/4)}");
    EXPECT_EQ(TreeText("(a (Other Table x))"), "a{Other:7(Other/4 Table/4:17 x/4)}");
}

TEST(AmiTree, Quotes)
{
    const struct {
        const char* pszText;
        const char* pszTree;
    } rows[] = {
        {R"~((a (b "x y" 2)))~", "a{b:7(b/4 x y/4 2/1)}"},
        {R"~((a (Type "Float")))~", "a{Type:2(Float/4:5)}"},
        {R"~((a (b "5.1")))~", "a{b:7(b/4 5.1/3)}"},
        {R"~((a (b "")))~", "a{b:7(b/4)}"},
        {R"~((a (b "" 2)))~", "a{b:7(b/4 /-1 2/1)}"},
        {R"~((a (b " x " 2)))~", "a{b:7(b/4  x/4 2/1)}"},
        {R"~((a (b lost"x (y)"z)))~", "a{b:7(b/4 x (y)/4 z/4)}"},
        {R"~((a (b "x""y")))~", "a{b:7(b/4 x/4 y/4)}"},
        {R"~((a (b"x (c" y" 1)))~", "result 1"},
        {R"~((a (b"x y" 1) (c 2)))~", R"~(a{b"x:7(b"x/-1)})~"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(TreeText(row.pszText), row.pszTree) << row.pszText;
    }
}

TEST(AmiTree, KindsOfValues)
{
    const struct {
        AMI_ValueKind eKind;
        std::initializer_list<const char*> texts;
    } rows[] = {
        {AMI_KIND_NONE, {"", "\"", "\"a", "\"a\"b", "\"a\" \"", "a\"b", "1\""}},
        {AMI_KIND_QUOTED, {"\"\"", "\"a b\"", "\"1\""}},
        {AMI_KIND_INTEGER,
         {"0", "-12", "+3", "9223372036854775807", "1e3", "1E+3", "-2e9", "1e0", "  7", "2147483647e0"}},
        {AMI_KIND_REAL,
         {"1.0", "1e-3", "1E-3", "1.0e3", "0x10", "0xe1", "9223372036854775808", "3e9", "1e400", ".5", "inf",
          "nan"}},
        {AMI_KIND_BOOLEAN, {"True", "False"}},
        {AMI_KIND_WORD, {"true", "FALSE", "1n", "1e", "+", "-", "1 2", "+-1", "Float", "1x"}},
    };
    for (const auto& row : rows) {
        for (const char* text : row.texts) {
            EXPECT_EQ(AMI_ClassifyValue(text), row.eKind) << text;
        }
    }
}

TEST(AmiTree, DepthAndWidthAreBoundedByTheTextAlone)
{
    constexpr int MANY = 200'000;
    EXPECT_EQ(Parse(std::string(1'000'000, '(')).eResult, AMI_BAD_PARENTHESES);
    EXPECT_EQ(Parse(std::string(MANY, '(') + std::string(MANY, ')')).eResult, AMI_NOT_OPEN);
    const Parse deep(Repeat("(a", MANY) + " 1" + std::string(MANY, ')'));
    ASSERT_EQ(deep.eResult, AMI_OK);
    EXPECT_EQ(deep.pTree->iCount, MANY);
    EXPECT_EQ(deep.pTree->pNodes[MANY - 1].iLevel, MANY);
    const Parse wide("(r" + Repeat("(a(b))", MANY / 4) + "(v" + Repeat(" 1", MANY / 4) + "))");
    ASSERT_EQ(wide.eResult, AMI_OK);
    EXPECT_EQ(AMI_Root(wide.pTree)->iNodeCount, MANY / 4 + 1);
    EXPECT_EQ(AMI_AsLeaf(wide.pTree->pNodes[wide.pTree->iCount - 1])->iValueCount, MANY / 4 + 1);
    EXPECT_EQ(Parse("(r (v " + std::string(MANY, '"') + "))").eResult, AMI_OK);
}

TEST(AmiTree, FindsTheFirstBranchOfAName)
{
    const Parse parse("(r (a 1) (a (b 1)) (a (c 1)))");
    const _tagBranchStruct* const found = AMI_FindBranch(*AMI_Root(parse.pTree), "a");
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(BranchText(*found), "a{b:7(b/4 1/1)}");
    EXPECT_EQ(AMI_FindBranch(*found, "a"), nullptr);
}
