#include "ibis/source/nuibis_sswch.h"

#include "ibis/source/nuibis_list.h"
#include "ibis/source/nuibis_spinmpg.h"

#include <bit>

namespace
{

constexpr unsigned GROUP_LIMIT = 20;

// The record that a continuation line adds to, and the names it has so far; reset with each new record.
SSWCH* gpCurrentSswch = nullptr;
CMN_Set<std::string_view> gCurrentNames;
LIST_Tail<SSWCH> gTail;  // follows the list that is being read

// The names of all records of the list that was last looked into, which may have grown at its tail since.
const SSWCH* gpNamedFirst = nullptr;
const SSWCH* gpNamedLast = nullptr;
int giNamedGroups = 0;  // of the last record
CMN_Set<std::string_view> gNames;

void ForgetNames()
{
    gNames.clear();
    gpNamedFirst = gpNamedLast = nullptr;
    giNamedGroups = 0;
}

void FollowNames(const SSWCH* list)
{
    if (gpNamedFirst != list) {
        ForgetNames();
        gpNamedFirst = gpNamedLast = list;
    }
    for (;;) {
        for (; giNamedGroups < gpNamedLast->iGroupCount; ++giNamedGroups) {
            gNames.insert(gpNamedLast->ppszGroups[giNamedGroups]);
        }
        if (gpNamedLast->pNext == nullptr) {
            return;
        }
        gpNamedLast = gpNamedLast->pNext;
        giNamedGroups = 0;
    }
}

bool IsState(std::string_view word)
{
    return word == "On" || word == "Off";
}

bool StartRecord(std::string_view state, SSWCH** out)
{
    if (!IsState(state)) {
        MSG_ErrorLine(2500, state);
        return false;
    }
    if (!CMN_Alloc(*out)) {
        MSG_ErrorLine(2508);
        MSG_ErrorLine(2501);
        return false;
    }
    gpCurrentSswch = *out;
    gCurrentNames.clear();
    CMN_CopyText(gpCurrentSswch->szState, state);
    return true;
}

// A place for one more name; null without memory. The array doubles whenever it is full.
char* NewName(SSWCH& record)
{
    const auto count = static_cast<unsigned>(record.iGroupCount);
    if (count == 0 || std::has_single_bit(count)) {
        if (!CMN_Realloc(record.ppszGroups, count == 0 ? 1 : 2 * std::size_t{count})) {
            return nullptr;
        }
    }
    char* name = nullptr;
    if (CMN_Alloc(name, GROUP_LIMIT + 1)) {
        record.ppszGroups[record.iGroupCount++] = name;
    }
    return name;
}

bool IsRepeated(const char* name)
try {
    return !gCurrentNames.insert(name).second;
} catch (const std::bad_alloc&) {
    return false;
}

bool AddName(std::string_view token)
{
    char* const name = NewName(*gpCurrentSswch);
    if (name == nullptr) {
        MSG_ErrorLine(2503);
        return false;
    }
    CMN_CopyText({name, GROUP_LIMIT + 1}, token);
    if (token.size() > GROUP_LIMIT) {
        MSG_ErrorLine(2504, token, GROUP_LIMIT);
    }
    if (IsState(name)) {
        MSG_ErrorLine(2505);
    }
    if (IsRepeated(name)) {
        MSG_ErrorLine(2506, name);
    }
    CMN_CheckReserved(name);
    return true;
}

}  // namespace

int SSWCH_ReadLine(std::string_view text, SSWCH** out)
{
    std::string_view token = CMN_NextToken(text);
    if (gbExpectContinuation) {
        gbExpectContinuation = false;
        *out = gpCurrentSswch;
    } else {
        if (!StartRecord(token, out)) {
            return 0;
        }
        token = CMN_NextToken(text);
        if (token.empty()) {
            MSG_ErrorLine(2502);
            return 1;
        }
    }
    for (; !token.empty(); token = CMN_NextToken(text)) {
        if (token == "/") {
            return 1;
        }
        if (!AddName(token)) {
            return 0;
        }
    }
    gbExpectContinuation = true;
    return 1;
}

// The record being read is always the newest, so that only the tail can be it.
bool SSWCH_Has(SSWCH*& list, const SSWCH* record)
{
    return list != nullptr && gTail.last(list) == record;
}

void SSWCH_Add(SSWCH*& list, SSWCH* record)
{
    gTail.append(list, record);
}

void SSWCH_Free(SSWCH* list)
{
    gpCurrentSswch = nullptr;
    gCurrentNames.clear();
    ForgetNames();
    CMN_FreeList(list, [](SSWCH& record) {
        for (int i = 0; i < record.iGroupCount; ++i) {
            CMN_Free(record.ppszGroups[i]);
        }
        CMN_Release(record.ppszGroups);
    });
}

bool SSWCH_HasGroup(const SSWCH* list, std::string_view name)
try {
    if (list == nullptr) {
        return false;
    }
    FollowNames(list);
    return gNames.contains(name);
} catch (const std::bad_alloc&) {
    ForgetNames();
    return false;
}

// The words of the message tell the opposite; a group that is used and not listed is the mapping's error.
void SSWCH_CheckAll(const SSWCH* list, const SPINMPG* mappings, const char* component)
try {
    CMN_Set<std::string_view> used;
    for (; mappings != nullptr; mappings = mappings->pNext) {
        used.insert(mappings->szFunctionGroup);
    }
    for (; list != nullptr; list = list->pNext) {
        for (int i = 0; i < list->iGroupCount; ++i) {
            if (!used.contains(list->ppszGroups[i])) {
                MSG_Warning(2507, component, list->ppszGroups[i]);
            }
        }
    }
} catch (const std::bad_alloc&) {
    // Told by the allocation itself; the check falls away.
}
