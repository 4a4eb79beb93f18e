// Registration of the script functions with the host's extension language.

#pragma once

#include "ibis/source/nuibis_types.h"
#include "platform/qelrt.h"

/// Registers all script functions with the runtime; true if it took them.
TALIBIS_API bool talIbis_qel_initialize();
/// The table that is registered, for tools that list the functions.
TALIBIS_API const QEL_TABLE* talIbis_qel_table();
/// What a function takes behind file name and file type, one word a parameter, such as "component pin"; null
/// for an unknown function.
TALIBIS_API const char* talIbis_qel_parameters(const char* function);
