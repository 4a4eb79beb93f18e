#include "ibis/source/nuibis_difpin.h"

#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_pin.h"
#include "ibis/source/nuibis_pinpair.h"
#include "ibis/source/nuibis_rng.h"

#include <algorithm>
#include <array>

namespace
{

// The list that is being read, and the list that was last looked into; both follow by themselves.
LIST_Tail<DIFPIN> gTail;
LIST_Index<const DIFPIN, &DIFPIN::szPin> gPins;
LIST_Index<const DIFPIN, &DIFPIN::szInvPin> gInvPins;

struct ValueColumn {
    std::string_view sName;
    double DIFPIN::*pdValue;
    numstat DIFPIN::*peStatus;
    double DIFPIN::*pdForNA;  // column whose value stands for "NA"; null: 0.0
    MSG_Plain missing;        // 0: the column may be left out
};

// A pair without a delay of its own has none; its longest delay is the typical one.
constexpr std::array<ValueColumn, 4> VALUES{{
    {"vdiff", &DIFPIN::dVdiff, &DIFPIN::eVdiff, nullptr, 805},
    {"tdelay_typ", &DIFPIN::dTdelayTyp, &DIFPIN::eTdelayTyp, nullptr, 806},
    {"tdelay_min", &DIFPIN::dTdelayMin, &DIFPIN::eTdelayMin, nullptr, 0},
    {"tdelay_max", &DIFPIN::dTdelayMax, &DIFPIN::eTdelayMax, &DIFPIN::dTdelayTyp, 0},
}};

void CheckHeader(const CMN_TokenList& tokens, int index, std::string_view header)
{
    if (!CMN_Equal(tokens[index], header)) {
        MSG_ErrorLine(529, header);
    }
}

void ReadPins(DIFPIN& pair, const CMN_TokenList& tokens)
{
    if (tokens.iStored > 0) {
        CMN_ReplaceString(pair.szPin, tokens[0], PIN_NAME_LIMIT, "Diff_Pin column");
    } else {
        MSG_ErrorLine(802);
    }
    if (tokens.iStored > 1) {
        CMN_ReplaceString(pair.szInvPin, tokens[1], PIN_NAME_LIMIT, "inv_pin column");
    } else {
        MSG_ErrorLine(803);
    }
    if (std::string_view(pair.szPin) == pair.szInvPin) {
        MSG_ErrorLine(804);
    }
}

void ReadValue(DIFPIN& pair, const ValueColumn& column, std::string_view text)
{
    double& value = pair.*column.pdValue;
    bool isNA = false;
    const CMN_Number result = CMN_GetValueNA(text, &value, &isNA);
    if (result == CMN_INVALID) {
        MSG_ErrorLine(816, column.sName);
        return;
    }
    if (result == CMN_SUSPICIOUS) {
        MSG_WarningLine(817, column.sName);
    }
    if (isNA && column.pdForNA != nullptr) {
        value = pair.*column.pdForNA;
    }
    pair.*column.peStatus = NUM_VALUE;
}

}  // namespace

void DIFPIN_ReadHeader(CMPNT* component, std::string_view text)
{
    if (component->iDiffPinColumns != 0) {
        MSG_ErrorLine(527);
        return;
    }
    component->iDiffPinColumns = 1;
    if (text.empty()) {
        MSG_ErrorLine(528, "Diff_Pins");
        return;
    }
    const CMN_TokenList tokens = CMN_Split(text, 6);
    component->iDiffPinColumns += tokens.iStored;
    if (component->iDiffPinColumns != 4 && component->iDiffPinColumns != 6) {
        MSG_ErrorLine(532, "Diff_Pins", 4, 6, component->iDiffPinColumns);
    }
    CheckHeader(tokens, 0, "inv_pin");
    for (int i = 1; i < std::min(tokens.iStored, 5); ++i) {
        CheckHeader(tokens, i, VALUES[static_cast<std::size_t>(i) - 1].sName);
    }
}

int DIFPIN_ReadLine(std::string_view text, int headerColumns, DIFPIN** out)
{
    if (!CMN_Alloc(*out)) {
        MSG_ErrorLine(800);
        return 0;
    }
    DIFPIN& pair = **out;
    const CMN_TokenList tokens = CMN_Split(text, 6);
    if (tokens.iFound > tokens.iStored) {
        MSG_ErrorLine(801);
    }
    pair.iColumns = tokens.iStored;
    ReadPins(pair, tokens);
    for (std::size_t i = 0; i < VALUES.size(); ++i) {
        const std::string_view token = tokens[static_cast<int>(i) + 2];
        if (token.data() != nullptr) {
            ReadValue(pair, VALUES[i], token);
        } else if (VALUES[i].missing) {
            MSG_ErrorLine(VALUES[i].missing);
        }
    }
    const bool numbers =
        pair.eTdelayTyp == NUM_VALUE && pair.eTdelayMin == NUM_VALUE && pair.eTdelayMax == NUM_VALUE;
    if (numbers && RNG_TypOutside(pair.dTdelayTyp, pair.dTdelayMin, pair.dTdelayMax)) {
        MSG_WarningLine(807);
    }
    if (pair.iColumns != 4 && pair.iColumns != 6) {
        MSG_ErrorLine(808);
    }
    if (pair.iColumns == 6 && headerColumns == 4) {
        MSG_ErrorLine(809);
    }
    return 1;
}

void DIFPIN_Add(DIFPIN*& list, DIFPIN* pair)
{
    gTail.append(list, pair);
}

void DIFPIN_Free(DIFPIN* list)
{
    gPins.reset();
    gInvPins.reset();
    CMN_FreeList(list);
}

bool DIFPIN_Has(const DIFPIN* list, std::string_view pin)
{
    return gPins.find(list, pin) != nullptr || gInvPins.find(list, pin) != nullptr;
}

void DIFPIN_CheckAll(const DIFPIN* list, PIN* pins, const char* component)
{
    for (const DIFPIN* pair = pins == nullptr ? nullptr : list; pair != nullptr; pair = pair->pNext) {
        if (!PIN_Exists(pins, pair->szPin)) {
            MSG_Error(810, component, pair->szPin);
        }
        if (!PIN_Exists(pins, pair->szInvPin)) {
            MSG_Error(811, component, pair->szInvPin);
        }
    }
    PINPAIR_CheckUnique<&DIFPIN::szPin, &DIFPIN::szInvPin>(list, component, {812, 813, 814, 815});
}
