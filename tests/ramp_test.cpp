#include "ibis/source/nuibis_ramp.h"

#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_mdl.h"
#include "tests/builders.h"

namespace
{

// What a [Ramp] on line 19 of the file gives.
Lines Ramp(const std::string& lines)
{
    return Unfolded(Messages(Ibs(Model("M", "[Ramp]\n" + lines))));
}

const ramp* ReadRamp(const std::string& lines)
{
    ReadHandle(Ibs(Model("M", lines)));
    ibis* root = nullptr;
    IBIS_GetCurrent(&root);
    return root->pModels->pRamp;
}

const std::string RISE = "dV/dt_r 1/1n 1/2n NA\n";
const std::string FALL = "dV/dt_f 1/1n 1/2n NA\n";
const std::string AT = "ERROR (line   20) - ";
const std::string DV = AT + "dV must be greater than 0 in a Ramp specification";
const std::string DT = AT + "dT must be greater than 0 in a Ramp specification";

}  // namespace

TEST(Ramp, Rates)
{
    const struct {
        std::string line;
        Lines messages;
    } rows[] = {
        {"dV/dt_r 1.2V/1ns na 1/1n", {}},
        {"dV/dt_r NA 1/1n 1/1n", {AT + "'NA' not allowed for dV/dt_r Typical value"}},
        {"dV/dt_r 0/1n 1/0 -1/-1n", {DV, DT, DV, DT}},
        {"dV/dt_r nan/1n 1/1n 1/1n", {DV}},
        {"dV/dt_r 1/1n",
         {AT + "No minimum Value Was Provided for dV/dt_r", AT + "No maximum Value Was Provided for dV/dt_r",
          DV, DT, DV, DT}},
        {"dV/dt_r 1/1n NA", {AT + "No maximum Value Was Provided for dV/dt_r", DV, DT}},
        {"dV/dt_r", {AT + "Incorrect Number of Line Items (0) For dV/dt_r: Expecting 3", DV, DT, DV, DT}},
        {"dV/dt_r 1/1n 1/1n 1/1n 1/1n", {AT + "Incorrect Number of Line Items (4) For dV/dt_r: Expecting 3"}},
        {"dV/dt_r 1 1/x 1/1n/",
         {AT + "Invalid dV/dt_r Typical Value (\"1\")", AT + "Invalid dV/dt_r Minimum Value (\"1/x\")", DV,
          DT, AT + "Invalid dV/dt_r Maximum Value (\"1/1n/\")", DV, DT}},
        {"dV/dt_r 1 / 1n",
         {AT + "Invalid dV/dt_r Typical Value (\"1\")", AT + "Invalid dV/dt_r Minimum Value (\"/\")", DV, DT,
          AT + "Invalid dV/dt_r Maximum Value (\"1n\")", DV, DT}},
        {"dV/dt_r 1V2/1n3 1/1n 1/1n",
         {"WARNING (line   20) - Suspicious Typical dV/dt_r Value (\"1V2\"); Numeric in Scale",
          "WARNING (line   20) - Suspicious Typical dV/dt_r Value (\"1n3\"); Numeric in Scale"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Ramp(row.line + "\n" + FALL), row.messages) << row.line;
    }
}

TEST(Ramp, LoadAndOtherLines)
{
    const std::string at = "ERROR (line   22) - ";
    const struct {
        const char* line;
        Lines messages;
    } rows[] = {
        {"R_load=50Ohm", {}},
        {"R_load 50", {at + "Invalid Ramp R_load Line"}},
        {"R_load : 50", {at + "Invalid Ramp R_load Line"}},
        {"R_load = 50 60", {at + "Incorrect Number of Line Items (4) For R_load: Expecting 3"}},
        {"R_load = fifty", {at + "Invalid R_load Value (\"fifty\")"}},
        {"R_load = 50k2",
         {"WARNING (line   22) - Suspicious Ramp R_load Value (\"50k2\"); Numeric in Scale"}},
        {"R_load = x\nR_load = 50\nR_load = 60",
         {at + "Invalid R_load Value (\"x\")", "ERROR (line   24) - R_load Already Defined For Model 'M'"}},
        {"r_load = 50", {at + "Unknown Line Among Ramp Data"}},
        {"dV/dt_f 3/3n 3/3n 3/3n", {at + "dV/dt_f Already Defined For Model 'M'"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Ramp(RISE + FALL + row.line + "\n"), row.messages) << row.line;
    }
    EXPECT_EQ(Ramp(""), (Lines{"ERROR - dV/dt_r Not Defined For Ramp Beginning on Line 19",
                               "ERROR - dV/dt_f Not Defined For Ramp Beginning on Line 19"}));
}

TEST(Ramp, FirstLineStaysAndLastRampCounts)
{
    const ramp* record = ReadRamp("[Ramp]\n" + RISE + FALL + "dV/dt_r 9/9n 9/9n 9/9n\nR_load = 40\n");
    EXPECT_EQ(record->pRise->dTypDv, 1.0);
    EXPECT_EQ(record->pRise->dMinDt, 2e-9);
    EXPECT_EQ(record->pRise->eMax, NUM_NA);
    EXPECT_EQ(record->dRLoad, 40.0);

    const std::string twice = "[Ramp] now\n" + RISE + FALL + "R_load = 40\n[Ramp]\n" + FALL;
    EXPECT_EQ(Messages(Ibs(Model("M", twice))),
              (Lines{"ERROR (line   19) - Incorrect Number of Line Items (2) For Ramp: Expecting 1",
                     "ERROR (line   23) - Ramp Already Defined",
                     "ERROR - dV/dt_r Not Defined For Ramp Beginning on Line 23"}));
    record = ReadRamp(twice);
    EXPECT_EQ(record->pRise, nullptr);
    EXPECT_NE(record->pFall, nullptr);
    EXPECT_EQ(record->bRLoad, 0U);
}
