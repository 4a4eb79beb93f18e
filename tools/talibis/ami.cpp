#include "tools/talibis/ami.h"

#include "ibis/interface/talibis.h"
#include "tools/talibis/exit_status.h"

#include <cstdlib>
#include <iostream>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>
#include <string_view>

namespace
{

using json = nlohmann::ordered_json;

std::string TextOf(const IbisErrorContainer& findings)
{
    const std::unique_ptr<char, decltype(&std::free)> text(findings.getErrMsg(), &std::free);
    return text == nullptr ? std::string() : text.get();
}

// Says why there is nothing to exchange; `findings` are those of the file that is to blame.
void Refuse(const std::string& reason, const IbisErrorContainer* findings = nullptr)
{
    std::cerr << (findings == nullptr ? std::string() : TextOf(*findings)) << "talibis: " << reason << '\n';
}

bool HasModel(const TalIbis& file, const std::string& model)
{
    TalIbisListQueryData models;
    file.getModelList(models);
    for (const char* name : models.getData()) {
        if (model == name) {
            return true;
        }
    }
    return false;
}

// The parameter file of the model, parsed; null after saying why there is none.
const TalIbisAMI_File* FindParameters(const AmiOptions& options)
{
    TalIbis* file = nullptr;
    const IbisErrorContainer* const findings = talReadIbisFile(options.file.c_str(), IBIS_FILE_IBS, &file);
    const std::string model = "model '" + options.model + "'";
    if (file == nullptr) {
        Refuse(options.file + " could not be read", findings);
        return nullptr;
    }
    if (!HasModel(*file, options.model)) {
        Refuse("there is no " + model + " in " + options.file);
        return nullptr;
    }
    if (!file->isAMIModel(options.model.c_str())) {
        Refuse(model + " in " + options.file + " has no algorithmic model");
        return nullptr;
    }
    const TalIbisAMI_File* const parameters = file->parseAMI_File(options.model.c_str());
    if (parameters == nullptr) {
        Refuse("the parameter file of " + model + " could not be read");
        return nullptr;
    }
    if (parameters->getTopNode() == nullptr) {
        Refuse("the parameter file '" + parameters->getFileName() + "' of " + model + " cannot be used",
               parameters->getErrContainer());
        return nullptr;
    }
    return parameters;
}

// Each parameter by its name, in the order of the file; of several with one name, in groups of their own, the
// first. The object's own insertion walks all members for each new one.
json ValuesOf(const TalIbisAMI_ParamList& params)
{
    json::object_t values;
    std::set<std::string_view> names;
    for (const TalIbisAMI_Param* param : params) {
        if (names.insert(param->getParamName()).second) {
            values.emplace_back(param->getParamName(), param->getValue().toString());
        }
    }
    return values;
}

}  // namespace

int RunAmiInput(const AmiOptions& options)
{
    const TalIbisAMI_File* const file = FindParameters(options);
    if (file == nullptr) {
        return EXIT_UNUSABLE;
    }
    TalIbisAMI_ParamList params;
    file->instantiateParams(params, options.model);
    std::string text;
    file->generateAMI_DLL_Input(params, text, options.inputsOnly);
    std::cout << text;
    return EXIT_CLEAN;
}

int RunAmiOutput(const AmiOptions& options)
{
    const TalIbisAMI_File* const file = FindParameters(options);
    if (file == nullptr) {
        return EXIT_UNUSABLE;
    }
    TalIbisAMI_ParamList params;
    file->instantiateParams(params, options.model);
    const std::string text(std::istreambuf_iterator<char>(std::cin), {});
    std::string warnings;
    std::string errors;
    const bool ok = file->parseAMI_DLL_Output(params, text, warnings, errors);
    const json report{{"ok", ok}, {"warnings", warnings}, {"errors", errors}, {"params", ValuesOf(params)}};
    std::cout << report.dump(-1, ' ', false, json::error_handler_t::replace) << '\n';
    return EXIT_CLEAN;
}
