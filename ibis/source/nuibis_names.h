// Lookup of short names, of which a package has tens of thousands.

#pragma once

#include "ibis/source/nuibis_list.h"

/// The place of each name. Names of up to 7 characters are compared as numbers and found by a hash; one that
/// finds the slots of its hash taken goes into a map, so that no choice of names makes a lookup long.
class NAMES_Places
{
  public:
    /// Longer names are never found.
    static constexpr std::size_t LONGEST = 7;

    /// Notes the place, from 1, of a name. False if the name has one already. Throws std::bad_alloc.
    bool add(std::string_view name, unsigned place);
    /// 0 if the name is unknown.
    unsigned find(std::string_view name) const;
    void clear();
    /// How many names there are.
    std::size_t size() const { return mCount; }

  private:
    struct Slot {
        std::uint64_t uiName;
        unsigned uiPlace;  // 0: free
    };

    void put(std::uint64_t name, unsigned place);
    void widen();
    std::size_t slotOf(std::uint64_t name) const;
    unsigned findNumber(std::uint64_t name) const;

    CMN_Vector<Slot> mSlots;
    CMN_Map<std::uint64_t, unsigned> mCrowded;  // names without a slot
    std::size_t mCount = 0;
    unsigned mBits = 0;  // of a hash
};
