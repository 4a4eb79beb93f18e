#include "ibis/source/nuibis_crv.h"

#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_mdl.h"
#include "tests/builders.h"

#include <cmath>
#include <memory>
#include <optional>
#include <random>

namespace
{

// What a table of a clean receiver gives; the first line stands on line 19 of the file.
Lines Table(std::string_view lines, std::string_view version = "5.1")
{
    return Unfolded(Messages(Ibs(Model("M", lines), version)));
}

std::string Rows(int count)
{
    std::string rows;
    for (int i = 0; i < count; ++i) {
        const std::string value = std::to_string(i);
        rows += value + " " + value + "m " + value + "m " + value + "m\n";
    }
    return rows;
}

struct FreeDouble {
    void operator()(double* p) const { CMN_Free(p); }
};

using Value = std::optional<double>;
using Values = std::array<Value, 3>;

Values Interpolate(const crv* table, double x)
{
    std::array<double*, 3> out{};
    CRV_Interpolate(table, x, &out[0], &out[1], &out[2]);
    Values values;
    for (std::size_t i = 0; i < out.size(); ++i) {
        if (const std::unique_ptr<double, FreeDouble> owner(out[i]); owner != nullptr) {
            values[i] = *owner;
        }
    }
    return values;
}

}  // namespace

TEST(TableRow, FieldsAndValues)
{
    const struct {
        const char* lines;
        Lines messages;
    } rows[] = {
        {"[Pulldown]\n0 0 0 0\n1 1m 1m 1m\n", {}},
        {"[Pulldown] x y\n0 0 0 0\n1 1m 1m 1m\n",
         {"ERROR (line   19) - Incorrect Number of Line Items (3) For Pulldown: Expecting 1"}},
        {"[Pulldown]\n0 0 0 0\n1 1m 1m 1m 1m\n",
         {"ERROR (line   21) - Incorrect Number of Line Items (5) For Pulldown: Expecting 4"}},
        {"[Pulldown]\n0 0 0 0\n1 1m 1m\n2 2m\n3\n",
         {"ERROR (line   21) - No maximum Value Was Provided for Pulldown",
          "ERROR (line   22) - No minimum Value Was Provided for Pulldown",
          "ERROR (line   22) - No maximum Value Was Provided for Pulldown",
          "ERROR (line   23) - No typical Value Was Provided for Pulldown",
          "ERROR (line   23) - No minimum Value Was Provided for Pulldown",
          "ERROR (line   23) - No maximum Value Was Provided for Pulldown"}},
        {"[Pullup]\n1# 0 0 0\n1 - 1u2 x\n",
         {"ERROR (line   20) - Invalid Voltage Value (\"1#\")",
          "ERROR (line   21) - Invalid Typical Value (\"-\")",
          "WARNING (line   21) - Suspicious Minimum Pullup Value (\"1u2\"); Numeric in Scale",
          "ERROR (line   21) - Invalid Maximum Value (\"x\")"}},
        {"[GND Clamp]\nNA 0 0 0\n1 0 0 0\n", {"ERROR (line   20) - Voltage Value Cannot Be 'NA'"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Table(row.lines), row.messages) << row.lines;
    }
}

TEST(TableRow, RepeatsAreTheValuesThatStandThereWhateverTheirStatus)
{
    const auto repeats = [](const std::string& lines) {
        return MessagesWith("repeated", Ibs(Model("M", "[Pulldown]\n" + lines)));
    };
    EXPECT_EQ(repeats("1 0 0 0\n2 0 0 0\n1 0 0 0\n1000m 0 0 0\n2 0 0 0\n"),
              (Lines{"WARNING (line   22) - Value 1.000000e+00 repeated in the First Column",
                     "WARNING (line   23) - Value 1.000000e+00 repeated in the First Column",
                     "WARNING (line   23) - Value 1.000000e+00 repeated in the First Column",
                     "WARNING (line   24) - Value 2.000000e+00 repeated in the First Column"}));
    EXPECT_EQ(repeats("0 0 0 0\n-0 0 0 0\nNA 0 0 0\nnan 0 0 0\nnan 0 0 0\n"),
              (Lines{"WARNING (line   21) - Value -0.000000e+00 repeated in the First Column",
                     "WARNING (line   22) - Value 0.000000e+00 repeated in the First Column",
                     "WARNING (line   22) - Value 0.000000e+00 repeated in the First Column"}));
}

// The repeats that are found without a walk are those that a walk finds, on lists that are built in turns
// too.
TEST(TableRow, RepeatsAreThoseOfAWalk)
{
    std::mt19937 random(7);
    for (int trial = 0; trial < 200; ++trial) {
        std::array<rngp*, 2> lists{};
        for (int i = 0; i < 40; ++i) {
            rngp*& head = lists[trial % 2 == 0 ? 0 : random() % 8 / 7];
            rngp* row = nullptr;
            ASSERT_EQ(RNGP_Create(&row), 1);
            // Mostly rising, then falling, with a look back now and then.
            const int step = trial % 3 == 0 ? -i : i;
            row->dFirst = random() % 16 == 0 ? std::nan("") : random() % 8 == 0 ? step / 2 : step;
            std::size_t expected = 0;
            unsigned length = 1;
            const rngp* last = nullptr;
            for (const rngp* p = head; p != nullptr; last = p, p = p->pNext, ++length) {
                expected += p->dFirst == row->dFirst ? 1 : 0;
            }
            unsigned count = 0;
            EXPECT_EQ(MessagesOf([&] { RNGP_Append(head, row, &count, true); }).size(), expected);
            EXPECT_EQ(count, length);
            EXPECT_EQ(row->pPrev, last);
        }
        RNGP_FreeRows(lists[0]);
        RNGP_FreeRows(lists[1]);
    }
}

TEST(Table, LimitOfRowsIsToldOnceAndRowsStay)
{
    EXPECT_EQ(Table("[Pulldown]\n" + Rows(100)), Lines{});
    EXPECT_EQ(Table("[ISSO_PU]\n" + Rows(103)),
              (Lines{"ERROR (line  120) - More Than 100 Voltage Points Provided For ISSO_PU"}));
    ibis* root = nullptr;
    ASSERT_EQ(IBIS_GetCurrent(&root), 1);
    unsigned count = 0;
    for (const rngp* row = root->pModels->pIssoPu->pHead; row != nullptr; row = row->pNext) {
        EXPECT_EQ(row->dFirst, count++);
    }
    EXPECT_EQ(count, 103U);
}

TEST(Table, MonotonicColumns)
{
    const struct {
        const char* rows;
        Lines messages;
    } rows[] = {
        {"0 0 0 0\n1 1m 0 0\n2 1m 0 1m\n3 2m 0 1m\n", {}},  // flat stretches
        {"3 2m 0 0\n2 1m 0 -1m\n1 NA NA NA\n0 0 -1m -2m\n", {}},
        {"0 0 0 0\n1 1m -1m 0\n2 0.5m -2m 1m\n3 0 0 2m\n4 1m -3m 0\n",
         {"NOTE (line   22) - Pulldown Typical data is non-monotonic",
          "NOTE (line   23) - Pulldown Minimum data is non-monotonic",
          "NOTE (line   24) - Pulldown Maximum data is non-monotonic"}},
        {"0 0 0 0\n2 1m 1m 1m\n1 1m 1m 1m\n3 1m 1m 1m\n0.5 1m 1m 1m\n",
         {"NOTE (line   22) - Pulldown Voltage data is non-monotonic"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Table("[Pulldown]\n" + std::string(row.rows)), row.messages) << row.rows;
    }
}

TEST(Table, EndsNeedNumbers)
{
    const struct {
        const char* lines;
        Lines messages;
    } rows[] = {
        {"[Pulldown]\n", {"ERROR - Require at least 2 Voltage Points for Pulldown Beginning at Line 19"}},
        {"[GND Clamp]\n", {"ERROR - Require at least 2 Voltage Points for GND Clamp Beginning at Line 19"}},
        {"[Pulldown]\n0 NA NA NA\n",
         {"ERROR - Require at least 2 Voltage Points for Pulldown Beginning at Line 19"}},
        {"[GND Clamp]\n0 1m 1m 1m\n",
         {"ERROR - Require at least 2 Voltage Points for GND Clamp Beginning at Line 19",
          "WARNING - Model M: GND Clamp : Typical value never becomes zero",
          "WARNING - Model M: GND Clamp : Minimum value never becomes zero",
          "WARNING - Model M: GND Clamp : Maximum value never becomes zero"}},
        {"[Pulldown]\n0 0 NA NA\n1 NA NA NA\n2 1m NA NA\n", {}},
        {"[Pulldown]\n0 0 0 NA\n1 1m 1m NA\n2 NA NA NA\n",
         {"ERROR - Last Typical Value Cannot Be 'NA' for Pulldown Beginning at Line 19",
          "ERROR - Last Minimum Value Cannot Be 'NA' for Pulldown Beginning at Line 19"}},
        {"[ISSO_PD]\n0 NA NA NA\n1 NA 1m 1m\n2 NA NA NA\n",
         {"ERROR - First Typical Value Cannot Be 'NA' for ISSO PD Beginning at Line 19",
          "ERROR - First Minimum Value Cannot Be 'NA' for ISSO PD Beginning at Line 19",
          "ERROR - First Maximum Value Cannot Be 'NA' for ISSO PD Beginning at Line 19",
          "ERROR - Last Typical Value Cannot Be 'NA' for ISSO PD Beginning at Line 19",
          "ERROR - Last Minimum Value Cannot Be 'NA' for ISSO PD Beginning at Line 19",
          "ERROR - Last Maximum Value Cannot Be 'NA' for ISSO PD Beginning at Line 19"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Table(row.lines), row.messages) << row.lines;
    }
}

TEST(Table, SenseOfTheCurrentByTypeAndKeyword)
{
    const auto sense = [](const char* type, const char* keyword, const char* rows) {
        return MessagesWith(
            "Current", Ibs("[Model] M\nModel_type " + std::string(type) + "\n[" + keyword + "]\n" + rows));
    };
    const struct {
        const char* type;
        const char* keyword;
        bool falls;
        bool rises;
    } rows[] = {
        {"Input", "Pulldown", true, false},      {"I/O", "GND Clamp", true, false},
        {"Output", "Pullup", false, true},       {"Input", "POWER Clamp", false, true},
        {"Output", "ISSO_PD", false, false},     {"Output", "ISSO_PU", false, false},
        {"I/O_ECL", "Pulldown", false, true},    {"Output_ECL", "Pullup", false, true},
        {"Input_ECL", "GND Clamp", true, false}, {"3-state_ECL", "POWER Clamp", false, true},
        {"Nothing", "Pulldown", false, false},
    };
    for (const auto& row : rows) {
        const std::string at = "WARNING - Model M: " + std::string(row.keyword) + " has ";
        EXPECT_EQ(sense(row.type, row.keyword, "0 1m 0 0\n1 0 0 0\n"),
                  row.falls ? Lines{at + "Decreasing Current"} : Lines{})
            << row.type << row.keyword;
        EXPECT_EQ(sense(row.type, row.keyword, "0 0 0 0\n1 1m 0 0\n"),
                  row.rises ? Lines{at + "Increasing Current"} : Lines{})
            << row.type << row.keyword;
    }
    const Lines decreasing{"WARNING - Model M: Pulldown has Decreasing Current"};
    // The ends are those of the voltage, not of the table, and a repeated end is taken only from an "NA".
    EXPECT_EQ(sense("Input", "Pulldown", "2 0 0 0\n1 2m 0 0\n0 1m 0 0\n"), decreasing);
    EXPECT_EQ(sense("Input", "Pulldown", "1 2m 0 0\n0 1m 0 0\n2 3m 0 0\n"), Lines{});
    EXPECT_EQ(sense("Input", "Pulldown", "0 NA 0 0\n0 1m 0 0\n1 NA 0 0\n1 0 0 0\n1 2m 0 0\n"), decreasing);
    EXPECT_EQ(sense("Input", "Pulldown", "0 1m 0 0\n1 NA 0 0\n"), Lines{});
}

TEST(Table, ClampsReachZero)
{
    const auto zero = [](const char* lines) {
        return Unfolded(MessagesWith("becomes zero", Ibs(Model("M", lines))));
    };
    const std::string at = "WARNING - Model M: POWER Clamp : ";
    EXPECT_EQ(zero("[POWER Clamp]\n0 2u -1u -1m\n1 2u -1m 1m\n"),
              (Lines{at + "Typical value never becomes zero"}));
    EXPECT_EQ(zero("[POWER Clamp]\n0 -1m -1m NA\n1 NA 0 1m\n2 -2m -1m 1m\n"),
              (Lines{at + "Typical value never becomes zero"}));
    EXPECT_EQ(zero("[POWER Clamp]\n0 1m 1m -3m\n1 1u -1m -2m\n2 1m 1m -1m\n"),
              (Lines{at + "Maximum value never becomes zero"}));
    EXPECT_EQ(zero("[POWER Clamp]\n0 1m 1m 1m\n1 1m 1m\n"),
              (Lines{at + "Typical value never becomes zero", at + "Minimum value never becomes zero"}));
    EXPECT_EQ(zero("[Pulldown]\n0 1m 1m 1m\n1 1m 1m 1m\n"), Lines{});
}

TEST(Table, RepeatedKeywordReplacesTheTable)
{
    EXPECT_EQ(Table("[Pulldown]\n0 0 0 0\n[Pulldown]\n-1 0 0 0\n1 1m 1m 1m\n"),
              (Lines{"ERROR - Require at least 2 Voltage Points for Pulldown Beginning at Line 19",
                     "ERROR (line   21) - Pulldown Already Defined"}));
    ibis* root = nullptr;
    ASSERT_EQ(IBIS_GetCurrent(&root), 1);
    EXPECT_EQ(root->pModels->pPulldown->pHead->dFirst, -1.0);
    // An unknown keyword takes the end of the table with it.
    EXPECT_EQ(Table("[Pulldown]\n0 1m 0 0\n[What]\n1 0 0 0\n[Pullup]\n0 0 0 0\n1 0 0 0\n"),
              (Lines{"ERROR (line   21) - Invalid Keyword: What",
                     "ERROR (line   22) - Data for unknown keyword.\n1 0 0 0"}));
}

TEST(Interpolation, BracketsEndsAndMissingValues)
{
    ReadHandle(Ibs(Model("M", "[Pulldown]\n"
                              "NA 9 9 9\n"
                              "-1 -2 -4 NA\n"
                              "x 9 9 9\n"
                              "1 2 NA 4\n"
                              "1.0000001 7 7 7\n"  // too close to the row before
                              "2 4 x 6\n"
                              "3 NA 9 9\n"
                              "4 8 8 8\n"
                              "5 10 10 10\n"
                              "[Pullup]\n5 0 0 0\n-5 10 10 10\n"
                              "[GND Clamp]\nNA 0 0 0\n")));
    ibis* root = nullptr;
    ASSERT_EQ(IBIS_GetCurrent(&root), 1);
    const nuibis_mdl& model = *root->pModels;
    const Values nothing;
    const struct {
        const crv* table;
        double x;
        Values values;
    } rows[] = {
        {model.pPulldown, -1.1, nothing},
        {model.pPulldown, -1.0, Values{-2.0, -4.0, -2.0}},
        {model.pPulldown, 0.0, Values{0.0, -1.0, 1.0}},  // the "NA" ends are typical values
        {model.pPulldown, 1.5, Values{3.0, Value(), 5.0}},
        {model.pPulldown, 3.0, nothing},  // no typical value at 3 V: neither segment there has one
        {model.pPulldown, 4.5, Values{9.0, 9.0, 9.0}},
        {model.pPulldown, 5.0, Values{10.0, 10.0, 10.0}},
        {model.pPulldown, 5.1, nothing},
        {model.pPullup, 0.0, Values{5.0, 5.0, 5.0}},  // listed from high to low
        {model.pPullup, -6.0, nothing},
        {model.pGndClamp, 0.0, nothing},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Interpolate(row.table, row.x), row.values) << row.x;
    }
    const Values beyond = Interpolate(model.pPulldown, 5.000001);  // within a millionth of the last row
    ASSERT_TRUE(beyond[0]);
    EXPECT_NEAR(*beyond[0], 10.000002, 1e-12);
}
