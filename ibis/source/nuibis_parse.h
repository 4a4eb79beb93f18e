// The driver: turns a file into calls on keyword modules. It owns the line loop, the comment character, the
// classification of lines, the keyword tables of the versions and the dispatch; what a keyword means is the
// business of its module.
//
// A module is a group of keywords with three entries:
//   <MOD>_Init()                      the group's head keyword was met: make the record, reset the module
//   <MOD>_Line(lineType, code, text)  one line of the group, from its first non-blank on, comment cut; a
//   keyword
//                                     line still begins with "["
//   <MOD>_Leave(newCode)              the keyword in force is over and `newCode` follows, of whatever group

#pragma once

#include "ibis/source/nuibis_keyword.h"
#include "ibis/source/nuibis_types.h"

#include <span>
#include <string_view>

/// Reads a file. 1 if it was opened and run through, however many errors were reported; 0 if not.
int PARSE_ReadFile(const char* name, ibis_file_type type);

/// Text of the parameter file last read: all lines joined with blanks, comments cut. Lives until the next
/// parameter file is read or the text is freed; a view without data when there is none.
std::string_view PARSE_GetFileText();
/// Ends the life of that text, so that nobody takes it for the text of a file that could not be read.
void PARSE_FreeFileText();

/// The comment character that is in force.
char PARSE_GetCommentChar();

/// One row of the keyword table.
struct PARSE_Keyword {
    std::string_view sText;  ///< upper case, blanks as underscores
    nuibis_keyword eCode;
    ibis_ver eFirst;  ///< first version that admits it
    ibis_ver eLast;   ///< last version that admits it
};

/// All keywords, in the order in which they are searched; the first match wins.
std::span<const PARSE_Keyword> PARSE_GetKeywords();
/// Whether files of this version (2.x and later) and type may hold the keyword, as whatever its text stands
/// for.
bool PARSE_IsRead(const PARSE_Keyword& keyword, ibis_ver version, ibis_file_type type);

/// Recognises the keyword of a line. `old` is the keyword in force before it: of the texts that stand for
/// several keywords, the place decides. 1, or 0 with a message and NOT_KEY.
int PARSE_GetKeyword(std::string_view text, nuibis_keyword old, nuibis_keyword* out);
/// Text of a keyword of the 2.x files; BUG 904 for any other.
std::string_view PARSE_GetKeywordName(nuibis_keyword code);
