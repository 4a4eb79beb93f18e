#include "ibis/source/nuibis_mspec.h"

#include "ibis/source/nuibis_field.h"
#include "ibis/source/nuibis_mdl.h"

namespace
{

unsigned guiSpecLine = 0;  // line of the [Model Spec] keyword, set by MSPEC_Open

// Subparameters -------------------------------------------------------------------------------------------

constexpr MDL_TypeSet NEVER = 0;
constexpr MDL_TypeSet NO_RECEIVER = MDL_ALL_TYPES & ~MDL_RECEIVERS;
constexpr MDL_TypeSet NO_PULSE_DRIVE = MDL_SERIES_TYPES | MDL_Types({MODEL_TERMINATOR});
constexpr MDL_TypeSet NO_DRIVER = NO_PULSE_DRIVE | MDL_Types({MODEL_INPUT, MODEL_INPUT_ECL});

struct Parameter {
    std::string_view sName;
    rng* mspec::*ppField;
    ibis_ver eFrom;       ///< first version that has it
    MDL_TypeSet uiWrong;  ///< types that should not have it
};

// The differential test load belongs to the model's own subparameters, whatever the type.
constexpr std::array<Parameter, 35> PARAMETERS{{
    {"Vinh", &mspec::pVinh, IBIS_VER_NONE, NO_RECEIVER},
    {"Vinl", &mspec::pVinl, IBIS_VER_NONE, NO_RECEIVER},
    {"Vinh+", &mspec::pVinhPlus, IBIS_VER_NONE, NO_RECEIVER},
    {"Vinh-", &mspec::pVinhMinus, IBIS_VER_NONE, NO_RECEIVER},
    {"Vinl+", &mspec::pVinlPlus, IBIS_VER_NONE, NO_RECEIVER},
    {"Vinl-", &mspec::pVinlMinus, IBIS_VER_NONE, NO_RECEIVER},
    {"S_overshoot_low", &mspec::pSOvershootLow, IBIS_VER_NONE, MDL_SERIES_TYPES},
    {"S_overshoot_high", &mspec::pSOvershootHigh, IBIS_VER_NONE, MDL_SERIES_TYPES},
    {"D_overshoot_low", &mspec::pDOvershootLow, IBIS_VER_NONE, MDL_SERIES_TYPES},
    {"D_overshoot_high", &mspec::pDOvershootHigh, IBIS_VER_NONE, MDL_SERIES_TYPES},
    {"D_overshoot_time", &mspec::pDOvershootTime, IBIS_VER_NONE, MDL_SERIES_TYPES},
    {"Pulse_high", &mspec::pPulseHigh, IBIS_VER_NONE, NO_RECEIVER},
    {"Pulse_low", &mspec::pPulseLow, IBIS_VER_NONE, NO_RECEIVER},
    {"Pulse_time", &mspec::pPulseTime, IBIS_VER_NONE, NO_RECEIVER},
    {"Vmeas", &mspec::pVmeas, IBIS_VER_NONE, NO_DRIVER},
    {"Vref", &mspec::pVref, IBIS_VER_4, NO_DRIVER},
    {"Cref", &mspec::pCref, IBIS_VER_4, NO_DRIVER},
    {"Rref", &mspec::pRref, IBIS_VER_4, NO_DRIVER},
    {"Rref_diff", &mspec::pRrefDiff, IBIS_VER_4, MDL_ALL_TYPES},
    {"Cref_diff", &mspec::pCrefDiff, IBIS_VER_4, MDL_ALL_TYPES},
    {"Vref_rising", &mspec::pVrefRising, IBIS_VER_4, NO_DRIVER},
    {"Vref_falling", &mspec::pVrefFalling, IBIS_VER_4, NO_DRIVER},
    {"Cref_rising", &mspec::pCrefRising, IBIS_VER_4, NO_DRIVER},
    {"Cref_falling", &mspec::pCrefFalling, IBIS_VER_4, NO_DRIVER},
    {"Rref_rising", &mspec::pRrefRising, IBIS_VER_4, NO_DRIVER},
    {"Rref_falling", &mspec::pRrefFalling, IBIS_VER_4, NO_DRIVER},
    {"Vmeas_rising", &mspec::pVmeasRising, IBIS_VER_4, NO_DRIVER},
    {"Vmeas_falling", &mspec::pVmeasFalling, IBIS_VER_4, NO_DRIVER},
    {"D_overshoot_ampl_h", &mspec::pDOvershootAmplH, IBIS_VER_5, NEVER},
    {"D_overshoot_ampl_l", &mspec::pDOvershootAmplL, IBIS_VER_5, NEVER},
    {"D_overshoot_area_h", &mspec::pDOvershootAreaH, IBIS_VER_5, NEVER},
    {"D_overshoot_area_l", &mspec::pDOvershootAreaL, IBIS_VER_5, NEVER},
    {"Weak_R", &mspec::pWeakR, IBIS_VER_5, NO_PULSE_DRIVE},
    {"Weak_V", &mspec::pWeakV, IBIS_VER_5, NO_PULSE_DRIVE},
    {"Weak_I", &mspec::pWeakI, IBIS_VER_5, NO_PULSE_DRIVE},
}};

// An item of the record that is being checked, under its name in messages.
struct Item {
    std::string_view sName;
    const rng* pValue;  ///< null: not given
};

Item ItemOf(const mspec& spec, rng* mspec::*field)
{
    const auto* const row = std::find_if(PARAMETERS.begin(), PARAMETERS.end(),
                                         [field](const Parameter& p) { return p.ppField == field; });
    return {row->sName, spec.*field};
}

// Corners -------------------------------------------------------------------------------------------------

struct Corner {
    std::string_view sName;
    double rng::*pdValue;
    numstat rng::*peStatus;
};

constexpr std::array<Corner, 3> CORNERS{{
    {"Typ", &rng::dTyp, &rng::eTyp},
    {"Max", &rng::dMax, &rng::eMax},
    {"Min", &rng::dMin, &rng::eMin},
}};

bool IsNumber(const rng* r)
{
    return r != nullptr && r->eTyp == NUM_VALUE;
}

// A corner without a number has the typical value.
double EffectiveAt(const rng& r, const Corner& corner)
{
    return r.*corner.peStatus == NUM_VALUE ? r.*corner.pdValue : r.dTyp;
}

// Which way is out of the supply range.
struct Side {
    bool bHigh;
    MSG_Where wrongSign;  ///< (name with corner, line)
    /// (name, corner, limit's name, corner, line)
    MSG_Site<MSG_Kind::Text, MSG_Kind::Text, MSG_Kind::Text, MSG_Kind::Text, MSG_Kind::Integer> wrongOrder;

    bool isBeyond(double a, double b) const { return bHigh ? a > b : a < b; }
};

constexpr Side HIGH{true, 3811, 3818};
constexpr Side LOW{false, 3810, 3817};

// The value is not on the other side of zero.
void CheckSign(const Item& item, const Side& side)
{
    if (!IsNumber(item.pValue)) {
        return;
    }
    for (const Corner& corner : CORNERS) {
        if (side.isBeyond(0.0, EffectiveAt(*item.pValue, corner))) {
            std::array<char, 64> label{};
            const MSG_Arg parts[] = {item.sName, corner.sName};
            MSG_Format(label, "%s (%s)", parts);
            MSG_Warning(side.wrongSign, label.data(), guiSpecLine);
        }
    }
}

// The value lies beyond its limit at each corner that both were given for.
void CheckBeyond(const Item& item, const Item& limit, const Side& side)
{
    if (!IsNumber(item.pValue) || !IsNumber(limit.pValue)) {
        return;
    }
    for (const Corner& corner : CORNERS) {
        if (item.pValue->*corner.peStatus != NUM_ABSENT && limit.pValue->*corner.peStatus != NUM_ABSENT &&
            !side.isBeyond(EffectiveAt(*item.pValue, corner), EffectiveAt(*limit.pValue, corner))) {
            MSG_Warning(side.wrongOrder, item.sName, corner.sName, limit.sName, corner.sName, guiSpecLine);
        }
    }
}

void Require(const Item& needed, std::string_view by)
{
    if (needed.pValue == nullptr) {
        MSG_Error(3812, by, needed.sName, guiSpecLine);
    }
}

// Checks of the whole block -------------------------------------------------------------------------------

// Rising edges switch at the upper of two thresholds, falling edges at the lower. The number of a wrong order
// has no text: nothing is said.
void CheckHysteresisOrder(const rng* upper, const rng* lower)
{
    if (!IsNumber(upper) || !IsNumber(lower)) {
        return;
    }
    for (const Corner& corner : CORNERS) {
        if (upper->*corner.peStatus != NUM_ABSENT && lower->*corner.peStatus != NUM_ABSENT &&
            !(EffectiveAt(*upper, corner) >= EffectiveAt(*lower, corner))) {
            MSG_NoRow(MSG_Severity::Warning, 3820);
        }
    }
}

void CheckHysteresis(mspec& spec)
{
    const std::array<const rng*, 4> thresholds{spec.pVinhPlus, spec.pVinhMinus, spec.pVinlPlus,
                                               spec.pVinlMinus};
    const auto given = std::count_if(thresholds.begin(), thresholds.end(),
                                     [](const rng* threshold) { return threshold != nullptr; });
    spec.bHysteresis = given == 4 ? 1 : 0;
    if (given == 4) {
        CheckHysteresisOrder(spec.pVinhPlus, spec.pVinhMinus);
        CheckHysteresisOrder(spec.pVinlPlus, spec.pVinlMinus);
    } else if (given != 0) {
        MSG_Warning(3809, "", guiSpecLine);
    }
}

// A dynamic overshoot reaches beyond the static one, for a limited time.
void CheckDynamicOvershoot(const mspec& spec, rng* mspec::*dynamic, rng* mspec::*still, const Side& side)
{
    const Item overshoot = ItemOf(spec, dynamic);
    if (!IsNumber(overshoot.pValue)) {
        return;
    }
    const Item limit = ItemOf(spec, still);
    CheckSign(overshoot, side);
    Require(limit, overshoot.sName);
    CheckBeyond(overshoot, limit, side);
    Require(ItemOf(spec, &mspec::pDOvershootTime), overshoot.sName);
}

// An area needs the amplitude that it belongs to. The name of the low one is misspelt in messages.
void CheckOvershootArea(const mspec& spec, rng* mspec::*area, const Item& amplitude)
{
    const Item item = ItemOf(spec, area);
    CheckSign(item, HIGH);
    if (item.pValue != nullptr && amplitude.pValue == nullptr) {
        MSG_Error(3813, amplitude.sName, item.sName, guiSpecLine);
    }
}

// A time limit belongs to one of two voltages.
void CheckTime(const mspec& spec, rng* mspec::*time, const rng* high, const rng* low)
{
    const Item item = ItemOf(spec, time);
    if (high != nullptr || low != nullptr) {
        CheckSign(item, HIGH);
    } else if (item.pValue != nullptr) {
        MSG_Warning(3814, item.sName, guiSpecLine);
    }
}

// What a pulse has to stay short of.
struct PulseLimit {
    rng* mspec::*ppPulse;
    rng* mspec::*ppHysteresis;      ///< threshold of a block with all four
    rng* mspec::*ppThreshold;       ///< threshold of a block without
    double* nuibis_mdl::*ppdModel;  ///< the model's own, under the same name
    Side side;
};

constexpr PulseLimit PULSE_HIGH{&mspec::pPulseHigh, &mspec::pVinhMinus, &mspec::pVinl, &nuibis_mdl::pdVinl,
                                HIGH};
constexpr PulseLimit PULSE_LOW{&mspec::pPulseLow, &mspec::pVinlPlus, &mspec::pVinh, &nuibis_mdl::pdVinh, LOW};

void CheckPulse(const mspec& spec, const nuibis_mdl& model, const PulseLimit& row)
{
    const Item pulse = ItemOf(spec, row.ppPulse);
    if (!IsNumber(pulse.pValue)) {
        return;
    }
    Require(ItemOf(spec, &mspec::pPulseTime), pulse.sName);
    Item limit = ItemOf(spec, spec.bHysteresis != 0 ? row.ppHysteresis : row.ppThreshold);
    rng flat{};
    if (limit.pValue == nullptr && model.*row.ppdModel != nullptr) {
        const double value = *(model.*row.ppdModel);
        flat = {value, NUM_VALUE, value, NUM_VALUE, value, NUM_VALUE};
        limit.pValue = &flat;
    }
    Require({"Thresholds or Hysteresis Thresholds", limit.pValue}, pulse.sName);
    CheckBeyond(pulse, limit, row.side);
}

// Half of an edge-dependent pair: it needs the other half and stands in place of the common value.
void CheckEdge(const Item& edge, const Item& other, const Item& common)
{
    if (edge.pValue == nullptr) {
        return;
    }
    if (other.pValue == nullptr) {
        MSG_Error(3815, other.sName, edge.sName);
    }
    if (common.pValue != nullptr) {
        MSG_Error(3816, common.sName, edge.sName);
    }
}

void CheckEdges(const mspec& spec)
{
    struct Pair {
        rng* mspec::*ppCommon;
        rng* mspec::*ppRising;
        rng* mspec::*ppFalling;
    };
    static constexpr std::array<Pair, 4> pairs{{
        {&mspec::pVmeas, &mspec::pVmeasRising, &mspec::pVmeasFalling},
        {&mspec::pVref, &mspec::pVrefRising, &mspec::pVrefFalling},
        {&mspec::pCref, &mspec::pCrefRising, &mspec::pCrefFalling},
        {&mspec::pRref, &mspec::pRrefRising, &mspec::pRrefFalling},
    }};
    for (const Pair& pair : pairs) {
        const Item common = ItemOf(spec, pair.ppCommon);
        const Item rising = ItemOf(spec, pair.ppRising);
        const Item falling = ItemOf(spec, pair.ppFalling);
        CheckEdge(rising, falling, common);
        CheckEdge(falling, rising, common);
    }
}

// A weak driver is a voltage behind a resistance, or a current up to that voltage.
void CheckWeakDrive(const mspec& spec)
{
    const bool resistance = spec.pWeakR != nullptr;
    const bool current = spec.pWeakI != nullptr;
    const bool voltage = spec.pWeakV != nullptr;
    if (resistance && current) {
        MSG_Error(3821);
    }
    if (resistance && !voltage) {
        MSG_Error(3822);
    }
    if (current && !voltage) {
        MSG_Error(3822);
    }
    if (voltage && !resistance && !current) {
        MSG_Error(3822);
    }
}

}  // namespace

void MSPEC_Open(std::string_view text, mspec** field)
{
    guiSpecLine = PARSE_GetLineNumber();
    FIELD_OpenRecord(text, "Model Spec", {3800, 3801, {3802, 3804}}, MSPEC_Free, field);
}

void MSPEC_Line(std::string_view text, mspec* spec, const nuibis_mdl& model)
{
    if (spec == nullptr) {
        return;
    }
    const Parameter* const parameter = FIELD_FindByName(PARAMETERS, FIELD_ItemName(text));
    if (parameter == nullptr || geIbisVersion < parameter->eFrom) {
        MSG_ErrorLine(3806);
        return;
    }
    if (MDL_IsOneOf(model.eModelType, parameter->uiWrong)) {
        MSG_WarningLine(3805, parameter->sName, MDL_TypeText(model.eModelType));
    }
    rng*& field = spec->*parameter->ppField;
    if (field != nullptr) {
        MSG_ErrorLine(3807, parameter->sName, model.szName);
        return;
    }
    FIELD_ReadTriple(text, parameter->sName, 3808, &field);
}

void MSPEC_Close(mspec* spec, const nuibis_mdl& model)
{
    if (spec == nullptr) {
        return;
    }
    CheckHysteresis(*spec);
    CheckSign(ItemOf(*spec, &mspec::pSOvershootHigh), HIGH);
    CheckSign(ItemOf(*spec, &mspec::pSOvershootLow), LOW);
    CheckDynamicOvershoot(*spec, &mspec::pDOvershootHigh, &mspec::pSOvershootHigh, HIGH);
    CheckDynamicOvershoot(*spec, &mspec::pDOvershootLow, &mspec::pSOvershootLow, LOW);
    const Item amplitudeHigh{"D_overshoot_ampl_h", spec->pDOvershootAmplH};
    const Item amplitudeLow{"D_overshoot_amp_l", spec->pDOvershootAmplL};
    CheckOvershootArea(*spec, &mspec::pDOvershootAreaH, amplitudeHigh);
    CheckOvershootArea(*spec, &mspec::pDOvershootAreaL, amplitudeLow);
    CheckSign(amplitudeHigh, HIGH);
    CheckSign(amplitudeLow, HIGH);
    CheckTime(*spec, &mspec::pDOvershootTime, spec->pDOvershootHigh, spec->pDOvershootLow);
    CheckPulse(*spec, model, PULSE_HIGH);
    CheckPulse(*spec, model, PULSE_LOW);
    CheckTime(*spec, &mspec::pPulseTime, spec->pPulseHigh, spec->pPulseLow);
    CheckEdges(*spec);
    CheckWeakDrive(*spec);
}

void MSPEC_Free(mspec* spec)
{
    if (spec == nullptr) {
        return;
    }
    for (const Parameter& parameter : PARAMETERS) {
        RNG_Free(spec->*parameter.ppField);
    }
    CMN_Free(spec);
}
