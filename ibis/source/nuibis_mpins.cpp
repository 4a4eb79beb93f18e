#include "ibis/source/nuibis_mpins.h"

#include "ibis/source/nuibis_field.h"
#include "ibis/source/nuibis_list.h"

namespace
{

constexpr unsigned PIN_LIMIT = 5;

// Module state, reset by MPIN_Init.
MPIN* gpCurMpin = nullptr;  // record being read
unsigned guiMpinLine = 0;   // line of its keyword
unsigned guiMpinOrdinal = 0;
LIST_Tail<MPIN> gTail;
LIST_Repeats gNames;
// The records that a pin connects to, by their place in the list.
CMN_Map<std::pair<std::string_view, unsigned>, const MPIN*> gConnected;

void ReadName(MPIN& record, std::string_view text)
{
    const CMN_TokenList tokens = CMN_Split(text, 1);
    if (tokens.iFound == 0) {
        MSG_ErrorLine(5303);
        return;
    }
    if (tokens.iFound > 1) {
        MSG_ErrorLine(5304, tokens.iFound, "Merged Pins", 1);
    }
    if (tokens[0].size() > PIN_LIMIT) {
        MSG_ErrorLine(5305, tokens[0], PIN_LIMIT);
    }
    CMN_CopyText(record.szName, tokens[0]);
}

void Connect(std::string_view pin)
{
    const auto count = static_cast<std::size_t>(gpCurMpin->iCount);
    if (!CMN_GrowPointers(gpCurMpin->ppszPins, count)) {
        MSG_Bug(5300, __FILE_NAME__, __LINE__);
        return;
    }
    char* const copy = CMN_StrDup(pin);
    if (copy != nullptr) {
        gpCurMpin->ppszPins[gpCurMpin->iCount++] = copy;
        gConnected.try_emplace({copy, guiMpinOrdinal}, gpCurMpin);
    }
}

}  // namespace

void MPIN_Init()
{
    gpCurMpin = nullptr;
    guiMpinLine = 0;
    guiMpinOrdinal = 0;
    gNames.reset();
    gConnected.clear();
}

MPIN* MPIN_New(std::string_view text, MPIN*& list)
{
    gpCurMpin = nullptr;
    if (!CMN_Alloc(gpCurMpin)) {
        MSG_ErrorLine(5301);
        return nullptr;
    }
    guiMpinLine = PARSE_GetLineNumber();
    guiMpinOrdinal = gTail.append(list, gpCurMpin);
    ReadName(*gpCurMpin, text);
    for (unsigned repeats = gNames.add(gpCurMpin->szName); repeats > 0; --repeats) {
        MSG_ErrorLine(5307, gpCurMpin->szName);
    }
    return gpCurMpin;
}

void MPIN_AddPins(const MPIN* list, std::string_view line)
try {
    if (list == nullptr || gpCurMpin == nullptr) {
        return;
    }
    for (std::string_view pin = CMN_NextToken(line); !pin.empty(); pin = CMN_NextToken(line)) {
        for (auto record = gConnected.lower_bound({pin, 0});
             record != gConnected.end() && record->first.first == pin; ++record) {
            MSG_ErrorLine(5308, pin, record->second->szName);
        }
        Connect(pin);
    }
} catch (const std::bad_alloc&) {
    // Told by the allocation itself.
}

const MPIN* MPIN_GetCurrent()
{
    return gpCurMpin;
}

unsigned MPIN_GetLine()
{
    return guiMpinLine;
}

void MPIN_Free(MPIN* list)
{
    MPIN_Init();
    CMN_FreeList(list, [](MPIN& record) {
        for (int i = 0; i < record.iCount; ++i) {
            CMN_Free(record.ppszPins[i]);
        }
        CMN_Release(record.ppszPins);
    });
}
