#include "ibis/source/nuibis_spinmpg.h"

#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_field.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_list.h"
#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_msel.h"
#include "ibis/source/nuibis_pin.h"
#include "ibis/source/nuibis_sswch.h"

#include <algorithm>
#include <array>

namespace
{

constexpr unsigned GROUP_LIMIT = 20;

LIST_Tail<SPINMPG> gTail;  // follows the list that is being read

// The pins of one list at a time, by column; forgotten by SPINMPG_Free.
LIST_Index<const SPINMPG, &SPINMPG::szPin1> gPins1;
LIST_Index<const SPINMPG, &SPINMPG::szPin2> gPins2;

// End checks ----------------------------------------------------------------------------------------------

// What a mapping says about its function group.
enum Group : unsigned { GROUP_ABSENT, GROUP_KNOWN, GROUP_UNKNOWN, GROUP_CASES };

// What may be wrong with the model of a mapping.
enum class Fault {
    None,
    UnknownType,
    NoSeriesSwitch,  // a function group asks for a switch
    NoSeries,
    GroupIgnored,
    GroupRequired,
    GroupUndefined,
};

Fault Judge(nuibis_model_type type, Group group)
{
    if (type < MODEL_INPUT) {
        return Fault::UnknownType;
    }
    if (type == MODEL_SERIES) {
        return group == GROUP_ABSENT ? Fault::None : Fault::GroupIgnored;
    }
    if (type == MODEL_SERIES_SWITCH) {
        return group == GROUP_ABSENT    ? Fault::GroupRequired
               : group == GROUP_UNKNOWN ? Fault::GroupUndefined
                                        : Fault::None;
    }
    return group == GROUP_ABSENT ? Fault::NoSeries : Fault::NoSeriesSwitch;
}

void ReportModel(Fault fault, const char* component, const char* model, const char* group)
{
    switch (fault) {
    case Fault::None:
        return;
    case Fault::UnknownType:
        return MSG_Error(2631, component, model);
    case Fault::NoSeriesSwitch:
        return MSG_Error(2621, component, model);
    case Fault::NoSeries:
        return MSG_Error(2623, component, model);
    case Fault::GroupIgnored:
        return MSG_Warning(2625, component, model, group);
    case Fault::GroupRequired:
        return MSG_Error(2627, component, model);
    case Fault::GroupUndefined:
        return MSG_Error(2629, component, model, group);
    }
}

void ReportChoice(Fault fault, const char* component, const char* selector, const char* model,
                  const char* group)
{
    switch (fault) {
    case Fault::None:
        return;
    case Fault::UnknownType:
        return MSG_Error(2630, component, selector, model);
    case Fault::NoSeriesSwitch:
        return MSG_Error(2620, component, selector, model);
    case Fault::NoSeries:
        return MSG_Error(2622, component, selector, model);
    case Fault::GroupIgnored:
        return MSG_Warning(2624, component, selector, model, group);
    case Fault::GroupRequired:
        return MSG_Error(2626, component, selector, model);
    case Fault::GroupUndefined:
        return MSG_Error(2628, component, selector, model, group);
    }
}

// The models of the selectors that mappings name, by what they are wrong with: each selector is looked
// through once, however many mappings share it.
class Selectors
{
  public:
    explicit Selectors(const ibis& root) : mRoot(root) {}

    struct Choice {
        const char* pszModel;
        Fault eFault;
    };
    using Choices = CMN_Vector<Choice>;

    const Choices& faults(const msel& selector, Group group)
    {
        const auto [entry, isNew] = mFaults.try_emplace(&selector);
        if (isNew) {
            collect(selector, entry->second);
        }
        return entry->second[group];
    }

  private:
    using ByGroup = std::array<Choices, GROUP_CASES>;

    // A selector may offer a supply or no connection, which is no model, nor is a name without one.
    void collect(const msel& selector, ByGroup& faults) const
    {
        for (const mselmodel* choice = selector.pModels; choice != nullptr; choice = choice->pNext) {
            nuibis_model_type type = MODEL_UNSEEN;
            if (!CMN_IsNotReserved(choice->szName) || !MDL_GetType(mRoot.pModels, choice->szName, &type)) {
                continue;
            }
            for (const Group group : {GROUP_ABSENT, GROUP_KNOWN, GROUP_UNKNOWN}) {
                if (const Fault fault = Judge(type, group); fault != Fault::None) {
                    faults[group].push_back({choice->szName, fault});
                }
            }
        }
    }

    const ibis& mRoot;
    CMN_Map<const msel*, ByGroup> mFaults;
};

void CheckModel(const SPINMPG& mapping, Group group, const ibis& root, Selectors& selectors,
                const char* component)
{
    if (nuibis_mdl* const model = MDL_Find(mapping.szModel, root.pModels); model != nullptr) {
        model->uiReferenced = 1;
        ReportModel(Judge(model->eModelType, group), component, mapping.szModel, mapping.szFunctionGroup);
    } else if (const msel* selector = MSEL_Find(mapping.szModel, root.pModelSelectors); selector != nullptr) {
        for (const Selectors::Choice& choice : selectors.faults(*selector, group)) {
            ReportChoice(choice.eFault, component, mapping.szModel, choice.pszModel, mapping.szFunctionGroup);
        }
    } else {
        MSG_Error(2617, component, mapping.szModel);
    }
}

Group GroupOf(const SPINMPG& mapping, const SSWCH* groups)
{
    return mapping.szFunctionGroup[0] == '\0'                ? GROUP_ABSENT
           : SSWCH_HasGroup(groups, mapping.szFunctionGroup) ? GROUP_KNOWN
                                                             : GROUP_UNKNOWN;
}

}  // namespace

void SPINMPG_ReadHeader(CMPNT* component, std::string_view text)
{
    static constexpr std::array<std::string_view, 3> headers{"pin_2", "model_name", "function_table_group"};
    if (component->iSeriesPinColumns != 0) {
        MSG_ErrorLine(542);
        SPINMPG_Free(component->pSeriesPinMappings);
        component->pSeriesPinMappings = nullptr;
    }
    component->iSeriesPinColumns = 1;
    if (text.empty()) {
        MSG_ErrorLine(528, "Series_Pin_Mapping");
        return;
    }
    const CMN_TokenList tokens = CMN_Split(text, static_cast<int>(headers.size()));
    if (tokens.iFound > tokens.iStored) {
        MSG_ErrorLine(543);
    }
    component->iSeriesPinColumns += tokens.iStored;
    if (component->iSeriesPinColumns != 3 && component->iSeriesPinColumns != 4) {
        MSG_ErrorLine(532, "Series_Pin_Mappings", 3, 4, component->iSeriesPinColumns);
    }
    for (int i = 0; i < std::max(tokens.iStored, 2); ++i) {
        const std::string_view header = headers[static_cast<std::size_t>(i)];
        if (!CMN_Equal(tokens[i], header)) {
            MSG_ErrorLine(529, header);
        }
    }
}

int SPINMPG_ReadLine(std::string_view text, int headerColumns, SPINMPG** out)
{
    if (!CMN_Alloc(*out)) {
        MSG_ErrorLine(2619);
        return 0;
    }
    SPINMPG& mapping = **out;
    const CMN_TokenList tokens = CMN_Split(text, 4);
    if (tokens.iFound > tokens.iStored) {
        MSG_ErrorLine(2600);
    }
    mapping.iColumns = tokens.iStored;
    if (tokens.iStored > 0) {
        CMN_ReplaceString(mapping.szPin1, tokens[0], PIN_NAME_LIMIT, "Pin1");
    } else {
        MSG_ErrorLine(2601);
    }
    if (tokens.iStored > 1) {
        CMN_ReplaceString(mapping.szPin2, tokens[1], PIN_NAME_LIMIT, "Pin2");
    } else {
        MSG_ErrorLine(2602);
    }
    if (tokens.iStored > 2) {
        CMN_ReplaceString(mapping.szModel, tokens[2], FIELD_NameLimit(), "Model");
        CMN_CheckReserved(mapping.szModel);
    } else {
        MSG_ErrorLine(2603);
    }
    if (tokens.iStored > 3) {
        CMN_ReplaceString(mapping.szFunctionGroup, tokens[3], GROUP_LIMIT, "Function group Name");
        CMN_CheckReserved(mapping.szFunctionGroup);
    }
    if (mapping.iColumns != 3 && mapping.iColumns != 4) {
        MSG_ErrorLine(2604);
    }
    if (mapping.iColumns == 4 && headerColumns == 3) {
        MSG_ErrorLine(2605);
    }
    return 1;
}

void SPINMPG_Add(SPINMPG*& list, SPINMPG* mapping)
{
    gTail.append(list, mapping);
}

bool SPINMPG_Has(const SPINMPG* list, std::string_view pin)
{
    return gPins1.find(list, pin) != nullptr || gPins2.find(list, pin) != nullptr;
}

void SPINMPG_Free(SPINMPG* list)
{
    gPins1.reset();
    gPins2.reset();
    CMN_FreeList(list);
}

void SPINMPG_CheckAll(const SPINMPG* list, PIN* pins, const char* component, const SSWCH* groups)
try {
    ibis* root = nullptr;
    if (!IBIS_GetCurrent(&root)) {
        MSG_Bug(2606, __FILE_NAME__, __LINE__);
        return;
    }
    if (pins == nullptr) {
        MSG_Error(2618, component);
        return;
    }
    Selectors selectors(*root);
    for (const SPINMPG* mapping = list; mapping != nullptr; mapping = mapping->pNext) {
        if (!PIN_Exists(pins, mapping->szPin1)) {
            MSG_Error(2607, component, mapping->szPin1);
        }
        if (!PIN_Exists(pins, mapping->szPin2)) {
            MSG_Error(2611, component, mapping->szPin2);
        }
        CheckModel(*mapping, GroupOf(*mapping, groups), *root, selectors, component);
    }
} catch (const std::bad_alloc&) {
    // Told by the allocation itself; the rest of the check falls away.
}
