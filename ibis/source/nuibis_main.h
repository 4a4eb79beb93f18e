// The entry of a checker that stands by itself, without the library's interface.

#pragma once

/// Checks the file that the arguments name and prints the counters on the summary stream. Switches, anywhere:
/// "-caution" (in all small or all capital letters) turns cautions on, "-numbered" (any case) gives messages
/// short numbered heads. The file is a component file unless one of "-ebd", "-pkg", "-ami" (the same) stands
/// before or behind it.
///
/// Gives 0 once the file was run through, whatever was found; 1 for other arguments; 2 if no line could be
/// read; 3 if the file declares no version, or one that knows no such file. For a file of version 1 it is the
/// result of that version's reader.
int IBIS_Main(int argc, const char* const* argv);
