#include "ibis/source/nuibis_pinmpg.h"

#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_list.h"
#include "ibis/source/nuibis_pin.h"

#include <algorithm>
#include <array>

namespace
{

constexpr unsigned REFERENCE_LIMIT = 15;

// The list that is being read, and the list that was last looked into; both follow by themselves.
LIST_Tail<PINMPG> gTail;
LIST_Index<PINMPG, &PINMPG::szPin> gMappings;

using Reference = char (PINMPG::*)[16];

// One reference column: its names on the header and in messages, and what its end check reports.
struct Column {
    std::string_view sHeader;
    Reference field;
    bool bGround;        ///< usually connected to GND rather than POWER
    MSG_Text2 noSource;  ///< (component, bus)
    MSG_Text2 polarity;  ///< (component, bus)
};

constexpr std::array<Column, 5> COLUMNS{{
    {"pulldown_ref", &PINMPG::szPulldownRef, true, 716, 717},
    {"pullup_ref", &PINMPG::szPullupRef, false, 720, 721},
    {"gnd_clamp_ref", &PINMPG::szGndClampRef, true, 722, 723},
    {"power_clamp_ref", &PINMPG::szPowerClampRef, false, 724, 725},
    {"ext_ref", &PINMPG::szExtRef, false, 726, 727},
}};

bool IsOpen(std::string_view reference)
{
    return reference.empty() || CMN_Equal(reference, "NC");
}

// 5 columns give the clamps too; a sixth, the external reference, came with 4.0.
bool IsGoodCount(int columns)
{
    return columns == 3 || columns == 5 || (columns == 6 && geIbisVersion >= IBIS_VER_4);
}

void CheckColumnCount(int columns, int headerColumns)
{
    const bool external = geIbisVersion >= IBIS_VER_4;
    if (!IsGoodCount(columns)) {
        if (external) {
            MSG_ErrorLine(704);
        } else {
            MSG_ErrorLine(705);
        }
    }
    if (columns == 5 && headerColumns == 3) {
        MSG_ErrorLine(706);
    }
    if (external && columns == 6 && headerColumns != 6) {
        MSG_ErrorLine(707);
    }
}

void ReportMissing(int found)
{
    if (found < 1) {
        MSG_ErrorLine(701);
    }
    if (found < 2) {
        MSG_ErrorLine(702);
    }
    if (found < 3) {
        MSG_ErrorLine(703);
    }
}

// End checks ----------------------------------------------------------------------------------------------

// How the mapping of a rail pin, or of a pin that is not connected, usually looks: the one reference that it
// has, and the pair of messages otherwise, from 4.0 on with the component's name.
struct RailRule {
    std::string_view sModel;
    Reference wanted;
    std::array<Reference, 3> open;
    MSG_Text2 withComponent;
    MSG_Text1 withPin;
};

constexpr std::array<RailRule, 2> RAILS{{
    {"POWER",
     &PINMPG::szPullupRef,
     {&PINMPG::szPulldownRef, &PINMPG::szGndClampRef, &PINMPG::szPowerClampRef},
     709,
     710},
    {"GND",
     &PINMPG::szPulldownRef,
     {&PINMPG::szPullupRef, &PINMPG::szGndClampRef, &PINMPG::szPowerClampRef},
     711,
     712},
}};

void ReportRail(MSG_Text2 withComponent, MSG_Text1 withPin, const char* component, const PIN& pin)
{
    if (geIbisVersion >= IBIS_VER_4) {
        MSG_Warning(withComponent, component, pin.szPin);
    } else {
        MSG_Warning(withPin, pin.szPin);
    }
}

void CheckPinsMapping(const PIN& pin, const PINMPG& mapping, const char* component)
{
    for (const RailRule& rule : RAILS) {
        if (CMN_Equal(pin.szModel, rule.sModel)) {
            const bool othersOpen = std::all_of(rule.open.begin(), rule.open.end(), [&](Reference reference) {
                return IsOpen(mapping.*reference);
            });
            if (!othersOpen || IsOpen(mapping.*rule.wanted)) {
                ReportRail(rule.withComponent, rule.withPin, component, pin);
            }
        }
    }
    if (CMN_Equal(pin.szModel, "NC") && !std::all_of(COLUMNS.begin(), COLUMNS.end(), [&](const Column& c) {
            return IsOpen(mapping.*c.field);
        })) {
        ReportRail(713, 714, component, pin);
    }
}

// What is known of the buses of a component: a bus is a name, and its members are the mappings that have it
// as pulldown or pullup reference. The first member whose pin is a rail is its source.
class Buses
{
  public:
    Buses(const PINMPG* list, PIN* pins)
    {
        for (const PINMPG* mapping = list; mapping != nullptr; mapping = mapping->pNext) {
            mPullups.try_emplace(mapping->szPullupRef, true);
            if (PIN_IsRail(pins, mapping->szPin)) {
                const bool ground = PIN_IsGnd(pins, mapping->szPin);
                mSourceIsGround.try_emplace(mapping->szPulldownRef, ground);
                mSourceIsGround.try_emplace(mapping->szPullupRef, ground);
            }
        }
    }
    bool isPullup(std::string_view bus) const { return mPullups.contains(bus); }
    /// Null if no POWER or GND pin is on the bus.
    const bool* sourceIsGround(std::string_view bus) const
    {
        const auto source = mSourceIsGround.find(bus);
        return source == mSourceIsGround.end() ? nullptr : &source->second;
    }

  private:
    CMN_Map<std::string_view, bool> mPullups;
    CMN_Map<std::string_view, bool> mSourceIsGround;
};

void CheckRailsPulldown(const Buses& buses, std::string_view bus, const char* component)
{
    if (buses.isPullup(bus)) {
        if (geIbisVersion >= IBIS_VER_4) {
            MSG_Caution(718, component, bus);
        } else {
            MSG_Caution(719, bus);
        }
    }
}

void CheckColumn(const Column& column, const PINMPG* list, PIN* pins, const Buses& buses,
                 const char* component)
{
    for (const PINMPG* mapping = list; mapping != nullptr; mapping = mapping->pNext) {
        const std::string_view bus = mapping->*column.field;
        if (IsOpen(bus)) {
            continue;
        }
        if (PIN_IsRail(pins, mapping->szPin)) {
            if (&column == COLUMNS.data()) {
                CheckRailsPulldown(buses, bus, component);
            }
            continue;
        }
        const bool* const sourceIsGround = buses.sourceIsGround(bus);
        if (sourceIsGround == nullptr) {
            MSG_Error(column.noSource, component, bus);
        } else if (*sourceIsGround != column.bGround) {
            MSG_Caution(column.polarity, component, bus);
        }
    }
}

}  // namespace

void PINMPG_ReadHeader(CMPNT* component, std::string_view text)
{
    if (component->iPinMappingColumns != 0) {
        MSG_ErrorLine(525);
        return;
    }
    component->iPinMappingColumns = 1;
    if (text.empty()) {
        MSG_ErrorLine(528, "Pin_Mapping");
        return;
    }
    const CMN_TokenList tokens = CMN_Split(text, static_cast<int>(COLUMNS.size()));
    component->iPinMappingColumns += tokens.iStored;
    if (!IsGoodCount(component->iPinMappingColumns)) {
        if (geIbisVersion >= IBIS_VER_4) {
            MSG_ErrorLine(526, component->iPinMappingColumns);
        } else {
            MSG_ErrorLine(532, "Pin_Mappings", 3, 5, component->iPinMappingColumns);
        }
    }
    for (int i = 0; i < std::max(tokens.iStored, 2); ++i) {
        const std::string_view header = COLUMNS[static_cast<std::size_t>(i)].sHeader;
        if (!CMN_Equal(tokens[i], header)) {
            MSG_ErrorLine(529, header);
        }
    }
}

int PINMPG_ReadLine(std::string_view text, int headerColumns, PINMPG** out)
{
    if (!CMN_Alloc(*out)) {
        MSG_ErrorLine(728);
        return 0;
    }
    PINMPG& mapping = **out;
    const CMN_TokenList tokens = CMN_Split(text, 6);
    if (tokens.iFound > tokens.iStored) {
        MSG_ErrorLine(700);
    }
    mapping.iColumns = tokens.iStored;
    if (tokens.iStored > 0) {
        CMN_ReplaceString(mapping.szPin, tokens[0], PIN_NAME_LIMIT, "Pin");
    }
    for (int i = 1; i < tokens.iStored; ++i) {
        const Column& column = COLUMNS[static_cast<std::size_t>(i) - 1];
        if (CMN_Equal(tokens[i], "NA")) {
            MSG_ErrorLine(729, tokens[i]);
        }
        CMN_ReplaceString(mapping.*column.field, tokens[i], REFERENCE_LIMIT, column.sHeader);
    }
    ReportMissing(tokens.iStored);
    CheckColumnCount(mapping.iColumns, headerColumns);
    return 1;
}

void PINMPG_Add(PINMPG*& list, PINMPG* mapping)
{
    if (PINMPG_HasPin(list, mapping->szPin)) {
        MSG_ErrorLine(708);
    }
    gTail.append(list, mapping);
}

void PINMPG_Free(PINMPG* list)
{
    gMappings.reset();
    CMN_FreeList(list);
}

PINMPG* PINMPG_Find(PINMPG* list, std::string_view pin)
{
    return gMappings.find(list, pin);
}

bool PINMPG_HasPin(PINMPG* list, std::string_view pin)
{
    return PINMPG_Find(list, pin) != nullptr;
}

const char* PINMPG_GetRef(PINMPG* list, std::string_view pin, bool pullup)
{
    const PINMPG* const mapping = PINMPG_Find(list, pin);
    if (mapping == nullptr) {
        return nullptr;
    }
    return pullup ? mapping->szPullupRef : mapping->szPulldownRef;
}

void PINMPG_CheckAll(PINMPG* list, PIN* pins, const char* component)
try {
    if (pins == nullptr) {
        return;
    }
    for (const PIN* pin = pins; pin != nullptr; pin = pin->pNext) {
        if (const PINMPG* mapping = PINMPG_Find(list, pin->szPin); mapping != nullptr) {
            CheckPinsMapping(*pin, *mapping, component);
        }
    }
    for (const PINMPG* mapping = list; mapping != nullptr; mapping = mapping->pNext) {
        if (!PIN_Exists(pins, mapping->szPin)) {
            MSG_Error(715, component, mapping->szPin);
        }
    }
    const Buses buses(list, pins);
    for (const Column& column : COLUMNS) {
        CheckColumn(column, list, pins, buses, component);
    }
} catch (const std::bad_alloc&) {
    // Told by the allocation itself; the rest of the bus checks falls away.
}
