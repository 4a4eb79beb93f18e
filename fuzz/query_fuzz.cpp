// Every query on whatever was read. The first byte chooses the kind of file.

#include "fuzz/target.h"
#include "tests/everything.h"

#include <array>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const FUZZ_Scope scope;
    struct Kind {
        ibis_file_type eType;
        const char* pszWord;
        const char* pszName;
    };
    static constexpr std::array<Kind, 3> kinds{{{IBIS_FILE_IBS, "ibs", "example.ibs"},
                                                {IBIS_FILE_PKG, "pkg", "example.pkg"},
                                                {IBIS_FILE_EBD, "ebd", "example.ebd"}}};
    if (size == 0) {
        return 0;
    }
    const Kind& kind = kinds[data[0] % kinds.size()];
    const TalIbis* const file = FUZZ_Read(kind.pszName, kind.eType, FUZZ_Text(data, size).substr(1));
    if (file != nullptr && file->getIbis() != nullptr) {
        AskEverything(*file, kind.pszWord, 2);
    }
    return 0;
}
