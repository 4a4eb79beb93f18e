// Findings for people, each with its source line, and for editors, each on a line of its own.

#include "tools/talibis/check_print.h"

#include <algorithm>
#include <array>
#include <iostream>

namespace
{

// Colours --------------------------------------------------------------------------------------------------

constexpr std::string_view BOLD = "1";
constexpr std::string_view DIM = "2";
constexpr std::string_view RED = "1;31";
constexpr std::string_view GREEN = "32";
constexpr std::string_view YELLOW = "1;33";
constexpr std::string_view CYAN = "1;36";

constexpr std::array<std::string_view, SEVERITIES> SEVERITY_COLOURS{RED, RED, YELLOW, YELLOW, CYAN};

std::string_view ColourOf(FileStatus status)
{
    static constexpr std::array<std::string_view, 3> COLOURS{GREEN, YELLOW, RED};
    return COLOURS[static_cast<std::size_t>(status)];
}

// Source lines ---------------------------------------------------------------------------------------------

// Tabs go to the next multiple of eight columns, as they did where the line was written.
std::string Expanded(std::string_view line)
{
    static constexpr std::size_t TAB = 8;
    std::string out;
    std::size_t column = 0;
    for (const char c : line) {
        if (c == '\t') {
            const std::size_t blanks = TAB - column % TAB;
            out.append(blanks, ' ');
            column += blanks;
        } else {
            out += c;
            // The bytes behind the first one of a character take no column.
            column += (static_cast<unsigned char>(c) & 0xc0U) == 0x80 ? 0 : 1;
        }
    }
    return out;
}

// Not within a character.
std::string Cut(std::string line, std::size_t columns)
{
    static constexpr std::string_view MARK = "...";
    const auto starts = [](char c) { return (static_cast<unsigned char>(c) & 0xc0U) != 0x80; };
    if (static_cast<std::size_t>(std::count_if(line.begin(), line.end(), starts)) <= columns) {
        return line;
    }
    std::size_t end = 0;
    for (std::size_t left = columns - MARK.size(); end < line.size(); ++end) {
        if (starts(line[end]) && left-- == 0) {
            break;
        }
    }
    return line.substr(0, end).append(MARK);
}

std::string SourceText(std::string_view line, std::size_t columns)
{
    while (!line.empty() && (line.back() == '\r' || line.back() == ' ' || line.back() == '\t')) {
        line.remove_suffix(1);
    }
    return Cut(Harmless(Expanded(line)), columns);
}

// Sums -----------------------------------------------------------------------------------------------------

void AddPart(std::string& text, const std::string& part)
{
    text += (text.empty() ? "" : ", ") + part;
}

std::string CountsOf(const Tally& tally)
{
    if (tally.total() == 0) {
        return "no findings";
    }
    std::string text = Plural(tally.of(Severity::Bug) + tally.of(Severity::Error), "error");
    AddPart(text, Plural(tally.of(Severity::Warning), "warning"));
    for (const Severity severity : {Severity::Caution, Severity::Note}) {
        if (tally.of(severity) != 0) {
            AddPart(text, Plural(tally.of(severity), WordOf(severity)));
        }
    }
    return text;
}

std::string NotShownOf(const Tally& tally, bool showWaived)
{
    std::string text;
    if (tally.cautions != 0) {
        AddPart(text, Plural(tally.cautions, "caution") + " (--caution)");
    }
    if (tally.capped != 0) {
        AddPart(text, std::to_string(tally.capped) + " beyond --max-per-code");
    }
    if (tally.waived != 0 && !showWaived) {
        AddPart(text, std::to_string(tally.waived) + " waived (--show-waived)");
    }
    return text;
}

std::string SummaryOf(const Tally& tally, bool showWaived)
{
    std::string text = CountsOf(tally);
    if (tally.waived != 0 && showWaived) {
        AddPart(text, std::to_string(tally.waived) + " waived");
    }
    const std::string notShown = NotShownOf(tally, showWaived);
    return notShown.empty() ? text : text + "; not shown: " + notShown;
}

std::string NumberOf(const Finding& finding)
{
    return finding.code == 0 ? "" : " [" + std::to_string(finding.code) + "]";
}

std::string PlaceOf(const JudgedFile& file, const Finding& finding)
{
    const std::string path = Harmless(PathOf(file, finding));
    return finding.placeLine == 0 ? path : path + ":" + std::to_string(finding.placeLine);
}

// For people -----------------------------------------------------------------------------------------------

class TextPrinter : public Printer
{
  public:
    TextPrinter(std::ostream& out, const PrintStyle& style) : mOut(out), mStyle(style) {}

    void file(const JudgedFile& file) override;
    void end(const Totals& totals) override;

  private:
    void finding(const JudgedFile& file, const Finding& finding);
    void head(const Finding& finding);
    void source(const Finding& finding);
    std::string painted(std::string_view colour, std::string_view text) const;

    std::ostream& mOut;
    PrintStyle mStyle;
};

std::string TextPrinter::painted(std::string_view colour, std::string_view text) const
{
    if (!mStyle.colour) {
        return std::string(text);
    }
    std::string out = "\033[";
    return out.append(colour).append("m").append(text).append("\033[0m");
}

void TextPrinter::head(const Finding& finding)
{
    static constexpr const char* INDENT = "\n    ";
    const std::vector<std::string> lines = LinesOf(finding);
    const std::string_view word = WordOf(finding.severity);
    mOut << (finding.fate == Fate::Waived
                 ? painted(DIM, "waived " + std::string(word) + ":")
                 : painted(SEVERITY_COLOURS[static_cast<std::size_t>(finding.severity)],
                           std::string(word) + ":"));
    for (std::size_t i = 0; i < lines.size(); ++i) {
        mOut << (i == 0 ? " " : INDENT) << Harmless(lines[i]);
    }
    mOut << painted(DIM, NumberOf(finding)) << '\n';
}

void TextPrinter::source(const Finding& finding)
{
    static constexpr std::size_t WIDTH = 6;
    if (finding.blockPlace) {
        mOut << painted(DIM, std::string(WIDTH, ' ') + " | in [" + finding.block.keyword + "] " +
                                 SourceText(finding.block.name, mStyle.columns))
             << '\n';
    } else if (const std::string text = SourceText(finding.source, mStyle.columns); !text.empty()) {
        const std::string number = std::to_string(finding.placeLine);
        const std::size_t blanks = WIDTH - std::min(number.size(), WIDTH);
        mOut << painted(DIM, std::string(blanks, ' ') + number + " | ") << text << '\n';
    }
}

void TextPrinter::finding(const JudgedFile& file, const Finding& finding)
{
    mOut << painted(BOLD, PlaceOf(file, finding) + ":") << ' ';
    head(finding);
    source(finding);
    if (finding.fate == Fate::Waived) {
        mOut << painted(DIM, "       | waived: " + Harmless(finding.waiverReason)) << '\n';
    }
}

void TextPrinter::file(const JudgedFile& file)
{
    for (const Finding& one : file.report.findings) {
        if (one.fate == Fate::Shown || (one.fate == Fate::Waived && mStyle.showWaived)) {
            finding(file, one);
        }
    }
    const std::string path = Harmless(file.report.path);
    for (const CappedKind& kind : file.capped) {
        mOut << painted(BOLD, path + ":") << ' ' << painted(DIM, Harmless(CappedText(kind))) << '\n';
    }
    mOut.flush();
    if (file.status == FileStatus::Unreadable) {
        std::cerr << path << ": could not be read\n";
    } else {
        mOut << painted(ColourOf(file.status), path + ": " + SummaryOf(file.tally, mStyle.showWaived))
             << '\n';
    }
}

void TextPrinter::end(const Totals& totals)
{
    if (totals.files < 2) {
        return;
    }
    std::string text = Plural(totals.files, "file") + ": " + SummaryOf(totals.tally, mStyle.showWaived);
    if (totals.unreadable != 0) {
        text += "; could not be read: " + Plural(totals.unreadable, "file");
    }
    mOut << painted(BOLD, text) << '\n';
}

// For editors ----------------------------------------------------------------------------------------------

class GccPrinter : public Printer
{
  public:
    GccPrinter(std::ostream& out, const PrintStyle& style) : mOut(out), mStyle(style) {}

    void file(const JudgedFile& file) override
    {
        for (const Finding& finding : file.report.findings) {
            if (finding.fate == Fate::Shown || (finding.fate == Fate::Waived && mStyle.showWaived)) {
                print(file, finding);
            }
        }
        for (const CappedKind& kind : file.capped) {
            mOut << Harmless(file.report.path) << ": note: " << Harmless(CappedText(kind)) << '\n';
        }
    }
    void end(const Totals&) override {}

  private:
    void print(const JudgedFile& file, const Finding& finding)
    {
        const bool waived = finding.fate == Fate::Waived;
        mOut << PlaceOf(file, finding) << ": " << (waived ? "note" : CommonWordOf(finding.severity)) << ": "
             << Harmless(OneLine(finding)) << NumberOf(finding);
        if (waived) {
            mOut << " (waived: " << Harmless(finding.waiverReason) << ')';
        }
        mOut << '\n';
    }

    std::ostream& mOut;
    PrintStyle mStyle;
};

}  // namespace

std::unique_ptr<Printer> MakeTextPrinter(std::ostream& out, const PrintStyle& style)
{
    return std::make_unique<TextPrinter>(out, style);
}

std::unique_ptr<Printer> MakeGccPrinter(std::ostream& out, const PrintStyle& style)
{
    return std::make_unique<GccPrinter>(out, style);
}
