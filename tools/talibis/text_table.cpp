#include "tools/talibis/text_table.h"

#include "tools/talibis/check_print.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <ostream>

namespace
{

constexpr std::size_t INDENT = 2;
constexpr std::size_t GAP = 2;
constexpr std::size_t NAME_LEAST = 12;
constexpr std::size_t WRAPPED_MOST = 20;  // of a wrapped column that another one follows
constexpr std::size_t WRAPPED_LEAST = 12;

bool StartsCharacter(char c)
{
    return (static_cast<unsigned char>(c) & 0xc0U) != 0x80;
}

std::size_t WidthOf(std::string_view text)
{
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), StartsCharacter));
}

// The bytes of the first `width` characters.
std::size_t BytesOf(std::string_view text, std::size_t width)
{
    std::size_t end = 0;
    while (end < text.size() && (!StartsCharacter(text[end]) || width-- > 0)) {
        ++end;
    }
    return end;
}

std::size_t LongestWord(std::string_view text)
{
    std::size_t longest = 0;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        longest = std::max(longest, WidthOf(text.substr(0, end)));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return longest;
}

std::string Padded(const std::string& text, std::size_t width, bool right)
{
    const std::string blanks(width - std::min(width, WidthOf(text)), ' ');
    return right ? blanks + text : text + blanks;
}

std::string TrimEnd(std::string text)
{
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

}  // namespace

std::string TextStyle::mark(std::string_view start, std::string_view text) const
{
    std::string marked(mbColour ? start : "");
    marked += text;
    return marked + (mbColour ? "\x1b[0m" : "");
}

std::string Quantity(double value, std::string_view unit)
{
    static constexpr std::string_view PREFIXES = "afpnum kMGT";
    static constexpr int DIGITS = 4;
    static constexpr int LOWEST = -324;  // power of ten of a double, and a multiple of three
    static constexpr int LEAST = -18;
    static constexpr int MOST = 12;
    const std::string tail = unit.empty() ? "" : " " + std::string(unit);
    if (value == 0 || !std::isfinite(value)) {
        return (value == 0 ? "0" : "out of range") + tail;
    }
    std::array<char, 32> text;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), std::fabs(value),
                                   std::chars_format::scientific, DIGITS - 1)
                         .ptr;
    const std::string_view number(text.data(), static_cast<std::size_t>(end - text.data()));
    int exponent = 0;
    const std::size_t mark = number.find('e');
    const std::string_view power = number.substr(mark + (number[mark + 1] == '+' ? 2 : 1));
    std::from_chars(power.data(), power.data() + power.size(), exponent);
    const int scale = LOWEST + (exponent - LOWEST) / 3 * 3;
    if (scale < LEAST || scale > MOST || unit.empty()) {
        const auto plain =
            std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, DIGITS)
                .ptr;
        return std::string(text.data(), plain) + tail;
    }
    std::string digits = std::string(1, number[0]) + std::string(number.substr(2, mark - 2));
    digits.insert(static_cast<std::size_t>(exponent - scale) + 1, ".");
    digits.erase(digits.find_last_not_of('0') + 1);
    digits.erase(digits.find_last_not_of('.') + 1);
    const char prefix = PREFIXES[static_cast<std::size_t>((scale - LEAST) / 3)];
    return (value < 0 ? "-" : "") + digits + " " + (prefix == ' ' ? "" : std::string(1, prefix)) +
           std::string(unit);
}

std::vector<std::string> WrapText(std::string_view text, std::size_t width)
{
    std::vector<std::string> lines(1);
    while (!text.empty()) {
        std::size_t end = std::min(text.find(' '), text.size());
        const std::size_t used = WidthOf(lines.back());
        if (used != 0 && used + 1 + WidthOf(text.substr(0, end)) > width) {
            lines.emplace_back();
        }
        end = std::min(end, BytesOf(text, width));
        lines.back() += lines.back().empty() ? "" : " ";
        lines.back() += text.substr(0, end);
        text.remove_prefix(std::min(text.size(), end + (end < text.size() && text[end] == ' ' ? 1 : 0)));
    }
    return lines;
}

void TextTable::add(std::vector<std::string> cells, const std::string& note)
{
    for (std::string& cell : cells) {
        cell = Harmless(cell);
    }
    cells.resize(mColumns.size());
    mRows.push_back({std::move(cells), Harmless(note)});
}

// Columns are as wide as their widest text. Of what then is too much the last column gives up what its words
// can spare, then the names, and only then words are broken.
std::vector<std::size_t> TextTable::widths() const
{
    std::vector<std::size_t> widths;
    for (std::size_t i = 0; i < mColumns.size(); ++i) {
        std::size_t width = WidthOf(mColumns[i].sHead);
        for (const Row& row : mRows) {
            width = std::max(width, WidthOf(row.cells[i]));
        }
        const bool limited = mColumns[i].kind == ColumnKind::Wrapped && i + 1 < mColumns.size();
        widths.push_back(limited ? std::min(width, WRAPPED_MOST) : width);
    }
    std::size_t total = INDENT + GAP * (widths.size() - 1);
    for (const std::size_t width : widths) {
        total += width;
    }
    const auto give = [&](std::size_t& width, std::size_t least) {
        const std::size_t taken =
            std::min(total - std::min(total, TEXT_WIDTH), width - std::min(width, least));
        width -= taken;
        total -= taken;
    };
    if (mColumns.back().kind == ColumnKind::Wrapped) {
        std::size_t word = WRAPPED_LEAST;
        for (const Row& row : mRows) {
            word = std::max(word, LongestWord(row.cells.back()));
        }
        give(widths.back(), word);
    }
    give(widths.front(), NAME_LEAST);
    for (std::size_t i = widths.size(); i-- > 1;) {
        if (mColumns[i].kind == ColumnKind::Wrapped) {
            give(widths[i], WRAPPED_LEAST);
        }
    }
    return widths;
}

void TextTable::printRow(std::ostream& out, const TextStyle& style, const Row& row,
                         const std::vector<std::size_t>& widths) const
{
    const std::string indent(INDENT, ' ');
    std::vector<std::vector<std::string>> cells;
    std::size_t lines = 1;
    for (std::size_t i = 0; i < row.cells.size(); ++i) {
        cells.push_back(mColumns[i].kind == ColumnKind::Wrapped ? WrapText(row.cells[i], widths[i])
                                                                : std::vector{row.cells[i]});
        lines = std::max(lines, cells.back().size());
    }
    if (WidthOf(row.cells[0]) > widths[0]) {
        out << indent << style.bold(row.cells[0]) << '\n';
        cells[0][0].clear();
    }
    for (std::size_t k = 0; k < lines; ++k) {
        std::string rest;
        for (std::size_t i = 1; i < cells.size(); ++i) {
            const std::string text = k < cells[i].size() ? cells[i][k] : "";
            rest += std::string(GAP, ' ') + Padded(text, widths[i], mColumns[i].kind == ColumnKind::Right);
        }
        rest = TrimEnd(rest);
        const std::string name = k < cells[0].size() ? cells[0][k] : "";
        if (!name.empty() || !rest.empty()) {
            out << indent << (name.empty() ? "" : style.bold(name));
            out << (rest.empty() ? "" : std::string(widths[0] - WidthOf(name), ' ') + rest) << '\n';
        }
    }
}

void TextTable::print(std::ostream& out, const TextStyle& style) const
{
    const std::vector<std::size_t> columns = widths();
    std::string heads(INDENT, ' ');
    for (std::size_t i = 0; i < mColumns.size(); ++i) {
        heads += (i == 0 ? "" : std::string(GAP, ' ')) +
                 Padded(std::string(mColumns[i].sHead), columns[i], mColumns[i].kind == ColumnKind::Right);
    }
    out << style.dim(TrimEnd(heads)) << '\n';
    static constexpr std::size_t NOTE_INDENT = 2 * INDENT;
    for (const Row& row : mRows) {
        printRow(out, style, row, columns);
        if (!row.note.empty()) {
            for (const std::string& line : WrapText(row.note, TEXT_WIDTH - NOTE_INDENT)) {
                out << std::string(NOTE_INDENT, ' ') << style.dim(line) << '\n';
            }
        }
    }
}
