#pragma once

#include "platform/qelrt.h"

#include <cstddef>
#include <span>
#include <string>
#include <vector>

// The interpreter's side of the runtime in qelrt.cpp: calling a registered function and reading what it gave.
// A host's own runtime has other means for this, so library code does not use them.

/// A parameter error as `qrun_parm_error` reports it.
struct QEL_PARM_ERROR {
    int code;
    int index;  ///< parameter, from 0
    std::string text;

    bool operator==(const QEL_PARM_ERROR&) const = default;
};

/// Calls the registered `function` with `parameters`, which stay the caller's, and gives its result, which
/// the caller frees. Null when no such function is registered. Parameter errors of this call, not of calls
/// within it, are appended to `errors` if given. A handler may call again; its own frame is back afterwards.
QVALUE qel_call(const char* function, std::span<const QVALUE> parameters,
                std::vector<QEL_PARM_ERROR>* errors = nullptr) noexcept;

/// True for a list.
bool qval_is_list(QVALUE value) noexcept;

/// Count of a list's places; 0 for any other value.
std::size_t qval_list_size(QVALUE value) noexcept;

/// What stands at `index`, from 0; the list keeps owning it. Null for an empty place, beyond the end, or when
/// `value` is no list.
QVALUE qval_list_item(QVALUE value, std::size_t index) noexcept;
