#include "ibis/source/nuibis_extblock.h"

#include "ibis/source/nuibis_circuit.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_mdl.h"
#include "tests/builders.h"

namespace
{

std::string ModelFile(std::string_view type, std::string_view block)
{
    return Ibs("[Model] M\nModel_type " + std::string(type) + "\n[External Model]\n" + std::string(block) +
               "[End External Model]\n");
}

// What the block says; line 16 is the first of it. Models with such a block need no tables, so the end of the
// model has findings of its own, which are left out.
Lines BlockMessages(std::string_view type, std::string_view block)
{
    Lines lines = Unfolded(Messages(ModelFile(type, block)));
    std::erase_if(lines, [](const std::string& line) {
        return line.find("Model 'M'") != line.npos || line.find("Reference Required") != line.npos;
    });
    return lines;
}

std::string CircuitFile(std::string_view block)
{
    return Bare("[External Circuit] AMP\n" + std::string(block) + "[End External Circuit]\n" +
                Component("U1", "1 S NC\n"));
}

// What the block of a circuit says; line 5 is the first of it. The keyword's own line always has a finding.
Lines CircuitMessages(std::string_view block)
{
    Lines lines = Unfolded(Messages(CircuitFile(block)));
    std::erase_if(lines, [](const std::string& line) { return line.find("(\"[External\")") != line.npos; });
    return lines;
}

// "name" or "name=value" of each, in the order of the list.
Lines TextsOf(const EXTNAME* list)
{
    Lines texts;
    for (; list != nullptr; list = list->pNext) {
        texts.push_back(list->pszName +
                        (list->pszValue == nullptr ? std::string() : std::string("=") + list->pszValue));
    }
    return texts;
}

struct Row {
    std::string block;
    Lines messages;
};

const std::string SPICE = "Language SPICE\nCorner Typ f.sp c\nPorts A_signal P1\n";

}  // namespace

TEST(ExternalModel, LanguageCornerAndPorts)
{
    const Row rows[] = {
        {"Language IBIS-ISS\nD_to_A\nCorner Typ\nCorner Typ a b\nLanguage VHDL-AMS\nLanguage SPICE\nD_to_A\n"
         "A_to_D\nPorts D_drive D_switch A_signal\nPort_type a b\nlanguage SPICE\n",
         {"ERROR (line   16) - Invalid Language (\"IBIS-ISS\") (try \"NUIBIS_SPICE, NUIBIS_VHDL-AMS, "
          "NUIBIS_VHDL-A(MS), Verilog-AMS, Verilog-A(MS)\")",
          "ERROR (line   17) - Language must be defined before D2A",
          "ERROR (line   18) - Incorrect Number of Line Items (1) For Corner: Expecting 3",
          "ERROR (line   19) - Missing Language sub-parameter. Language must be defined",
          "ERROR (line   21) - Duplicate External Language Line",
          "ERROR (line   22) - D2A only allowed for language = SPICE or language = IBIS-ISS",
          "ERROR (line   23) - A2D only allowed for language = SPICE",
          "ERROR (line   24) - D_switch not allowed with (D_drive, D_receive, or D_enable) in Ports/A2D/D2A "
          "Section",
          "ERROR (line   25) - Port_type not allowed",
          "ERROR (line   26) - Invalid [External Model] subparameter (\"language\")",
          "ERROR - [External Model] <M> corner <ALL> type <Output> contains reserved port <D_switch> "
          "ILLEGAL"}},
        {"Language VHDL-AMS\nCorner Fast a b\nCorner Typ a b\nCorner Typ a b\nPorts D_switch D_drive\n"
         "Ports A_signal A_pos x\n",
         {"ERROR (line   17) - Invalid Corner (\"Fast\") (try \"Typ,Min,Max\")",
          "ERROR (line   19) - Duplicate Typ Corner",
          "ERROR (line   20) - D_drive not allowed with D_switch in Ports/A2D/D2A Section",
          "ERROR - [External Model] : Port 'x' is not a reserved port name and is not used a D2A or A2D port",
          "ERROR - [External Model] <M> corner <ALL> type <Output> contains reserved port <A_pos> ILLEGAL",
          "ERROR - [External Model] <M> corner <ALL> type <Output> contains reserved port <D_switch> "
          "ILLEGAL"}},
        {"",
         {"ERROR (line   16) - No Typ Corner Defined for [External Model](required)",
          "WARNING - External Model for <M> has suspiciously few PORTS (0)"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.block);
        Lines expected = row.messages;
        for (std::string& line : expected) {
            if (const std::size_t at = line.find("Model] :"); at != line.npos) {
                line.insert(at + 7, "M ");
            }
        }
        EXPECT_EQ(BlockMessages("Output", row.block), expected);
    }
}

TEST(ExternalModel, Converters)
{
    const std::string twin = "D_to_A D_drive A_signal A_gnd 0 3 1n 1n\n";
    const Row rows[] = {
        {SPICE + "D_to_A D_drive A_signal Q 0 3 1n 1n\n" + twin + "D_to_A D_receive P1 A_gnd 3 3 0 -1n\n",
         {"ERROR (line   19) - Illegal Analog Port Q, not in port list",
          "ERROR (line   21) - Illegal Digital Port <D_receive> in D2A ",
          "ERROR (line   21) - trise < 0, [0]", "ERROR (line   21) - tfall < 0, [-1n]",
          "ERROR (line   21) - Vlow >= Vhigh [3 >= 3]",
          "ERROR - [External Model] <M> corner <NUIBIS_TYP> type <Output> contains reserved port <D_receive> "
          "ILLEGAL"}},
        {SPICE +
             "Converter_Parameters hi = 5\nConverter_Parameters lo = x(y\n"
             "Converter_Parameters lo = \"a\"\nConverter_Parameters lo\n" +
             "D_to_A D_drive A_signal P1 6 hi none 1n Typ Inverting\n",
         {"ERROR (line   20) - The parameter lo reference 'x(y' has mismatched parenthesis",
          "ERROR (line   21) - Converter Parameter lo is not Numeric",
          "ERROR (line   22) - Invalid Converter Parameter line. Should contain a single parameter "
          "assignment",
          "ERROR (line   23) - Invalid trise Value (\"none\")", "ERROR (line   23) - Vlow >= Vhigh [6 >= 5]",
          "ERROR - Mdl 'M' D2A corner 'Typ': When polarity is specified, there should two D2A defined with "
          "opposite polarities"}},
        {SPICE + "Ports D_enable\n" + twin +
             "A_to_D D_drive P1 A_gnd 2 1 Min\nA_to_D D_drive P1 A_gnd 0 1 Min\n",
         {"ERROR (line   19) - Illegal Digital Port <D_enable> (not allowed in SPICE/IBIS-ISS Ports section)",
          "ERROR (line   21) - Illegal Digital Port <D_drive> in A2D (must use D_receive)",
          "ERROR (line   21) - Vlow > Vhigh [2 >= 1]",
          "ERROR (line   22) - Illegal Digital Port <D_drive> in A2D (must use D_receive)",
          "ERROR (line   22) - Digital Port <D_drive> already used in previous A2D for this corner",
          "ERROR - MODEL <M> Corner <Min> line: 22 has A2D not matching TYP A2D: <D_drive> <P1> <A_gnd>",
          "ERROR - MODEL <M> Corner <Min> line: 21 has A2D not matching TYP A2D: <D_drive> <P1> <A_gnd>"}},
        {"Language SPICE\nPorts A_signal A_gnd\n" + twin + "D_to_A D_drive A_signal A_gnd 0 3 1n 1n Min\n",
         {"ERROR (line   18) - No Typ Corner Defined... required",
          "ERROR (line   20) - No Typ Corner Defined for [External Model](required)"}},
        {SPICE + twin +
             "D_to_A D_drive P1 A_gnd 0 3\nD_to_A D_drive P1 A_gnd 0 3 1n 1n Fast\n"
             "D_to_A D_drive P1 A_signal 0 3 1n 1n Typ Up\n",
         {"ERROR (line   20) - Incorrect Number of Line Items (6) For D_to_A: Expecting 9",
          "ERROR (line   21) - Invalid Corner Value (\"Fast\")",
          "ERROR (line   22) - Invalid D2A polarity 'Up': Can only be 'Inverting' or 'Non-Inverting'"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.block);
        Lines found = BlockMessages("Output", row.block);
        std::erase_if(found, [](const std::string& line) { return line.find("Port 'P1'") != line.npos; });
        EXPECT_EQ(found, row.messages);
    }
}

TEST(ExternalModel, Parameters)
{
    const std::string plain = "Language VHDL-AMS\nCorner Typ f c\nPorts D_drive A_signal\n";
    EXPECT_EQ(
        BlockMessages("Output", plain + "Parameters a b\nParameters c = 3\nParameters d = 1 2\n"
                                        "Parameters e = 1 f = 2\nParameters = 3\n"
                                        "Parameters g = a)b(\n"),
        (Lines{"ERROR (line   21) - Invalid Parameters assignment. Too many tokens found",
               "ERROR (line   22) - Invalid Parameters assignment. Too many tokens found",
               "ERROR (line   23) - Invalid Parameters assignment. Each assignment should be defined on a "
               "separate line",
               "ERROR (line   24) - The parameter g reference 'a)b(' has mismatched parenthesis"}));
}

TEST(ExternalModel, BlockWithoutItsEndKeepsTheModelOpen)
{
    const Lines lines = MessagesWith("(line", Ibs("[Model] M\nModel_type Output\n[External Model]\n"
                                                  "Language SPICE\n[External Model]\nLanguage SPICE\n"
                                                  "[Voltage Range] 1 1 1\n[End External Model]\n"));
    EXPECT_EQ(lines,
              (Lines{"ERROR (line   17) - Expecting [End External Model]. Invalid Line, FATAL ERROR",
                     "ERROR (line   17) - [External_Model] Already Defined For Model 'M'",
                     "ERROR (line   18) - Duplicate External Language Line",
                     "ERROR (line   19) - Expecting [End External Model]. Invalid Line, FATAL ERROR"}));
}

// A reference is followed into the parameter file; what it finds is stored and read as if it stood on the
// line.
TEST(ExternalModel, ReferencesAreResolved)
{
    WriteTestFile("par.ami",
                  "(r (Reserved_Parameters (e (Usage Info)(Type Boolean)(Value True)))(Model_Specific"
                  "(i (Usage Info)(Type Integer)(Value 4))(s (Usage Info)(Type String)(Value \"x\"))"
                  "(o (Usage Out)(Type Float)(Value 0.5))))");
    const std::string block = SPICE + "Converter_Parameters hi = par.ami(r(Model_Specific(i)))\n"
                                      "Converter_Parameters lo = par.ami(r(Model_Specific(s)))\n"
                                      "Converter_Parameters no = par.ami(r(Model_Specific(z)))\n"
                                      "D_to_A D_drive A_signal P1 5 hi 1n lo\n"
                                      "Parameters p = par.ami(r(Model_Specific(s)))\n"
                                      "Parameters q = par.ami(r(Model_Specific(i))\n"
                                      "Parameters o = par.ami(r(Model_Specific(o)))\n"
                                      "Parameters a b\nParameters v = 5\n";
    EXPECT_EQ(BlockMessages("Output", block),
              (Lines{"ERROR (line   20) - Converter Parameter lo is not Numeric",
                     "ERROR (line   21) - Referenced parameter 'z' not found in file 'par.ami'. Converter "
                     "Parameter 'no' Ignored.",
                     "ERROR (line   22) - Invalid tfall Value (\"lo\")",
                     "ERROR (line   22) - Vlow >= Vhigh [5 >= 4]",
                     "ERROR (line   23) - Parameters are not allowed for language=SPICE",
                     "ERROR (line   24) - The parameter q reference 'par.ami(r(Model_Specific(i))' has "
                     "mismatched parenthesis",
                     "ERROR (line   25) - o: Usage should be Info or In for parameters in AMI files. "
                     "(Parameter 'o')"}));
    const EXTBLOCK& read = *RootOf(ModelFile("Output", block))->pModels->pExternalModel;
    EXPECT_EQ(TextsOf(read.pConverterParameters), (Lines{"hi=4"}));
    EXPECT_EQ(TextsOf(read.pParameters), (Lines{"p=x", "o=0.5", "a", "b", "v=5"}));
}

// The values of a converter that has no number stay at the mark, which no rule looks at.
TEST(ExternalModel, ValuesOfConverters)
{
    const std::string block = SPICE +
                              "Converter_Parameters a = 1e3\nParameters n\n"
                              "D_to_A D_drive A_signal P1 a n 2n3 NA\nA_to_D D_receive P1 A_signal 1mV "
                              "-0.5 Typ\n";
    EXPECT_EQ(BlockMessages("I/O", block),
              (Lines{"ERROR (line   20) - Parameters are not allowed for language=SPICE",
                     "ERROR (line   21) - Invalid vhigh Value (\"n\")",
                     "ERROR (line   21) - Invalid tfall Value (\"NA\")",
                     "ERROR (line   22) - Vlow > Vhigh [1mV >= -0.5]",
                     "ERROR - [External Model] <M> corner <NUIBIS_TYP> type <I/O> does not contain reserved "
                     "port <D_enable> REQUIRED"}));
    const EXTCORNER& corner = *RootOf(ModelFile("I/O", block))->pModels->pExternalModel->pTyp;
    EXPECT_EQ(corner.pD2A->dVlow, 1e3);
    EXPECT_EQ(corner.pD2A->dVhigh, EXT_NO_VALUE);
    EXPECT_EQ(corner.pD2A->dTrise, 2e-9);
    EXPECT_EQ(corner.pD2A->dTfall, EXT_NO_VALUE);
    EXPECT_EQ(corner.pD2A->iLine, 21);
    EXPECT_EQ(corner.pA2D->dVlow, 1e-3);
    EXPECT_EQ(corner.pA2D->dVhigh, -0.5);
}

TEST(ExternalModel, PolaritiesAndReferencesOfEachCorner)
{
    const auto drive = [](const std::string& rest) {
        return "D_to_A D_drive A_signal A_gnd 0 3 1n 1n " + rest;
    };
    const std::string block =
        "Language SPICE\nCorner Typ f.sp c\nPorts A_signal A_gnd\n" + drive("Min Inverting\n") +
        drive("Max Non-Inverting\n") + drive("Typ Inverting\n") + drive("Typ Non-Inverting\n") +
        drive("Max Non-Inverting\n") + "D_to_A D_enable A_signal A_gnd 0 3 1n 1n Min Inverting\n";
    EXPECT_EQ(BlockMessages("3-state", block),
              (Lines{"ERROR (line   24) - The D2A d_port should be 'D_drive' when polarity is specified",
                     "ERROR - MODEL <M> Corner <Min> line: 24 has D2A not matching TYP D2A: <D_enable> "
                     "<A_signal> <A_gnd>",
                     "ERROR - External Model D2A Line <22> Illegal connection, 2 analog reference/driver "
                     "ports <A_signal> <A_gnd>",
                     "ERROR - External Model D2A Line <21> Illegal connection, 2 analog reference/driver "
                     "ports <A_signal> <A_gnd>",
                     "ERROR - External Model D2A Line <23> Illegal connection, 2 analog reference/driver "
                     "ports <A_signal> <A_gnd>",
                     "ERROR - External Model D2A Line <20> Illegal connection, 2 analog reference/driver "
                     "ports <A_signal> <A_gnd>",
                     "ERROR - External Model D2A Line <24> Illegal connection, 2 analog reference/driver "
                     "ports <A_signal> <A_gnd>",
                     "ERROR - External Model D2A Line <19> Illegal connection, 2 analog reference/driver "
                     "ports <A_signal> <A_gnd>",
                     "ERROR - [External Model] <M> corner <NUIBIS_TYP> type <3-state> does not contain "
                     "reserved port <D_enable> REQUIRED",
                     "ERROR - Mdl 'M' D2A corner 'Max': When polarity is specified, there should two D2A "
                     "defined with opposite polarities",
                     "ERROR - Mdl 'M' D2A corner 'Min': When polarity is specified, there should two D2A "
                     "defined with opposite polarities"}));
}

TEST(ExternalModel, PortTypesOnceAdmitted)
{
    gbPortTypeAllowed = true;
    const std::string block =
        "Language VHDL-AMS\nCorner Typ f c\nPorts A_pos A_neg\nPort_type a\nPort_type a "
        "DIGITAL_BI x\nPort_type a DIGITAL_BI\nPort_type b NUIBIS_DIGITAL_DRIVER\nPort_type c "
        "NUIBIS_DIGITAL_RECEIVER\nPort_type d NUIBIS_ANALOG_DRIVER\nPort_type e "
        "ANALOG_BI\nPort_type f NUIBIS_ANALOG_RECEIVER\nPort_type g digital_bi\n";
    EXPECT_EQ(BlockMessages("Series", block),
              (Lines{"ERROR (line   19) - Wrong number of args in PORT_TYPE",
                     "ERROR (line   20) - Wrong number of args in PORT_TYPE"}));
    const EXTPORTTYPE* row = RootOf(ModelFile("Series", block))->pModels->pExternalModel->pPortTypes;
    gbPortTypeAllowed = false;
    std::vector<std::pair<std::string, std::uint32_t>> rows;
    for (; row != nullptr; row = row->pNext) {
        rows.emplace_back(row->pszName, row->uiClass);
    }
    EXPECT_EQ(rows, (decltype(rows){
                        {"g", 2048}, {"f", 4096}, {"e", 4608}, {"d", 512}, {"c", 16}, {"b", 8}, {"a", 24}}));
}

TEST(ExternalCircuit, Blocks)
{
    const Row rows[] = {
        // the ports of a converter must be listed; a digital one can be so ahead of the language only
        {"Ports A B D_switch\nLanguage SPICE\nCorner Typ f.sp c\nD_to_A D_receive A A_gnd 0 3 1n 1n\n"
         "D_to_A A_pos A B 0 3 1n 1n\nA_to_D D_drive B D_switch 0 1\nA_to_D D_switch A B 0 1\n"
         "D_to_A D_enable A A_gnd 0 3 1n 1n\n",
         {"ERROR (line    8) - Illegal Digital Port <D_receive> in D2A ",
          "ERROR (line    9) - Reserved Analog Port <A_pos> used as digital port",
          "ERROR (line   10) - Illegal Digital Port <D_drive> in A2D (use D_receive or a User Defined)",
          "ERROR (line   10) - Reserved Digital Port <D_switch> used as analog port",
          "ERROR (line   10) - Reserved Digital Port <D_switch> used as analog port",
          "ERROR (line   11) - Illegal Digital Port <D_switch> in A2D (use D_receive or a User Defined)",
          "ERROR (line   11) - D_switch not allowed with (D_drive, D_receive, or D_enable) in Ports/A2D/D2A "
          "Section",
          "ERROR (line   12) - D_enable not allowed with D_switch in Ports/A2D/D2A Section",
          "ERROR - External Model D2A Line <12> Illegal connection, 2 analog reference/driver ports <A> "
          "<A_gnd>",
          "ERROR - External Model D2A Line <8> Illegal connection, 2 analog reference/driver ports <A> "
          "<A_gnd>",
          "ERROR - [EXTERNAL CIRCUIT] <>: corner <Typ> Port <D_switch>: used as digital and analog "}},
        // references are looked at in the typical corner only, mixed ports and polarities in all
        {"Language SPICE\nCorner Typ f.sp c\nPorts A B C\nD_to_A x A A_gnd 0 3 1n 1n Min\n"
         "D_to_A x A A_gnd 0 3 1n 1n Min\nA_to_D A A B 0 1 Max\nD_to_A D_drive A B 0 3 1n 1n Max Inverting\n"
         "A_to_D B A B 0 1 Min\n",
         {"ERROR - MODEL <> Corner <Min> line: 12 has A2D not matching TYP A2D: <B> <A> <B>",
          "ERROR - MODEL <> Corner <Min> line: 9 has D2A not matching TYP D2A: <x> <A> <A_gnd>",
          "ERROR - MODEL <> Corner <Min> line: 8 has D2A not matching TYP D2A: <x> <A> <A_gnd>",
          "ERROR - MODEL <> Corner <Max> line: 10 has A2D not matching TYP A2D: <A> <A> <B>",
          "ERROR - MODEL <> Corner <Max> line: 11 has D2A not matching TYP D2A: <D_drive> <A> <B>",
          "ERROR - [External Circuit]  : Port 'C' is not a reserved port name and is not used a D2A or A2D "
          "port",
          "ERROR - [EXTERNAL CIRCUIT] <>: corner <Min> Port <B>: used as digital and analog ",
          "ERROR - [EXTERNAL CIRCUIT] <>: corner <Max> Port <A>: used as digital and analog ",
          "ERROR - Mdl '' D2A corner 'Max': When polarity is specified, there should two D2A defined with "
          "opposite polarities"}},
        {"Language VHDL-AMS\nPorts A\nData_to_B\n",
         {"ERROR (line    7) - Invalid [External Model] subparameter (\"Data_to_B\")",
          "ERROR (line    8) - No Typ Corner Defined for [External Model](required)",
          "WARNING - [External Circuit] <> has suspiciously few PORTS (1)"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.block);
        EXPECT_EQ(CircuitMessages(row.block), row.messages);
    }
}

// No text of a block has a limit of its own; the line has.
TEST(ExternalCircuit, LongNamesAreKept)
{
    const std::string a(300, 'a');
    const std::string b(300, 'b');
    const std::string block = "Language SPICE\nCorner Typ " + a + " " + b + "\nPorts " + a + "\nPorts " + b +
                              "\nConverter_Parameters " + b + " = 5\nParameters " + a + " = \"" + b +
                              "\"\nD_to_A " + a + " " + b + " A_gnd 0 " + b + " 1n 1n\nA_to_D x y " + a +
                              " 0 1\n";
    EXPECT_EQ(
        CircuitMessages(block),
        (Lines{
            "ERROR (line    6) - Exceeds 120 chararacters.", "ERROR (line    7) - Exceeds 120 chararacters.",
            "ERROR (line    8) - Exceeds 120 chararacters.", "ERROR (line    9) - Exceeds 120 chararacters.",
            "ERROR (line   10) - Exceeds 120 chararacters.",
            "ERROR (line   10) - Parameters are not allowed for language=SPICE",
            "ERROR (line   11) - Exceeds 120 chararacters.", "ERROR (line   12) - Exceeds 120 chararacters.",
            "ERROR (line   12) - Illegal Analog Port y, not in port list"}));
    const EXTBLOCK& read = *RootOf(CircuitFile(block))->pCircuits->pBlock;
    EXPECT_EQ(read.pTyp->pszFile, a);
    EXPECT_EQ(read.pTyp->pszCircuit, b);
    EXPECT_EQ(read.pTyp->pD2A->pszDigitalPort, a);
    EXPECT_EQ(read.pTyp->pD2A->pszPort1, b);
    EXPECT_EQ(read.pTyp->pD2A->dVhigh, 5.0);
    EXPECT_EQ(TextsOf(read.pPorts), (Lines{b, a}));
    EXPECT_EQ(TextsOf(read.pConverterParameters), (Lines{b + "=5"}));
}

TEST(ExternalBlocks, FileEndsWithin)
{
    const std::string header = Header();
    const std::string pin = Component("U1", "1 S M\n") + "[Model] M\nModel_type Output\n";
    const Row rows[] = {
        {header + "[External Circuit]",
         {"ERROR (line    4) - Invalid [External Model] subparameter (\"[External\")",
          "ERROR - Required keyword 'End' not found.", "ERROR - Required keyword 'Component' not found."}},
        {header + "[External Circuit] A\nLanguage SPICE\nCorner Typ f",
         {"ERROR (line    4) - Invalid [External Model] subparameter (\"[External\")",
          "ERROR (line    6) - Incorrect Number of Line Items (2) For Corner: Expecting 3",
          "ERROR - Required keyword 'End' not found.", "ERROR - Required keyword 'Component' not found."}},
        {header + pin + "[External Model]",
         {"ERROR - Required keyword 'End' not found.",
          "ERROR (line   14) - Expecting [End External Model]. Invalid Line, FATAL ERROR"}},
        {header + pin +
             "[External Model]\nLanguage SPICE\nCorner Typ f c\nPorts A_signal A_gnd\nD_to_A D_drive A_sig",
         {"ERROR (line   18) - Incorrect Number of Line Items (3) For D_to_A: Expecting 9",
          "ERROR - Required keyword 'End' not found.",
          "ERROR (line   18) - Expecting [End External Model]. Invalid Line, FATAL ERROR"}},
        {header + pin +
             "[External Model]\nLanguage VHDL-AMS\nCorner Typ f c\nPorts A_signal D_drive\n[End External Mod",
         {"ERROR (line   18) - Keyword Missing Ending Bracket (']').",
          "ERROR - Required keyword 'End' not found."}},
        {header + pin +
             "[External Model]\nLanguage VHDL-AMS\nCorner Typ f c\nPorts A_signal D_drive\n[End External "
             "Model]",
         {"ERROR - Required keyword 'End' not found.",
          "ERROR - Model 'M': Pullup Reference Required when No Voltage Range is Specified",
          "ERROR - Model 'M': Pulldown Reference Required when No Voltage Range is Specified",
          "ERROR - Model 'M': POWER Clamp Reference Required when No Voltage Range is Specified",
          "ERROR - Model 'M': GND Clamp Reference Required when No Voltage Range is Specified",
          "ERROR - Model 'M': Ramp Not Defined",
          "WARNING - Model 'M': Vmeas timing test load parameter should be specified"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.block);
        EXPECT_EQ(Unfolded(Messages(row.block)), row.messages);
    }
}
