#include "ibis/source/nuibis_circuit.h"

#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_list.h"

#include <array>

namespace
{

// The circuit that is being read, null outside of one; CIRCUIT_Init and CIRCUIT_FreeList reset it.
EXTCIRCUIT* gpCurCircuit = nullptr;
// Lookups in the lists that are being read; the free functions forget them.
LIST_Index<EXTCIRCUIT, &EXTCIRCUIT::szName> gCircuits;
LIST_Index<CCPORTMAP, &CCPORTMAP::szPort> gPortMap;

// Lines of [Circuit Call] -----------------------------------------------------------------------------------

template <std::size_t N> bool Fits(const char (&)[N], std::string_view text)
{
    return text.size() < N;
}

// A name that is too long for any pin is told, and cut to what the record holds.
void AddPin(char (&field)[6], std::string_view pin)
{
    if (!Fits(field, pin)) {
        MSG_ErrorLine(1806, pin);
    }
    CMN_CopyText(field, pin);
}

void ReadSignalPin(CCALL& call, const CMN_TokenList& tokens)
{
    if (tokens.iStored < 2) {
        MSG_ErrorLine(1805, tokens[0]);
        return;
    }
    if (call.szPin1[0] != '\0') {
        MSG_ErrorLine(1800, tokens[1]);
    } else {
        AddPin(call.szPin1, tokens[1]);
    }
    if (tokens.iStored > 2) {
        MSG_ErrorLine(1806, tokens[2]);
    }
}

void ReadPinPair(CCALL& call, const CMN_TokenList& tokens)
{
    for (const int i : {1, 2}) {
        if (i >= tokens.iStored) {
            MSG_ErrorLine(1805, tokens[0]);
        } else if (call.szPin1[0] == '\0') {
            AddPin(call.szPin1, tokens[i]);
        } else if (call.szPin2[0] == '\0') {
            AddPin(call.szPin2, tokens[i]);
        } else {
            MSG_ErrorLine(1800, tokens[i]);
        }
    }
    if (tokens.iStored > 3) {
        MSG_ErrorLine(1806, tokens[3]);
    }
}

void SetMapName(char (&field)[41], std::string_view name)
{
    if (!Fits(field, name)) {
        MSG_ErrorLine(1804, name);
    }
    CMN_CopyText(field, name);
}

void ReadPortMap(CCALL& call, const CMN_TokenList& tokens)
{
    if (tokens.iStored < 3) {
        MSG_ErrorLine(1807);
        return;
    }
    CCPORTMAP* row = nullptr;
    if (!CMN_Alloc(row)) {
        MSG_Bug(1803, __FILE_NAME__, __LINE__);
        return;
    }
    SetMapName(row->szPort, tokens[1]);
    if (gPortMap.find(call.pPortMap, row->szPort) != nullptr) {
        MSG_ErrorLine(1801, row->szPort);
        CMN_Free(row);
        return;
    }
    SetMapName(row->szPad, tokens[2]);
    row->pNext = call.pPortMap;
    call.pPortMap = row;
}

struct CallLine {
    std::string_view sName;
    void (*read)(CCALL& call, const CMN_TokenList& tokens);
};

constexpr std::array<CallLine, 4> CALL_LINES{{
    {"Signal_pin", ReadSignalPin},
    {"Diff_signal_pins", ReadPinPair},
    {"Series_pins", ReadPinPair},
    {"Port_map", ReadPortMap},
}};

// [External Circuit] --------------------------------------------------------------------------------------

void EndCircuit()
{
    EXT_LeaveCircuit(*gpCurCircuit);
    gpCurCircuit = nullptr;
}

}  // namespace

void CIRCUIT_Init()
{
    gpCurCircuit = nullptr;
    ibis* root = nullptr;
    if (!IBIS_GetCurrent(&root)) {
        MSG_Bug(101);
        return;
    }
    EXTCIRCUIT* circuit = nullptr;
    if (!CMN_Alloc(circuit)) {
        MSG_Bug(100, __FILE_NAME__, __LINE__);
        return;
    }
    circuit->pBlock = EXT_New();
    if (circuit->pBlock == nullptr) {
        CMN_Free(circuit);
        return;
    }
    circuit->iLine = static_cast<std::int32_t>(PARSE_GetLineNumber());
    IBIS_Add<&ibis::pCircuits>(root, circuit);
    gpCurCircuit = circuit;
}

void CIRCUIT_Line(line_type lineType, nuibis_keyword code, std::string_view text)
{
    if (gpCurCircuit == nullptr) {
        if (lineType == LINE_KEYWORD) {
            MSG_ErrorLine(249);
        } else {
            MSG_ErrorLine(107);
        }
    } else if (code == KEY_EXTERNAL_CIRCUIT) {
        EXT_Line(text, *gpCurCircuit->pBlock, nullptr);
    } else if (lineType == LINE_KEYWORD) {
        EndCircuit();
    } else {
        MSG_BugLine(122, __FILE_NAME__, __LINE__);
    }
}

EXTCIRCUIT* CIRCUIT_Find(EXTCIRCUIT* list, std::string_view name)
{
    return gCircuits.find(list, name);
}

void CIRCUIT_FreeList(EXTCIRCUIT* list)
{
    gpCurCircuit = nullptr;
    gCircuits.reset();
    CMN_FreeList(list, [](EXTCIRCUIT& circuit) { EXT_Free(circuit.pBlock); });
}

void CCALL_Open(std::string_view text, CCALL*& calls)
{
    CCALL* call = nullptr;
    if (!CMN_Alloc(call)) {
        MSG_ErrorLine(550);
        return;
    }
    CMN_SetString(call->szCircuit, text, 40, "Circuit Call");
    call->iLine = static_cast<std::int32_t>(PARSE_GetLineNumber());
    call->pNext = calls;
    calls = call;
}

void CCALL_AddLine(std::string_view text, CCALL* calls)
{
    if (calls == nullptr) {
        return;
    }
    const CMN_TokenList tokens = CMN_Split(text, 4);
    for (const CallLine& line : CALL_LINES) {
        if (line.sName == tokens[0]) {
            line.read(*calls, tokens);
            return;
        }
    }
    MSG_ErrorLine(1804, tokens[0]);
}

void CCALL_FreeList(CCALL* list)
{
    gPortMap.reset();
    CMN_FreeList(list, [](CCALL& call) { CMN_FreeList(call.pPortMap); });
}
