// Current over voltage (A over V): [Pulldown], [Pullup], [GND Clamp], [POWER Clamp], [ISSO_PD], [ISSO_PU],
// [Series Current], the table of a [Series MOSFET], and the tables of a [Submodel].
//
// One table is read at a time: CRV_Open, a CRV_AddLine for each data line, CRV_Close.

#pragma once

#include "ibis/source/nuibis_keyword.h"
#include "ibis/source/nuibis_rngp.h"

enum CRV_TrackState : std::uint32_t {
    TRACK_EMPTY = 0,  ///< nothing seen
    TRACK_RUNNING = 1,
    TRACK_REPORTED = 2,  ///< found to be non-monotonic: nothing more to tell
};

enum CRV_TrackDirection : std::uint32_t {
    TRACK_UNKNOWN = 0,
    TRACK_RISING = 1,
    TRACK_FALLING = 2,
};

/// Follows the values of a column for the monotonic test. Starts as zeros.
struct crvtrack {
    double dLast;
    CRV_TrackState uiState;
    CRV_TrackDirection uiDirection;
};

/// Feeds a value; true once, at the first value that goes against the column's direction. Flat stretches are
/// monotonic either way.
bool CRV_Track(crvtrack& track, double value);

/// The keyword line of a table: makes `*field`, freeing a table that is there already (1100), and resets the
/// state of the table being read. 1 on success.
int CRV_Open(std::string_view text, std::string_view label, crv** field);
/// A data line of the open table; a null table takes none.
void CRV_AddLine(std::string_view text, crv* table, std::string_view label);
/// The end of the open table: its end rows, the sense of its current and its zero. `context` is the word
/// before the owner's name, "Model" or "Submodel"; `keyword` is always that of a model's table.
void CRV_Close(std::string_view ownerName, nuibis_model_type type, nuibis_keyword keyword, const crv* table,
               std::string_view label, std::string_view context);

/// Piecewise linear interpolation at `x`. Each out is a new double that the caller frees, or null where the
/// table has no value: beyond its ends, or at a corner without numbers. A corner of "NA" takes the typical
/// value of its row.
void CRV_Interpolate(const crv* table, double x, double** typ, double** min, double** max);

/// Rows and holder. Null is fine.
void CRV_Free(crv* table);
