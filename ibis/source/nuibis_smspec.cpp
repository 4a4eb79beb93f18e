#include "ibis/source/nuibis_smspec.h"

#include "ibis/source/nuibis_field.h"

#include <algorithm>

namespace
{

constexpr std::array<FIELD_Triple<smspec>, 3> ITEMS{{
    {"V_trigger_r", &smspec::pVTriggerR},
    {"V_trigger_f", &smspec::pVTriggerF},
    {"Off_delay", &smspec::pOffDelay},
}};

}  // namespace

void SMSPEC_Open(std::string_view text, smspec** field)
{
    FIELD_OpenRecord(text, "Submodel Spec", {2700, 2701, {2702, 2704}}, SMSPEC_Free, field);
}

void SMSPEC_Line(std::string_view text, smspec* spec, std::string_view submodelName)
{
    if (spec == nullptr) {
        return;
    }
    const auto* const item = FIELD_FindByName(ITEMS, FIELD_ItemName(text));
    if (item == nullptr) {
        MSG_ErrorLine(2706);
    } else if (spec->*item->ppField != nullptr) {
        MSG_ErrorLine(2707, item->sName, submodelName);
    } else {
        FIELD_ReadTriple(text, item->sName, 2708, &(spec->*item->ppField));
    }
}

void SMSPEC_Close(const smspec* spec, std::string_view submodelName)
{
    const auto given = [spec](const FIELD_Triple<smspec>& item) {
        return spec != nullptr && spec->*item.ppField != nullptr;
    };
    if (std::none_of(ITEMS.begin(), ITEMS.end(), given)) {
        MSG_Error(2705, submodelName);
    }
}

void SMSPEC_Free(smspec* spec)
{
    FIELD_FreeTriples(ITEMS, spec);
}
