// What a model may hold, by the names of the file format, in the order in which it is shown.

#pragma once

#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_submdl.h"

#include <string_view>

/// A field of a record and its name in the file.
template <class Record, class Value> struct Item {
    const char* pszName;
    Value* Record::*ppField;
};

inline constexpr Item<nuibis_mdl, double> MODEL_SCALARS[]{
    {"Vinl", &nuibis_mdl::pdVinl},          {"Vinh", &nuibis_mdl::pdVinh},
    {"Vmeas", &nuibis_mdl::pdVmeas},        {"Cref", &nuibis_mdl::pdCref},
    {"Rref", &nuibis_mdl::pdRref},          {"Vref", &nuibis_mdl::pdVref},
    {"Cref_diff", &nuibis_mdl::pdCrefDiff}, {"Rref_diff", &nuibis_mdl::pdRrefDiff},
};

inline constexpr Item<nuibis_mdl, rng> MODEL_TRIPLES[]{
    {"C_comp", &nuibis_mdl::pCComp},
    {"C_comp_pullup", &nuibis_mdl::pCCompPullup},
    {"C_comp_pulldown", &nuibis_mdl::pCCompPulldown},
    {"C_comp_power_clamp", &nuibis_mdl::pCCompPowerClamp},
    {"C_comp_gnd_clamp", &nuibis_mdl::pCCompGndClamp},
    {"Temperature Range", &nuibis_mdl::pTempRange},
    {"Voltage Range", &nuibis_mdl::pVoltageRange},
    {"Pullup Reference", &nuibis_mdl::pPullupRef},
    {"Pulldown Reference", &nuibis_mdl::pPulldownRef},
    {"POWER Clamp Reference", &nuibis_mdl::pPowerClampRef},
    {"GND Clamp Reference", &nuibis_mdl::pGndClampRef},
    {"External Reference", &nuibis_mdl::pExternalRef},
    {"TTgnd", &nuibis_mdl::pTTgnd},
    {"TTpower", &nuibis_mdl::pTTpower},
    {"Rgnd", &nuibis_mdl::pRgnd},
    {"Rpower", &nuibis_mdl::pRpower},
    {"Rac", &nuibis_mdl::pRac},
    {"Cac", &nuibis_mdl::pCac},
};

inline constexpr Item<nuibis_mdl, crv> MODEL_TABLES[]{
    {"Pulldown", &nuibis_mdl::pPulldown},  {"Pullup", &nuibis_mdl::pPullup},
    {"GND Clamp", &nuibis_mdl::pGndClamp}, {"POWER Clamp", &nuibis_mdl::pPowerClamp},
    {"ISSO_PD", &nuibis_mdl::pIssoPd},     {"ISSO_PU", &nuibis_mdl::pIssoPu},
};

inline constexpr Item<submdl, crv> SUBMODEL_TABLES[]{
    {"Pulldown", &submdl::pPulldown},
    {"Pullup", &submdl::pPullup},
    {"GND Clamp", &submdl::pGndClamp},
    {"POWER Clamp", &submdl::pPowerClamp},
};

inline constexpr Item<submdl, wvfrm> SUBMODEL_WAVEFORMS[]{
    {"Rising Waveform", &submdl::pRising},
    {"Falling Waveform", &submdl::pFalling},
    {"GND Pulse Table", &submdl::pGndPulse},
    {"POWER Pulse Table", &submdl::pPowerPulse},
};
