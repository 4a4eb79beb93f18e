// Every query that there is, asked of one file: for tests that look for what must not happen.

#pragma once

#include "ibis/interface/talibis.h"

#include <cstddef>
#include <functional>
#include <string_view>

/// Makes one call, once or, for a test that breaks something at each of its steps, again and again.
using CallRunner = std::function<void(const std::function<void()>& call)>;

/// Calls every script function with names of the file and with a name that it has not, and the operations of
/// the raw view of its first models. At most `names` names of a kind are tried. Gives the count of calls.
std::size_t AskEverything(
    const TalIbis& file, std::string_view typeWord, std::size_t names = 3,
    const CallRunner& run = [](const std::function<void()>& call) { call(); });
