#include "ibis/source/nuibis_curve.h"

#include "ibis/source/nuibis_list.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace
{

constexpr double SAME_VOLTAGE = 1e-5;                             // V
constexpr double NO_VOLTAGE = std::numeric_limits<float>::max();  // no table reaches this far

struct Point {
    double dV;
    double dI;
    double dReach;  // highest voltage up to this point
};

const rngp* NextVoltage(const rngp* row)
{
    while (row != nullptr && row->eFirst != NUM_VALUE) {
        row = row->pNext;
    }
    return row;
}

std::size_t CountRows(const rngp* row)
{
    std::size_t count = 0;
    for (; row != nullptr; row = row->pNext) {
        ++count;
    }
    return count;
}

// One column as a piecewise linear function of the voltage.
class Column
{
  public:
    // `sign` -1 mirrors a descending table, which makes it ascend.
    Column(const rngp* head, nuibis_corner corner, double sign)
    {
        const RNGP_Column& column = CORNER_Column(corner);
        mPoints.reserve(CountRows(head));
        double reach = -std::numeric_limits<double>::infinity();
        for (const rngp* row = CRV_NextPoint(head, corner); row != nullptr;
             row = CRV_NextPoint(row->pNext, corner)) {
            const double v = sign * row->dFirst;
            reach = v > reach ? v : reach;
            mPoints.push_back({v, row->*column.pdValue, reach});
        }
    }

    bool isEmpty() const { return mPoints.empty(); }

    double at(double v)
    {
        if (mPoints.size() == 1) {
            return mPoints.front().dI;
        }
        moveTo(v);
        const Point taken = mPoints[mCurrent];
        return v == taken.dV ? taken.dI : lineThrough(taken, v);
    }

  private:
    // To the first point at or above `v`, or to the last one. Voltages that rise from call to call move on
    // from the former point; where a table turns back, the points' running maximum leads to the place.
    void moveTo(double v)
    {
        if (mCurrent > 0 && !(mPoints[mCurrent - 1].dReach < v)) {
            const auto place =
                std::lower_bound(mPoints.begin(), mPoints.end(), v,
                                 [](const Point& point, double voltage) { return point.dReach < voltage; });
            mCurrent = static_cast<std::size_t>(place - mPoints.begin());
        }
        while (mCurrent + 1 < mPoints.size() && mPoints[mCurrent].dReach < v) {
            ++mCurrent;
        }
    }

    // The other end of a line is the point before, at the start of the table the next one. Of points that
    // share a voltage one more is passed over, and a step that is all a table has gets a width.
    double lineThrough(const Point& taken, double v) const
    {
        const bool atStart = mCurrent == 0;
        Point other = mPoints[atStart ? 1 : mCurrent - 1];
        if (other.dV == taken.dV) {
            const bool more = atStart ? mPoints.size() > 2 : mCurrent > 1;
            other = more ? mPoints[atStart ? 2 : mCurrent - 2] : other;
        }
        if (other.dV == taken.dV) {
            other.dV += SAME_VOLTAGE;
        }
        const double slope = (other.dI - taken.dI) / (other.dV - taken.dV);  // A/V
        return taken.dI + slope * (v - taken.dV);
    }

    CMN_Vector<Point> mPoints;
    std::size_t mCurrent = 0;
};

// Turns a descending table around for as long as it lives.
class Ascending
{
  public:
    explicit Ascending(crv* table)
        : mpTable(table), miDirection(table == nullptr ? 0 : CRV_Direction(table->pHead))
    {
        turnIfDescending();
    }
    ~Ascending() { turnIfDescending(); }
    Ascending(const Ascending&) = delete;
    Ascending& operator=(const Ascending&) = delete;

    // Null for a table that has no voltage axis.
    const rngp* rows() const { return miDirection == 0 ? nullptr : mpTable->pHead; }

  private:
    void turnIfDescending()
    {
        if (miDirection < 0) {
            mpTable->pHead = CRV_Reverse(mpTable->pHead);
        }
    }

    crv* mpTable;
    int miDirection;
};

double Take(const rngp*& cursor)
{
    const double v = cursor->dFirst;
    cursor = NextVoltage(cursor->pNext);
    return v;
}

// The next voltage of two tables that are walked side by side.
double TakeLower(const rngp*& a, const rngp*& b)
{
    if (a == nullptr) {
        return Take(b);
    }
    if (b == nullptr) {
        return Take(a);
    }
    if (std::fabs(a->dFirst - b->dFirst) < SAME_VOLTAGE) {
        Take(b);
        return Take(a);
    }
    return b->dFirst > a->dFirst ? Take(a) : Take(b);
}

// What one table brings to one column of a sum.
struct Addend {
    nuibis_corner eCorner;
    Column column;
};

void AddColumn(CMN_Vector<Addend>& addends, const rngp* head, nuibis_corner corner)
{
    Column column(head, corner, 1.0);
    if (!column.isEmpty()) {
        addends.push_back({corner, std::move(column)});
    }
}

// The new last row of the sum.
rngp* AppendPoint(crv& sum, rngp* last, double v, std::span<Addend> addends)
{
    rngp* row = nullptr;
    if (!RNGP_Create(&row)) {
        throw std::bad_alloc();
    }
    (last == nullptr ? sum.pHead : last->pNext) = row;
    row->pPrev = last;
    row->dFirst = v;
    row->eFirst = NUM_VALUE;
    for (Addend& addend : addends) {
        const RNGP_Column& column = CORNER_Column(addend.eCorner);
        row->*column.pdValue += addend.column.at(v);
        row->*column.peStatus = NUM_VALUE;
    }
    return row;
}

void Fill(crv& sum, const rngp* a, const rngp* b, unsigned mask)
{
    CMN_Vector<Addend> addends;
    for (const nuibis_corner corner : CORNERS) {
        if ((mask & corner) != 0) {
            AddColumn(addends, a, corner);
            AddColumn(addends, b, corner);
        }
    }
    a = NextVoltage(a);
    b = NextVoltage(b);
    rngp* last = nullptr;
    while (a != nullptr || b != nullptr) {
        const double v = TakeLower(a, b);
        if (std::fabs(v - (last == nullptr ? NO_VOLTAGE : last->dFirst)) > SAME_VOLTAGE) {
            last = AppendPoint(sum, last, v, addends);
        }
    }
}

}  // namespace

const rngp* CRV_NextPoint(const rngp* row, nuibis_corner corner)
{
    const RNGP_Column& column = CORNER_Column(corner);
    while (row != nullptr && (row->eFirst != NUM_VALUE || row->*column.peStatus != NUM_VALUE)) {
        row = row->pNext;
    }
    return row;
}

CRV_Curve CRV_Combine(crv* a, crv* b, unsigned mask)
try {
    crv* holder = nullptr;
    if (!CMN_Alloc(holder)) {
        MSG_Bug(3300);
        return nullptr;
    }
    CRV_Curve sum(holder);
    const Ascending first(a);
    const Ascending second(b);
    Fill(*sum, first.rows(), second.rows(), mask);
    return sum;
} catch (const std::bad_alloc&) {
    return nullptr;
}

crv* CRV_ZeroCurve()
{
    static std::array<rngp, 2> rows{};
    static crv zero{nullptr};
    if (zero.pHead == nullptr) {
        rows[0] = {&rows[1], nullptr, 0.0, NUM_VALUE, 0.0, NUM_VALUE, 0.0, NUM_VALUE, 0.0, NUM_VALUE};
        rows[1] = {nullptr, &rows[0], 1.0, NUM_VALUE, 0.0, NUM_VALUE, 0.0, NUM_VALUE, 0.0, NUM_VALUE};
        zero.pHead = rows.data();
    }
    return &zero;
}

bool CRV_Evaluate(const crv* table, double x, nuibis_corner corner, double* value)
try {
    const int direction = table == nullptr ? 0 : CRV_Direction(table->pHead);
    if (direction == 0) {
        return false;
    }
    Column column(table->pHead, corner, direction);
    if (column.isEmpty()) {
        return false;
    }
    *value = column.at(direction * x);
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

bool CRV_FewerThanTwo(const rngp* head, nuibis_corner corner)
{
    const rngp* const first = CRV_NextPoint(head, corner);
    return first == nullptr || CRV_NextPoint(first->pNext, corner) == nullptr;
}

int CRV_Direction(const rngp* row)
{
    const rngp* const first = NextVoltage(row);
    if (first == nullptr) {
        return 0;
    }
    const rngp* other = NextVoltage(first->pNext);
    while (other != nullptr && other->dFirst == first->dFirst) {
        other = NextVoltage(other->pNext);
    }
    return other == nullptr ? 0 : first->dFirst > other->dFirst ? -1 : 1;
}

rngp* CRV_Reverse(rngp* head)
{
    rngp* last = nullptr;
    while (head != nullptr) {
        last = head;
        head = head->pNext;
        std::swap(last->pNext, last->pPrev);
    }
    return last;
}

void CRV_NegateFirst(rngp* head)
{
    for (; head != nullptr; head = head->pNext) {
        if (head->eFirst != NUM_ABSENT) {
            head->dFirst *= -1.0;
        }
    }
}

void CRV_ShiftFirst(rngp* head, double v)
{
    for (; head != nullptr; head = head->pNext) {
        if (head->eFirst != NUM_ABSENT) {
            head->dFirst += v;
        }
    }
}
