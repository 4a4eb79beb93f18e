// [Begin Board Description]: how a board wires its edge pins to the pins of the components mounted on it.
// Read from `.ebd` files.

#pragma once

#include "ibis/source/nuibis_cmn.h"
#include "ibis/source/nuibis_keyword.h"

/// One line of [Pin List].
struct EBDPIN {
    char szPin[9];
    char szSignal[21];
};

enum EBDPATH_Kind : std::uint32_t {
    EBDPATH_FORK = 0,
    EBDPATH_NODE = 1,
    EBDPATH_PIN = 2,
    EBDPATH_SECTION = 3,
    EBDPATH_NC = 4,
};

/// One element of a path.
struct ebdpathelement {
    ebdpathelement* pNext;  ///< next element on the same level
    EBDPATH_Kind eKind;
    void* pData;  ///< Fork: first element of the branch; Node: EBDNODE; Pin: char[9]; Section: SECT; NC: null
};

template <class T> T* EBDPATH_Payload(const ebdpathelement& element)
{
    return static_cast<T*>(element.pData);
}

/// A pin of a component on the board.
struct EBDNODE {
    char szRefDes[11];
    char szPin[9];
};

/// One [Path Description].
struct EBDPATH {
    EBDPATH* pNext;
    char szName[41];
    ebdpathelement* pHead;  ///< a Pin element, or null
};

/// One line of [Reference Designator Map]: what is mounted at a place of the board.
struct EBDREFDES {
    EBDREFDES* pNext;
    char szRefDes[11];
    char szFile[45];       ///< the file that describes it
    char szComponent[41];  ///< the component or board within that file
    bool bFileOk;          ///< the file name passed every test
    bool bComponentOk;     ///< a component was given, and it is not the board itself
};

struct EBDMDL {
    EBDMDL* pNext;
    char szName[41];
    char szManufacturer[41];
    unsigned uiPinCount;    ///< [Number Of Pins]
    EBDPIN** ppPins;        ///< [Pin List], at most `uiPinCount`; ends at a null entry
    EBDPATH* pPaths;        ///< [Path Description], file order
    EBDREFDES* pRefDesMap;  ///< [Reference Designator Map], newest entry first
};

void EBDMDL_Init();
void EBDMDL_Line(line_type lineType, nuibis_keyword code, std::string_view text);
void EBDMDL_Leave(nuibis_keyword newCode);

/// Exact comparison, first match of the list; null if absent.
EBDMDL* EBDMDL_Find(EBDMDL* list, std::string_view name);

/// At the end of the file: repeated names, and whether every component and pin exists that the boards refer
/// to. The files that hold them are read for it, each in a root of its own, unless this file is itself read
/// so
/// (`nested`): then only what stands in this file is checked.
void EBDMDL_CheckFile(EBDMDL* list, bool nested);
void EBDMDL_FreeList(EBDMDL* list);
