// [Alternate Package Models]: further package models that a component may come in.

#pragma once

#include "ibis/source/nuibis_cmn.h"

struct APKG {
    APKG* pNext;
    char szName[41];
};

/// A data line: the whole line is one name, appended to the list.
void APKG_Line(APKG*& list, std::string_view text);
/// The list's check at [End Alternate Package Models].
void APKG_Close(const APKG* list);
void APKG_Free(APKG* list);
