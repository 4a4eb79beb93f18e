// Lines, fields and numbers of version 1.0 and 1.1 files, in the rules of the time: a blank and an underscore
// of a keyword differ, a scale is judged by its letter and not applied, no character is refused.
//
// A file is read twice. In the second pass the line reader is quiet: what it has to say was said in the
// first.

#pragma once

#include "ibis/source/nuibis_cmn.h"
#include "ibis/source/nuibis_ibis11_msg.h"
#include "ibis/source/nuibis_list.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <set>
#include <span>
#include <string_view>

/// What a line is. Codes of keywords are positions in the keyword table.
enum IBIS11_Kind : int {
    IBIS11_DATA = -1,
    IBIS11_IBIS_VER = 0,
    IBIS11_COMMENT_CHAR = 1,  ///< never leaves the line reader
    IBIS11_FILE_NAME = 2,
    IBIS11_FILE_REV = 3,
    IBIS11_DATE = 4,
    IBIS11_SOURCE = 5,
    IBIS11_NOTES = 6,
    IBIS11_DISCLAIMER = 7,
    IBIS11_COMPONENT = 8,
    IBIS11_MANUFACTURER = 9,
    IBIS11_PACKAGE = 10,
    IBIS11_PIN = 11,
    IBIS11_MODEL = 12,
    IBIS11_VOLTAGE_RANGE = 13,
    IBIS11_PULLDOWN = 14,
    IBIS11_PULLUP = 15,
    IBIS11_GND_CLAMP = 16,
    IBIS11_POWER_CLAMP = 17,
    IBIS11_RAMP = 18,
    IBIS11_END = 19,
};

/// Name of a keyword as messages print it.
std::string_view IBIS11_KeywordName(IBIS11_Kind kind);

// State of the read, reset by IBIS11_Open ------------------------------------------------------------------

extern unsigned guiPass;          ///< 1: header and models, 2: components
extern unsigned guiOldLine;       ///< from 1 in each pass
extern unsigned guiKeywordCount;  ///< keyword lines seen
extern bool gbLineCheck;          ///< report lines over 80 characters
extern bool gbSkipData;           ///< pass over data lines until the next good keyword

// Lines ----------------------------------------------------------------------------------------------------

/// Takes over an open file and starts the first pass.
void IBIS11_OpenText(std::FILE* file);
/// Back to the start of the file for the second pass; false if the file cannot go back.
bool IBIS11_RewindText();
void IBIS11_CloseText();

/// Gives the next keyword or data line; false at the end of the file.
bool IBIS11_NextLine(IBIS11_Kind& kind);
/// The next request gives the current line again.
void IBIS11_PutBack();
/// True if the next line is a data line. A keyword stays for the next request.
bool IBIS11_NextDataLine();

// Fields ---------------------------------------------------------------------------------------------------

/// Longest field that is kept.
inline constexpr std::size_t IBIS11_ITEM_LIMIT = 41;

/// The fields of a line: views into it. A field that was not kept is empty.
struct IBIS11_Items {
    int iCount = 0;  ///< how many stand on the line
    std::array<std::string_view, 6> aszItems;

    std::string_view operator[](int i) const { return aszItems[static_cast<std::size_t>(i)]; }
};

/// The current line from behind its keyword, up to the comment, without blanks around it.
std::string_view IBIS11_LineText();
/// Takes the next field off the cursor; empty at the end of the text.
std::string_view IBIS11_NextField(std::string_view& cursor);
/// Splits the current line; a field over the limit is reported and not kept.
IBIS11_Items IBIS11_Split();

/// True if `count` is one of the two. Otherwise a message, in which a keyword counts as an item of its line.
bool IBIS11_CheckCount(bool keyword, int count, int expected, int alternative, std::string_view label);

// Numbers --------------------------------------------------------------------------------------------------

inline constexpr char IBIS11_PLAIN = ' ';
inline constexpr char IBIS11_NA = 'N';

/// A number as it is written: the scale is told by the status and not applied.
struct IBIS11_Number {
    double dValue;
    char cStatus;  ///< 0 while absent, IBIS11_PLAIN, IBIS11_NA, or the letter of the scale
};

void IBIS11_ReadNumber(bool allowNA, std::string_view text, std::string_view label, IBIS11_Number& number);

/// A column of numbers.
struct IBIS11_Column {
    std::string_view sName;
    bool bAllowNA;
};

inline constexpr std::array<IBIS11_Column, 3> IBIS11_TYP_MIN_MAX{
    {{"typ", false}, {"min", true}, {"max", true}}};

struct IBIS11_Triple {
    bool bSeen;
    std::array<IBIS11_Number, 3> aValues;  ///< in the order of IBIS11_TYP_MIN_MAX
};

/// Reads columns from item `first` on with `read(column, text, allowNA)`. Each missing column gets its
/// message, and so does what stands behind the last one.
template <class Read>
void IBIS11_ReadColumns(bool keyword, const IBIS11_Items& items, int first, std::string_view label,
                        std::span<const IBIS11_Column> columns, Read read)
{
    int item = first;
    for (std::size_t i = 0; i < columns.size(); ++i, ++item) {
        if (item < items.iCount) {
            read(i, items[item], columns[i].bAllowNA);
        } else if (keyword) {
            IBIS11_Tell(20, label, columns[i].sName);
        } else {
            IBIS11_Tell(47, label, columns[i].sName);
        }
    }
    if (items.iCount > item) {
        IBIS11_CheckCount(keyword, items.iCount, item, item, label);
    }
}

/// The same into an array of numbers.
void IBIS11_ReadNumbers(bool keyword, const IBIS11_Items& items, int first, std::string_view label,
                        std::span<const IBIS11_Column> columns, std::span<IBIS11_Number> numbers);

// Names ----------------------------------------------------------------------------------------------------

/// Longest name of a model or a signal.
inline constexpr unsigned IBIS11_NAME_LIMIT = 20;

/// Message 34 if `text` is longer than `limit`; true if it is not.
bool IBIS11_CheckLength(std::string_view text, unsigned limit, std::string_view label);
/// GND, NC or POWER, case-blind: a pin may name them in place of a model.
bool IBIS11_IsReserved(std::string_view name);
/// Message 55 for the word "NA", case-blind; true for any other name.
bool IBIS11_CheckNA(std::string_view name, std::string_view label);
/// The same for "NA" and the reserved names.
bool IBIS11_CheckReserved(std::string_view name, std::string_view label);

/// A set of names, compared exactly. Adding gives false if the name is there already.
class IBIS11_Names
{
  public:
    bool add(std::string_view name)
    {
        Name copy;
        CMN_CopyText(copy.szText, name);
        return mNames.insert(copy).second;
    }
    bool contains(std::string_view name) const { return mNames.contains(name); }
    std::size_t size() const { return mNames.size(); }
    void clear() { mNames.clear(); }

  private:
    struct Name {
        char szText[IBIS11_NAME_LIMIT + 1];
        operator std::string_view() const { return szText; }
    };
    struct Less {
        using is_transparent = void;
        bool operator()(std::string_view a, std::string_view b) const { return a < b; }
    };

    std::set<Name, Less, CMN_Allocator<Name>> mNames;
};
