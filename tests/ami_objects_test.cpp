// Parameter files as objects, and the queries about them.

#include "ibis/interface/talibis_ami.h"

#include "ibis/source/nuibis_algmod.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_mdl.h"
#include "tests/builders.h"

#include <filesystem>
#include <sstream>

namespace
{

const std::string VERSION_61 = R"((AMI_Version (Usage Info)(Type String)(Value "6.1")))";

// The handle of a file with a model "M" whose parameter file has these parameters of the model.
TalIbis* ReadModel(const std::string& specific, const std::string& reserved = VERSION_61,
                   std::string_view lines = "Executable Linux_gcc_64 code.so p.ami\n")
{
    WriteTestFile("p.ami", "(r (Reserved_Parameters " + reserved + ") (Model_Specific " + specific + "))");
    WriteTestFile("code.so", "");
    return ReadHandle(Ibs(
        Model("M", "[Algorithmic Model]\n" + std::string(lines) + "[End Algorithmic Model]\n") + Model("N"),
        "6.1"));
}

std::string PathText(const std::vector<int>& path)
{
    std::string text;
    for (const int step : path) {
        text += (text.empty() ? "" : ".") + std::to_string(step);
    }
    return text;
}

// "name path: usage type format value default".
Lines Definitions(const TalIbisAMI_File& file)
{
    Lines lines;
    for (const TalIbisAMI_ParamDef* definition : file.getParamDefList()) {
        EXPECT_EQ(definition->getFlattenedIndex(), lines.size());
        lines.push_back(definition->getName() + " " + PathText(definition->getIndexPath()) + ": " +
                        std::to_string(definition->getUsage()) + " " +
                        std::to_string(definition->getDataType()) + " " +
                        std::to_string(definition->getFormat()) + " " + definition->getValue().toString() +
                        " [" + definition->getDefaultText() + "]");
    }
    return lines;
}

Lines Specific(const std::string& specific)
{
    const TalIbisAMI_File* const file = ReadModel(specific)->parseAMI_File("M");
    const Lines lines = Definitions(*file);
    return lines.empty() ? Lines{"no tree"} : Lines(lines.begin() + 1, lines.end());  // behind AMI_Version
}

using ListQuery = void (TalIbis::*)(const char*, int, TalIbisListQueryData&) const;

Lines Ask(ListQuery query, const TalIbis* handle, const char* model, int index)
{
    TalIbisListQueryData list;
    (handle->*query)(model, index, list);
    Lines lines(list.getData().begin(), list.getData().end());
    if (list.getStatus() != QueryOk) {
        lines.push_back(std::to_string(list.getStatus()) + ": " + list.getErrMsg());
    }
    return lines;
}

Lines Choices(const std::string& parameter)
{
    const TalIbis* const handle = ReadModel("(p (Usage In)" + parameter + ")");
    return Ask(&TalIbis::getAMIDataChoices, handle, "M", 1);
}

Lines Attributes(const std::string& parameter)
{
    return Ask(&TalIbis::getAMIParamAttrs, ReadModel("(p " + parameter + ")"), "M", 1);
}

std::string Info(const TalIbis* handle, const char* model, int index)
{
    TalIbisStringQueryData result;
    handle->getAMIParamInfo(model, index, result);
    return result.getStatus() == QueryOk ? result.getData()
                                         : std::to_string(result.getStatus()) + ": " + result.getErrMsg();
}

template <class Value> std::string OutputOf(const Value& value)
{
    std::ostringstream out;
    value.output(out);
    return out.str();
}

AMI_Table TableOf(const std::string& rows, const std::string& types, bool isJitter = false)
{
    _tagTree* tree = nullptr;
    int position = 0;
    EXPECT_EQ(AMI_ParseTree("(r (Type " + types + ")(Table " + rows + "))", &tree, &position), AMI_OK);
    const _tagBranchStruct* const root = AMI_Root(tree);
    AMI_Table table;
    EXPECT_TRUE(table.setTableDimensionsAndLabels(AMI_AsBranch(root->pNodes[1])));
    table.setTableTypes(AMI_AsLeaf(root->pNodes[0]), isJitter);
    table.setTableData(AMI_AsBranch(root->pNodes[1]));
    AMI_FreeTree(&tree);
    return table;
}

}  // namespace

TEST(AmiValues, EveryKindHasItsTexts)
{
    TalIbisAMI_Value value;
    const auto texts = [&] {
        return std::to_string(value.getValueType()) + " " + value.toString() + " " + OutputOf(value);
    };
    EXPECT_EQ(texts(), "0  Unknown data");
    value.setIntValue(-3);
    EXPECT_EQ(texts(), "1 -3 -3(int)");
    value.setRealValue(1e-12);
    EXPECT_EQ(texts(), "2 1e-12 1e-12(real)");
    value.setBooleanValue(7);
    EXPECT_EQ(texts(), "3 True 1(int)");
    EXPECT_EQ(value.getIntValue(), 1);
    value.setBooleanValue(0);
    EXPECT_EQ(texts(), "3 False 0(int)");
    value.setStringValue("a b");
    EXPECT_EQ(texts(), "4 \"a b\" a b(string)");
    value.setStringValue(value.getStringValue() + 1);
    EXPECT_STREQ(value.getStringValue(), " b");
    value.setGaussianValue(0.1, 2);
    EXPECT_EQ(texts(), "5 0.1 2 Gaussian( 0.1, 2 )");
    value.setDualDiracValue(1, 2, 1234567);
    EXPECT_EQ(texts(), "6 1 2 1.23457e+06 Dual-Dirac( 1, 2, 1.23457e+06 )");
    value.setDjRjValue(-1, 1, 0.5);
    EXPECT_EQ(texts(), "7 -1 1 0.5 DjRj( -1, 1, 0.5 )");
    EXPECT_EQ(value.getStringValue(), nullptr);
    EXPECT_EQ(value.getGaussianValue(), nullptr);
    EXPECT_EQ(value.getIntValue(), 0);
    value.setTableValue(TableOf("(a 1)(b 2)", "String Integer"));
    EXPECT_EQ(texts(), "8 a 1 b 2 a 1 b 2");
    const TalIbisAMI_Value copy = value;
    value.clearValue();
    EXPECT_EQ(texts(), "0  Unknown data");
    EXPECT_EQ(copy.toString(), "a 1 b 2");
}

TEST(AmiValues, CellsOfTables)
{
    const AMI_Table mixed =
        TableOf("(Labels a b c d e)(1.9 1.5 x True 0.25)(x y \"two words\" TRUE 1)(3 4 5 no 6)",
                "Integer Float String Boolean UI");
    EXPECT_EQ(mixed.toString(), "1 1.5 x True 0.25 0 0 two words True 1 3 4 5 False 6");
    EXPECT_EQ(mixed.getLabels(), (Lines{"a", "b", "c", "d", "e"}));
    EXPECT_EQ(mixed.getNumRows(), 3U);
    EXPECT_EQ(mixed.getNumColumns(), 5U);
    EXPECT_EQ(OutputOf(mixed), "Table( ) ");
    EXPECT_EQ(TableOf("(Labels a)(1 2)", "UI").getLabels(), (Lines{"a", ""}));
    EXPECT_EQ(TableOf("(Labels a b c)(1 2)", "UI").getLabels(), (Lines{"a", "b"}));
    EXPECT_EQ(AMI_Table().toString(), "");
}

TEST(AmiValues, TypesOfColumns)
{
    const auto types = [](const std::string& row, const std::string& words, bool isJitter) {
        return TableOf(row, words, isJitter).getColumnTypes();
    };
    EXPECT_EQ(types("(1 2 3)", "Float", false), (std::vector{2, 2, 2}));
    EXPECT_EQ(types("(1 2 3)", "Float", true), (std::vector{1, 2, 2}));
    EXPECT_EQ(types("(1 2 3)", "UI", true), (std::vector{1, 5, 2}));
    EXPECT_EQ(types("(1 2 3)", "Integer Float Float", true), (std::vector{1, 2, 2}));
    EXPECT_EQ(types("(1)", "Float", true), (std::vector{2}));
    EXPECT_EQ(types("(1 2)", "Tap", false), std::vector<int>{});
    EXPECT_EQ(TableOf("(1 2 3 4)", "UI", true).toString(), "1 2 3 ");  // a fourth column has no type
}

TEST(AmiObjects, ValuesComeFromValueDefaultOrFirstToken)
{
    EXPECT_EQ(
        Specific(
            "(a (Usage Info)(Type Integer)(Value 3)(Default 4))(b (Usage In)(Type Integer)(Value 1e3))"
            "(c (Usage Out)(Type Float)(Range 1 0 2))(d (Usage InOut)(Type Float)(Range 1 0 2)(Default 1.5))"
            "(e (Usage Dep)(Type String)(Corner x y z))(f (Usage In)(Type UI)(Increment 0.5 0 1 0.1))"
            "(g (Usage In)(Type Float)(Steps 1 0 2 4))(h (Usage In)(Type Boolean)(List True False))"
            "(-1 (Usage In)(Type Tap)(Default -0.25))(j (Usage In)(Type Boolean)(Default False))"),
        (Lines{"a 1.0: 1 1 1 3 [4]", "b 1.1: 2 1 1 1 [1e3]", "c 1.2: 3 2 2 1 []", "d 1.3: 4 2 2 1.5 [1.5]",
               "e 1.4: 5 3 3 \"x\" []", "f 1.5: 2 6 6 0.5 []", "g 1.6: 2 2 5 1 []", "h 1.7: 2 4 4 True []",
               "-1 1.8: 2 5 0 -0.25 [-0.25]", "j 1.9: 2 4 0 False [False]"}));
    EXPECT_EQ(
        Specific(
            "(a (Usage Info)(Type Float)(Gaussian 1 2))(b (Usage Info)(Type UI)(Dual-Dirac 1 2 3)(Default 9))"
            "(c (Usage Info)(Type Float)(DjRj 0.5 1 2))"),
        (Lines{"a 1.0: 1 2 7 1 2 []", "b 1.1: 1 6 8 1 2 3 [9]", "c 1.2: 1 2 9 0.5 1 2 []"}));
    EXPECT_EQ(Specific("(a (Description \"no parameter\"))"), (Lines{"a 1.0: 0 0 0  []"}));
}

TEST(AmiObjects, TheTreeOfNodesAndTables)
{
    const std::string usage = "(Usage Info)(Type Float)";
    const TalIbisAMI_File* const file =
        ReadModel("(g (Description x)(h (a (Usage In)(Type Float)(Value 1)(Description \"the a\")))(b " +
                      usage + "(Value 2)))(Tx_Jitter " + usage +
                      "(Table (Labels n t p)(-1 0.5 1)(1 2 3)))"
                      "(t (Type Float)(Usage Out)(Format Table (0 1)(2 3)))",
                  VERSION_61 + "(q (Usage In)(Type Integer)(List 1 2))")
            ->parseAMI_File("M");
    EXPECT_EQ(Definitions(*file),
              (Lines{"AMI_Version 0.0: 1 3 1 \"6.1\" [6.1]", "q 0.1: 2 1 4 1 []", "a 1.0.1.0: 2 2 1 1 [1]",
                     "b 1.0.2: 1 2 1 2 [2]", "Tx_Jitter 1.1: 1 7 10 -1 0.5 1 1 2 3 []",
                     "t 1.2: 3 7 10 0 1 2 3 []"}));
    EXPECT_EQ(OutputOf(*file), "Model M, parameter file " + TestFolder() +
                                   "/p.ami\n"
                                   "r\n"
                                   "  Reserved_Parameters\n    AMI_Version: 6.1(string)\n    q: 1(int)\n"
                                   "  Model_Specific\n    g\n      h\n        a: 1(real)\n      b: 2(real)\n"
                                   "    Tx_Jitter: -1 0.5 1 1 2 3\n    t: 0 1 2 3\n");
    const std::vector<TalIbisAMI_ParamDef*>& list = file->getParamDefList();
    EXPECT_TRUE(list[1]->isReserved());
    EXPECT_TRUE(list[1]->isArrayData());
    EXPECT_FALSE(list[2]->isReserved());
    EXPECT_FALSE(list[2]->isArrayData());
    EXPECT_EQ(list[2]->getDescription(), "the a");
    EXPECT_EQ(list[1]->getFormatData(), (Lines{"List", "1", "2"}));
    const TalIbisAMI_Node& top = *file->getTopNode();
    EXPECT_EQ(top.getDimension(), 0U);
    EXPECT_EQ(top.getNumPts(), 2U);
    const TalIbisAMI_NodeData* const specific = top.getList().find("Model_Specific");
    ASSERT_NE(specific, nullptr);
    EXPECT_EQ(specific->getDimension(), 1U);
    EXPECT_EQ(specific->getKind(), TalIbisAMI_NodeData::Node);
    EXPECT_EQ(specific->getNode()->getList().find("t")->getParamDef(), list[5]);
    EXPECT_EQ(specific->getNode()->getList().find("t")->getDimension(), 1U);
    EXPECT_EQ(specific->getNode()->getList().find("T"), nullptr);
    EXPECT_STREQ(file->getIndexedParamBranch({})->pszName, "r");
    EXPECT_STREQ(file->getIndexedParamBranch({1, 0, 1})->pszName, "h");
    for (const std::vector<int>& path : {std::vector{2}, {1, -1}, {1, 0, 0}, {1, 0, 1, 0, 0, 0}}) {
        EXPECT_EQ(file->getIndexedParamBranch(path), nullptr);
    }
}

TEST(AmiObjects, WithoutAUsageABranchWithATableIsAGroup)
{
    EXPECT_EQ(Specific("(t (Type Float)(Table (0 1)))(u (Usage In)(Type Float)(Format (0 1)))"),
              (Lines{"Table 1.0.1: 0 0 0  []", "Format 1.1.2: 0 0 0  []"}));
}

TEST(AmiObjects, ListsOwnWhatTheyHold)
{
    TalIbisAMI_NodeDataList list;
    EXPECT_TRUE(list.append(new TalIbisAMI_Node(1, "n")));
    EXPECT_TRUE(list.append(new TalIbisAMI_ParamDef("d", {0, 1}, false)));
    EXPECT_TRUE(list.append(new TalIbisAMI_NodeData()));
    EXPECT_EQ(list.find("d"), list[1]);
    EXPECT_EQ(list[2]->getKind(), TalIbisAMI_NodeData::Empty);
    list.resize(5);
    EXPECT_EQ(list[4], nullptr);
    std::ostringstream out;
    list.output(out);  // a place that holds nothing has no line
    EXPECT_EQ(out.str(), "  n\n    d: Unknown data\n\n");
    list.resize(1);
    EXPECT_EQ(list.find("d"), nullptr);
    EXPECT_EQ(list.find("n"), list[0]);
    list.clear();
    EXPECT_TRUE(list.empty());
}

TEST(AmiObjects, AFileWithErrorsHasNoTree)
{
    const TalIbis* const handle = ReadModel("(p (Usage In)(Type Float))");
    const TalIbisAMI_File* const file = handle->parseAMI_File("M");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->getTopNode(), nullptr);
    EXPECT_EQ(file->getNumParams(), 0U);
    ASSERT_EQ(file->getErrContainer()->getNumErrors(), 1U);
    EXPECT_STREQ(file->getErrContainer()->getErrMsg(std::size_t{0}),
                 "ERROR - p: Either Format/Value or Default should be specified\n");
    EXPECT_EQ(handle->testAMIModel("M"), file->getErrContainer());
    EXPECT_EQ(MSG_GetContainer()->getNumErrors(), 0U);  // reset, and untouched by the file's own findings
    EXPECT_EQ(handle->testAMIModel("N"), nullptr);
    TalIbisStringQueryData number;
    handle->getAMIParamNum("M", number);
    EXPECT_EQ(number.getData(), "0");
    EXPECT_EQ(number.getStatus(), QueryOk);
}

TEST(AmiObjects, DepthIsBounded)
{
    const auto nested = [](int depth) {
        std::string text;
        for (int i = 0; i < depth; ++i) {
            text += "(g";
        }
        return text + "(p (Usage In)(Type Float)(Value 1))" +
               std::string(static_cast<std::size_t>(depth), ')');
    };
    EXPECT_EQ(ReadModel(nested(250))->parseAMI_File("M")->getNumParams(), 2U);
    const TalIbisAMI_File* const deep = ReadModel(nested(10'000))->parseAMI_File("M");
    EXPECT_EQ(deep->getNumParams(), 0U);
    EXPECT_STREQ(deep->getErrContainer()->getErrMsg(std::size_t{0}),
                 "ERROR - Parameter file p.ami is nested deeper than 256 levels\n");
}

TEST(AmiObjects, AChangedFileIsReadAnewInItsPlace)
{
    const TalIbis* const handle = ReadModel("(p (Usage In)(Type Float)(Value 1))");
    const TalIbisAMI_File* const first = handle->parseAMI_File("M");
    EXPECT_EQ(handle->parseAMI_File("M"), first);
    EXPECT_EQ(handle->getAMIParamNum("M"), 2U);
    const std::string path = WriteTestFile("p.ami", "(r (Reserved_Parameters " + VERSION_61 + "))");
    std::filesystem::last_write_time(path, std::filesystem::file_time_type::clock::now() +
                                               std::chrono::seconds(10));
    EXPECT_EQ(handle->getAMIParamNum("M"), 1U);
    std::filesystem::remove(path);
    EXPECT_EQ(handle->getAMIParamNum("M"), 0U);
    EXPECT_NE(handle->parseAMI_File("M"), nullptr);
}

TEST(AmiObjects, CopiesOfAHandleShareItsFiles)
{
    const TalIbis* const handle = ReadModel("(p (Usage In)(Type Float)(Value 1))");
    const TalIbis early(*handle);
    const TalIbisAMI_File* const own = early.parseAMI_File("M");  // goes with this copy
    const TalIbisAMI_File* const first = handle->parseAMI_File("M");
    EXPECT_NE(own, first);
    TalIbis late;
    late = *handle;
    EXPECT_EQ(late.parseAMI_File("M"), first);
    const std::string path = WriteTestFile("p.ami", "(r (Reserved_Parameters " + VERSION_61 + "))");
    std::filesystem::last_write_time(path, std::filesystem::file_time_type::clock::now() +
                                               std::chrono::seconds(10));
    EXPECT_NE(handle->parseAMI_File("M"), first);
    EXPECT_EQ(first->getNumParams(), 2U);  // still held by the copy
    EXPECT_EQ(late.getAMIParamNum("M"), 1U);
}

TEST(AmiObjects, InstancesStartWithTheDefinitionsValue)
{
    const std::string text = "(Usage In)(Type String)(Value x))";
    const TalIbisAMI_File* const file =
        ReadModel("(a (Usage InOut)(Type Float)(Value 1))(DLL_Path " + text + "(DLL_ID " + text)
            ->parseAMI_File("M");
    TalIbisAMI_ParamList list;
    file->instantiateParams(list, "id 7");
    file->instantiateParams(list, "id 8");
    ASSERT_EQ(list.size(), 4U);
    EXPECT_EQ(list.find("DLL_Path")->getValue().toString(), '"' + TestFolder() + '"');
    EXPECT_STREQ(list[3]->getStringValue(), "id 8");
    EXPECT_EQ(list.find("none"), nullptr);
    EXPECT_TRUE(list[1]->isOfUsageInOut());
    EXPECT_TRUE(list[2]->isOfUsageIn());
    list[1]->setRealValue(2);
    EXPECT_EQ(list[1]->getValue().toString(), "2");
    EXPECT_EQ(list[1]->getParamDef()->getValue().toString(), "1");
}

TEST(AmiObjects, CodePathsAreInFullWithSlashes)
{
    WriteTestFile("p.ami", "(r (Reserved_Parameters (DLL_Path (Usage In)(Type String)(Value x))))");
    const auto path = [](const std::string& directory) {
        TalIbisAMI_File file("M", "p.ami", directory);
        file.parseFile();
        TalIbisAMI_ParamList list;
        file.instantiateParams(list, "");
        return std::string(list.empty() ? "no parameter" : list[0]->getStringValue());
    };
    const std::filesystem::path former = std::filesystem::current_path();
    std::filesystem::current_path(TestFolder());
    std::filesystem::create_directory("C:");
    std::filesystem::create_directory("C:/a");
    std::filesystem::copy("p.ami", "C:/a/p.ami", std::filesystem::copy_options::overwrite_existing);
    EXPECT_EQ(path("C:\\a\\"), "C:/a");
    EXPECT_EQ(path(""), std::filesystem::current_path().string());
    std::filesystem::current_path(former);
}

TEST(AmiQueries, MissesAreTold)
{
    const TalIbis* const handle = ReadModel("(p (Usage In)(Type Float)(Value 1))");
    const std::string file = TestFolder() + "/t.ibs";
    const std::string unknown = "-1: Model 'X' is not found in the IBIS file '" + file + "'";
    const std::string none =
        "-1: Either model 'N' in the IBIS file '" + file +
        "'\n does not have Algorithm Model or IBIS Parser detected\n error when parsing Algorithm Model";
    const std::string index =
        "-1: Error indexing AMI parameters from the AMI file 'p.ami'.\n Please check the AMI file "
        "and/or reset the AMI component.";
    for (const auto query :
         {&TalIbis::getAMIParamTree, &TalIbis::getAMIParamAttrs, &TalIbis::getAMIDataChoices}) {
        const auto ask = [&](const char* model, int i) { return Ask(query, handle, model, i); };
        EXPECT_EQ(ask("X", 0), (Lines{unknown}));
        EXPECT_EQ(ask("N", 0), (Lines{none}));
        EXPECT_EQ(ask("M", 2), (Lines{index}));
        EXPECT_EQ(ask("M", -1), (Lines{index}));
        EXPECT_EQ(ask(nullptr, 0), Lines{});
    }
    EXPECT_EQ(Info(handle, "X", 0), unknown);
    EXPECT_EQ(Info(handle, "N", 0), none);
    EXPECT_EQ(Info(handle, "M", 2), index);
    const auto ask = [&](void (TalIbis::*query)(const char*, TalIbisStringQueryData&) const,
                         const char* model) {
        TalIbisStringQueryData result;
        (handle->*query)(model, result);
        return result.getStatus() == QueryOk ? result.getData() : result.getErrMsg();
    };
    EXPECT_EQ(ask(&TalIbis::getAMIFileName, "M"), "p.ami");
    EXPECT_EQ(ask(&TalIbis::getAMIFileName, "X"), "Model 'X' not found in the IBIS file '" + file + "'");
    EXPECT_EQ("-1: " + ask(&TalIbis::getAMIFileName, "N"), none);
    EXPECT_EQ(ask(&TalIbis::getAMIParamNum, "M"), "2");
    EXPECT_EQ("-1: " + ask(&TalIbis::getAMIParamNum, "X"), unknown);
    EXPECT_EQ(ask(&TalIbis::getAMIParamNum, "N"),
              "Either model 'N' in the IBIS file '" + file +
                  "' does not\n does not have Algorithm Model or IBIS Parser "
                  "detected\n error when parsing Algorithm Model");
    EXPECT_EQ(handle->getAMIParamNum("X"), 0U);
    EXPECT_TRUE(handle->isAMIModel("M"));
    EXPECT_FALSE(handle->isAMIModel("N"));
    EXPECT_FALSE(handle->isAMIModel("X"));
}

TEST(AmiQueries, TheCodeFileOfThisPlatform)
{
    ReadModel("(p (Usage In)(Type Float)(Value 1))", VERSION_61,
              "Executable Windows_vs_64 w.dll p.ami\nExecutable LINUX_gcc_64 dir/first.so p.ami\n"
              "Executable linux_cc_64 last.so p.ami\nExecutable Linux_gcc_32 narrow.so p.ami\n");
    ibis* root = nullptr;
    ASSERT_EQ(IBIS_GetCurrent(&root), 1);
    const nuibis_mdl* const other = root->pModels;
    const nuibis_mdl* const model = other->pNext;
    const auto find = [&](const nuibis_mdl* of, const char* path) {
        std::string name = "before";
        return TalIbis::findAMI_DLL_Name(of, path, name) ? name : "none, " + name;
    };
    EXPECT_EQ(find(model, "/a/b\\c/t.ibs"), "/a/b\\c/last.so");
    EXPECT_EQ(find(model, "C:\\a\\t.ibs"), "C:\\a\\last.so");
    EXPECT_EQ(find(model, "t.ibs"), "beforelast.so");
    EXPECT_EQ(find(other, "/a/t.ibs"), "none, before");
    EXPECT_EQ(find(nullptr, "/a/t.ibs"), "none, before");
}

TEST(AmiQueries, TheBranchesDownToAParameter)
{
    const TalIbis* const handle = ReadModel("(g (x 1)(h (a (Usage In)(Type Float)(Value 1))))");
    EXPECT_EQ(Ask(&TalIbis::getAMIParamTree, handle, "M", 0),
              (Lines{"r", "Reserved_Parameters", "AMI_Version"}));
    EXPECT_EQ(Ask(&TalIbis::getAMIParamTree, handle, "M", 1), (Lines{"r", "Model_Specific", "g", "h", "a"}));
}

TEST(AmiQueries, Attributes)
{
    EXPECT_EQ(Attributes("(Usage In)(Type Integer)(Value 3)"),
              (Lines{"In", "Integer", "Value", "3", "Value"}));
    EXPECT_EQ(Attributes("(Usage In)(Default 4)(Type Integer)(Value 3)"),
              (Lines{"In", "Integer", "Value", "4", "Default"}));
    EXPECT_EQ(Attributes("(Usage Out)(Type UI)(Range 1 0 2)"), (Lines{"Out", "UI", "Range", "1", "null"}));
    EXPECT_EQ(Attributes("(Usage Info)(Type Float)(Dual-Dirac 1 2 3)"),
              (Lines{"Info", "Float", "Dual-Dirac", "1,2,3", "User specified"}));
    EXPECT_EQ(Attributes("(Usage Info)(Type Float)(Table (1 2))"),
              (Lines{"Info", "Float", "null", "null", "null"}));
    EXPECT_EQ(Attributes("(Description x)"), (Lines{"null", "null", "null", "null", "null"}));
}

TEST(AmiQueries, AParameterAsText)
{
    EXPECT_EQ(
        Info(ReadModel("(p (Usage In)(Type Integer)(List 1 2)(Default 2)(Description \"a b\"))"), "M", 1),
        "(Usage In) (Type Integer) (Format List 1 2) (Default 2) (Description a b) ");
    EXPECT_EQ(
        Info(ReadModel("(p (Type Integer Float)(Usage Info)(Table (Labels \"a b\" c)(1 2)(3 4)))"), "M", 1),
        "(Type Integer Float) (Usage Info) (Format Table (Labels \"a b\" \"c\") (1 2) (3 4)) ");
    EXPECT_EQ(Info(ReadModel("(p (Description x)(other 1))"), "M", 1), "(Description x) ");
}

TEST(AmiQueries, DataChoices)
{
    EXPECT_EQ(Choices("(Type Integer)(Value 3)(Default 4)"), (Lines{"Value", "3", "3"}));
    EXPECT_EQ(Choices("(Type String)(Value a)"), (Lines{"Value", "\"a\"", "\"a\""}));
    EXPECT_EQ(Choices("(Type Float)(Range 1 0 2)"),
              (Lines{"Typ", "Min", "Max", "User specified", "1", "0", "2", "1"}));
    EXPECT_EQ(Choices("(Type Float)(Range 1 0 2)(Default 1.5)"),
              (Lines{"Default", "Typ", "Min", "Max", "User specified", "1.5", "1", "0", "2", "1.5"}));
    EXPECT_EQ(Choices("(Type String)(Corner a b c)"),
              (Lines{"Typ", "Slow", "Fast", "User specified", "\"a\"", "\"b\"", "\"c\"", "\"a\""}));
    EXPECT_EQ(Choices("(Type Integer)(List 1 2 3)(Default 2)"),
              (Lines{"Default", "Typ", "User specified", "1", "2", "3", "2", "1", "2"}));
    EXPECT_EQ(Choices("(Type Float)(Gaussian 1 2)"), (Lines{"User specified", "1,2"}));
    EXPECT_EQ(Choices("(Type Float)(Default 1)"), (Lines{"2: Format is not found"}));
}

TEST(AmiQueries, GeneratedChoices)
{
    EXPECT_EQ(Choices("(Type Float)(Increment 0 0 1 0.5)"),
              (Lines{"User specified", "0", "0.5", "1", "0", "0.5", "1"}));
    EXPECT_EQ(Choices("(Type Float)(Increment 0 0 1 0.4)(Default 0)"),
              (Lines{"Default", "User specified", "0", "0.4", "0.8", "0", "0.4", "0.8"}));
    EXPECT_EQ(Choices("(Type Float)(Steps 1 1 2 4)"),
              (Lines{"User specified", "1", "1.25", "1.5", "1.75", "2", "1", "1.25", "1.5", "1.75", "2"}));
    EXPECT_EQ(Choices("(Type Float)(Increment 0 0 1 0)"), (Lines{"User specified", "0", "0"}));
    EXPECT_EQ(Choices("(Type Float)(Steps 0 0 1 0)"), (Lines{"User specified", "0", "0"}));
    const Lines many = Choices("(Type Float)(Increment 0 0 1 1e-9)");
    EXPECT_EQ(many.size(), 20'002U);
    EXPECT_EQ(many.back(), "2: Only the first values are listed");
}

TEST(AmiValues, CopiesAreTheirOwnAndEachKindAnswersForItself)
{
    TalIbisAMI_TableValue text;
    text.setStringValue("a");
    TalIbisAMI_TableValue copy;
    copy = text;
    text.setRealValue(2.5);
    EXPECT_STREQ(copy.getStringValue(), "a");
    EXPECT_EQ(copy.getRealValue(), 0.0);
    EXPECT_EQ(text.getRealValue(), 2.5);
    EXPECT_EQ(text.getStringValue(), nullptr);
    copy.setBooleanValue(true);
    EXPECT_EQ(copy.getIntValue(), 1);

    TalIbisAMI_Value value;
    value.setStringValue("x");
    TalIbisAMI_Value other;
    other = value;
    value.setRealValue(1.5);
    EXPECT_STREQ(other.getStringValue(), "x");
    EXPECT_EQ(other.getRealValue(), 0.0);
    EXPECT_EQ(value.getRealValue(), 1.5);

    const Lines tokens{"1", "2", "3", "4"};
    AMI_Table table;
    table.setTableData(tokens.begin(), tokens.end(), 2, 2);
    AMI_Table second(table);
    AMI_Table third;
    third = std::move(second);
    table = *&table;
    for (const AMI_Table* each : {&table, &third}) {
        EXPECT_EQ(each->getNumRows(), 2U);
        EXPECT_EQ(each->getNumColumns(), 2U);
        EXPECT_EQ(each->getCells().size(), 4U);
    }
}
