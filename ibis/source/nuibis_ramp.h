// [Ramp]: rise and fall rate of a driver between 20 % and 80 % of its swing, as dV/dt for the three corners,
// and the load that they were taken at. Serves models and submodels.

#pragma once

#include "ibis/source/nuibis_cmn.h"

/// dV in V, dT in s. A pair is meant only where its status is NUM_VALUE.
struct rampline {
    double dTypDv;
    double dTypDt;
    numstat eTyp;
    double dMinDv;
    double dMinDt;
    numstat eMin;
    double dMaxDv;
    double dMaxDt;
    numstat eMax;
};

struct ramp {
    rampline* pRise;       ///< dV/dt_r, null until read
    rampline* pFall;       ///< dV/dt_f, null until read
    double dRLoad;         ///< R_load in Ohm
    std::uint32_t bRLoad;  ///< 1 when R_load was given
};

/// The keyword line: makes `*field`, freeing a ramp that is there already (1300). 1 on success.
int RAMP_Open(std::string_view text, ramp** field);
/// A data line; a null ramp takes none. `modelName` is for messages.
void RAMP_Line(std::string_view text, ramp* record, std::string_view modelName);
/// Errors for the lines that the ramp lacks. R_load may be absent.
void RAMP_Close(const ramp* record);
/// Null is fine.
void RAMP_Free(ramp* record);
