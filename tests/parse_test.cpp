#include "ibis/source/nuibis_parse.h"

#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_msg.h"
#include "ibis/source/nuibis_state.h"
#include "tests/builders.h"

#include <algorithm>
#include <fstream>
#include <set>

namespace
{

// A clean file with `lines` ahead of its [End]; they begin on line 12.
std::string With(std::string_view lines, std::string_view version = "4.2")
{
    return Bare(Component("U1", "1 S1 NC 50m 2nH 1pF\n") + std::string(lines), version);
}

}  // namespace

TEST(Driver, KeywordLines)
{
    const struct {
        const char* lines;
        Lines messages;
    } rows[] = {
        {"[No Such Keyword]\nx y\n",
         {"ERROR (line   12) - Invalid Keyword: No_Such_Keyword",
          "ERROR (line   13) - Data for unknown keyword.\nx y"}},
        {"[]\n", {"ERROR (line   12) - Invalid Keyword."}},
        {"[Notes\n", {"ERROR (line   12) - Keyword Missing Ending Bracket (']')."}},
        {" [Model Selector] S\n", {"ERROR (line   12) - Keywords Must Begin In Column 1."}},
        {"[MODEL_selector] S\n", {}},
        {"[Model  Selector] S\n", {"ERROR (line   12) - Invalid Keyword: Model__Selector"}},
        {"[Begin Board Description] B\nx\n", {"ERROR (line   12) - Illegal keyword for a '.ibs' file."}},
        {"[IBIS Ver] 4.2\n[File Name] t.ibs\n[File Rev] 1\n[Notes] x\n[IBIS Ver] 4.2\n",
         {"ERROR (line   12) - Duplicate IBIS_Ver keyword.", "ERROR (line   16) - Duplicate IBIS_Ver keyword",
          "ERROR (line   16) - Duplicate IBIS_Ver keyword.",
          "ERROR - Required keyword 'File_name' not found in file 't.ibs'.",
          "ERROR - Required keyword 'File_Rev' not found in file 't.ibs'."}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Messages(With(row.lines)), row.messages) << row.lines;
    }
}

// An invalid keyword swallows the end of the group before it: the component's own check does not run.
TEST(Driver, InvalidKeywordSwallowsTheEndOfAGroup)
{
    const std::string component = "[Component] C2\n[Manufacturer] A\n";
    EXPECT_EQ(Messages(With(component)),
              (Lines{"ERROR - Keyword 'Package' not defined for Component 'C2'.",
                     "ERROR - Unable to find Pin keyword data for Component 'C2'."}));
    EXPECT_EQ(Messages(With(component + "[Bad]\n")),
              (Lines{"ERROR (line   14) - Invalid Keyword: Bad",
                     "ERROR - Unable to find Pin keyword data for Component 'C2'."}));
}

TEST(Driver, KeywordsFollowTheVersion)
{
    const std::string unknown = "ERROR (line   12) - Invalid Keyword: ";
    EXPECT_EQ(Messages(With("[Model Selector] S\n", "2.1")), (Lines{unknown + "Model_Selector"}));
    EXPECT_EQ(Messages(With("[Test Load] L\n", "3.2")), (Lines{unknown + "Test_Load"}));
    EXPECT_EQ(Messages(With("[Begin EMI Component]\n", "4.2")), (Lines{unknown + "Begin_EMI_Component"}));
    EXPECT_EQ(Messages(With("[Repeater Pin] x\n", "5.1")), (Lines{unknown + "Repeater_Pin"}));
    EXPECT_EQ(Messages(With("[IBIS Ver] 6.1\n", "6.1")), (Lines{unknown + "IBIS_Ver"}));
}

// The table of the file before rules the first keyword: behind a 6.1 file, [IBIS Ver] is no keyword.
TEST(Driver, VersionOfTheFormerFileRulesTheFirstKeyword)
{
    ASSERT_EQ(Messages(Ibs(Model("M"), "6.1")), Lines{});
    const std::string path = WriteTestFile("next.ibs", "[IBIS Ver] 4.2\n[File Name] next.ibs\n[End]\n");
    TalIbis* handle = nullptr;
    const IbisErrorContainer& findings = *talReadIbisFile(path.c_str(), IBIS_FILE_IBS, &handle);
    ASSERT_EQ(findings.getNumErrors(), 3U);
    EXPECT_STREQ(findings.getErrMsg(std::size_t{0}), "ERROR (line    1) - Invalid Keyword: IBIS_Ver\n");
    EXPECT_STREQ(findings.getErrMsg(std::size_t{1}), "ERROR (line    2) - Orphan File Header keyword.\n");
}

TEST(Driver, EndAndWhatFollows)
{
    const std::string file = With("");
    EXPECT_EQ(Messages(file + "| a comment\n\n"), Lines{});
    EXPECT_EQ(Messages(file + "data\n[End]\n"),
              (Lines{"ERROR (line   13) - Non-comment line exists after 'End' keyword.",
                     "ERROR (line   14) - Non-comment line exists after 'End' keyword."}));
    const std::string open = file.substr(0, file.rfind("[End]"));
    EXPECT_EQ(Messages(open), (Lines{"ERROR - Required keyword 'End' not found."}));
    EXPECT_EQ(Messages(open + "[End] now\n"),
              (Lines{"ERROR (line   12) - Extraneous data on End keyword line."}));
    EXPECT_EQ(Messages(open + "[END] | done"), Lines{});
}

TEST(Driver, CommentCharacter)
{
    EXPECT_EQ(Messages(With("[Comment Char] !_char ! a note\n! gone\n[Model Selector] S ! \"[x]\"\n")),
              Lines{});
    EXPECT_EQ(Messages(With("[Notes] x\n")), (Lines{"ERROR (line   12) - Orphan File Header keyword."}));
    EXPECT_EQ(Messages(With("[comment_char] #_char text\n")),
              (Lines{"ERROR (line   12) - Too Many Line Items For Keyword COMMENT_CHAR."}));
    EXPECT_EQ(Messages(With("[Comment Char] #_Char\n")),
              (Lines{"ERROR (line   12) - Invalid Comment Character Definition."}));
    EXPECT_EQ(Messages(With("[Comment Char] A_char | note\n")),
              (Lines{"ERROR (line   12) - Invalid Comment Character 'A'."}));
}

TEST(Driver, LineLength)
{
    const std::string of81 = "|" + std::string(80, 'x') + "\n";
    const std::string of121 = "|" + std::string(120, 'x') + "\n";
    EXPECT_EQ(Messages(With(of81, "3.2")), (Lines{"ERROR (line   12) - Exceeds 80 chararacters."}));
    EXPECT_EQ(Messages(With(of81, "4.0")), Lines{});
    EXPECT_EQ(Messages(With(of121, "4.0")), (Lines{"ERROR (line   12) - Exceeds 120 chararacters."}));
}

TEST(Driver, EachFileTypeAdmitsItsGroups)
{
    const auto refused = [](const std::string& keyword, std::string_view name,
                            std::string_view version = "4.2") {
        return Messages(Header(version, name) + keyword + "\nline\n[End]\n", name);
    };
    const Lines package{"ERROR (line    4) - Illegal keyword for a '.pkg' file."};
    const Lines board{"ERROR (line    4) - Illegal keyword for a '.ebd' file."};
    for (const char* keyword : {"[Component] C", "[Model] M", "[Model Selector] S", "[Submodel] S",
                                "[Test Data] D", "[Test Load] L", "[External Circuit] C"}) {
        EXPECT_EQ(refused(keyword, "t.pkg"), package) << keyword;
        const bool circuit = std::string_view(keyword).starts_with("[External");
        EXPECT_EQ(refused(keyword, "t.ebd"), circuit ? package : board) << keyword;
    }
    EXPECT_EQ(refused("[Define Package Model] P", "t.ebd"), board);
    EXPECT_EQ(refused("[Begin Board Description] B", "t.pkg"), package);
    EXPECT_EQ(refused("[Model] M", "t.pkg", "2.1"), package);
}

TEST(Driver, HeadsOfGroupsAreReadWhereTheTablesSaySo)
{
    const std::set<std::string_view> heads{"COMPONENT",
                                           "MODEL",
                                           "EXTERNAL_CIRCUIT",
                                           "DEFINE_PACKAGE_MODEL",
                                           "BEGIN_BOARD_DESCRIPTION",
                                           "MODEL_SELECTOR",
                                           "SUBMODEL",
                                           "TEST_DATA",
                                           "TEST_LOAD"};
    const std::pair<ibis_ver, const char*> versions[] = {{IBIS_VER_2, "2.1"},   {IBIS_VER_3, "3.2"},
                                                         {IBIS_VER_4, "4.2"},   {IBIS_VER_5, "5.1"},
                                                         {IBIS_VER_6_0, "6.0"}, {IBIS_VER_6_1, "6.1"}};
    const std::pair<ibis_file_type, const char*> types[] = {
        {IBIS_FILE_IBS, "t.ibs"}, {IBIS_FILE_PKG, "t.pkg"}, {IBIS_FILE_EBD, "t.ebd"}};
    for (const PARSE_Keyword& keyword : PARSE_GetKeywords()) {
        for (const auto& [version, number] : versions) {
            for (const auto& [type, name] : types) {
                if (!heads.contains(keyword.sText) || (version == IBIS_VER_2 && type == IBIS_FILE_EBD)) {
                    continue;
                }
                const std::string head = "[" + std::string(keyword.sText) + "] X\n[End]\n";
                const Lines lines = Messages(Header(number, name) + head, name);
                const bool isRefused = std::any_of(lines.begin(), lines.end(), [](const std::string& line) {
                    return line.find("Illegal keyword for a") != line.npos ||
                           line.find("Invalid Keyword") != line.npos;
                });
                EXPECT_NE(PARSE_IsRead(keyword, version, type), isRefused) << number << name << head;
            }
        }
    }
}

TEST(Driver, EveryKeywordHasItsVersions)
{
    const std::pair<ibis_ver, int> sizes[] = {{IBIS_VER_2, 50},  {IBIS_VER_3, 88},    {IBIS_VER_4, 109},
                                              {IBIS_VER_5, 121}, {IBIS_VER_6_0, 122}, {IBIS_VER_6_1, 122}};
    for (const auto& [version, size] : sizes) {
        geIbisVersion = version;
        geFileType = IBIS_FILE_IBS;
        int known = 0;
        for (const PARSE_Keyword& keyword : PARSE_GetKeywords()) {
            if (version < keyword.eFirst || version > keyword.eLast) {
                continue;
            }
            ++known;
            nuibis_keyword code = NOT_KEY;
            EXPECT_EQ(PARSE_GetKeyword("[" + std::string(keyword.sText) + "]", NOT_KEY, &code), 1);
            EXPECT_EQ(code, keyword.eCode) << keyword.sText;
        }
        // Keywords that only the place of a text tells have no row of their own: [Manufacturer] of a package,
        // and from 3.x on two of a board and seven of a submodel.
        EXPECT_EQ(known, size - (version < IBIS_VER_3 ? 1 : 10)) << version;
    }
    MSG_ClearContainer();
    EXPECT_EQ(PARSE_GetKeywordName(KEY_PIN), "PIN");
    EXPECT_EQ(PARSE_GetKeywordName(KEY_TEST_LOAD), "Unknown enumerated keyword code");
    EXPECT_EQ(MSG_GetContainer()->getNumErrors(), 1U);
}

// Parameter files become one text: comments cut, quotes protecting them, lines joined with blanks.
TEST(TextPass, JoinsLinesAndCutsComments)
{
    const std::string path = WriteTestFile("t.param", "(a \"b|c\"|note\r\n\n(d)) | x\nend");
    ASSERT_EQ(PARSE_ReadFile(path.c_str(), IBIS_FILE_PARAM), 1);
    EXPECT_EQ(PARSE_GetFileText(), "(a \"b|c\"  (d))  end");
    MSG_ClearContainer();
    const std::string open = WriteTestFile("open.param", "a\n\"b | c\n");
    ASSERT_EQ(PARSE_ReadFile(open.c_str(), IBIS_FILE_PARAM), 1);
    ASSERT_EQ(MSG_GetContainer()->getNumErrors(), 1U);
    EXPECT_STREQ(MSG_GetContainer()->getErrMsg(std::size_t{0}),
                 "ERROR - Unterminated string detected. Possibly started at line 2\n");
    // The string goes on in the next file.
    const std::string next = WriteTestFile("next.param", "x | y\" | z\n");
    ASSERT_EQ(PARSE_ReadFile(next.c_str(), IBIS_FILE_PARAM), 1);
    EXPECT_EQ(PARSE_GetFileText(), "x | y\"  ");
}

// Whatever a file holds, it is read to its end and each fault is told.
TEST(BadInput, IsSurvivedWithAMessage)
{
    const auto unreadable = [](std::string_view content) { return Messages(content); };
    EXPECT_EQ(unreadable(""), Lines{});
    EXPECT_EQ(unreadable("no keyword\n"),
              (Lines{"ERROR - IBIS Version Cannot be Determined. Perhaps the file is not an IBIS file."}));
    EXPECT_EQ(unreadable(std::string(4096, '\0')),
              (Lines{"ERROR - The file is a binary file, not an IBIS file."}));
    // Form feeds pass the look at the first block; the line reader tells each of them.
    EXPECT_EQ(unreadable(std::string(4096, '\f')).size(), 4097U);
    EXPECT_EQ(MessagesOfFile(TestFolder() + "/absent.ibs", IBIS_FILE_IBS),
              (Lines{"ERROR - Unable To Open File '" + TestFolder() + "/absent.ibs'"}));
    EXPECT_EQ(MessagesOfFile(TestFolder(), IBIS_FILE_PARAM),
              (Lines{"ERROR - Unable To Open File '" + TestFolder() + "'"}));
    const std::string token(1023, 't');
    const Lines lines = Messages(
        With(token + "\n[Model] " + token + "\n" + token + " = 1\n" + token + "]\n[" + token + "\n"));
    EXPECT_GT(lines.size(), 5U);
}

TEST(BadInput, IllegalCharactersAheadOfTheVersionAreToldByEachPass)
{
    const Lines lines = MessagesWith("illegal control", "\x01\n" + With(""));
    EXPECT_EQ(
        lines,
        Lines(3, "ERROR (line    0) -\n    Found illegal control character (code 1).  Converting to space."));
}
