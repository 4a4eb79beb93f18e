#include "tests/builders.h"
#include "tests/programs.h"

namespace
{

struct Row {
    std::string words;
    int iResult;
    std::string out;  // texts, without the summary
};

Result RunEntry(const std::string& words, bool withErrors = false)
{
    return RunProgram(TALIBIS_ENTRY, words, withErrors);
}

void ExpectResults(const std::vector<Row>& rows)
{
    for (const Row& row : rows) {
        SCOPED_TRACE(row.words);
        const Result result = RunEntry(row.words);
        EXPECT_EQ(result.status, row.iResult);
        EXPECT_EQ(result.out, row.out);
    }
}

const std::string NO_COMPONENT = "ERROR - Required keyword 'Component' not found.\n";

}  // namespace

TEST(Main, ArgumentsAndKindsOfFiles)
{
    const std::string good = WriteTestFile("main.ibs", Header("5.1", "main.ibs") + "[End]\n");
    const std::string package = WriteTestFile("main.pkg", Header("5.1", "main.pkg") + "[End]\n");
    const std::string board = WriteTestFile("main.ebd", Header("3.2", "main.ebd") + "[End]\n");
    const std::string parameters =
        WriteTestFile("main.ami", "(m (Reserved_Parameters (AMI_Version (Usage Info) "
                                  "(Type String) (Value \"5.1\"))))\n");
    ExpectResults({
        {"", 1, ""},
        {"-numbered", 1, ""},
        {good, 0, NO_COMPONENT},
        {good + " -x", 1, ""},
        {"-x " + good, 1, ""},
        {good + " " + good + " -pkg", 1, ""},
        {"-Ebd " + board, 1, ""},
        {"-Caution " + good, 1, ""},
        {"-caution " + good, 0, NO_COMPONENT},
        {good + " -CAUTION", 0, NO_COMPONENT},
        {package + " -pkg", 0, ""},
        {"-caution -PKG " + package, 0, ""},
        {"-ebd " + board, 0, ""},
        {board + " -EBD", 0, ""},
        {"-ami " + parameters, 0, ""},
        {parameters + " -AMI", 0, ""},
    });
}

TEST(Main, FilesWithoutAVersionOfTheirKind)
{
    const std::string noVersion = WriteTestFile("mnone.ibs", "| text\n[Component] U1\n");
    const std::string absent = TestFolder() + "/absent.ibs";
    const std::string empty = WriteTestFile("mempty.ibs", "");
    const std::string oldBoard = WriteTestFile("mold.ebd", "[IBIS Ver] 2.1\n");
    const std::string oldestBoard = WriteTestFile("moldest.ebd", "[IBIS Ver] 1.1\n");
    ExpectResults({
        {absent, 2, "ERROR - Unable To Open File '" + absent + "'\n"},
        {empty, 2, ""},
        {noVersion, 3, ""},
        {"-ebd " + oldBoard, 3, ""},
        {"-ebd " + oldestBoard, 3, ""},
    });
}

// Files of version 1.x have the result and the texts of their own reader.
TEST(Main, OldFiles)
{
    const std::string bad = WriteTestFile("mold.ibs", "[IBIS Ver] 1.1\n[File Name] mold.ibs\n");
    const std::string good = WriteTestFile(
        "mgood.ibs", Header("1.1", "mgood.ibs") + Component("U1", "1 A M\n") + Model("M") + "[End]\n");
    const std::string package = WriteTestFile("mold.pkg", "[IBIS Ver] 1.1\n");
    ExpectResults({
        {bad, 1,
         "ERROR - Missing Keyword: File Rev\nERROR - Missing Keyword: Model\nERROR - Missing Keyword: End\n"},
        {good, 0, ""},
        {"-pkg " + package, 1, "ERROR - Filename Requires 'ibs' Extension.  ABORTING!!!\n"},
    });
}

// The summary counts what the switches let through; numbered texts are stored nowhere.
TEST(Main, SummaryAndSwitches)
{
    const std::string bad = WriteTestFile("t.ibs", Bare(""));
    const std::string failed = "\nErrors  : 1\n\nFile Failed\n";
    EXPECT_EQ(RunEntry(bad, true).out, failed + NO_COMPONENT);
    EXPECT_EQ(RunEntry("-NumBered " + bad, true).out, failed);
    const std::string doubtful =
        WriteTestFile("t.ibs", Ibs("[Model] M\nModel_type I/O\nVinl = 1\nVinh = 2\nVmeas = 2\n"
                                   "[Voltage Range] 3 3 3\n"));
    EXPECT_EQ(RunEntry(doubtful, true).out.find("autions"), std::string::npos);
    for (const std::string& words : {"-caution " + doubtful, doubtful + " -CAUTION"}) {
        const std::string out = RunEntry(words, true).out;
        EXPECT_NE(out.find("Cautions: 1\n\nFile Failed\n"), std::string::npos) << out;
        EXPECT_NE(out.find("CAUTION - Vmeas is >= Vinh for model M\n"), std::string::npos) << out;
    }
}
