#include "ibis/source/nuibis_crv.h"

#include "ibis/source/nuibis_field.h"
#include "ibis/source/nuibis_mdl.h"

#include <algorithm>
#include <cmath>

namespace
{

constexpr unsigned ROW_LIMIT = 100;

// A voltage at an end of the table's range, with the typical current there.
struct Extreme {
    double dVoltage;
    double dCurrent;
    numstat eCurrent;

    bool yieldsTo(double voltage, bool beyond) const
    {
        return beyond || (voltage == dVoltage && eCurrent != NUM_VALUE);
    }
};

// State of the table being read, reset by CRV_Open.
struct Table {
    unsigned uiLine;  // of the keyword
    bool bVoltage;    // a voltage was seen
    Extreme lowest;
    Extreme highest;
    std::array<crvtrack, 4> aTracks;  // first column and corners
};

Table gTable;

void Follow(crvtrack& track, double value, numstat status, std::string_view label, std::string_view column)
{
    if (status == NUM_VALUE && CRV_Track(track, value)) {
        MSG_NoteLine(1110, label, column);
    }
}

void FollowColumns(const rngp& row, std::string_view label)
{
    Follow(gTable.aTracks[0], row.dFirst, row.eFirst, label, "Voltage");
    for (std::size_t i = 0; i < RNGP_CORNERS.size(); ++i) {
        const RNGP_Column& column = RNGP_CORNERS[i];
        Follow(gTable.aTracks[i + 1], row.*column.pdValue, row.*column.peStatus, label, column.sName);
    }
}

void UpdateExtremes(const rngp& row)
{
    const Extreme here{row.dFirst, row.dTyp, row.eTyp};
    if (!gTable.bVoltage) {
        gTable.bVoltage = true;
        gTable.lowest = gTable.highest = here;
    } else if (gTable.lowest.yieldsTo(row.dFirst, row.dFirst < gTable.lowest.dVoltage)) {
        gTable.lowest = here;
    } else if (gTable.highest.yieldsTo(row.dFirst, row.dFirst > gTable.highest.dVoltage)) {
        gTable.highest = here;
    }
}

// The sense of the current --------------------------------------------------------------------------------

enum class Sense { Any, Rising, Falling };

// Both tables of an ECL driver are taken against the upper rail, in its high and in its low state, so that
// its [Pulldown] falls like a [Pullup].
Sense ExpectedSense(nuibis_model_type type, nuibis_keyword keyword)
{
    if (MDL_IsOneOf(type, MDL_ECL_TYPES)) {
        return keyword == KEY_GND_CLAMP ? Sense::Rising : Sense::Falling;
    }
    switch (keyword) {
    case KEY_PULLDOWN:
    case KEY_GND_CLAMP:
    case KEY_SERIES_MOSFET:
        return Sense::Rising;
    case KEY_PULLUP:
    case KEY_POWER_CLAMP:
        return Sense::Falling;
    default:
        return Sense::Any;
    }
}

// Only the ends of the range count: a curve that goes astray in between passes.
void CheckSlope(std::string_view owner, nuibis_model_type type, nuibis_keyword keyword,
                std::string_view label, std::string_view context)
{
    const bool numbers = gTable.lowest.eCurrent == NUM_VALUE && gTable.highest.eCurrent == NUM_VALUE;
    if (type < MODEL_INPUT || !numbers || keyword == KEY_ISSO_PD || keyword == KEY_ISSO_PU) {
        return;
    }
    const Sense sense = ExpectedSense(type, keyword);
    const double low = gTable.lowest.dCurrent;
    const double high = gTable.highest.dCurrent;
    if (sense == Sense::Rising && low > high) {
        MSG_Warning(1111, context, owner, label);
    }
    if (sense == Sense::Falling && high > low) {
        MSG_Warning(1112, context, owner, label);
    }
}

// The zero of a clamp -------------------------------------------------------------------------------------

// Whether a clamp conducts at each of its voltages, always the same way. A column that does not reach from
// end to end is not judged, and at most a microampere is no current.
bool NeverZero(const rngp* row, const RNGP_Column& column)
{
    constexpr double noCurrent = 1e-6;
    if (row == nullptr || row->*column.peStatus != NUM_VALUE) {
        return false;
    }
    double lowest = row->*column.pdValue;
    double highest = lowest;
    const rngp* last = row;
    for (; row != nullptr; row = row->pNext) {
        last = row;
        if (row->*column.peStatus == NUM_VALUE) {
            const double value = row->*column.pdValue;
            if (std::fabs(value) <= noCurrent) {
                return false;
            }
            lowest = std::min(lowest, value);
            highest = std::max(highest, value);
        }
    }
    return last->*column.peStatus == NUM_VALUE && (highest < 0.0 || lowest > 0.0);
}

void CheckZero(std::string_view owner, nuibis_keyword keyword, const rngp* head, std::string_view label,
               std::string_view context)
{
    static constexpr std::array<MSG_Text3, RNGP_CORNERS.size()> warnings{1113, 1114, 1115};
    if (keyword != KEY_GND_CLAMP && keyword != KEY_POWER_CLAMP) {
        return;
    }
    for (std::size_t i = 0; i < warnings.size(); ++i) {
        if (NeverZero(head, RNGP_CORNERS[i])) {
            MSG_Warning(warnings[i], context, owner, label);
        }
    }
}

// Interpolation -------------------------------------------------------------------------------------------

constexpr double SAME_POINT = 1e-6;  // relative

// A row as a point of three curves. Without a typical value none of them has a value there.
struct Point {
    double dX;
    std::array<double, RNGP_CORNERS.size()> aY;
    std::array<bool, RNGP_CORNERS.size()> aValid;

    explicit Point(const rngp& row) : dX(row.dFirst), aY{}, aValid{}
    {
        for (std::size_t i = 0; i < aY.size() && row.eTyp == NUM_VALUE; ++i) {
            const numstat status = row.*RNGP_CORNERS[i].peStatus;
            aValid[i] = status != NUM_ABSENT;
            aY[i] = status == NUM_VALUE ? row.*RNGP_CORNERS[i].pdValue : row.dTyp;
        }
    }
};

bool Brackets(double previous, double here, double x)
{
    const bool between = (previous <= x && x <= here) || (here <= x && x <= previous);
    return between || std::fabs(x - here) < SAME_POINT * std::fabs(x);
}

const rngp* SkipWithoutFirst(const rngp* row)
{
    while (row != nullptr && row->eFirst != NUM_VALUE) {
        row = row->pNext;
    }
    return row;
}

void GiveValue(const Point& a, const Point& b, std::size_t corner, double x, double** out)
{
    if (!a.aValid[corner] || !b.aValid[corner]) {
        return;
    }
    if (!CMN_Alloc(*out)) {
        MSG_Bug(1101, __FILE_NAME__, __LINE__);
        return;
    }
    **out = (b.aY[corner] - a.aY[corner]) / (b.dX - a.dX) * (x - a.dX) + a.aY[corner];
}

}  // namespace

bool CRV_Track(crvtrack& track, double value)
{
    if (track.uiState == TRACK_REPORTED) {
        return false;
    }
    const bool rises = track.uiState == TRACK_RUNNING && value > track.dLast;
    const bool falls = track.uiState == TRACK_RUNNING && value < track.dLast;
    if ((rises && track.uiDirection == TRACK_FALLING) || (falls && track.uiDirection == TRACK_RISING)) {
        track.uiState = TRACK_REPORTED;
        return true;
    }
    if (rises || falls) {
        track.uiDirection = rises ? TRACK_RISING : TRACK_FALLING;
    }
    track.uiState = TRACK_RUNNING;
    track.dLast = value;
    return false;
}

int CRV_Open(std::string_view text, std::string_view label, crv** field)
{
    static constexpr FIELD_BlockCodes codes{1102, 1104};
    gTable = {};
    gTable.uiLine = PARSE_GetLineNumber();
    if (*field != nullptr) {
        MSG_ErrorLine(1100, label);
        CRV_Free(*field);
    }
    if (!CMN_Alloc(*field)) {
        MSG_Bug(1101, __FILE_NAME__, __LINE__);
        return 0;
    }
    return FIELD_OpenBlock(text, label, codes) ? 1 : 0;
}

void CRV_AddLine(std::string_view text, crv* table, std::string_view label)
{
    rngp* row = nullptr;
    if (table == nullptr || !RNGP_ReadLine(text, label, "Voltage", &row)) {
        return;
    }
    unsigned count = 0;
    RNGP_Append(table->pHead, row, &count, true);
    FollowColumns(*row, label);
    if (row->eFirst == NUM_NA) {
        MSG_ErrorLine(1106);
    } else if (row->eFirst == NUM_VALUE) {
        UpdateExtremes(*row);
    }
    if (count == ROW_LIMIT + 1) {
        MSG_ErrorLine(1107, ROW_LIMIT, label);
    }
}

void CRV_Close(std::string_view ownerName, nuibis_model_type type, nuibis_keyword keyword, const crv* table,
               std::string_view label, std::string_view context)
{
    static constexpr RNGP_EndCodes codes{1108, 1109};
    if (table == nullptr) {
        return;
    }
    RNGP_CheckEnds(table->pHead, label, gTable.uiLine, codes);
    CheckSlope(ownerName, type, keyword, label, context);
    CheckZero(ownerName, keyword, table->pHead, label, context);
}

void CRV_Interpolate(const crv* table, double x, double** typ, double** min, double** max)
{
    *typ = *min = *max = nullptr;
    const rngp* previous = SkipWithoutFirst(table->pHead);
    if (previous == nullptr) {
        return;
    }
    const rngp* row = previous;
    while ((row = SkipWithoutFirst(row->pNext)) != nullptr) {
        if (std::fabs(row->dFirst - previous->dFirst) < SAME_POINT * std::fabs(previous->dFirst)) {
            continue;
        }
        if (row->eTyp == NUM_VALUE && Brackets(previous->dFirst, row->dFirst, x)) {
            const Point a(*previous);
            const Point b(*row);
            GiveValue(a, b, 0, x, typ);
            GiveValue(a, b, 1, x, min);
            GiveValue(a, b, 2, x, max);
            return;
        }
        previous = row;
    }
}

void CRV_Free(crv* table)
{
    if (table != nullptr) {
        RNGP_FreeRows(table->pHead);
        CMN_Free(table);
    }
}
