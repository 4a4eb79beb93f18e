// Files for the benchmarks, in a folder that lives as long as the process.

#pragma once

#include <string>
#include <string_view>

/// Writes a file into the folder and gives its path.
std::string WriteBenchFile(const std::string& name, const std::string& text);

/// `text`, `count` times.
std::string Repeated(std::string_view text, int count);
