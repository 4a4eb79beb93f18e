// The script functions over a runtime that is not the library's own.

#include "ibis/interface/talibis_qel.h"
#include "tests/runtime/other_runtime.h"

#include <gtest/gtest.h>

namespace
{

const std::string FILE_NAME = TALIBIS_SOURCE_DIR "/examples/buffer.ibs";

// Calls a function with file, type and texts; a null text is a string without one.
std::string Call(const char* function, std::initializer_list<const char*> texts)
{
    std::vector<QVALUE> parameters{qval_create_string(FILE_NAME.c_str()), qval_create_string("ibs")};
    for (const char* text : texts) {
        parameters.push_back(qval_create_string(text));
    }
    return callOther(function, parameters);
}

void ExpectNothingLeft()
{
    EXPECT_EQ(otherRuntime().uiAlive, 0U);
    EXPECT_EQ(otherRuntime().uiFaults, 0U);
}

}  // namespace

TEST(OtherRuntime, TakesOrRefusesTheTable)
{
    otherRuntime().bRefuse = true;
    EXPECT_FALSE(talIbis_qel_initialize());
    otherRuntime().bRefuse = false;
    EXPECT_TRUE(talIbis_qel_initialize());
    EXPECT_EQ(otherRuntime().startUp, (std::vector{0, 0, 0, 1}));
    EXPECT_EQ(otherRuntime().pTable, talIbis_qel_table());
}

TEST(OtherRuntime, AnswersOfEachKind)
{
    ASSERT_TRUE(talIbis_qel_initialize());
    EXPECT_EQ(Call("deCheckIbisData", {}), "[[0 \"\"] []]");
    EXPECT_EQ(Call("deGetIbisCompList", {}), "[[0 \"\"] [\"TB4\"]]");
    EXPECT_EQ(Call("deHasIbisModelPullup", {"bus_io"}), "[[0 \"\"] 1]");
    EXPECT_EQ(Call("deGetIbisVinh", {"ctl_in", "Typ"}), "[[0 \"\"] \"2\"]");
    EXPECT_EQ(Call("deGetIbisVinh", {nullptr, nullptr}), "[[0 \"\"] \"\"]");
    EXPECT_EQ(Call("deGetIbisModelType", {"none"}), "[[-1 \"Model type not found\"] \"\"]");
    EXPECT_EQ(Call("deCheckIbisModel", {"bus_io", "IBIS_IO"}), "[[0 \"\"] []]");
    ExpectNothingLeft();
}

TEST(OtherRuntime, BadParametersAreReported)
{
    ASSERT_TRUE(talIbis_qel_initialize());
    otherRuntime().errors.clear();
    EXPECT_EQ(callOther("deGetIbisCompList", {}), "[[-1 \"File reading failed\"] []]");
    EXPECT_EQ(Call("deGetIbisVinh", {"x"}), "[[-1 \"Wrong parameter\"] \"\"]");
    EXPECT_EQ(otherRuntime().errors, (std::vector<std::string>{"304 0 string parameter is expected",
                                                               "304 3 string parameter is expected"}));
    ExpectNothingLeft();
}
