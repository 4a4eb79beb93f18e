// The corners of process, supply and temperature that a model is described at, and the value that each record
// holds for one of them.

#pragma once

#include "ibis/source/nuibis_ramp.h"
#include "ibis/source/nuibis_rng.h"
#include "ibis/source/nuibis_rngp.h"

/// One corner; the values join to a mask.
enum nuibis_corner : unsigned {
    CORNER_TYP = 1,
    CORNER_MIN = 2,
    CORNER_MAX = 4,
};

/// All corners, in the order in which every check runs.
inline constexpr std::array<nuibis_corner, 3> CORNERS{CORNER_TYP, CORNER_MIN, CORNER_MAX};

/// Place of a corner in a table of three.
constexpr std::size_t CORNER_Index(nuibis_corner corner)
{
    return corner >> 1U;
}

/// "TYP", "MIN" or "MAX", as messages print it.
constexpr const char* CORNER_Name(nuibis_corner corner)
{
    constexpr std::array<const char*, 3> names{"TYP", "MIN", "MAX"};
    return names[CORNER_Index(corner)];
}

/// Value column of a table.
constexpr const RNGP_Column& CORNER_Column(nuibis_corner corner)
{
    return RNGP_CORNERS[CORNER_Index(corner)];
}

/// A value with its status.
struct CORNER_Value {
    double dValue;
    numstat eStatus;
};

constexpr CORNER_Value CORNER_At(const rng& r, nuibis_corner corner)
{
    return corner == CORNER_TYP   ? CORNER_Value{r.dTyp, r.eTyp}
           : corner == CORNER_MIN ? CORNER_Value{r.dMin, r.eMin}
                                  : CORNER_Value{r.dMax, r.eMax};
}

/// The swing dV (V) of a ramp.
constexpr CORNER_Value CORNER_RampSwing(const rampline& line, nuibis_corner corner)
{
    return corner == CORNER_TYP   ? CORNER_Value{line.dTypDv, line.eTyp}
           : corner == CORNER_MIN ? CORNER_Value{line.dMinDv, line.eMin}
                                  : CORNER_Value{line.dMaxDv, line.eMax};
}

/// The time dT (s) of a ramp.
constexpr CORNER_Value CORNER_RampTime(const rampline& line, nuibis_corner corner)
{
    return corner == CORNER_TYP   ? CORNER_Value{line.dTypDt, line.eTyp}
           : corner == CORNER_MIN ? CORNER_Value{line.dMinDt, line.eMin}
                                  : CORNER_Value{line.dMaxDt, line.eMax};
}
