#include "tools/talibis/check_finding.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <utility>

namespace
{

struct SeverityWords {
    std::string_view sWord;
    std::string_view sFrame;
};

constexpr std::array<SeverityWords, SEVERITIES> WORDS{{
    {"bug", "PROGRAM BUG"},
    {"error", "ERROR"},
    {"warning", "WARNING"},
    {"caution", "CAUTION"},
    {"note", "NOTE"},
}};

constexpr std::string_view BLANKS = " \t\r\n";

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

std::string_view Trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(BLANKS);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(BLANKS) - first + 1);
}

// "(line   21)" at the front of `rest`, which is moved behind it.
unsigned TakeFrameLine(std::string_view& rest)
{
    static constexpr std::string_view HEAD = " (line ";
    const std::size_t close = rest.find(')');
    if (!rest.starts_with(HEAD) || close == std::string_view::npos) {
        return 0;
    }
    const std::string_view digits = Trimmed(rest.substr(HEAD.size(), close - HEAD.size()));
    unsigned line = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), line);
    if (digits.empty() || result.ptr != digits.data() + digits.size()) {
        return 0;
    }
    rest.remove_prefix(close + 1);
    return line;
}

struct Unframed {
    unsigned uiLine;
    std::string_view sText;
};

// WORD, perhaps the line, a dash and perhaps a fold.
Unframed TakeFrame(const Finding& finding)
{
    const auto* const words = std::find_if(WORDS.begin(), WORDS.end(), [&](const SeverityWords& row) {
        return std::string_view(finding.text).starts_with(row.sFrame);
    });
    if (words == WORDS.end()) {
        return {0, Trimmed(finding.text)};
    }
    std::string_view rest = std::string_view(finding.text).substr(words->sFrame.size());
    const unsigned line = TakeFrameLine(rest);
    return rest.starts_with(" -") ? Unframed{line, Trimmed(rest.substr(2))}
                                  : Unframed{0, Trimmed(finding.text)};
}

class Hash  // FNV-1a with 64 bits
{
  public:
    void add(std::string_view text)
    {
        for (const char c : text) {
            mValue = (mValue ^ static_cast<unsigned char>(c)) * 0x100000001b3U;
        }
        mValue = (mValue ^ 0xffU) * 0x100000001b3U;  // no text holds this byte: parts stay apart
    }
    std::string hexadecimal() const
    {
        std::string text(16, '0');
        for (std::size_t i = 0; i < text.size(); ++i) {
            text[i] = "0123456789abcdef"[mValue >> (60 - 4 * i) & 15U];
        }
        return text;
    }

  private:
    std::uint64_t mValue = 0xcbf29ce484222325U;
};

// Packing: numbers in the byte order of the machine, texts behind their length.

class Packer
{
  public:
    template <class Number> void number(Number value)
    {
        std::array<char, sizeof value> raw;
        std::memcpy(raw.data(), &value, raw.size());
        mBytes.append(raw.data(), raw.size());
    }
    void text(std::string_view value)
    {
        number(value.size());
        mBytes.append(value);
    }
    std::string take() { return std::move(mBytes); }

  private:
    std::string mBytes;
};

class Unpacker
{
  public:
    explicit Unpacker(std::string_view bytes) : mRest(bytes) {}

    template <class Number> void number(Number& value)
    {
        if (mRest.size() < sizeof value) {
            mbWhole = false;
            mRest = {};
            return;
        }
        std::memcpy(&value, mRest.data(), sizeof value);
        mRest.remove_prefix(sizeof value);
    }
    void text(std::string& value)
    {
        std::size_t size = 0;
        number(size);
        mbWhole = mbWhole && size <= mRest.size();
        value = mRest.substr(0, mbWhole ? size : 0);
        mRest.remove_prefix(value.size());
    }
    bool isWhole() const { return mbWhole; }
    bool isDone() const { return mbWhole && mRest.empty(); }

  private:
    std::string_view mRest;
    bool mbWhole = true;
};

// One list of what a finding takes along, for both ways.
template <class Road, class AnyFinding> void Transfer(Road& road, AnyFinding& finding)
{
    road.number(finding.severity);
    road.number(finding.code);
    road.number(finding.hasLine);
    road.number(finding.line);
    road.text(finding.text);
    road.text(finding.file);
    road.number(finding.placeLine);
    road.number(finding.blockPlace);
    road.text(finding.block.keyword);
    road.text(finding.block.name);
    road.number(finding.block.line);
    road.text(finding.source);
}

}  // namespace

std::string_view WordOf(Severity severity)
{
    return WORDS[static_cast<std::size_t>(severity)].sWord;
}

Severity SeverityOf(std::string_view word)
{
    const auto* const row = std::find_if(WORDS.begin(), WORDS.end(),
                                         [word](const SeverityWords& words) { return words.sWord == word; });
    return static_cast<Severity>(std::min<std::ptrdiff_t>(row - WORDS.begin(), SEVERITIES - 1));
}

bool Fails(Severity severity, FailOn threshold)
{
    static constexpr std::array<FailOn, SEVERITIES> LEAST{FailOn::Error, FailOn::Error, FailOn::Warning,
                                                          FailOn::Caution, FailOn::Caution};
    return threshold != FailOn::Never && LEAST[static_cast<std::size_t>(severity)] <= threshold;
}

std::vector<std::string> LinesOf(const Finding& finding)
{
    std::vector<std::string> lines;
    std::string_view rest = TakeFrame(finding).sText;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        if (const std::string_view line = Trimmed(rest.substr(0, end)); !line.empty()) {
            lines.emplace_back(line);
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return lines;
}

std::string OneLine(const Finding& finding)
{
    std::string all;
    for (const std::string& line : LinesOf(finding)) {
        all += (all.empty() ? "" : " ") + line;
    }
    return all;
}

unsigned FrameLine(const Finding& finding)
{
    return TakeFrame(finding).uiLine;
}

unsigned NamedLine(std::string_view text, std::size_t& end)
{
    for (std::size_t at = text.find("ine "); at != std::string_view::npos; at = text.find("ine ", at + 1)) {
        if (at == 0 || (text[at - 1] != 'l' && text[at - 1] != 'L')) {
            continue;
        }
        const std::size_t digit = at + 4 + (at + 4 < text.size() && text[at + 4] == '<' ? 1 : 0);
        unsigned line = 0;
        const auto result = std::from_chars(text.data() + digit, text.data() + text.size(), line);
        if (digit < text.size() && result.ec == std::errc() && IsDigit(text[digit])) {
            end = static_cast<std::size_t>(result.ptr - text.data());
            return line;
        }
    }
    end = text.size();
    return 0;
}

std::string FingerprintOf(const Finding& finding)
{
    Hash hash;
    hash.add(std::to_string(finding.code));
    const std::string text = OneLine(finding);
    std::string_view rest = text;
    while (!rest.empty()) {
        std::size_t end = 0;
        const bool named = NamedLine(rest, end) != 0;
        std::string_view part = rest.substr(0, end);
        while (named && IsDigit(part.back())) {
            part.remove_suffix(1);
        }
        hash.add(part);
        rest.remove_prefix(end);
    }
    hash.add(finding.block.keyword);
    hash.add(finding.block.name);
    return hash.hexadecimal();
}

FileReport FailureReport(std::string path, std::string type, const std::string& reason)
{
    Finding finding;
    finding.text = "ERROR - " + reason + "\n";
    return {std::move(path), std::move(type), false, {finding}};
}

std::string Pack(const FileReport& report)
{
    Packer packer;
    packer.number(report.readable);
    packer.number(report.findings.size());
    for (const Finding& finding : report.findings) {
        Transfer(packer, finding);
    }
    return packer.take();
}

bool Unpack(std::string_view bytes, FileReport& report)
{
    Unpacker unpacker(bytes);
    std::size_t count = 0;
    unpacker.number(report.readable);
    unpacker.number(count);
    for (std::size_t i = 0; i < count && unpacker.isWhole(); ++i) {
        Transfer(unpacker, report.findings.emplace_back());
    }
    return unpacker.isDone();
}
