#include "ibis/source/nuibis_mspec.h"

#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_rng.h"
#include "tests/builders.h"

namespace
{

// A receiver with [Model Spec] on line 18 of the file and `lines` from line 19 on.
std::string Receiver(const std::string& lines, const std::string& thresholds = "Vinl = 0.8\nVinh = 2.0\n")
{
    return "[Model] M\nModel_type Input\n" + thresholds + "C_comp 5pF 4pF 6pF\n[Model Spec]\n" + lines +
           "[Voltage Range] 3.3 3.0 3.6\n";
}

Lines Spec(const std::string& lines, std::string_view version = "5.1")
{
    return Unfolded(Messages(Ibs(Receiver(lines), version)));
}

// What is said of items of a model of that type; the first of them stands on line 17.
Lines SpecOf(const std::string& type, const std::string& lines)
{
    return Unfolded(MessagesWith(
        "(line", Ibs("[Model] M\nModel_type " + type + "\nC_comp 5pF 4pF 6pF\n[Model Spec]\n" + lines)));
}

const mspec* ReadSpec(const std::string& lines)
{
    ReadHandle(Ibs(Receiver(lines)));
    ibis* root = nullptr;
    IBIS_GetCurrent(&root);
    return root->pModels->pModelSpec;
}

const std::string AT = "ERROR (line   19) - ";
const std::string UNKNOWN = AT + "Unknown Line Among Model Spec Data";
const std::string ON_18 = " for Model Spec defined on line 18";

std::string Below(const std::string& label)
{
    return "WARNING - " + label + " is less than zero" + ON_18;
}
std::string Above(const std::string& label)
{
    return "WARNING - " + label + " is greater than zero" + ON_18;
}
std::string NotGreater(const std::string& a, const std::string& b, const std::string& corner)
{
    return "WARNING - " + a + "(" + corner + ") is not greater than " + b + "(" + corner + ")" + ON_18;
}
std::string NotLess(const std::string& a, const std::string& b, const std::string& corner)
{
    return "WARNING - " + a + "(" + corner + ") is not less than " + b + "(" + corner + ")" + ON_18;
}
std::string Requires(const std::string& a, const std::string& b)
{
    return "ERROR - " + a + " requires " + b + " to be specified" + ON_18;
}

struct Row {
    const char* lines;
    Lines messages;
};

void ExpectRows(std::initializer_list<Row> rows)
{
    for (const Row& row : rows) {
        EXPECT_EQ(Spec(row.lines), row.messages) << row.lines;
    }
}

}  // namespace

TEST(ModelSpecLine, NamesOfEachVersion)
{
    const Lines unknown{UNKNOWN};
    EXPECT_EQ(Spec("S_overshoot_high 4 4 4\n", "3.2"), Lines{});
    EXPECT_EQ(Spec("Cref 1p 1p 1p\n", "3.2"), unknown);
    EXPECT_EQ(Spec("Weak_R 1k 1k 1k\n", "4.2"), unknown);
    EXPECT_EQ(Spec("D_overshoot_area_h 1 1 1\n", "4.2"), unknown);
    EXPECT_EQ(Spec("Weak_R 1k 1k 1k\nWeak_V 1 1 1\n", "5.0"), Lines{});
    EXPECT_EQ(Spec("vinh 1 1 1\n"), unknown);
}

TEST(ModelSpecLine, Values)
{
    ExpectRows({
        {"Vinh 2.0 1.9 2.1\nVinh 3 3 3\n", {"ERROR (line   20) - Vinh Already Defined For Model 'M'"}},
        {"Vinh NA 1.9 2.1\n", {AT + "'NA' not allowed for Typical value"}},
        {"Vinh 2.0\n",
         {AT + "No minimum Value Was Provided for Vinh", AT + "No maximum Value Was Provided for Vinh"}},
        {"Vinh 2.0 2.1 2.2\n", {"WARNING (line   19) - Typ value is not in between Min and Max "}},
        {"Vinh x 2 2\nVinh 2 2 2\n",
         {AT + "Invalid Typical Value (\"x\")",
          "ERROR (line   20) - Vinh Already Defined For Model 'M'"}},  // an unreadable item is given all the
                                                                       // same
    });
    EXPECT_EQ(ReadSpec("Vinh 2.0 1.9 2.1\nVinh 3 3 3\n")->pVinh->dTyp, 2.0);
    EXPECT_EQ(ReadSpec("Rref_diff 100 90 110\n")->pRrefDiff->dTyp, 100.0);  // refused in words only
}

TEST(ModelSpecLine, TypesOfModels)
{
    const auto wrong = [](int line, const std::string& name, const std::string& type) {
        return "WARNING (line   " + std::to_string(line) + ") - " + name +
               " should not be specified for model type " + type;
    };
    const std::string lines = "Vinl 1 1 1\nPulse_time 1n 1n 1n\nD_overshoot_time 1n 1n 1n\nVmeas 1 1 1\n"
                              "Rref_falling 1 1 1\nRref_diff 1 1 1\nWeak_V 1 1 1\nD_overshoot_area_l 1 1 1\n";
    EXPECT_EQ(SpecOf("I/O_ECL", lines), (Lines{wrong(22, "Rref_diff", "I/O_ECL")}));
    EXPECT_EQ(SpecOf("Input_ECL", lines),
              (Lines{wrong(20, "Vmeas", "Input_ECL"), wrong(21, "Rref_falling", "Input_ECL"),
                     wrong(22, "Rref_diff", "Input_ECL")}));
    EXPECT_EQ(SpecOf("Input_diff", lines),
              (Lines{wrong(17, "Vinl", "Input_diff"), wrong(18, "Pulse_time", "Input_diff"),
                     wrong(22, "Rref_diff", "Input_diff")}));
    EXPECT_EQ(SpecOf("Series", lines),
              (Lines{wrong(17, "Vinl", "Series"), wrong(18, "Pulse_time", "Series"),
                     wrong(19, "D_overshoot_time", "Series"), wrong(20, "Vmeas", "Series"),
                     wrong(21, "Rref_falling", "Series"), wrong(22, "Rref_diff", "Series"),
                     wrong(23, "Weak_V", "Series")}));
    EXPECT_EQ(MessagesWith("No Type", Ibs("[Model] M\n[Model Spec]\nVinh 1 1 1\nVmeas 1 1 1\n")),
              (Lines{wrong(15, "Vinh", "No Type")}));
}

TEST(ModelSpecBlock, KeywordAndPlace)
{
    const auto at = [](const std::string& ahead, const std::string& keyword) {
        return Unfolded(MessagesWith("(line", Ibs("[Model] M\nModel_type Input\n" + ahead + keyword + "\n")));
    };
    const Lines misplaced{"ERROR (line   16) - [Model Spec] should be specified immediately after all the "
                          "subparameters of a model and before the other keywords of a model"};
    EXPECT_EQ(at("[Voltage Range] 1 1 1\n", "[Model Spec]"), misplaced);
    EXPECT_EQ(at("", "[Model Spec] x"),
              (Lines{"ERROR (line   15) - Incorrect Number of Line Items (2) For Model Spec: Expecting 1"}));
    EXPECT_EQ(at("[External Reference] 1 1 1\n", "[Model Spec]"), Lines{});
    EXPECT_EQ(at("[Receiver Thresholds]\n", "[Model Spec]").size(), 1U);
    EXPECT_EQ(at("[ISSO_PU]\n0 0 0 0\n1 0 0 0\n", "[Model Spec]").size(), 1U);
    EXPECT_EQ(at("[Model Spec]\nVinh 9 9 9\n", "[Model Spec]\nVinh 1 1 1\n"),
              (Lines{"ERROR (line   17) - Model Specification: Already Defined for this model"}));
}

TEST(ModelSpecClose, Hysteresis)
{
    const std::string all = "Vinh+ 2 2 2\nVinh- 3 3 3\nVinl+ 1 1 1\nVinl- 0.5 0.5 0.5\n";
    EXPECT_EQ(Spec(all), Lines{});  // the wrong order of the first pair has a number without a text
    EXPECT_EQ(ReadSpec(all)->bHysteresis, 1U);
    EXPECT_EQ(Spec("Vinh+ 2 2 2\n"),
              (Lines{"WARNING - All  Hystereis Thresholds should be specified" + ON_18}));
    EXPECT_EQ(ReadSpec("Vinh+ 2 2 2\nVinh- 1 1 1\nVinl+ 1 1 1\n")->bHysteresis, 0U);
}

TEST(ModelSpecClose, Overshoot)
{
    ExpectRows({
        {"S_overshoot_high -1 -2 0\n", {Below("S_overshoot_high (Typ)"), Below("S_overshoot_high (Min)")}},
        // A corner without a number takes the typical value.
        {"S_overshoot_low 1 NA -1\n", {Above("S_overshoot_low (Typ)"), Above("S_overshoot_low (Min)")}},
        {"D_overshoot_high 4 4 4\n",
         {Requires("D_overshoot_high", "S_overshoot_high"),
          Requires("D_overshoot_high", "D_overshoot_time")}},
        {"S_overshoot_high 4 4 4\nD_overshoot_high 4 3 5\nD_overshoot_time 1n 1n 1n\n",
         {NotGreater("D_overshoot_high", "S_overshoot_high", "Typ"),
          NotGreater("D_overshoot_high", "S_overshoot_high", "Min")}},
        // A corner that stands in one of the two only is not compared, one of "NA" is.
        {"S_overshoot_high 4 NA\nD_overshoot_high 4 NA 1\nD_overshoot_time 1n 1n 1n\n",
         {AT + "No maximum Value Was Provided for S_overshoot_high",
          NotGreater("D_overshoot_high", "S_overshoot_high", "Typ"),
          NotGreater("D_overshoot_high", "S_overshoot_high", "Min")}},
        {"S_overshoot_high NA 4 4\nD_overshoot_high 1 1 1\nD_overshoot_time 1n 1n 1n\n",
         {AT + "'NA' not allowed for Typical value"}},
        {"D_overshoot_high NA 4 4\n", {AT + "'NA' not allowed for Typical value"}},
        {"D_overshoot_low 1 -2 -2\nS_overshoot_low -1 -1 -1\n",
         {"WARNING (line   19) - Typ value is not in between Min and Max ", Above("D_overshoot_low (Typ)"),
          NotLess("D_overshoot_low", "S_overshoot_low", "Typ"),
          Requires("D_overshoot_low", "D_overshoot_time")}},
        {"D_overshoot_area_h 1 1 1\nD_overshoot_area_l -1 -1 -1\n",
         {"ERROR - D_overshoot_ampl_h must be specified when D_overshoot_area_h is specified for [Model "
          "Spec] "
          "defined on line 18",
          Below("D_overshoot_area_l (Typ)"), Below("D_overshoot_area_l (Max)"),
          Below("D_overshoot_area_l (Min)"),
          "ERROR - D_overshoot_amp_l must be specified when D_overshoot_area_l is specified for [Model Spec] "
          "defined on line 18"}},
        {"D_overshoot_ampl_h -1 -1 1\nD_overshoot_ampl_l -1 -1 1\n",
         {Below("D_overshoot_ampl_h (Typ)"), Below("D_overshoot_ampl_h (Min)"),
          Below("D_overshoot_amp_l (Typ)"), Below("D_overshoot_amp_l (Min)")}},
        {"D_overshoot_time -1n -1n -1n\n", {"WARNING - orphan D_overshoot_time found" + ON_18}},
        {"D_overshoot_time -1n 1n 1n\nS_overshoot_low -1 -1 -1\nD_overshoot_low -2 -2 -2\n",
         {"WARNING (line   19) - Typ value is not in between Min and Max ", Below("D_overshoot_time (Typ)")}},
    });
}

TEST(ModelSpecClose, Pulses)
{
    const std::string time = "Pulse_time 1n 1n 1n\n";
    const std::string hysteresis = "Vinh+ 4 4 4\nVinh- 3 3 3\nVinl+ 1 1 1\nVinl- 0.5 0.5 0.5\n";
    const auto nowhere = [](const std::string& lines) {
        Lines found = Unfolded(Messages(Ibs(Receiver(lines, ""))));
        std::erase_if(found,
                      [](const std::string& line) { return line.find("Pulse_") == std::string::npos; });
        return found;
    };
    // The model's own Vinl of 0.8 and Vinh of 2.0 count for each corner that the pulse has.
    EXPECT_EQ(Spec(time + "Pulse_high 0.8 0.7\nPulse_low 2.0 1.9 2.1\n"),
              (Lines{"ERROR (line   20) - No maximum Value Was Provided for Pulse_high",
                     NotGreater("Pulse_high", "Vinl", "Typ"), NotGreater("Pulse_high", "Vinl", "Min"),
                     NotLess("Pulse_low", "Vinh", "Typ"), NotLess("Pulse_low", "Vinh", "Max")}));
    EXPECT_EQ(Spec(time + "Vinl 1 0.6 1.5\nPulse_high 1.1 0.7 1.4\n"),
              (Lines{NotGreater("Pulse_high", "Vinl", "Max")}));
    EXPECT_EQ(Spec(time + hysteresis + "Pulse_high 3 4 4\nPulse_low 1 0 0\n"),
              (Lines{"WARNING (line   24) - Typ value is not in between Min and Max ",
                     "WARNING (line   25) - Typ value is not in between Min and Max ",
                     NotGreater("Pulse_high", "Vinh-", "Typ"), NotLess("Pulse_low", "Vinl+", "Typ")}));
    // A threshold that was given and has no number keeps the model's own out.
    EXPECT_EQ(Spec(time + "Vinl NA 1 1\nPulse_high 0 0 0\n"),
              (Lines{"ERROR (line   20) - 'NA' not allowed for Typical value"}));
    EXPECT_EQ(
        nowhere("Pulse_high 1 1 1\nPulse_low 1 1 1\n"),
        (Lines{"ERROR - Pulse_high requires Pulse_time to be specified for Model Spec defined on line 16",
               "ERROR - Pulse_high requires Thresholds or Hysteresis Thresholds to be specified for Model "
               "Spec defined on line 16",
               "ERROR - Pulse_low requires Pulse_time to be specified for Model Spec defined on line 16",
               "ERROR - Pulse_low requires Thresholds or Hysteresis Thresholds to be specified for Model "
               "Spec defined on line 16"}));
    EXPECT_EQ(Spec("Pulse_time -1n -1n -1n\n"), (Lines{"WARNING - orphan Pulse_time found" + ON_18}));
    EXPECT_EQ(Spec("Pulse_time -1n 1n -2n\nPulse_high 3 3 3\n"),
              (Lines{Below("Pulse_time (Typ)"), Below("Pulse_time (Max)")}));
}

TEST(ModelSpecClose, EdgesAndWeakDrive)
{
    const auto driver = [](const std::string& lines) {
        std::string text = Driver("D");
        text.insert(text.find("[Voltage Range]"), "[Model Spec]\n" + lines);
        return Unfolded(Messages(Ibs(text)));
    };
    const std::string pair =
        "ERROR - (Weak_R and Weak_V) or (Weak_I and Weak_V) must be specified in Model Spec";
    EXPECT_EQ(driver("Vmeas 1 1 1\nVmeas_rising 1 1 1\nRref_falling 500 500 500\n"),
              (Lines{"ERROR - Vmeas_falling must be specified when Vmeas_rising is specified",
                     "ERROR - Vmeas must not be specified when Vmeas_rising is specified",
                     "ERROR - Rref_rising must be specified when Rref_falling is specified"}));
    EXPECT_EQ(
        driver("Cref 1 1 1\nCref_falling 1 1 1\nCref_rising 1 1 1\nVref_rising 1 1 1\nVref_falling 1 1 1\n"),
        (Lines{"ERROR - Cref must not be specified when Cref_rising is specified",
               "ERROR - Cref must not be specified when Cref_falling is specified"}));
    EXPECT_EQ(driver("Weak_R 1 1 1\nWeak_I 1 1 1\n"),
              (Lines{"ERROR - Weak_R and Weak_I cannot be specified together in Model Spec", pair, pair}));
    EXPECT_EQ(driver("Weak_V 1 1 1\n"), (Lines{pair}));
    EXPECT_EQ(driver("Weak_V 1 1 1\nWeak_I 1m 1m 1m\n"), Lines{});
}
