#include "ibis/source/nuibis_rng.h"

#include <algorithm>

namespace
{

void ReportCount(int count, std::string_view label)
{
    if (count == 1) {
        MSG_ErrorLine(3901, "minimum", label);
    }
    if (count == 1 || count == 2) {
        MSG_ErrorLine(3901, "maximum", label);
    } else if (count != 3) {
        MSG_ErrorLine(3902, count, label, 3);
    }
}

}  // namespace

int RNG_Read(std::string_view text, std::string_view label, rng** out, bool checkOrder)
{
    const CMN_TokenList tokens = CMN_Split(text, 3);
    ReportCount(tokens.iFound, label);
    if (!CMN_Alloc(*out)) {
        MSG_Bug(3904, __FILE_NAME__, __LINE__);
        return 0;
    }
    rng& r = **out;
    int good = CMN_GetValueOrNA(tokens[0], label, "Typical", &r.dTyp, &r.eTyp);
    good &= CMN_GetValueOrNA(tokens[1], label, "Minimum", &r.dMin, &r.eMin);
    good &= CMN_GetValueOrNA(tokens[2], label, "Maximum", &r.dMax, &r.eMax);
    const bool numbers = r.eTyp == NUM_VALUE && r.eMin == NUM_VALUE && r.eMax == NUM_VALUE;
    if (checkOrder && numbers && RNG_TypOutside(r.dTyp, r.dMin, r.dMax)) {
        MSG_WarningLine(3903);
    }
    return good;
}

void RNG_Free(rng* r)
{
    CMN_Release(r);
}
