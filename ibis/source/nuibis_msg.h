// The one message engine: a check reports a number and the arguments of its text; the engine looks the text
// up in the catalogue, counts, frames, folds and stores it.
//
// A site is checked against the catalogue while compiling: a number without a row, a wrong count or a wrong
// kind of argument does not compile. The few numbers that deliberately have no row go through MSG_NoRow.
//
//     MSG_ErrorLine(1104, fields + 1, label, 1);

#pragma once

#include "ibis/source/nuibis_catalogue.h"
#include "ibis/source/nuibis_errors.h"

#include <cstddef>
#include <cstdio>
#include <span>
#include <string_view>
#include <type_traits>

enum class MSG_Severity { Bug, Error, Warning, Caution, Note };

/// What a conversion of a text takes: "%s", "%d" and its sisters, "%g" and its sisters, "%c".
enum class MSG_Kind { Text, Integer, Float, Character };

template <class T> consteval MSG_Kind MSG_KindOfType()
{
    using Plain = std::remove_cvref_t<T>;
    if constexpr (std::is_same_v<Plain, char>) {
        return MSG_Kind::Character;
    } else if constexpr (std::is_integral_v<Plain>) {
        return MSG_Kind::Integer;
    } else if constexpr (std::is_floating_point_v<Plain>) {
        return MSG_Kind::Float;
    } else {
        static_assert(std::is_convertible_v<Plain, std::string_view>, "no conversion prints this");
        return MSG_Kind::Text;
    }
}

template <class T> inline constexpr MSG_Kind MSG_KindOf = MSG_KindOfType<T>();

/// One argument of a message, type-erased. Holds a view of a text, never a copy.
class MSG_Arg
{
  public:
    template <class T>
    constexpr MSG_Arg(const T& value) : eKind(MSG_KindOf<T>), bUnsigned(std::is_unsigned_v<T>)
    {
        if constexpr (MSG_KindOf<T> == MSG_Kind::Float) {
            dValue = value;
        } else if constexpr (MSG_KindOf<T> == MSG_Kind::Text) {
            if constexpr (std::is_pointer_v<T>) {
                sText = value == nullptr ? std::string_view() : std::string_view(value);
            } else {
                sText = value;
            }
        } else if constexpr (MSG_KindOf<T> == MSG_Kind::Character) {
            iValue = static_cast<unsigned char>(value);
        } else {
            iValue = static_cast<long long>(value);
        }
    }

    MSG_Kind eKind;
    bool bUnsigned = false;
    long long iValue = 0;
    double dValue = 0.0;
    std::string_view sText;
};

namespace MSG_Detail
{

constexpr bool IsFlag(char c)
{
    return (c >= '0' && c <= '9') || c == '.' || c == '-' || c == 'l' || c == '*';
}

consteval MSG_Kind KindOfConversion(char c)
{
    switch (c) {
    case 's':
        return MSG_Kind::Text;
    case 'd':
    case 'u':
    case 'x':
        return MSG_Kind::Integer;
    case 'e':
    case 'f':
    case 'g':
        return MSG_Kind::Float;
    case 'c':
        return MSG_Kind::Character;
    default:
        throw "conversion that the engine does not print";
    }
}

template <MSG_Kind... Kinds> consteval void CheckArguments(const char* format)
{
    constexpr std::size_t count = sizeof...(Kinds);
    constexpr MSG_Kind kinds[count + 1] = {Kinds...};
    std::size_t used = 0;
    for (const char* p = format; *p != '\0'; ++p) {
        if (*p != '%') {
            continue;
        }
        if (p[1] == '%') {
            ++p;
            continue;
        }
        do {
            ++p;
        } while (IsFlag(*p));
        if (used == count) {
            throw "too few arguments for this message";
        }
        if (KindOfConversion(*p) != kinds[used++]) {
            throw "argument of another kind than this message prints";
        }
    }
    if (used != count) {
        throw "too many arguments for this message";
    }
}

}  // namespace MSG_Detail

/// Row of `code` in the catalogue, or -1.
constexpr int MSG_Lookup(int code)
{
    int lo = 0;
    int hi = static_cast<int>(gaMsgCatalogue.size()) - 1;
    while (lo <= hi) {
        const int mid = (lo + hi) / 2;
        const int row = gaMsgCatalogue[static_cast<std::size_t>(mid)].iCode;
        if (row == code) {
            return mid;
        }
        if (row < code) {
            lo = mid + 1;
        } else {
            hi = mid - 1;
        }
    }
    return -1;
}

/// A message number whose text takes arguments of these kinds. Families keep their numbers in constant
/// structs of sites; 0 stands for "no message here" and is told by the conversion to bool.
template <MSG_Kind... Kinds> struct MSG_Site {
    int iCode;
    consteval MSG_Site(int code) : iCode(code)
    {
        if (code != 0) {
            const int row = MSG_Lookup(code);
            if (row < 0) {
                throw "no row in the catalogue: MSG_NoRow reports such a number";
            }
            MSG_Detail::CheckArguments<Kinds...>(gaMsgCatalogue[static_cast<std::size_t>(row)].pszText);
        }
    }
    constexpr explicit operator bool() const { return iCode != 0; }
};

using MSG_Plain = MSG_Site<>;
using MSG_Text1 = MSG_Site<MSG_Kind::Text>;
using MSG_Text2 = MSG_Site<MSG_Kind::Text, MSG_Kind::Text>;
using MSG_Text3 = MSG_Site<MSG_Kind::Text, MSG_Kind::Text, MSG_Kind::Text>;
using MSG_Text4 = MSG_Site<MSG_Kind::Text, MSG_Kind::Text, MSG_Kind::Text, MSG_Kind::Text>;
using MSG_Int1 = MSG_Site<MSG_Kind::Integer>;
/// "Incorrect Number of Line Items (%d) For %s: Expecting %d"
using MSG_Count = MSG_Site<MSG_Kind::Integer, MSG_Kind::Text, MSG_Kind::Integer>;
/// "Unable to Allocate Memory: %s %d": a source file and a line
using MSG_Where = MSG_Site<MSG_Kind::Text, MSG_Kind::Integer>;

/// A format of its own, for text that has no number.
template <MSG_Kind... Kinds> struct MSG_FreeText {
    const char* pszText;
    consteval MSG_FreeText(const char* text) : pszText(text) { MSG_Detail::CheckArguments<Kinds...>(text); }
};

/// A number that deliberately has no row: the report takes the whole road and nothing comes out.
struct MSG_MissingRow {
    int iCode;
    consteval MSG_MissingRow(int code) : iCode(code)
    {
        if (MSG_Lookup(code) >= 0) {
            throw "this number has a row";
        }
    }
};

void MSG_Report(MSG_Severity severity, bool withLine, int code, std::span<const MSG_Arg> args);
void MSG_ReportText(MSG_Severity severity, bool withLine, const char* format, std::span<const MSG_Arg> args);

template <MSG_Severity Severity, bool WithLine> struct MSG_Reporter {
    template <class... Args>
    void operator()(std::type_identity_t<MSG_Site<MSG_KindOf<Args>...>> site, Args... args) const
    {
        if constexpr (sizeof...(Args) == 0) {
            MSG_Report(Severity, WithLine, site.iCode, {});
        } else {
            const MSG_Arg list[] = {MSG_Arg(args)...};
            MSG_Report(Severity, WithLine, site.iCode, list);
        }
    }
};

template <MSG_Severity Severity, bool WithLine> struct MSG_TextReporter {
    template <class... Args>
    void operator()(std::type_identity_t<MSG_FreeText<MSG_KindOf<Args>...>> text, Args... args) const
    {
        if constexpr (sizeof...(Args) == 0) {
            MSG_ReportText(Severity, WithLine, text.pszText, {});
        } else {
            const MSG_Arg list[] = {MSG_Arg(args)...};
            MSG_ReportText(Severity, WithLine, text.pszText, list);
        }
    }
};

// By number. The ...Line forms print the number of the current line.
inline constexpr MSG_Reporter<MSG_Severity::Bug, false> MSG_Bug;
inline constexpr MSG_Reporter<MSG_Severity::Bug, true> MSG_BugLine;
inline constexpr MSG_Reporter<MSG_Severity::Error, false> MSG_Error;
inline constexpr MSG_Reporter<MSG_Severity::Error, true> MSG_ErrorLine;
inline constexpr MSG_Reporter<MSG_Severity::Warning, false> MSG_Warning;
inline constexpr MSG_Reporter<MSG_Severity::Warning, true> MSG_WarningLine;
inline constexpr MSG_Reporter<MSG_Severity::Caution, false> MSG_Caution;
inline constexpr MSG_Reporter<MSG_Severity::Note, false> MSG_Note;
inline constexpr MSG_Reporter<MSG_Severity::Note, true> MSG_NoteLine;

// By text, for what has no number.
inline constexpr MSG_TextReporter<MSG_Severity::Bug, false> MSG_BugText;
inline constexpr MSG_TextReporter<MSG_Severity::Bug, true> MSG_BugLineText;
inline constexpr MSG_TextReporter<MSG_Severity::Error, false> MSG_ErrorText;
inline constexpr MSG_TextReporter<MSG_Severity::Error, true> MSG_ErrorLineText;
inline constexpr MSG_TextReporter<MSG_Severity::Warning, false> MSG_WarningText;
inline constexpr MSG_TextReporter<MSG_Severity::Warning, true> MSG_WarningLineText;
inline constexpr MSG_TextReporter<MSG_Severity::Caution, false> MSG_CautionText;
inline constexpr MSG_TextReporter<MSG_Severity::Caution, true> MSG_CautionLineText;
inline constexpr MSG_TextReporter<MSG_Severity::Note, false> MSG_NoteText;
inline constexpr MSG_TextReporter<MSG_Severity::Note, true> MSG_NoteLineText;

void MSG_NoRow(MSG_Severity severity, MSG_MissingRow row);

/// Formats within `out` and terminates it; what does not fit is cut. Gives the length. Numbers print with
/// "." whatever locale the process has set.
std::size_t MSG_Format(std::span<char> out, const char* format, std::span<const MSG_Arg> args);

/// Counters of the process; each pointer may be null. Cautions are not given.
void MSG_GetCounts(unsigned* bugs, unsigned* errors, unsigned* warnings);
/// Prints the counters of the process and "File Passed" or "File Failed" on the summary stream.
void MSG_Summary();
void MSG_SetSummaryStream(std::FILE* stream);

/// The container of the current read, made on first use.
IbisErrorContainer* MSG_GetContainer();
/// Replaces the container; the caller keeps the former one and puts it back.
void MSG_SetContainer(IbisErrorContainer* container);
void MSG_ClearContainer();
/// Stores a text that its caller has framed; counters are not touched. Types 1 to 3 are errors.
void MSG_Add(int type, const char* text);

void MSG_SetSuppressBugs(bool suppress);
void MSG_SetSuppressErrors(bool suppress);
void MSG_SetSuppressWarnings(bool suppress);
/// Cautions are suppressed unless a command line turns them on.
void MSG_SetSuppressCautions(bool suppress);
/// False: short numbered frames, which are not stored.
void MSG_SetPlainMessages(bool plain);

/// One stored message with its structure, for tools.
struct MSG_Event {
    MSG_Severity eSeverity;
    int iCode;               ///< 0 for a text that has no number
    bool bLine;              ///< the message carries a line number
    unsigned uiLine;         ///< line of the current file, when `bLine`
    std::string_view sFile;  ///< bare name of the current file
    std::string_view sText;  ///< the stored text, framed, with its newline
};

using MSG_Listener = void (*)(void* context, const MSG_Event& event);
/// Called for each message that is stored, behind the storing. Null ends it.
void MSG_SetListener(MSG_Listener listener, void* context);

/// Tells a broken program on standard error and aborts. File content never gets here.
[[noreturn]] void MSG_AssertionFailed(const char* source, int line);

#define CMN_ASSERT(condition) ((condition) ? void() : MSG_AssertionFailed(__FILE_NAME__, __LINE__))
