#include "ibis/source/nuibis_testdata.h"

#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_testload.h"
#include "ibis/source/nuibis_wvfrm.h"

#include <algorithm>
#include <array>

namespace
{

constexpr unsigned TEST_LOAD_LIMIT = 110;

// Module state, reset by TESTDATA_Init.
TESTDATA* gpCurTestData = nullptr;           // record being read
nuibis_keyword geTestDataKeyword = NOT_KEY;  // keyword whose lines are being read
LIST_Repeats gNames;                         // of the list that is being read

// Golden waveforms ----------------------------------------------------------------------------------------

struct Waveform {
    wvfrm* TESTDATA::*ppField;
    MSG_Plain repeated;
    bool bDifferential;
};

// In the order of their keywords, which is that of their labels.
constexpr std::array<Waveform, WVFRM_GOLDEN_LABELS.size()> WAVEFORMS{{
    {&TESTDATA::pRisingNear, 2304, false},
    {&TESTDATA::pRisingFar, 2306, false},
    {&TESTDATA::pFallingNear, 2305, false},
    {&TESTDATA::pFallingFar, 2307, false},
    {&TESTDATA::pDiffRisingNear, 2308, true},
    {&TESTDATA::pDiffRisingFar, 2310, true},
    {&TESTDATA::pDiffFallingNear, 2309, true},
    {&TESTDATA::pDiffFallingFar, 2311, true},
}};

bool IsWaveform(nuibis_keyword code)
{
    return code >= KEY_RISING_WAVEFORM_NEAR && code <= KEY_DIFF_FALLING_WAVEFORM_FAR;
}

std::size_t RowOf(nuibis_keyword code)
{
    return static_cast<std::size_t>(code - KEY_RISING_WAVEFORM_NEAR);
}

// A second table takes the place of the first.
void OpenWaveform(nuibis_keyword code, std::string_view text)
{
    const Waveform& waveform = WAVEFORMS[RowOf(code)];
    wvfrm*& field = gpCurTestData->*waveform.ppField;
    if (field != nullptr) {
        MSG_ErrorLine(waveform.repeated);
        WVFRM_Free(field);
        field = nullptr;
    }
    WVFRM_Open(text, field, WVFRM_GOLDEN_LABELS[RowOf(code)]);
}

// The record ----------------------------------------------------------------------------------------------

void ReadName(std::string_view text)
{
    static constexpr FIXTURE_NameCodes codes{"Test Data", 2316, 2317, 2318, 2319, 2320};
    FIXTURE_ReadName(text, gpCurTestData->szName, gNames, codes);
}

void ReadSubparameter(std::string_view text)
{
    static constexpr FIXTURE_Codes codes{2324, {2325, 2326, 2327}, {2328, 2329}, 2330, 2331};
    TESTDATA& data = *gpCurTestData;
    const std::string_view name = FIELD_ItemName(text);
    if (name == "Test_data_type") {
        FIXTURE_ReadType(text, name, data.szName, codes, data.eTestDataType);
    } else if (name == "Driver_model") {
        FIXTURE_ReadReference(text, name, data.szName, codes, data.szDriverModel, FIELD_NameLimit());
    } else if (name == "Driver_model_inv") {
        FIXTURE_ReadReference(text, name, data.szName, codes, data.szDriverModelInv, FIELD_NameLimit());
    } else if (name == "Test_load") {
        FIXTURE_ReadReference(text, name, data.szName, codes, data.szTestLoad, TEST_LOAD_LIMIT);
    } else {
        MSG_ErrorLine(2322);
    }
}

void CloseSubparameters()
{
    const TESTDATA& data = *gpCurTestData;
    if (data.eTestDataType == FIXTURE_UNSET) {
        MSG_Error(2332, data.szName, "Test_data_type");
    }
    if (data.szDriverModel[0] == '\0') {
        MSG_Error(2332, data.szName, "Driver_model");
    }
    if (data.szDriverModelInv[0] != '\0' && data.eTestDataType != FIXTURE_DIFFERENTIAL) {
        MSG_Error(2333, data.szName);
    }
    if (data.szTestLoad[0] == '\0') {
        MSG_Error(2332, data.szName, "Test_load");
    }
}

void CloseRecord()
{
    const TESTDATA& data = *gpCurTestData;
    const auto given = [&data](const Waveform& w) { return data.*w.ppField != nullptr; };
    if (std::none_of(WAVEFORMS.begin(), WAVEFORMS.end(), given)) {
        MSG_Error(2334, data.szName);
    }
    if (data.eTestDataType != FIXTURE_DIFFERENTIAL &&
        std::any_of(WAVEFORMS.begin(), WAVEFORMS.end(),
                    [&given](const Waveform& w) { return w.bDifferential && given(w); })) {
        MSG_Error(2335, data.szName);
    }
    gpCurTestData = nullptr;
}

// End of file ---------------------------------------------------------------------------------------------

void CheckModels(const TESTDATA& data, nuibis_mdl* models, CMPNT_DiffPins& pins)
{
    static constexpr MDL_TypeSet receiving =
        MDL_SERIES_TYPES | MDL_Types({MODEL_INPUT, MODEL_INPUT_ECL, MODEL_TERMINATOR});
    static constexpr FIXTURE_ModelRule driver{2338, receiving, 2339, 0};
    static constexpr FIXTURE_ModelRule inverting{2340, receiving, 2339, 2341};
    if (models == nullptr) {
        MSG_Error(2337, data.szName);
        return;
    }
    FIXTURE_CheckModel(data.szDriverModel, data.szName, models, pins, driver);
    FIXTURE_CheckModel(data.szDriverModelInv, data.szName, models, pins, inverting);
}

void CheckLoad(const TESTDATA& data, TESTLOAD* loads)
{
    if (loads == nullptr) {
        MSG_Error(2342, data.szName);
        return;
    }
    if (data.szTestLoad[0] == '\0') {
        return;
    }
    const TESTLOAD* const load = TESTLOAD_Find(data.szTestLoad, loads);
    if (load == nullptr) {
        MSG_Error(2343, data.szTestLoad, data.szName);
    } else if (load->eTestLoadType != data.eTestDataType) {
        MSG_Error(2344, data.szName, data.szTestLoad);
    }
}

}  // namespace

void TESTDATA_Init()
{
    gpCurTestData = nullptr;
    geTestDataKeyword = NOT_KEY;
    ibis* root = nullptr;
    if (!IBIS_GetCurrent(&root)) {
        MSG_Bug(2301);
        return;
    }
    if (!CMN_Alloc(gpCurTestData)) {
        MSG_Bug(2300, __FILE_NAME__, __LINE__);
        return;
    }
    if (root->pTestData == nullptr) {
        gNames.reset();
    }
    IBIS_Add<&ibis::pTestData>(root, gpCurTestData);
}

void TESTDATA_Line(line_type lineType, nuibis_keyword code, std::string_view text)
{
    if (gpCurTestData == nullptr) {
        if (lineType == LINE_KEYWORD) {
            MSG_ErrorLine(2302);
        } else {
            MSG_ErrorLine(2303);
        }
        return;
    }
    const bool isWaveform = IsWaveform(code);
    if (lineType == LINE_KEYWORD) {
        geTestDataKeyword = code;
        if (isWaveform) {
            OpenWaveform(code, text);
        } else if (code == KEY_TEST_DATA) {
            ReadName(text);
        } else {
            MSG_BugLine(2312, __FILE_NAME__, __LINE__);
        }
    } else if (isWaveform) {
        WVFRM_Line(text, WVFRM_GOLDEN_LABELS[RowOf(code)]);
    } else if (code == KEY_TEST_DATA) {
        ReadSubparameter(text);
    } else {
        MSG_ErrorLine(2313);
    }
}

void TESTDATA_Leave(nuibis_keyword newCode)
{
    if (gpCurTestData == nullptr) {
        return;
    }
    if (geTestDataKeyword == KEY_TEST_DATA) {
        CloseSubparameters();
    } else if (IsWaveform(geTestDataKeyword)) {
        WVFRM_Close(WVFRM_GOLDEN_LABELS[RowOf(geTestDataKeyword)], WVFRM_GOLDEN);
    }
    if (!IsWaveform(newCode)) {
        CloseRecord();
    }
}

void TESTDATA_FreeList(TESTDATA* list)
{
    gpCurTestData = nullptr;
    gNames.reset();
    CMN_FreeList(list, [](TESTDATA& data) {
        for (const Waveform& waveform : WAVEFORMS) {
            WVFRM_Free(data.*waveform.ppField);
        }
    });
}

void TESTDATA_CheckAll(const TESTDATA* list)
{
    ibis* root = nullptr;
    if (!IBIS_GetCurrent(&root)) {
        MSG_Bug(2336, __FILE_NAME__, __LINE__);
        return;
    }
    CMPNT_DiffPins pins(root->pComponents, root->pModelSelectors);
    for (; list != nullptr; list = list->pNext) {
        CheckModels(*list, root->pModels, pins);
        CheckLoad(*list, root->pTestLoads);
    }
}

void TESTDATA_CheckDriver(std::string_view model)
{
    ibis* root = nullptr;
    if (!IBIS_GetCurrent(&root)) {
        return;
    }
    for (const TESTDATA* data = root->pTestData; data != nullptr; data = data->pNext) {
        if (model == data->szDriverModel || model == data->szDriverModelInv) {
            CMPNT_DiffPins pins(root->pComponents, root->pModelSelectors);
            CheckModels(*data, root->pModels, pins);
            CheckLoad(*data, root->pTestLoads);
            return;
        }
    }
}
