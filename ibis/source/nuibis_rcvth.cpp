#include "ibis/source/nuibis_rcvth.h"

#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_field.h"
#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_pin.h"

namespace
{

constexpr std::string_view SUPPLY = "Reference_supply";

void ReadNumber(const RCVTH_Number& number, std::string_view text, rcvth& thresholds)
{
    static constexpr FIELD_ScalarCodes codes{3232, 3204, 3233, 0};
    double*& field = thresholds.*number.ppdField;
    if (field != nullptr) {
        MSG_ErrorLine(3231, number.sName);
        return;
    }
    FIELD_NewScalar(text, number.sName, "Receiver Threshold", codes, &field);
}

// "Reference_supply Pullup_ref", without an equals sign.
void ReadSupply(std::string_view text, rcvth& thresholds)
{
    if (thresholds.pszReferenceSupply != nullptr) {
        MSG_ErrorLine(3231, SUPPLY);
        return;
    }
    const CMN_TokenList tokens = CMN_SplitDelim(text, 2, '=');
    if (tokens.iFound == 1 || (tokens.iFound == 3 && tokens[1] == "=")) {
        MSG_ErrorLine(3232, SUPPLY);
        return;
    }
    if (tokens.iFound > 2) {
        MSG_ErrorLine(3204, tokens.iFound, SUPPLY, 2);
    }
    if (tokens.iFound == 3) {
        return;
    }
    if (std::find(RCVTH_SUPPLIES.begin(), RCVTH_SUPPLIES.end(), tokens[1]) == RCVTH_SUPPLIES.end()) {
        MSG_ErrorLine(3234, tokens[1]);
        return;
    }
    thresholds.pszReferenceSupply = CMN_StrDup(tokens[1]);
}

// What a receiver needs on a differential pin, (model, pin), and on any other, (model).
template <class Site> struct Needed {
    double* rcvth::*ppdField;
    Site missing;
};

constexpr std::array<Needed<MSG_Text2>, 5> DIFFERENTIAL{{
    {&rcvth::pdVcrossLow, 3206},
    {&rcvth::pdVcrossHigh, 3207},
    {&rcvth::pdVdiffAc, 3208},
    {&rcvth::pdVdiffDc, 3209},
    {&rcvth::pdTdiffslewAc, 3210},
}};

constexpr std::array<Needed<MSG_Text1>, 6> SINGLE_ENDED{{
    {&rcvth::pdVth, 3219},
    {&rcvth::pdVinhAc, 3220},
    {&rcvth::pdVinlAc, 3221},
    {&rcvth::pdVinhDc, 3222},
    {&rcvth::pdVinlDc, 3223},
    {&rcvth::pdTslewAc, 3224},
}};

void CheckModel(nuibis_mdl& model, CMPNT_DiffPins& pins)
{
    const rcvth& thresholds = *model.pReceiverThresholds;
    const PIN* pin = nullptr;
    if (CMPNT_UsesDiffModel(&model, pins, &pin)) {
        for (const auto& needed : DIFFERENTIAL) {
            if (thresholds.*needed.ppdField == nullptr) {
                MSG_Warning(needed.missing, model.szName, pin->szPin);
            }
        }
        return;
    }
    for (const auto& needed : SINGLE_ENDED) {
        if (thresholds.*needed.ppdField == nullptr) {
            MSG_Warning(needed.missing, model.szName);
        }
    }
}

}  // namespace

void RCVTH_Open(std::string_view text, rcvth** field)
{
    FIELD_OpenRecord(text, "Receiver Threshold", {3200, 3201, {3202, 3204}}, RCVTH_Free, field);
}

void RCVTH_Line(std::string_view text, rcvth* thresholds)
{
    if (thresholds == nullptr) {
        return;
    }
    const std::string_view name = FIELD_ItemName(text);
    if (const RCVTH_Number* number = FIELD_FindByName(RCVTH_NUMBERS, name); number != nullptr) {
        ReadNumber(*number, text, *thresholds);
    } else if (name == SUPPLY) {
        ReadSupply(text, *thresholds);
    } else {
        MSG_ErrorLine(3230);
    }
}

void RCVTH_Close(const rcvth* thresholds, std::string_view modelName)
{
    if (thresholds != nullptr && thresholds->pdThresholdSensitivity != nullptr &&
        thresholds->pszReferenceSupply == nullptr) {
        MSG_Error(3205, modelName);
    }
}

void RCVTH_Free(rcvth* thresholds)
{
    if (thresholds == nullptr) {
        return;
    }
    for (const RCVTH_Number& number : RCVTH_NUMBERS) {
        CMN_Release(thresholds->*number.ppdField);
    }
    CMN_Release(thresholds->pszReferenceSupply);
    CMN_Free(thresholds);
}

void RCVTH_CheckUse(nuibis_mdl* models, const CMPNT* components, msel* selectors)
{
    CMPNT_DiffPins pins(components, selectors);
    for (nuibis_mdl* model = models; model != nullptr; model = model->pNext) {
        if (model->pReceiverThresholds != nullptr) {
            CheckModel(*model, pins);
        }
    }
}
