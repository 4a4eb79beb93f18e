// The shared content of [External Model] and [External Circuit]: a netlist or HDL file for each corner, the
// ports of its circuit, and for analog netlists the converters (D_to_A, A_to_D) that tie the simulator's
// logic states to voltages.
//
// Words are case-sensitive throughout. Voltages in V, times in s.

#pragma once

#include "ibis/source/nuibis_cmn.h"
#include "ibis/source/nuibis_keyword.h"

#include <array>

struct nuibis_mdl;
struct EXTCIRCUIT;

enum EXT_Language : std::uint32_t {
    EXT_NO_LANGUAGE = 0,
    EXT_SPICE = 28,
    EXT_VHDL_AMS = 29,
    EXT_VERILOG_AMS = 30,
    EXT_IBIS_ISS = 31,  ///< this and the next two are known words that no line may give
    EXT_VHDL_A = 32,
    EXT_VERILOG_A = 33,
};

/// Mark of a value that is not there.
inline constexpr double EXT_NO_VALUE = -999.25;

/// A name of a list, with the value assigned to it.
struct EXTNAME {
    char* pszName;
    char* pszValue;  ///< null for a bare name
    EXTNAME* pNext;
};

/// One Port_type row.
struct EXTPORTTYPE {
    char* pszName;
    std::uint32_t uiClass;  ///< a port class, see nuibis_circuit.h
    EXTPORTTYPE* pNext;
};

/// One D_to_A line.
struct EXTD2A {
    char* pszDigitalPort;
    char* pszPort1;
    char* pszPort2;
    double dVlow;
    double dVhigh;
    double dTrise;
    double dTfall;
    char* pszPolarity;  ///< "Inverting", "Non-Inverting" or null
    std::int32_t iLine;
    EXTD2A* pNext;
};

/// One A_to_D line.
struct EXTA2D {
    char* pszDigitalPort;
    char* pszPort1;
    char* pszPort2;
    double dVlow;
    double dVhigh;
    std::int32_t iLine;
    EXTA2D* pNext;
};

/// One corner; file and circuit are null for a corner made for a converter in a block without a Typ corner.
struct EXTCORNER {
    char* pszFile;
    char* pszCircuit;
    EXTD2A* pD2A;  ///< newest first
    EXTA2D* pA2D;  ///< newest first
};

struct EXTBLOCK {
    EXT_Language eLanguage;
    EXTCORNER* pTyp;
    EXTCORNER* pMin;
    EXTCORNER* pMax;
    EXTNAME* pUserDigitalPorts;     ///< digital ports of converters, newest first
    EXTNAME* pParameters;           ///< file order
    EXTNAME* pConverterParameters;  ///< file order
    EXTNAME* pPorts;                ///< newest first
    EXTPORTTYPE* pPortTypes;        ///< newest first
};

/// Admits the Port_type subparameter. No format version does so; nobody in the library sets it.
extern bool gbPortTypeAllowed;

/// Netlist languages without logic states of their own: they need converters.
constexpr bool EXT_IsSpiceLike(EXT_Language language)
{
    return language == EXT_SPICE || language >= EXT_IBIS_ISS;
}
constexpr bool EXT_IsAms(EXT_Language language)
{
    return language == EXT_VHDL_AMS || language == EXT_VERILOG_AMS;
}

inline constexpr std::array<std::string_view, 11> EXT_ANALOG_PORTS{
    "A_puref", "A_pcref", "A_pdref", "A_gcref",      "A_signal",    "A_extref",
    "A_gnd",   "A_pos",   "A_neg",   "A_signal_pos", "A_signal_neg"};
inline constexpr std::array<std::string_view, 4> EXT_DIGITAL_PORTS{"D_drive", "D_enable", "D_receive",
                                                                   "D_switch"};
bool EXT_IsAnalogPort(std::string_view name);
bool EXT_IsDigitalPort(std::string_view name);

/// A zeroed block; null with BUG 100 when memory is out.
EXTBLOCK* EXT_New();
/// One line of a block. `model` owns the block of an [External Model]; null for an [External Circuit].
void EXT_Line(std::string_view text, EXTBLOCK& block, const nuibis_mdl* model);
/// Null is fine.
void EXT_Free(EXTBLOCK* block);

/// The end of [External Model]: checks the block and gives 0 if [End External Model] follows. 1 if anything
/// else does, or there is no block.
int EXT_LeaveModel(nuibis_keyword next, const nuibis_mdl& model);
/// The checks at [End External Circuit].
void EXT_LeaveCircuit(const EXTCIRCUIT& circuit);
