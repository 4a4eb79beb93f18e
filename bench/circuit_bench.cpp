// How long the judgement of a component's nets takes: 2,000 calls of a circuit of 50 ports, every port
// mapped.

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

// A component whose calls share some nets and have others to themselves.
struct Design {
    EXTCIRCUIT* pCircuit = nullptr;
    CMPNT* pComponent = nullptr;

    explicit Design(int calls)
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
            EXT_Line("D_to_A L" + name + " P" + name + " A_gnd 0 3 1n 1n", block, nullptr);
        }
        CMN_Alloc(pComponent);
        NODE_Open(pComponent->pNodes);
        for (int call = 0; call < calls; ++call) {
            CCALL_Open("", pComponent->pCircuitCalls);
            pComponent->pCircuitCalls->iLine = call + 1;
            for (int port = 0; port < PORTS; ++port) {
                const int net = port < 10 ? port : call * PORTS + port;
                const std::string node = "N" + std::to_string(net);
                NODE_AddLine(node, pComponent->pNodes);
                CCALL_AddLine("Port_map P" + std::to_string(port) + " " + node, pComponent->pCircuitCalls);
            }
        }
    }
    ~Design()
    {
        CMPNT_FreeList(pComponent);
        CIRCUIT_FreeList(pCircuit);
    }
    Design(const Design&) = delete;
    Design& operator=(const Design&) = delete;
};

void JudgeCalls(benchmark::State& state)
{
    const Design design(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        MSG_ClearContainer();
        CIRCUIT_CheckComponent(*design.pComponent, design.pCircuit);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0) * PORTS);
    MSG_ClearContainer();
}
BENCHMARK(JudgeCalls)->Arg(500)->Arg(1000)->Arg(2000)->Unit(benchmark::kMillisecond);

}  // namespace
