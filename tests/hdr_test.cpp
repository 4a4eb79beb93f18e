#include "ibis/source/nuibis_hdr.h"

#include "ibis/source/nuibis_ibis.h"
#include "tests/builders.h"

namespace
{

Lines HeaderMessages(std::string_view header, std::string_view name = "t.ibs")
{
    return Unfolded(
        Messages(std::string(header) + Component("U1", "1 S1 NC 50m 2nH 1pF\n") + "[End]\n", name));
}

}  // namespace

TEST(HeaderKeywords, VersionLine)
{
    const std::string rest = "[File Name] t.ibs\n[File Rev] 1\n";
    for (const char* version :
         {"2.0", "2.1", "3.0", "3.1", "3.2", "4.0", "4.1", "4.2", "5.0", "5.1", "6.0", "6.1"}) {
        EXPECT_EQ(HeaderMessages("[IBIS_Ver] " + std::string(version) + " | note\n" + rest), Lines{})
            << version;
    }
    EXPECT_EQ(HeaderMessages("[IBIS Ver] 5.2\n" + rest),
              (Lines{"ERROR (line    1) - Illegal IBIS_Version '5.2'."}));
    EXPECT_EQ(HeaderMessages("[IBIS Ver] 6.05\n" + rest),
              (Lines{"ERROR (line    1) - Illegal IBIS_Version '6.05'."}));
    for (const char* version : {"7.0", "6.2", "60", "x", ""}) {
        EXPECT_EQ(HeaderMessages("[IBIS Ver] " + std::string(version) + "\n" + rest),
                  (Lines{"ERROR - IBIS Version Cannot be Determined. Perhaps the file is not an IBIS file."}))
            << version;
    }
}

TEST(HeaderKeywords, FileName)
{
    const auto messages = [](const std::string& version, const std::string& value,
                             const std::string& opened) {
        return HeaderMessages("[IBIS Ver] " + version + "\n[File Name] " + value + "\n[File Rev] 1\n",
                              opened);
    };
    const std::string line = "ERROR (line    2) - ";
    EXPECT_EQ(messages("4.2", "T.IBS", "t.ibs"), Lines{});
    EXPECT_EQ(messages("4.2", "other.ibs", "t.ibs"),
              (Lines{line + "File name opened 't.ibs' not the same as File_name 'other.ibs'."}));
    EXPECT_EQ(messages("4.2", "a.b.ibs", "a.b.ibs"),
              (Lines{line + "File_name 'a.b.ibs' contains more than one period."}));
    EXPECT_EQ(messages("4.2", "ibs", "ibs.ibs"),
              (Lines{line + "File_name 'ibs' must contain one period.",
                     line + "File name opened 'ibs.ibs' not the same as File_name 'ibs'."}));
    EXPECT_EQ(messages("4.2", "a b+c.ibs", "a b+c.ibs"),
              (Lines{line + "File_name 'a b+c.ibs' contains a character ' ' that is illegal for DOS.",
                     line + "File_name 'a b+c.ibs' contains a character '+' that is illegal for DOS."}));
    const std::string thirteen = "abcdefghi.ibs";
    EXPECT_EQ(messages("2.1", thirteen, thirteen),
              (Lines{line + "File_name string 'abcdefghi.ibs' is too long, truncating to 12 characters.",
                     line + "File name opened 'abcdefghi.ibs' not the same as File_name 'abcdefghi.ib'."}));
    const std::string twentyFive = std::string(21, 'x') + ".ibs";
    EXPECT_EQ(messages("3.2", twentyFive, twentyFive), (Lines{line + "File_name string '" + twentyFive +
                                                              "' is too long, maximum length 24 allowed."}));
    EXPECT_EQ(messages("4.2", twentyFive, twentyFive), Lines{});
}

TEST(HeaderKeywords, RepeatsOrphansAndMissingOnes)
{
    EXPECT_EQ(
        HeaderMessages("[IBIS Ver] 4.2\n[File Name] t.ibs\n[File Rev]\n[File Rev] 2\n[File Name] t.ibs\nx\n"
                       "[Date] NA\n[Date] x\n[Source] s\n[Source] s\n[Notes]\n[Notes]\n[Disclaimer] d\n"
                       "[Disclaimer] d\n[Copyright] c\n[Copyright] c\n"),
        (Lines{"ERROR (line    3) - Zero length value for keyword 'File_Rev'.",
               "ERROR (line    4) - Duplicate File_Rev keyword.",
               "ERROR (line    5) - Duplicate File_name keyword.", "ERROR (line    6) - Orphan Data Line.",
               "ERROR (line    7) - Illegal use of Reserved Word 'NA'.",
               "ERROR (line    8) - Duplicate Date keyword.", "ERROR (line   10) - Duplicate Source keyword.",
               "ERROR (line   12) - Duplicate Notes keyword.",
               "ERROR (line   16) - Duplicate Copyright keyword."}));
    EXPECT_EQ(HeaderMessages("[IBIS Ver] 4.2\n"),
              (Lines{"ERROR - Required keyword 'File_name' not found in file 't.ibs'.",
                     "ERROR - Required keyword 'File_Rev' not found in file 't.ibs'."}));
    EXPECT_EQ(
        Messages(Bare(Component("U1", "1 S1 NC 50m 2nH 1pF\n") + "[Source] late\nline\n")),
        (Lines{"ERROR (line   12) - Orphan File Header keyword.", "ERROR (line   13) - Orphan Data Line."}));
}

TEST(HeaderKeywords, TextsJoinTheirLines)
{
    ReadHandle(
        "[IBIS Ver] 4.2\n[File Name] t.ibs\n[File Rev] 1.0a\n[Date] today\n[Source]\n\none | cut\n| comment\n"
        "  [two]\n[Notes] n\n[Disclaimer] a\nb\n[Copyright] c\n[Disclaimer] d\n[End]\n");
    ibis* root = nullptr;
    ASSERT_EQ(IBIS_GetCurrent(&root), 1);
    const HDR* const header = root->pHeaders;
    const std::pair<int (*)(const HDR*, const char**), const char*> fields[] = {
        {HDR_GetIbisVer, "4.2"},        {HDR_GetFileName, "t.ibs"}, {HDR_GetFileRev, "1.0a"},
        {HDR_GetDate, "today"},         {HDR_GetNotes, "n"},        {HDR_GetSource, "\none\n[two]"},
        {HDR_GetDisclaimer, "a\nb\nd"}, {HDR_GetCopyright, "c"},
    };
    for (const auto& [get, expected] : fields) {
        const char* text = nullptr;
        EXPECT_EQ(get(header, &text), 1);
        EXPECT_STREQ(text, expected);
    }
    const HDR empty{};
    const char* text = "";
    EXPECT_EQ(HDR_GetSource(&empty, &text), 0);
    EXPECT_EQ(text, nullptr);
}

TEST(FileRoot, ComponentIsRequiredInComponentFilesOnly)
{
    EXPECT_EQ(Messages(Bare(Model("M"))),
              (Lines{"ERROR - Required keyword 'Component' not found.",
                     "WARNING - Model M not referenced in any [Pin], [Model Selector], [Driver Schedule] or "
                     "[Series Pin "
                     "Mapping] sections.\n No more warnings will be generated for un-referenced models"}));
    EXPECT_EQ(Messages(Header("4.2", "t.pkg") + "[End]\n", "t.pkg"), Lines{});
}
