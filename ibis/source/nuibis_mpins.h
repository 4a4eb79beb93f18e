// [Merged Pins]: pins of a package that share one connection to the die. The keyword tables do not admit the
// keyword yet; its reader and its checks are ready for it.

#pragma once

#include "ibis/source/nuibis_cmn.h"

/// One merging pin and the pins that connect to it.
struct MPIN {
    MPIN* pNext;
    char szName[6];  ///< the merging pin
    int iCount;      ///< number of connecting pins
    char** ppszPins;
};

/// Forgets the record being read: a new package model begins.
void MPIN_Init();
/// The keyword line; `text` is what follows the bracket. The record goes on the tail of the list; null only
/// when memory is out.
MPIN* MPIN_New(std::string_view text, MPIN*& list);
/// A data line: connecting pins of the record made last.
void MPIN_AddPins(const MPIN* list, std::string_view line);
/// The record made last, or null, and the line of its keyword.
const MPIN* MPIN_GetCurrent();
unsigned MPIN_GetLine();
void MPIN_Free(MPIN* list);
