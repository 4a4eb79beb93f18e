// How long the judgement of a component's nets takes: calls of a circuit of 50 ports, every port mapped.
// Either a few nets are shared and the digital ports left open, each with its message; or all drivers are
// shorted, and every one has a message with the texts of two nets.

#include "ibis/source/nuibis_circuit.h"
#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_extblock.h"
#include "ibis/source/nuibis_msg.h"
#include "ibis/source/nuibis_node.h"

#include <benchmark/benchmark.h>

#include <string>

namespace
{

constexpr int PORTS = 50;

enum class Wiring { Separate, Shorted };

struct Design {
    EXTCIRCUIT* pCircuit = nullptr;
    CMPNT* pComponent = nullptr;

    Design(int calls, Wiring wiring)
    {
        CMN_Alloc(pCircuit);
        pCircuit->pBlock = EXT_New();
        EXTBLOCK& block = *pCircuit->pBlock;
        EXT_Line("Language SPICE", block, nullptr);
        EXT_Line("Corner Typ f.sp amp", block, nullptr);
        for (int port = 0; port < PORTS; ++port) {
            EXT_Line("Ports P" + std::to_string(port), block, nullptr);
        }
        for (int port = 0; port < PORTS; port += 2) {
            const std::string name = std::to_string(port);
            EXT_Line("D_to_A L" + name + " P" + name +
                         (wiring == Wiring::Separate ? " A_gnd" : " P" + std::to_string(port + 1)) +
                         " 0 3 1n 1n",
                     block, nullptr);
        }
        CMN_Alloc(pComponent);
        NODE_Open(pComponent->pNodes);
        for (int call = 0; call < calls; ++call) {
            CCALL_Open("", pComponent->pCircuitCalls);
            pComponent->pCircuitCalls->iLine = call + 1;
            for (int port = 0; port < PORTS; ++port) {
                const std::string node = "N" + std::to_string(NetOf(call, port, wiring));
                NODE_AddLine(node, pComponent->pNodes);
                CCALL_AddLine("Port_map P" + std::to_string(port) + " " + node, pComponent->pCircuitCalls);
            }
        }
    }
    // Two calls with the same nets make references of all their drivers.
    static int NetOf(int call, int port, Wiring wiring)
    {
        if (wiring == Wiring::Shorted) {
            return call / 2 * PORTS + port;
        }
        return port < 10 ? port : call * PORTS + port;
    }
    ~Design()
    {
        CMPNT_FreeList(pComponent);
        CIRCUIT_FreeList(pCircuit);
    }
    Design(const Design&) = delete;
    Design& operator=(const Design&) = delete;
};

void JudgeCalls(benchmark::State& state, Wiring wiring)
{
    const Design design(static_cast<int>(state.range(0)), wiring);
    for (auto _ : state) {
        MSG_ClearContainer();
        CIRCUIT_CheckComponent(*design.pComponent, design.pCircuit);
    }
    state.counters["messages"] = static_cast<double>(MSG_GetContainer()->getNumErrors());
    state.SetItemsProcessed(state.iterations() * state.range(0) * PORTS);
    MSG_ClearContainer();
}
BENCHMARK_CAPTURE(JudgeCalls, Separate, Wiring::Separate)
    ->Arg(500)
    ->Arg(1000)
    ->Arg(2000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(JudgeCalls, Shorted, Wiring::Shorted)
    ->Arg(500)
    ->Arg(1000)
    ->Arg(2000)
    ->Unit(benchmark::kMillisecond);

}  // namespace
