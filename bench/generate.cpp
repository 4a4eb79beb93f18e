// Writes a model file of about a wanted size, as a simulation of a real buffer would give it:
//
//     talibis_generate large.ibs 10M
//
// The extension tells the kind: .ibs, .pkg or .ami. The same name and size give the same bytes.

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <numbers>
#include <string>
#include <string_view>
#include <system_error>

namespace
{

constexpr int CORNERS = 3;  // typical, minimum, maximum
using Triple = std::array<double, CORNERS>;

// How the numbers of a file look; simulators and their users have different habits.
enum class Notation { Scientific, Scaled, Plain };

// Text -----------------------------------------------------------------------------------------------------

std::string Printed(double value, std::chars_format format, int precision)
{
    std::array<char, 64> buffer;
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, format, precision);
    return {buffer.data(), result.ptr};
}

struct Scale {
    double dFactor;
    char cLetter;
};

std::string Scaled(double value, std::string_view unit)
{
    static constexpr std::array<Scale, 4> scales{{{1e-3, 'm'}, {1e-6, 'u'}, {1e-9, 'n'}, {1e-12, 'p'}}};
    if (value == 0.0 || std::fabs(value) >= 1.0) {
        return Printed(value, std::chars_format::fixed, 3) + std::string(unit);
    }
    const auto* const row = std::find_if(scales.begin(), scales.end() - 1, [value](const Scale& scale) {
        return std::fabs(value) >= scale.dFactor;
    });
    return Printed(value / row->dFactor, std::chars_format::fixed, 3) + row->cLetter + std::string(unit);
}

std::string Number(double value, Notation notation, std::string_view unit)
{
    switch (notation) {
    case Notation::Scientific:
        return Printed(value, std::chars_format::scientific, 5);
    case Notation::Scaled:
        return Scaled(value, unit);
    case Notation::Plain:
        break;
    }
    return Printed(value, std::chars_format::general, 7);
}

void AppendColumn(std::string& out, std::string_view text, std::size_t width)
{
    out.append(text.size() < width ? width - text.size() : 1, ' ');
    out += text;
}

void AppendTriple(std::string& out, std::string_view name, const Triple& values, std::string_view unit)
{
    out += name;
    for (const double value : values) {
        AppendColumn(out, Scaled(value, unit), 12);
    }
    out += '\n';
}

// The buffer that is "simulated" ---------------------------------------------------------------------------

// Slow corner: less current at a lower supply; fast corner: more at a higher one.
struct Buffer {
    Triple aSupply;   // V
    Triple aCurrent;  // A, of the saturated driver
    Notation eNotation;
    bool bTypicalOnly;  // minimum and maximum were not simulated
    bool bBrief;        // only what a model must have
    int iRows;          // of an I-V table, with one at 0 V
    int iTimes;         // of a waveform

    std::size_t corners() const { return bTypicalOnly ? 1 : CORNERS; }
};

constexpr double KNEE = 1.2;          // V, where the driver saturates
constexpr double DIODE = 0.6;         // V
constexpr double DIODE_WIDTH = 0.05;  // V, of its bend
constexpr double DIODE_OHM = 4.0;
constexpr double LOAD = 50.0;  // Ohm

double Driver(double v, double saturated)
{
    return saturated * (std::tanh(v / KNEE) + 0.01 * v);
}

// Conducts below -DIODE.
double Clamp(double v)
{
    const double x = (-v - DIODE) / DIODE_WIDTH;
    const double over = x > 30.0 ? x : std::log1p(std::exp(x));
    return -over * DIODE_WIDTH / DIODE_OHM;
}

// Voltage at which the driver and the load to `fixture` volts are in balance.
double Settled(const Buffer& buffer, std::size_t corner, bool high, double fixture)
{
    double low = -1.0;
    double top = buffer.aSupply[corner] + 1.0;
    for (int i = 0; i < 60; ++i) {
        const double v = (low + top) / 2.0;
        const double driven = high ? Driver(v - buffer.aSupply[corner], buffer.aCurrent[corner])
                                   : Driver(v, buffer.aCurrent[corner]);
        const double current = driven + Clamp(v) - Clamp(buffer.aSupply[corner] - v) + (v - fixture) / LOAD;
        (current > 0.0 ? top : low) = v;
    }
    return (low + top) / 2.0;
}

Buffer BufferOf(int model, bool small)
{
    static constexpr std::array<double, 5> supplies{3.3, 2.5, 1.8, 1.5, 1.2};  // V
    const double supply = supplies[static_cast<std::size_t>(model) % supplies.size()];
    const double current = 0.02 + 0.002 * (model % 17);
    return {{supply, 0.9 * supply, 1.1 * supply},
            {current, 0.75 * current, 1.3 * current},
            static_cast<Notation>(model % 3),
            model % 8 == 7,
            small,
            small ? 31 : 91,
            small ? 11 : 151};
}

// Tables ---------------------------------------------------------------------------------------------------

// A row; of a corner that has no number here the table says so.
void AppendRow(std::string& out, const Buffer& buffer, double first, std::string_view firstUnit,
               const Triple& values, std::string_view unit, bool gap)
{
    AppendColumn(out, Number(first, buffer.eNotation, firstUnit), 14);
    for (std::size_t corner = 0; corner < CORNERS; ++corner) {
        const bool missing = corner >= buffer.corners() || (gap && corner != 0);
        AppendColumn(out, missing ? "NA" : Number(values[corner], buffer.eNotation, unit), 14);
    }
    out += '\n';
}

// A simulator leaves out a point here and there where a corner did not converge.
bool IsGap(int row, int rows)
{
    return row % 37 == 18 && row + 1 < rows;
}

template <class Current>
void AppendCurve(std::string& out, const Buffer& buffer, std::string_view keyword, double from, double to,
                 Current current)
{
    out += '[';
    out += keyword;
    out += "]\n| Voltage   I(typ)        I(min)        I(max)\n";
    for (int row = 0; row < buffer.iRows; ++row) {
        const double v = from + (to - from) * row / (buffer.iRows - 1);
        Triple values{};
        for (std::size_t corner = 0; corner < CORNERS; ++corner) {
            values[corner] = current(v, corner);
        }
        AppendRow(out, buffer, v, "V", values, "A", IsGap(row, buffer.iRows));
    }
}

void AppendDriverCurves(std::string& out, const Buffer& buffer)
{
    const double supply = buffer.aSupply[0];
    AppendCurve(out, buffer, "Pulldown", -supply, 2 * supply,
                [&](double v, std::size_t corner) { return Driver(v, buffer.aCurrent[corner]); });
    AppendCurve(out, buffer, "Pullup", -supply, 2 * supply,
                [&](double v, std::size_t corner) { return -Driver(v, buffer.aCurrent[corner]); });
}

void AppendClamps(std::string& out, const Buffer& buffer)
{
    const double supply = buffer.aSupply[0];
    AppendCurve(out, buffer, "GND Clamp", -supply, supply, [](double v, std::size_t) { return Clamp(v); });
    AppendCurve(out, buffer, "POWER Clamp", -supply, 0.0, [](double v, std::size_t) { return -Clamp(v); });
}

// Switched current over the shift of the rail: all of it while the rail stands still, none at the other rail.
void AppendSwitching(std::string& out, const Buffer& buffer)
{
    const double supply = buffer.aSupply[0];
    AppendCurve(out, buffer, "ISSO_PD", -supply, supply, [&](double v, std::size_t corner) {
        return Driver(buffer.aSupply[corner], buffer.aCurrent[corner]) * (1.0 - v / buffer.aSupply[corner]);
    });
    AppendCurve(out, buffer, "ISSO_PU", -supply, supply, [&](double v, std::size_t corner) {
        return -Driver(buffer.aSupply[corner], buffer.aCurrent[corner]) * (1.0 - v / buffer.aSupply[corner]);
    });
}

constexpr double EDGE = 1e-9;      // s, of the typical corner
constexpr double DURATION = 6e-9;  // s

double Edge(double time, std::size_t corner)
{
    static constexpr Triple speeds{1.0, 0.8, 1.25};
    const double x = time * speeds[corner] / EDGE;
    return x <= 0.5 ? 0.0 : x >= 2.0 ? 1.0 : 0.5 - 0.5 * std::cos(std::numbers::pi * (x - 0.5) / 1.5);
}

template <class Value>
void AppendOverTime(std::string& out, const Buffer& buffer, std::string_view unit, Value value)
{
    out += "| Time        (typ)         (min)         (max)\n";
    for (int row = 0; row < buffer.iTimes; ++row) {
        const double time = DURATION * row / (buffer.iTimes - 1);
        Triple values{};
        for (std::size_t corner = 0; corner < CORNERS; ++corner) {
            values[corner] = value(time, corner);
        }
        AppendRow(out, buffer, time, "s", values, unit, IsGap(row, buffer.iTimes));
    }
}

void AppendWaveform(std::string& out, const Buffer& buffer, bool rising, bool toSupply, bool composite)
{
    const Triple fixture = toSupply ? buffer.aSupply : Triple{};
    out += rising ? "[Rising Waveform]\n" : "[Falling Waveform]\n";
    out += "R_fixture = 50.0\n";
    static constexpr std::array<std::string_view, CORNERS> names{"V_fixture", "V_fixture_min",
                                                                 "V_fixture_max"};
    for (std::size_t corner = 0; corner < buffer.corners(); ++corner) {
        out += names[corner];
        out += " = " + Printed(fixture[corner], std::chars_format::fixed, 4) + '\n';
    }
    Triple begin{};
    Triple end{};
    for (std::size_t corner = 0; corner < CORNERS; ++corner) {
        begin[corner] = Settled(buffer, corner, !rising, fixture[corner]);
        end[corner] = Settled(buffer, corner, rising, fixture[corner]);
    }
    AppendOverTime(out, buffer, "V", [&](double time, std::size_t corner) {
        return begin[corner] + (end[corner] - begin[corner]) * Edge(time, corner);
    });
    if (composite) {
        out += "[Composite Current]\n";
        AppendOverTime(out, buffer, "A", [&](double time, std::size_t corner) {
            const double edge = Edge(time, corner);
            return buffer.aCurrent[corner] * (0.1 + 0.5 * edge + 2.0 * edge * (1.0 - edge));
        });
    }
}

void AppendRamp(std::string& out, const Buffer& buffer)
{
    out += "[Ramp]\nR_load = 50.0\n";
    for (const bool rising : {true, false}) {
        out += rising ? "dV/dt_r" : "dV/dt_f";
        for (std::size_t corner = 0; corner < CORNERS; ++corner) {
            const double fixture = rising ? 0.0 : buffer.aSupply[corner];
            const double swing =
                Settled(buffer, corner, true, fixture) - Settled(buffer, corner, false, fixture);
            AppendColumn(out,
                         corner < buffer.corners() ? Printed(0.6 * swing, std::chars_format::fixed, 4) + '/' +
                                                         Scaled(0.6e-9 + 0.05e-9 * corner, "s")
                                                   : "NA",
                         18);
        }
        out += '\n';
    }
}

// Models, selectors, pins ----------------------------------------------------------------------------------

constexpr std::array<std::string_view, 4> TYPES{"I/O", "Output", "3-state", "Input"};

std::string ModelName(int model)
{
    return "BUF" + std::to_string(model);
}

void AppendSubparameters(std::string& out, const Buffer& buffer, std::string_view type)
{
    const double half = buffer.aSupply[0] / 2.0;
    out += "Model_type " + std::string(type) + '\n';
    if (type != "Input") {
        out += "Polarity Non-Inverting\nEnable Active-High\nVmeas = " + Scaled(half, "V") +
               "\nCref = 5.0pF\nRref = 50.0\nVref = " + Scaled(half, "V") + '\n';
    }
    if (type == "I/O" || type == "Input") {
        out += "Vinl = " + Scaled(0.7 * half, "V") + "\nVinh = " + Scaled(1.3 * half, "V") + '\n';
    }
    AppendTriple(out, "C_comp", {3.5e-12, 3.0e-12, 4.0e-12}, "F");
}

void AppendModel(std::string& out, int model, bool small)
{
    const Buffer buffer = BufferOf(model, small);
    const std::string_view type = TYPES[static_cast<std::size_t>(model) % TYPES.size()];
    out += "|\n| " + std::string(70, '*') + "\n[Model] " + ModelName(model) + '\n';
    AppendSubparameters(out, buffer, type);
    AppendTriple(out, "[Temperature Range]", {50.0, 100.0, 0.0}, "");
    AppendTriple(out, "[Voltage Range]", buffer.aSupply, "V");
    if (type == "Input") {
        AppendClamps(out, buffer);
        return;
    }
    AppendDriverCurves(out, buffer);
    AppendClamps(out, buffer);
    if (!buffer.bBrief) {
        AppendSwitching(out, buffer);
    }
    AppendRamp(out, buffer);
    for (const bool rising : {true, false}) {
        for (const bool toSupply : {false, true}) {
            AppendWaveform(out, buffer, rising, toSupply, !buffer.bBrief && model % 2 == 0);
        }
    }
}

// A pin's name has at most five characters.
std::string BallName(int pin)
{
    static constexpr std::string_view rows = "ABCDEFGHJKLMNPRTUVWY";
    const auto row = static_cast<std::size_t>(pin) % rows.size();
    return rows[row] + std::to_string(1 + static_cast<std::size_t>(pin) / rows.size());
}

constexpr int PINS_OF_MODEL = 8;
constexpr int MODELS_OF_SELECTOR = 5;  // as many as there are supplies

void AppendHeader(std::string& out, std::string_view fileName)
{
    out += "[IBIS Ver] 5.1\n[File Name] " + std::string(fileName) +
           "\n[File Rev] 1.0\n[Date] January 1, 2020\n[Source] Generated.\n[Notes] Buffers of a simple "
           "driver.\n[Copyright] None.\n";
}

void AppendPins(std::string& out, int models)
{
    out += "[Component] CHIP\n[Manufacturer] Generated\n[Package]\n";
    AppendTriple(out, "R_pkg", {50e-3, 40e-3, 60e-3}, "");
    AppendTriple(out, "L_pkg", {3e-9, 2e-9, 4e-9}, "H");
    AppendTriple(out, "C_pkg", {1e-12, 0.8e-12, 1.2e-12}, "F");
    out += "[Pin]  signal_name  model_name  R_pin  L_pin  C_pin\n";
    for (int pin = 0; pin < models * PINS_OF_MODEL; ++pin) {
        const int model = pin / PINS_OF_MODEL;
        out += BallName(pin);
        AppendColumn(out, "D" + std::to_string(pin), 12);
        const bool isSupply = pin % PINS_OF_MODEL == PINS_OF_MODEL - 1;
        const bool isChosen = pin % PINS_OF_MODEL == 0;
        AppendColumn(out,
                     isSupply   ? model % 2 == 0 ? "GND" : "POWER"
                     : isChosen ? "SEL" + std::to_string(model / MODELS_OF_SELECTOR)
                                : ModelName(model),
                     12);
        AppendColumn(out, Scaled(50e-3 + 1e-5 * (pin % 100), ""), 12);
        AppendColumn(out, Scaled(3e-9 + 1e-12 * (pin % 100), "H"), 12);
        AppendColumn(out, Scaled(1e-12 + 1e-15 * (pin % 100), "F"), 12);
        out += '\n';
    }
}

void AppendSelectors(std::string& out, int models)
{
    for (int first = 0; first < models; first += MODELS_OF_SELECTOR) {
        out += "[Model Selector] SEL" + std::to_string(first / MODELS_OF_SELECTOR) + '\n';
        for (int model = first; model < std::min(first + MODELS_OF_SELECTOR, models); ++model) {
            out += ModelName(model) + "  driver of strength " + std::to_string(model % 17) + '\n';
        }
    }
}

// The models come first into being, since their size tells how many pins there are.
std::string ComponentFile(std::string_view fileName, std::size_t size)
{
    const bool small = size < 64 * 1024;
    std::string models;
    int count = 0;
    do {
        AppendModel(models, count++, small);
    } while (models.size() + static_cast<std::size_t>(count) * PINS_OF_MODEL * 70 < size);
    std::string out;
    out.reserve(models.size() + size / 8);
    AppendHeader(out, fileName);
    AppendPins(out, count);
    AppendSelectors(out, count);
    return out + models + "[End]\n";
}

// Packages -------------------------------------------------------------------------------------------------

constexpr int BAND = 8;

void AppendMatrix(std::string& out, std::string_view keyword, int pins, double diagonal,
                  std::string_view unit, double sign)
{
    out += '[';
    out += keyword;
    out += "] Banded_matrix\n[Bandwidth] " + std::to_string(BAND) + '\n';
    for (int pin = 0; pin < pins; ++pin) {
        out += "[Row] " + BallName(pin) + '\n';
        double coupled = diagonal * (1.0 + 0.001 * (pin % 50));
        for (int k = 0; k <= BAND && pin + k < pins; ++k) {
            out += Scaled(coupled, unit) + (k % 6 == 5 ? '\n' : ' ');
            coupled = k == 0 ? sign * 0.2 * diagonal : coupled * 0.5;
        }
        out += '\n';
    }
}

std::string PackageFile(std::string_view fileName, std::size_t size)
{
    constexpr std::size_t bytesOfPin = 220;
    const int pins = std::max(4, static_cast<int>(std::min<std::size_t>(size / bytesOfPin, 100'000)));
    std::string out;
    AppendHeader(out, fileName);
    out +=
        "[Define Package Model] BALLS\n[Manufacturer] Generated\n[OEM] Generated\n[Description] Ball grid\n"
        "[Number Of Pins] " +
        std::to_string(pins) + "\n[Pin Numbers]\n";
    for (int pin = 0; pin < pins; ++pin) {
        out += BallName(pin) + '\n';
    }
    out += "[Model Data]\n";
    AppendMatrix(out, "Inductance Matrix", pins, 3e-9, "H", 1.0);
    AppendMatrix(out, "Capacitance Matrix", pins, 1e-12, "F", -1.0);
    return out + "[End Model Data]\n[End Package Model]\n[End]\n";
}

// Algorithmic models ---------------------------------------------------------------------------------------

std::string ParameterFile(std::size_t size)
{
    std::string out =
        "(equaliser\n  (Reserved_Parameters\n    (AMI_Version (Usage Info) (Type String) (Value \"5.1\")"
        " (Description \"Version of the format\"))\n"
        "    (Init_Returns_Impulse (Usage Info) (Type Boolean) (Value True) (Description \"Linear\"))\n"
        "    (GetWave_Exists (Usage Info) (Type Boolean) (Value True) (Description \"Adaptive\"))\n"
        "  )\n  (Model_Specific\n";
    for (int bank = 0; out.size() < size; ++bank) {
        out += "    (bank" + std::to_string(bank) + '\n';
        for (int tap = 0; tap < 16; ++tap) {
            out += "      (" + std::to_string(tap - 4) + " (Usage In) (Type Tap) (Format Range " +
                   Printed(0.01 * tap, std::chars_format::fixed, 3) + " -0.5 0.5) (Default " +
                   Printed(0.01 * tap, std::chars_format::fixed, 3) +
                   ") (Description \"Tap of the filter\"))\n";
        }
        out += "      (gain (Usage In) (Type Integer) (List 1 2 3 4) (List_Tip \"low\" \"mid\" \"high\" "
               "\"full\")"
               " (Default 2) (Description \"Gain\"))\n    )\n";
    }
    return out + "  )\n  (Description \"Filter banks\")\n)\n";
}

// The command ----------------------------------------------------------------------------------------------

// "10k", "1M"; 0 for what is no size.
std::size_t ReadSize(std::string_view text)
{
    std::size_t size = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), size);
    const std::string_view unit = text.substr(static_cast<std::size_t>(result.ptr - text.data()));
    const bool known = result.ec == std::errc() && (unit.empty() || unit == "k" || unit == "M");
    return !known ? 0 : unit.empty() ? size : unit == "k" ? size * 1000 : size * 1'000'000;
}

std::string FileOf(const std::filesystem::path& path, std::size_t size)
{
    const std::string extension = path.extension().string();
    return extension == ".ami"   ? ParameterFile(size)
           : extension == ".pkg" ? PackageFile(path.filename().string(), size)
                                 : ComponentFile(path.filename().string(), size);
}

}  // namespace

int main(int argc, char** argv)
{
    const std::size_t size = argc == 3 ? ReadSize(argv[2]) : 0;
    if (size == 0) {
        std::cerr
            << "talibis_generate FILE SIZE: FILE.ibs, .pkg or .ami of about SIZE bytes, such as 10k or 1M\n";
        return EXIT_FAILURE;
    }
    std::ofstream out(argv[1], std::ios::binary);
    out << FileOf(argv[1], size);
    return out.flush() ? EXIT_SUCCESS : EXIT_FAILURE;
}
