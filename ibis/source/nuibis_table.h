// The records of tables, as the file has them: rows of I-V tables and waveforms. They belong to the file that
// was read; a host reads them through a raw model view and changes nothing.

#pragma once

#include <cstdint>

/// Status of a value of a record.
enum numstat : std::int32_t {
    NUM_ABSENT = 0,  ///< not given, or invalid
    NUM_VALUE = 1,   ///< a number is stored
    NUM_NA = 2,      ///< the word "NA" was given; the value field is 0.0
};

/// One row of a table: a first column (V in the I-V tables, s in waveforms) and typical, minimum and maximum
/// values. A value is meant only where its status is NUM_VALUE.
struct rngp {
    rngp* pNext;     ///< next row of the file, or null
    rngp* pPrev;     ///< row before, or null
    double dFirst;   ///< first column, V or s
    numstat eFirst;  ///< status of `dFirst`
    double dTyp;     ///< typical value
    numstat eTyp;    ///< status of `dTyp`
    double dMin;     ///< minimum value
    numstat eMin;    ///< status of `dMin`
    double dMax;     ///< maximum value
    numstat eMax;    ///< status of `dMax`
};

/// A table. It tells one that was opened and has no rows from one that is absent, which is a null pointer.
struct crv {
    rngp* pHead;  ///< rows in file order
};

/// The fixture that the driver was measured in, and the voltage (V) or current (A) over time (s). A fixture
/// value is null when it was not given; resistances in Ohm, voltages in V, capacitances in F, inductances in
/// H.
struct wvfrm {
    wvfrm* pNext;           ///< next table of the same keyword
    double* pdRFixture;     ///< R_fixture, Ohm
    double* pdVFixture;     ///< V_fixture, V
    double* pdVFixtureMin;  ///< V_fixture_min, V
    double* pdVFixtureMax;  ///< V_fixture_max, V
    double* pdCFixture;     ///< C_fixture, F
    double* pdLFixture;     ///< L_fixture, H
    double* pdRDut;         ///< R_dut, Ohm
    double* pdLDut;         ///< L_dut, H
    double* pdCDut;         ///< C_dut, F
    rngp* pRows;            ///< first column is time
    wvfrm* pComposite;      ///< [Composite Current] of this waveform, null when none
};

/// One table of [Series MOSFET]: the current over the gate voltage at a drain-source voltage.
struct smos {
    double* pdVds;  ///< in V, null until read
    crv* pTable;    ///< its rows; the first column is the gate voltage (V)
    smos* pNext;    ///< next table of the model, or null
};
