// `talibis check` as people and other programs use it: what it prints in each format, what it leaves out on
// request, and how it behaves with many files.

#include "tests/builders.h"
#include "tests/programs.h"
#include "tests/schema.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <sstream>

namespace
{

using nlohmann::json;

// Run within the test folder, so that the names of files are short and always the same.
Result Check(const std::string& words, bool withErrors = false)
{
    return RunProgram("env", "-C '" + TestFolder() + "' '" TALIBIS_PROGRAM "' check " + words, withErrors);
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

// Two errors of one kind with a line, one at the end of the model, one caution, one note.
constexpr const char* MIXED_BODY =
    "[Model] M\nModel_type I/O\nVinl = 1\nVinh = 2\nVmeas = 2\nVref = x\nRref = y\n"
    "C_comp 1p 1p 1p\n[Voltage Range] 3 3 3\n[GND Clamp]\n0 1m NA NA\n1 0 NA NA\n";

void WriteMixed(const std::string& name = "mixed.ibs")
{
    WriteTestFile(name, Header("5.1", name.substr(name.rfind('/') + 1)) + Component("U1", "1 s M 1 2n 1p\n") +
                            MIXED_BODY + "[End]\n");
}

json Sarif(const std::string& words)
{
    static const json schema = ReadSchema("tests/schema/sarif.schema.json");
    const json document = json::parse(Check("--format sarif " + words).out);
    EXPECT_EQ(SchemaFaults(schema, document), Lines{});
    return document;
}

Lines Fingerprints(const json& sarif)
{
    Lines prints;
    for (const json& result : sarif["runs"][0]["results"]) {
        prints.push_back(result["partialFingerprints"]["finding/v1"]);
    }
    return prints;
}

}  // namespace

TEST(Check, FindingsStandWithTheirLineOrTheirBlock)
{
    WriteMixed();
    const Result result = Check("mixed.ibs", true);
    EXPECT_EQ(result.out, "mixed.ibs:17: error: Invalid Vref Value (\"x\") [149]\n"
                          "    17 | Vref = x\n"
                          "mixed.ibs:18: error: Invalid Rref Value (\"y\") [149]\n"
                          "    18 | Rref = y\n"
                          "mixed.ibs:12: warning: Model M: GND Clamp has Decreasing Current [1111]\n"
                          "       | in [Model] M\n"
                          "mixed.ibs:12: error: Model 'M': Ramp Not Defined [190]\n"
                          "       | in [Model] M\n"
                          "mixed.ibs:12: warning: [Model] M has no description of the buffer's high state\n"
                          "    DC drive characteristics (no [Pullup] table).  This warning\n"
                          "    can be silenced by using an open drain Model_type or by\n"
                          "    adding a [Pullup] table. [1704]\n"
                          "       | in [Model] M\n"
                          "mixed.ibs:12: warning: [Model] M has no description of the buffer's low state DC\n"
                          "    drive characteristics (no [Pulldown] table).  This warning\n"
                          "    can be silenced by using an open source Model_type or by\n"
                          "    adding a [Pulldown] table. [1705]\n"
                          "       | in [Model] M\n"
                          "mixed.ibs: 3 errors, 3 warnings; not shown: 1 caution (--caution)\n");
    EXPECT_EQ(result.status, 1);
}

// One line of a file, and what is shown of it.
TEST(Check, SourceLinesAreHarmless)
{
    const std::string wide(200, 'x');
    const std::vector<std::pair<std::string, std::string>> rows{
        {"Vref\t=\tx", "Vref    =       x"},
        {"Vref = \x1b[31mx", "Vref = \\x1B[31mx"},
        {"Vref = \xb5", "Vref = \\xB5"},
        {"Vref = \xc2\xb5", "Vref = \xc2\xb5"},
        {"Vref = \xc2\x9b", "Vref = \\xC2\\x9B"},
        {"Vref = \xe2\x80\xae", "Vref = \\xE2\\x80\\xAE"},
        {"Vref = x\r", "Vref = x"},
        {"Vref = " + wide, "Vref = " + wide.substr(0, 110) + "..."},
    };
    for (const auto& [line, shown] : rows) {
        WriteTestFile("line.ibs",
                      Header("5.1", "line.ibs") + "[Model] M\nModel_type Input\n" + line + "\n[End]\n");
        EXPECT_NE(Check("line.ibs").out.find("     6 | " + shown + "\n"), std::string::npos)
            << Check("line.ibs").out;
    }
}

// The body of a file, and the place and block of the finding that holds the text.
TEST(Check, BlocksAreFoundByTheNamesInTexts)
{
    struct Row {
        std::string body;
        std::string text;
        std::string place;
        std::string block;
    };
    const std::vector<Row> rows{
        {"[Component] U 1\n[Manufacturer] A\n", "'Package'", ":4", "[Component] U 1"},
        {"[Model] m.1 | first\nModel_type Input\n[model]m.2\nModel_type Input\n", "m.2", ":6", "[Model] m.2"},
        {"[Comment Char] #_char\n[Model] A # [Model] B\nModel_type Input\n", "Model 'A'", ":5", "[Model] A"},
        {"[Notes]\n [Model] A\n[Model] A\nModel_type Input\n", "Model 'A'", ":6", "[Model] A"},
        {"[Model] A\nModel_type Output\n[Ramp]\ndV/dt_r 1/1n NA NA\n", "Beginning on Line 6", ":6", ""},
    };
    for (const Row& row : rows) {
        WriteTestFile("t.ibs", Bare(row.body));
        const std::string out = Check("t.ibs").out;
        std::istringstream lines(out);
        std::string line;
        while (std::getline(lines, line) &&
               (line.find(row.text) == std::string::npos || line.find(" | ") != std::string::npos)) {
        }
        EXPECT_TRUE(line.starts_with("t.ibs" + row.place + ": ")) << row.body << out;
        std::getline(lines, line);
        EXPECT_EQ(line.starts_with("       | in "), !row.block.empty()) << out;
        EXPECT_TRUE(row.block.empty() || line == "       | in " + row.block) << out;
    }
}

// A finding of a parameter file that a component file names stands in the parameter file.
TEST(Check, FindingsOfOtherFilesStandThere)
{
    WriteTestFile("rx.ami", "(rx\n  \"no end\n");
    WriteTestFile(
        "top.ibs",
        Ibs(Model("M",
                  "[Algorithmic Model]\nExecutable Linux_gcc_64 rx.so rx.ami\n[End Algorithmic Model]\n"),
            "6.0"));
    const std::string out = Check("--format gcc top.ibs").out;
    EXPECT_NE(out.find("rx.ami:2: error: Unterminated string detected. Possibly started at line 2 [924]\n"),
              std::string::npos)
        << out;
}

TEST(Check, EditorsGetOneLineAFinding)
{
    WriteMixed();
    EXPECT_EQ(
        Check("--format gcc --caution mixed.ibs /no/such.ibs").out,
        "mixed.ibs:17: error: Invalid Vref Value (\"x\") [149]\n"
        "mixed.ibs:18: error: Invalid Rref Value (\"y\") [149]\n"
        "mixed.ibs:12: note: Vmeas is >= Vinh for model M [183]\n"
        "mixed.ibs:12: warning: Model M: GND Clamp has Decreasing Current [1111]\n"
        "mixed.ibs:12: error: Model 'M': Ramp Not Defined [190]\n"
        "mixed.ibs:12: warning: [Model] M has no description of the buffer's high state DC drive "
        "characteristics "
        "(no [Pullup] table).  This warning can be silenced by using an open drain Model_type or by adding a "
        "[Pullup] table. [1704]\n"
        "mixed.ibs:12: warning: [Model] M has no description of the buffer's low state DC drive "
        "characteristics "
        "(no [Pulldown] table).  This warning can be silenced by using an open source Model_type or by "
        "adding a "
        "[Pulldown] table. [1705]\n"
        "/no/such.ibs: error: Unable To Open File '/no/such.ibs' [1905]\n");
}

TEST(Check, JsonFitsItsSchema)
{
    const json schema = ReadSchema("docs/schema/check.schema.json");
    WriteMixed();
    WriteTestFile("w.toml", "[[waiver]]\ncode = 149\nreason = \"accepted\"\n");
    WriteTestFile("odd.ibs", Header("5.1", "odd.ibs") + "[\xff\x01]\n[End]\n");
    std::size_t objects = 0;
    for (const char* words :
         {"", "--caution", "--waivers w.toml", "--waivers w.toml --show-waived", "--max-per-code 1"}) {
        for (const json& object :
             Objects(Check(std::string("--format json ") + words + " mixed.ibs odd.ibs /no/such.pkg").out)) {
            EXPECT_EQ(SchemaFaults(schema, object), Lines{}) << object;
            ++objects;
        }
    }
    EXPECT_EQ(objects, 15U);
    const json waived = Objects(Check("--format json --waivers w.toml --show-waived mixed.ibs").out)[0];
    EXPECT_EQ(waived["messages"][0]["waived"], "accepted");
    EXPECT_EQ(waived["waived"], 2);
    EXPECT_EQ(Objects(Check("--format json --max-per-code 1 mixed.ibs").out)[0]["capped"],
              (json::array({{{"severity", "error"}, {"code", 149}, {"count", 1}}})));
}

// The schemas are worth something only if documents can fail them.
TEST(Check, SchemasRefuse)
{
    const json schema = ReadSchema("docs/schema/check.schema.json");
    const json good{{"path", "a"}, {"type", "ibs"}, {"status", "clean"}, {"messages", json::array()}};
    EXPECT_EQ(SchemaFaults(schema, good), Lines{});
    const std::vector<std::pair<json, std::string>> rows{
        {{{"type", "doc"}}, "$.type is not one of [\"ibs\",\"pkg\",\"ebd\",\"ami\",\"param\"]"},
        {{{"path", 1}}, "$.path is no \"string\""},
        {{{"more", 1}}, "$ must not have more"},
        {{{"waived", -1}}, "$.waived is below 0"},
        {{{"messages", {{{"severity", "error"}, {"code", 1}, {"line", nullptr}}}}},
         "$.messages[0] lacks text"},
    };
    for (const auto& [change, fault] : rows) {
        json bad = good;
        bad.update(change);
        EXPECT_EQ(SchemaFaults(schema, bad), Lines{fault});
    }
    EXPECT_EQ(SchemaFaults({{"pattern", "^a$"}}, "b"), Lines{"$ does not match \"^a$\""});
    EXPECT_EQ(SchemaFaults({{"oneOf", 1}}, "b"), Lines{"the schema uses oneOf"});
}

TEST(Check, SarifIsOneRunWithRulesAndRegions)
{
    WriteMixed();
    std::filesystem::create_directories(TestFolder() + "/a b");
    WriteMixed("a b/mixed.ibs");
    const json document = Sarif("mixed.ibs 'a b/mixed.ibs' /no/such.ibs");
    ASSERT_EQ(document["runs"].size(), 1U);
    const json& run = document["runs"][0];
    const json& rules = run["tool"]["driver"]["rules"];
    ASSERT_EQ(run["results"].size(), 13U);
    std::set<json> ids;
    for (const json& rule : rules) {
        EXPECT_TRUE(ids.insert(rule["id"]).second);
    }
    for (const json& result : run["results"]) {
        EXPECT_EQ(rules[result["ruleIndex"].get<std::size_t>()]["id"], result["ruleId"]);
    }
    EXPECT_EQ(rules[0],
              (json{{"id", "TAL0149"}, {"shortDescription", {{"text", "Invalid ... Value (\"...\")"}}}}));
    EXPECT_EQ(run["results"][0]["locations"][0]["physicalLocation"]["region"],
              (json{{"startLine", 17}, {"snippet", {{"text", "Vref = x"}}}}));
    EXPECT_EQ(run["results"][0]["locations"][0]["logicalLocations"][0]["fullyQualifiedName"], "[Model] M");
    EXPECT_EQ(run["results"][6]["locations"][0]["physicalLocation"]["artifactLocation"]["uri"],
              "a%20b/mixed.ibs");
    EXPECT_EQ(run["results"][12]["locations"][0]["physicalLocation"]["artifactLocation"]["uri"],
              "file:///no/such.ibs");
    EXPECT_EQ(run["invocations"], json::array({{{"executionSuccessful", false}, {"exitCode", 2}}}));
}

TEST(Check, SarifFingerprintsSurviveMovedLines)
{
    const std::string twice = std::string(MIXED_BODY) + "[Ramp]\ndV/dt_r 1/1n NA NA\n";
    const auto write = [&](const std::string& ahead) {
        WriteTestFile("f.ibs", ahead + Header("5.1", "f.ibs") +
                                   Component("U1", "1 s M 1 2n 1p\n1 s M 1 2n 1p\n1 s M 1 2n 1p\n") + ahead +
                                   twice + "[End]\n");
        return Sarif("f.ibs");
    };
    const Lines before = Fingerprints(write(""));
    EXPECT_GT(before.size(), 6U);
    EXPECT_EQ(std::set<std::string>(before.begin(), before.end()).size(), before.size());
    EXPECT_EQ(Fingerprints(write("| one\n| two\n")), before);
    EXPECT_NE(
        std::find_if(before.begin(), before.end(), [](const std::string& f) { return f.ends_with(":2"); }),
        before.end());
}

TEST(Check, SarifKeepsWaivedFindingsAsSuppressions)
{
    WriteMixed();
    WriteTestFile("w.toml",
                  "[[waiver]]\ncode = 190\nreason = \"no edges\"\n[[waiver]]\ncode = 5\nreason = \"old\"\n");
    const json run = Sarif("--waivers w.toml mixed.ibs")["runs"][0];
    EXPECT_EQ(run["results"][3]["suppressions"],
              json::array({{{"kind", "external"}, {"justification", "no edges"}}}));
    EXPECT_FALSE(run["results"][2].contains("suppressions"));
    EXPECT_EQ(run["invocations"][0]["toolExecutionNotifications"][0]["message"]["text"],
              "w.toml:4: the waiver fits no finding (old)");
}

TEST(Check, BuildServersGetASuiteAFile)
{
    WriteTestFile("two.ibs", Header("5.1", "two.ibs") + "[Bad <&>]\n[End]\n");
    WriteTestFile("clean.pkg", Header("5.1", "clean.pkg") + "[End]\n");
    WriteTestFile("w.toml", "[[waiver]]\ntext = \"Component\"\nreason = \"a stub\"\n");
    EXPECT_EQ(
        Check("--format junit --waivers w.toml two.ibs clean.pkg /no/such.ibs").out,
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<testsuites name=\"talibis check\">\n"
        "  <testsuite name=\"two.ibs\" tests=\"2\" failures=\"1\" errors=\"0\" skipped=\"1\">\n"
        "    <testcase classname=\"two.ibs\" name=\"error 916: Invalid Keyword: Bad_&lt;&amp;&gt;\" "
        "file=\"two.ibs\" line=\"4\">\n"
        "      <failure type=\"error\" message=\"Invalid Keyword: Bad_&lt;&amp;&gt;\">[Bad "
        "&lt;&amp;&gt;]</failure>\n"
        "    </testcase>\n"
        "    <testcase classname=\"two.ibs\" name=\"error 4101: Required keyword 'Component' not found.\" "
        "file=\"two.ibs\">\n"
        "      <skipped message=\"a stub\"/>\n"
        "    </testcase>\n"
        "  </testsuite>\n"
        "  <testsuite name=\"clean.pkg\" tests=\"1\" failures=\"0\" errors=\"0\" skipped=\"0\">\n"
        "    <testcase classname=\"clean.pkg\" name=\"no findings\"/>\n"
        "  </testsuite>\n"
        "  <testsuite name=\"/no/such.ibs\" tests=\"1\" failures=\"0\" errors=\"1\" skipped=\"0\">\n"
        "    <testcase classname=\"/no/such.ibs\" name=\"error 1905: Unable To Open File '/no/such.ibs'\" "
        "file=\"/no/such.ibs\">\n"
        "      <error type=\"error\" message=\"Unable To Open File '/no/such.ibs'\"/>\n"
        "    </testcase>\n"
        "  </testsuite>\n"
        "</testsuites>\n");
}

TEST(Check, ACapKeepsTheFirstOfAKind)
{
    WriteMixed();
    const std::string out = Check("--max-per-code 1 --format gcc mixed.ibs").out;
    EXPECT_NE(out.find("mixed.ibs:17: error: Invalid Vref Value (\"x\") [149]\n"), std::string::npos);
    EXPECT_EQ(out.find("mixed.ibs:18:"), std::string::npos);
    EXPECT_NE(out.find("mixed.ibs: note: 1 more error [149] not shown: Invalid Rref Value (\"y\")\n"),
              std::string::npos);
    EXPECT_NE(Check("--max-per-code 1 mixed.ibs")
                  .out.find("mixed.ibs: 3 errors, 3 warnings; not shown: 1 caution (--caution), 1 beyond "
                            "--max-per-code\n"),
              std::string::npos);
    EXPECT_EQ(Check("--max-per-code 2 mixed.ibs").out, Check("mixed.ibs").out);
}

// A waiver, and the summary of the file.
TEST(Check, WaiversNameCodeFileObjectAndText)
{
    std::filesystem::create_directories(TestFolder() + "/vendor/sub");
    WriteMixed("vendor/sub/v.ibs");
    const std::vector<std::pair<std::string, std::string>> rows{
        {"code = 149", "1 error, 3 warnings, 2 waived"},
        {"code = 149\ntext = \"Vref\"", "2 errors, 3 warnings, 1 waived"},
        {"file = \"vendor/*.ibs\"", "no findings, 6 waived"},
        {"file = \"sub/?.ibs\"\ncode = 190", "2 errors, 3 warnings, 1 waived"},
        {"file = \"vendor/?.ibs\"", "3 errors, 3 warnings"},
        {"file = \"vendor\"", "3 errors, 3 warnings"},
        {"object = \"?\"\ncode = 1704", "3 errors, 2 warnings, 1 waived"},
        {"object = \"m\"", "3 errors, 3 warnings"},
        {"text = \"high state DC drive\"", "3 errors, 2 warnings, 1 waived"},
    };
    for (const auto& [waiver, summary] : rows) {
        WriteTestFile("w.toml", "[[waiver]]\nreason = \"r\"\n" + waiver + "\n");
        const Result result = Check("--show-waived --waivers w.toml vendor", true);
        EXPECT_NE(result.out.find("v.ibs: " + summary + "; not shown"), std::string::npos)
            << waiver << result.out;
        EXPECT_EQ(result.status, summary.starts_with("no") ? 0 : 1);
        EXPECT_EQ(result.out.find("waived") == std::string::npos,
                  result.out.find("talibis: warning: w.toml:1: the waiver fits no finding (r)\n") !=
                      std::string::npos)
            << result.out;
    }
}

TEST(Check, BadWaiversEndTheRunWithTheirLine)
{
    WriteMixed();
    const std::vector<std::pair<std::string, std::string>> rows{
        {"[[waiver]]\ncode = \"x\"\nreason = \"r\"\n", "2: code is the number of a message"},
        {"[[waiver]]\ncode = 0\nreason = \"r\"\n", "2: code is the number of a message"},
        {"\n[[waiver]]\ncode = 3\n", "2: the waiver has no reason"},
        {"[[waiver]]\nreason = \"r\"\n", "1: the waiver names nothing: code, file, object or text"},
        {"[[waiver]]\ncode = 1\nreason = 5\n", "3: reason is a text in quotes"},
        {"[[waiver]]\ncodes = 1\n", "2: a waiver has no \"codes\""},
        {"waiver = 1\n", "1: a file of waivers holds [[waiver]] and nothing else"},
        {"waiver = [1]\n", "1: a waiver begins with [[waiver]]"},
    };
    for (const auto& [text, problem] : rows) {
        WriteTestFile("bad.toml", text);
        const Result result = Check("--waivers bad.toml mixed.ibs", true);
        EXPECT_EQ(result.out, "talibis: bad.toml:" + problem + "\n");
        EXPECT_EQ(result.status, 2);
    }
    WriteTestFile("bad.toml", "\n[[waiver\n");
    EXPECT_TRUE(Check("--waivers bad.toml mixed.ibs", true).out.starts_with("talibis: bad.toml:2: "));
    EXPECT_EQ(Check("--waivers none.toml mixed.ibs").status, 2);
}

TEST(Check, FailOnSetsTheLeastSeverity)
{
    // A ramp that misses the swing of the tables by a fifth is worth a caution, a blank in a name a warning.
    WriteTestFile("caution.ibs", Edit(Ibs(Driver("M")), {{"t.ibs", "caution.ibs"}, {"0.99/1n", "0.8/1n"}}));
    WriteTestFile("warning.ibs", Edit(Ibs(Driver("M")), {{"t.ibs", "warning.ibs"}, {"U1", "U 1"}}));
    WriteTestFile("error.ibs", Header("5.1", "error.ibs") + "[End]\n");
    WriteTestFile("w.toml", "[[waiver]]\nfile = \"*\"\nreason = \"r\"\n");
    const std::vector<std::pair<std::string, int>> rows{
        {"caution.ibs", 0},
        {"--fail-on warning --caution caution.ibs", 0},
        {"--fail-on caution caution.ibs", 1},
        {"--fail-on error warning.ibs", 0},
        {"--fail-on warning warning.ibs", 1},
        {"error.ibs warning.ibs", 1},
        {"--fail-on never error.ibs", 0},
        {"--fail-on never /no/such.ibs", 2},
        {"--waivers w.toml error.ibs", 0},
    };
    EXPECT_NE(Check("--fail-on caution caution.ibs").out.find(": caution: "), std::string::npos);
    for (const auto& [words, status] : rows) {
        EXPECT_EQ(Check(words).status, status) << words;
    }
}
