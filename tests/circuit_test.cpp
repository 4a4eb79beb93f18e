#include "tests/builders.h"

namespace
{

// The blank call names the circuit, as no line gives a circuit a name.
std::string CircuitFile(std::string_view block, std::string_view calls)
{
    return Bare("[External Circuit] AMP\n" + std::string(block) + "[End External Circuit]\n" +
                Component("U1", "1 S1 CIRCUITCALL\n2 S2 circuitcall\n3 S3 NC\n",
                          "[Node Declarations]\nn1 n2\nn3\n[End Node Declarations]\n" + std::string(calls)));
}

// What the calls make, less the lines that every such file gets: the circuit's own line, and the blank call.
Lines CallMessages(std::string_view block, std::string_view calls)
{
    Lines lines = Unfolded(Messages(CircuitFile(block, calls)));
    std::erase_if(lines, [](const std::string& line) {
        return line.find("\"[External\"") != line.npos || line.find("'Circuit Call'") != line.npos;
    });
    return lines;
}

std::string Call(std::string_view lines)
{
    return "[Circuit Call]\n" + std::string(lines) + "[End Circuit Call]\n";
}

std::string Floating(std::string_view port, int call = 23)
{
    return "ERROR - Circuit Call Line " + std::to_string(call) +
           " instantiates  External Circuit at 4 with Floating Internal Node <" + std::string(port) +
           "> type NUIBIS_AMS_UNKNOWN ";
}

const std::string AMS = "Language VHDL-AMS\nCorner Typ f.vhd amp\nPorts A B D_drive D_receive\n";
const std::string SPICE = "Language SPICE\nCorner Typ f.sp amp\nPorts A B\n";

}  // namespace

TEST(Circuit, KeywordLineIsReadAsOneOfTheBlock)
{
    EXPECT_EQ(Unfolded(Messages(Bare("[External_Circuit] AMP\nLanguage SPICE\n[End External Circuit]\n"
                                     "Language SPICE\n[End External Circuit]\n" +
                                     Component("U1", "1 S NC\n", "[Circuit Call] AMP\nPort_map A 1\n")))),
              (Lines{"ERROR (line    4) - Invalid [External Model] subparameter (\"[External_Circuit]\")",
                     "ERROR (line    6) - No Typ Corner Defined for [External Model](required)",
                     "WARNING - [External Circuit] <> has suspiciously few PORTS (0)",
                     "ERROR (line    7) - Orphan data line keyword.",
                     "ERROR (line    8) - Orphan External Cucuit keyword.",
                     "ERROR - (line 17) No [External Circuit] for [Circuit Call] AMP in Component U1"}));
}

TEST(Circuit, CallLines)
{
    const std::string longName(60, 'x');
    const struct {
        std::string lines;
        ::Lines messages;
    } rows[] = {
        {"Signal_pin\nSignal_pin 1 2\nSignal_pin 2\n",
         {"ERROR (line   24) - Not Enough arguments to Signal_pin",
          "ERROR (line   25) - Extra Charaters on PIN line <2>",
          "ERROR (line   26) - Too Many Signal Pins (only one instance of Signal_pin, Diff_signal_pins, or "
          "Series_pins is allowed) <2>"}},
        {"Diff_signal_pins\nSeries_pins 1 2 3\nSeries_pins 1\n",
         {"ERROR (line   24) - Not Enough arguments to Diff_signal_pins",
          "ERROR (line   24) - Not Enough arguments to Diff_signal_pins",
          "ERROR (line   25) - Extra Charaters on PIN line <3>",
          "ERROR (line   26) - Too Many Signal Pins (only one instance of Signal_pin, Diff_signal_pins, or "
          "Series_pins is allowed) <1>",
          "ERROR (line   26) - Not Enough arguments to Series_pins"}},
        {"Signal_pin 123456\n", {"ERROR (line   24) - Extra Charaters on PIN line <123456>"}},
        {"port_map A 1\nPort_map A\nPort_map A 1\nPort_map a 1\nPort_map A n1\n",
         {"ERROR (line   24) - Illegal parameter <port_map>",
          "ERROR (line   25) - Missing port or pad name in Port_map",
          "ERROR (line   28) - Redundant use of port <A>"}},
        {"Port_map " + longName + "1 " + longName + "\nPort_map " + longName + "2 1\n",
         {"ERROR (line   24) - Exceeds 120 chararacters.",
          "ERROR (line   24) - Illegal parameter <" + longName + "1>",
          "ERROR (line   24) - Illegal parameter <" + longName + ">",
          "ERROR (line   25) - Illegal parameter <" + longName + "2>",
          "ERROR (line   25) - Redundant use of port <" + longName.substr(0, 40) + ">"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.lines);
        ::Lines lines = Unfolded(MessagesWith("(line   ", CircuitFile(AMS, Call(row.lines))));
        std::erase_if(lines, [](const std::string& line) {
            return line.find("\"[External\"") != line.npos || line.find("'Circuit Call'") != line.npos;
        });
        EXPECT_EQ(lines, row.messages);
    }
}

TEST(Circuit, PinsPadsAndPorts)
{
    const struct {
        std::string lines;
        ::Lines messages;
    } rows[] = {
        {"Signal_pin 9\nPort_map A 1\n",
         {"ERROR - CMPT <U1>, [Circuit Call] at (line 23) refererences illegal pin: <9>", Floating("B")}},
        {"Signal_pin 3\nPort_map A 1\n",
         {"ERROR - [Circuit Call] at (line 23) first reference pin <3> is not declared CIRCUITCALL in [Pin] "
          "section",
          Floating("B")}},
        {"Diff_signal_pins 1 3\nPort_map A 1\n",
         {"ERROR - [Circuit Call] at (line 23) second reference pin <3> is not declared CIRCUITCALL in [Pin] "
          "section",
          Floating("B")}},
        {"Series_pins 2 2\nPort_map A 2\n",
         {"ERROR - CMPT <U1>, [CIRCUIT CALL] at (line 23) references same pin twice: <2>", Floating("B")}},
        {"Signal_pin 1\n",
         {Floating("B"), Floating("A"),
          "ERROR - Component <U1> Floating Pin <1> (no connections but used in CIRCIUT CALL)"}},
        {"Port_map A n9\nPort_map a n1\nPort_map B n3\n",
         {"ERROR - [Circuit Call] at (line 23), no port <a> in [External Circuit] ",
          "ERROR - [Circuit Call] at (line 23), no node/pin <n9> in Component U1", Floating("A"),
          "WARNING - Component <U1> Unused Node <n1> (0 connection)",
          "ERROR - Component <U1> Floating Node <n3> (1 connection)"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.lines);
        EXPECT_EQ(CallMessages(AMS, Call(row.lines)), row.messages);
    }
}

TEST(Circuit, NetsWithoutConverters)
{
    const std::string drives =
        "        [CCALL] Line 28 Node <1>, Conflicting/Associated port = Port <D_drive> = "
        "NUIBIS_DIGITAL NUIBIS_DIGITAL_RECEIVER ";
    EXPECT_EQ(
        CallMessages(AMS, Call("Port_map D_drive n1\nPort_map D_receive n2\nPort_map A n2\n") +
                              Call("Port_map D_drive 1\nPort_map D_receive n1\n")),
        (Lines{Floating("B", 28), Floating("A", 28), Floating("B"),
               "WARNING - Component <U1> Node: <n2> has a digital driver but no obvious digital receiver\n"
               "        This indicates connection to a AMS port that 'may' be digital \n"
               "        [CCALL] Line 23 Node <n2>, Conflicting/Associated port = Port <D_receive> = "
               "NUIBIS_DIGITAL NUIBIS_DIGITAL_DRIVER \n"
               "        [CCALL] Line 23 Node <n2>, Conflicting/Associated port = Port <A> = "
               "NUIBIS_AMS_UNKNOWN ",
               "ERROR - Component U1 Node <1>: is analog and digital\n" + drives,
               "ERROR - Component <U1> Node: <1> has a digital receiver but no digital driver\n" + drives,
               "ERROR - Component <U1> Pin <1> Used as Digital in CIRCUIT CALL(s)(pins are analog)\n" +
                   drives}));
}

// Two drivers of A make a reference of it; the driver between A and B shorts the nets where both are one.
TEST(Circuit, NetsOfConverters)
{
    Lines lines =
        CallMessages(SPICE + "D_to_A in A A_gnd 0 3 1n 1n\nD_to_A in2 A B 0 3 1n 1n\nA_to_D o B A 1 2\n",
                     Call("Port_map A 1\nPort_map B n1\nPort_map in n2\nPort_map in2 n2\n") +
                         Call("Port_map A n1\nPort_map B 1\n"));
    ASSERT_EQ(lines.size(), 7U);
    EXPECT_EQ(lines[4],
              "ERROR - Component <U1> Node: <n2> has a digital receiver but no digital driver\n"
              "        [CCALL] Line 26 Node <n2>, Conflicting/Associated port = Line <8> Port <in> = "
              "NUIBIS_DIGITAL NUIBIS_DIGITAL_RECEIVER \n"
              "        [CCALL] Line 26 Node <n2>, Conflicting/Associated port = Line <9> Port <in2> = "
              "NUIBIS_DIGITAL NUIBIS_DIGITAL_RECEIVER ");
    const std::string shortOf =
        "ERROR - CCALL Line <32> A2D Line <9> Illegal connection,\n"
        "        2 analog reference/driver ports <A>=<n1> <B>=<1>\n"
        "        [CCALL] Line 26 Node <n1>, Conflicting/Associated port = Line <9> Port "
        "<B> = NUIBIS_ANALOG_DRIVER \n";
    EXPECT_EQ(lines[5].substr(0, shortOf.size()), shortOf);
    EXPECT_NE(lines[5].find("Line 32 Node <n1>, Conflicting/Associated port = Line <10> Port <A> = "
                            "NUIBIS_ANALOG_REFERENCE NUIBIS_ANALOG_DRIVER \n"),
              std::string::npos);
}
