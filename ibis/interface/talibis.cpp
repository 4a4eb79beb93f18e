// The handle of a file, and its queries about components and pins.

#include "ibis/interface/talibis.h"

#include "ibis/interface/talibis_filter.h"
#include "ibis/interface/talibis_print.h"
#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_msel.h"
#include "ibis/source/nuibis_parse.h"
#include "ibis/source/nuibis_pin.h"
#include "ibis/source/nuibis_pinmpg.h"
#include "ibis/source/nuibis_pkg.h"
#include "platform/hostport.h"
#include "platform/internpool.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace
{

constexpr std::size_t VERSION_LINE_LIMIT = 120;

// The version text of a "[IBIS Ver]" line; empty for any other keyword.
std::string VersionText(std::string_view line)
{
    if (!CMN_EqualN(line, "[IBIS Ver]", 10) && !CMN_EqualN(line, "[IBIS_Ver]", 10)) {
        return {};
    }
    line.remove_prefix(line.find(']') + 1);
    line = line.substr(0, line.find(PARSE_GetCommentChar()));
    CMN_SkipSpace(line);
    while (!line.empty() && CMN_IsSpace(line.back())) {
        line.remove_suffix(1);
    }
    return std::string(line);
}

// The version text of the first keyword line.
std::string FindVersion(CMN_Stream& stream)
{
    std::string_view line;
    while (CMN_ReadLine(stream, VERSION_LINE_LIMIT, line)) {
        CMN_SkipSpace(line);
        if (line.starts_with('[')) {
            return VersionText(line);
        }
    }
    return {};
}

}  // namespace

TalIbis::TalIbis(const char* fileName, ibis_file_type type, ibis_ver version)
    : pszFileName(fileName == nullptr ? nullptr : InternPool::Private::singleton().insertC(fileName)),
      eFileType(type), eVersion(version)
{
    hst_stat_t info;
    if (fileName != nullptr && hst_stat(fileName, &info) == 0) {
        tTimeStamp = info.tModified;
    }
}

void TalIbis::setErrorContainer(const IbisErrorContainer& errors)
{
    pErrors = new (std::nothrow) IbisErrorContainer(errors);
}

// Lookups -------------------------------------------------------------------------------------------------

CMPNT* TalIbis::findComp(const char* name) const
{
    return name == nullptr || pIbis == nullptr ? nullptr : CMPNT_Find(pIbis->pComponents, name);
}

nuibis_mdl* TalIbis::findModel(const char* name) const
{
    return name == nullptr || pIbis == nullptr ? nullptr : MDL_Find(name, pIbis->pModels);
}

msel* TalIbis::findModelSelector(const char* name) const
{
    return name == nullptr || pIbis == nullptr ? nullptr : MSEL_Find(name, pIbis->pModelSelectors);
}

PIN* TalIbis::findPin(const CMPNT* component, const char* name) const
{
    return component == nullptr || name == nullptr ? nullptr : PIN_Find(component->pPins, name);
}

void TalIbis::missComponent(TalIbisQueryData& record, const char* component) const
{
    if (component != nullptr && pszFileName != nullptr) {
        record.setFormatedError(QueryError, "Component '%s' not found in the IBIS file '%s'", component,
                                pszFileName);
    }
}

CMPNT* TalIbis::findCompOrReport(const char* name, TalIbisQueryData& record) const
{
    CMPNT* const component = findComp(name);
    if (component == nullptr) {
        missComponent(record, name);
    }
    return component;
}

// Components and pins -------------------------------------------------------------------------------------

void TalIbis::getCompList(TalIbisListQueryData& list) const
{
    answerQuery(list, [&] {
        for (const CMPNT* component : inFileOrder(pIbis == nullptr ? nullptr : pIbis->pComponents)) {
            insertRow(list, component->szName);
        }
        if (list.size() == 0 && pszFileName != nullptr) {
            list.setFormatedError(QueryEmpty, "No component detected in the IBIS file '%s'", pszFileName);
        }
    });
}

void TalIbis::getCompListQt(std::vector<std::string>* names) const
try {
    names->clear();
    for (const CMPNT* component : inFileOrder(pIbis == nullptr ? nullptr : pIbis->pComponents)) {
        names->emplace_back(component->szName);
    }
} catch (const std::bad_alloc&) {
    names->clear();
}

void TalIbis::getPinList(const char* component, TalIbisListQueryData& list) const
{
    answerQuery(list, [&] {
        const CMPNT* const found = findComp(component);
        for (const PIN* pin = found == nullptr ? nullptr : found->pPins; pin != nullptr; pin = pin->pNext) {
            insertRow(list, pin->szPin);
        }
    });
}

const PIN* TalIbis::findPinOfType(const char* component, nuibis_model_type type, int index) const
try {
    const CMPNT* const found = findComp(component);
    OncePerName isOfType([&](const char* model) { return isModelType(model, type); });
    for (const PIN* pin = found == nullptr || index < 0 ? nullptr : found->pPins; pin != nullptr;
         pin = pin->pNext) {
        if ((type == MODEL_UNSEEN || isOfType(pin->szModel)) && index-- == 0) {
            return pin;
        }
    }
    return nullptr;
} catch (const std::bad_alloc&) {
    return nullptr;
}

bool TalIbis::getPinName(const char* component, nuibis_model_type type, int index, char* out) const
{
    const PIN* const pin = out == nullptr ? nullptr : findPinOfType(component, type, index);
    if (pin != nullptr) {
        std::memcpy(out, pin->szPin, sizeof pin->szPin);
    }
    return pin != nullptr;
}

bool TalIbis::getModelName(const char* component, nuibis_model_type type, int index, char* out) const
{
    const PIN* const pin = out == nullptr ? nullptr : findPinOfType(component, type, index);
    if (pin != nullptr) {
        std::memcpy(out, pin->szModel, sizeof pin->szModel);
    }
    return pin != nullptr;
}

void TalIbis::getPinModelListQt(std::vector<std::string>* pins, std::vector<std::string>* signals,
                                std::vector<std::string>* models, const char* component) const
try {
    pins->clear();
    signals->clear();
    models->clear();
    const CMPNT* const found = findComp(component);
    for (const PIN* pin = found == nullptr ? nullptr : found->pPins; pin != nullptr; pin = pin->pNext) {
        pins->emplace_back(pin->szPin);
        signals->emplace_back(pin->szSignal);
        models->emplace_back(pin->szModel);
    }
} catch (const std::bad_alloc&) {
    pins->clear();
    signals->clear();
    models->clear();
}

void TalIbis::getPinMapping(const char* component, const char* pin, TalIbisListQueryData& list) const
{
    static constexpr std::size_t width = 19;
    static constexpr std::size_t dashes = 87;
    answerQuery(list, [&] {
        const CMPNT* const found = findCompOrReport(component, list);
        const PINMPG* const mapping =
            found == nullptr || pin == nullptr ? nullptr : PINMPG_Find(found->pPinMappings, pin);
        if (mapping == nullptr) {
            return;
        }
        insertTitle(list,
                    {{width, "Pulldown_ref"},
                     {width, "Pullup_ref"},
                     {width, "Gnd_clamp_ref"},
                     {width, "Power_clamp_ref"},
                     {width, "Ext_ref"}},
                    dashes);
        insertRow(list, {{width, mapping->szPulldownRef},
                         {width, mapping->szPullupRef},
                         {width, mapping->szGndClampRef},
                         {width, mapping->szPowerClampRef},
                         {width, mapping->szExtRef}});
    });
}

void TalIbis::getPinMappingL(const char* component, const char* pin, TalIbisListQueryData& list) const
{
    answerQuery(list, [&] {
        const CMPNT* const found = findCompOrReport(component, list);
        const PINMPG* const mapping =
            found == nullptr || pin == nullptr ? nullptr : PINMPG_Find(found->pPinMappings, pin);
        if (mapping != nullptr) {
            insertRow(list, mapping->szPullupRef);
            insertRow(list, mapping->szPulldownRef);
            insertRow(list, mapping->szPowerClampRef);
            insertRow(list, mapping->szGndClampRef);
        }
    });
}

void TalIbis::getR_pin(const char* component, const char* pin, TalIbisStringQueryData& result) const
{
    getPinValue(component, pin, &PIN::dRpin, &PIN::eRpin, result);
}

void TalIbis::getL_pin(const char* component, const char* pin, TalIbisStringQueryData& result) const
{
    getPinValue(component, pin, &PIN::dLpin, &PIN::eLpin, result);
}

void TalIbis::getC_pin(const char* component, const char* pin, TalIbisStringQueryData& result) const
{
    getPinValue(component, pin, &PIN::dCpin, &PIN::eCpin, result);
}

void TalIbis::getPinValue(const char* component, const char* pin, double PIN::*value, numstat PIN::*status,
                          TalIbisStringQueryData& result) const
{
    answerQuery(result, [&] {
        if (const PIN* found = findPin(findComp(component), pin); found != nullptr) {
            result.setData(printOptionalDataValue(found->*value, found->*status).c_str());
        }
    });
}

void TalIbis::getR_pkg(const char* component, const char* corner, TalIbisStringQueryData& result) const
{
    getPackageValue(component, corner, &PKG::pRpkg, result);
}

void TalIbis::getL_pkg(const char* component, const char* corner, TalIbisStringQueryData& result) const
{
    getPackageValue(component, corner, &PKG::pLpkg, result);
}

void TalIbis::getC_pkg(const char* component, const char* corner, TalIbisStringQueryData& result) const
{
    getPackageValue(component, corner, &PKG::pCpkg, result);
}

void TalIbis::getPackageValue(const char* component, const char* corner, rng* PKG::*values,
                              TalIbisStringQueryData& result) const
{
    answerQuery(result, [&] {
        const CMPNT* const found = findCompOrReport(component, result);
        if (found != nullptr && found->pPackage != nullptr) {
            result.setData(printOptionalDataValue(found->pPackage->*values, corner).c_str());
        }
    });
}

void TalIbis::getVersionString(TalIbisStringQueryData& result) const
{
    answerQuery(result, [&] {
        if (pszFileName == nullptr) {
            result.setData("Filename is not given");
            return;
        }
        CMN_Path path{};
        CMN_CopyText(path, pszFileName);
        std::replace(path.begin(), path.end(), '\\', '/');
        CMN_Stream stream;
        CMN_Path baseName;
        if (!CMN_OpenFile(path.data(), eFileType, stream, baseName)) {
            result.setUnformatedError(QueryError, "File was not accessible");
            result.setData("Version Unknown");
            return;
        }
        // A query is no read: it must not report on the file's characters.
        gbNoCharCheck = true;
        const std::string version = FindVersion(stream);
        gbNoCharCheck = false;
        result.setData(version.c_str());
    });
}

const IbisErrorContainer* TalIbis::testComponent(const char* component) const
{
    IbisErrorContainer* const findings = MSG_GetContainer();
    findings->clear();
    if (component == nullptr) {
        findings->addError("Component name is not given");
        return findings;
    }
    TalIbisStringQueryData miss;
    if (CMPNT* const found = findCompOrReport(component, miss); found != nullptr) {
        const IBIS_Scope scope(pIbis, eVersion);
        CMPNT_CheckOne(found, pIbis->pCircuits, pIbis->pModels);
    } else {
        findings->addError(miss.getErrMsg().c_str());
    }
    return findings;
}
