// Models and submodels.

#include "ibis/source/nuibis_algmod.h"
#include "ibis/source/nuibis_ccorner.h"
#include "ibis/source/nuibis_dly.h"
#include "ibis/source/nuibis_drvsh.h"
#include "ibis/source/nuibis_efile.h"
#include "ibis/source/nuibis_extblock.h"
#include "ibis/source/nuibis_idly.h"
#include "ibis/source/nuibis_mspec.h"
#include "ibis/source/nuibis_ramp.h"
#include "ibis/source/nuibis_rcvth.h"
#include "ibis/source/nuibis_sinfo.h"
#include "ibis/source/nuibis_smspec.h"
#include "ibis/source/nuibis_wvfrm.h"
#include "tools/talibis/export_parts.h"
#include "tools/talibis/model_items.h"
#include "tools/talibis/source_file.h"

#include <array>

namespace
{

constexpr Item<ccorner, rng> CORNER_ITEMS[]{
    {"C_comp", &ccorner::pCComp},
    {"C_comp_pullup", &ccorner::pCCompPullup},
    {"C_comp_pulldown", &ccorner::pCCompPulldown},
    {"C_comp_power_clamp", &ccorner::pCCompPowerClamp},
    {"C_comp_gnd_clamp", &ccorner::pCCompGndClamp},
};

constexpr Item<mspec, rng> SPEC_ITEMS[]{
    {"Vinh", &mspec::pVinh},
    {"Vinl", &mspec::pVinl},
    {"Vinh+", &mspec::pVinhPlus},
    {"Vinh-", &mspec::pVinhMinus},
    {"Vinl+", &mspec::pVinlPlus},
    {"Vinl-", &mspec::pVinlMinus},
    {"S_overshoot_low", &mspec::pSOvershootLow},
    {"S_overshoot_high", &mspec::pSOvershootHigh},
    {"D_overshoot_low", &mspec::pDOvershootLow},
    {"D_overshoot_high", &mspec::pDOvershootHigh},
    {"D_overshoot_time", &mspec::pDOvershootTime},
    {"D_overshoot_ampl_h", &mspec::pDOvershootAmplH},
    {"D_overshoot_ampl_l", &mspec::pDOvershootAmplL},
    {"D_overshoot_area_h", &mspec::pDOvershootAreaH},
    {"D_overshoot_area_l", &mspec::pDOvershootAreaL},
    {"Pulse_high", &mspec::pPulseHigh},
    {"Pulse_low", &mspec::pPulseLow},
    {"Pulse_time", &mspec::pPulseTime},
    {"Vmeas", &mspec::pVmeas},
    {"Vref", &mspec::pVref},
    {"Cref", &mspec::pCref},
    {"Rref", &mspec::pRref},
    {"Cref_diff", &mspec::pCrefDiff},
    {"Rref_diff", &mspec::pRrefDiff},
    {"Vref_rising", &mspec::pVrefRising},
    {"Vref_falling", &mspec::pVrefFalling},
    {"Cref_rising", &mspec::pCrefRising},
    {"Cref_falling", &mspec::pCrefFalling},
    {"Rref_rising", &mspec::pRrefRising},
    {"Rref_falling", &mspec::pRrefFalling},
    {"Vmeas_rising", &mspec::pVmeasRising},
    {"Vmeas_falling", &mspec::pVmeasFalling},
    {"Weak_R", &mspec::pWeakR},
    {"Weak_V", &mspec::pWeakV},
    {"Weak_I", &mspec::pWeakI},
};

constexpr Item<sinfo, rng> SERIES_ITEMS[]{
    {"R Series", &sinfo::pRSeries}, {"L Series", &sinfo::pLSeries},   {"Rl Series", &sinfo::pRlSeries},
    {"C Series", &sinfo::pCSeries}, {"Lc Series", &sinfo::pLcSeries}, {"Rc Series", &sinfo::pRcSeries},
};

constexpr Item<smspec, rng> TRIGGER_ITEMS[]{
    {"V_trigger_r", &smspec::pVTriggerR},
    {"V_trigger_f", &smspec::pVTriggerF},
    {"Off_delay", &smspec::pOffDelay},
};

constexpr ExportColumn<drvshmodel> SCHEDULE_COLUMNS[]{
    {"model", [](const drvshmodel& line) { return ExportText(line.szName); }},
    {"rise_on",
     [](const drvshmodel& line) {
         return line.pDelays == nullptr ? json() : ExportNumber(line.pDelays->dRiseOn, line.pDelays->eRiseOn);
     }},
    {"rise_off",
     [](const drvshmodel& line) {
         return line.pDelays == nullptr ? json()
                                        : ExportNumber(line.pDelays->dRiseOff, line.pDelays->eRiseOff);
     }},
    {"fall_on",
     [](const drvshmodel& line) {
         return line.pDelays == nullptr ? json() : ExportNumber(line.pDelays->dFallOn, line.pDelays->eFallOn);
     }},
    {"fall_off",
     [](const drvshmodel& line) {
         return line.pDelays == nullptr ? json()
                                        : ExportNumber(line.pDelays->dFallOff, line.pDelays->eFallOff);
     }},
};

json ExportItem(const rng* triple)
{
    return ExportTriple(triple);
}
json ExportItem(const double* value)
{
    return ExportNumber(value);
}

json ExportItem(const crv* table);
json ExportItem(const wvfrm* list);

template <class Record, class Value, std::size_t N>
void AddItems(const Record& record, const Item<Record, Value> (&items)[N], json& object)
{
    for (const Item<Record, Value>& item : items) {
        object[item.pszName] = ExportItem(record.*item.ppField);
    }
}

// The same with a table that the reader of the block has.
template <class Record, class Row, std::size_t N>
void AddItems(const Record& record, const std::array<Row, N>& rows, json& object)
{
    for (const Row& row : rows) {
        object[std::string(row.sName)] = ExportItem(record.*row.ppdField);
    }
}

// All items of a block, or null without the block.
template <class Record, class Items> json ExportBlock(const Record* record, const Items& items)
{
    json object;
    if (record != nullptr) {
        AddItems(*record, items, object);
    }
    return object;
}

// The rows as four columns; `first` is what the first one counts.
json ExportRows(const rngp* row, const char* first)
{
    json x = json::array();
    json typ = json::array();
    json min = json::array();
    json max = json::array();
    for (; row != nullptr; row = row->pNext) {
        x.push_back(ExportNumber(row->dFirst, row->eFirst));
        typ.push_back(ExportNumber(row->dTyp, row->eTyp));
        min.push_back(ExportNumber(row->dMin, row->eMin));
        max.push_back(ExportNumber(row->dMax, row->eMax));
    }
    return {{first, std::move(x)}, {"typ", std::move(typ)}, {"min", std::move(min)}, {"max", std::move(max)}};
}

json ExportItem(const crv* table)
{
    return table == nullptr ? json() : ExportRows(table->pHead, "v");
}

json ExportWaveform(const wvfrm& waveform)
{
    json object = ExportBlock(&waveform, WVFRM_FIXTURES);
    object["table"] = ExportRows(waveform.pRows, "t");
    object["Composite Current"] =
        waveform.pComposite == nullptr ? json() : ExportRows(waveform.pComposite->pRows, "t");
    return object;
}

json ExportItem(const wvfrm* list)
{
    return ExportEach(RecordsOf(list), ExportWaveform);
}

json ExportSlope(double dV, double dt, numstat status)
{
    return {{"dV", ExportNumber(dV, status)}, {"dt", ExportNumber(dt, status)}};
}

json ExportRampLine(const rampline* line)
{
    return line == nullptr ? json()
                           : json{{"typ", ExportSlope(line->dTypDv, line->dTypDt, line->eTyp)},
                                  {"min", ExportSlope(line->dMinDv, line->dMinDt, line->eMin)},
                                  {"max", ExportSlope(line->dMaxDv, line->dMaxDt, line->eMax)}};
}

json ExportRamp(const ramp* record)
{
    return record == nullptr ? json()
                             : json{{"dV/dt_r", ExportRampLine(record->pRise)},
                                    {"dV/dt_f", ExportRampLine(record->pFall)},
                                    {"R_load", record->bRLoad != 0 ? json(record->dRLoad) : json()}};
}

// Up to 6.0 the two delays are lines of the model, later those of a block.
json ExportInitialDelay(const rng* vt, const rng* it, const idly* block)
{
    vt = block == nullptr ? vt : block->pVT;
    it = block == nullptr ? it : block->pIT;
    return vt == nullptr && it == nullptr ? json()
                                          : json{{"V-T", ExportTriple(vt)}, {"I-T", ExportTriple(it)}};
}

json ExportMosfet(const smos& table)
{
    return {{"Vds", ExportNumber(table.pdVds)}, {"table", ExportItem(table.pTable)}};
}

json ExportSeries(const sinfo* state)
{
    json object = ExportBlock(state, SERIES_ITEMS);
    if (state != nullptr) {
        object["Series Current"] = ExportItem(state->pSeriesCurrent);
        std::vector<const smos*> tables = RecordsOf<smos>(state->pSeriesMosfet);
        object["Series MOSFET"] = ExportEach(tables, ExportMosfet);
    }
    return object;
}

json ExportThresholds(const rcvth* thresholds)
{
    json object = ExportBlock(thresholds, RCVTH_NUMBERS);
    if (thresholds != nullptr) {
        object["Reference_supply"] = ExportText(thresholds->pszReferenceSupply);
    }
    return object;
}

json ExportAdded(const addsubmdl& added)
{
    static constexpr const char* MODES[]{"Driving", "Non-Driving", "All", nullptr};
    return {{"name", added.szName}, {"mode", ExportText(MODES[added.eMode])}};
}

json ExportCode(const ALGMOD& line)
{
    return {{"platform", ExportText(line.szPlatform)},
            {"compiler", ExportText(line.szCompiler)},
            {"bits", line.iBits < 0 ? json() : json(line.iBits)},
            {"code_file", line.pCodeFile == nullptr ? json() : ExportText(line.pCodeFile->szName)},
            {"parameter_file", line.pParamFile == nullptr ? json() : ExportText(line.pParamFile->szName)}};
}

json ExportCircuit(const EXTCORNER* corner)
{
    return corner == nullptr
               ? json()
               : json{{"file", ExportText(corner->pszFile)}, {"circuit", ExportText(corner->pszCircuit)}};
}

json ExportExternal(const EXTBLOCK* block)
{
    return block == nullptr ? json()
                            : json{{"typ", ExportCircuit(block->pTyp)},
                                   {"min", ExportCircuit(block->pMin)},
                                   {"max", ExportCircuit(block->pMax)}};
}

json ExportPolarity(nuibis_model_polarity polarity)
{
    static constexpr const char* WORDS[]{nullptr, nullptr, "Non-Inverting", "Inverting"};
    return ExportText(WORDS[polarity]);
}

json ExportEnable(nuibis_model_enable enable)
{
    static constexpr const char* WORDS[]{nullptr, nullptr, "Active-High", "Active-Low"};
    return ExportText(WORDS[enable]);
}

}  // namespace

json ExportModel(const nuibis_mdl& model)
{
    json object{{"name", model.szName},
                {"Model_type", ExportText(MDL_TypeName(model.eModelType))},
                {"Polarity", ExportPolarity(model.ePolarity)},
                {"Enable", ExportEnable(model.eEnable)}};
    AddItems(model, MODEL_SCALARS, object);
    AddItems(model, MODEL_TRIPLES, object);
    AddItems(model, MODEL_TABLES, object);
    object["C Comp Corner"] = ExportBlock(model.pCCompCorner, CORNER_ITEMS);
    object["Model Spec"] = ExportBlock(model.pModelSpec, SPEC_ITEMS);
    object["Receiver Thresholds"] = ExportThresholds(model.pReceiverThresholds);
    object["Ramp"] = ExportRamp(model.pRamp);
    object["Rising Waveform"] = ExportItem(model.pRising);
    object["Falling Waveform"] = ExportItem(model.pFalling);
    object["Initial Delay"] = ExportInitialDelay(model.pVT, model.pIT, model.pInitialDelay);
    object["Driver Schedule"] =
        model.pDriverSchedule == nullptr
            ? json()
            : ExportColumns(InFileOrder(model.pDriverSchedule->pModels), SCHEDULE_COLUMNS);
    object["Add Submodel"] = ExportEach(RecordsOf(model.pAddSubmodels), ExportAdded);
    object["On"] = ExportSeries(model.pOn);
    object["Off"] = ExportSeries(model.pOff);
    object["External Model"] = ExportExternal(model.pExternalModel);
    object["Algorithmic Model"] = ExportEach(
        InFileOrder(model.pAlgorithmicModel == nullptr ? nullptr : model.pAlgorithmicModel->pFirst),
        ExportCode);
    return object;
}

json ExportSubmodel(const submdl& submodel)
{
    json object{{"name", submodel.szName},
                {"Submodel_type", ExportText(SUBMDL_TypeWord(submodel.eSubmodelType))}};
    AddItems(submodel, SUBMODEL_TABLES, object);
    AddItems(submodel, SUBMODEL_WAVEFORMS, object);
    object["Ramp"] = ExportRamp(submodel.pRamp);
    object["Initial Delay"] = ExportInitialDelay(nullptr, nullptr, submodel.pInitialDelay);
    object["Submodel Spec"] = ExportBlock(submodel.pSpec, TRIGGER_ITEMS);
    return object;
}
