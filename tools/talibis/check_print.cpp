#include "tools/talibis/check_print.h"

#include <array>
#include <cstdint>

namespace
{

struct Character {
    std::size_t uiLength;  // in bytes; 0: no UTF-8
    std::uint32_t uiCode;
};

// The first character of `text`, which is not empty.
Character Decode(std::string_view text)
{
    const auto first = static_cast<unsigned char>(text.front());
    const std::size_t length = first < 0x80   ? 1
                               : first < 0xc2 ? 0
                               : first < 0xe0 ? 2
                               : first < 0xf0 ? 3
                               : first < 0xf5 ? 4
                                              : 0;
    if (length < 2 || text.size() < length) {
        return {length < 2 ? length : 0, first};
    }
    std::uint32_t code = first & (0xffU >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        const auto next = static_cast<unsigned char>(text[i]);
        if ((next & 0xc0U) != 0x80) {
            return {0, first};
        }
        code = code << 6U | (next & 0x3fU);
    }
    static constexpr std::array<std::uint32_t, 5> LEAST{0, 0, 0x80, 0x800, 0x10000};
    const bool whole = code >= LEAST[length] && code <= 0x10ffff && (code < 0xd800 || code > 0xdfff);
    return {whole ? length : 0, code};
}

// Control characters, the marks that turn the direction of what follows, and what is no character at all.
bool Steers(std::uint32_t code)
{
    return code < 0x20 || (code >= 0x7f && code < 0xa0) || (code >= 0x200e && code <= 0x200f) ||
           (code >= 0x2028 && code <= 0x202e) || (code >= 0x2066 && code <= 0x2069) ||
           (code & 0xfffeU) == 0xfffe;
}

void AddEscaped(std::string& out, std::string_view bytes)
{
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        out += "\\x";
        out += "0123456789ABCDEF"[byte >> 4U];
        out += "0123456789ABCDEF"[byte & 15U];
    }
}

}  // namespace

const std::string& PathOf(const JudgedFile& file, const Finding& finding)
{
    return finding.file.empty() ? file.report.path : finding.file;
}

std::string Harmless(std::string_view text)
{
    std::string out;
    while (!text.empty()) {
        const Character character = Decode(text);
        const std::string_view bytes = text.substr(0, character.uiLength == 0 ? 1 : character.uiLength);
        if (character.uiLength == 0 || Steers(character.uiCode)) {
            AddEscaped(out, bytes);
        } else {
            out += bytes;
        }
        text.remove_prefix(bytes.size());
    }
    return out;
}

std::string Plural(std::size_t count, std::string_view word)
{
    return std::to_string(count) + " " + std::string(word) + (count == 1 ? "" : "s");
}

std::string CappedText(const CappedKind& kind)
{
    const std::string words = "more " + std::string(WordOf(kind.severity));
    return Plural(kind.count, words) + (kind.code == 0 ? "" : " [" + std::to_string(kind.code) + "]") +
           " not shown: " + kind.sample;
}

std::string_view CommonWordOf(Severity severity)
{
    static constexpr std::array<std::string_view, SEVERITIES> WORDS{"error", "error", "warning", "note",
                                                                    "note"};
    return WORDS[static_cast<std::size_t>(severity)];
}
