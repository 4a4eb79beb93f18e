// Helpers around the singly linked lists of the records: constant-time append, and lookup by name without a
// walk.

#pragma once

#include "ibis/source/nuibis_cmn.h"

#include <algorithm>
#include <functional>
#include <map>
#include <new>
#include <set>
#include <vector>

/// Appends to a list in constant time by remembering its last record. One object serves the list that is
/// being read; it finds the end anew when it is handed another list.
template <class T> class LIST_Tail
{
  public:
    /// Appends and gives the length of the list with the new record. A `pPrev`, where records have one, is
    /// set.
    unsigned append(T*& head, T* record)
    {
        bind(head);
        (mpLast == nullptr ? head : mpLast->pNext) = record;
        if constexpr (requires { record->pPrev; }) {
            record->pPrev = mpLast;
        }
        mpLast = record;
        return ++muiCount;
    }
    /// The last record of a list, or null.
    T* last(T*& head)
    {
        bind(head);
        return mpLast;
    }
    /// Whether this list is the one whose end is known.
    bool follows(T*& head) const { return mpHead == &head; }

  private:
    void bind(T*& head)
    {
        if (follows(head) && head != nullptr) {
            return;
        }
        mpHead = &head;
        mpLast = nullptr;
        muiCount = 0;
        for (T* p = head; p != nullptr; p = p->pNext) {
            mpLast = p;
            ++muiCount;
        }
    }

    T** mpHead = nullptr;
    T* mpLast = nullptr;
    unsigned muiCount = 0;
};

/// Gives standard containers their memory through CMN_Alloc. The container's owner catches `std::bad_alloc`.
template <class T> struct CMN_Allocator {
    using value_type = T;
    CMN_Allocator() noexcept = default;
    template <class U> CMN_Allocator(const CMN_Allocator<U>&) noexcept {}
    T* allocate(std::size_t count)
    {
        void* block = nullptr;
        // NOLINTNEXTLINE(bugprone-sizeof-expression): elements may be pointers to records
        if (!CMN_AllocBytes(&block, count * sizeof(T))) {
            throw std::bad_alloc();
        }
        return static_cast<T*>(block);
    }
    void deallocate(T* p, std::size_t) noexcept { CMN_Free(p); }
    friend bool operator==(const CMN_Allocator&, const CMN_Allocator&) noexcept { return true; }
};

template <class Key, class Value, class Less = std::less<Key>>
using CMN_Map = std::map<Key, Value, Less, CMN_Allocator<std::pair<const Key, Value>>>;

/// The order of names whose case does not count.
struct CMN_CaseBlindLess {
    bool operator()(std::string_view a, std::string_view b) const
    {
        return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                            [](char x, char y) { return CMN_Upper(x) < CMN_Upper(y); });
    }
};

template <class Key> using CMN_Set = std::set<Key, std::less<Key>, CMN_Allocator<Key>>;

template <class T> using CMN_Vector = std::vector<T, CMN_Allocator<T>>;

/// Finds records of a list by name, the first in list order winning. Follows a list that grows at its front
/// or at its tail; records indexed once keep their names. Without memory for the index it walks the list.
template <class T, auto Name, class Less = std::less<std::string_view>> class LIST_Index
{
  public:
    T* find(T* head, std::string_view name)
    {
        if (head == nullptr) {
            return nullptr;
        }
        if (!follow(head)) {
            return walk(head, name);
        }
        const auto found = mNames.find(name);
        return found == mNames.end() ? nullptr : found->second;
    }
    /// To be called before records that may be indexed are freed.
    void reset()
    {
        mNames.clear();
        mpFirst = mpLast = nullptr;
    }

  private:
    static T* walk(T* head, std::string_view name)
    {
        const Less less;
        while (head != nullptr && (less(name, head->*Name) || less(head->*Name, name))) {
            head = head->pNext;
        }
        return head;
    }
    bool follow(T* head)
    {
        try {
            if (head != mpFirst) {
                takeFront(head);
            }
            for (; mpLast->pNext != nullptr; mpLast = mpLast->pNext) {
                mNames.try_emplace(mpLast->pNext->*Name, mpLast->pNext);
            }
            return true;
        } catch (const std::bad_alloc&) {
            reset();
            return false;
        }
    }
    // New records ahead of the first known one win over it; another list starts the index anew.
    void takeFront(T* head)
    {
        T* stop = head;
        while (stop != nullptr && stop != mpFirst) {
            stop = stop->pNext;
        }
        if (stop == nullptr) {
            reset();
        }
        CMN_Map<std::string_view, T*, Less> front;
        for (T* p = head; p != stop; p = p->pNext) {
            front.try_emplace(p->*Name, p);
            if (mpFirst == nullptr) {
                mpLast = p;
            }
        }
        for (const auto& [name, record] : front) {
            mNames.insert_or_assign(name, record);
        }
        mpFirst = head;
    }

    CMN_Map<std::string_view, T*, Less> mNames;
    T* mpFirst = nullptr;
    T* mpLast = nullptr;
};

/// Counts the records that bear a name, for rules that tell a repeat once for each earlier record. Keeps
/// views of the names.
class LIST_Repeats
{
  public:
    /// How often the name was added before; 0 without memory.
    unsigned add(std::string_view name)
    {
        try {
            return mCounts[name]++;
        } catch (const std::bad_alloc&) {
            return 0;
        }
    }
    /// To be called at the start of a list and before its records are freed.
    void reset() { mCounts.clear(); }

  private:
    CMN_Map<std::string_view, unsigned> mCounts;
};

/// Most pairs that a rule over equal records looks at. So many are beyond any reader, and a generated file,
/// in which n equal records make n * (n - 1) / 2 pairs, must not fill the memory.
inline constexpr std::size_t LIST_PAIR_LIMIT = 100'000;

/// For rules over pairs of equal records: the index of the next record that equals record `i`, or the number
/// of records. No walk over all pairs is needed to find the few that are equal.
template <class T, class Less> CMN_Vector<std::size_t> LIST_NextEqual(const CMN_Vector<T>& records, Less less)
{
    CMN_Map<T, std::size_t, Less> nearest(less);
    CMN_Vector<std::size_t> next(records.size(), records.size());
    for (std::size_t i = records.size(); i-- > 0;) {
        const auto [place, isNew] = nearest.try_emplace(records[i], i);
        if (!isNew) {
            next[i] = place->second;
            place->second = i;
        }
    }
    return next;
}
