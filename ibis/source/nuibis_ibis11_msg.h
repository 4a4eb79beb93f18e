// What the reader of version 1.0 and 1.1 files has to say. It is older than the numbered catalogue: a table
// of its own, reached by index, and frames of its own. The framed texts go into the container of the read.
//
//     IBIS11_Tell(21, "File Rev");

#pragma once

#include "ibis/source/nuibis_msg.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <string_view>
#include <type_traits>

enum IBIS11_Severity : unsigned {
    IBIS11_BUG = 1,
    IBIS11_ERROR = 2,
    IBIS11_ERROR_LINE = 3,  ///< with the number of the current line
    IBIS11_WARNING = 4,
};

struct IBIS11_Message {
    IBIS11_Severity eSeverity;
    const char* pszText;
    int iIndex;  ///< its place in the table
};

// Indices are the identity of a message. 0, 1, 2 and 4 speak of a program that does not fit its own tables,
// which is checked while compiling here; of 65 nobody makes use any more.
// clang-format off
inline constexpr std::array<IBIS11_Message, 66> gaOldMessages{{
    {IBIS11_BUG, "This Program's Primary Keyword Structure is Erroneous", 0},
    {IBIS11_BUG, "This Program's Model Subparameter Structure Is Erroneous", 1},
    {IBIS11_BUG, "Unhandled Keyword: %s", 2},
    {IBIS11_BUG, "Reached Maximum Pin Count On Component '%s'", 3},
    {IBIS11_BUG, "Unhandled Model Subparameter: %s", 4},
    {IBIS11_ERROR, "Filename Requires 'ibs' Extension.  ABORTING!!!", 5},
    {IBIS11_ERROR, "Missing Keyword: %s", 6},
    {IBIS11_ERROR, "Unable To Open File '%s'", 7},
    {IBIS11_ERROR, "Unable To Rewind File For Second (Component) Pass", 8},
    {IBIS11_ERROR, "Package '%s' Subparameter Not Defined For Component '%s'", 9},
    {IBIS11_ERROR, "'%s' Keyword Not Defined For Component '%s'", 10},
    {IBIS11_ERROR, "'%s' Subparameter Not Defined for Model '%s'", 11},
    {IBIS11_ERROR, "'Voltage Range' Keyword Not Defined For Model '%s'", 12},
    {IBIS11_ERROR, "'Ramp' Keyword Not Defined For Model '%s'", 13},
    {IBIS11_ERROR, "Ramp '%s' Subparameter Not Defined for Model '%s'", 14},
    {IBIS11_ERROR, "'%s' Keyword Missing Data For Model '%s'", 15},
    {IBIS11_ERROR, "Model '%s': '%s' Curve Requires More Than 1 Entry", 16},
    {IBIS11_ERROR, "'Pin' Keyword Missing Data For Component '%s'", 17},
    {IBIS11_ERROR, "Model '%s' %s Curve %s With A Typical Value of 'NA'", 18},
    {IBIS11_ERROR_LINE, "Keywords Must Begin In Column 1", 19},
    {IBIS11_ERROR_LINE, "'%s' Keyword Missing %s", 20},
    {IBIS11_ERROR_LINE, "'%s' Keyword Already Defined", 21},
    {IBIS11_ERROR_LINE, "'%s' Subparameter Missing %s", 22},
    {IBIS11_ERROR_LINE, "Incorrect Number of Line Items (%s) For %s: Expecting %s", 23},
    {IBIS11_ERROR_LINE, "Too Many Line Items For '%s'", 24},
    {IBIS11_ERROR_LINE, "Orphaned Keyword '%s'.  Needs a '%s'", 25},
    {IBIS11_ERROR_LINE, "Invalid %s Value (\"%s\")", 26},
    {IBIS11_ERROR_LINE, "Expecting Keyword.  Invalid Line", 27},
    {IBIS11_ERROR_LINE, "Exceeds 80 characters", 28},
    {IBIS11_ERROR_LINE, "Keyword Missing Ending Bracket (']')", 29},
    {IBIS11_ERROR_LINE, "Invalid Keyword", 30},
    {IBIS11_ERROR_LINE, "Invalid Comment Character '%1.1s'", 31},
    {IBIS11_ERROR_LINE, "Invalid Comment Character Definition", 32},
    {IBIS11_ERROR_LINE, "Non-Comment Line Exists After 'End' Keyword", 33},
    {IBIS11_ERROR_LINE, "%s Over %s Characters Long", 34},
    {IBIS11_ERROR_LINE, "Pin '%s' %s Over 20 Characters Long", 35},
    {IBIS11_ERROR_LINE, "File name Too Long", 36},
    {IBIS11_ERROR_LINE, "File name (\"%s\") Does Not Match Internal Name (\"%s\")", 37},
    {IBIS11_ERROR_LINE, "File name Requires 'ibs' Extension", 38},
    {IBIS11_ERROR_LINE, "Invalid Character (\"%1.1s\") In File name", 39},
    {IBIS11_ERROR_LINE, "'IBIS Ver' Keyword Not First In File", 40},
    {IBIS11_ERROR_LINE, "IBIS Version Cannot Be Determined.  ABORTING!!!", 41},
    {IBIS11_ERROR_LINE, "Invalid IBIS Version (\"%s\").  ABORTING!!!", 42},
    {IBIS11_ERROR_LINE, "'%s' Keyword Missing Name", 43},
    {IBIS11_ERROR_LINE, "'%s' Keyword Already Defined For Component '%s'", 44},
    {IBIS11_ERROR_LINE, "Unknown Line Among %s Data", 45},
    {IBIS11_ERROR_LINE, "Package Subparameter '%s' Already Defined For Component '%s'", 46},
    {IBIS11_ERROR_LINE, "'%s' Definition Missing '%s' Data", 47},
    {IBIS11_ERROR_LINE, "%s Pin Subparameter Must Be '%s'", 48},
    {IBIS11_ERROR_LINE, "Invalid Pin Subparameter (\"%s\")", 49},
    {IBIS11_ERROR_LINE, "Pin Subparameter '%s' Defined Multiple Times", 50},
    {IBIS11_ERROR_LINE, "Pin Subparameter '%s' Is Missing", 51},
    {IBIS11_ERROR_LINE, "6 Line Items Not Allowed For These Pin Definitions", 52},
    {IBIS11_ERROR_LINE, "Pin '%s' Already Defined", 53},
    {IBIS11_ERROR_LINE, "Model Name '%s' Undefined For Pin '%s'", 54},
    {IBIS11_ERROR_LINE, "Invalid %s Name (\"%s\"); Reserved Word.", 55},
    {IBIS11_ERROR_LINE, "Model Name Previously Defined (\"%s\")", 56},
    {IBIS11_ERROR_LINE, "%s Already Defined For Model '%s'", 57},
    {IBIS11_ERROR_LINE, "Invalid %s Line For Model '%s'", 58},
    {IBIS11_ERROR_LINE, "Invalid %s (\"%s\") for Model '%s'", 59},
    {IBIS11_ERROR_LINE, "Invalid %s (\"%s\") for Model '%s' (try '%s')", 60},
    {IBIS11_ERROR_LINE, "Exceeding %s Points For %s", 61},
    {IBIS11_ERROR_LINE, "Maximum Item Size Exceeded", 62},
    {IBIS11_ERROR_LINE, "Ramp Subparameter '%s' Already Defined For Model '%s'", 63},
    {IBIS11_WARNING, "Suspicious %s Value (\"%s\"); Numeric In Scale.", 64},
    {IBIS11_WARNING, "Filename '%s' should be lowercase", 65},
}};
// clang-format on

static_assert(std::ranges::all_of(gaOldMessages, [](const IBIS11_Message& row) {
    return &row == &gaOldMessages[static_cast<std::size_t>(row.iIndex)];
}));

/// The index of a message whose text takes arguments of these kinds, checked while compiling.
template <MSG_Kind... Kinds> struct IBIS11_Site {
    int iIndex;
    consteval IBIS11_Site(int index) : iIndex(index)
    {
        MSG_Detail::CheckArguments<Kinds...>(gaOldMessages.at(static_cast<std::size_t>(index)).pszText);
    }
};

/// Formats a row of the table and reports it.
void IBIS11_TellRow(int index, std::span<const MSG_Arg> args);

template <class... Args>
void IBIS11_Tell(std::type_identity_t<IBIS11_Site<MSG_KindOf<Args>...>> site, Args... args)
{
    if constexpr (sizeof...(Args) == 0) {
        IBIS11_TellRow(site.iIndex, {});
    } else {
        const MSG_Arg list[] = {MSG_Arg(args)...};
        IBIS11_TellRow(site.iIndex, list);
    }
}

/// Counts, frames and stores a text.
void IBIS11_Report(IBIS11_Severity severity, std::string_view text);

/// Counters of the current read, apart from those of the process.
extern unsigned guiOldBugs;
extern unsigned guiOldErrors;
extern unsigned guiOldWarnings;
