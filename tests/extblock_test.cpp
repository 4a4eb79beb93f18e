#include "tests/builders.h"

namespace
{

// What the block says; line 16 is the first of it. Models with such a block need no tables, so the end of the
// model has findings of its own, which are left out.
Lines BlockMessages(std::string_view type, std::string_view block)
{
    Lines lines =
        Unfolded(Messages(Ibs("[Model] M\nModel_type " + std::string(type) + "\n[External Model]\n" +
                              std::string(block) + "[End External Model]\n")));
    std::erase_if(lines, [](const std::string& line) {
        return line.find("Model 'M'") != line.npos || line.find("Reference Required") != line.npos;
    });
    return lines;
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
