#include "tools/talibis/source_file.h"

#include "ibis/interface/talibis.h"
#include "ibis/interface/talibis_tool.h"
#include "tools/talibis/check_read.h"

#include <cstdlib>
#include <iostream>

namespace
{

// `findings` say why.
bool Refuse(const std::string& path, const IbisErrorContainer& findings)
{
    const std::unique_ptr<char, decltype(&std::free)> text(findings.getErrMsg(), &std::free);
    std::cerr << (text == nullptr ? "" : text.get()) << "talibis: " << path << " could not be read\n";
    return false;
}

void Count(const IbisErrorContainer& findings, SourceFile& file)
{
    for (std::size_t i = 0; i < findings.getNumErrors(); ++i) {
        ++(findings.getError(i)->getType() == MSG_TYPE_ERROR ? file.errors : file.warnings);
    }
}

// Read once as a file of its own, under the rules of one, for its findings, and once more for its objects.
bool ReadParameters(SourceFile& file)
{
    const IbisErrorContainer* const findings = talReadParameterFile(file.path.c_str(), IBIS_FILE_AMI);
    if (findings == nullptr) {
        return Refuse(file.path, *talGetIbisError(nullptr));
    }
    Count(*findings, file);
    const std::size_t name = file.path.find_last_of("/\\") + 1;  // 0 behind npos
    file.parameters =
        std::make_unique<TalIbisAMI_File>("", file.path.substr(name), file.path.substr(0, name));
    return file.parameters->parseFile() || Refuse(file.path, *file.parameters->getErrContainer());
}

bool ReadRecords(SourceFile& file)
{
    SilenceSummaries();
    TalIbis* handle = nullptr;
    const IbisErrorContainer* const findings = talReadIbisFile(file.path.c_str(), file.type, &handle);
    file.isOld = TalIbisFileManager::getSniffedVersion() == IBIS_VER_1;
    if (handle == nullptr && !file.isOld) {
        return Refuse(file.path, *findings);
    }
    Count(*findings, file);
    file.root = file.isOld ? nullptr : handle->getIbis();
    return true;
}

}  // namespace

bool ReadSourceFile(const std::string& path, ibis_file_type type, SourceFile& file)
{
    file.path = path;
    file.type = type == IBIS_FILE_NONE ? TypeOfName(path) : type;
    if (file.type == IBIS_FILE_PARAM) {
        file.type = IBIS_FILE_AMI;
    }
    return file.type == IBIS_FILE_AMI ? ReadParameters(file) : ReadRecords(file);
}

std::vector<TreeLine> LinesOf(const TalIbisAMI_Node& root)
{
    struct Place {
        const TalIbisAMI_NodeDataList* list;
        std::size_t next;
    };
    std::vector<TreeLine> lines;
    std::vector<Place> open{{&root.getList(), 0}};
    while (!open.empty()) {
        Place& place = open.back();
        if (place.next == place.list->size()) {
            open.pop_back();
            continue;
        }
        const TalIbisAMI_NodeData& entry = *(*place.list)[place.next++];
        const std::size_t depth = open.size() - 1;
        if (const TalIbisAMI_Node* const node = entry.getNode(); node != nullptr) {
            lines.push_back({depth, &node->getName(), nullptr});
            open.push_back({&node->getList(), 0});
        } else if (const TalIbisAMI_ParamDef* const definition = entry.getParamDef(); definition != nullptr) {
            lines.push_back({depth, &definition->getName(), definition});
        }
    }
    return lines;
}
