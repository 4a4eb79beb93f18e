// Package model files.

#include "fuzz/target.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const FUZZ_Scope scope;
    FUZZ_Read("example.pkg", IBIS_FILE_PKG, FUZZ_Text(data, size));
    return 0;
}
