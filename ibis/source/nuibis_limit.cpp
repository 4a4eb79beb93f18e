#include "ibis/source/nuibis_limit.h"

#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_corner.h"
#include "ibis/source/nuibis_list.h"
#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_node.h"
#include "ibis/source/nuibis_pin.h"
#include "ibis/source/nuibis_pkg.h"
#include "ibis/source/nuibis_submdl.h"

namespace
{

bool gbLimitChecks = true;  // written by LIMIT_SetChecks alone

// Scales to the units of the messages.
constexpr double TO_NANO = 1e9;
constexpr double TO_PICO = 1e12;

constexpr double RAMP_TIME_LIMIT = 0.001;  // s

// (name, corner, value, low, high)
using RangeMessage =
    MSG_Site<MSG_Kind::Text, MSG_Kind::Text, MSG_Kind::Float, MSG_Kind::Float, MSG_Kind::Float>;

struct Range {
    double dLow;
    double dHigh;
    double dScale;  // from the value to what the message prints
    RangeMessage message;
};

void CheckRange(const rng* values, const char* name, const Range& range)
{
    for (const nuibis_corner corner : CORNERS) {
        if (values == nullptr) {
            return;
        }
        const CORNER_Value value = CORNER_At(*values, corner);
        if (value.eStatus == NUM_VALUE && (value.dValue < range.dLow || value.dValue > range.dHigh)) {
            MSG_Warning(range.message, name, CORNER_Name(corner), value.dValue * range.dScale,
                        range.dLow * range.dScale, range.dHigh * range.dScale);
        }
    }
}

// Models --------------------------------------------------------------------------------------------------

constexpr double C_COMP_LIMIT = 1e-9;  // F

struct Capacitance {
    rng* nuibis_mdl::*ppField;
    RangeMessage message;
};

constexpr std::array<Capacitance, 5> CAPACITANCES{{
    {&nuibis_mdl::pCComp, 1716},
    {&nuibis_mdl::pCCompPullup, 1717},
    {&nuibis_mdl::pCCompPulldown, 1718},
    {&nuibis_mdl::pCCompPowerClamp, 1719},
    {&nuibis_mdl::pCCompGndClamp, 1720},
}};

void CheckRampLine(const rampline* line, const char* context, const char* name, const char* edge)
{
    for (const nuibis_corner corner : CORNERS) {
        if (line == nullptr) {
            return;
        }
        const CORNER_Value time = CORNER_RampTime(*line, corner);
        if (time.eStatus == NUM_VALUE && time.dValue > RAMP_TIME_LIMIT) {
            MSG_Warning(1703, context, name, CORNER_Name(corner), edge, time.dValue * TO_NANO,
                        RAMP_TIME_LIMIT * TO_NANO);
        }
    }
}

void CheckRampTimes(const ramp* record, const char* context, const char* name)
{
    if (record != nullptr) {
        CheckRampLine(record->pRise, context, name, "Rising");
        CheckRampLine(record->pFall, context, name, "Falling");
    }
}

// A table that drivers of some types are expected to have.
struct Expected {
    MDL_TypeSet uiTypes;
    crv* nuibis_mdl::*ppTable;
    MSG_Text1 missing;  // (model)
};

constexpr MDL_TypeSet PUSH_PULL =
    MDL_Types({MODEL_OUTPUT, MODEL_IO, MODEL_3STATE, MODEL_OUTPUT_ECL, MODEL_IO_ECL, MODEL_3STATE_ECL});

constexpr std::array<Expected, 4> EXPECTED{{
    {PUSH_PULL, &nuibis_mdl::pPullup, 1704},
    {PUSH_PULL, &nuibis_mdl::pPulldown, 1705},
    {MDL_OPEN_LOW, &nuibis_mdl::pPulldown, 1706},
    {MDL_OPEN_HIGH, &nuibis_mdl::pPullup, 1707},
}};

void CheckDrive(const nuibis_mdl& model)
{
    for (const Expected& table : EXPECTED) {
        if (MDL_IsOneOf(model.eModelType, table.uiTypes) && model.*table.ppTable == nullptr) {
            MSG_Warning(table.missing, model.szName);
        }
    }
}

// Components ----------------------------------------------------------------------------------------------

constexpr double R_LIMIT = 50.0;  // Ohm
constexpr double L_LIMIT = 1e-6;  // H
constexpr double C_LIMIT = 1e-9;  // F

struct PackageValue {
    rng* PKG::*ppField;
    Range range;
    MSG_Text1 wrongOrder;  // (component)
};

constexpr std::array<PackageValue, 3> PACKAGE_VALUES{{
    {&PKG::pRpkg, {0.0, R_LIMIT, 1.0, 1710}, 1711},
    {&PKG::pLpkg, {0.0, L_LIMIT, TO_NANO, 1712}, 1713},
    {&PKG::pCpkg, {0.0, C_LIMIT, TO_PICO, 1714}, 1715},
}};

void CheckPackage(const CMPNT& component)
{
    for (const PackageValue& value : PACKAGE_VALUES) {
        const rng* const values = component.pPackage->*value.ppField;
        CheckRange(values, component.szName, value.range);
        RNG_CheckMinMax(values, value.wrongOrder, component.szName);
    }
}

struct PinValue {
    double PIN::*pdValue;
    numstat PIN::*peStatus;
    double dLimit;
    double dScale;
    double dPrintedLimit;
    MSG_Site<MSG_Kind::Text, MSG_Kind::Text, MSG_Kind::Float, MSG_Kind::Float> tooLarge;
};

constexpr std::array<PinValue, 3> PIN_VALUES{{
    {&PIN::dRpin, &PIN::eRpin, R_LIMIT, 1.0, 50.0, 1700},
    {&PIN::dLpin, &PIN::eLpin, L_LIMIT, TO_NANO, 1000.0, 1701},
    {&PIN::dCpin, &PIN::eCpin, C_LIMIT, TO_PICO, 1000.0, 1702},
}};

void CheckPins(const CMPNT& component)
{
    for (const PIN* pin = component.pPins; pin != nullptr; pin = pin->pNext) {
        for (const PinValue& value : PIN_VALUES) {
            if (pin->*value.peStatus == NUM_VALUE && pin->*value.pdValue > value.dLimit) {
                MSG_Warning(value.tooLarge, component.szName, pin->szPin, pin->*value.pdValue * value.dScale,
                            value.dPrintedLimit);
            }
        }
    }
}

// A node is one net of its own.
void CheckNodes(const CMPNT& component)
try {
    if (component.pNodes == nullptr || component.pNodes->pszName == nullptr) {
        return;  // the keyword alone declares nothing
    }
    CMN_Set<std::string_view> names;
    for (const NODELIST* node = component.pNodes; node != nullptr; node = node->pNext) {
        if (!names.insert(node->pszName).second) {
            MSG_Error(1708, component.szName, node->pszName);
        }
    }
    for (const NODELIST* node = component.pNodes; node != nullptr; node = node->pNext) {
        if (PIN_Exists(component.pPins, node->pszName)) {
            MSG_Error(1709, component.szName, node->pszName, node->pszName);
        }
    }
} catch (const std::bad_alloc&) {
    // Told by the allocation itself.
}

}  // namespace

void LIMIT_CheckModels(const nuibis_mdl* models)
{
    for (; models != nullptr; models = models->pNext) {
        LIMIT_CheckModel(models);
    }
}

void LIMIT_CheckModel(const nuibis_mdl* model)
{
    if (!gbLimitChecks) {
        return;
    }
    for (const Capacitance& capacitance : CAPACITANCES) {
        CheckRange(model->*capacitance.ppField, model->szName,
                   {0.0, C_COMP_LIMIT, TO_PICO, capacitance.message});
    }
    CheckRampTimes(model->pRamp, "Model", model->szName);
    if (model->pExternalModel == nullptr) {
        CheckDrive(*model);
    }
}

void LIMIT_CheckSubmodels(const submdl* submodels)
{
    for (; gbLimitChecks && submodels != nullptr; submodels = submodels->pNext) {
        CheckRampTimes(submodels->pRamp, "Sub Model", submodels->szName);
    }
}

void LIMIT_CheckComponents(const CMPNT* components)
{
    for (; components != nullptr; components = components->pNext) {
        LIMIT_CheckComponent(components);
    }
}

void LIMIT_CheckComponent(const CMPNT* component)
{
    if (!gbLimitChecks) {
        return;
    }
    if (component->pPackage != nullptr) {
        CheckPackage(*component);
    }
    CheckPins(*component);
    CheckNodes(*component);
}

void LIMIT_SetChecks(bool on)
{
    gbLimitChecks = on;
}
