// Queries about models, model selectors and submodels.

#include "ibis/interface/talibis_filter.h"
#include "ibis/interface/talibis_print.h"
#include "ibis/interface/talibis_raw.h"
#include "ibis/source/nuibis_acdc.h"
#include "ibis/source/nuibis_ccorner.h"
#include "ibis/source/nuibis_dly.h"
#include "ibis/source/nuibis_drvsh.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_limit.h"
#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_msel.h"
#include "ibis/source/nuibis_mspec.h"
#include "ibis/source/nuibis_ramp.h"
#include "ibis/source/nuibis_sinfo.h"
#include "ibis/source/nuibis_smspec.h"
#include "ibis/source/nuibis_submdl.h"
#include "ibis/source/nuibis_testdata.h"

#include <array>
#include <cstring>
#include <new>

namespace
{

constexpr std::size_t LABEL_WIDTH = 25;
constexpr std::size_t SUBMODEL_WIDTH = 10;
constexpr std::size_t MODEL_WIDTH = 44;
constexpr int DEFAULT_NAME_LENGTH = 40;

// What a model without a threshold answers: no input reaches it.
constexpr const char* NO_THRESHOLD = "10000";

const char* PolarityText(nuibis_model_polarity polarity)
{
    switch (polarity) {
    case POLARITY_NON_INVERTING:
        return "Non-Inverting";
    case POLARITY_INVERTING:
        return "Inverting";
    default:
        return "No Polarity";
    }
}

const char* EnableText(nuibis_model_enable enable)
{
    switch (enable) {
    case ENABLE_ACTIVE_HIGH:
        return "Active-High";
    case ENABLE_ACTIVE_LOW:
        return "Active-Low";
    default:
        return "No Enable";
    }
}

const char* ModeText(submdl_modes mode)
{
    static constexpr std::array texts{"Driving", "Non-Driving", "All"};
    const auto index = static_cast<std::size_t>(mode);
    return index < texts.size() ? texts[index] : "No Mode";
}

const char* SubmodelTypeText(submdl_type type)
{
    const char* const word = SUBMDL_TypeWord(type);
    return word != nullptr ? word : type == SUBMDL_UNSEEN ? "Not_set" : "No Type";
}

void MissSubmodel(TalIbisQueryData& record, const char* submodel, const char* file)
{
    if (submodel != nullptr && file != nullptr) {
        record.setFormatedError(QueryError, "Sub model '%s' not found in the IBIS file '%s'", submodel, file);
    }
}

const addsubmdl* FindAdded(const nuibis_mdl& model, std::string_view submodel)
{
    const addsubmdl* entry = model.pAddSubmodels;
    while (entry != nullptr && submodel != entry->szName) {
        entry = entry->pNext;
    }
    return entry;
}

// The entries of a selector, which may be null, that the filter accepts.
std::vector<const mselmodel*> AcceptedEntries(const msel* selector, TalIbisFilter& filter)
{
    std::vector<const mselmodel*> entries;
    for (const mselmodel* entry = selector == nullptr ? nullptr : selector->pModels; entry != nullptr;
         entry = entry->pNext) {
        if (filter.accepts(entry->szName)) {
            entries.push_back(entry);
        }
    }
    return entries;
}

std::size_t LongestName(const std::vector<const mselmodel*>& entries)
{
    std::size_t longest = 0;
    for (const mselmodel* entry : entries) {
        longest = std::max(longest, std::strlen(entry->szName));
    }
    return longest;
}

void InsertTriggers(TalIbisListQueryData& list, const smspec* spec)
{
    static constexpr std::size_t width = 18;
    static constexpr std::size_t dashes = 54;
    if (spec == nullptr || (spec->pVTriggerR == nullptr && spec->pVTriggerF == nullptr)) {
        return;
    }
    insertRow(list, "Spec:");
    insertTitle(
        list,
        {{width, "  Subparameter"}, {NUMBER_WIDTH, "typ"}, {NUMBER_WIDTH, "min"}, {NUMBER_WIDTH, "max"}},
        dashes);
    if (spec->pVTriggerR != nullptr) {
        insertRow(list, {{width, "  V_trigger_r"}, {0, printTriple(*spec->pVTriggerR)}});
    }
    if (spec->pVTriggerF != nullptr) {
        insertRow(list, {{width, "  V_trigger_f"}, {0, printTriple(*spec->pVTriggerF)}});
    }
}

std::string PrintSlope(double dV, double dT, numstat status)
{
    switch (status) {
    case NUM_VALUE:
        return printNumber(dV) + "/" + printNumber(dT);
    case NUM_NA:
        return "NA";
    case NUM_ABSENT:
        return " ";
    }
    return {};
}

std::string PrintSlope(const rampline* line, const char* corner)
{
    const std::string_view word = corner == nullptr ? "Typ" : corner;
    if (line == nullptr) {
        return {};
    }
    if (word == "Typ") {
        return PrintSlope(line->dTypDv, line->dTypDt, line->eTyp);
    }
    if (word == "Min") {
        return PrintSlope(line->dMinDv, line->dMinDt, line->eMin);
    }
    return word == "Max" ? PrintSlope(line->dMaxDv, line->dMaxDt, line->eMax) : std::string();
}

}  // namespace

submdl* TalIbis::findSubmodel(const char* name) const
{
    return name == nullptr || pIbis == nullptr ? nullptr : SUBMDL_Find(name, pIbis->pSubmodels);
}

nuibis_mdl* TalIbis::findModelOrReport(const char* name, TalIbisQueryData& record) const
{
    nuibis_mdl* const model = findModel(name);
    if (model == nullptr && name != nullptr && pszFileName != nullptr) {
        record.setFormatedError(QueryError, "Model '%s' not found in the IBIS file '%s'", name, pszFileName);
    }
    return model;
}

// Runs a query on a model, if there is one, into a cleared record.
template <class Query>
void TalIbis::queryModel(const char* model, TalIbisQueryData& record, Query query) const
{
    answerQuery(record, [&] {
        if (const nuibis_mdl* const found = findModelOrReport(model, record); found != nullptr) {
            query(*found);
        }
    });
}

// Lists of models and selectors ---------------------------------------------------------------------------

void TalIbis::getModelList(TalIbisListQueryData& list) const
{
    answerQuery(list, [&] {
        for (const nuibis_mdl* model : inFileOrder(pIbis == nullptr ? nullptr : pIbis->pModels)) {
            insertRow(list, model->szName);
        }
    });
}

void TalIbis::getModelSelectorList(TalIbisListQueryData& list) const
{
    answerQuery(list, [&] {
        for (const msel* selector : inFileOrder(pIbis == nullptr ? nullptr : pIbis->pModelSelectors)) {
            insertRow(list, selector->szName);
        }
    });
}

void TalIbis::getModelSelectorSubModelList(const char* selector, const char* symbol,
                                           TalIbisListQueryData& list) const
{
    static constexpr std::size_t gap = 4;
    static constexpr std::size_t descriptionWidth = 120;
    static constexpr std::size_t dashes = 124;
    answerQuery(list, [&] {
        const msel* const found = findModelSelector(selector);
        if (found == nullptr || found->pModels == nullptr) {
            return;
        }
        TalIbisFilter filter(*this, symbol);
        const std::vector<const mselmodel*> entries = AcceptedEntries(found, filter);
        const std::size_t width = LongestName(entries) + gap;
        insertTitle(list, {{width, "Model"}, {descriptionWidth, "Description"}}, dashes);
        if (filter.isInvalid(list)) {
            return;
        }
        for (const mselmodel* entry : entries) {
            insertRow(list, {{width, entry->szName}, {descriptionWidth, entry->szDescription}});
        }
    });
}

int TalIbis::getModelSelectorSubModelListLen(const char* selector, const char* symbol) const
try {
    const msel* const found = findModelSelector(selector);
    if (found == nullptr || found->pModels == nullptr) {
        return DEFAULT_NAME_LENGTH;
    }
    TalIbisFilter filter(*this, symbol);
    return static_cast<int>(LongestName(AcceptedEntries(found, filter)));
} catch (const std::bad_alloc&) {
    return DEFAULT_NAME_LENGTH;
}

void TalIbis::getModelSelectorSubModelListQt(const char* selector, std::vector<std::string>* names,
                                             bool isOutput) const
try {
    names->clear();
    TalIbisFilter filter(*this, isOutput ? "IBIS_S_O" : "IBIS_S_I");
    for (const mselmodel* entry : AcceptedEntries(findModelSelector(selector), filter)) {
        names->emplace_back(entry->szName);
    }
} catch (const std::bad_alloc&) {
    names->clear();
}

void TalIbis::hasModelSelector(const char* selector, const char* symbol, TalIbisBooleanQueryData& flag) const
{
    extendQuery(flag, [&] {
        const msel* const found = findModelSelector(selector);
        TalIbisFilter filter(*this, symbol);
        if (found == nullptr) {
            flag.setData(false);
        } else if (!filter.symbol().isSelectiveModelType()) {
            flag.setData(true);
        } else if (!filter.isInvalid(flag)) {
            flag.setData(!AcceptedEntries(found, filter).empty());
        }
    });
}

// Facts of a model ----------------------------------------------------------------------------------------

void TalIbis::getModelInfo(const char* model, TalIbisListQueryData& list) const
{
    static constexpr std::array<std::pair<const char*, double * nuibis_mdl::*>, 6> numbers{{
        {"Vmeas", &nuibis_mdl::pdVmeas},
        {"Cref", &nuibis_mdl::pdCref},
        {"Rref", &nuibis_mdl::pdRref},
        {"Vref", &nuibis_mdl::pdVref},
        {"Cref_diff", &nuibis_mdl::pdCrefDiff},
        {"Rref_diff", &nuibis_mdl::pdRrefDiff},
    }};
    queryModel(model, list, [&](const nuibis_mdl& found) {
        const char* const type = MDL_TypeName(getModelType(&found));
        insertRow(list, {{LABEL_WIDTH, "Model_type"}, {0, type == nullptr ? "" : type}});
        insertRow(list, {{LABEL_WIDTH, "Polarity"}, {0, PolarityText(found.ePolarity)}});
        insertRow(list, {{LABEL_WIDTH, "Enable"}, {0, EnableText(found.eEnable)}});
        for (const auto& [label, value] : numbers) {
            if (found.*value != nullptr) {
                insertRow(list, {{LABEL_WIDTH, label}, {0, printNumber(*(found.*value))}});
            }
        }
    });
}

void TalIbis::getModelTypeString(const char* name, TalIbisStringQueryData& result) const
{
    answerQuery(result, [&] {
        if (name == nullptr) {
            return;
        }
        const char* const text = MDL_TypeName(getModelType(name));
        if (text == nullptr) {
            result.setUnformatedError(QueryError, "Model type not found");
        } else {
            result.setData(text);
        }
    });
}

void TalIbis::getModelDriverScheduleDelay(const char* model, TalIbisListQueryData& list) const
{
    static constexpr std::size_t dashes = 98;
    queryModel(model, list, [&](const nuibis_mdl& found) {
        if (found.pDriverSchedule == nullptr || found.pDriverSchedule->pModels == nullptr) {
            return;
        }
        insertTitle(list,
                    {{MODEL_WIDTH, "Model_name"},
                     {NUMBER_WIDTH, "Rise_on_dly"},
                     {NUMBER_WIDTH, "Rise_off_dly"},
                     {NUMBER_WIDTH, "Fall_on_dly"},
                     {NUMBER_WIDTH, "Fall_off_dly"}},
                    dashes);
        for (const drvshmodel* entry = found.pDriverSchedule->pModels;
             entry != nullptr && entry->pDelays != nullptr; entry = entry->pNext) {
            const dly& delays = *entry->pDelays;
            insertRow(list, {{MODEL_WIDTH, entry->szName},
                             {NUMBER_WIDTH, printColumn(delays.dRiseOn, delays.eRiseOn)},
                             {NUMBER_WIDTH, printColumn(delays.dRiseOff, delays.eRiseOff)},
                             {NUMBER_WIDTH, printColumn(delays.dFallOn, delays.eFallOn)},
                             {NUMBER_WIDTH, printColumn(delays.dFallOff, delays.eFallOff)}});
        }
    });
}

bool TalIbis::hasModelDriverSchedule(const char* model) const
{
    const nuibis_mdl* const found = findModel(model);
    return found != nullptr && found->pDriverSchedule != nullptr;
}

void TalIbis::hasModelDriverSchedule(const char* model, TalIbisBooleanQueryData& flag) const
{
    flag.setData(hasModelDriverSchedule(model));
}

// Submodels -----------------------------------------------------------------------------------------------

void TalIbis::getSubmodelList(const char* model, TalIbisListQueryData& list) const
{
    queryModel(model, list, [&](const nuibis_mdl& found) {
        for (const addsubmdl* entry = found.pAddSubmodels; entry != nullptr; entry = entry->pNext) {
            insertRow(list, entry->szName);
        }
    });
}

void TalIbis::getSubmodelInfo(const char* model, const char* submodel, TalIbisListQueryData& list) const
{
    queryModel(model, list, [&](const nuibis_mdl& found) {
        const submdl* const sub = findSubmodel(submodel);
        if (sub == nullptr) {
            MissSubmodel(list, submodel, pszFileName);
            return;
        }
        if (const addsubmdl* const added = FindAdded(found, submodel); added != nullptr) {
            insertRow(list, {{SUBMODEL_WIDTH, "Mode:"}, {0, ModeText(added->eMode)}});
        } else if (pszFileName != nullptr) {
            list.setFormatedError(QueryError,
                                  "Sub model '%s' not found under model '%s' in the IBIS file '%s'", submodel,
                                  model, pszFileName);
        }
        insertRow(list, {{SUBMODEL_WIDTH, "Type:"}, {0, SubmodelTypeText(sub->eSubmodelType)}});
        InsertTriggers(list, sub->pSpec);
    });
}

void TalIbis::getSubmodelOffDelay(const char* submodel, TalIbisListQueryData& list) const
{
    answerQuery(list, [&] {
        const submdl* const sub = findSubmodel(submodel);
        if (sub == nullptr) {
            MissSubmodel(list, submodel, pszFileName);
        } else if (sub->pSpec != nullptr && sub->pSpec->pOffDelay != nullptr) {
            insertTriple(list, *sub->pSpec->pOffDelay);
        }
    });
}

// Triples and tables of a model ---------------------------------------------------------------------------

void TalIbis::getTriple(const char* model, rng* nuibis_mdl::*values, TalIbisListQueryData& list) const
{
    queryModel(model, list, [&](const nuibis_mdl& found) {
        if (found.*values != nullptr) {
            insertTriple(list, *(found.*values));
        }
    });
}

void TalIbis::getVoltageRange(const char* model, TalIbisListQueryData& list) const
{
    getTriple(model, &nuibis_mdl::pVoltageRange, list);
}

void TalIbis::getPullupRef(const char* model, TalIbisListQueryData& list) const
{
    getTriple(model, &nuibis_mdl::pPullupRef, list);
}

void TalIbis::getPulldownRef(const char* model, TalIbisListQueryData& list) const
{
    getTriple(model, &nuibis_mdl::pPulldownRef, list);
}

void TalIbis::getPowerClampRef(const char* model, TalIbisListQueryData& list) const
{
    getTriple(model, &nuibis_mdl::pPowerClampRef, list);
}

void TalIbis::getGndClampRef(const char* model, TalIbisListQueryData& list) const
{
    getTriple(model, &nuibis_mdl::pGndClampRef, list);
}

void TalIbis::getExternalRef(const char* model, TalIbisListQueryData& list) const
{
    getTriple(model, &nuibis_mdl::pExternalRef, list);
}

void TalIbis::getTTgnd(const char* model, TalIbisListQueryData& list) const
{
    getTriple(model, &nuibis_mdl::pTTgnd, list);
}

void TalIbis::getTTpower(const char* model, TalIbisListQueryData& list) const
{
    getTriple(model, &nuibis_mdl::pTTpower, list);
}

void TalIbis::getRgnd(const char* model, TalIbisListQueryData& list) const
{
    extendQuery(list, [&] {
        const nuibis_mdl* const found = findModelOrReport(model, list);
        if (found != nullptr && found->pRgnd != nullptr) {
            insertTriple(list, *found->pRgnd);
        }
    });
}

void TalIbis::getRpower(const char* model, TalIbisListQueryData& list) const
{
    getTriple(model, &nuibis_mdl::pRpower, list);
}

void TalIbis::getRac(const char* model, TalIbisListQueryData& list) const
{
    getTriple(model, &nuibis_mdl::pRac, list);
}

void TalIbis::getCac(const char* model, TalIbisListQueryData& list) const
{
    getTriple(model, &nuibis_mdl::pCac, list);
}

void TalIbis::hasItem(const char* model, bool (*has)(const nuibis_mdl&), TalIbisBooleanQueryData& flag) const
{
    extendQuery(flag, [&] {
        const nuibis_mdl* const found = findModelOrReport(model, flag);
        flag.setData(found != nullptr && has(*found));
    });
}

void TalIbis::hasPullup(const char* model, TalIbisBooleanQueryData& flag) const
{
    hasItem(model, MDL_Has<&nuibis_mdl::pPullup>, flag);
}

void TalIbis::hasPulldown(const char* model, TalIbisBooleanQueryData& flag) const
{
    hasItem(model, MDL_Has<&nuibis_mdl::pPulldown>, flag);
}

void TalIbis::hasPowerClamp(const char* model, TalIbisBooleanQueryData& flag) const
{
    hasItem(model, MDL_Has<&nuibis_mdl::pPowerClamp>, flag);
}

void TalIbis::hasGndClamp(const char* model, TalIbisBooleanQueryData& flag) const
{
    hasItem(model, MDL_Has<&nuibis_mdl::pGndClamp>, flag);
}

// Single values of a model --------------------------------------------------------------------------------

void TalIbis::getCapacitance(const char* model, const char* corner, rng* nuibis_mdl::*own,
                             rng* ccorner::*item, TalIbisStringQueryData& result) const
{
    queryModel(model, result, [&](const nuibis_mdl& found) {
        const rng* const values = found.pCCompCorner != nullptr ? found.pCCompCorner->*item : found.*own;
        result.setData(printOptionalDataValue(values, corner).c_str());
    });
}

void TalIbis::getC_comp(const char* model, const char* corner, TalIbisStringQueryData& result) const
{
    getCapacitance(model, corner, &nuibis_mdl::pCComp, &ccorner::pCComp, result);
}

void TalIbis::getC_comp_pullup(const char* model, const char* corner, TalIbisStringQueryData& result) const
{
    getCapacitance(model, corner, &nuibis_mdl::pCCompPullup, &ccorner::pCCompPullup, result);
}

void TalIbis::getC_comp_pulldown(const char* model, const char* corner, TalIbisStringQueryData& result) const
{
    getCapacitance(model, corner, &nuibis_mdl::pCCompPulldown, &ccorner::pCCompPulldown, result);
}

void TalIbis::getC_comp_power_clamp(const char* model, const char* corner,
                                    TalIbisStringQueryData& result) const
{
    getCapacitance(model, corner, &nuibis_mdl::pCCompPowerClamp, &ccorner::pCCompPowerClamp, result);
}

void TalIbis::getC_comp_gnd_clamp(const char* model, const char* corner, TalIbisStringQueryData& result) const
{
    getCapacitance(model, corner, &nuibis_mdl::pCCompGndClamp, &ccorner::pCCompGndClamp, result);
}

void TalIbis::getThreshold(const char* model, const char* corner, rng* mspec::*spec, double* nuibis_mdl::*own,
                           TalIbisStringQueryData& result) const
{
    queryModel(model, result, [&](const nuibis_mdl& found) {
        if (found.pModelSpec != nullptr && found.pModelSpec->*spec != nullptr) {
            result.setData(printOptionalDataValue(found.pModelSpec->*spec, corner).c_str());
        } else {
            result.setData(found.*own != nullptr ? printNumber(*(found.*own)).c_str() : NO_THRESHOLD);
        }
    });
}

void TalIbis::getVinh(const char* model, const char* corner, TalIbisStringQueryData& result) const
{
    getThreshold(model, corner, &mspec::pVinh, &nuibis_mdl::pdVinh, result);
}

void TalIbis::getVinl(const char* model, const char* corner, TalIbisStringQueryData& result) const
{
    getThreshold(model, corner, &mspec::pVinl, &nuibis_mdl::pdVinl, result);
}

void TalIbis::getR_load(const char* model, TalIbisStringQueryData& result) const
{
    queryModel(model, result, [&](const nuibis_mdl& found) {
        if (found.pRamp != nullptr && found.pRamp->bRLoad != 0) {
            result.setData(printNumber(found.pRamp->dRLoad).c_str());
        }
    });
}

void TalIbis::getSlope(const char* model, const char* corner, rampline* ramp::*line,
                       TalIbisStringQueryData& result) const
{
    queryModel(model, result, [&](const nuibis_mdl& found) {
        if (found.pRamp != nullptr) {
            result.setData(PrintSlope(found.pRamp->*line, corner).c_str());
        }
    });
}

void TalIbis::getRampDvDtRise(const char* model, const char* corner, TalIbisStringQueryData& result) const
{
    getSlope(model, corner, &ramp::pRise, result);
}

void TalIbis::getRampDvDtFall(const char* model, const char* corner, TalIbisStringQueryData& result) const
{
    getSlope(model, corner, &ramp::pFall, result);
}

void TalIbis::getV_fixture1(const char* model, const char* corner, TalIbisStringQueryData& result) const
{
    queryModel(model, result, [&](const nuibis_mdl& found) {
        double volts = 0;
        if (found.pRising != nullptr &&
            IbisWaveformHandle(found.pRising).getV_fixture(getIbisDataType(corner), volts)) {
            result.setData(printNumber(volts).c_str());
        }
    });
}

void TalIbis::getV_fixture2(const char* model, const char*, TalIbisStringQueryData& result) const
{
    queryModel(model, result, [](const nuibis_mdl&) {});
}

void TalIbis::getR_fixture1(const char* model, TalIbisStringQueryData& result) const
{
    queryModel(model, result, [](const nuibis_mdl&) {});
}

void TalIbis::getR_fixture2(const char* model, TalIbisStringQueryData& result) const
{
    extendQuery(result, [&] {
        if (findModelOrReport(model, result) != nullptr) {
            result.setData("");
        }
    });
}

// Series elements -----------------------------------------------------------------------------------------

IbisSwitchType TalIbis::getSeriesSwitchType(const char* state)
{
    return state != nullptr && std::string_view(state) == "On" ? SWITCH_ON : SWITCH_OFF;
}

const sinfo* TalIbis::findSeries(const char* model, const char* state) const
{
    const nuibis_mdl* const found = findModel(model);
    if (found == nullptr) {
        return nullptr;
    }
    return getSeriesSwitchType(state) == SWITCH_ON ? found->pOn : found->pOff;
}

void TalIbis::getSeries(const char* model, const char* state, const char* corner, rng* sinfo::*values,
                        TalIbisStringQueryData& result) const
{
    extendQuery(result, [&] {
        if (model == nullptr) {
            return;
        }
        if (findModel(model) == nullptr) {
            missComponent(result, model);
            return;
        }
        const sinfo* const elements = findSeries(model, state);
        result.setData(
            printOptionalDataValue(elements == nullptr ? nullptr : elements->*values, corner).c_str());
    });
}

void TalIbis::getR_series(const char* model, const char* state, const char* corner,
                          TalIbisStringQueryData& result) const
{
    getSeries(model, state, corner, &sinfo::pRSeries, result);
}

void TalIbis::getL_series(const char* model, const char* state, const char* corner,
                          TalIbisStringQueryData& result) const
{
    getSeries(model, state, corner, &sinfo::pLSeries, result);
}

void TalIbis::getRl_series(const char* model, const char* state, const char* corner,
                           TalIbisStringQueryData& result) const
{
    getSeries(model, state, corner, &sinfo::pRlSeries, result);
}

void TalIbis::getC_series(const char* model, const char* state, const char* corner,
                          TalIbisStringQueryData& result) const
{
    getSeries(model, state, corner, &sinfo::pCSeries, result);
}

void TalIbis::getRc_series(const char* model, const char* state, const char* corner,
                           TalIbisStringQueryData& result) const
{
    getSeries(model, state, corner, &sinfo::pRcSeries, result);
}

void TalIbis::getLc_series(const char* model, const char* state, const char* corner,
                           TalIbisStringQueryData& result) const
{
    getSeries(model, state, corner, &sinfo::pLcSeries, result);
}

void TalIbis::hasSeries_current(const char* model, const char* state, TalIbisBooleanQueryData& flag) const
{
    const sinfo* const elements = findSeries(model, state);
    flag.setData(elements != nullptr && elements->pSeriesCurrent != nullptr);
}

void TalIbis::hasSeries_MOSFET(const char* model, const char* state, TalIbisBooleanQueryData& flag) const
{
    const sinfo* const elements = findSeries(model, state);
    flag.setData(elements != nullptr && elements->pSeriesMosfet != nullptr);
}

// Checks --------------------------------------------------------------------------------------------------

const IbisErrorContainer* TalIbis::testModel(const char* name) const
{
    MSG_ClearContainer();
    if (name == nullptr) {
        MSG_ErrorText("Model name is not given");
        return MSG_GetContainer();
    }
    TalIbisStringQueryData miss;
    nuibis_mdl* const model = findModelOrReport(name, miss);
    if (model == nullptr) {
        MSG_ErrorText("%s", miss.getErrMsg().c_str());
        return MSG_GetContainer();
    }
    return testModel(model);
}

const IbisErrorContainer* TalIbis::testModel(nuibis_mdl* model) const
{
    if (model == nullptr || pIbis == nullptr) {
        return MSG_GetContainer();
    }
    const IBIS_Scope scope(pIbis, eVersion);
    ACDC_CheckModel(model);
    LIMIT_CheckModel(model);
    DRVSH_CheckModel(model, pIbis);
    if (model->uiReferenced == 0) {
        MSG_WarningText(
            "Model %s not referenced in any [Pin], [Model Selector], [Driver Schedule] or [Series "
            "Pin Mapping] sections.\n No more warnings will be generated for un-referenced models",
            model->szName);
    }
    TESTDATA_CheckDriver(model->szName);
    return MSG_GetContainer();
}
