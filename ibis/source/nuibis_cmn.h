// The common module of the parser: files, lines, cursors, tokens, names, fixed text fields, numbers, memory.
//
// Lines and tokens are views into the reader's buffer: they live until the next line is read. A cursor is a
// view that the routines shorten from its front.

#pragma once

#include "ibis/source/nuibis_msg.h"
#include "ibis/source/nuibis_state.h"
#include "ibis/source/nuibis_table.h"
#include "ibis/source/nuibis_types.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <span>
#include <string_view>
#include <type_traits>

// Files ---------------------------------------------------------------------------------------------------

/// A file open for reading, line by line through a buffer of its own. Closes itself.
class CMN_Stream
{
  public:
    CMN_Stream() noexcept = default;
    ~CMN_Stream();
    CMN_Stream(const CMN_Stream&) = delete;
    CMN_Stream& operator=(const CMN_Stream&) = delete;

    /// Takes over an open file, closing a former one.
    void attach(std::FILE* file) noexcept;
    void close() noexcept;
    bool isOpen() const noexcept { return mpFile != nullptr; }
    /// Back to the start of the file; false for a file that cannot go back.
    bool rewind() noexcept;
    /// The next bytes up to and with a line feed, or up to the end of the file; false at its end. The view is
    /// valid and may be written to until the next call. `atEnd` tells that no byte follows.
    bool nextLine(std::span<char>& line, bool& atEnd) noexcept;
    /// Whether the last line is known to hold only printable characters, tabs and its own end. False where
    /// that has still to be looked at.
    bool isPlain() const noexcept { return mbPlain; }
    /// Up to `size` bytes from the current place, for a look at a file's kind. Gives the number read.
    std::size_t readBlock(std::span<char> out) noexcept;

  private:
    bool fill() noexcept;

    std::FILE* mpFile = nullptr;
    char* mpBuffer = nullptr;
    std::size_t mCapacity = 0;
    std::size_t mBegin = 0;
    std::size_t mEnd = 0;
    bool mbEndOfFile = false;
    bool mbPlain = false;  // of all that the buffer holds
};

using CMN_Path = std::array<char, CMN_PATH_LIMIT + 1>;

/// Opens `name` under the extension rule of its type, trying the whole path as given, in lower case and in
/// upper case. `baseName` receives the bare name with its extension. Gives 1, or 0 with a message.
int CMN_OpenFile(std::string_view name, ibis_file_type type, CMN_Stream& stream, std::span<char> baseName);
/// 1 if `name`, looked for in the directory of the file last opened, can be opened for reading.
int CMN_FileExists(std::string_view name);
/// Opens a UTF-8 path; null if it cannot be opened.
std::FILE* CMN_FOpen(const char* path, const char* mode);
/// Opens for reading, for file systems that respect case and files written on those that don't: the whole
/// path as given, then in lower and in upper case. The path stays in the spelling tried last.
std::FILE* CMN_FOpenInAnyCase(std::span<char> path);
/// Directory of the file last opened, with its trailing "/", or empty. Nested files are looked for in it.
std::string_view CMN_GetDirectory();
void CMN_SetDirectory(std::string_view directory);
/// The part of a path behind its last "/".
std::string_view CMN_BaseName(std::string_view path);

/// Puts directory and name of the current file back behind nested reads.
class CMN_PlaceKeeper
{
  public:
    CMN_PlaceKeeper();
    ~CMN_PlaceKeeper();
    CMN_PlaceKeeper(const CMN_PlaceKeeper&) = delete;
    CMN_PlaceKeeper& operator=(const CMN_PlaceKeeper&) = delete;

    /// Directory of the file that the nested reads belong to.
    std::string_view directory() const { return mDirectory.data(); }

  private:
    CMN_Path mDirectory;
    CMN_Path mFileName;
};

// Lines ---------------------------------------------------------------------------------------------------

/// Longest line that the keyword pass keeps; what is longer is checked and dropped.
inline constexpr std::size_t CMN_LINE_LIMIT = 1023;

/// Reads a line without its line feed, at most `limit` characters of it. Illegal characters are reported and
/// become blanks. False at the end of the file.
bool CMN_ReadLine(CMN_Stream& stream, std::size_t limit, std::string_view& line);
/// The same with no limit; `lineFeed` tells whether the line ended in one.
bool CMN_ReadLongLine(CMN_Stream& stream, std::span<char>& line, bool& lineFeed);
/// Turns off report and conversion of illegal characters.
extern bool gbNoCharCheck;

// Characters and cursors ----------------------------------------------------------------------------------

// The format is ASCII; these do not follow the locale of the host.
constexpr bool CMN_IsSpace(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}
constexpr bool CMN_IsDigit(char c)
{
    return c >= '0' && c <= '9';
}
constexpr bool CMN_IsAlpha(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
constexpr char CMN_Upper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
constexpr char CMN_Lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Moves to the next character that is no white space, or to the end.
constexpr void CMN_SkipSpace(std::string_view& cursor)
{
    std::size_t i = 0;
    while (i < cursor.size() && CMN_IsSpace(cursor[i])) {
        ++i;
    }
    cursor.remove_prefix(i);
}
/// Moves behind the first "]" and the white space after it and gives 1; without one to the end, and gives 0.
int CMN_SkipKeyword(std::string_view& cursor);
/// Moves to the next white space or to the end.
void CMN_SkipToken(std::string_view& cursor);
/// `text` without trailing white space; the first character is never cut.
std::string_view CMN_TrimEnd(std::string_view text);

// Tokens --------------------------------------------------------------------------------------------------

/// Most tokens that a caller may keep.
inline constexpr int CMN_TOKEN_LIMIT = 30;

/// The tokens of a line: views into it.
struct CMN_TokenList {
    int iCapacity = 0;  ///< how many the caller asked to keep
    int iStored = 0;    ///< how many were kept
    int iFound = 0;     ///< how many stand on the line

    struct Token {
        const char* pBegin;
        std::size_t uiSize;
    };
    std::array<Token, CMN_TOKEN_LIMIT> aTokens;  ///< only those that were kept are set

    /// Token `i`; a view without data when the line has no such token.
    std::string_view operator[](int i) const
    {
        if (i >= iStored) {
            return {};
        }
        const Token& token = aTokens[static_cast<std::size_t>(i)];
        return {token.pBegin, token.uiSize};
    }
};

/// Splits at blanks and tabs, keeping up to `maxTokens` tokens and counting all.
CMN_TokenList CMN_Split(std::string_view text, int maxTokens);
/// The same, `delimiter` being a token of its own wherever it stands: "x=3" gives "x", "=", "3".
CMN_TokenList CMN_SplitDelim(std::string_view text, int maxTokens, char delimiter);
/// Number of tokens on a line.
int CMN_CountTokens(std::string_view text);
/// Takes the next token off the cursor; empty at the end of the text.
std::string_view CMN_NextToken(std::string_view& cursor);
/// The same with a delimiter, as in `CMN_SplitDelim`.
std::string_view CMN_NextTokenDelim(std::string_view& cursor, char delimiter);

// Names and fixed text fields -----------------------------------------------------------------------------

/// Case-blind equality.
bool CMN_Equal(std::string_view a, std::string_view b);
/// Case-blind equality of at most `n` characters: true after `n` equal ones, or if both end together.
bool CMN_EqualN(std::string_view a, std::string_view b, std::size_t n);
/// Case-blind equality in which a blank of `name` equals an underscore of `tableText`.
bool CMN_KeywordEqual(std::string_view tableText, std::string_view name);
void CMN_ToLower(std::span<char> text);
void CMN_ToUpper(std::span<char> text);

/// Copies what fits, at most `limit` characters, and terminates.
void CMN_CopyText(std::span<char> dst, std::string_view src, std::size_t limit = SIZE_MAX);

// Three ways to fill a fixed text field, `limit` being the length that the format allows and `label` the word
// for messages.

/// Refuses a field that is filled already (1911, false); too long is cut (1912), empty is reported (1913).
bool CMN_SetString(std::span<char> dst, std::string_view src, unsigned limit, std::string_view label);
/// As `CMN_SetString`, but a text over the limit is kept whole (1914).
bool CMN_SetStringStrict(std::span<char> dst, std::string_view src, unsigned limit, std::string_view label);
/// As `CMN_SetString`, but overwrites.
bool CMN_ReplaceString(std::span<char> dst, std::string_view src, unsigned limit, std::string_view label);

/// A copy on the heap, terminated; null when memory is out. Released with `CMN_Free`.
char* CMN_StrDup(std::string_view text);

/// Error 1915 if a required keyword was not seen.
void CMN_RequireKeyword(std::string_view keyword, bool seen);

/// True unless the name is one of GND, NC, POWER, CIRCUITCALL, NA (case-blind).
bool CMN_IsNotReserved(std::string_view name);
/// Error 1916 for a reserved word.
void CMN_CheckReserved(std::string_view name);

// Numbers -------------------------------------------------------------------------------------------------

/// What a number reader found.
enum CMN_Number : int {
    CMN_INVALID = 0,
    CMN_GOOD = 1,
    CMN_SUSPICIOUS = 2,  ///< good, but a digit stands in its unit, or text is left over
};

/// Reads a number with one of the scale letters T G M k m u n p f and a unit: "1.5nH" is 1.5e-9.
CMN_Number CMN_GetValue(std::string_view text, double* out);
/// With "NA" and messages. A view without data is a missing column, which is no error here. Gives 1 if the
/// caller can go on, 0 on an invalid value. `kind` is the word of the column, `label` the keyword's name.
int CMN_GetValueOrNA(std::string_view text, std::string_view label, std::string_view kind, double* out,
                     numstat* status);
/// The quiet form: "NA" gives 0.0, `*isNA` true and a good result.
CMN_Number CMN_GetValueNA(std::string_view text, double* out, bool* isNA);
/// Takes a value or "NA" off the cursor if it is of the usual kind, of which nothing is to be told: digits
/// with a unit of letters alone, up to white space or the end. False for all others, which the readers above
/// judge.
bool CMN_TakePlainValue(std::string_view& cursor, double* out, numstat* status);
/// A number without a scale.
CMN_Number CMN_GetPlainDouble(std::string_view text, double* out);
CMN_Number CMN_GetInt(std::string_view text, int* out);
CMN_Number CMN_GetUnsigned(std::string_view text, unsigned* out);

/// Reads the longest number at the front of `text`, white space ahead of it allowed, in the grammar of the C
/// library ("0x1p3", "inf" and "nan" included). Gives how many characters it took; 0: no number stands there.
std::size_t CMN_ReadDouble(std::string_view text, double* out);

/// What stands next in an R/L/C section.
enum CMN_SectionItem : int {
    SECT_ERROR = 0,  ///< already reported
    SECT_LEN = 1,
    SECT_R = 2,
    SECT_C = 3,
    SECT_L = 4,
    SECT_END = 5,   ///< the closing "/"
    SECT_NONE = 6,  ///< the text ended
};

/// Takes one item ("Len = 0.5", "R=1m", "/") off the cursor.
CMN_SectionItem CMN_GetSectionItem(std::string_view& cursor, double* value);

// Memory --------------------------------------------------------------------------------------------------

/// `size` zeroed bytes; on failure error 1906 and 0.
int CMN_AllocBytes(void** p, std::size_t size);
/// Resizes a block of `CMN_AllocBytes`; on failure error 1907 and 0, the old block stays.
int CMN_ReallocBytes(void** p, std::size_t size);
void CMN_Free(void* p);

/// A zeroed record, or an array of them, or of pointers to them. Records are plain: they are never
/// constructed or destroyed.
template <class T> int CMN_Alloc(T*& p, std::size_t count = 1)
{
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);
    void* block = nullptr;
    const int result = CMN_AllocBytes(&block, count * sizeof(T));  // NOLINT(bugprone-sizeof-expression)
    p = static_cast<T*>(block);
    return result;
}

template <class T> int CMN_Realloc(T*& p, std::size_t count)
{
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);
    void* block = p;
    const int result = CMN_ReallocBytes(&block, count * sizeof(T));  // NOLINT(bugprone-sizeof-expression)
    p = static_cast<T*>(block);
    return result;
}

/// Makes room for entry `count` of an array of pointers that grows with what is read, whatever size a file
/// announces. The array always ends in null entries.
template <class T> int CMN_GrowPointers(T**& array, std::size_t count)
{
    constexpr std::size_t first = 8;
    if (array == nullptr) {
        return CMN_Alloc(array, first);
    }
    const std::size_t size = count + 1;
    if (size < first || (size & (size - 1)) != 0) {
        return 1;
    }
    if (!CMN_Realloc(array, 2 * size)) {
        return 0;
    }
    std::fill_n(array + size, size, nullptr);
    return 1;
}

template <class T> void CMN_FreeAndClear(T*& p)
{
    CMN_ASSERT(p != nullptr);
    CMN_Free(p);
    p = nullptr;
}

/// Frees what is there and clears the pointer; null is fine.
template <class T> void CMN_Release(T*& p)
{
    if (p != nullptr) {
        CMN_FreeAndClear(p);
    }
}

/// Releases a list record by record, never by recursion; `release` frees one record's content.
template <class T, class Release> void CMN_FreeList(T*& head, Release release)
{
    while (head != nullptr) {
        T* const next = head->pNext;
        release(*head);
        CMN_Free(head);
        head = next;
    }
}

template <class T> void CMN_FreeList(T*& head)
{
    CMN_FreeList(head, [](T&) {});
}
