// R/L/C sections: one stretch of a path through a package or a board, written "Len=0.5 L=8n C=3p R=0.1 /".
// Len counts in the file's own unit of length; L (H), C (F) and R (Ohm) are per that unit, or lumped where
// Len is 0.

#pragma once

#include "ibis/source/nuibis_cmn.h"

/// One section; a pointer is null where the subparameter was not given.
struct SECT {
    double* pdLen;
    double* pdL;
    double* pdR;
    double* pdC;
};

/// A section of four null pointers. 1, or BUG 3014 and 0.
int SECT_New(SECT** out);
/// Null is fine.
void SECT_Free(SECT* section);

/// Takes the next section, up to its "/", off the cursor. Gives 1 and the section, 1 and null where no
/// section is left, or 0 for a section whose "/" is missing.
int SECT_ParseNext(std::string_view& cursor, SECT** out);

struct SECT_NameCodes {
    MSG_Text1 equals;  ///< holds a "="
    MSG_Text1 slash;   ///< holds a "/"
    MSG_Text1 word;    ///< is itself a word of the path grammar
};

/// Warns of the name of a pin or a node that looks like a slip in a path.
void SECT_WarnName(std::string_view name, const SECT_NameCodes& codes);
