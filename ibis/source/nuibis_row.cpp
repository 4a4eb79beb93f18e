#include "ibis/source/nuibis_row.h"

#include "ibis/source/nuibis_list.h"
#include "ibis/source/nuibis_mtx.h"
#include "ibis/source/nuibis_pkgmdl.h"

#include <algorithm>

namespace
{

constexpr unsigned PIN_LIMIT = 5;

// Room for one value more.
bool MakeRoom(MTX& matrix, ROW& row, bool sparse)
{
    if (!BLOCK_Grow(matrix.values, row.pdValues, row.uiGiven) ||
        (sparse && !BLOCK_Grow(matrix.columns, row.puiColumns, row.uiGiven))) {
        MSG_ErrorLine(3106);
        return false;
    }
    return true;
}

bool Append(MTX& matrix, ROW& row, double value)
{
    if (!MakeRoom(matrix, row, false)) {
        return false;
    }
    row.pdValues[row.uiGiven++] = value;
    row.bSelfCoupled = true;  // the first entry is the diagonal
    return true;
}

bool ReadNumber(std::string_view text, double* value)
{
    const CMN_Number result = CMN_GetValue(text, value);
    if (result == CMN_INVALID) {
        MSG_ErrorLine(3103);
    } else if (result == CMN_SUSPICIOUS) {
        MSG_WarningLine(3104);
    }
    return result != CMN_INVALID;
}

// A value finds its banded row full. A row near the bottom, which was cut short at the last column, may go on
// into the first columns: the band wraps round, and with it every row of the matrix gets the whole width.
bool WrapBand(const MTX& matrix, const ROW& row)
{
    unsigned bandwidth = 0;
    unsigned rows = 0;
    if (!MTX_GetBandwidth(&bandwidth) || !MTX_GetRowCount(&rows)) {
        return false;
    }
    const std::uint64_t width = std::uint64_t{bandwidth} + 1;
    const bool reachesEnd = std::uint64_t{row.uiColumnCount} + matrix.uiRowsRead > rows;
    if (row.uiColumnCount == width || !reachesEnd || MTX_IsBandedWrap()) {
        MSG_ErrorLine(3107, row.uiColumnCount);
        return false;
    }
    const auto newCount = static_cast<unsigned>(width);
    if (width <= row.uiColumnCount) {
        MSG_BugLine(3108, __FILE_NAME__, __LINE__, newCount, row.uiColumnCount);
        return false;
    }
    // The matrix being read may be another one than that of a repeated keyword.
    return MTX_SetBandedWrap(newCount) && row.uiGiven < row.uiColumnCount;
}

// Index of the pin whose column a sparse line names, or 0.
unsigned FindColumn(const MTX& matrix, const ROW& row, std::string_view pin)
{
    unsigned column = 0;
    if (!PKGMDL_FindPinIndex(pin, &column)) {
        MSG_ErrorLine(3100, pin);
        return 0;
    }
    if (column < matrix.uiRowsRead) {
        MSG_ErrorLine(3111);
        return 0;
    }
    if (column > row.uiColumnCount) {
        MSG_BugLine(3112, __FILE_NAME__, __LINE__);
        return 0;
    }
    if (MTX_FilledBy(matrix, column) == matrix.uiRowsRead) {
        MSG_ErrorLine(3113, column);
        return 0;
    }
    return column;
}

void StoreSparse(MTX& matrix, ROW& row, unsigned column, double value)
{
    if (!MTX_NoteFilled(matrix, column) || !MakeRoom(matrix, row, true)) {
        return;
    }
    row.bUnordered |= row.uiGiven != 0 && row.puiColumns[row.uiGiven - 1] > column - 1;
    row.pdValues[row.uiGiven] = value;
    row.puiColumns[row.uiGiven++] = column - 1;
}

ROW* NewRow(MTX& matrix, unsigned columnCount, std::string_view pin)
{
    if (pin.empty()) {
        MSG_ErrorLine(3120);
        return nullptr;
    }
    if (columnCount == 0) {
        MSG_ErrorLine(3122);
        return nullptr;
    }
    ROW* row = nullptr;
    if (!BLOCK_Take(matrix.values, row)) {
        MSG_ErrorLine(3119);
        return nullptr;
    }
    if (pin.size() > PIN_LIMIT) {
        MSG_ErrorLine(3121);
    }
    CMN_CopyText(row->szPin, pin);
    CMN_CheckReserved(row->szPin);
    row->uiColumnCount = columnCount;
    return row;
}

}  // namespace

int ROW_Add(MTX* matrix, unsigned columnCount, std::string_view pin)
{
    ROW* const row = NewRow(*matrix, columnCount, pin);
    if (row == nullptr) {
        return 0;
    }
    unsigned index = 0;
    if (!PKGMDL_FindPinIndex(row->szPin, &index)) {
        MSG_ErrorLine(3100, row->szPin);
    }
    for (unsigned repeats = MTX_CountRows(*matrix, row->szPin, index); repeats > 0; --repeats) {
        MSG_ErrorLine(3101, row->szPin);
    }
    if (!MTX_Append(*matrix, row)) {
        MSG_ErrorLine(3119);
        return 0;
    }
    if (index != 0 && index != matrix->uiRowsRead) {
        MSG_ErrorLine(3102, row->szPin, index, matrix->uiRowsRead);
    }
    return 1;
}

void ROW_AddFullData(MTX* matrix, std::string_view line)
{
    ROW& row = *MTX_LastRow(*matrix);
    for (std::string_view token = CMN_NextToken(line); !token.empty(); token = CMN_NextToken(line)) {
        double value = 0.0;
        if (!ReadNumber(token, &value)) {
            return;
        }
        if (row.uiGiven == row.uiColumnCount) {
            MSG_ErrorLine(3105);
            return;
        }
        if (!Append(*matrix, row, value)) {
            return;
        }
    }
}

void ROW_AddBandedData(MTX* matrix, std::string_view line)
{
    ROW& row = *MTX_LastRow(*matrix);
    for (std::string_view token = CMN_NextToken(line); !token.empty(); token = CMN_NextToken(line)) {
        double value = 0.0;
        if (!ReadNumber(token, &value) || (row.uiGiven == row.uiColumnCount && !WrapBand(*matrix, row)) ||
            !Append(*matrix, row, value)) {
            return;
        }
    }
}

void ROW_AddSparseData(MTX* matrix, std::string_view line)
{
    ROW& row = *MTX_LastRow(*matrix);
    const std::string_view pin = CMN_NextToken(line);
    if (pin.empty()) {
        MSG_ErrorLine(3110);
        return;
    }
    if (pin == row.szPin) {
        row.bSelfCoupled = true;
    }
    const unsigned column = FindColumn(*matrix, row, pin);
    if (column == 0) {
        return;
    }
    const std::string_view number = CMN_NextToken(line);
    if (number.empty()) {
        MSG_ErrorLine(3114);
        return;
    }
    double value = 0.0;
    if (!ReadNumber(number, &value)) {
        return;
    }
    StoreSparse(*matrix, row, column, value);
    if (const std::string_view excess = CMN_NextToken(line); !excess.empty()) {
        MSG_ErrorLine(3115, excess);
    }
}

const double* ROW_Column(const ROW* row, unsigned k)
{
    if (row->puiColumns == nullptr) {
        return k < row->uiGiven ? row->pdValues + k : nullptr;
    }
    const unsigned* const begin = row->puiColumns;
    const unsigned* const end = begin + row->uiGiven;
    const unsigned* const found =
        row->bUnordered ? std::find(begin, end, k) : std::lower_bound(begin, end, k);
    return found != end && *found == k ? row->pdValues + (found - begin) : nullptr;
}

void ROW_Sort(ROW* row)
try {
    if (!row->bUnordered) {
        return;
    }
    CMN_Vector<std::pair<unsigned, double>> entries(row->uiGiven);
    for (unsigned k = 0; k < row->uiGiven; ++k) {
        entries[k] = {row->puiColumns[k], row->pdValues[k]};
    }
    std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    for (unsigned k = 0; k < row->uiGiven; ++k) {
        row->puiColumns[k] = entries[k].first;
        row->pdValues[k] = entries[k].second;
    }
    row->bUnordered = false;
} catch (const std::bad_alloc&) {
    // Told by the allocation itself; the row stays as it is and is searched from its start.
}

void ROW_CheckColumnCount(const ROW* list, bool strict)
{
    bool allGood = true;
    for (const ROW* row = list; row != nullptr; row = row->pNext) {
        if (strict && row->uiGiven != row->uiColumnCount) {
            MSG_ErrorLine(3116, row->uiColumnCount, row->szPin, row->uiGiven, row->uiGiven == 1 ? '\0' : 's');
            allGood = false;
        } else if (!strict && row->uiGiven == 0) {
            MSG_ErrorLine(3117, row->szPin);
            allGood = false;
        } else if (allGood && !row->bSelfCoupled) {
            MSG_ErrorLine(3118, row->szPin);
        }
    }
}

int ROW_WidenAll(ROW* list, unsigned columnCount)
{
    for (; list != nullptr; list = list->pNext) {
        if (list->uiColumnCount > columnCount) {
            MSG_BugLine(3109, __FILE_NAME__, __LINE__);
            return 0;
        }
        list->uiColumnCount = columnCount;
    }
    return 1;
}

void ROW_FreeList(MTX& matrix)
{
    BLOCK_Free(matrix.values);
    BLOCK_Free(matrix.columns);
    matrix.pRows = nullptr;
}
