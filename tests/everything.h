// Every query that there is, asked of one file: for tests that look for what must not happen.

#pragma once

#include "ibis/interface/talibis.h"

#include <cstddef>
#include <string_view>

/// Calls every script function with names of the file and with a name that it has not, and every operation
/// of the raw view and of the symbols for its first models. At most `names` names of a kind are tried. Gives
/// the count of calls.
std::size_t AskEverything(const TalIbis& file, std::string_view typeWord, std::size_t names = 3);
