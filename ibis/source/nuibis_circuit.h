// [External Circuit]: circuits that stand by themselves. [Circuit Call]: their places in a component, and the
// judgement of the nets that the calls make of a component's pins and nodes.

#pragma once

#include "ibis/source/nuibis_cmn.h"
#include "ibis/source/nuibis_extblock.h"
#include "ibis/source/nuibis_keyword.h"

struct CMPNT;

struct EXTCIRCUIT {
    char
        szName[48];  ///< blank: the line of the keyword is read as one of its block, and no line gives a name
    EXTBLOCK* pBlock;
    std::int32_t iLine;  ///< of the keyword
    EXTCIRCUIT* pNext;
};

/// One Port_map line.
struct CCPORTMAP {
    char szPort[41];
    char szPad[41];  ///< pin or node of the component
    CCPORTMAP* pNext;
};

struct CCALL {
    std::int32_t iLine;  ///< of the keyword
    char szCircuit[41];
    char szPin1[6];  ///< reference pins
    char szPin2[6];
    CCPORTMAP* pPortMap;  ///< newest first
    CCALL* pNext;
};

/// What a port or a net is: a set of these.
enum CIRCUIT_Class : std::uint32_t {
    CLASS_NC = 0x1,
    CLASS_UNKNOWN = 0x2,
    CLASS_DIGITAL = 0x4,
    CLASS_DIGITAL_DRIVER = 0x8,
    CLASS_DIGITAL_RECEIVER = 0x10,
    CLASS_ANALOG_RESERVE = 0x20,
    CLASS_ANALOG_REFERENCE = 0x40,  ///< a reference, or a second driver
    CLASS_ANALOG = 0x80,
    CLASS_ANALOG_PIN = 0x100,
    CLASS_ANALOG_DRIVER = 0x200,
    CLASS_DIGITAL_RESERVE = 0x400,
    CLASS_AMS_UNKNOWN = 0x800,  ///< port of a circuit whose language does not tell directions
    CLASS_ANALOG_RECEIVER = 0x1000,
};

/// Judges analog nets for drivers and receivers too. Passive parts make such nets common, so nobody in the
/// library sets it.
extern bool gbAnalogNetChecks;

void CIRCUIT_Init();
void CIRCUIT_Line(line_type lineType, nuibis_keyword code, std::string_view text);
void CIRCUIT_FreeList(EXTCIRCUIT* list);

/// The keyword line of [Circuit Call]; `text` is what follows the bracket. The new call is the first of the
/// list.
void CCALL_Open(std::string_view text, CCALL*& calls);
/// A data line; it belongs to the newest call.
void CCALL_AddLine(std::string_view text, CCALL* calls);
void CCALL_FreeList(CCALL* list);

/// At the end of the file: the calls of a component against circuits, pins and nodes, and its nets.
void CIRCUIT_CheckComponent(const CMPNT& component, EXTCIRCUIT* circuits);
/// The circuit of that name, or null.
EXTCIRCUIT* CIRCUIT_Find(EXTCIRCUIT* list, std::string_view name);
