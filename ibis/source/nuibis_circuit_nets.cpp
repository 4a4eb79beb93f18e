// Placing circuits and connecting their ports with the nets of a component.

#include "ibis/source/nuibis_circuit_nets.h"

#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_node.h"
#include "ibis/source/nuibis_pin.h"

namespace
{

constexpr std::string_view GROUND = "A_gnd";

constexpr std::uint32_t CLASS_PIN = CLASS_ANALOG_RECEIVER | CLASS_ANALOG_DRIVER | CLASS_ANALOG_PIN;
constexpr std::uint32_t CLASS_AMS_INPUT = CLASS_DIGITAL_RESERVE | CLASS_DIGITAL_RECEIVER | CLASS_DIGITAL;
constexpr std::uint32_t CLASS_AMS_OUTPUT = CLASS_DIGITAL_RESERVE | CLASS_DIGITAL_DRIVER | CLASS_DIGITAL;

// The plan of a circuit -----------------------------------------------------------------------------------

// What one kind of converter makes of its ends. `uiInner` is what it adds to the port within the circuit.
struct EndClass {
    std::uint32_t uiEnd;
    std::uint32_t uiInner;
};

struct ConverterClasses {
    EndClass digital;
    EndClass analog;
    EndClass ground;
    std::uint32_t uiDigitalUse;  // when a call connects the port
    std::uint32_t uiAnalogUse;
};

constexpr std::uint32_t DTOA_GROUND =
    CLASS_ANALOG_DRIVER | CLASS_ANALOG | CLASS_ANALOG_REFERENCE | CLASS_ANALOG_RESERVE;
constexpr std::uint32_t ATOD_GROUND =
    CLASS_ANALOG_RECEIVER | CLASS_ANALOG_DRIVER | CLASS_ANALOG_REFERENCE | CLASS_ANALOG_RESERVE;

constexpr ConverterClasses DTOA_CLASSES{
    {CLASS_DIGITAL_RECEIVER | CLASS_DIGITAL, CLASS_DIGITAL_RECEIVER | CLASS_DIGITAL},
    {CLASS_ANALOG_DRIVER, CLASS_ANALOG_DRIVER | CLASS_ANALOG},
    {DTOA_GROUND, DTOA_GROUND},
    CLASS_DIGITAL_RECEIVER,
    CLASS_ANALOG_DRIVER | CLASS_ANALOG};
constexpr ConverterClasses ATOD_CLASSES{
    {CLASS_DIGITAL_DRIVER | CLASS_DIGITAL, CLASS_DIGITAL_DRIVER | CLASS_DIGITAL},
    {CLASS_ANALOG_RECEIVER, CLASS_ANALOG_RECEIVER},
    {ATOD_GROUND, ATOD_GROUND},
    CLASS_DIGITAL_DRIVER,
    CLASS_ANALOG_RECEIVER};

// Class of a port of an AMS circuit by its name; 0 for a name without a meaning.
std::uint32_t ReservedClass(std::string_view name)
{
    if (!EXT_IsDigitalPort(name)) {
        return 0;
    }
    return name == "D_receive" ? CLASS_AMS_OUTPUT : CLASS_AMS_INPUT;
}

std::uint32_t InnerClass(std::string_view name, std::uint32_t portClass)
{
    if (name == GROUND) {
        return CLASS_UNKNOWN | CLASS_ANALOG | CLASS_ANALOG_RESERVE;
    }
    if (portClass != CLASS_AMS_UNKNOWN) {
        return portClass;
    }
    const std::uint32_t reserved = ReservedClass(name);
    return reserved != 0 ? reserved : portClass;
}

// The port of that name; a new one if there is none.
CCINNER& InnerPort(CCPLAN& plan, std::string_view name, std::uint32_t portClass, bool* made)
{
    const auto [place, isNew] = plan.places.try_emplace(name, plan.ports.size());
    if (isNew) {
        plan.ports.push_back(CCINNER{name, 1, 0, portClass, false});
    }
    *made = isNew;
    return plan.ports[place->second];
}

// A converter end within the circuit. The second driver of a port is a reference of it.
void MergeIntoPort(CCPLAN& plan, std::string_view name, std::uint32_t endClass)
{
    bool made = false;
    CCINNER& port = InnerPort(plan, name, endClass, &made);
    if (made) {
        return;
    }
    port.uiClass |= endClass;
    ++port.iCount;
    if ((endClass & (CLASS_DIGITAL_DRIVER | CLASS_DIGITAL_RECEIVER)) == 0 &&
        (endClass & CLASS_ANALOG_DRIVER) != 0) {
        if (port.iAnalogDrivers > 0) {
            port.uiClass |= CLASS_ANALOG_REFERENCE;
        }
        ++port.iAnalogDrivers;
    }
}

template <class T>
void AddConverters(CCPLAN& plan, const T* list, CCKIND kind, const ConverterClasses& classes)
{
    for (; list != nullptr; list = list->pNext) {
        CCCONV converter{{}, kind, list->iLine};
        const std::array<std::string_view, 3> names{list->pszDigitalPort, list->pszPort1, list->pszPort2};
        for (std::size_t i = 0; i < names.size(); ++i) {
            const EndClass& end = i == 0               ? classes.digital
                                  : names[i] == GROUND ? classes.ground
                                                       : classes.analog;
            converter.aEnds[i].sName = names[i];
            converter.aEnds[i].uiClass = end.uiEnd;
            MergeIntoPort(plan, names[i], end.uiInner);
        }
        plan.converters.push_back(converter);
    }
}

// Of several ends of a converter that have one name, the last is the one that is connected.
std::size_t LastEndOf(const CCCONV& converter, std::string_view name)
{
    std::size_t end = 2;
    while (converter.aEnds[end].sName != name) {
        --end;
    }
    return end;
}

void AddUses(CCPLAN& plan, CCKIND kind, const ConverterClasses& classes)
{
    for (std::size_t i = 0; i < plan.converters.size(); ++i) {
        const CCCONV& converter = plan.converters[i];
        if (converter.eKind != kind) {
            continue;
        }
        const auto add = [&](std::string_view name, std::uint32_t useClass) {
            plan.uses[name].push_back({i, LastEndOf(converter, name), useClass});
        };
        add(converter.aEnds[0].sName, classes.uiDigitalUse);
        add(converter.aEnds[1].sName, classes.uiAnalogUse);
        if (converter.aEnds[2].sName != converter.aEnds[1].sName) {
            add(converter.aEnds[2].sName, classes.uiAnalogUse);
        }
    }
}

void AddGroups(CCPLAN& plan)
{
    CMN_Map<std::string_view, CCGROUP> digital;
    CMN_Map<std::string_view, CCGROUP> analog;
    for (std::size_t i = 0; i < plan.converters.size(); ++i) {
        const std::array<CCREF, 3>& ends = plan.converters[i].aEnds;
        digital[ends[0].sName].first.push_back(i);
        analog[ends[1].sName].first.push_back(i);
        analog[ends[2].sName].second.push_back(i);
    }
    for (auto& [name, group] : digital) {
        if (group.first.size() > 1) {
            plan.digitalGroups.push_back(std::move(group));
        }
    }
    for (auto& [name, group] : analog) {
        if (!group.first.empty() && !group.second.empty()) {
            plan.analogGroups.push_back(std::move(group));
        }
    }
}

// The ports that a call may map, the strongest source of a class last.
void AddClasses(CCPLAN& plan, const EXTBLOCK& block)
{
    for (const EXTNAME* port = block.pUserDigitalPorts; port != nullptr; port = port->pNext) {
        plan.classes[port->pszName] = CLASS_DIGITAL;
    }
    for (const EXTNAME* port = block.pPorts; port != nullptr; port = port->pNext) {
        const std::uint32_t reserved = ReservedClass(port->pszName);
        plan.classes[port->pszName] = EXT_IsSpiceLike(block.eLanguage) ? CLASS_ANALOG
                                      : reserved != 0                  ? reserved
                                                                       : CLASS_AMS_UNKNOWN;
    }
    CMN_Set<std::string_view> seen;  // the first row with a class of its own decides
    for (const EXTPORTTYPE* row = block.pPortTypes; row != nullptr; row = row->pNext) {
        if (row->uiClass != CLASS_AMS_UNKNOWN && seen.insert(row->pszName).second) {
            plan.classes[row->pszName] = row->uiClass;
        }
    }
}

// Connecting ----------------------------------------------------------------------------------------------

void ConnectEnd(CCNODE& net, CCPORT& port, const CCUSE& use, CCINST& instance, CCINNER* inner)
{
    CCCONV& converter = instance.converters[use.uiConverter];
    CCREF& end = converter.aEnds[use.uiEnd];
    if (end.pNode == &net) {
        MSG_Bug(1811, port.sName, converter.iLine);
        return;
    }
    end.pNode = &net;
    end.uiClass |= use.uiClass;
    inner->uiClass |= port.uiClass;
    inner->bConnected = true;
    port.uiClass |= end.uiClass;
    if ((use.uiClass & CLASS_ANALOG_DRIVER) != 0) {
        if (port.iAnalogDrivers > 0) {
            port.uiClass |= CLASS_ANALOG_REFERENCE;
            end.uiClass |= CLASS_ANALOG_REFERENCE;
        }
        ++port.iAnalogDrivers;
    }
    port.refs.push_back(&end);
    port.converters.push_back(&converter);
    ++net.iCount;
}

// The calls of a component --------------------------------------------------------------------------------

// The nets of one component while its calls are gone through.
class Builder
{
  public:
    Builder(const CMPNT& component, EXTCIRCUIT* circuits) : mComponent(component), mpCircuits(circuits)
    {
        for (const NODELIST* node = component.pNodes; node != nullptr; node = node->pNext) {
            if (node->pszName != nullptr) {
                mDeclared.insert(node->pszName);
            }
        }
        std::size_t calls = 0;
        for (const CCALL* call = component.pCircuitCalls; call != nullptr; call = call->pNext) {
            ++calls;
        }
        mNets.instances.reserve(calls);
    }

    CCNETS& nets() { return mNets; }

    void addCall(const CCALL& call)
    {
        const EXTCIRCUIT* const circuit = CIRCUIT_Find(mpCircuits, call.szCircuit);
        if (circuit == nullptr) {
            MSG_Error(1838, call.iLine, call.szCircuit, mComponent.szName);
            return;
        }
        addPins(call);
        CCINST& instance = mNets.place(call, *circuit);
        for (const CCPORTMAP* row = call.pPortMap; row != nullptr; row = row->pNext) {
            addRow(*row, instance);
        }
    }

  private:
    std::uint32_t classOf(std::string_view name) const
    {
        if (PIN_Exists(mComponent.pPins, name)) {
            return CLASS_PIN;
        }
        return mDeclared.contains(name) ? CLASS_UNKNOWN : CLASS_NC;
    }

    void addPin(const CCALL& call, std::string_view pin,
                MSG_Site<MSG_Kind::Integer, MSG_Kind::Text> notDeclared)
    {
        if ((classOf(pin) & CLASS_ANALOG_PIN) == 0) {
            MSG_Error(1839, mComponent.szName, call.iLine, pin);
        } else if (CMN_Equal(PIN_ModelOf(mComponent.pPins, pin), "CIRCUITCALL")) {
            mNets.getNode(pin, CLASS_PIN, 0);
        } else {
            MSG_Error(notDeclared, call.iLine, pin);
        }
    }

    void addPins(const CCALL& call)
    {
        if (call.szPin1[0] == '\0') {
            return;
        }
        addPin(call, call.szPin1, 1840);
        if (call.szPin2[0] == '\0') {
            return;
        }
        addPin(call, call.szPin2, 1841);
        if (std::string_view(call.szPin1) == call.szPin2) {
            MSG_Error(1842, mComponent.szName, call.iLine, call.szPin1);
        }
    }

    void addRow(const CCPORTMAP& row, CCINST& instance)
    {
        const int line = instance.pCall->iLine;
        const std::uint32_t padClass = classOf(row.szPad);
        if (padClass == CLASS_NC) {
            MSG_Error(1846, line, row.szPad, mComponent.szName);
            return;
        }
        CCNODE& net = mNets.getNode(row.szPad, padClass, 1);
        const auto& classes = instance.pPlan->classes;
        if (const auto portClass = classes.find(row.szPort); portClass != classes.end()) {
            CIRCUIT_Connect(net, row.szPort, portClass->second, instance);
        } else {
            MSG_Error(1845, line, row.szPort, instance.pCircuit->szName);
        }
    }

    const CMPNT& mComponent;
    EXTCIRCUIT* mpCircuits;
    CMN_Set<std::string_view> mDeclared;
    CCNETS mNets;
};

}  // namespace

void CIRCUIT_MakePlan(const EXTBLOCK& block, CCPLAN& plan)
{
    CMN_Map<std::string_view, std::uint32_t> types;
    for (const EXTPORTTYPE* row = block.pPortTypes; row != nullptr; row = row->pNext) {
        types.try_emplace(row->pszName, row->uiClass);
    }
    const std::uint32_t general = EXT_IsSpiceLike(block.eLanguage) ? CLASS_ANALOG : CLASS_AMS_UNKNOWN;
    for (const EXTNAME* port = block.pPorts; port != nullptr; port = port->pNext) {
        const auto type = types.find(port->pszName);
        const std::uint32_t given = type == types.end() ? general : type->second;
        bool made = false;
        InnerPort(plan, port->pszName, InnerClass(port->pszName, given), &made);
    }
    if (block.pTyp != nullptr) {
        AddConverters(plan, block.pTyp->pD2A, CCKIND::DtoA, DTOA_CLASSES);
        AddConverters(plan, block.pTyp->pA2D, CCKIND::AtoD, ATOD_CLASSES);
    }
    AddUses(plan, CCKIND::AtoD, ATOD_CLASSES);
    AddUses(plan, CCKIND::DtoA, DTOA_CLASSES);
    AddGroups(plan);
    AddClasses(plan, block);
}

// The first mention of a net counts no connection: what it connects counts itself.
CCNODE& CCNETS::getNode(std::string_view name, std::uint32_t portClass, int add)
{
    const auto [place, isNew] = byName.try_emplace(name);
    CCNODE& net = place->second;
    if (isNew) {
        net.sName = name;
        nodes.push_back(&net);
    } else {
        net.iCount += add;
    }
    net.uiClass |= portClass;
    return net;
}

const CCPLAN& CCNETS::planOf(const EXTCIRCUIT& circuit)
{
    const auto [place, isNew] = plans.try_emplace(&circuit);
    if (isNew) {
        CIRCUIT_MakePlan(*circuit.pBlock, place->second);
    }
    return place->second;
}

CCINST& CCNETS::place(const CCALL& call, const EXTCIRCUIT& circuit)
{
    const CCPLAN& plan = planOf(circuit);
    instances.push_back(CCINST{&call, &circuit, &plan, plan.ports, plan.converters});
    return instances.back();
}

void CIRCUIT_Connect(CCNODE& net, std::string_view port, std::uint32_t portClass, CCINST& instance)
{
    const CCPLAN& plan = *instance.pPlan;
    CCINNER* inner = nullptr;
    if (const auto place = plan.places.find(port); place != plan.places.end()) {
        inner = &instance.ports[place->second];
        ++inner->iCount;
        ++net.iCount;
    }
    net.ports.push_back(CCPORT{port, instance.pCall->iLine, 0, portClass, {}, {}});
    net.uiClass |= portClass;
    if (const auto uses = plan.uses.find(port); uses != plan.uses.end()) {
        for (const CCUSE& use : uses->second) {
            ConnectEnd(net, net.ports.back(), use, instance, inner);
        }
    }
}

void CIRCUIT_CheckComponent(const CMPNT& component, EXTCIRCUIT* circuits)
{
    if (component.pCircuitCalls == nullptr) {
        return;
    }
    try {
        Builder builder(component, circuits);
        for (const CCALL* call = component.pCircuitCalls; call != nullptr; call = call->pNext) {
            builder.addCall(*call);
        }
        CIRCUIT_Judge(builder.nets(), component.szName);
    } catch (const std::bad_alloc&) {
        // Told by the allocation itself.
    }
}
