#include "ibis/source/nuibis_idly.h"
#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_mspec.h"
#include "ibis/source/nuibis_rcvth.h"
#include "ibis/source/nuibis_sinfo.h"
#include "ibis/source/nuibis_wvfrm.h"

#include <array>

namespace
{

struct Item {
    std::string_view sLabel;
    bool (*isGiven)(const nuibis_mdl& model);
};

void CheckCapacitance(const nuibis_mdl& model)
{
    if (model.pCComp == nullptr && model.pCCompPullup == nullptr && model.pCCompPulldown == nullptr &&
        model.pCCompPowerClamp == nullptr && model.pCCompGndClamp == nullptr &&
        model.pExternalModel == nullptr) {
        MSG_Error(181, model.szName);
    }
}

void CheckInputThresholds(const nuibis_mdl& model)
{
    if (!MDL_IsOneOf(model.eModelType, MDL_RECEIVERS)) {
        return;
    }
    const bool replaced = model.pReceiverThresholds != nullptr;
    if (model.pdVinl == nullptr && !replaced) {
        MSG_Warning(184, model.szName, MDL_TypeText(model.eModelType), "Vinl");
    }
    if (model.pdVinh == nullptr && !replaced) {
        MSG_Warning(184, model.szName, MDL_TypeText(model.eModelType), "Vinh");
    }
    if (model.pdVinl != nullptr && model.pdVinh != nullptr && *model.pdVinl > *model.pdVinh) {
        MSG_Warning(274, model.szName);
    }
}

void CheckTerminator(const nuibis_mdl& model)
{
    static constexpr std::array<Item, 4> items{{
        {"Rgnd", MDL_Has<&nuibis_mdl::pRgnd>},
        {"Rpower", MDL_Has<&nuibis_mdl::pRpower>},
        {"Rac", MDL_Has<&nuibis_mdl::pRac>},
        {"Cac", MDL_Has<&nuibis_mdl::pCac>},
    }};
    for (const Item& item : items) {
        if (model.eModelType != MODEL_TERMINATOR && item.isGiven(model)) {
            MSG_Error(185, model.szName, item.sLabel);
        }
    }
    // The two are one branch in series.
    if (model.pRac != nullptr && model.pCac == nullptr) {
        MSG_Error(187, model.szName);
    }
    if (model.pCac != nullptr && model.pRac == nullptr) {
        MSG_Error(186, model.szName);
    }
}

void CheckReferences(const nuibis_mdl& model)
{
    static constexpr std::array<Item, 4> items{{
        {"Pullup Reference", MDL_Has<&nuibis_mdl::pPullupRef>},
        {"Pulldown Reference", MDL_Has<&nuibis_mdl::pPulldownRef>},
        {"POWER Clamp Reference", MDL_Has<&nuibis_mdl::pPowerClampRef>},
        {"GND Clamp Reference", MDL_Has<&nuibis_mdl::pGndClampRef>},
    }};
    for (const Item& item : items) {
        if (model.pVoltageRange == nullptr && !item.isGiven(model)) {
            MSG_Error(188, model.szName, item.sLabel);
        }
    }
}

// A model without a type is taken for a driver.
void CheckRamp(const nuibis_mdl& model)
{
    static constexpr MDL_TypeSet free =
        MDL_Types({MODEL_INPUT, MODEL_INPUT_ECL, MODEL_TERMINATOR, MODEL_INPUT_DIFF});
    if (MDL_IsOneOf(model.eModelType, MDL_SERIES_TYPES)) {
        if (model.pRamp != nullptr) {
            MSG_Error(189, model.szName);
        }
    } else if (!MDL_IsOneOf(model.eModelType, free) && model.pRamp == nullptr) {
        MSG_Error(190, model.szName);
    }
}

void CheckSeriesExclusions(const nuibis_mdl& model, MSG_Text2 notAllowed)
{
    static constexpr std::array<Item, 9> items{{
        {"Pullup", MDL_Has<&nuibis_mdl::pPullup>},
        {"Pulldown", MDL_Has<&nuibis_mdl::pPulldown>},
        {"POWER_Clamp", MDL_Has<&nuibis_mdl::pPowerClamp>},
        {"GND_Clamp", MDL_Has<&nuibis_mdl::pGndClamp>},
        {"Rising Waveform", MDL_Has<&nuibis_mdl::pRising>},
        {"Falling Waveform", MDL_Has<&nuibis_mdl::pFalling>},
        {"TTgnd", MDL_Has<&nuibis_mdl::pTTgnd>},
        {"TTpower", MDL_Has<&nuibis_mdl::pTTpower>},
        {"Driver Schedule", MDL_Has<&nuibis_mdl::pDriverSchedule>},
    }};
    for (const Item& item : items) {
        if (item.isGiven(model)) {
            MSG_Error(notAllowed, model.szName, item.sLabel);
        }
    }
    if (model.pModelSpec != nullptr) {
        MSG_Warning(notAllowed, model.szName, "Model Spec");
    }
}

// A plain Series model has its elements where a switch has those of its closed state.
void CheckSeries(const nuibis_mdl& model)
{
    const bool isSwitch = model.eModelType == MODEL_SERIES_SWITCH;
    if (!isSwitch && model.eModelType != MODEL_SERIES) {
        return;
    }
    CheckSeriesExclusions(model, isSwitch ? MSG_Text2(192) : MSG_Text2(191));
    if (model.pOn != nullptr) {
        SINFO_Check(model.pOn, model.szName, isSwitch ? "[On]" : "");
    } else if (isSwitch) {
        MSG_Error(193, model.szName);
    }
    if (isSwitch && model.pOff != nullptr) {
        SINFO_Check(model.pOff, model.szName, "[Off]");
    } else if (isSwitch) {
        MSG_Error(194, model.szName);
    }
}

// The supply that a receiver's threshold follows is one of the model.
void CheckReceiverReference(const nuibis_mdl& model)
{
    struct Reference {
        std::string_view sWord;
        rng* nuibis_mdl::*ppField;
        MSG_Text1 missing;
    };
    static constexpr std::array<Reference, RCVTH_SUPPLIES.size()> references{{
        {RCVTH_SUPPLIES[0], &nuibis_mdl::pPowerClampRef, 195},
        {RCVTH_SUPPLIES[1], &nuibis_mdl::pGndClampRef, 196},
        {RCVTH_SUPPLIES[2], &nuibis_mdl::pPullupRef, 197},
        {RCVTH_SUPPLIES[3], &nuibis_mdl::pPulldownRef, 198},
        {RCVTH_SUPPLIES[4], &nuibis_mdl::pExternalRef, 199},
    }};
    if (model.pReceiverThresholds == nullptr || model.pReceiverThresholds->pszReferenceSupply == nullptr) {
        return;
    }
    for (const Reference& reference : references) {
        if (reference.sWord == model.pReceiverThresholds->pszReferenceSupply &&
            model.*reference.ppField == nullptr) {
            MSG_Error(reference.missing, model.szName);
        }
    }
}

bool LacksLoad(const nuibis_mdl& model, const double* value, rng* mspec::*field)
{
    return value == nullptr && (model.pModelSpec == nullptr || model.pModelSpec->*field == nullptr);
}

// What the timing of a driver is measured with. The differential load counts only where the model itself has
// it.
void CheckTestLoad(const nuibis_mdl& model)
{
    static constexpr MDL_TypeSet pushPull = MDL_Types({MODEL_OUTPUT, MODEL_IO, MODEL_3STATE});
    static constexpr MDL_TypeSet oneSided = MDL_Types(
        {MODEL_OPEN_DRAIN, MODEL_IO_OPEN_DRAIN, MODEL_OPEN_SINK, MODEL_IO_OPEN_SINK, MODEL_OPEN_SOURCE,
         MODEL_IO_OPEN_SOURCE, MODEL_OUTPUT_ECL, MODEL_IO_ECL, MODEL_3STATE_ECL});
    static constexpr MDL_TypeSet differential =
        MDL_Types({MODEL_IO_DIFF, MODEL_OUTPUT_DIFF, MODEL_3STATE_DIFF});
    const bool noVmeas = LacksLoad(model, model.pdVmeas, &mspec::pVmeas);
    const bool noVref = LacksLoad(model, model.pdVref, &mspec::pVref);
    const bool noRref = LacksLoad(model, model.pdRref, &mspec::pRref);
    if (MDL_IsOneOf(model.eModelType, pushPull) && noVmeas) {
        MSG_Warning(201, model.szName);
    }
    if (MDL_IsOneOf(model.eModelType, oneSided) && (noVmeas || noVref || noRref)) {
        MSG_Warning(200, model.szName);
    }
    if (MDL_IsOneOf(model.eModelType, differential) && model.pdRrefDiff == nullptr &&
        model.pdCrefDiff == nullptr) {
        MSG_Warning(202, model.szName);
    }
}

bool HasComposite(const wvfrm* list)
{
    while (list != nullptr && list->pComposite == nullptr) {
        list = list->pNext;
    }
    return list != nullptr;
}

// A delay is cut from tables that exist.
void CheckInitialDelay(const nuibis_mdl& model)
{
    if (model.pInitialDelay == nullptr) {
        return;
    }
    if (model.pInitialDelay->pVT != nullptr && model.pRising == nullptr && model.pFalling == nullptr) {
        MSG_Error(273, model.szName, "V-T", "Rising or Falling Waveform");
    }
    if (model.pInitialDelay->pIT != nullptr && !HasComposite(model.pRising) &&
        !HasComposite(model.pFalling)) {
        MSG_Error(273, model.szName, "I-T", "Composite Current Waveform");
    }
}

}  // namespace

void MDL_Validate(const nuibis_mdl& model)
{
    CheckCapacitance(model);
    CheckInputThresholds(model);
    CheckTerminator(model);
    CheckReferences(model);
    CheckRamp(model);
    CheckSeries(model);
    CheckReceiverReference(model);
    CheckTestLoad(model);
    CheckInitialDelay(model);
}
