// Arithmetic on I-V tables (A over V): sums of tables on one voltage axis, values beyond the ends, and the
// mirroring and shifting that bring tables of different references onto the axis of the pad voltage.
//
// A row is a point of a column when it has a number in the first column and in that column.

#pragma once

#include "ibis/source/nuibis_corner.h"
#include "ibis/source/nuibis_crv.h"

#include <memory>

/// The first point of the corner's column at or behind `row`, or null.
const rngp* CRV_NextPoint(const rngp* row, nuibis_corner corner);

struct CRV_Deleter {
    void operator()(crv* table) const { CRV_Free(table); }
};
/// A computed table, owned by who asked for it.
using CRV_Curve = std::unique_ptr<crv, CRV_Deleter>;

/// The sum of two tables over the union of their voltages, ascending, points closer than 1e-5 V merged into
/// the first. Beyond its ends a table goes on along its end segment; a column of a single point is a
/// constant, one without points adds nothing. Only the corners of `mask` are filled. Either table may be
/// null, and one whose voltages are all equal counts as having no points. A descending table is turned around
/// for the time of the call. Null only when memory is out.
CRV_Curve CRV_Combine(crv* a, crv* b, unsigned mask);
/// The shared table of 0 A at 0 V and at 1 V. Not to be changed or freed. A sum with it is a copy.
crv* CRV_ZeroCurve();
/// The current at voltage `x`, along the end segments beyond the ends. False, with `*value` untouched, for a
/// column without points and for a table whose voltages are all equal.
bool CRV_Evaluate(const crv* table, double x, nuibis_corner corner, double* value);
/// True when the corner's column has fewer than two points.
bool CRV_FewerThanTwo(const rngp* head, nuibis_corner corner);
/// Sense of the first two different voltages at or behind a row: 1 ascending, -1 descending, 0 when none
/// differ.
int CRV_Direction(const rngp* row);
/// Reverses a list in place; the new head.
rngp* CRV_Reverse(rngp* head);
/// Mirrors the voltages at 0 V.
void CRV_NegateFirst(rngp* head);
/// Adds `v` to the voltages.
void CRV_ShiftFirst(rngp* head, double v);
