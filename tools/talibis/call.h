// talibis call: one script function by its name.

#pragma once

#include <string>
#include <vector>

/// Prints the function's value as one line of JSON. A parameter "int:3" is an integer, any other a string.
int RunCall(const std::string& function, const std::vector<std::string>& parameters);
/// Prints the script functions, one a line, with their parameters.
int RunFunctions();
