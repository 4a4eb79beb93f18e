// Enumerations that a host and the parser share: kinds of files, versions, message severities.

#pragma once

#include <cstdint>

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
    MODEL_UNSEEN = 0,   ///< no Model_type yet; in queries: any type
    MODEL_NO_TYPE = 1,  ///< Model_type was given and not understood
    MODEL_INPUT = 2,
    MODEL_OUTPUT = 3,
    MODEL_IO = 4,
    MODEL_3STATE = 5,
    MODEL_OPEN_DRAIN = 6,
    MODEL_IO_OPEN_DRAIN = 7,
    MODEL_OPEN_SINK = 8,
    MODEL_IO_OPEN_SINK = 9,
    MODEL_OPEN_SOURCE = 10,
    MODEL_IO_OPEN_SOURCE = 11,
    MODEL_INPUT_ECL = 12,
    MODEL_OUTPUT_ECL = 13,
    MODEL_IO_ECL = 14,
    MODEL_TERMINATOR = 15,
    MODEL_SERIES = 16,
    MODEL_SERIES_SWITCH = 17,
    MODEL_3STATE_ECL = 18,
    MODEL_IO_DIFF = 19,
    MODEL_OUTPUT_DIFF = 20,
    MODEL_3STATE_DIFF = 21,
    MODEL_INPUT_DIFF = 22,
};

enum nuibis_model_polarity : std::int32_t {
    POLARITY_UNSEEN = 0,
    POLARITY_NONE = 1,  ///< given and not understood
    POLARITY_NON_INVERTING = 2,
    POLARITY_INVERTING = 3,
};

enum nuibis_model_enable : std::int32_t {
    ENABLE_UNSEEN = 0,
    ENABLE_NONE = 1,  ///< given and not understood
    ENABLE_ACTIVE_HIGH = 2,
    ENABLE_ACTIVE_LOW = 3,
};

/// When a submodel of [Add Submodel] is active.
enum submdl_modes : std::int32_t {
    SUBMODE_DRIVING = 0,
    SUBMODE_NON_DRIVING = 1,
    SUBMODE_ALL = 2,
    SUBMODE_NONE = 3,  ///< not given, or not understood
};
