#include "tests/builders.h"

namespace
{

// The blank call names the circuit, as no line gives a circuit a name.
std::string CircuitFile(std::string_view block, std::string_view calls, std::string_view nodes = "n1 n2")
{
    return Bare("[External Circuit] AMP\n" + std::string(block) + "[End External Circuit]\n" +
                    Component("U1", "1 S1 CIRCUITCALL\n2 S2 CIRCUITCALL\n3 S3 NC\n",
                              "[Node Declarations]\n" + std::string(nodes) + "\n[End Node Declarations]\n" +
                                  std::string(calls)),
                "5.1");
}

// What the calls make, less the lines that every such file gets: 158 at the circuit, 1913 at a blank call.
Lines CallMessages(std::string_view block, std::string_view calls)
{
    Lines lines = Unfolded(Messages(CircuitFile(block, calls)));
    std::erase_if(lines, [](const std::string& line) {
        return line.find("\"[External\"") != line.npos || line.find("Circuit Call missing") != line.npos ||
               line.find("'Circuit Call'") != line.npos || line.find("[External Circuit] <>") != line.npos;
    });
    return lines;
}

const std::string AMS = "Language VHDL-AMS\nCorner Typ f.vhd amp\nPorts A B\n";
const std::string SPICE = "Language SPICE\nCorner Typ f.sp amp\nPorts A B\n";

}  // namespace

TEST(Circuit, Probe)
{
    for (const auto& l : Messages(CircuitFile(SPICE + "D_to_A in A A_gnd 0 3 1n 1n\nA_to_D out B A_gnd 1 2\n",
                                              "[Circuit Call]\nSignal_pin 1\nPort_map A 1\nPort_map in n1\n"
                                              "[Circuit Call] X\nPort_map A 1\n[End Circuit Call]\n"))) {
        std::puts(l.c_str());
    }
    std::puts("======");
    for (const auto& l : CallMessages(AMS, "[Circuit Call]\nSignal_pin 1\nPort_map A 1\nPort_map B n1\n")) {
        std::puts(l.c_str());
    }
}
