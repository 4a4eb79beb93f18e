// The matrices of a package model: [Resistance Matrix] (Ohm), [Inductance Matrix] (H) and [Capacitance
// Matrix] (F), symmetric over the pins of the package. Only the upper triangle is stored, a row for each pin.

#pragma once

#include "ibis/source/nuibis_row.h"

/// How the rows of a matrix are laid out. With n rows and bandwidth b, value k of row i (from 0) is column
/// i + k; in a sparse matrix it is any column from i on, and in a wrapped band column (i + k) modulo n.
enum MTX_Type : std::uint32_t {
    MTX_NOT_SET = 0,  ///< no type, or an unknown one: takes no rows
    MTX_BANDED = 1,   ///< diagonal and b columns right of it, the last rows cut short
    MTX_BANDED_WRAP =
        2,           ///< "banded, circle-back": the last rows go on in the first columns. No file says so
    MTX_SPARSE = 3,  ///< single entries
    MTX_FULL = 4,    ///< diagonal and all columns right of it
};

struct MTX {
    MTX_Type eMatrixType;
    unsigned uiRowCount;   ///< rows expected: the number of pins when the matrix was made
    bool bBandwidthSeen;   ///< [Bandwidth] was given
    unsigned uiBandwidth;  ///< columns right of the diagonal
    ROW* pRows;            ///< file order
    ROW** ppRows;          ///< the same rows by their position, so that an element is found without a walk
    unsigned uiRowsRead;   ///< number of rows
    unsigned* puiFilled;   ///< sparse: for each column the position, from 1, of the row that filled it last
    unsigned uiFilledRoom;
    BLOCK_Room values;   ///< rows and their values
    BLOCK_Room columns;  ///< sparse: the columns of the values
    bool bRowsNamed;     ///< rows are counted by name; false as long as each is that of the pin at its place
};

/// Forgets the matrix being read, without its checks: a new package model begins.
void MTX_Init();
/// A matrix keyword: closes the matrix before and makes the one being read. `type` is the text of the line.
void MTX_New(MTX** out, std::string_view type, unsigned rowCount);
/// [Bandwidth].
void MTX_SetBandwidth(MTX* matrix, std::string_view text);
/// [Row], and a data line under it.
void MTX_AddRow(MTX* matrix, std::string_view pin);
void MTX_AddRowData(MTX* matrix, std::string_view line);
/// Ends the matrix being read, if there is one, with the checks of its shape.
void MTX_CloseCurrent();
/// The checks of the numbers at the end of the package model. `name` is "Resistance", "Inductance" or
/// "Capacitance".
void MTX_CheckAtEnd(std::string_view name, MTX* matrix, const char* package);
/// Element (i, j), from 0, of the symmetric matrix of n rows; 0.0 where none is stored.
double MTX_GetElement(unsigned n, unsigned i, unsigned j, const MTX* matrix);
void MTX_Free(MTX* matrix);

// What the row module asks of the matrix being read. Each gives 1, or a BUG and 0 without a banded matrix.
int MTX_GetBandwidth(unsigned* out);
/// Any matrix will do.
int MTX_GetRowCount(unsigned* out);
int MTX_IsBandedWrap();
/// Turns the banded matrix into a wrapped one whose rows are all `columnCount` wide. 0 with a message if the
/// band is too wide to wrap: it would meet itself.
int MTX_SetBandedWrap(unsigned columnCount);

// Rows of any matrix, for the row module.
/// How many rows of this name the matrix has. `index` is the place, from 1, of that pin in the package, or 0.
unsigned MTX_CountRows(MTX& matrix, std::string_view pin, unsigned index);
/// The pins are about to change: from here on the names of the rows count, whatever their order. Null is
/// fine.
void MTX_NameRows(MTX* matrix);
/// 0 when memory is out.
int MTX_Append(MTX& matrix, ROW* row);
ROW* MTX_LastRow(const MTX& matrix);
/// Position, from 1, of the row that filled a column (from 1) last; 0 for none.
unsigned MTX_FilledBy(const MTX& matrix, unsigned column);
/// The last row fills a column. 0 when memory is out.
int MTX_NoteFilled(MTX& matrix, unsigned column);
