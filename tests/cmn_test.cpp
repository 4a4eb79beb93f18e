#include "ibis/source/nuibis_cmn.h"

#include "ibis/source/nuibis_rng.h"
#include "ibis/source/nuibis_stringlist.h"
#include "tests/builders.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <limits>
#include <random>

namespace
{

Lines Stored()
{
    Lines lines;
    const IbisErrorContainer& container = *MSG_GetContainer();
    for (std::size_t i = 0; i < container.getNumErrors(); ++i) {
        std::string text = container.getErrMsg(i);
        text.pop_back();
        lines.push_back(text);
    }
    return lines;
}

// A line of the file being read, as far as messages are concerned.
void AtLine(unsigned line)
{
    geFileType = IBIS_FILE_IBS;
    guiLineNumber = line;
    MSG_ClearContainer();
}

Lines Tokens(const CMN_TokenList& list)
{
    Lines tokens;
    for (int i = 0; i < list.iStored; ++i) {
        tokens.emplace_back(list[i]);
    }
    return tokens;
}

}  // namespace

TEST(Value, ScaleLettersAndUnits)
{
    const struct {
        const char* text;
        CMN_Number result;
        double value;
    } rows[] = {
        {"1.5nH", CMN_GOOD, 1.5e-9},  {"3.3V", CMN_GOOD, 3.3},       {"3.3mV", CMN_GOOD, 0.0033},
        {"3.3MV", CMN_GOOD, 3.3e6},   {"1k", CMN_GOOD, 1000.0},      {"1K", CMN_GOOD, 1.0},
        {"100Ohm", CMN_GOOD, 100.0},  {"100mOhm", CMN_GOOD, 0.1},    {"10pF", CMN_GOOD, 10 * 1e-12},
        {"10meg", CMN_GOOD, 0.01},    {"1F", CMN_GOOD, 1.0},         {"1f", CMN_GOOD, 1e-15},
        {"2T", CMN_GOOD, 2e12},       {"2G", CMN_GOOD, 2e9},         {"1e", CMN_GOOD, 1.0},
        {"1e-9", CMN_GOOD, 1e-9},     {".5", CMN_GOOD, 0.5},         {"+3", CMN_GOOD, 3.0},
        {"-5", CMN_GOOD, -5.0},       {"5.", CMN_GOOD, 5.0},         {"0x10", CMN_GOOD, 16.0},
        {"0x1p3k", CMN_GOOD, 8000.0}, {"inf", CMN_GOOD, INFINITY},   {"1e999", CMN_GOOD, INFINITY},
        {"1e-999", CMN_GOOD, 0.0},    {"1u2", CMN_SUSPICIOUS, 1e-6}, {"2p5", CMN_SUSPICIOUS, 2e-12},
        {"1V3", CMN_SUSPICIOUS, 1.0}, {"3#", CMN_INVALID, 0.0},      {"3.3-", CMN_INVALID, 0.0},
        {"1.2.3", CMN_INVALID, 0.0},  {"e3", CMN_INVALID, 0.0},      {"--5", CMN_INVALID, 0.0},
        {"+-5", CMN_INVALID, 0.0},    {"", CMN_INVALID, 0.0},        {"NA", CMN_INVALID, 0.0},
        {"0x", CMN_GOOD, 0.0},        {"-", CMN_INVALID, 0.0},       {".", CMN_INVALID, 0.0},
    };
    for (const auto& row : rows) {
        double value = 0.0;
        EXPECT_EQ(CMN_GetValue(row.text, &value), row.result) << row.text;
        EXPECT_DOUBLE_EQ(value, row.value) << row.text;
    }
}

// The fast reader and the C library's agree on every text: on what they take and on every bit of the value.
TEST(Value, ReadsAsTheLibraryDoes)
{
    // Texts of the rare grammar whose length is about that of a buffer.
    for (std::size_t n : {100U, 124U, 125U, 126U, 127U, 128U, 129U, 5000U}) {
        for (const std::string& text : {"0x" + std::string(n, 'f'), "1" + std::string(n, '0') + "e999",
                                        "0." + std::string(n, '0') + "1e-400x"}) {
            char* end = nullptr;
            const double expected = std::strtod(text.c_str(), &end);
            double value = 0.0;
            EXPECT_EQ(CMN_ReadDouble(text, &value), static_cast<std::size_t>(end - text.c_str())) << text;
            EXPECT_EQ(value, expected) << text;
        }
    }
    std::mt19937 random(1);
    const std::string alphabet = "0123456789012345678901234567890123456789....eE+-xXpPabfinNt( )_";
    for (int round = 0; round < 200000; ++round) {
        std::string text(random() % 12 + 1, ' ');
        for (char& c : text) {
            c = alphabet[random() % alphabet.size()];
        }
        char* end = nullptr;
        const double expected = std::strtod(text.c_str(), &end);
        double value = 0.0;
        const std::size_t used = CMN_ReadDouble(text, &value);
        ASSERT_EQ(used, static_cast<std::size_t>(end - text.c_str())) << text;
        if (used != 0 && !std::isnan(expected)) {
            ASSERT_EQ(std::memcmp(&value, &expected, sizeof value), 0) << text;
        }
    }
}

// Every text of five of the characters that make a difference, as it stands and behind others.
TEST(Value, ReadsEveryShortTextAsTheLibraryDoes)
{
    constexpr std::string_view alphabet = "019.eE+-xpn ";
    constexpr std::size_t longest = 5;
    std::array<std::size_t, longest> letters{};
    std::string text;
    for (std::size_t place = 0; place < longest;) {
        for (const char* const ahead : {"", "-", "-12345678901234567890", "0.3"}) {
            text = ahead;
            std::transform(letters.begin(), letters.end(), std::back_inserter(text),
                           [=](std::size_t letter) { return alphabet[letter]; });
            char* end = nullptr;
            const double expected = std::strtod(text.c_str(), &end);
            double value = 0.0;
            ASSERT_EQ(CMN_ReadDouble(text, &value), static_cast<std::size_t>(end - text.c_str())) << text;
            ASSERT_EQ(std::memcmp(&value, &expected, sizeof value), 0) << text;
        }
        for (place = 0; place < longest && ++letters[place] == alphabet.size(); ++place) {
            letters[place] = 0;
        }
    }
}

// Numbers as tables have them, with few digits and with many, near the limits of what is exact and beyond.
TEST(Value, ReadsPrintedNumbersAsTheLibraryDoes)
{
    std::mt19937_64 random(2);
    constexpr std::array formats{"%.*e", "%.*f", "%.*g"};
    for (int round = 0; round < 200000; ++round) {
        const double number =
            std::ldexp(static_cast<double>(random()) - 9e18, static_cast<int>(random() % 200) - 160);
        std::array<char, 128> text;
        std::snprintf(text.data(), text.size(), formats[random() % formats.size()],
                      static_cast<int>(random() % 21), number);
        double value = 0.0;
        ASSERT_EQ(CMN_ReadDouble(text.data(), &value), std::strlen(text.data())) << text.data();
        const double expected = std::strtod(text.data(), nullptr);
        ASSERT_EQ(std::memcmp(&value, &expected, sizeof value), 0) << text.data();
    }
}

// What is taken as plain is what the judging reader finds good, with the same value.
TEST(Value, PlainValuesAreGoodValues)
{
    std::mt19937 random(3);
    constexpr std::string_view alphabet = "0123456789..-+eEmunVAsNAna_= \t";
    int plain = 0;
    for (int round = 0; round < 400000; ++round) {
        std::string text(random() % 9 + 1, ' ');
        std::generate(text.begin(), text.end(), [&] { return alphabet[random() % alphabet.size()]; });
        std::string_view cursor = text;
        double taken = 0.0;
        numstat status = NUM_ABSENT;
        if (!CMN_TakePlainValue(cursor, &taken, &status)) {
            continue;
        }
        ++plain;
        std::string_view rest = text;
        double value = 0.0;
        bool isNA = false;
        ASSERT_EQ(CMN_GetValueNA(CMN_NextToken(rest), &value, &isNA), CMN_GOOD) << text;
        ASSERT_EQ(status, isNA ? NUM_NA : NUM_VALUE) << text;
        ASSERT_EQ(std::memcmp(&value, &taken, sizeof value), 0) << text;
        ASSERT_EQ(cursor, rest) << text;
    }
    EXPECT_GT(plain, 20000);
}

TEST(Value, IntegersAndPlainNumbers)
{
    int number = 0;
    EXPECT_EQ(CMN_GetInt("12", &number), CMN_GOOD);
    EXPECT_EQ(CMN_GetInt("+7", &number), CMN_GOOD);
    EXPECT_EQ(number, 7);
    EXPECT_EQ(CMN_GetInt("-7x", &number), CMN_SUSPICIOUS);
    EXPECT_EQ(number, -7);
    EXPECT_EQ(CMN_GetInt("99999999999", &number), CMN_INVALID);
    EXPECT_EQ(CMN_GetInt("x", &number), CMN_INVALID);
    unsigned count = 0;
    EXPECT_EQ(CMN_GetUnsigned("-1", &count), CMN_INVALID);
    EXPECT_EQ(CMN_GetUnsigned("8pins", &count), CMN_SUSPICIOUS);
    EXPECT_EQ(count, 8U);
    EXPECT_EQ(CMN_GetUnsigned("99999999999", &count), CMN_GOOD);
    EXPECT_EQ(count, std::numeric_limits<unsigned>::max());
    double value = 0.0;
    EXPECT_EQ(CMN_GetPlainDouble("1.5n", &value), CMN_SUSPICIOUS);
    EXPECT_EQ(value, 1.5);
}

TEST(Value, WordNAAndMessages)
{
    AtLine(3);
    double value = 9.0;
    numstat status = NUM_VALUE;
    EXPECT_EQ(CMN_GetValueOrNA("Na", "Pin", "R_pin", &value, &status), 1);
    EXPECT_EQ(status, NUM_NA);
    EXPECT_EQ(value, 0.0);
    EXPECT_EQ(CMN_GetValueOrNA({}, "Pin", "R_pin", &value, &status), 1);
    EXPECT_EQ(status, NUM_ABSENT);
    EXPECT_EQ(CMN_GetValueOrNA("abc", "Pin", "R_pin", &value, &status), 0);
    EXPECT_EQ(status, NUM_ABSENT);
    EXPECT_EQ(CMN_GetValueOrNA("1u2", "Pin", "R_pin", &value, &status), 1);
    EXPECT_EQ(status, NUM_VALUE);
    EXPECT_EQ(Stored(),
              (Lines{"ERROR (line    3) - Invalid R_pin Value (\"abc\")",
                     "WARNING (line    3) - Suspicious R_pin Pin Value (\"1u2\"); Numeric in Scale"}));
}

TEST(Triple, CountsAndOrder)
{
    const std::string minimum = "ERROR (line    3) - No minimum Value Was Provided for X";
    const std::string maximum = "ERROR (line    3) - No maximum Value Was Provided for X";
    const std::string order = "WARNING (line    3) - Typ value is not in between Min and Max ";
    const struct {
        const char* text;
        int result;
        Lines messages;
    } rows[] = {
        {"1 2", 1, {maximum}},
        {"1", 1, {minimum, maximum}},
        {"", 1, {"ERROR (line    3) - Incorrect Number of Line Items (0) For X: Expecting 3"}},
        {"2 1 3 4", 1, {"ERROR (line    3) - Incorrect Number of Line Items (4) For X: Expecting 3"}},
        {"NA NA NA", 1, {}},
        {"1 0 2", 1, {}},
        {"2 3 1", 1, {}},
        {"1 1 2", 1, {}},
        {"1 2 3", 1, {order}},
        {"3 1 2", 1, {order}},
        {"x 1 2", 0, {"ERROR (line    3) - Invalid Typical Value (\"x\")"}},
    };
    for (const auto& row : rows) {
        AtLine(3);
        rng* values = nullptr;
        EXPECT_EQ(RNG_Read(row.text, "X", &values, true), row.result) << row.text;
        EXPECT_EQ(Stored(), row.messages) << row.text;
        RNG_Free(values);
    }
    const rng crossed{1.0, NUM_VALUE, 2.0, NUM_VALUE, 1.0, NUM_VALUE};
    AtLine(3);
    EXPECT_EQ(RNG_CheckMinMax(&crossed, 219, "M"), 0);
    EXPECT_EQ(RNG_CheckMinMax(nullptr, 219, "M"), 1);
    EXPECT_EQ(Stored().size(), 1U);
}

TEST(Tokens, SplitCountsBeyondItsCapacity)
{
    const CMN_TokenList list = CMN_Split(" a\tb  c d e", 3);
    EXPECT_EQ(Tokens(list), (Lines{"a", "b", "c"}));
    EXPECT_EQ(list.iFound, 5);
    EXPECT_EQ(list[3].data(), nullptr);
    EXPECT_EQ(Tokens(CMN_SplitDelim("a = b", 9, '=')), (Lines{"a", "=", "b"}));
    EXPECT_EQ(Tokens(CMN_SplitDelim("x=3==", 9, '=')), (Lines{"x", "=", "3", "=", "="}));
    EXPECT_EQ(CMN_CountTokens("  "), 0);
}

TEST(Names, CaseBlindComparisons)
{
    EXPECT_TRUE(CMN_EqualN("[IBIS Ver]", "[ibis ver] 5.0", 10));
    EXPECT_FALSE(CMN_EqualN("[IBIS", "[ibis ver]", 10));
    EXPECT_TRUE(CMN_EqualN("ab", "AB", 10));
    EXPECT_TRUE(CMN_KeywordEqual("MODEL_SELECTOR", "Model selector"));
    EXPECT_FALSE(CMN_KeywordEqual("MODEL_SELECTOR", "Model\tSelector"));
    EXPECT_FALSE(CMN_IsNotReserved("CircuitCall"));
    EXPECT_TRUE(CMN_IsNotReserved("GNDX"));
    EXPECT_EQ(CMN_TrimEnd("a b \t"), "a b");
    EXPECT_EQ(CMN_TrimEnd("  "), " ");
}

TEST(Fields, ThreeWaysToFillThem)
{
    char field[6] = "";
    AtLine(3);
    EXPECT_TRUE(CMN_SetString(field, "", 5, "Name"));
    EXPECT_TRUE(CMN_SetString(field, "abcdef", 5, "Name"));
    EXPECT_STREQ(field, "abcde");
    EXPECT_FALSE(CMN_SetString(field, "x", 5, "Name"));
    EXPECT_TRUE(CMN_ReplaceString(field, "x", 5, "Name"));
    EXPECT_STREQ(field, "x");
    char wide[1025] = "";
    EXPECT_TRUE(CMN_SetStringStrict(wide, std::string(1000, 'w'), 44, "Wide"));
    EXPECT_EQ(std::strlen(wide), 1000U);
    EXPECT_FALSE(CMN_SetStringStrict(wide, "x", 44, "Wide"));
    EXPECT_EQ(Stored(),
              (Lines{"ERROR (line    3) - Zero length value for keyword 'Name'.",
                     "ERROR (line    3) -\n    Name string 'abcdef' is too long, truncating to 5 characters.",
                     "ERROR (line    3) - Duplicate 'Name' keyword.",
                     "ERROR (line    3) - Wide string '" + std::string(1000, 'w') +
                         "' is too long, maximum length 44 allowed.",
                     "ERROR (line    3) - Duplicate 'Wide' keyword."}));
}

TEST(Section, ItemsAndTheirFaults)
{
    const struct {
        const char* text;
        CMN_SectionItem item;
        double value;
        std::string_view rest;
        Lines messages;
    } rows[] = {
        {"Len = 0.5 R=1m", SECT_LEN, 0.5, "R=1m", {}},
        {"R=1m/", SECT_R, 1e-3, "/", {}},
        {" C = 2p", SECT_C, 2e-12, "", {}},
        {"L=1n2 /", SECT_L, 1e-9, "/", {"ERROR (line    3) - Illegal number found '1n2'"}},
        {"/  X", SECT_END, -1.0, "X", {}},
        {" \t", SECT_NONE, -1.0, "", {}},
        {"= 3", SECT_ERROR, -1.0, " 3", {"ERROR (line    3) - Unexpected '=' found"}},
        {"l=3", SECT_ERROR, -1.0, "=3", {"ERROR (line    3) - Unexpected token 'l' found in R/L/C section"}},
        {"Len", SECT_NONE, -1.0, "", {"ERROR (line    3) - Premature end of R/L/C section"}},
        {"Len =", SECT_NONE, -1.0, "", {"ERROR (line    3) - Premature end of R/L/C section"}},
        {"R 5 / L=1",
         SECT_ERROR,
         -1.0,
         " L=1",
         {"ERROR (line    3) - Error parsing R/L/C section. Missing '='"}},
        {"R=/", SECT_R, 0.0, "/", {"ERROR (line    3) - Numerical value expected"}},
        {"R=x=2 /", SECT_R, -1.0, "/", {"ERROR (line    3) - Illegal number found 'x=2'"}},
    };
    for (const auto& row : rows) {
        AtLine(3);
        std::string_view cursor = row.text;
        double value = -1.0;
        EXPECT_EQ(CMN_GetSectionItem(cursor, &value), row.item) << row.text;
        EXPECT_EQ(value, row.value) << row.text;
        EXPECT_EQ(cursor, row.rest) << row.text;
        EXPECT_EQ(Stored(), row.messages) << row.text;
    }
}

TEST(OpenFile, ExtensionsAndCases)
{
    std::filesystem::create_directories(TestFolder() + "/Dir.x");
    WriteTestFile("Dir.x/model.ibs", "x\n");
    WriteTestFile("Dir.x/all.upper", "x\n");
    const std::string folder = TestFolder() + "/Dir.x/";
    const struct {
        std::string name;
        ibis_file_type type;
        int result;
        std::string baseName;
        Lines messages;
    } rows[] = {
        {"model", IBIS_FILE_IBS, 1, "model.ibs", {}},
        {"model.ibs", IBIS_FILE_IBS, 1, "model.ibs", {}},
        {"model.IBS",
         IBIS_FILE_IBS,
         0,
         "model.IBS",
         {"ERROR - Unable To Open File '" + folder + "model.IBS'"}},
        {"model.ibs.bak",
         IBIS_FILE_IBS,
         0,
         "model.ibs.bak",
         {"ERROR - File Name Requires '.ibs' Extension."}},
        {"model.ibs", IBIS_FILE_PKG, 0, "model.ibs", {"ERROR - File Name Requires '.pkg' Extension."}},
        {"model.ibs", IBIS_FILE_EBD, 0, "model.ibs", {"ERROR - File Name Requires '.ebd' Extension."}},
        {"model.ibs", IBIS_FILE_AMI, 0, "model.ibs", {"ERROR - File Name Requires '.ami' Extension."}},
        {"model", IBIS_FILE_PKG, 0, "model.pkg", {"ERROR - Unable To Open File '" + folder + "model.pkg'"}},
        {"all.upper", IBIS_FILE_PARAM, 1, "all.upper", {}},
        {std::string(1022, 'n'),
         IBIS_FILE_IBS,
         0,
         std::string(1022, 'n'),
         {"ERROR - Unable to append filename extension."}},
        {std::string(1020, 'n'),
         IBIS_FILE_IBS,
         0,
         std::string(1020, 'n') + ".ibs",
         {"ERROR - Unable to assemble filename."}},
    };
    for (const auto& row : rows) {
        AtLine(0);
        CMN_Stream stream;
        CMN_Path baseName{};
        EXPECT_EQ(CMN_OpenFile(folder + row.name, row.type, stream, baseName), row.result) << row.name;
        EXPECT_EQ(baseName.data(), row.baseName);
        EXPECT_EQ(Stored(), row.messages) << row.name;
    }
}

// A relative file of a nested read is found beside the file that named it; a component file starts afresh.
TEST(OpenFile, RelativeNamesKeepTheDirectory)
{
    WriteTestFile("a.pkg", "x\n");
    CMN_SetDirectory(TestFolder() + "/");
    CMN_Stream stream;
    CMN_Path baseName;
    EXPECT_EQ(CMN_OpenFile("a.pkg", IBIS_FILE_PKG, stream, baseName), 1);
    EXPECT_EQ(CMN_FileExists("a.pkg"), 1);
    EXPECT_EQ(CMN_OpenFile("a.ibs", IBIS_FILE_IBS, stream, baseName), 0);
    EXPECT_EQ(CMN_GetDirectory(), "");
    EXPECT_EQ(CMN_FileExists("a.pkg"), 0);
    EXPECT_EQ(CMN_OpenFile(TestFolder() + "/a", IBIS_FILE_PKG, stream, baseName), 1);
    EXPECT_EQ(CMN_GetDirectory(), TestFolder() + "/");
}

TEST(Lines, CharactersAndLineEnds)
{
    static constexpr char text[] = "a\r\n"
                                   "b\rc\x01\n"
                                   "\xe9 d\0e\x1a\n"
                                   "\ttab\x7f\n"
                                   "long line\x02 here\r\n"
                                   "last\x1a";
    const std::string path = WriteTestFile("lines.txt", std::string_view(text, sizeof text - 1));
    CMN_Stream stream;
    CMN_Path baseName;
    AtLine(8);
    ASSERT_EQ(CMN_OpenFile(path, IBIS_FILE_PARAM, stream, baseName), 1);
    Lines lines;
    std::string_view line;
    while (CMN_ReadLine(stream, 9, line)) {
        lines.emplace_back(line);
    }
    EXPECT_EQ(lines, (Lines{"a", "b c ", "  d e ", "\ttab\x7f", "long line", "last"}));
    EXPECT_EQ(
        Stored(),
        (Lines{"ERROR (line    8) -\n    Found illegal control character (code d).  Converting to space.",
               "ERROR (line    8) -\n    Found illegal control character (code 1).  Converting to space.",
               "ERROR (line    8) -\n    Found illegal non-7-bit ASCII character (code e9).  Converting to "
               "space.",
               "ERROR (line    8) - Found illegal NUL character (code 0).  Converting to space.",
               "ERROR (line    8) -\n    Found illegal control character (code 1a).  Converting to space.",
               "ERROR (line    8) - Found illegal control character (code 2)."}));
}

TEST(Lines, LongerThanTheBuffer)
{
    const std::string big(300000, 'x');
    const std::string path = WriteTestFile("big.txt", big + "\nsecond\n\x1a");
    CMN_Stream stream;
    CMN_Path baseName;
    ASSERT_EQ(CMN_OpenFile(path, IBIS_FILE_PARAM, stream, baseName), 1);
    std::span<char> line;
    bool lineFeed = false;
    ASSERT_TRUE(CMN_ReadLongLine(stream, line, lineFeed));
    EXPECT_EQ(line.size(), big.size());
    EXPECT_TRUE(lineFeed);
    ASSERT_TRUE(CMN_ReadLongLine(stream, line, lineFeed));
    EXPECT_EQ(std::string_view(line.data(), line.size()), "second");
    EXPECT_FALSE(CMN_ReadLongLine(stream, line, lineFeed));
}

// Characters are looked at buffer by buffer: wherever a buffer ends, within a line end too, nothing is told
// that is not there, and what is there is told once.
TEST(Lines, CharactersAtTheEndOfABuffer)
{
    constexpr std::size_t enough = 70000;
    for (std::size_t shift = 0; shift < 4; ++shift) {
        std::string text(shift, 'x');
        std::size_t count = 0;
        for (; text.size() < enough; ++count) {
            text += "ab\r\n";
        }
        const std::string path = WriteTestFile("edge.txt", text + "c\rd\nlast\r");
        CMN_Stream stream;
        CMN_Path baseName;
        AtLine(1);
        ASSERT_EQ(CMN_OpenFile(path, IBIS_FILE_PARAM, stream, baseName), 1);
        std::string_view line;
        ASSERT_TRUE(CMN_ReadLine(stream, CMN_LINE_LIMIT, line));
        for (std::size_t i = 1; i < count; ++i) {
            ASSERT_TRUE(CMN_ReadLine(stream, CMN_LINE_LIMIT, line));
            ASSERT_EQ(line, "ab");
        }
        EXPECT_EQ(Stored(), Lines());
        ASSERT_TRUE(CMN_ReadLine(stream, CMN_LINE_LIMIT, line));
        EXPECT_EQ(line, "c d");
        ASSERT_TRUE(CMN_ReadLine(stream, CMN_LINE_LIMIT, line));
        EXPECT_EQ(line, "last ");
        const std::string message =
            "ERROR (line    1) -\n    Found illegal control character (code d).  Converting to space.";
        EXPECT_EQ(Stored(), (Lines{message, message}));
    }
}

TEST(StringList, GrowsAtTheFrontAndCounts)
{
    STRLIST* list = STRLIST_AddMany(nullptr, {"a", "b"});
    list = STRLIST_AddUnique(list, "a");
    list = STRLIST_AddUnique(list, "c");
    EXPECT_STREQ(list->pszText, "c");
    EXPECT_STREQ(list->pNext->pszText, "b");
    EXPECT_EQ(list->pNext->pNext->pNext, nullptr);
    STRLIST_Free(list);
    STRLIST_CountReset();
    const std::string names(100, 'n');
    for (std::size_t i = 0; i < names.size(); ++i) {
        STRLIST_CountAdd(names.c_str() + i);
        STRLIST_CountAdd("n");
    }
    EXPECT_EQ(STRLIST_CountGet("n"), 101);
    EXPECT_EQ(STRLIST_CountGet("nn"), 1);
    MSG_ClearContainer();
    EXPECT_EQ(STRLIST_CountGet("other"), 0);
    EXPECT_EQ(MSG_GetContainer()->getNumErrors(), 1U);
    STRLIST_CountReset();
}
