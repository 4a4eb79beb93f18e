#include "ibis/source/nuibis_submdl.h"

#include "ibis/source/nuibis_corner.h"
#include "ibis/source/nuibis_crv.h"
#include "ibis/source/nuibis_field.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_idly.h"
#include "ibis/source/nuibis_list.h"
#include "ibis/source/nuibis_ramp.h"
#include "ibis/source/nuibis_smspec.h"
#include "ibis/source/nuibis_wvfrm.h"

#include <algorithm>
#include <array>

namespace
{

constexpr unsigned NAME_LIMIT = 40;  // in all versions

// Module state, reset by SUBMDL_Init.
submdl* gpCurSubmodel = nullptr;             // open submodel, null outside the group
nuibis_keyword geSubmodelKeyword = NOT_KEY;  // keyword whose lines are being read

LIST_Index<submdl, &submdl::szName> gSubmodels;  // follows the list that was last looked into

// [Submodel] ----------------------------------------------------------------------------------------------

void ReadName(std::string_view text)
{
    CMN_SkipKeyword(text);
    const CMN_TokenList tokens = CMN_Split(text, 1);
    if (tokens.iFound == 0) {
        MSG_ErrorLine(2410);
        return;
    }
    if (tokens.iFound > 1) {
        MSG_ErrorLine(2411, tokens.iFound, "Submodel", 1);
    }
    if (!FIELD_SetName(gpCurSubmodel->szName, tokens[0], NAME_LIMIT, 2412)) {
        return;
    }
    const std::string_view name = gpCurSubmodel->szName;
    if (!CMN_IsNotReserved(name)) {
        MSG_ErrorLine(2413, name);
    }
    if (SUBMDL_Find(name, gpCurSubmodel->pNext) != nullptr) {
        MSG_ErrorLine(2414, name);
    }
}

void ReadSubparameter(std::string_view text)
{
    static constexpr std::array<std::string_view, 3> words{SUBMDL_TYPE_WORDS[0], SUBMDL_TYPE_WORDS[1],
                                                           SUBMDL_TYPE_WORDS[2]};
    const std::string_view name = FIELD_ItemName(text);
    if (name != "Submodel_type") {
        MSG_ErrorLine(2416);
        return;
    }
    if (gpCurSubmodel->eSubmodelType != SUBMDL_UNSEEN) {
        MSG_ErrorLine(2417, name, gpCurSubmodel->szName);
        return;
    }
    const std::size_t admitted = geIbisVersion < IBIS_VER_4 ? 2 : words.size();
    const int row =
        FIELD_ReadWord(text, name, std::span(words).first(admitted), {2418, 2419, 2420}, {2421, 2422});
    gpCurSubmodel->eSubmodelType =
        row < 0 ? SUBMDL_NO_TYPE : static_cast<submdl_type>(SUBMDL_DYNAMIC_CLAMP + row);
}

void CloseSubparameters()
{
    if (gpCurSubmodel->eSubmodelType == SUBMDL_UNSEEN) {
        MSG_Error(2423, gpCurSubmodel->szName, "Submodel_type");
    }
}

// The keywords behind it ----------------------------------------------------------------------------------

void OpenSpec(std::string_view text)
{
    const submdl& s = *gpCurSubmodel;
    if (s.pPullup != nullptr || s.pPulldown != nullptr || s.pPowerClamp != nullptr ||
        s.pGndClamp != nullptr || s.pGndPulse != nullptr || s.pPowerPulse != nullptr || s.pRamp != nullptr ||
        s.pRising != nullptr || s.pFalling != nullptr) {
        MSG_ErrorLine(2406);
    }
    SMSPEC_Open(text, &gpCurSubmodel->pSpec);
}

void ReadSpecLine(std::string_view text)
{
    SMSPEC_Line(text, gpCurSubmodel->pSpec, gpCurSubmodel->szName);
}

void CloseSpec()
{
    SMSPEC_Close(gpCurSubmodel->pSpec, gpCurSubmodel->szName);
}

// One of each pulse table, a later one taking the place of the former.
template <wvfrm* submdl::*Field>
void OpenPulse(std::string_view text, MSG_Plain repeated, std::string_view label)
{
    wvfrm*& field = gpCurSubmodel->*Field;
    if (field != nullptr) {
        MSG_ErrorLine(repeated);
        WVFRM_Free(field);
        field = nullptr;
    }
    WVFRM_Open(text, field, label);
}

void OpenGndPulse(std::string_view text)
{
    OpenPulse<&submdl::pGndPulse>(text, 2404, "GND Pulse");
}

void OpenPowerPulse(std::string_view text)
{
    OpenPulse<&submdl::pPowerPulse>(text, 2405, "POWER Pulse");
}

void ReadGndPulse(std::string_view text)
{
    WVFRM_Line(text, "GND Pulse Table");
}

void ReadPowerPulse(std::string_view text)
{
    WVFRM_Line(text, "POWER Pulse Table");
}

void CloseGndPulse()
{
    WVFRM_Close("GND Pulse Table", WVFRM_PULSE);
}

void ClosePowerPulse()
{
    WVFRM_Close("POWER Pulse Table", WVFRM_PULSE);
}

// The I-V tables, in the order of their keywords. Their checks know them by the keywords of a model, and take
// every submodel for an ordinary driver.
struct CurveKeyword {
    nuibis_keyword eModelKeyword;
    std::string_view sLabel;
    crv* submdl::*ppField;
};

constexpr std::array<CurveKeyword, 4> CURVES{{
    {KEY_PULLDOWN, "Pulldown", &submdl::pPulldown},
    {KEY_PULLUP, "Pullup", &submdl::pPullup},
    {KEY_GND_CLAMP, "GND Clamp", &submdl::pGndClamp},
    {KEY_POWER_CLAMP, "POWER Clamp", &submdl::pPowerClamp},
}};

const CurveKeyword& CurrentCurve()
{
    return CURVES[static_cast<std::size_t>(geSubmodelKeyword - KEY_SUB_PULLDOWN)];
}

void OpenCurve(std::string_view text)
{
    CRV_Open(text, CurrentCurve().sLabel, &(gpCurSubmodel->*CurrentCurve().ppField));
}

void ReadCurve(std::string_view text)
{
    CRV_AddLine(text, gpCurSubmodel->*CurrentCurve().ppField, CurrentCurve().sLabel);
}

void CloseCurve()
{
    const CurveKeyword& row = CurrentCurve();
    CRV_Close(gpCurSubmodel->szName, MODEL_OUTPUT, row.eModelKeyword, gpCurSubmodel->*row.ppField, row.sLabel,
              "Submodel");
}

void OpenRamp(std::string_view text)
{
    RAMP_Open(text, &gpCurSubmodel->pRamp);
}

void ReadRamp(std::string_view text)
{
    RAMP_Line(text, gpCurSubmodel->pRamp, gpCurSubmodel->szName);
}

void CloseRamp()
{
    RAMP_Close(gpCurSubmodel->pRamp);
}

void OpenRising(std::string_view text)
{
    WVFRM_Open(text, gpCurSubmodel->pRising, "Rising Waveform");
}

void ReadRising(std::string_view text)
{
    WVFRM_Line(text, "Rising Waveform");
}

void CloseRising()
{
    WVFRM_Close("Rising", WVFRM_DRIVER);
}

void OpenFalling(std::string_view text)
{
    WVFRM_Open(text, gpCurSubmodel->pFalling, "Falling Waveform");
}

void ReadFalling(std::string_view text)
{
    WVFRM_Line(text, "Falling Waveform");
}

void CloseFalling()
{
    WVFRM_Close("Falling", WVFRM_DRIVER);
}

void OpenDelay(std::string_view text)
{
    IDLY_Open(text, &gpCurSubmodel->pInitialDelay);
}

void ReadDelay(std::string_view text)
{
    IDLY_Line(gpCurSubmodel->pInitialDelay, text);
}

void CloseDelay()
{
    IDLY_Close(gpCurSubmodel->pInitialDelay, gpCurSubmodel->szName, "SubModel");
}

// The keyword table ---------------------------------------------------------------------------------------

struct Keyword {
    void (*keywordLine)(std::string_view text);  // `text` still begins with "["
    void (*dataLine)(std::string_view text);
    void (*close)();  // when the keyword is left
};

// By code, from [Submodel] on.
constexpr std::array<Keyword, KEY_SUB_INITIAL_DELAY - KEY_SUBMODEL + 1> KEYWORDS{{
    {ReadName, ReadSubparameter, CloseSubparameters},
    {OpenSpec, ReadSpecLine, CloseSpec},
    {OpenGndPulse, ReadGndPulse, CloseGndPulse},
    {OpenPowerPulse, ReadPowerPulse, ClosePowerPulse},
    {OpenCurve, ReadCurve, CloseCurve},
    {OpenCurve, ReadCurve, CloseCurve},
    {OpenCurve, ReadCurve, CloseCurve},
    {OpenCurve, ReadCurve, CloseCurve},
    {OpenRamp, ReadRamp, CloseRamp},
    {OpenRising, ReadRising, CloseRising},
    {OpenFalling, ReadFalling, CloseFalling},
    {OpenDelay, ReadDelay, CloseDelay},
}};

const Keyword* FindKeyword(nuibis_keyword code)
{
    const bool known = code >= KEY_SUBMODEL && code <= KEY_SUB_INITIAL_DELAY;
    return known ? &KEYWORDS[static_cast<std::size_t>(code - KEY_SUBMODEL)] : nullptr;
}

// A whole submodel ----------------------------------------------------------------------------------------

bool HasSpecItem(const submdl& s, rng* smspec::*item)
{
    return s.pSpec != nullptr && s.pSpec->*item != nullptr;
}

bool LacksSpec(const submdl& s)
{
    return s.pSpec == nullptr;
}

// Told only of a specification that is there.
bool SpecLacksRise(const submdl& s)
{
    return s.pSpec != nullptr && s.pSpec->pVTriggerR == nullptr;
}

bool SpecLacksFall(const submdl& s)
{
    return s.pSpec != nullptr && s.pSpec->pVTriggerF == nullptr;
}

bool HasOffDelay(const submdl& s)
{
    return HasSpecItem(s, &smspec::pOffDelay);
}

bool LacksRamp(const submdl& s)
{
    return s.pRamp == nullptr;
}

bool LacksDrive(const submdl& s)
{
    return s.pPullup == nullptr && s.pPulldown == nullptr;
}

bool DrivesBothWays(const submdl& s)
{
    return s.pPullup != nullptr && s.pPulldown != nullptr;
}

bool HasOffDelayBothWays(const submdl& s)
{
    return HasOffDelay(s) && DrivesBothWays(s);
}

bool GndPulseLacksTrigger(const submdl& s)
{
    return s.pGndPulse != nullptr && !HasSpecItem(s, &smspec::pVTriggerF);
}

bool PowerPulseLacksTrigger(const submdl& s)
{
    return s.pPowerPulse != nullptr && !HasSpecItem(s, &smspec::pVTriggerR);
}

bool LacksClamp(const submdl& s)
{
    return s.pGndPulse == nullptr && s.pPowerPulse == nullptr && s.pGndClamp == nullptr &&
           s.pPowerClamp == nullptr;
}

// What a type needs and must not have, in the order of the messages.
struct Rule {
    submdl_type eType;
    bool (*isBroken)(const submdl& s);
    MSG_Text1 message;  // (submodel)
};

constexpr auto RULES = std::to_array<Rule>({
    {SUBMDL_BUS_HOLD, LacksSpec, 2424},
    {SUBMDL_BUS_HOLD, SpecLacksRise, 2425},
    {SUBMDL_BUS_HOLD, SpecLacksFall, 2426},
    {SUBMDL_BUS_HOLD, HasOffDelayBothWays, 2427},
    {SUBMDL_BUS_HOLD, LacksRamp, 2428},
    {SUBMDL_BUS_HOLD, LacksDrive, 2429},
    {SUBMDL_DYNAMIC_CLAMP, GndPulseLacksTrigger, 2430},
    {SUBMDL_DYNAMIC_CLAMP, PowerPulseLacksTrigger, 2431},
    {SUBMDL_DYNAMIC_CLAMP, LacksClamp, 2432},
    {SUBMDL_DYNAMIC_CLAMP, HasOffDelay, 2433},
    {SUBMDL_FALL_BACK, LacksSpec, 2434},
    {SUBMDL_FALL_BACK, SpecLacksRise, 2435},
    {SUBMDL_FALL_BACK, SpecLacksFall, 2436},
    {SUBMDL_FALL_BACK, LacksDrive, 2437},
    {SUBMDL_FALL_BACK, DrivesBothWays, 2438},
    {SUBMDL_FALL_BACK, LacksRamp, 2439},
    {SUBMDL_FALL_BACK, HasOffDelay, 2440},
});

// A row of a waveform and a trigger voltage at one corner.
struct CornerPair {
    CORNER_Value table;
    CORNER_Value trigger;
};

// Where one of the two is "NA", its typical value stands for it.
CornerPair PairOf(const rngp& row, const rng& trigger, nuibis_corner corner)
{
    const RNGP_Column& column = CORNER_Column(corner);
    CornerPair pair{{row.*column.pdValue, row.*column.peStatus}, CORNER_At(trigger, corner)};
    if (pair.table.eStatus == NUM_VALUE && pair.trigger.eStatus == NUM_NA) {
        pair.trigger = CORNER_At(trigger, CORNER_TYP);
    } else if (pair.table.eStatus == NUM_NA && pair.trigger.eStatus == NUM_VALUE) {
        pair.table = {row.dTyp, row.eTyp};
    }
    return pair;
}

// Warns of each corner at which the waveform's row lies on the wrong side of the trigger.
void CompareCorners(const submdl& submodel, const rngp& row, const rng& trigger, bool wrongAbove,
                    MSG_Text2 message)
{
    static constexpr std::array<const char*, 3> names{"Typ", "Min", "Max"};
    for (const nuibis_corner corner : CORNERS) {
        const auto [table, voltage] = PairOf(row, trigger, corner);
        if (table.eStatus == NUM_VALUE && voltage.eStatus == NUM_VALUE &&
            (wrongAbove ? table.dValue > voltage.dValue : table.dValue < voltage.dValue)) {
            MSG_Warning(message, submodel.szName, names[CORNER_Index(corner)]);
        }
    }
}

// A trigger lies between the start and the end of the waveforms that it starts.
struct TriggerCheck {
    rng* smspec::*ppTrigger;
    wvfrm* submdl::*ppWaveforms;
    bool bRising;
    MSG_Text2 start;  // (submodel, corner)
    MSG_Text2 end;    // (submodel, corner)
};

constexpr std::array<TriggerCheck, 2> TRIGGER_CHECKS{{
    {&smspec::pVTriggerR, &submdl::pRising, true, 2441, 2442},
    {&smspec::pVTriggerF, &submdl::pFalling, false, 2443, 2444},
}};

const rngp* LastRow(const rngp* row)
{
    while (row->pNext != nullptr) {
        row = row->pNext;
    }
    return row;
}

void CheckTrigger(const submdl& submodel, const TriggerCheck& check)
{
    const rng* const trigger = submodel.pSpec->*check.ppTrigger;
    if (trigger == nullptr || trigger->eTyp != NUM_VALUE) {
        return;
    }
    for (const wvfrm* w = submodel.*check.ppWaveforms; w != nullptr; w = w->pNext) {
        if (w->pRows == nullptr || w->pRows->eTyp != NUM_VALUE) {
            continue;
        }
        CompareCorners(submodel, *w->pRows, *trigger, check.bRising, check.start);
        if (const rngp* last = LastRow(w->pRows); last->eTyp == NUM_VALUE) {
            CompareCorners(submodel, *last, *trigger, !check.bRising, check.end);
        }
    }
}

bool HasComposite(const wvfrm* list)
{
    while (list != nullptr && list->pComposite == nullptr) {
        list = list->pNext;
    }
    return list != nullptr;
}

// A delay shifts tables that must be there.
void CheckDelay(const submdl& s)
{
    if (s.pInitialDelay == nullptr) {
        return;
    }
    if (s.pInitialDelay->pVT != nullptr && s.pRising == nullptr && s.pFalling == nullptr) {
        MSG_Error(2445, s.szName, "V-T", "Rising or Falling Waveform");
    }
    if (s.pInitialDelay->pIT != nullptr && !HasComposite(s.pRising) && !HasComposite(s.pFalling)) {
        MSG_Error(2445, s.szName, "I-T", "Composite Current Waveform");
    }
}

void FreeContent(submdl& submodel)
{
    for (const CurveKeyword& curve : CURVES) {
        CRV_Free(submodel.*curve.ppField);
    }
    RAMP_Free(submodel.pRamp);
    for (wvfrm* const list :
         {submodel.pRising, submodel.pFalling, submodel.pGndPulse, submodel.pPowerPulse}) {
        WVFRM_Free(list);
    }
    IDLY_Free(submodel.pInitialDelay);
    SMSPEC_Free(submodel.pSpec);
}

}  // namespace

void SUBMDL_Init()
{
    gpCurSubmodel = nullptr;
    geSubmodelKeyword = NOT_KEY;
    ibis* root = nullptr;
    if (!IBIS_GetCurrent(&root)) {
        MSG_Bug(2401);
        return;
    }
    if (!CMN_Alloc(gpCurSubmodel)) {
        MSG_Bug(2400, __FILE_NAME__, __LINE__);
        return;
    }
    IBIS_Add<&ibis::pSubmodels>(root, gpCurSubmodel);
}

void SUBMDL_Line(line_type lineType, nuibis_keyword code, std::string_view text)
{
    if (gpCurSubmodel == nullptr) {
        if (lineType == LINE_KEYWORD) {
            MSG_ErrorLine(2402);
        } else {
            MSG_ErrorLine(2403);
        }
        return;
    }
    const Keyword* const keyword = FindKeyword(code);
    if (keyword == nullptr) {
        MSG_BugLine(2407, __FILE_NAME__, __LINE__);
    } else if (lineType == LINE_KEYWORD) {
        geSubmodelKeyword = code;
        keyword->keywordLine(text);
    } else {
        keyword->dataLine(text);
    }
}

void SUBMDL_Leave(nuibis_keyword newCode)
{
    if (gpCurSubmodel == nullptr) {
        return;
    }
    if (const Keyword* keyword = FindKeyword(geSubmodelKeyword); keyword != nullptr) {
        keyword->close();
    }
    if (newCode <= KEY_SUBMODEL || newCode > KEY_SUB_INITIAL_DELAY) {
        SUBMDL_Validate(*gpCurSubmodel);
        gpCurSubmodel = nullptr;
    }
}

void SUBMDL_FreeList(submdl* list)
{
    gpCurSubmodel = nullptr;
    gSubmodels.reset();
    CMN_FreeList(list, FreeContent);
}

void SUBMDL_Validate(const submdl& submodel)
{
    for (const Rule& rule : RULES) {
        if (submodel.eSubmodelType == rule.eType && rule.isBroken(submodel)) {
            MSG_Error(rule.message, submodel.szName);
        }
    }
    if (submodel.pSpec != nullptr) {
        for (const TriggerCheck& check : TRIGGER_CHECKS) {
            CheckTrigger(submodel, check);
        }
    }
    CheckDelay(submodel);
}

submdl* SUBMDL_Find(std::string_view name, submdl* list)
{
    return gSubmodels.find(list, name);
}
