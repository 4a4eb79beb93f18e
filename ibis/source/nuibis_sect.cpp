#include "ibis/source/nuibis_sect.h"

#include <algorithm>
#include <array>

namespace
{

struct SubParameter {
    double* SECT::*ppdField;
    MSG_Plain beforeLen;
    MSG_Plain duplicate;
    MSG_Plain negative;
};

// By the item that the reader gives.
constexpr std::array<SubParameter, SECT_L + 1> SUBPARAMETERS{{
    {nullptr, 0, 0, 0},
    {&SECT::pdLen, 0, 3000, 3001},
    {&SECT::pdR, 3002, 3003, 3004},
    {&SECT::pdC, 3008, 3009, 3010},
    {&SECT::pdL, 3005, 3006, 3007},
}};

// What has been read of a section; the record is made when its "/" is there.
struct Draft {
    std::array<double, SECT_L + 1> adValue{};
    std::array<bool, SECT_L + 1> abGiven{};

    bool isEmpty() const
    {
        return std::none_of(abGiven.begin(), abGiven.end(), [](bool given) { return given; });
    }
};

void Take(Draft& draft, CMN_SectionItem item, double value)
{
    const SubParameter& parameter = SUBPARAMETERS[item];
    if (item != SECT_LEN && !draft.abGiven[SECT_LEN]) {
        MSG_ErrorLine(parameter.beforeLen);
    }
    if (draft.abGiven[item]) {
        MSG_ErrorLine(parameter.duplicate);
    }
    draft.adValue[item] = value;
    draft.abGiven[item] = true;
    if (value < 0.0) {
        MSG_ErrorLine(parameter.negative);
    }
}

// A line with a length needs both L and C; without one the section is a lumped element.
void CheckComplete(const Draft& draft)
{
    const bool isLine = draft.abGiven[SECT_LEN] && draft.adValue[SECT_LEN] != 0.0;
    if (isLine && !(draft.abGiven[SECT_L] && draft.abGiven[SECT_C])) {
        MSG_ErrorLine(3012);
    }
    if (draft.isEmpty()) {
        MSG_ErrorLine(3011);
    }
}

int Close(const Draft& draft, SECT** out)
{
    CheckComplete(draft);
    if (!SECT_New(out)) {
        return 0;
    }
    for (std::size_t i = SECT_LEN; i < SUBPARAMETERS.size(); ++i) {
        double*& field = *out->*SUBPARAMETERS[i].ppdField;
        if (draft.abGiven[i] && CMN_Alloc(field)) {
            *field = draft.adValue[i];
        }
    }
    return 1;
}

}  // namespace

int SECT_New(SECT** out)
{
    if (!CMN_Alloc(*out)) {
        MSG_Bug(3014, __FILE_NAME__, __LINE__);
        return 0;
    }
    return 1;
}

void SECT_Free(SECT* section)
{
    if (section != nullptr) {
        CMN_Release(section->pdLen);
        CMN_Release(section->pdL);
        CMN_Release(section->pdR);
        CMN_Release(section->pdC);
        CMN_Free(section);
    }
}

int SECT_ParseNext(std::string_view& cursor, SECT** out)
{
    *out = nullptr;
    Draft draft;
    for (;;) {
        double value = 0.0;
        const CMN_SectionItem item = CMN_GetSectionItem(cursor, &value);
        switch (item) {
        case SECT_LEN:
        case SECT_R:
        case SECT_C:
        case SECT_L:
            Take(draft, item, value);
            break;
        case SECT_END:
            return Close(draft, out);
        case SECT_NONE:
            if (draft.isEmpty()) {
                return 1;
            }
            MSG_ErrorLine(3013);
            return 0;
        case SECT_ERROR:
            break;
        }
    }
}

void SECT_WarnName(std::string_view name, const SECT_NameCodes& codes)
{
    static constexpr std::array<std::string_view, 6> words{"Len", "Fork", "Endfork", "C", "R", "L"};
    if (name.find('=') != std::string_view::npos) {
        MSG_WarningLine(codes.equals, name);
    }
    if (name.find('/') != std::string_view::npos) {
        MSG_WarningLine(codes.slash, name);
    }
    if (std::find(words.begin(), words.end(), name) != words.end()) {
        MSG_WarningLine(codes.word, name);
    }
}
