// The read entry and the file cache.

#include "ibis/interface/talibis.h"
#include "ibis/interface/talibis_tool.h"
#include "tests/builders.h"

#include <filesystem>

namespace
{

TalIbis* Read(const std::string& path, ibis_file_type type = IBIS_FILE_IBS)
{
    TalIbis* handle = nullptr;
    talReadIbisFile(path.c_str(), type, &handle);
    return handle;
}

void Touch(const std::string& path, int seconds)
{
    std::filesystem::last_write_time(path, std::filesystem::file_time_type::clock::now() +
                                               std::chrono::seconds(seconds));
}

}  // namespace

TEST(FileCache, AnUnchangedFileIsNotReadAgain)
{
    TalIbis* const first = ReadHandle(Ibs(Model("M")));
    const std::string path = TestFolder() + "/t.ibs";
    EXPECT_EQ(Read(path), first);
    EXPECT_EQ(Read(path, IBIS_FILE_PKG), first);  // the type is no part of the key
    EXPECT_NE(Read(TestFolder() + "/./t.ibs"), first);
    EXPECT_EQ(first->getVersion(), IBIS_VER_5);
    EXPECT_EQ(first->getErrorContainer()->getErrorStatus(), IBIS_STATUS_CLEAN);
}

TEST(FileCache, AChangedFileIsReadAnew)
{
    ReadHandle(Ibs(Model("M")));
    const std::string path = WriteTestFile("t.ibs", Bare(Model("M")));
    Touch(path, 10);
    const TalIbis* const again = Read(path);
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(again->getErrorContainer()->getErrorStatus(), IBIS_STATUS_ERROR);
    std::filesystem::remove(path);
    EXPECT_EQ(Read(path), nullptr);
    EXPECT_STREQ(talGetIbisError(nullptr)->getErrMsg(std::size_t{0}),
                 ("ERROR - Unable To Open File '" + path + "'\n").c_str());
}

TEST(FileCache, MessagesOfAHandleSurviveLaterReads)
{
    const TalIbis* const faulty = ReadHandle(Bare(Model("M")));
    const std::string path = WriteTestFile("u.ibs", Ibs(Model("M")));
    ASSERT_NE(Read(path), nullptr);
    EXPECT_EQ(talGetIbisError(faulty)->getNumErrors(), 2U);
}

TEST(ReadEntry, RefusesWhatIsNoFile)
{
    TalIbis* handle = nullptr;
    talReadIbisFile(nullptr, IBIS_FILE_IBS, &handle);
    EXPECT_EQ(handle, nullptr);
    EXPECT_FALSE(TalIbisFileManager::getInstance()->readIbisFile(nullptr, IBIS_FILE_IBS, nullptr));
    EXPECT_STREQ(talGetIbisError(nullptr)->getErrMsg(std::size_t{0}),
                 "ERROR - IBIS filename is not given.\n");
    EXPECT_EQ(talReadIbisFile("t.ibs", IBIS_FILE_IBS, nullptr), talGetIbisError(nullptr));
    for (const char* version : {"1.1", "2.1"}) {
        EXPECT_EQ(Messages(Header(version, "t.ebd") + "[End]\n", "t.ebd"),
                  (Lines{"ERROR - Version not valid for .ebd files."}));
    }
}

TEST(ReadEntry, BackslashesAreSlashes)
{
    ReadHandle(Ibs(Model("M")));
    std::string path = TestFolder() + "\\t.ibs";
    EXPECT_NE(Read(path), nullptr);
}

TEST(ReadEntry, AnInterruptedLookStopsAtTheFirstKeyword)
{
    EXPECT_EQ(Messages("[Notes] x\n[IBIS Ver] 4.2\n"),
              (Lines{"ERROR - IBIS Version Cannot be Determined. Perhaps the file is not an IBIS file."}));
    EXPECT_EQ(Messages("\n  anything [x]\n" + Ibs(Model("M"))),
              (Lines{"ERROR (line    2) - Data for unknown keyword.\nanything [x]"}));
}

TEST(Tool, ListenerTellsTheStructure)
{
    static std::vector<TalIbisFinding> heard;
    static Lines texts;
    heard.clear();
    talSetListener(
        [](void*, const TalIbisFinding& finding) {
            heard.push_back(finding);
            texts.emplace_back(finding.sText);
        },
        nullptr);
    Messages(Bare("[Bad]\n"));
    talSetListener(nullptr, nullptr);
    ASSERT_EQ(heard.size(), 2U);
    EXPECT_STREQ(heard[0].pszSeverity, "error");
    EXPECT_EQ(heard[0].iCode, 916);
    EXPECT_TRUE(heard[0].bLine);
    EXPECT_EQ(heard[0].uiLine, 4U);
    EXPECT_EQ(texts[0], "ERROR (line    4) - Invalid Keyword: Bad\n");
    EXPECT_EQ(heard[1].iCode, 4101);
    EXPECT_FALSE(heard[1].bLine);
}
