// The delays (s) of one line of [Driver Schedule]: when the scheduled model turns on and off at a rising and
// at a falling edge.

#pragma once

#include "ibis/source/nuibis_cmn.h"

/// A delay is meant only where its status is NUM_VALUE.
struct dly {
    double dRiseOn;
    numstat eRiseOn;
    double dRiseOff;
    numstat eRiseOff;
    double dFallOn;
    numstat eFallOn;
    double dFallOff;
    numstat eFallOff;
};

/// Reads the four delays from what follows the model's name. `modelName` is that of the model with the
/// schedule. 1 when all is in order; the record is made in any case, null only when memory is out.
int DLY_Read(std::string_view text, std::string_view modelName, dly** out);
/// Null is fine.
void DLY_Free(dly* delays);
