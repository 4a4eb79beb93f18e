// The reader of version 1.x files, whatever version the bytes declare.

#include "fuzz/target.h"
#include "ibis/source/nuibis_ibis11.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const FUZZ_Scope scope;
    IBIS11_CheckFile(FUZZ_Write("example.ibs", FUZZ_Text(data, size)));
    return 0;
}
