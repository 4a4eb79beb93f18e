#include "ibis/source/nuibis_dly.h"

#include "ibis/source/nuibis_msg.h"
#include "tests/builders.h"

namespace
{

struct Result {
    int iGood;
    Lines messages;
};

// Reads the part of a schedule's line behind the model's name, as line 7 of a file.
Result Read(std::string_view text)
{
    MSG_ClearContainer();
    guiLineNumber = 7;
    dly* delays = nullptr;
    Result result{DLY_Read(text, "M", &delays), {}};
    EXPECT_NE(delays, nullptr) << text;
    DLY_Free(delays);
    result.messages = Unfolded(StoredMessages());
    return result;
}

const std::string AT = "ERROR (line    7) - ";
const std::string TWO = AT + "At least two delays must be specified";

}  // namespace

TEST(Delays, CountAndValues)
{
    const struct {
        const char* text;
        Result result;
    } rows[] = {
        {"1n NA 2n NA", {1, {}}},
        {"na NA 2n na", {0, {TWO}}},
        {"", {0, {AT + "Incorrect Number of Line Items (0) For Driver Schedule: Expecting 4", TWO}}},
        {"1n", {0, {AT + "No Rise_off_dly Value Was Provided for M", TWO}}},
        {"1n 2n", {1, {AT + "No Fall_on_dly Value Was Provided for M"}}},
        {"1n NA 2n", {1, {AT + "No Fall_off_dly Value Was Provided for M"}}},
        {"1n NA 2n NA 5n", {1, {AT + "Incorrect Number of Line Items (5) For Driver Schedule: Expecting 4"}}},
        {"1n x y 2n", {0, {AT + "Invalid Rise_off_dly Value (\"x\")"}}},
        {"1n NA 2n3 NA",
         {1,
          {"WARNING (line    7) - Suspicious Fall_on_dly Driver Schedule Value (\"2n3\"); Numeric in "
           "Scale"}}},
        {"-1n NA -2n NA", {1, {}}},  // the number of a negative delay has no text
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Read(row.text).messages, row.result.messages) << row.text;
        EXPECT_EQ(Read(row.text).iGood, row.result.iGood) << row.text;
    }
}

TEST(Delays, PairsAndOrder)
{
    const std::string riseOnFallOff = AT + "Rise_on_dly and Fall_off_delay cannot be specified together";
    const std::string riseOffFallOn = AT + "Rise_off_dly and Fall_on_delay cannot be specified together";
    const std::string rise = AT + "[Driver Schedule] requires Rise_on_dly < or > Rise_off_dly";
    const std::string fall = AT + "[Driver Schedule] requires Fall_on_dly < or > Fall_off_dly";
    const std::string all = AT +
                            "[Driver Schedule] requires (Rise_on_dly < Rise_off_dly AND Fall_on_dly > "
                            "Fall_off_dly) OR (Rise_on_dly > Rise_off_dly and Fall_on_dly < Fall_off_dly)";
    const struct {
        const char* text;
        Result result;
    } rows[] = {
        {"1n NA NA 2n", {0, {riseOnFallOff}}},
        {"NA 1n 2n NA", {0, {riseOffFallOn}}},
        {"1n 1n 2n NA", {0, {riseOffFallOn}}},
        {"1n NA 2n 2n", {0, {riseOnFallOff}}},
        {"1n 1n NA NA", {1, {rise}}},
        {"2n 1n NA NA", {1, {}}},
        {"NA NA 2n 2n", {1, {fall}}},
        {"1n 2n 2n 1n", {1, {}}},
        {"2n 1n 1n 2n", {1, {}}},
        {"1n 2n 1n 2n", {1, {all}}},
        {"1n 1n 1n 1n", {1, {all}}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Read(row.text).messages, row.result.messages) << row.text;
        EXPECT_EQ(Read(row.text).iGood, row.result.iGood) << row.text;
    }
}
