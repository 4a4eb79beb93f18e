// For programs that present findings: structure of each finding, cautions, and parameter files on their own.

#pragma once

#include "ibis/interface/talibis.h"

#include <string_view>

/// One finding as it is stored.
struct TalIbisFinding {
    const char* pszSeverity;  ///< "bug", "error", "warning", "caution" or "note"
    int iCode;                ///< message number; 0 for a text that has none
    unsigned uiLine;          ///< line of the file; 0 for a finding without a line
    bool bLine;               ///< the finding names a line
    std::string_view sFile;   ///< bare name of the file being read
    std::string_view sText;   ///< the stored text, with its newline
};

/// What is called with a finding and the context of `talSetListener`. The texts are valid during the call.
using TalIbisListener = void (*)(void* context, const TalIbisFinding& finding);

/// Called for each finding as it is stored. Null ends it.
TALIBIS_API void talSetListener(TalIbisListener listener, void* context);
/// Cautions are off unless turned on here.
TALIBIS_API void talSetCautions(bool on);
/// Reads a parameter file of an algorithmic model on its own, with no look at a version. Gives the findings;
/// null when the file could not be read, and the findings are those of `talGetIbisError(nullptr)`.
TALIBIS_API const IbisErrorContainer* talReadParameterFile(const char* name, ibis_file_type type);
