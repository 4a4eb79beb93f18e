#include "tools/talibis/check.h"

#include "tools/talibis/check_files.h"
#include "tools/talibis/check_print.h"
#include "tools/talibis/check_progress.h"
#include "tools/talibis/check_workers.h"
#include "tools/talibis/exit_status.h"
#include "tools/talibis/terminal.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <sys/ioctl.h>
#include <thread>
#include <unistd.h>

namespace
{

constexpr int SIGNAL_BASE = 128;  // a shell's way to tell of a signal

using PrinterMaker = std::unique_ptr<Printer> (*)(std::ostream&, const PrintStyle&);
constexpr std::array<PrinterMaker, 5> PRINTERS{MakeTextPrinter, MakeJsonPrinter, MakeGccPrinter,
                                               MakeSarifPrinter, MakeJunitPrinter};

// Columns for a source line behind its number: those of the terminal, or what a pipe gets on every machine.
std::size_t SourceColumns()
{
    static constexpr std::size_t USUAL = 120;
    static constexpr std::size_t NUMBER = 9;
    static constexpr std::size_t LEAST = 40;
    winsize size = {};
    if (isatty(STDOUT_FILENO) == 0 || ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) {
        return USUAL;
    }
    return std::max<std::size_t>(size.ws_col, LEAST + NUMBER) - NUMBER;
}

PrintStyle StyleOf(const CheckOptions& options)
{
    PrintStyle style;
    style.colour = WantsColour(options.colour);
    style.columns = SourceColumns();
    style.showWaived = options.showWaived;
    style.waivers = !options.waivers.empty();
    style.cap = options.maxPerCode != 0;
    style.failOn = options.failOn;
    return style;
}

unsigned JobsOf(const CheckOptions& options)
{
    return options.jobs != 0 ? options.jobs : std::max(1U, std::thread::hardware_concurrency());
}

void Complain(const std::string& problem)
{
    std::cerr << "talibis: " << problem << '\n';
}

// A run: the files that were asked for, read, judged and printed.
class Check
{
  public:
    explicit Check(const CheckOptions& options)
        : mOptions(options), mRules{options.caution || options.failOn == FailOn::Caution, options.maxPerCode}
    {
    }

    int run();

  private:
    bool prepare();
    bool print(FileReport report);
    void raise(int status) { mTotals.exitStatus = std::max(mTotals.exitStatus, status); }
    int end(int signal);

    const CheckOptions& mOptions;
    JudgeRules mRules;
    FileList mFiles;
    Waivers mWaivers;
    std::unique_ptr<Printer> mPrinter;
    Totals mTotals;
};

// False for what ends the run before anything is read.
bool Check::prepare()
{
    std::string problem;
    if (!mOptions.waivers.empty() && !mWaivers.read(mOptions.waivers, problem)) {
        Complain(problem);
        return false;
    }
    for (const std::string& argument : mOptions.files) {
        problem.clear();
        if (!mFiles.add(argument, mOptions.type, problem)) {
            Complain(problem);
            raise(EXIT_UNUSABLE);
        }
    }
    return !mFiles.files().empty();
}

bool Check::print(FileReport report)
{
    const JudgedFile file = Judge(std::move(report), mRules, mWaivers);
    ++mTotals.files;
    mTotals.tally.add(file.tally);
    if (file.status == FileStatus::Unreadable) {
        ++mTotals.unreadable;
        raise(EXIT_UNUSABLE);
    }
    for (std::size_t i = 0; i < SEVERITIES; ++i) {
        if (file.tally.found[i] != 0 && Fails(static_cast<Severity>(i), mOptions.failOn)) {
            raise(EXIT_ERRORS);
        }
    }
    mPrinter->file(file);
    return static_cast<bool>(std::cout.flush());
}

int Check::end(int signal)
{
    mTotals.interrupted = signal != 0;
    if (mTotals.interrupted) {
        mTotals.exitStatus = SIGNAL_BASE + signal;
    } else {
        mTotals.unusedWaivers = mWaivers.unused();
    }
    mPrinter->end(mTotals);
    if (!std::cout.flush() && !mTotals.interrupted) {
        Complain("the output could not be written");
        raise(EXIT_UNUSABLE);
    }
    for (const std::string& unused : mTotals.unusedWaivers) {
        Complain("warning: " + unused);
    }
    return mTotals.exitStatus;
}

int Check::run()
{
    const SignalCatcher signals;
    if (!prepare()) {
        return SignalCatcher::caught() != 0 ? SIGNAL_BASE + SignalCatcher::caught() : EXIT_UNUSABLE;
    }
    mPrinter = PRINTERS[static_cast<std::size_t>(mOptions.format)](std::cout, StyleOf(mOptions));
    Progress progress(mFiles.files().size());
    const bool places = mOptions.format != OutputFormat::Json || !mOptions.waivers.empty();
    const int signal = ReadFiles({mFiles.files(), JobsOf(mOptions), places},
                                 {[&](FileReport report) {
                                      progress.erase();
                                      return print(std::move(report));
                                  },
                                  [&](std::size_t finished) { progress.show(finished); }});
    progress.erase();
    return end(signal);
}

}  // namespace

int RunCheck(const CheckOptions& options)
{
    return Check(options).run();
}
