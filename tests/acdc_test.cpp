#include "ibis/source/nuibis_acdc.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_mdl.h"
#include "tests/tables.h"

#include <algorithm>
#include <fstream>
#include <sstream>

namespace
{

// The driver of the builders: 50 Ohm to either rail of 3.3 V, 3.0 V and 3.6 V.
Lines OfDriver(const std::vector<std::pair<std::string, std::string>>& edits, const std::string& extra = "",
               std::string_view version = "5.1")
{
    return Unfolded(Messages(Ibs(Edit(Driver("D", extra), edits), version)));
}

// Those of the model checks alone: other rules have their say on such a model too.
Lines With(std::string_view part, const std::string& model, std::string_view version = "5.1")
{
    return Unfolded(MessagesWith(part, Ibs(model, version)));
}

struct Cautions {
    Cautions() { MSG_SetSuppressCautions(false); }
    ~Cautions() { MSG_SetSuppressCautions(true); }
    Cautions(const Cautions&) = delete;
    Cautions& operator=(const Cautions&) = delete;
};

}  // namespace

// ACDC_LoadLine -------------------------------------------------------------------------------------------

TEST(LoadLine, StraightLines)
{
    struct Case {
        const char* name;
        std::vector<TableRow> rows;
        double dLoad;
        double dR;
        double dV;
        double dI;
    };
    const std::vector<TableRow> ohm50{{-1, -0.02}, {0, 0}, {2, 0.04}};
    const std::vector<Case> cases{
        {"divider", ohm50, 3.0, 100, 1.0, 0.02},
        {"divider without load voltage", ohm50, 0.0, 100, 0.0, 0.0},
        {"left of the table", ohm50, -6.0, 100, -2.0, -0.04},
        {"right of the table", ohm50, 9.0, 100, 3.0, 0.06},
        {"at the first point", ohm50, -3.0, 100, -1.0, -0.02},
        {"no fixture: the load has no say", {{0, -0.01}, {1, 0.01}}, 7.0, 1e32, 0.5, 0.0},
        {"short to the load", ohm50, 1.5, 0.0, 1.5, 0.03},
        {"a step holds its voltage", {{0, 0}, {1, 0}, {1, 0.1}, {2, 0.1}}, 3.0, 50, 1.0, 0.04},
        {"rows of NA are no points", {{NA, 5}, {0, 0}, {1, NA}, {2, 0.04}}, 3.0, 100, 1.0, 0.02},
    };
    for (const Case& c : cases) {
        double v = NAN;
        double i = NAN;
        EXPECT_TRUE(ACDC_LoadLine(Table(c.rows).get(), c.dLoad, c.dR, CORNER_TYP, 0.0, &v, &i)) << c.name;
        EXPECT_NEAR(v, c.dV, 1e-12) << c.name;
        if (c.dR > 0.0) {
            EXPECT_NEAR(i, c.dI, 1e-12) << c.name;
        }
    }
}

TEST(LoadLine, NearestOfSeveralCrossings)
{
    // A tunnel diode: up, down and up again. A load of 100 Ohm to 2.5 V, i = 25 mA - v * 10 mA/V, crosses all
    // three branches, i = 40 v, 30 - 20 v and 10 v - 15 in mA and V.
    const CRV_Curve tunnel = Table({{0, 0}, {0.5, 0.02}, {1.25, 0.005}, {3.0, 0.0225}});
    for (const auto& [guess, expected] : Points{{0.0, 0.5}, {0.45, 0.5}, {1.9, 1.625}, {9.0, 1.625}}) {
        double v = NAN;
        double i = NAN;
        EXPECT_TRUE(ACDC_LoadLine(tunnel.get(), 2.5, 100, CORNER_TYP, guess, &v, &i));
        EXPECT_NEAR(v, expected, 1e-12) << guess;
        EXPECT_NEAR(i, 0.025 - 0.01 * expected, 1e-12) << guess;
    }
}

TEST(LoadLine, ACrossingOnTheTableWinsOverTheExtension)
{
    // Left of 0 V the first segment goes on to the load at -0.5 V; the second one, i = 60 mA - v * 50 mA/V,
    // meets the load, i = -10 mA - v * 10 mA/V, again.
    const CRV_Curve table = Table({{0, 0}, {1, 0.01}, {2, -0.04}});
    double v = NAN;
    double i = NAN;
    EXPECT_TRUE(ACDC_LoadLine(table.get(), -1.0, 100, CORNER_TYP, -0.5, &v, &i));
    EXPECT_NEAR(v, 1.75, 1e-12);
}

TEST(LoadLine, DiodeIntoAResistor)
{
    const auto diode = [](double v) { return 1e-9 * (std::exp(v / 0.026) - 1.0); };
    // 3.3 V through 1 kOhm, solved by halving.
    double low = 0.0;
    double high = 1.0;
    for (int step = 0; step < 60; ++step) {
        const double middle = (low + high) / 2;
        (diode(middle) < (3.3 - middle) / 1000 ? low : high) = middle;
    }
    double v = NAN;
    double i = NAN;
    EXPECT_TRUE(ACDC_LoadLine(Sampled(diode, -1.0, 1e-4, 20001).get(), 3.3, 1000, CORNER_TYP, 0.0, &v, &i));
    // The chord of a sample step lies within h^2/8 * i'' of the curve, which is 1.2 * 0.5e-6 of a step of vt.
    EXPECT_NEAR(v, low, 1e-7);
    EXPECT_NEAR(i, diode(low), 1e-9);
}

TEST(LoadLine, TablesWithoutAnAnswer)
{
    double v = 0.0;
    double i = 0.0;
    EXPECT_FALSE(ACDC_LoadLine(nullptr, 1, 50, CORNER_TYP, 0, &v, &i));
    const std::vector<std::vector<TableRow>> unusable{
        {}, {{0, 0}}, {{0, 0}, {1, NA}}, {{1, 1}, {0, 0}}, {{0, 0}, {1, -0.02}}};  // the last along the load
    for (const auto& rows : unusable) {
        EXPECT_FALSE(ACDC_LoadLine(Table(rows).get(), 1, 50, CORNER_TYP, 0, &v, &i));
    }
    EXPECT_FALSE(ACDC_LoadLine(Table({{0, 0}, {1, 1}}).get(), 1, 50, CORNER_MIN, 0, &v, &i));
    // No current at all into no fixture at all.
    EXPECT_FALSE(ACDC_LoadLine(Table({{0, 0}, {1, 0}}).get(), 3.3, 1e32, CORNER_TYP, 0, &v, &i));
}

// ACDC_GetRefs --------------------------------------------------------------------------------------------

TEST(References, WhatIsGivenWinsOverTheSupply)
{
    const auto refs = [](const nuibis_mdl& model, nuibis_corner corner) {
        const ACDC_Refs r = ACDC_GetRefs(model, corner);
        return std::vector<double>{r.dPowerClamp, r.dPullup, r.dGndClamp, r.dPulldown};
    };
    rng supply{3.3, NUM_VALUE, 3.0, NUM_VALUE, 0.0, NUM_NA};
    rng clamp{5.0, NUM_VALUE, 0.0, NUM_ABSENT, 5.5, NUM_VALUE};
    rng ground{0.0, NUM_NA, 0.0, NUM_NA, -0.5, NUM_VALUE};
    nuibis_mdl model{};
    EXPECT_EQ(refs(model, CORNER_TYP), (std::vector<double>{0, 0, 0, 0}));
    model.pVoltageRange = &supply;
    EXPECT_EQ(refs(model, CORNER_MIN), (std::vector<double>{3.0, 3.0, 0, 0}));
    EXPECT_EQ(refs(model, CORNER_MAX), (std::vector<double>{3.3, 3.3, 0, 0}));
    model.eModelType = MODEL_OUTPUT_ECL;
    EXPECT_EQ(refs(model, CORNER_TYP), (std::vector<double>{3.3, 3.3, 0, 3.3}));
    model.pPowerClampRef = &clamp;
    model.pPulldownRef = &ground;
    model.pGndClampRef = &ground;
    EXPECT_EQ(refs(model, CORNER_MIN), (std::vector<double>{5.0, 3.0, 0, 3.0}));
    EXPECT_EQ(refs(model, CORNER_MAX), (std::vector<double>{5.5, 3.3, -0.5, -0.5}));
    model.pPullupRef = &clamp;
    EXPECT_EQ(refs(model, CORNER_TYP), (std::vector<double>{5.0, 5.0, 0, 3.3}));
}

// [Ramp] --------------------------------------------------------------------------------------------------

namespace
{

const std::string RISE = "dV/dt_r 0.99/1n 0.9/1.5n 1.08/0.8n";
const std::string FALL = "dV/dt_f 0.99/1n 0.9/1.5n 1.08/0.8n";

std::string RampCaution(const char* dv, const char* expected, const char* corner, const char* edge)
{
    return std::string("CAUTION - [Ramp] dV (") + dv + "V) not within  5.00% of I-V table dV (" + expected +
           "V) calculation: Model D: Process: " + corner + ": (" + edge + ")";
}

}  // namespace

TEST(RampCheck, BothSidesOfFivePercent)
{
    const Cautions on;
    // Into 50 Ohm the output swings over half of the supply: 0.6 * 1.65 V = 0.99 V.
    struct Case {
        std::string sLine;
        Lines messages;
    };
    const std::vector<Case> cases{
        {"dV/dt_r 0.943/1n 0.9/1.5n 1.08/0.8n", {}},
        {"dV/dt_r 0.942/1n 0.9/1.5n 1.08/0.8n", {RampCaution(" 0.942", " 0.990", "TYP", "Rising")}},
        {"dV/dt_r 1.042/1n 0.9/1.5n 1.08/0.8n", {}},
        {"dV/dt_r 1.043/1n 0.9/1.5n 1.08/0.8n", {RampCaution(" 1.043", " 0.990", "TYP", "Rising")}},
        {"dV/dt_r 0.99/1n 1.0/1.5n 1.0/0.8n",
         {RampCaution(" 1.000", " 0.900", "MIN", "Rising"),
          RampCaution(" 1.000", " 1.080", "MAX", "Rising")}},
        {"dV/dt_r 0.99/1n NA NA", {}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(OfDriver({{RISE, c.sLine}}), c.messages) << c.sLine;
    }
    EXPECT_EQ(OfDriver({{FALL, "dV/dt_f 1.043/1n NA 1.2/0.8n"}}),
              (Lines{RampCaution(" 1.043", " 0.990", "TYP", "Falling"),
                     RampCaution(" 1.200", " 1.080", "MAX", "Falling")}));
}

TEST(RampCheck, LoadsOfTheRamp)
{
    const Cautions on;
    const std::string dvAt100 = "dV/dt_r 1.32/1n 1.2/1.5n 1.44/0.8n";  // 0.6 * 100/150 of the supply
    EXPECT_EQ(
        OfDriver(
            {{RISE, dvAt100}, {FALL, "dV/dt_f 1.32/1n 1.2/1.5n 1.44/0.8n"}, {"R_load = 50", "R_load = 100"}}),
        Lines{});
    // Without R_load it is 50 Ohm.
    EXPECT_EQ(OfDriver({{"R_load = 50\n", ""}}), Lines{});
    EXPECT_EQ(OfDriver({{"R_load = 50\n", ""}, {RISE, dvAt100}}).size(), 3U);
    // The supply is the pullup's own reference, and the ground that of the pulldown: 0.6 * (5 - 1)/2 V.
    EXPECT_EQ(OfDriver({{RISE, "dV/dt_r 1.2/1n NA NA"}, {FALL, "dV/dt_f 1.2/1n NA NA"}},
                       "[Pullup Reference] 5 NA NA\n[Pulldown Reference] 1 NA NA\n"),
              Lines{});
    // A supply of "NA" at a corner is the typical one: 0.99 V at all corners.
    EXPECT_EQ(OfDriver({{"3.3 3.0 3.6", "3.3 NA NA"}}),
              (Lines{RampCaution(" 0.900", " 0.990", "MIN", "Rising"),
                     RampCaution(" 0.900", " 0.990", "MIN", "Falling"),
                     RampCaution(" 1.080", " 0.990", "MAX", "Rising"),
                     RampCaution(" 1.080", " 0.990", "MAX", "Falling")}));
}

TEST(RampCheck, OpenAndEmitterCoupledTypes)
{
    const Cautions on;
    // What only drives low rises by the load: 50 Ohm against 50 Ohm to the supply, a swing of half of it.
    // With a load to ground it would not swing at all.
    const auto open = [](std::string type, const std::string& table) {
        std::string model = Edit(Driver("D"), {{"Output", std::move(type)}});
        const std::size_t begin = model.find(table);
        model.erase(begin, model.find('[', begin + 1) - begin);
        return With("[Ramp]", model);
    };
    for (const char* type : {"Open_drain", "I/O_open_drain", "Open_sink", "I/O_open_sink"}) {
        EXPECT_EQ(open(type, "[Pullup]"), Lines{}) << type;
    }
    for (const char* type : {"Open_source", "I/O_open_source"}) {
        EXPECT_EQ(open(type, "[Pulldown]"), Lines{}) << type;
    }
    EXPECT_EQ(open("Output", "[Pullup]").size(), 3U);  // rising only: falling, the supply is the load

    // Emitter followers of 10 Ohm at 0.9 V and 1.7 V below the supply of 5 V, both tables counted down from
    // it, with 50 Ohm to 3 V: they settle 6.5/6 V and 10.5/6 V below the supply, a swing of 4/6 V.
    const std::string ecl = "[Model] D\nModel_type Output_ECL\n[Voltage Range] 5 5 5\n"
                            "[Pullup]\n0 90m 90m 90m\n2 -110m -110m -110m\n"
                            "[Pulldown]\n0 170m 170m 170m\n2 -30m -30m -30m\n"
                            "[Ramp]\ndV/dt_r 0.4/1n 0.4/1n 0.43/1n\ndV/dt_f 0.4/1n 0.4/1n 0.4/1n\n";
    EXPECT_EQ(With("[Ramp]", ecl), Lines{RampCaution(" 0.430", " 0.400", "MAX", "Rising")});
}

TEST(RampCheck, SkippedWithoutSupplyOrLine)
{
    const Cautions on;
    EXPECT_EQ(With("[Ramp]", Edit(Driver("D"),
                                  {{"[Voltage Range] 3.3 3.0 3.6\n", ""}, {RISE, "dV/dt_r 9/1n 9/1n 9/1n"}})),
              Lines{});
    EXPECT_EQ(With("[Ramp] dV", Edit(Driver("D"), {{FALL + "\n", ""}, {RISE, "dV/dt_r 9/1n 9/1n 9/1n"}})),
              Lines{});
    // A corner of the ground whose typical value is missing too fails the corner.
    EXPECT_EQ(With("[Ramp] dV",
                   Edit(Driver("D", "[Pulldown Reference] NA NA 0\n"), {{RISE, "dV/dt_r 9/1n 9/1n 9/1n"}}))
                  .size(),
              2U);
}

// Waveforms -----------------------------------------------------------------------------------------------

namespace
{

std::string Waveform(std::string_view edge, std::string_view fixture, std::string_view start,
                     std::string_view end)
{
    std::ostringstream out;
    out << "[" << edge << " Waveform]\n" << fixture << "0 " << start << "\n1n " << end << "\n";
    return out.str();
}

const std::string TO_GROUND = "R_fixture = 50\nV_fixture = 0\n";

// Severity, edge, R_fixture, name and value of V_fixture, corner, then low and high of the waveform, of the
// tables, and the differences in percent.
std::string WaveformMessage(const std::string& values)
{
    std::istringstream in(values);
    std::string severity;
    std::string edge;
    std::string r;
    std::string name;
    std::string v;
    std::string corner;
    in >> severity >> edge >> r >> name >> v >> corner;
    std::array<std::string, 6> n;
    for (std::string& number : n) {
        in >> number;
        number.insert(0, number.size() < 5 ? 5 - number.size() : 0, ' ');
    }
    return severity + " - Model D: The [" + edge + " Waveform] \n      with [R_fixture]=" + r +
           " Ohms and [" + name + "]=" + v + "V\n      has " + corner + " column DC endpoints of " + n[0] +
           "V and " + n[1] +
           "v, but\n      an equivalent load applied to the model's I-V tables yields\n      different "
           "voltages (" +
           n[2] + "V and " + n[3] + "V),\n      a difference of " + n[4] + "% and " + n[5] +
           "%, respectively.";
}

}  // namespace

TEST(WaveformCheck, WarningAndErrorByTheSwing)
{
    // The tables settle at 0 V and at half of the supply: 1.65 V, 1.5 V, 1.8 V.
    EXPECT_EQ(OfDriver({}, Waveform("Rising", TO_GROUND, "0 0 0", "1.65 1.5 1.8") +
                               Waveform("Falling", TO_GROUND, "1.65 1.5 1.8", "0 0 0")),
              Lines{});
    const std::vector<std::pair<const char*, std::vector<const char*>>> cases{
        {"1.618 1.5 1.8", {}},  // 32 mV of 1.618 V are below 2 %
        {"1.617 1.5 1.8", {"WARNING Rising 50 V_fixture 0 TYP 0.00 1.62 -0.00 1.65 0.00 2.00"}},
        {"1.501 1.5 1.8",
         {"WARNING Rising 50 V_fixture 0 TYP 0.00 1.50 -0.00 1.65 0.00 9.03"}},  // below 10 %
        {"1.499 1.5 1.8", {"ERROR Rising 50 V_fixture 0 TYP 0.00 1.50 -0.00 1.65 0.00 9.15"}},
        {"1.65 1.2 1.9",
         {"ERROR Rising 50 V_fixture_min 0 MIN 0.00 1.20 -0.00 1.50 0.00 20.00",
          "WARNING Rising 50 V_fixture_max 0 MAX 0.00 1.90 -0.00 1.80 0.00 5.56"}},
    };
    for (const auto& [end, values] : cases) {
        Lines expected(values.size());
        std::transform(values.begin(), values.end(), expected.begin(), WaveformMessage);
        EXPECT_EQ(OfDriver({}, Waveform("Rising", TO_GROUND, "0 0 0", end)), expected) << end;
    }
}

TEST(WaveformCheck, FixturesAndEdges)
{
    // 50 Ohm to the supply of each corner: low at half of it, high at the supply.
    const std::string toSupply =
        "R_fixture = 50\nV_fixture = 3.3\nV_fixture_min = 3.0\nV_fixture_max = 3.6\n";
    EXPECT_EQ(OfDriver({}, Waveform("Falling", toSupply, "3.3 3.0 3.6", "1.65 1.5 1.8")), Lines{});
    // One number alone at a corner is start and end.
    EXPECT_EQ(
        With("The [Falling", Driver("D", Waveform("Falling", toSupply, "3.3 NA 3.6", "1.35 1.5 NA"))),
        (Lines{WaveformMessage("ERROR Falling 50 V_fixture 3.3 TYP 1.35 3.30 1.65 3.30 18.18 0.00"),
               WaveformMessage("ERROR Falling 50 V_fixture_min 3 MIN 1.50 1.50 1.50 3.00 0.00 100.00"),
               WaveformMessage("ERROR Falling 50 V_fixture_max 3.6 MAX 3.60 3.60 1.80 3.60 100.00 0.00")}));
    // No R_fixture: the output swings over the whole supply. No V_fixture: 0 V.
    EXPECT_EQ(
        With("The [Rising", Driver("D", Waveform("Rising", "", "0 0 0", "3.3 3.0 3.2"))),
        Lines{WaveformMessage("ERROR Rising 1e+32 V_fixture_max 0 MAX 0.00 3.20 -0.00 3.60 0.00 11.11")});
}

TEST(WaveformCheck, ClampsAddToTheOutput)
{
    // 1 kOhm to either rail beside the 50 Ohm: low, the supply pulls up by 3.3 V * 1 mS / 42 mS = 79 mV;
    // high, both halves are alike.
    const std::string clamps = "[GND Clamp]\n-3.3 -3.3m NA NA\n6.6 6.6m NA NA\n"
                               "[POWER Clamp]\n-3.3 3.3m NA NA\n6.6 -6.6m NA NA\n";
    EXPECT_EQ(
        With("The [Rising", Driver("D", clamps + Waveform("Rising", TO_GROUND, "0 NA NA", "1.65 NA NA"))),
        Lines{WaveformMessage("WARNING Rising 50 V_fixture 0 TYP 0.00 1.65 0.08 1.65 5.00 0.00")});
}

TEST(WaveformCheck, EqualSettledVoltagesPrintAHundred)
{
    const std::string dead = Edit(
        Driver("D", Waveform("Rising", TO_GROUND, "0 NA NA", "1 NA NA")),
        {{"-3.3 66m", "-3.3 0"}, {"6.6 -132m", "6.6 0"}, {"-3.3 -66m", "-3.3 0"}, {"6.6 132m", "6.6 0"}});
    EXPECT_EQ(With("The [Rising", dead),
              Lines{WaveformMessage("ERROR Rising 50 V_fixture 0 TYP 0.00 1.00 -0.00 -0.00 100.00 100.00")});
}

TEST(WaveformCheck, DirectionOfTheTablesDoesNotMatter)
{
    const std::string wave = Waveform("Rising", TO_GROUND, "0 0 0", "1.65 1.5 1.8");
    EXPECT_EQ(OfDriver({{"-3.3 -66m -66m -66m\n0 0 0 0\n6.6 132m 132m 132m\n",
                         "6.6 132m 132m 132m\n0 0 0 0\n-3.3 -66m -66m -66m\n"},
                        {"-3.3 66m 66m 66m\n0 0 0 0\n6.6 -132m -132m -132m\n",
                         "6.6 -132m -132m -132m\n0 0 0 0\n-3.3 66m 66m 66m\n"}},
                       wave),
              Lines{});
}

// Timing test load ----------------------------------------------------------------------------------------

namespace
{

std::string CannotDrive(const char* corner, const char* load)
{
    return std::string("WARNING - Model 'D': ") + corner + " VI curves cannot drive through Vmeas=" + load;
}

// [Model Spec] in its place behind the subparameters.
Lines WithSpec(const std::string& spec, std::vector<std::pair<std::string, std::string>> edits = {})
{
    edits.emplace_back("[Voltage Range]", "[Model Spec]\n" + spec + "[Voltage Range]");
    return With("cannot drive", Edit(Driver("D"), edits));
}

}  // namespace

TEST(TestLoadCheck, PlainLoad)
{
    // High, the 50 Ohm of the output give 10/11 of the supply into 500 Ohm: 3.0 V, 2.73 V, 3.27 V.
    EXPECT_EQ(OfDriver({{"Vmeas = 1.5", "Vmeas = 2.72"}}), Lines{});
    EXPECT_EQ(OfDriver({{"Vmeas = 1.5", "Vmeas = 2.73"}}),
              Lines{CannotDrive("MIN", "2.73V\n          given load Rref=500 Ohms to Vref=0V")});
    // Low, 1/11 of Vref: 0.3 V.
    EXPECT_EQ(OfDriver({{"Vmeas = 1.5", "Vmeas = 0.29"}, {"Vref = 0", "Vref = 3.3"}}),
              (Lines{CannotDrive("TYP", "0.29V\n          given load Rref=500 Ohms to Vref=3.3V"),
                     CannotDrive("MIN", "0.29V\n          given load Rref=500 Ohms to Vref=3.3V"),
                     CannotDrive("MAX", "0.29V\n          given load Rref=500 Ohms to Vref=3.3V")}));
    // A part of the load that is missing says nothing.
    EXPECT_EQ(With("cannot drive", Edit(Driver("D"), {{"Vmeas = 1.5", "Vmeas = 9"}, {"Vref = 0\n", ""}})),
              Lines{});
}

TEST(TestLoadCheck, OneSidedOutputsAreJudgedOnTheirSide)
{
    // Without a [Pullup] only the low state is judged.
    std::string model = Edit(Driver("D"), {{"Vmeas = 1.5", "Vmeas = 9"}});
    const std::size_t begin = model.find("[Pullup]");
    model.erase(begin, model.find('[', begin + 1) - begin);
    EXPECT_EQ(With("cannot drive", model), Lines{});
    EXPECT_EQ(With("cannot drive", Edit(model, {{"Vmeas = 9", "Vmeas = -0.1"}})).size(), 3U);
}

TEST(TestLoadCheck, ModelSpecification)
{
    const std::string high = "3.1V\n          given load Rref=500 Ohms to Vref=0V";
    // It wins over the model's own value, corner by corner.
    EXPECT_EQ(WithSpec("Vmeas 1.5 1.4 3.4\n"),
              Lines{CannotDrive("MAX", "3.4V\n          given load Rref=500 Ohms to Vref=0V")});
    EXPECT_EQ(WithSpec("Vmeas 1.5 NA NA\n", {{"Vmeas = 1.5", "Vmeas = 9"}}), Lines{});
    EXPECT_EQ(WithSpec("Rref 50 NA NA\n", {{"Vmeas = 1.5", "Vmeas = 1.6"}}),
              Lines{CannotDrive("MIN", "1.6V\n          given load Rref=50 Ohms to Vref=0V")});
    // Forms for the edges: rising first, falling only if rising drives through; the rest of the load is lent.
    EXPECT_EQ(WithSpec("Vmeas_rising 3.1 NA 1\nVmeas_falling -1 -1 -1\n"),
              (Lines{CannotDrive("TYP Rising", high.c_str()), CannotDrive("MIN Rising", high.c_str()),
                     CannotDrive("MAX Falling", "-1V\n          given load Rref=500 Ohms to Vref=0V")}));
    // One edge alone: the other takes the plain value.
    EXPECT_EQ(WithSpec("Vref_falling 20 1 1\n"),
              Lines{CannotDrive("TYP Falling", "1.5V\n          given load Rref=500 Ohms to Vref=20V")});
    // Without a plain value both edges are needed.
    EXPECT_EQ(WithSpec("Vmeas_rising 9 9 9\n", {{"Vmeas = 1.5\n", ""}}), Lines{});
    EXPECT_EQ(WithSpec("Vmeas_rising 9 9 9\nVmeas_falling 9 9 9\n", {{"Vmeas = 1.5\n", ""}}).size(), 3U);
}

TEST(TestLoadCheck, AnExternalModelDrivesByItself)
{
    ibis* const root = RootOf(Ibs(Edit(Driver("D"), {{"Vmeas = 1.5", "Vmeas = 9"}})));
    ACDC_CheckModel(root->pModels);
    EXPECT_EQ(StoredMessages().size(), 3U);
    MSG_ClearContainer();
    root->pModels->pExternalModel = reinterpret_cast<EXTBLOCK*>(root);
    ACDC_CheckModel(root->pModels);
    root->pModels->pExternalModel = nullptr;
    EXPECT_EQ(StoredMessages(), Lines{});
}

// [ISSO_PU] and [ISSO_PD] ---------------------------------------------------------------------------------

namespace
{

std::string Isso(std::string_view keyword, std::string_view first, std::string_view last)
{
    std::ostringstream out;
    out << "[" << keyword << "]\n0 " << first << "\n3.3 " << last << "\n";
    return out.str();
}

}  // namespace

TEST(IssoCheck, AgreementAtZeroVolts)
{
    // [Pullup] carries -66 mA at 3.3 V, [Pulldown] +66 mA.
    struct Case {
        const char* keyword;
        const char* current;
        Lines messages;
    };
    const std::vector<Case> cases{
        {"ISSO_PU", "-66m NA NA", {}},
        {"ISSO_PU", "-69.4m NA NA", {}},  // 3.4 mA of 69.4 mA are below 5 %
        {"ISSO_PU",
         "-69.5m NA NA",
         {"WARNING - Model D: TYP ISSO_PU current (-6.950e-02A) at 0V is not within  5.00% of Pullup current "
          "(-6.600e-02A) at reference ( 0.000V)"}},
        {"ISSO_PD", "62.9m NA NA", {}},  // 3.1 mA of 62.9 mA
        {"ISSO_PD",
         "62.8m NA NA",
         {"WARNING - Model D: TYP ISSO_PD current (6.280e-02A) at 0V is not within  5.00% of Pulldown "
          "current "
          "(6.600e-02A) at reference ( 3.300V)"}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(With("D: TYP", Driver("D", Isso(c.keyword, c.current, "0 NA NA"))), c.messages)
            << c.current;
    }
}

TEST(IssoCheck, NothingFlowsAtTheFarEnd)
{
    EXPECT_EQ(With("is non-zero", Driver("D", Isso("ISSO_PU", "-66m NA NA", "-0.9u NA NA"))), Lines{});
    EXPECT_EQ(With("is non-zero", Driver("D", Isso("ISSO_PU", "-66m -60m -72m", "-1.1u 0 0"))),
              (Lines{"WARNING - Model D: TYP ISSO_PU current (-1.100e-06A) at Pulldown reference ( 0.000V) - "
                     "table value "
                     "( 3.300V) is non-zero (> 1.0e-06A)",
                     // At 3.0 V the straight line to 0 A at 3.3 V has not come to an end.
                     "WARNING - Model D: MIN ISSO_PU current (-5.455e-03A) at Pulldown reference ( 0.000V) - "
                     "table value "
                     "( 3.000V) is non-zero (> 1.0e-06A)"}));
    EXPECT_EQ(
        With("is non-zero", Driver("D", Isso("ISSO_PD", "66m NA NA", "2u NA NA"))),
        Lines{
            "WARNING - Model D: TYP ISSO_PD current (2.000e-06A) at Pullup reference ( 3.300V) - table value "
            "( 3.300V) is non-zero (> 1.0e-06A)"});
}

TEST(IssoCheck, GroundsOtherThanZero)
{
    // With a ground of 1 V the pullup is compared at the span of 2.3 V (-46 mA), the pulldown at the supply
    // of 3.3 V (66 mA).
    const std::string ground = "[Pulldown Reference] 1 NA NA\n";
    EXPECT_EQ(
        With("at reference",
             Driver("D",
                    ground + "[ISSO_PU]\n0 -46m NA NA\n2.3 0 NA NA\n[ISSO_PD]\n0 66m NA NA\n2.3 0 NA NA\n")),
        Lines{});
    EXPECT_EQ(
        With("at reference",
             Driver("D",
                    ground + "[ISSO_PU]\n0 -66m NA NA\n2.3 0 NA NA\n[ISSO_PD]\n0 46m NA NA\n2.3 0 NA NA\n")),
        (Lines{"WARNING - Model D: TYP ISSO_PU current (-6.600e-02A) at 0V is not within  5.00% of Pullup "
               "current "
               "(-4.600e-02A) at reference ( 1.000V)",
               "WARNING - Model D: TYP ISSO_PD current (4.600e-02A) at 0V is not within  5.00% of Pulldown "
               "current "
               "(6.600e-02A) at reference ( 3.300V)"}));
}

// Tables on their own -------------------------------------------------------------------------------------

TEST(ExtremeCurrents, AtMinusOneAndAHalfVolts)
{
    const auto extreme = [](const std::string& tables) { return With("Extreme", Model("M", tables)); };
    EXPECT_EQ(extreme("[GND Clamp]\n-1.5 -10 NA NA\n0 0 NA NA\n"), Lines{});
    EXPECT_EQ(
        extreme("[GND Clamp]\n-2 -13.4 -13.3 NA\n0 0 0 NA\n"),
        Lines{"WARNING - Model 'M': Extreme currents present in TYP GND_Clamp VI Curve (-10.05A @ -1.5V)"});
    // A table that ends at -1 V goes on along its last segment: 8 A and 5 A/V more.
    EXPECT_EQ(
        extreme("[POWER Clamp]\n-1 8 8 NA\n0 3 5 NA\n3 0 0 NA\n"),
        Lines{"WARNING - Model 'M': Extreme currents present in TYP POWER_Clamp VI Curve (10.5A @ -1.5V)"});
    EXPECT_EQ(
        extreme("[POWER Clamp]\n3 0 NA NA\n0 3 NA NA\n-1 8 NA NA\n"),
        Lines{"WARNING - Model 'M': Extreme currents present in TYP POWER_Clamp VI Curve (10.5A @ -1.5V)"});
}

TEST(OpenSides, CarryNoCurrentAtAll)
{
    const auto model = [](std::string type, const std::string& tables) {
        return With("Currents <>", Edit(Model("M", tables), {{"Input", std::move(type)}}));
    };
    const auto table = [](std::string_view keyword, std::string_view row) {
        return "[" + std::string(keyword) + "]\n0 0 NA NA\n1 " + std::string(row) + "\n2 0 NA NA\n";
    };
    const Lines drain{"ERROR - Model 'M': Currents <> 0.0mA in 'Pullup' for Open_drain/Open_sink device"};
    const Lines drainIsso{
        "ERROR - Model 'M': Currents <> 0.0mA in 'ISSO PU' for Open_drain/Open_sink device"};
    const Lines source{"ERROR - Model 'M': Currents <> 0.0mA in 'Pulldown' for Open_source device"};
    const Lines sourceIsso{"ERROR - Model 'M': Currents <> 0.0mA in 'ISSO PD' for Open_source device"};
    for (const char* type : {"Open_drain", "I/O_open_drain", "Open_sink", "I/O_open_sink"}) {
        EXPECT_EQ(model(type, table("Pullup", "0 0 NA")), Lines{}) << type;
        EXPECT_EQ(model(type, table("Pullup", "0 1e-30 NA")), drain) << type;
        EXPECT_EQ(model(type, table("ISSO_PU", "0 0 -1u")), drainIsso) << type;
        EXPECT_EQ(model(type, table("Pullup", "1m 0 0") + table("ISSO_PU", "1m 0 0")), drain) << type;
        EXPECT_EQ(model(type, table("Pulldown", "1m 0 0")), Lines{}) << type;
    }
    for (const char* type : {"Open_source", "I/O_open_source"}) {
        EXPECT_EQ(model(type, table("Pulldown", "1m 0 0")), source) << type;
        EXPECT_EQ(model(type, table("ISSO_PD", "1m 0 0")), sourceIsso) << type;
        EXPECT_EQ(model(type, table("Pullup", "1m 0 0")), Lines{}) << type;
    }
    EXPECT_EQ(model("3-state", table("Pullup", "1m 0 0") + table("Pulldown", "1m 0 0")), Lines{});
}

// Combined curves -----------------------------------------------------------------------------------------

TEST(CombinedCurves, TurningBackIsNoted)
{
    const auto notes = [](const std::vector<std::pair<std::string, std::string>>& edits) {
        return With("piece-wise", Edit(Driver("D"), edits));
    };
    EXPECT_EQ(notes({}), Lines{});
    EXPECT_EQ(notes({{"0 0 0 0\n6.6 132m 132m 132m", "0 0 0 0\n3 70m 60m 60m\n6.6 60m 132m 60m"}}),
              (Lines{"NOTE - Combined Pulldown for Model: D Typical data is non-monotonic based on "
                     "piece-wise linear interpolation"}));
    EXPECT_EQ(notes({{"0 0 0 0\n6.6 -132m -132m -132m", "0 0 1m -1m\n6.6 -132m -132m 0"}}),
              (Lines{"NOTE - Combined Pullup for Model: D Maximum data is non-monotonic based on piece-wise "
                     "linear interpolation"}));
    // A table whose voltages turn back: the first column is told once, at TYP.
    EXPECT_EQ(
        notes({{"0 0 0 0\n6.6 132m 132m 132m", "2 40m 40m 40m\n1 20m 20m 20m\n6.6 132m 132m 132m"}}).front(),
        "NOTE - Combined Pulldown for Model: D Voltage data is non-monotonic based on piece-wise linear "
        "interpolation");
}

TEST(CombinedCurves, CornerWithoutEitherTableIsLeftAlone)
{
    const Cautions on;
    // At MIN both tables have numbers in one row only; the ramp there would be far off.
    const auto edits = [](const char* pullup) {
        return std::vector<std::pair<std::string, std::string>>{
            {"-3.3 -66m -66m -66m\n0 0 0 0\n6.6 132m 132m 132m",
             "-3.3 -66m NA -66m\n0 0 0 0\n6.6 132m NA 132m"},
            {"-3.3 66m 66m 66m\n0 0 0 0\n6.6 -132m -132m -132m", pullup},
            {RISE, "dV/dt_r 0.99/1n 9/1.5n 1.08/0.8n"}};
    };
    EXPECT_EQ(With("[Ramp] dV", Edit(Driver("D"), edits("-3.3 66m NA 66m\n0 0 0 0\n6.6 -132m NA -132m"))),
              Lines{});
    EXPECT_EQ(With("[Ramp] dV", Edit(Driver("D"), edits("-3.3 66m 66m 66m\n0 0 0 0\n6.6 -132m -132m -132m")))
                  .size(),
              2U);
}

TEST(CombinedCurves, ChecksThatAreOffLeaveTheNotes)
{
    ibis* const root =
        RootOf(Ibs(Edit(Driver("D", "[GND Clamp]\n-2 -20 NA NA\n-1 0 NA NA\n0 0 NA NA\n"),
                        {{"Vmeas = 1.5", "Vmeas = 9"},
                         {"0 0 0 0\n6.6 132m 132m 132m", "0 0 0 0\n3 70m 60m 60m\n6.6 60m 132m 60m"}})));
    ACDC_CheckModels(root->pModels);
    EXPECT_GT(StoredMessages().size(), 3U);
    MSG_ClearContainer();
    ACDC_SetChecks(false);
    ACDC_CheckModels(root->pModels);
    ACDC_SetChecks(true);
    EXPECT_EQ(StoredMessages(), Lines{"NOTE - Combined Pulldown for Model: D Typical data is non-monotonic "
                                      "based on piece-wise linear interpolation"});
}

TEST(CombinedCurves, ReportTakesTheSeverityAsked)
{
    MSG_ClearContainer();
    const CRV_Curve table = Table({{0, 0, 1}, {1, 1, 0}, {3, 2, 0}, {2, 1, 1}, {4, 0, 0}});
    CRV_ReportPiecewise(table.get(), "N", "Label", CORNER_TYP, MSG_Severity::Warning);
    CRV_ReportPiecewise(table.get(), "N", "Label", CORNER_MIN, MSG_Severity::Note);
    CRV_ReportPiecewise(table.get(), "N", "Label", CORNER_MAX, MSG_Severity::Note);
    EXPECT_EQ(
        StoredMessages(),
        (Lines{"WARNING - Label N Voltage data is non-monotonic based on piece-wise linear interpolation",
               "WARNING - Label N Typical data is non-monotonic based on piece-wise linear interpolation",
               "NOTE - Label N Minimum data is non-monotonic based on piece-wise linear interpolation"}));
}

// Clamps of submodels -------------------------------------------------------------------------------------

TEST(CombinedClamps, ActiveByMode)
{
    const std::string note = " Typical data is non-monotonic based on piece-wise linear interpolation";
    const std::string driving = "NOTE - Combined Clamp in Driving Mode for Model M" + note;
    const std::string nonDriving = "NOTE - Combined Clamp in Non Driving Mode for Model M" + note;
    // The model's own clamp rises by 1 mA/V; a bus clamp that falls by 2 mA/V from 1 V on turns the sum.
    const auto notes = [](std::string type, const std::string& mode, const std::string& submodelType,
                          const std::string& keyword) {
        const std::string model = Edit(
            Model("M", "[Add Submodel]\nS " + mode + "\n[GND Clamp]\n-3.3 -3.3m NA NA\n6.6 6.6m NA NA\n"),
            {{"Input", std::move(type)}});
        const std::string submodel = "[Submodel] S\nSubmodel_type " + submodelType + "\n[" + keyword +
                                     "]\n-3.3 0 NA NA\n1 0 NA NA\n6.6 -11.2m NA NA\n";
        return With("Combined Clamp", model + submodel);
    };
    EXPECT_EQ(notes("Input", "Non-Driving", "Dynamic_clamp", "GND Clamp"), Lines{nonDriving});
    EXPECT_EQ(notes("Input", "All", "Dynamic_clamp", "GND Clamp"), Lines{nonDriving});
    EXPECT_EQ(notes("Terminator", "All", "Dynamic_clamp", "GND Clamp"), Lines{nonDriving});
    EXPECT_EQ(notes("I/O", "All", "Dynamic_clamp", "GND Clamp"), (Lines{nonDriving, driving}));
    EXPECT_EQ(notes("I/O", "Driving", "Dynamic_clamp", "GND Clamp"), Lines{driving});
    EXPECT_EQ(notes("3-state", "All", "Dynamic_clamp", "GND Clamp"), Lines{driving});
    EXPECT_EQ(notes("3-state", "Non-Driving", "Dynamic_clamp", "GND Clamp"), Lines{});
    EXPECT_EQ(notes("I/O", "All", "Bus_hold", "GND Clamp"), Lines{});
    EXPECT_EQ(notes("I/O_diff", "All", "Dynamic_clamp", "GND Clamp"), Lines{});
    // Below the supply of 3.3 V the same table is a power clamp that rises up to 2.3 V, and the sum rises
    // too.
    EXPECT_EQ(notes("Input", "All", "Dynamic_clamp", "POWER Clamp"), Lines{});
}

TEST(CombinedClamps, ModelWithoutUsableClampsIsPassedOver)
{
    const std::string submodel =
        "[Submodel] S\nSubmodel_type Dynamic_clamp\n[GND Clamp]\n-1 0 0 0\n1 5m 5m 5m\n2 0 0 0\n";
    const std::string oneRow = "0 0 NA 0\n1 0 0 0\n";
    const auto notes = [&](const std::string& clamps) {
        return With("Combined Clamp", Model("M", "[Add Submodel]\nS All\n" + clamps) + submodel);
    };
    EXPECT_EQ(notes("[GND Clamp]\n" + oneRow).size(), 3U);
    EXPECT_EQ(notes("[GND Clamp]\n" + oneRow + "[POWER Clamp]\n" + oneRow).size(), 2U);  // MIN is left out
}

// CRV_Dump ------------------------------------------------------------------------------------------------

TEST(Dump, PointsOfAColumn)
{
    const CRV_Curve table =
        Table({{-1.5, 1e-3, 2e-3, 3e-3}, {0, 0, NA, 0}, {NA, 1, 1, 1}, {2.25, -4e-12, 7, NA}});
    const auto dump = [&](nuibis_corner corner, const std::string& file) {
        EXPECT_EQ(CRV_Dump(table.get(), corner, TestFolder() + "/dump-", "M1"), 0);
        std::ostringstream text;
        text << std::ifstream(TestFolder() + "/dump-" + file, std::ios::binary).rdbuf();
        return text.str();
    };
    EXPECT_EQ(dump(CORNER_TYP, "M1_typ.csv"),
              "-1.500000e+00,1.000000e-03\n0.000000e+00,0.000000e+00\n2.250000e+00,-4.000000e-12\n");
    EXPECT_EQ(dump(CORNER_MIN, "M1_min.csv"), "-1.500000e+00,2.000000e-03\n2.250000e+00,7.000000e+00\n");
    EXPECT_EQ(dump(CORNER_MAX, "M1_max.csv"), "-1.500000e+00,3.000000e-03\n0.000000e+00,0.000000e+00\n");
    EXPECT_NE(CRV_Dump(table.get(), CORNER_TYP, TestFolder() + "/no such folder/", "M1"), 0);
}

// The order of the checks ---------------------------------------------------------------------------------

TEST(EndOfFile, ChecksFollowEachOther)
{
    const std::string models =
        Edit(Driver("D", "[Driver Schedule]\nX 0 1n NA NA\nY 0 1n NA NA\n"),
             {{"Vmeas = 1.5", "Vmeas = 3.2"}, {"C_comp 5pF 4pF 6pF", "C_comp 5pF 4pF 6nF"}});
    const std::string rest =
        "[Model Selector] Q\nZ nothing\nD the driver\n[Submodel] S\nSubmodel_type Dynamic_clamp\n[GND "
        "Clamp]\n"
        "-1 -1m -1m -1m\n0 0 0 0\n[Ramp]\ndV/dt_r 1/2m 1/1n 1/1n\ndV/dt_f 1/1n 1/1n 1/1n\n" +
        Model("N", "[Add Submodel]\nT All\n");
    const Lines expected{
        CannotDrive("TYP", "3.2V\n          given load Rref=500 Ohms to Vref=0V"),
        CannotDrive("MIN", "3.2V\n          given load Rref=500 Ohms to Vref=0V"),
        "WARNING - Model 'D': C_comp MAX value 6000pF out of expected range (0pF, 1000pF)  ",
        "ERROR - Model Y used in the Driver Schedule of Model D is not defined",
        "ERROR - Model X used in the Driver Schedule of Model D is not defined",
        "ERROR - Model 'Z' in Model Selector 'Q' is not defined in the file",
        "WARNING - CMPT 'U1', Pin '9': Pin Resistance 99 Ohms greater than 50 Ohms",
        "ERROR - Component 'U1': Model 'nowhere' for Pin '9' not defined.",
        "WARNING - Submodel S is not referenced by any model [Add Submodel] keyword",
        "WARNING - Sub Model 'S': TYP Rising Ramptime 2.000e+06nsec unusually large ( > 1.000e+06nsec )",
        "ERROR - Could not find definition for Submodel T of Model N"};
    const std::string pins =
        "1 S1 D 50m 2nH 1pF\n2 S2 N 50m 2nH 1pF\n3 S3 Q 50m 2nH 1pF\n9 S9 nowhere 99 2nH 1pF\n";
    EXPECT_EQ(Unfolded(Messages(Bare(Component("U1", pins) + models + rest))), expected);
}
