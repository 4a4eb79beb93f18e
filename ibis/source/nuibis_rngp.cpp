#include "ibis/source/nuibis_rngp.h"

#include "ibis/source/nuibis_list.h"

#include <cmath>
#include <limits>
#include <utility>

namespace
{

// Tells how often a value stands in the first column of the list being read. A column that strictly rises or
// falls, as nearly all do, needs no lookup; the first value that does neither makes an index of the rows.
class FirstColumn
{
  public:
    // Number of rows in the list that have `value`, which is taken in as that of the next row.
    unsigned enter(rngp* const& head, double value)
    {
        if (mppHead != &head || head == nullptr) {
            reset();
            mppHead = &head;
            mbStrict = head == nullptr;
        }
        if (std::isnan(value) || (mbStrict && goesOn(value))) {
            return 0;
        }
        if (mCounts.empty()) {
            index(head);
        }
        return mCounts[value]++;
    }
    void reset()
    {
        mCounts.clear();
        mppHead = nullptr;
        mdLast = std::numeric_limits<double>::quiet_NaN();
        miDirection = 0;
    }

  private:
    bool goesOn(double value)
    {
        const int step = (value > mdLast) - (value < mdLast);
        mbStrict = std::isnan(mdLast) || (step != 0 && step != -miDirection);
        miDirection = step;
        mdLast = value;
        return mbStrict;
    }
    void index(const rngp* row)
    {
        for (; row != nullptr; row = row->pNext) {
            if (!std::isnan(row->dFirst)) {
                ++mCounts[row->dFirst];
            }
        }
    }

    CMN_Map<double, unsigned> mCounts;  // empty while the column is strict; 0.0 and -0.0 are one key
    rngp* const* mppHead = nullptr;
    bool mbStrict = true;
    double mdLast = std::numeric_limits<double>::quiet_NaN();
    int miDirection = 0;
};

// Rows are by far the most frequent records of a file. They come from blocks, and a freed row is used again;
// the blocks are released when no row is left.
class RowPool
{
  public:
    // A row of zeros; null when memory is out.
    rngp* take()
    {
        if (mpFree == nullptr && muiUnused == 0 && !addBlock()) {
            return nullptr;
        }
        ++muiTaken;
        if (mpFree == nullptr) {
            return &mpBlocks->aRows[BLOCK_ROWS - muiUnused--];
        }
        rngp* const row = mpFree;
        mpFree = row->pNext;
        *row = {};
        return row;
    }
    void give(rngp*& head)
    {
        rngp* last = nullptr;
        for (rngp* row = head; row != nullptr; row = row->pNext) {
            last = row;
            --muiTaken;
        }
        if (last != nullptr) {
            last->pNext = std::exchange(mpFree, head);
        }
        head = nullptr;
        if (muiTaken == 0) {
            CMN_FreeList(mpBlocks);
            mpFree = nullptr;
            muiUnused = 0;
        }
    }

  private:
    static constexpr std::size_t BLOCK_ROWS = 255;

    struct Block {
        Block* pNext;
        std::array<rngp, BLOCK_ROWS> aRows;
    };

    bool addBlock()
    {
        Block* block = nullptr;
        if (!CMN_Alloc(block)) {
            return false;
        }
        block->pNext = std::exchange(mpBlocks, block);
        muiUnused = BLOCK_ROWS;
        return true;
    }

    Block* mpBlocks = nullptr;  // rows are taken from the first one
    rngp* mpFree = nullptr;
    std::size_t muiUnused = 0;  // rows at the end of the first block
    std::size_t muiTaken = 0;
};

RowPool gRows;

// The list being read; both are bound anew by the first row of another list.
LIST_Tail<rngp> gTail;
FirstColumn gFirstColumn;

unsigned CountEqual(rngp* const& head, double value)
try {
    return gFirstColumn.enter(head, value);
} catch (const std::bad_alloc&) {
    gFirstColumn.reset();
    unsigned count = 0;
    for (const rngp* row = head; row != nullptr; row = row->pNext) {
        count += row->dFirst == value ? 1 : 0;
    }
    return count;
}

// Fields that a line lacks at its end.
void ReportCount(int count, std::string_view label)
{
    if (count < 1 || count > 4) {
        MSG_ErrorLine(1402, count, label, 4);
        return;
    }
    static constexpr std::array<std::string_view, 3> names{"typical", "minimum", "maximum"};
    for (auto i = static_cast<std::size_t>(count) - 1; i < names.size(); ++i) {
        MSG_ErrorLine(1401, names[i], label);
    }
}

// The row of a line.
bool Create(rngp** out)
{
    if (!RNGP_Create(out)) {
        MSG_Bug(1404, __FILE_NAME__, __LINE__);
        return false;
    }
    return true;
}

}  // namespace

int RNGP_Create(rngp** out)
{
    *out = gRows.take();
    return *out != nullptr ? 1 : 0;
}

bool RNGP_ReadPlainLine(std::string_view text, rngp** out)
{
    *out = nullptr;
    rngp values{};
    bool plain = CMN_TakePlainValue(text, &values.dFirst, &values.eFirst);
    for (const RNGP_Column& column : RNGP_CORNERS) {
        plain = plain && CMN_TakePlainValue(text, &(values.*column.pdValue), &(values.*column.peStatus));
    }
    CMN_SkipSpace(text);
    if (!plain || !text.empty()) {
        return false;
    }
    if (Create(out)) {
        **out = values;
    }
    return true;
}

int RNGP_ReadLine(std::string_view text, std::string_view tableLabel, std::string_view firstColumnLabel,
                  rngp** out)
{
    if (RNGP_ReadPlainLine(text, out)) {
        return *out != nullptr ? 1 : 0;
    }
    const CMN_TokenList tokens = CMN_Split(text, 4);
    ReportCount(tokens.iFound, tableLabel);
    if (!Create(out)) {
        return 0;
    }
    rngp& row = **out;
    CMN_GetValueOrNA(tokens[0], tableLabel, firstColumnLabel, &row.dFirst, &row.eFirst);
    for (int i = 0; i < 3; ++i) {
        const RNGP_Column& column = RNGP_CORNERS[static_cast<std::size_t>(i)];
        CMN_GetValueOrNA(tokens[i + 1], tableLabel, column.sName, &(row.*column.pdValue),
                         &(row.*column.peStatus));
    }
    return 1;
}

void RNGP_Append(rngp*& head, rngp* row, unsigned* count, bool checkRepeat)
{
    if (checkRepeat) {
        for (unsigned equal = CountEqual(head, row->dFirst); equal != 0; --equal) {
            MSG_WarningLine(1403, row->dFirst);
        }
    }
    *count = gTail.append(head, row);
}

int RNGP_Previous(const rngp* row, rngp** out)
{
    *out = row->pPrev;
    return *out != nullptr ? 1 : 0;
}

void RNGP_FreeRows(rngp*& head)
{
    gTail = {};
    gFirstColumn.reset();
    gRows.give(head);
}

bool RNGP_CheckEnds(const rngp* head, std::string_view label, unsigned line, const RNGP_EndCodes& codes)
{
    if (head == nullptr || head->pNext == nullptr) {
        MSG_Error(codes.tooFew, label, line);
        return false;
    }
    std::array<bool, RNGP_CORNERS.size()> required{true};
    const rngp* last = head;
    for (const rngp* row = head; row != nullptr; row = row->pNext) {
        for (std::size_t i = 0; i < required.size(); ++i) {
            required[i] = required[i] || row->*RNGP_CORNERS[i].peStatus == NUM_VALUE;
        }
        last = row;
    }
    const auto check = [&](std::string_view end, const rngp& row) {
        for (std::size_t i = 0; i < required.size(); ++i) {
            if (required[i] && row.*RNGP_CORNERS[i].peStatus == NUM_NA) {
                MSG_Error(codes.missing, end, RNGP_CORNERS[i].sName, label, line);
            }
        }
    };
    check("First", *head);
    check("Last", *last);
    return true;
}
