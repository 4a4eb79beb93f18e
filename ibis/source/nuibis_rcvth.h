// [Receiver Thresholds]: the voltages (V) at which a receiver's timing is taken, and the slew times (s) that
// it holds for.

#pragma once

#include "ibis/source/nuibis_cmn.h"

#include <array>

struct CMPNT;
struct msel;
struct nuibis_mdl;

/// An item that was not given is null.
struct rcvth {
    double* pdVth;
    double* pdVthMin;
    double* pdVthMax;
    double* pdVinhAc;
    double* pdVinhDc;
    double* pdVinlAc;
    double* pdVinlDc;
    double* pdThresholdSensitivity;  ///< change of the threshold with the reference supply, V/V
    char* pszReferenceSupply;        ///< one of the words of RCVTH_SUPPLIES
    double* pdVcrossLow;
    double* pdVcrossHigh;
    double* pdVdiffAc;
    double* pdVdiffDc;
    double* pdTslewAc;
    double* pdTdiffslewAc;
};

/// A number of the block: its name in the file and its field.
struct RCVTH_Number {
    std::string_view sName;
    double* rcvth::*ppdField;
};

inline constexpr std::array<RCVTH_Number, 14> RCVTH_NUMBERS{{
    {"Vth", &rcvth::pdVth},
    {"Vth_min", &rcvth::pdVthMin},
    {"Vth_max", &rcvth::pdVthMax},
    {"Vinh_ac", &rcvth::pdVinhAc},
    {"Vinh_dc", &rcvth::pdVinhDc},
    {"Vinl_ac", &rcvth::pdVinlAc},
    {"Vinl_dc", &rcvth::pdVinlDc},
    {"Threshold_sensitivity", &rcvth::pdThresholdSensitivity},
    {"Vcross_low", &rcvth::pdVcrossLow},
    {"Vcross_high", &rcvth::pdVcrossHigh},
    {"Vdiff_ac", &rcvth::pdVdiffAc},
    {"Vdiff_dc", &rcvth::pdVdiffDc},
    {"Tslew_ac", &rcvth::pdTslewAc},
    {"Tdiffslew_ac", &rcvth::pdTdiffslewAc},
}};

/// The words of Reference_supply, exactly as they are spelt.
inline constexpr std::array<std::string_view, 5> RCVTH_SUPPLIES{"Power_clamp_ref", "Gnd_clamp_ref",
                                                                "Pullup_ref", "Pulldown_ref", "Ext_ref"};

/// The keyword line; a record that is there already is reported and freed. `*field` stays null only when
/// memory is out.
void RCVTH_Open(std::string_view text, rcvth** field);
/// A data line. A null record takes none.
void RCVTH_Line(std::string_view text, rcvth* thresholds);
/// At the end of the block: a sensitivity names its supply.
void RCVTH_Close(const rcvth* thresholds, std::string_view modelName);
/// Null is fine.
void RCVTH_Free(rcvth* thresholds);

/// At the end of the file: whether a receiver stands on a differential pin decides which items it needs.
/// Marks the models that do.
void RCVTH_CheckUse(nuibis_mdl* models, const CMPNT* components, msel* selectors);
