#include "tests/everything.h"

#include "ibis/interface/talibis_qel.h"
#include "ibis/interface/talibis_raw.h"
#include "platform/qelrt_inspect.h"

#include <algorithm>
#include <map>
#include <memory>
#include <span>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using Names = std::vector<std::string>;

void Cut(Names& names, std::size_t limit)
{
    names.resize(std::min(names.size(), limit));
    names.emplace_back("no such name");
}

template <class Query, class... Args>
Names Listed(const TalIbis& file, Query query, std::size_t limit, Args... args)
{
    TalIbisListQueryData list;
    (file.*query)(args..., list);
    Names names(list.getData().begin(), list.getData().end());
    Cut(names, limit);
    return names;
}

// What to put for a parameter of each name.
class Arguments
{
  public:
    Arguments(const TalIbis& file, std::size_t limit)
    {
        mNames["model"] = Listed(file, &TalIbis::getModelList, limit);
        mNames["selector"] = Listed(file, &TalIbis::getModelSelectorList, limit);
        mNames["component"] = Listed(file, &TalIbis::getCompList, limit);
        const std::string component = mNames["component"].front();
        mNames["pin"] = Listed(file, &TalIbis::getPinList, limit, component.c_str());
        const std::string model = mNames["model"].front();
        mNames["submodel"] = Listed(file, &TalIbis::getSubmodelList, limit, model.c_str());
        mNames["corner"] = {"Typ", "Min", "Max", "Empty", "?"};
        mNames["state"] = {"On", "Off", "?"};
        mNames["symbol"] = {"IBIS_S_O", "IBIS_DIO", "IBIS_Rx_AMI", "IBIS_Pkg", "Ebd", "?"};
    }
    const Names& of(const std::string& parameter) const
    {
        static const Names other{"no such name", ""};
        const auto found = mNames.find(parameter);
        return found == mNames.end() ? other : found->second;
    }

  private:
    std::map<std::string, Names> mNames;
};

// Every tuple of values, the last place running fastest.
class Tuples
{
  public:
    explicit Tuples(std::vector<const Names*> places) : mPlaces(std::move(places)), mAt(mPlaces.size()) {}
    Names current() const
    {
        Names names;
        for (std::size_t i = 0; i < mPlaces.size(); ++i) {
            names.push_back((*mPlaces[i])[mAt[i]]);
        }
        return names;
    }
    bool next()
    {
        for (std::size_t i = mPlaces.size(); i-- > 0;) {
            if (++mAt[i] < mPlaces[i]->size()) {
                return true;
            }
            mAt[i] = 0;
        }
        return false;
    }

  private:
    std::vector<const Names*> mPlaces;
    std::vector<std::size_t> mAt;
};

void Call(const char* function, const Names& parameters, const CallRunner& run)
{
    std::vector<QVALUE> values;
    for (const std::string& parameter : parameters) {
        values.push_back(qval_create_string(parameter.c_str()));
    }
    run([&] { qval_free_value(qel_call(function, values)); });
    for (const QVALUE value : values) {
        qval_free_value(value);
    }
}

std::size_t CallScriptFunctions(const TalIbis& file, const Arguments& arguments, std::string_view typeWord,
                                const CallRunner& run)
{
    talIbis_qel_initialize();
    std::size_t calls = 0;
    const QEL_TABLE& table = *talIbis_qel_table();
    for (const QEL_ROW& row : std::span(table.rows, table.count)) {
        std::istringstream words{std::string(talIbis_qel_parameters(row.name))};
        std::vector<const Names*> places;
        for (std::string word; words >> word;) {
            places.push_back(&arguments.of(word));
        }
        Tuples tuples(std::move(places));
        do {
            Names parameters = tuples.current();
            parameters.insert(parameters.begin(), {file.getFileName(), std::string(typeWord)});
            Call(row.name, parameters, run);
            ++calls;
        } while (tuples.next());
    }
    return calls;
}

using Number = bool (IbisRawModelData::*)(IbisDataType, double&) const;
using SeriesNumber = bool (IbisRawModelData::*)(IbisDataType, IbisSwitchType, double&) const;
using Waveform = const wvfrm* (IbisRawModelData::*)(IbisDataType) const;
using PinNumber = bool (IbisRawModelData::*)(const char*, const char*, double&) const;

constexpr Number NUMBERS[] = {&IbisRawModelData::getCac,
                              &IbisRawModelData::getRac,
                              &IbisRawModelData::getRgnd,
                              &IbisRawModelData::getRpower,
                              &IbisRawModelData::getTTgnd,
                              &IbisRawModelData::getTTpower,
                              &IbisRawModelData::getGndClampRef,
                              &IbisRawModelData::getPowerClampRef,
                              &IbisRawModelData::getPulldownRef,
                              &IbisRawModelData::getPullupRef,
                              &IbisRawModelData::getVoltageRange,
                              &IbisRawModelData::getVTDelay,
                              &IbisRawModelData::getITDelay,
                              &IbisRawModelData::getC_comp,
                              &IbisRawModelData::getC_comp_pullup,
                              &IbisRawModelData::getC_comp_pulldown,
                              &IbisRawModelData::getC_comp_power_clamp,
                              &IbisRawModelData::getC_comp_gnd_clamp,
                              &IbisRawModelData::getVinl,
                              &IbisRawModelData::getVinh,
                              &IbisRawModelData::getVcc,
                              &IbisRawModelData::getRampDvDtRise,
                              &IbisRawModelData::getRampDvDtFall};
constexpr SeriesNumber SERIES[] = {&IbisRawModelData::getSeriesR,  &IbisRawModelData::getSeriesL,
                                   &IbisRawModelData::getSeriesRl, &IbisRawModelData::getSeriesC,
                                   &IbisRawModelData::getSeriesRc, &IbisRawModelData::getSeriesLc};
constexpr Waveform WAVEFORMS[] = {&IbisRawModelData::getRisingWavefromWithHighest_fixture,
                                  &IbisRawModelData::getFallingWavefromWithHighest_fixture,
                                  &IbisRawModelData::getRisingWavefromWithLowest_fixture,
                                  &IbisRawModelData::getFallingWavefromWithLowest_fixture};
constexpr PinNumber PINS[] = {&IbisRawModelData::getR_pin, &IbisRawModelData::getL_pin,
                              &IbisRawModelData::getC_pin};

using Flag = bool (IbisRawModelData::*)() const;
using ComponentFlag = bool (IbisRawModelData::*)(const char*) const;
using PackageNumber = bool (IbisRawModelData::*)(const char*, IbisDataType, double&) const;

constexpr Flag FLAGS[] = {
    &IbisRawModelData::isPullupRequired,      &IbisRawModelData::isPulldownRequired,
    &IbisRawModelData::hasRisingWaveform2,    &IbisRawModelData::hasFallingWaveform2,
    &IbisRawModelData::hasModelSpec,          &IbisRawModelData::hasReceiverThresholds,
    &IbisRawModelData::hasAddSubModel,        &IbisRawModelData::hasExternalRef,
    &IbisRawModelData::hasExternalModel,      &IbisRawModelData::hasOnOffState,
    &IbisRawModelData::hasDriverSchedule,     &IbisRawModelData::isAmi,
    &IbisRawModelData::hasSubModel,           &IbisRawModelData::hasExternalCircuit,
    &IbisRawModelData::hasDefinePackageModel,
};
constexpr ComponentFlag COMPONENT_FLAGS[] = {
    &IbisRawModelData::hasSeriesGroup, &IbisRawModelData::hasPackageModel,
    &IbisRawModelData::hasNodeDeclaration, &IbisRawModelData::hasCircuitCall};
constexpr PackageNumber PACKAGE[] = {&IbisRawModelData::getR_pkg, &IbisRawModelData::getL_pkg,
                                     &IbisRawModelData::getC_pkg};

std::size_t AskWords(const IbisRawModelData& view, const Arguments& arguments)
{
    double value = 0.0;
    nuibis_model_type type{};
    nuibis_model_polarity polarity{};
    nuibis_model_enable enable{};
    view.getModelType();
    view.getModelType(type);
    view.getPolarity(polarity);
    view.getEnableType(enable);
    view.getVinl(value);
    view.getVinh(value);
    for (const Flag flag : FLAGS) {
        (view.*flag)();
    }
    for (const std::string& component : arguments.of("component")) {
        for (const ComponentFlag flag : COMPONENT_FLAGS) {
            (view.*flag)(component.c_str());
        }
        for (const PackageNumber number : PACKAGE) {
            (view.*number)(component.c_str(), IBIS_DATA_MIN, value);
        }
    }
    return 6 + std::size(FLAGS) +
           arguments.of("component").size() * (std::size(COMPONENT_FLAGS) + std::size(PACKAGE));
}

std::size_t AskCorners(const IbisRawModelData& view)
{
    std::size_t calls = 0;
    double value = 0.0;
    for (int corner = IBIS_DATA_TYP; corner <= IBIS_DATA_MAX; ++corner) {
        const auto type = static_cast<IbisDataType>(corner);
        for (const Number number : NUMBERS) {
            (view.*number)(type, value);
            ++calls;
        }
        for (const SeriesNumber number : SERIES) {
            (view.*number)(type, SWITCH_ON, value);
            (view.*number)(type, SWITCH_OFF, value);
            calls += 2;
        }
        for (const Waveform waveform : WAVEFORMS) {
            (view.*waveform)(type);
            ++calls;
        }
    }
    return calls;
}

std::size_t AskPins(const IbisRawModelData& view, const Arguments& arguments)
{
    std::size_t calls = 0;
    double value = 0.0;
    for (const std::string& component : arguments.of("component")) {
        for (const std::string& pin : arguments.of("pin")) {
            for (const PinNumber number : PINS) {
                (view.*number)(component.c_str(), pin.c_str(), value);
                ++calls;
            }
            view.getVdiff(component.c_str(), pin.c_str(), pin.c_str(), value);
            view.hasPinMapping(component.c_str(), pin.c_str());
            calls += 2;
        }
    }
    return calls;
}

std::size_t AskParts(const IbisRawModelData& view)
{
    std::vector<ScheduledDriver*> drivers;
    view.getDriverSchedule(drivers);
    for (const ScheduledDriver* driver : drivers) {
        delete driver;
    }
    std::size_t calls = 1;
    for (int i = 0; i < std::min(view.getNumSubModels(), 3); ++i) {
        const std::unique_ptr<IbisRawSubModelData> submodel(view.getSubModel(i));
        calls += submodel == nullptr ? 1 : AskCorners(*submodel);
    }
    return calls;
}

}  // namespace

std::size_t AskEverything(const TalIbis& file, std::string_view typeWord, std::size_t names,
                          const CallRunner& run)
{
    const Arguments arguments(file, names);
    std::size_t calls = CallScriptFunctions(file, arguments, typeWord, run);
    for (const std::string& model : arguments.of("model")) {
        const std::unique_ptr<IbisRawModelData> view(file.getIbisRawModelData(model.c_str()));
        if (view != nullptr) {
            calls +=
                AskWords(*view, arguments) + AskCorners(*view) + AskPins(*view, arguments) + AskParts(*view);
        }
    }
    return calls;
}
