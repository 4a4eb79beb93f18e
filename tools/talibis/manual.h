// talibis manual: the manual page and the completions of the shells, made from the table of options, so that
// what is printed and what is taken cannot differ.

#pragma once

#include <iosfwd>

namespace CLI
{
class App;
}

enum class ManualForm { Man, Bash, Zsh, Fish };

/// `version` is that of the program.
void PrintManual(std::ostream& out, const CLI::App& app, ManualForm form, const char* version);
