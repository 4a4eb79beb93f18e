// The reader of files that declare version 1.0 or 1.1. It checks a file and keeps nothing but its messages,
// which go into the container of the read.
//
// A pin may name a model that stands further down, so the file is read twice: header and models first, then
// the components against the names of the models.

#pragma once

#include <string_view>

/// Checks the file `name`. ".ibs" is appended to a name without extension; a path that cannot be opened is
/// tried in lower and in upper case.
void IBIS11_CheckFile(std::string_view name);

/// The entry of a checker that stands by itself: its only argument is the file. Gives 1 for other arguments,
/// with the usage on standard error, and for a file with faults; 0 for a good one.
int IBIS11_Main(int argc, const char* const* argv);
