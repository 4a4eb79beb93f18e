// [Model Selector]: a name for a set of models, one of which a simulator picks for a pin.

#pragma once

#include "ibis/source/nuibis_cmn.h"
#include "ibis/source/nuibis_keyword.h"

/// Room of a line: the name of a model and its description share it.
inline constexpr unsigned MSEL_LINE_ROOM = 120;

struct mselmodel {
    mselmodel* pNext;
    char szName[41];
    char szDescription[MSEL_LINE_ROOM + 1];  ///< rest of the line
};

struct msel {
    msel* pNext;
    mselmodel* pModels;  ///< file order
    char szName[41];
    std::uint32_t
        eDiffUse;  ///< 2 at creation; after the file check 0 when the first model is differential, else 1
};

void MSEL_Init();
void MSEL_Line(line_type lineType, nuibis_keyword code, std::string_view text);
void MSEL_FreeList(msel* list);

/// The checks at the end of the file: names that are no models, models and selectors of one name, selectors
/// that mix differential and single-ended models. Marks the models that are listed as referenced and sets
/// `eDiffUse` of each selector.
void MSEL_CheckAll(msel* list);

/// Exact comparison, first match of the list; null if absent.
msel* MSEL_Find(std::string_view name, msel* list);
/// 1 if a selector has that name.
int MSEL_Exists(std::string_view name, msel* list);
/// One of the selector's models, looked up by name in the current file, is a Series model.
bool MSEL_HasSeries(const msel* selector);
/// The same for Series_switch.
bool MSEL_HasSeriesSwitch(const msel* selector);
