// How values and rows of the report queries are written.

#pragma once

#include "ibis/interface/talibis_query.h"
#include "ibis/source/nuibis_rng.h"

#include <algorithm>
#include <initializer_list>
#include <new>
#include <string>
#include <string_view>
#include <vector>

/// Runs a query into its record as it stands: an error without text when memory is out.
template <class Query> void extendQuery(TalIbisQueryData& record, Query query) noexcept
{
    try {
        query();
    } catch (const std::bad_alloc&) {
        record.setUnformatedError(QueryError, nullptr);
    }
}
/// The same into a record that is cleared first.
template <class Query> void answerQuery(TalIbisQueryData& record, Query query) noexcept
{
    record.clear();
    extendQuery(record, query);
}

// Lists that grew at their front hold a file's records newest first.
template <class T> std::vector<const T*> inFileOrder(const T* head)
{
    std::vector<const T*> records;
    for (; head != nullptr; head = head->pNext) {
        records.push_back(head);
    }
    std::reverse(records.begin(), records.end());
    return records;
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
/// The same value as a column of a table: one blank where it was not given.
std::string printColumn(double value, numstat status);

/// Width of a column that holds a number.
inline constexpr std::size_t NUMBER_WIDTH = 14;

/// A column of a row. The width is a minimum: a longer text shifts what follows and is never cut.
struct Column {
    std::size_t width;
    std::string_view text;
};
std::string printRow(std::initializer_list<Column> columns);

/// Adds a row to a list record.
void insertRow(TalIbisListQueryData& list, std::string_view row);
void insertRow(TalIbisListQueryData& list, std::initializer_list<Column> columns);
/// Opens a report table: the row of titles, and a line of `dashes` dashes, whose number is the table's own
/// and not the sum of its columns.
void insertTitle(TalIbisListQueryData& list, std::initializer_list<Column> columns, std::size_t dashes);
/// A table of one triple: typ, min, max.
void insertTriple(TalIbisListQueryData& list, const rng& values);
/// Its data columns: a corner that is no number shows typ.
std::string printTriple(const rng& values);
