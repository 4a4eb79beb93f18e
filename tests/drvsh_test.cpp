#include "ibis/source/nuibis_drvsh.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_mdl.h"
#include "tests/builders.h"

namespace
{

// The schedule of a driver M, with drivers A and B to be scheduled. Its keyword stands on line 35.
Lines OfSchedule(const std::string& lines, const std::string& more = "", std::string_view version = "5.1")
{
    return Unfolded(
        Messages(Ibs(Driver("M", "[Driver Schedule]" + lines) + Driver("A") + Driver("B") + more, version)));
}

}  // namespace

TEST(DriverSchedule, LinesAndNames)
{
    const std::string two = "A 0 1n NA NA\nB 0 2n NA NA\n";
    const std::string long41(41, 'x');
    const std::string cut(40, 'x');
    EXPECT_EQ(OfSchedule("\n" + two), Lines{});
    const std::vector<std::pair<std::string, Lines>> cases{
        {" x y\n" + two,
         {"ERROR (line   35) - Incorrect Number of Line Items (3) For Driver Schedule: Expecting 1"}},
        {"\n", {"ERROR - Model 'M': The [Driver_Schedule] has no models defined"}},
        {"\nA 0 1n NA NA\n", {"WARNING - Model 'M': The [Driver_Schedule] has only one model defined"}},
        {"\n" + two + "[Driver Schedule]\n" + two,
         {"ERROR (line   38) - Driver Schedule: Already Defined for this model"}},
        // Repeats are not looked for.
        {"\nA 0 1n NA NA\nA 0 1n NA NA\n", {}},
        {"\nA 0 1n NA NA\nM 0 1n NA NA\n",
         {"ERROR (line   37) - Model Name in Driver Schedule is the same as enclosing Model (\"M\")",
          "ERROR - Model M used in the Driver Schedule of Model M cannot itself have a Driver Schedule"}},
        {"\nA 0 1n NA NA\nPOWER 0 1n NA NA\n",
         {"ERROR (line   37) - Invalid Model Name in Driver Schedule (\"POWER\"); Reserved Word.",
          "ERROR - Model POWER used in the Driver Schedule of Model M is not defined"}},
        {"\nA 0 1n NA NA\n" + long41 + " 0 1n NA NA\n",
         {"ERROR (line   37) - Model Name Over 40 Characters Long",
          "ERROR - Model " + cut + " used in the Driver Schedule of Model M is not defined"}},
        {"\nA 0 1n NA NA\nB 0 1n NA\n", {"ERROR (line   37) - No Fall_off_dly Value Was Provided for M"}},
    };
    for (const auto& [lines, messages] : cases) {
        EXPECT_EQ(OfSchedule(lines), messages) << lines;
    }
}

TEST(DriverScheduleAtEnd, WhatIsScheduledDrives)
{
    const std::string scheduling =
        Driver("M", "[Driver Schedule]\nA 0 1n NA NA\nT 0 1n NA NA\n") + Driver("A");
    for (const char* type : {"Input", "Input_ECL", "Terminator", "Series", "Series_switch"}) {
        EXPECT_EQ(
            Unfolded(MessagesWith("Schedule", Ibs(scheduling + "[Model] T\nModel_type " + type + "\n"))),
            Lines{"ERROR - Model T used in the Driver Schedule of Model M should be an output model"})
            << type;
    }
    EXPECT_EQ(
        OfSchedule("\nA 0 1n NA NA\nC 0 1n NA NA\n",
                   Driver("C", "[Driver Schedule]\nA 0 1n NA NA\nB 0 1n NA NA\n")),
        Lines{"ERROR - Model C used in the Driver Schedule of Model M cannot itself have a Driver Schedule"});
}

TEST(DriverScheduleAtEnd, ScheduledModelsAreReferenced)
{
    const std::string file =
        Bare(Component("U1", "1 S1 M 50m 2nH 1pF\n") +
             Driver("M", "[Driver Schedule]\nA 0 1n NA NA\nB 0 2n NA NA\n") + Driver("A") + Driver("B"));
    EXPECT_EQ(Messages(file), Lines{});
    // One model at a time, within its root.
    ibis* const root = RootOf(file);
    nuibis_mdl* const a = MDL_Find("A", root->pModels);
    a->uiReferenced = 0;
    DRVSH_CheckModel(MDL_Find("B", root->pModels), root);
    EXPECT_EQ(a->uiReferenced, 0U);
    DRVSH_CheckModel(MDL_Find("M", root->pModels), root);
    EXPECT_EQ(a->uiReferenced, 1U);
}
