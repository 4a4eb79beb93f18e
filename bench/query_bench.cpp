// How long a host waits for an answer: queries on a file of 5,000 pins.

#include "ibis/interface/talibis.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace
{

constexpr int PINS = 5000;
constexpr int MODELS = 500;
constexpr int SELECTED = 500;  // models of the one selector

void WriteFile(const std::string& path)
{
    std::ofstream out(path);
    out << "[IBIS Ver] 5.1\n[File Name] large.ibs\n[File Rev] 1.0\n[Component] U1\n[Manufacturer] Acme\n"
           "[Package]\nR_pkg 50m 40m 60m\nL_pkg 2nH 1nH 3nH\nC_pkg 1pF 0.8pF 1.2pF\n"
           "[Pin] signal_name model_name R_pin L_pin C_pin\n";
    for (int pin = 1; pin <= PINS; ++pin) {
        out << pin << " S" << pin << ' ';
        if (pin % 10 == 0) {
            out << "SEL";
        } else {
            out << 'M' << pin % MODELS;
        }
        out << " 50m 2nH 1pF\n";
    }
    out << "[Diff Pin] inv_pin vdiff tdelay_typ tdelay_min tdelay_max\n";
    for (int pin = 1; pin < PINS / 2; pin += 2) {
        out << pin << ' ' << pin + 1 << " 0.2V 1ns NA NA\n";
    }
    out << "[Model Selector] SEL\n";
    for (int model = 0; model < SELECTED; ++model) {
        out << 'M' << model << " drive strength " << model << '\n';
    }
    for (int model = 0; model < MODELS; ++model) {
        out << "[Model] M" << model
            << "\nModel_type Input\nVinl = 0.8\nVinh = 2.0\nC_comp 5pF 4pF 6pF\n"
               "[Voltage Range] 3.3 3.0 3.6\n[Rgnd] 50 40 60\n";
    }
    out << "[End]\n";
}

// The file, read once for all benchmarks.
const TalIbis& File()
{
    static const TalIbis* const file = [] {
        std::string folder = (std::filesystem::temp_directory_path() / "talibis_bench_XXXXXX").string();
        if (mkdtemp(folder.data()) == nullptr) {
            std::abort();
        }
        const std::string path = folder + "/large.ibs";
        WriteFile(path);
        TalIbis* handle = nullptr;
        talReadIbisFile(path.c_str(), IBIS_FILE_IBS, &handle);
        std::filesystem::remove_all(folder);
        if (handle == nullptr) {
            std::abort();
        }
        return handle;
    }();
    return *file;
}

template <class Query, class... Args> void Answer(benchmark::State& state, Query query, Args... args)
{
    const TalIbis& file = File();
    TalIbisListQueryData list;
    for (auto _ : state) {
        (file.*query)(args..., list);
        benchmark::DoNotOptimize(list.getData().data());
    }
    if (list.getStatus() != QueryOk || list.size() == 0) {
        state.SkipWithError("no answer");
    }
    state.counters["rows"] = static_cast<double>(list.size());
}

void AnswerText(benchmark::State& state)
{
    TalIbisStringQueryData text;
    for (auto _ : state) {
        File().getC_comp("M250", "Min", text);
        benchmark::DoNotOptimize(text.getData().data());
    }
}

BENCHMARK_CAPTURE(Answer, Pins, &TalIbis::getPinList, "U1")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Answer, PinsOfNoSymbol, &TalIbis::getPinModelList, "U1", "")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Answer, PinsOfASymbol, &TalIbis::getPinModelList, "U1", "IBIS_I")
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Answer, PinsOfAPairSymbol, &TalIbis::getPinModelList, "U1", "IBIS_XtlkRx_AMI")
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Answer, DiffPin, &TalIbis::getDiffPin, "U1", "2499")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Answer, Selector, &TalIbis::getModelSelectorSubModelList, "SEL", "IBIS_I")
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Answer, Triple, &TalIbis::getVoltageRange, "M250")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Answer, ModelInfo, &TalIbis::getModelInfo, "M250")->Unit(benchmark::kMicrosecond);
BENCHMARK(AnswerText)->Unit(benchmark::kMicrosecond);

}  // namespace
