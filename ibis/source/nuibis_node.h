// [Node Declarations]: the internal nodes of a component, to which circuit calls connect ports.

#pragma once

#include "ibis/source/nuibis_cmn.h"

struct CMPNT;

struct NODELIST {
    char* pszName;  ///< null in the head of a list without names
    NODELIST* pNext;
};

/// The keyword line: an empty list.
void NODE_Open(NODELIST*& list);
/// A data line: the names on it. The newest is the first of the list.
void NODE_AddLine(std::string_view text, NODELIST*& list);
/// [End Node Declarations].
void NODE_CheckEmpty(const CMPNT& component);
void NODE_FreeList(NODELIST* list);
