// Lists of texts that belong to others, and counters of names.

#pragma once

#include "ibis/source/nuibis_cmn.h"

#include <initializer_list>

struct STRLIST {
    const char* pszText;  ///< not owned
    STRLIST* pNext;
};

/// A new node at the front; the new head, or null when memory is out.
STRLIST* STRLIST_Add(STRLIST* list, const char* text);
/// The texts one after the other, so that the last of them heads the list.
STRLIST* STRLIST_AddMany(STRLIST* list, std::initializer_list<const char*> texts);
/// No new node if an equal text is there already.
STRLIST* STRLIST_AddUnique(STRLIST* list, const char* text);
void STRLIST_Free(STRLIST* list);

/// Empties the table of counters.
void STRLIST_CountReset();
/// Raises the count of a name; a new name enters with 1.
void STRLIST_CountAdd(const char* name);
/// Count of a name; BUG 2101 and 0 for an unknown one.
int STRLIST_CountGet(const char* name);
