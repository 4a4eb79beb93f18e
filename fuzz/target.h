// What the fuzz targets share: a folder of its own for each process, and reading bytes as a file of it.

#pragma once

#include "ibis/interface/talibis_tool.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

inline std::string_view FUZZ_Text(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), size};
}

/// Writes the bytes as file `name` of the process's folder and gives its path.
const std::string& FUZZ_Write(std::string_view name, std::string_view content);
/// One input's time: begins and ends as a process that has read nothing (an empty cache, no version of a
/// former file, no messages), so that no input sees what another one left.
class FUZZ_Scope
{
  public:
    FUZZ_Scope() { forget(); }
    ~FUZZ_Scope() { forget(); }
    FUZZ_Scope(const FUZZ_Scope&) = delete;
    FUZZ_Scope& operator=(const FUZZ_Scope&) = delete;

  private:
    static void forget();
};

/// Reads the bytes as a file of this kind; null when the read gives no handle.
TalIbis* FUZZ_Read(std::string_view name, ibis_file_type type, std::string_view content);
