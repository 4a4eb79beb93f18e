// [Series Pin Mapping]: pairs of pins that a series model connects, and for a series switch the function
// group that controls it.

#pragma once

#include "ibis/source/nuibis_cmn.h"

struct CMPNT;
struct PIN;
struct SSWCH;

struct SPINMPG {
    SPINMPG* pNext;
    int iColumns;  ///< columns found on the line
    char szPin1[6];
    char szPin2[6];
    char szModel[41];          ///< model or model selector
    char szFunctionGroup[21];  ///< function_table_group; empty if not given
};

/// The keyword line; `text` is what follows "[Series Pin Mapping]". A second keyword begins the table anew.
void SPINMPG_ReadHeader(CMPNT* component, std::string_view text);
/// A data line; 1 if a record was made.
int SPINMPG_ReadLine(std::string_view text, int headerColumns, SPINMPG** out);
/// Appends, with no test.
void SPINMPG_Add(SPINMPG*& list, SPINMPG* mapping);
void SPINMPG_Free(SPINMPG* list);

/// True if the pin stands in the list, in either column.
bool SPINMPG_Has(const SPINMPG* list, std::string_view pin);

/// At the end of the file: the pins exist, and each model is a series model that fits the presence of a
/// function group. The lookup marks a model as referenced.
void SPINMPG_CheckAll(const SPINMPG* list, PIN* pins, const char* component, const SSWCH* groups);
