#include "ibis/source/nuibis_amirules.h"

#include "ibis/source/nuibis_list.h"
#include "tests/builders.h"

namespace
{

const std::string VERSION_61 = R"((AMI_Version (Usage Info)(Type String)(Value "6.1")))";

// The messages of a text of a file's own, without the word of the severity, which is the same for all rules.
Lines Judge(const std::string& text, std::string_view name = "t.ami")
{
    Lines lines = Unfolded(Messages(text, name));
    for (std::string& line : lines) {
        EXPECT_TRUE(line.starts_with("ERROR - ")) << line;
        line.erase(0, 8);
    }
    return lines;
}

std::string File(const std::string& specific,
                 const std::string& reserved = "(e (Usage Info)(Type Boolean)(Value True))")
{
    return "(r (Reserved_Parameters " + reserved + ") (Model_Specific " + specific + "))";
}

// A parameter "p" of the model with this content.
Lines JudgeParameter(const std::string& content, const std::string& reserved = VERSION_61)
{
    return Judge(File("(p " + content + ")", reserved));
}

struct Row {
    const char* pszContent;
    Lines messages;
};

void ExpectParameters(std::initializer_list<Row> rows, const std::string& ahead = "")
{
    for (const Row& row : rows) {
        EXPECT_EQ(JudgeParameter(ahead + row.pszContent), row.messages) << ahead << row.pszContent;
    }
}

// The rules on a tree alone.
Lines JudgeTree(const _tagTree* tree, ibis_file_type type)
{
    IbisErrorContainer findings;
    IbisErrorContainer* const former = MSG_GetContainer();
    MSG_SetContainer(&findings);
    AMI_CheckFile(AMI_Root(tree), type);
    MSG_SetContainer(former);
    Lines lines;
    for (std::size_t i = 0; i < findings.getNumErrors(); ++i) {
        lines.emplace_back(findings.getErrMsg(i));
        lines.back().pop_back();
    }
    return Unfolded(lines);
}

Lines JudgeTree(const std::string& text, ibis_file_type type)
{
    _tagTree* tree = nullptr;
    int position = 0;
    EXPECT_EQ(AMI_ParseTree(text, &tree, &position), AMI_OK);
    const Lines lines = JudgeTree(tree, type);
    AMI_FreeTree(&tree);
    return lines;
}

}  // namespace

TEST(AmiRules, BranchesOfTheRoot)
{
    const std::string reserved = "(Reserved_Parameters (e (Usage Info)(Type Boolean)(Value True)))";
    const std::string specific = "(Model_Specific (a (Usage In)(Type Float)(Value 1)))";
    const struct {
        std::string sText;
        Lines messages;
    } rows[] = {
        {"(r (Description x)" + reserved + specific + ")", {}},
        {"(r " + specific + reserved + ")", {}},
        {"(r " + reserved + ")", {}},
        {"( " + reserved + ")", {"Missing Root Name"}},
        {"(r " + specific + ")", {"No Reserved_Parameters branch found"}},
        {"(r " + reserved + specific + reserved + specific + ")",
         {"Reserved_Parameters: defined multiple times", "Model_Specific: defined multiple times"}},
        {"(r (Description)(Description x)(Description x)(Usage In)(x 1)(y (z 1))" + reserved + ")",
         {"No Description value specified for param r", "r: Description defined multiple times",
          "r: Unexpected leaf Usage found", "r: Unexpected leaf x found", "Unknown branch y found"}},
        {"(r " + specific + "(Reserved_Parameters " + VERSION_61 + "))",
         {"Reserved_Parameters should precede Model_Specific"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Judge(row.sText), row.messages) << row.sText;
    }
}

TEST(AmiRules, OtherParameterFilesHaveNoReservedBranch)
{
    const std::string specific = "(Model_Specific (a (Usage In)(Type Float)(Value 1)))";
    EXPECT_EQ(JudgeTree("(r " + specific + ")", IBIS_FILE_PARAM), Lines{});
    EXPECT_EQ(JudgeTree("(r " + specific + "(Reserved_Parameters " + VERSION_61 + "))", IBIS_FILE_PARAM),
              (Lines{"ERROR - Reserved_Parameters branch is not allowed for non AMI parameter files"}));
    EXPECT_EQ(JudgeTree("(r (x 1))", IBIS_FILE_PARAM),
              (Lines{"ERROR - r: Unexpected leaf x found", "ERROR - No Model_Specific branch found"}));
}

TEST(AmiRules, ADeclaredVersionAllowsUsageDep)
{
    const std::string dep = "(p (Usage Dep)(Type Float)(Value 1))";
    const Lines refused{"Illegal Usage Dep specified for p"};
    const std::string head = "(AMI_Version (Usage Info)(Type String)";
    for (const char* declared : {"(Value \"5.1\"))", "(Default \"6.0\"))", "(Default 5.0)(Value 6.1))"}) {
        EXPECT_EQ(Judge(File(dep, head + declared)), Lines{}) << declared;
    }
    for (const char* declared : {"(Value \"5.0\"))", "(Value \"7.0\"))", "(List \"6.1\"))"}) {
        EXPECT_EQ(Judge(File(dep, head + declared)), refused) << declared;
    }
    EXPECT_EQ(Judge(File(dep)), refused);
    EXPECT_EQ(Judge(File(dep, VERSION_61)), Lines{});
    EXPECT_EQ(Judge(File(dep)), refused);  // the version of one file does not reach the next
}

TEST(AmiRules, NamesOfBranches)
{
    const std::string good = "(Usage In)(Type Float)(Value 1))";
    EXPECT_EQ(
        Judge(File("(a " + good + "(b " + good + "(a " + good + "(A " + good + "(b " + good + "(a " + good)),
        (Lines{"Model_Specific: Duplicate sub-branch a found", "Model_Specific: Duplicate sub-branch a found",
               "Model_Specific: Duplicate sub-branch b found",
               "Model_Specific: Duplicate sub-branch a found"}));
    EXPECT_EQ(Judge(File("( " + good + "(g (x 1)( " + good + ")")),
              (Lines{"A branch name cannot be empty", "A branch name cannot be empty"}));
}

TEST(AmiRules, EachKindOfLeafOnceAndWithAValue)
{
    ExpectParameters({
        {"(Usage In)(Type Float)(Default 1)(Description x)", {}},
        {"(Usage)(Type)(Default)(Description)(Format)",
         {"No Type value specified for param p", "No Format value specified for param p",
          "No Default value specified for param p", "No Usage value specified for param p",
          "No Description value specified for param p"}},
        {"(Usage In)(Usage In)(Type UI)(Type UI)(Value 1)(Value 1)(Default 1)(Default 1)(Description "
         "x)(Description y)"
         "(Usage In)(Type UI)(Value 1)(Default 1)(Description z)",
         {"p: Type defined multiple times", "p: Format defined multiple times",
          "p: Default defined multiple times", "p: Usage defined multiple times",
          "p: Description defined multiple times"}},
        {"(Usage Both)(Type Number)(Format Some 1)",
         {"Illegal Type Number specified for p", "Illegal Format Some specified for p",
          "Illegal Usage Both specified for p"}},
        {"(Usage In Out)(Type Integer Real Complex)(Default 1)", {"Illegal Type Real specified for p"}},
        {"(Usage In)(Type Float)(Type Integer)(Value 1.5)",
         {"p: Type defined multiple times", "p: The Value value 1.5 for Type Integer is invalid"}},
        {"(Usage In)(Default 1)", {"Type is mandatory for p"}},
        {"(Usage In)", {"Type is mandatory for p", "p: Either Format/Value or Default should be specified"}},
        {"(Usage In)(Type Float)", {"p: Either Format/Value or Default should be specified"}},
        {"(Type Nonsense)",
         {"Illegal Type Nonsense specified for p", "p: Either Format/Value or Default should be specified"}},
        {"(Description only)(other 1)", {}},
    });
}

TEST(AmiRules, GroupsAreWalkedInTextOrder)
{
    EXPECT_EQ(
        Judge(File(
            "(g (Description x)(h (a (Usage In))(k (b (Type UI))))(c (Default 1)))(d (Usage No)(e (f 1)))")),
        (Lines{"Type is mandatory for a", "a: Either Format/Value or Default should be specified",
               "b: Either Format/Value or Default should be specified", "Type is mandatory for c",
               "Illegal Usage No specified for d", "Found a branch e expecting a leaf for d",
               "Type is mandatory for d", "d: Either Format/Value or Default should be specified"}));
}

TEST(AmiRules, ATapIsNamedByItsPlace)
{
    EXPECT_EQ(Judge(File("(-1 (Usage In)(Type Tap)(Value 0.5))(+2 (Usage In)(Type Tap)(Value 1))")), Lines{});
    EXPECT_EQ(
        Judge(File("(pre (Usage In)(Type Tap)(Value 0.5))")),
        (Lines{"pre: Invalid parameter name. Type Tap requires Parameter name to be a signed integer"}));
}

TEST(AmiRules, ValuesFitTheirType)
{
    const auto invalid = [](const std::string& value, const std::string& type) {
        return Lines{"p: The Value value " + value + " for Type " + type + " is invalid"};
    };
    const struct {
        const char* pszType;
        std::initializer_list<const char*> good;
        std::initializer_list<const char*> bad;
        const char* pszWord;
    } rows[] = {
        {"Float", {"1", "-1.5e3", "\"2\""}, {"1n", "True"}, "Float"},
        {"Tap", {}, {"x"}, "Tap"},
        {"UI", {"0.5"}, {"half"}, "NUIBIS_UI"},
        {"Integer", {"1", "1e3"}, {"1.0", "True"}, "Integer"},
        {"Boolean", {"True", "False"}, {"true", "1"}, "Boolean"},
        {"String", {"x", "1", "True", "\"a b\""}, {}, "String"},
    };
    for (const auto& row : rows) {
        const std::string head = std::string("(Usage In)(Type ") + row.pszType + ")(Value ";
        for (const char* value : row.good) {
            EXPECT_EQ(JudgeParameter(head + value + ")"), Lines{}) << head << value;
        }
        for (const char* value : row.bad) {
            const bool tap = std::string_view(row.pszType) == "Tap";
            const std::string name = tap ? "1" : "p";
            Lines expected = invalid(value, row.pszWord);
            expected[0].replace(0, 1, name);
            EXPECT_EQ(Judge(File("(" + name + " " + head + value + "))", VERSION_61)), expected)
                << head << value;
        }
    }
    EXPECT_EQ(JudgeParameter("(Usage In)(Type Bad)(Value x)"), (Lines{"Illegal Type Bad specified for p"}));
}

TEST(AmiRules, CountsOfFormats)
{
    const std::string wrong = "Illegal Format for ";
    ExpectParameters(
        {
            {"(Value)", {"Illegal format for Format/Value for param p. Expected 1 literal"}},
            {"(Value 1 2)", {"Illegal format for Format/Value for param p. Expected 1 literal"}},
            {"(Corner 1 2)", {"Illegal format for Corner for param p. Expected 3 literals"}},
            {"(Range 1 2)", {wrong + "Range for param p. Expected 3 number(s)"}},
            {"(List)", {wrong + "List for param p. Expected 1 number(s)"}},
            {"(Increment x y z)", {wrong + "Increment for param p. Expected 4 number(s)"}},
            {"(Steps 1 0 2 4 5)", {wrong + "Steps for param p. Expected 4 number(s)"}},
            {"(Gaussian 1)", {wrong + "Gaussian for param p. Expected 2 number(s)"}},
            {"(Dual-Dirac 1 2 3 4)", {wrong + "Dual-Dirac for param p. Expected 3 number(s)"}},
            {"(DjRj 1 2)", {wrong + "DjRj for param p. Expected 3 number(s)"}},
        },
        "(Usage In)(Type Float)");
}

TEST(AmiRules, FormatsFitTheirType)
{
    const auto clash = [](const std::string& type, const std::string& format) {
        return Lines{"p: Type/" + type + " cannot be specified when Format/" + format + " is specified"};
    };
    ExpectParameters({
        {"(Usage In)(Type String)(Range a b c)", clash("String", "Range")},
        {"(Usage In)(Type String)(Range a b)",
         {"Illegal Format for Range for param p. Expected 3 number(s)"}},
        {"(Usage In)(Type Boolean)(Increment a b c -1)", clash("Boolean", "Increment")},
        {"(Usage In)(Type String)(Steps 1 0 2 x)", clash("String", "Steps")},
        {"(Usage In)(Type Integer)(Gaussian x)", clash("Integer", "Gaussian")},
        {"(Usage In)(Type String)(Dual-Dirac x y z)", clash("String", "Dual-Dirac")},
        {"(Usage In)(Type Boolean)(DjRj x y z)", clash("Boolean", "DjRj")},
        {"(Usage In)(Type UI)(DjRj 1 2 3)", {}},
        {"(Usage In)(Type String)(Corner a b c)", {}},
        {"(Usage In)(Type Boolean)(List True False)", {}},
    });
    EXPECT_EQ(Judge(File("(1 (Usage In)(Type Tap)(Gaussian 1 2))")),
              (Lines{"1: Type/Tap cannot be specified when Format/Gaussian is specified"}));
}

TEST(AmiRules, EveryBadValueOfAFormatIsTold)
{
    const auto invalid = [](const std::string& label, const std::string& value, const std::string& type) {
        return "p: The " + label + " value " + value + " for Type " + type + " is invalid";
    };
    ExpectParameters({
        {"(Usage In)(Type Integer)(List 1 2.5 x)",
         {invalid("List", "2.5", "Integer"), invalid("List", "x", "Integer")}},
        {"(Usage In)(Type Float)(Range x y 0)",
         {invalid("Range/typ", "x", "Float"), invalid("Range/min", "y", "Float")}},
        {"(Usage In)(Type Boolean)(Corner True 1 False)", {invalid("Corner/min", "1", "Boolean")}},
        {"(Usage In)(Type UI)(Increment 1 0 2 x)", {invalid("Increment/delta", "x", "NUIBIS_UI")}},
        {"(Usage In)(Type Float)(Steps 5 0 max 2.5)",
         {invalid("Steps/max", "max", "Float"), invalid("Steps/#steps", "2.5", "Integer")}},
        {"(Usage In)(Type Float)(Gaussian m s)",
         {invalid("Gaussian/mean", "m", "Float"), invalid("Gaussian/sigma", "s", "Float")}},
        {"(Usage In)(Type Float)(Dual-Dirac a b c)",
         {invalid("Dual-Dirac/mean1", "a", "Float"), invalid("Dual-Dirac/mean2", "b", "Float"),
          invalid("Dual-Dirac/sigma", "c", "Float")}},
        {"(Usage In)(Type Float)(DjRj a b c)",
         {invalid("DjRj/minDj", "a", "Float"), invalid("DjRj/maxDj", "b", "Float"),
          invalid("DjRj/sigma", "c", "Float")}},
    });
}

TEST(AmiRules, OrderOfNumbers)
{
    const auto between = [](const std::string& word, const char* typ, const char* min, const char* max) {
        return "p: Format " + word + " typ value (" + typ + ") is not in between min value (" + min +
               ") and max value (" + max + ")";
    };
    const auto order = [](const std::string& word, const char* min, const char* max) {
        return "p: Format " + word + " min value (" + min + ") should be less than or equal to max value (" +
               max + ")";
    };
    ExpectParameters(
        {
            {"(Range 1 0 2)(Default 1.5)", {}},
            {"(Range 5 0 2)", {between("Range", "5", "0", "2")}},
            {"(Range 1 2 0)", {between("Range", "1", "2", "0"), order("Range", "2", "0")}},
            {"(Increment 5 0 2 -0.5)",
             {between("Increment", "5", "0", "2"), "p: Format Increment Delta (-0.5) cannot be negative"}},
            {"(Steps 1 0 x -2)",
             {"p: The Steps/max value x for Type Float is invalid",
              "p: Format Steps #steps (-2) cannot be negative"}},
            {"(Corner 5 0 2)", {}},
        },
        "(Usage In)(Type Float)");
}

TEST(AmiRules, Tables)
{
    const auto count = [](const char* what, int n, const char* other, int m) {
        return "p: The number of " + std::string(what) + " " + std::to_string(n) +
               " does not match the number of " + other + " " + std::to_string(m) + " in Table";
    };
    ExpectParameters({
        {"(Usage In)(Type Float)(Table (Labels a b)(0 1)(1 2.5))", {}},
        {"(Usage In)(Type Integer Float)(Format Table (Labels a b)(0 1.5)(1 2))", {}},
        {"(Usage In)(Type Integer Float)(Format (0 1.5))", {}},
        {"(Usage In)(Type Float)(Table (Labels a)(0 1)(1 2)(Labels a b))",
         {count("Row entries", 2, "Labels", 1), count("Row entries", 2, "Labels", 1),
          "p: Labels defined multiple times",
          "Labels should be defined before data rows in Format Table for param p."}},
        {"(Usage In)(Type Integer Float UI)(Table (Labels a b)(0 1)(1 2))",
         {count("Labels", 2, "Types", 3), count("Row entries", 2, "Types", 3)}},
        {"(Usage In)(Type Integer Float)(Table (0.5 x)(1 2 3)(x 2))",
         {"p: The Table value 0.5 for Type Integer is invalid",
          "p: The Table value x for Type Float is invalid",
          "p: The Table value x for Type Integer is invalid",
          "p: Format Table does not have same number of entries in all rows"}},
        {"(Usage In)(Table (Labels a b))",
         {"p: Format Table should contain at least one row", "Type is mandatory for p"}},
        {"(Usage In)(Type Float)(Table (0 1)(x (y 1)))", {"p: Format Table cannot contain a branch"}},
        {"(Usage In)(Type Float)(Table (0 1))(Value 1)(Default 1)", {"p: Format defined multiple times"}},
    });
    EXPECT_EQ(Judge(File("(1 (Usage In)(Type Tap)(Table (x 1)(y z)))")),
              (Lines{"1: Type/Tap cannot be specified when Format/Table is specified"}));
    EXPECT_EQ(Judge("(r (Reserved_Parameters (Table (Usage In)(Type Float)(Value 1))))"), Lines{});
}

TEST(AmiRules, TipsOfAList)
{
    const auto differ = [](const char* tip, const char* a, const char* b) {
        return "Parameter 'p': Duplicate value '" + std::string(tip) +
               "' found in ListTip but the corresponding values in List ('" + a + "', '" + b +
               "') are not the same";
    };
    ExpectParameters({
        {"(Usage In)(Type Integer)(List 1 2 3)(List_Tip a b)",
         {"Parameter 'p': The number of values in ListTip (2) does not match the number of values in List "
          "(3)"}},
        {"(Usage In)(Type Integer)(List 1 2)(List_Tip)(List_Tip a b)(List_Tip a a)",
         {"No ListTip value specified for param p", "p: ListTip defined multiple times",
          differ("a", "1", "2")}},
        {"(Usage In)(Type Float)(List 1.0 1.0000000001)(List_Tip a a)", {}},
        {"(Usage In)(Type Float)(List 1 2 3 4 5)(List_Tip a b a b a)",
         {differ("a", "1", "3"), differ("a", "1", "5"), differ("b", "2", "4"), differ("a", "3", "5")}},
        {"(Usage In)(Type String)(List 1.0 1 1)(List_Tip a a a)",
         {differ("a", "1.0", "1"), differ("a", "1.0", "1")}},
        {"(Usage In)(Type Integer)(Value 1)(List_Tip a b)", {}},
        {"(Usage In)(Type Bad)(List 1 2)(List_Tip a)", {"Illegal Type Bad specified for p"}},
        {"(Usage In)(Type Integer)(List 1 2)(Value 1)(List_Tip a)", {"p: Format defined multiple times"}},
    });
}

TEST(AmiRules, TreesThatNoTextGives)
{
    EXPECT_EQ(JudgeTree(nullptr, IBIS_FILE_AMI),
              (Lines{"ERROR - No Reserved_Parameters or Model_Specific branches found"}));
    _tagTree* tree = nullptr;
    int position = 0;
    ASSERT_EQ(
        AMI_ParseTree("(r (Model_Specific (p (Usage In)(Type String)(List a)(List_Tip))))", &tree, &position),
        AMI_OK);
    ASSERT_TRUE(AMI_AddValue(*tree, *static_cast<_tagLeafStruct*>(tree->pNodes[tree->iCount - 1].p), "\"\""));
    EXPECT_EQ(JudgeTree(tree, IBIS_FILE_PARAM),
              (Lines{"ERROR - Parameter 'p' ListTip value is invalid '\"\"'"}));
    AMI_FreeTree(&tree);
}

TEST(AmiRules, ManyPairsAreBounded)
{
    std::string values;
    for (int i = 0; i < 20'000; ++i) {
        values += " 1";
    }
    std::string groups;
    for (int i = 0; i < 500; ++i) {
        groups += "(g (x 1)(h (y 2)))";
    }
    EXPECT_EQ(JudgeParameter("(Usage In)(Type Float)(List" + values + ")(List_Tip" + values + ")"), Lines{});
    EXPECT_EQ(Judge(File(groups)).size(), LIST_PAIR_LIMIT);
}
