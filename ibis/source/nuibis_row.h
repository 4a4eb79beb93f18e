// [Row]: one row of a package matrix.

#pragma once

#include "ibis/source/nuibis_block.h"

struct MTX;

/// One row, in the memory of its matrix. Its values are packed: a row takes memory for the values that were
/// given, however wide the file says that it is. ROW_Column tells "not given" apart from 0.0.
struct ROW {
    ROW* pNext;
    char szPin[6];           ///< pin name of the [Row] keyword
    bool bSelfCoupled;       ///< the diagonal entry was given
    unsigned uiColumnCount;  ///< number of columns that the row has by the shape of its matrix
    double* pdValues;        ///< values given, in the matrix's unit (Ohm, H, F)
    unsigned* puiColumns;    ///< column of each value in a sparse row; null elsewhere: value k is column k
    unsigned uiGiven;        ///< number of values given
    bool bUnordered;         ///< sparse: the columns do not ascend yet
};

/// Appends a row for a pin to a matrix. 1, or 0 if no row was made.
int ROW_Add(MTX* matrix, unsigned columnCount, std::string_view pin);

// A data line for the last row of a matrix, by the shape of the matrix.
void ROW_AddBandedData(MTX* matrix, std::string_view line);
void ROW_AddFullData(MTX* matrix, std::string_view line);
void ROW_AddSparseData(MTX* matrix, std::string_view line);

/// Value in column `k` (0 is the first) of a row, or null if it was not given.
const double* ROW_Column(const ROW* row, unsigned k);
/// Brings the values of a sparse row into the order of their columns.
void ROW_Sort(ROW* row);

/// Whether every row got its values. Banded and full rows are `strict`: they must be filled.
void ROW_CheckColumnCount(const ROW* list, bool strict);
/// Makes every row `columnCount` columns wide. 1, or BUG 3109 and 0 at a row that is wider.
int ROW_WidenAll(ROW* list, unsigned columnCount);
/// Releases the rows of a matrix with their values.
void ROW_FreeList(MTX& matrix);
