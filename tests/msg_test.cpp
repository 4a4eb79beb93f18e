#include "ibis/source/nuibis_msg.h"

#include "ibis/source/nuibis_state.h"
#include "tests/builders.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <sstream>

namespace
{

// Runs a report against an empty container and gives what was stored.
template <class Report> std::string Stored(Report report)
{
    MSG_ClearContainer();
    report();
    const IbisErrorContainer& container = *MSG_GetContainer();
    return container.getNumErrors() == 1 ? container.getErrMsg(std::size_t{0}) : "";
}

std::string FormatNumber(const char* format, double value)
{
    char text[512];
    const MSG_Arg args[] = {MSG_Arg(value)};
    MSG_Format(text, format, args);
    return text;
}

// What the summary prints on its stream.
std::string Summary()
{
    std::FILE* const file = std::tmpfile();
    MSG_SetSummaryStream(file);
    MSG_Summary();
    std::rewind(file);
    std::string text(256, '\0');
    text.resize(std::fread(text.data(), 1, text.size(), file));
    std::fclose(file);
    MSG_SetSummaryStream(nullptr);
    return text;
}

}  // namespace

TEST(Catalogue, IsSortedAndFindsEveryCode)
{
    EXPECT_TRUE(std::is_sorted(gaMsgCatalogue.begin(), gaMsgCatalogue.end(),
                               [](const MSG_Row& a, const MSG_Row& b) { return a.iCode < b.iCode; }));
    for (std::size_t i = 0; i < gaMsgCatalogue.size(); ++i) {
        const int code = gaMsgCatalogue[i].iCode;
        const int row = MSG_Lookup(code);
        ASSERT_GE(row, 0) << code;
        EXPECT_EQ(gaMsgCatalogue[static_cast<std::size_t>(row)].iCode, code);
        if (code != 5308) {
            EXPECT_EQ(row, static_cast<int>(i));
        }
    }
    EXPECT_STREQ(gaMsgCatalogue[static_cast<std::size_t>(MSG_Lookup(5308))].pszText,
                 "Pin %s has already been connected to a Merging Pin %s");
    EXPECT_EQ(MSG_Lookup(350), -1);
    EXPECT_EQ(MSG_Lookup(-1), -1);
    EXPECT_EQ(MSG_Lookup(6000), -1);
}

TEST(Message, FoldsJustShortOfTheMargin)
{
    MSG_SetSuppressCautions(false);
    geFileType = IBIS_FILE_IBS;
    guiLineNumber = 7;
    const struct {
        std::string (*report)(const std::string& text);
        std::size_t first;
        std::string word;
    } rows[] = {
        {[](const std::string& t) { return Stored([&] { MSG_ErrorText("%s", t); }); }, 72, "ERROR"},
        {[](const std::string& t) { return Stored([&] { MSG_WarningText("%s", t); }); }, 70, "WARNING"},
        {[](const std::string& t) { return Stored([&] { MSG_CautionText("%s", t); }); }, 70, "CAUTION"},
        {[](const std::string& t) { return Stored([&] { MSG_NoteText("%s", t); }); }, 73, "NOTE"},
        {[](const std::string& t) { return Stored([&] { MSG_ErrorLineText("%s", t); }); }, 60,
         "ERROR (line    7)"},
        {[](const std::string& t) { return Stored([&] { MSG_WarningLineText("%s", t); }); }, 58,
         "WARNING (line    7)"},
        {[](const std::string& t) { return Stored([&] { MSG_CautionLineText("%s", t); }); }, 58,
         "CAUTION (line    7)"},
        {[](const std::string& t) { return Stored([&] { MSG_NoteLineText("%s", t); }); }, 61,
         "NOTE (line    7)"},
        {[](const std::string& t) { return Stored([&] { MSG_BugText("%s", t); }); }, 76, "PROGRAM BUG"},
        {[](const std::string& t) { return Stored([&] { MSG_BugLineText("%s", t); }); }, 76,
         "PROGRAM BUG (line    7)"},
    };
    for (const auto& row : rows) {
        for (const std::size_t length : {row.first - 1, row.first, std::size_t{75}, std::size_t{76}}) {
            const std::string text(length, 'x');
            const bool folded = length >= row.first && length <= 75;
            EXPECT_EQ(row.report(text), row.word + (folded ? " -\n    " : " - ") + text + "\n") << length;
        }
    }
    MSG_SetSuppressCautions(true);
}

TEST(Message, LineNumbersWidenTheFrame)
{
    geFileType = IBIS_FILE_IBS;
    guiLineNumber = 12345;
    EXPECT_EQ(Stored([] { MSG_ErrorLine(910); }), "ERROR (line 12345) - Duplicate IBIS_Ver keyword.\n");
    guiParamLineNumber = 3;
    geFileType = IBIS_FILE_AMI;
    EXPECT_EQ(Stored([] { MSG_ErrorLine(910); }), "ERROR (line    3) - Duplicate IBIS_Ver keyword.\n");
}

TEST(Message, FormatsWithinItsBufferInAnyLocale)
{
    EXPECT_EQ(FormatNumber("%g", 0.1), "0.1");
    EXPECT_EQ(FormatNumber("%e", 1.5e-9), "1.500000e-09");
    EXPECT_EQ(FormatNumber("%7.3g|", 1.23456), "   1.23|");
    EXPECT_EQ(FormatNumber("%5.2f|", 3.14159), " 3.14|");
    EXPECT_EQ(FormatNumber("%2.1e", 12345.0), "1.2e+04");
    const std::string huge(5000, 'y');
    const std::string stored = Stored([&] { MSG_ErrorText("%s", huge); });
    EXPECT_EQ(stored, "ERROR - " + huge.substr(0, 2207) + "\n");
    EXPECT_EQ(Stored([] { MSG_ErrorText("%s", "100%s%n"); }), "ERROR - 100%s%n\n");
    EXPECT_EQ(Stored([] { MSG_ErrorLineText("%c%x", 'q', 0xe9); }).substr(18), "- qe9\n");
}

TEST(Message, SuppressionCountsAndStatus)
{
    unsigned errors = 0;
    unsigned warnings = 0;
    MSG_GetCounts(nullptr, &errors, &warnings);
    MSG_ClearContainer();
    MSG_Caution(182, "M");
    MSG_NoRow(MSG_Severity::Warning, 4026);
    EXPECT_EQ(MSG_GetContainer()->getErrorStatus(), IBIS_STATUS_CLEAN);
    MSG_Warning(219, "M");
    EXPECT_EQ(MSG_GetContainer()->getErrorStatus(), IBIS_STATUS_WARNING);
    MSG_Error(903);
    MSG_Warning(219, "M");
    MSG_SetSuppressErrors(true);
    MSG_Error(903);
    MSG_SetSuppressErrors(false);
    EXPECT_EQ(MSG_GetContainer()->getErrorStatus(), IBIS_STATUS_ERROR);
    EXPECT_EQ(MSG_GetContainer()->getNumErrors(), 3U);
    unsigned errorsNow = 0;
    unsigned warningsNow = 0;
    MSG_GetCounts(nullptr, &errorsNow, &warningsNow);
    EXPECT_EQ(errorsNow - errors, 1U);
    EXPECT_EQ(warningsNow - warnings, 2U);
    EXPECT_NE(Summary().find("Errors  : " + std::to_string(errorsNow) + "\n"), std::string::npos);
    EXPECT_TRUE(Summary().ends_with("\nFile Failed\n"));
}

// A severity that is suppressed is neither stored nor counted nor told; the others are.
TEST(Message, EachSeverityIsSuppressedByItself)
{
    const std::pair<void (*)(bool), std::string> rows[] = {{MSG_SetSuppressBugs, "EWC"},
                                                           {MSG_SetSuppressErrors, "PWC"},
                                                           {MSG_SetSuppressWarnings, "PEC"},
                                                           {MSG_SetSuppressCautions, "PEW"}};
    MSG_SetSuppressCautions(false);
    for (const auto& [suppress, left] : rows) {
        unsigned bugs = 0;
        unsigned errors = 0;
        unsigned warnings = 0;
        MSG_GetCounts(&bugs, &errors, &warnings);
        MSG_ClearContainer();
        suppress(true);
        MSG_Bug(1811, "p", 1);
        MSG_Error(903);
        MSG_Warning(219, "M");
        MSG_Caution(182, "M");
        suppress(false);
        std::string initials;
        for (const std::string& line : StoredMessages()) {
            initials += line.front();
        }
        EXPECT_EQ(initials, left);
        unsigned now[3];
        MSG_GetCounts(&now[0], &now[1], &now[2]);
        EXPECT_EQ(now[0] - bugs, left.find('P') != left.npos ? 1U : 0U);
        EXPECT_EQ(now[1] - errors, left.find('E') != left.npos ? 1U : 0U);
        EXPECT_EQ(now[2] - warnings, left.find('W') != left.npos ? 1U : 0U);
    }
    MSG_SetSuppressCautions(true);
}

TEST(Message, NumberedFramesAreCountedAndNotStored)
{
    MSG_ClearContainer();
    MSG_SetPlainMessages(false);
    MSG_Error(903);
    MSG_ErrorText("kept");
    MSG_SetPlainMessages(true);
    ASSERT_EQ(MSG_GetContainer()->getNumErrors(), 1U);
    EXPECT_STREQ(MSG_GetContainer()->getErrMsg(std::size_t{0}), "ERROR - kept\n");
}

TEST(ErrorContainer, CopiesAreDeepAndTextsJoin)
{
    IbisErrorContainer first;
    first.addWarning("WARNING - a\n");
    first.addError("ERROR - b\n");
    first.addError(nullptr);
    IbisErrorContainer second(first);
    first.clear();
    EXPECT_EQ(first.getErrorStatus(), IBIS_STATUS_CLEAN);
    char* const none = first.getErrMsg();
    EXPECT_STREQ(none, "");
    std::free(none);
    char* const all = second.getErrMsg();
    EXPECT_STREQ(all, "WARNING - a\nERROR - b\n");
    std::free(all);
    EXPECT_EQ(second.getErrorStatus(), IBIS_STATUS_ERROR);
    EXPECT_EQ(second.getError(0)->getType(), MSG_TYPE_WARNING);
    std::ostringstream out;
    second.output(out);
    EXPECT_EQ(out.str(), "WARNING - a\n\nERROR - b\n\n");
    second = *&second;
    EXPECT_EQ(second.getNumErrors(), 2U);
}

TEST(ErrorMessage, CopiesAreDeep)
{
    IbisErrorMessage first(MSG_TYPE_ERROR, "a");
    const IbisErrorMessage second(first);
    first = IbisErrorMessage(MSG_TYPE_WARNING, "b");
    EXPECT_STREQ(second.getErrMsg(), "a");
    EXPECT_EQ(second.getType(), MSG_TYPE_ERROR);
    EXPECT_STREQ(first.getErrMsg(), "b");
}

TEST(Message, AFailedAssertionTellsItsPlaceAndEndsTheProcess)
{
    EXPECT_DEATH(MSG_AssertionFailed("nuibis_x.cpp", 7), "nuibis_x.cpp:7:assertion failed\\.");
}
