// talibis check: reads files, each in a process of its own, and prints what was found.

#pragma once

#include "ibis/source/nuibis_types.h"
#include "tools/talibis/check_finding.h"
#include "tools/talibis/terminal.h"

#include <cstddef>
#include <string>
#include <vector>

enum class OutputFormat { Text, Json, Gcc, Sarif, Junit };

struct CheckOptions {
    std::vector<std::string> files;        ///< files, folders, patterns, "-" for the standard input
    ibis_file_type type = IBIS_FILE_NONE;  ///< none: by the extension of each file
    OutputFormat format = OutputFormat::Text;
    Colour colour = Colour::Auto;
    FailOn failOn = FailOn::Error;
    bool caution = false;
    bool showWaived = false;
    std::size_t maxPerCode = 0;  ///< findings of one kind that are shown of a file; 0: all
    std::string waivers;         ///< file of waivers; empty: none
    unsigned jobs = 0;           ///< files read side by side; 0: as many as the machine has cores
};

/// Exit status of the program: 0 nothing that `failOn` names, 1 something of it, 2 wrong usage or a file that
/// could not be read, 128 and its number behind a signal that ended the run.
int RunCheck(const CheckOptions& options);
