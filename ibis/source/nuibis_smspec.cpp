#include "ibis/source/nuibis_smspec.h"

#include "ibis/source/nuibis_field.h"

#include <algorithm>
#include <array>

namespace
{

struct Parameter {
    std::string_view sName;
    rng* smspec::*ppField;
};

constexpr std::array<Parameter, 3> PARAMETERS{{
    {"V_trigger_r", &smspec::pVTriggerR},
    {"V_trigger_f", &smspec::pVTriggerF},
    {"Off_delay", &smspec::pOffDelay},
}};

}  // namespace

void SMSPEC_Open(std::string_view text, smspec** field)
{
    if (*field != nullptr) {
        MSG_ErrorLine(2700);
        SMSPEC_Free(*field);
        *field = nullptr;
    }
    if (!CMN_Alloc(*field)) {
        MSG_Bug(2701, __FILE_NAME__, __LINE__);
        return;
    }
    FIELD_OpenBlock(text, "Submodel Spec", {2702, 2704});
}

void SMSPEC_Line(std::string_view text, smspec* spec, std::string_view submodelName)
{
    if (spec == nullptr) {
        return;
    }
    std::string_view rest = text;
    const std::string_view name = CMN_NextTokenDelim(rest, '=');
    const auto* const parameter = std::find_if(PARAMETERS.begin(), PARAMETERS.end(),
                                               [name](const Parameter& p) { return p.sName == name; });
    if (parameter == PARAMETERS.end()) {
        MSG_ErrorLine(2706);
        return;
    }
    rng*& field = spec->*parameter->ppField;
    if (field != nullptr) {
        MSG_ErrorLine(2707, name, submodelName);
        return;
    }
    FIELD_ReadTriple(text, name, 2708, &field);
}

void SMSPEC_Close(const smspec* spec, std::string_view submodelName)
{
    const bool empty =
        spec == nullptr || std::all_of(PARAMETERS.begin(), PARAMETERS.end(),
                                       [spec](const Parameter& p) { return spec->*p.ppField == nullptr; });
    if (empty) {
        MSG_Error(2705, submodelName);
    }
}

void SMSPEC_Free(smspec* spec)
{
    if (spec == nullptr) {
        return;
    }
    for (const Parameter& parameter : PARAMETERS) {
        RNG_Free(spec->*parameter.ppField);
    }
    CMN_Free(spec);
}
