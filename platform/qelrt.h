#pragma once

#include <cstddef>

// What the script functions need of the runtime of the host's extension language QEL. The operations have C
// linkage so that the host's own runtime can take their place: it is named when the library is configured, or
// wins at link time. qelrt.cpp is a small runtime for programs that have none. One thread, one call at a
// time.

/// A value of the language: an integer, a string or a list. Each handle that an operation gives out is a
/// reference of its own, released once with `qval_free_value`; the value goes with its last reference.
struct VALUE_HEADER;
/// Handle of a value; null where there is none.
using QVALUE = VALUE_HEADER*;

/// Names a type of the language by its address.
struct QvalType;

/// One script function. The handler has no arguments: it fetches its parameters from the call frame.
struct QEL_ROW {
    const char* name;              ///< of the function in scripts
    QVALUE (*handler)();           ///< gives the result of a call, owned by the caller
    const void* reserved[2] = {};  ///< the runtime's own; zero in a table
};

/// The script functions of a library: static data that stays for the life of the process.
struct QEL_TABLE {
    const char* language;  ///< "QEL"
    const QEL_ROW* rows;   ///< `count` rows
    std::size_t count;     ///< number of rows
};

// A host builds and reads values of the shared library with the functions that the library itself calls.
#ifdef __GNUC__
#pragma GCC visibility push(default)
#endif

extern "C" {

extern const QvalType QvalString;   ///< the type of strings
extern const QvalType QvalInteger;  ///< the type of integers

/// A list of `count` empty places. Null when memory runs out, as with the two below.
QVALUE qval_create_list(std::size_t count) noexcept;

/// An integer.
QVALUE qval_create_raw_integer(int number) noexcept;

/// A string with a copy of `text`. A null text makes a string without text.
QVALUE qval_create_string(const char* text) noexcept;

/// Puts `value` at `index`, from 0, in place of what is there. The list takes a reference of its own, the
/// caller keeps his. `value` must not be or hold the list. Gives 1, or 0 with nothing changed when `list` is
/// no list, the index is beyond its end, or `value` is null.
int qval_put_list_item(QVALUE list, std::size_t index, QVALUE value) noexcept;

/// The text of a string, valid as long as the value. Null for a string without text, another type or null.
const char* qval_value_data(QVALUE value) noexcept;

/// Stores the number of an integer and gives 1; 0 with `out` unchanged for another type or null.
int qval_integer_value(QVALUE value, int* out) noexcept;

/// Releases one reference. Null is let pass.
void qval_free_value(QVALUE value) noexcept;

/// Count of the parameters of the running call; 0 outside a call.
int qrun_num_parm() noexcept;

/// Fetches parameter `index`, from 0, of the running call when it is of `type` (`QvalString` or
/// `QvalInteger`), and gives 1; the caller frees the value. 0 with `out` unchanged when the parameter is
/// absent or of another type.
int qrun_get_typed_parm(int index, const QvalType& type, QVALUE* out) noexcept;

/// Tells the language's interpreter that parameter `index` of the running call is bad. The call goes on.
void qrun_parm_error(int code, int index, const char* text) noexcept;

/// Registers the functions of `table` under their names; a name that is registered already gets the new
/// handler. The four numbers choose the host's start-up steps. Gives 0 when the table can't be taken: another
/// language, or a row without name or handler.
int qutil_initialize(int, int, int, int, const QEL_TABLE* table) noexcept;
}

#ifdef __GNUC__
#pragma GCC visibility pop
#endif
