#include "ibis/source/nuibis_wvfrm.h"

#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_mdl.h"
#include "tests/builders.h"

namespace
{

// What waveforms give; the first line stands on line 19 of the file.
Lines Waveforms(std::string_view lines, std::string_view version = "5.1")
{
    return Unfolded(Messages(Ibs(Model("M", lines), version)));
}

const nuibis_mdl& ReadModel(std::string_view lines)
{
    ReadHandle(Ibs(Model("M", lines)));
    ibis* root = nullptr;
    IBIS_GetCurrent(&root);
    return *root->pModels;
}

// What a table outside of a model gives.
Lines Table(std::string_view openLabel, std::string_view label, WVFRM_Mode mode, const Lines& lines)
{
    wvfrm* list = nullptr;
    Lines messages = MessagesOf([&] {
        WVFRM_Open("[X]", list, openLabel);
        for (const std::string& line : lines) {
            WVFRM_Line(line, label);
        }
        WVFRM_Close(label, mode);
    });
    WVFRM_Free(list);
    return Unfolded(messages);
}

std::string Rows(int count)
{
    std::string rows;
    for (int i = 0; i < count; ++i) {
        rows += std::to_string(i) + "n 1 1 1\n";
    }
    return rows;
}

const std::string RISING = "[Rising Waveform]\nR_fixture = 50\nV_fixture = 0\n";
const std::string AT = "ERROR (line   22) - ";

}  // namespace

TEST(Waveform, Fixtures)
{
    const struct {
        const char* lines;
        Lines messages;
    } rows[] = {
        {"V_fixture_min=0.1\nV_fixture_max = 0.2V\nC_fixture = 1p\nL_fixture = 1n\nR_dut = 1\nL_dut = 1n\n"
         "C_dut = 1p",
         {}},
        {"R_dut 1", {AT + "Invalid R_dut line"}},
        {"R_dut : 1", {AT + "Invalid R_dut line"}},
        {"R_dut = 1 2", {AT + "Incorrect Number of Line Items (4) For R_dut: Expecting 3"}},
        {"R_dut = x", {AT + "Invalid R_dut Value (\"x\")"}},
        {"R_dut = 1k1",
         {"WARNING (line   22) - Suspicious Rising Waveform R_dut Value (\"1k1\"); Numeric in Scale"}},
        {"R_fixture = 60", {AT + "Duplicate definition for Rising Waveform R_fixture"}},
        {"R_dut\nR_dut = 1",
         {AT + "Invalid R_dut line", "ERROR (line   23) - Duplicate definition for Rising Waveform R_dut"}},
        {"r_dut = 1", {AT + "Unknown Line Among Rising Waveform Data"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Waveforms(RISING + row.lines + "\n0 0 0 0\n1n 1 1 1\n"), row.messages) << row.lines;
    }
    EXPECT_EQ(
        Waveforms("[Falling Waveform] x\nV_fixture = 1\nR_load = 50\n0 NA NA NA\n"),
        (Lines{"ERROR (line   19) - Incorrect Number of Line Items (2) For Falling Waveform: Expecting 1",
               "ERROR (line   21) - Unknown Line Among Falling Waveform Data",
               "ERROR - R_fixture Not Defined For Falling Waveform Beginning on Line 19",
               "ERROR - Require at least 2 Data Points for Falling Waveform Beginning at Line 19"}));
    const nuibis_mdl& model = ReadModel("[Falling Waveform]\n0 0 0 0\nV_fixture = 5\nR_fixture = x\n");
    EXPECT_EQ(*model.pFalling->pdVFixture, 5.0);
    EXPECT_EQ(*model.pFalling->pdRFixture, 0.0);  // given, though it could not be read
    EXPECT_EQ(model.pFalling->pdCDut, nullptr);
}

TEST(Waveform, TimesIncrease)
{
    const struct {
        const char* rows;
        Lines messages;
    } rows[] = {
        {"0 0 0 0\n1n NA NA NA\n2n 1 1 1", {}},
        {"0 0 0 0\n2n 1 1 1\n1n 1 1 1", {"ERROR (line   24) - Time value did not increase"}},
        {"0 0 0 0\n1n 1 1 1\n1n 1 1 1",
         {"WARNING (line   24) - Value 1.000000e-09 repeated in the First Column",
          "ERROR (line   24) - Time value did not increase"}},
        {"1n 0 0 0\nNA 1 1 1\n0.5n 1 1 1", {"ERROR (line   23) - 'NA' not allowed for Time value"}},
        {"1n 0 0 0\n5#n 0 0 0\n1n5 1 1 1",
         {"ERROR (line   23) - Unknown Line Among Rising Waveform Data",
          "WARNING (line   24) - Suspicious Time Rising Waveform Value (\"1n5\"); Numeric in Scale",
          "WARNING (line   24) - Value 1.000000e-09 repeated in the First Column",
          "ERROR (line   24) - Time value did not increase"}},
        {"0 0 0 0\n1n 1 1", {"ERROR (line   23) - No maximum Value Was Provided for Rising Waveform"}},
        {"0 0 0 0\n1n 1 1 1\nV_fixture = 1",
         {"ERROR (line   24) - V_fixture specified after beginning of timing data",
          "ERROR (line   24) - Duplicate definition for Rising Waveform V_fixture"}},
        {"0 NA 0 0\n1n 1 NA 1",
         {"ERROR - First Typical Value Cannot Be 'NA' for Rising Waveform Beginning at Line 19",
          "ERROR - Last Minimum Value Cannot Be 'NA' for Rising Waveform Beginning at Line 19"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Waveforms(RISING + row.rows + "\n"), row.messages) << row.rows;
    }
}

TEST(Waveform, LimitsOfRowsAndTables)
{
    EXPECT_EQ(Waveforms(RISING + Rows(1000)), Lines{});
    const std::string tooMany = "More than 1000 data points provided for Rising Waveform table";
    EXPECT_EQ(Waveforms(RISING + Rows(1002)),
              (Lines{"ERROR (line 1022) - " + tooMany, "ERROR (line 1023) - " + tooMany}));
    EXPECT_EQ(Waveforms(RISING + Rows(101), "3.2"),
              (Lines{"ERROR (line  122) - More than 100 data points provided for Rising Waveform table"}));

    // Rising and falling tables count separately, in whatever order they stand.
    const std::string rising = RISING + "0 0 0 0\n1n 1 1 1\n[Composite Current]\n0 0 0 0\n1n 0 0 0\n";
    const std::string falling = "[Falling Waveform]\nR_fixture = 50\nV_fixture = 1\n0 1 1 1\n1n 0 0 0\n";
    std::string tables;
    for (int i = 0; i < 100; ++i) {
        tables += rising + falling;
    }
    EXPECT_EQ(Waveforms(tables), Lines{});
    EXPECT_EQ(Waveforms(tables + rising + rising + falling),
              (Lines{"ERROR (line 1319) - More than 100 Rising Waveforms are defined",
                     "ERROR (line 1327) - More than 100 Rising Waveforms are defined",
                     "ERROR (line 1335) - More than 100 Falling Waveforms are defined"}));
    ibis* root = nullptr;
    ASSERT_EQ(IBIS_GetCurrent(&root), 1);
    int count = 0;
    for (wvfrm* table = root->pModels->pRising; table != nullptr; table = table->pNext) {
        EXPECT_NE(table->pComposite, nullptr);
        ++count;
    }
    EXPECT_EQ(count, 102);
}

TEST(CompositeCurrent, BelongsToTheWaveformBeforeIt)
{
    const std::string rows = "0 0 0 0\n1n 1 1 1\n";
    const std::string composite = "[Composite Current]\n";
    EXPECT_EQ(Waveforms("[Pullup]\n0 0 0 0\n1 0 0 0\n" + composite + "what is this\n"),
              (Lines{"ERROR (line   22) - [Composite Current] should be preceded by a [Rising Waveform] or "
                     "[Falling Waveform] section"}));
    EXPECT_EQ(Waveforms(RISING + rows + composite + "0 0 0 0\n" + composite + "0 0 0 0\n"),
              (Lines{"ERROR - Require at least 2 Data Points for Composite Current Waveform Beginning at "
                     "Line 24",
                     "ERROR (line   26) - [Composite Current] should be preceded by a [Rising Waveform] or "
                     "[Falling Waveform] section"}));
    const nuibis_mdl& model = ReadModel(RISING + rows + composite + rows + RISING + rows +
                                        "[Falling Waveform]\n" + composite + "5n 5 5 5\n");
    EXPECT_EQ(model.pRising->pComposite->pRows->pNext->dTyp, 1.0);
    EXPECT_EQ(model.pRising->pNext->pComposite, nullptr);
    EXPECT_EQ(model.pFalling->pComposite->pRows->dFirst, 5e-9);
}

TEST(CompositeCurrent, SameTimes)
{
    const auto same = [](const std::string& waveform, const std::string& composite) {
        const nuibis_mdl& model = ReadModel(RISING + waveform + "\n[Composite Current]\n" + composite + "\n");
        return MessagesOf(
            [&] { WVFRM_SameTimes(model.pRising, model.pRising->pComposite, 3, "M", "Rising"); });
    };
    // Cautions are silent unless they are asked for.
    MSG_SetSuppressCautions(false);
    const Lines differ{"CAUTION - Model M: Rising Waveform [3] and its Composite Current don't have "
                       "identical time points"};
    EXPECT_EQ(same("0 0 0 0\n1n 1 1 1", "0 0 0 0\n1.0000005n 1 1 1"), Lines{});
    EXPECT_EQ(Unfolded(same("0 0 0 0\n1n 1 1 1", "0 0 0 0\n1.000002n 1 1 1")), differ);
    EXPECT_EQ(Unfolded(same("0 0 0 0\n1n 1 1 1", "1f 0 0 0\n1n 1 1 1")), differ);
    EXPECT_EQ(Unfolded(same("0 0 0 0\n1n 1 1 1", "0 0 0 0")), differ);
    EXPECT_EQ(Unfolded(same("0 0 0 0\nNA 1 1 1", "0 0 0 0\n1n 1 1 1")), differ);
    MSG_SetSuppressCautions(true);
}

TEST(PulseTable, StartsAndEndsAlikeOnOneSideOfZero)
{
    const struct {
        const char* label;
        Lines lines;
        Lines messages;
    } rows[] = {
        {"GND Pulse Table", {"0 0 0 0", "1n 1 1 1", "2n 0 0 0"}, {}},
        {"POWER Pulse Table", {"0 0 NA 0", "1n -1 NA -1", "2n 0 NA 0"}, {}},
        {"GND Pulse Table",
         {"0 0 1 NA", "1n -1 -1 NA", "2n 0.5 2 NA"},
         {"ERROR - First Typical Value should be the same as the Last for GND Pulse Table Waveform Beginning "
          "at Line 0",
          "ERROR - First Minimum Value should be the same as the Last for GND Pulse Table Waveform Beginning "
          "at Line 0",
          "WARNING - Found some GND Pulse Table (Typical) offsets less than 0 for Table Beginning at Line 0",
          "WARNING - Found some GND Pulse Table (Minimum) offsets less than 0 for Table Beginning at Line "
          "0"}},
        {"POWER Pulse Table",
         {"R_fixture = 1", "0 0 0 1"},
         {"ERROR - Require at least 2 Data Points for POWER Pulse Table Waveform Beginning at Line 0",
          "WARNING - Found some POWER Pulse Table (Maximum) offsets greater than 0 for Table Beginning at "
          "Line 0"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Table("GND Pulse", row.label, WVFRM_PULSE, row.lines), row.messages) << row.lines[0];
    }
    Lines manyRows;
    for (int i = 0; i < 101; ++i) {
        manyRows.push_back(std::to_string(i) + " 0 0 0");
    }
    EXPECT_EQ(Table("GND Pulse", "GND Pulse Table", WVFRM_PULSE, manyRows),
              (Lines{"ERROR (line    0) - More than 100 data points provided for GND Pulse Table table"}));
}

TEST(GoldenWaveform, HasNoFixture)
{
    EXPECT_EQ(Table("Diff Rising Waveform Far", "Diff Rising Waveform Far", WVFRM_GOLDEN,
                    {"R_fixture = 50", "0 0 0 0", "1n -1 1 1", "1n 1 1 1"}),
              (Lines{"ERROR (line    0) - SubParameters are not allowed in Golden Waveforms",
                     "WARNING (line    0) - Value 1.000000e-09 repeated in the First Column",
                     "ERROR (line    0) - Time value did not increase"}));
}
