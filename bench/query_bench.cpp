// One question of each kind, to a component of 5,000 pins and a board of as many paths.

#include "bench/files.h"
#include "ibis/interface/talibis.h"
#include "ibis/interface/talibis_qel.h"
#include "ibis/interface/talibis_raw.h"
#include "platform/qelrt_inspect.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace
{

constexpr int PINS = 5'000;
constexpr int PACKAGE_PINS = 200;
constexpr int MODELS = 500;

constexpr const char* HEADER = "[IBIS Ver] 5.0\n[File Name] %\n[File Rev] 1.0\n";

std::string Header(const std::string& name)
{
    std::string header = HEADER;
    return header.replace(header.find('%'), 1, name);
}

template <class Line> std::string Lines(int count, Line line)
{
    std::string all;
    for (int i = 0; i < count; ++i) {
        all += line(std::to_string(i));
    }
    return all;
}

std::string PinLines()
{
    return Lines(PINS, [](const std::string& i) { return "P" + i + " S" + i + " SEL\n"; });
}

std::string MatrixRows(std::string_view own, std::string_view coupling)
{
    std::string rows;
    for (int row = 0; row < PACKAGE_PINS; ++row) {
        rows += "[Row] P" + std::to_string(row) + '\n' + std::string(own) +
                Repeated(coupling, PACKAGE_PINS - row - 1);
    }
    return rows;
}

std::string ComponentText()
{
    return Header("query.ibs") +
           "[Component] U\n[Manufacturer] M\n[Package]\nR_pkg 1m NA NA\nL_pkg 1n NA NA\n"
           "C_pkg 1p NA NA\n[Package Model] PK\n[Pin] signal_name model_name R_pin L_pin C_pin\n" +
           PinLines() + "[Diff Pin] inv_pin vdiff tdelay_typ tdelay_min tdelay_max\n" +
           Lines(PINS / 2,
                 [](const std::string& i) {
                     return "P" + i + " P" + std::to_string(std::stoi(i) + PINS / 2) + " 0.2 1n 1n 1n\n";
                 }) +
           "[Model Selector] SEL\n" +
           Lines(MODELS, [](const std::string& i) { return "M" + i + " strength " + i + '\n'; }) +
           Lines(MODELS,
                 [](const std::string& i) {
                     return "[Model] M" + i +
                            "\nModel_type Input\nVinl = 0.8\nVinh = 2.0\nC_comp 1p 1p 1p\n"
                            "[Voltage Range] 3.3 3.0 3.6\n[GND Clamp]\n-1 -1m NA NA\n0 0 NA NA\n";
                 }) +
           "[Define Package Model] PK\n[Manufacturer] M\n[OEM] O\n[Description] D\n[Number Of Pins] " +
           std::to_string(PACKAGE_PINS) + "\n[Pin Numbers]\n" +
           Lines(PACKAGE_PINS, [](const std::string& i) { return "P" + i + '\n'; }) +
           "[Model Data]\n[Inductance Matrix] Full_matrix\n" + MatrixRows("3nH\n", "10pH\n") +
           "[Capacitance Matrix] Full_matrix\n" + MatrixRows("300pF\n", "-1pF\n") +
           "[End Model Data]\n[End Package Model]\n[End]\n";
}

std::string BoardText()
{
    return Header("query.ebd") + "[Begin Board Description] B\n[Manufacturer] M\n[Number Of Pins] " +
           std::to_string(PINS) + "\n[Pin List] signal_name\n" +
           Lines(PINS, [](const std::string& i) { return "P" + i + " S" + i + '\n'; }) +
           Lines(PINS,
                 [](const std::string& i) {
                     return "[Path Description] N" + i + "\nPin P" + i + "\nLen=1 L=1n C=1p /\nNode U1.P" +
                            i + '\n';
                 }) +
           "[Reference Designator Map]\nU1 query.ibs U\n[End Board Description]\n[End]\n";
}

const TalIbis& Open(const std::string& name, const std::string& text, ibis_file_type type)
{
    TalIbis* file = nullptr;
    talReadIbisFile(WriteBenchFile(name, text).c_str(), type, &file);
    if (file == nullptr || file->getIbis() == nullptr) {
        std::cerr << "talibis_bench: " << name << " was not read\n";
        std::exit(EXIT_FAILURE);
    }
    return *file;
}

const TalIbis& Component()
{
    static const TalIbis& file = Open("query.ibs", ComponentText(), IBIS_FILE_IBS);
    return file;
}

const TalIbis& Board()
{
    Component();
    static const TalIbis& file = Open("query.ebd", BoardText(), IBIS_FILE_EBD);
    return file;
}

// Asks until the time is known. An answer that is no answer stops the benchmark.
template <class Record, class Query, class... Args>
void Ask(benchmark::State& state, const TalIbis& file, Query query, Args... args)
{
    for (auto _ : state) {
        Record record;
        (file.*query)(args..., record);
        benchmark::DoNotOptimize(&record);
        if (record.getStatus() != QueryOk) {
            state.SkipWithError(record.getErrMsg().c_str());
        }
    }
}

void PinList(benchmark::State& state)
{
    Ask<TalIbisListQueryData>(state, Component(), &TalIbis::getPinList, "U");
}
BENCHMARK(PinList)->Unit(benchmark::kMicrosecond);

void PinsOfSymbol(benchmark::State& state)
{
    Ask<TalIbisListQueryData>(state, Component(), &TalIbis::getPinModelList, "U", "IBIS_S_I");
}
BENCHMARK(PinsOfSymbol)->Unit(benchmark::kMicrosecond);

void DiffPin(benchmark::State& state)
{
    Ask<TalIbisListQueryData>(state, Component(), &TalIbis::getDiffPin, "U", "P2400");
}
BENCHMARK(DiffPin)->Unit(benchmark::kMicrosecond);

void SelectorModels(benchmark::State& state)
{
    Ask<TalIbisListQueryData>(state, Component(), &TalIbis::getModelSelectorSubModelList, "SEL", "");
}
BENCHMARK(SelectorModels)->Unit(benchmark::kMicrosecond);

void Triple(benchmark::State& state)
{
    Ask<TalIbisListQueryData>(state, Component(), &TalIbis::getVoltageRange, "M400");
}
BENCHMARK(Triple)->Unit(benchmark::kMicrosecond);

void CornerText(benchmark::State& state)
{
    Ask<TalIbisStringQueryData>(state, Component(), &TalIbis::getC_comp, "M400", "Min");
}
BENCHMARK(CornerText)->Unit(benchmark::kMicrosecond);

void Flag(benchmark::State& state)
{
    Ask<TalIbisBooleanQueryData>(state, Component(), &TalIbis::hasGndClamp, "M400");
}
BENCHMARK(Flag)->Unit(benchmark::kMicrosecond);

void RawModel(benchmark::State& state)
{
    for (auto _ : state) {
        const std::unique_ptr<IbisRawModelData> raw(Component().getIbisRawModelData("M400"));
        double value = 0.0;
        benchmark::DoNotOptimize(raw->getVoltageRange(IBIS_DATA_TYP, value));
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK(RawModel)->Unit(benchmark::kMicrosecond);

void PackageMatrix(benchmark::State& state)
{
    const std::string pins = Lines(PACKAGE_PINS / 2, [](const std::string& i) { return "P" + i + ' '; });
    Ask<TalIbisListQueryData>(state, Component(), &TalIbis::getIbisPkgMatrixModel, "U", pins.c_str());
}
BENCHMARK(PackageMatrix)->Unit(benchmark::kMicrosecond);

void BoardPins(benchmark::State& state)
{
    Ask<TalIbisListQueryData>(state, Board(), &TalIbis::getPinModelList, "", "Ebd");
}
BENCHMARK(BoardPins)->Unit(benchmark::kMicrosecond);

void BoardPath(benchmark::State& state)
{
    Ask<TalIbisListQueryData>(state, Board(), &TalIbis::getIbisEbdModel, "P2500");
}
BENCHMARK(BoardPath)->Unit(benchmark::kMicrosecond);

void ScriptFunction(benchmark::State& state)
{
    talIbis_qel_initialize();
    const std::vector<QVALUE> parameters{qval_create_string(Component().getFileName()),
                                         qval_create_string("ibs"), qval_create_string("M400")};
    for (auto _ : state) {
        qval_free_value(qel_call("deGetIbisModelVoltageRangeList", parameters));
    }
    for (const QVALUE parameter : parameters) {
        qval_free_value(parameter);
    }
}
BENCHMARK(ScriptFunction)->Unit(benchmark::kMicrosecond);

}  // namespace
