// Enumerations that a host and the parser share: kinds of files, versions, message severities.

#pragma once

#include <cstdint>

/// @def TALIBIS_API
/// Marks what the shared library exports.
#if defined(__GNUC__) || defined(__clang__)
#define TALIBIS_API __attribute__((visibility("default")))
#else
#define TALIBIS_API
#endif

/// Kind of a file, given by the host with its name.
enum ibis_file_type : std::int32_t {
    IBIS_FILE_NONE = 0,   ///< none of the kinds: no extension rule, no keyword group admitted
    IBIS_FILE_IBS = 1,    ///< component file, `.ibs`
    IBIS_FILE_PKG = 2,    ///< package model file, `.pkg`
    IBIS_FILE_EBD = 3,    ///< electrical board description, `.ebd`
    IBIS_FILE_AMI = 4,    ///< parameter file of an algorithmic model, `.ami`
    IBIS_FILE_PARAM = 5,  ///< any other parameter file
};

/// Version group of a file, from its [IBIS Ver] line. Rules compare these values, so that a rule of
/// "4.1 and later" is in force from 4.0 on.
enum ibis_ver : std::int32_t {
    IBIS_VER_NONE = 0,  ///< not determined
    IBIS_VER_1 = 1,     ///< 1.x
    IBIS_VER_2 = 2,     ///< 2.x
    IBIS_VER_3 = 3,     ///< 3.x
    IBIS_VER_4 = 4,     ///< 4.x
    IBIS_VER_5 = 5,     ///< 5.x
    IBIS_VER_6_0 = 6,   ///< 6.0
    IBIS_VER_6_1 = 7,   ///< 6.1
};

/// Model_type of a buffer model.
enum nuibis_model_type : std::int32_t {
    MODEL_UNSEEN = 0,           ///< no Model_type yet; in queries: any type
    MODEL_NO_TYPE = 1,          ///< Model_type was given and not understood
    MODEL_INPUT = 2,            ///< Input
    MODEL_OUTPUT = 3,           ///< Output
    MODEL_IO = 4,               ///< I/O
    MODEL_3STATE = 5,           ///< 3-state
    MODEL_OPEN_DRAIN = 6,       ///< Open_drain
    MODEL_IO_OPEN_DRAIN = 7,    ///< I/O_open_drain
    MODEL_OPEN_SINK = 8,        ///< Open_sink
    MODEL_IO_OPEN_SINK = 9,     ///< I/O_open_sink
    MODEL_OPEN_SOURCE = 10,     ///< Open_source
    MODEL_IO_OPEN_SOURCE = 11,  ///< I/O_open_source
    MODEL_INPUT_ECL = 12,       ///< Input_ECL
    MODEL_OUTPUT_ECL = 13,      ///< Output_ECL
    MODEL_IO_ECL = 14,          ///< I/O_ECL
    MODEL_TERMINATOR = 15,      ///< Terminator
    MODEL_SERIES = 16,          ///< Series
    MODEL_SERIES_SWITCH = 17,   ///< Series_switch
    MODEL_3STATE_ECL = 18,      ///< 3-state_ECL
    MODEL_IO_DIFF = 19,         ///< I/O_diff
    MODEL_OUTPUT_DIFF = 20,     ///< Output_diff
    MODEL_3STATE_DIFF = 21,     ///< 3-state_diff
    MODEL_INPUT_DIFF = 22,      ///< Input_diff
};

/// Polarity of a buffer model.
enum nuibis_model_polarity : std::int32_t {
    POLARITY_UNSEEN = 0,         ///< not given
    POLARITY_NONE = 1,           ///< given and not understood
    POLARITY_NON_INVERTING = 2,  ///< Non-Inverting
    POLARITY_INVERTING = 3,      ///< Inverting
};

/// Enable of a buffer model: the level that turns its driver on.
enum nuibis_model_enable : std::int32_t {
    ENABLE_UNSEEN = 0,       ///< not given
    ENABLE_NONE = 1,         ///< given and not understood
    ENABLE_ACTIVE_HIGH = 2,  ///< Active-High
    ENABLE_ACTIVE_LOW = 3,   ///< Active-Low
};

/// When a submodel of [Add Submodel] is active.
enum submdl_modes : std::int32_t {
    SUBMODE_DRIVING = 0,      ///< Driving: while the model drives
    SUBMODE_NON_DRIVING = 1,  ///< Non-Driving: while it does not drive
    SUBMODE_ALL = 2,          ///< All: always
    SUBMODE_NONE = 3,         ///< not given, or not understood
};
