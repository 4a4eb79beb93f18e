#include "ibis/source/nuibis_cmn.h"

#include "platform/hostpath.h"
#include "platform/hostport.h"

#include <algorithm>
#include <cerrno>
#include <cfloat>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <system_error>

// Directory of the file last opened; overwritten by CMN_OpenFile and living on from file to file.
static CMN_Path gszDirectory{};

bool gbNoCharCheck = false;

namespace
{

constexpr std::size_t STREAM_BUFFER = 64 * 1024;
constexpr char CTRL_Z = 26;
/// Longest user text that a message quotes; it always fits the engine's buffer.
constexpr unsigned QUOTE_LIMIT = 2176;

std::string_view View(const CMN_Path& path)
{
    return path.data();
}

// Only printable characters, tabs and line ends. Thousands of lines at once take a small part of the time
// that a look at each of them takes. Carriage returns are fine in a line end alone; one at the very end of
// the bytes is left to the look at its line.
bool IsPlain(std::span<const char> bytes)
{
    if (bytes.empty()) {
        return false;
    }
    unsigned char odd = 0;
    for (std::size_t i = 0; i + 1 < bytes.size(); ++i) {
        const auto byte = static_cast<signed char>(bytes[i]);
        const bool isLineEnd = (byte == '\n') | ((byte == '\r') & (bytes[i + 1] == '\n'));
        odd |= static_cast<unsigned char>((byte < ' ') & (byte != '\t') & !isLineEnd);
    }
    const auto last = static_cast<signed char>(bytes.back());
    return odd == 0 && (last == '\n' || last == '\t' || last >= ' ');
}

}  // namespace

// Memory --------------------------------------------------------------------------------------------------

int CMN_AllocBytes(void** p, std::size_t size)
{
    CMN_ASSERT(size != 0);
    *p = std::calloc(1, size);
    if (*p == nullptr) {
        MSG_Error(1906, size);
        return 0;
    }
    return 1;
}

int CMN_ReallocBytes(void** p, std::size_t size)
{
    CMN_ASSERT(size != 0);
    void* const block = std::realloc(*p, size);
    if (block == nullptr) {
        MSG_Error(1907, size);
        return 0;
    }
    *p = block;
    return 1;
}

void CMN_Free(void* p)
{
    CMN_ASSERT(p != nullptr);
    std::free(p);
}

// Files ---------------------------------------------------------------------------------------------------

CMN_Stream::~CMN_Stream()
{
    close();
    CMN_Release(mpBuffer);
}

void CMN_Stream::attach(std::FILE* file) noexcept
{
    close();
    mpFile = file;
    mBegin = mEnd = 0;
    mbEndOfFile = false;
}

void CMN_Stream::close() noexcept
{
    if (mpFile != nullptr) {
        std::fclose(mpFile);
        mpFile = nullptr;
    }
}

bool CMN_Stream::rewind() noexcept
{
    mBegin = mEnd = 0;
    mbEndOfFile = false;
    return std::fseek(mpFile, 0, SEEK_SET) == 0;
}

// Makes room behind the bytes not yet consumed and reads more; false at the end of the file.
bool CMN_Stream::fill() noexcept
{
    if (mbEndOfFile) {
        return false;
    }
    if (mBegin != 0) {
        std::memmove(mpBuffer, mpBuffer + mBegin, mEnd - mBegin);
        mEnd -= mBegin;
        mBegin = 0;
    }
    if (mEnd == mCapacity) {
        const std::size_t capacity = mCapacity == 0 ? STREAM_BUFFER : 2 * mCapacity;
        if (!CMN_Realloc(mpBuffer, capacity)) {
            mbEndOfFile = true;
            return false;
        }
        mCapacity = capacity;
    }
    const std::size_t got = std::fread(mpBuffer + mEnd, 1, mCapacity - mEnd, mpFile);
    mEnd += got;
    mbEndOfFile = got == 0;
    mbPlain = IsPlain({mpBuffer, mEnd});
    return got != 0;
}

bool CMN_Stream::nextLine(std::span<char>& line, bool& atEnd) noexcept
{
    std::size_t searched = 0;
    for (;;) {
        const std::size_t length = mEnd - mBegin;
        const char* const begin = mpBuffer + mBegin;
        const void* const found =
            length == searched ? nullptr : std::memchr(begin + searched, '\n', length - searched);
        if (found != nullptr) {
            const std::size_t size = static_cast<std::size_t>(static_cast<const char*>(found) - begin) + 1;
            line = {mpBuffer + mBegin, size};
            mBegin += size;
            atEnd = false;
            return true;
        }
        searched = length;
        if (!fill()) {
            line = {mpBuffer + mBegin, searched};
            mBegin = mEnd;
            atEnd = true;
            return searched != 0;
        }
    }
}

std::size_t CMN_Stream::readBlock(std::span<char> out) noexcept
{
    return std::fread(out.data(), 1, out.size(), mpFile);
}

namespace
{

// What the name of a file of each type must end in, with the message otherwise.
struct ExtensionRule {
    std::string_view sExtension;
    MSG_Plain required;
};

const ExtensionRule* ExtensionOf(ibis_file_type type)
{
    static constexpr std::array<ExtensionRule, 4> rules{
        {{".ibs", 1900}, {".pkg", 1903}, {".ebd", 1902}, {".ami", 1924}}};
    return type >= IBIS_FILE_IBS && type <= IBIS_FILE_AMI ? &rules[static_cast<std::size_t>(type) - 1]
                                                          : nullptr;
}

int CompleteName(std::span<char> baseName, const ExtensionRule& rule)
{
    const std::string_view name(baseName.data());
    const std::size_t dot = name.rfind('.');
    if (dot != std::string_view::npos) {
        if (!CMN_Equal(name.substr(dot), rule.sExtension)) {
            MSG_Error(rule.required);
            return 0;
        }
        return 1;
    }
    if (name.size() + rule.sExtension.size() > CMN_PATH_LIMIT) {
        MSG_Error(1901);
        return 0;
    }
    CMN_CopyText(baseName.subspan(name.size()), rule.sExtension);
    return 1;
}

// The directory follows the spelling that worked.
int OpenInAnyCase(CMN_Path& path, CMN_Stream& stream)
{
    std::FILE* const file = CMN_FOpenInAnyCase(path);
    if (file == nullptr) {
        return 0;
    }
    CMN_CopyText(gszDirectory, View(path).substr(0, View(gszDirectory).size()));
    stream.attach(file);
    return 1;
}

int JoinPath(std::string_view directory, std::string_view name, CMN_Path& path)
{
    if (directory.size() + name.size() > CMN_PATH_LIMIT) {
        return 0;
    }
    CMN_CopyText(path, directory);
    CMN_CopyText(std::span(path).subspan(directory.size()), name);
    return 1;
}

}  // namespace

std::FILE* CMN_FOpen(const char* path, const char* mode)
{
    return HostPath(path).fopen(mode);
}

std::FILE* CMN_FOpenInAnyCase(std::span<char> path)
{
    static constexpr void (*const spellings[])(std::span<char>) = {[](std::span<char>) {}, CMN_ToLower,
                                                                   CMN_ToUpper};
    for (const auto spell : spellings) {
        spell(path);
        if (std::FILE* const file = CMN_FOpen(path.data(), "r"); file != nullptr) {
            return file;
        }
    }
    return nullptr;
}

std::string_view CMN_GetDirectory()
{
    return View(gszDirectory);
}

void CMN_SetDirectory(std::string_view directory)
{
    CMN_Path copy;
    CMN_CopyText(copy, directory);
    gszDirectory = copy;
}

std::string_view CMN_BaseName(std::string_view path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

CMN_PlaceKeeper::CMN_PlaceKeeper()
{
    CMN_CopyText(mDirectory, CMN_GetDirectory());
    CMN_CopyText(mFileName, PARSE_GetFileName());
}

CMN_PlaceKeeper::~CMN_PlaceKeeper()
{
    CMN_SetDirectory(directory());
    CMN_CopyText(gszFileName, mFileName.data());
}

int CMN_OpenFile(std::string_view name, ibis_file_type type, CMN_Stream& stream, std::span<char> baseName)
{
    const std::string_view bare = CMN_BaseName(name);
    CMN_CopyText(baseName, bare, CMN_PATH_LIMIT);
    // A relative file of a nested read is found beside the file that named it.
    if (bare.size() != name.size() || type == IBIS_FILE_IBS) {
        CMN_SetDirectory(name.substr(0, name.size() - bare.size()));
    }
    if (const ExtensionRule* rule = ExtensionOf(type); rule != nullptr && !CompleteName(baseName, *rule)) {
        return 0;
    }
    CMN_Path path{};
    if (!JoinPath(View(gszDirectory), baseName.data(), path)) {
        MSG_Error(1904);
        return 0;
    }
    if (!OpenInAnyCase(path, stream)) {
        MSG_Error(1905, gszDirectory.data(), baseName.data());
        return 0;
    }
    return 1;
}

int CMN_FileExists(std::string_view name)
{
    CMN_Path path{};
    if (!JoinPath(View(gszDirectory), name, path)) {
        return 0;
    }
    CMN_Stream stream;
    stream.attach(CMN_FOpen(path.data(), "r"));
    return stream.isOpen() ? 1 : 0;
}

// Lines ---------------------------------------------------------------------------------------------------

namespace
{

bool HasIllegal(std::span<const char> line)
{
    bool illegal = false;
    for (const char c : line) {
        const auto byte = static_cast<unsigned char>(c);
        illegal |= (byte >= 128) | ((byte < 32) & (byte != '\t'));
    }
    return illegal;
}

// Reports and blanks each illegal character; behind `limit` nothing is kept, so nothing is converted either.
void BlankIllegal(std::span<char> line, std::size_t limit)
{
    for (std::size_t i = 0; i < line.size(); ++i) {
        const auto byte = static_cast<unsigned char>(line[i]);
        if (byte == '\t' || (byte >= 32 && byte < 128)) {
            continue;
        }
        const std::string_view kind = byte == 0 ? "NUL" : byte < 32 ? "control" : "non-7-bit ASCII";
        MSG_ErrorLine(1917, kind, unsigned{byte}, i < limit ? "  Converting to space." : "");
        line[i] = ' ';
    }
}

// Takes the line end off and applies the character rule, unless the line is known to be plain. False if
// nothing but the end-of-file mark was left.
bool CleanLine(std::span<char>& line, bool atEnd, bool plain, std::size_t limit, bool& lineFeed)
{
    lineFeed = !line.empty() && line.back() == '\n';
    if (lineFeed) {
        line = line.first(line.size() - 1);
        if (!line.empty() && line.back() == '\r') {
            line = line.first(line.size() - 1);
        }
    } else if (atEnd && !line.empty() && line.back() == CTRL_Z) {
        line = line.first(line.size() - 1);
        if (line.empty()) {
            return false;
        }
    }
    if (!plain && !gbNoCharCheck && HasIllegal(line)) {
        BlankIllegal(line, limit);
    }
    return true;
}

}  // namespace

bool CMN_ReadLine(CMN_Stream& stream, std::size_t limit, std::string_view& line)
{
    std::span<char> bytes;
    bool atEnd = false;
    bool lineFeed = false;
    if (!stream.nextLine(bytes, atEnd) || !CleanLine(bytes, atEnd, stream.isPlain(), limit, lineFeed)) {
        return false;
    }
    line = std::string_view(bytes.data(), std::min(bytes.size(), limit));
    return true;
}

bool CMN_ReadLongLine(CMN_Stream& stream, std::span<char>& line, bool& lineFeed)
{
    bool atEnd = false;
    return stream.nextLine(line, atEnd) && CleanLine(line, atEnd, stream.isPlain(), SIZE_MAX, lineFeed);
}

// Cursors and tokens --------------------------------------------------------------------------------------

int CMN_SkipKeyword(std::string_view& cursor)
{
    const std::size_t bracket = cursor.find(']');
    if (bracket == std::string_view::npos) {
        cursor.remove_prefix(cursor.size());
        return 0;
    }
    cursor.remove_prefix(bracket + 1);
    CMN_SkipSpace(cursor);
    return 1;
}

void CMN_SkipToken(std::string_view& cursor)
{
    std::size_t i = 0;
    while (i < cursor.size() && !CMN_IsSpace(cursor[i])) {
        ++i;
    }
    cursor.remove_prefix(i);
}

std::string_view CMN_TrimEnd(std::string_view text)
{
    while (text.size() > 1 && CMN_IsSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

namespace
{

// In the header's terms CMN_NextTokenDelim; here for the loops over whole lines.
inline std::string_view TakeToken(std::string_view& cursor, char delimiter)
{
    const char* at = cursor.data();
    const char* const end = at + cursor.size();
    while (at != end && CMN_IsSpace(*at)) {
        ++at;
    }
    const char* const begin = at;
    while (at != end && *at != ' ' && *at != '\t' && *at != delimiter) {
        ++at;
    }
    if (at == begin && at != end) {
        ++at;  // the delimiter itself
    }
    cursor = {at, static_cast<std::size_t>(end - at)};
    return at == begin ? std::string_view() : std::string_view(begin, static_cast<std::size_t>(at - begin));
}

inline CMN_TokenList SplitAt(std::string_view text, int maxTokens, char delimiter)
{
    CMN_ASSERT(maxTokens >= 0 && maxTokens <= CMN_TOKEN_LIMIT);
    const auto capacity = static_cast<std::size_t>(maxTokens);
    CMN_TokenList list;
    list.iCapacity = maxTokens;
    std::size_t stored = 0;
    for (std::string_view token; !(token = TakeToken(text, delimiter)).empty(); ++list.iFound) {
        if (stored < capacity) {
            list.aTokens[stored++] = {token.data(), token.size()};
        }
    }
    list.iStored = static_cast<int>(stored);
    return list;
}

}  // namespace

std::string_view CMN_NextTokenDelim(std::string_view& cursor, char delimiter)
{
    return TakeToken(cursor, delimiter);
}

std::string_view CMN_NextToken(std::string_view& cursor)
{
    return TakeToken(cursor, ' ');
}

CMN_TokenList CMN_SplitDelim(std::string_view text, int maxTokens, char delimiter)
{
    return SplitAt(text, maxTokens, delimiter);
}

CMN_TokenList CMN_Split(std::string_view text, int maxTokens)
{
    return SplitAt(text, maxTokens, ' ');
}

int CMN_CountTokens(std::string_view text)
{
    int count = 0;
    while (!CMN_NextToken(text).empty()) {
        ++count;
    }
    return count;
}

// Names and fixed text fields -----------------------------------------------------------------------------

bool CMN_Equal(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                              [](char x, char y) { return CMN_Upper(x) == CMN_Upper(y); });
}

bool CMN_EqualN(std::string_view a, std::string_view b, std::size_t n)
{
    return CMN_Equal(a.substr(0, n), b.substr(0, n));
}

bool CMN_KeywordEqual(std::string_view tableText, std::string_view name)
{
    return tableText.size() == name.size() &&
           std::equal(name.begin(), name.end(), tableText.begin(),
                      [](char c, char t) { return CMN_Upper(c == ' ' ? '_' : c) == CMN_Upper(t); });
}

void CMN_ToLower(std::span<char> text)
{
    std::transform(text.begin(), text.end(), text.begin(), CMN_Lower);
}

void CMN_ToUpper(std::span<char> text)
{
    std::transform(text.begin(), text.end(), text.begin(), CMN_Upper);
}

void CMN_CopyText(std::span<char> dst, std::string_view src, std::size_t limit)
{
    const std::size_t length = std::min({src.size(), limit, dst.size() - 1});
    std::copy_n(src.data(), length, dst.data());
    dst[length] = '\0';
}

namespace
{

using TooLong = MSG_Site<MSG_Kind::Text, MSG_Kind::Text, MSG_Kind::Integer>;

bool IsDuplicate(std::span<const char> dst, std::string_view label)
{
    if (dst[0] != '\0') {
        MSG_ErrorLine(1911, label);
        return true;
    }
    return false;
}

void FillField(std::span<char> dst, std::string_view src, unsigned limit, unsigned kept,
               std::string_view label, TooLong tooLong)
{
    const unsigned quoted = std::min(limit, QUOTE_LIMIT);
    if (src.size() > limit) {
        MSG_ErrorLine(tooLong, label, src, quoted);
    }
    if (src.empty()) {
        MSG_ErrorLine(1913, label);
    }
    CMN_CopyText(dst, src, std::min(kept, QUOTE_LIMIT));
}

}  // namespace

bool CMN_SetString(std::span<char> dst, std::string_view src, unsigned limit, std::string_view label)
{
    return !IsDuplicate(dst, label) && CMN_ReplaceString(dst, src, limit, label);
}

bool CMN_SetStringStrict(std::span<char> dst, std::string_view src, unsigned limit, std::string_view label)
{
    if (IsDuplicate(dst, label)) {
        return false;
    }
    FillField(dst, src, limit, CMN_PATH_LIMIT, label, 1914);
    return true;
}

bool CMN_ReplaceString(std::span<char> dst, std::string_view src, unsigned limit, std::string_view label)
{
    FillField(dst, src, limit, limit, label, 1912);
    return true;
}

char* CMN_StrDup(std::string_view text)
{
    char* copy = nullptr;
    if (CMN_Alloc(copy, text.size() + 1)) {
        std::copy(text.begin(), text.end(), copy);
    }
    return copy;
}

void CMN_RequireKeyword(std::string_view keyword, bool seen)
{
    if (!seen) {
        MSG_Error(1915, keyword, PARSE_GetFileName());
    }
}

bool CMN_IsNotReserved(std::string_view name)
{
    static constexpr std::array<std::string_view, 5> reserved{"GND", "NC", "POWER", "CIRCUITCALL", "NA"};
    return std::none_of(reserved.begin(), reserved.end(),
                        [name](std::string_view word) { return CMN_Equal(word, name); });
}

void CMN_CheckReserved(std::string_view name)
{
    if (!CMN_IsNotReserved(name)) {
        MSG_ErrorLine(1916, name);
    }
}

// Numbers -------------------------------------------------------------------------------------------------

namespace
{

// The rare rest of the grammar: hexadecimal, and values beyond the range of a double, which come back as
// infinity or as what is left near zero.
std::size_t ReadDoubleByHost(std::string_view text, double* out)
{
    std::array<char, 128> shortCopy;
    char* longCopy = nullptr;
    char* copy = shortCopy.data();
    if (text.size() < shortCopy.size()) {
        CMN_CopyText(shortCopy, text);
    } else if ((copy = longCopy = CMN_StrDup(text)) == nullptr) {
        return 0;
    }
    char* end = nullptr;
    const double value = hst_strtod(copy, &end);
    const auto used = static_cast<std::size_t>(end - copy);
    if (used != 0) {
        *out = value;
    }
    CMN_Release(longCopy);
    return used;
}

bool IsHexadecimal(std::string_view text)
{
    return text.size() > 1 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
}

double ScaleOf(char letter)
{
    switch (letter) {
    case 'T':
        return 1e12;
    case 'G':
        return 1e9;
    case 'M':
        return 1e6;
    case 'k':
        return 1e3;
    case 'm':
        return 1e-3;
    case 'u':
        return 1e-6;
    case 'n':
        return 1e-9;
    case 'p':
        return 1e-12;
    case 'f':
        return 1e-15;
    default:
        return 1.0;
    }
}

}  // namespace

namespace
{

// The general routine: all that may stand at the front of a number.
std::size_t ReadAnyDouble(std::string_view text, double* out)
{
    std::string_view rest = text;
    CMN_SkipSpace(rest);
    const bool plus = !rest.empty() && rest.front() == '+';
    const bool minus = !rest.empty() && rest.front() == '-';
    const std::string_view digits = rest.substr(plus || minus ? 1 : 0);
    if (digits.empty() || digits.front() == '+' || digits.front() == '-') {
        return 0;
    }
    if (IsHexadecimal(digits)) {
        return ReadDoubleByHost(text, out);
    }
    double value = 0.0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (result.ec == std::errc::result_out_of_range) {
        return ReadDoubleByHost(text.substr(0, static_cast<std::size_t>(result.ptr - text.data())), out);
    }
    if (result.ec != std::errc()) {
        return 0;
    }
    *out = minus ? -value : value;
    return static_cast<std::size_t>(result.ptr - text.data());
}

// The powers of ten that a double holds exactly.
constexpr auto POWERS = [] {
    std::array<double, 23> powers{1.0};
    for (std::size_t i = 1; i < powers.size(); ++i) {
        powers[i] = 10.0 * powers[i - 1];
    }
    return powers;
}();

constexpr std::ptrdiff_t SAFE_DIGITS = 19;  // always fit 64 bits
constexpr std::uint64_t EXACT_LIMIT = std::uint64_t{1} << std::numeric_limits<double>::digits;

const char* ReadDigits(const char* at, const char* end, std::uint64_t& value)
{
    for (; at != end && CMN_IsDigit(*at); ++at) {
        value = 10 * value + static_cast<std::uint64_t>(*at - '0');
    }
    return at;
}

// "e-12" where it stands whole; otherwise the number has ended before it. Four digits are more than enough
// to be out of range.
const char* ReadExponent(const char* at, const char* end, int& exponent)
{
    if (at == end || (*at != 'e' && *at != 'E')) {
        return at;
    }
    const char* digits = at + 1;
    const bool minus = digits != end && *digits == '-';
    digits += digits != end && (*digits == '-' || *digits == '+') ? 1 : 0;
    if (digits == end || !CMN_IsDigit(*digits)) {
        return at;
    }
    std::uint64_t value = 0;
    const char* const behind = ReadDigits(digits, std::min(end, digits + 4), value);
    exponent += minus ? -static_cast<int>(value) : static_cast<int>(value);
    return behind;
}

// The numbers of a model have few digits and a small power of ten. Both are then exact as doubles, and the
// one multiplication or division rounds as the general routine does. Takes text that begins with a digit, or
// with one behind a minus sign, and gives 0 for all that needs more care.
inline std::size_t ReadShortDouble(std::string_view text, double* out)
{
    if (FLT_EVAL_METHOD != 0) {
        return 0;  // a wider type would round twice
    }
    const char* const end = text.data() + text.size();
    const char* const first = text.data() + (text.front() == '-' ? 1 : 0);
    std::uint64_t mantissa = 0;
    const char* at = ReadDigits(first, end, mantissa);
    const char* fraction = at;
    if (at != end && *at == '.') {
        fraction = at + 1;
        at = ReadDigits(fraction, end, mantissa);
    }
    if (at - first > SAFE_DIGITS || mantissa > EXACT_LIMIT) {
        return 0;
    }
    auto exponent = static_cast<int>(fraction - at);
    at = ReadExponent(at, end, exponent);
    const auto power = static_cast<std::size_t>(std::abs(exponent));
    if (power >= POWERS.size() || (at != end && CMN_IsDigit(*at))) {
        return 0;
    }
    const auto exact = static_cast<double>(mantissa);
    const double value = exponent < 0 ? exact / POWERS[power] : exact * POWERS[power];
    *out = text.front() == '-' ? -value : value;
    return static_cast<std::size_t>(at - text.data());
}

bool BeginsWithDigit(std::string_view text)
{
    const std::size_t sign = text.starts_with('-') ? 1 : 0;
    return sign < text.size() && CMN_IsDigit(text[sign]) && !IsHexadecimal(text.substr(sign));
}

inline std::size_t ReadDouble(std::string_view text, double* out)
{
    const std::size_t used = BeginsWithDigit(text) ? ReadShortDouble(text, out) : 0;
    return used != 0 ? used : ReadAnyDouble(text, out);
}

inline CMN_Number ReadValue(std::string_view text, double* out)
{
    double value = 0.0;
    const std::size_t used = ReadDouble(text, &value);
    if (used == 0) {
        return CMN_INVALID;
    }
    const std::string_view unit = text.substr(used);
    if (unit.empty()) {
        *out = value;
        return CMN_GOOD;
    }
    if (!CMN_IsAlpha(unit.front())) {
        return CMN_INVALID;
    }
    *out = value * ScaleOf(unit.front());
    return std::any_of(unit.begin(), unit.end(), CMN_IsDigit) ? CMN_SUSPICIOUS : CMN_GOOD;
}

}  // namespace

std::size_t CMN_ReadDouble(std::string_view text, double* out)
{
    return ReadDouble(text, out);
}

CMN_Number CMN_GetValue(std::string_view text, double* out)
{
    return ReadValue(text, out);
}

int CMN_GetValueOrNA(std::string_view text, std::string_view label, std::string_view kind, double* out,
                     numstat* status)
{
    *status = NUM_ABSENT;
    if (text.data() == nullptr) {
        return 1;
    }
    bool isNA = false;
    switch (CMN_GetValueNA(text, out, &isNA)) {
    case CMN_INVALID:
        MSG_ErrorLine(1909, kind, text);
        return 0;
    case CMN_SUSPICIOUS:
        MSG_WarningLine(1910, kind, label, text);
        break;
    case CMN_GOOD:
        break;
    }
    *status = isNA ? NUM_NA : NUM_VALUE;
    return 1;
}

CMN_Number CMN_GetValueNA(std::string_view text, double* out, bool* isNA)
{
    *isNA = CMN_Equal(text, "NA");
    if (*isNA) {
        *out = 0.0;
        return CMN_GOOD;
    }
    return ReadValue(text, out);
}

bool CMN_TakePlainValue(std::string_view& cursor, double* out, numstat* status)
{
    CMN_SkipSpace(cursor);
    const bool isNA = CMN_EqualN(cursor, "NA", 2);
    *out = 0.0;
    const std::size_t used = isNA ? 2 : BeginsWithDigit(cursor) ? ReadShortDouble(cursor, out) : 0;
    cursor.remove_prefix(used);
    if (!isNA && !cursor.empty() && CMN_IsAlpha(cursor.front())) {
        *out *= ScaleOf(cursor.front());
        do {
            cursor.remove_prefix(1);
        } while (!cursor.empty() && CMN_IsAlpha(cursor.front()));
    }
    *status = isNA ? NUM_NA : NUM_VALUE;
    return used != 0 && (cursor.empty() || cursor.front() == ' ' || cursor.front() == '\t');
}

CMN_Number CMN_GetPlainDouble(std::string_view text, double* out)
{
    const std::size_t used = CMN_ReadDouble(text, out);
    return used == 0 ? CMN_INVALID : used < text.size() ? CMN_SUSPICIOUS : CMN_GOOD;
}

namespace
{

// Decimal integer within the range of `Integer`; what lies outside is told by `errc::result_out_of_range`.
template <class Integer> CMN_Number ReadInteger(std::string_view text, Integer* out, std::errc& error)
{
    CMN_SkipSpace(text);
    if (text.size() > 1 && text.front() == '+' && CMN_IsDigit(text[1])) {
        text.remove_prefix(1);
    }
    const auto result = std::from_chars(text.data(), text.data() + text.size(), *out);
    error = result.ec;
    if (result.ec == std::errc::invalid_argument) {
        return CMN_INVALID;
    }
    return result.ptr == text.data() + text.size() ? CMN_GOOD : CMN_SUSPICIOUS;
}

}  // namespace

CMN_Number CMN_GetInt(std::string_view text, int* out)
{
    std::errc error{};
    const CMN_Number result = ReadInteger(text, out, error);
    return error == std::errc() ? result : CMN_INVALID;
}

CMN_Number CMN_GetUnsigned(std::string_view text, unsigned* out)
{
    if (text.starts_with('-')) {
        return CMN_INVALID;
    }
    std::errc error{};
    const CMN_Number result = ReadInteger(text, out, error);
    if (error == std::errc::result_out_of_range) {
        *out = UINT_MAX;
    }
    return result;
}

// R/L/C sections ------------------------------------------------------------------------------------------

namespace
{

void SkipBlanks(std::string_view& cursor)
{
    const std::size_t next = cursor.find_first_not_of(" \t");
    cursor.remove_prefix(next == std::string_view::npos ? cursor.size() : next);
}

std::string_view TakeUntil(std::string_view& cursor, std::string_view ends)
{
    const std::string_view token = cursor.substr(0, std::min(cursor.find_first_of(ends), cursor.size()));
    cursor.remove_prefix(token.size());
    return token;
}

CMN_SectionItem SectionItemOf(std::string_view name)
{
    return name == "Len" ? SECT_LEN
           : name == "R" ? SECT_R
           : name == "C" ? SECT_C
           : name == "L" ? SECT_L
                         : SECT_ERROR;
}

// Takes "= value" off the cursor.
CMN_SectionItem ReadSectionValue(std::string_view& cursor, CMN_SectionItem item, double* value)
{
    SkipBlanks(cursor);
    if (cursor.empty()) {
        MSG_ErrorLine(1920);
        return SECT_NONE;
    }
    if (cursor.front() != '=') {
        MSG_ErrorLine(1921);
        TakeUntil(cursor, "/");
        cursor.remove_prefix(cursor.empty() ? 0 : 1);
        return SECT_ERROR;
    }
    cursor.remove_prefix(1);
    SkipBlanks(cursor);
    if (cursor.empty()) {
        MSG_ErrorLine(1920);
        return SECT_NONE;
    }
    const std::string_view text = TakeUntil(cursor, " \t/");
    if (text.empty()) {
        MSG_ErrorLine(1923);
        *value = 0.0;
    } else if (CMN_GetValue(text, value) != CMN_GOOD) {
        MSG_ErrorLine(1922, text);
    }
    SkipBlanks(cursor);
    return item;
}

}  // namespace

CMN_SectionItem CMN_GetSectionItem(std::string_view& cursor, double* value)
{
    SkipBlanks(cursor);
    if (cursor.empty()) {
        return SECT_NONE;
    }
    if (cursor.front() == '/') {
        cursor.remove_prefix(1);
        SkipBlanks(cursor);
        return SECT_END;
    }
    if (cursor.front() == '=') {
        MSG_ErrorLine(1918);
        cursor.remove_prefix(1);
        return SECT_ERROR;
    }
    const std::string_view name = TakeUntil(cursor, " \t=/");
    const CMN_SectionItem item = SectionItemOf(name);
    if (item == SECT_ERROR) {
        MSG_ErrorLine(1919, name);
        return SECT_ERROR;
    }
    return ReadSectionValue(cursor, item, value);
}
