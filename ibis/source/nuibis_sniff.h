// Finds the declared version of a file ahead of its parse: the version decides which reader applies.

#pragma once

#include "ibis/source/nuibis_types.h"

#include <string_view>

/// Version of the first keyword of the file, which must be [IBIS Ver]; 0 if it is not. `*lineCount` is raised
/// by the lines looked at. Lines ahead of the first keyword may be anything.
ibis_ver CMN_SniffVersion(std::string_view name, int* lineCount, ibis_file_type type);

/// Whether a version knows files of this type: board descriptions began with version 3.
constexpr bool CMN_HasFileType(ibis_ver version, ibis_file_type type)
{
    return type != IBIS_FILE_EBD || version >= IBIS_VER_3;
}
