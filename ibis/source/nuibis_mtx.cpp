#include "ibis/source/nuibis_mtx.h"

#include "ibis/source/nuibis_list.h"
#include "ibis/source/nuibis_pkgmdl.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <optional>

namespace
{

// Module state, reset by MTX_Init.
MTX* gpMtx = nullptr;  // matrix being read
// How many rows a matrix has of each name. One whose rows keep to the order of the pins, as nearly all do,
// needs no lookup: their names differ.
CMN_Map<std::pair<const MTX*, std::string_view>, unsigned> gRowNames;

// Smallest normal number of single precision: files are often written in it, and what is below is rounding.
constexpr double EPSILON = 1.1754943508222875e-38;

bool IsBanded(MTX_Type type)
{
    return type == MTX_BANDED || type == MTX_BANDED_WRAP;
}

MTX_Type TypeOf(std::string_view word)
{
    struct Name {
        std::string_view sWord;
        MTX_Type eType;
    };
    static constexpr std::array<Name, 3> names{
        {{"Banded_matrix", MTX_BANDED}, {"Sparse_matrix", MTX_SPARSE}, {"Full_matrix", MTX_FULL}}};
    const auto* const name =
        std::find_if(names.begin(), names.end(), [word](const Name& n) { return CMN_Equal(n.sWord, word); });
    return name == names.end() ? MTX_NOT_SET : name->eType;
}

// Columns that the next row has by the shape of the matrix; 0: the matrix takes no further row. A sparse
// matrix takes any number of rows, the count is told when it is closed.
unsigned NextColumnCount(const MTX& matrix)
{
    const unsigned n = matrix.uiRowCount;
    const unsigned r = matrix.uiRowsRead;
    const std::uint64_t width = std::uint64_t{matrix.uiBandwidth} + 1;
    const unsigned left = r > n ? 0 : n - r;
    switch (matrix.eMatrixType) {
    case MTX_BANDED:
        return static_cast<unsigned>(std::min<std::uint64_t>(width, left));
    case MTX_BANDED_WRAP:
        return r > n ? 0 : static_cast<unsigned>(std::min<std::uint64_t>(width, UINT_MAX));
    case MTX_SPARSE:
        return n;
    case MTX_FULL:
        return left;
    case MTX_NOT_SET:
        break;
    }
    return 0;
}

// Elements ------------------------------------------------------------------------------------------------

// Whether element (i, j) of a wrapped band is stored as (j, i).
bool IsSwappedInWrap(std::uint64_t n, std::uint64_t i, std::uint64_t j, std::uint64_t b)
{
    const std::uint64_t end = i + b + 1;
    if (end > n) {
        return i > j && j >= end % n;  // the row goes on in the columns ahead of end % n
    }
    return i > j || (i < b && j >= n - (b - i + n) % n);  // the wrapped end of row j reaches column i
}

// Place of column j within row i; UINT64_MAX for none.
std::uint64_t PlaceInRow(const MTX& matrix, std::uint64_t n, std::uint64_t i, std::uint64_t j)
{
    const std::uint64_t b = matrix.uiBandwidth;
    if (matrix.eMatrixType == MTX_SPARSE) {
        return j;
    }
    if (matrix.eMatrixType == MTX_BANDED_WRAP) {
        const std::uint64_t end = i + b + 1;
        if (end > n && j < end % n) {
            return b - end % n + j + 1;
        }
    }
    const std::uint64_t k = j < i ? UINT64_MAX : j - i;
    return IsBanded(matrix.eMatrixType) && k > b ? UINT64_MAX : k;
}

// End checks ----------------------------------------------------------------------------------------------

// Visits what row i stores beside the diagonal, with its columns.
template <class Visit> void ForEachCoupling(const MTX& matrix, unsigned i, Visit visit)
{
    const ROW& row = *matrix.ppRows[i];
    const std::uint64_t n = matrix.uiRowsRead;
    for (unsigned k = 0; k < row.uiGiven; ++k) {
        std::uint64_t column = row.puiColumns != nullptr ? row.puiColumns[k] : std::uint64_t{i} + k;
        if (matrix.eMatrixType == MTX_BANDED_WRAP) {
            column %= n;
        }
        if (column < n && column != i) {
            visit(static_cast<unsigned>(column), row.pdValues[k]);
        }
    }
}

// What the couplings of a pin come to at most, and whether one of them is above 0.
struct Extent {
    double dSum;
    double dLargest;
    bool bPositive;

    void add(double coupling)
    {
        dSum += std::fabs(coupling);
        dLargest = std::fabs(coupling) > dLargest ? std::fabs(coupling) : dLargest;
        bPositive = bPositive || coupling > 0.0;
    }
};

// Of each pin, in one pass over the numbers: in a good file nothing more has to be looked at.
CMN_Vector<Extent> ExtentsOf(const MTX& matrix)
{
    CMN_Vector<Extent> extents(matrix.uiRowsRead);
    for (unsigned i = 0; i < matrix.uiRowsRead; ++i) {
        ForEachCoupling(matrix, i, [&](unsigned column, double coupling) {
            extents[i].add(coupling);
            extents[column].add(coupling);
        });
    }
    return extents;
}

// The elements of each row that may be stored at all: a check of the numbers looks at these only, so that it
// takes the time that the numbers took to read, however large the matrix says that it is.
class Neighbours
{
  public:
    explicit Neighbours(const MTX& matrix) : mMatrix(matrix), mStart(matrix.uiRowsRead + std::size_t{2})
    {
        forEachEntry([this](unsigned, unsigned column) { ++mStart[column + std::size_t{2}]; });
        for (std::size_t i = 2; i < mStart.size(); ++i) {
            mStart[i] += mStart[i - 1];
        }
        mRows.resize(mStart.back());
        forEachEntry(
            [this](unsigned row, unsigned column) { mRows[mStart[column + std::size_t{1}]++] = row; });
    }

    /// Columns other than `i` in ascending order; valid until the next call.
    const auto& of(unsigned i)
    {
        mColumns.assign(mRows.begin() + static_cast<std::ptrdiff_t>(mStart[i]),
                        mRows.begin() + static_cast<std::ptrdiff_t>(mStart[i + std::size_t{1}]));
        ForEachCoupling(mMatrix, i, [this](unsigned column, double) { mColumns.push_back(column); });
        if (!std::is_sorted(mColumns.begin(), mColumns.end())) {
            std::sort(mColumns.begin(), mColumns.end());
        }
        mColumns.erase(std::unique(mColumns.begin(), mColumns.end()), mColumns.end());
        return mColumns;
    }

  private:
    template <class Visit> void forEachEntry(Visit visit) const
    {
        for (unsigned i = 0; i < mMatrix.uiRowsRead; ++i) {
            ForEachCoupling(mMatrix, i, [&](unsigned column, double) { visit(i, column); });
        }
    }

    const MTX& mMatrix;
    // Rows that have an entry in column i: mRows from mStart[i] to mStart[i + 1].
    CMN_Vector<std::size_t> mStart;
    CMN_Vector<unsigned> mRows;
    CMN_Vector<unsigned> mColumns;
};

class Dominance
{
  public:
    Dominance(std::string_view name, const MTX& matrix, const char* package)
        : msName(name), mMatrix(matrix), mpszPackage(package)
    {
    }

    void check()
    {
        const CMN_Vector<Extent> extents = ExtentsOf(mMatrix);
        for (unsigned i = 0; i < mMatrix.uiRowsRead; ++i) {
            checkRow(i, extents[i]);
        }
    }

  private:
    double element(unsigned i, unsigned j) const
    {
        return MTX_GetElement(mMatrix.uiRowsRead, i, j, &mMatrix);
    }
    const auto& neighboursOf(unsigned i)
    {
        if (!mNeighbours) {
            mNeighbours.emplace(mMatrix);
        }
        return mNeighbours->of(i);
    }
    void checkRow(unsigned i, const Extent& extent);
    void checkCoupling(unsigned i, unsigned j, double diagonal) const;
    void checkCapacitance(unsigned i, double diagonal);

    std::string_view msName;
    const MTX& mMatrix;
    const char* mpszPackage;
    std::optional<Neighbours> mNeighbours;
};

// Coupling is weaker than a pin's own resistance or inductance.
void Dominance::checkCoupling(unsigned i, unsigned j, double diagonal) const
{
    const double coupling = i == j ? 0.0 : element(i, j);
    if (std::fabs(coupling) > diagonal) {
        MSG_Warning(3720, mpszPackage, msName, diagonal, PKGMDL_GetPinName(i), coupling,
                    PKGMDL_GetPinName(j));
    }
}

// A capacitance matrix of the Maxwell form: off the diagonal nothing is positive, and the diagonal covers the
// sum of its row.
void Dominance::checkCapacitance(unsigned i, double diagonal)
{
    double sum = 0.0;
    for (const unsigned j : neighboursOf(i)) {
        const double coupling = element(i, j);
        sum += std::fabs(coupling);
        if (j > i && coupling > EPSILON) {
            MSG_Error(3722, mpszPackage, msName, coupling, PKGMDL_GetPinName(i), PKGMDL_GetPinName(j));
        }
    }
    if (std::fabs(diagonal - sum) > EPSILON && sum > diagonal && sum - diagonal > diagonal * 0.0001) {
        MSG_Error(3721, mpszPackage, msName, diagonal, PKGMDL_GetPinName(i), sum);
    }
}

void Dominance::checkRow(unsigned i, const Extent& extent)
{
    const double diagonal = element(i, i);
    if (diagonal < 0.0 && std::fabs(diagonal) > EPSILON) {
        MSG_Error(3719, mpszPackage, msName, diagonal, PKGMDL_GetPinName(i));
    } else if (msName == "Capacitance") {
        if (extent.bPositive || !(extent.dSum <= diagonal)) {
            checkCapacitance(i, diagonal);
        }
    } else if (diagonal < 0.0) {
        // Below 0 by rounding: even the absent elements are above it, and each is told.
        for (unsigned j = 0; j < mMatrix.uiRowsRead; ++j) {
            checkCoupling(i, j, diagonal);
        }
    } else if (extent.dLargest > diagonal) {
        for (const unsigned j : neighboursOf(i)) {
            checkCoupling(i, j, diagonal);
        }
    }
}

void CheckDominance(std::string_view name, const MTX& matrix, const char* package)
try {
    Dominance(name, matrix, package).check();
} catch (const std::bad_alloc&) {
    // Told by the allocation itself; the rest of the check falls away.
}

}  // namespace

void MTX_Init()
{
    gpMtx = nullptr;
    gRowNames.clear();
}

void MTX_New(MTX** out, std::string_view type, unsigned rowCount)
{
    MTX_CloseCurrent();
    if (!CMN_Alloc(*out)) {
        MSG_ErrorLine(3700);
        return;
    }
    gpMtx = *out;
    gpMtx->uiRowCount = rowCount;
    gpMtx->eMatrixType = TypeOf(type);
    if (type.empty()) {
        MSG_ErrorLine(3701);
    } else if (gpMtx->eMatrixType == MTX_NOT_SET) {
        MSG_ErrorLine(3702, type);
    }
}

void MTX_SetBandwidth(MTX* matrix, std::string_view text)
{
    if (!IsBanded(matrix->eMatrixType)) {
        MSG_ErrorLine(3703);
        return;
    }
    matrix->bBandwidthSeen = true;
    const CMN_Number result = CMN_GetUnsigned(text, &matrix->uiBandwidth);
    if (result == CMN_INVALID) {
        MSG_ErrorLine(3704);
    } else if (result == CMN_SUSPICIOUS) {
        MSG_ErrorLine(3705);
    }
    if (matrix->uiBandwidth >= matrix->uiRowCount) {
        MSG_ErrorLine(3706, matrix->uiBandwidth, matrix->uiRowCount);
    }
}

void MTX_AddRow(MTX* matrix, std::string_view pin)
{
    if (const unsigned columnCount = NextColumnCount(*matrix); columnCount != 0) {
        ROW_Add(matrix, columnCount, pin);
    }
}

void MTX_AddRowData(MTX* matrix, std::string_view line)
{
    if (matrix->uiRowsRead == 0) {
        return;
    }
    if (matrix->eMatrixType == MTX_SPARSE) {
        ROW_AddSparseData(matrix, line);
    } else if (matrix->eMatrixType == MTX_FULL) {
        ROW_AddFullData(matrix, line);
    } else {
        ROW_AddBandedData(matrix, line);
    }
}

void MTX_CloseCurrent()
{
    if (gpMtx == nullptr) {
        return;
    }
    if (gpMtx->uiRowsRead != gpMtx->uiRowCount) {
        MSG_ErrorLine(3717, gpMtx->uiRowCount, gpMtx->uiRowsRead);
    }
    ROW_CheckColumnCount(gpMtx->pRows, gpMtx->eMatrixType != MTX_SPARSE);
    gpMtx = nullptr;
}

void MTX_CheckAtEnd(std::string_view name, MTX* matrix, const char* package)
{
    if (IsBanded(matrix->eMatrixType) && !matrix->bBandwidthSeen) {
        MSG_Error(3716, name);
        return;
    }
    for (ROW* row = matrix->pRows; row != nullptr; row = row->pNext) {
        ROW_Sort(row);
    }
    CheckDominance(name, *matrix, package);
}

double MTX_GetElement(unsigned n, unsigned i, unsigned j, const MTX* matrix)
{
    if (n == 0) {
        return 0.0;
    }
    const bool swap =
        matrix->eMatrixType == MTX_BANDED_WRAP ? IsSwappedInWrap(n, i, j, matrix->uiBandwidth) : i > j;
    if (swap) {
        std::swap(i, j);
    }
    if (i >= matrix->uiRowsRead) {
        return 0.0;
    }
    const ROW* const row = matrix->ppRows[i];
    const std::uint64_t k = PlaceInRow(*matrix, n, i, j);
    const double* const value = k < row->uiColumnCount ? ROW_Column(row, static_cast<unsigned>(k)) : nullptr;
    return value == nullptr ? 0.0 : *value;
}

void MTX_Free(MTX* matrix)
{
    if (matrix != nullptr) {
        MTX_Init();
        ROW_FreeList(*matrix);
        CMN_Release(matrix->ppRows);
        CMN_Release(matrix->puiFilled);
        CMN_Free(matrix);
    }
}

int MTX_GetBandwidth(unsigned* out)
{
    if (gpMtx == nullptr) {
        MSG_BugLine(3714);
        return 0;
    }
    if (!IsBanded(gpMtx->eMatrixType)) {
        MSG_BugLine(3715);
        return 0;
    }
    *out = gpMtx->uiBandwidth;
    return 1;
}

int MTX_GetRowCount(unsigned* out)
{
    if (gpMtx == nullptr) {
        MSG_BugLine(3713);
        return 0;
    }
    *out = gpMtx->uiRowCount;
    return 1;
}

int MTX_IsBandedWrap()
{
    if (gpMtx == nullptr) {
        MSG_BugLine(3711);
        return 0;
    }
    if (!IsBanded(gpMtx->eMatrixType)) {
        MSG_BugLine(3712);
        return 0;
    }
    return gpMtx->eMatrixType == MTX_BANDED_WRAP ? 1 : 0;
}

int MTX_SetBandedWrap(unsigned columnCount)
{
    if (gpMtx == nullptr) {
        MSG_BugLine(3707);
        return 0;
    }
    if (gpMtx->eMatrixType == MTX_BANDED_WRAP) {
        MSG_BugLine(3709);
        return 0;
    }
    if (gpMtx->eMatrixType != MTX_BANDED) {
        MSG_BugLine(3710);
        return 0;
    }
    gpMtx->eMatrixType = MTX_BANDED_WRAP;
    const unsigned limit = gpMtx->uiRowCount == 0 ? 0 : (gpMtx->uiRowCount - 1) / 2;
    if (gpMtx->uiBandwidth > limit) {
        MSG_ErrorLine(3708, limit);
        return 0;
    }
    return ROW_WidenAll(gpMtx->pRows, columnCount);
}

unsigned MTX_CountRows(MTX& matrix, std::string_view pin, unsigned index)
{
    if (!matrix.bRowsNamed && index == matrix.uiRowsRead + 1) {
        return 0;
    }
    MTX_NameRows(&matrix);
    const auto name = gRowNames.find({&matrix, pin});
    return name == gRowNames.end() ? 0 : name->second;
}

void MTX_NameRows(MTX* matrix)
{
    if (matrix == nullptr || matrix->bRowsNamed) {
        return;
    }
    for (const ROW* row = matrix->pRows; row != nullptr; row = row->pNext) {
        gRowNames[{matrix, row->szPin}] = 1;
    }
    matrix->bRowsNamed = true;
}

int MTX_Append(MTX& matrix, ROW* row)
try {
    if (!CMN_GrowPointers(matrix.ppRows, matrix.uiRowsRead)) {
        return 0;
    }
    if (matrix.bRowsNamed) {
        ++gRowNames[{&matrix, row->szPin}];
    }
    (matrix.uiRowsRead == 0 ? matrix.pRows : MTX_LastRow(matrix)->pNext) = row;
    matrix.ppRows[matrix.uiRowsRead++] = row;
    return 1;
} catch (const std::bad_alloc&) {
    return 0;
}

ROW* MTX_LastRow(const MTX& matrix)
{
    return matrix.ppRows[matrix.uiRowsRead - 1];
}

unsigned MTX_FilledBy(const MTX& matrix, unsigned column)
{
    return column <= matrix.uiFilledRoom ? matrix.puiFilled[column - 1] : 0;
}

int MTX_NoteFilled(MTX& matrix, unsigned column)
{
    if (column > matrix.uiFilledRoom) {
        const unsigned room = std::min(std::max(column, 2 * matrix.uiFilledRoom), matrix.uiRowCount);
        if (!CMN_Realloc(matrix.puiFilled, room)) {
            MSG_ErrorLine(3106);
            return 0;
        }
        std::fill(matrix.puiFilled + matrix.uiFilledRoom, matrix.puiFilled + room, 0U);
        matrix.uiFilledRoom = room;
    }
    matrix.puiFilled[column - 1] = matrix.uiRowsRead;
    return 1;
}
