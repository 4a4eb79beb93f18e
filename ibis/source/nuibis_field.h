// The readers of the line shapes that repeat through the families. A family hands in the line, the field to
// fill and a constant struct with its own message numbers; what differs between families is in that struct.

#pragma once

#include "ibis/source/nuibis_cmn.h"
#include "ibis/source/nuibis_rng.h"

#include <algorithm>
#include <array>
#include <span>

// A line's name in a table --------------------------------------------------------------------------------

/// Name of a subparameter line: its first token, which an equals sign ends too.
inline std::string_view FIELD_ItemName(std::string_view text)
{
    return CMN_NextTokenDelim(text, '=');
}

/// The row whose `sName` is exactly `name`, or null.
template <class Row, std::size_t N>
const Row* FIELD_FindByName(const std::array<Row, N>& rows, std::string_view name)
{
    const auto* const row =
        std::find_if(rows.begin(), rows.end(), [name](const Row& r) { return r.sName == name; });
    return row == rows.end() ? nullptr : row;
}

// One scalar: "name = value" ------------------------------------------------------------------------------

struct FIELD_ScalarCodes {
    MSG_Text1 invalidLine;   ///< (name): a part is missing, or the second is no "="
    MSG_Count wrongCount;    ///< (count, name, 3): more than three parts; reading goes on
    MSG_Text2 invalidValue;  ///< (name, text)
    MSG_Text3 suspicious;  ///< (label, name, text): a digit stands in the unit; 0 where the family is silent
};

/// Reads the value of "name = value". False, with a message and `*out` untouched, if there is none.
bool FIELD_ReadScalar(std::string_view text, std::string_view name, std::string_view label,
                      const FIELD_ScalarCodes& codes, double* out);
/// Makes the field's number first, 0.0: a subparameter that was given but cannot be read counts as given.
/// `*field` must be null; it stays so only when memory is out.
void FIELD_NewScalar(std::string_view text, std::string_view name, std::string_view label,
                     const FIELD_ScalarCodes& codes, double** field);

// One word out of a table ---------------------------------------------------------------------------------

struct FIELD_WordCodes {
    MSG_Text3 wrongCase;  ///< (what, text, right spelling)
    MSG_Text2 unknown;    ///< (what, text)
};

/// Row of `word` in `words`: the first row that matches, exactly or but for case, decides. -1 with a message
/// unless it matches exactly.
int FIELD_FindWord(std::string_view word, std::span<const std::string_view> words, std::string_view what,
                   const FIELD_WordCodes& codes);

// One setting: "name word" ----------------------------------------------------------------------------------

struct FIELD_SettingCodes {
    MSG_Text1 missing;      ///< (name): nothing follows the name
    MSG_Text1 invalidLine;  ///< (name): an equals sign follows it; 0 where "=" is a character as any other
    MSG_Count wrongCount;   ///< (count, name, 2)
};

/// The word behind a subparameter's name; a view without data, with a message, unless the line has just these
/// two.
std::string_view FIELD_ReadSetting(std::string_view text, std::string_view name,
                                   const FIELD_SettingCodes& codes);
/// The row of that word in `words`, or -1 with a message.
int FIELD_ReadWord(std::string_view text, std::string_view name, std::span<const std::string_view> words,
                   const FIELD_SettingCodes& settingCodes, const FIELD_WordCodes& wordCodes);

// A count behind a keyword --------------------------------------------------------------------------------

struct FIELD_CountCodes {
    MSG_Plain blank;
    MSG_Plain duplicate;   ///< the count is there already; it stays
    MSG_Plain suspicious;  ///< warning: text is left over; the value stands
    MSG_Plain bad;
    MSG_Plain zero;
};

/// Reads "[Number Of ...] count" into `*out`, which is 0 until its keyword was met.
void FIELD_ReadCount(std::string_view text, const FIELD_CountCodes& codes, unsigned* out);

// A name into a fixed field -------------------------------------------------------------------------------

/// Length that names of models and signals may have in the current version.
inline unsigned FIELD_NameLimit()
{
    return geIbisVersion < IBIS_VER_4 ? 20 : 40;
}

/// Stores at most `limit` characters; a longer name is reported with `limit`. True if it was not too long.
bool FIELD_SetName(std::span<char> dst, std::string_view name, unsigned limit, MSG_Int1 tooLong);

// A block keyword -----------------------------------------------------------------------------------------

struct FIELD_BlockCodes {
    MSG_Where noBracket;   ///< BUG: the driver has already refused such a line
    MSG_Count wrongCount;  ///< (fields + 1, label, 1): something stands behind the bracket
};

/// Steps behind the bracket of a keyword that takes no items and reports what stands there. False only when
/// the bracket is missing.
bool FIELD_OpenBlock(std::string_view text, std::string_view label, const FIELD_BlockCodes& codes);

struct FIELD_RecordCodes {
    MSG_Plain repeated;  ///< the record is there already
    MSG_Where noMemory;  ///< BUG; 0 where the family tells it in another way
    FIELD_BlockCodes block;
};

/// The keyword line of a block that has a record of its own: frees a record that is there already, makes
/// `*field`, and takes the line as FIELD_OpenBlock does. False, with `*field` null, when memory is out.
template <class Record>
bool FIELD_OpenRecord(std::string_view text, std::string_view label, const FIELD_RecordCodes& codes,
                      void (*release)(Record*), Record** field)
{
    if (*field != nullptr) {
        MSG_ErrorLine(codes.repeated);
        release(*field);
        *field = nullptr;
    }
    if (!CMN_Alloc(*field)) {
        if (codes.noMemory) {
            MSG_Bug(codes.noMemory, __FILE_NAME__, __LINE__);
        }
        return false;
    }
    FIELD_OpenBlock(text, label, codes.block);
    return true;
}

// A typ/min/max triple ------------------------------------------------------------------------------------

/// Reads the triple behind a line's first token into `*field`, which must be null. A typical value of "NA" is
/// reported with `typicalNA`. Gives what RNG_Read gave.
int FIELD_ReadTriple(std::string_view text, std::string_view label, MSG_Plain typicalNA, rng** field,
                     bool checkOrder = true);

// A block of triples that have no sign --------------------------------------------------------------------

/// A triple of a record, by its name in the file.
template <class Record> struct FIELD_Triple {
    std::string_view sName;
    rng* Record::*ppField;
};

struct FIELD_UnsignedCodes {
    MSG_Plain unknown;    ///< no triple has that name
    MSG_Text1 repeated;   ///< (name): the first one stays
    MSG_Plain typicalNA;  ///< the value is 0.0 then
    MSG_Text2 negative;   ///< (name, "Typ", "Min" or "Max")
};

/// Reads a triple whose columns are values at the corners, in no order by size, and which are not below zero.
void FIELD_ReadUnsigned(std::string_view text, std::string_view name, const FIELD_UnsignedCodes& codes,
                        rng** field);

/// The same for a data line of a block that is a table of such triples.
template <class Record, std::size_t N>
void FIELD_ReadUnsignedLine(std::string_view text, const std::array<FIELD_Triple<Record>, N>& triples,
                            const FIELD_UnsignedCodes& codes, Record& record)
{
    if (const auto* row = FIELD_FindByName(triples, FIELD_ItemName(text)); row != nullptr) {
        FIELD_ReadUnsigned(text, row->sName, codes, &(record.*row->ppField));
    } else {
        MSG_ErrorLine(codes.unknown);
    }
}

/// The record with its triples. Null is fine.
template <class Record, std::size_t N>
void FIELD_FreeTriples(const std::array<FIELD_Triple<Record>, N>& triples, Record* record)
{
    if (record == nullptr) {
        return;
    }
    for (const FIELD_Triple<Record>& triple : triples) {
        RNG_Free(record->*triple.ppField);
    }
    CMN_Free(record);
}
