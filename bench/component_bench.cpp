// How long a large component takes: reading a file of 5,000 pins with every table of a component filled, and
// the end-of-file checks of that component alone.

#include "bench/files.h"
#include "ibis/interface/talibis.h"

#include <benchmark/benchmark.h>

#include <fstream>
#include <sstream>
#include <string>

namespace
{

constexpr int PINS = 5000;
constexpr int RAILS = 1000;   // the last pins are supply pins, POWER and GND in turn
constexpr int SERIES = 1000;  // of the others, the last ones have no buffer and are switched in series
constexpr int MODELS = 200;   // input buffers, and as many selectors
constexpr int GROUPS = 250;
constexpr int BUFFERS = PINS - RAILS - SERIES;

void WritePins(std::ostream& out)
{
    out << "[Pin] signal_name model_name R_pin L_pin C_pin\n";
    for (int pin = 1; pin <= PINS; ++pin) {
        out << pin << " S" << pin << ' ';
        if (pin > PINS - RAILS) {
            out << (pin % 2 == 0 ? "POWER" : "GND");
        } else if (pin > BUFFERS) {
            out << "NC";
        } else {
            out << (pin % 2 == 0 ? "SEL" : "IN") << pin / 2 % MODELS;
        }
        out << " 50m 2nH 1pF\n";
    }
    out << "[Pin Mapping] pulldown_ref pullup_ref gnd_clamp_ref power_clamp_ref ext_ref\n";
    for (int pin = 1; pin <= PINS; ++pin) {
        const int bus = pin / 2 % (RAILS / 2);
        out << pin;
        if (pin > PINS - RAILS) {
            out << (pin % 2 == 0 ? " NC VDD" : " VSS") << bus << (pin % 2 == 0 ? "" : " NC") << " NC NC NC\n";
        } else if (pin > BUFFERS) {
            out << " NC NC NC NC NC\n";
        } else {
            out << " VSS" << bus << " VDD" << bus << " VSS" << bus << " VDD" << bus << " VDD" << bus << '\n';
        }
    }
}

// Pairs are of neighbours; the sides of a repeater are pins whose models are chosen later.
void WritePairs(std::ostream& out)
{
    out << "[Diff Pin] inv_pin vdiff tdelay_typ tdelay_min tdelay_max\n";
    for (int pin = 1; pin < BUFFERS; pin += 2) {
        out << pin << ' ' << pin + 1 << " 0.2V 1ns 0.5ns NA\n";
    }
    out << "[Repeater Pin] tx_non_inv_pin\n";
    for (int pin = 2; pin < BUFFERS; pin += 4) {
        out << pin << ' ' << pin + 2 << '\n';
    }
}

void WriteSeries(std::ostream& out)
{
    out << "[Series Switch Groups]\n";
    for (const char* state : {"On", "Off"}) {
        for (int group = 0; group < GROUPS; group += 10) {
            out << state;
            for (int i = 0; i < 10; ++i) {
                out << " G" << group + i << (i == 4 ? "\n" : "");
            }
            out << " /\n";
        }
    }
    out << "[Series Pin Mapping] pin_2 model_name function_table_group\n";
    static constexpr const char* models[] = {" SWITCH G", " SWITCH2 G", " SWITCHES G"};
    for (int pin = BUFFERS + 1; pin < BUFFERS + SERIES; ++pin) {
        out << pin << ' ' << pin + 1 << models[pin % 3] << pin % GROUPS << '\n';
    }
}

void WriteEmi(std::ostream& out)
{
    out << "[Begin EMI Component]\nDomain Digital\nCpd = 6pF\n[Pin EMI] domain_name clock_div\n";
    for (int pin = 1; pin <= BUFFERS; ++pin) {
        out << pin << " D" << pin % GROUPS << " 2\n";
    }
    out << "[Pin Domain EMI] percentage\n";
    for (int domain = 0; domain < GROUPS; ++domain) {
        out << 'D' << domain << " 50\n";
    }
    out << "[End EMI Component]\n";
}

void WriteModels(std::ostream& out)
{
    for (int model = 0; model < MODELS; ++model) {
        out << "[Model] IN" << model
            << "\nModel_type Input\nVinl = 0.8\nVinh = 2.0\nC_comp 5pF 4pF 6pF\n[Voltage Range] 3.3 3.0 "
               "3.6\n";
    }
    for (int selector = 0; selector < MODELS; ++selector) {
        out << "[Model Selector] SEL" << selector << '\n';
        for (int choice = 0; choice < 8; ++choice) {
            out << "IN" << (selector + choice) % MODELS << " strength " << choice << '\n';
        }
    }
    out << "[Model Selector] SWITCHES\nSWITCH fast\nSWITCH2 slow\n";
    for (const char* name : {"SWITCH", "SWITCH2"}) {
        out << "[Model] " << name
            << "\nModel_type Series_switch\nC_comp 5pF 4pF 6pF\n[Voltage Range] 3.3 3.0 3.6\n[On]\n[R "
               "Series] 8 7 9\n"
               "[Off]\n[R Series] 1M 1M 1M\n";
    }
}

// The path of the file, written once.
const std::string& LargeFile()
{
    static const std::string path = [] {
        std::ofstream out(BenchPath("large_component.ibs"));
        out << "[IBIS Ver] 6.0\n[File Name] large_component.ibs\n[File Rev] 1.0\n[Component] "
               "U1\n[Manufacturer] "
               "Acme\n"
               "[Package]\nR_pkg 50m 40m 60m\nL_pkg 2nH 1nH 3nH\nC_pkg 1pF 0.8pF 1.2pF\n";
        WritePins(out);
        WritePairs(out);
        WriteSeries(out);
        WriteEmi(out);
        WriteModels(out);
        out << "[End]\n";
        return BenchPath("large_component.ibs");
    }();
    return path;
}

// Both measure a clean component: a message would be one that the file does not deserve.
bool ExpectClean(benchmark::State& state, const IbisErrorContainer& findings)
{
    if (findings.getNumErrors() != 0) {
        state.SkipWithError(findings.getErrMsg(0));
    }
    return findings.getNumErrors() == 0;
}

void CheckComponent(benchmark::State& state)
{
    TalIbis* handle = nullptr;
    if (!ExpectClean(state, *talReadIbisFile(LargeFile().c_str(), IBIS_FILE_IBS, &handle))) {
        return;
    }
    for (auto step : state) {
        if (!ExpectClean(state, *handle->testComponent("U1"))) {
            break;
        }
    }
}
BENCHMARK(CheckComponent)->Unit(benchmark::kMillisecond);

void ReadComponent(benchmark::State& state)
{
    for (auto step : state) {
        TalIbisFileManager::destroyInstance();
        TalIbis* handle = nullptr;
        if (!ExpectClean(state, *talReadIbisFile(LargeFile().c_str(), IBIS_FILE_IBS, &handle))) {
            break;
        }
    }
}
BENCHMARK(ReadComponent)->Unit(benchmark::kMillisecond);

}  // namespace
