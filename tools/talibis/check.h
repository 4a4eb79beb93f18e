// talibis check: reads files, each in a process of its own, and prints what was found.

#pragma once

#include "ibis/source/nuibis_types.h"

#include <string>
#include <vector>

enum class OutputFormat { Text, Json };

struct CheckOptions {
    std::vector<std::string> files;
    ibis_file_type type = IBIS_FILE_NONE;  ///< none: by the extension of each file
    OutputFormat format = OutputFormat::Text;
    bool caution = false;
};

/// Exit status of the program: 0 no errors, 1 errors found, 2 a file could not be read.
int RunCheck(const CheckOptions& options);
