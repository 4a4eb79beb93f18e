// Code files: the executables that the lines of [Algorithmic Model] name. They are never loaded here; what
// counts is whether the file is there and whether the line's platform is the one of this reader.

#pragma once

#include "ibis/source/nuibis_cmn.h"

struct EFILE {
    EFILE* pNext;
    bool bUsable;     ///< a line with this file has passed EFILE_CheckPlatform
    char szName[48];  ///< as the first line that names it writes it
};

/// The record of that name, case-blind; null if there is none.
EFILE* EFILE_Find(std::string_view name);
/// A new record at the front of the root's list; null with a message if there is no root or no memory.
EFILE* EFILE_New(std::string_view name);
/// Whether the file exists (ERROR 5502 if not) and the line is one of 64 bits for Linux; marks the record
/// then.
bool EFILE_CheckPlatform(EFILE* file, int bits, std::string_view platform);
void EFILE_FreeList(EFILE* list);
