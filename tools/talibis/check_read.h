// Reading one file and gathering what the library tells. Findings depend on the files that a process has read
// before, so each file is read in a process of its own.

#pragma once

#include "ibis/source/nuibis_types.h"
#include "tools/talibis/check_finding.h"

#include <string>
#include <string_view>

/// The kind of a file by its extension, in any case; whatever has none of the known ones is a parameter file.
ibis_file_type TypeOfName(std::string_view path);
/// Whether the extension of a file is one of the known ones.
bool IsModelFile(std::string_view path);
/// "ibs", "pkg", "ebd", "ami", "param"
std::string_view NameOfType(ibis_file_type type);

/// A board makes the library read its component files in turn, and it sums each of them up on a stream: from
/// now on on none.
void SilenceSummaries();

/// One file to check.
struct CheckFile {
    std::string path;   ///< to open it
    std::string shown;  ///< to print
    ibis_file_type type = IBIS_FILE_NONE;
};

/// Reads the file with cautions on. `places` also looks up where the findings stand.
FileReport ReadModelFile(const CheckFile& file, bool places);
