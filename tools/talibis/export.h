// talibis export: the numbers of a file as one JSON document, for scripts and notebooks.

#pragma once

#include "ibis/source/nuibis_types.h"

#include <string>

struct ExportOptions {
    std::string file;
    std::string model;  ///< only this one; empty: all that the file holds
    ibis_file_type type = IBIS_FILE_NONE;
};

/// Prints the document that docs/schema/export.schema.json describes. Exit status 0, or 2 for a file or a
/// model that is not there.
int RunExport(const ExportOptions& options);
