// [Submodel]: a partial buffer that models pull in by [Add Submodel]: a dynamic clamp, a bus hold, or a
// fall-back driver. Its tables, ramp and waveforms are those of a model.

#pragma once

#include "ibis/source/nuibis_cmn.h"
#include "ibis/source/nuibis_keyword.h"

struct crv;
struct idly;
struct ramp;
struct smspec;
struct wvfrm;

/// Submodel_type.
enum submdl_type : std::uint32_t {
    SUBMDL_UNSEEN = 0,
    SUBMDL_NO_TYPE = 1,  ///< given, but not understood
    SUBMDL_DYNAMIC_CLAMP = 2,
    SUBMDL_BUS_HOLD = 3,
    SUBMDL_FALL_BACK = 4,
};

/// The types as files write them, from SUBMDL_DYNAMIC_CLAMP on.
inline constexpr std::array<const char*, 3> SUBMDL_TYPE_WORDS{"Dynamic_clamp", "Bus_hold", "Fall_back"};

/// The word of a type; null for one that was not given or not understood.
constexpr const char* SUBMDL_TypeWord(submdl_type type)
{
    const std::size_t row = std::size_t{type} - SUBMDL_DYNAMIC_CLAMP;
    return row < SUBMDL_TYPE_WORDS.size() ? SUBMDL_TYPE_WORDS[row] : nullptr;
}

struct submdl {
    submdl* pNext;
    char szName[41];
    submdl_type eSubmodelType;
    crv* pPulldown;       ///< [Pulldown]
    crv* pPullup;         ///< [Pullup]
    crv* pGndClamp;       ///< [GND Clamp]
    crv* pPowerClamp;     ///< [POWER Clamp]
    ramp* pRamp;          ///< [Ramp]
    wvfrm* pRising;       ///< [Rising Waveform], file order
    wvfrm* pFalling;      ///< [Falling Waveform], file order
    wvfrm* pGndPulse;     ///< [GND Pulse Table]
    wvfrm* pPowerPulse;   ///< [POWER Pulse Table]
    idly* pInitialDelay;  ///< [Initial Delay], from 6.1 on
    smspec* pSpec;        ///< [Submodel Spec]
};

void SUBMDL_Init();
void SUBMDL_Line(line_type lineType, nuibis_keyword code, std::string_view text);
void SUBMDL_Leave(nuibis_keyword newCode);
void SUBMDL_FreeList(submdl* list);

/// The rules of a whole submodel: what each type needs and must not have, and its trigger voltages against
/// its waveforms.
void SUBMDL_Validate(const submdl& submodel);
/// Exact comparison, first match of the list; null if absent.
submdl* SUBMDL_Find(std::string_view name, submdl* list);
