// A finding as `talibis check` handles it: what the library told, where it stands in the file, and what
// becomes of it. Reports travel from the reading process to the printing one as packed bytes.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

enum class Severity : std::uint8_t { Bug, Error, Warning, Caution, Note };
inline constexpr std::size_t SEVERITIES = 5;

/// "bug", "error", "warning", "caution", "note"
std::string_view WordOf(Severity severity);
Severity SeverityOf(std::string_view word);

/// The least severity that makes the exit status 1. A note is not graver than a caution.
enum class FailOn { Error, Warning, Caution, Never };
bool Fails(Severity severity, FailOn threshold);

/// What becomes of a finding.
enum class Fate : std::uint8_t {
    Shown,
    Hidden,  ///< a caution that nobody asked for
    Capped,  ///< beyond the number shown of its kind
    Waived,
};

/// A block of a file that has a name, such as [Model] or [Component].
struct Block {
    std::string keyword;  ///< as it is commonly written: "Model Selector"
    std::string name;
    unsigned line = 0;  ///< of the keyword; 0: no block is known
};

struct Finding {
    Severity severity = Severity::Error;
    int code = 0;  ///< 0: a text that has no number
    bool hasLine = false;
    unsigned line = 0;
    std::string text;  ///< as stored: framed and folded, with its newline

    std::string file;  ///< the file that was read then, when it is another one than was asked for
    unsigned placeLine =
        0;  ///< line to show: the finding's own, one that its text names, or that of its block
    bool blockPlace = false;  ///< the line to show is that of the block
    Block block;              ///< the block that the text speaks of, or that the line lies in
    std::string source;       ///< the line to show, cut when very long; empty when it is that of a block

    Fate fate = Fate::Shown;   ///< set behind the reading
    std::string waiverReason;  ///< of a waived finding
};

/// The text without frame and fold: its lines, without blanks around them.
std::vector<std::string> LinesOf(const Finding& finding);
/// The same on one line.
std::string OneLine(const Finding& finding);
/// The line number in the frame of a text, 0 without any. Files of version 1.x have no other.
unsigned FrameLine(const Finding& finding);
/// The first line number that a text names, as in "Beginning on Line 59"; 0 without any. `end` is set behind
/// it.
unsigned NamedLine(std::string_view text, std::size_t& end);
/// What stays the same when lines of the file move: number, text without line numbers, block. Hexadecimal.
std::string FingerprintOf(const Finding& finding);

struct FileReport {
    std::string path;  ///< as it is shown
    std::string type;  ///< "ibs", "pkg", "ebd", "ami", "param"
    bool readable = false;
    std::vector<Finding> findings;
};

/// The report of a file that gave none.
FileReport FailureReport(std::string path, std::string type, const std::string& reason);

/// Readability and findings as bytes. Path and type stay behind: who asked knows them.
std::string Pack(const FileReport& report);
/// Puts them into `report`; false for bytes that are not whole.
bool Unpack(std::string_view bytes, FileReport& report);
