// A script runtime with ways of its own: a list keeps a copy of what is put into it, and every value that is
// alive is known, so that a leak, a second release and the release of a null show.

#pragma once

#include "platform/qelrt.h"

#include <cstddef>
#include <string>
#include <vector>

/// What a library did to the runtime.
struct OtherRuntime {
    bool bRefuse = false;               ///< take no table
    std::vector<int> startUp;           ///< the four numbers of the last registration
    const QEL_TABLE* pTable = nullptr;  ///< that of the last registration
    std::vector<std::string> errors;    ///< "code index text" of each parameter error
    std::size_t uiAlive = 0;            ///< values not released
    std::size_t uiFaults = 0;           ///< releases of null, or of what is no live value
};
OtherRuntime& otherRuntime();

/// Calls a registered function and gives its value as text: lists in brackets, strings in quotes, integers
/// bare. An empty string if there is no such function.
std::string callOther(const std::string& function, std::vector<QVALUE> parameters);
