// Parameter files of algorithmic models: checked as a tool does it, then made into objects as a host does it.

#include "fuzz/target.h"

#include <sstream>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const FUZZ_Scope scope;
    const std::string& path = FUZZ_Write("example.ami", FUZZ_Text(data, size));
    talReadParameterFile(path.c_str(), IBIS_FILE_AMI);

    TalIbisAMI_File file("M", "example.ami", path.substr(0, path.rfind('/') + 1));
    if (file.parseFile()) {
        TalIbisAMI_ParamList params;
        file.instantiateParams(params, "id");
        std::string input;
        file.generateAMI_DLL_Input(params, input, false);
        std::string warnings;
        std::string errors;
        file.parseAMI_DLL_Output(params, input, warnings, errors);
        std::ostringstream out;
        file.output(out);
    }
    return 0;
}
