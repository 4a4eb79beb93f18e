#include "ibis/interface/talibis_print.h"

#include <array>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <new>

std::string printNumber(double value)
{
    std::array<char, 64> text;
    const auto result =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, 6);
    return {text.data(), result.ptr};
}

std::string printOptionalDataValue(double value, numstat status)
{
    switch (status) {
    case NUM_VALUE:
        return printNumber(value);
    case NUM_NA:
        return "NA";
    case NUM_ABSENT:
        break;
    }
    return {};
}

std::string printOptionalDataValue(const rng* values, const char* corner)
{
    const std::string_view word = corner == nullptr ? "Typ" : corner;
    if (values == nullptr || word == "Empty") {
        return {};
    }
    if (word == "Min" && values->eMin == NUM_VALUE) {
        return printNumber(values->dMin);
    }
    if (word == "Max" && values->eMax == NUM_VALUE) {
        return printNumber(values->dMax);
    }
    return printOptionalDataValue(values->dTyp, values->eTyp);
}

std::string padRight(std::string_view text, std::size_t width)
{
    std::string padded(text);
    padded.append(width > text.size() ? width - text.size() : 0, ' ');
    return padded;
}

std::string printColumn(double value, numstat status)
{
    return status == NUM_ABSENT ? " " : printOptionalDataValue(value, status);
}

std::string printRow(std::initializer_list<Column> columns)
{
    std::string row;
    for (const Column& column : columns) {
        row += padRight(column.text, column.width);
    }
    return row;
}

void insertRow(TalIbisListQueryData& list, std::string_view row)
{
    char* const block = static_cast<char*>(std::malloc(row.size() + 1));
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    std::memcpy(block, row.data(), row.size());
    block[row.size()] = '\0';
    list.insert(block);
}

void insertRow(TalIbisListQueryData& list, std::initializer_list<Column> columns)
{
    insertRow(list, printRow(columns));
}

void insertTitle(TalIbisListQueryData& list, std::initializer_list<Column> columns, std::size_t dashes)
{
    insertRow(list, columns);
    insertRow(list, std::string(dashes, '-'));
}

std::string printTriple(const rng& values)
{
    const std::string typ = printColumn(values.dTyp, values.eTyp);
    const std::string min = values.eMin == NUM_VALUE ? printNumber(values.dMin) : typ;
    const std::string max = values.eMax == NUM_VALUE ? printNumber(values.dMax) : typ;
    return printRow({{NUMBER_WIDTH, typ}, {NUMBER_WIDTH, min}, {NUMBER_WIDTH, max}});
}

void insertTriple(TalIbisListQueryData& list, const rng& values)
{
    static constexpr std::size_t dashes = 38;
    insertTitle(list, {{NUMBER_WIDTH, "typ"}, {NUMBER_WIDTH, "min"}, {NUMBER_WIDTH, "max"}}, dashes);
    insertRow(list, printTriple(values));
}
