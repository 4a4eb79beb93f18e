#include "ibis/source/nuibis_extblock.h"

#include "ibis/source/nuibis_algmod.h"
#include "ibis/source/nuibis_field.h"
#include "ibis/source/nuibis_list.h"

#include <algorithm>
#include <array>

bool gbPortTypeAllowed = false;

namespace
{

constexpr int LINE_TOKENS = 30;  // items of a line that are kept
constexpr std::string_view GROUND = "A_gnd";

// Lookups in the block that is being read; EXT_Free forgets them.
struct BlockIndex {
    LIST_Index<EXTNAME, &EXTNAME::pszName> ports;
    LIST_Index<EXTNAME, &EXTNAME::pszName> digitalPorts;
    LIST_Index<EXTNAME, &EXTNAME::pszName> converterParameters;
    std::array<LIST_Index<EXTA2D, &EXTA2D::pszDigitalPort>, 3> receivers;  // by corner

    void reset()
    {
        ports.reset();
        digitalPorts.reset();
        converterParameters.reset();
        for (auto& corner : receivers) {
            corner.reset();
        }
    }
};

BlockIndex gIndex;
LIST_Tail<EXTNAME> gParameters;
LIST_Tail<EXTNAME> gConverterParameters;

// Who owns the block that a line belongs to.
struct Context {
    EXTBLOCK& block;
    const nuibis_mdl* pModel;  // null within an [External Circuit]

    bool isCircuit() const { return pModel == nullptr; }
};

template <std::size_t N> bool Contains(const std::array<std::string_view, N>& names, std::string_view name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

// A value without data leaves the name bare.
EXTNAME* NewName(std::string_view name, std::string_view value = {})
{
    EXTNAME* record = nullptr;
    if (!CMN_Alloc(record)) {
        return nullptr;
    }
    record->pszName = CMN_StrDup(name);
    record->pszValue = value.data() == nullptr ? nullptr : CMN_StrDup(value);
    if (record->pszName == nullptr) {
        CMN_Release(record->pszValue);
        CMN_FreeAndClear(record);
    }
    return record;
}

template <class T> void Push(T*& list, T* record)
{
    record->pNext = list;
    list = record;
}

// Language ------------------------------------------------------------------------------------------------

struct LanguageWord {
    std::string_view sName;
    EXT_Language eLanguage;
};

constexpr std::array<LanguageWord, 3> LANGUAGES{{
    {"SPICE", EXT_SPICE},
    {"VHDL-AMS", EXT_VHDL_AMS},
    {"Verilog-AMS", EXT_VERILOG_AMS},
}};

void ReadLanguage(const Context& context, const CMN_TokenList& tokens, std::string_view)
{
    EXTBLOCK& block = context.block;
    if (block.eLanguage != EXT_NO_LANGUAGE) {
        MSG_ErrorLine(135);
        return;
    }
    if (const LanguageWord* const word = FIELD_FindByName(LANGUAGES, tokens[1]); word != nullptr) {
        block.eLanguage = word->eLanguage;
        return;
    }
    MSG_ErrorLine(136, "Language", tokens[1],
                  "NUIBIS_SPICE, NUIBIS_VHDL-AMS, NUIBIS_VHDL-A(MS), Verilog-AMS, Verilog-A(MS)");
}

// Corner --------------------------------------------------------------------------------------------------

struct Corner {
    std::string_view sName;
    EXTCORNER* EXTBLOCK::*ppField;
    MSG_Plain repeated;
};

constexpr std::array<Corner, 3> CORNERS{{
    {"Typ", &EXTBLOCK::pTyp, 139},
    {"Min", &EXTBLOCK::pMin, 141},
    {"Max", &EXTBLOCK::pMax, 140},
}};

std::size_t IndexOf(const Corner& corner)
{
    return static_cast<std::size_t>(&corner - CORNERS.data());
}

void NewCorner(EXTCORNER*& corner, std::string_view file, std::string_view circuit)
{
    if (CMN_Alloc(corner)) {
        corner->pszFile = file.data() == nullptr ? nullptr : CMN_StrDup(file);
        corner->pszCircuit = circuit.data() == nullptr ? nullptr : CMN_StrDup(circuit);
    }
}

// Unlike the other lines, an equals sign is a character as any other here: it may stand in a path.
void ReadCorner(const Context& context, const CMN_TokenList&, std::string_view text)
{
    static constexpr std::string_view word = "Corner";
    const CMN_TokenList items = CMN_Split(text.substr(word.size()), 3);
    if (items.iStored < 3) {
        MSG_ErrorLine(137, items.iStored, word, 3);
        return;
    }
    if (context.block.eLanguage == EXT_NO_LANGUAGE) {
        MSG_ErrorLine(138);
    }
    const Corner* const corner = FIELD_FindByName(CORNERS, items[0]);
    if (corner == nullptr) {
        MSG_ErrorLine(136, word, items[0], "Typ,Min,Max");
        return;
    }
    EXTCORNER*& field = context.block.*corner->ppField;
    if (field != nullptr) {
        MSG_ErrorLine(corner->repeated);
        return;
    }
    NewCorner(field, items[1], items[2]);
}

// Ports ---------------------------------------------------------------------------------------------------

// A switch has no drive, enable or receive state beside it.
void AddPort(EXTNAME*& list, LIST_Index<EXTNAME, &EXTNAME::pszName>& index, std::string_view name)
{
    static constexpr std::string_view theSwitch = "D_switch";
    EXTNAME* const record = NewName(name);
    if (record == nullptr) {
        return;
    }
    Push(list, record);
    if (!EXT_IsDigitalPort(name)) {
        return;
    }
    const auto has = [&](std::string_view other) { return index.find(list, other) != nullptr; };
    if (name == theSwitch) {
        if (has("D_drive") || has("D_receive") || has("D_enable")) {
            MSG_ErrorLine(104);
        }
    } else if (has(theSwitch)) {
        MSG_ErrorLine(105, name);
    }
}

void ReadPorts(const Context& context, const CMN_TokenList& tokens, std::string_view)
{
    for (int i = 1; i < tokens.iStored; ++i) {
        if (EXT_IsSpiceLike(context.block.eLanguage) && EXT_IsDigitalPort(tokens[i])) {
            MSG_ErrorLine(103, tokens[i]);
        } else {
            AddPort(context.block.pPorts, gIndex.ports, tokens[i]);
        }
    }
}

// Converters ----------------------------------------------------------------------------------------------

// The rules in which D_to_A and A_to_D lines differ.
struct Converter {
    std::string_view sWord;
    std::string_view sLabel;  // of the port check
    int iCorner;              // place of the corner among the items
    int iMost;                // most items of a line
    MSG_Plain noLanguage;
    MSG_Plain wrongLanguage;
    MSG_Plain noTypCorner;
    std::array<std::string_view, 3> aModelPorts;  // digital ports that a model's converter may have
    MSG_Text1 wrongModelPort;
    std::array<std::string_view, 3> aForbidden;  // digital ports that a circuit's converter must not have
    MSG_Text1 forbiddenPort;
};

constexpr Converter D_TO_A{"D_to_A", "NUIBIS_D2A",  8,   10,
                           144,      145,           146, {"D_drive", "D_enable", "D_switch"},
                           239,      {"D_receive"}, 239};
constexpr Converter A_TO_D{
    "A_to_D", "NUIBIS_A2D", 6, 7, 154, 256, 155, {"D_receive"}, 240, {"D_switch", "D_drive", "D_enable"},
    241};

const Corner* FindConverterCorner(const Converter& kind, EXTBLOCK& block, const CMN_TokenList& tokens)
{
    const std::string_view word = tokens.iFound > kind.iCorner ? tokens[kind.iCorner] : "Typ";
    const Corner* const corner = FIELD_FindByName(CORNERS, word);
    if (corner == nullptr) {
        MSG_ErrorLine(149, "Corner", word);
        return nullptr;
    }
    if (block.*corner->ppField != nullptr) {
        return corner;
    }
    if (corner->ppField == &EXTBLOCK::pTyp) {
        MSG_ErrorLine(kind.noTypCorner);
        return nullptr;
    }
    const EXTCORNER* const typ = block.pTyp;
    NewCorner(block.*corner->ppField,
              typ == nullptr || typ->pszFile == nullptr ? std::string_view() : typ->pszFile,
              typ == nullptr || typ->pszCircuit == nullptr ? std::string_view() : typ->pszCircuit);
    return block.*corner->ppField == nullptr ? nullptr : corner;
}

// The corner of a converter line, or null with a message.
const Corner* OpenConverter(const Converter& kind, EXTBLOCK& block, const CMN_TokenList& tokens)
{
    if (block.eLanguage == EXT_NO_LANGUAGE) {
        MSG_ErrorLine(kind.noLanguage);
        return nullptr;
    }
    if (!EXT_IsSpiceLike(block.eLanguage)) {
        MSG_ErrorLine(kind.wrongLanguage);
        return nullptr;
    }
    if (tokens.iFound < kind.iCorner || tokens.iFound > kind.iMost) {
        MSG_ErrorLine(137, tokens.iFound, kind.sWord, kind.iCorner + 1);
        return nullptr;
    }
    return FindConverterCorner(kind, block, tokens);
}

bool HasPort(EXTBLOCK& block, std::string_view name)
{
    return gIndex.ports.find(block.pPorts, name) != nullptr;
}

bool CheckAnalogPort(EXTBLOCK& block, std::string_view name)
{
    if (name == GROUND || HasPort(block, name)) {
        return true;
    }
    MSG_ErrorLine(153, name);
    return false;
}

void CheckDigitalPort(const Converter& kind, const Context& context, const CMN_TokenList& tokens)
{
    const std::string_view digital = tokens[1];
    if (!context.isCircuit()) {
        if (!Contains(kind.aModelPorts, digital)) {
            MSG_ErrorLine(kind.wrongModelPort, digital);
        }
        return;
    }
    if (Contains(kind.aForbidden, digital)) {
        MSG_ErrorLine(kind.forbiddenPort, digital);
    }
    if (EXT_IsAnalogPort(digital)) {
        MSG_ErrorLine(237, digital);
    }
    for (const std::string_view port : {tokens[2], tokens[3]}) {
        if (EXT_IsDigitalPort(port)) {
            MSG_ErrorLine(106, port);
        }
    }
    AddPort(context.block.pUserDigitalPorts, gIndex.digitalPorts, digital);
}

void CheckConverterPort(const Converter& kind, const Context& context, std::string_view port)
{
    if (EXT_IsDigitalPort(port)) {
        MSG_ErrorLine(106, port);
    } else if (!context.isCircuit() && !HasPort(context.block, port) && !EXT_IsAnalogPort(port)) {
        MSG_ErrorLine(236, port, kind.sLabel);
    }
}

template <class T> bool SetPorts(T& converter, const CMN_TokenList& tokens)
{
    converter.iLine = static_cast<std::int32_t>(PARSE_GetLineNumber());
    converter.pszDigitalPort = CMN_StrDup(tokens[1]);
    converter.pszPort1 = CMN_StrDup(tokens[2]);
    converter.pszPort2 = CMN_StrDup(tokens[3]);
    return converter.pszDigitalPort != nullptr && converter.pszPort1 != nullptr &&
           converter.pszPort2 != nullptr;
}

void FreeConverter(EXTD2A& converter)
{
    CMN_Release(converter.pszDigitalPort);
    CMN_Release(converter.pszPort1);
    CMN_Release(converter.pszPort2);
    CMN_Release(converter.pszPolarity);
}

void FreeConverter(EXTA2D& converter)
{
    CMN_Release(converter.pszDigitalPort);
    CMN_Release(converter.pszPort1);
    CMN_Release(converter.pszPort2);
}

// A new converter with its ports at the front of a corner's list; null, with a message, if the line is
// dropped.
template <class T>
T* AddConverter(const Converter& kind, const Context& context, const CMN_TokenList& tokens, T*& list)
{
    if (!CheckAnalogPort(context.block, tokens[2]) || !CheckAnalogPort(context.block, tokens[3])) {
        return nullptr;
    }
    T* converter = nullptr;
    if (!CMN_Alloc(converter)) {
        return nullptr;
    }
    if (!SetPorts(*converter, tokens)) {
        FreeConverter(*converter);
        CMN_Free(converter);
        return nullptr;
    }
    Push(list, converter);
    CheckDigitalPort(kind, context, tokens);
    return converter;
}

// A level or a time of a converter, and the text that it was read from.
struct Value {
    double dValue = EXT_NO_VALUE;
    std::string_view sText;

    bool isSet() const { return dValue != EXT_NO_VALUE; }
};

// A number, or the name of a converter parameter that has one.
Value ReadValue(EXTBLOCK& block, std::string_view text, std::string_view label)
{
    Value value{EXT_NO_VALUE, text};
    if (CMN_GetValue(text, &value.dValue) != CMN_INVALID) {
        return value;
    }
    value.dValue = EXT_NO_VALUE;
    const EXTNAME* const parameter = gIndex.converterParameters.find(block.pConverterParameters, text);
    if (parameter == nullptr) {
        MSG_ErrorLine(149, label, text);
    } else if (parameter->pszValue != nullptr) {
        value.sText = parameter->pszValue;
        if (CMN_GetValue(value.sText, &value.dValue) == CMN_INVALID) {
            value.dValue = EXT_NO_VALUE;
        }
    }
    return value;
}

void CheckTime(const Value& time, MSG_Text1 notPositive)
{
    if (time.isSet() && !(time.dValue > 0.0)) {
        MSG_ErrorLine(notPositive, time.sText);
    }
}

void ReadPolarity(EXTD2A& converter, std::string_view word)
{
    if (word.data() == nullptr) {
        return;
    }
    if (word != "Inverting" && word != "Non-Inverting") {
        MSG_ErrorLine(268, word);
    } else if (converter.pszDigitalPort != std::string_view("D_drive")) {
        MSG_ErrorLine(269);
    } else {
        converter.pszPolarity = CMN_StrDup(word);
    }
}

void ReadD2A(const Context& context, const CMN_TokenList& tokens, std::string_view)
{
    EXTBLOCK& block = context.block;
    const Corner* const corner = OpenConverter(D_TO_A, block, tokens);
    if (corner == nullptr) {
        return;
    }
    EXTD2A* const converter = AddConverter(D_TO_A, context, tokens, (block.*corner->ppField)->pD2A);
    if (converter == nullptr) {
        return;
    }
    const Value low = ReadValue(block, tokens[4], "vlow");
    const Value high = ReadValue(block, tokens[5], "vhigh");
    const Value rise = ReadValue(block, tokens[6], "trise");
    const Value fall = ReadValue(block, tokens[7], "tfall");
    converter->dVlow = low.dValue;
    converter->dVhigh = high.dValue;
    converter->dTrise = rise.dValue;
    converter->dTfall = fall.dValue;
    CheckTime(rise, 150);
    CheckTime(fall, 151);
    if (low.isSet() && high.isSet() && !(low.dValue < high.dValue)) {
        MSG_ErrorLine(152, low.sText, high.sText);
    }
    ReadPolarity(*converter, tokens[9]);
    CheckConverterPort(D_TO_A, context, tokens[2]);
    CheckConverterPort(D_TO_A, context, tokens[3]);
}

void ReadA2D(const Context& context, const CMN_TokenList& tokens, std::string_view)
{
    EXTBLOCK& block = context.block;
    const Corner* const corner = OpenConverter(A_TO_D, block, tokens);
    if (corner == nullptr) {
        return;
    }
    EXTA2D*& list = (block.*corner->ppField)->pA2D;
    const bool repeated = gIndex.receivers[IndexOf(*corner)].find(list, tokens[1]) != nullptr;
    EXTA2D* const converter = AddConverter(A_TO_D, context, tokens, list);
    if (converter == nullptr) {
        return;
    }
    const Value low = ReadValue(block, tokens[4], "vlow");
    const Value high = ReadValue(block, tokens[5], "vhigh");
    converter->dVlow = low.dValue;
    converter->dVhigh = high.dValue;
    if (low.isSet() && high.isSet() && low.dValue > high.dValue) {
        MSG_ErrorLine(242, low.sText, high.sText);
    }
    CheckConverterPort(A_TO_D, context, tokens[2]);
    CheckConverterPort(A_TO_D, context, tokens[3]);
    if (repeated) {
        MSG_ErrorLine(133, tokens[1]);
    }
}

// Parameters and Converter_Parameters ---------------------------------------------------------------------

// Cuts "a(b(c))" into its names. False if the parentheses do not close in this way.
bool ParseReference(std::string_view text, CMN_Vector<std::string_view>& names)
{
    const std::size_t closing = std::min(text.find(')'), text.size());
    std::string_view rest = text.substr(0, closing);
    const std::size_t closes = text.size() - closing;
    for (;;) {
        const std::size_t paren = rest.find('(');
        names.push_back(rest.substr(0, paren));
        if (paren == std::string_view::npos) {
            break;
        }
        rest.remove_prefix(paren + 1);
    }
    return closes == names.size() - 1 && text.find_first_not_of(')', closing) == std::string_view::npos;
}

// The value of the parameter that an assignment refers to; false with a message if there is none.
bool Resolve(const Context& context, std::string_view name, std::string_view reference,
             std::string_view label, std::string_view* value)
try {
    CMN_Vector<std::string_view> names;
    if (!ParseReference(reference, names)) {
        MSG_ErrorLine(267, name, reference);
        return false;
    }
    AMI_PARAMINFO info;
    if (!ALGMOD_ResolveParameter(names, name, label, context.pModel, &info)) {
        return false;
    }
    *value = info.pszValue == nullptr ? std::string_view() : info.pszValue;
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

// The subparameters that assign values.
struct Assignment {
    std::string_view sLabel;    // of a reference
    std::string_view sKeyword;  // of a line with too much on it
    EXTNAME* EXTBLOCK::*ppList;
    LIST_Tail<EXTNAME>& tail;
    bool bNumeric;
};

const Assignment PARAMETERS{"Parameter", "Parameters", &EXTBLOCK::pParameters, gParameters, false};
const Assignment CONVERTER_PARAMETERS{"Converter Parameter", "Converter Parameters",
                                      &EXTBLOCK::pConverterParameters, gConverterParameters, true};

void AddParameter(const Assignment& kind, EXTBLOCK& block, std::string_view name, std::string_view value)
{
    if (EXTNAME* const record = NewName(name, value); record != nullptr) {
        kind.tail.append(block.*kind.ppList, record);
    }
}

bool IsNumeric(std::string_view text)
{
    const AMI_ValueKind kind = AMI_ClassifyValue(text);
    return kind == AMI_KIND_INTEGER || kind == AMI_KIND_REAL;
}

void Assign(const Assignment& kind, const Context& context, std::string_view name, std::string_view text)
{
    std::string_view value = text;
    if (AMI_ClassifyValue(text) == AMI_KIND_WORD && !Resolve(context, name, text, kind.sLabel, &value)) {
        return;
    }
    if (kind.bNumeric && !IsNumeric(value)) {
        MSG_ErrorLine(266, name);
    } else {
        AddParameter(kind, context.block, name, value);
    }
}

// "name = value". False if the line has another form than that or one that goes on behind the value.
bool ReadAssignment(const Assignment& kind, const Context& context, const CMN_TokenList& tokens)
{
    if (tokens.iFound < 4 || tokens[2] != "=") {
        return false;
    }
    if (tokens.iFound == 4) {
        Assign(kind, context, tokens[1], tokens[3]);
    } else {
        MSG_ErrorLine(264, kind.sKeyword);
    }
    return true;
}

void ReadParameters(const Context& context, const CMN_TokenList& tokens, std::string_view text)
{
    EXTBLOCK& block = context.block;
    if (block.eLanguage == EXT_SPICE && block.pParameters == nullptr) {
        MSG_ErrorLine(272);
    }
    if (ReadAssignment(PARAMETERS, context, tokens)) {
        return;
    }
    if (text.find('=') != std::string_view::npos) {
        MSG_ErrorLine(265, PARAMETERS.sKeyword);
        return;
    }
    for (int i = 1; i < tokens.iStored; ++i) {
        AddParameter(PARAMETERS, block, tokens[i], {});
    }
}

void ReadConverterParameters(const Context& context, const CMN_TokenList& tokens, std::string_view)
{
    if (!ReadAssignment(CONVERTER_PARAMETERS, context, tokens)) {
        MSG_ErrorLine(271);
    }
}

// Port_type -----------------------------------------------------------------------------------------------

struct ClassWord {
    std::string_view sName;
    std::uint32_t uiClass;
};

constexpr std::array<ClassWord, 6> CLASS_WORDS{{
    {"DIGITAL_BI", 24},
    {"NUIBIS_DIGITAL_DRIVER", 8},
    {"NUIBIS_DIGITAL_RECEIVER", 16},
    {"NUIBIS_ANALOG_DRIVER", 512},
    {"ANALOG_BI", 4608},
    {"NUIBIS_ANALOG_RECEIVER", 4096},
}};
constexpr std::uint32_t UNKNOWN_CLASS = 2048;

void ReadPortType(const Context& context, const CMN_TokenList& tokens, std::string_view)
{
    if (!gbPortTypeAllowed) {
        MSG_ErrorLine(143);
        return;
    }
    if (tokens.iFound != 3) {
        MSG_ErrorLine(142);
        return;
    }
    EXTPORTTYPE* row = nullptr;
    if (!CMN_Alloc(row)) {
        return;
    }
    const ClassWord* const word = FIELD_FindByName(CLASS_WORDS, tokens[2]);
    row->uiClass = word == nullptr ? UNKNOWN_CLASS : word->uiClass;
    row->pszName = CMN_StrDup(tokens[1]);
    Push(context.block.pPortTypes, row);
}

// Lines ---------------------------------------------------------------------------------------------------

struct Subparameter {
    std::string_view sName;
    void (*read)(const Context& context, const CMN_TokenList& tokens, std::string_view text);
};

constexpr std::array<Subparameter, 8> SUBPARAMETERS{{
    {"Language", ReadLanguage},
    {"Corner", ReadCorner},
    {"Ports", ReadPorts},
    {"D_to_A", ReadD2A},
    {"A_to_D", ReadA2D},
    {"Parameters", ReadParameters},
    {"Port_type", ReadPortType},
    {"Converter_Parameters", ReadConverterParameters},
}};

void FreeName(EXTNAME& name)
{
    CMN_Release(name.pszName);
    CMN_Release(name.pszValue);
}

void FreeCorner(EXTCORNER* corner)
{
    if (corner == nullptr) {
        return;
    }
    CMN_FreeList(corner->pD2A, [](EXTD2A& converter) { FreeConverter(converter); });
    CMN_FreeList(corner->pA2D, [](EXTA2D& converter) { FreeConverter(converter); });
    CMN_Release(corner->pszFile);
    CMN_Release(corner->pszCircuit);
    CMN_Free(corner);
}

}  // namespace

bool EXT_IsAnalogPort(std::string_view name)
{
    return Contains(EXT_ANALOG_PORTS, name);
}

bool EXT_IsDigitalPort(std::string_view name)
{
    return Contains(EXT_DIGITAL_PORTS, name);
}

EXTBLOCK* EXT_New()
{
    EXTBLOCK* block = nullptr;
    if (!CMN_Alloc(block)) {
        MSG_Bug(100, __FILE_NAME__, __LINE__);
    }
    return block;
}

void EXT_Line(std::string_view text, EXTBLOCK& block, const nuibis_mdl* model)
{
    const CMN_TokenList tokens = CMN_SplitDelim(text, LINE_TOKENS, '=');
    const Subparameter* const parameter = FIELD_FindByName(SUBPARAMETERS, tokens[0]);
    if (parameter == nullptr) {
        MSG_ErrorLine(158, "[External Model] subparameter", tokens[0]);
        return;
    }
    parameter->read(Context{block, model}, tokens, text);
}

void EXT_Free(EXTBLOCK* block)
{
    if (block == nullptr) {
        return;
    }
    gIndex.reset();
    CMN_FreeList(block->pPortTypes, [](EXTPORTTYPE& row) { CMN_Release(row.pszName); });
    for (EXTNAME** const list :
         {&block->pPorts, &block->pConverterParameters, &block->pParameters, &block->pUserDigitalPorts}) {
        CMN_FreeList(*list, FreeName);
    }
    for (const Corner& corner : CORNERS) {
        FreeCorner(block->*corner.ppField);
    }
    CMN_Free(block);
}
