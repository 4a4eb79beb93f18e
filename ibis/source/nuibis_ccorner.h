// [C Comp Corner]: the die capacitances (F) at the corners of the process, where C_comp gives their extremes
// whatever the corner.

#pragma once

#include "ibis/source/nuibis_cmn.h"

struct rng;

/// An item that was not given is null.
struct ccorner {
    rng* pCComp;
    rng* pCCompPullup;
    rng* pCCompPulldown;
    rng* pCCompPowerClamp;
    rng* pCCompGndClamp;
};

/// The keyword line; a record that is there already is reported and freed. `*field` stays null only when
/// memory is out.
void CCORNER_Open(std::string_view text, ccorner** field);
/// A data line. A null record takes none.
void CCORNER_Line(std::string_view text, ccorner* corner);
/// At the end of the block: it holds an item, and either the whole capacitance or its parts.
void CCORNER_Close(const ccorner* corner, std::string_view modelName);
/// Null is fine.
void CCORNER_Free(ccorner* corner);
