// Rules that [Diff Pin] and [Repeater Pin] share: both are tables of pin pairs, in which a pin should stand
// once.

#pragma once

#include "ibis/source/nuibis_list.h"

#include <span>

/// The two pins of one line. A column that was not given is an empty name.
struct PINPAIR_Names {
    std::string_view sPin;
    std::string_view sPartner;
};

/// What a pair may have in common with a later one, all (component, pin).
struct PINPAIR_Codes {
    MSG_Text2 samePin;       ///< warning
    MSG_Text2 pinIsPartner;  ///< error: its pin is the later one's partner
    MSG_Text2 partnerIsPin;  ///< error: its partner is the later one's pin
    MSG_Text2 samePartner;   ///< warning
};

/// Reports for each pair, and each later one, what they have in common. May throw `std::bad_alloc`.
void PINPAIR_CheckUnique(std::span<const PINPAIR_Names> pairs, const char* component,
                         const PINPAIR_Codes& codes);

/// The same over a list of records, whose members `Pin` and `Partner` hold the two names.
template <auto Pin, auto Partner, class T>
void PINPAIR_CheckUnique(const T* list, const char* component, const PINPAIR_Codes& codes)
try {
    CMN_Vector<PINPAIR_Names> pairs;
    for (; list != nullptr; list = list->pNext) {
        pairs.push_back({list->*Pin, list->*Partner});
    }
    PINPAIR_CheckUnique(pairs, component, codes);
} catch (const std::bad_alloc&) {
    // Told by the allocation itself; the check falls away.
}
