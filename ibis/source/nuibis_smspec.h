// [Submodel Spec]: when a submodel acts, by the pad voltages (V) that trigger it and the delay (s) after
// which it turns off.

#pragma once

#include "ibis/source/nuibis_rng.h"

/// Each triple is null until its line is read.
struct smspec {
    rng* pVTriggerR;  ///< V_trigger_r
    rng* pVTriggerF;  ///< V_trigger_f
    rng* pOffDelay;   ///< Off_delay
};

/// The keyword line: makes `*field`, freeing a block that is there already (2700). It stays null only when
/// memory is out.
void SMSPEC_Open(std::string_view text, smspec** field);
/// A data line; a null block takes none.
void SMSPEC_Line(std::string_view text, smspec* spec, std::string_view submodelName);
/// When the keyword is left: an empty block is reported.
void SMSPEC_Close(const smspec* spec, std::string_view submodelName);
/// Null is fine.
void SMSPEC_Free(smspec* spec);
