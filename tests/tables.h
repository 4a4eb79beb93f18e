// I-V tables made by hand, for tests of the arithmetic on them.

#pragma once

#include "ibis/source/nuibis_curve.h"

#include "tests/builders.h"

#include <cmath>
#include <functional>
#include <limits>
#include <utility>
#include <vector>

/// The word "NA".
inline constexpr double NA = std::numeric_limits<double>::quiet_NaN();

/// A row: voltage and the three currents.
struct TableRow {
    double dV;
    double dTyp;
    double dMin = NA;
    double dMax = NA;
};

inline void SetNumber(double& value, numstat& status, double given)
{
    value = std::isnan(given) ? 0.0 : given;
    status = std::isnan(given) ? NUM_NA : NUM_VALUE;
}

/// A table of these rows, as if it was read.
inline CRV_Curve Table(const std::vector<TableRow>& rows)
{
    crv* holder = nullptr;
    CMN_Alloc(holder);
    unsigned count = 0;
    for (const TableRow& given : rows) {
        rngp* row = nullptr;
        RNGP_Create(&row);
        SetNumber(row->dFirst, row->eFirst, given.dV);
        SetNumber(row->dTyp, row->eTyp, given.dTyp);
        SetNumber(row->dMin, row->eMin, given.dMin);
        SetNumber(row->dMax, row->eMax, given.dMax);
        RNGP_Append(holder->pHead, row, &count, false);
    }
    return CRV_Curve(holder);
}

/// A function sampled from `from` in equal steps, which may be negative.
inline CRV_Curve Sampled(const std::function<double(double)>& f, double from, double step, int count)
{
    std::vector<TableRow> rows;
    for (int i = 0; i < count; ++i) {
        const double v = from + i * step;
        rows.push_back({v, f(v)});
    }
    return Table(rows);
}

/// Voltage and current of each row; the current is no number where the column has none.
using Points = std::vector<std::pair<double, double>>;

inline Points PointsOf(const crv* table, nuibis_corner corner = CORNER_TYP)
{
    const RNGP_Column& column = CORNER_Column(corner);
    Points points;
    for (const rngp* row = table->pHead; row != nullptr; row = row->pNext) {
        EXPECT_EQ(row->eFirst, NUM_VALUE);
        points.emplace_back(row->dFirst, row->*column.peStatus == NUM_VALUE ? row->*column.pdValue : NAN);
    }
    return points;
}
