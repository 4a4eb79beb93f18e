// The elements of a Series or Series_switch model: one set for a Series model, one for each state of a switch
// ([On], [Off]).

#pragma once

#include "ibis/source/nuibis_cmn.h"

struct rng;
struct crv;
struct smos;

/// An element that was not given is null. Resistances in Ohm, inductances in H, capacitances in F.
struct sinfo {
    rng* pRSeries;        ///< [R Series]
    rng* pLSeries;        ///< [L Series]
    rng* pRlSeries;       ///< [Rl Series]
    rng* pCSeries;        ///< [C Series]
    rng* pRcSeries;       ///< [Rc Series]
    rng* pLcSeries;       ///< [Lc Series]
    crv* pSeriesCurrent;  ///< [Series Current]
    smos* pSeriesMosfet;  ///< [Series MOSFET], file order
};

/// An empty set. 1, or 0 when memory is out.
int SINFO_Create(sinfo** out);
/// The line of [On] or [Off], which is also the label: makes `*field`, freeing a set that is there already
/// (2900). 1 when the set exists.
int SINFO_Open(std::string_view text, sinfo** field, std::string_view label);
/// At the end of a model: the set has elements, and those that need each other. `set` is not null.
void SINFO_Check(const sinfo* set, std::string_view modelName, std::string_view label);
/// The set with all its elements. Null is fine.
void SINFO_Free(sinfo* set);
