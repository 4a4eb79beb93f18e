#include "ibis/source/nuibis_dly.h"

#include <algorithm>
#include <array>

namespace
{

// The delays in their order on the line.
struct Column {
    std::string_view sName;
    double dly::*pdValue;
    numstat dly::*peStatus;
};

constexpr std::array<Column, 4> COLUMNS{{
    {"Rise_on_dly", &dly::dRiseOn, &dly::eRiseOn},
    {"Rise_off_dly", &dly::dRiseOff, &dly::eRiseOff},
    {"Fall_on_dly", &dly::dFallOn, &dly::eFallOn},
    {"Fall_off_dly", &dly::dFallOff, &dly::eFallOff},
}};

// Only the first missing delay is named.
void CheckCount(int count, std::string_view modelName)
{
    constexpr int expected = COLUMNS.size();
    if (count >= 1 && count < expected) {
        MSG_ErrorLine(4501, COLUMNS[static_cast<std::size_t>(count)].sName, modelName);
    } else if (count != expected) {
        MSG_ErrorLine(4502, count, "Driver Schedule", expected);
    }
}

bool ReadColumns(const CMN_TokenList& tokens, dly& delays)
{
    for (std::size_t i = 0; i < COLUMNS.size(); ++i) {
        const Column& column = COLUMNS[i];
        if (!CMN_GetValueOrNA(tokens[static_cast<int>(i)], "Driver Schedule", column.sName,
                              &(delays.*column.pdValue), &(delays.*column.peStatus))) {
            return false;
        }
    }
    return true;
}

// Rise_on and Fall_off both switch the scheduled model high, Rise_off and Fall_on both switch it low: one
// pair alone never switches it back.
bool CheckPairs(const dly& delays)
{
    bool good = true;
    if (delays.eRiseOn == NUM_VALUE && delays.eFallOff == NUM_VALUE) {
        MSG_ErrorLine(4505, "Rise_on_dly", "Fall_off_delay");
        good = false;
    }
    if (delays.eRiseOff == NUM_VALUE && delays.eFallOn == NUM_VALUE) {
        MSG_ErrorLine(4505, "Rise_off_dly", "Fall_on_delay");
        good = false;
    }
    return good;
}

void CheckSigns(const dly& delays)
{
    for (const Column& column : COLUMNS) {
        if (delays.*column.peStatus == NUM_VALUE && delays.*column.pdValue < 0.0) {
            MSG_NoRow(MSG_Severity::Error, 4506);
        }
    }
}

// A pulse within one edge has a length, and pulses of both edges leave the stage at one level between them.
void CheckOrder(const dly& delays)
{
    const bool rise = delays.eRiseOn == NUM_VALUE && delays.eRiseOff == NUM_VALUE;
    const bool fall = delays.eFallOn == NUM_VALUE && delays.eFallOff == NUM_VALUE;
    const bool anyRise = delays.eRiseOn == NUM_VALUE || delays.eRiseOff == NUM_VALUE;
    const bool anyFall = delays.eFallOn == NUM_VALUE || delays.eFallOff == NUM_VALUE;
    if (rise && !anyFall && delays.dRiseOn == delays.dRiseOff) {
        MSG_ErrorLine(4507, "Rise_on_dly", "Rise_off_dly");
    }
    if (fall && !anyRise && delays.dFallOn == delays.dFallOff) {
        MSG_ErrorLine(4508, "Fall_on_dly", "Fall_off_dly");
    }
    if (!rise || !fall) {
        return;
    }
    const bool opposite = (delays.dRiseOn < delays.dRiseOff && delays.dFallOn > delays.dFallOff) ||
                          (delays.dRiseOn > delays.dRiseOff && delays.dFallOn < delays.dFallOff);
    if (!opposite) {
        MSG_ErrorLine(4509, "Rise_on_dly", "Rise_off_dly", "Fall_on_dly", "Fall_off_dly", "Rise_on_dly",
                      "Rise_off_dly", "Fall_on_dly", "Fall_off_dly");
    }
}

}  // namespace

int DLY_Read(std::string_view text, std::string_view modelName, dly** out)
{
    const CMN_TokenList tokens = CMN_Split(text, static_cast<int>(COLUMNS.size()));
    CheckCount(tokens.iFound, modelName);
    if (!CMN_Alloc(*out)) {
        MSG_Bug(4503, __FILE_NAME__, __LINE__);
        return 0;
    }
    dly& delays = **out;
    if (!ReadColumns(tokens, delays)) {
        return 0;
    }
    const auto numbers = std::count_if(COLUMNS.begin(), COLUMNS.end(), [&delays](const Column& column) {
        return delays.*column.peStatus == NUM_VALUE;
    });
    bool good = numbers >= 2;
    if (!good) {
        MSG_ErrorLine(4504);
    } else if (numbers < 4) {
        good = CheckPairs(delays);
    }
    CheckSigns(delays);
    CheckOrder(delays);
    return good ? 1 : 0;
}

void DLY_Free(dly* delays)
{
    CMN_Release(delays);
}
