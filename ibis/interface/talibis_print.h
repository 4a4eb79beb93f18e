// How values and rows of the report queries are written.

#pragma once

#include "ibis/interface/talibis_query.h"
#include "ibis/source/nuibis_rng.h"

#include <new>
#include <string>
#include <string_view>

/// Runs a query into its record: cleared first, and an error without text when memory is out.
template <class Query> void answerQuery(TalIbisQueryData& record, Query query) noexcept
{
    try {
        record.clear();
        query();
    } catch (const std::bad_alloc&) {
        record.setUnformatedError(QueryError, nullptr);
    }
}

/// A number as "%g" writes it, "." being the decimal point in every locale.
std::string printNumber(double value);
/// A value by its status: "%g", "NA", or empty when not given.
std::string printOptionalDataValue(double value, numstat status);
/// A corner of a triple: "Min" and "Max" give that corner when it is a number, otherwise typ; "Empty" and a
/// null triple give the empty string; any other word, and null, gives typ.
std::string printOptionalDataValue(const rng* values, const char* corner);
/// `text` padded with blanks behind it to `width`; a longer text is not cut.
std::string padRight(std::string_view text, std::size_t width);
/// Adds a row to a list record.
void insertRow(TalIbisListQueryData& list, std::string_view row);
/// Adds a line of `count` dashes.
void insertDashes(TalIbisListQueryData& list, std::size_t count);
