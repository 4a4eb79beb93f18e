// Memory of small records that are made one after the other and released together, as those of a parameter
// tree or of a matrix. An allocation for each of them would take more time, and as much room again.

#pragma once

#include "ibis/source/nuibis_cmn.h"

struct BLOCK;

/// Memory in blocks, which grow with what is taken of them. One of zeros is empty. It is not to be copied.
struct BLOCK_Room {
    BLOCK* pBlocks;  ///< newest first
    char* pFree;     ///< what is left of the newest one, to `pEnd`
    char* pEnd;
};

/// Makes `more` bytes of room behind the `used` bytes of an array: where it stands if nothing was taken since
/// it grew last, else the array moves. What it leaves is lost, so arrays grow one after the other. Null is an
/// empty array. 0 when memory is out; the array stays.
int BLOCK_GrowBytes(BLOCK_Room& room, void** array, std::size_t used, std::size_t more,
                    std::size_t alignment);
/// Releases all that was taken.
void BLOCK_Free(BLOCK_Room& room);

/// Room for entry `used` of an array, as above.
template <class T> int BLOCK_Grow(BLOCK_Room& room, T*& array, std::size_t used, std::size_t more = 1)
{
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);
    char* const end = array == nullptr ? room.pFree : reinterpret_cast<char*>(array + used);
    if (end == room.pFree && static_cast<std::size_t>(room.pEnd - end) >= more * sizeof(T) &&
        reinterpret_cast<std::uintptr_t>(end) % alignof(T) == 0) {
        array = array == nullptr ? reinterpret_cast<T*>(end) : array;
        room.pFree += more * sizeof(T);
        return 1;
    }
    void* bytes = array;
    const int result = BLOCK_GrowBytes(room, &bytes, used * sizeof(T), more * sizeof(T), alignof(T));
    array = static_cast<T*>(bytes);
    return result;
}

/// A zeroed record, or an array of them; 0 and null when memory is out.
template <class T> int BLOCK_Take(BLOCK_Room& room, T*& p, std::size_t count = 1)
{
    p = nullptr;
    return BLOCK_Grow(room, p, 0, count);
}

/// A terminated copy; null when memory is out.
char* BLOCK_CopyText(BLOCK_Room& room, std::string_view text);
