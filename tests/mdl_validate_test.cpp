#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_msg.h"
#include "tests/builders.h"

namespace
{

// What the check of a whole model says once the file is read.
Lines AtEnd(const std::string& model, std::string_view version = "5.1")
{
    ReadHandle(Ibs("[Model] M\n" + model, version));
    ibis* root = nullptr;
    IBIS_GetCurrent(&root);
    MSG_ClearContainer();
    MDL_Validate(*root->pModels);
    return Unfolded(StoredMessages());
}

const std::string C_COMP = "C_comp 5pF 4pF 6pF\n";
const std::string VOLTAGE = "[Voltage Range] 3.3 3.0 3.6\n";
const std::string INPUT = "Model_type Input\nVinl = 0.8\nVinh = 2.0\n";
const std::string RAMP = "[Ramp]\ndV/dt_r 1/1n 1/1n 1/1n\ndV/dt_f 1/1n 1/1n 1/1n\n";
const std::string M = "ERROR - Model 'M': ";

struct Row {
    std::string sModel;
    Lines messages;
};

void ExpectRows(std::initializer_list<Row> rows, std::string_view version = "5.1")
{
    for (const Row& row : rows) {
        EXPECT_EQ(AtEnd(row.sModel, version), row.messages) << row.sModel;
    }
}

Lines Both(const Lines& a, const Lines& b)
{
    Lines all = a;
    all.insert(all.end(), b.begin(), b.end());
    return all;
}

}  // namespace

TEST(ModelEnd, CapacitanceAndThresholds)
{
    const auto missing = [](const std::string& type, const std::string& item) {
        return "WARNING - Model 'M': Model_type '" + type + "' must have " + item + " set";
    };
    const std::string capacitance = "ERROR - Model M: One of C_comp, C_comp_pullup, C_comp_pulldown, "
                                    "C_comp_power_clamp, C_comp_gnd_clamp "
                                    "must be defined";
    ExpectRows({
        {INPUT + C_COMP + VOLTAGE, {}},
        {INPUT + "C_comp_gnd_clamp 1p 1p 1p\n" + VOLTAGE, {}},
        {INPUT + VOLTAGE, {capacitance}},
        {"Vinl = 1\nModel_type Input_ECL\nVinh = 2.0\n" + C_COMP + VOLTAGE, {missing("Input_ECL", "Vinl")}},
        {"Model_type I/O\nVmeas = 1\n" + C_COMP + VOLTAGE + RAMP,
         {missing("I/O", "Vinl"), missing("I/O", "Vinh")}},
        {"Model_type Input_diff\n" + C_COMP + VOLTAGE, {}},
        {"Model_type Input\nVinl = 2.1\nVinh = 2.0\n" + C_COMP + VOLTAGE,
         {"WARNING - Vinl > Vinh for model M"}},
        {"Model_type Input\nVinl = 2.0\nVinh = 2.0\n" + C_COMP + VOLTAGE, {}},
        {"Model_type Input\n" + C_COMP +
             "[Receiver Thresholds]\nVth = 1\nVinh_ac = 1\nVinh_dc = 1\nVinl_ac = 1\nVinl_dc = 1\nTslew_ac = "
             "1n\n" +
             VOLTAGE,
         {}},
    });
}

TEST(ModelEnd, TerminatorReferencesAndRamp)
{
    const std::string required = " Required when No Voltage Range is Specified";
    const auto onlyTerminator = [](const std::string& item) {
        return M + item + " is set when Model_type is not Terminator";
    };
    ExpectRows({
        {"Model_type Terminator\n" + C_COMP + VOLTAGE + "[Rgnd] 1 1 1\n[Rac] 1 1 1\n[Cac] 1p 1p 1p\n", {}},
        {INPUT + C_COMP + VOLTAGE + "[Rac] 1 1 1\n",
         {onlyTerminator("Rac"), M + "Cac must be defined when Rac is"}},
        {"Model_type Terminator\n" + C_COMP + VOLTAGE + "[Cac] 1p 1p 1p\n",
         {M + "Rac must be defined when Cac is"}},
        {INPUT + C_COMP + VOLTAGE + "[Cac] 1p 1p 1p\n[Rpower] 1 1 1\n[Rac] 1 1 1\n[Rgnd] 1 1 1\n",
         {onlyTerminator("Rgnd"), onlyTerminator("Rpower"), onlyTerminator("Rac"), onlyTerminator("Cac")}},
        {INPUT + C_COMP,
         {M + "Pullup Reference" + required, M + "Pulldown Reference" + required,
          M + "POWER Clamp Reference" + required, M + "GND Clamp Reference" + required}},
        {INPUT + C_COMP +
             "[Pullup Reference] 3 3 3\n[Pulldown Reference] 0 0 0\n[POWER Clamp Reference] 3 3 3\n"
             "[GND Clamp Reference] 0 0 0\n",
         {}},
        {C_COMP + VOLTAGE, {M + "Ramp Not Defined"}},
        {"Model_type I/O_diff\nRref_diff = 100\n" + C_COMP + VOLTAGE, {M + "Ramp Not Defined"}},
        {"Model_type Series\n" + C_COMP + VOLTAGE + "[R Series] 1 1 1\n" + RAMP,
         {M + "Ramp Not Allowed for Series and Series_switch"}},
    });
}

TEST(ModelEnd, Series)
{
    const std::string tables =
        "[Model Spec]\nS_overshoot_high 5 5 5\n[TTpower] 1n 1n 1n\n[GND Clamp]\n0 0 0 0\n"
        "1 1m 1m 1m\n[Pullup]\n0 0 0 0\n1 -1m -1m -1m\n";
    const auto refused = [](const std::string& type) {
        const std::string not_allowed = " is not allowed when Model_type is " + type;
        return Lines{M + "Pullup" + not_allowed, M + "GND_Clamp" + not_allowed, M + "TTpower" + not_allowed,
                     "WARNING - Model 'M': Model Spec" + not_allowed};
    };
    const std::string noOn = "ERROR - Model M is of type Series_switch. [On] keyword is required";
    const std::string noOff = "ERROR - Model M is of type Series_switch. [Off] keyword is required";
    ExpectRows({
        {"Model_type Series\n" + C_COMP + VOLTAGE, {}},
        {"Model_type Series\n" + C_COMP + tables + VOLTAGE + "[R Series] 1 1 1\n", refused("Series")},
        {"Model_type Series_switch\n" + C_COMP + VOLTAGE, {noOn, noOff}},
        {"Model_type Series_switch\n" + C_COMP + VOLTAGE + "[Off]\n[R Series] 1M 1M 1M\n", {noOn}},
        {"Model_type Series_switch\n" + C_COMP + tables + VOLTAGE + "[On]\n[R Series] 1 1 1\n",
         Both(refused("Series_switch"), {noOff})},
    });
    // The label of the set is that of its keyword, and empty for a plain Series model.
    const Lines empty = AtEnd("Model_type Series\n" + C_COMP + VOLTAGE + "[Rl Series] 1 1 1\n");
    const Lines on =
        AtEnd("Model_type Series_switch\n" + C_COMP + VOLTAGE + "[On]\n[Off]\n[R Series] 1 1 1\n");
    ASSERT_EQ(empty.size(), 2U);
    ASSERT_EQ(on.size(), 1U);
    EXPECT_EQ(empty[0].find("[On]"), std::string::npos);
    EXPECT_NE(on[0].find("[On]"), std::string::npos);
}

TEST(ModelEnd, ReceiverReference)
{
    const auto with = [](const std::string& word, const std::string& reference = "") {
        return AtEnd(INPUT + C_COMP + "[Receiver Thresholds]\nReference_supply " + word + "\n" + VOLTAGE +
                     reference);
    };
    const auto missing = [](const std::string& name) {
        return Lines{"ERROR - Model M: Receiver Thresholds use " + name +
                     " Reference which is not defined in this Model"};
    };
    EXPECT_EQ(with("Power_clamp_ref"), missing("POWER Clamp"));
    EXPECT_EQ(with("Gnd_clamp_ref"), missing("GND Clamp"));
    EXPECT_EQ(with("Pullup_ref"), missing("Pullup"));
    EXPECT_EQ(with("Pulldown_ref"), missing("Pulldown"));
    EXPECT_EQ(with("Ext_ref", "[Pullup Reference] 1 1 1\n"), missing("External"));
    EXPECT_EQ(with("Ext_ref", "[External Reference] 1 1 1\n"), Lines{});
    EXPECT_EQ(with("Gnd_clamp_ref", "[GND Clamp Reference] 0 0 0\n"), Lines{});
}

// A value counts in the model or in [Model Spec], whatever its status there; the differential load counts in
// the model only.
TEST(ModelEnd, TestLoad)
{
    const std::string vmeas = "WARNING - Model 'M': Vmeas timing test load parameter should be specified";
    const std::string three =
        "WARNING - Model 'M': Vmeas, Vref and Rref timing test load parameters should be specified";
    const std::string diff =
        "WARNING - Model 'M': Rref_diff or Cref_diff timing test load parameters should be specified";
    const auto load = [](const std::string& type, const std::string& values, const std::string& spec = "") {
        const std::string block = spec.empty() ? "" : "[Model Spec]\n" + spec;
        return AtEnd("Model_type " + type + "\n" + values + C_COMP + block + VOLTAGE + RAMP);
    };
    EXPECT_EQ(load("3-state", ""), (Lines{vmeas}));
    EXPECT_EQ(load("Output", "Vmeas = 1\n"), Lines{});
    EXPECT_EQ(load("Output", "", "Vmeas NA 1 1\n"), Lines{});
    EXPECT_EQ(load("Output", "Vmeas = x\n"), Lines{});
    EXPECT_EQ(load("Open_drain", "Vmeas = 1\n"), (Lines{three}));
    EXPECT_EQ(load("3-state_ECL", "Vmeas = 1\nRref = 50\n", "Vref 1 1 1\n"), Lines{});
    EXPECT_EQ(load("Open_source", "Vmeas = 1\nVref = 1\n"), (Lines{three}));
    EXPECT_EQ(load("Output_diff", "", "Rref_diff 100 100 100\n"), (Lines{diff}));
    EXPECT_EQ(load("3-state_diff", "Cref_diff = 1p\n"), Lines{});
}

TEST(ModelEnd, InitialDelay)
{
    const std::string head = INPUT + C_COMP + VOLTAGE;
    const std::string waveform =
        "[Falling Waveform]\nR_fixture = 50\nV_fixture = 3.3\n0 3.3 3.3 3.3\n1n 0 0 0\n";
    const std::string current = "[Composite Current]\n0 0 0 0\n1n 1m 1m 1m\n";
    const std::string delays = "[Initial Delay]\nV-T 0 0 0\nI-T NA 0 0\n";
    const std::string ahead = "ERROR - Model M has [Initial Delay] sub parameter ";
    const std::string noWaveform = ahead + "V-T specified but it has no Rising or Falling Waveform";
    const std::string noCurrent = ahead + "I-T specified but it has no Composite Current Waveform";
    ExpectRows({{head + delays, {noWaveform, noCurrent}},
                {head + waveform + delays, {noCurrent}},
                {head + waveform + waveform + current + delays, {}}},
               "6.1");
    ExpectRows({{head + delays, {}}}, "6.0");  // the older grammar is not looked at
}

// A model ends at whatever follows it, and each model is checked once.
TEST(ModelEnd, OncePerModel)
{
    const std::string model = "\nModel_type Input_diff\n" + VOLTAGE;
    EXPECT_EQ(Unfolded(MessagesWith("One of", Ibs("[Model] A" + model + "[Model] B" + model +
                                                  "[Model Selector] S\nA x\nB y\n"))),
              (Lines{"ERROR - Model A: One of C_comp, C_comp_pullup, C_comp_pulldown, C_comp_power_clamp, "
                     "C_comp_gnd_clamp must be defined",
                     "ERROR - Model B: One of C_comp, C_comp_pullup, C_comp_pulldown, C_comp_power_clamp, "
                     "C_comp_gnd_clamp must be defined"}));
}
