// Text for people: aligned columns within 80 characters, and numbers with units.

#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

inline constexpr std::size_t TEXT_WIDTH = 80;

/// Bold and dim text on terminals, plain text elsewhere.
class TextStyle
{
  public:
    explicit TextStyle(bool colour) : mbColour(colour) {}
    std::string bold(std::string_view text) const { return mark("\x1b[1m", text); }
    std::string dim(std::string_view text) const { return mark("\x1b[2m", text); }

  private:
    std::string mark(std::string_view start, std::string_view text) const;

    bool mbColour;
};

/// "3.3 V", "52 mOhm", "2.5 GHz": four digits at most, and the prefix that leaves one to three ahead of the
/// point.
std::string Quantity(double value, std::string_view unit);

/// The lines of a text, broken between words; a word that is longer than a line is broken too.
std::vector<std::string> WrapText(std::string_view text, std::size_t width);

enum class ColumnKind {
    Left,
    Right,
    Wrapped,  ///< goes on in the next line where its text is too long
};

struct TextColumn {
    std::string_view sHead;
    ColumnKind kind = ColumnKind::Left;
};

/// Rows under a line of headings, indented by two. A first cell that leaves no room for the others has a line
/// of its own, so that no name is cut.
class TextTable
{
  public:
    explicit TextTable(std::vector<TextColumn> columns) : mColumns(std::move(columns)) {}
    /// Texts of a file may hold any bytes. `note` stands below the row.
    void add(std::vector<std::string> cells, const std::string& note = "");
    void print(std::ostream& out, const TextStyle& style) const;

  private:
    struct Row {
        std::vector<std::string> cells;
        std::string note;
    };

    std::vector<std::size_t> widths() const;
    void printRow(std::ostream& out, const TextStyle& style, const Row& row,
                  const std::vector<std::size_t>& widths) const;

    std::vector<TextColumn> mColumns;
    std::vector<Row> mRows;
};
