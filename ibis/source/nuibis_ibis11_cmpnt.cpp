#include "ibis/source/nuibis_ibis11_cmpnt.h"

#include "ibis/source/nuibis_ibis11_model.h"
#include "ibis/source/nuibis_ibis11_text.h"

#include <algorithm>
#include <utility>

namespace
{

constexpr std::size_t PIN_LIMIT = 1024;
constexpr unsigned TITLE_LIMIT = 40;
constexpr unsigned PIN_NAME_LIMIT = 5;
constexpr unsigned PIN_VALUE_LIMIT = 9;

constexpr std::array<std::string_view, 3> PACKAGE_LINES{"R_pkg", "L_pkg", "C_pkg"};
constexpr std::array<std::string_view, 3> PIN_VALUES{"R_pin", "L_pin", "C_pin"};

constexpr int SHORT_LINE = 3;  // items of a pin: its name, its signal and its model
constexpr int LONG_LINE = 6;   // and R, L, C of its own

struct Pin {
    char szName[PIN_NAME_LIMIT + 1];
    char szSignal[IBIS11_NAME_LIMIT + 1];
    char szModel[IBIS11_NAME_LIMIT + 1];
    std::array<IBIS11_Number, 3> aValues;  ///< R (Ohm), L (H), C (F)
};

struct Head {
    char szName[TITLE_LIMIT + 1];
    char szManufacturer[TITLE_LIMIT + 1];
    bool bPackage;
    std::array<IBIS11_Triple, 3> aPackage;  ///< R (Ohm), L (H), C (F)
    bool bPin;
    bool bPinLine;  ///< a line follows [Pin], read or passed over
    std::size_t uiPinCount;
};

// The component that is being read, begun anew at each [Component]. Rows of pins are reused as they are.
Head gComponent;
std::array<Pin, PIN_LIMIT> gaPins;
IBIS11_Names gPinNames;

// Items of the R, L and C columns of the [Pin] table; all 0 where the table has none.
using ValueItems = std::array<int, 3>;

// The rest of a keyword line as a name, cut to what is kept; false if there is none.
bool ReadTitle(IBIS11_Kind keyword, std::string_view label, std::span<char> title)
{
    const std::string_view text = IBIS11_LineText();
    if (text.empty()) {
        IBIS11_Tell(43, IBIS11_KeywordName(keyword));
        return false;
    }
    IBIS11_CheckLength(text, TITLE_LIMIT, label);
    CMN_CopyText(title, text, TITLE_LIMIT);
    return true;
}

bool IsRepeated(bool seen, IBIS11_Kind keyword)
{
    if (seen) {
        IBIS11_Tell(44, IBIS11_KeywordName(keyword), gComponent.szName);
    }
    return seen;
}

void ReadManufacturer()
{
    if (!IsRepeated(gComponent.szManufacturer[0] != '\0', IBIS11_MANUFACTURER)) {
        ReadTitle(IBIS11_MANUFACTURER, "Manufacturer Name", gComponent.szManufacturer);
    }
}

// [Package] -------------------------------------------------------------------------------------------------

void ReadPackageLine()
{
    const IBIS11_Items items = IBIS11_Split();
    const auto* const name = std::find(PACKAGE_LINES.begin(), PACKAGE_LINES.end(), items[0]);
    if (name == PACKAGE_LINES.end()) {
        IBIS11_Tell(45, IBIS11_KeywordName(IBIS11_PACKAGE));
        return;
    }
    IBIS11_Triple& triple = gComponent.aPackage[static_cast<std::size_t>(name - PACKAGE_LINES.begin())];
    if (std::exchange(triple.bSeen, true)) {
        IBIS11_Tell(46, *name, gComponent.szName);
        return;
    }
    IBIS11_ReadNumbers(false, items, 1, *name, IBIS11_TYP_MIN_MAX, triple.aValues);
}

void ReadPackage()
{
    if (IsRepeated(std::exchange(gComponent.bPackage, true), IBIS11_PACKAGE)) {
        gbSkipData = true;
        return;
    }
    IBIS11_CheckCount(true, IBIS11_Split().iCount, 0, 0, IBIS11_KeywordName(IBIS11_PACKAGE));
    while (IBIS11_NextDataLine()) {
        ReadPackageLine();
    }
}

// [Pin] -----------------------------------------------------------------------------------------------------

// The columns that every table has; the one ahead of them is the pin, and has no heading.
void CheckNameColumns(const IBIS11_Items& items)
{
    constexpr std::array<std::string_view, 2> names{"signal_name", "model_name"};
    constexpr std::array<std::string_view, 2> places{"Second", "Third"};
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (static_cast<int>(i) >= items.iCount) {
            IBIS11_Tell(20, IBIS11_KeywordName(IBIS11_PIN), names[i]);
        } else if (items.aszItems[i] != names[i]) {
            IBIS11_Tell(48, places[i], names[i]);
        }
    }
}

// The columns of values stand in any order.
bool ReadValueColumns(const IBIS11_Items& items, ValueItems& values)
{
    for (int i = 2; i < 5; ++i) {
        const auto* const name = std::find(PIN_VALUES.begin(), PIN_VALUES.end(), items[i]);
        if (name == PIN_VALUES.end()) {
            IBIS11_Tell(49, items[i]);
            return false;
        }
        int& value = values[static_cast<std::size_t>(name - PIN_VALUES.begin())];
        if (value != 0) {
            IBIS11_Tell(50, *name);
        }
        value = i + 1;  // the lines have the pin ahead
    }
    bool complete = true;
    for (std::size_t i = 0; i < PIN_VALUES.size(); ++i) {
        if (values[i] == 0) {
            IBIS11_Tell(51, PIN_VALUES[i]);
            complete = false;
        }
    }
    return complete;
}

bool ReadPinHeader(ValueItems& values)
{
    const IBIS11_Items items = IBIS11_Split();
    CheckNameColumns(items);
    return IBIS11_CheckCount(true, items.iCount, SHORT_LINE - 1, LONG_LINE - 1,
                             IBIS11_KeywordName(IBIS11_PIN)) &&
           (items.iCount == SHORT_LINE - 1 || ReadValueColumns(items, values));
}

// A name that was too long to be kept has been reported; it is no name to go on with.
bool ReadPinName(std::string_view name, Pin& pin)
{
    if (name.empty() || !IBIS11_CheckLength(name, PIN_NAME_LIMIT, "Pin Name") ||
        !IBIS11_CheckReserved(name, "Pin")) {
        return false;
    }
    if (gPinNames.contains(name)) {
        IBIS11_Tell(53, name);
        return false;
    }
    gPinNames.add(name);
    CMN_CopyText(pin.szName, name);
    return true;
}

void ReadReference(std::string_view name, const Pin& pin, std::string_view what, std::string_view label,
                   std::span<char> field)
{
    if (name.size() > IBIS11_NAME_LIMIT) {
        IBIS11_Tell(35, pin.szName, label);
    }
    IBIS11_CheckNA(name, what);
    CMN_CopyText(field, name);
}

void ReadPinValues(const IBIS11_Items& items, const ValueItems& values, Pin& pin)
{
    for (std::size_t i = 0; i < PIN_VALUES.size(); ++i) {
        const std::string_view text = items[values[i]];
        if (IBIS11_CheckLength(text, PIN_VALUE_LIMIT, PIN_VALUES[i])) {
            IBIS11_ReadNumber(true, text, PIN_VALUES[i], pin.aValues[i]);
        }
    }
}

void ReadPinLine(const ValueItems& values)
{
    if (gComponent.uiPinCount == PIN_LIMIT) {
        IBIS11_Tell(3, gComponent.szName);
        return;
    }
    const IBIS11_Items items = IBIS11_Split();
    if (!IBIS11_CheckCount(false, items.iCount, SHORT_LINE, LONG_LINE, IBIS11_KeywordName(IBIS11_PIN))) {
        return;
    }
    const bool hasColumns = values[0] != 0;
    const bool hasValues = items.iCount == LONG_LINE;
    if (hasValues && !hasColumns) {
        IBIS11_Tell(52);
    }
    Pin& pin = gaPins[gComponent.uiPinCount];
    pin = {};
    if (!ReadPinName(items[0], pin)) {
        return;
    }
    ++gComponent.uiPinCount;
    ReadReference(items[1], pin, "Signal", "Signal Name", pin.szSignal);
    ReadReference(items[2], pin, "Model", "Model Name", pin.szModel);
    if (!IBIS11_IsReserved(items[2]) && !IBIS11_HasModel(items[2])) {
        IBIS11_Tell(54, items[2], pin.szName);
    }
    if (hasValues && hasColumns) {
        ReadPinValues(items, values, pin);
    }
}

void ReadPins()
{
    if (IsRepeated(std::exchange(gComponent.bPin, true), IBIS11_PIN)) {
        gbSkipData = true;
        return;
    }
    ValueItems values{};
    if (!ReadPinHeader(values)) {
        gComponent.bPinLine = true;
        gbSkipData = true;
        return;
    }
    while (IBIS11_NextDataLine()) {
        gComponent.bPinLine = true;
        ReadPinLine(values);
    }
}

// Closing checks --------------------------------------------------------------------------------------------

void RequireKeyword(bool seen, IBIS11_Kind keyword)
{
    if (!seen) {
        IBIS11_Tell(10, IBIS11_KeywordName(keyword), gComponent.szName);
    }
}

void CheckComponent()
{
    RequireKeyword(gComponent.szManufacturer[0] != '\0', IBIS11_MANUFACTURER);
    RequireKeyword(gComponent.bPackage, IBIS11_PACKAGE);
    for (std::size_t i = 0; gComponent.bPackage && i < PACKAGE_LINES.size(); ++i) {
        if (!gComponent.aPackage[i].bSeen) {
            IBIS11_Tell(9, PACKAGE_LINES[i], gComponent.szName);
        }
    }
    RequireKeyword(gComponent.bPin, IBIS11_PIN);
    if (gComponent.bPin && !gComponent.bPinLine) {
        IBIS11_Tell(17, gComponent.szName);
    }
}

// False for a keyword that is none of a component.
bool ReadKeyword(IBIS11_Kind kind)
{
    switch (kind) {
    case IBIS11_DATA:
        IBIS11_Tell(27);
        gbSkipData = true;
        return true;
    case IBIS11_MANUFACTURER:
        ReadManufacturer();
        return true;
    case IBIS11_PACKAGE:
        ReadPackage();
        return true;
    case IBIS11_PIN:
        ReadPins();
        return true;
    default:
        return false;
    }
}

}  // namespace

bool IBIS11_ReadComponent()
{
    gComponent = {};
    gPinNames.clear();
    if (!ReadTitle(IBIS11_COMPONENT, "Component Name", gComponent.szName)) {
        return false;
    }
    IBIS11_Kind kind = IBIS11_DATA;
    while (IBIS11_NextLine(kind)) {
        if (!ReadKeyword(kind)) {
            IBIS11_PutBack();
            break;
        }
    }
    CheckComponent();
    return true;
}
