#include "ibis/source/nuibis_mdl.h"

#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_msg.h"
#include "ibis/source/nuibis_rng.h"
#include "tests/builders.h"

namespace
{

// What the subparameter lines of a model give; the first of them stands on line 14 of the file.
Lines Subparameters(std::string_view lines, std::string_view version = "4.2")
{
    Lines found = Unfolded(Messages(Ibs("[Model] M\n" + std::string(lines), version)));
    std::erase_if(found, [](const std::string& line) { return line.find("(line   ") == std::string::npos; });
    return found;
}

const nuibis_mdl* ReadModel(std::string_view lines, std::string_view version = "4.2")
{
    ReadHandle(Ibs("[Model] M\n" + std::string(lines), version));
    ibis* root = nullptr;
    IBIS_GetCurrent(&root);
    return root->pModels;
}

const std::string AT = "ERROR (line   14) - ";

}  // namespace

TEST(ModelName, LimitsReservedWordsAndRepeats)
{
    const auto names = [](const std::string& name, std::string_view version) {
        return Unfolded(
            MessagesWith("(line   13)", Ibs("[Model] " + name + "\nModel_type Input\n", version)));
    };
    const std::string at = "ERROR (line   13) - ";
    const std::string of25(25, 'm');
    EXPECT_EQ(names(of25, "3.2"), (Lines{at + "Model Name Over 20 Characters Long"}));
    EXPECT_EQ(names(of25, "4.0"), Lines{});
    EXPECT_EQ(names(std::string(41, 'm'), "4.0"), (Lines{at + "Model Name Over 40 Characters Long"}));
    EXPECT_EQ(names("power", "4.0"), (Lines{at + "Invalid Model Name (\"power\"); Reserved Word."}));
    EXPECT_EQ(names("", "4.0"),
              (Lines{at + "Incorrect Number of Line Items (0) For Keyword Model: Expecting 1"}));
    EXPECT_EQ(names("a b", "4.0"),
              (Lines{at + "Incorrect Number of Line Items (2) For Keyword Model: Expecting 1"}));
    EXPECT_EQ(MessagesWith("Previously", Ibs(Model("M") + Model("m") + Model("M"))),
              (Lines{"ERROR (line   27) - Model Name Previously Defined (\"M\")"}));
    EXPECT_EQ(MessagesWith("line", Bare("[Voltage Range] 1 1 1\nx\n")),
              (Lines{"ERROR (line    4) - Orphan Model keyword.",
                     "ERROR (line    5) - Orphan data line keyword."}));
}

TEST(ModelType, WordsAndVersions)
{
    const struct {
        const char* line;
        const char* version;
        Lines messages;
    } rows[] = {
        {"Model_type I/O", "4.2", {}},
        {"Model_type i/o", "4.2", {AT + "Invalid Model_type (\"i/o\") (try \"I/O\")"}},
        {"Model_type = I/O", "4.2", {AT + "Invalid Model_type Line"}},
        {"Model_type I/O x", "4.2", {AT + "Incorrect Number of Line Items (3) For Model_type: Expecting 2"}},
        {"Model_type", "4.2", {AT + "'Model_type' Subparameter Missing Setting"}},
        {"model_type I/O", "4.2", {AT + "Unknown Line Among Model Data"}},
        {"Model_type Terminator", "2.1", {}},
        {"Model_type Series", "2.1", {AT + "Invalid Model_type (\"Series\")"}},
        {"Model_type 3-state_ECL", "3.2", {}},
        {"Model_type I/O_diff", "3.2", {AT + "Invalid Model_type (\"I/O_diff\")"}},
        {"Model_type Input_diff", "4.0", {}},
        {"Model_type No Type",
         "4.2",
         {AT + "Incorrect Number of Line Items (3) For Model_type: Expecting 2"}},
        {"Polarity inverting", "4.2", {AT + "Invalid Polarity (\"inverting\") (try \"Inverting\")"}},
        {"Enable Active-Low", "4.2", {}},
        {"Enable Never", "4.2", {AT + "Invalid Enable (\"Never\")"}},
        {"Polarity Inverting\nPolarity Inverting",
         "4.2",
         {"ERROR (line   15) - Polarity Already Defined For Model 'M'"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Subparameters(std::string(row.line) + "\n", row.version), row.messages) << row.line;
    }
    EXPECT_EQ(ReadModel("Model_type i/o\n")->eModelType, MODEL_NO_TYPE);
    EXPECT_STREQ(MDL_TypeName(MODEL_INPUT_DIFF), "Input_diff");
    EXPECT_EQ(MDL_TypeName(MODEL_NO_TYPE), nullptr);
    EXPECT_EQ(MessagesWith("Model_type", Ibs("[Model] M\nVmeas = 1\n[Voltage Range] 1 1 1\n")),
              (Lines{"ERROR - Model 'M': Model_type Not Defined"}));
}

TEST(ModelScalar, LinesAndTypes)
{
    const struct {
        const char* lines;
        const char* version;
        Lines messages;
    } rows[] = {
        {"Vinl = 0.8\nVinh=2.0V", "4.2", {}},  // above Model_type: dropped without a word
        {"Model_type Output\nVinl = 1\nVinh = 1",
         "4.2",
         {"WARNING (line   15) - Vinl should not be specified for model type Output",
          "WARNING (line   16) - Vinh should not be specified for model type Output"}},
        {"Model_type Input\nVmeas = 1\nCref = 1p\nRref = 1\nVref = 1",
         "4.2",
         {"WARNING (line   15) - Vmeas should not be specified for model type Input",
          "WARNING (line   16) - Cref should not be specified for model type Input",
          "WARNING (line   17) - Rref should not be specified for model type Input",
          "WARNING (line   18) - Vref should not be specified for model type Input"}},
        {"Vmeas = 1", "4.2", {}},
        {"Rref_diff = 100",
         "4.2",
         {"WARNING (line   14) - Rreff_diff should not be specified for model type No Type"}},
        {"Model_type I/O\nCref_diff = 1p\nRref_diff = 1", "4.0", {}},
        {"Model_type I/O\nCref_diff = 1p\nRref_diff = 1",
         "3.2",
         {"ERROR (line   15) - Sub Parameter Cref_diff is valid only for IBIS version >= 4.1",
          "ERROR (line   16) - Sub Parameter Rref_diff is valid only for IBIS version >= 4.1"}},
        {"Vmeas 1.5", "4.2", {AT + "Invalid Vmeas Line"}},
        {"Vmeas =", "4.2", {AT + "Invalid Vmeas Line"}},
        {"Vmeas 1.5 2", "4.2", {AT + "Invalid Vmeas Line"}},
        {"Vmeas = 1.5 2", "4.2", {AT + "Incorrect Number of Line Items (4) For Vmeas: Expecting 3"}},
        {"Vmeas = x", "4.2", {AT + "Invalid Vmeas Value (\"x\")"}},
        {"Vmeas = 1V5", "4.2", {}},
        {"Vmeas = x\nVmeas = 1",
         "4.2",
         {AT + "Invalid Vmeas Value (\"x\")", "ERROR (line   15) - Vmeas Already Defined For Model 'M'"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Subparameters(std::string(row.lines) + "\n", row.version), row.messages) << row.lines;
    }
    EXPECT_EQ(ReadModel("Vinl = 1\nModel_type Input\n")->pdVinl, nullptr);
    EXPECT_EQ(*ReadModel("Vmeas = x\n")->pdVmeas, 0.0);
    EXPECT_EQ(*ReadModel("Vmeas 1 2\n")->pdVmeas, 0.0);
    EXPECT_EQ(*ReadModel("Vmeas = 1V5\n")->pdVmeas, 1.0);
}

TEST(ModelTriple, CapacitancesAndRanges)
{
    const struct {
        const char* lines;
        const char* version;
        Lines messages;
    } rows[] = {
        {"C_comp 5p 4p 6p", "2.1", {}},
        {"C_comp 5p NA NA", "2.1", {}},
        {"C_comp NA 4p 6p", "4.2", {AT + "'NA' Not Allowed For Typical Value"}},
        {"C_comp 5p 6p 4p",
         "4.2",
         {"WARNING (line   14) - Model M: C_comp min value is not the smallest value listed",
          "WARNING (line   14) - Model M: C_comp max value is not the largest value listed"}},
        {"C_comp 5p 4p 4.5p",
         "4.2",
         {"WARNING (line   14) - Typ value is not in between Min and Max ",
          "WARNING (line   14) - Model M: C_comp max value is not the largest value listed"}},
        {"C_comp_pullup 5p 4p 6p\nC_comp_gnd_clamp 1p 1p 1p",
         "3.2",
         {"ERROR (line   14) - Sub Parameter C_comp_pullup is valid only for IBIS version >= 4.0",
          "ERROR (line   15) - Sub Parameter C_comp_gnd_clamp is valid only for IBIS version >= 4.0"}},
        {"C_comp_pulldown 5p 4p\nC_comp_pulldown 1p 1p 1p",
         "4.0",
         {AT + "No maximum Value Was Provided for C_comp_pulldown",
          "ERROR (line   15) - C_comp_pulldown Already Defined For Model 'M'"}},
        {"[Voltage Range] NA 1 1\n[Voltage Range] 1 1 1\nx",
         "4.0",
         {AT + "'NA' Not Allowed For Typical Value",
          "ERROR (line   15) - Voltage Range Already Defined For Model 'M'",
          "ERROR (line   16) - Expecting Keyword.  Invalid Line"}},
        {"[TTgnd] 0 0 0\n[TTpower] -1n -1n -1n",
         "4.0",
         {"ERROR (line   15) - TTpower Typical value should be > 0",
          "ERROR (line   15) - TTpower Min value should be > 0",
          "ERROR (line   15) - TTpower Max value should be > 0"}},
        {"[TTgnd] -1n NA 1n", "4.0", {AT + "TTgnd Typical value should be > 0"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Subparameters(std::string(row.lines) + "\n", row.version), row.messages) << row.lines;
    }
    EXPECT_EQ(ReadModel("C_comp_pullup 1p 1p 1p\n", "3.2")->pCCompPullup, nullptr);
    const nuibis_mdl* const model = ReadModel(
        "[Initial Delay]\nV-T 1n 2n 3n\nI-T 1n NA NA\nother\nV-T 4n 4n 4n\n[GND Clamp Reference] 1 x 3\n");
    EXPECT_EQ(model->pVT->dTyp, 4e-9);
    EXPECT_EQ(model->pIT->eMin, NUM_NA);
    EXPECT_EQ(model->pGndClampRef->eMin, NUM_ABSENT);
    EXPECT_EQ(model->pGndClampRef->dMax, 3.0);
}

TEST(AddSubmodel, NamesAndModes)
{
    const auto lines = [](const std::string& text, const std::string& type = "Input") {
        return Subparameters("Model_type " + type + "\n[Add Submodel]\n" + text);
    };
    const std::string at = "ERROR (line   16) - ";
    EXPECT_EQ(lines("S1 All\nS2 Non-Driving\nS1 All\n"), Lines{});
    EXPECT_EQ(lines("S1\n"), (Lines{at + "Add Submodel Mode not found"}));
    EXPECT_EQ(lines("S1 all x\n"), (Lines{at + "Invalid Add Submodel Line. Expecting two items only",
                                          at + "Invalid Add Submodel Mode (\"all\") (try \"All\")"}));
    EXPECT_EQ(lines("gnd Some\n"), (Lines{at + "Invalid Submodel Name (\"gnd\"); Reserved Word.",
                                          at + "Invalid Add Submodel Mode (\"Some\")"}));
    EXPECT_EQ(lines(std::string(41, 's') + " All\n"),
              (Lines{at + "Add Submodel Name Over 40 Characters Long"}));
    EXPECT_EQ(lines("S1 Driving\n"), (Lines{at + "Driving mode is not valid for input model types"}));
    EXPECT_EQ(lines("S1 Non-Driving\n", "Open_sink"),
              (Lines{at + "Non-Driving mode is not valid for output model types"}));
    EXPECT_EQ(Subparameters("Model_type Series\n[Add Submodel] x\nS1 All\n[Add Submodel]\n"),
              (Lines{"ERROR (line   15) - Incorrect Number of Line Items (2) For Add Submodel: Expecting 1",
                     "ERROR (line   15) - Add Submodel is not allowed for Series or Series_switch models",
                     "ERROR (line   17) - Add sub model: Already Defined for this model",
                     "ERROR (line   17) - Add Submodel is not allowed for Series or Series_switch models"}));
}

TEST(ModelKeywords, VmeasLiesBetweenTheThresholds)
{
    MSG_SetSuppressCautions(false);
    const auto cautions = [](std::string_view values) {
        return MessagesWith(
            "CAUTION", Ibs("[Model] M\nModel_type I/O\n" + std::string(values) + "[Voltage Range] 3 3 3\n"));
    };
    EXPECT_EQ(cautions("Vinl = 1\nVinh = 2\nVmeas = 1.5\n"), Lines{});
    EXPECT_EQ(cautions("Vinl = 1\nVinh = 2\nVmeas = 1\n"), (Lines{"CAUTION - Vmeas is <= Vinl for model M"}));
    EXPECT_EQ(cautions("Vinl = 1\nVinh = 2\nVmeas = 2\n"), (Lines{"CAUTION - Vmeas is >= Vinh for model M"}));
    MSG_SetSuppressCautions(true);
}

// A stray end of a block is told and leaves the model open; a block left without its end is told too.
TEST(ModelKeywords, EndsOfBlocks)
{
    EXPECT_EQ(
        Subparameters(
            "Model_type Input\n[End Algorithmic Model]\nx\n[End EMI Model]\n[Voltage Range] 1 1 1\n", "5.1"),
        (Lines{"ERROR (line   15) - Orphan [End Algorithmic Model] keyword found",
               "ERROR (line   16) - Unknown Line Among Model Data",
               "ERROR (line   17) - Orphan [End EMI Model] keyword found"}));
}
