// What a model's code file answers: text from a program that nobody here has seen.

#include "fuzz/target.h"

#include <memory>

namespace
{

constexpr std::string_view PARAMETERS = R"((m
  (Reserved_Parameters
    (AMI_Version (Usage Info)(Type String)(Value "6.1"))
    (Init_Returns_Impulse (Usage Info)(Type Boolean)(Value True)))
  (Model_Specific
    (a (Usage Out)(Type Integer)(Value 1))
    (b (Usage InOut)(Type Float)(Range 1 0 2))
    (taps (-1 (Usage InOut)(Type Tap)(Range 0 -1 1)))
    (s (Usage Out)(Type String)(Value "x"))
    (f (Usage Out)(Type Boolean)(Value False))
    (ui (Usage Out)(Type UI)(Value 0.5))
    (g (Usage Out)(Type Float)(Gaussian 0 1))
    (d (Usage Out)(Type Float)(Dual-Dirac 0 1 2))
    (j (Usage Out)(Type Float)(DjRj 0 1 2))
    (l (Usage InOut)(Type Integer)(List 1 2 3))
    (group (c (Usage Out)(Type Float)(Value 1))
      (tab (Usage Out)(Type Float Float String)(Table (Labels "x" "y" "z") (1 2 "a") (3 4 "b"))))))
)";

std::unique_ptr<TalIbisAMI_File> Definitions()
{
    const std::string& path = FUZZ_Write("example.ami", PARAMETERS);
    auto file = std::make_unique<TalIbisAMI_File>("M", "example.ami", path.substr(0, path.rfind('/') + 1));
    if (!file->parseFile()) {
        std::abort();
    }
    return file;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const std::unique_ptr<TalIbisAMI_File> file = Definitions();
    TalIbisAMI_ParamList params;
    file->instantiateParams(params, "id");
    std::string warnings;
    std::string errors;
    file->parseAMI_DLL_Output(params, std::string(FUZZ_Text(data, size)), warnings, errors);
    std::string input;
    file->generateAMI_DLL_Input(params, input, false);
    return 0;
}
