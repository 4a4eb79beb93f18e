// [Pin]: ties each pin of a component to a signal name and a model, and gives its package values
// (R_pin Ohm, L_pin H, C_pin F).

#pragma once

#include "ibis/source/nuibis_cmn.h"

struct CMPNT;
struct DIFPIN;
struct PINMPG;

struct PIN {
    PIN* pNext;
    int iColumns;  ///< columns found on the line
    char szPin[6];
    char szSignal[41];
    char szModel[41];  ///< model or model selector, or "POWER", "GND", "NC", "CIRCUITCALL"
    double dRpin;
    numstat eRpin;
    double dLpin;
    numstat eLpin;
    double dCpin;
    numstat eCpin;
};

/// Longest pin name.
inline constexpr unsigned PIN_NAME_LIMIT = 5;

/// Place of R_pin, L_pin and C_pin among a line's last three columns.
using PIN_ColumnOrder = int[3];

/// The keyword line; `text` is what follows "[Pin]".
void PIN_ReadHeader(CMPNT* component, PIN_ColumnOrder& order, std::string_view text);
/// A data line; 1 if a record was made.
int PIN_ReadLine(std::string_view text, int headerColumns, PIN** out, const PIN_ColumnOrder& order);
/// Appends; a pin of the same name is reported once (606) and appended all the same.
void PIN_Add(PIN*& list, PIN* pin);
void PIN_Free(PIN* list);

/// Exact comparison; null if absent.
PIN* PIN_Find(PIN* list, std::string_view name);
bool PIN_Exists(PIN* list, std::string_view name);
/// Model name of a pin, or null.
const char* PIN_ModelOf(PIN* list, std::string_view name);
// The model of the named pin is "GND" or "POWER", case-blind; false for an unknown pin.
bool PIN_IsGnd(PIN* list, std::string_view name);
bool PIN_IsPower(PIN* list, std::string_view name);
bool PIN_IsRail(PIN* list, std::string_view name);
/// The name stands for no model: "POWER", "GND", "NC", "CIRCUITCALL", case-blind.
bool PIN_IsSpecialModel(std::string_view model);

/// At the end of the file: every pin's model exists and suits a pin, and every pin is mapped if any is. The
/// lookups mark the models as referenced.
void PIN_CheckAll(PIN* list, PINMPG* mappings, const DIFPIN* diffPins, const char* component);
/// At the end of the file: the component has every pin of the package model, and the pins that the package
/// merges are all supply or all ground pins on one bus. True if nothing was reported.
bool PIN_CheckMerged(PIN* list, PINMPG* mappings, const char* component, const char* packageModel);
