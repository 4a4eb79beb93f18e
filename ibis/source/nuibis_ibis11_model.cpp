#include "ibis/source/nuibis_ibis11_model.h"

#include "ibis/source/nuibis_ibis11_text.h"

#include <algorithm>
#include <utility>

namespace
{

constexpr std::size_t TABLE_LIMIT = 100;
constexpr std::string_view TABLE_LIMIT_TEXT = "100";
constexpr std::size_t THRESHOLD_LIMIT = 42;

/// Stands for a word that is none of its subparameter: the subparameter was given all the same.
constexpr char UNKNOWN_WORD = '?';

/// Voltage (V) and the three currents (A) at it.
using TableRow = std::array<IBIS11_Number, 4>;
constexpr std::size_t TYP_CURRENT = 1;
constexpr std::array<IBIS11_Column, 4> ROW_COLUMNS{
    {{"voltage", false}, {"typ", true}, {"min", true}, {"max", true}}};

struct Table {
    bool bSeen;
    std::size_t uiCount;
    std::array<TableRow, TABLE_LIMIT> aRows;
};

/// A slope: a voltage (V) over a time (s).
struct Slope {
    IBIS11_Number voltage;
    IBIS11_Number time;
};

struct RampLine {
    bool bSeen;
    std::array<Slope, 3> aSlopes;  ///< typ, min, max
};

struct Head {
    char szName[IBIS11_NAME_LIMIT + 1];
    char cType;  ///< letters of the words; 0 while not given
    char cPolarity;
    char cEnable;
    IBIS11_Number vinl;
    IBIS11_Number vinh;
    IBIS11_Triple ccomp;
    IBIS11_Triple voltageRange;
    bool bRamp;
    std::array<RampLine, 2> aRamp;  ///< dV/dt_r, dV/dt_f
};

// The model that is being read, begun anew at each [Model]. The rows of tables are reused as they are, or a
// file of many small models would spend its time on clearing them.
Head gModel;
std::array<Table, 4> gaTables;  // from [Pulldown] to [POWER_Clamp]

// Reset by IBIS11_ResetModels.
IBIS11_Names gaszModelNames;

// Subparameters ---------------------------------------------------------------------------------------------

struct Word {
    std::string_view sText;
    char cLetter;
};

constexpr char TYPE_INPUT = 'i';

constexpr Word TYPES[]{
    {"Input", TYPE_INPUT}, {"Output", 'o'}, {"I/O", 'I'}, {"3-state", '3'}, {"Open_drain", 'D'}};
constexpr Word POLARITIES[]{{"Inverting", 'I'}, {"Non-Inverting", 'N'}};
constexpr Word ENABLES[]{{"Active-High", 'H'}, {"Active-Low", 'L'}};

struct Subparameter {
    std::string_view sName;
    bool bPrefix;  ///< the sign of equality may stand against the name
    void (*pRead)(const Subparameter& row);
    char Head::*pcLetter;
    std::span<const Word> words;
    IBIS11_Number Head::*pNumber;
};

// Letter of a word, compared exactly.
char LetterOf(const Subparameter& row, std::string_view text)
{
    const auto find = [&](auto same) {
        return std::find_if(row.words.begin(), row.words.end(),
                            [&](const Word& word) { return same(word.sText, text); });
    };
    if (const auto exact = find(std::equal_to<std::string_view>()); exact != row.words.end()) {
        return exact->cLetter;
    }
    if (const auto close = find(CMN_Equal); close != row.words.end()) {
        IBIS11_Tell(60, row.sName, text, gModel.szName, close->sText);
        return close->cLetter;
    }
    IBIS11_Tell(59, row.sName, text, gModel.szName);
    return UNKNOWN_WORD;
}

void ReadWord(const Subparameter& row)
{
    char& letter = gModel.*row.pcLetter;
    if (letter != 0) {
        IBIS11_Tell(57, row.sName, gModel.szName);
        return;
    }
    const IBIS11_Items items = IBIS11_Split();
    if (items.iCount < 2) {
        IBIS11_Tell(22, row.sName, "value");
        return;
    }
    letter = LetterOf(row, items[1]);
    IBIS11_CheckCount(false, items.iCount, 2, 2, row.sName);
}

// "Vinl = 0.8"
void ReadThreshold(const Subparameter& row)
{
    IBIS11_Number& number = gModel.*row.pNumber;
    if (number.cStatus != 0) {
        IBIS11_Tell(57, row.sName, gModel.szName);
        return;
    }
    std::string_view text = IBIS11_LineText();
    text.remove_prefix(std::min(text.find('='), text.size()));
    const bool equals = !text.empty();
    text.remove_prefix(equals ? 1 : 0);
    const std::string_view value = IBIS11_NextField(text);
    if (!equals || value.size() > THRESHOLD_LIMIT) {
        IBIS11_Tell(58, row.sName, gModel.szName);
        return;
    }
    if (!IBIS11_NextField(text).empty()) {
        IBIS11_Tell(24, row.sName);
    }
    IBIS11_ReadNumber(false, value, row.sName, number);
}

void ReadCapacitance(const Subparameter& row)
{
    if (std::exchange(gModel.ccomp.bSeen, true)) {
        IBIS11_Tell(57, row.sName, gModel.szName);
        return;
    }
    IBIS11_ReadNumbers(false, IBIS11_Split(), 1, row.sName, IBIS11_TYP_MIN_MAX, gModel.ccomp.aValues);
}

constexpr std::array<Subparameter, 6> SUBPARAMETERS{{
    {"Model_type", false, ReadWord, &Head::cType, TYPES, nullptr},
    {"Polarity", false, ReadWord, &Head::cPolarity, POLARITIES, nullptr},
    {"Enable", false, ReadWord, &Head::cEnable, ENABLES, nullptr},
    {"Vinl", true, ReadThreshold, nullptr, {}, &Head::vinl},
    {"Vinh", true, ReadThreshold, nullptr, {}, &Head::vinh},
    {"C_comp", false, ReadCapacitance, nullptr, {}, nullptr},
}};

void ReadSubparameter()
{
    std::string_view text = IBIS11_LineText();
    const std::string_view name = IBIS11_NextField(text);
    const auto* const row =
        std::find_if(SUBPARAMETERS.begin(), SUBPARAMETERS.end(), [name](const Subparameter& candidate) {
            return candidate.bPrefix ? name.starts_with(candidate.sName) : name == candidate.sName;
        });
    if (row == SUBPARAMETERS.end()) {
        IBIS11_Tell(45, "Model");
        return;
    }
    row->pRead(*row);
}

// Keywords of a model ---------------------------------------------------------------------------------------

void ReadVoltageRange(std::string_view keyword)
{
    if (std::exchange(gModel.voltageRange.bSeen, true)) {
        IBIS11_Tell(57, keyword, gModel.szName);
        return;
    }
    IBIS11_ReadNumbers(true, IBIS11_Split(), 0, keyword, IBIS11_TYP_MIN_MAX, gModel.voltageRange.aValues);
}

// True for the first block of its keyword; the lines of another one are passed over.
bool BeginBlock(bool& seen, std::string_view keyword)
{
    if (std::exchange(seen, true)) {
        IBIS11_Tell(57, keyword, gModel.szName);
        gbSkipData = true;
        return false;
    }
    return true;
}

// A curve cannot be drawn from or to a point that has no typical value.
void CheckCurveEnds(const Table& table, std::string_view keyword)
{
    if (table.uiCount == 0) {
        return;
    }
    if (table.aRows[0][TYP_CURRENT].cStatus == IBIS11_NA) {
        IBIS11_Tell(18, gModel.szName, keyword, "Starts");
    }
    if (table.aRows[table.uiCount - 1][TYP_CURRENT].cStatus == IBIS11_NA) {
        IBIS11_Tell(18, gModel.szName, keyword, "Ends");
    }
}

void ReadTable(Table& table, std::string_view keyword)
{
    if (!BeginBlock(table.bSeen, keyword)) {
        return;
    }
    IBIS11_CheckCount(true, IBIS11_Split().iCount, 0, 0, keyword);
    while (IBIS11_NextDataLine()) {
        if (table.uiCount == TABLE_LIMIT) {
            IBIS11_Tell(61, TABLE_LIMIT_TEXT, keyword);
            continue;
        }
        TableRow& row = table.aRows[table.uiCount++];
        row = {};
        IBIS11_ReadNumbers(false, IBIS11_Split(), 0, keyword, ROW_COLUMNS, row);
    }
    CheckCurveEnds(table, keyword);
}

constexpr std::array<std::string_view, 2> RAMP_LINES{"dV/dt_r", "dV/dt_f"};

// "3.0/30n", or "NA" as a whole.
void ReadSlope(bool allowNA, std::string_view text, std::string_view label, Slope& slope)
{
    const std::size_t slash = text.find('/');
    if (allowNA && CMN_Equal(text, "NA")) {
        slope.voltage.cStatus = slope.time.cStatus = IBIS11_NA;
    } else if (slash == std::string_view::npos) {
        IBIS11_Tell(26, label, text);
    } else {
        IBIS11_ReadNumber(false, text.substr(0, slash), label, slope.voltage);
        IBIS11_ReadNumber(false, text.substr(slash + 1), label, slope.time);
    }
}

void ReadRampLine()
{
    const IBIS11_Items items = IBIS11_Split();
    const auto index = static_cast<std::size_t>(std::find(RAMP_LINES.begin(), RAMP_LINES.end(), items[0]) -
                                                RAMP_LINES.begin());
    if (index == RAMP_LINES.size()) {
        IBIS11_Tell(45, IBIS11_KeywordName(IBIS11_RAMP));
        return;
    }
    RampLine& line = gModel.aRamp[index];
    if (std::exchange(line.bSeen, true)) {
        IBIS11_Tell(63, items[0], gModel.szName);
        return;
    }
    IBIS11_ReadColumns(false, items, 1, items[0], IBIS11_TYP_MIN_MAX,
                       [&](std::size_t column, std::string_view text, bool allowNA) {
                           ReadSlope(allowNA, text, items[0], line.aSlopes[column]);
                       });
}

void ReadRamp(std::string_view keyword)
{
    if (!BeginBlock(gModel.bRamp, keyword)) {
        return;
    }
    while (IBIS11_NextDataLine()) {
        ReadRampLine();
    }
}

// False for a keyword that is none of a model.
bool ReadKeyword(IBIS11_Kind kind)
{
    switch (kind) {
    case IBIS11_DATA:  // behind [Voltage Range], which takes no lines
        IBIS11_Tell(27);
        gbSkipData = true;
        return true;
    case IBIS11_VOLTAGE_RANGE:
        ReadVoltageRange(IBIS11_KeywordName(kind));
        return true;
    case IBIS11_PULLDOWN:
    case IBIS11_PULLUP:
    case IBIS11_GND_CLAMP:
    case IBIS11_POWER_CLAMP:
        ReadTable(gaTables[static_cast<std::size_t>(kind - IBIS11_PULLDOWN)], IBIS11_KeywordName(kind));
        return true;
    case IBIS11_RAMP:
        ReadRamp(IBIS11_KeywordName(kind));
        return true;
    default:
        return false;
    }
}

// Closing checks --------------------------------------------------------------------------------------------

void CheckRamp()
{
    if (!gModel.bRamp) {
        if (gModel.cType != 0 && gModel.cType != TYPE_INPUT) {
            IBIS11_Tell(13, gModel.szName);
        }
        return;
    }
    for (std::size_t i = 0; i < RAMP_LINES.size(); ++i) {
        if (!gModel.aRamp[i].bSeen) {
            IBIS11_Tell(14, RAMP_LINES[i], gModel.szName);
        }
    }
}

void CheckTables()
{
    int kind = IBIS11_PULLDOWN;
    for (const Table& table : gaTables) {
        const std::string_view keyword = IBIS11_KeywordName(static_cast<IBIS11_Kind>(kind++));
        if (table.bSeen && table.uiCount == 0) {
            IBIS11_Tell(15, keyword, gModel.szName);
        } else if (table.uiCount == 1) {
            IBIS11_Tell(16, gModel.szName, keyword);
        }
    }
}

void CheckModel()
{
    if (gModel.cType == 0) {
        IBIS11_Tell(11, "Model_type", gModel.szName);
    }
    if (!gModel.ccomp.bSeen) {
        IBIS11_Tell(11, "C_comp", gModel.szName);
    }
    if (!gModel.voltageRange.bSeen) {
        IBIS11_Tell(12, gModel.szName);
    }
    CheckRamp();
    CheckTables();
}

// A name that was too long to be kept has been reported; it is no name to go on with.
bool ReadName()
{
    const IBIS11_Items items = IBIS11_Split();
    const std::string_view name = items[0];
    const std::string_view keyword = IBIS11_KeywordName(IBIS11_MODEL);
    if (items.iCount == 0) {
        IBIS11_Tell(20, keyword, "name");
        return false;
    }
    if (!IBIS11_CheckCount(true, items.iCount, 1, 1, keyword) || name.empty() ||
        !IBIS11_CheckLength(name, IBIS11_NAME_LIMIT, "Model Name")) {
        return false;
    }
    if (!IBIS11_CheckReserved(name, keyword)) {
        return false;
    }
    if (IBIS11_HasModel(name)) {
        IBIS11_Tell(56, name);
        return false;
    }
    CMN_CopyText(gModel.szName, name);
    return true;
}

}  // namespace

void IBIS11_ResetModels()
{
    gaszModelNames.clear();
}

bool IBIS11_ReadModel()
{
    gModel = {};
    for (Table& table : gaTables) {
        table.bSeen = false;
        table.uiCount = 0;
    }
    if (!ReadName()) {
        return false;
    }
    while (IBIS11_NextDataLine()) {
        ReadSubparameter();
    }
    IBIS11_Kind kind = IBIS11_DATA;
    while (IBIS11_NextLine(kind)) {
        if (!ReadKeyword(kind)) {
            IBIS11_PutBack();
            break;
        }
    }
    CheckModel();
    gaszModelNames.add(gModel.szName);
    return true;
}

bool IBIS11_HasModel(std::string_view name)
{
    return gaszModelNames.contains(name);
}

std::size_t IBIS11_ModelCount()
{
    return gaszModelNames.size();
}
