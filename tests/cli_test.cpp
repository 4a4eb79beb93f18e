// The command line, run as a user runs it.

#include "tests/builders.h"
#include "tests/programs.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>

namespace
{

using nlohmann::json;
using namespace std::string_literals;

Result RunTalibis(const std::string& words, bool withErrors = false)
{
    return RunProgram(TALIBIS_PROGRAM, words, withErrors);
}

std::string Quoted(const std::string& path)
{
    return "'" + path + "'";
}

std::vector<json> Objects(const std::string& out)
{
    std::vector<json> objects;
    std::istringstream lines(out);
    for (std::string line; std::getline(lines, line);) {
        objects.push_back(json::parse(line));
    }
    return objects;
}

}  // namespace

// Behind a 6.1 file the next one is not read under its rules: each has a process of its own.
TEST(CommandLine, FilesAreCheckedEachOnItsOwn)
{
    const std::string same = WriteTestFile("t.ibs", Ibs(Model("M"), "6.1"));
    const Result both = RunTalibis("check " + Quoted(same) + " " + Quoted(same));
    EXPECT_EQ(both.out, same + ": no findings\n" + same + ": no findings\n2 files: no findings\n");
    EXPECT_EQ(both.status, 0);
    const Result missing = RunTalibis("check " + Quoted(same) + " /no/such.ibs");
    EXPECT_EQ(missing.out,
              same + ": no findings\n/no/such.ibs: error: Unable To Open File '/no/such.ibs' [1905]\n"
                     "2 files: 1 error, 0 warnings; could not be read: 1 file\n");
    EXPECT_EQ(missing.status, 2);
}

TEST(CommandLine, CheckPrintsJson)
{
    const std::string faulty =
        WriteTestFile("faulty.ibs", Header("5.1", "faulty.ibs") + "[Bad]\n[Model] M\n[End]\n");
    const std::string pkg = WriteTestFile("p.PKG", Header("5.1", "p.pkg") + "[End]\n");
    const Result result =
        RunTalibis("check --format json " + Quoted(faulty) + " " + Quoted(pkg) + " /no/such.ebd");
    EXPECT_EQ(result.status, 2);
    const std::vector<json> objects = Objects(result.out);
    ASSERT_EQ(objects.size(), 3U);
    EXPECT_EQ(objects[0]["path"], faulty);
    EXPECT_EQ(objects[0]["type"], "ibs");
    EXPECT_EQ(objects[0]["status"], "errors");
    EXPECT_EQ(objects[0]["messages"][0], (json{{"severity", "error"},
                                               {"code", 916},
                                               {"line", 4},
                                               {"text", "ERROR (line    4) - Invalid Keyword: Bad\n"}}));
    EXPECT_EQ(objects[1]["type"], "pkg");
    EXPECT_EQ(objects[1]["status"], "clean");
    EXPECT_EQ(objects[2]["type"], "ebd");
    EXPECT_EQ(objects[2]["status"], "unreadable");
    EXPECT_EQ(objects[2]["messages"][0]["line"], json());
}

TEST(CommandLine, CautionsAndTypesAreAsked)
{
    const std::string file =
        WriteTestFile("t.ibs", Ibs("[Model] M\nModel_type I/O\nVinl = 1\nVinh = 2\nVmeas = 2\nC_comp 1p 1p "
                                   "1p\n[Voltage Range] 3 3 3\n"));
    EXPECT_EQ(RunTalibis("check --format json " + Quoted(file)).out.find("CAUTION"), std::string::npos);
    EXPECT_NE(RunTalibis("check --format json --caution " + Quoted(file))
                  .out.find("CAUTION - Vmeas is >= Vinh for model M\\n"),
              std::string::npos);
    EXPECT_EQ(Objects(RunTalibis("check --format json --type param " + Quoted(file)).out)[0]["type"],
              "param");
    EXPECT_EQ(
        Objects(
            RunTalibis("check --format json " + Quoted(WriteTestFile("notes.txt", "x\n"))).out)[0]["type"],
        "param");
}

TEST(CommandLine, CallPrintsOneValue)
{
    const std::string file = Quoted(WriteTestFile("t.ibs", Bare(Component("U1", "A1 s NC 1 2n NA\n"))));
    EXPECT_EQ(RunTalibis("call deGetIbisCompList " + file + " ibs").out, "[[0,\"\"],[\"U1\"]]\n");
    EXPECT_EQ(RunTalibis("call deGetIbisPinList " + file + " ibs U1").out, "[[0,\"\"],[\"A1\"]]\n");
    EXPECT_EQ(RunTalibis("call deGetIbisC_pin " + file + " ibs U1 A1").out, "[[0,\"\"],\"NA\"]\n");
    EXPECT_EQ(RunTalibis("call deGetIbisVersion " + file + " ibs").out, "[[0,\"\"],\"5.1\"]\n");
    EXPECT_EQ(RunTalibis("call deGetIbisPinList " + file + " ibs", true).out,
              "talibis: parameter 2 of deGetIbisPinList: string parameter is expected (304)\n"
              "[[-1,\"Wrong parameter\"],[]]\n");
    EXPECT_EQ(RunTalibis("call deGetIbisPinList " + file + " ibs int:3").out,
              "[[-1,\"Wrong parameter\"],[]]\n");
    EXPECT_EQ(RunTalibis("call deGetIbisPinList").out, "[[-1,\"File reading failed\"],[]]\n");
    EXPECT_EQ(RunTalibis("call deCheckIbisData /no/such.ibs ibs").out,
              "[[-1,\"ERROR - Unable To Open File '/no/such.ibs'\\n\"],[]]\n");
    EXPECT_EQ(RunTalibis("call deNoFunction").status, 2);
}

TEST(CommandLine, StringsOfAnAlgorithmicModel)
{
    const std::string keyword = "[Algorithmic Model]\nExecutable Linux_gcc_64 code.so ";
    const std::string end = "\n[End Algorithmic Model]\n";
    WriteTestFile("code.so", "");
    WriteTestFile("bad.ami", "(m)");
    WriteTestFile("p.ami",
                  "(m (Reserved_Parameters (DLL_ID (Usage In)(Type String)(Value x)))(Model_Specific "
                  "(i (Usage Info)(Type Float)(Value 2))(g (o (Usage Out)(Type Integer)(Value 1)))"
                  "(a (Usage InOut)(Type Float)(Range 0.5 0 1))))");
    const std::string file =
        Quoted(WriteTestFile("t.ibs", Ibs(Model("M", keyword + "p.ami" + end) + Model("N") +
                                          Model("B", keyword + "bad.ami" + end))));
    EXPECT_EQ(RunTalibis("ami-input " + file + " M", true).out,
              "(m\n    (DLL_ID \"M\")\n    (i 2)\n    (g\n      (o 1)\n    )\n    (a 0.5)\n)");
    EXPECT_EQ(RunTalibis("ami-input --inputs-only " + file + " M").out,
              "(m\n    (DLL_ID \"M\")\n    (g\n    )\n    (a 0.5)\n)");
    const auto report = [](const std::string& ok, const std::string& o, const std::string& warnings,
                           const std::string& errors) {
        return R"({"ok":)" + ok + R"(,"warnings":")" + warnings + R"(","errors":")" + errors +
               R"(","params":{"DLL_ID":"\"M\"","i":"2","o":")" + o + R"(","a":"0.5"}})" + '\n';
    };
    const auto output = [&](const std::string& text) {
        const std::string path = Quoted(WriteTestFile("out.txt", text));
        const Result result = RunTalibis("ami-output " + file + " M <" + path);
        EXPECT_EQ(result.status, 0) << text;
        return result.out;
    };
    EXPECT_EQ(output("(m (g (o 7)) (i 9))\n"), report("true", "7", "", ""));
    EXPECT_EQ(output("(M (z 1) (g (o -1)))"),
              report("true", "-1", "z could not be found in AMI parameter tree. It was ignored.\\n", ""));
    EXPECT_EQ(output(""), report("false", "1", "", "Incomplete AMI DLL output string."));
    for (const std::string& command : {"ami-input "s, "ami-output "s}) {
        const auto refused = [&](const std::string& words) {
            const Result result = RunTalibis(command + words + " </dev/null", true);
            EXPECT_EQ(result.status, 2) << words;
            return result.out;
        };
        const std::string path = file.substr(1, file.size() - 2);
        EXPECT_EQ(refused(file + " X"), "talibis: there is no model 'X' in " + path + "\n");
        EXPECT_EQ(refused(file + " N"), "talibis: model 'N' in " + path + " has no algorithmic model\n");
        EXPECT_EQ(refused(file + " B"),
                  "ERROR - Too few nodes in branches or leaves.\n"
                  "talibis: the parameter file 'bad.ami' of model 'B' cannot be used\n");
        EXPECT_EQ(refused("/no/such.ibs M"), "ERROR - Unable To Open File '/no/such.ibs'\n"
                                             "talibis: /no/such.ibs could not be read\n");
    }
}

TEST(CommandLine, FunctionsAreListedWithTheirParameters)
{
    const std::string list = RunTalibis("functions").out;
    EXPECT_NE(list.find("deCheckIbisData file type\n"), std::string::npos);
    EXPECT_NE(list.find("deGetIbisR_series file type model state corner\n"), std::string::npos);
}

TEST(CommandLine, WrongUsageIsOneClearLine)
{
    for (const char* words : {"--nonsense", "check", "check --format xml x", "check --type doc x",
                              "check --jobs 0 x", "check --max-per-code 0 x", "check --fail-on all x",
                              "check --color red x", "", "guess", "ami-input x"}) {
        const Result result = RunTalibis(words, true);
        EXPECT_EQ(result.status, 2) << words;
        EXPECT_TRUE(result.out.starts_with("talibis: ")) << result.out;
        EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 1) << result.out;
    }
    EXPECT_EQ(RunTalibis("--help").status, 0);
    EXPECT_TRUE(RunTalibis("--version").out.starts_with("talibis "));
}

// docs/keywords.md is written by the command.
TEST(CommandLine, KeywordsAreThoseOfTheDocument)
{
    std::ifstream file(std::string(TALIBIS_SOURCE_DIR) + "/docs/keywords.md");
    const std::string document{std::istreambuf_iterator<char>(file), {}};
    const Result result = RunTalibis("keywords");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, document);
}
