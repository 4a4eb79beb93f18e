// Reading and checking package models of 2,000 pins, inductance and capacitance matrix in one of the shapes
// of the format. The counters tell the numbers of the file, and how far the memory rose above the 8 bytes of
// each.

#include "bench/files.h"
#include "ibis/interface/talibis.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace
{

constexpr int PINS = 2000;

std::string PinName(int i)
{
    return "P" + std::to_string(i + 1);
}

// Columns of a row, as offsets from the diagonal; a sparse matrix names the pin of each.
struct Shape {
    const char* pszType;
    int iBandwidth;  // -1: no [Bandwidth]
    int iStep;       // between the columns of a sparse row
    std::function<int(int row)> columns;

    bool isSparse() const { return iStep != 0; }
};

const Shape FULL{"Full_matrix", -1, 0, [](int row) { return PINS - row; }};
const Shape BANDED{"Banded_matrix", 100, 0, [](int row) { return std::min(101, PINS - row); }};
const Shape WRAPPED{"Banded_matrix", 100, 0, [](int) { return 101; }};
const Shape SPARSE{"Sparse_matrix", -1, 7, [](int row) { return (PINS - row + 6) / 7; }};

// Diagonally dominant, so that the checks run through and are silent.
void WriteMatrix(std::ofstream& out, const char* keyword, const Shape& shape)
{
    out << '[' << keyword << "] " << shape.pszType << '\n';
    if (shape.iBandwidth >= 0) {
        out << "[Bandwidth] " << shape.iBandwidth << '\n';
    }
    for (int row = 0; row < PINS; ++row) {
        out << "[Row] " << PinName(row) << '\n';
        for (int k = 0; k < shape.columns(row); ++k) {
            char number[32];
            std::snprintf(number, sizeof number, "%.5e", k == 0 ? 1.23456e-9 : -1.23456e-13 / (k + 7));
            if (shape.isSparse()) {
                out << PinName(row + k * shape.iStep) << ' ' << number << '\n';
            } else {
                out << number << (k % 8 == 7 ? '\n' : ' ');
            }
        }
        out << '\n';
    }
}

std::string WritePackage(const Shape& shape)
{
    const std::string path = BenchPath("talibis_matrix_bench.pkg");
    std::ofstream out(path, std::ios::binary);
    out << "[IBIS Ver] 5.1\n[File Name] talibis_matrix_bench.pkg\n[File Rev] 1.0\n"
           "[Define Package Model] BENCH\n[Manufacturer] Acme\n[OEM] Acme\n[Description] Bench\n"
           "[Number Of Pins] "
        << PINS << "\n[Pin Numbers]\n";
    for (int i = 0; i < PINS; ++i) {
        out << PinName(i) << '\n';
    }
    out << "[Model Data]\n";
    WriteMatrix(out, "Inductance Matrix", shape);
    WriteMatrix(out, "Capacitance Matrix", shape);
    out << "[End Model Data]\n[End Package Model]\n[End]\n";
    return path;
}

double NumbersOf(const Shape& shape)
{
    double numbers = 0;
    for (int row = 0; row < PINS; ++row) {
        numbers += 2.0 * shape.columns(row);
    }
    return numbers;
}

// A field of /proc/self/status, in bytes; 0 where there is no such file.
double Memory(const std::string& field)
{
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        if (word == field) {
            double kilobytes = 0;
            status >> kilobytes;
            return kilobytes * 1024;
        }
    }
    return 0;
}

// Gives freed memory back to the system first, so that what an earlier run left does not hide a rise.
double StartOfPeak()
{
#ifdef __GLIBC__
    malloc_trim(0);
#endif
    std::ofstream("/proc/self/clear_refs") << "5";
    return Memory("VmRSS:");
}

void ReadPackage(benchmark::State& state, const Shape& shape)
{
    const std::string path = WritePackage(shape);
    double before = StartOfPeak();
    double peak = 0;
    for ([[maybe_unused]] auto iteration : state) {
        TalIbis* handle = nullptr;
        if (talReadIbisFile(path.c_str(), IBIS_FILE_PKG, &handle)->getNumErrors() != 0) {
            state.SkipWithError("the file should be clean");
        }
        state.PauseTiming();
        peak = std::max(peak, Memory("VmHWM:") - before);
        TalIbisFileManager::destroyInstance();
        before = StartOfPeak();
        state.ResumeTiming();
    }
    const double numbers = NumbersOf(shape);
    state.counters["numbers"] = numbers;
    state.counters["file_MB"] = static_cast<double>(std::filesystem::file_size(path)) / 1e6;
    state.counters["values_MB"] = numbers * sizeof(double) / 1e6;
    state.counters["peak_MB"] = peak / 1e6;
}

BENCHMARK_CAPTURE(ReadPackage, Full, FULL)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ReadPackage, Banded, BANDED)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ReadPackage, CircleBack, WRAPPED)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ReadPackage, Sparse, SPARSE)->Unit(benchmark::kMillisecond);

}  // namespace
