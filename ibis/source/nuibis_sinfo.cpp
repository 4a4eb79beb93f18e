#include "ibis/source/nuibis_sinfo.h"

#include "ibis/source/nuibis_field.h"
#include "ibis/source/nuibis_rng.h"

namespace
{

// The loss of an element, which means nothing without the element.
struct Dependent {
    rng* sinfo::*pField;
    rng* sinfo::*pElement;
    MSG_Text2 missing;  ///< (model, label)
};

constexpr std::array<Dependent, 3> DEPENDENTS{{
    {&sinfo::pRlSeries, &sinfo::pLSeries, 2907},
    {&sinfo::pRcSeries, &sinfo::pCSeries, 2908},
    {&sinfo::pLcSeries, &sinfo::pCSeries, 2909},
}};

}  // namespace

int SINFO_Create(sinfo** out)
{
    if (!CMN_Alloc(*out)) {
        MSG_Bug(2901, __FILE_NAME__, __LINE__);
        return 0;
    }
    return 1;
}

int SINFO_Open(std::string_view text, sinfo** field, std::string_view label)
{
    static constexpr FIELD_BlockCodes codes{2902, 2904};
    if (*field != nullptr) {
        MSG_ErrorLine(2900, label);
        SINFO_Free(*field);
    }
    if (!SINFO_Create(field)) {
        return 0;
    }
    FIELD_OpenBlock(text, label, codes);
    return 1;
}

void SINFO_Check(const sinfo* set, std::string_view modelName, std::string_view label)
{
    if (set->pRSeries == nullptr && set->pLSeries == nullptr && set->pCSeries == nullptr &&
        set->pSeriesCurrent == nullptr && set->pSeriesMosfet == nullptr) {
        MSG_Error(2905, modelName, label);
    }
    if (label == "[Off]" && set->pSeriesMosfet != nullptr) {
        MSG_Error(2906, modelName);
    }
    for (const Dependent& dependent : DEPENDENTS) {
        if (set->*dependent.pField != nullptr && set->*dependent.pElement == nullptr) {
            MSG_Error(dependent.missing, modelName, label);
        }
    }
    SMOS_CheckVds(set->pSeriesMosfet, modelName, label);
}

void SINFO_Free(sinfo* set)
{
    if (set == nullptr) {
        return;
    }
    for (const SINFO_Triple& triple : SINFO_TRIPLES) {
        RNG_Free(set->*triple.ppField);
    }
    CRV_Free(set->pSeriesCurrent);
    SMOS_FreeList(set->pSeriesMosfet);
    CMN_Free(set);
}
