// Which models and pins of a file a query lists for a schematic symbol.

#pragma once

#include "ibis/interface/talibis.h"

#include <functional>
#include <string_view>
#include <unordered_map>
#include <utility>

/// Judges each name once: the pins of a component share their models, and a selector among them may be long.
template <class Judge> class OncePerName
{
  public:
    explicit OncePerName(Judge judge) : mJudge(std::move(judge)) {}
    bool operator()(const char* name)
    {
        const auto [verdict, isNew] = mVerdicts.try_emplace(name, false);
        if (isNew) {
            verdict->second = mJudge(name);
        }
        return verdict->second;
    }

  private:
    Judge mJudge;
    std::unordered_map<std::string_view, bool> mVerdicts;
};

/// The models of a file that fit a symbol. Serves one query.
class TalIbisFilter
{
  public:
    /// A null symbol is none.
    TalIbisFilter(const TalIbis& file, const char* symbol);
    TalIbisFilter(const TalIbisFilter&) = delete;
    TalIbisFilter& operator=(const TalIbisFilter&) = delete;
    const TalIbisSymbol& symbol() const { return mSymbol; }
    /// True, with an error in the record, for a name that is no symbol.
    bool isInvalid(TalIbisQueryData& record) const;
    /// The symbol accepts every type, or the type of this model or of a model of this selector.
    bool accepts(const char* name);

  private:
    const TalIbis& mFile;
    const char* mName;
    TalIbisSymbol mSymbol;
    OncePerName<std::function<bool(const char*)>> mIsOfType;
};

/// Whether the model has a line of [Algorithmic Model].
bool hasAlgorithmicModel(const nuibis_mdl& model);
