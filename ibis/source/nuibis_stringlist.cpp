#include "ibis/source/nuibis_stringlist.h"

#include <algorithm>

namespace
{

struct NameCount {
    const char* pszName;
    int iCount;
};

constexpr std::size_t FIRST_CAPACITY = 30;

// The table of counters: grows as needed, emptied by STRLIST_CountReset.
NameCount* gpCounts = nullptr;
std::size_t guiCounts = 0;
std::size_t guiCapacity = 0;

NameCount* FindCount(std::string_view name)
{
    NameCount* const end = gpCounts + guiCounts;
    NameCount* const found =
        std::find_if(gpCounts, end, [name](const NameCount& c) { return name == c.pszName; });
    return found == end ? nullptr : found;
}

}  // namespace

STRLIST* STRLIST_Add(STRLIST* list, const char* text)
{
    STRLIST* node = nullptr;
    if (!CMN_Alloc(node)) {
        MSG_Bug(2100, __FILE_NAME__, __LINE__);
        return nullptr;
    }
    node->pszText = text;
    node->pNext = list;
    return node;
}

STRLIST* STRLIST_AddMany(STRLIST* list, std::initializer_list<const char*> texts)
{
    for (const char* text : texts) {
        STRLIST* const head = STRLIST_Add(list, text);
        list = head == nullptr ? list : head;
    }
    return list;
}

STRLIST* STRLIST_AddUnique(STRLIST* list, const char* text)
{
    for (const STRLIST* node = list; node != nullptr; node = node->pNext) {
        if (std::string_view(node->pszText) == text) {
            return list;
        }
    }
    return STRLIST_Add(list, text);
}

void STRLIST_Free(STRLIST* list)
{
    CMN_FreeList(list);
}

void STRLIST_CountReset()
{
    CMN_Release(gpCounts);
    guiCounts = guiCapacity = 0;
}

void STRLIST_CountAdd(const char* name)
{
    if (NameCount* const known = FindCount(name); known != nullptr) {
        ++known->iCount;
        return;
    }
    if (guiCounts == guiCapacity) {
        const std::size_t capacity = std::max(FIRST_CAPACITY, 2 * guiCapacity);
        if (!CMN_Realloc(gpCounts, capacity)) {
            return;
        }
        guiCapacity = capacity;
    }
    gpCounts[guiCounts++] = {name, 1};
}

int STRLIST_CountGet(const char* name)
{
    const NameCount* const known = FindCount(name);
    if (known == nullptr) {
        MSG_Bug(2101, __FILE_NAME__, __LINE__);
        return 0;
    }
    return known->iCount;
}
