// [Repeater Pin]: the receiving side of a repeater and its transmitting side. From 6.0 on.

#pragma once

#include "ibis/source/nuibis_cmn.h"

struct CMPNT;
struct PIN;

struct REPPIN {
    REPPIN* pNext;
    char szPin[6];          ///< pin that receives
    char szTxNonInvPin[6];  ///< non-inverting pin that transmits
};

/// The keyword line; `text` is what follows "[Repeater Pin]".
void REPPIN_ReadHeader(CMPNT* component, std::string_view text);
/// A data line; 1 if a record was made.
int REPPIN_ReadLine(std::string_view text, REPPIN** out);
/// Appends, with no test.
void REPPIN_Add(REPPIN*& list, REPPIN* pair);
void REPPIN_Free(REPPIN* list);

/// At the end of the file: the pins exist, their models receive and transmit through algorithmic models, and
/// each pin stands in one pair only. The pins need not stand in [Diff Pin]: a repeater may be single-ended.
void REPPIN_CheckAll(const REPPIN* list, PIN* pins, const char* component);
