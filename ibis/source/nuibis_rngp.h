// One row of a table: a first column (V in the I-V tables, s in waveforms) and typical, minimum and maximum
// values. Every table of the format is a list of these rows in file order; no row is sorted or dropped,
// however bad it is.

#pragma once

#include "ibis/source/nuibis_cmn.h"

/// A column of a row, with its name in messages.
struct RNGP_Column {
    std::string_view sName;
    double rngp::*pdValue;
    numstat rngp::*peStatus;
};

/// The value columns, in their order on the line and in messages.
inline constexpr std::array<RNGP_Column, 3> RNGP_CORNERS{{
    {"Typical", &rngp::dTyp, &rngp::eTyp},
    {"Minimum", &rngp::dMin, &rngp::eMin},
    {"Maximum", &rngp::dMax, &rngp::eMax},
}};

/// A row of zeros. 1, or 0 when memory is out.
int RNGP_Create(rngp** out);
/// Reads a line of four fields. 1 when a row was made, whether or not its values were good; a field that is
/// missing or unreadable is reported and stays NUM_ABSENT. The caller owns the row until it is appended.
int RNGP_ReadLine(std::string_view text, std::string_view tableLabel, std::string_view firstColumnLabel,
                  rngp** out);
/// Nearly every line of a table has four values and nothing to be told: true for such a line, with its row,
/// which is null when memory is out. False for any other line, of which `RNGP_ReadLine` tells.
bool RNGP_ReadPlainLine(std::string_view text, rngp** out);
/// Appends to the list that starts at `head` and gives its length with the new row. `checkRepeat` warns
/// (1403) once for each earlier row whose first column is equal, whatever the statuses; a list is appended to
/// either always with this check or never. No walk: the list being read is remembered.
void RNGP_Append(rngp*& head, rngp* row, unsigned* count, bool checkRepeat);
/// 1 and the row before, or 0 at the head.
int RNGP_Previous(const rngp* row, rngp** out);
/// Null is fine.
void RNGP_FreeRows(rngp*& head);

/// What a table reports when it closes.
struct RNGP_EndCodes {
    MSG_Site<MSG_Kind::Text, MSG_Kind::Integer> tooFew;  ///< (label, line)
    /// ("First" or "Last", column, label, line)
    MSG_Site<MSG_Kind::Text, MSG_Kind::Text, MSG_Kind::Text, MSG_Kind::Integer> missing;
};

/// A table needs two rows, and numbers in its first and last row, but for a minimum or maximum column without
/// any number. `line` is that of the table's keyword. True with two rows or more.
bool RNGP_CheckEnds(const rngp* head, std::string_view label, unsigned line, const RNGP_EndCodes& codes);
