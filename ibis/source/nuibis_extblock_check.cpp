// What is checked when an external block ends: its converters against each other and against its ports.

#include "ibis/source/nuibis_circuit.h"
#include "ibis/source/nuibis_extblock.h"
#include "ibis/source/nuibis_list.h"
#include "ibis/source/nuibis_mdl.h"

#include <algorithm>
#include <array>
#include <tuple>

namespace
{

using Names = CMN_Set<std::string_view>;

// What the corners share: whose block it is.
struct Block {
    std::string_view sOwner;  // name of the model or of the circuit
    const EXTBLOCK& block;
};

struct Corner {
    std::string_view sName;
    EXTCORNER* EXTBLOCK::*ppField;
};

constexpr Corner TYP{"Typ", &EXTBLOCK::pTyp};
constexpr Corner MIN{"Min", &EXTBLOCK::pMin};
constexpr Corner MAX{"Max", &EXTBLOCK::pMax};

// Twins in the typical corner -----------------------------------------------------------------------------

using Ports = std::tuple<std::string_view, std::string_view, std::string_view>;

template <class T> Ports PortsOf(const T& converter)
{
    return {converter.pszDigitalPort, converter.pszPort1, converter.pszPort2};
}

template <class T>
void CheckTwins(const T* typical, const T* list, std::string_view owner, const Corner& corner,
                MSG_Site<MSG_Kind::Text, MSG_Kind::Text, MSG_Kind::Integer, MSG_Kind::Text, MSG_Kind::Text,
                         MSG_Kind::Text>
                    noTwin)
{
    CMN_Set<Ports> known;
    for (; typical != nullptr; typical = typical->pNext) {
        known.insert(PortsOf(*typical));
    }
    for (; list != nullptr; list = list->pNext) {
        if (!known.contains(PortsOf(*list))) {
            MSG_Error(noTwin, owner, corner.sName, list->iLine, list->pszDigitalPort, list->pszPort1,
                      list->pszPort2);
        }
    }
}

// A corner may have fewer converters than the typical one, which then serves it, but no others.
void CheckCorner(const Block& owner, const Corner& corner)
{
    const EXTCORNER* const typical = owner.block.pTyp;
    const EXTCORNER* const other = owner.block.*corner.ppField;
    if (typical == nullptr || other == nullptr) {
        return;
    }
    CheckTwins(typical->pA2D, other->pA2D, owner.sOwner, corner, 226);
    CheckTwins(typical->pD2A, other->pD2A, owner.sOwner, corner, 227);
}

// Converters among each other -----------------------------------------------------------------------------

// A driver fixes the voltage between its ports: two ports that are both fixed elsewhere are shorted by it.
void CheckReferences(const Block& owner, const Corner& corner)
{
    const EXTCORNER* const record = owner.block.*corner.ppField;
    if (record == nullptr) {
        return;
    }
    CMN_Map<std::string_view, unsigned> uses;
    for (const EXTD2A* p = record->pD2A; p != nullptr; p = p->pNext) {
        ++uses[p->pszPort1];
        ++uses[p->pszPort2];
    }
    for (const EXTD2A* p = record->pD2A; p != nullptr; p = p->pNext) {
        if (uses[p->pszPort1] > 1 && uses[p->pszPort2] > 1) {
            MSG_Error(255, p->iLine, p->pszPort1, p->pszPort2);
        }
    }
}

void CheckPolarities(const Block& owner, const Corner& corner)
{
    const EXTCORNER* const record = owner.block.*corner.ppField;
    if (record == nullptr) {
        return;
    }
    bool inverting = false;
    bool nonInverting = false;
    for (const EXTD2A* p = record->pD2A; p != nullptr; p = p->pNext) {
        if (p->pszPolarity != nullptr) {
            (p->pszPolarity[0] == 'I' ? inverting : nonInverting) = true;
        }
    }
    if (inverting != nonInverting) {
        MSG_Error(270, owner.sOwner, corner.sName);
    }
}

// Names of a corner's converters: first the receivers, then the drivers.
template <class Add> void ForEachConverter(const EXTCORNER& corner, Add add)
{
    for (const EXTA2D* p = corner.pA2D; p != nullptr; p = p->pNext) {
        add(p->pszDigitalPort, p->pszPort1, p->pszPort2);
    }
    for (const EXTD2A* p = corner.pD2A; p != nullptr; p = p->pNext) {
        add(p->pszDigitalPort, p->pszPort1, p->pszPort2);
    }
}

void CheckDigitalAnalogMix(const Block& owner, const Corner& corner)
{
    const EXTCORNER* const record = owner.block.*corner.ppField;
    if (record == nullptr) {
        return;
    }
    Names analog;
    ForEachConverter(*record, [&](const char*, const char* port1, const char* port2) {
        analog.insert(port1);
        analog.insert(port2);
    });
    Names told;
    ForEachConverter(*record, [&](const char* digital, const char*, const char*) {
        if (analog.contains(digital) && told.insert(digital).second) {
            MSG_Error(225, owner.sOwner, corner.sName, digital);
        }
    });
}

// Ports ---------------------------------------------------------------------------------------------------

unsigned CountPorts(const EXTBLOCK& block)
{
    unsigned count = 0;
    for (const EXTNAME* port = block.pPorts; port != nullptr; port = port->pNext) {
        ++count;
    }
    return count;
}

bool IsReserved(std::string_view name)
{
    return EXT_IsAnalogPort(name) || EXT_IsDigitalPort(name);
}

void CheckUnusedPorts(const Block& owner, std::string_view label)
{
    Names used;
    bool anyCorner = false;
    for (const Corner& corner : {TYP, MIN, MAX}) {
        if (const EXTCORNER* const record = owner.block.*corner.ppField; record != nullptr) {
            anyCorner = true;
            ForEachConverter(*record, [&](const char* digital, const char* port1, const char* port2) {
                used.insert({digital, port1, port2});
            });
        }
    }
    for (const EXTNAME* port = owner.block.pPorts; port != nullptr; port = port->pNext) {
        if (!used.contains(port->pszName) && !(anyCorner && IsReserved(port->pszName))) {
            MSG_Error(275, label, owner.sOwner, port->pszName);
        }
    }
}

struct RequiredPorts {
    MDL_TypeSet types;
    std::array<std::string_view, 5> aPorts;  // unused places are empty
};

constexpr std::array<RequiredPorts, 12> REQUIRED_PORTS{{
    {MDL_Types({MODEL_NO_TYPE}), {}},
    {MDL_Types({MODEL_INPUT, MODEL_INPUT_ECL}), {"D_receive", "A_signal"}},
    {MDL_Types({MODEL_OUTPUT, MODEL_OPEN_DRAIN, MODEL_OPEN_SINK, MODEL_OPEN_SOURCE, MODEL_OUTPUT_ECL}),
     {"D_drive", "A_signal"}},
    {MDL_Types({MODEL_IO, MODEL_IO_OPEN_DRAIN, MODEL_IO_OPEN_SINK, MODEL_IO_OPEN_SOURCE, MODEL_IO_ECL}),
     {"D_drive", "D_enable", "D_receive", "A_signal"}},
    {MDL_Types({MODEL_3STATE, MODEL_3STATE_ECL}), {"D_drive", "D_enable", "A_signal"}},
    {MDL_Types({MODEL_TERMINATOR}), {"A_signal"}},
    {MDL_Types({MODEL_SERIES}), {"A_pos", "A_neg"}},
    {MDL_Types({MODEL_SERIES_SWITCH}), {"D_switch", "A_pos", "A_neg"}},
    {MDL_Types({MODEL_IO_DIFF}), {"D_drive", "D_enable", "D_receive", "A_signal_pos", "A_signal_neg"}},
    {MDL_Types({MODEL_OUTPUT_DIFF}), {"D_drive", "A_signal_pos", "A_signal_neg"}},
    {MDL_Types({MODEL_3STATE_DIFF}), {"D_drive", "D_enable", "A_signal_pos", "A_signal_neg"}},
    {MDL_Types({MODEL_INPUT_DIFF}), {"D_receive", "A_signal_pos", "A_signal_neg"}},
}};

// Any model may have these.
constexpr std::array<std::string_view, 6> REFERENCE_PORTS{"A_gnd",   "A_puref", "A_pcref",
                                                          "A_pdref", "A_gcref", "A_extref"};

template <class List> bool Contains(const List& list, std::string_view name)
{
    return std::find(list.begin(), list.end(), name) != list.end();
}

// A list of names in which each stands once.
struct NameList {
    Names known;
    CMN_Vector<std::string_view> names;

    void add(std::string_view name)
    {
        if (known.insert(name).second) {
            names.push_back(name);
        }
    }
};

void CheckModelTypePorts(const nuibis_mdl& model, const NameList& ports, std::string_view corner)
{
    const char* const type = MDL_TypeText(model.eModelType);
    const auto* const row =
        std::find_if(REQUIRED_PORTS.begin(), REQUIRED_PORTS.end(),
                     [&](const RequiredPorts& r) { return MDL_IsOneOf(model.eModelType, r.types); });
    if (row == REQUIRED_PORTS.end()) {
        MSG_Error(224, type);
        return;
    }
    for (const std::string_view port : row->aPorts) {
        if (!port.empty() && !ports.known.contains(port)) {
            MSG_Error(222, model.szName, corner, type, port);
        }
    }
    for (const std::string_view port : ports.names) {
        if (IsReserved(port) && !Contains(row->aPorts, port) && !Contains(REFERENCE_PORTS, port)) {
            MSG_Error(223, model.szName, corner, type, port);
        }
    }
}

void CheckModelPorts(const nuibis_mdl& model, const EXTBLOCK& block)
{
    const bool spiceLike = EXT_IsSpiceLike(block.eLanguage) && block.pTyp != nullptr;
    if (model.eModelType == MODEL_UNSEEN || (!spiceLike && !EXT_IsAms(block.eLanguage))) {
        return;
    }
    NameList ports;
    if (spiceLike) {
        ForEachConverter(*block.pTyp, [&](const char* digital, const char* port1, const char* port2) {
            ports.add(digital);
            ports.add(port1);
            ports.add(port2);
        });
    }
    for (const EXTNAME* port = block.pPorts; port != nullptr; port = port->pNext) {
        ports.add(port->pszName);
    }
    CheckModelTypePorts(model, ports, spiceLike ? "NUIBIS_TYP" : "ALL");
}

void CheckCorners(const Block& owner)
{
    if (owner.block.pTyp == nullptr) {
        MSG_ErrorLine(231);
    }
    CheckCorner(owner, MIN);
    CheckCorner(owner, MAX);
}

void CheckModel(const Block& owner, const nuibis_mdl& model)
{
    CheckCorners(owner);
    if (const unsigned ports = CountPorts(owner.block); ports < 2) {
        MSG_Warning(232, owner.sOwner, ports);
    }
    for (const Corner& corner : {TYP, MAX, MIN}) {
        CheckReferences(owner, corner);
    }
    CheckUnusedPorts(owner, "[External Model]");
    CheckModelPorts(model, owner.block);
    if (EXT_IsSpiceLike(owner.block.eLanguage)) {
        for (const Corner& corner : {TYP, MAX, MIN}) {
            CheckPolarities(owner, corner);
        }
    }
}

void CheckCircuit(const Block& owner)
{
    CheckCorners(owner);
    if (const unsigned ports = CountPorts(owner.block); ports < 2) {
        MSG_Warning(245, owner.sOwner, ports);
    }
    if (!EXT_IsSpiceLike(owner.block.eLanguage)) {
        return;
    }
    CheckReferences(owner, TYP);
    CheckUnusedPorts(owner, "[External Circuit]");
    for (const Corner& corner : {TYP, MIN, MAX}) {
        CheckDigitalAnalogMix(owner, corner);
    }
    for (const Corner& corner : {TYP, MAX, MIN}) {
        CheckPolarities(owner, corner);
    }
}

}  // namespace

int EXT_LeaveModel(nuibis_keyword next, const nuibis_mdl& model)
{
    if (model.pExternalModel == nullptr) {
        MSG_ErrorLine(230);
        return 1;
    }
    if (next != KEY_END_EXTERNAL_MODEL) {
        return 1;
    }
    try {
        CheckModel(Block{model.szName, *model.pExternalModel}, model);
    } catch (const std::bad_alloc&) {
        // Told by the allocation itself.
    }
    return 0;
}

void EXT_LeaveCircuit(const EXTCIRCUIT& circuit)
try {
    CheckCircuit(Block{circuit.szName, *circuit.pBlock});
} catch (const std::bad_alloc&) {
    // Told by the allocation itself.
}
