// Typical, minimum and maximum of one quantity: the triple that nearly every keyword of the format uses.

#pragma once

#include "ibis/source/nuibis_cmn.h"

/// A triple. A value is meant only where its status is NUM_VALUE.
struct rng {
    double dTyp;
    numstat eTyp;
    double dMin;
    numstat eMin;
    double dMax;
    numstat eMax;
};

/// The typical value lies outside the other two. Strict on both sides: min may lie above max, where a
/// quantity falls from the slow to the fast corner.
constexpr bool RNG_TypOutside(double typ, double min, double max)
{
    return (typ < min && typ < max) || (typ > min && typ > max);
}

/// Reads a triple from the rest of a line into a new record; null only when memory is out or nothing could be
/// split. Gives 1 when all three values were good. `checkOrder` warns (3903) where typ lies outside min and
/// max.
int RNG_Read(std::string_view text, std::string_view label, rng** out, bool checkOrder);
/// Warning `code` (no line) and 0 when min and max are numbers and min is above max.
template <class... Args>
int RNG_CheckMinMax(const rng* r, std::type_identity_t<MSG_Site<MSG_KindOf<Args>...>> code, Args... args)
{
    if (r != nullptr && r->eMin == NUM_VALUE && r->eMax == NUM_VALUE && r->dMin > r->dMax) {
        MSG_Warning(code, args...);
        return 0;
    }
    return 1;
}
/// Null is fine.
void RNG_Free(rng* r);
