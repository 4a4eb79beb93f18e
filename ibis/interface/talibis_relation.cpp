// Queries about the relations of a component's pins: those that fit a schematic symbol, pairs, repeaters,
// series switches.

#include "ibis/interface/talibis_filter.h"
#include "ibis/interface/talibis_print.h"
#include "ibis/source/nuibis_algmod.h"
#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_difpin.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_msel.h"
#include "ibis/source/nuibis_pin.h"
#include "ibis/source/nuibis_reppin.h"
#include "ibis/source/nuibis_spinmpg.h"
#include "ibis/source/nuibis_sswch.h"

#include <algorithm>
#include <array>
#include <new>
#include <span>
#include <unordered_map>
#include <unordered_set>

namespace
{

constexpr std::size_t PIN_WIDTH = 9;
constexpr std::size_t MODEL_WIDTH = 44;

// Pins without a buffer.
bool HasNoBuffer(const PIN& pin)
{
    static constexpr std::array<std::string_view, 3> words{"NC", "POWER", "GND"};
    return std::find(words.begin(), words.end(), pin.szModel) != words.end();
}

// Pairing counts only for symbols that ask for no series element: those stand for both pins of a switch.
bool FitsSymbol(const PIN& pin, const CMPNT& component, TalIbisFilter& filter)
{
    const TalIbisSymbol& symbol = filter.symbol();
    if (!symbol.isSelectiveModelType()) {
        return true;
    }
    if (!filter.accepts(pin.szModel)) {
        return false;
    }
    if (symbol.mSeries) {
        return SPINMPG_Has(component.pSeriesPinMappings, pin.szPin);
    }
    return DIFPIN_Has(component.pDiffPins, pin.szPin) == symbol.mDifferential;
}

const DIFPIN* FindPair(const DIFPIN* list, std::string_view pin)
{
    for (const auto column : {&DIFPIN::szPin, &DIFPIN::szInvPin}) {
        for (const DIFPIN* pair = list; pair != nullptr; pair = pair->pNext) {
            if (pin == pair->*column) {
                return pair;
            }
        }
    }
    return nullptr;
}

// The repeater type that a symbol asks for; a word that no repeater has for any other symbol.
std::string_view RepeaterType(const char* symbol)
{
    const std::string_view name = symbol == nullptr ? "" : symbol;
    return name == "IBIS_ReDriver_AMI" ? "Redriver" : name == "IBIS_ReTimer_AMI" ? "Retimer" : "Typ";
}

bool HasRepeaterType(const nuibis_mdl* model, std::string_view type)
{
    const ALGMOD* line =
        model == nullptr || model->pAlgorithmicModel == nullptr ? nullptr : model->pAlgorithmicModel->pFirst;
    while (line != nullptr && type != line->szRepeaterType) {
        line = line->pNext;
    }
    return line != nullptr;
}

// A component's pins by name: a name may stand twice, and a repeater takes the one that suits it.
using PinsByName = std::unordered_map<std::string_view, std::vector<const PIN*>>;

PinsByName PinsOf(const CMPNT& component)
{
    PinsByName pins;
    for (const PIN* pin = component.pPins; pin != nullptr; pin = pin->pNext) {
        pins[pin->szPin].push_back(pin);
    }
    return pins;
}

std::string JoinGroups(const SSWCH& state)
{
    static constexpr std::size_t limit = 4095;
    std::string joined;
    for (const char* group : std::span(state.ppszGroups, static_cast<std::size_t>(state.iGroupCount))) {
        joined.append(group).append(4, ' ');
    }
    joined.resize(std::min(joined.size(), limit));
    return joined;
}

}  // namespace

// The wording with the back quote, which the queries of these relations have.
CMPNT* TalIbis::findCompOrReportQuoted(const char* name, TalIbisQueryData& record) const
{
    CMPNT* const component = findComp(name);
    if (component == nullptr && name != nullptr && pszFileName != nullptr) {
        record.setFormatedError(QueryError, "Component `%s' not found in the IBIS file '%s'", name,
                                pszFileName);
    }
    return component;
}

void TalIbis::getPinModelList(const char* component, const char* symbol, TalIbisListQueryData& list) const
{
    answerQuery(list, [&] {
        if (symbol != nullptr && std::string_view(symbol) == "Ebd") {
            getBoardPins(list);
            return;
        }
        const CMPNT* const found = findCompOrReportQuoted(component, list);
        if (found == nullptr) {
            return;
        }
        if (found->pPins == nullptr) {
            if (pszFileName != nullptr) {
                list.setFormatedError(QueryEmpty, "No pin detected in the IBIS file '%s'", pszFileName);
            }
            return;
        }
        TalIbisFilter filter(*this, symbol);
        if (!filter.isInvalid(list)) {
            getComponentPins(*found, symbol, filter, list);
        }
    });
}

// The title comes with the first pin that fits the symbol, also when the table then leaves that pin out.
void TalIbis::getComponentPins(const CMPNT& component, std::string_view symbol, TalIbisFilter& filter,
                               TalIbisListQueryData& list) const
{
    static constexpr std::size_t dashes = 76;
    const bool buffersOnly = symbol.empty();
    const bool packageOnly = symbol == "IBIS_Pkg" && component.szPackageModel[0] != '\0';
    const std::unordered_set<std::string_view> packagePins =
        packageOnly ? packagePinsOf(component) : std::unordered_set<std::string_view>();
    for (const PIN* pin = component.pPins; pin != nullptr; pin = pin->pNext) {
        if (!FitsSymbol(*pin, component, filter)) {
            continue;
        }
        if (list.size() == 0) {
            insertTitle(list,
                        {{PIN_WIDTH, "Name"}, {MODEL_WIDTH, "Signal Name"}, {MODEL_WIDTH, "Model Name"}},
                        dashes);
        }
        if ((buffersOnly && HasNoBuffer(*pin)) || (packageOnly && !packagePins.contains(pin->szPin))) {
            continue;
        }
        insertRow(list, {{PIN_WIDTH, pin->szPin}, {MODEL_WIDTH, pin->szSignal}, {MODEL_WIDTH, pin->szModel}});
    }
}

void TalIbis::getDiffPin(const char* component, const char* pin, TalIbisListQueryData& list) const
{
    static constexpr std::size_t nameWidth = 13;
    static constexpr std::size_t dashes = 78;
    answerQuery(list, [&] {
        const CMPNT* const found = findCompOrReport(component, list);
        const DIFPIN* const pair =
            found == nullptr || pin == nullptr ? nullptr : FindPair(found->pDiffPins, pin);
        if (pair == nullptr) {
            return;
        }
        insertTitle(list,
                    {{nameWidth, "[Diff pin]"},
                     {nameWidth, "inv_pin"},
                     {NUMBER_WIDTH, "vdiff"},
                     {NUMBER_WIDTH, "tdelay_typ"},
                     {NUMBER_WIDTH, "tdelay_min"},
                     {NUMBER_WIDTH, "tdelay_max"}},
                    dashes);
        insertRow(list, {{nameWidth, pair->szPin},
                         {nameWidth, pair->szInvPin},
                         {NUMBER_WIDTH, printColumn(pair->dVdiff, pair->eVdiff)},
                         {NUMBER_WIDTH, printColumn(pair->dTdelayTyp, pair->eTdelayTyp)},
                         {NUMBER_WIDTH, printColumn(pair->dTdelayMin, pair->eTdelayMin)},
                         {NUMBER_WIDTH, printColumn(pair->dTdelayMax, pair->eTdelayMax)}});
    });
}

bool TalIbis::isRepeater(const char* name, std::string_view type) const
{
    if (const nuibis_mdl* const model = findModel(name); model != nullptr) {
        return HasRepeaterType(model, type);
    }
    const msel* const selector = findModelSelector(name);
    const mselmodel* entry = selector == nullptr ? nullptr : selector->pModels;
    while (entry != nullptr && !HasRepeaterType(findModel(entry->szName), type)) {
        entry = entry->pNext;
    }
    return entry != nullptr;
}

void TalIbis::getRepeaterPinList(const char* component, const char* symbol, TalIbisListQueryData& list) const
{
    static constexpr std::size_t nameWidth = 15;
    static constexpr std::size_t modelWidth = 41;
    static constexpr std::size_t dashes = 111;
    answerQuery(list, [&] {
        const CMPNT* const found = findCompOrReport(component, list);
        if (found == nullptr || found->pRepeaterPins == nullptr) {
            return;
        }
        insertTitle(list,
                    {{nameWidth, "[Repeater pin]"},
                     {nameWidth, "tx_non_inv_pin"},
                     {modelWidth, "RX Model Name"},
                     {modelWidth, "TX Model Name"}},
                    dashes);
        PinsByName pins = PinsOf(*found);
        OncePerName isOfType([&](const char* model) { return isRepeater(model, RepeaterType(symbol)); });
        bool hasRow = false;
        for (const REPPIN* entry = found->pRepeaterPins; entry != nullptr; entry = entry->pNext) {
            const auto& receivers = pins[entry->szPin];
            const auto& transmitters = pins[entry->szTxNonInvPin];
            const auto receiver = std::find_if(receivers.begin(), receivers.end(),
                                               [&](const PIN* pin) { return isOfType(pin->szModel); });
            if (receiver == receivers.end() || transmitters.empty()) {
                list.setFormatedError(
                    QueryWarning, "Error handling [Repeater Pin] keyword for '%s' and `%s' - ingnoring it",
                    entry->szPin, entry->szTxNonInvPin);
                continue;
            }
            insertRow(list, {{nameWidth, entry->szPin},
                             {nameWidth, entry->szTxNonInvPin},
                             {modelWidth, (*receiver)->szModel},
                             {modelWidth, transmitters.front()->szModel}});
            hasRow = true;
        }
        if (!hasRow) {
            list.clear();
        }
    });
}

void TalIbis::getSeriesPinMapping(const char* component, const char* pin, TalIbisListQueryData& list) const
{
    static constexpr std::size_t groupWidth = 24;
    static constexpr std::size_t dashes = 82;
    if (component == nullptr || pin == nullptr) {
        return;
    }
    answerQuery(list, [&] {
        const CMPNT* const found = findCompOrReportQuoted(component, list);
        for (const SPINMPG* entry = found == nullptr ? nullptr : found->pSeriesPinMappings; entry != nullptr;
             entry = entry->pNext) {
            if (std::string_view(pin) != entry->szPin1 && std::string_view(pin) != entry->szPin2) {
                continue;
            }
            if (list.size() == 0) {
                insertTitle(list,
                            {{PIN_WIDTH, "pin_1"},
                             {PIN_WIDTH, "pin_2"},
                             {MODEL_WIDTH, "Model Name"},
                             {groupWidth, "function_table_group"}},
                            dashes);
            }
            insertRow(list, {{PIN_WIDTH, entry->szPin1},
                             {PIN_WIDTH, entry->szPin2},
                             {MODEL_WIDTH, entry->szModel},
                             {groupWidth, entry->szFunctionGroup}});
        }
    });
}

void TalIbis::getSeriesSwitchGroup(const char* component, TalIbisListQueryData& list) const
{
    static constexpr std::size_t stateWidth = 8;
    static constexpr std::size_t dashes = 40;
    if (component == nullptr) {
        return;
    }
    answerQuery(list, [&] {
        const CMPNT* const found = findCompOrReportQuoted(component, list);
        for (const SSWCH* state = found == nullptr ? nullptr : found->pSeriesSwitchGroups; state != nullptr;
             state = state->pNext) {
            if (list.size() == 0) {
                insertTitle(list, {{0, "Series Switch Groups"}}, dashes);
            }
            insertRow(list, {{stateWidth, state->szState}, {0, JoinGroups(*state)}, {0, " /"}});
        }
    });
}

void TalIbis::hasSeriesPinMapping(const char* component, const char* pin, TalIbisBooleanQueryData& flag) const
{
    const CMPNT* const found = findComp(component);
    flag.setData(found != nullptr && pin != nullptr && SPINMPG_Has(found->pSeriesPinMappings, pin));
}
