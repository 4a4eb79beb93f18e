// The table of script functions.

#include "ibis/interface/talibis_qel.h"
#include "ibis/script/qel_frame.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <string_view>

namespace
{

// The findings of one check or of several.
class Findings
{
  public:
    /// A clean container has nothing to say. The texts of several are joined by a line feed.
    void add(const IbisErrorContainer& container)
    {
        if (container.getErrorStatus() == IBIS_STATUS_CLEAN) {
            return;
        }
        mWorst = std::max(mWorst, container.getErrorStatus());
        const std::unique_ptr<char, decltype(&std::free)> text(container.getErrMsg(), &std::free);
        if (text != nullptr) {
            mText += mText.empty() ? "" : "\n";
            mText += text.get();
        }
    }
    /// Errors make the answer empty and warnings make it partial: a script that only looks for a failed call
    /// goes on with a faulty file.
    void store(TalIbisListQueryData& record) const
    {
        static constexpr std::array<StatusType, 3> statuses{QueryOk, QueryWarning, QueryEmpty};
        if (mWorst != IBIS_STATUS_CLEAN) {
            record.setUnformatedError(statuses[static_cast<std::size_t>(mWorst)], mText.c_str());
        }
    }

  private:
    ErrorStatus mWorst = IBIS_STATUS_CLEAN;
    std::string mText;
};

// (file, type): reads or finds the file and gives its findings as one text.
QVALUE CheckData() noexcept
try {
    TalIbisListQueryData record;
    FRAME_Parameter<const char*> name;
    FRAME_Parameter<const char*> word;
    qrun_num_parm();
    if (!name.fetch(0) || !word.fetch(1)) {
        record.setUnformatedError(QueryError, FRAME_WRONG_PARAMETER);
        return record.createQval();
    }
    TalIbis* handle = nullptr;
    const IbisErrorContainer* const findings = talReadIbisFile(name.data, FRAME_FileType(word.data), &handle);
    if (handle == nullptr) {
        char* const text = findings == nullptr ? nullptr : findings->getErrMsg();
        record.setUnformatedError(QueryError, text);
        std::free(text);
    } else if (findings != nullptr) {
        Findings all;
        all.add(*findings);
        all.store(record);
    }
    return record.createQval();
} catch (const std::bad_alloc&) {
    return nullptr;
}

// Symbols of a buffer that is simulated by its algorithmic model. The aggressor of a receiver is not among
// them: what it couples does not pass its own algorithm.
constexpr std::array<std::string_view, 3> AMI_SYMBOLS{"IBIS_Tx_AMI", "IBIS_XtlkTx_AMI", "IBIS_Rx_AMI"};

void CheckOneModel(const TalIbis& file, const char* model, const char* symbol, TalIbisListQueryData& record)
{
    Findings all;
    all.add(*file.testModel(model));
    const bool algorithmic =
        symbol != nullptr && std::find(AMI_SYMBOLS.begin(), AMI_SYMBOLS.end(), symbol) != AMI_SYMBOLS.end();
    const IbisErrorContainer* const found = algorithmic ? file.testAMIModel(model) : nullptr;
    if (found != nullptr) {
        all.add(*found);
    }
    all.store(record);
}

// (file, type, model, symbol): checks one model anew and gives the findings as one text.
QVALUE CheckModel() noexcept
try {
    TalIbisListQueryData record;
    const TalIbis* const file = FRAME_GetIbis();
    FRAME_Parameter<const char*> model;
    FRAME_Parameter<const char*> symbol;
    if (file == nullptr) {
        record.setUnformatedError(QueryError, FRAME_READ_FAILED);
    } else if (!model.fetch(2) || !symbol.fetch(3)) {
        record.setUnformatedError(QueryError, FRAME_WRONG_PARAMETER);
    } else {
        CheckOneModel(*file, model.data, symbol.data, record);
    }
    return record.createQval();
} catch (const std::bad_alloc&) {
    return nullptr;
}

struct Function {
    const char* pszName;
    QVALUE (*handler)();
    const char* pszParameters;  // behind file and type
};

constexpr std::size_t CountWords(std::string_view text)
{
    std::size_t count = text.empty() ? 0 : 1;
    for (const char c : text) {
        count += c == ' ' ? 1 : 0;
    }
    return count;
}

// A function that answers one query; `parameters` names what the query takes.
template <auto Query> consteval Function Row(const char* name, const char* parameters)
{
    if (CountWords(parameters) != FRAME_Function<Query>::COUNT) {
        throw "the query takes another number of parameters";
    }
    return {name, &FRAME_Function<Query>::call, parameters};
}

using FlagQuery = void (TalIbis::*)(const char*, TalIbisBooleanQueryData&) const;
using TextQuery = void (TalIbis::*)(const char*, TalIbisStringQueryData&) const;

// clang-format off
constexpr auto FUNCTIONS = std::to_array<Function>({
    {"deCheckIbisData", CheckData, ""},
    {"deCheckIbisModel", CheckModel, "model symbol"},
    Row<&TalIbis::getCompList>("deGetIbisCompList", ""),
    Row<&TalIbis::getModelList>("deGetIbisModelList", ""),
    Row<&TalIbis::getModelSelectorList>("deGetIbisModelSelectorList", ""),
    Row<&TalIbis::getEbdRefList>("deGetIbisEbdRefList", ""),
    Row<&TalIbis::getVersionString>("deGetIbisVersion", ""),
    Row<FlagQuery{&TalIbis::hasModelDriverSchedule}>("deHasIbisModelDriverSchedule", "model"),
    Row<&TalIbis::hasPullup>("deHasIbisModelPullup", "model"),
    Row<&TalIbis::hasPulldown>("deHasIbisModelPullDown", "model"),
    Row<&TalIbis::hasPowerClamp>("deHasIbisModelPowerClamp", "model"),
    Row<&TalIbis::hasGndClamp>("deHasIbisModelGndClamp", "model"),
    Row<&TalIbis::getModelDriverScheduleDelay>("deGetIbisModelDriverScheduleDelayList", "model"),
    Row<&TalIbis::getModelInfo>("deGetIbisModelInfoList", "model"),
    Row<&TalIbis::getSubmodelList>("deGetIbisSubModelList", "model"),
    Row<&TalIbis::getSubmodelOffDelay>("deGetIbisSubModelOffDelayList", "submodel"),
    Row<&TalIbis::getVoltageRange>("deGetIbisModelVoltageRangeList", "model"),
    Row<&TalIbis::getExternalRef>("deGetIbisModelExternalRefList", "model"),
    Row<&TalIbis::getPullupRef>("deGetIbisModelPullupRefList", "model"),
    Row<&TalIbis::getPulldownRef>("deGetIbisModelPullDownRefList", "model"),
    Row<&TalIbis::getPowerClampRef>("deGetIbisModelPowerClampRefList", "model"),
    Row<&TalIbis::getGndClampRef>("deGetIbisModelGndClampRefList", "model"),
    Row<&TalIbis::getTTgnd>("deGetIbisModelTTgndList", "model"),
    Row<&TalIbis::getTTpower>("deGetIbisModelTTpowerList", "model"),
    Row<&TalIbis::getRgnd>("deGetIbisModelRgndList", "model"),
    Row<&TalIbis::getRpower>("deGetIbisModelRpowerList", "model"),
    Row<&TalIbis::getRac>("deGetIbisModelRacList", "model"),
    Row<&TalIbis::getCac>("deGetIbisModelCacList", "model"),
    Row<&TalIbis::getSeriesSwitchGroup>("deGetIbisSeriesSwitchGroups", "component"),
    Row<&TalIbis::getPinList>("deGetIbisPinList", "component"),
    Row<&TalIbis::getEbdNodeList>("deGetIbisEbdNodeList", "path"),
    Row<&TalIbis::getIbisEbdModel>("deGetIbisEbdModel", "path"),
    Row<&TalIbis::getIbisPkgModelType>("deGetIbisPkgModelType", "component"),
    Row<&TalIbis::getModelTypeString>("deGetIbisModelType", "model"),
    Row<&TalIbis::getAMIFileName>("deGetIbisAMIfileName", "model"),
    Row<TextQuery{&TalIbis::getAMIParamNum}>("deGetIbisAMIParamNum", "model"),
    Row<&TalIbis::getAMIParamAttrs>("deGetIbisAMIParamAttributes", "model index"),
    Row<&TalIbis::getAMIParamTree>("deGetIbisAMIParamTree", "model index"),
    Row<&TalIbis::getAMIDataChoices>("deGetIbisAMIDataChoices", "model index"),
    Row<&TalIbis::getAMIParamInfo>("deGetIbisAMIParamInfo", "model index"),
    Row<&TalIbis::hasModelSelector>("deHasIbisModelSelector", "selector symbol"),
    Row<&TalIbis::hasSeriesPinMapping>("deHasIbisSeriesPinMapping", "component pin"),
    Row<&TalIbis::hasSeries_current>("deHasIbisSeries_current", "model state"),
    Row<&TalIbis::hasSeries_MOSFET>("deHasIbisSeries_MOSFET", "model state"),
    Row<&TalIbis::getPinModelList>("deGetIbisPinModelList", "component symbol"),
    Row<&TalIbis::getModelSelectorSubModelList>("deGetIbisModelSelectorSubModelList", "selector symbol"),
    Row<&TalIbis::getPinMapping>("deGetIbisPinMappingList", "component pin"),
    Row<&TalIbis::getPinMappingL>("deGetIbisPinMappingListDDR", "component pin"),
    Row<&TalIbis::getDiffPin>("deGetIbisDiffPinList", "component pin"),
    Row<&TalIbis::getRepeaterPinList>("deGetIbisRepeaterPinList", "component symbol"),
    Row<&TalIbis::getSubmodelInfo>("deGetIbisSubModelInfoList", "model submodel"),
    Row<&TalIbis::getIbisPkgModel>("deGetIbisPkgModel", "component pin"),
    Row<&TalIbis::getIbisPkgMatrixModel>("deGetIbisPkgMatrixModel", "component pins"),
    Row<&TalIbis::getSeriesPinMapping>("deGetIbisSeriesPinMapping", "component pin"),
    Row<&TalIbis::getR_pkg>("deGetIbisR_pkg", "component corner"),
    Row<&TalIbis::getL_pkg>("deGetIbisL_pkg", "component corner"),
    Row<&TalIbis::getC_pkg>("deGetIbisC_pkg", "component corner"),
    Row<&TalIbis::getR_pin>("deGetIbisR_pin", "component pin"),
    Row<&TalIbis::getL_pin>("deGetIbisL_pin", "component pin"),
    Row<&TalIbis::getC_pin>("deGetIbisC_pin", "component pin"),
    Row<&TalIbis::getVinl>("deGetIbisVinl", "model corner"),
    Row<&TalIbis::getVinh>("deGetIbisVinh", "model corner"),
    Row<&TalIbis::getC_comp>("deGetIbisModelC_comp", "model corner"),
    Row<&TalIbis::getC_comp_pullup>("deGetIbisModelC_comp_pullup", "model corner"),
    Row<&TalIbis::getC_comp_pulldown>("deGetIbisModelC_comp_pulldown", "model corner"),
    Row<&TalIbis::getC_comp_power_clamp>("deGetIbisModelC_comp_power_clamp", "model corner"),
    Row<&TalIbis::getC_comp_gnd_clamp>("deGetIbisModelC_comp_gnd_clamp", "model corner"),
    Row<&TalIbis::getRampDvDtRise>("deGetIbisModelRampDvDtRise", "model corner"),
    Row<&TalIbis::getRampDvDtFall>("deGetIbisModelRampDvDtFall", "model corner"),
    Row<&TalIbis::getR_series>("deGetIbisR_series", "model state corner"),
    Row<&TalIbis::getL_series>("deGetIbisL_series", "model state corner"),
    Row<&TalIbis::getC_series>("deGetIbisC_series", "model state corner"),
    Row<&TalIbis::getRl_series>("deGetIbisRl_series", "model state corner"),
    Row<&TalIbis::getRc_series>("deGetIbisRc_series", "model state corner"),
    Row<&TalIbis::getLc_series>("deGetIbisLc_series", "model state corner"),
});
// clang-format on

constexpr auto ROWS = [] {
    std::array<QEL_ROW, FUNCTIONS.size()> rows{};
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i] = {FUNCTIONS[i].pszName, FUNCTIONS[i].handler, {}};
    }
    return rows;
}();

constexpr QEL_TABLE TABLE{"QEL", ROWS.data(), ROWS.size()};

}  // namespace

const QEL_TABLE* talIbis_qel_table()
{
    return &TABLE;
}

const char* talIbis_qel_parameters(const char* function)
{
    const auto* const row = std::find_if(FUNCTIONS.begin(), FUNCTIONS.end(), [function](const Function& f) {
        return function != nullptr && std::string_view(f.pszName) == function;
    });
    return row == FUNCTIONS.end() ? nullptr : row->pszParameters;
}

bool talIbis_qel_initialize()
{
    return qutil_initialize(0, 0, 0, 1, talIbis_qel_table()) != 0;
}
