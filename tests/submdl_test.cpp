#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_smspec.h"
#include "ibis/source/nuibis_submdl.h"
#include "tests/builders.h"

namespace
{

// A submodel S that a model pulls in; [Submodel] stands on line 24.
Lines OfSubmodel(const std::string& lines, std::string_view version = "5.1")
{
    return Unfolded(Messages(Ibs(Model("M", "[Add Submodel]\nS All\n") + "[Submodel] S\n" + lines, version)));
}

const std::string CLAMP = "[GND Clamp]\n-1 -1m -1m -1m\n0 0 0 0\n";
const std::string PULLUP = "[Pullup]\n0 0 0 0\n1 -1m -1m -1m\n";
const std::string PULLDOWN = "[Pulldown]\n0 0 0 0\n1 1m 1m 1m\n";
const std::string RAMP = "[Ramp]\ndV/dt_r 1/1n 1/1n 1/1n\ndV/dt_f 1/1n 1/1n 1/1n\n";
const std::string DYNAMIC = "Submodel_type Dynamic_clamp\n";
const std::string HOLD = "Submodel_type Bus_hold\n";
const std::string BACK = "Submodel_type Fall_back\n";
const std::string RISE = "V_trigger_r 1.5 1.4 1.6\n";
const std::string FALL = "V_trigger_f 1.5 1.4 1.6\n";
const std::string OFF = "Off_delay 1n 1n 1n\n";
const std::string SPEC = "[Submodel Spec]\n";

}  // namespace

TEST(Submodel, NameAndType)
{
    const std::string long41(41, 'x');
    const auto named = [](const std::string& name, std::string_view version = "5.1") {
        return Unfolded(
            MessagesWith("ERROR", Ibs(Model("M") + "[Submodel]" + name + "\n" + DYNAMIC + CLAMP, version)));
    };
    EXPECT_EQ(named(" a_name_of_25_characters__", "3.2"), Lines{});
    EXPECT_EQ(named(""), Lines{"ERROR (line   19) - 'Sub Model' Keyword Missing name"});
    EXPECT_EQ(
        named(" S T"),
        Lines{"ERROR (line   19) - Incorrect Number of Line Items (2) For Keyword Submodel: Expecting 1"});
    EXPECT_EQ(named(" " + long41), Lines{"ERROR (line   19) - Sub Model Name Over 40 Characters Long"});
    EXPECT_EQ(named(" nc"), Lines{"ERROR (line   19) - Invalid Sub Model Name (\"nc\"); Reserved Word."});
    EXPECT_EQ(named(" S\n" + DYNAMIC + CLAMP + "[Submodel] S"),
              Lines{"ERROR (line   24) - SubModel Name Previously Defined (\"S\")"});

    const std::vector<std::pair<std::string, Lines>> types{
        {DYNAMIC, {}},
        {"", {"ERROR - Submodel 'S': Submodel_type Not Defined"}},
        {"Submodel_type\n", {"ERROR (line   22) - 'Submodel_type' Subparameter Missing Setting"}},
        {"Submodel_type = Bus_hold\n", {"ERROR (line   22) - Invalid Submodel_type Line"}},
        {"Submodel_type Bus hold\n",
         {"ERROR (line   22) - Incorrect Number of Line Items (3) For Submodel_type: Expecting 2"}},
        {"Submodel_type bus_hold\n",
         {"ERROR (line   22) - Invalid Submodel_type (\"bus_hold\") (try \"Bus_hold\")"}},
        {"Submodel_type Hold\n", {"ERROR (line   22) - Invalid Submodel_type (\"Hold\")"}},
        {DYNAMIC + HOLD, {"ERROR (line   23) - Submodel_type Already Defined For Submodel 'S'"}},
        {DYNAMIC + "submodel_type Bus_hold\n", {"ERROR (line   23) - Unknown Line Among Sub Model Data"}},
    };
    for (const auto& [lines, messages] : types) {
        EXPECT_EQ(OfSubmodel(lines + CLAMP), messages) << lines;
    }
    EXPECT_EQ(OfSubmodel(BACK + CLAMP, "3.2").front(),
              "ERROR (line   22) - Invalid Submodel_type (\"Fall_back\")");
}

TEST(Submodel, Keywords)
{
    EXPECT_EQ(
        OfSubmodel(DYNAMIC + CLAMP + SPEC + RISE),
        Lines{"ERROR (line   26) - [Submodel Spec] should be specified before other keywords for a model"});
    // A pulse table takes the place of the former, and its rules are those of a pulse.
    const std::string pulse = "0 0 0 0\n1n -1 -1 -1\n2n 0 0 0\n";
    EXPECT_EQ(OfSubmodel(DYNAMIC + SPEC + RISE + FALL + "[POWER Pulse Table]\n" + pulse +
                         "[POWER Pulse Table]\n" + pulse),
              Lines{"ERROR (line   30) - [POWER Pulse Table] Already Defined"});
    EXPECT_EQ(OfSubmodel(DYNAMIC + SPEC + RISE + FALL +
                         "[GND Pulse Table]\n0 0 0 0\n1n 0 0 0\n[GND Pulse Table]\n" + pulse),
              (Lines{"ERROR (line   29) - [GND Pulse Table] Already Defined",
                     "WARNING - Found some GND Pulse Table (Typical) offsets less than 0 for Table Beginning "
                     "at Line 29",
                     "WARNING - Found some GND Pulse Table (Minimum) offsets less than 0 for Table Beginning "
                     "at Line 29",
                     "WARNING - Found some GND Pulse Table (Maximum) offsets less than 0 for Table Beginning "
                     "at Line 29"}));
    // The slope of a table is that of an output's, whatever the submodel is.
    EXPECT_EQ(OfSubmodel(DYNAMIC + "[GND Clamp]\n-1 1m 1m 1m\n0 0 0 0\n"),
              Lines{"WARNING - Submodel S: GND Clamp has Decreasing Current"});
    EXPECT_EQ(OfSubmodel(DYNAMIC + CLAMP + CLAMP), Lines{"ERROR (line   26) - GND Clamp Already Defined"});
    EXPECT_EQ(OfSubmodel(DYNAMIC + CLAMP + "[Ramp]\ndV/dt_r 1/1n 1/1n 1/1n\n"),
              Lines{"ERROR - dV/dt_f Not Defined For Ramp Beginning on Line 26"});
    EXPECT_EQ(OfSubmodel(DYNAMIC + CLAMP + "[Falling Waveform]\nV_fixture = 0\n0 1 1 1\n1n 0 0 0\n"),
              Lines{"ERROR - R_fixture Not Defined For Falling Waveform Beginning on Line 26"});
    // A keyword of models ends the submodel, and its line has no owner.
    EXPECT_EQ(OfSubmodel(DYNAMIC + "[Voltage Range] 5 5 5\n"),
              (Lines{"ERROR - Submodel S: GND Pulse Table or POWER Pulse Table or GND Clamp or POWER Clamp "
                     "is required when Submodel_type is Dynamic_clamp",
                     "ERROR (line   23) - Orphan Model keyword."}));
    // A data line needs an open submodel.
    EXPECT_EQ(MessagesWith("rphan", Bare("[Submodel Spec]\nV_trigger_r 1 1 1\n")),
              (Lines{"ERROR (line    4) - Orphan Sub Model keyword.",
                     "ERROR (line    5) - Orphan data line keyword."}));
}

TEST(SubmodelSpec, Lines)
{
    const std::vector<std::pair<std::string, Lines>> cases{
        {SPEC + RISE + FALL, {}},
        {"[Submodel Spec] x\n" + RISE,
         {"ERROR (line   23) - Incorrect Number of Line Items (2) For Submodel Spec: Expecting 1"}},
        {SPEC, {"ERROR - Submodel S: Empty Submodel Spec"}},
        {SPEC + "V_trigger 1 1 1\n" + RISE, {"ERROR (line   24) - Unknown Line Among Sub Model Spec Data"}},
        {SPEC + RISE + RISE, {"ERROR (line   25) - V_trigger_r Already Defined For Submodel 'S'"}},
        {SPEC + "V_trigger_f NA 1 1\n", {"ERROR (line   24) - 'NA' not allowed for Typical value"}},
        {SPEC + RISE + SPEC + FALL,
         {"ERROR (line   25) - Sub Model Specification: Already Defined for this sub model"}},
    };
    for (const auto& [lines, messages] : cases) {
        EXPECT_EQ(OfSubmodel(DYNAMIC + lines + CLAMP), messages) << lines;
    }
}

TEST(SubmodelRules, WhatEachTypeNeeds)
{
    const std::string s = "Submodel S: ";
    const std::vector<std::pair<std::string, Lines>> cases{
        {HOLD + SPEC + RISE + FALL + OFF + PULLUP + RAMP, {}},
        {HOLD + PULLUP + RAMP, {s + "[Submodel Spec] is required when Submodel_type is Bus_hold"}},
        {HOLD + SPEC + OFF + PULLUP + PULLDOWN,
         {s + "[Submodel Spec] V_trigger_r is required when Submodel_type is Bus_hold",
          s + "[Submodel Spec] V_trigger_f is required when Submodel_type is Bus_hold",
          "SubModel S: Both Pullup and Pulldown cannot be specified when Off_delay is specified.",
          s + "[Ramp] is required when Submodel_type is Bus_hold"}},
        {HOLD + SPEC + RISE + FALL + RAMP,
         {s + "Either [Pullup] or [Pulldown] is required when Submodel_type is Bus_hold"}},
        {DYNAMIC + CLAMP, {}},
        {DYNAMIC,
         {s + "GND Pulse Table or POWER Pulse Table or GND Clamp or POWER Clamp is required when "
              "Submodel_type is Dynamic_clamp"}},
        {DYNAMIC + SPEC + RISE + OFF + "[GND Pulse Table]\n0 0 0 0\n1n 0 0 0\n",
         {s + "[Submodel Spec] V_trigger_f is required when GND_Pulse is specified",
          s + "[Submodel Spec] Off_delay  cannot be specified with Dynamic_clamp submodels"}},
        {DYNAMIC + "[POWER Pulse Table]\n0 0 0 0\n1n 0 0 0\n",
         {s + "[Submodel Spec] V_trigger_r is required when POWER_Pulse is specified"}},
        {BACK + SPEC + RISE + FALL + PULLDOWN + RAMP, {}},
        {BACK,
         {s + "[Submodel Spec] is required when Submodel_type is Fall_back",
          s + "Either [Pullup] or [Pulldown] is required when Submodel_type is Fall_back",
          s + "[Ramp] is required when Submodel_type is Fall_back"}},
        {BACK + SPEC + OFF + PULLUP + PULLDOWN + RAMP,
         {s + "[Submodel Spec] V_trigger_r is required when Submodel_type is Fall_back",
          s + "[Submodel Spec] V_trigger_f is required when Submodel_type is Fall_back",
          s + "Pullup and Pulldown  cannot both be specified with Fall_back submodels",
          s + "[Submodel Spec] Off_delay  cannot be specified with Fall_back submodels"}},
    };
    for (const auto& [lines, texts] : cases) {
        Lines expected;
        for (const std::string& text : texts) {
            expected.push_back("ERROR - " + text);
        }
        EXPECT_EQ(OfSubmodel(lines), expected) << lines;
    }
}

TEST(SubmodelRules, TriggersAgainstWaveforms)
{
    // What stands behind "WARNING - Submodel S: V_trigger_".
    const auto of = [](const std::string& spec, const std::string& waveforms) {
        Lines found = OfSubmodel(DYNAMIC + SPEC + spec + CLAMP + waveforms);
        std::erase_if(found,
                      [](const std::string& line) { return line.find("V_trigger_") == std::string::npos; });
        for (std::string& line : found) {
            line.erase(0, std::string_view("WARNING - Submodel S: V_trigger_").size());
        }
        return found;
    };
    const auto waveform = [](const std::string& edge, const std::string& start, const std::string& end) {
        return "[" + edge + " Waveform]\nR_fixture = 50\nV_fixture = 0\n0 " + start + "\n1n " + end + "\n";
    };
    const auto rising = [&](const std::string& start, const std::string& end) {
        return waveform("Rising", start, end);
    };
    const auto falling = [&](const std::string& start, const std::string& end) {
        return waveform("Falling", start, end);
    };
    const std::string riseStart = "is less than the start of Rising Waveform";
    const std::string riseEnd = "is greater than the end of Rising Waveform";
    const std::string fallStart = "is greater than the start of Falling Waveform";
    const std::string fallEnd = "is less than the end of Falling Waveform";
    // The triggers are 1.5 V, 1.4 V and 1.6 V, and the comparison is strict.
    EXPECT_EQ(of(RISE + FALL, rising("1.5 1.4 1.6", "1.5 1.4 1.6") + falling("1.5 1.4 1.6", "1.5 1.4 1.6")),
              Lines{});
    EXPECT_EQ(of(RISE, rising("1.51 1.41 1.61", "1.49 1.39 1.59")),
              (Lines{"r (Typ) " + riseStart, "r (Min) " + riseStart, "r (Max) " + riseStart,
                     "r (Typ) " + riseEnd, "r (Min) " + riseEnd, "r (Max) " + riseEnd}));
    EXPECT_EQ(of(FALL, falling("1.49 1.39 1.59", "1.51 1.41 1.61")),
              (Lines{"f (Typ) " + fallStart, "f (Min) " + fallStart, "f (Max) " + fallStart,
                     "f (Typ) " + fallEnd, "f (Min) " + fallEnd, "f (Max) " + fallEnd}));
    // "NA" on one side stands for the typical value of that side, on both sides nothing is compared.
    EXPECT_EQ(of("V_trigger_r 1.5 NA 1.0\n", rising("0 1.6 NA", "2 2 2")), Lines{"r (Min) " + riseStart});
    EXPECT_EQ(of("V_trigger_r 1.5 1.0 NA\n", rising("1.2 NA NA", "2 2 2")), Lines{"r (Min) " + riseStart});
    // A start, an end or a trigger of "NA" says nothing.
    EXPECT_EQ(of(RISE, rising("NA 9 9", "0 0 0") + rising("0 0 0", "NA 0 0")), Lines{});
    EXPECT_EQ(of("V_trigger_r NA 1 1\n", rising("9 9 9", "0 0 0")), Lines{});
    // Every waveform is looked at.
    EXPECT_EQ(
        of(RISE + FALL, rising("0 0 0", "2 2 2") + rising("2 0 0", "2 2 2") + falling("2 2 2", "0 0 2")),
        (Lines{"r (Typ) " + riseStart, "f (Max) " + fallEnd}));
}

TEST(SubmodelRules, InitialDelay)
{
    const std::string delays = "[Initial Delay]\nV-T 1n 1n 1n\nI-T 1n 1n 1n\n";
    EXPECT_EQ(OfSubmodel(DYNAMIC + CLAMP + delays, "6.1"),
              (Lines{"ERROR - SubModel S has [Initial Delay] sub parameter V-T specified but it has no "
                     "Rising or Falling Waveform",
                     "ERROR - SubModel S has [Initial Delay] sub parameter I-T specified but it has no "
                     "Composite Current Waveform"}));
    EXPECT_EQ(OfSubmodel(DYNAMIC + CLAMP + "[Initial Delay]\n", "6.1").size(), 1U);
}

TEST(AddSubmodel, NamesOfBothSides)
{
    const std::string submodels = "[Submodel] S\n" + DYNAMIC + CLAMP + "[Submodel] T\n" + DYNAMIC + CLAMP;
    EXPECT_EQ(Messages(Ibs(Model("M", "[Add Submodel]\nS All\ns All\n") + submodels)),
              (Lines{"WARNING - Submodel T is not referenced by any model [Add Submodel] keyword",
                     "ERROR - Could not find definition for Submodel s of Model M"}));
    EXPECT_EQ(Messages(Ibs(Model("M", "[Add Submodel]\nS All\n"))),
              Lines{"ERROR - Could not find definition for Submodel S of Model M"});
    ibis* const root = RootOf(Ibs(Model("M", "[Add Submodel]\nX All\nS All\n") + submodels));
    EXPECT_EQ(MDL_HasAddSubmodel(root->pModels, SUBMDL_Find("S", root->pSubmodels)), 1);
    EXPECT_EQ(MDL_HasAddSubmodel(root->pModels, SUBMDL_Find("T", root->pSubmodels)), 0);
    EXPECT_EQ(SUBMDL_Find("s", root->pSubmodels), nullptr);
}
