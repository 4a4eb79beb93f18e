#include "ibis/source/nuibis_names.h"

#include <utility>

namespace
{

constexpr unsigned FIRST_BITS = 6;
constexpr std::size_t PROBES = 8;  // slots, one behind the other, that a hash has

// Different names give different numbers.
std::uint64_t NumberOf(std::string_view name)
{
    std::uint64_t number = name.size();
    for (const char c : name) {
        number = number << 8 | static_cast<unsigned char>(c);
    }
    return number;
}

}  // namespace

std::size_t NAMES_Places::slotOf(std::uint64_t name) const
{
    constexpr std::uint64_t golden = 0x9E3779B97F4A7C15;  // 2^64 over the golden ratio spreads near numbers
    return static_cast<std::size_t>(name * golden >> (64 - mBits));
}

unsigned NAMES_Places::findNumber(std::uint64_t name) const
{
    const Slot* const first = mSlots.data() + slotOf(name);
    for (const Slot* slot = first; slot != first + PROBES; ++slot) {
        if (slot->uiPlace == 0 || slot->uiName == name) {
            return slot->uiPlace;
        }
    }
    const auto found = mCrowded.find(name);
    return found == mCrowded.end() ? 0 : found->second;
}

void NAMES_Places::put(std::uint64_t name, unsigned place)
{
    Slot* const first = mSlots.data() + slotOf(name);
    Slot* const slot = std::find_if(first, first + PROBES, [](const Slot& s) { return s.uiPlace == 0; });
    if (slot == first + PROBES) {
        mCrowded.emplace(name, place);
    } else {
        *slot = {name, place};
    }
    ++mCount;
}

// At most half of the slots are taken.
void NAMES_Places::widen()
{
    if (!mSlots.empty() && 2 * mCount < std::size_t{1} << mBits) {
        return;
    }
    NAMES_Places wider;
    wider.mBits = std::max(FIRST_BITS, mBits + 1);
    wider.mSlots.resize((std::size_t{1} << wider.mBits) + PROBES - 1);
    for (const Slot& slot : mSlots) {
        if (slot.uiPlace != 0) {
            wider.put(slot.uiName, slot.uiPlace);
        }
    }
    for (const auto& [name, place] : mCrowded) {
        wider.put(name, place);
    }
    *this = std::move(wider);
}

bool NAMES_Places::add(std::string_view name, unsigned place)
{
    CMN_ASSERT(name.size() <= LONGEST && place != 0);
    widen();
    const std::uint64_t number = NumberOf(name);
    if (findNumber(number) != 0) {
        return false;
    }
    put(number, place);
    return true;
}

unsigned NAMES_Places::find(std::string_view name) const
{
    return mSlots.empty() || name.size() > LONGEST ? 0 : findNumber(NumberOf(name));
}

void NAMES_Places::clear()
{
    *this = {};
}
