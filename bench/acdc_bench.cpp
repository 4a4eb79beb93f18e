// The whole correlation of a large model: four I-V tables of 100 rows and 20 waveforms of 1000 rows.

#include "bench/files.h"
#include "ibis/interface/talibis.h"
#include "ibis/source/nuibis_acdc.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_limit.h"
#include "ibis/source/nuibis_msg.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace
{

constexpr int TABLE_ROWS = 100;
constexpr int WAVEFORMS = 20;
constexpr int WAVEFORM_ROWS = 1000;

// Voltages of -5 V to 10 V, that no two tables share; `sign` -1 falls.
void WriteTable(std::ostream& out, const char* keyword, double offset, double sign, double scale)
{
    out << "[" << keyword << "]\n";
    for (int i = 0; i < TABLE_ROWS; ++i) {
        const double v = -5.0 + offset + 15.0 * i / TABLE_ROWS;
        const double current = sign * scale * std::tanh(v);
        out << v << ' ' << current << ' ' << 0.9 * current << ' ' << 1.1 * current << '\n';
    }
}

void WriteWaveform(std::ostream& out, const char* edge, int index)
{
    out << "[" << edge << " Waveform]\nR_fixture = " << 40 + index << "\nV_fixture = 0\n";
    const bool rising = edge[0] == 'R';
    for (int i = 0; i < WAVEFORM_ROWS; ++i) {
        const double share = static_cast<double>(i) / (WAVEFORM_ROWS - 1);
        const double v = 2.0 * (rising ? share : 1.0 - share);
        out << i << "p " << v << ' ' << 0.9 * v << ' ' << 1.1 * v << '\n';
    }
}

std::string WriteFile()
{
    const std::string path = BenchPath("talibis_acdc_bench.ibs");
    std::ofstream out(path);
    out << "[IBIS Ver] 5.1\n[File Name] talibis_acdc_bench.ibs\n[File Rev] 1\n[Component] U\n[Manufacturer] "
           "M\n"
           "[Package]\nR_pkg 1m 1m 1m\nL_pkg 1n 1n 1n\nC_pkg 1p 1p 1p\n[Pin] signal_name model_name R_pin "
           "L_pin C_pin\n"
           "1 S D NA NA NA\n[Model] D\nModel_type I/O\nVinl = 0.8\nVinh = 2.0\nVmeas = 1.5\nCref = 50p\nRref "
           "= 50\nVref = 0\n"
           "C_comp 5p 5p 5p\n[Voltage Range] 3.3 3.0 3.6\n";
    WriteTable(out, "Pulldown", 0.01, 1.0, 0.1);
    WriteTable(out, "Pullup", 0.03, -1.0, 0.1);
    WriteTable(out, "GND Clamp", 0.05, 1.0, 1e-4);
    WriteTable(out, "POWER Clamp", 0.07, -1.0, 1e-4);
    out << "[Ramp]\ndV/dt_r 1/1n 1/1n 1/1n\ndV/dt_f 1/1n 1/1n 1/1n\n";
    for (int i = 0; i < WAVEFORMS / 2; ++i) {
        WriteWaveform(out, "Rising", i);
        WriteWaveform(out, "Falling", i);
    }
    out << "[End]\n";
    return path;
}

// The model of the file, read once.
const nuibis_mdl* Model()
{
    static const nuibis_mdl* const model = [] {
        const std::string path = WriteFile();
        TalIbis* handle = nullptr;
        talReadIbisFile(path.c_str(), IBIS_FILE_IBS, &handle);
        ibis* root = nullptr;
        if (!IBIS_GetCurrent(&root) || root->pModels == nullptr) {
            std::abort();
        }
        return root->pModels;
    }();
    return model;
}

void CheckModel(benchmark::State& state)
{
    const nuibis_mdl* const model = Model();
    for (auto _ : state) {
        ACDC_CheckModel(model);
        LIMIT_CheckModel(model);
        state.PauseTiming();
        state.counters["messages"] = static_cast<double>(MSG_GetContainer()->getNumErrors());
        MSG_ClearContainer();
        state.ResumeTiming();
    }
}

BENCHMARK(CheckModel)->Unit(benchmark::kMillisecond);

}  // namespace
