#include "ibis/interface/talibis_raw.h"

#include "ibis/interface/talibis_filter.h"
#include "ibis/source/nuibis_ccorner.h"
#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_difpin.h"
#include "ibis/source/nuibis_dly.h"
#include "ibis/source/nuibis_drvsh.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_mspec.h"
#include "ibis/source/nuibis_pin.h"
#include "ibis/source/nuibis_pinmpg.h"
#include "ibis/source/nuibis_pkg.h"
#include "ibis/source/nuibis_ramp.h"
#include "ibis/source/nuibis_rng.h"
#include "ibis/source/nuibis_sinfo.h"
#include "ibis/source/nuibis_smspec.h"
#include "ibis/source/nuibis_spinmpg.h"
#include "ibis/source/nuibis_submdl.h"
#include "platform/internpool.h"

#include <cmath>
#include <cstdio>
#include <limits>
#include <memory>
#include <new>

namespace
{

constexpr double UNSET_THRESHOLD = 10000.0;  // V; no input reaches it

// Types that have no table of their own to drive high, or low.
constexpr MDL_TypeSet NOT_HIGH =
    MDL_Types({MODEL_NO_TYPE, MODEL_INPUT, MODEL_OPEN_DRAIN, MODEL_IO_OPEN_DRAIN, MODEL_OPEN_SINK,
               MODEL_IO_OPEN_SINK, MODEL_INPUT_ECL, MODEL_TERMINATOR, MODEL_INPUT_DIFF});
constexpr MDL_TypeSet NOT_LOW =
    MDL_Types({MODEL_NO_TYPE, MODEL_INPUT, MODEL_OPEN_SOURCE, MODEL_IO_OPEN_SOURCE, MODEL_INPUT_ECL,
               MODEL_TERMINATOR, MODEL_INPUT_DIFF});

// A record made by hand may hold any type.
bool IsKnownOneOf(nuibis_model_type type, MDL_TypeSet set)
{
    return type >= MODEL_UNSEEN && type <= MODEL_INPUT_DIFF && MDL_IsOneOf(type, set);
}

const char* Intern(const char* text)
{
    return InternPool::Private::singleton().insertC(text);
}

bool Take(const double* number, double& value)
{
    if (number == nullptr) {
        return false;
    }
    value = *number;
    return true;
}

const rngp* RowsOf(const crv* table)
{
    return table == nullptr ? nullptr : table->pHead;
}

const rngp* RowsOf(const wvfrm* waveform)
{
    return waveform == nullptr ? nullptr : waveform->pRows;
}

bool HasSecond(const wvfrm* list)
{
    return list != nullptr && list->pNext != nullptr;
}

void CopyDelay(double delay, numstat status, double& value, std::uint32_t& flag)
{
    if (status == NUM_VALUE) {
        value = delay;
        flag = 1;
    }
}

void CopyDelays(const dly& delays, ScheduledDriver& driver)
{
    CopyDelay(delays.dRiseOn, delays.eRiseOn, driver.dRiseOn, driver.bRiseOn);
    CopyDelay(delays.dRiseOff, delays.eRiseOff, driver.dRiseOff, driver.bRiseOff);
    CopyDelay(delays.dFallOn, delays.eFallOn, driver.dFallOn, driver.bFallOn);
    CopyDelay(delays.dFallOff, delays.eFallOff, driver.dFallOff, driver.bFallOff);
}

template <class T> const T* ElementAt(const T* list, int index)
{
    if (index < 0) {
        return nullptr;
    }
    for (; list != nullptr && index > 0; --index) {
        list = list->pNext;
    }
    return list;
}

template <class T> int CountOf(const T* list)
{
    int count = 0;
    for (; list != nullptr; list = list->pNext) {
        ++count;
    }
    return count;
}

// The waveform of the list with the extreme value; the first of equal ones. A waveform whose value cannot be
// read is passed over.
template <class Read, class Better>
const wvfrm* FindExtreme(const wvfrm* list, double best, Read read, Better better)
{
    const wvfrm* found = list;
    for (const wvfrm* other = list->pNext; other != nullptr; other = other->pNext) {
        double value = 0;
        if (read(*other, value) && better(value, best)) {
            best = value;
            found = other;
        }
    }
    return found;
}

// A head without a voltage has nothing that the others could differ from: the resistances decide.
template <class Better> const wvfrm* SelectWaveform(const wvfrm* list, IbisDataType type, Better better)
{
    if (list == nullptr || list->pNext == nullptr) {
        return list;
    }
    const auto voltage = [type](const wvfrm& waveform, double& value) {
        return IbisWaveformHandle(&waveform).getV_fixture(type, value);
    };
    const auto resistance = [](const wvfrm& waveform, double& value) {
        return IbisWaveformHandle(&waveform).getR_fixture(value);
    };
    double first = 0;
    if (voltage(*list, first)) {
        for (const wvfrm* other = list->pNext; other != nullptr; other = other->pNext) {
            double value = 0;
            if (voltage(*other, value) && value != first) {
                return FindExtreme(list, first, voltage, better);
            }
        }
    }
    return resistance(*list, first) ? FindExtreme(list, first, resistance, better) : nullptr;
}

}  // namespace

IbisDataType getIbisDataType(const char* text)
{
    const std::string_view word = text == nullptr ? "Typ" : text;
    if (word == "Typ") {
        return IBIS_DATA_TYP;
    }
    if (word == "Min") {
        return IBIS_DATA_MIN;
    }
    if (word == "Max") {
        return IBIS_DATA_MAX;
    }
    std::fputs("Wrong IBIS data type. Expect 'typ', 'min' or 'max'.\n", stderr);
    return IBIS_DATA_UNKNOWN;
}

// Waveforms and scheduled drivers -------------------------------------------------------------------------

bool IbisWaveformHandle::getR_fixture(double& value) const
{
    return pWaveform != nullptr && Take(pWaveform->pdRFixture, value);
}

bool IbisWaveformHandle::getL_fixture(double& value) const
{
    return pWaveform != nullptr && Take(pWaveform->pdLFixture, value);
}

bool IbisWaveformHandle::getC_fixture(double& value) const
{
    return pWaveform != nullptr && Take(pWaveform->pdCFixture, value);
}

bool IbisWaveformHandle::getV_fixture(IbisDataType type, double& value) const
{
    if (pWaveform == nullptr || type < IBIS_DATA_TYP || type > IBIS_DATA_MAX) {
        return false;
    }
    const double* const own = type == IBIS_DATA_MIN   ? pWaveform->pdVFixtureMin
                              : type == IBIS_DATA_MAX ? pWaveform->pdVFixtureMax
                                                      : nullptr;
    return Take(own != nullptr ? own : pWaveform->pdVFixture, value);
}

const rngp* IbisWaveformHandle::getVtTable() const
{
    return RowsOf(pWaveform);
}

const rngp* IbisWaveformHandle::getCompositeTable() const
{
    return pWaveform == nullptr ? nullptr : RowsOf(pWaveform->pComposite);
}

ScheduledDriver::ScheduledDriver(const char* name) : sModelName(Intern(name)) {}

// Values by corner ----------------------------------------------------------------------------------------

bool IbisRawModelData::useTypRngValue(const rng* values, double& value)
{
    return values != nullptr && values->eTyp == NUM_VALUE && Take(&values->dTyp, value);
}

bool IbisRawModelData::getRngValue(const rng* values, IbisDataType type, double& value)
{
    if (values == nullptr) {
        return false;
    }
    if (type == IBIS_DATA_MIN && values->eMin == NUM_VALUE) {
        return Take(&values->dMin, value);
    }
    if (type == IBIS_DATA_MAX && values->eMax == NUM_VALUE) {
        return Take(&values->dMax, value);
    }
    return useTypRngValue(values, value);
}

bool IbisRawModelData::useTypRampValue(const rampline* line, double& dV, double& dT)
{
    return line != nullptr && line->eTyp == NUM_VALUE && Take(&line->dTypDv, dV) && Take(&line->dTypDt, dT);
}

bool IbisRawModelData::getRampValue(const rampline* line, IbisDataType type, double& value)
{
    double dV = 0;
    double dT = 0;
    if (line == nullptr || type > IBIS_DATA_MAX) {
        return false;
    }
    if (type == IBIS_DATA_MIN && line->eMin == NUM_VALUE) {
        dV = line->dMinDv;
        dT = line->dMinDt;
    } else if (type == IBIS_DATA_MAX && line->eMax == NUM_VALUE) {
        dV = line->dMaxDv;
        dT = line->dMaxDt;
    } else if (!useTypRampValue(line, dV, dT)) {
        return false;
    }
    if (std::abs(dT) < std::numeric_limits<double>::min()) {
        return false;
    }
    value = dV / dT;
    return true;
}

const wvfrm* IbisRawModelData::getWaveformWithHighest_fixture(const wvfrm* list, IbisDataType type)
{
    return SelectWaveform(list, type, [](double value, double best) { return value > best; });
}

const wvfrm* IbisRawModelData::getWaveformWithLowest_fixture(const wvfrm* list, IbisDataType type)
{
    return SelectWaveform(list, type, [](double value, double best) { return value < best; });
}

// The view ------------------------------------------------------------------------------------------------

IbisRawModelData::IbisRawModelData(const IbisRawModelData& other) noexcept
    : pIbis(other.pIbis), pModel(other.pModel), sModelName(other.sModelName), sFileName(other.sFileName),
      iNumDriverSchedule(other.iNumDriverSchedule), iNumSubModels(other.iNumSubModels)
{
}

IbisRawModelData::~IbisRawModelData() = default;

void IbisRawModelData::setFile(ibis* root, const char* fileName)
{
    pIbis = root;
    sFileName = Intern(fileName);
}

void IbisRawModelData::setModel(nuibis_mdl* model)
{
    pModel = model;
    sModelName = Intern(model->szName);
    iNumDriverSchedule = model->pDriverSchedule == nullptr ? 0 : CountOf(model->pDriverSchedule->pModels);
    iNumSubModels = -1;
}

const nuibis_mdl* IbisRawModelData::findModel(const char* name) const
{
    return name == nullptr || pIbis == nullptr ? nullptr : MDL_Find(name, pIbis->pModels);
}

const submdl* IbisRawModelData::findSubModel(const char* name) const
{
    return name == nullptr || pIbis == nullptr ? nullptr : SUBMDL_Find(name, pIbis->pSubmodels);
}

const nuibis_mdl* IbisRawModelData::modelOf(const char* name) const
{
    return name == nullptr || name == sModelName ? pModel : findModel(name);
}

// Types and tables ----------------------------------------------------------------------------------------

nuibis_model_type IbisRawModelData::getModelType() const
{
    return pModel->eModelType;
}

const rngp* IbisRawModelData::getPullupTable() const
{
    return RowsOf(pModel->pPullup);
}

const rngp* IbisRawModelData::getPulldownTable() const
{
    return RowsOf(pModel->pPulldown);
}

const rngp* IbisRawModelData::getPullupSSOTable() const
{
    return RowsOf(pModel->pIssoPu);
}

const rngp* IbisRawModelData::getPulldownSSOTable() const
{
    return RowsOf(pModel->pIssoPd);
}

bool IbisRawModelData::isPullupRequired() const
{
    return pModel != nullptr && !IsKnownOneOf(pModel->eModelType, NOT_HIGH);
}

bool IbisRawModelData::isPulldownRequired() const
{
    return pModel != nullptr && !IsKnownOneOf(pModel->eModelType, NOT_LOW);
}

const rngp* IbisRawModelData::getPowerClampTable() const
{
    return RowsOf(pModel->pPowerClamp);
}

const rngp* IbisRawModelData::getGndClampTable() const
{
    return RowsOf(pModel->pGndClamp);
}

bool IbisRawModelData::hasRisingWaveform2() const
{
    return HasSecond(pModel->pRising);
}

bool IbisRawModelData::hasFallingWaveform2() const
{
    return HasSecond(pModel->pFalling);
}

const wvfrm* IbisRawModelData::getRisingWavefromWithHighest_fixture(IbisDataType type) const
{
    return getWaveformWithHighest_fixture(pModel->pRising, type);
}

const wvfrm* IbisRawModelData::getFallingWavefromWithHighest_fixture(IbisDataType type) const
{
    return getWaveformWithHighest_fixture(pModel->pFalling, type);
}

const wvfrm* IbisRawModelData::getRisingWavefromWithLowest_fixture(IbisDataType type) const
{
    return getWaveformWithLowest_fixture(pModel->pRising, type);
}

const wvfrm* IbisRawModelData::getFallingWavefromWithLowest_fixture(IbisDataType type) const
{
    return getWaveformWithLowest_fixture(pModel->pFalling, type);
}

// Triples -------------------------------------------------------------------------------------------------

bool IbisRawModelData::getModelRng(const char* model, rng* nuibis_mdl::*values, IbisDataType type,
                                   double& value) const
{
    const nuibis_mdl* const found = modelOf(model);
    return found != nullptr && getRngValue(found->*values, type, value);
}

bool IbisRawModelData::getCac(const char* model, IbisDataType type, double& value) const
{
    return getModelRng(model, &nuibis_mdl::pCac, type, value);
}

bool IbisRawModelData::getCac(IbisDataType type, double& value) const
{
    return getModelRng(nullptr, &nuibis_mdl::pCac, type, value);
}

bool IbisRawModelData::getRac(const char* model, IbisDataType type, double& value) const
{
    return getModelRng(model, &nuibis_mdl::pRac, type, value);
}

bool IbisRawModelData::getRac(IbisDataType type, double& value) const
{
    return getModelRng(nullptr, &nuibis_mdl::pRac, type, value);
}

bool IbisRawModelData::getRgnd(const char* model, IbisDataType type, double& value) const
{
    return getModelRng(model, &nuibis_mdl::pRgnd, type, value);
}

bool IbisRawModelData::getRgnd(IbisDataType type, double& value) const
{
    return getModelRng(nullptr, &nuibis_mdl::pRgnd, type, value);
}

bool IbisRawModelData::getRpower(const char* model, IbisDataType type, double& value) const
{
    return getModelRng(model, &nuibis_mdl::pRpower, type, value);
}

bool IbisRawModelData::getRpower(IbisDataType type, double& value) const
{
    return getModelRng(nullptr, &nuibis_mdl::pRpower, type, value);
}

bool IbisRawModelData::getTTgnd(const char* model, IbisDataType type, double& value) const
{
    return getModelRng(model, &nuibis_mdl::pTTgnd, type, value);
}

bool IbisRawModelData::getTTgnd(IbisDataType type, double& value) const
{
    return getModelRng(nullptr, &nuibis_mdl::pTTgnd, type, value);
}

bool IbisRawModelData::getTTpower(const char* model, IbisDataType type, double& value) const
{
    return getModelRng(model, &nuibis_mdl::pTTpower, type, value);
}

bool IbisRawModelData::getTTpower(IbisDataType type, double& value) const
{
    return getModelRng(nullptr, &nuibis_mdl::pTTpower, type, value);
}

bool IbisRawModelData::getGndClampRef(const char* model, IbisDataType type, double& value) const
{
    return getModelRng(model, &nuibis_mdl::pGndClampRef, type, value);
}

bool IbisRawModelData::getGndClampRef(IbisDataType type, double& value) const
{
    return getModelRng(nullptr, &nuibis_mdl::pGndClampRef, type, value);
}

bool IbisRawModelData::getPowerClampRef(const char* model, IbisDataType type, double& value) const
{
    return getModelRng(model, &nuibis_mdl::pPowerClampRef, type, value);
}

bool IbisRawModelData::getPowerClampRef(IbisDataType type, double& value) const
{
    return getModelRng(nullptr, &nuibis_mdl::pPowerClampRef, type, value);
}

bool IbisRawModelData::getPulldownRef(IbisDataType type, double& value) const
{
    return getModelRng(nullptr, &nuibis_mdl::pPulldownRef, type, value);
}

bool IbisRawModelData::getPullupRef(IbisDataType type, double& value) const
{
    return getModelRng(nullptr, &nuibis_mdl::pPullupRef, type, value);
}

bool IbisRawModelData::getVoltageRange(IbisDataType type, double& value) const
{
    return getModelRng(nullptr, &nuibis_mdl::pVoltageRange, type, value);
}

bool IbisRawModelData::getVTDelay(IbisDataType type, double& value) const
{
    return getModelRng(nullptr, &nuibis_mdl::pVT, type, value);
}

bool IbisRawModelData::getITDelay(IbisDataType type, double& value) const
{
    return getModelRng(nullptr, &nuibis_mdl::pIT, type, value);
}

// Capacitances, thresholds, slopes ------------------------------------------------------------------------

bool IbisRawModelData::getCapacitance(const char* model, rng* nuibis_mdl::*own, rng* ccorner::*item,
                                      IbisDataType type, double& value) const
{
    const nuibis_mdl* const found = modelOf(model);
    if (found == nullptr) {
        return false;
    }
    return getRngValue(found->pCCompCorner != nullptr ? found->pCCompCorner->*item : found->*own, type,
                       value);
}

bool IbisRawModelData::getC_comp(const char* model, IbisDataType type, double& value) const
{
    return getCapacitance(model, &nuibis_mdl::pCComp, &ccorner::pCComp, type, value);
}

bool IbisRawModelData::getC_comp(IbisDataType type, double& value) const
{
    return getCapacitance(nullptr, &nuibis_mdl::pCComp, &ccorner::pCComp, type, value);
}

bool IbisRawModelData::getC_comp_pullup(const char* model, IbisDataType type, double& value) const
{
    return getCapacitance(model, &nuibis_mdl::pCCompPullup, &ccorner::pCCompPullup, type, value);
}

bool IbisRawModelData::getC_comp_pullup(IbisDataType type, double& value) const
{
    return getCapacitance(nullptr, &nuibis_mdl::pCCompPullup, &ccorner::pCCompPullup, type, value);
}

bool IbisRawModelData::getC_comp_pulldown(const char* model, IbisDataType type, double& value) const
{
    return getCapacitance(model, &nuibis_mdl::pCCompPulldown, &ccorner::pCCompPulldown, type, value);
}

bool IbisRawModelData::getC_comp_pulldown(IbisDataType type, double& value) const
{
    return getCapacitance(nullptr, &nuibis_mdl::pCCompPulldown, &ccorner::pCCompPulldown, type, value);
}

bool IbisRawModelData::getC_comp_power_clamp(const char* model, IbisDataType type, double& value) const
{
    return getCapacitance(model, &nuibis_mdl::pCCompPowerClamp, &ccorner::pCCompPowerClamp, type, value);
}

bool IbisRawModelData::getC_comp_power_clamp(IbisDataType type, double& value) const
{
    return getCapacitance(nullptr, &nuibis_mdl::pCCompPowerClamp, &ccorner::pCCompPowerClamp, type, value);
}

bool IbisRawModelData::getC_comp_gnd_clamp(const char* model, IbisDataType type, double& value) const
{
    return getCapacitance(model, &nuibis_mdl::pCCompGndClamp, &ccorner::pCCompGndClamp, type, value);
}

bool IbisRawModelData::getC_comp_gnd_clamp(IbisDataType type, double& value) const
{
    return getCapacitance(nullptr, &nuibis_mdl::pCCompGndClamp, &ccorner::pCCompGndClamp, type, value);
}

bool IbisRawModelData::getVinl(double& value) const
{
    return Take(pModel->pdVinl, value);
}

bool IbisRawModelData::getVinh(double& value) const
{
    return Take(pModel->pdVinh, value);
}

bool IbisRawModelData::getThreshold(rng* mspec::*spec, double* nuibis_mdl::*own, IbisDataType type,
                                    double& value) const
{
    if (pModel->pModelSpec == nullptr || !getRngValue(pModel->pModelSpec->*spec, type, value)) {
        value = pModel->*own != nullptr ? *(pModel->*own) : UNSET_THRESHOLD;
    }
    return true;
}

bool IbisRawModelData::getVinl(IbisDataType type, double& value) const
{
    return getThreshold(&mspec::pVinl, &nuibis_mdl::pdVinl, type, value);
}

bool IbisRawModelData::getVinh(IbisDataType type, double& value) const
{
    return getThreshold(&mspec::pVinh, &nuibis_mdl::pdVinh, type, value);
}

bool IbisRawModelData::getVcc(IbisDataType type, double& value) const
{
    return getPowerClampRef(type, value) || getVoltageRange(type, value);
}

bool IbisRawModelData::getRampDvDtRise(IbisDataType type, double& value) const
{
    return pModel->pRamp != nullptr && getRampValue(pModel->pRamp->pRise, type, value);
}

bool IbisRawModelData::getRampDvDtFall(IbisDataType type, double& value) const
{
    return pModel->pRamp != nullptr && getRampValue(pModel->pRamp->pFall, type, value);
}

bool IbisRawModelData::getR_load(double& value) const
{
    return pModel->pRamp != nullptr && pModel->pRamp->bRLoad != 0 && Take(&pModel->pRamp->dRLoad, value);
}

// Series elements -----------------------------------------------------------------------------------------

const sinfo* IbisRawModelData::seriesOf(IbisSwitchType state) const
{
    return state != SWITCH_OFF ? pModel->pOn : pModel->pOff;
}

bool IbisRawModelData::getSeriesRng(rng* sinfo::*values, IbisDataType type, IbisSwitchType state,
                                    double& value) const
{
    const sinfo* const elements = seriesOf(state);
    return elements != nullptr && getRngValue(elements->*values, type, value);
}

bool IbisRawModelData::getSeriesR(IbisDataType type, IbisSwitchType state, double& value) const
{
    return getSeriesRng(&sinfo::pRSeries, type, state, value);
}

bool IbisRawModelData::getSeriesL(IbisDataType type, IbisSwitchType state, double& value) const
{
    return getSeriesRng(&sinfo::pLSeries, type, state, value);
}

bool IbisRawModelData::getSeriesRl(IbisDataType type, IbisSwitchType state, double& value) const
{
    return getSeriesRng(&sinfo::pRlSeries, type, state, value);
}

bool IbisRawModelData::getSeriesC(IbisDataType type, IbisSwitchType state, double& value) const
{
    return getSeriesRng(&sinfo::pCSeries, type, state, value);
}

bool IbisRawModelData::getSeriesRc(IbisDataType type, IbisSwitchType state, double& value) const
{
    return getSeriesRng(&sinfo::pRcSeries, type, state, value);
}

bool IbisRawModelData::getSeriesLc(IbisDataType type, IbisSwitchType state, double& value) const
{
    return getSeriesRng(&sinfo::pLcSeries, type, state, value);
}

const rngp* IbisRawModelData::getSeriesCurrentTable(IbisSwitchType state) const
{
    const sinfo* const elements = seriesOf(state);
    return elements == nullptr ? nullptr : RowsOf(elements->pSeriesCurrent);
}

const smos* IbisRawModelData::getSeriesMosfetTable(IbisSwitchType state) const
{
    const sinfo* const elements = seriesOf(state);
    return elements == nullptr ? nullptr : elements->pSeriesMosfet;
}

// Facts ---------------------------------------------------------------------------------------------------

bool IbisRawModelData::getModelType(nuibis_model_type& type) const
{
    type = pModel->eModelType;
    return true;
}

bool IbisRawModelData::getPolarity(nuibis_model_polarity& polarity) const
{
    polarity = pModel->ePolarity;
    return true;
}

bool IbisRawModelData::getEnableType(nuibis_model_enable& enable) const
{
    enable = pModel->eEnable;
    return true;
}

bool IbisRawModelData::hasModelSpec() const
{
    return pModel->pModelSpec != nullptr;
}

bool IbisRawModelData::hasReceiverThresholds() const
{
    return pModel->pReceiverThresholds != nullptr;
}

bool IbisRawModelData::hasAddSubModel() const
{
    return pModel->pAddSubmodels != nullptr;
}

bool IbisRawModelData::hasExternalRef() const
{
    return pModel->pExternalRef != nullptr;
}

bool IbisRawModelData::hasExternalModel() const
{
    return pModel->pExternalModel != nullptr;
}

bool IbisRawModelData::hasSubModel() const
{
    return pIbis != nullptr && pIbis->pSubmodels != nullptr;
}

bool IbisRawModelData::hasExternalCircuit() const
{
    return pIbis != nullptr && pIbis->pCircuits != nullptr;
}

bool IbisRawModelData::hasDefinePackageModel() const
{
    return pIbis != nullptr && pIbis->pPackageModels != nullptr;
}

bool IbisRawModelData::hasOnOffState() const
{
    return pModel->pOn != nullptr || pModel->pOff != nullptr;
}

bool IbisRawModelData::hasDriverSchedule() const
{
    return pModel->pDriverSchedule != nullptr && pModel->pDriverSchedule->pModels != nullptr;
}

bool IbisRawModelData::isAmi() const
{
    return hasAlgorithmicModel(*pModel);
}

// Driver schedule and submodels ---------------------------------------------------------------------------

bool IbisRawModelData::getDriverSchedule(std::vector<ScheduledDriver*>& drivers) const
try {
    if (!hasDriverSchedule()) {
        return false;
    }
    for (const drvshmodel* line = pModel->pDriverSchedule->pModels; line != nullptr; line = line->pNext) {
        if (line->pDelays == nullptr) {
            return false;
        }
        auto driver = std::make_unique<ScheduledDriver>(line->szName);
        CopyDelays(*line->pDelays, *driver);
        drivers.push_back(nullptr);  // the place first: the driver must not be lost when there is none
        drivers.back() = driver.release();
    }
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

bool IbisRawModelData::getDriverSchedule(int index, ScheduledDriver& driver) const
{
    driver.bRiseOn = driver.bRiseOff = driver.bFallOn = driver.bFallOff = 0;
    const drvshmodel* const line =
        pModel->pDriverSchedule == nullptr ? nullptr : ElementAt(pModel->pDriverSchedule->pModels, index);
    if (line == nullptr || line->pDelays == nullptr) {
        return false;
    }
    driver.sModelName = Intern(line->szName);
    CopyDelays(*line->pDelays, driver);
    return true;
}

int IbisRawModelData::getNumSubModels() const
{
    if (iNumSubModels < 0) {
        iNumSubModels = CountOf(pModel->pAddSubmodels);
    }
    return iNumSubModels;
}

const addsubmdl* IbisRawModelData::findAdded(int index) const
{
    return ElementAt(pModel->pAddSubmodels, index);
}

IbisRawSubModelData* IbisRawModelData::getSubModel(int index) const
{
    const addsubmdl* const entry = findAdded(index);
    const submdl* const submodel = entry == nullptr ? nullptr : findSubModel(entry->szName);
    return submodel == nullptr ? nullptr : new (std::nothrow) IbisRawSubModelData(*this, submodel);
}

submdl_modes IbisRawModelData::getSubModelMode(int index) const
{
    const addsubmdl* const entry = findAdded(index);
    return entry == nullptr ? SUBMODE_NONE : entry->eMode;
}

const char* IbisRawModelData::getSubModelName(int index) const
{
    const addsubmdl* const entry = findAdded(index);
    return entry == nullptr ? nullptr : Intern(entry->szName);
}

// Components and pins -------------------------------------------------------------------------------------

const CMPNT* IbisRawModelData::findComponent(const char* component) const
{
    return component == nullptr || pIbis == nullptr ? nullptr : CMPNT_Find(pIbis->pComponents, component);
}

const PIN* IbisRawModelData::findPin(const char* component, const char* pin) const
{
    const CMPNT* const found = findComponent(component);
    return found == nullptr || pin == nullptr ? nullptr : PIN_Find(found->pPins, pin);
}

const DIFPIN* IbisRawModelData::findDiffPin(const char* component, const char* pin, const char* invPin) const
{
    const CMPNT* const found = findComponent(component);
    if (found == nullptr || pin == nullptr || invPin == nullptr) {
        return nullptr;
    }
    const DIFPIN* pair = found->pDiffPins;
    while (pair != nullptr &&
           (std::string_view(pair->szPin) != pin || std::string_view(pair->szInvPin) != invPin)) {
        pair = pair->pNext;
    }
    return pair;
}

bool IbisRawModelData::getPinValue(const char* component, const char* pin, double PIN::*number,
                                   numstat PIN::*status, double& value) const
{
    const PIN* const found = findPin(component, pin);
    return found != nullptr && found->*status == NUM_VALUE && Take(&(found->*number), value);
}

bool IbisRawModelData::getR_pin(const char* component, const char* pin, double& value) const
{
    return getPinValue(component, pin, &PIN::dRpin, &PIN::eRpin, value);
}

bool IbisRawModelData::getL_pin(const char* component, const char* pin, double& value) const
{
    return getPinValue(component, pin, &PIN::dLpin, &PIN::eLpin, value);
}

bool IbisRawModelData::getC_pin(const char* component, const char* pin, double& value) const
{
    return getPinValue(component, pin, &PIN::dCpin, &PIN::eCpin, value);
}

bool IbisRawModelData::getPackageRng(const char* component, rng* PKG::*values, IbisDataType type,
                                     double& value) const
{
    const CMPNT* const found = findComponent(component);
    return found != nullptr && found->pPackage != nullptr &&
           getRngValue(found->pPackage->*values, type, value);
}

bool IbisRawModelData::getR_pkg(const char* component, IbisDataType type, double& value) const
{
    return getPackageRng(component, &PKG::pRpkg, type, value);
}

bool IbisRawModelData::getL_pkg(const char* component, IbisDataType type, double& value) const
{
    return getPackageRng(component, &PKG::pLpkg, type, value);
}

bool IbisRawModelData::getC_pkg(const char* component, IbisDataType type, double& value) const
{
    return getPackageRng(component, &PKG::pCpkg, type, value);
}

bool IbisRawModelData::getDiffDelay(const char* component, const char* pin, const char* invPin,
                                    IbisDataType type, double& value) const
{
    const DIFPIN* const pair = findDiffPin(component, pin, invPin);
    if (pair == nullptr) {
        return false;
    }
    const rng delay{pair->dTdelayTyp, pair->eTdelayTyp, pair->dTdelayMin,
                    pair->eTdelayMin, pair->dTdelayMax, pair->eTdelayMax};
    return getRngValue(&delay, type, value);
}

bool IbisRawModelData::getVdiff(const char* component, const char* pin, const char* invPin,
                                double& value) const
{
    const DIFPIN* const pair = findDiffPin(component, pin, invPin);
    return pair != nullptr && pair->eVdiff == NUM_VALUE && Take(&pair->dVdiff, value);
}

const char* IbisRawModelData::getInvPinName(const char* component, const char* pin) const
{
    const CMPNT* const found = findComponent(component);
    const DIFPIN* pair = found == nullptr || pin == nullptr ? nullptr : found->pDiffPins;
    while (pair != nullptr && std::string_view(pair->szPin) != pin) {
        pair = pair->pNext;
    }
    return pair == nullptr ? nullptr : pair->szInvPin;
}

bool IbisRawModelData::hasPinMapping(const char* component, const char* pin) const
{
    const CMPNT* const found = findComponent(component);
    return found != nullptr && pin != nullptr && PINMPG_HasPin(found->pPinMappings, pin);
}

bool IbisRawModelData::hasSeriesPinMapping(const char* component, const char* pin) const
{
    const CMPNT* const found = findComponent(component);
    return found != nullptr && pin != nullptr && SPINMPG_Has(found->pSeriesPinMappings, pin);
}

bool IbisRawModelData::hasSeriesGroup(const char* component) const
{
    const CMPNT* const found = findComponent(component);
    return found != nullptr && found->pSeriesSwitchGroups != nullptr;
}

bool IbisRawModelData::hasPackageModel(const char* component) const
{
    const CMPNT* const found = findComponent(component);
    return found != nullptr && found->szPackageModel[0] != '\0';
}

bool IbisRawModelData::hasNodeDeclaration(const char* component) const
{
    const CMPNT* const found = findComponent(component);
    return found != nullptr && found->pNodes != nullptr;
}

bool IbisRawModelData::hasCircuitCall(const char* component) const
{
    const CMPNT* const found = findComponent(component);
    return found != nullptr && found->pCircuitCalls != nullptr;
}

// Algorithmic model ---------------------------------------------------------------------------------------

bool IbisRawModelData::findAMI_DLL(std::string& out) noexcept
try {
    std::string name;
    if (pIbis == nullptr || !TalIbis::findAMI_DLL_Name(pModel, sFileName, name)) {
        return false;
    }
    out = name;
    sAmiDllName = std::move(name);
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

bool IbisRawModelData::readAmi() noexcept
try {
    pAmi.reset();
    pAmi.reset(TalIbis::readAMI_File(pModel, sFileName));
    return pAmi != nullptr;
} catch (const std::bad_alloc&) {
    return false;
}

// Submodels -----------------------------------------------------------------------------------------------

IbisRawSubModelData::IbisRawSubModelData(const IbisRawModelData& parent, const submdl* submodel)
    : IbisRawModelData(parent), pSubModel(submodel), sSubModelName(Intern(submodel->szName))
{
    const bool high = submodel->pPullup != nullptr;
    const bool low = submodel->pPulldown != nullptr;
    eDerivedType = high && low ? MODEL_OUTPUT
                   : high      ? MODEL_OPEN_SOURCE
                   : low       ? MODEL_OPEN_SINK
                               : MODEL_INPUT;
}

const rngp* IbisRawSubModelData::getPullupTable() const
{
    return RowsOf(pSubModel->pPullup);
}

const rngp* IbisRawSubModelData::getPulldownTable() const
{
    return RowsOf(pSubModel->pPulldown);
}

bool IbisRawSubModelData::isPullupRequired() const
{
    return !IsKnownOneOf(eDerivedType, NOT_HIGH & ~MDL_Types({MODEL_INPUT_ECL}));
}

bool IbisRawSubModelData::isPulldownRequired() const
{
    return !IsKnownOneOf(eDerivedType, NOT_LOW & ~MDL_Types({MODEL_INPUT_ECL}));
}

const rngp* IbisRawSubModelData::getPowerClampTable() const
{
    return RowsOf(pSubModel->pPowerClamp);
}

const rngp* IbisRawSubModelData::getGndClampTable() const
{
    return RowsOf(pSubModel->pGndClamp);
}

bool IbisRawSubModelData::hasRisingWaveform2() const
{
    return HasSecond(pSubModel->pRising);
}

bool IbisRawSubModelData::hasFallingWaveform2() const
{
    return HasSecond(pSubModel->pFalling);
}

const wvfrm* IbisRawSubModelData::getRisingWavefromWithHighest_fixture(IbisDataType type) const
{
    return getWaveformWithHighest_fixture(pSubModel->pRising, type);
}

const wvfrm* IbisRawSubModelData::getFallingWavefromWithHighest_fixture(IbisDataType type) const
{
    return getWaveformWithHighest_fixture(pSubModel->pFalling, type);
}

const wvfrm* IbisRawSubModelData::getRisingWavefromWithLowest_fixture(IbisDataType type) const
{
    return getWaveformWithLowest_fixture(pSubModel->pRising, type);
}

const wvfrm* IbisRawSubModelData::getFallingWavefromWithLowest_fixture(IbisDataType type) const
{
    return getWaveformWithLowest_fixture(pSubModel->pFalling, type);
}

const rngp* IbisRawSubModelData::getGndPulseTable() const
{
    return RowsOf(pSubModel->pGndPulse);
}

const rngp* IbisRawSubModelData::getPowerPulseTable() const
{
    return RowsOf(pSubModel->pPowerPulse);
}

bool IbisRawSubModelData::getSpecRng(rng* smspec::*values, IbisDataType type, double& value) const
{
    return pSubModel->pSpec != nullptr && getRngValue(pSubModel->pSpec->*values, type, value);
}

bool IbisRawSubModelData::getV_trigger_r(IbisDataType type, double& value) const
{
    return getSpecRng(&smspec::pVTriggerR, type, value);
}

bool IbisRawSubModelData::getV_trigger_f(IbisDataType type, double& value) const
{
    return getSpecRng(&smspec::pVTriggerF, type, value);
}

bool IbisRawSubModelData::getOff_delay(IbisDataType type, double& value) const
{
    return getSpecRng(&smspec::pOffDelay, type, value);
}

// Entry ---------------------------------------------------------------------------------------------------

IbisRawModelData* TalIbis::getIbisRawModelData(const char* name) const
{
    nuibis_mdl* const model = findModel(name);
    auto* const view = model == nullptr ? nullptr : new (std::nothrow) IbisRawModelData();
    if (view != nullptr) {
        view->setFile(pIbis, pszFileName);
        view->setModel(model);
    }
    return view;
}

IbisRawModelData* getIbisRawModelData(const char* fileName, const char* modelName, IbisErrorContainer& errors)
{
    TalIbisFileManager* const manager = TalIbisFileManager::getInstance();
    if (fileName == nullptr || modelName == nullptr || manager == nullptr) {
        return nullptr;
    }
    const TalIbis* const file = manager->getIbis(fileName, IBIS_FILE_IBS);
    if (file == nullptr) {
        errors = *talGetIbisError(file);
        return nullptr;
    }
    const IbisErrorContainer* const findings = file->testModel(modelName);
    if (findings != nullptr && findings->getErrorStatus() > IBIS_STATUS_CLEAN) {
        errors = *findings;
        if (findings->getErrorStatus() == IBIS_STATUS_ERROR) {
            return nullptr;
        }
    }
    return file->getIbisRawModelData(modelName);
}
