// [Define Package Model]: the electrical model of a package, from a component file or a `.pkg` file. Either
// each pin is a path of R/L/C sections, or the coupling of all pins stands in matrices.

#pragma once

#include "ibis/source/nuibis_block.h"
#include "ibis/source/nuibis_keyword.h"

struct MPIN;
struct MTX;
struct SECT;

enum PKGSECT_Kind : std::uint32_t {
    PKGSECT_FORK = 0,
    PKGSECT_SECTION = 1,
};

/// One element of a pin's path.
struct PKGSECTNODE {
    PKGSECTNODE* pNext;  ///< next element on the same level
    PKGSECT_Kind eKind;
    void* pData;  ///< of a section its SECT, of a Fork the first PKGSECTNODE of its branch
};

struct PKGMDL {
    PKGMDL* pNext;
    char szName[41];
    char szManufacturer[41];
    char szOEM[41];
    char szDescription[61];
    unsigned uiPinCount;       ///< [Number Of Pins]
    unsigned uiSectionCount;   ///< [Number Of Sections]
    char** ppszPinNames;       ///< [Pin Numbers] in file order, at most `uiPinCount`; ends at a null entry
    MPIN* pMergedPins;         ///< [Merged Pins], file order
    PKGSECTNODE** ppSections;  ///< path of each pin, parallel to the names; null without sections
    MTX* pResistance;          ///< Ohm
    MTX* pInductance;          ///< H
    MTX* pCapacitance;         ///< F
    BLOCK_Room pinNames;       ///< memory of the names
};

void PKGMDL_Init();
void PKGMDL_Line(line_type lineType, nuibis_keyword code, std::string_view text);
void PKGMDL_Leave(nuibis_keyword newCode);

/// Exact comparison, first match of the list; null if absent.
PKGMDL* PKGMDL_Find(PKGMDL* list, std::string_view name);
/// Index, from 1, of a pin of the package model being read. 1, or 0 and an index of 0.
int PKGMDL_FindPinIndex(std::string_view pin, unsigned* index);
/// Pin of the package model being read by its index from 0, or null.
const char* PKGMDL_GetPinName(unsigned index);

// Walks over a package model by its name; `first` starts it. Each keeps its place in one static, so that two
// walks cannot interleave. 1 and the next pin, or 0 at the end or for an unknown name.
int PKGMDL_GetNextPinNumber(PKGMDL* list, std::string_view package, bool first, const char** out);
/// Each merging pin, told by `*isMergingPin`, followed by the pins that connect to it.
int PKGMDL_GetNextMergedPin(PKGMDL* list, std::string_view package, bool first, const char** out,
                            bool* isMergingPin);

/// Reads every `.pkg` file beside the current file that defines a model whose name begins so, in the order of
/// their names. 1 if there was one. The version of the last file read stays in force; the caller restores it.
int PKGMDL_SearchPkgFiles(std::string_view package);

/// At the end of the file: error 3410 for each pair of models of the same name.
void PKGMDL_CheckAll(const PKGMDL* list);
void PKGMDL_FreeList(PKGMDL* list);
