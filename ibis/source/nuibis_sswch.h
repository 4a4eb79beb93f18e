// [Series Switch Groups]: the states of the series switches, each a line "On Group1 Group2 /" that runs over
// as many lines as it needs until its "/".

#pragma once

#include "ibis/source/nuibis_cmn.h"

struct SPINMPG;

struct SSWCH {
    SSWCH* pNext;
    char szState[8];    ///< "On" or "Off"
    char** ppszGroups;  ///< `iGroupCount` names of at most 20 characters; room for the next power of two
    int iGroupCount;
};

/// A data line; 1 if it was taken. `*out` is the record that the line begins or goes on with, null if there
/// is none. A line without a closing "/" sets `gbExpectContinuation`.
int SSWCH_ReadLine(std::string_view text, SSWCH** out);
/// Whether the record being read is in the list already, as it is when a line goes on with it.
bool SSWCH_Has(SSWCH*& list, const SSWCH* record);
/// Appends.
void SSWCH_Add(SSWCH*& list, SSWCH* record);
void SSWCH_Free(SSWCH* list);

/// Whether any state of the list names the group; exact comparison.
bool SSWCH_HasGroup(const SSWCH* list, std::string_view name);

/// At the end of the file: every group switches a pair of pins.
void SSWCH_CheckAll(const SSWCH* list, const SPINMPG* mappings, const char* component);
