// Where the current read stands: kind and version of the file, its name and line. Written by the driver and
// by the header keywords, read by everybody. There is one set; a nested read overwrites it, and who needs the
// values afterwards saves them around the nested read.

#pragma once

#include "ibis/source/nuibis_types.h"

#include <string_view>

/// Longest file name, path or directory that is used; longer ones are cut or refused.
inline constexpr unsigned CMN_PATH_LIMIT = 1024;

/// Kind of the file being read.
extern ibis_file_type geFileType;
/// Version of the [IBIS Ver] line last read. Nobody resets it: ahead of its own [IBIS Ver] line, a file is
/// read under the version of the file before.
extern ibis_ver geIbisVersion;
/// Line counter of the keyword pass; blank and comment lines count.
extern unsigned guiLineNumber;
/// Line counter of the text pass (parameter files).
extern unsigned guiParamLineNumber;
/// Bare name of the current file, without directory.
extern char gszFileName[CMN_PATH_LIMIT + 1];
/// Set by [Series Switch Groups] while a group waits for its closing "/".
extern bool gbExpectContinuation;

/// The line number that messages print.
unsigned PARSE_GetLineNumber();
/// Bare name of the current file; valid until the next file is opened.
std::string_view PARSE_GetFileName();
