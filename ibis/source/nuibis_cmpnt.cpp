#include "ibis/source/nuibis_cmpnt.h"

#include "ibis/source/nuibis_apkg.h"
#include "ibis/source/nuibis_circuit.h"
#include "ibis/source/nuibis_cmpntemi.h"
#include "ibis/source/nuibis_difpin.h"
#include "ibis/source/nuibis_field.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_list.h"
#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_msel.h"
#include "ibis/source/nuibis_node.h"
#include "ibis/source/nuibis_pin.h"
#include "ibis/source/nuibis_pinmpg.h"
#include "ibis/source/nuibis_pkg.h"
#include "ibis/source/nuibis_pkgmdl.h"
#include "ibis/source/nuibis_reppin.h"
#include "ibis/source/nuibis_spinmpg.h"
#include "ibis/source/nuibis_sswch.h"

#include <algorithm>
#include <array>

namespace
{

// Module state, reset by CMPNT_Init.
CMPNT* gpCurrentCmpnt = nullptr;  // open component, null outside the group
bool gbManufacturerSeen = false;
nuibis_keyword geCmpntKeyword = NOT_KEY;  // last keyword of this group; data lines belong to it
PIN_ColumnOrder gaiPinColumnOrder = {0, 1, 2};

// Keyword lines; `text` is what follows the bracket ------------------------------------------------------

void ReadName(std::string_view text)
{
    CMN_SetString(gpCurrentCmpnt->szName, text, 40, "Component");
    const std::string_view name = gpCurrentCmpnt->szName;
    if (std::any_of(name.begin(), name.end(), CMN_IsSpace)) {
        MSG_WarningLine(513, name);
    }
    CMN_CheckReserved(name);
}

void ReadManufacturer(std::string_view text)
{
    CMN_SetString(gpCurrentCmpnt->szManufacturer, text, 40, "Manufacturer");
    gbManufacturerSeen = true;
}

void OpenPackage(std::string_view text)
{
    if (gpCurrentCmpnt->pPackage != nullptr) {
        MSG_ErrorLine(517);
        PKG_Free(gpCurrentCmpnt->pPackage);
    }
    if (!text.empty()) {
        MSG_ErrorLine(518);
    }
    gpCurrentCmpnt->pPackage = PKG_Create();
    if (gpCurrentCmpnt->pPackage == nullptr) {
        MSG_ErrorLine(533, "Package");
    }
}

void OpenPin(std::string_view text)
{
    PIN_ReadHeader(gpCurrentCmpnt, gaiPinColumnOrder, text);
}

void ReadPackageModel(std::string_view text)
{
    CMN_SetString(gpCurrentCmpnt->szPackageModel, text, 40, "Package_Model");
    CMN_CheckReserved(gpCurrentCmpnt->szPackageModel);
}

void OpenPinMapping(std::string_view text)
{
    PINMPG_ReadHeader(gpCurrentCmpnt, text);
}

void OpenDiffPin(std::string_view text)
{
    DIFPIN_ReadHeader(gpCurrentCmpnt, text);
}

void OpenRepeaterPin(std::string_view text)
{
    REPPIN_ReadHeader(gpCurrentCmpnt, text);
}

void OpenSwitchGroups(std::string_view text)
{
    if (gpCurrentCmpnt->pSeriesSwitchGroups != nullptr) {
        MSG_ErrorLine(546);
    }
    if (const int items = CMN_CountTokens(text); items != 0) {
        MSG_ErrorLine(539, items + 1, "Series_Switch_Groups", 1);
    }
}

void OpenSeriesPinMapping(std::string_view text)
{
    SPINMPG_ReadHeader(gpCurrentCmpnt, text);
}

void OpenAlternatePackages(std::string_view text)
{
    if (gpCurrentCmpnt->pAltPackageModels != nullptr) {
        MSG_ErrorLine(520);
    }
    if (!text.empty()) {
        MSG_ErrorLine(521);
    }
}

void CloseAlternatePackages(std::string_view text)
{
    if (!text.empty()) {
        MSG_ErrorLine(522);
    }
    APKG_Close(gpCurrentCmpnt->pAltPackageModels);
}

void OpenNodes(std::string_view)
{
    NODE_Open(gpCurrentCmpnt->pNodes);
}

void CloseNodes(std::string_view)
{
    NODE_CheckEmpty(*gpCurrentCmpnt);
}

void OpenCircuitCall(std::string_view text)
{
    CCALL_Open(text, gpCurrentCmpnt->pCircuitCalls);
}

void CloseCircuitCall(std::string_view) {}

void ReadEmiKeyword(std::string_view text)
{
    CMPNTEMI_Line(LINE_KEYWORD, geCmpntKeyword, text, &gpCurrentCmpnt->pEmi);
}

// Data lines ----------------------------------------------------------------------------------------------

struct Subparameter {
    std::string_view sName;
    CMPNT_Location CMPNT::*peField;
};

constexpr std::array<Subparameter, 2> SUBPARAMETERS{{
    {"Si_location", &CMPNT::eSiLocation},
    {"Timing_location", &CMPNT::eTimingLocation},
}};

void ReadLocation(const Subparameter& parameter, std::string_view text)
{
    static constexpr std::array<std::string_view, 2> words{"Pin", "Die"};
    CMPNT_Location& field = gpCurrentCmpnt->*parameter.peField;
    if (field != LOCATION_ABSENT) {
        MSG_ErrorLine(537, parameter.sName, gpCurrentCmpnt->szName);
    }
    field = LOCATION_INVALID;
    const int word = FIELD_ReadWord(text, parameter.sName, words, {538, 0, 539}, {540, 541});
    if (word >= 0) {
        field = word == 0 ? LOCATION_PIN : LOCATION_DIE;
    }
}

void ReadSubparameter(std::string_view text)
{
    if (geIbisVersion < IBIS_VER_3) {
        MSG_ErrorLine(506);
        return;
    }
    const std::string_view name = CMN_Split(text, 1)[0];
    const auto* const parameter = std::find_if(SUBPARAMETERS.begin(), SUBPARAMETERS.end(),
                                               [name](const Subparameter& p) { return p.sName == name; });
    if (parameter == SUBPARAMETERS.end()) {
        MSG_ErrorLine(535);
        return;
    }
    ReadLocation(*parameter, text);
}

void RefuseManufacturerData(std::string_view)
{
    MSG_ErrorLine(507);
}

void ReadPackageLine(std::string_view text)
{
    if (gpCurrentCmpnt->pPackage != nullptr) {
        PKG_Line(gpCurrentCmpnt->pPackage, text);
    }
}

// One row of a table: `made` tells whether `record` was made of it.
template <class T>
void AddRow(int made, T* record, T*& list, void (*add)(T*& list, T* record), std::string_view keyword)
{
    if (made) {
        add(list, record);
    } else {
        MSG_ErrorLine(533, keyword);
    }
}

void ReadPinLine(std::string_view text)
{
    PIN* pin = nullptr;
    const int made = PIN_ReadLine(text, gpCurrentCmpnt->iPinColumns, &pin, gaiPinColumnOrder);
    AddRow(made, pin, gpCurrentCmpnt->pPins, PIN_Add, "Pin");
}

void RefusePackageModelData(std::string_view)
{
    MSG_ErrorLine(508);
}

void ReadPinMappingLine(std::string_view text)
{
    PINMPG* mapping = nullptr;
    const int made = PINMPG_ReadLine(text, gpCurrentCmpnt->iPinMappingColumns, &mapping);
    AddRow(made, mapping, gpCurrentCmpnt->pPinMappings, PINMPG_Add, "Pin_Mapping");
}

void ReadDiffPinLine(std::string_view text)
{
    DIFPIN* pair = nullptr;
    const int made = DIFPIN_ReadLine(text, gpCurrentCmpnt->iDiffPinColumns, &pair);
    AddRow(made, pair, gpCurrentCmpnt->pDiffPins, DIFPIN_Add, "Diff_Pin");
}

void ReadRepeaterPinLine(std::string_view text)
{
    REPPIN* pair = nullptr;
    const int made = REPPIN_ReadLine(text, &pair);
    AddRow(made, pair, gpCurrentCmpnt->pRepeaterPins, REPPIN_Add, "Repeater_Pin");
}

// A line may go on with the record of the line before it.
void ReadSwitchGroupsLine(std::string_view text)
{
    SSWCH*& list = gpCurrentCmpnt->pSeriesSwitchGroups;
    SSWCH* record = nullptr;
    const int taken = SSWCH_ReadLine(text, &record);
    if (record != nullptr && !SSWCH_Has(list, record)) {
        SSWCH_Add(list, record);
    }
    if (!taken) {
        MSG_ErrorLine(533, "Series_Switch_Group");
    }
}

void ReadSeriesPinMappingLine(std::string_view text)
{
    SPINMPG* mapping = nullptr;
    const int made = SPINMPG_ReadLine(text, gpCurrentCmpnt->iSeriesPinColumns, &mapping);
    AddRow(made, mapping, gpCurrentCmpnt->pSeriesPinMappings, SPINMPG_Add, "Series_Pin_Mapping");
}

void ReadAlternatePackage(std::string_view text)
{
    APKG_Line(gpCurrentCmpnt->pAltPackageModels, text);
}

void ReadNodes(std::string_view text)
{
    NODE_AddLine(text, gpCurrentCmpnt->pNodes);
}

void ReadCircuitCall(std::string_view text)
{
    CCALL_AddLine(text, gpCurrentCmpnt->pCircuitCalls);
}

void ReadEmiLine(std::string_view text)
{
    CMPNTEMI_Line(LINE_DATA, geCmpntKeyword, text, &gpCurrentCmpnt->pEmi);
}

// Data behind an [End ...] keyword.
void RefuseData(std::string_view)
{
    MSG_BugLine(509, __FILE_NAME__, __LINE__);
}

// The keyword table ---------------------------------------------------------------------------------------

using Reader = void (*)(std::string_view text);

struct Keyword {
    nuibis_keyword eCode;
    Reader keywordLine;
    Reader dataLine;
};

constexpr std::array<Keyword, 20> KEYWORDS{{
    {KEY_COMPONENT, ReadName, ReadSubparameter},
    {KEY_MANUFACTURER, ReadManufacturer, RefuseManufacturerData},
    {KEY_PACKAGE, OpenPackage, ReadPackageLine},
    {KEY_PIN, OpenPin, ReadPinLine},
    {KEY_PACKAGE_MODEL, ReadPackageModel, RefusePackageModelData},
    {KEY_PIN_MAPPING, OpenPinMapping, ReadPinMappingLine},
    {KEY_DIFF_PIN, OpenDiffPin, ReadDiffPinLine},
    {KEY_REPEATER_PIN, OpenRepeaterPin, ReadRepeaterPinLine},
    {KEY_SERIES_SWITCH_GROUPS, OpenSwitchGroups, ReadSwitchGroupsLine},
    {KEY_SERIES_PIN_MAPPING, OpenSeriesPinMapping, ReadSeriesPinMappingLine},
    {KEY_ALTERNATE_PACKAGE_MODELS, OpenAlternatePackages, ReadAlternatePackage},
    {KEY_END_ALTERNATE_PACKAGE_MODELS, CloseAlternatePackages, RefuseData},
    {KEY_NODE_DECLARATIONS, OpenNodes, ReadNodes},
    {KEY_END_NODE_DECLARATIONS, CloseNodes, RefuseData},
    {KEY_CIRCUIT_CALL, OpenCircuitCall, ReadCircuitCall},
    {KEY_END_CIRCUIT_CALL, CloseCircuitCall, RefuseData},
    {KEY_BEGIN_EMI_COMPONENT, ReadEmiKeyword, ReadEmiLine},
    {KEY_END_EMI_COMPONENT, ReadEmiKeyword, ReadEmiLine},
    {KEY_PIN_EMI, ReadEmiKeyword, ReadEmiLine},
    {KEY_PIN_DOMAIN_EMI, ReadEmiKeyword, ReadEmiLine},
}};

const Keyword* FindKeyword(nuibis_keyword code)
{
    const auto* const row =
        std::find_if(KEYWORDS.begin(), KEYWORDS.end(), [code](const Keyword& k) { return k.eCode == code; });
    return row == KEYWORDS.end() ? nullptr : row;
}

// What the keyword before this one left open.
void CheckOpenBlocks(nuibis_keyword code)
{
    const bool open = geCmpntKeyword == KEY_ALTERNATE_PACKAGE_MODELS;
    const bool end = code == KEY_END_ALTERNATE_PACKAGE_MODELS;
    if (end && !open) {
        MSG_ErrorLine(503);
    } else if (!end && open) {
        MSG_ErrorLine(504);
    }
    if (CMPNTEMI_IsOpen() && (code < KEY_END_EMI_COMPONENT || code > KEY_PIN_DOMAIN_EMI)) {
        MSG_ErrorLine(553);
    }
}

void ReadKeyword(nuibis_keyword code, std::string_view text)
{
    const Keyword* const keyword = FindKeyword(code);
    if (keyword == nullptr) {
        MSG_BugLine(505, __FILE_NAME__, __LINE__);
        return;
    }
    CheckOpenBlocks(code);
    CMN_SkipKeyword(text);
    geCmpntKeyword = code;
    keyword->keywordLine(text);
}

// End of file ---------------------------------------------------------------------------------------------

void CheckDuplicates(CMPNT* list)
try {
    LIST_Pairs<CMPNT, &CMPNT::szName> repeats(list);
    for (const CMPNT* component = list; component != nullptr; component = component->pNext) {
        for (unsigned pairs = repeats.behind(*component); pairs > 0; --pairs) {
            MSG_Error(511, component->szName);
        }
    }
} catch (const std::bad_alloc&) {
    // Told by the allocation itself.
}

// A differential buffer exists as [External Model] only, whose two pads need a pair of pins. Supply and
// unused pins have no model; the walk ends at any other pin without one.
void CheckDiffExternal(const CMPNT& component, nuibis_mdl* models)
{
    static constexpr MDL_TypeSet differential =
        MDL_Types({MODEL_IO_DIFF, MODEL_OUTPUT_DIFF, MODEL_3STATE_DIFF, MODEL_INPUT_DIFF});
    for (const PIN* pin = component.pPins; pin != nullptr; pin = pin->pNext) {
        if (PIN_IsSpecialModel(pin->szModel)) {
            continue;
        }
        const nuibis_mdl* const model = MDL_Find(pin->szModel, models);
        if (model == nullptr) {
            return;
        }
        if (!MDL_IsOneOf(model->eModelType, differential)) {
            continue;
        }
        if (model->pExternalModel == nullptr) {
            MSG_Error(544);
        } else if (!DIFPIN_Has(component.pDiffPins, pin->szPin)) {
            MSG_Error(545, component.szName, pin->szPin, pin->szModel, MDL_TypeText(model->eModelType));
        }
    }
}

// The model that a component names stands in its own file or in a package file beside it.
void LoadPackageModel(const char* component, const char* package)
{
    ibis* root = nullptr;
    if (package[0] == '\0' || !IBIS_GetCurrent(&root) ||
        PKGMDL_Find(root->pPackageModels, package) != nullptr) {
        return;
    }
    PKGMDL_SearchPkgFiles(package);
    if (PKGMDL_Find(root->pPackageModels, package) == nullptr) {
        MSG_Error(516, package, component);
    }
}

void LoadAltPackages(const CMPNT& component)
{
    for (const APKG* package = component.pAltPackageModels; package != nullptr; package = package->pNext) {
        LoadPackageModel(component.szName, package->szName);
    }
}

// A package file brings its own version, which the next one begins under; the component keeps that of its
// file.
void LoadPackageModels(const CMPNT& component)
{
    const ibis_ver version = geIbisVersion;
    LoadPackageModel(component.szName, component.szPackageModel);
    LoadAltPackages(component);
    geIbisVersion = version;
}

void CheckAltPackages(const CMPNT& component)
{
    const ibis_ver version = geIbisVersion;
    LoadAltPackages(component);
    geIbisVersion = version;
}

void CheckPackagePins(const CMPNT& component)
try {
    CMN_Set<std::string_view> clean;  // what was found good need not be checked again for a repeated name
    const auto check = [&](const char* package) {
        if (!clean.contains(package) &&
            PIN_CheckMerged(component.pPins, component.pPinMappings, component.szName, package)) {
            clean.insert(package);
        }
    };
    check(component.szPackageModel);
    for (const APKG* package = component.pAltPackageModels; package != nullptr; package = package->pNext) {
        check(package->szName);
    }
} catch (const std::bad_alloc&) {
    // Told by the allocation itself.
}

}  // namespace

void CMPNT_Init()
{
    gbManufacturerSeen = false;
    geCmpntKeyword = NOT_KEY;
    gaiPinColumnOrder[0] = 0;
    gaiPinColumnOrder[1] = 1;
    gaiPinColumnOrder[2] = 2;
    CMPNTEMI_Close();
    gpCurrentCmpnt = nullptr;
    ibis* root = nullptr;
    if (!IBIS_GetCurrent(&root)) {
        MSG_BugLine(500, __FILE_NAME__, __LINE__);
        return;
    }
    if (!CMN_Alloc(gpCurrentCmpnt)) {
        MSG_ErrorLine(512);
        return;
    }
    IBIS_Add<&ibis::pComponents>(root, gpCurrentCmpnt);
}

void CMPNT_Line(line_type lineType, nuibis_keyword code, std::string_view text)
{
    if (lineType != LINE_KEYWORD && lineType != LINE_DATA) {
        MSG_BugLine(510, __FILE_NAME__, __LINE__);
    } else if (gpCurrentCmpnt == nullptr) {
        if (lineType == LINE_KEYWORD) {
            MSG_ErrorLine(501);
        } else {
            MSG_ErrorLine(502);
        }
    } else if (lineType == LINE_KEYWORD) {
        ReadKeyword(code, text);
    } else if (const Keyword* keyword = FindKeyword(geCmpntKeyword); keyword != nullptr) {
        keyword->dataLine(text);
    } else {
        MSG_BugLine(509, __FILE_NAME__, __LINE__);
    }
}

// [Component] itself lies outside, so that a new component ends the one before.
void CMPNT_Leave(nuibis_keyword newCode)
{
    const bool stays = newCode > KEY_COMPONENT && newCode <= KEY_PIN_DOMAIN_EMI &&
                       newCode != KEY_EXTERNAL_CIRCUIT && newCode != KEY_END_EXTERNAL_CIRCUIT;
    if (stays || gpCurrentCmpnt == nullptr) {
        return;
    }
    if (geCmpntKeyword == KEY_ALTERNATE_PACKAGE_MODELS) {
        MSG_ErrorLine(504);
    }
    if (CMPNTEMI_IsOpen()) {
        MSG_ErrorLine(551);
        CMPNTEMI_Close();
    }
    if (!gbManufacturerSeen) {
        MSG_Error(514, gpCurrentCmpnt->szName);
    }
    PKG_CheckRequired(gpCurrentCmpnt->pPackage, gpCurrentCmpnt->szName);
    gpCurrentCmpnt = nullptr;
    gbManufacturerSeen = false;
}

void CMPNT_CheckOne(CMPNT* component, EXTCIRCUIT* circuits, nuibis_mdl* models)
{
    LoadPackageModels(*component);
    if (component->pPins != nullptr) {
        PIN_CheckAll(component->pPins, component->pPinMappings, component->pDiffPins, component->szName);
        CheckPackagePins(*component);
    } else {
        MSG_Error(524, component->szName);
    }
    if (component->pPinMappings != nullptr) {
        PINMPG_CheckAll(component->pPinMappings, component->pPins, component->szName);
    }
    DIFPIN_CheckAll(component->pDiffPins, component->pPins, component->szName);
    if (component->pRepeaterPins != nullptr) {
        REPPIN_CheckAll(component->pRepeaterPins, component->pPins, component->szName);
    }
    if (component->pSeriesPinMappings != nullptr) {
        SPINMPG_CheckAll(component->pSeriesPinMappings, component->pPins, component->szName,
                         component->pSeriesSwitchGroups);
    }
    SSWCH_CheckAll(component->pSeriesSwitchGroups, component->pSeriesPinMappings, component->szName);
    CIRCUIT_CheckComponent(*component, circuits);
    CheckDiffExternal(*component, models);
    CheckAltPackages(*component);
    if (component->pEmi != nullptr) {
        CMPNTEMI_Finish(component, component->pEmi);
    }
}

void CMPNT_CheckAll(CMPNT* list, EXTCIRCUIT* circuits, nuibis_mdl* models)
{
    CheckDuplicates(list);
    for (CMPNT* component = list; component != nullptr; component = component->pNext) {
        CMPNT_CheckOne(component, circuits, models);
    }
}

CMPNT* CMPNT_Find(CMPNT* list, std::string_view name)
{
    while (list != nullptr && name != list->szName) {
        list = list->pNext;
    }
    return list;
}

void CMPNT_FreeList(CMPNT* list)
{
    gpCurrentCmpnt = nullptr;
    CMN_FreeList(list, [](CMPNT& component) {
        PKG_Free(component.pPackage);
        PIN_Free(component.pPins);
        PINMPG_Free(component.pPinMappings);
        DIFPIN_Free(component.pDiffPins);
        REPPIN_Free(component.pRepeaterPins);
        SPINMPG_Free(component.pSeriesPinMappings);
        SSWCH_Free(component.pSeriesSwitchGroups);
        APKG_Free(component.pAltPackageModels);
        NODE_FreeList(component.pNodes);
        CCALL_FreeList(component.pCircuitCalls);
        CMPNTEMI_Free(component.pEmi);
    });
}

// Models on differential pins -----------------------------------------------------------------------------

CMPNT_DiffPins::CMPNT_DiffPins(const CMPNT* components, msel* selectors)
{
    try {
        CMN_Vector<const CMPNT*> newestFirst;
        for (; components != nullptr; components = components->pNext) {
            newestFirst.push_back(components);
        }
        for (auto component = newestFirst.rbegin(); component != newestFirst.rend(); ++component) {
            addComponent(**component, selectors);
        }
    } catch (const std::bad_alloc&) {
        // Told by the allocation itself. What was found so far stands.
    }
}

void CMPNT_DiffPins::addComponent(const CMPNT& component, msel* selectors)
{
    if (component.pDiffPins == nullptr) {
        return;
    }
    for (const PIN* pin = component.pPins; pin != nullptr; pin = pin->pNext) {
        if (DIFPIN_Has(component.pDiffPins, pin->szPin)) {
            mUses.try_emplace(pin->szModel, Use{pin, mSelectors.size()});
            addSelector(*pin, MSEL_Find(pin->szModel, selectors));
        }
    }
}

void CMPNT_DiffPins::addSelector(const PIN& pin, msel* selector)
{
    if (selector == nullptr || !mSeen.insert(selector).second) {
        return;
    }
    for (const mselmodel* entry = selector->pModels; entry != nullptr; entry = entry->pNext) {
        mUses.try_emplace(entry->szName, Use{&pin, mSelectors.size()});
    }
    mSelectors.push_back(selector);
}

// What an earlier search has marked needs no second visit: a check of n models stays linear.
void CMPNT_DiffPins::passSelectors(std::size_t count)
{
    for (; muPassed < count; ++muPassed) {
        mSelectors[muPassed]->eDiffUse = 0;
    }
}

bool CMPNT_UsesDiffModel(nuibis_mdl* model, CMPNT_DiffPins& pins, const PIN** pin)
{
    const auto use = pins.mUses.find(model->szName);
    const bool found = use != pins.mUses.end();
    pins.passSelectors(found ? use->second.uiSelectors : pins.mSelectors.size());
    if (!found) {
        return false;
    }
    model->eDiffUse = 0;
    if (pin != nullptr) {
        *pin = use->second.pPin;
    }
    return true;
}
