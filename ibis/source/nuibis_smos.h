// [Series MOSFET]: the current of a series transistor over its gate voltage, one table for each drain-source
// voltage.

#pragma once

#include "ibis/source/nuibis_crv.h"

struct nuibis_mdl;

/// The keyword line: appends a new record to the list that starts at `head` and makes it the current one. Its
/// table is opened by the caller. 1 on success.
int SMOS_Open(std::string_view text, smos*& head, smos** out);
/// A data line of the current record, if there is one: the first gives Vds, the others are rows of the table.
void SMOS_Line(std::string_view text);
/// The end of the current record, if there is one, and of its table.
void SMOS_Close(const nuibis_mdl* model, nuibis_keyword keyword);
/// Error 2806 for each pair of records whose Vds lie closer than 1 nV.
void SMOS_CheckVds(const smos* list, std::string_view modelName, std::string_view label);
/// Null is fine.
void SMOS_FreeList(smos* list);
