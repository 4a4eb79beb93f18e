#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_cmpntemi.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_mdlemi.h"
#include "ibis/source/nuibis_pinemi.h"
#include "tests/builders.h"

namespace
{

const std::string BEGIN = "[Begin EMI Component]\n";
const std::string END_BLOCK = "[End EMI Component]\n";

// Pins 1 and 2, pin 3 on ground; `lines` from line 14 on.
Lines EmiMessages(std::string_view lines, std::string_view version = "5.1")
{
    return Unfolded(Messages(Bare(
        Component("U1", "1 S M 1 1n 1p\n2 S M 1 1n 1p\n3 S gnd 1 1n 1p\n", lines) + Model("M"), version)));
}

const CMPNTEMI* Emi()
{
    ibis* root = nullptr;
    return IBIS_GetCurrent(&root) && root->pComponents != nullptr ? root->pComponents->pEmi : nullptr;
}

}  // namespace

TEST(EmiComponent, KeywordsComeWithFive)
{
    EXPECT_EQ(EmiMessages(BEGIN + "Domain Analog\n" + END_BLOCK), Lines{});
    EXPECT_EQ(EmiMessages(BEGIN + END_BLOCK, "4.2"),
              (Lines{"ERROR (line   14) - Invalid Keyword: Begin_EMI_Component",
                     "ERROR (line   15) - Invalid Keyword: End_EMI_Component"}));
}

TEST(EmiComponent, Subparameters)
{
    const std::string at = "ERROR (line   15) - ";
    const std::string next = "ERROR (line   16) - ";
    const std::string both = " cannot be specified since ";
    const struct {
        std::string lines;
        Lines messages;
    } rows[] = {
        {"Domain Digital_Analog\nCpd = 6pF\nC_Heatsink_gnd=1\n",
         {"ERROR (line   17) - Unknown Line after [Begin EMI Component]"}},
        {"Domain", {at + "'Domain' Subparameter Missing Setting"}},
        {"Domain = Analog", {at + "Incorrect Number of Line Items (3) For Domain: Expecting 2"}},
        {"Domain analog", {at + "Invalid Domain (\"analog\") (try \"Analog\")"}},
        {"Domain Mixed", {at + "Invalid Domain (\"Mixed\")"}},
        {"Domain Analog\nDomain Digital\n", {next + "Domain Already Defined For EMI Component"}},
        {"Cpd", {at + "Invalid Cpd Line"}},
        {"Cpd 6pF", {at + "Invalid Cpd Line"}},
        {"Cpd 6pF 7", {at + "Invalid Cpd Line"}},
        {"Cpd = 6pF 7", {at + "Incorrect Number of Line Items (4) For Cpd: Expecting 3"}},
        {"Cpd = six", {at + "Invalid Cpd (\"six\")"}},
        {"Cpd = 1p\nCpd = 2p\n", {next + "Cpd Already Defined For EMI Component"}},
        {"C_Heatsink_gnd = 1\nC_Heatsink_float = 2\n",
         {next + "C_Heatsink_float" + both + "C_Heatsink_gnd is already specified"}},
        {"C_Heatsink_float = 1\nC_Heatsink_gnd = 2\n",
         {next + "C_Heatsink_gnd" + both + "C_Heatsink_float is already specified"}},
        {"domain Analog\nCpd = 0\n", {at + "Unknown Line after [Begin EMI Component]"}},
        {"| nothing", {"WARNING (line   16) - Empty Emi Component block found"}},
    };
    for (const auto& row : rows) {
        const std::string lines = row.lines + (row.lines.ends_with('\n') ? "" : "\n");
        Lines found = EmiMessages(BEGIN + lines + END_BLOCK);
        if (row.messages[0].find("Empty") == std::string::npos) {
            std::erase_if(found, [](const std::string& line) { return line.find("Empty") != line.npos; });
        }
        EXPECT_EQ(found, row.messages) << row.lines;
    }
}

// A second setting of the domain replaces the first, a second number does not; what cannot be read counts as
// given.
TEST(EmiComponent, StoresWhatWasGiven)
{
    EmiMessages(BEGIN +
                "Domain Analog\nDomain Digital\nCpd = 1\nCpd = 2\nC_Heatsink_gnd = 3\n"
                "C_Heatsink_float = x\n" +
                END_BLOCK);
    ASSERT_NE(Emi(), nullptr);
    EXPECT_EQ(Emi()->eDomain, CMPNTEMI_DIGITAL);
    EXPECT_EQ(*Emi()->pdCpd, 1.0);
    EXPECT_EQ(*Emi()->pdC_Heatsink_gnd, 3.0);
    EXPECT_EQ(*Emi()->pdC_Heatsink_float, 0.0);
    EmiMessages(BEGIN + "Domain Analog\nDomain\n" + END_BLOCK);
    EXPECT_EQ(Emi()->eDomain, CMPNTEMI_UNSET);
}

TEST(EmiComponent, BlockOpensAndCloses)
{
    const std::string used = "Domain Analog\n";
    EXPECT_EQ(EmiMessages("[Begin EMI Component] a  b\n" + used + "[End EMI Component] c\n"),
              (Lines{"ERROR (line   14) - Unexpected data 'a  b' found after the Keyword",
                     "ERROR (line   16) - Unexpected data 'c' found after the Keyword"}));
    EXPECT_EQ(EmiMessages(END_BLOCK + "x\n[Pin EMI]\n1 a 1\n[Pin Domain EMI]\n"),
              (Lines{"ERROR (line   14) - Orphan keyword line.", "ERROR (line   15) - Orphan data line",
                     "ERROR (line   16) - Orphan keyword line.", "ERROR (line   17) - Orphan data line",
                     "ERROR (line   18) - Orphan keyword line."}));
    EXPECT_EQ(EmiMessages(BEGIN + used + END_BLOCK + "x\n"), (Lines{"ERROR (line   17) - Orphan data line"}));
    // Another keyword is told and read, and the block waits on.
    EXPECT_EQ(EmiMessages(BEGIN + "[Package Model] x\n[Manufacturer] y\nDomain Analog\n" + END_BLOCK)[0],
              "ERROR (line   15) - Unexpected Keyword in a [Component EMI] block");
    EXPECT_EQ(EmiMessages(BEGIN + used + BEGIN + END_BLOCK),
              (Lines{"ERROR (line   16) - Unexpected Keyword in a [Component EMI] block",
                     "ERROR (line   16) - [Emi Component] is already defined for this Component",
                     "WARNING (line   17) - Empty Emi Component block found"}));
    EXPECT_EQ(EmiMessages(BEGIN + used + END_BLOCK + BEGIN + used + END_BLOCK),
              (Lines{"ERROR (line   17) - [Emi Component] is already defined for this Component"}));
    EXPECT_EQ(EmiMessages(BEGIN + used), (Lines{"ERROR (line   16) - [End Emi Component] Keyword expected"}));
    // An open block does not reach over into the next component.
    EXPECT_EQ(EmiMessages(BEGIN + used + Component("U2", "1 S M 1 1n 1p\n", END_BLOCK)),
              (Lines{"ERROR (line   16) - [End Emi Component] Keyword expected",
                     "ERROR (line   24) - Orphan keyword line."}));
}

TEST(PinEmi, HeaderAndRows)
{
    const std::string at = "ERROR (line   15) - ";
    const std::string row = "ERROR (line   16) - ";
    const std::string unknown =
        "ERROR - Component 'U1': pin_name '7' found in [Pin EMI] section was not found in "
        "the [Pin] section";
    const struct {
        std::string header;
        std::string lines;
        Lines messages;
    } rows[] = {
        {"DOMAIN_NAME clock_Div", "1 core 2\n2 NA NA\n", {}},
        {"", "1 core 2\n", {at + "Unable to find column headers after [Pin EMI] keyword."}},
        {"clock_div",
         "1 core 2\n",
         {at + "'domain_name' column header not found or out of order.",
          at + "Unable to add data for [Pin EMI] keyword."}},
        {"domain_name clock_div a  b", "1 core 2\n", {at + "Unexpected data 'a  b' found after the Keyword"}},
        {"domain_name clock_div", "7\n", {row + "domain_name not found", unknown}},
        {"domain_name clock_div", "1 core\n", {row + "clock_div not found"}},
        {"domain_name clock_div",
         "1 power 1 x y\n",
         {row + "Illegal use of Reserved Word 'power'.", row + "Unexpected data 'x' after clock_div"}},
        {"domain_name clock_div", "1 core 1.2345\n", {row + "clock_div should be at most 5 characters long"}},
        {"domain_name clock_div", "1 core x\n", {row + "Invalid clock_div Value (\"x\")"}},
        {"domain_name clock_div",
         "1 " + std::string(21, 'd') + " 1\n",
         {row + "domain_name string '" + std::string(21, 'd') +
          "' is too long, truncating to 20 characters."}},
        {"domain_name clock_div",
         "1 a 1\n2 a 1\n1 b 1\n1 c 1\n",
         {"ERROR (line   18) - Duplicate Pin '1'", "ERROR (line   19) - Duplicate Pin '1'",
          "ERROR (line   19) - Duplicate Pin '1'"}},
        {"domain_name clock_div",
         "1 a 1\n[Pin EMI] x\n2 a 1\n",
         {"ERROR (line   17) - [Pin EMI]: Already defined for this EMI Component."}},
        {"domain_name clock_div",
         "3 a 1\n7 a 1\n",
         {"ERROR - Component 'U1': Pin '3' is of model 'gnd' and cannot be referened in a [Pin EMI] section",
          unknown}},
    };
    for (const auto& r : rows) {
        EXPECT_EQ(EmiMessages(BEGIN + "[Pin EMI] " + r.header + "\n" + r.lines + END_BLOCK), r.messages)
            << r.header << "\n"
            << r.lines;
    }
}

TEST(PinEmi, RowsAreStored)
{
    EmiMessages(BEGIN + "[Pin EMI] domain_name clock_div\n1 core 2\n2 io NA\n3\n" + END_BLOCK);
    ASSERT_NE(Emi(), nullptr);
    const PINEMI* row = Emi()->pPinEmi;
    EXPECT_STREQ(row->szPin, "1");
    EXPECT_STREQ(row->szDomain, "core");
    EXPECT_EQ(*row->pdClockDiv, 2.0);
    EXPECT_EQ(row->eClockDivStatus, NUM_VALUE);
    row = row->pNext;
    EXPECT_EQ(row->eClockDivStatus, NUM_NA);
    row = row->pNext;
    EXPECT_STREQ(row->szPin, "3");
    EXPECT_EQ(row->pdClockDiv, nullptr);
    EXPECT_EQ(row->pNext, nullptr);
}

TEST(PinDomainEmi, HeaderAndRows)
{
    const std::string at = "ERROR (line   15) - ";
    const std::string row = "ERROR (line   16) - ";
    const std::string range = "Should be greater than 0 and less than equal to 100";
    const struct {
        std::string header;
        std::string lines;
        Lines messages;
        std::string stored;
    } rows[] = {
        {"percentage", "core 60\nio 40.5\n", {}, "core=60 io=40.5 "},
        {"", "core 60\n", {at + "Expected 'percentage' parameter after keyword"}, "core=60 "},
        {"Percentage x",
         "core 60\n",
         {at + "Unknown parameter 'Percentage': Expected 'percentage'",
          at + "Incorrect Number of Line Items (2) For Pin Domain EMI: Expecting 1"},
         "core=60 "},
        {"percentage",
         "core\n",
         {row + "Incorrect Number of Line Items (1) For Pin Domain EMI: Expecting 2"},
         ""},
        {"percentage",
         "core 6 7\n",
         {row + "Incorrect Number of Line Items (3) For Pin Domain EMI: Expecting 2"},
         "core=6 "},
        {"percentage",
         "core 1\ncore 2\n",
         {"ERROR (line   17) - domain_name 'core' is redefined"},
         "core=1 "},
        {"percentage",
         "core 100\nio 100.1\n",
         {"ERROR (line   17) - Invalid percentage '100.1'. " + range},
         "core=100 io=100.1 "},
        {"percentage", "core 0\n", {row + "Invalid percentage '0'. " + range}, "core=0 "},
        {"percentage", "core nan\n", {row + "Invalid percentage 'nan'. " + range}, "core=nan "},
        {"percentage",
         "core 1.2345\n",
         {row + "Invalid percentage '1.2345'. Should be specified using at most 5 characters"},
         "core=1.2345 "},
        {"percentage", "core x\n", {row + "Invalid percentage 'x'. Invalid Number"}, ""},
        {"percentage",
         "core 1\n[Pin Domain EMI] percentage\nio 2\n",
         {"ERROR (line   17) - [Pin Domain EMI]: Already Defined for this EMI Component"},
         "io=2 "},
    };
    for (const auto& r : rows) {
        const Lines found = EmiMessages(BEGIN + "[Pin Domain EMI] " + r.header + "\n" + r.lines +
                                        "[Pin EMI] domain_name clock_div\n1 core 1\n2 io 1\n" + END_BLOCK);
        EXPECT_EQ(found, r.messages) << r.lines;
        std::string stored;
        for (const PINDOMAIN* domain = Emi()->pPinDomains->pFirst; domain != nullptr;
             domain = domain->pNext) {
            char text[64];
            std::snprintf(text, sizeof text, "%s=%g ", domain->szDomain, *domain->pdPercentage);
            stored += text;
        }
        EXPECT_EQ(stored, r.stored) << r.lines;
    }
    const std::string lonely =
        "' found in [Pin Domain EMI] section was not associated with any pin_name in the "
        "[Pin EMI] section";
    EXPECT_EQ(EmiMessages(BEGIN + "[Pin Domain EMI] percentage\ncore 60\nio 40\n" + END_BLOCK),
              (Lines{"ERROR - Component 'U1': domain_name 'core" + lonely,
                     "ERROR - Component 'U1': domain_name 'io" + lonely}));
    EXPECT_EQ(EmiMessages(BEGIN + "[Pin Domain EMI] percentage\n" + END_BLOCK), Lines{});
}

TEST(EmiModel, BlockAndWords)
{
    const std::string block = "[Begin EMI Model]\n";
    const std::string end = "[End EMI Model]\n";
    const std::string at = "ERROR (line   20) - ";
    const std::string next = "ERROR (line   21) - ";
    // The block of model M, whose keyword stands on line 19.
    const auto model = [](const std::string& lines, std::string_view version = "5.1") {
        return Unfolded(Messages(Ibs(Model("M", lines), version)));
    };
    const struct {
        std::string lines;
        Lines messages;
        MDLEMI stored;
    } rows[] = {
        {"Domain Digital\nModel_emi_type Ferrite\n", {}, {MDLEMI_DIGITAL, MDLEMI_FERRITE}},
        {"Model_emi_type Not_a_ferrite\nanything goes here\n",
         {},
         {MDLEMI_DOMAIN_UNSET, MDLEMI_NOT_A_FERRITE}},
        {"Domain\n", {at + "'Domain' Subparameter Missing Setting"}, {}},
        {"Domain = Digital\n", {at + "Incorrect Number of Line Items (3) For Domain: Expecting 2"}, {}},
        {"Domain digital\n", {at + "Invalid Domain (\"digital\") (try \"Digital\")"}, {}},
        {"Domain Digital_Analog\n", {at + "Invalid Domain (\"Digital_Analog\")"}, {}},
        {"Domain Analog\nDomain Digital\n",
         {next + "Domain is already specified for the EMI Model"},
         {MDLEMI_DIGITAL, MDLEMI_TYPE_UNSET}},
        {"Model_emi_type Ferrite\nModel_emi_type\n",
         {next + "Model_emi_type is already specified for the EMI Model",
          next + "'Model_emi_type' Subparameter Missing Setting"},
         {}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(model(block + row.lines + end), row.messages) << row.lines;
        ibis* root = nullptr;
        ASSERT_TRUE(IBIS_GetCurrent(&root));
        const MDLEMI* const emi = root->pModels->pEmiModel;
        ASSERT_NE(emi, nullptr);
        EXPECT_EQ(emi->eDomain, row.stored.eDomain) << row.lines;
        EXPECT_EQ(emi->eModelEmiType, row.stored.eModelEmiType) << row.lines;
    }
    EXPECT_EQ(model("[Begin EMI Model] a b\n" + block + end),
              (Lines{"ERROR (line   19) - Incorrect Number of Line Items (3) For EMI Model: Expecting 1",
                     "ERROR (line   20) - [End Emi Model] keyword expected",
                     "ERROR (line   20) - EMI Model: Already Defined for this model"}));
    EXPECT_EQ(model(end + "x\n")[0], "ERROR (line   19) - Orphan [End EMI Model] keyword found");
    EXPECT_EQ(model(block + end, "4.2")[0], "ERROR (line   19) - Invalid Keyword: Begin_EMI_Model");
}
