// The symbols of the host's schematics: which model types a symbol accepts.

#pragma once

#include "ibis/source/nuibis_types.h"

#include <vector>

/// What a schematic symbol such as "IBIS_IO" (a bidirectional buffer) or "IBIS_Tx_AMI" (a differential
/// transmitter with an algorithmic model) stands for, made from its name. A list of pins or models for that
/// symbol holds only those that fit.
class TALIBIS_API TalIbisSymbol
{
  public:
    /// Number of symbols that have a name.
    static constexpr int mNumSupportedSymbolType = 35;

    /// The name is compared in exact case. A name that is no symbol, or null, accepts the one type
    /// `MODEL_UNSEEN`, which readers take for an invalid type. May throw `std::bad_alloc`.
    explicit TalIbisSymbol(const char* name);

    /// The symbol accepts some types only.
    bool isSelectiveModelType() const { return !mModelTypes.empty(); }
    /// The name is no symbol.
    bool isInvalid() const { return isSelectiveModelType() && mModelTypes.front() == MODEL_UNSEEN; }

    std::vector<nuibis_model_type> mModelTypes;  ///< accepted types; empty accepts every type
    bool mDifferential = false;                  ///< the pin must stand in [Diff Pin]
    bool mSelective = false;  ///< an entry of a selector counts only if its model has an [Algorithmic Model]
    bool mSeries = false;     ///< the pin must stand in [Series Pin Mapping]
};
