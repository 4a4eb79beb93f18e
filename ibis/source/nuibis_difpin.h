// [Diff Pin]: the pairs of differential pins, with the receiver's threshold (V) and the delays between the
// two (s).

#pragma once

#include "ibis/source/nuibis_cmn.h"

/// One pair.
struct DIFPIN {
    DIFPIN* pNext;
    int iColumns;      ///< columns found on the line
    char szPin[6];     ///< non-inverting pin
    char szInvPin[6];  ///< inverting pin
    double dVdiff;
    numstat eVdiff;
    double dTdelayTyp;
    numstat eTdelayTyp;
    double dTdelayMin;
    numstat eTdelayMin;
    double dTdelayMax;
    numstat eTdelayMax;
};

/// True if the pin stands in a pair, in either column.
bool DIFPIN_Has(const DIFPIN* list, std::string_view pin);
