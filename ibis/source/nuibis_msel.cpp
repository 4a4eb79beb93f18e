#include "ibis/source/nuibis_msel.h"

#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_field.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_list.h"
#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_pin.h"
#include "ibis/source/nuibis_spinmpg.h"

namespace
{

// Module state, reset by MSEL_Init. A selector stays current until the next one: it has no closing step.
msel* gpCurMsel = nullptr;
nuibis_keyword geMselKeyword = NOT_KEY;
LIST_Tail<mselmodel> gEntries;
LIST_Repeats gEntryRepeats;

// Series types among a selector's models, looked for once: any number of pins may name the same selector.
struct SeriesTypes {
    bool bSeries;
    bool bSwitch;
};

CMN_Map<const msel*, SeriesTypes> gSeriesTypes;

LIST_Index<msel, &msel::szName> gSelectors;  // follows the list that was last looked into

void ReadName(std::string_view text)
{
    const CMN_TokenList tokens = CMN_Split(text, 1);
    if (tokens.iFound == 0) {
        MSG_ErrorLine(4010);
        return;
    }
    if (tokens.iFound > 1) {
        MSG_ErrorLine(4011, tokens.iFound, "Model Selector", 1);
    }
    FIELD_SetName(gpCurMsel->szName, tokens[0], FIELD_NameLimit(), 4012);
    const std::string_view name = gpCurMsel->szName;
    if (!CMN_IsNotReserved(name)) {
        MSG_ErrorLine(4013, name);
    }
    if (MSEL_Exists(name, gpCurMsel->pNext)) {
        MSG_ErrorLine(4014, name);
    }
}

void ReadDescription(mselmodel& entry, std::string_view text)
{
    CMN_SkipToken(text);
    CMN_SkipSpace(text);
    const auto room = static_cast<unsigned>(MSEL_LINE_ROOM - std::string_view(entry.szName).size());
    if (text.size() > room) {
        MSG_ErrorLine(4019, text, room);
    }
    CMN_CopyText(entry.szDescription, text, room);
}

// Each entry of the name that is there already is told.
void ReportRepeats(std::string_view name)
{
    for (unsigned former = gEntryRepeats.add(name); former > 0; --former) {
        MSG_ErrorLine(4025, name);
    }
}

void ReadEntry(std::string_view text)
{
    const CMN_TokenList tokens = CMN_Split(text, 2);
    if (tokens.iFound == 0) {
        MSG_ErrorLine(4016);
        return;
    }
    if (tokens.iFound == 1) {
        MSG_ErrorLine(4011, tokens.iFound, "Model Selector", 2);
    }
    mselmodel* entry = nullptr;
    if (!CMN_Alloc(entry)) {
        MSG_ErrorLine(4008);
        return;
    }
    FIELD_SetName(entry->szName, tokens[0], FIELD_NameLimit(), 4017);
    // The other reserved words pass: a selector may offer a power or ground connection.
    if (CMN_Equal(entry->szName, "NA")) {
        MSG_ErrorLine(4018);
    }
    ReadDescription(*entry, text);
    ReportRepeats(entry->szName);
    gEntries.append(gpCurMsel->pModels, entry);
}

// End of file ---------------------------------------------------------------------------------------------

// The names that pins and series pins give for their models.
CMN_Set<std::string_view> NamesInUse(const CMPNT* component)
{
    CMN_Set<std::string_view> names;
    for (; component != nullptr; component = component->pNext) {
        for (const PIN* pin = component->pPins; pin != nullptr; pin = pin->pNext) {
            names.insert(pin->szModel);
        }
        for (const SPINMPG* row = component->pSeriesPinMappings; row != nullptr; row = row->pNext) {
            names.insert(row->szModel);
        }
    }
    return names;
}

// Reserved words stand for a rail or for nothing, and names without a model count as single-ended.
bool IsDifferential(const mselmodel& entry, const msel& selector, nuibis_mdl* models)
{
    if (!CMN_IsNotReserved(entry.szName)) {
        return false;
    }
    nuibis_mdl* const model = MDL_Find(entry.szName, models);
    if (model == nullptr) {
        MSG_Error(4024, entry.szName, selector.szName);
        return false;
    }
    model->uiReferenced = 1;
    return model->eDiffUse == 0;
}

// The first entry sets the class of the selector.
void CheckEntries(msel& selector, nuibis_mdl* models)
{
    bool differential = false;
    for (const mselmodel* entry = selector.pModels; entry != nullptr; entry = entry->pNext) {
        const bool found = IsDifferential(*entry, selector, models);
        if (entry == selector.pModels) {
            differential = found;
        } else if (found && !differential) {
            MSG_Warning(4022, entry->szName, selector.szName);
        } else if (!found && differential) {
            MSG_Warning(4023, entry->szName, selector.szName);
        }
    }
    selector.eDiffUse = differential ? 0 : 1;
}

SeriesTypes FindSeriesTypes(const msel& selector, nuibis_mdl* models)
{
    SeriesTypes types{};
    for (const mselmodel* entry = selector.pModels; entry != nullptr; entry = entry->pNext) {
        nuibis_model_type found = MODEL_UNSEEN;
        MDL_GetType(models, entry->szName, &found);
        types.bSeries |= found == MODEL_SERIES;
        types.bSwitch |= found == MODEL_SERIES_SWITCH;
    }
    return types;
}

SeriesTypes SeriesTypesOf(const msel* selector)
{
    ibis* root = nullptr;
    if (!IBIS_GetCurrent(&root)) {
        MSG_Bug(4020, __FILE_NAME__, __LINE__);
        return {};
    }
    try {
        const auto known = gSeriesTypes.find(selector);
        return known != gSeriesTypes.end()
                   ? known->second
                   : gSeriesTypes.try_emplace(selector, FindSeriesTypes(*selector, root->pModels))
                         .first->second;
    } catch (const std::bad_alloc&) {
        return FindSeriesTypes(*selector, root->pModels);
    }
}

}  // namespace

void MSEL_Init()
{
    gpCurMsel = nullptr;
    geMselKeyword = NOT_KEY;
    gEntryRepeats.reset();
    gSeriesTypes.clear();
    ibis* root = nullptr;
    if (!IBIS_GetCurrent(&root)) {
        MSG_BugLine(4000, __FILE_NAME__, __LINE__);
        return;
    }
    if (!CMN_Alloc(gpCurMsel)) {
        MSG_ErrorLine(4007);
        return;
    }
    gpCurMsel->eDiffUse = 2;
    IBIS_Add<&ibis::pModelSelectors>(root, gpCurMsel);
}

void MSEL_Line(line_type lineType, nuibis_keyword code, std::string_view text)
{
    if (gpCurMsel == nullptr) {
        if (lineType == LINE_KEYWORD) {
            MSG_ErrorLine(4001);
        } else {
            MSG_ErrorLine(4002);
        }
        return;
    }
    if (lineType == LINE_KEYWORD) {
        CMN_SkipKeyword(text);
        geMselKeyword = code;
        if (code == KEY_MODEL_SELECTOR) {
            ReadName(text);
        } else {
            MSG_BugLine(4003, __FILE_NAME__, __LINE__);
        }
    } else if (lineType != LINE_DATA) {
        MSG_BugLine(4004, __FILE_NAME__, __LINE__);
    } else if (geMselKeyword == KEY_MODEL_SELECTOR) {
        ReadEntry(text);
    } else {
        MSG_ErrorLine(4002);
    }
}

void MSEL_CheckAll(msel* list)
try {
    ibis* root = nullptr;
    if (!IBIS_GetCurrent(&root)) {
        MSG_Bug(4020, __FILE_NAME__, __LINE__);
        return;
    }
    const CMN_Set<std::string_view> used = NamesInUse(root->pComponents);
    for (msel* selector = list; selector != nullptr; selector = selector->pNext) {
        if (MDL_MarkReferenced(selector->szName, root->pModels)) {
            MSG_Error(4021, selector->szName);
        }
        // The number of an unused selector has no text: nothing is said.
        if (!used.contains(selector->szName)) {
            MSG_NoRow(MSG_Severity::Warning, 4026);
        }
        CheckEntries(*selector, root->pModels);
    }
} catch (const std::bad_alloc&) {
    // Told by the allocation itself.
}

void MSEL_FreeList(msel* list)
{
    gpCurMsel = nullptr;
    gEntryRepeats.reset();
    gSeriesTypes.clear();
    gSelectors.reset();
    CMN_FreeList(list, [](msel& selector) { CMN_FreeList(selector.pModels); });
}

msel* MSEL_Find(std::string_view name, msel* list)
{
    return gSelectors.find(list, name);
}

int MSEL_Exists(std::string_view name, msel* list)
{
    return MSEL_Find(name, list) != nullptr ? 1 : 0;
}

bool MSEL_HasSeries(const msel* selector)
{
    return SeriesTypesOf(selector).bSeries;
}

bool MSEL_HasSeriesSwitch(const msel* selector)
{
    return SeriesTypesOf(selector).bSwitch;
}
