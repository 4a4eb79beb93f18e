#include "ibis/source/nuibis_pin.h"

#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_difpin.h"
#include "ibis/source/nuibis_field.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_list.h"
#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_msel.h"
#include "ibis/source/nuibis_pinmpg.h"
#include "ibis/source/nuibis_pkgmdl.h"

#include <algorithm>
#include <array>
#include <utility>

namespace
{

// The list that is being read, and the list that was last looked into; both follow by themselves.
LIST_Tail<PIN> gTail;
LIST_Index<PIN, &PIN::szPin> gPins;

struct ValueColumn {
    std::string_view sName;
    double PIN::*pdValue;
    numstat PIN::*peStatus;
};

constexpr std::array<ValueColumn, 3> VALUES{{
    {"R_pin", &PIN::dRpin, &PIN::eRpin},
    {"L_pin", &PIN::dLpin, &PIN::eLpin},
    {"C_pin", &PIN::dCpin, &PIN::eCpin},
}};

void ReadValueHeaders(const CMN_TokenList& tokens, PIN_ColumnOrder& order)
{
    std::array<bool, VALUES.size()> seen{};
    for (int i = 2; i < std::min(tokens.iStored, 5); ++i) {
        const auto* const column = std::find_if(VALUES.begin(), VALUES.end(), [&](const ValueColumn& v) {
            return CMN_Equal(v.sName, tokens[i]);
        });
        if (column == VALUES.end()) {
            MSG_ErrorLine(530, tokens[i]);
            continue;
        }
        const auto index = static_cast<std::size_t>(column - VALUES.begin());
        if (std::exchange(seen[index], true)) {
            MSG_ErrorLine(531, tokens[i]);
        }
        order[index] = i - 2;
    }
}

// The three names that every line has: the pin, its signal and its model.
struct NameColumn {
    char* pszField;
    std::size_t uiSize;
    unsigned uiLimit;
    std::string_view sLabel;
    MSG_Plain missing;
};

void ReadNames(PIN& pin, const CMN_TokenList& tokens)
{
    const unsigned limit = FIELD_NameLimit();
    const std::array<NameColumn, 3> names{{
        {pin.szPin, sizeof pin.szPin, PIN_NAME_LIMIT, "Pin", 601},
        {pin.szSignal, sizeof pin.szSignal, limit, "Signal name", 602},
        {pin.szModel, sizeof pin.szModel, limit, "Model name", 603},
    }};
    for (int i = 0; i < 3; ++i) {
        const NameColumn& column = names[static_cast<std::size_t>(i)];
        if (i >= tokens.iStored) {
            MSG_ErrorLine(column.missing);
            continue;
        }
        CMN_ReplaceString({column.pszField, column.uiSize}, tokens[i], column.uiLimit, column.sLabel);
        ++pin.iColumns;
    }
}

void ReportModelSelector(const PIN& pin, msel& selector, bool paired, const char* component)
{
    if (selector.eDiffUse == 0 && !paired) {
        MSG_Caution(609, pin.szPin, selector.szName);
    }
    if (MSEL_HasSeries(&selector)) {
        MSG_Error(620, component, pin.szPin, selector.szName, "Series");
    }
    if (MSEL_HasSeriesSwitch(&selector)) {
        MSG_Error(620, component, pin.szPin, selector.szName, "Series Switch");
    }
}

void CheckModel(const PIN& pin, const ibis& root, bool paired, const char* component)
{
    nuibis_mdl* const model = MDL_Find(pin.szModel, root.pModels);
    if (model != nullptr) {
        model->uiReferenced = 1;
        if (geIbisVersion < IBIS_VER_3) {
            return;
        }
        if (model->eModelType == MODEL_SERIES || model->eModelType == MODEL_SERIES_SWITCH) {
            MSG_Error(610, component, pin.szPin, pin.szModel);
        }
        if (model->eDiffUse == 0 && !paired) {
            MSG_Caution(611, pin.szPin, pin.szModel);
        }
        return;
    }
    msel* const selector =
        geIbisVersion < IBIS_VER_3 ? nullptr : MSEL_Find(pin.szModel, root.pModelSelectors);
    if (selector == nullptr) {
        MSG_Error(608, component, pin.szModel, pin.szPin);
        return;
    }
    ReportModelSelector(pin, *selector, paired, component);
}

bool HasModel(PIN* list, std::string_view name, std::string_view model)
{
    const PIN* const pin = PIN_Find(list, name);
    return pin != nullptr && CMN_Equal(pin->szModel, model);
}

// The pins that a package merges: their checks, set by set. The first pin of a set is the one to match.
class MergedCheck
{
  public:
    MergedCheck(PIN* pins, PINMPG* mappings, const char* component, const char* package)
        : mpPins(pins), mpMappings(mappings), mpszComponent(component), mpszPackage(package)
    {
    }

    void open(const char* pin)
    {
        mpszFirst = pin;
        mpszPolarity = polarityOf(pin);
        mpszBus = mpszPolarity == nullptr ? nullptr : busOf(pin, mpszPolarity);
    }

    void check(const char* pin)
    {
        const char* const polarity = polarityOf(pin);
        if (polarity == nullptr || mpszPolarity == nullptr) {
            return;
        }
        if (polarity != std::string_view(mpszPolarity)) {
            MSG_Error(617, mpszComponent, polarity, pin, mpszPackage, mpszPolarity, mpszFirst);
            mbClean = false;
            return;
        }
        const char* const bus = busOf(pin, polarity);
        if (bus != nullptr && mpszBus != nullptr && bus != std::string_view(mpszBus)) {
            MSG_Error(618, mpszComponent, mpszPackage, mpszFirst, pin, mpszBus, bus);
            mbClean = false;
        }
    }

    bool isClean() const { return mbClean; }

  private:
    // "POWER" or "GND"; otherwise told, and null.
    const char* polarityOf(const char* pin)
    {
        if (PIN_IsRail(mpPins, pin)) {
            return PIN_IsPower(mpPins, pin) ? "POWER" : "GND";
        }
        mbClean = false;
        if (PIN_Exists(mpPins, pin)) {
            MSG_Error(615, pin, mpszPackage, mpszComponent);
        } else {
            MSG_Error(616, pin, mpszPackage, mpszComponent);
        }
        return nullptr;
    }

    const char* busOf(const char* pin, std::string_view polarity) const
    {
        return PINMPG_GetRef(mpMappings, pin, polarity == "POWER");
    }

    PIN* mpPins;
    PINMPG* mpMappings;
    const char* mpszComponent;
    const char* mpszPackage;
    const char* mpszFirst = nullptr;
    const char* mpszPolarity = nullptr;  // null while the first pin is no rail
    const char* mpszBus = nullptr;       // null without a mapping
    bool mbClean = true;
};

}  // namespace

void PIN_ReadHeader(CMPNT* component, PIN_ColumnOrder& order, std::string_view text)
{
    if (component->iPinColumns != 0) {
        MSG_ErrorLine(523);
        return;
    }
    component->iPinColumns = 1;
    if (text.empty()) {
        MSG_ErrorLine(528, "Pin");
        return;
    }
    const CMN_TokenList tokens = CMN_Split(text, 6);
    component->iPinColumns += tokens.iStored;
    if (component->iPinColumns != 3 && component->iPinColumns != 6) {
        MSG_ErrorLine(532, "Pin", 3, 6, component->iPinColumns);
    }
    if (!CMN_Equal(tokens[0], "signal_name")) {
        MSG_ErrorLine(529, "signal_name");
    }
    if (!CMN_Equal(tokens[1], "model_name")) {
        MSG_ErrorLine(529, "model_name");
    }
    ReadValueHeaders(tokens, order);
}

int PIN_ReadLine(std::string_view text, int headerColumns, PIN** out, const PIN_ColumnOrder& order)
{
    if (!CMN_Alloc(*out)) {
        MSG_ErrorLine(614);
        MSG_ErrorLine(600);
        return 0;
    }
    PIN& pin = **out;
    const CMN_TokenList tokens = CMN_Split(text, 6);
    ReadNames(pin, tokens);
    for (std::size_t i = 0; i < VALUES.size(); ++i) {
        const std::string_view token = tokens[3 + order[i]];
        if (token.data() != nullptr) {
            ++pin.iColumns;
            CMN_GetValueOrNA(token, "Pin", VALUES[i].sName, &(pin.*VALUES[i].pdValue),
                             &(pin.*VALUES[i].peStatus));
        }
    }
    if (pin.iColumns != 3 && pin.iColumns != 6) {
        MSG_ErrorLine(604);
    }
    if (pin.iColumns == 6 && headerColumns == 3) {
        MSG_ErrorLine(605);
    }
    return 1;
}

void PIN_Add(PIN*& list, PIN* pin)
{
    if (PIN_Exists(list, pin->szPin)) {
        MSG_ErrorLine(606, pin->szPin);
    }
    gTail.append(list, pin);
}

void PIN_Free(PIN* list)
{
    gPins.reset();
    CMN_FreeList(list);
}

PIN* PIN_Find(PIN* list, std::string_view name)
{
    return gPins.find(list, name);
}

bool PIN_Exists(PIN* list, std::string_view name)
{
    return PIN_Find(list, name) != nullptr;
}

const char* PIN_ModelOf(PIN* list, std::string_view name)
{
    const PIN* const pin = PIN_Find(list, name);
    return pin == nullptr ? nullptr : pin->szModel;
}

bool PIN_IsGnd(PIN* list, std::string_view name)
{
    return HasModel(list, name, "GND");
}

bool PIN_IsPower(PIN* list, std::string_view name)
{
    return HasModel(list, name, "POWER");
}

bool PIN_IsRail(PIN* list, std::string_view name)
{
    return PIN_IsGnd(list, name) || PIN_IsPower(list, name);
}

bool PIN_IsSpecialModel(std::string_view model)
{
    static constexpr std::array<std::string_view, 4> special{"POWER", "GND", "CIRCUITCALL", "NC"};
    return std::any_of(special.begin(), special.end(),
                       [model](std::string_view word) { return CMN_Equal(word, model); });
}

void PIN_CheckAll(PIN* list, PINMPG* mappings, const DIFPIN* diffPins, const char* component)
{
    ibis* root = nullptr;
    if (!IBIS_GetCurrent(&root)) {
        MSG_Bug(607, __FILE_NAME__, __LINE__);
        return;
    }
    for (const PIN* pin = list; pin != nullptr; pin = pin->pNext) {
        if (!PIN_IsSpecialModel(pin->szModel)) {
            CheckModel(*pin, *root, DIFPIN_Has(diffPins, pin->szPin), component);
        }
        if (mappings != nullptr && !PINMPG_HasPin(mappings, pin->szPin)) {
            MSG_Error(612, component, pin->szPin);
        }
    }
}

bool PIN_CheckMerged(PIN* list, PINMPG* mappings, const char* component, const char* packageModel)
{
    ibis* root = nullptr;
    if (packageModel[0] == '\0' || !IBIS_GetCurrent(&root) || root->pPackageModels == nullptr) {
        return true;
    }
    PKGMDL* const packages = root->pPackageModels;
    bool clean = true;
    const char* pin = nullptr;
    for (bool first = true; PKGMDL_GetNextPinNumber(packages, packageModel, first, &pin); first = false) {
        if (!PIN_Exists(list, pin)) {
            MSG_Error(613, pin, packageModel, component);
            clean = false;
        }
    }
    MergedCheck check(list, mappings, component, packageModel);
    bool opensSet = false;
    for (bool first = true; PKGMDL_GetNextMergedPin(packages, packageModel, first, &pin, &opensSet);
         first = false) {
        if (first && mappings == nullptr) {
            MSG_Error(619, packageModel, component);
            clean = false;
        }
        if (opensSet) {
            check.open(pin);
        } else {
            check.check(pin);
        }
    }
    return clean && check.isClean();
}
