#include "ibis/source/nuibis_mdl.h"

#include "ibis/source/nuibis_algmod.h"
#include "ibis/source/nuibis_ccorner.h"
#include "ibis/source/nuibis_crv.h"
#include "ibis/source/nuibis_drvsh.h"
#include "ibis/source/nuibis_extblock.h"
#include "ibis/source/nuibis_field.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_idly.h"
#include "ibis/source/nuibis_list.h"
#include "ibis/source/nuibis_mdlemi.h"
#include "ibis/source/nuibis_mspec.h"
#include "ibis/source/nuibis_ramp.h"
#include "ibis/source/nuibis_rcvth.h"
#include "ibis/source/nuibis_rng.h"
#include "ibis/source/nuibis_sinfo.h"
#include "ibis/source/nuibis_submdl.h"
#include "ibis/source/nuibis_wvfrm.h"

#include <algorithm>
#include <array>
#include <utility>

namespace
{

constexpr unsigned SUBMODEL_NAME_LIMIT = 40;

// Module state, reset by MDL_Init; valid only during a read.
nuibis_mdl* gpCurModel = nullptr;            // model being read
nuibis_keyword geModelKeyword = NOT_KEY;     // keyword whose lines are being read
nuibis_keyword gePreviousKeyword = NOT_KEY;  // keyword before it
sinfo* gpCurSeries = nullptr;                // series record that receives the series keywords
wvfrm* gpCurCompositeOwner = nullptr;        // waveform that receives the rows of [Composite Current]
LIST_Tail<addsubmdl> gAddSubmodels;

LIST_Index<nuibis_mdl, &nuibis_mdl::szName> gModels;  // follows the list that was last looked into

constexpr std::array<const char*, MODEL_INPUT_DIFF + 1> TYPE_NAMES{
    nullptr,       nullptr,          "Input",       "Output",        "I/O",         "3-state",
    "Open_drain",  "I/O_open_drain", "Open_sink",   "I/O_open_sink", "Open_source", "I/O_open_source",
    "Input_ECL",   "Output_ECL",     "I/O_ECL",     "Terminator",    "Series",      "Series_switch",
    "3-state_ECL", "I/O_diff",       "Output_diff", "3-state_diff",  "Input_diff"};

// Subparameters of one word -------------------------------------------------------------------------------

constexpr int FIRST_WORD_VALUE = 2;  // value of the first word of each table; 1 is "given and not understood"

std::span<const std::string_view> TypeWords()
{
    static const auto words = [] {
        std::array<std::string_view, MODEL_INPUT_DIFF - MODEL_INPUT + 1> all;
        std::copy(TYPE_NAMES.begin() + MODEL_INPUT, TYPE_NAMES.end(), all.begin());
        return all;
    }();
    const std::size_t admitted = geIbisVersion < IBIS_VER_3    ? MODEL_TERMINATOR - MODEL_INPUT + 1
                                 : geIbisVersion == IBIS_VER_3 ? MODEL_3STATE_ECL - MODEL_INPUT + 1
                                                               : words.size();
    return std::span(words).first(admitted);
}

// The value of "Name Word" in `words`, or 1 with a message. An equals sign has no place here.
int ReadWord(std::string_view text, std::string_view name, std::span<const std::string_view> words)
{
    const int row = FIELD_ReadWord(text, name, words, {175, 176, 137}, {136, 158});
    return row < 0 ? 1 : row + FIRST_WORD_VALUE;
}

// Reads a word into a field that nothing was read into yet. A failed value counts as seen.
template <class Enum>
void ReadWordField(Enum& field, std::string_view text, std::string_view name,
                   std::span<const std::string_view> words)
{
    if (field != 0) {
        MSG_ErrorLine(119, name, gpCurModel->szName);
        return;
    }
    field = static_cast<Enum>(ReadWord(text, name, words));
}

void ReadModelType(std::string_view text, std::string_view name)
{
    ReadWordField(gpCurModel->eModelType, text, name, TypeWords());
}

void ReadPolarity(std::string_view text, std::string_view name)
{
    static constexpr std::array<std::string_view, 2> words{"Non-Inverting", "Inverting"};
    ReadWordField(gpCurModel->ePolarity, text, name, words);
}

void ReadEnable(std::string_view text, std::string_view name)
{
    static constexpr std::array<std::string_view, 2> words{"Active-High", "Active-Low"};
    ReadWordField(gpCurModel->eEnable, text, name, words);
}

struct WordParameter {
    std::string_view sName;
    void (*read)(std::string_view text, std::string_view name);
};

constexpr std::array<WordParameter, 3> WORDS{{
    {"Model_type", ReadModelType},
    {"Polarity", ReadPolarity},
    {"Enable", ReadEnable},
}};

// Scalar subparameters ------------------------------------------------------------------------------------

constexpr MDL_TypeSet WITHOUT_TEST_LOAD = MDL_Types(
    {MODEL_INPUT, MODEL_INPUT_ECL, MODEL_TERMINATOR, MODEL_SERIES, MODEL_SERIES_SWITCH, MODEL_INPUT_DIFF});
constexpr MDL_TypeSet TEST_LOAD_TYPES = MDL_ALL_TYPES & ~WITHOUT_TEST_LOAD;
// The differential load is refused for a model without a type too.
constexpr MDL_TypeSet DIFF_LOAD_TYPES = TEST_LOAD_TYPES & ~MDL_Types({MODEL_UNSEEN, MODEL_NO_TYPE});

struct ScalarParameter {
    std::string_view sName;
    double* nuibis_mdl::*ppdField;
    MDL_TypeSet uiTypes;  ///< types that may have it
    MSG_Text1 wrongType;  ///< (type)
    bool bNeedsType;      ///< dropped without a word while the model has no type
    MSG_Plain tooOld;     ///< refused below version 4
};

constexpr std::array<ScalarParameter, 8> SCALARS{{
    {"Vinl", &nuibis_mdl::pdVinl, MDL_RECEIVERS, 159, true, 0},
    {"Vinh", &nuibis_mdl::pdVinh, MDL_RECEIVERS, 161, true, 0},
    {"Vmeas", &nuibis_mdl::pdVmeas, TEST_LOAD_TYPES, 166, false, 0},
    {"Cref", &nuibis_mdl::pdCref, TEST_LOAD_TYPES, 167, false, 0},
    {"Rref", &nuibis_mdl::pdRref, TEST_LOAD_TYPES, 168, false, 0},
    {"Vref", &nuibis_mdl::pdVref, TEST_LOAD_TYPES, 169, false, 0},
    {"Rref_diff", &nuibis_mdl::pdRrefDiff, DIFF_LOAD_TYPES, 165, false, 164},
    {"Cref_diff", &nuibis_mdl::pdCrefDiff, DIFF_LOAD_TYPES, 163, false, 162},
}};

bool IsAdmitted(const ScalarParameter& parameter)
{
    if (parameter.tooOld && geIbisVersion < IBIS_VER_4) {
        MSG_ErrorLine(parameter.tooOld);
        return false;
    }
    const nuibis_model_type type = gpCurModel->eModelType;
    if (MDL_IsOneOf(type, parameter.uiTypes)) {
        return true;
    }
    if (!parameter.bNeedsType || type >= MODEL_INPUT) {
        MSG_WarningLine(parameter.wrongType, MDL_TypeText(type));
    }
    return false;
}

void ReadScalar(const ScalarParameter& parameter, std::string_view text)
{
    static constexpr FIELD_ScalarCodes codes{176, 137, 149, 0};
    if (!IsAdmitted(parameter)) {
        return;
    }
    double*& field = gpCurModel->*parameter.ppdField;
    if (field != nullptr) {
        MSG_ErrorLine(119, parameter.sName, gpCurModel->szName);
        return;
    }
    FIELD_NewScalar(text, parameter.sName, "Model", codes, &field);
}

// Triple subparameters ------------------------------------------------------------------------------------

struct TripleParameter {
    std::string_view sName;
    rng* nuibis_mdl::*ppField;
    MSG_Plain tooOld;  ///< refused below version 4
};

constexpr std::array<TripleParameter, 5> TRIPLES{{
    {"C_comp", &nuibis_mdl::pCComp, 0},
    {"C_comp_pullup", &nuibis_mdl::pCCompPullup, 170},
    {"C_comp_pulldown", &nuibis_mdl::pCCompPulldown, 171},
    {"C_comp_power_clamp", &nuibis_mdl::pCCompPowerClamp, 172},
    {"C_comp_gnd_clamp", &nuibis_mdl::pCCompGndClamp, 173},
}};

bool IsAbove(double a, numstat aStatus, double b, numstat bStatus)
{
    return aStatus == NUM_VALUE && bStatus == NUM_VALUE && a > b;
}

// Capacitances have their smallest value in the min column, whatever corner of the process that is.
void CheckExtremes(const rng& r, std::string_view name)
{
    if (IsAbove(r.dMin, r.eMin, r.dTyp, r.eTyp) || IsAbove(r.dMin, r.eMin, r.dMax, r.eMax)) {
        MSG_WarningLine(177, gpCurModel->szName, name);
    }
    if (IsAbove(r.dTyp, r.eTyp, r.dMax, r.eMax) || IsAbove(r.dMin, r.eMin, r.dMax, r.eMax)) {
        MSG_WarningLine(179, gpCurModel->szName, name);
    }
}

void ReadTriple(const TripleParameter& parameter, std::string_view text)
{
    if (parameter.tooOld && geIbisVersion < IBIS_VER_4) {
        MSG_ErrorLine(parameter.tooOld);
        return;
    }
    rng*& field = gpCurModel->*parameter.ppField;
    if (field != nullptr) {
        MSG_ErrorLine(119, parameter.sName, gpCurModel->szName);
        return;
    }
    FIELD_ReadTriple(text, parameter.sName, 178, &field);
    if (field != nullptr) {
        CheckExtremes(*field, parameter.sName);
    }
}

// [Model] and its subparameter lines ----------------------------------------------------------------------

void ReadName(std::string_view text)
{
    CMN_SkipKeyword(text);
    const CMN_TokenList tokens = CMN_Split(text, 1);
    if (tokens.iFound != 1) {
        MSG_ErrorLine(128, tokens.iFound, "Model", 1);
    }
    if (tokens.iFound == 0 || !FIELD_SetName(gpCurModel->szName, tokens[0], FIELD_NameLimit(), 129)) {
        return;
    }
    const std::string_view name = gpCurModel->szName;
    if (!CMN_IsNotReserved(name)) {
        MSG_ErrorLine(130, name);
    }
    if (MDL_Find(name, gpCurModel->pNext) != nullptr) {
        MSG_ErrorLine(131, name);
    }
}

void ReadSubparameter(std::string_view text)
{
    const std::string_view name = FIELD_ItemName(text);
    if (const WordParameter* word = FIELD_FindByName(WORDS, name); word != nullptr) {
        word->read(text, name);
    } else if (const ScalarParameter* scalar = FIELD_FindByName(SCALARS, name); scalar != nullptr) {
        ReadScalar(*scalar, text);
    } else if (const TripleParameter* triple = FIELD_FindByName(TRIPLES, name); triple != nullptr) {
        ReadTriple(*triple, text);
    } else {
        MSG_ErrorLine(174);
    }
}

// The measuring voltage of an input-output buffer lies between its thresholds.
void CheckVmeas()
{
    static constexpr MDL_TypeSet types = MDL_RECEIVERS & ~MDL_Types({MODEL_INPUT, MODEL_INPUT_ECL});
    const nuibis_mdl& model = *gpCurModel;
    if (!MDL_IsOneOf(model.eModelType, types) || model.pdVmeas == nullptr) {
        return;
    }
    if (model.pdVinl != nullptr && !(*model.pdVinl < *model.pdVmeas)) {
        MSG_Caution(182, model.szName);
    }
    if (model.pdVinh != nullptr && !(*model.pdVmeas < *model.pdVinh)) {
        MSG_Caution(183, model.szName);
    }
}

void CloseSubparameters(nuibis_keyword)
{
    if (gpCurModel->eModelType == MODEL_UNSEEN) {
        MSG_Error(180, gpCurModel->szName, "Model_type");
    }
    CheckVmeas();
}

// Keywords of one triple ----------------------------------------------------------------------------------

struct TripleKeyword {
    nuibis_keyword eCode;
    std::string_view sLabel;
    rng* nuibis_mdl::*ppField;
};

constexpr std::array<TripleKeyword, 13> KEYWORD_TRIPLES{{
    {KEY_TEMPERATURE_RANGE, "Temperature Range", &nuibis_mdl::pTempRange},
    {KEY_VOLTAGE_RANGE, "Voltage Range", &nuibis_mdl::pVoltageRange},
    {KEY_PULLUP_REFERENCE, "Pullup Reference", &nuibis_mdl::pPullupRef},
    {KEY_PULLDOWN_REFERENCE, "Pulldown Reference", &nuibis_mdl::pPulldownRef},
    {KEY_POWER_CLAMP_REFERENCE, "POWER Clamp Reference", &nuibis_mdl::pPowerClampRef},
    {KEY_GND_CLAMP_REFERENCE, "GND Clamp Reference", &nuibis_mdl::pGndClampRef},
    {KEY_EXTERNAL_REFERENCE, "External Reference", &nuibis_mdl::pExternalRef},
    {KEY_RGND, "Rgnd", &nuibis_mdl::pRgnd},
    {KEY_RPOWER, "Rpower", &nuibis_mdl::pRpower},
    {KEY_RAC, "Rac", &nuibis_mdl::pRac},
    {KEY_CAC, "Cac", &nuibis_mdl::pCac},
    {KEY_TTGND, "TTgnd", &nuibis_mdl::pTTgnd},
    {KEY_TTPOWER, "TTpower", &nuibis_mdl::pTTpower},
}};

// The row of the keyword in force, which the table holds.
template <class Row, std::size_t N> const Row& CurrentRow(const std::array<Row, N>& rows)
{
    return *std::find_if(rows.begin(), rows.end(), [](const Row& r) { return r.eCode == geModelKeyword; });
}

void ReadTripleKeyword(std::string_view text)
{
    const TripleKeyword& row = CurrentRow(KEYWORD_TRIPLES);
    MDL_ReadKeywordTriple(text, row.sLabel, &(gpCurModel->*row.ppField));
}

// The words say "> 0", and a transit time of 0.0 s passes all the same.
void CheckTransitTime(const rng* r, MSG_Plain typ, MSG_Plain min, MSG_Plain max)
{
    if (r == nullptr) {
        return;
    }
    if (r->eTyp == NUM_VALUE && r->dTyp < 0.0) {
        MSG_ErrorLine(typ);
    }
    if (r->eMin == NUM_VALUE && r->dMin < 0.0) {
        MSG_ErrorLine(min);
    }
    if (r->eMax == NUM_VALUE && r->dMax < 0.0) {
        MSG_ErrorLine(max);
    }
}

void ReadTTgnd(std::string_view text)
{
    ReadTripleKeyword(text);
    CheckTransitTime(gpCurModel->pTTgnd, 108, 109, 110);
}

void ReadTTpower(std::string_view text)
{
    ReadTripleKeyword(text);
    CheckTransitTime(gpCurModel->pTTpower, 112, 113, 114);
}

// [Initial Delay] up to 6.0: a later line of the same name replaces the earlier one.
void ReadOldDelay(std::string_view text)
{
    rng** const field = text.starts_with("V-T")   ? &gpCurModel->pVT
                        : text.starts_with("I-T") ? &gpCurModel->pIT
                                                  : nullptr;
    if (field != nullptr) {
        RNG_Free(*field);
        *field = nullptr;
        RNG_Read(text.substr(3), text.substr(0, 3), field, true);
    }
}

// Tables --------------------------------------------------------------------------------------------------

struct CurveKeyword {
    nuibis_keyword eCode;
    std::string_view sLabel;
    std::string_view sCloseLabel;
    crv* nuibis_mdl::*ppField;
};

constexpr std::array<CurveKeyword, 6> CURVES{{
    {KEY_PULLDOWN, "Pulldown", "Pulldown", &nuibis_mdl::pPulldown},
    {KEY_PULLUP, "Pullup", "Pullup", &nuibis_mdl::pPullup},
    {KEY_GND_CLAMP, "GND Clamp", "GND Clamp", &nuibis_mdl::pGndClamp},
    {KEY_POWER_CLAMP, "POWER Clamp", "POWER Clamp", &nuibis_mdl::pPowerClamp},
    {KEY_ISSO_PD, "ISSO_PD", "ISSO PD", &nuibis_mdl::pIssoPd},
    {KEY_ISSO_PU, "ISSO_PU", "ISSO PU", &nuibis_mdl::pIssoPu},
}};

void OpenCurve(std::string_view text)
{
    const CurveKeyword& row = CurrentRow(CURVES);
    CRV_Open(text, row.sLabel, &(gpCurModel->*row.ppField));
}

void ReadCurve(std::string_view text)
{
    const CurveKeyword& row = CurrentRow(CURVES);
    CRV_AddLine(text, gpCurModel->*row.ppField, row.sLabel);
}

void CloseTable(const crv* table, std::string_view label)
{
    CRV_Close(gpCurModel->szName, gpCurModel->eModelType, geModelKeyword, table, label, "Model");
}

void CloseCurve(nuibis_keyword)
{
    const CurveKeyword& row = CurrentRow(CURVES);
    CloseTable(gpCurModel->*row.ppField, row.sCloseLabel);
}

void OpenRamp(std::string_view text)
{
    RAMP_Open(text, &gpCurModel->pRamp);
}

void ReadRamp(std::string_view text)
{
    RAMP_Line(text, gpCurModel->pRamp, gpCurModel->szName);
}

void CloseRamp(nuibis_keyword)
{
    RAMP_Close(gpCurModel->pRamp);
}

struct WaveformKeyword {
    nuibis_keyword eCode;
    std::string_view sLabel;
    std::string_view sCloseLabel;
    wvfrm* nuibis_mdl::*ppList;
};

constexpr std::array<WaveformKeyword, 2> WAVEFORMS{{
    {KEY_RISING_WAVEFORM, "Rising Waveform", "Rising", &nuibis_mdl::pRising},
    {KEY_FALLING_WAVEFORM, "Falling Waveform", "Falling", &nuibis_mdl::pFalling},
}};

void OpenWaveform(std::string_view text)
{
    const WaveformKeyword& row = CurrentRow(WAVEFORMS);
    WVFRM_Open(text, gpCurModel->*row.ppList, row.sLabel);
}

void ReadWaveform(std::string_view text)
{
    WVFRM_Line(text, CurrentRow(WAVEFORMS).sLabel);
}

void CloseWaveform(nuibis_keyword)
{
    WVFRM_Close(CurrentRow(WAVEFORMS).sCloseLabel, WVFRM_DRIVER);
}

// The supply current belongs to the waveform right before it.
void OpenComposite(std::string_view text)
{
    if (gePreviousKeyword != KEY_RISING_WAVEFORM && gePreviousKeyword != KEY_FALLING_WAVEFORM) {
        MSG_ErrorLine(257);
        return;
    }
    const bool rising = gePreviousKeyword == KEY_RISING_WAVEFORM;
    gpCurCompositeOwner = WVFRM_Last(rising ? gpCurModel->pRising : gpCurModel->pFalling);
    if (gpCurCompositeOwner == nullptr) {
        return;
    }
    wvfrm*& composite = gpCurCompositeOwner->pComposite;
    if (composite != nullptr) {
        MSG_BugLine(263);
        WVFRM_Free(composite);
        composite = nullptr;
    }
    WVFRM_Open(text, composite, "Composite Current");
}

void ReadComposite(std::string_view text)
{
    if (gpCurCompositeOwner != nullptr) {
        WVFRM_Line(text, "Composite Current");
    }
}

void CloseComposite(nuibis_keyword)
{
    if (gpCurCompositeOwner != nullptr) {
        WVFRM_Close("Composite Current", WVFRM_COMPOSITE);
        gpCurCompositeOwner = nullptr;
    }
}

// Series elements -----------------------------------------------------------------------------------------

void OpenSwitchState(std::string_view text, sinfo* nuibis_mdl::*field, std::string_view label)
{
    if (gpCurModel->eModelType != MODEL_SERIES_SWITCH) {
        MSG_ErrorLine(205);
        return;
    }
    SINFO_Open(text, &(gpCurModel->*field), label);
    gpCurSeries = gpCurModel->*field;
}

void OpenOn(std::string_view text)
{
    OpenSwitchState(text, &nuibis_mdl::pOn, "[On]");
}

void OpenOff(std::string_view text)
{
    OpenSwitchState(text, &nuibis_mdl::pOff, "[Off]");
}

// Whether the model takes series elements. Their record is that of the last [On] or [Off]; a plain Series
// model has neither keyword and keeps its elements where a switch has those of its closed state.
bool RequireSeries()
{
    if (!MDL_IsOneOf(gpCurModel->eModelType, MDL_SERIES_TYPES)) {
        MSG_ErrorLine(206);
        return false;
    }
    if (gpCurSeries != nullptr) {
        return true;
    }
    if (gpCurModel->eModelType == MODEL_SERIES_SWITCH) {
        MSG_ErrorLine(207);
    }
    if (gpCurModel->pOn == nullptr && !SINFO_Create(&gpCurModel->pOn)) {
        return false;
    }
    gpCurSeries = gpCurModel->pOn;
    return true;
}

void ReadSeriesTriple(std::string_view text)
{
    if (RequireSeries()) {
        const SINFO_Triple& row = CurrentRow(SINFO_TRIPLES);
        MDL_ReadKeywordTriple(text, row.sLabel, &(gpCurSeries->*row.ppField));
    }
}

void OpenSeriesCurrent(std::string_view text)
{
    if (RequireSeries()) {
        CRV_Open(text, "Series_Current", &gpCurSeries->pSeriesCurrent);
    }
}

void ReadSeriesCurrent(std::string_view text)
{
    if (RequireSeries()) {
        CRV_AddLine(text, gpCurSeries->pSeriesCurrent, "Series_Current");
    }
}

void CloseSeriesCurrent(nuibis_keyword)
{
    if (gpCurSeries != nullptr) {
        CloseTable(gpCurSeries->pSeriesCurrent, "Series_Current");
    }
}

void OpenSeriesMosfet(std::string_view text)
{
    smos* record = nullptr;
    if (RequireSeries() && SMOS_Open(text, gpCurSeries->pSeriesMosfet, &record)) {
        CRV_Open(text, "Series_MOSFET", &record->pTable);
    }
}

void ReadSeriesMosfet(std::string_view text)
{
    if (RequireSeries()) {
        SMOS_Line(text);
    }
}

void CloseSeriesMosfet(nuibis_keyword)
{
    if (gpCurSeries != nullptr && gpCurSeries->pSeriesMosfet != nullptr) {
        SMOS_Close(gpCurModel, geModelKeyword);
    }
}

// Specifications ------------------------------------------------------------------------------------------

using Presence = bool (*)(const nuibis_mdl& model);

// A reader that goes through a model once has the thresholds before the data that they apply to.
constexpr std::array<Presence, 21> BEHIND_THRESHOLDS{
    MDL_Has<&nuibis_mdl::pTempRange>,
    MDL_Has<&nuibis_mdl::pVoltageRange>,
    MDL_Has<&nuibis_mdl::pPullupRef>,
    MDL_Has<&nuibis_mdl::pPulldownRef>,
    MDL_Has<&nuibis_mdl::pPowerClampRef>,
    MDL_Has<&nuibis_mdl::pGndClampRef>,
    MDL_Has<&nuibis_mdl::pTTgnd>,
    MDL_Has<&nuibis_mdl::pTTpower>,
    MDL_Has<&nuibis_mdl::pDriverSchedule>,
    MDL_Has<&nuibis_mdl::pPullup>,
    MDL_Has<&nuibis_mdl::pPulldown>,
    MDL_Has<&nuibis_mdl::pPowerClamp>,
    MDL_Has<&nuibis_mdl::pGndClamp>,
    MDL_Has<&nuibis_mdl::pRgnd>,
    MDL_Has<&nuibis_mdl::pRpower>,
    MDL_Has<&nuibis_mdl::pRac>,
    MDL_Has<&nuibis_mdl::pCac>,
    MDL_Has<&nuibis_mdl::pRamp>,
    MDL_Has<&nuibis_mdl::pRising>,
    MDL_Has<&nuibis_mdl::pFalling>,
    MDL_Has<&nuibis_mdl::pAddSubmodels>,
};

constexpr std::array<Presence, 3> BEHIND_SPEC_ONLY{
    MDL_Has<&nuibis_mdl::pReceiverThresholds>,
    MDL_Has<&nuibis_mdl::pIssoPd>,
    MDL_Has<&nuibis_mdl::pIssoPu>,
};

bool HasAny(std::span<const Presence> items)
{
    return std::any_of(items.begin(), items.end(), [](Presence isGiven) { return isGiven(*gpCurModel); });
}

void OpenModelSpec(std::string_view text)
{
    if (HasAny(BEHIND_THRESHOLDS) || HasAny(BEHIND_SPEC_ONLY)) {
        MSG_ErrorLine(116);
    }
    MSPEC_Open(text, &gpCurModel->pModelSpec);
}

void ReadModelSpec(std::string_view text)
{
    MSPEC_Line(text, gpCurModel->pModelSpec, *gpCurModel);
}

void CloseModelSpec(nuibis_keyword)
{
    MSPEC_Close(gpCurModel->pModelSpec, *gpCurModel);
}

void OpenReceiverThresholds(std::string_view text)
{
    if (HasAny(BEHIND_THRESHOLDS)) {
        MSG_ErrorLine(120);
    }
    // Differential receivers are outside the set too.
    if (!MDL_IsOneOf(gpCurModel->eModelType, MDL_RECEIVERS)) {
        MSG_WarningLine(117, MDL_TypeText(gpCurModel->eModelType));
    }
    RCVTH_Open(text, &gpCurModel->pReceiverThresholds);
}

void ReadReceiverThresholds(std::string_view text)
{
    RCVTH_Line(text, gpCurModel->pReceiverThresholds);
}

void CloseReceiverThresholds(nuibis_keyword)
{
    RCVTH_Close(gpCurModel->pReceiverThresholds, gpCurModel->szName);
}

void OpenCornerCapacitances(std::string_view text)
{
    CCORNER_Open(text, &gpCurModel->pCCompCorner);
}

void ReadCornerCapacitances(std::string_view text)
{
    CCORNER_Line(text, gpCurModel->pCCompCorner);
}

void CloseCornerCapacitances(nuibis_keyword)
{
    CCORNER_Close(gpCurModel->pCCompCorner, gpCurModel->szName);
}

void OpenInitialDelay(std::string_view text)
{
    IDLY_Open(text, &gpCurModel->pInitialDelay);
}

void ReadInitialDelay(std::string_view text)
{
    IDLY_Line(gpCurModel->pInitialDelay, text);
}

// [Driver Schedule] ---------------------------------------------------------------------------------------

void OpenSchedule(std::string_view text)
{
    DRVSH_Open(text, &gpCurModel->pDriverSchedule);
}

void ReadSchedule(std::string_view text)
{
    DRVSH_Line(text, gpCurModel->pDriverSchedule, gpCurModel->szName);
}

void CloseSchedule(nuibis_keyword)
{
    DRVSH_Close(gpCurModel->pDriverSchedule, gpCurModel->szName);
}

// [Add Submodel] ------------------------------------------------------------------------------------------

void OpenAddSubmodel(std::string_view text)
{
    if (gpCurModel->pAddSubmodels != nullptr) {
        MSG_ErrorLine(208);
    }
    CMN_SkipKeyword(text);
    if (const int items = CMN_CountTokens(text); items != 0) {
        MSG_ErrorLine(137, items + 1, "Add Submodel", 1);
    }
    if (MDL_IsOneOf(gpCurModel->eModelType, MDL_SERIES_TYPES)) {
        MSG_ErrorLine(209);
    }
}

void CheckSubmodelMode(submdl_modes mode)
{
    static constexpr MDL_TypeSet inputs = MDL_Types({MODEL_INPUT, MODEL_INPUT_ECL, MODEL_TERMINATOR});
    static constexpr MDL_TypeSet outputs =
        MDL_Types({MODEL_OUTPUT, MODEL_OPEN_DRAIN, MODEL_OPEN_SINK, MODEL_OPEN_SOURCE, MODEL_OUTPUT_ECL});
    if (mode == SUBMODE_DRIVING && MDL_IsOneOf(gpCurModel->eModelType, inputs)) {
        MSG_ErrorLine(216);
    }
    if (mode == SUBMODE_NON_DRIVING && MDL_IsOneOf(gpCurModel->eModelType, outputs)) {
        MSG_ErrorLine(217);
    }
}

void ReadSubmodelName(addsubmdl& entry, std::string_view name)
{
    if (FIELD_SetName(entry.szName, name, SUBMODEL_NAME_LIMIT, 212) && !CMN_IsNotReserved(name)) {
        MSG_ErrorLine(213, name);
    }
}

void ReadAddSubmodel(std::string_view text)
{
    static constexpr std::array<std::string_view, 3> modes{"Driving", "Non-Driving", "All"};
    const CMN_TokenList tokens = CMN_Split(text, 2);
    if (tokens.iFound == 0) {
        MSG_ErrorLine(211);
        return;
    }
    if (tokens.iFound > 2) {
        MSG_ErrorLine(210);
    }
    addsubmdl* entry = nullptr;
    if (!CMN_Alloc(entry)) {
        return;
    }
    entry->eMode = SUBMODE_NONE;
    ReadSubmodelName(*entry, tokens[0]);
    gAddSubmodels.append(gpCurModel->pAddSubmodels, entry);
    if (tokens.iStored < 2) {
        MSG_ErrorLine(215);
        return;
    }
    const int mode = FIELD_FindWord(tokens[1], modes, "Add Submodel Mode", {136, 158});
    if (mode >= 0) {
        entry->eMode = static_cast<submdl_modes>(mode);
    }
    CheckSubmodelMode(entry->eMode);
}

// The keyword table ---------------------------------------------------------------------------------------

void NoAction(std::string_view) {}

// Keywords of one line.
void RefuseData(std::string_view)
{
    MSG_ErrorLine(121);
}

// Behind [End Algorithmic Model] and [End EMI Model].
void RefuseModelData(std::string_view)
{
    MSG_ErrorLine(174);
}

void RefuseUnknown(std::string_view)
{
    MSG_BugLine(122, __FILE_NAME__, __LINE__);
}

void OpenExternalModel(std::string_view)
{
    if (gpCurModel->pExternalModel != nullptr) {
        MSG_ErrorLine(119, "[External_Model]", gpCurModel->szName);
    } else {
        gpCurModel->pExternalModel = EXT_New();
    }
}

void ReadExternalModel(std::string_view text)
{
    if (gpCurModel->pExternalModel != nullptr) {
        EXT_Line(text, *gpCurModel->pExternalModel, gpCurModel);
    }
}

void OpenAlgorithmicModel(std::string_view text)
{
    ALGMOD_Init(text, &gpCurModel->pAlgorithmicModel);
}

void ReadAlgorithmicModel(std::string_view text)
{
    ALGMOD_Line(text, gpCurModel->pAlgorithmicModel);
}

void CloseAlgorithmicModel(nuibis_keyword next)
{
    if (next != KEY_END_ALGORITHMIC_MODEL) {
        MSG_ErrorLine(259);
    }
    ALGMOD_CheckBits(gpCurModel->pAlgorithmicModel);
}

void OpenEmiModel(std::string_view text)
{
    MDLEMI_Init(text, &gpCurModel->pEmiModel);
}

void ReadEmiModel(std::string_view text)
{
    MDLEMI_Line(text, gpCurModel->pEmiModel);
}

void CloseEmiModel(nuibis_keyword next)
{
    if (next != KEY_END_EMI_MODEL) {
        MSG_ErrorLine(260);
    }
}

struct Keyword {
    nuibis_keyword eCode;
    void (*keywordLine)(std::string_view text);  ///< `text` still begins with "["
    void (*dataLine)(std::string_view text);
    void (*close)(nuibis_keyword next);  ///< when the keyword is left; null: nothing to finish
};

constexpr auto KEYWORDS = std::to_array<Keyword>({
    {KEY_EXTERNAL_MODEL, OpenExternalModel, ReadExternalModel, nullptr},
    {KEY_END_EXTERNAL_MODEL, NoAction, RefuseUnknown, nullptr},
    {KEY_MODEL, ReadName, ReadSubparameter, CloseSubparameters},
    {KEY_INITIAL_DELAY_OLD, NoAction, ReadOldDelay, nullptr},
    {KEY_TEMPERATURE_RANGE, ReadTripleKeyword, RefuseData, nullptr},
    {KEY_VOLTAGE_RANGE, ReadTripleKeyword, RefuseData, nullptr},
    {KEY_PULLUP_REFERENCE, ReadTripleKeyword, RefuseData, nullptr},
    {KEY_PULLDOWN_REFERENCE, ReadTripleKeyword, RefuseData, nullptr},
    {KEY_POWER_CLAMP_REFERENCE, ReadTripleKeyword, RefuseData, nullptr},
    {KEY_GND_CLAMP_REFERENCE, ReadTripleKeyword, RefuseData, nullptr},
    {KEY_EXTERNAL_REFERENCE, ReadTripleKeyword, RefuseData, nullptr},
    {KEY_PULLDOWN, OpenCurve, ReadCurve, CloseCurve},
    {KEY_PULLUP, OpenCurve, ReadCurve, CloseCurve},
    {KEY_GND_CLAMP, OpenCurve, ReadCurve, CloseCurve},
    {KEY_POWER_CLAMP, OpenCurve, ReadCurve, CloseCurve},
    {KEY_RGND, ReadTripleKeyword, RefuseData, nullptr},
    {KEY_RPOWER, ReadTripleKeyword, RefuseData, nullptr},
    {KEY_RAC, ReadTripleKeyword, RefuseData, nullptr},
    {KEY_CAC, ReadTripleKeyword, RefuseData, nullptr},
    {KEY_RAMP, OpenRamp, ReadRamp, CloseRamp},
    {KEY_RISING_WAVEFORM, OpenWaveform, ReadWaveform, CloseWaveform},
    {KEY_FALLING_WAVEFORM, OpenWaveform, ReadWaveform, CloseWaveform},
    {KEY_TTGND, ReadTTgnd, RefuseData, nullptr},
    {KEY_TTPOWER, ReadTTpower, RefuseData, nullptr},
    {KEY_MODEL_SPEC, OpenModelSpec, ReadModelSpec, CloseModelSpec},
    {KEY_RECEIVER_THRESHOLDS, OpenReceiverThresholds, ReadReceiverThresholds, CloseReceiverThresholds},
    {KEY_DRIVER_SCHEDULE, OpenSchedule, ReadSchedule, CloseSchedule},
    {KEY_ON, OpenOn, RefuseData, nullptr},
    {KEY_OFF, OpenOff, RefuseData, nullptr},
    {KEY_R_SERIES, ReadSeriesTriple, RefuseData, nullptr},
    {KEY_L_SERIES, ReadSeriesTriple, RefuseData, nullptr},
    {KEY_RL_SERIES, ReadSeriesTriple, RefuseData, nullptr},
    {KEY_C_SERIES, ReadSeriesTriple, RefuseData, nullptr},
    {KEY_LC_SERIES, ReadSeriesTriple, RefuseData, nullptr},
    {KEY_RC_SERIES, ReadSeriesTriple, RefuseData, nullptr},
    {KEY_SERIES_CURRENT, OpenSeriesCurrent, ReadSeriesCurrent, CloseSeriesCurrent},
    {KEY_SERIES_MOSFET, OpenSeriesMosfet, ReadSeriesMosfet, CloseSeriesMosfet},
    {KEY_ADD_SUBMODEL, OpenAddSubmodel, ReadAddSubmodel, nullptr},
    {KEY_ALGORITHMIC_MODEL, OpenAlgorithmicModel, ReadAlgorithmicModel, CloseAlgorithmicModel},
    {KEY_END_ALGORITHMIC_MODEL, NoAction, RefuseModelData, nullptr},
    {KEY_ISSO_PD, OpenCurve, ReadCurve, CloseCurve},
    {KEY_ISSO_PU, OpenCurve, ReadCurve, CloseCurve},
    {KEY_COMPOSITE_CURRENT, OpenComposite, ReadComposite, CloseComposite},
    {KEY_BEGIN_EMI_MODEL, OpenEmiModel, ReadEmiModel, CloseEmiModel},
    {KEY_END_EMI_MODEL, NoAction, RefuseModelData, nullptr},
    {KEY_C_COMP_CORNER, OpenCornerCapacitances, ReadCornerCapacitances, CloseCornerCapacitances},
    {KEY_INITIAL_DELAY, OpenInitialDelay, ReadInitialDelay, nullptr},
});

static_assert(KEYWORDS.size() == KEY_INITIAL_DELAY - KEY_EXTERNAL_MODEL + 1);

const Keyword* FindKeyword(nuibis_keyword code)
{
    const bool known = code >= KEY_EXTERNAL_MODEL && code <= KEY_INITIAL_DELAY;
    return known ? &KEYWORDS[static_cast<std::size_t>(code - KEY_EXTERNAL_MODEL)] : nullptr;
}

// Whether a model stays open when `next` follows. A stray end of a block does not end the model.
bool StaysOpen(nuibis_keyword next)
{
    if (next == KEY_END_ALGORITHMIC_MODEL && geModelKeyword != KEY_ALGORITHMIC_MODEL) {
        MSG_ErrorLine(261);
    }
    if (next == KEY_END_EMI_MODEL && geModelKeyword != KEY_BEGIN_EMI_MODEL) {
        MSG_ErrorLine(262);
    }
    return FindKeyword(next) != nullptr && next != KEY_MODEL;
}

void FreeContent(nuibis_mdl& model)
{
    for (const ScalarParameter& scalar : SCALARS) {
        CMN_Release(model.*scalar.ppdField);
    }
    for (const TripleParameter& triple : TRIPLES) {
        RNG_Free(model.*triple.ppField);
    }
    for (const TripleKeyword& triple : KEYWORD_TRIPLES) {
        RNG_Free(model.*triple.ppField);
    }
    RNG_Free(model.pVT);
    RNG_Free(model.pIT);
    DRVSH_Free(model.pDriverSchedule);
    CMN_FreeList(model.pAddSubmodels);
    for (const CurveKeyword& curve : CURVES) {
        CRV_Free(model.*curve.ppField);
    }
    RAMP_Free(model.pRamp);
    WVFRM_Free(model.pRising);
    WVFRM_Free(model.pFalling);
    SINFO_Free(model.pOn);
    SINFO_Free(model.pOff);
    MSPEC_Free(model.pModelSpec);
    RCVTH_Free(model.pReceiverThresholds);
    CCORNER_Free(model.pCCompCorner);
    IDLY_Free(model.pInitialDelay);
    CMN_Release(model.pEmiModel);
    EXT_Free(model.pExternalModel);
    ALGMOD_Free(model.pAlgorithmicModel);
}

}  // namespace

void MDL_Init()
{
    gpCurModel = nullptr;
    geModelKeyword = gePreviousKeyword = NOT_KEY;
    gpCurSeries = nullptr;
    gpCurCompositeOwner = nullptr;
    ibis* root = nullptr;
    if (!IBIS_GetCurrent(&root)) {
        MSG_Bug(101);
        return;
    }
    if (!CMN_Alloc(gpCurModel)) {
        MSG_Bug(100, __FILE_NAME__, __LINE__);
        return;
    }
    gpCurModel->eDiffUse = 2;
    IBIS_Add<&ibis::pModels>(root, gpCurModel);
}

void MDL_Line(line_type lineType, nuibis_keyword code, std::string_view text)
{
    if (gpCurModel == nullptr) {
        if (lineType == LINE_KEYWORD) {
            MSG_ErrorLine(102);
        } else {
            MSG_ErrorLine(107);
        }
        return;
    }
    const Keyword* const keyword = FindKeyword(code);
    if (lineType == LINE_KEYWORD) {
        gePreviousKeyword = std::exchange(geModelKeyword, code);
        if (keyword != nullptr) {
            keyword->keywordLine(text);
        }
    } else if (keyword != nullptr) {
        keyword->dataLine(text);
    } else {
        MSG_BugLine(122, __FILE_NAME__, __LINE__);
    }
}

void MDL_Leave(nuibis_keyword newCode)
{
    if (gpCurModel == nullptr) {
        return;
    }
    // The block has lines of its own grammar: without its end, nothing after it can be trusted to the model.
    if (geModelKeyword == KEY_EXTERNAL_MODEL && EXT_LeaveModel(newCode, *gpCurModel) != 0) {
        MSG_ErrorLine(123);
        return;
    }
    const Keyword* const keyword = FindKeyword(geModelKeyword);
    if (keyword != nullptr && keyword->close != nullptr) {
        keyword->close(newCode);
    }
    if (!StaysOpen(newCode)) {
        MDL_Validate(*gpCurModel);
        gpCurModel = nullptr;
    }
}

void MDL_FreeList(nuibis_mdl* list)
{
    gpCurModel = nullptr;
    gpCurSeries = nullptr;
    gpCurCompositeOwner = nullptr;
    gModels.reset();
    CMN_FreeList(list, FreeContent);
}

nuibis_mdl* MDL_Find(std::string_view name, nuibis_mdl* list)
{
    return gModels.find(list, name);
}

int MDL_MarkReferenced(std::string_view name, nuibis_mdl* list)
{
    nuibis_mdl* const model = MDL_Find(name, list);
    if (model == nullptr) {
        return 0;
    }
    model->uiReferenced = 1;
    return 1;
}

int MDL_GetType(nuibis_mdl* list, std::string_view name, nuibis_model_type* out)
{
    const nuibis_mdl* const model = MDL_Find(name, list);
    if (model == nullptr) {
        return 0;
    }
    *out = model->eModelType;
    return 1;
}

const char* MDL_TypeName(nuibis_model_type type)
{
    return type >= MODEL_INPUT && type <= MODEL_INPUT_DIFF ? TYPE_NAMES[static_cast<std::size_t>(type)]
                                                           : nullptr;
}

const char* MDL_TypeText(nuibis_model_type type)
{
    const char* const name = MDL_TypeName(type);
    return name != nullptr ? name : "No Type";
}

void MDL_ReadKeywordTriple(std::string_view text, std::string_view label, rng** field)
{
    // Behind [On] and [Off] these would belong to a state of the switch, which has none of them.
    static constexpr std::array<std::string_view, 6> ranges{"Voltage Range",         "Temperature Range",
                                                            "Pullup Reference",      "Pulldown Reference",
                                                            "POWER Clamp Reference", "GND Clamp Reference"};
    if (*field != nullptr) {
        MSG_ErrorLine(119, label, gpCurModel->szName);
        return;
    }
    if (gpCurModel->eModelType == MODEL_SERIES_SWITCH && gpCurSeries != nullptr &&
        std::find(ranges.begin(), ranges.end(), label) != ranges.end()) {
        MSG_ErrorLine(204, gpCurModel->szName, label);
    }
    const std::string_view line = text;
    if (!CMN_SkipKeyword(text)) {
        MSG_BugLine(125, line, __FILE_NAME__, __LINE__);
        return;
    }
    RNG_Read(text, label, field, true);
    if (*field != nullptr && (*field)->eTyp == NUM_NA) {
        MSG_ErrorLine(178);
    }
}

void MDL_WarnUnreferenced(const nuibis_mdl* list)
{
    while (list != nullptr && list->uiReferenced != 0) {
        list = list->pNext;
    }
    if (list != nullptr) {
        MSG_Warning(219, list->szName);
    }
}

int MDL_HasAddSubmodel(const nuibis_mdl* model, const submdl* submodel)
{
    const addsubmdl* entry = model->pAddSubmodels;
    while (entry != nullptr && std::string_view(entry->szName) != submodel->szName) {
        entry = entry->pNext;
    }
    return entry != nullptr ? 1 : 0;
}

void MDL_CheckSubmodelUse(const nuibis_mdl* models, const submdl* submodels)
try {
    CMN_Set<std::string_view> used;
    for (; models != nullptr; models = models->pNext) {
        for (const addsubmdl* entry = models->pAddSubmodels; entry != nullptr; entry = entry->pNext) {
            used.insert(entry->szName);
        }
    }
    for (; submodels != nullptr; submodels = submodels->pNext) {
        if (!used.contains(submodels->szName)) {
            MSG_Warning(220, submodels->szName);
        }
    }
} catch (const std::bad_alloc&) {
    // Told by the allocation itself.
}

void MDL_CheckAddSubmodels(const nuibis_mdl* models, submdl* submodels)
{
    for (; models != nullptr; models = models->pNext) {
        for (const addsubmdl* entry = models->pAddSubmodels; entry != nullptr; entry = entry->pNext) {
            if (SUBMDL_Find(entry->szName, submodels) == nullptr) {
                MSG_Error(218, entry->szName, models->szName);
            }
        }
    }
}
