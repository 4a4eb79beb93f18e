// [Initial Delay] from 6.1 on: the time (s) that the tables of a model or submodel take before they begin to
// move, cut from their front.

#pragma once

#include "ibis/source/nuibis_cmn.h"

struct rng;

/// An item that was not given is null.
struct idly {
    rng* pVT;  ///< V-T: of the waveforms
    rng* pIT;  ///< I-T: of the composite currents
};

/// The keyword line; a record that is there already is reported and freed. `*field` stays null only when
/// memory is out.
void IDLY_Open(std::string_view text, idly** field);
/// A data line. A null record takes none.
void IDLY_Line(idly* delay, std::string_view text);
/// At the end of the block within a submodel: it holds an item. `label` is "SubModel". A model's block has no
/// such test; what it holds is checked with the whole model.
void IDLY_Close(const idly* delay, std::string_view ownerName, std::string_view label);
/// Null is fine.
void IDLY_Free(idly* delay);
