#include "ibis/source/nuibis_msg.h"
#include "tests/builders.h"

namespace
{

// Pins S1, S2 (signals), G (ground), P (power) and N (not connected), with this [Pin Mapping] on line 16.
std::string MappingFile(std::string_view header, std::string_view lines, std::string_view version = "4.2")
{
    return Bare(
        Component("U1",
                  "S1 a NC 1 1n 1p\nS2 b M 1 1n 1p\nG g GND 1 1n 1p\nP p POWER 1 1n 1p\nN n nc 1 1n 1p\n",
                  "[Pin Mapping] " + std::string(header) + "\n" + std::string(lines)) +
            Model("M"),
        version);
}

const std::string THREE = "pulldown_ref pullup_ref";
const std::string FIVE = THREE + " gnd_clamp_ref power_clamp_ref";
const std::string SIX = FIVE + " ext_ref";
const std::string GOOD = "S1 NC NC\nS2 VSS VDD\nG VSS NC\nP NC VDD\nN NC NC\n";

Lines WithCautions(std::string_view file)
{
    MSG_SetSuppressCautions(false);
    const Lines lines = Messages(file);
    MSG_SetSuppressCautions(true);
    return Unfolded(lines);
}

}  // namespace

TEST(PinMapping, Headers)
{
    EXPECT_EQ(Messages(MappingFile(THREE, GOOD)), Lines{});
    EXPECT_EQ(Messages(MappingFile(SIX, GOOD)), Lines{});
    EXPECT_EQ(Messages(MappingFile("PULLDOWN_REF Pullup_ref", GOOD, "3.2")), Lines{});
    EXPECT_EQ(Unfolded(Messages(MappingFile("", GOOD))),
              (Lines{"ERROR (line   16) - Unable to find column headers after Pin_Mapping keyword."}));
    EXPECT_EQ(
        Unfolded(Messages(MappingFile(SIX, GOOD, "3.2"))),
        (Lines{"ERROR (line   16) - Pin_Mappings keyword column count must be 3 or 5, found 6 columns."}));
    EXPECT_EQ(Unfolded(Messages(MappingFile("pullup_ref", GOOD))),
              (Lines{"ERROR (line   16) - [Diff Pin] keyword column count must be 3,5 or 6 found 2 columns.",
                     "ERROR (line   16) - 'pulldown_ref' column header not found or out of order.",
                     "ERROR (line   16) - 'pullup_ref' column header not found or out of order."}));
    EXPECT_EQ(Unfolded(Messages(MappingFile(FIVE + " Ext", GOOD))),
              (Lines{"ERROR (line   16) - 'ext_ref' column header not found or out of order."}));
    EXPECT_EQ(Unfolded(Messages(MappingFile(THREE, GOOD + "[Pin Mapping] " + THREE + "\n"))),
              (Lines{"ERROR (line   22) - Duplicate Pin_Mapping keyword found."}));
}

TEST(PinMapping, Lines)
{
    const auto only = [](std::string_view header, std::string_view line, std::string_view version) {
        return Unfolded(MessagesWith("(line   17)", MappingFile(header, std::string(line) + "\n", version)));
    };
    const std::string at = "ERROR (line   17) - ";
    EXPECT_EQ(only(THREE, "S1 NA VDD", "4.2"), (::Lines{at + "NA is an invalid Pin_Mapping column entry."}));
    EXPECT_EQ(only(THREE, "S1", "4.2"),
              (::Lines{at + "No pulldown_ref data.", at + "No pullup_ref data.",
                       at + "Pin Mapping data lines must contain either 3, 5 or 6 columns."}));
    EXPECT_EQ(only(THREE, "S1 a b c", "3.2"),
              (::Lines{at + "Pin Mapping data lines must contain either 3 or 5 columns."}));
    EXPECT_EQ(
        only(THREE, "S1 a b c d", "4.2"),
        (::Lines{
            at +
            "When 5 columns are specified, the headings gnd_clamp_ref and power_clamp_ref must be used."}));
    EXPECT_EQ(
        only(FIVE, "S1 a b c d e", "4.2"),
        (::Lines{
            at +
            "When 6 columns are specified, the headings gnd_clamp_ref, power_clamp_ref and ext_ref must be "
            "used."}));
    EXPECT_EQ(only(FIVE, "S1 a b c d e", "3.2"),
              (::Lines{at + "Pin Mapping data lines must contain either 3 or 5 columns."}));
    EXPECT_EQ(only(SIX, "S1 a b c d e f", "4.2"), (::Lines{at + "Extra data columns on this line."}));
    EXPECT_EQ(
        only(THREE, "S1 " + std::string(16, 'r') + " NC", "4.2"),
        (::Lines{at + "pulldown_ref string 'rrrrrrrrrrrrrrrr' is too long, truncating to 15 characters."}));
}

TEST(PinMapping, RailsMapAsRailsUsuallyDo)
{
    const std::string lines = "S1 NC NC\nS2 VSS VDD\nG VSS VDD\nP VSS NC\nN NC VDD\nP1 VSS VDD\n";
    EXPECT_EQ(
        Unfolded(Messages(MappingFile(THREE, lines))),
        (::Lines{"WARNING - Component U1 Pin G is a GND pin. Usually only has Pulldown_ref in Pin Mapping",
                 "WARNING - Component U1 Pin P is a POWER pin. Usually only has Pullup_ref in Pin Mapping",
                 "WARNING - Component U1 Pin N is NC. Should not have any references in Pin Mapping",
                 "ERROR - Component 'U1': Pin Mapping Pin 'P1' not previously declared in Pin section."}));
    EXPECT_EQ(
        Unfolded(Messages(MappingFile(THREE, lines, "3.2"))),
        (::Lines{"WARNING - Pin G is a GND pin. Usually only has Pulldown_ref in Pin Mapping",
                 "WARNING - Pin P is a POWER pin. Usually only has Pullup_ref in Pin Mapping",
                 "WARNING - Pin N is NC. Should not have any references in Pin Mapping",
                 "ERROR - Component 'U1': Pin Mapping Pin 'P1' not previously declared in Pin section."}));
}

TEST(PinMapping, EveryBusHasASource)
{
    const std::string rails = "G VSS NC\nP NC VDD\nN NC NC\nS1 NC NC\n";
    const std::string error = "ERROR - Component 'U1': Pin Mapping ";
    const std::string source = "' is not connected to at least one pin whose model_name is POWER or GND.";
    EXPECT_EQ(Unfolded(Messages(MappingFile(SIX, rails + "S2 A B C D E\n"))),
              (::Lines{error + "pulldown_ref entry 'A" + source, error + "pullup_ref entry 'B" + source,
                       error + "gnd_clamp_ref entry 'C" + source, error + "power_clamp_ref entry 'D" + source,
                       error + "ext_ref entry 'E" + source}));
    const std::string caution = "CAUTION - Component 'U1': Pin Mapping '";
    EXPECT_EQ(WithCautions(MappingFile(SIX, rails + "S2 VDD VSS VDD VSS VSS\n")),
              (::Lines{"CAUTION - Component U1: Pulldown Reference VSS is also used as a Pullup Reference",
                       caution + "VDD': pulldown_ref entry is usually connected to GND.",
                       caution + "VSS': pullup_ref entry is usually connected to POWER.",
                       caution + "VDD': gnd_clamp_ref entry is usually connected to GND.",
                       caution + "VSS': power_clamp_ref entry is usually connected to POWER.",
                       caution + "VSS': ext_ref entry is usually connected to POWER."}));
    EXPECT_EQ(WithCautions(MappingFile(THREE, "G X NC\nP NC X\nS1 NC NC\nS2 X X\nN NC NC\n"))[0],
              "CAUTION - Component U1: Pulldown Reference X is also used as a Pullup Reference");
    EXPECT_EQ(Unfolded(Messages(MappingFile(THREE, GOOD.substr(0, GOOD.find("N NC"))))),
              (::Lines{"ERROR - Component 'U1': Pin 'N' not referenced in Pin Mappings."}));
    EXPECT_EQ(Messages(MappingFile(THREE, GOOD + "S2 VSS VDD\n")),
              (::Lines{"ERROR (line   22) - Duplicate Pin Mapping Pin."}));
}
