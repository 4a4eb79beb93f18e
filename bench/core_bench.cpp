// The pieces that every line of a file goes through, one by one, and what a host asks for most: the same file
// again.

#include "bench/files.h"
#include "ibis/interface/talibis.h"
#include "ibis/source/nuibis_curve.h"
#include "ibis/source/nuibis_msg.h"
#include "ibis/source/nuibis_parse.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <numbers>
#include <string>

namespace
{

std::string Repeated(std::string_view text, int count)
{
    std::string all;
    for (int i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

constexpr int LINES = 20'000;
constexpr std::string_view ROW_LINE = "      -3.30000e+00  -2.45000e-02  -1.84000e-02  -3.18000e-02";

void LineReader(benchmark::State& state, std::string_view end)
{
    const std::string path =
        WriteBenchFile("lines.txt", Repeated(std::string(ROW_LINE) + std::string(end), LINES));
    for (auto _ : state) {
        CMN_Stream stream;
        stream.attach(CMN_FOpen(path.c_str(), "r"));
        std::string_view text;
        std::size_t size = 0;
        while (CMN_ReadLine(stream, CMN_LINE_LIMIT, text)) {
            size += text.size();
        }
        benchmark::DoNotOptimize(size);
        MSG_ClearContainer();
    }
    state.SetItemsProcessed(state.iterations() * LINES);
}
BENCHMARK_CAPTURE(LineReader, Unix, "\n")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(LineReader, Dos, "\r\n")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(LineReader, Illegal, "\xb1\n")->Unit(benchmark::kMicrosecond);

// A file of comments goes through reading and classification alone.
void Classification(benchmark::State& state)
{
    const std::string path =
        WriteBenchFile("comments.ibs", "[IBIS Ver] 5.1\n" + Repeated("| Voltage   I(typ)   I(min)\n", LINES));
    for (auto _ : state) {
        benchmark::DoNotOptimize(PARSE_ReadFile(path.c_str(), IBIS_FILE_IBS));
    }
    state.SetItemsProcessed(state.iterations() * LINES);
}
BENCHMARK(Classification)->Unit(benchmark::kMicrosecond);

void Keyword(benchmark::State& state, std::string_view line)
{
    geIbisVersion = IBIS_VER_5;
    nuibis_keyword code = NOT_KEY;
    for (auto _ : state) {
        if (!PARSE_GetKeyword(line, NOT_KEY, &code)) {
            state.SkipWithError("not known");
        }
        benchmark::DoNotOptimize(code);
    }
}
BENCHMARK_CAPTURE(Keyword, FirstOfTheTable, "[IBIS Ver] 5.1");
BENCHMARK_CAPTURE(Keyword, LastOfTheTable, "[End]");

void Split(benchmark::State& state)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(CMN_Split(ROW_LINE, 4));
    }
}
BENCHMARK(Split);

void Number(benchmark::State& state, std::string_view text)
{
    double value = 0.0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(CMN_GetValue(text, &value));
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK_CAPTURE(Number, Scientific, "-2.45000e-02");
BENCHMARK_CAPTURE(Number, Scaled, "24.500mA");
BENCHMARK_CAPTURE(Number, Plus, "+3.3");
BENCHMARK_CAPTURE(Number, Hexadecimal, "0x1p3");
BENCHMARK_CAPTURE(Number, OutOfRange, "1e-400");

void TableAppend(benchmark::State& state)
{
    constexpr int rows = 100;
    for (auto _ : state) {
        rngp* head = nullptr;
        for (int i = 0; i < rows; ++i) {
            rngp* row = nullptr;
            unsigned count = 0;
            RNGP_ReadLine(ROW_LINE, "Pulldown", "Voltage", &row);
            row->dFirst = i;
            RNGP_Append(head, row, &count, true);
        }
        benchmark::DoNotOptimize(head);
        RNGP_FreeRows(head);
    }
    state.SetItemsProcessed(state.iterations() * rows);
}
BENCHMARK(TableAppend);

crv Curve(int rows, double from, double to)
{
    crv curve{};
    for (int i = 0; i < rows; ++i) {
        rngp* row = nullptr;
        unsigned count = 0;
        if (!RNGP_Create(&row)) {
            std::abort();
        }
        row->dFirst = from + (to - from) * i / (rows - 1);
        row->dTyp = std::tanh(row->dFirst);
        row->eFirst = row->eTyp = NUM_VALUE;
        RNGP_Append(curve.pHead, row, &count, false);
    }
    return curve;
}

void Combine(benchmark::State& state)
{
    const auto rows = static_cast<int>(state.range(0));
    crv a = Curve(rows, -3.3, 6.6);
    crv b = Curve(rows, -std::numbers::pi, std::numbers::pi);
    for (auto _ : state) {
        benchmark::DoNotOptimize(CRV_Combine(&a, &b, CORNER_TYP).get());
    }
    RNGP_FreeRows(a.pHead);
    RNGP_FreeRows(b.pHead);
}
BENCHMARK(Combine)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

void CacheHit(benchmark::State& state)
{
    const std::string path = WriteBenchFile("cached.ibs", "[IBIS Ver] 5.1\n[End]\n");
    TalIbis* handle = nullptr;
    for (auto _ : state) {
        talReadIbisFile(path.c_str(), IBIS_FILE_IBS, &handle);
        benchmark::DoNotOptimize(handle);
    }
    if (handle == nullptr) {
        state.SkipWithError("not read");
    }
}
BENCHMARK(CacheHit)->Unit(benchmark::kMicrosecond);

}  // namespace
