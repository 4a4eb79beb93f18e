#include "ibis/source/nuibis_testload.h"

#include "ibis/source/nuibis_ibis.h"
#include "tests/builders.h"

namespace
{

// Receivers R1 and R2 on a differential pair of pins, R3 and the driver D on pins of their own.
const std::string RECEIVERS =
    Component("U1", "1 S R1 1 1n 1p\n2 S R2 1 1n 1p\n3 S R3 1 1n 1p\n4 S D 1 1n 1p\n5 S GND 1 1n 1p\n",
              "[Diff Pin] inv_pin vdiff tdelay_typ\n1 2 0.1 NA\n") +
    Model("R1") + Model("R2") + Model("R3") + Driver("D");

// A [Test Load] named L on line 4 with these lines.
Lines LoadMessages(std::string_view lines, std::string_view keyword = "[Test Load] L")
{
    return Unfolded(
        Messages(Bare(std::string(keyword) + "\n" + std::string(lines) + "\n" + RECEIVERS, "4.2")));
}

const TESTLOAD* Load()
{
    ibis* root = nullptr;
    return IBIS_GetCurrent(&root) ? root->pTestLoads : nullptr;
}

const std::string SINGLE = "Test_load_type Single_ended\n";
const std::string PAIR = "Test_load_type Differential\n";

}  // namespace

// Every number is known under its name and has a place of its own: a second one is the only repeat.
TEST(TestLoad, Numbers)
{
    const std::string start = PAIR + "V_term1 1.5 1.4 1.6\nV_term2 2.5 NA 2.6\nReceiver_model R1\n"
                                     "Receiver_model_inv R2\n";
    std::string lines;
    for (const char* name :
         {"C1_near", "Rs_near", "Ls_near", "C2_near", "Rp1_near", "Rp2_near", "Td", "Zo", "Rp1_far",
          "Rp2_far", "C2_far", "Ls_far", "Rs_far", "C1_far", "R_diff_near", "R_diff_far"}) {
        lines += std::string(name) + "=1p\n";
        const Lines repeats =
            MessagesWith(" Already", Bare("[Test Load] L\n" + start + lines + name + " = 2\n"));
        ASSERT_EQ(repeats.size(), 1U) << name;
        EXPECT_TRUE(repeats[0].ends_with(") - " + std::string(name) + " Already Defined For Test Load"));
    }
    EXPECT_EQ(LoadMessages(start + lines), Lines{});
    EXPECT_EQ(*Load()->pdRp1_far, 1e-12);
    EXPECT_EQ(Load()->pV_term1->dMax, 1.6);
    EXPECT_EQ(Load()->pV_term2->eMin, NUM_NA);
}

TEST(TestLoad, Names)
{
    const std::string at = "ERROR (line    4) - ";
    EXPECT_EQ(LoadMessages(SINGLE, "[Test Load]"), (Lines{at + "'Test Load' Keyword Missing name"}));
    EXPECT_EQ(LoadMessages(SINGLE, "[Test Load] GND x"),
              (Lines{at + "Incorrect Number of Line Items (2) For Keyword Test Load: Expecting 1",
                     at + "Invalid Test Load Name (\"GND\"); Reserved Word."}));
    EXPECT_EQ(LoadMessages(SINGLE, "[Test Load] " + std::string(110, 'n'))[1],
              at + "Test Load Name Over 109 Characters Long");
    EXPECT_EQ(LoadMessages(SINGLE + "[Test Load] L\n" + SINGLE),
              (Lines{"ERROR (line    6) - TestLoad Name Previously Defined (\"L\")"}));
    EXPECT_EQ(LoadMessages(SINGLE + "[Diff Pin] x\nTd = 1n")[0],
              "ERROR (line    6) - Orphan Component keyword.");
}

TEST(TestLoad, Subparameters)
{
    const std::string at = "ERROR (line    6) - ";
    const std::string next = "ERROR (line    7) - ";
    const struct {
        std::string lines;
        Lines messages;
    } rows[] = {
        {"td = 1n", {at + "Unknown Line Among Test Load"}},
        {"Zo 50", {at + "Invalid Zo Line"}},
        {"Zo 50 60", {at + "Invalid Zo Line"}},
        {"Zo = 50 Ohm", {at + "Incorrect Number of Line Items (4) For Zo: Expecting 3"}},
        {"Zo = fifty", {at + "Invalid Zo Value (\"fifty\")"}},
        {"Zo = 50\nZo = 60", {next + "Zo Already Defined For Test Load"}},
        {"V_term1 NA 1 2", {at + "'NA' Not Allowed For Typical Value"}},
        {"V_term1 3 1 2", {"WARNING (line    6) - Typ value is not in between Min and Max "}},
        {"V_term2 1 1 1\nV_term2 2 2 2", {next + "V_term2 Already Defined For Test Load 'L'"}},
        {"Test_load_type Differential", {at + "Test_load_type Already Defined For Test Load 'L'"}},
        {"Receiver_model = R1", {at + "Invalid Receiver_model Line"}},
        {"Receiver_model", {at + "'Receiver_model' Subparameter Missing Setting"}},
        {"Receiver_model R1\nReceiver_model R2", {next + "Receiver_model Already Defined For Test Load 'L'"}},
        {"Receiver_model R1 R2", {at + "Incorrect Number of Line Items (3) For Receiver_model: Expecting 2"}},
        {"Receiver_model NC",
         {at + "Invalid Receiver_model (\"NC\"); Reserved Word.",
          "ERROR - Receiver_model 'NC' in Test Load 'L' is not defined in the file"}},
        {"Receiver_model " + std::string(41, 'm'),
         {at + "Receiver_model Name Over 40 Characters Long",
          "ERROR - Receiver_model '" + std::string(40, 'm') +
              "' in Test Load 'L' is not defined in the file"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(LoadMessages(SINGLE + row.lines), row.messages) << row.lines;
    }
    EXPECT_EQ(LoadMessages("Test_load_type differential\nTest_load_type Differential"),
              (Lines{"ERROR (line    5) - Invalid Test_load_type (\"differential\") (try \"Differential\")",
                     "ERROR (line    6) - Test_load_type Already Defined For Test Load 'L'"}));
    EXPECT_EQ(LoadMessages("Test_load_type Other"),
              (Lines{"ERROR (line    5) - Invalid Test_load_type (\"Other\")"}));
}

TEST(TestLoad, WhatBelongsTogether)
{
    const std::string error = "ERROR - Test Load 'L': ";
    const std::string warning = "WARNING - Test Load 'L' : ";
    const std::string type = " specified for Test_load_type which is not Differential";
    const std::string first = error + "V_term1 must be specified when Rp1_near or Rp1_far is specified";
    const std::string second = error + "V_term2 must be specified when Rp2_near or Rp2_far is specified";
    const struct {
        std::string lines;
        Lines messages;
    } rows[] = {
        {"", {error + "Test_load_type Not Defined"}},
        {SINGLE + "Td = 1n", {error + "If Td is specified then Zo must be specified also"}},
        {SINGLE + "Zo = 50", {}},
        {SINGLE + "Rp1_near = 50", {first}},
        {SINGLE + "Rp1_far = 50\nV_term2 1 1 1\nRp2_near = 50", {first}},
        {SINGLE + "Rp2_far = 50\nV_term1 1 1 1\nRp1_near = 50", {second}},
        {SINGLE + "R_diff_near = 1\nR_diff_far = 1\nReceiver_model_inv R2",
         {warning + "R_diff_near" + type, warning + "R_diff_far" + type,
          warning + "Receiver_model_inv" + type}},
        {PAIR + "R_diff_near = 1\nR_diff_far = 1\nReceiver_model_inv R2", {}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(LoadMessages(row.lines), row.messages) << row.lines;
    }
}

TEST(TestLoad, ModelsReceive)
{
    const std::string undefined = " in Test Load 'L' is not defined in the file";
    EXPECT_EQ(
        LoadMessages(PAIR + "Receiver_model X\nReceiver_model_inv Y"),
        (Lines{"ERROR - Receiver_model 'X'" + undefined, "ERROR - Receiver_model_inv 'Y'" + undefined}));
    EXPECT_EQ(
        LoadMessages(PAIR + "Receiver_model D\nReceiver_model_inv D"),
        (Lines{"WARNING - Driver_model 'D' in Test Load 'L' is not an input type.",
               "WARNING - Driver_model 'D' in Test Load 'L' is not an input type.",
               "WARNING - Receiver_model_inv 'D' in Test Load 'L' is not associated with a Differential "
               "Pin."}));
    EXPECT_EQ(
        LoadMessages(PAIR + "Receiver_model R3\nReceiver_model_inv R3"),
        (Lines{"WARNING - Receiver_model_inv 'R3' in Test Load 'L' is not associated with a Differential "
               "Pin."}));
    EXPECT_EQ(MessagesWith("Test Load", Bare("[Test Load] A\n" + PAIR + "[Test Load] B\n" + PAIR)),
              (Lines{"ERROR - Test Load 'B' references undefined models",
                     "ERROR - Test Load 'A' references undefined models"}));
}
