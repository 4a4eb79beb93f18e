#include "tools/talibis/export.h"

#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_ebdmdl.h"
#include "ibis/source/nuibis_hdr.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_msel.h"
#include "ibis/source/nuibis_pkgmdl.h"
#include "ibis/source/nuibis_submdl.h"
#include "tools/talibis/check_read.h"
#include "tools/talibis/exit_status.h"
#include "tools/talibis/export_parts.h"
#include "tools/talibis/json_text.h"
#include "tools/talibis/source_file.h"

#include <iostream>

namespace
{

constexpr int SCHEMA_VERSION = 1;

json ExportAddedSubmodels(const nuibis_mdl& model, const ibis& root)
{
    json list = json::array();
    for (const submdl* submodel : InFileOrder(root.pSubmodels)) {
        if (MDL_HasAddSubmodel(&model, submodel) != 0) {
            list.push_back(ExportSubmodel(*submodel));
        }
    }
    return list;
}

void AddRecords(const ibis& root, json& document)
{
    document["header"] = root.pHeaders == nullptr ? json() : ExportHeader(*root.pHeaders);
    document["components"] = ExportEach(InFileOrder(root.pComponents), ExportComponent);
    document["model_selectors"] = ExportEach(InFileOrder(root.pModelSelectors), ExportSelector);
    document["models"] = ExportEach(InFileOrder(root.pModels), ExportModel);
    document["submodels"] = ExportEach(InFileOrder(root.pSubmodels), ExportSubmodel);
    document["package_models"] = ExportEach(InFileOrder(root.pPackageModels), ExportPackageModel);
    document["boards"] = ExportEach(InFileOrder(root.pBoards), ExportBoard);
}

int Refuse(const std::string& reason)
{
    std::cerr << "talibis: " << reason << '\n';
    return EXIT_UNUSABLE;
}

}  // namespace

int RunExport(const ExportOptions& options)
{
    SourceFile file;
    if (!ReadSourceFile(options.file, options.type, file)) {
        return EXIT_UNUSABLE;
    }
    if (file.isOld) {
        return Refuse(file.path +
                      " is of version 1.x, whose files are checked only: there is nothing to export");
    }
    json document{{"format", "talibis export"},    {"version", SCHEMA_VERSION}, {"file", file.path},
                  {"type", NameOfType(file.type)}, {"errors", file.errors},     {"warnings", file.warnings}};
    if (!options.model.empty()) {
        nuibis_mdl* const model =
            file.root == nullptr ? nullptr : MDL_Find(options.model, file.root->pModels);
        if (model == nullptr) {
            return Refuse("there is no model '" + options.model + "' in " + file.path);
        }
        document["models"] = json::array({ExportModel(*model)});
        document["submodels"] = ExportAddedSubmodels(*model, *file.root);
    } else if (file.root != nullptr) {
        AddRecords(*file.root, document);
    } else {
        const TalIbisAMI_Node& tree = *file.parameters->getTopNode();
        document["root"] = tree.getName();
        document["parameters"] = ExportParameters(tree);
    }
    PrintJson(std::cout, document);
    return EXIT_CLEAN;
}
