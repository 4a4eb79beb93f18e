#include "ibis/source/nuibis_msg.h"

#include "ibis/source/nuibis_state.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <cstring>

namespace
{

constexpr std::size_t TEXT_SIZE = 2208;
constexpr std::size_t FRAME_SIZE = TEXT_SIZE + 64;
// A text that would end just short of the right margin of 80 columns goes on a line of its own.
constexpr std::size_t FOLD_LAST = 75;

// How one severity is counted, framed and stored.
struct Severity {
    const char* pszWord;
    char cLetter;
    MessageType eType;
    std::size_t uiFoldFirst;      // length from which a text is folded, no line number
    std::size_t uiFoldFirstLine;  // the same in a frame with a line number
    bool bSuppressed;
    unsigned uiCount;
};

constexpr std::size_t NEVER = FOLD_LAST + 1;

// Counters run for the life of the process; nobody resets them. A note is not counted in the summary.
std::array<Severity, 5> gaSeverities{{
    {"PROGRAM BUG", 'B', MSG_TYPE_ERROR, NEVER, NEVER, false, 0},
    {"ERROR", 'E', MSG_TYPE_ERROR, 72, 60, false, 0},
    {"WARNING", 'W', MSG_TYPE_WARNING, 70, 58, false, 0},
    {"CAUTION", 'C', MSG_TYPE_WARNING, 70, 58, true, 0},
    {"NOTE", 'N', MSG_TYPE_WARNING, 73, 61, false, 0},
}};

bool gbPlainMessages = true;
IbisErrorContainer* gpErrorContainer = nullptr;
std::FILE* gpSummaryStream = nullptr;
MSG_Listener gpListener = nullptr;
void* gpListenerContext = nullptr;

Severity& SeverityOf(MSG_Severity severity)
{
    return gaSeverities[static_cast<std::size_t>(severity)];
}

// Bounded text: what does not fit is dropped, one place is kept for the terminator.
class Writer
{
  public:
    explicit Writer(std::span<char> out) : mOut(out.first(out.size() - 1)) {}

    void put(char c)
    {
        if (mUsed < mOut.size()) {
            mOut[mUsed++] = c;
        }
    }
    void put(std::string_view text)
    {
        const std::size_t length = std::min(text.size(), mOut.size() - mUsed);
        std::copy_n(text.data(), length, mOut.data() + mUsed);
        mUsed += length;
    }
    void putPadded(std::string_view text, std::size_t width)
    {
        for (std::size_t i = text.size(); i < width; ++i) {
            put(' ');
        }
        put(text);
    }
    std::size_t finish()
    {
        mOut.data()[mUsed] = '\0';
        return mUsed;
    }

  private:
    std::span<char> mOut;
    std::size_t mUsed = 0;
};

struct Conversion {
    std::size_t uiWidth = 0;
    int iPrecision = -1;
    char cType = '\0';
};

Conversion ReadConversion(const char*& p)
{
    Conversion conversion;
    while (*p >= '0' && *p <= '9') {
        conversion.uiWidth = conversion.uiWidth * 10 + static_cast<std::size_t>(*p++ - '0');
    }
    if (*p == '.') {
        conversion.iPrecision = 0;
        for (++p; *p >= '0' && *p <= '9'; ++p) {
            conversion.iPrecision = conversion.iPrecision * 10 + (*p - '0');
        }
    }
    while (*p == 'l') {
        ++p;
    }
    conversion.cType = *p;
    return conversion;
}

std::string_view FloatText(std::span<char> buffer, const Conversion& conversion, double value)
{
    const std::chars_format format = conversion.cType == 'e'   ? std::chars_format::scientific
                                     : conversion.cType == 'f' ? std::chars_format::fixed
                                                               : std::chars_format::general;
    const int precision = conversion.iPrecision < 0 ? 6 : conversion.iPrecision;
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, format, precision);
    return {buffer.data(), static_cast<std::size_t>(result.ptr - buffer.data())};
}

std::string_view IntegerText(std::span<char> buffer, const Conversion& conversion, long long value)
{
    const int base = conversion.cType == 'x' ? 16 : 10;
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, base);
    return {buffer.data(), static_cast<std::size_t>(result.ptr - buffer.data())};
}

void PutConversion(Writer& out, const Conversion& conversion, const MSG_Arg& arg)
{
    std::array<char, 512> buffer;  // "%f" of the largest double has 309 digits ahead of the point
    std::string_view text;
    switch (arg.eKind) {
    case MSG_Kind::Text:
        text = conversion.iPrecision < 0
                   ? arg.sText
                   : arg.sText.substr(0, static_cast<std::size_t>(conversion.iPrecision));
        break;
    case MSG_Kind::Character:
        buffer[0] = static_cast<char>(arg.iValue);
        text = std::string_view(buffer.data(), arg.iValue == 0 ? 0 : 1);  // no character, as in a singular
        break;
    case MSG_Kind::Integer:
        text = IntegerText(buffer, conversion, arg.iValue);
        break;
    case MSG_Kind::Float:
        text = FloatText(buffer, conversion, arg.dValue);
        break;
    }
    out.putPadded(text, conversion.uiWidth);
}

// WORD (line NNNN) - text, or the short numbered head in place of the word.
std::size_t Frame(std::span<char> out, MSG_Severity severity, bool withLine, int code, std::string_view text)
{
    const Severity& kind = SeverityOf(severity);
    const bool numbered = !gbPlainMessages && code != 0;
    Writer writer(out);
    if (numbered) {
        std::array<char, 32> head;
        std::snprintf(head.data(), head.size(), "%c%04d", kind.cLetter, code);
        writer.put(std::string_view(head.data()));
    } else {
        writer.put(std::string_view(kind.pszWord));
    }
    if (withLine) {
        std::array<char, 32> line;
        std::snprintf(line.data(), line.size(), " (line %4lu)",
                      static_cast<unsigned long>(PARSE_GetLineNumber()));
        writer.put(std::string_view(line.data()));
    }
    const std::size_t first = withLine ? kind.uiFoldFirstLine : kind.uiFoldFirst;
    const bool folded = text.size() >= first && text.size() <= FOLD_LAST;
    writer.put(std::string_view(folded ? " -\n    " : " - "));
    writer.put(text);
    writer.put('\n');
    return writer.finish();
}

void Notify(MSG_Severity severity, bool withLine, int code, std::string_view text)
{
    if (gpListener == nullptr) {
        return;
    }
    gpListener(gpListenerContext, MSG_Event{severity, code, withLine, withLine ? PARSE_GetLineNumber() : 0,
                                            PARSE_GetFileName(), text});
}

void Store(MessageType type, const char* text)
{
    if (type == MSG_TYPE_ERROR) {
        MSG_GetContainer()->addError(text);
    } else {
        MSG_GetContainer()->addWarning(text);
    }
}

void Emit(MSG_Severity severity, bool withLine, int code, const char* format, std::span<const MSG_Arg> args)
{
    Severity& kind = SeverityOf(severity);
    if (kind.bSuppressed) {
        return;
    }
    std::array<char, TEXT_SIZE> text;
    const std::size_t length = MSG_Format(text, format, args);
    ++kind.uiCount;
    std::array<char, FRAME_SIZE> frame;
    const std::size_t size = Frame(frame, severity, withLine, code, {text.data(), length});
    if (!gbPlainMessages && code != 0) {
        return;
    }
    Store(kind.eType, frame.data());
    Notify(severity, withLine, code, {frame.data(), size});
}

}  // namespace

std::size_t MSG_Format(std::span<char> out, const char* format, std::span<const MSG_Arg> args)
{
    Writer writer(out);
    std::size_t used = 0;
    for (const char* p = format; *p != '\0'; ++p) {
        if (*p != '%') {
            writer.put(*p);
            continue;
        }
        ++p;
        if (*p == '%') {
            writer.put('%');
            continue;
        }
        const Conversion conversion = ReadConversion(p);
        if (used < args.size()) {
            PutConversion(writer, conversion, args[used++]);
        }
    }
    return writer.finish();
}

void MSG_Report(MSG_Severity severity, bool withLine, int code, std::span<const MSG_Arg> args)
{
    const int row = MSG_Lookup(code);
    if (row > 0) {
        Emit(severity, withLine, code, gaMsgCatalogue[static_cast<std::size_t>(row)].pszText, args);
    }
}

void MSG_ReportText(MSG_Severity severity, bool withLine, const char* format, std::span<const MSG_Arg> args)
{
    Emit(severity, withLine, 0, format, args);
}

void MSG_NoRow(MSG_Severity severity, MSG_MissingRow row)
{
    MSG_Report(severity, false, row.iCode, {});
}

void MSG_GetCounts(unsigned* bugs, unsigned* errors, unsigned* warnings)
{
    const auto give = [](unsigned* out, MSG_Severity severity) {
        if (out != nullptr) {
            *out = SeverityOf(severity).uiCount;
        }
    };
    give(bugs, MSG_Severity::Bug);
    give(errors, MSG_Severity::Error);
    give(warnings, MSG_Severity::Warning);
}

void MSG_Summary()
{
    std::FILE* const out = gpSummaryStream == nullptr ? gpSummaryStream = stderr : gpSummaryStream;
    const unsigned long bugs = SeverityOf(MSG_Severity::Bug).uiCount;
    const unsigned long errors = SeverityOf(MSG_Severity::Error).uiCount;
    const unsigned long warnings = SeverityOf(MSG_Severity::Warning).uiCount;
    const unsigned long cautions = SeverityOf(MSG_Severity::Caution).uiCount;
    if (bugs != 0 || errors != 0 || warnings != 0) {
        std::fputs("\n", out);
    }
    if (bugs != 0) {
        std::fprintf(out, "Bugs    : %lu\n", bugs);
    }
    std::fprintf(out, "Errors  : %lu\n", errors);
    if (warnings != 0) {
        std::fprintf(out, "Warnings: %lu\n", warnings);
    }
    if (cautions != 0) {
        std::fprintf(out, "Cautions: %lu\n", cautions);
    }
    std::fprintf(out, "\nFile %s\n", bugs == 0 && errors == 0 ? "Passed" : "Failed");
}

void MSG_SetSummaryStream(std::FILE* stream)
{
    gpSummaryStream = stream;
}

IbisErrorContainer* MSG_GetContainer()
{
    if (gpErrorContainer == nullptr) {
        static IbisErrorContainer own;
        gpErrorContainer = &own;
    }
    return gpErrorContainer;
}

void MSG_SetContainer(IbisErrorContainer* container)
{
    gpErrorContainer = container;
}

void MSG_ClearContainer()
{
    if (gpErrorContainer != nullptr) {
        gpErrorContainer->clear();
    }
}

void MSG_Add(int type, const char* text)
{
    const bool error = type >= 1 && type <= 3;
    Store(error ? MSG_TYPE_ERROR : MSG_TYPE_WARNING, text);
    Notify(error ? MSG_Severity::Error : MSG_Severity::Warning, false, 0, text);
}

void MSG_SetSuppressBugs(bool suppress)
{
    SeverityOf(MSG_Severity::Bug).bSuppressed = suppress;
}

void MSG_SetSuppressErrors(bool suppress)
{
    SeverityOf(MSG_Severity::Error).bSuppressed = suppress;
}

void MSG_SetSuppressWarnings(bool suppress)
{
    SeverityOf(MSG_Severity::Warning).bSuppressed = suppress;
}

void MSG_SetSuppressCautions(bool suppress)
{
    SeverityOf(MSG_Severity::Caution).bSuppressed = suppress;
}

void MSG_SetPlainMessages(bool plain)
{
    gbPlainMessages = plain;
}

void MSG_SetListener(MSG_Listener listener, void* context)
{
    gpListener = listener;
    gpListenerContext = context;
}

void MSG_AssertionFailed(const char* source, int line)
{
    std::fprintf(stderr, "%s:%d:assertion failed.\n", source, line);
    std::abort();
}
