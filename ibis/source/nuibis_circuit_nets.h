// The nets of a component as its circuit calls make them: built of the calls, judged, and dropped.
//
// Names are views of the calls' and the circuits' records.

#pragma once

#include "ibis/source/nuibis_circuit.h"
#include "ibis/source/nuibis_list.h"

#include <array>
#include <string>

struct CCPORT;

/// One net: a pin or a node, and what is connected to it.
struct CCNODE {
    std::string_view sName;
    int iCount = 0;                    ///< connections
    std::uint32_t uiClass = CLASS_NC;  ///< of all that is on the net
    CMN_Vector<CCPORT> ports;          ///< oldest first
};

/// One end of a converter of a placed circuit.
struct CCREF {
    std::string_view sName;
    CCNODE* pNode = nullptr;  ///< null until connected
    std::uint32_t uiClass = 0;
};

enum class CCKIND { AtoD, DtoA };

/// A converter of a placed circuit.
struct CCCONV {
    std::array<CCREF, 3> aEnds;  ///< digital port, first and second analog port
    CCKIND eKind;
    int iLine;  ///< of the converter
};

/// A port on a net.
struct CCPORT {
    std::string_view sName;
    int iCallLine;
    int iAnalogDrivers = 0;
    std::uint32_t uiClass;
    CMN_Vector<CCREF*> refs;               ///< converter ends at this port, oldest first
    CMN_Vector<const CCCONV*> converters;  ///< the converters of `refs`
};

/// A port within a placed circuit.
struct CCINNER {
    std::string_view sName;
    int iCount;
    int iAnalogDrivers;
    std::uint32_t uiClass;
    bool bConnected;  ///< to a net, through a converter
};

/// A converter end that connects with a port.
struct CCUSE {
    std::size_t uiConverter;
    std::size_t uiEnd;
    std::uint32_t uiClass;  ///< what the connection makes of the end
};

/// Converters of one circuit that have an end of the same name.
struct CCGROUP {
    CMN_Vector<std::size_t> first;   ///< converters, ascending
    CMN_Vector<std::size_t> second;  ///< empty for digital ports
};

/// What all calls of a circuit share: how it looks when it is placed, and where its names stand.
struct CCPLAN {
    CMN_Vector<CCINNER> ports;
    CMN_Map<std::string_view, std::size_t> places;  ///< of the ports
    CMN_Vector<CCCONV> converters;                  ///< D_to_A, then A_to_D
    CMN_Map<std::string_view, CMN_Vector<CCUSE>> uses;
    CMN_Map<std::string_view, std::uint32_t> classes;  ///< of the ports that a call may map
    CMN_Vector<CCGROUP> digitalGroups;
    CMN_Vector<CCGROUP> analogGroups;
};

/// A placed circuit.
struct CCINST {
    const CCALL* pCall;
    const EXTCIRCUIT* pCircuit;
    const CCPLAN* pPlan;
    CMN_Vector<CCINNER> ports;
    CMN_Vector<CCCONV> converters;
};

/// All that the calls of a component make. Throws std::bad_alloc.
struct CCNETS {
    CMN_Map<const EXTCIRCUIT*, CCPLAN> plans;
    CMN_Vector<CCINST> instances;              ///< in the order in which they were built
    CMN_Map<std::string_view, CCNODE> byName;  ///< the nets
    CMN_Vector<CCNODE*> nodes;                 ///< oldest first

    CCNODE& getNode(std::string_view name, std::uint32_t portClass, int add);
    const CCPLAN& planOf(const EXTCIRCUIT& circuit);
    CCINST& place(const CCALL& call, const EXTCIRCUIT& circuit);
};

/// Builds the plan of a circuit.
void CIRCUIT_MakePlan(const EXTBLOCK& block, CCPLAN& plan);
/// Connects a port of a placed circuit with a net.
void CIRCUIT_Connect(CCNODE& net, std::string_view port, std::uint32_t portClass, CCINST& instance);
/// Reports what is wrong with the nets.
void CIRCUIT_Judge(CCNETS& nets, std::string_view component);
