// Files for the benchmarks, in a folder of this process that goes away with it.

#pragma once

#include <string>

/// Where to write a file of this name.
std::string BenchPath(const std::string& name);
/// Writes a file and gives its path.
std::string WriteBenchFile(const std::string& name, const std::string& text);
