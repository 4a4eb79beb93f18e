#include "ibis/source/nuibis_testdata.h"

#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_wvfrm.h"
#include "tests/builders.h"

namespace
{

const std::string TABLE = "0 0 NA NA\n1n 1 NA NA\n";
const std::string WAVE = "[Rising Waveform Near]\n" + TABLE;
const std::string DIFF_WAVE = "[Diff Falling Waveform Far]\n" + TABLE;

// Drivers D1 and D2 on a differential pair of pins, D3 and the receiver R on pins of their own.
const std::string DRIVERS =
    Component("U1", "1 S D1 1 1n 1p\n2 S D2 1 1n 1p\n3 S D3 1 1n 1p\n4 S R 1 1n 1p\n5 S GND 1 1n 1p\n",
              "[Diff Pin] inv_pin vdiff tdelay_typ\n1 2 0.1 NA\n") +
    Driver("D1") + Driver("D2") + Driver("D3") + Model("R");
const std::string LOADS = "[Test Load] L\nTest_load_type Single_ended\n[Test Load] LD\nTest_load_type "
                          "Differential\n";

// A file whose line 4 is the first of `data`.
Lines DataMessages(std::string_view data, std::string_view version = "4.2")
{
    return Unfolded(Messages(Bare(std::string(data) + LOADS + DRIVERS, version)));
}

const TESTDATA* Data()
{
    ibis* root = nullptr;
    return IBIS_GetCurrent(&root) ? root->pTestData : nullptr;
}

const std::string NAME = "[Test Data] T\n";
const std::string SINGLE = "Test_data_type Single_ended\nDriver_model D1\nTest_load L\n";
const std::string PAIR = "Test_data_type Differential\nDriver_model D1\nDriver_model_inv D2\nTest_load LD\n";

}  // namespace

TEST(TestData, CleanRecords)
{
    EXPECT_EQ(DataMessages(NAME + SINGLE + WAVE + "[Test Data] U\n" + PAIR + DIFF_WAVE), Lines{});
    EXPECT_EQ(DataMessages(NAME + SINGLE + WAVE, "6.0"), Lines{});
    EXPECT_EQ(DataMessages(NAME, "3.2")[0], "ERROR (line    4) - Invalid Keyword: Test_Data");
    EXPECT_EQ(Unfolded(Messages(Header("4.2", "t.pkg") + NAME + SINGLE + "[End]\n", "t.pkg"))[0],
              "ERROR (line    4) - Illegal keyword for a '.pkg' file.");
}

TEST(TestData, Names)
{
    const std::string rest = "\n" + SINGLE + WAVE;
    const std::string at = "ERROR (line    4) - ";
    const std::string longest(109, 'n');
    const struct {
        std::string keyword;
        Lines messages;
        std::string stored;
    } rows[] = {
        {"[Test Data]", {at + "'Test Data' Keyword Missing name"}, ""},
        {"[Test Data] a b c",
         {at + "Incorrect Number of Line Items (3) For Keyword Test Data: Expecting 1"},
         "a"},
        {"[Test Data]" + longest, {}, longest},
        {"[Test Data] nc", {at + "Invalid Test Data Name (\"nc\"); Reserved Word."}, "nc"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(DataMessages(row.keyword + rest), row.messages) << row.keyword;
        EXPECT_EQ(Data()->szName, row.stored);
    }
    // A name that is too long makes its line too long as well.
    EXPECT_EQ(DataMessages("[Test Data]" + longest + "n" + rest)[1],
              at + "Test Data Name Over 109 Characters Long");
    EXPECT_EQ(Data()->szName, longest);
    const std::string one = NAME + SINGLE + WAVE;
    const std::string repeated = ") - TestData Name Previously Defined (\"T\")";
    EXPECT_EQ(
        DataMessages(one + one + one),
        (Lines{"ERROR (line   11" + repeated, "ERROR (line   18" + repeated, "ERROR (line   18" + repeated}));
}

TEST(TestData, Subparameters)
{
    const std::string at = "ERROR (line    5) - ";
    const std::string next = "ERROR (line    6) - ";
    const std::string name(41, 'm');
    const struct {
        std::string lines;
        Lines messages;
    } rows[] = {
        {"Driver", {at + "Unknown Line Among Test Data"}},
        {"Test_data_type", {at + "'Test_data_type' Subparameter Missing Setting"}},
        {"Test_data_type = Differential", {at + "Invalid Test_data_type Line"}},
        {"Test_data_type Differential x",
         {at + "Incorrect Number of Line Items (3) For Test_data_type: Expecting 2"}},
        {"Test_data_type single_ended",
         {at + "Invalid Test_data_type (\"single_ended\") (try \"Single_ended\")"}},
        {"Test_data_type Both", {at + "Invalid Test_data_type (\"Both\")"}},
        {"Test_data_type x\nTest_data_type Differential",
         {at + "Invalid Test_data_type (\"x\")", next + "Test_data_type Already Defined For Test Data 'T'"}},
        {"Driver_model", {at + "'Driver_model' Subparameter Missing Setting"}},
        {"Driver_model = D1", {at + "Invalid Driver_model Line"}},
        {"Driver_model_inv a b",
         {at + "Incorrect Number of Line Items (3) For Driver_model_inv: Expecting 2"}},
        {"Driver_model a\nDriver_model b", {next + "Driver_model Already Defined For Test Data 'T'"}},
        {"Driver_model " + name, {at + "Driver_model Name Over 40 Characters Long"}},
        {"Driver_model POWER", {at + "Invalid Driver_model (\"POWER\"); Reserved Word."}},
        {"Test_load na", {at + "Invalid Test_load (\"na\"); Reserved Word."}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Unfolded(MessagesWith("(line", Bare(NAME + row.lines + "\n" + WAVE))), row.messages)
            << row.lines;
    }
    Messages(Bare(NAME +
                  "Test_data_type x\nTest_data_type Differential\nDriver_model a\nDriver_model b\n"
                  "Driver_model_inv " +
                  name + "\n" + WAVE));
    EXPECT_EQ(Data()->eTestDataType, FIXTURE_NO_TYPE);
    EXPECT_STREQ(Data()->szDriverModel, "a");
    EXPECT_EQ(Data()->szDriverModelInv, name.substr(1));
}

TEST(TestData, EndOfARecord)
{
    const std::string start = "ERROR - Test Data 'T': ";
    const std::string nothing = start + "At least one Rising/Falling Waveform must be specified";
    EXPECT_EQ(DataMessages(NAME),
              (Lines{start + "Test_data_type Not Defined", start + "Driver_model Not Defined",
                     start + "Test_load Not Defined", nothing}));
    EXPECT_EQ(DataMessages(NAME + WAVE),
              (Lines{start + "Test_data_type Not Defined", start + "Driver_model Not Defined",
                     start + "Test_load Not Defined"}));
    EXPECT_EQ(DataMessages(NAME + SINGLE), (Lines{nothing}));
    EXPECT_EQ(DataMessages(NAME + SINGLE + DIFF_WAVE),
              (Lines{start + "Differential Rising/Falling Waveform can be specified only with Differential "
                             "Test_data_type"}));
    EXPECT_EQ(DataMessages(NAME + SINGLE + "Driver_model_inv D2\n" + WAVE),
              (Lines{start + "Driver_model_inv can only be specified with Differential Test_data_type"}));
    EXPECT_EQ(DataMessages(WAVE)[0], "ERROR (line    4) - Orphan Test Data keyword.");
    EXPECT_EQ(DataMessages(WAVE)[1], "ERROR (line    5) - Orphan data line keyword.");
}

// Each table has a place of its own, is closed when its keyword is left, and gives way to a second one.
TEST(TestData, GoldenWaveforms)
{
    std::string all;
    for (const std::string name :
         {"Rising Waveform Near", "Falling Waveform Near", "Rising Waveform Far", "Falling Waveform Far",
          "Diff Rising Waveform Near", "Diff Falling Waveform Near", "Diff Rising Waveform Far",
          "Diff Falling Waveform Far"}) {
        const std::string keyword = "[" + name + "]\n";
        all += keyword + TABLE;
        EXPECT_EQ(
            DataMessages(NAME + PAIR + keyword + TABLE + keyword + "0 0 NA NA\nR_fixture = 50\n"),
            (Lines{"ERROR (line   12) - [" + name + "] Already Defined",
                   "ERROR (line   14) - SubParameters are not allowed in Golden Waveforms",
                   "ERROR - Require at least 2 Data Points for " + name + " Waveform Beginning at Line 12"}));
    }
    EXPECT_EQ(DataMessages(NAME + PAIR + all), Lines{});
    ASSERT_NE(Data()->pDiffFallingFar, nullptr);
    EXPECT_EQ(Data()->pDiffFallingFar->pRows->pNext->dFirst, 1e-9);
}

TEST(TestData, ModelsAndLoads)
{
    const auto record = [](std::string_view model, std::string_view inverse, std::string_view load) {
        return NAME + "Test_data_type Differential\nDriver_model " + std::string(model) +
               "\nDriver_model_inv " + std::string(inverse) + "\nTest_load " + std::string(load) + "\n" +
               WAVE;
    };
    const std::string output = " in Test Data 'T' is not an output type.";
    const std::string undefined = " in Test Data 'T' is not defined in the file";
    const std::string unpaired = " in Test Data 'T' is not associated with a Differential Pin.";
    EXPECT_EQ(DataMessages(record("D3", "D2", "LD")), Lines{});
    EXPECT_EQ(DataMessages(record("X", "Y", "Z")),
              (Lines{"ERROR - Driver_model 'X'" + undefined, "ERROR - Driver_model_inv 'Y'" + undefined,
                     "ERROR - Test Load 'Z' referenced in Test Data 'T' is not defined in the file"}));
    EXPECT_EQ(
        DataMessages(record("R", "R", "L")),
        (Lines{"WARNING - Driver_model 'R'" + output, "WARNING - Driver_model 'R'" + output,
               "WARNING - Driver_model_inv 'R'" + unpaired,
               "ERROR - Test_data_type in Test Data 'T' is not the same as Test_load_type in referenced "
               "Test Load 'L'"}));
    EXPECT_EQ(DataMessages(record("D1", "D3", "LD")), (Lines{"WARNING - Driver_model_inv 'D3'" + unpaired}));
    EXPECT_EQ(
        MessagesWith("Test Data", Bare(record("D1", "D2", "LD") + "[Test Data] U\n" + PAIR + DIFF_WAVE)),
        (Lines{"ERROR - Test Data 'U' references undefined models",
               "ERROR - Test Data 'U' references undefined Test Loads",
               "ERROR - Test Data 'T' references undefined models",
               "ERROR - Test Data 'T' references undefined Test Loads"}));
}

// A selector on a pin of a pair pairs its models too, and the later of two loads of one name is the one
// meant.
TEST(TestData, SelectorsPairAndTheLastNameCounts)
{
    const std::string selector = "[Component] U2\n[Manufacturer] A\n[Package]\nR_pkg 1 1 1\nL_pkg 1n 1n 1n\n"
                                 "C_pkg 1p 1p 1p\n[Pin] signal_name model_name\nA S SEL\nB S SEL\n[Diff Pin] "
                                 "inv_pin vdiff tdelay_typ\nA B 0.1 NA\n[Model Selector] SEL\nD3 x\nD1 y\n";
    const std::string load = "[Test Load] L\nTest_load_type Differential\n";
    EXPECT_EQ(MessagesWith("Test", Bare(NAME +
                                        "Test_data_type Differential\nDriver_model D1\nDriver_model_inv D3\n"
                                        "Test_load L\n" +
                                        WAVE + LOADS + load + DRIVERS + selector)),
              (Lines{"ERROR (line   16) - TestLoad Name Previously Defined (\"L\")"}));
}
