// Paths that branch: lists of elements in which a Fork carries the list of its branch. Packages and boards
// are both written so. An element type has `pNext`, an `eKind` in which 0 is a Fork, and a `pData` that is
// the branch of a Fork. Branches may nest as deep as a file likes, so nothing here calls itself.

#pragma once

#include "ibis/source/nuibis_list.h"

template <class T> bool FORK_IsFork(const T& element)
{
    return static_cast<int>(element.eKind) == 0;
}

template <class T> T* FORK_Branch(const T& fork)
{
    return static_cast<T*>(fork.pData);
}

/// The end of a path that is being read, and its open Forks.
template <class T> class FORK_Chain
{
  public:
    /// Nothing to chain to, no open Fork.
    void reset()
    {
        mpTail = nullptr;
        mOpen.clear();
    }
    /// The next element begins a path; Forks that are open stay so.
    void forgetTail() { mpTail = nullptr; }
    void forgetForks() { mOpen.clear(); }
    bool hasTail() const { return mpTail != nullptr; }
    bool hasOpenFork() const { return !mOpen.empty(); }

    /// Chains an element: as `head` of a path without a tail, as the first of the branch that its Fork has
    /// just opened, or behind the tail.
    void append(T*& head, T* element)
    {
        if (mpTail == nullptr) {
            head = element;
        } else if (hasOpenFork() && mOpen.back() == mpTail) {
            mpTail->pData = element;
        } else {
            mpTail->pNext = element;
        }
        mpTail = element;
    }
    /// The Fork just appended is open from now on. Throws std::bad_alloc.
    void openFork() { mOpen.push_back(mpTail); }
    /// Goes on behind the innermost open Fork. False if its branch is empty.
    bool closeFork()
    {
        mpTail = mOpen.back();
        mOpen.pop_back();
        return FORK_Branch(*mpTail) != nullptr;
    }

  private:
    T* mpTail = nullptr;
    CMN_Vector<T*> mOpen;
};

/// Visits every element in the order of the file. Throws std::bad_alloc.
template <class T, class Visit> void FORK_ForEach(const T* element, Visit visit)
{
    CMN_Vector<const T*> behind;  // what follows the Forks that are being walked
    for (;;) {
        while (element == nullptr) {
            if (behind.empty()) {
                return;
            }
            element = behind.back();
            behind.pop_back();
        }
        visit(*element);
        const T* next = element->pNext;
        if (FORK_IsFork(*element)) {
            behind.push_back(next);
            next = FORK_Branch(*element);
        }
        element = next;
    }
}

/// Frees a path; `release` frees what an element that is no Fork holds. A Fork whose branch is being freed
/// keeps in its `pData` the way back, so that no memory is needed.
template <class T, class Release> void FORK_Free(T*& head, Release release)
{
    T* element = head;
    T* outer = nullptr;
    while (element != nullptr || outer != nullptr) {
        if (element == nullptr) {
            T* const fork = outer;
            outer = FORK_Branch(*fork);
            element = fork->pNext;
            CMN_Free(fork);
        } else if (FORK_IsFork(*element)) {
            T* const branch = FORK_Branch(*element);
            element->pData = outer;
            outer = element;
            element = branch;
        } else {
            T* const next = element->pNext;
            release(*element);
            CMN_Free(element);
            element = next;
        }
    }
    head = nullptr;
}
