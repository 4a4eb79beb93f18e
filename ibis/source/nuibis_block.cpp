#include "ibis/source/nuibis_block.h"

struct BLOCK {
    BLOCK* pNext;
};

namespace
{

// The first block is small, as most trees and matrices are; each further one is larger.
constexpr std::size_t FIRST_SIZE = 1024;
constexpr std::size_t LARGEST_SIZE = 64 * 1024;

std::size_t LeftIn(const BLOCK_Room& room)
{
    return static_cast<std::size_t>(room.pEnd - room.pFree);
}

bool AddBlock(BLOCK_Room& room, std::size_t needed)
{
    const std::size_t last =
        room.pBlocks == nullptr ? 0
                                : static_cast<std::size_t>(room.pEnd - reinterpret_cast<char*>(room.pBlocks));
    const std::size_t size = std::max(sizeof(BLOCK) + needed, std::clamp(2 * last, FIRST_SIZE, LARGEST_SIZE));
    void* bytes = nullptr;
    if (!CMN_AllocBytes(&bytes, size)) {
        return false;
    }
    auto* const block = static_cast<BLOCK*>(bytes);
    block->pNext = room.pBlocks;
    room = {block, reinterpret_cast<char*>(block + 1), static_cast<char*>(bytes) + size};
    return true;
}

}  // namespace

// An array that moves finds room to grow to twice its size, so that moves cost no more than what was added.
int BLOCK_GrowBytes(BLOCK_Room& room, void** array, std::size_t used, std::size_t more, std::size_t alignment)
{
    const std::size_t needed = 2 * used + more + alignment - 1;
    if (LeftIn(room) < needed && !AddBlock(room, needed)) {
        return 0;
    }
    room.pFree += -reinterpret_cast<std::uintptr_t>(room.pFree) & (alignment - 1);
    if (used != 0) {
        std::copy_n(static_cast<const char*>(*array), used, room.pFree);
    }
    *array = room.pFree;
    room.pFree += used + more;
    return 1;
}

void BLOCK_Free(BLOCK_Room& room)
{
    CMN_FreeList(room.pBlocks);
    room = {};
}

char* BLOCK_CopyText(BLOCK_Room& room, std::string_view text)
{
    char* copy = nullptr;
    if (BLOCK_Take(room, copy, text.size() + 1)) {
        std::copy(text.begin(), text.end(), copy);
    }
    return copy;
}
