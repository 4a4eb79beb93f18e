#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_ibis11.h"
#include "ibis/source/nuibis_msg.h"
#include "tests/builders.h"

#include <array>
#include <cstdio>
#include <fstream>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

// An error with its line. A text that would end just short of the right margin has a line of its own.
std::string At(int line, const std::string& text)
{
    std::array<char, 32> head{};
    std::snprintf(head.data(), head.size(), "ERROR (line %4d) -", line);
    return head.data() + std::string(text.size() >= 60 && text.size() <= 72 ? "\n      " : " ") + text;
}

struct Case {
    std::string sContent;
    Lines messages;
};

void ExpectMessages(const std::vector<Case>& cases)
{
    for (const Case& row : cases) {
        EXPECT_EQ(Messages(row.sContent), row.messages) << row.sContent;
    }
}

// Lines from 4 on are `body`; the header has three.
std::string Old(const std::string& body)
{
    return Bare(body, "1.1");
}

// A model of type Output: 5 + 4 * 4 + 3 lines.
std::string OldDriver(const std::string& name)
{
    std::string text = "[Model] " + name +
                       "\nModel_type Output\nPolarity Inverting\nC_comp 5p NA NA\n"
                       "[Voltage Range] 5.0V 4.5V 5.5V\n";
    for (const char* table : {"Pulldown", "Pullup", "GND_clamp", "POWER_clamp"}) {
        text += "[" + std::string(table) + "]\n-5.0 -50m NA NA\n0 0 0 0\n5.0 50m 40m 60m\n";
    }
    return text + "[Ramp]\ndV/dt_r 3.0/30n 2.8/30n NA\ndV/dt_f 3.0/20n NA 3.2/20n\n";
}

// Subparameters and keywords in a model that is otherwise complete; `extra` begins at line 8.
std::string InModel(const std::string& extra)
{
    return Old("[Model] M\nModel_type Input\nC_comp 5p\t4p 6p\n[Voltage Range] 5 NA NA\n" + extra);
}

// The same where the [Voltage Range] stands behind them; `extra` begins at line 7.
std::string InSubparameters(const std::string& extra)
{
    return Old("[Model] M\nModel_type Input\nC_comp 5p 4p 6p\n" + extra + "[Voltage Range] 5 NA NA\n");
}

// A component with a model before it; `extra` begins at line 14.
std::string InComponent(const std::string& extra)
{
    return InModel("[Component] U1\n[Manufacturer] Acme\n[Package]\nR_pkg 50m 40m 60m\nL_pkg 2n NA NA\n"
                   "C_pkg 1p NA NA\n" +
                   extra);
}

// Lines of a [Pin] table begin at line 15.
std::string InPins(const std::string& lines)
{
    return InComponent("[Pin] signal_name model_name C_pin L_pin R_pin\n" + lines);
}

Lines Stored()
{
    Lines lines;
    for (std::size_t i = 0; i < MSG_GetContainer()->getNumErrors(); ++i) {
        lines.emplace_back(MSG_GetContainer()->getErrMsg(i));
    }
    return lines;
}

Lines DirectMessages(const std::string& path)
{
    MSG_ClearContainer();
    IBIS11_CheckFile(path);
    return Stored();
}

}  // namespace

TEST(OldFile, CleanFilesAreSilent)
{
    const std::string text =
        "[Date] 26/08/2021\n[Source] From here\n  and there ------------------------------"
        "----------\n[Notes] Some\n| notes\nmore\n[Disclaimer] None\n[Disclaimer]\n";
    const std::string component =
        Component("U1",
                  "1 A M 50m 2nH 1pF\n2 B D1 NA NA NA\n3 VCC power 1 1u 1k\n4 X nc\n"
                  "A_5 GND gnd 1 1M 1 | five\n",
                  "[Component] U2 with a title\n[Package]\nC_pkg 1p NA NA\nL_pkg 1n NA NA\nR_pkg +.5 NA NA\n"
                  "[Manufacturer] Acme & Sons\n[pin] signal_name model_name\n1 NC D1\n");
    const std::string models = Model("M") + OldDriver("D1") + OldDriver("d1");
    EXPECT_EQ(Messages(Old(text + component + models)), Lines{});
    EXPECT_EQ(Messages(Old(text + models + component) + "\n | end\n"), Lines{});
    EXPECT_EQ(Messages(Bare("", "1.0")), Lines{});
    std::string dos;
    for (const char c : Old(models + component)) {
        dos += c == '\n' ? "\r\n" : std::string(1, c);
    }
    EXPECT_EQ(Messages(dos), Lines{});
}

TEST(OldFile, MakesNoRootOfItsOwn)
{
    ibis* before = nullptr;
    ibis* after = nullptr;
    IBIS_GetCurrent(&before);
    TalIbis* handle = nullptr;
    const std::string path = WriteTestFile("rootless.ibs", Old("oops\n"));
    const IbisErrorContainer* const findings = talReadIbisFile(path.c_str(), IBIS_FILE_IBS, &handle);
    IBIS_GetCurrent(&after);
    EXPECT_EQ(before, after);
    EXPECT_EQ(handle == nullptr, before == nullptr);
    EXPECT_EQ(findings->getErrorStatus(), IBIS_STATUS_ERROR);
}

TEST(OldFile, Header)
{
    const std::string ver = "[IBIS Ver] 1.1\n";
    ExpectMessages({
        {"[IBIS Ver] 1.1 x\n[IBIS Ver] 1.1\n[End]\n",
         {At(1, "Incorrect Number of Line Items (3) For Keyword 'IBIS Ver': Expecting 2"),
          At(2, "'IBIS Ver' Keyword Already Defined")}},
        {"[IBIS_Ver] 1.1\n[IBIS Ver]\nx\n[End]\n",
         {At(1, "Invalid Keyword"), At(2, "'IBIS Ver' Keyword Not First In File"),
          At(2, "Incorrect Number of Line Items (1) For Keyword 'IBIS Ver': Expecting 2"),
          At(2, "IBIS Version Cannot Be Determined.  ABORTING!!!")}},
        {"[IBIS Ver] 1.2\nx\n[End]\n", {At(1, "Invalid IBIS Version (\"1.2\").  ABORTING!!!")}},
        {ver + "[File Name]\n[File Name] t.ibs x\n[File Name] t.ibs\n[End]\n",
         {At(2, "'File Name' Keyword Missing filename"),
          At(3, "Incorrect Number of Line Items (3) For Keyword 'File Name': Expecting 2"),
          At(4, "'File Name' Keyword Already Defined")}},
        {ver + "[File Name] u\n[End]\n",
         {At(2, "File name (\"t.ibs\") Does Not Match Internal Name (\"u\")"),
          At(2, "File name Requires 'ibs' Extension")}},
        {ver + "[File Name] T.IBS\n[End]\n", {At(2, "File name Requires 'ibs' Extension")}},
        {ver + "[File Name] T.ibs\n[End]\n", {At(2, "Invalid Character (\"T\") In File name")}},
        {ver + "[File Name] T+t=.ibs\n[End]\n",
         {At(2, "File name (\"t.ibs\") Does Not Match Internal Name (\"T+t=.ibs\")"),
          At(2, "Invalid Character (\"T\") In File name"), At(2, "Invalid Character (\"+\") In File name"),
          At(2, "Invalid Character (\"=\") In File name")}},
        {ver + "[File Name] 123456789.ibt\n[End]\n",
         {At(2, "File name (\"t.ibs\") Does Not Match Internal Name (\"123456789.ibt\")"),
          At(2, "File name Too Long")}},
        {ver + "[File Rev]\n[File Rev] 1 2\n[File Rev] 1\n[End]\n",
         {At(2, "'File Rev' Keyword Missing revision"),
          At(3, "Incorrect Number of Line Items (3) For Keyword 'File Rev': Expecting 2"),
          At(4, "'File Rev' Keyword Already Defined")}},
        {ver + "[Date] " + std::string(40, 'd') + " | x\n[Date]\n[End]\n",
         {At(3, "'Date' Keyword Already Defined")}},
        {ver + "[Date]\n[Date]   " + std::string(41, 'd') + "  \n[End]\n",
         {At(3, "Date Over 40 Characters Long")}},
        {ver + "[Source]\ntext\n[Source]\ntext\n[Notes]\n[Notes]\ntext\n[Date] D\ntext\ntext\n[End]\n",
         {At(4, "'Source' Keyword Already Defined"), At(7, "'Notes' Keyword Already Defined"),
          At(10, "Expecting Keyword.  Invalid Line"), At(11, "Expecting Keyword.  Invalid Line")}},
        {Old("[Pin] x\n1 2\n[Pulldown]\n1 2\n[Ramp]\n[Voltage Range]\n"),
         {At(4, "Orphaned Keyword 'Pin'.  Needs a 'Component'"),
          At(6, "Orphaned Keyword 'Pulldown'.  Needs a 'Model'"),
          At(8, "Orphaned Keyword 'Ramp'.  Needs a 'Model'"),
          At(9, "Orphaned Keyword 'Voltage Range'.  Needs a 'Model'")}},
    });
}

TEST(OldFile, LinesAndKeywords)
{
    const std::string long81 = "|" + std::string(80, '-') + "\n";
    ExpectMessages({
        {Old("  [Date] D\n[Date\nskipped\n[]\n[Gnd Clamp]\n[Copyright]\nskipped\n[Source]\n"),
         {At(4, "Keywords Must Begin In Column 1"), At(5, "Keyword Missing Ending Bracket (']')"),
          At(7, "Invalid Keyword"), At(8, "Invalid Keyword"), At(9, "Invalid Keyword")}},
        // ahead of the first keyword both passes meet the line
        {"x\n" + Old(""),
         {At(1, "Expecting Keyword.  Invalid Line"), At(1, "Expecting Keyword.  Invalid Line")}},
        // the second pass looks at lengths only behind [End]
        {Old(long81 + std::string(80, '|') + "\n[Source]\n" + std::string(2000, 's') + "\n"),
         {At(4, "Exceeds 80 characters"), At(7, "Exceeds 80 characters")}},
        {Bare("[End] x |\n" + long81 + "text\n[Notes]\ntext\n[Unknown]\npassed over\n", "1.1"),
         {At(4, "Incorrect Number of Line Items (2) For Keyword 'End': Expecting 1"),
          At(5, "Exceeds 80 characters"), At(6, "Non-Comment Line Exists After 'End' Keyword"),
          At(7, "Non-Comment Line Exists After 'End' Keyword"),
          At(8, "Non-Comment Line Exists After 'End' Keyword"),
          At(11, "Non-Comment Line Exists After 'End' Keyword")}},
        {Old("[Model] " + std::string(41, 'm') + "\n[Model] " + std::string(42, 'm') + "\n"),
         {At(4, "Model Name Over 20 Characters Long"), At(5, "Maximum Item Size Exceeded")}},
        {Old(std::string("[Source]\0[Date]\n\0\n[Model] A\0B\n", 30)),
         {At(6, "Incorrect Number of Line Items (3) For Keyword 'Model': Expecting 2")}},
    });
}

TEST(OldFile, CommentCharacter)
{
    ExpectMessages({
        // in force from its place on, in either pass
        {"| first\n[IBIS Ver] 1.1 | x\n[Comment Char] #_char # new | old\n# second\n[Notes]\n| "
         "text\n[Component] "
         "U#1\n# third\n| fourth\n[End]\n# last\n| over\n",
         {At(9, "Expecting Keyword.  Invalid Line"),
          "ERROR - 'Manufacturer' Keyword Not Defined For Component 'U'",
          "ERROR - 'Package' Keyword Not Defined For Component 'U'",
          "ERROR - 'Pin' Keyword Not Defined For Component 'U'",
          At(12, "Non-Comment Line Exists After 'End' Keyword")}},
        {Old("[Comment Char] |_char\n| a\n[comment char]\t!_char x\n! a\n[Comment Char] &_char | b\n"),
         {At(6, "Too Many Line Items For 'COMMENT CHAR'"), At(8, "Too Many Line Items For 'COMMENT CHAR'")}},
        {Old("[Comment Char]\n[Comment Char] | c\n[Comment Char] #_chars\n[Comment Char] ##_char\n"
             "[Comment Char] _char\n[Comment Char] __char\n[Comment Char] =_char\n| c\n"),
         {At(4, "Invalid Comment Character Definition"), At(5, "Invalid Comment Character Definition"),
          At(6, "Invalid Comment Character Definition"), At(7, "Invalid Comment Character Definition"),
          At(8, "Invalid Comment Character Definition"), At(9, "Invalid Comment Character '_'"),
          At(10, "Invalid Comment Character '='")}},
    });
}

TEST(OldFile, ModelNames)
{
    const std::string rest = "Model_type Input\nC_comp 5p 4p 6p\n[Voltage Range] 5 NA NA\n";
    ExpectMessages({
        {Old("[Model]\n" + rest),
         {At(4, "'Model' Keyword Missing name"),
          At(7, "Orphaned Keyword 'Voltage Range'.  Needs a 'Model'")}},
        {Old("[Model] Gnd\n[Model] nc\n[Model] Power\n[Model] na\n[Model] M N\n[Model] " +
             std::string(21, 'm') + "\n"),
         {At(4, "Invalid Model Name (\"Gnd\"); Reserved Word."),
          At(5, "Invalid Model Name (\"nc\"); Reserved Word."),
          At(6, "Invalid Model Name (\"Power\"); Reserved Word."),
          At(7, "Invalid Model Name (\"na\"); Reserved Word."),
          At(8, "Incorrect Number of Line Items (3) For Keyword 'Model': Expecting 2"),
          At(9, "Model Name Over 20 Characters Long")}},
        {Old("[Model] M\n" + rest + "[Model] m\n" + rest + "[Model] M\n" + rest),
         {At(12, "Model Name Previously Defined (\"M\")"),
          At(15, "Orphaned Keyword 'Voltage Range'.  Needs a 'Model'")}},
    });
}

TEST(OldFile, Subparameters)
{
    ExpectMessages({
        {Old("[Model] M\nModel_type\nPolarity inverting x\nEnable High\nModel_type i/o\nmodel_type Input\n"
             "Polarity\nC_comp 5p NA NA\n[Voltage Range] 5 NA NA\n[Ramp]\ndV/dt_r 1/1 1/1 1/1\n"),
         {At(5, "'Model_type' Subparameter Missing value"),
          At(6, "Invalid Polarity (\"inverting\") for Model 'M' (try 'Inverting')"),
          At(6, "Incorrect Number of Line Items (3) For Polarity Data: Expecting 2"),
          At(7, "Invalid Enable (\"High\") for Model 'M'"),
          At(8, "Invalid Model_type (\"i/o\") for Model 'M' (try 'I/O')"),
          At(9, "Unknown Line Among Model Data"), At(10, "Polarity Already Defined For Model 'M'"),
          "ERROR - Ramp 'dV/dt_f' Subparameter Not Defined for Model 'M'"}},
        {InSubparameters("Vinl=0.8|\nVinl = 0.8\nVinh 2.0\nVinh =2.0V x\nModel_types Input\n"),
         {At(8, "Vinl Already Defined For Model 'M'"), At(9, "Invalid Vinh Line For Model 'M'"),
          At(10, "Too Many Line Items For 'Vinh'"), At(11, "Unknown Line Among Model Data")}},
        {InSubparameters("Vinl = " + std::string(43, '1') + "\nVinl = " + std::string(42, '1') +
                         "\nVinh = na\n"),
         {At(7, "Invalid Vinl Line For Model 'M'"), At(9, "Invalid Vinh Value (\"na\")")}},
        {InSubparameters("Vinl =\nC_comp 5p 4p 6p\n"),
         {At(7, "Invalid Vinl Value (\"\")"), At(8, "C_comp Already Defined For Model 'M'")}},
        {Old("[Model] M\nC_comp NA\n[Model] N\nModel_type Foo\n[Pullup]\n[Model] O\nModel_type Input\n"
             "C_comp 5p na Na 4\n[Voltage Range]\n"),
         {At(5, "Invalid C_comp Value (\"NA\")"), At(5, "'C_comp' Definition Missing 'min' Data"),
          At(5, "'C_comp' Definition Missing 'max' Data"),
          "ERROR - 'Model_type' Subparameter Not Defined for Model 'M'",
          "ERROR - 'Voltage Range' Keyword Not Defined For Model 'M'",
          At(7, "Invalid Model_type (\"Foo\") for Model 'N'"),
          "ERROR - 'C_comp' Subparameter Not Defined for Model 'N'",
          "ERROR - 'Voltage Range' Keyword Not Defined For Model 'N'",
          "ERROR - 'Ramp' Keyword Not Defined For Model 'N'",
          "ERROR - 'Pullup' Keyword Missing Data For Model 'N'",
          At(11, "Incorrect Number of Line Items (5) For C_comp Data: Expecting 4"),
          At(12, "'Voltage Range' Keyword Missing typ"), At(12, "'Voltage Range' Keyword Missing min"),
          At(12, "'Voltage Range' Keyword Missing max")}},
    });
}

TEST(OldFile, Numbers)
{
    const auto value = [](const std::string& text) { return InSubparameters("Vinl = " + text + "\n"); };
    const auto invalid = [](const std::string& text) {
        return Lines{At(7, "Invalid Vinl Value (\"" + text + "\")")};
    };
    for (const char* good : {"5", "+.5", "-.5m", "-5.", "1e3", "5V", "5mV", "5GHz", "5e"}) {
        EXPECT_EQ(Messages(value(good)), Lines{}) << good;
    }
    for (const char* bad : {".5", "+", "-.", "+-5", "V5", "inf", "5%", "5.5.5", "1,5", "NA", "\xb5"}) {
        EXPECT_EQ(Messages(value(bad)), invalid(bad)) << bad;
    }
    EXPECT_EQ(Messages(value("5m3")), Lines{"WARNING - Suspicious Vinl Value (\"5m3\"); Numeric In Scale."});
}

// From 60 to 72 characters of an error and from 70 to 73 of a warning.
TEST(OldFile, LongTextsAreFolded)
{
    const std::string one = " - ";
    const std::string two = " -\n      ";
    for (const auto& [size, joint] : {std::pair{24, one}, {25, two}, {37, two}, {38, one}}) {
        const std::string word(static_cast<std::size_t>(size), 'w');
        EXPECT_EQ(Messages(InSubparameters("Polarity " + word + "\n")),
                  Lines{"ERROR (line    7)" + joint + "Invalid Polarity (\"" + word + "\") for Model 'M'"});
    }
    for (const auto& [size, joint] : {std::pair{22, one}, {23, two}, {26, two}, {27, one}}) {
        const std::string value = "5V" + std::string(static_cast<std::size_t>(size), '1');
        EXPECT_EQ(Messages(InSubparameters("Vinl = " + value + "\n")),
                  Lines{"WARNING" + joint + "Suspicious Vinl Value (\"" + value + "\"); Numeric In Scale."});
    }
}

TEST(OldFile, ModelKeywords)
{
    const std::string points = "0 0 0 0\n1 1 1 1\n";
    std::string many = "[GND_Clamp]\n";
    for (int i = 0; i < 102; ++i) {
        many += std::to_string(i) + (i == 99 ? " NA 0 0\n" : " 0 0 0\n");
    }
    ExpectMessages({
        {InModel("text\ntext\n[Voltage Range] 5 4 3\n[Pulldown] x\n" + points + "[Pulldown]\n1\n"),
         {At(8, "Expecting Keyword.  Invalid Line"), At(10, "Voltage Range Already Defined For Model 'M'"),
          At(11, "Incorrect Number of Line Items (2) For Keyword 'Pulldown': Expecting 1"),
          At(14, "Pulldown Already Defined For Model 'M'")}},
        {Old("[Model] M\nModel_type Input\nC_comp 5p NA NA\n[Voltage Range] NA 4 5 6\n"),
         {At(7, "Invalid Voltage Range Value (\"NA\")"),
          At(7, "Incorrect Number of Line Items (5) For Keyword 'Voltage Range': Expecting 4")}},
        {InModel("[Pullup]\nNA\n1 2 3 x 5 6 7\n"),
         {At(9, "Invalid Pullup Value (\"NA\")"), At(9, "'Pullup' Definition Missing 'typ' Data"),
          At(9, "'Pullup' Definition Missing 'min' Data"), At(9, "'Pullup' Definition Missing 'max' Data"),
          At(10, "Invalid Pullup Value (\"x\")"),
          At(10, "Incorrect Number of Line Items (7) For Pullup Data: Expecting 4")}},
        // the table ends at its hundredth row
        {InModel(many),
         {At(109, "Exceeding 100 Points For GND_Clamp"), At(110, "Exceeding 100 Points For GND_Clamp"),
          "ERROR - Model 'M' GND_Clamp Curve Ends With A Typical Value of 'NA'"}},
        {InModel("[POWER_Clamp]\n0 NA 0 0\n[gnd_clamp]\n[Pulldown]\n"),
         {"ERROR - Model 'M' POWER_Clamp Curve Starts With A Typical Value of 'NA'",
          "ERROR - Model 'M' POWER_Clamp Curve Ends With A Typical Value of 'NA'",
          "ERROR - 'Pulldown' Keyword Missing Data For Model 'M'",
          "ERROR - 'GND_Clamp' Keyword Missing Data For Model 'M'",
          "ERROR - Model 'M': 'POWER_Clamp' Curve Requires More Than 1 Entry"}},
        {InModel("[Ramp]\ndV/dt_r NA 1/2n na\ndV/dt_r 1/1 1/1 1/1\nR_load = 50\ndV/dt_f 1 NA/1n 1/\n[Ramp]\n"
                 "dV/dt_f 1\n"),
         {At(9, "Invalid dV/dt_r Value (\"NA\")"),
          At(10, "Ramp Subparameter 'dV/dt_r' Already Defined For Model 'M'"),
          At(11, "Unknown Line Among Ramp Data"), At(12, "Invalid dV/dt_f Value (\"1\")"),
          At(12, "Invalid dV/dt_f Value (\"NA\")"), At(12, "Invalid dV/dt_f Value (\"\")"),
          At(13, "Ramp Already Defined For Model 'M'")}},
    });
}

TEST(OldFile, Components)
{
    const std::string pins = "[Pin] signal_name model_name\n1 A M\n";
    ExpectMessages({
        {InModel("[Component] | none\ntext\n[Manufacturer]\n"),
         {At(8, "'Component' Keyword Missing Name"), At(9, "Expecting Keyword.  Invalid Line")}},
        {InModel("[Component]  " + std::string(41, 'c') + "\ntext\ntext\n[Manufacturer]\n[Manufacturer] " +
                 std::string(41, 'm') + "\n[Manufacturer] Acme\n"),
         {At(8, "Component Name Over 40 Characters Long"), At(9, "Expecting Keyword.  Invalid Line"),
          At(11, "'Manufacturer' Keyword Missing Name"), At(12, "Manufacturer Name Over 40 Characters Long"),
          At(13, "'Manufacturer' Keyword Already Defined For Component '" + std::string(40, 'c') + "'"),
          "ERROR - 'Package' Keyword Not Defined For Component '" + std::string(40, 'c') + "'",
          "ERROR - 'Pin' Keyword Not Defined For Component '" + std::string(40, 'c') + "'"}},
        {InModel("[Component] U1\n[Package] x\nR_pkg NA 1 1\nR_pkg 1 1 1\nL_pkg 1\nC_Pkg 1 1 1\n[Package]\n"
                 "L_pkg 1\n[Pin] signal_name model_name\n"),
         {At(9, "Incorrect Number of Line Items (2) For Keyword 'Package': Expecting 1"),
          At(10, "Invalid R_pkg Value (\"NA\")"),
          At(11, "Package Subparameter 'R_pkg' Already Defined For Component 'U1'"),
          At(12, "'L_pkg' Definition Missing 'min' Data"), At(12, "'L_pkg' Definition Missing 'max' Data"),
          At(13, "Unknown Line Among Package Data"),
          At(14, "'Package' Keyword Already Defined For Component 'U1'"),
          "ERROR - 'Manufacturer' Keyword Not Defined For Component 'U1'",
          "ERROR - Package 'C_pkg' Subparameter Not Defined For Component 'U1'",
          "ERROR - 'Pin' Keyword Missing Data For Component 'U1'"}},
        {InComponent(pins + "[Pin] signal_name model_name\n1 A X\n"),
         {At(16, "'Pin' Keyword Already Defined For Component 'U1'")}},
    });
}

TEST(OldFile, PinHeaders)
{
    ExpectMessages({
        {InComponent("[Pin]\n1 A X\n"),
         {At(14, "'Pin' Keyword Missing signal_name"), At(14, "'Pin' Keyword Missing model_name"),
          At(14, "Incorrect Number of Line Items (1) For Keyword 'Pin': Expecting 3 or 6")}},
        {InComponent("[Pin] model_name signal_name\n1 A M 1 1 1\n"),
         {At(14, "Second Pin Subparameter Must Be 'signal_name'"),
          At(14, "Third Pin Subparameter Must Be 'model_name'"),
          At(15, "6 Line Items Not Allowed For These Pin Definitions")}},
        {InComponent("[Pin] signal_name model_name R_pin G_pin\n1 A X\n"),
         {At(14, "Incorrect Number of Line Items (5) For Keyword 'Pin': Expecting 3 or 6")}},
        {InComponent("[Pin] signal_name model_name R_pin G_pin C_pin\n1 A X\n"),
         {At(14, "Invalid Pin Subparameter (\"G_pin\")")}},
        {InComponent("[Pin] signal_name model_name L_pin L_pin L_pin\n1 A X\n"),
         {At(14, "Pin Subparameter 'L_pin' Defined Multiple Times"),
          At(14, "Pin Subparameter 'L_pin' Defined Multiple Times"),
          At(14, "Pin Subparameter 'R_pin' Is Missing"), At(14, "Pin Subparameter 'C_pin' Is Missing")}},
    });
}

TEST(OldFile, Pins)
{
    const std::string name21(21, 'n');
    ExpectMessages({
        {InPins("1 A M 1 1\n123456 A M\nNC A M\na1 A M\nA1 A M\na1 A X\n"),
         {At(15, "Incorrect Number of Line Items (5) For Pin Data: Expecting 3 or 6"),
          At(16, "Pin Name Over 5 Characters Long"), At(17, "Invalid Pin Name (\"NC\"); Reserved Word."),
          At(20, "Pin 'a1' Already Defined")}},
        {InPins("1 " + name21 + " " + name21 + "\n2 na NA\n3 GND m\n"),
         {At(15, "Pin '1' Signal Name Over 20 Characters Long"),
          At(15, "Pin '1' Model Name Over 20 Characters Long"),
          At(15, "Model Name '" + name21 + "' Undefined For Pin '1'"),
          At(16, "Invalid Signal Name (\"na\"); Reserved Word."),
          At(16, "Invalid Model Name (\"NA\"); Reserved Word."),
          At(16, "Model Name 'NA' Undefined For Pin '2'"), At(17, "Model Name 'm' Undefined For Pin '3'")}},
        // values are looked at as R, L, C, wherever their columns stand
        {InPins("1 A M c l r\n2 A M 123456789 1234567890 na\n" + std::string(50, 'x') + " A M\n"),
         {At(15, "Invalid R_pin Value (\"r\")"), At(15, "Invalid L_pin Value (\"l\")"),
          At(15, "Invalid C_pin Value (\"c\")"), At(16, "L_pin Over 9 Characters Long"),
          At(17, "Maximum Item Size Exceeded")}},
        // a model counts by its name, whatever is said of it
        {Old(Component("U1", "1 A N\n") + "[Model] N\n"),
         {"ERROR - 'Model_type' Subparameter Not Defined for Model 'N'",
          "ERROR - 'C_comp' Subparameter Not Defined for Model 'N'",
          "ERROR - 'Voltage Range' Keyword Not Defined For Model 'N'"}},
    });
}

TEST(OldFile, PinsBeyondTheTableAreTold)
{
    std::string lines;
    for (int i = 0; i < 1026; ++i) {
        lines += std::to_string(i) + " A NC\n";
    }
    EXPECT_EQ(Messages(InPins(lines)),
              (Lines(2, "PROGRAM BUG - Reached Maximum Pin Count On Component 'U1'")));
}

// What the first pass says of header and models comes first, what the second says of components follows; the
// line reader's own findings come once.
TEST(OldFile, BothPasses)
{
    const std::string long81(81, '|');
    const std::string text = "[IBIS Ver] 1.0\n"
                             "[File Name] T.ibs\n"
                             "[Component] U1\n"
                             " [Manufacturer] Acme\n"
                             "[Package]\n"
                             "R_pkg 1 1\n" +
                             long81 +
                             "\n[Pin] signal_name model_name\n"
                             "1 A M\n"
                             "2 B X\n"
                             "[Unknown]\n"
                             "passed over\n"
                             "[Comment Char] !_char\n"
                             "[Model] M ! later\n"
                             "Model_type Output\n"
                             "| no comment\n"
                             "[Component] U2\n"
                             "[Manufacturer\n"
                             "[Pin] signal_name model_name\n"
                             "1 A M ! fine\n"
                             "1 A |\n"
                             "[End] now\n"
                             "! fine\n"
                             "| late\n";
    EXPECT_EQ(
        Messages(text),
        (Lines{At(2, "Invalid Character (\"T\") In File name"), At(4, "Keywords Must Begin In Column 1"),
               At(7, "Exceeds 80 characters"), At(11, "Invalid Keyword"),
               At(16, "Unknown Line Among Model Data"),
               "ERROR - 'C_comp' Subparameter Not Defined for Model 'M'",
               "ERROR - 'Voltage Range' Keyword Not Defined For Model 'M'",
               "ERROR - 'Ramp' Keyword Not Defined For Model 'M'",
               At(18, "Keyword Missing Ending Bracket (']')"), At(6, "'R_pkg' Definition Missing 'max' Data"),
               At(10, "Model Name 'X' Undefined For Pin '2'"),
               "ERROR - Package 'L_pkg' Subparameter Not Defined For Component 'U1'",
               "ERROR - Package 'C_pkg' Subparameter Not Defined For Component 'U1'",
               At(21, "Pin '1' Already Defined"),
               "ERROR - 'Manufacturer' Keyword Not Defined For Component 'U2'",
               "ERROR - 'Package' Keyword Not Defined For Component 'U2'",
               At(22, "Incorrect Number of Line Items (2) For Keyword 'End': Expecting 1"),
               At(24, "Non-Comment Line Exists After 'End' Keyword")}));
}

// The character changes at once, whatever is open.
TEST(OldFile, CommentCharacterChangesWithin)
{
    const std::string change = "[Comment Char] #_char\n";
    ExpectMessages({
        {Old("[Source]\n" + change + "# text\n| text\n[Notes] # [Date]\n[Date] # none\n"), {}},
        {InSubparameters(change + "Vinl = 1 # V\nVinh = 2|\n"), {At(9, "Invalid Vinh Value (\"2|\")")}},
        {InModel("[Pulldown]\n0 0 0 0 | zero\n" + change +
                 "1 1 1 1 # one\n# two\n2 2 2 2 | two\n[Ramp] # slopes\ndV/dt_r 1/1 1/1 1/1# up\n"
                 "[Comment Char] |_char\ndV/dt_f 1/1 1/1 1/1| down\n"),
         {At(13, "Incorrect Number of Line Items (6) For Pulldown Data: Expecting 4")}},
        // both passes
        {InPins("1 A M | 1\n" + change + "2 A M # 1\n3 A M | 1\n[Comment Char] |_char\n4 A M | 1\n"),
         {At(18, "Incorrect Number of Line Items (5) For Pin Data: Expecting 3 or 6")}},
    });
}

// A field of a line is kept up to 41 characters, a name up to the size of its record.
TEST(OldFile, LongNames)
{
    const std::string word(850, 'w');
    const std::string name(41, 'n');
    const std::pair<std::string, Lines> rows[] = {
        {"[IBIS Ver] 1.1\n[File Name] " + word + "\n[File Name] " + name + ".ibs\n[End]\n",
         {At(2, "Maximum Item Size Exceeded"),
          At(2, "File name (\"t.ibs\") Does Not Match Internal Name (\"\")"),
          At(2, "File name Requires 'ibs' Extension"), At(3, "Maximum Item Size Exceeded"),
          At(3, "File name (\"t.ibs\") Does Not Match Internal Name (\"\")"),
          At(3, "File name Requires 'ibs' Extension")}},
        {"[IBIS Ver] 1.1\n[File Rev] " + word + "\n[File Rev] " + name + "\n[File Rev] x\n[End]\n",
         {At(2, "Maximum Item Size Exceeded"), At(4, "'File Rev' Keyword Already Defined")}},
        {"[IBIS Ver] 1.1\n[Date] " + word + "\n[Date] x\n[End]\n",
         {At(2, "Date Over 40 Characters Long"), At(3, "'Date' Keyword Already Defined")}},
        {"[IBIS Ver] 1.1\n[" + word + "]\n[Comment Char] " + word + "\n[End]\n",
         {At(2, "Invalid Keyword"), At(3, "Invalid Comment Character Definition")}},
        {InSubparameters("Polarity " + word + "\nEnable " + name + "\nVinl = " + word + "\n" + word + "\n"),
         {At(7, "Maximum Item Size Exceeded"), At(7, "Invalid Polarity (\"\") for Model 'M'"),
          At(8, "Invalid Enable (\"" + name + "\") for Model 'M'"), At(9, "Invalid Vinl Line For Model 'M'"),
          At(10, "Unknown Line Among Model Data")}},
        {InModel("[Voltage Range] " + word + "\n[Pulldown] " + word + "\n" + word + " 1 1 1\n1 " + name +
                 " 1 1\n"),
         {At(8, "Voltage Range Already Defined For Model 'M'"), At(9, "Maximum Item Size Exceeded"),
          At(9, "Incorrect Number of Line Items (2) For Keyword 'Pulldown': Expecting 1"),
          At(10, "Maximum Item Size Exceeded"), At(10, "Invalid Pulldown Value (\"\")"),
          At(11, "Invalid Pulldown Value (\"" + name + "\")")}},
        {InModel("[Ramp] " + word + "\n" + word + " 1/1\ndV/dt_r " + word + " " + name + " 1/" + name + "\n"),
         {At(9, "Maximum Item Size Exceeded"), At(9, "Unknown Line Among Ramp Data"),
          At(10, "Maximum Item Size Exceeded"), At(10, "Maximum Item Size Exceeded"),
          At(10, "Invalid dV/dt_r Value (\"\")"), At(10, "Invalid dV/dt_r Value (\"" + name + "\")"),
          At(10, "Invalid dV/dt_r Value (\"\")"),
          "ERROR - Ramp 'dV/dt_f' Subparameter Not Defined for Model 'M'"}},
        {InModel("[Component] " + word + "\n[Manufacturer] " + word + "\n[Package] " + word + "\n" + word +
                 "\nR_pkg " + word + " " + name + " 1\n[Pin] " + word + " " + name + "\n"),
         {At(8, "Component Name Over 40 Characters Long"), At(9, "Manufacturer Name Over 40 Characters Long"),
          At(10, "Maximum Item Size Exceeded"),
          At(10, "Incorrect Number of Line Items (2) For Keyword 'Package': Expecting 1"),
          At(11, "Maximum Item Size Exceeded"), At(11, "Unknown Line Among Package Data"),
          At(12, "Maximum Item Size Exceeded"), At(12, "Invalid R_pkg Value (\"\")"),
          At(12, "Invalid R_pkg Value (\"" + name + "\")"), At(13, "Maximum Item Size Exceeded"),
          At(13, "Second Pin Subparameter Must Be 'signal_name'"),
          At(13, "Third Pin Subparameter Must Be 'model_name'"),
          "ERROR - Package 'L_pkg' Subparameter Not Defined For Component '" + word.substr(0, 40) + "'",
          "ERROR - Package 'C_pkg' Subparameter Not Defined For Component '" + word.substr(0, 40) + "'",
          "ERROR - 'Pin' Keyword Missing Data For Component '" + word.substr(0, 40) + "'"}},
        {InPins(word + " A M\n1 " + word + " M\n2 A " + word + "\n" + name + " " + name + " " + name +
                "\n3 " + name + " " + name + " " + name + " " + word + " 1\n"),
         {At(15, "Maximum Item Size Exceeded"), At(16, "Maximum Item Size Exceeded"),
          At(17, "Maximum Item Size Exceeded"), At(17, "Model Name '' Undefined For Pin '2'"),
          At(18, "Pin Name Over 5 Characters Long"), At(19, "Maximum Item Size Exceeded"),
          At(19, "Pin '3' Signal Name Over 20 Characters Long"),
          At(19, "Pin '3' Model Name Over 20 Characters Long"),
          At(19, "Model Name '" + name + "' Undefined For Pin '3'"), At(19, "Invalid L_pin Value (\"\")"),
          At(19, "C_pin Over 9 Characters Long")}},
        {InComponent("[Pin] signal_name model_name " + word + " L_pin C_pin\n1 A M\n"),
         {At(14, "Maximum Item Size Exceeded"), At(14, "Invalid Pin Subparameter (\"\")")}},
        {InComponent("[Pin] signal_name model_name " + name + " L_pin C_pin\n1 A M\n"),
         {At(14, "Invalid Pin Subparameter (\"" + name + "\")")}},
    };
    for (const auto& [text, messages] : rows) {
        Lines lines = Messages(text);
        std::erase_if(lines, [](const std::string& line) { return line.find("Exceeds 80") != line.npos; });
        EXPECT_EQ(lines, messages) << text;
    }
}

// Without [End] the components are never read; what is open is closed with its own checks.
TEST(OldFile, EndsAnywhere)
{
    const std::string clean = Old(OldDriver("D"));
    const std::string text = clean.substr(0, clean.size() - sizeof "[End]");
    const auto upTo = [&](const char* part) { return text.substr(0, text.find(part)); };
    const std::string noRamp = "ERROR - 'Ramp' Keyword Not Defined For Model 'D'";
    ExpectMessages({
        {text, {}},
        {upTo("dV/dt_f"), {"ERROR - Ramp 'dV/dt_f' Subparameter Not Defined for Model 'D'"}},
        {upTo("[Ramp]"), {noRamp}},
        {upTo("\n0 0 0 0"), {noRamp, "ERROR - Model 'D': 'Pulldown' Curve Requires More Than 1 Entry"}},
        {upTo("\n-5.0"), {noRamp, "ERROR - 'Pulldown' Keyword Missing Data For Model 'D'"}},
        {upTo("\nC_comp"),
         {"ERROR - 'C_comp' Subparameter Not Defined for Model 'D'",
          "ERROR - 'Voltage Range' Keyword Not Defined For Model 'D'", noRamp}},
        {"[IBIS Ver] 1.1", {}},
        {"[IBIS Ver] 1.1\n[Notes]\nx", {}},
        {"[IBIS Ver] 1.1\n[Component]\n[Pin]\n1", {}},
        {"[IBIS Ver] 1.1\n[Unknown]\nx", {At(2, "Invalid Keyword")}},
        {"[IBIS Ver] 1.1\n[File Name", {At(2, "Keyword Missing Ending Bracket (']')")}},
        {upTo(" D\nModel_type"), {At(4, "'Model' Keyword Missing name")}},
        {upTo("/30n NA\ndV/dt_f"),
         {At(26, "Invalid dV/dt_r Value (\"2.8\")"), At(26, "'dV/dt_r' Definition Missing 'max' Data"),
          "ERROR - Ramp 'dV/dt_f' Subparameter Not Defined for Model 'D'"}},
        {"[IBIS Ver] 1.1\n[Comment Char]", {At(2, "Invalid Comment Character Definition")}},
    });
}

TEST(OldFile, NamesOfFiles)
{
    const std::string text = "[IBIS Ver] 1.1\n[File Name] up.ibs\n[End]\n";
    const std::string upper = WriteTestFile("UP.IBS", text);
    EXPECT_EQ(MessagesOfFile(upper, IBIS_FILE_IBS), Lines{});
    WriteTestFile("up.ibs", text);
    EXPECT_EQ(DirectMessages(TestFolder() + "\\up").size(), 1U);  // no folder of this name
    EXPECT_EQ(DirectMessages(TestFolder() + "/up"), Lines{});
    const Lines extension{"ERROR - Filename Requires 'ibs' Extension.  ABORTING!!!"};
    EXPECT_EQ(Messages(text, "up.Ibs"), extension);
    EXPECT_EQ(Messages(text, "up.pkg"), extension);
    EXPECT_EQ(DirectMessages("no such/file"), Lines{"ERROR - Unable To Open File 'NO SUCH/FILE.IBS'\n"});
    EXPECT_EQ(DirectMessages(std::string(3000, 'x')),
              Lines{"ERROR - Unable To Open File '" + std::string(1024, 'X') + ".IBS'\n"});
}

TEST(OldFile, FileThatCannotBeReadTwice)
{
    const std::string path = TestFolder() + "/pipe.ibs";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    // keeps what is written until it is read, though its writer has gone
    const int keeper = open(path.c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(keeper, 0);
    std::ofstream(path) << "[IBIS Ver] 1.1\n[End]\n";
    EXPECT_EQ(DirectMessages(path), Lines{"ERROR - Unable To Rewind File For Second (Component) Pass\n"});
    close(keeper);
}

TEST(OldFile, StandAloneEntry)
{
    const auto run = [](const std::string& content) {
        MSG_ClearContainer();
        const std::string path = WriteTestFile("t.ibs", content);
        const char* const arguments[] = {"ibis11", path.c_str()};
        return IBIS11_Main(2, arguments);
    };
    const std::string clean = Old(Component("U1", "1 A M\n") + Model("M", "[Pullup]\n0 1V1 0 0\n1 1 1 1\n"));
    EXPECT_EQ(run(clean), 0);
    EXPECT_EQ(Stored(), Lines{"WARNING - Suspicious Pullup Value (\"1V1\"); Numeric In Scale.\n"});
    EXPECT_EQ(run(Old(Model("M"))), 1);
    EXPECT_EQ(Stored(), Lines{"ERROR - Missing Keyword: Component\n"});
    EXPECT_EQ(run("[IBIS Ver] 1.1\n[Component] U1\n"), 1);
    EXPECT_EQ(Stored(), (Lines{"ERROR - Missing Keyword: File Name\n", "ERROR - Missing Keyword: File Rev\n",
                               "ERROR - Missing Keyword: Model\n", "ERROR - Missing Keyword: End\n"}));
    testing::internal::CaptureStderr();
    EXPECT_EQ(IBIS11_Main(1, nullptr), 1);
    EXPECT_FALSE(testing::internal::GetCapturedStderr().empty());
}
