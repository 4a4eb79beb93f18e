#include "ibis/source/nuibis_circuit.h"

#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_ibis.h"
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
    EXPECT_EQ(
        lines,
        (Lines{
            "ERROR - Circuit Call Line 32 instantiates  External Circuit at 4 with Floating Internal Node "
            "<in2> type NUIBIS_DIGITAL NUIBIS_DIGITAL_RECEIVER ",
            "ERROR - Circuit Call Line 32 instantiates  External Circuit at 4 with Floating Internal Node "
            "<in> type NUIBIS_DIGITAL NUIBIS_DIGITAL_RECEIVER ",
            "ERROR - Circuit Call Line 32 instantiates  External Circuit at 4 with Floating Internal Node "
            "<o> type NUIBIS_DIGITAL NUIBIS_DIGITAL_DRIVER ",
            "ERROR - Circuit Call Line 26 instantiates  External Circuit at 4 with Floating Internal Node "
            "<o> type NUIBIS_DIGITAL NUIBIS_DIGITAL_DRIVER ",
            "ERROR - Component <U1> Node: <n2> has a digital receiver but no digital driver\n        [CCALL] "
            "Line 26 Node <n2>, Conflicting/Associated port = Line <8> Port <in> = NUIBIS_DIGITAL "
            "NUIBIS_DIGITAL_RECEIVER \n        [CCALL] Line 26 Node <n2>, Conflicting/Associated port = Line "
            "<9> Port <in2> = NUIBIS_DIGITAL NUIBIS_DIGITAL_RECEIVER ",
            "ERROR - CCALL Line <32> A2D Line <9> Illegal connection,\n        2 analog reference/driver "
            "ports <A>=<n1> <B>=<1>\n        [CCALL] Line 26 Node <n1>, Conflicting/Associated port = Line "
            "<9> Port <B> = NUIBIS_ANALOG_DRIVER \n        [CCALL] Line 26 Node <n1>, Conflicting/Associated "
            "port = Line <10> Port <B> = NUIBIS_ANALOG_DRIVER \n        [CCALL] Line 32 Node <n1>, "
            "Conflicting/Associated port = Line <8> Port <A> = NUIBIS_ANALOG_REFERENCE NUIBIS_ANALOG_DRIVER "
            "\n        [CCALL] Line 32 Node <n1>, Conflicting/Associated port = Line <9> Port <A> = "
            "NUIBIS_ANALOG_DRIVER \n        [CCALL] Line 32 Node <n1>, Conflicting/Associated port = Line "
            "<10> Port <A> = NUIBIS_ANALOG_REFERENCE NUIBIS_ANALOG_DRIVER \n        [CCALL] Line 26 Node "
            "<1>, Conflicting/Associated port = Line <8> Port <A> = NUIBIS_ANALOG_REFERENCE "
            "NUIBIS_ANALOG_DRIVER \n        [CCALL] Line 26 Node <1>, Conflicting/Associated port = Line <9> "
            "Port <A> = NUIBIS_ANALOG_DRIVER \n        [CCALL] Line 26 Node <1>, Conflicting/Associated port "
            "= Line <10> Port <A> = NUIBIS_ANALOG_REFERENCE NUIBIS_ANALOG_DRIVER \n        [CCALL] Line 32 "
            "Node <1>, Conflicting/Associated port = Line <9> Port <B> = NUIBIS_ANALOG_DRIVER \n        "
            "[CCALL] Line 32 Node <1>, Conflicting/Associated port = Line <10> Port <B> = "
            "NUIBIS_ANALOG_DRIVER ",
            "ERROR - CCALL Line <26> A2D Line <9> Illegal connection,\n        2 analog reference/driver "
            "ports <A>=<1> <B>=<n1>\n        [CCALL] Line 26 Node <1>, Conflicting/Associated port = Line "
            "<8> Port <A> = NUIBIS_ANALOG_REFERENCE NUIBIS_ANALOG_DRIVER \n        [CCALL] Line 26 Node <1>, "
            "Conflicting/Associated port = Line <9> Port <A> = NUIBIS_ANALOG_DRIVER \n        [CCALL] Line "
            "26 Node <1>, Conflicting/Associated port = Line <10> Port <A> = NUIBIS_ANALOG_REFERENCE "
            "NUIBIS_ANALOG_DRIVER \n        [CCALL] Line 32 Node <1>, Conflicting/Associated port = Line <9> "
            "Port <B> = NUIBIS_ANALOG_DRIVER \n        [CCALL] Line 32 Node <1>, Conflicting/Associated port "
            "= Line <10> Port <B> = NUIBIS_ANALOG_DRIVER \n        [CCALL] Line 26 Node <n1>, "
            "Conflicting/Associated port = Line <9> Port <B> = NUIBIS_ANALOG_DRIVER \n        [CCALL] Line "
            "26 Node <n1>, Conflicting/Associated port = Line <10> Port <B> = NUIBIS_ANALOG_DRIVER \n        "
            "[CCALL] Line 32 Node <n1>, Conflicting/Associated port = Line <8> Port <A> = "
            "NUIBIS_ANALOG_REFERENCE NUIBIS_ANALOG_DRIVER \n        [CCALL] Line 32 Node <n1>, "
            "Conflicting/Associated port = Line <9> Port <A> = NUIBIS_ANALOG_DRIVER \n        [CCALL] Line "
            "32 Node <n1>, Conflicting/Associated port = Line <10> Port <A> = NUIBIS_ANALOG_REFERENCE "
            "NUIBIS_ANALOG_DRIVER "}));
}

// Converters that share a digital port take the class of all of them: what one drives another one receives.
TEST(Circuit, DigitalPortOfSeveralConverters)
{
    const std::string end = "> Port <x> = NUIBIS_DIGITAL NUIBIS_DIGITAL_DRIVER NUIBIS_DIGITAL_RECEIVER ";
    std::string ends;
    for (const char* line : {"8", "9", "10"}) {
        ends += "\n        [CCALL] Line 26 Node <1>, Conflicting/Associated port = Line <" +
                std::string(line) + end;
    }
    EXPECT_EQ(
        CallMessages(SPICE + "D_to_A x A A_gnd 0 3 1n 1n\nD_to_A x B A_gnd 0 3 1n 1n\n"
                             "A_to_D x A A_gnd 1 2\n",
                     Call("Port_map A n1\nPort_map B n2\nPort_map x 1\n")),
        (Lines{"ERROR - Component U1 Node <1>: is analog and digital" + ends,
               "ERROR - Component <U1> Pin <1> Used as Digital in CIRCUIT CALL(s)(pins are analog)" + ends}));
}

TEST(Circuit, LonelyPort)
{
    EXPECT_EQ(
        CallMessages("Language SPICE\nCorner Typ f.sp amp\nPorts A_pos A_gnd\n",
                     Call("Port_map A_pos n1\nPort_map A_gnd 1\n")),
        (Lines{"ERROR - Component <U1> Floating Node <n1> (1 connection)\n        [CCALL] Line 23 Node <n1>, "
               "Conflicting/Associated port = Port <A_pos> = NUIBIS_ANALOG "}));
}

// Ends that are references from the start short a receiver; a listed port that is a digital one too is both.
TEST(Circuit, EndsWithinACircuit)
{
    EXPECT_EQ(CallMessages(SPICE + "A_to_D o A_gnd A_gnd 0 1\nD_to_A A B A_gnd 0 3 1n 1n\n",
                           Call("Port_map B n1\n")),
              (Lines{"ERROR - CCALL Line <25> A2D Line <8> Illegal connection, 2 analog reference/driver "
                     "ports <A_gnd>=<> <A_gnd>=<>",
                     "ERROR - Internal Node <A>, External Circuit at 4: is analog and digital",
                     "ERROR - Circuit Call Line 25 instantiates  External Circuit at 4 with Floating "
                     "Internal Node <o> type NUIBIS_DIGITAL NUIBIS_DIGITAL_DRIVER "}));
}

// The digital end of a receiver that bears the name of its analog end is the same end.
TEST(Circuit, EndsOfOneName)
{
    EXPECT_EQ(
        CallMessages(SPICE + "A_to_D A A B 0 1\n", Call("Port_map A 1\nPort_map B 2\n")),
        (Lines{
            "ERROR - [EXTERNAL CIRCUIT] <>: corner <Typ> Port <A>: used as digital and analog ",
            "PROGRAM BUG - should not be here <A> <8>",
            "ERROR - Component U1 Node <1>: is analog and digital\n        [CCALL] Line 24 Node <1>, "
            "Conflicting/Associated port = Line <8> Port <A> = NUIBIS_DIGITAL_DRIVER NUIBIS_ANALOG_RECEIVER",
            "ERROR - Component <U1> Node: <1> has a digital driver but no digital receiver\n        [CCALL] "
            "Line 24 Node <1>, Conflicting/Associated port = Line <8> Port <A> = NUIBIS_DIGITAL_DRIVER "
            "NUIBIS_ANALOG_RECEIVER",
            "ERROR - Component <U1> Pin <1> Used as Digital in CIRCUIT CALL(s)(pins are analog)\n        "
            "[CCALL] Line 24 Node <1>, Conflicting/Associated port = Line <8> Port <A> = "
            "NUIBIS_DIGITAL_DRIVER "}));
}

// What Port_type rows make of the ports, once they are admitted; and the directions of analog nets.
TEST(Circuit, DirectionsOfAnalogNets)
{
    gbPortTypeAllowed = true;
    gbAnalogNetChecks = true;
    const std::string block = "Language VHDL-AMS\nCorner Typ f.vhd amp\nPorts A B\n"
                              "Port_type R NUIBIS_ANALOG_RECEIVER\nPort_type D NUIBIS_ANALOG_DRIVER\n"
                              "Port_type A other\nPort_type I DIGITAL_BI\nPort_type X ANALOG_BI\n";
    const Lines ams = CallMessages(block, Call("Port_map A n1\nPort_map R n2\nPort_map D n3\n") +
                                              Call("Port_map A n2\nPort_map B n3\n"));
    const Lines plain = CallMessages(block, Call("Port_map R n1\nPort_map D n2\nPort_map X n3\n"));
    const Lines mixed = CallMessages(block, Call("Port_map R n1\nPort_map A n1\nPort_map I n1\n"));
    gbPortTypeAllowed = false;
    gbAnalogNetChecks = false;
    EXPECT_EQ(
        ams,
        (Lines{"ERROR - Circuit Call Line 28 instantiates  External Circuit at 4 with Floating Internal Node "
               "<B> type NUIBIS_AMS_UNKNOWN ",
               "ERROR - Component <U1> Floating Node <n1> (1 connection)",
               "ERROR - Component <U1> Node: <n1> has no defined drivers\n        [CCALL] Line 28 Node <n1>, "
               "Conflicting/Associated port = Port <A> = NUIBIS_AMS_UNKNOWN ",
               "ERROR - Component <U1> Node: <n2> has no defined drivers\n        [CCALL] Line 28 Node <n2>, "
               "Conflicting/Associated port = Port <R> = NUIBIS_ANALOG_RECEIVER\n        [CCALL] Line 33 "
               "Node <n2>, Conflicting/Associated port = Port <A> = NUIBIS_AMS_UNKNOWN ",
               "WARNING - Component <U1> Node: <n3> has a analog driver but no obvious analog receiver\n     "
               "   This indicates connection to a AMS port that 'may' be analog \n        [CCALL] Line 28 "
               "Node <n3>, Conflicting/Associated port = Port <D> = NUIBIS_ANALOG_DRIVER \n        [CCALL] "
               "Line 33 Node <n3>, Conflicting/Associated port = Port <B> = NUIBIS_AMS_UNKNOWN "}));
    EXPECT_EQ(
        plain,
        (Lines{"ERROR - Circuit Call Line 28 instantiates  External Circuit at 4 with Floating Internal Node "
               "<B> type NUIBIS_AMS_UNKNOWN ",
               "ERROR - Circuit Call Line 28 instantiates  External Circuit at 4 with Floating Internal Node "
               "<A> type NUIBIS_AMS_UNKNOWN ",
               "WARNING - Component <U1> Unused Node <n1> (0 connection)",
               "ERROR - Component <U1> Node: <n1> has a analog receiver but no analog driver\n        "
               "[CCALL] Line 28 Node <n1>, Conflicting/Associated port = Port <R> = NUIBIS_ANALOG_RECEIVER",
               "WARNING - Component <U1> Unused Node <n2> (0 connection)",
               "ERROR - Component <U1> Node: <n2> has a analog driver but no analog receiver\n        "
               "[CCALL] Line 28 Node <n2>, Conflicting/Associated port = Port <D> = NUIBIS_ANALOG_DRIVER ",
               "WARNING - Component <U1> Unused Node <n3> (0 connection)"}));
    EXPECT_EQ(
        mixed,
        (Lines{
            "ERROR - Circuit Call Line 28 instantiates  External Circuit at 4 with Floating Internal Node "
            "<B> type NUIBIS_AMS_UNKNOWN ",
            "ERROR - Component U1 Node <n1>: is analog and digital\n        [CCALL] Line 28 Node <n1>, "
            "Conflicting/Associated port = Port <R> = NUIBIS_ANALOG_RECEIVER\n        [CCALL] Line 28 Node "
            "<n1>, Conflicting/Associated port = Port <I> = NUIBIS_DIGITAL_DRIVER NUIBIS_DIGITAL_RECEIVER ",
            "WARNING - Component <U1> Node: <n1> has a analog receiver but no obvious analog driver\n        "
            "This indicates connection to a AMS port that 'may' be analog \n        [CCALL] Line 28 Node "
            "<n1>, Conflicting/Associated port = Port <R> = NUIBIS_ANALOG_RECEIVER\n        [CCALL] Line 28 "
            "Node <n1>, Conflicting/Associated port = Port <A> = NUIBIS_AMS_UNKNOWN \n        [CCALL] Line "
            "28 Node <n1>, Conflicting/Associated port = Port <I> = NUIBIS_DIGITAL_DRIVER "
            "NUIBIS_DIGITAL_RECEIVER "}));
}

TEST(Circuit, LongNames)
{
    const std::string name(130, 'n');
    const std::string file = CircuitFile(
        AMS, "[Circuit Call] " + name + "\nSignal_pin " + name + "\nDiff_signal_pins " + name + " " + name +
                 " " + name + "\nPort_map " + name + " " + name + "\n" + name + "\n[End Circuit Call]\n");
    EXPECT_EQ(MessagesWith("", file),
              (Lines{"ERROR (line    4) - Invalid [External Model] subparameter (\"[External\")",
                     "ERROR (line   23) - Exceeds 120 chararacters.",
                     "ERROR (line   23) - Circuit Call string '" + name +
                         "' is too long, truncating to 40 characters.",
                     "ERROR (line   24) - Exceeds 120 chararacters.",
                     "ERROR (line   24) - Extra Charaters on PIN line <" + name + ">",
                     "ERROR (line   25) - Exceeds 120 chararacters.",
                     "ERROR (line   25) - Extra Charaters on PIN line <" + name + ">",
                     "ERROR (line   25) - Too Many Signal Pins (only one instance of Signal_pin, "
                     "Diff_signal_pins, or Series_pins is allowed) <" +
                         name + ">",
                     "ERROR (line   25) - Extra Charaters on PIN line <" + name + ">",
                     "ERROR (line   26) - Exceeds 120 chararacters.",
                     "ERROR (line   26) - Illegal parameter <" + name + ">",
                     "ERROR (line   26) - Illegal parameter <" + name + ">",
                     "ERROR (line   27) - Exceeds 120 chararacters.",
                     "ERROR (line   27) - Illegal parameter <" + name + ">",
                     "ERROR - (line 23) No [External Circuit] for [Circuit Call] " + name.substr(0, 40) +
                         " in Component U1"}));
    const CCALL& call = *RootOf(file)->pComponents->pCircuitCalls;
    EXPECT_EQ(call.szCircuit, name.substr(0, 40));
    EXPECT_EQ(call.szPin1, name.substr(0, 5));
    EXPECT_EQ(call.szPin2, name.substr(0, 5));
    EXPECT_EQ(call.pPortMap->szPort, name.substr(0, 40));
    EXPECT_EQ(call.pPortMap->szPad, name.substr(0, 40));
}

TEST(Circuit, FileEndsWithin)
{
    const std::string file = CircuitFile("Language VHDL-AMS\nCorner Typ f c\nPorts A B\n",
                                         "[Circuit Call]\nSignal_pin 1\nPort_map A 1\nPort_map B n1\n");
    const auto upTo = [&](const char* part) { return file.substr(0, file.find(part)); };
    const struct {
        std::string file;
        ::Lines messages;
    } rows[] = {
        {upTo("ode Declarations]"),
         {"ERROR (line    4) - Invalid [External Model] subparameter (\"[External\")",
          "ERROR (line   19) - Keyword Missing Ending Bracket (']').",
          "ERROR - Required keyword 'End' not found."}},
        {upTo("\nn1 n2"),
         {"ERROR (line    4) - Invalid [External Model] subparameter (\"[External\")",
          "ERROR - Required keyword 'End' not found."}},
        {upTo("\n[End Node"),
         {"ERROR (line    4) - Invalid [External Model] subparameter (\"[External\")",
          "ERROR - Required keyword 'End' not found."}},
        {upTo("\nSignal_pin"),
         {"ERROR (line    4) - Invalid [External Model] subparameter (\"[External\")",
          "ERROR (line   23) - Zero length value for keyword 'Circuit Call'.",
          "ERROR - Required keyword 'End' not found.",
          "ERROR - Circuit Call Line 23 instantiates  External Circuit at 4 with Floating Internal Node <B> "
          "type NUIBIS_AMS_UNKNOWN ",
          "ERROR - Circuit Call Line 23 instantiates  External Circuit at 4 with Floating Internal Node <A> "
          "type NUIBIS_AMS_UNKNOWN "}},
        {upTo(" 1\nPort_map"),
         {"ERROR (line    4) - Invalid [External Model] subparameter (\"[External\")",
          "ERROR (line   23) - Zero length value for keyword 'Circuit Call'.",
          "ERROR (line   24) - Not Enough arguments to Signal_pin",
          "ERROR - Required keyword 'End' not found.",
          "ERROR - Circuit Call Line 23 instantiates  External Circuit at 4 with Floating Internal Node <B> "
          "type NUIBIS_AMS_UNKNOWN ",
          "ERROR - Circuit Call Line 23 instantiates  External Circuit at 4 with Floating Internal Node <A> "
          "type NUIBIS_AMS_UNKNOWN "}},
        {upTo(" n1\n[End]"),
         {"ERROR (line    4) - Invalid [External Model] subparameter (\"[External\")",
          "ERROR (line   23) - Zero length value for keyword 'Circuit Call'.",
          "ERROR (line   26) - Missing port or pad name in Port_map",
          "ERROR - Required keyword 'End' not found.",
          "ERROR - Circuit Call Line 23 instantiates  External Circuit at 4 with Floating Internal Node <B> "
          "type NUIBIS_AMS_UNKNOWN "}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.file);
        EXPECT_EQ(Unfolded(Messages(row.file)), row.messages);
    }
}
