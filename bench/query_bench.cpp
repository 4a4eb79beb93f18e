// How long a host waits for an answer: queries on a file of 5,000 pins.

#include "bench/files.h"
#include "ibis/interface/talibis.h"
#include "ibis/interface/talibis_qel.h"
#include "ibis/interface/talibis_raw.h"
#include "platform/qelrt_inspect.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <memory>

namespace
{

constexpr int PINS = 5000;
constexpr int MODELS = 500;
constexpr int SELECTED = 500;  // models of the one selector
constexpr int COUPLED = 1000;  // pins of the package model with matrices

// A band of three for each of two matrices.
void WritePackage(std::ostream& out)
{
    out << "[Define Package Model] PKG\n[Manufacturer] Acme\n[OEM] Acme\n[Description] Test\n"
           "[Number Of Pins] "
        << COUPLED << "\n[Pin Numbers]\n";
    for (int pin = 1; pin <= COUPLED; ++pin) {
        out << pin << '\n';
    }
    out << "[Model Data]\n";
    for (const char* matrix : {"Inductance", "Capacitance"}) {
        out << '[' << matrix << " Matrix] Banded_matrix\n[Bandwidth] 2\n";
        for (int pin = 1; pin <= COUPLED; ++pin) {
            out << "[Row] " << pin << "\n3n";
            for (int k = 1; k <= 2 && pin + k <= COUPLED; ++k) {
                out << " 1n";
            }
            out << '\n';
        }
    }
    out << "[End Model Data]\n[End Package Model]\n";
}

void WriteFile(const std::string& path)
{
    std::ofstream out(path);
    out << "[IBIS Ver] 5.1\n[File Name] large.ibs\n[File Rev] 1.0\n[Component] U1\n[Manufacturer] Acme\n"
           "[Package Model] PKG\n"
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
    out << "[Pin Mapping] pulldown_ref pullup_ref\n";
    for (int pin = 1; pin <= PINS; ++pin) {
        out << pin << " VSS VDD\n";
    }
    out << "[Diff Pin] inv_pin vdiff tdelay_typ tdelay_min tdelay_max\n";
    for (int pin = 1; pin < PINS / 2; pin += 2) {
        out << pin << ' ' << pin + 1 << " 0.2V 1ns NA NA\n";
    }
    out << "[Series Pin Mapping] pin_2 model_name function_table_group\n";
    for (int pin = PINS / 2 + 2; pin < PINS; pin += 2) {
        out << pin << ' ' << pin + 1 << " SW G1\n";
    }
    out << "[Series Switch Groups]\nOn G1 /\nOff /\n[Model Selector] SEL\n";
    for (int model = 0; model < SELECTED; ++model) {
        out << 'M' << model << " drive strength " << model << '\n';
    }
    for (int model = 0; model < MODELS; ++model) {
        out << "[Model] M" << model
            << "\nModel_type Input\nVinl = 0.8\nVinh = 2.0\nC_comp 5pF 4pF 6pF\n"
               "[Voltage Range] 3.3 3.0 3.6\n[Rgnd] 50 40 60\n";
    }
    out << "[Model] SW\nModel_type Series_switch\n[On]\n[R Series] 5 4 6\n[Off]\n[R Series] 1meg 1meg 1meg\n";
    WritePackage(out);
    out << "[End]\n";
}

// A board with a path of one branch behind each of its pins.
void WriteBoard(const std::string& path)
{
    std::ofstream out(path);
    out << "[IBIS Ver] 5.1\n[File Name] board.ebd\n[File Rev] 1.0\n[Begin Board Description] B\n"
           "[Manufacturer] Acme\n[Number Of Pins] "
        << PINS << "\n[Pin List] signal_name\n";
    for (int pin = 1; pin <= PINS; ++pin) {
        out << pin << " S" << pin << '\n';
    }
    for (int pin = 1; pin <= PINS; ++pin) {
        out << "[Path Description] P" << pin << "\nPin " << pin
            << " Len=1 L=1n C=1p /\nFork\nLen=2 / Node U1." << pin << "\nEndfork\nNode U2." << pin << '\n';
    }
    out << "[Reference Designator Map]\nU1 large.ibs U1\nU2 large.ibs U1\n[End Board Description]\n[End]\n";
}

const TalIbis* Read(const std::string& path, ibis_file_type type)
{
    TalIbis* handle = nullptr;
    talReadIbisFile(path.c_str(), type, &handle);
    if (handle == nullptr) {
        std::abort();
    }
    return handle;
}

struct Files {
    const TalIbis* pComponents;
    const TalIbis* pBoard;
};

// The files, read once for all benchmarks.
const Files& AllFiles()
{
    static const Files files = [] {
        WriteFile(BenchPath("large.ibs"));
        WriteBoard(BenchPath("board.ebd"));
        const Files read{Read(BenchPath("large.ibs"), IBIS_FILE_IBS),
                         Read(BenchPath("board.ebd"), IBIS_FILE_EBD)};
        return read;
    }();
    return files;
}

const TalIbis& File()
{
    return *AllFiles().pComponents;
}

template <class Query, class... Args>
void AnswerOf(benchmark::State& state, const TalIbis& file, Query query, Args... args)
{
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

template <class Query, class... Args> void Answer(benchmark::State& state, Query query, Args... args)
{
    AnswerOf(state, File(), query, args...);
}

template <class Query, class... Args> void AnswerBoard(benchmark::State& state, Query query, Args... args)
{
    AnswerOf(state, *AllFiles().pBoard, query, args...);
}

void AnswerFlag(benchmark::State& state)
{
    TalIbisBooleanQueryData flag;
    for (auto _ : state) {
        File().hasSeriesPinMapping("U1", "4999", flag);
        benchmark::DoNotOptimize(flag);
    }
    if (!flag.status()) {
        state.SkipWithError("no answer");
    }
}

void RawView(benchmark::State& state)
{
    double value = 0;
    for (auto _ : state) {
        const std::unique_ptr<IbisRawModelData> model(File().getIbisRawModelData("M250"));
        if (!model->getC_comp(IBIS_DATA_MIN, value) || !model->getL_pin("U1", "4999", value)) {
            state.SkipWithError("no answer");
        }
        benchmark::DoNotOptimize(value);
    }
}

// Some hundred neighbours, as a host asks for the nets of one bus.
std::string Neighbours()
{
    std::string pins;
    for (int pin = 400; pin < 500; ++pin) {
        pins += std::to_string(pin) + " ";
    }
    return pins;
}

void SubMatrix(benchmark::State& state)
{
    static const std::string pins = Neighbours();
    Answer(state, &TalIbis::getIbisPkgMatrixModel, "U1", pins.c_str());
}

void AnswerText(benchmark::State& state)
{
    TalIbisStringQueryData text;
    for (auto _ : state) {
        File().getC_comp("M250", "Min", text);
        benchmark::DoNotOptimize(text.getData().data());
    }
}

// The same question as the triple, by the name of the file and with values of the script language.
void ScriptFunction(benchmark::State& state)
{
    talIbis_qel_initialize();
    const std::array<QVALUE, 3> parameters{qval_create_string(File().getFileName()),
                                           qval_create_string("ibs"), qval_create_string("M250")};
    QVALUE answer = nullptr;
    for (auto _ : state) {
        answer = qel_call("deGetIbisModelVoltageRangeList", parameters);
        qval_free_value(answer);
    }
    if (answer == nullptr) {
        state.SkipWithError("no answer");
    }
    std::for_each(parameters.begin(), parameters.end(), qval_free_value);
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
BENCHMARK_CAPTURE(Answer, PinsOfThePackage, &TalIbis::getPinModelList, "U1", "IBIS_Pkg")
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Answer, PinMapping, &TalIbis::getPinMapping, "U1", "4999")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Answer, SeriesPins, &TalIbis::getSeriesPinMapping, "U1", "4999")
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Answer, SwitchGroups, &TalIbis::getSeriesSwitchGroup, "U1")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Answer, PackagePin, &TalIbis::getIbisPkgModel, "U1", "999")->Unit(benchmark::kMicrosecond);
BENCHMARK(SubMatrix)->Unit(benchmark::kMicrosecond);
BENCHMARK(AnswerText)->Unit(benchmark::kMicrosecond);
BENCHMARK(AnswerFlag)->Unit(benchmark::kMicrosecond);
BENCHMARK(ScriptFunction)->Unit(benchmark::kMicrosecond);
BENCHMARK(RawView)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(AnswerBoard, Pins, &TalIbis::getPinModelList, "", "Ebd")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(AnswerBoard, Mounted, &TalIbis::getEbdRefList)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(AnswerBoard, Nodes, &TalIbis::getEbdNodeList, "4999")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(AnswerBoard, Path, &TalIbis::getIbisEbdModel, "4999")->Unit(benchmark::kMicrosecond);

}  // namespace
