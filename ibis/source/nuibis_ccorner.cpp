#include "ibis/source/nuibis_ccorner.h"

#include "ibis/source/nuibis_field.h"

namespace
{

// The whole capacitance first, then its parts.
constexpr std::array<FIELD_Triple<ccorner>, 5> ITEMS{{
    {"C_comp", &ccorner::pCComp},
    {"C_comp_pullup", &ccorner::pCCompPullup},
    {"C_comp_pulldown", &ccorner::pCCompPulldown},
    {"C_comp_power_clamp", &ccorner::pCCompPowerClamp},
    {"C_comp_gnd_clamp", &ccorner::pCCompGndClamp},
}};

}  // namespace

void CCORNER_Open(std::string_view text, ccorner** field)
{
    FIELD_OpenRecord(text, "C_comp_corner", {5000, 5001, {5002, 5004}}, CCORNER_Free, field);
}

void CCORNER_Line(std::string_view text, ccorner* corner)
{
    if (corner != nullptr) {
        FIELD_ReadUnsignedLine(text, ITEMS, {5005, 5006, 5007, 5012}, *corner);
    }
}

void CCORNER_Close(const ccorner* corner, std::string_view modelName)
{
    const auto given = [corner](const FIELD_Triple<ccorner>& item) {
        return corner != nullptr && corner->*item.ppField != nullptr;
    };
    if (std::none_of(ITEMS.begin(), ITEMS.end(), given)) {
        MSG_Error(5010, modelName);
    } else if (given(ITEMS.front()) && std::any_of(ITEMS.begin() + 1, ITEMS.end(), given)) {
        MSG_Warning(5011, modelName);
    }
}

void CCORNER_Free(ccorner* corner)
{
    FIELD_FreeTriples(ITEMS, corner);
}
