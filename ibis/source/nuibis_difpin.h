// [Diff Pin]: the pairs of differential pins, with the receiver's threshold (V) and the delays between the
// two (s).

#pragma once

#include "ibis/source/nuibis_cmn.h"

struct CMPNT;
struct PIN;

/// One pair. "NA" in a value column counts as a number: 0.0, and for tdelay_max the typical delay.
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

/// The keyword line; `text` is what follows "[Diff Pin]".
void DIFPIN_ReadHeader(CMPNT* component, std::string_view text);
/// A data line; 1 if a record was made.
int DIFPIN_ReadLine(std::string_view text, int headerColumns, DIFPIN** out);
/// Appends, with no test.
void DIFPIN_Add(DIFPIN*& list, DIFPIN* pair);
void DIFPIN_Free(DIFPIN* list);

/// True if the pin stands in a pair, in either column.
bool DIFPIN_Has(const DIFPIN* list, std::string_view pin);

/// At the end of the file: the pins exist, and each stands in one pair only.
void DIFPIN_CheckAll(const DIFPIN* list, PIN* pins, const char* component);
