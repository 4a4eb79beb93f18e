#include "ibis/source/nuibis_pinpair.h"

#include <utility>

namespace
{

// A place is one of the two columns of a pair: pair i has the places 2 * i and 2 * i + 1.
std::string_view NameAt(std::span<const PINPAIR_Names> pairs, std::size_t place)
{
    const PINPAIR_Names& pair = pairs[place / 2];
    return place % 2 == 0 ? pair.sPin : pair.sPartner;
}

// For each place the next one with the same name; the number of places where there is none.
CMN_Vector<std::size_t> ChainPlaces(std::span<const PINPAIR_Names> pairs)
{
    const std::size_t end = 2 * pairs.size();
    CMN_Vector<std::size_t> next(end, end);
    CMN_Map<std::string_view, std::size_t> first;
    for (std::size_t place = end; place-- > 0;) {
        const auto [entry, isNew] = first.try_emplace(NameAt(pairs, place), place);
        if (!isNew) {
            next[place] = std::exchange(entry->second, place);
        }
    }
    return next;
}

void Report(const char* component, std::string_view name, bool ofPartner, bool laterPartner,
            const PINPAIR_Codes& codes)
{
    if (ofPartner != laterPartner) {
        MSG_Error(ofPartner ? codes.partnerIsPin : codes.pinIsPartner, component, name);
    } else {
        MSG_Warning(ofPartner ? codes.samePartner : codes.samePin, component, name);
    }
}

}  // namespace

void PINPAIR_CheckUnique(std::span<const PINPAIR_Names> pairs, const char* component,
                         const PINPAIR_Codes& codes)
{
    const CMN_Vector<std::size_t> next = ChainPlaces(pairs);
    const std::size_t end = next.size();
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        std::size_t partner = next[2 * i + 1];
        std::size_t pin = next[2 * i];
        if (pin == 2 * i + 1) {
            pin = partner;  // a pin paired with itself is no later pair
        }
        // Both chains ascend: later pairs come in the order of the table, within one its pin first.
        while (pin != end || partner != end) {
            const bool ofPartner = partner / 2 < pin / 2;
            std::size_t& place = ofPartner ? partner : pin;
            Report(component, NameAt(pairs, place), ofPartner, place % 2 != 0, codes);
            place = next[place];
        }
    }
}
