// Component files, the whole road: sniffing, reading, checks at the end of the file.

#include "fuzz/target.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const FUZZ_Scope scope;
    FUZZ_Read("example.ibs", IBIS_FILE_IBS, FUZZ_Text(data, size));
    return 0;
}
