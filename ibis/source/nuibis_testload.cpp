#include "ibis/source/nuibis_testload.h"

#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_ibis.h"

#include <array>

namespace
{

// Module state, reset by TESTLOAD_Init.
TESTLOAD* gpCurTestLoad = nullptr;  // record being read
LIST_Repeats gNames;                // of the list that is being read

LIST_Index<TESTLOAD, &TESTLOAD::szName> gLoads;  // follows the list that was last looked into

constexpr FIXTURE_Codes CODES{2216, {2217, 2218, 2219}, {2220, 2221}, 2222, 2223};

struct Number {
    std::string_view sName;
    double* TESTLOAD::*ppdField;
};

constexpr auto NUMBERS = std::to_array<Number>({
    {"C1_near", &TESTLOAD::pdC1_near},
    {"Rs_near", &TESTLOAD::pdRs_near},
    {"Ls_near", &TESTLOAD::pdLs_near},
    {"C2_near", &TESTLOAD::pdC2_near},
    {"Rp1_near", &TESTLOAD::pdRp1_near},
    {"Rp2_near", &TESTLOAD::pdRp2_near},
    {"Td", &TESTLOAD::pdTd},
    {"Zo", &TESTLOAD::pdZo},
    {"Rp1_far", &TESTLOAD::pdRp1_far},
    {"Rp2_far", &TESTLOAD::pdRp2_far},
    {"C2_far", &TESTLOAD::pdC2_far},
    {"Ls_far", &TESTLOAD::pdLs_far},
    {"Rs_far", &TESTLOAD::pdRs_far},
    {"C1_far", &TESTLOAD::pdC1_far},
    {"R_diff_near", &TESTLOAD::pdR_diff_near},
    {"R_diff_far", &TESTLOAD::pdR_diff_far},
});

constexpr std::array<FIELD_Triple<TESTLOAD>, 2> VOLTAGES{{
    {"V_term1", &TESTLOAD::pV_term1},
    {"V_term2", &TESTLOAD::pV_term2},
}};

void ReadName(std::string_view text)
{
    static constexpr FIXTURE_NameCodes codes{"Test Load", 2208, 2209, 2210, 2211, 2212};
    FIXTURE_ReadName(text, gpCurTestLoad->szName, gNames, codes);
}

void ReadNumber(const Number& number, std::string_view text)
{
    static constexpr FIELD_ScalarCodes codes{2218, 2219, 2238, 0};
    double*& field = gpCurTestLoad->*number.ppdField;
    if (field != nullptr) {
        MSG_ErrorLine(2237, number.sName);
        return;
    }
    FIELD_NewScalar(text, number.sName, "Test Load", codes, &field);
}

void ReadVoltage(const FIELD_Triple<TESTLOAD>& voltage, std::string_view text)
{
    rng*& field = gpCurTestLoad->*voltage.ppField;
    if (field != nullptr) {
        MSG_ErrorLine(2216, voltage.sName, gpCurTestLoad->szName);
        return;
    }
    FIELD_ReadTriple(text, voltage.sName, 2239, &field);
}

void ReadSubparameter(std::string_view text)
{
    TESTLOAD& load = *gpCurTestLoad;
    const std::string_view name = FIELD_ItemName(text);
    if (const Number* number = FIELD_FindByName(NUMBERS, name); number != nullptr) {
        ReadNumber(*number, text);
    } else if (const auto* voltage = FIELD_FindByName(VOLTAGES, name); voltage != nullptr) {
        ReadVoltage(*voltage, text);
    } else if (name == "Test_load_type") {
        FIXTURE_ReadType(text, name, load.szName, CODES, load.eTestLoadType);
    } else if (name == "Receiver_model") {
        FIXTURE_ReadReference(text, name, load.szName, CODES, load.szReceiverModel, FIELD_NameLimit());
    } else if (name == "Receiver_model_inv") {
        FIXTURE_ReadReference(text, name, load.szName, CODES, load.szReceiverModelInv, FIELD_NameLimit());
    } else {
        MSG_ErrorLine(2214);
    }
}

void CheckNetwork(const TESTLOAD& load)
{
    if (load.pdTd != nullptr && load.pdZo == nullptr) {
        MSG_Error(2225, load.szName);
    }
    if ((load.pdRp1_near != nullptr || load.pdRp1_far != nullptr) && load.pV_term1 == nullptr) {
        MSG_Error(2226, load.szName);
    }
    if ((load.pdRp2_near != nullptr || load.pdRp2_far != nullptr) && load.pV_term2 == nullptr) {
        MSG_Error(2227, load.szName);
    }
}

// What only a differential load can have.
void CheckSingleEnded(const TESTLOAD& load)
{
    if (load.pdR_diff_near != nullptr) {
        MSG_Warning(2228, load.szName);
    }
    if (load.pdR_diff_far != nullptr) {
        MSG_Warning(2229, load.szName);
    }
    if (load.szReceiverModelInv[0] != '\0') {
        MSG_Warning(2230, load.szName);
    }
}

void CheckModels(const TESTLOAD& load, nuibis_mdl* models, CMPNT_DiffPins& pins)
{
    static constexpr MDL_TypeSet driving =
        MDL_SERIES_TYPES | MDL_Types({MODEL_OUTPUT, MODEL_3STATE, MODEL_OPEN_DRAIN, MODEL_OPEN_SINK,
                                      MODEL_OPEN_SOURCE, MODEL_OUTPUT_ECL, MODEL_3STATE_ECL});
    static constexpr FIXTURE_ModelRule receiver{2233, driving, 2234, 0};
    static constexpr FIXTURE_ModelRule inverting{2235, driving, 2234, 2236};
    if (models == nullptr) {
        MSG_Error(2232, load.szName);
        return;
    }
    FIXTURE_CheckModel(load.szReceiverModel, load.szName, models, pins, receiver);
    FIXTURE_CheckModel(load.szReceiverModelInv, load.szName, models, pins, inverting);
}

}  // namespace

void TESTLOAD_Init()
{
    gpCurTestLoad = nullptr;
    ibis* root = nullptr;
    if (!IBIS_GetCurrent(&root)) {
        MSG_Bug(2201);
        return;
    }
    if (!CMN_Alloc(gpCurTestLoad)) {
        MSG_Bug(2200, __FILE_NAME__, __LINE__);
        return;
    }
    if (root->pTestLoads == nullptr) {
        gNames.reset();
    }
    IBIS_Add<&ibis::pTestLoads>(root, gpCurTestLoad);
}

void TESTLOAD_Line(line_type lineType, nuibis_keyword code, std::string_view text)
{
    if (gpCurTestLoad == nullptr) {
        if (lineType == LINE_KEYWORD) {
            MSG_ErrorLine(2202);
        } else {
            MSG_ErrorLine(2203);
        }
    } else if (code != KEY_TEST_LOAD) {
        MSG_BugLine(2204, __FILE_NAME__, __LINE__);
    } else if (lineType == LINE_KEYWORD) {
        ReadName(text);
    } else {
        ReadSubparameter(text);
    }
}

// The group has one keyword, so that any other ends the record.
void TESTLOAD_Leave(nuibis_keyword)
{
    if (gpCurTestLoad == nullptr) {
        return;
    }
    const TESTLOAD& load = *gpCurTestLoad;
    if (load.eTestLoadType == FIXTURE_UNSET) {
        MSG_Error(2224, load.szName, "Test_load_type");
    }
    CheckNetwork(load);
    if (load.eTestLoadType != FIXTURE_DIFFERENTIAL) {
        CheckSingleEnded(load);
    }
    gpCurTestLoad = nullptr;
}

void TESTLOAD_FreeList(TESTLOAD* list)
{
    gpCurTestLoad = nullptr;
    gNames.reset();
    gLoads.reset();
    CMN_FreeList(list, [](TESTLOAD& load) {
        for (const Number& number : NUMBERS) {
            CMN_Release(load.*number.ppdField);
        }
        for (const auto& voltage : VOLTAGES) {
            RNG_Free(load.*voltage.ppField);
        }
    });
}

TESTLOAD* TESTLOAD_Find(std::string_view name, TESTLOAD* list)
{
    return gLoads.find(list, name);
}

void TESTLOAD_CheckAll(const TESTLOAD* list)
{
    ibis* root = nullptr;
    if (!IBIS_GetCurrent(&root)) {
        MSG_Bug(2231, __FILE_NAME__, __LINE__);
        return;
    }
    CMPNT_DiffPins pins(root->pComponents, root->pModelSelectors);
    for (; list != nullptr; list = list->pNext) {
        CheckModels(*list, root->pModels, pins);
    }
}
