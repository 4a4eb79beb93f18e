// [Pin Mapping]: the power and ground buses that each pin's pulldown, pullup, clamps and external reference
// connect to.

#pragma once

#include "ibis/source/nuibis_cmn.h"

struct CMPNT;
struct PIN;

/// An empty reference was not given; "NC" is a bus that is not connected.
struct PINMPG {
    PINMPG* pNext;
    int iColumns;  ///< columns found on the line
    char szPin[6];
    char szPulldownRef[16];
    char szPullupRef[16];
    char szGndClampRef[16];
    char szPowerClampRef[16];
    char szExtRef[16];
};

/// The keyword line; `text` is what follows "[Pin Mapping]".
void PINMPG_ReadHeader(CMPNT* component, std::string_view text);
/// A data line; 1 if a record was made.
int PINMPG_ReadLine(std::string_view text, int headerColumns, PINMPG** out);
/// Appends; a pin that is there already is reported (708) and appended all the same.
void PINMPG_Add(PINMPG*& list, PINMPG* mapping);
void PINMPG_Free(PINMPG* list);

/// Exact comparison; null if the pin has no mapping.
PINMPG* PINMPG_Find(PINMPG* list, std::string_view pin);
bool PINMPG_HasPin(PINMPG* list, std::string_view pin);
/// The pullup or pulldown reference of a pin, or null.
const char* PINMPG_GetRef(PINMPG* list, std::string_view pin, bool pullup);

/// At the end of the file: each bus reaches a POWER or GND pin, and rails map as rails usually do.
void PINMPG_CheckAll(PINMPG* list, PIN* pins, const char* component);
