// Prints JSON that people and scripts can both read: a list of numbers on one line, every number in the
// shortest form that reads back as the same one.

#pragma once

#include <iosfwd>
#include <nlohmann/json.hpp>

/// Prints the value with a line feed behind. The value must not be nested along the data of a file. Bytes
/// that are no UTF-8 print as the replacement character.
void PrintJson(std::ostream& out, const nlohmann::ordered_json& value);
