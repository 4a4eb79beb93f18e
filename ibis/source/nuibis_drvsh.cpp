#include "ibis/source/nuibis_drvsh.h"

#include "ibis/source/nuibis_dly.h"
#include "ibis/source/nuibis_field.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_mdl.h"

namespace
{

// A model cannot schedule itself.
void CheckName(std::string_view name, std::string_view modelName)
{
    if (name == modelName) {
        MSG_ErrorLine(4213, name);
    } else if (!CMN_IsNotReserved(name)) {
        MSG_ErrorLine(4214, name);
    }
}

void ReadEntry(drvshmodel& entry, std::string_view text, std::string_view modelName)
{
    const std::string_view name = CMN_NextToken(text);
    if (name.empty()) {
        MSG_ErrorLine(4211);
        return;
    }
    FIELD_SetName(entry.szName, name, FIELD_NameLimit(), 4212);
    CheckName(entry.szName, modelName);
    DLY_Read(text, modelName, &entry.pDelays);
}

void CheckEntry(const drvshmodel& entry, const nuibis_mdl& owner, nuibis_mdl* models)
{
    nuibis_mdl* const model = MDL_Find(entry.szName, models);
    if (model == nullptr) {
        MSG_Error(4207, entry.szName, owner.szName);
        return;
    }
    model->uiReferenced = 1;
    if (model->pDriverSchedule != nullptr) {
        MSG_Error(4208, entry.szName, owner.szName);
    }
    if (MDL_IsOneOf(model->eModelType, MDL_WITHOUT_DRIVER)) {
        MSG_Error(4209, entry.szName, owner.szName);
    }
}

void CheckSchedule(const nuibis_mdl& owner, nuibis_mdl* models)
{
    if (owner.pDriverSchedule == nullptr) {
        return;
    }
    for (const drvshmodel* entry = owner.pDriverSchedule->pModels; entry != nullptr; entry = entry->pNext) {
        CheckEntry(*entry, owner, models);
    }
}

}  // namespace

void DRVSH_Open(std::string_view text, drvsh** field)
{
    FIELD_OpenRecord(text, "Driver Schedule", {4200, 4201, {4202, 4204}}, DRVSH_Free, field);
}

void DRVSH_Line(std::string_view text, drvsh* schedule, std::string_view modelName)
{
    drvshmodel* entry = nullptr;
    if (schedule == nullptr || !CMN_Alloc(entry)) {
        MSG_ErrorLine(4216);
        return;
    }
    ReadEntry(*entry, text, modelName);
    entry->pNext = schedule->pModels;
    schedule->pModels = entry;
}

void DRVSH_Close(const drvsh* schedule, std::string_view modelName)
{
    if (schedule == nullptr || schedule->pModels == nullptr) {
        MSG_Error(4205, modelName);
    } else if (schedule->pModels->pNext == nullptr) {
        MSG_Warning(4206, modelName);
    }
}

void DRVSH_Free(drvsh* schedule)
{
    if (schedule != nullptr) {
        CMN_FreeList(schedule->pModels, [](drvshmodel& entry) { DLY_Free(entry.pDelays); });
        CMN_Free(schedule);
    }
}

void DRVSH_CheckAll(nuibis_mdl* models)
{
    for (const nuibis_mdl* model = models; model != nullptr; model = model->pNext) {
        CheckSchedule(*model, models);
    }
}

void DRVSH_CheckModel(const nuibis_mdl* model, const ibis* root)
{
    CheckSchedule(*model, root->pModels);
}
