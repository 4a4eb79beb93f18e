// The output formats of `talibis check`: each prints one file after the other and what belongs at the end.

#pragma once

#include "tools/talibis/check_judge.h"

#include <cstddef>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct PrintStyle {
    bool colour = false;
    std::size_t columns = 120;  ///< for source lines
    bool showWaived = false;
    bool waivers = false;  ///< a file of waivers was given
    bool cap = false;      ///< a number of findings of one kind was given
    FailOn failOn = FailOn::Error;
};

/// What a whole run gave.
struct Totals {
    Tally tally;
    std::size_t files = 0;
    std::size_t unreadable = 0;
    std::vector<std::string> unusedWaivers;
    bool interrupted = false;
    int exitStatus = 0;
};

class Printer
{
  public:
    virtual ~Printer() = default;
    virtual void file(const JudgedFile& file) = 0;
    /// Once, behind the last file, also of a run that was ended early.
    virtual void end(const Totals& totals) = 0;
};

std::unique_ptr<Printer> MakeTextPrinter(std::ostream& out, const PrintStyle& style);
std::unique_ptr<Printer> MakeGccPrinter(std::ostream& out, const PrintStyle& style);
std::unique_ptr<Printer> MakeJsonPrinter(std::ostream& out, const PrintStyle& style);
std::unique_ptr<Printer> MakeSarifPrinter(std::ostream& out, const PrintStyle& style);
std::unique_ptr<Printer> MakeJunitPrinter(std::ostream& out, const PrintStyle& style);

/// The file that a finding stands in, as it is shown.
const std::string& PathOf(const JudgedFile& file, const Finding& finding);
/// The text for a terminal: bytes that could steer it, and those that are no UTF-8, are written "\x1B".
std::string Harmless(std::string_view text);
/// "1 error", "2 errors"
std::string Plural(std::size_t count, std::string_view word);
/// "12 more errors [606] not shown: Duplicate Pin '1'."
std::string CappedText(const CappedKind& kind);
/// The nearest of "error", "warning" and "note", which editors and other programs know.
std::string_view CommonWordOf(Severity severity);
