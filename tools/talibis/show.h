// talibis show: what is in a file at a glance.

#pragma once

#include "ibis/source/nuibis_types.h"
#include "tools/talibis/terminal.h"

#include <string>

struct ShowOptions {
    std::string file;
    ibis_file_type type = IBIS_FILE_NONE;
    Colour colour = Colour::Auto;
};

/// Exit status 0, or 2 for a file that could not be read.
int RunShow(const ShowOptions& options);
