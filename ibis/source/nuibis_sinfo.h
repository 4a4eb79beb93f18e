// The elements of a Series or Series_switch model: one set for a Series model, one for each state of a switch
// ([On], [Off]).

#pragma once

#include "ibis/source/nuibis_keyword.h"
#include "ibis/source/nuibis_smos.h"

struct rng;

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

/// A keyword of one triple, with its label in messages.
struct SINFO_Triple {
    nuibis_keyword eCode;
    std::string_view sLabel;
    rng* sinfo::*ppField;
};

inline constexpr std::array<SINFO_Triple, 6> SINFO_TRIPLES{{
    {KEY_R_SERIES, "R_series", &sinfo::pRSeries},
    {KEY_L_SERIES, "L_series", &sinfo::pLSeries},
    {KEY_RL_SERIES, "Rl_series", &sinfo::pRlSeries},
    {KEY_C_SERIES, "C_series", &sinfo::pCSeries},
    {KEY_LC_SERIES, "Lc_series", &sinfo::pLcSeries},
    {KEY_RC_SERIES, "Rc_series", &sinfo::pRcSeries},
}};

/// An empty set. 1, or 0 when memory is out.
int SINFO_Create(sinfo** out);
/// The line of [On] or [Off], which is also the label: makes `*field`, freeing a set that is there already
/// (2900). 1 when the set exists.
int SINFO_Open(std::string_view text, sinfo** field, std::string_view label);
/// At the end of a model: the set has elements, and those that need each other. `set` is not null.
void SINFO_Check(const sinfo* set, std::string_view modelName, std::string_view label);
/// The set with all its elements. Null is fine.
void SINFO_Free(sinfo* set);
