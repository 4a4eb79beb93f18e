#include "ibis/interface/talibis_filter.h"

#include "ibis/source/nuibis_algmod.h"
#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_msel.h"

#include <algorithm>

bool hasAlgorithmicModel(const nuibis_mdl& model)
{
    return model.pAlgorithmicModel != nullptr && model.pAlgorithmicModel->pFirst != nullptr;
}

TalIbisFilter::TalIbisFilter(const TalIbis& file, const char* symbol)
    : mFile(file), mName(symbol == nullptr ? "Typ" : symbol), mSymbol(mName),
      mIsOfType([this](const char* model) { return mFile.isModelType(model, mSymbol); })
{
}

bool TalIbisFilter::isInvalid(TalIbisQueryData& record) const
{
    if (mSymbol.isInvalid()) {
        record.setFormatedError(QueryError, "Model type `%s' is an invalid type", mName);
    }
    return mSymbol.isInvalid();
}

bool TalIbisFilter::accepts(const char* name)
{
    return !mSymbol.isSelectiveModelType() || mIsOfType(name);
}

// Types of models and selectors ---------------------------------------------------------------------------

nuibis_model_type TalIbis::getModelType(const nuibis_mdl* model)
{
    return model == nullptr ? MODEL_UNSEEN : model->eModelType;
}

nuibis_model_type TalIbis::getModelType(const char* name) const
{
    if (const nuibis_mdl* const model = findModel(name); model != nullptr) {
        return model->eModelType;
    }
    const msel* const selector = findModelSelector(name);
    for (const mselmodel* entry = selector == nullptr ? nullptr : selector->pModels; entry != nullptr;
         entry = entry->pNext) {
        if (const nuibis_mdl* const model = findModel(entry->szName); model != nullptr) {
            return model->eModelType;
        }
    }
    return MODEL_NO_TYPE;
}

bool TalIbis::isModelType(const char* name, nuibis_model_type type, bool selective) const
{
    if (const nuibis_mdl* const model = findModel(name); model != nullptr) {
        return model->eModelType == type;
    }
    const msel* const selector = findModelSelector(name);
    for (const mselmodel* entry = selector == nullptr ? nullptr : selector->pModels; entry != nullptr;
         entry = entry->pNext) {
        const nuibis_mdl* const model = findModel(entry->szName);
        if (model != nullptr && model->eModelType == type && (!selective || hasAlgorithmicModel(*model))) {
            return true;
        }
    }
    return false;
}

bool TalIbis::isModelType(const char* name, nuibis_model_type type) const
{
    return isModelType(name, type, false);
}

bool TalIbis::isModelType(const char* name, const TalIbisSymbol& symbol) const
{
    return std::any_of(symbol.mModelTypes.begin(), symbol.mModelTypes.end(),
                       [&](nuibis_model_type type) { return isModelType(name, type, symbol.mSelective); });
}
