// Tables over time: [Rising Waveform], [Falling Waveform] and their [Composite Current] of a driver, the
// pulse tables of a submodel, and the golden waveforms of [Test Data].
//
// One table is read at a time: WVFRM_Open makes it the current one, a WVFRM_Line for each data line,
// WVFRM_Close.

#pragma once

#include "ibis/source/nuibis_rngp.h"

/// What a table is, which decides what it needs at its end.
enum WVFRM_Mode : int {
    WVFRM_DRIVER = 0,
    WVFRM_PULSE = 1,
    WVFRM_GOLDEN = 2,
    WVFRM_COMPOSITE = 3,
};

/// An item of the circuit that a waveform was taken into: its name in the file and its field.
struct WVFRM_Fixture {
    std::string_view sName;
    double* wvfrm::*ppdField;
};

inline constexpr std::array<WVFRM_Fixture, 9> WVFRM_FIXTURES{{
    {"R_fixture", &wvfrm::pdRFixture},
    {"V_fixture", &wvfrm::pdVFixture},
    {"V_fixture_min", &wvfrm::pdVFixtureMin},
    {"V_fixture_max", &wvfrm::pdVFixtureMax},
    {"C_fixture", &wvfrm::pdCFixture},
    {"L_fixture", &wvfrm::pdLFixture},
    {"R_dut", &wvfrm::pdRDut},
    {"L_dut", &wvfrm::pdLDut},
    {"C_dut", &wvfrm::pdCDut},
}};

/// Labels of the golden waveforms, in the order of their keywords from KEY_RISING_WAVEFORM_NEAR on.
inline constexpr std::array<std::string_view, 8> WVFRM_GOLDEN_LABELS{
    "Rising Waveform Near",       "Rising Waveform Far",       "Falling Waveform Near",
    "Falling Waveform Far",       "Diff Rising Waveform Near", "Diff Rising Waveform Far",
    "Diff Falling Waveform Near", "Diff Falling Waveform Far"};

/// The keyword line: appends a new table to the list that starts at `head` and makes it the current one.
/// `label` is "Rising Waveform", "Falling Waveform", "Composite Current", "GND Pulse", "POWER Pulse" or that
/// of a golden waveform. 1 on success; without memory no table is current.
int WVFRM_Open(std::string_view text, wvfrm*& head, std::string_view label);
/// A data line of the current table, if there is one. `label` is that of the opening, but for the pulse
/// tables, which are "GND Pulse Table" and "POWER Pulse Table" here and at their end.
void WVFRM_Line(std::string_view text, std::string_view label);
/// The end of the current table. `label` is "Rising", "Falling", "Composite Current", "GND Pulse Table",
/// "POWER Pulse Table" or that of a golden waveform.
void WVFRM_Close(std::string_view label, WVFRM_Mode mode);
/// The last table of a list, without a walk for a list that is being read; null for an empty one.
wvfrm* WVFRM_Last(wvfrm*& head);
/// Whether a waveform and its composite current have the same time points; caution 2021 otherwise. `index`
/// counts from 1 within the list, `label` is "Rising" or "Falling".
bool WVFRM_SameTimes(const wvfrm* waveform, const wvfrm* composite, int index, std::string_view modelName,
                     std::string_view label);
/// Frees a list, each table with its fixture, rows and composite. Null is fine.
void WVFRM_Free(wvfrm* list);
