// Reads files side by side, each in a process of its own, and hands the reports over in the order of the
// files.

#pragma once

#include "tools/talibis/check_read.h"

#include <cstddef>
#include <functional>
#include <span>

struct ReadPlan {
    std::span<const CheckFile> files;
    unsigned jobs = 1;    ///< processes at a time
    bool places = false;  ///< look up where the findings stand
};

/// What is told while files are read. `report` gives false to end the run.
struct ReadEvents {
    std::function<bool(FileReport report)> report;
    std::function<void(std::size_t finished)> tick;  ///< about ten times a second
};

/// Gives the number of the signal that ended the run, 0 without one. Behind a signal the reading processes
/// have ended and the reports of all files that were finished by then have been handed over.
int ReadFiles(const ReadPlan& plan, const ReadEvents& events);

/// Catches the signals that end a program while it lives, so that it can end in order.
class SignalCatcher
{
  public:
    SignalCatcher();
    ~SignalCatcher();
    SignalCatcher(const SignalCatcher&) = delete;
    SignalCatcher& operator=(const SignalCatcher&) = delete;

    /// Number of the signal that came, 0 without one.
    static int caught();
    /// A descriptor that is readable once a signal has come.
    static int descriptor();
    /// In a child process: it is the parent's business to end it, also where a signal goes to both.
    static void enterChild();
};
