// The judgement of the nets of a component.

#include "ibis/source/nuibis_circuit_nets.h"

#include <algorithm>
#include <utility>

bool gbAnalogNetChecks = false;

namespace
{

using Text = std::basic_string<char, std::char_traits<char>, CMN_Allocator<char>>;

// As much of a text as a message can hold.
constexpr std::size_t TEXT_LIMIT = 2208;

constexpr std::uint32_t ANY_DIGITAL = CLASS_DIGITAL | CLASS_DIGITAL_DRIVER | CLASS_DIGITAL_RECEIVER;
constexpr std::uint32_t ANY_ANALOG = CLASS_ANALOG_RESERVE | CLASS_ANALOG_REFERENCE | CLASS_ANALOG |
                                     CLASS_ANALOG_PIN | CLASS_ANALOG_DRIVER | CLASS_ANALOG_RECEIVER;
constexpr std::uint32_t EVERYTHING = 0xFFFF;

// Texts ---------------------------------------------------------------------------------------------------

struct ClassName {
    std::uint32_t uiBit;
    std::string_view sText;
};

constexpr std::array<ClassName, 10> CLASS_NAMES{{
    {CLASS_AMS_UNKNOWN, "NUIBIS_AMS_UNKNOWN "},
    {CLASS_DIGITAL, "NUIBIS_DIGITAL "},
    {CLASS_DIGITAL_DRIVER, "NUIBIS_DIGITAL_DRIVER "},
    {CLASS_DIGITAL_RECEIVER, "NUIBIS_DIGITAL_RECEIVER "},
    {CLASS_ANALOG_RESERVE, "NUIBIS_ANALOG_RESERVE "},
    {CLASS_ANALOG_REFERENCE, "NUIBIS_ANALOG_REFERENCE "},
    {CLASS_ANALOG, "NUIBIS_ANALOG "},
    {CLASS_ANALOG_PIN, "NUIBIS_ANALOG_PIN "},
    {CLASS_ANALOG_DRIVER, "NUIBIS_ANALOG_DRIVER "},
    {CLASS_ANALOG_RECEIVER, "NUIBIS_ANALOG_RECEIVER"},
}};
constexpr std::array<ClassName, 2> FALLBACK_NAMES{{
    {CLASS_NC, "NUIBIS_NC "},
    {CLASS_UNKNOWN, "NUIBIS_UNKNOWN "},
}};

template <std::size_t N>
void AppendNames(Text& text, const std::array<ClassName, N>& names, std::uint32_t portClass)
{
    for (const ClassName& name : names) {
        if ((portClass & name.uiBit) != 0) {
            text += name.sText;
        }
    }
}

Text ClassText(std::uint32_t portClass)
{
    Text text;
    AppendNames(text, CLASS_NAMES, portClass);
    if (text.empty()) {
        AppendNames(text, FALLBACK_NAMES, portClass);
    }
    return text;
}

template <class... Args> void AppendLine(Text& text, const char* format, const Args&... args)
{
    std::array<char, TEXT_LIMIT> line;
    const MSG_Arg list[] = {MSG_Arg(args)...};
    const std::size_t length = MSG_Format(line, format, list);
    text.append(line.data(), std::min(length, TEXT_LIMIT - text.size()));
}

void AppendPort(Text& text, const CCNODE& net, const CCPORT& port, std::uint32_t mask)
{
    if (port.refs.empty() && (port.uiClass & mask) != 0) {
        AppendLine(text, "\n        [CCALL] Line %d Node <%s>, Conflicting/Associated port = Port <%s> = %s",
                   port.iCallLine, net.sName, port.sName, std::string_view(ClassText(port.uiClass & mask)));
    }
    for (std::size_t i = port.refs.size(); i-- > 0;) {
        if (const std::uint32_t masked = port.refs[i]->uiClass & mask; masked != 0) {
            AppendLine(text,
                       "\n        [CCALL] Line %d Node <%s>, Conflicting/Associated port = Line <%d> Port "
                       "<%s> = %s",
                       port.iCallLine, net.sName, port.converters[i]->iLine, port.sName,
                       std::string_view(ClassText(masked)));
        }
    }
}

Text ConflictText(const CCNODE& net, std::uint32_t mask)
{
    Text text;
    for (auto port = net.ports.rbegin(); port != net.ports.rend() && text.size() < TEXT_LIMIT; ++port) {
        AppendPort(text, net, *port, mask);
    }
    return text;
}

std::string_view NameOf(const CCNODE* net)
{
    return net == nullptr ? std::string_view("") : net->sName;
}

// Ends of one name ----------------------------------------------------------------------------------------

// Two ends of one name are one node of the circuit: of each pair, in the order of the converters, both take
// the class of both, and two drivers make the first a reference.
//
// The ends behind the one whose turn it is. Once an end has met them all, each holds what the one before it
// holds, so that they form a few runs of one class whatever their number.
class LaterEnds
{
  public:
    LaterEnds(const CMN_Vector<std::size_t>& converters, std::size_t end, CCINST& instance)
    {
        for (const std::size_t i : converters) {
            append(instance.converters[i].aEnds[end].uiClass, 1);
        }
    }
    // Takes the first end out.
    std::uint32_t take()
    {
        Run& run = mRuns[muFirst];
        const std::uint32_t result = run.uiClass;
        if (--run.uiCount == 0) {
            ++muFirst;
        }
        return result;
    }
    // `first` with each end in turn.
    void meet(std::uint32_t& first)
    {
        CMN_Vector<Run> runs;
        runs.swap(mRuns);
        for (std::size_t i = std::exchange(muFirst, 0); i < runs.size(); ++i) {
            meetOne(first, runs[i].uiClass, 1);
            // The second of a run may find a driver in `first` that the first one brought; the others find
            // nothing new.
            if (runs[i].uiCount > 1) {
                meetOne(first, runs[i].uiClass, runs[i].uiCount - 1);
            }
        }
    }

  private:
    struct Run {
        std::uint32_t uiClass;
        std::size_t uiCount;
    };

    void append(std::uint32_t portClass, std::size_t count)
    {
        if (!mRuns.empty() && mRuns.back().uiClass == portClass) {
            mRuns.back().uiCount += count;
        } else {
            mRuns.push_back({portClass, count});
        }
    }
    void meetOne(std::uint32_t& first, std::uint32_t other, std::size_t count)
    {
        if ((first & other & CLASS_ANALOG_DRIVER) != 0) {
            first |= CLASS_ANALOG_REFERENCE;
        }
        first |= other;
        append(first, count);
    }

    CMN_Vector<Run> mRuns;
    std::size_t muFirst = 0;
};

void MergeDigital(const CCGROUP& group, CCINST& instance)
{
    LaterEnds later(group.first, 0, instance);
    for (const std::size_t i : group.first) {
        std::uint32_t& own = instance.converters[i].aEnds[0].uiClass;
        own = later.take();
        later.meet(own);
    }
}

// First ports pair with second ports only, as converters in series share a node in this way.
void MergeAnalog(const CCGROUP& group, CCINST& instance)
{
    LaterEnds firsts(group.first, 1, instance);
    LaterEnds seconds(group.second, 2, instance);
    auto first = group.first.begin();
    auto second = group.second.begin();
    while (first != group.first.end() || second != group.second.end()) {
        const std::size_t i = second == group.second.end() ? *first
                              : first == group.first.end() ? *second
                                                           : std::min(*first, *second);
        std::array<CCREF, 3>& ends = instance.converters[i].aEnds;
        const bool isFirst = first != group.first.end() && *first == i;
        const bool isSecond = second != group.second.end() && *second == i;
        if (isFirst) {
            ends[1].uiClass = firsts.take();
            ++first;
        }
        if (isSecond) {
            ends[2].uiClass = seconds.take();
            ++second;
        }
        if (isFirst) {
            seconds.meet(ends[1].uiClass);
        }
        if (isSecond) {
            firsts.meet(ends[2].uiClass);
        }
    }
}

void MergeConverterEnds(CCNETS& nets)
{
    for (CCINST& instance : nets.instances) {
        for (const CCGROUP& group : instance.pPlan->digitalGroups) {
            MergeDigital(group, instance);
        }
        for (const CCGROUP& group : instance.pPlan->analogGroups) {
            MergeAnalog(group, instance);
        }
        for (const CCCONV& converter : instance.converters) {
            const CCREF& one = converter.aEnds[1];
            const CCREF& two = converter.aEnds[2];
            if (converter.eKind == CCKIND::AtoD &&
                (one.uiClass & two.uiClass & CLASS_ANALOG_REFERENCE) != 0) {
                MSG_Error(1816, instance.pCall->iLine, converter.iLine, one.sName, NameOf(one.pNode),
                          two.sName, NameOf(two.pNode));
            }
        }
    }
}

void CheckInternalPorts(const CCNETS& nets)
{
    for (const CCINST& instance : nets.instances) {
        for (const CCINNER& port : instance.ports) {
            if (port.bConnected) {
                continue;
            }
            if (port.iCount < 2 && (port.uiClass & (CLASS_ANALOG_RESERVE | CLASS_DIGITAL_RESERVE)) == 0) {
                MSG_Error(1817, instance.pCall->iLine, instance.pCircuit->iLine, port.sName,
                          std::string_view(ClassText(port.uiClass)));
            }
            if ((port.uiClass & CLASS_ANALOG) != 0 && (port.uiClass & CLASS_DIGITAL) != 0) {
                MSG_Error(1818, port.sName, instance.pCircuit->iLine);
            }
        }
    }
}

// Nets ----------------------------------------------------------------------------------------------------

void TakeEndClasses(CCNETS& nets)
{
    for (const CCINST& instance : nets.instances) {
        for (const CCCONV& converter : instance.converters) {
            for (const CCREF& end : converter.aEnds) {
                if (end.pNode != nullptr) {
                    end.pNode->uiClass |= end.uiClass;
                }
            }
        }
    }
}

void CheckConnections(const CCNODE& net, std::string_view component)
{
    const bool pin = (net.uiClass & CLASS_ANALOG_PIN) != 0;
    if (net.iCount == 1 && !pin) {
        MSG_Error(1821, component, net.sName,
                  std::string_view(ConflictText(net, CLASS_ANALOG | CLASS_DIGITAL | CLASS_UNKNOWN)));
    } else if (net.iCount == 0 && pin) {
        MSG_Error(1823, component, net.sName);
    } else if (net.iCount == 0) {
        MSG_Warning(1822, component, net.sName, "");
    }
}

using NetSite = MSG_Site<MSG_Kind::Text, MSG_Kind::Text, MSG_Kind::Text>;

// Drivers against receivers: the first row whose bits are those of the net under the mask tells.
struct Direction {
    std::uint32_t uiMask;
    std::uint32_t uiValue;
    bool bError;
    NetSite site;
};

template <std::size_t N>
void CheckDirections(const CCNODE& net, std::string_view component, const std::array<Direction, N>& rows)
{
    const auto* const row = std::find_if(
        rows.begin(), rows.end(), [&](const Direction& r) { return (net.uiClass & r.uiMask) == r.uiValue; });
    if (row == rows.end()) {
        return;
    }
    const Text text = ConflictText(net, EVERYTHING);
    if (row->bError) {
        MSG_Error(row->site, component, net.sName, std::string_view(text));
    } else {
        MSG_Warning(row->site, component, net.sName, std::string_view(text));
    }
}

constexpr std::uint32_t DIGITAL_FLOW = CLASS_AMS_UNKNOWN | CLASS_DIGITAL_DRIVER | CLASS_DIGITAL_RECEIVER;

constexpr std::array<Direction, 4> DIGITAL_DIRECTIONS{{
    {DIGITAL_FLOW, CLASS_DIGITAL_RECEIVER, true, 1825},
    {DIGITAL_FLOW, CLASS_AMS_UNKNOWN | CLASS_DIGITAL_RECEIVER, false, 1826},
    {DIGITAL_FLOW, CLASS_DIGITAL_DRIVER, true, 1827},
    {DIGITAL_FLOW, CLASS_AMS_UNKNOWN | CLASS_DIGITAL_DRIVER, false, 1828},
}};

constexpr std::uint32_t ANALOG_FLOW = CLASS_AMS_UNKNOWN | CLASS_ANALOG_DRIVER | CLASS_ANALOG_RECEIVER;

constexpr std::array<Direction, 5> ANALOG_DIRECTIONS{{
    {CLASS_AMS_UNKNOWN | CLASS_ANALOG_DRIVER | CLASS_DIGITAL_DRIVER, CLASS_AMS_UNKNOWN, true, 1829},
    {ANALOG_FLOW, CLASS_ANALOG_RECEIVER, true, 1830},
    {ANALOG_FLOW, CLASS_AMS_UNKNOWN | CLASS_ANALOG_RECEIVER, false, 1831},
    {ANALOG_FLOW, CLASS_ANALOG_DRIVER, true, 1832},
    {ANALOG_FLOW, CLASS_AMS_UNKNOWN | CLASS_ANALOG_DRIVER, false, 1833},
}};

bool HasSeveralDrivers(const CCNODE& net)
{
    int drivers = 0;
    for (const CCPORT& port : net.ports) {
        drivers += port.iAnalogDrivers;
    }
    return drivers > 1;
}

void JudgeNet(CCNODE& net, std::string_view component)
{
    CheckConnections(net, component);
    if (HasSeveralDrivers(net)) {
        net.uiClass |= CLASS_ANALOG_REFERENCE;
    }
    if ((net.uiClass & ANY_DIGITAL) != 0 && (net.uiClass & ANY_ANALOG) != 0) {
        MSG_Error(1824, component, net.sName, std::string_view(ConflictText(net, ANY_DIGITAL | ANY_ANALOG)));
    }
    CheckDirections(net, component, DIGITAL_DIRECTIONS);
    if (gbAnalogNetChecks) {
        CheckDirections(net, component, ANALOG_DIRECTIONS);
    }
    if ((net.uiClass & CLASS_ANALOG_PIN) != 0 && (net.uiClass & ANY_DIGITAL) != 0) {
        MSG_Error(1834, component, net.sName,
                  std::string_view(ConflictText(net, CLASS_ANALOG_PIN | ANY_DIGITAL)));
    }
}

// A driver between two nets that are both references shorts them.
void CheckShorts(const CCNETS& nets)
{
    CMN_Map<const CCNODE*, Text> texts;  // a net may serve many drivers
    const auto textOf = [&](const CCNODE* net) {
        const auto [place, isNew] = texts.try_emplace(net);
        if (isNew) {
            place->second =
                ConflictText(*net, CLASS_ANALOG_DRIVER | CLASS_ANALOG_REFERENCE | CLASS_ANALOG_RESERVE);
        }
        return std::string_view(place->second);
    };
    for (const CCINST& instance : nets.instances) {
        for (const CCCONV& converter : instance.converters) {
            const CCREF& one = converter.aEnds[1];
            const CCREF& two = converter.aEnds[2];
            if (converter.eKind == CCKIND::DtoA && one.pNode != nullptr && two.pNode != nullptr &&
                (one.pNode->uiClass & two.pNode->uiClass & CLASS_ANALOG_REFERENCE) != 0) {
                MSG_Error(1819, instance.pCall->iLine, converter.iLine, one.sName, one.pNode->sName,
                          two.sName, two.pNode->sName, textOf(one.pNode), textOf(two.pNode));
            }
        }
    }
}

}  // namespace

void CIRCUIT_Judge(CCNETS& nets, std::string_view component)
{
    MergeConverterEnds(nets);
    CheckInternalPorts(nets);
    TakeEndClasses(nets);
    for (auto net = nets.nodes.rbegin(); net != nets.nodes.rend(); ++net) {
        JudgeNet(**net, component);
    }
    CheckShorts(nets);
}
