#include "ibis/source/nuibis_mdlemi.h"

#include "ibis/source/nuibis_field.h"

#include <array>

namespace
{

// The place of a word in its table, from 1 on, goes into the field. A second line replaces the first.
template <class Enum>
void ReadWord(Enum& field, std::string_view text, std::string_view name,
              std::span<const std::string_view> words)
{
    if (field != 0) {
        MSG_ErrorLine(4805, name);
    }
    const int row = FIELD_ReadWord(text, name, words, {4806, 0, 4801}, {4807, 4808});
    field = static_cast<Enum>(row + 1);
}

}  // namespace

void MDLEMI_Init(std::string_view text, MDLEMI** emi)
{
    if (*emi != nullptr) {
        MSG_ErrorLine(4800);
        CMN_FreeAndClear(*emi);
    }
    if (!CMN_Alloc(*emi)) {
        MSG_Bug(4804, __FILE_NAME__, __LINE__);
        return;
    }
    FIELD_OpenBlock(text, "EMI Model", {4803, 4801});
}

void MDLEMI_Line(std::string_view text, MDLEMI* emi)
{
    static constexpr std::array<std::string_view, 2> domains{"Analog", "Digital"};
    static constexpr std::array<std::string_view, 2> types{"Ferrite", "Not_a_ferrite"};
    const std::string_view name = CMN_Split(text, 1)[0];
    if (emi == nullptr) {
        return;
    }
    if (name == "Domain") {
        ReadWord(emi->eDomain, text, name, domains);
    } else if (name == "Model_emi_type") {
        ReadWord(emi->eModelEmiType, text, name, types);
    }
}
