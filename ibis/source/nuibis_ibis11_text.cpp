#include "ibis/source/nuibis_ibis11_text.h"

#include <algorithm>
#include <utility>

// Reset by IBIS11_OpenText; the line number and what follows from a pass also by IBIS11_RewindText.
unsigned guiPass = 1;
unsigned guiOldLine = 0;
unsigned guiKeywordCount = 0;
bool gbLineCheck = true;
bool gbSkipData = false;

namespace
{

// As above.
CMN_Stream gStream;
char gcOldCommentChar = '|';
bool gbLineTaken = true;
bool gbAtEof = false;
IBIS11_Kind geKind = IBIS11_DATA;  // of the current line
std::string_view gsText;           // of the current line, from its first field or from behind its keyword

constexpr std::size_t LINE_LIMIT = 1022;
constexpr std::size_t LONG_LINE = 81;
constexpr std::string_view BLANKS = " \t";

struct Keyword {
    std::string_view sName;
    IBIS11_Kind eCode;
};

constexpr std::array<Keyword, 20> KEYWORDS{{
    {"IBIS Ver", IBIS11_IBIS_VER},   {"COMMENT CHAR", IBIS11_COMMENT_CHAR},
    {"File Name", IBIS11_FILE_NAME}, {"File Rev", IBIS11_FILE_REV},
    {"Date", IBIS11_DATE},           {"Source", IBIS11_SOURCE},
    {"Notes", IBIS11_NOTES},         {"Disclaimer", IBIS11_DISCLAIMER},
    {"Component", IBIS11_COMPONENT}, {"Manufacturer", IBIS11_MANUFACTURER},
    {"Package", IBIS11_PACKAGE},     {"Pin", IBIS11_PIN},
    {"Model", IBIS11_MODEL},         {"Voltage Range", IBIS11_VOLTAGE_RANGE},
    {"Pulldown", IBIS11_PULLDOWN},   {"Pullup", IBIS11_PULLUP},
    {"GND_Clamp", IBIS11_GND_CLAMP}, {"POWER_Clamp", IBIS11_POWER_CLAMP},
    {"Ramp", IBIS11_RAMP},           {"End", IBIS11_END},
}};

static_assert(std::ranges::all_of(KEYWORDS, [](const Keyword& row) {
    return &row == &KEYWORDS[static_cast<std::size_t>(row.eCode)];
}));

void SkipBlanks(std::string_view& cursor)
{
    cursor.remove_prefix(std::min(cursor.find_first_not_of(BLANKS), cursor.size()));
}

std::string_view TakeUntil(std::string_view& cursor, std::string_view ends)
{
    const std::string_view taken = cursor.substr(0, cursor.find_first_of(ends));
    cursor.remove_prefix(taken.size());
    return taken;
}

std::string_view WithoutComment(std::string_view text)
{
    return text.substr(0, text.find(gcOldCommentChar));
}

// What the second pass reads again is not told again.
template <class... Args>
void TellOnce(std::type_identity_t<IBIS11_Site<MSG_KindOf<Args>...>> site, Args... args)
{
    if (guiPass == 1) {
        IBIS11_Tell<Args...>(site, args...);
    }
}

void StartPass(unsigned pass)
{
    guiPass = pass;
    guiOldLine = 0;
    gcOldCommentChar = '|';
    gbLineCheck = pass == 1;
    gbSkipData = false;
    gbLineTaken = true;
    gbAtEof = false;
}

bool ReadLine(std::string_view& line)
{
    std::span<char> bytes;
    bool atEnd = false;
    if (!gStream.nextLine(bytes, atEnd)) {
        return false;
    }
    std::replace(bytes.begin(), bytes.end(), '\0', ' ');  // would end the texts of messages
    line = std::string_view(bytes.data(), bytes.size());
    if (line.ends_with('\n')) {
        line.remove_suffix(line.ends_with("\r\n") ? 2 : 1);
    }
    line = line.substr(0, LINE_LIMIT);
    ++guiOldLine;
    if (gbLineCheck && line.size() >= LONG_LINE) {
        IBIS11_Tell(28);
    }
    return true;
}

// "#_char" makes "#" the comment character. The character is taken ahead of the cut at a comment, since a
// file may name the one that is in force already.
void ReadCommentChar(std::string_view text)
{
    constexpr std::string_view forbidden = "0123456789abcdefghijklmnopqrstuvwxyz"
                                           "ABCDEFGHIJKLMNOPQRSTUVWXYZ[]._/=";
    SkipBlanks(text);
    const std::string_view character = text.substr(0, 1);
    std::string_view rest = WithoutComment(text.substr(character.size()));
    if (TakeUntil(rest, BLANKS) != "_char") {
        TellOnce(32);
        return;
    }
    if (forbidden.find(character.front()) != std::string_view::npos) {
        TellOnce(31, text);
        return;
    }
    gcOldCommentChar = character.front();
    SkipBlanks(rest);
    if (!rest.empty() && rest.front() != gcOldCommentChar) {
        TellOnce(24, IBIS11_KeywordName(IBIS11_COMMENT_CHAR));
    }
}

// Code of the keyword on a line that begins with "[", IBIS11_DATA if there is none. Steps behind the "]".
IBIS11_Kind ScanKeyword(std::string_view& line)
{
    const std::size_t bracket = line.find(']');
    if (bracket == std::string_view::npos) {
        TellOnce(29);
        return IBIS11_DATA;
    }
    const std::string_view name = line.substr(1, bracket - 1);
    line.remove_prefix(bracket + 1);
    const auto* const row = std::find_if(KEYWORDS.begin(), KEYWORDS.end(), [name](const Keyword& keyword) {
        return CMN_Equal(keyword.sName, name);
    });
    if (row == KEYWORDS.end()) {
        TellOnce(30);
        return IBIS11_DATA;
    }
    return row->eCode;
}

// True if the line is a keyword to be given out.
bool TakeKeyword(std::string_view line, bool indented)
{
    ++guiKeywordCount;
    if (indented) {
        TellOnce(19);
    }
    geKind = ScanKeyword(line);
    if (geKind == IBIS11_COMMENT_CHAR) {
        ReadCommentChar(line);
        return false;
    }
    gsText = WithoutComment(line);
    gbSkipData = geKind == IBIS11_DATA;
    return !gbSkipData;
}

// True if the line is to be given out: neither blank, a comment, nor passed over.
bool TakeLine(std::string_view line)
{
    const std::size_t length = line.size();
    SkipBlanks(line);
    if (line.empty() || line.front() == gcOldCommentChar) {
        return false;
    }
    if (line.front() == '[') {
        return TakeKeyword(line, line.size() < length);
    }
    geKind = IBIS11_DATA;
    gsText = WithoutComment(line);
    return !gbSkipData;
}

bool BeginsNumber(std::string_view text)
{
    const bool sign = text.starts_with('+') || text.starts_with('-');
    text.remove_prefix(sign ? 1 : 0);
    text.remove_prefix(sign && text.starts_with('.') ? 1 : 0);
    return !text.empty() && CMN_IsDigit(text.front());
}

// A number or a count as text, as messages of that shape take it.
using Small = std::array<char, 64>;

std::string_view Print(Small& out, const char* format, std::initializer_list<MSG_Arg> args)
{
    return {out.data(), MSG_Format(out, format, std::span(args.begin(), args.size()))};
}

}  // namespace

std::string_view IBIS11_KeywordName(IBIS11_Kind kind)
{
    return KEYWORDS[static_cast<std::size_t>(kind)].sName;
}

void IBIS11_OpenText(std::FILE* file)
{
    gStream.attach(file);
    guiKeywordCount = 0;
    StartPass(1);
}

bool IBIS11_RewindText()
{
    if (!gStream.rewind()) {
        return false;
    }
    StartPass(2);
    return true;
}

void IBIS11_CloseText()
{
    gStream.close();
}

bool IBIS11_NextLine(IBIS11_Kind& kind)
{
    if (!std::exchange(gbLineTaken, true)) {
        kind = geKind;
        return true;
    }
    std::string_view line;
    while (!gbAtEof) {
        gbAtEof = !ReadLine(line);
        if (!gbAtEof && TakeLine(line)) {
            kind = geKind;
            return true;
        }
    }
    return false;
}

void IBIS11_PutBack()
{
    gbLineTaken = false;
}

bool IBIS11_NextDataLine()
{
    IBIS11_Kind kind = IBIS11_DATA;
    if (!IBIS11_NextLine(kind)) {
        return false;
    }
    if (kind != IBIS11_DATA) {
        IBIS11_PutBack();
    }
    return kind == IBIS11_DATA;
}

std::string_view IBIS11_LineText()
{
    std::string_view text = gsText;
    SkipBlanks(text);
    return text.substr(0, text.find_last_not_of(BLANKS) + 1);
}

std::string_view IBIS11_NextField(std::string_view& cursor)
{
    SkipBlanks(cursor);
    return TakeUntil(cursor, BLANKS);
}

IBIS11_Items IBIS11_Split()
{
    IBIS11_Items items;
    std::string_view text = gsText;
    for (std::string_view field = IBIS11_NextField(text); !field.empty(); field = IBIS11_NextField(text)) {
        const auto index = static_cast<std::size_t>(items.iCount++);
        if (field.size() > IBIS11_ITEM_LIMIT) {
            IBIS11_Tell(62);
        } else if (index < items.aszItems.size()) {
            items.aszItems[index] = field;
        }
    }
    return items;
}

bool IBIS11_CheckCount(bool keyword, int count, int expected, int alternative, std::string_view label)
{
    if (count == expected || count == alternative) {
        return true;
    }
    const int self = keyword ? 1 : 0;
    Small counted;
    Small place;
    Small wanted;
    IBIS11_Tell(
        23, Print(counted, "%d", {count + self}), Print(place, keyword ? "Keyword '%s'" : "%s Data", {label}),
        Print(wanted, expected == alternative ? "%d" : "%d or %d", {expected + self, alternative + self}));
    return false;
}

void IBIS11_ReadNumber(bool allowNA, std::string_view text, std::string_view label, IBIS11_Number& number)
{
    constexpr std::string_view scales = "Mkmunp";
    number = {0.0, IBIS11_PLAIN};
    if (CMN_Equal(text, "NA")) {
        number.cStatus = IBIS11_NA;
        if (!allowNA) {
            IBIS11_Tell(26, label, text);
        }
        return;
    }
    const std::size_t used = BeginsNumber(text) ? CMN_ReadDouble(text, &number.dValue) : 0;
    const std::string_view unit = text.substr(used);
    if (used == 0 || (!unit.empty() && !CMN_IsAlpha(unit.front()))) {
        IBIS11_Tell(26, label, text);
        return;
    }
    if (!unit.empty() && scales.find(unit.front()) != std::string_view::npos) {
        number.cStatus = unit.front();
    }
    if (std::any_of(unit.begin(), unit.end(), CMN_IsDigit)) {
        IBIS11_Tell(64, label, text);
    }
}

void IBIS11_ReadNumbers(bool keyword, const IBIS11_Items& items, int first, std::string_view label,
                        std::span<const IBIS11_Column> columns, std::span<IBIS11_Number> numbers)
{
    IBIS11_ReadColumns(keyword, items, first, label, columns,
                       [&](std::size_t column, std::string_view text, bool allowNA) {
                           IBIS11_ReadNumber(allowNA, text, label, numbers[column]);
                       });
}

bool IBIS11_CheckLength(std::string_view text, unsigned limit, std::string_view label)
{
    if (text.size() <= limit) {
        return true;
    }
    Small shown;
    IBIS11_Tell(34, label, Print(shown, "%d", {limit}));
    return false;
}

bool IBIS11_IsReserved(std::string_view name)
{
    static constexpr std::array<std::string_view, 3> reserved{"GND", "NC", "POWER"};
    return std::any_of(reserved.begin(), reserved.end(),
                       [name](std::string_view word) { return CMN_Equal(word, name); });
}

bool IBIS11_CheckNA(std::string_view name, std::string_view label)
{
    if (CMN_Equal(name, "NA")) {
        IBIS11_Tell(55, label, name);
        return false;
    }
    return true;
}

bool IBIS11_CheckReserved(std::string_view name, std::string_view label)
{
    if (IBIS11_IsReserved(name)) {
        IBIS11_Tell(55, label, name);
        return false;
    }
    return IBIS11_CheckNA(name, label);
}
