#include "ibis/interface/talibis_symbol.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

namespace
{

using Type = nuibis_model_type;

constexpr std::size_t MAX_TYPES = 20;

// A list of types, in the order in which a symbol gives them.
struct Types {
    std::array<Type, MAX_TYPES> types{};
    std::size_t count = 0;

    constexpr Types() = default;
    constexpr Types(std::initializer_list<Type> list)
    {
        for (const Type type : list) {
            types[count++] = type;
        }
    }
    constexpr std::span<const Type> span() const { return {types.data(), count}; }
};

// The types from `first` to `last` but for terminators, which have no silicon of a driver.
constexpr Types AllBetween(Type first, Type last)
{
    Types types;
    for (int type = first; type <= last; ++type) {
        if (type != MODEL_TERMINATOR) {
            types.types[types.count++] = static_cast<Type>(type);
        }
    }
    return types;
}

enum Flags : unsigned {
    PLAIN = 0,
    DIFFERENTIAL = 1,
    SELECTIVE = 2,
    SERIES = 4,
};

struct Symbol {
    std::string_view sName;
    Types types;
    unsigned uiFlags = PLAIN;
};

constexpr Types SINK{MODEL_OPEN_SINK, MODEL_OPEN_DRAIN};
constexpr Types IO_SINK{MODEL_IO_OPEN_SINK, MODEL_IO_OPEN_DRAIN};
constexpr Types RECEIVER{MODEL_INPUT, MODEL_TERMINATOR};
constexpr Types TRANSMITTER = AllBetween(MODEL_OUTPUT, MODEL_INPUT_DIFF);

// The receivers of crosstalk have lacked I/O since the first symbol library, and name the open source type
// twice; schematics rely on what they list.
constexpr Types CROSSTALK_RECEIVER{MODEL_INPUT,          MODEL_TERMINATOR,    MODEL_INPUT_ECL,
                                   MODEL_IO_OPEN_SOURCE, MODEL_IO_ECL,        MODEL_IO_OPEN_SINK,
                                   MODEL_IO_OPEN_DRAIN,  MODEL_IO_OPEN_SOURCE};
constexpr Types SERIES_RECEIVER{
    MODEL_INPUT,        MODEL_TERMINATOR,    MODEL_INPUT_ECL,      MODEL_IO,        MODEL_IO_ECL,
    MODEL_IO_OPEN_SINK, MODEL_IO_OPEN_DRAIN, MODEL_IO_OPEN_SOURCE, MODEL_INPUT_DIFF};

constexpr auto SYMBOLS = std::to_array<Symbol>({
    {"IBIS", {}},
    {"", {}},
    {"IBIS_Pkg", {}},
    {"IBIS_IO", {MODEL_IO}},
    {"IBIS_I", {MODEL_INPUT}},
    {"IBIS_O", {MODEL_OUTPUT}},
    {"IBIS_IO_OPENSINK", IO_SINK},
    {"IBIS_IO_OPENSOURCE", {MODEL_IO_OPEN_SOURCE}},
    {"IBIS_T", {MODEL_TERMINATOR}},
    {"IBIS_OPENSINK", SINK},
    {"IBIS_OPENSOURCE", {MODEL_OPEN_SOURCE}},
    {"IBIS_3S", {MODEL_3STATE}},
    {"IBIS_DIO", {MODEL_IO}, DIFFERENTIAL},
    {"IBIS_DI", {MODEL_INPUT}, DIFFERENTIAL},
    {"IBIS_DO", {MODEL_OUTPUT}, DIFFERENTIAL},
    {"IBIS_DIO_OPENSINK", IO_SINK, DIFFERENTIAL},
    {"IBIS_DIO_OPENSOURCE", {MODEL_IO_OPEN_SOURCE}, DIFFERENTIAL},
    {"IBIS_DT", {MODEL_TERMINATOR}, DIFFERENTIAL},
    {"IBIS_DOPENSINK", SINK, DIFFERENTIAL},
    {"IBIS_DOPENSOURCE", {MODEL_OPEN_SOURCE}, DIFFERENTIAL},
    {"IBIS_D3S", {MODEL_3STATE}, DIFFERENTIAL},
    {"IBIS_I_ECL", {MODEL_INPUT_ECL}},
    {"IBIS_O_ECL", {MODEL_OUTPUT_ECL}},
    {"IBIS_IO_ECL", {MODEL_IO_ECL}},
    {"IBIS_3S_ECL", {MODEL_3STATE_ECL}},
    {"IBIS_DI_ECL", {MODEL_INPUT_ECL}, DIFFERENTIAL},
    {"IBIS_DO_ECL", {MODEL_OUTPUT_ECL}, DIFFERENTIAL},
    {"IBIS_DIO_ECL", {MODEL_IO_ECL}, DIFFERENTIAL},
    {"IBIS_D3S_ECL", {MODEL_3STATE_ECL}, DIFFERENTIAL},
    {"IBIS_Tx_AMI", TRANSMITTER, DIFFERENTIAL | SELECTIVE},
    {"IBIS_XtlkTx_AMI", TRANSMITTER, DIFFERENTIAL | SELECTIVE},
    {"IBIS_Rx_AMI", RECEIVER, DIFFERENTIAL | SELECTIVE},
    {"IBIS_XtlkRx_AMI", CROSSTALK_RECEIVER, DIFFERENTIAL},
    {"IBIS_S_I", SERIES_RECEIVER, SERIES},
    {"IBIS_S_O", AllBetween(MODEL_OUTPUT, MODEL_3STATE_DIFF), SERIES},
});
static_assert(SYMBOLS.size() == TalIbisSymbol::mNumSupportedSymbolType);

}  // namespace

TalIbisSymbol::TalIbisSymbol(const char* name)
{
    const auto* const symbol = name == nullptr
                                   ? SYMBOLS.end()
                                   : std::find_if(SYMBOLS.begin(), SYMBOLS.end(),
                                                  [name](const Symbol& s) { return s.sName == name; });
    if (symbol == SYMBOLS.end()) {
        mModelTypes = {MODEL_UNSEEN};
        return;
    }
    const auto types = symbol->types.span();
    mModelTypes.assign(types.begin(), types.end());
    mDifferential = (symbol->uiFlags & DIFFERENTIAL) != 0;
    mSelective = (symbol->uiFlags & SELECTIVE) != 0;
    mSeries = (symbol->uiFlags & SERIES) != 0;
}
