// The object model of a parameter file: the classes, and how they come from the file's tree.

#include "ibis/interface/talibis_ami.h"

#include "ibis/interface/talibis_amitext.h"
#include "ibis/source/nuibis_algmod.h"
#include "ibis/source/nuibis_parse.h"
#include "platform/hostpath.h"
#include "platform/hostport.h"

#include <algorithm>
#include <array>
#include <new>
#include <ostream>

namespace
{

// Parameters nest a few levels deep. Each keeps its place on every level and is indented by them, so that
// levels without end would cost their square.
constexpr std::size_t DEPTH_LIMIT = 256;

constexpr std::string_view RESERVED = "Reserved_Parameters";
constexpr std::string_view TABLE = "Table";

// Takes an object over into a vector of pointers; false, with the object released, when memory is out.
template <class T> bool TakeOver(std::vector<T*>& list, T* object) noexcept
{
    if (object == nullptr) {
        return false;
    }
    try {
        list.push_back(object);
        return true;
    } catch (const std::bad_alloc&) {
        delete object;
        return false;
    }
}

template <class T> void DeleteAll(std::vector<T*>& list) noexcept
{
    for (T* object : list) {
        delete object;
    }
    list.clear();
}

// Messages of a parse go to the file's own container.
class ContainerScope
{
  public:
    explicit ContainerScope(IbisErrorContainer& container) : mpFormer(MSG_GetContainer())
    {
        MSG_SetContainer(&container);
    }
    ~ContainerScope() { MSG_SetContainer(mpFormer); }
    ContainerScope(const ContainerScope&) = delete;
    ContainerScope& operator=(const ContainerScope&) = delete;

  private:
    IbisErrorContainer* mpFormer;
};

}  // namespace

// Definitions, nodes and lists ----------------------------------------------------------------------------

TalIbisAMI_ParamDef::TalIbisAMI_ParamDef(std::string_view name, std::vector<int> indexPath, bool reserved)
    : name(name), indexPath(std::move(indexPath)), reserved(reserved)
{
}

TalIbisAMI_NodeData::TalIbisAMI_NodeData(TalIbisAMI_Node* node) noexcept
    : data(std::unique_ptr<TalIbisAMI_Node>(node))
{
}

TalIbisAMI_NodeData::TalIbisAMI_NodeData(TalIbisAMI_ParamDef* definition) noexcept
    : data(std::unique_ptr<TalIbisAMI_ParamDef>(definition))
{
}

TalIbisAMI_NodeData::~TalIbisAMI_NodeData() = default;

TalIbisAMI_Node* TalIbisAMI_NodeData::getNode() const
{
    const auto* const node = std::get_if<Node>(&data);
    return node == nullptr ? nullptr : node->get();
}

TalIbisAMI_ParamDef* TalIbisAMI_NodeData::getParamDef() const
{
    const auto* const definition = std::get_if<ParamDef>(&data);
    return definition == nullptr ? nullptr : definition->get();
}

std::string_view TalIbisAMI_NodeData::getName() const
{
    if (const TalIbisAMI_Node* node = getNode(); node != nullptr) {
        return node->getName();
    }
    const TalIbisAMI_ParamDef* const definition = getParamDef();
    return definition == nullptr ? std::string_view() : definition->getName();
}

std::size_t TalIbisAMI_NodeData::getDimension() const
{
    if (const TalIbisAMI_ParamDef* definition = getParamDef(); definition != nullptr) {
        return definition->getIndexPath().size() - 1;
    }
    const TalIbisAMI_Node* const node = getNode();
    return node == nullptr ? 0 : node->getDimension();
}

bool TalIbisAMI_NodeDataList::append(TalIbisAMI_NodeData* entry) noexcept
{
    return TakeOver(entries, entry);
}

bool TalIbisAMI_NodeDataList::append(TalIbisAMI_Node* node) noexcept
{
    std::unique_ptr<TalIbisAMI_Node> owner(node);
    auto* const entry = new (std::nothrow) TalIbisAMI_NodeData(owner.get());
    if (entry != nullptr) {
        static_cast<void>(owner.release());
    }
    return append(entry);
}

bool TalIbisAMI_NodeDataList::append(TalIbisAMI_ParamDef* definition) noexcept
{
    std::unique_ptr<TalIbisAMI_ParamDef> owner(definition);
    auto* const entry = new (std::nothrow) TalIbisAMI_NodeData(owner.get());
    if (entry != nullptr) {
        static_cast<void>(owner.release());
    }
    return append(entry);
}

TalIbisAMI_NodeData* TalIbisAMI_NodeDataList::find(std::string_view name) const noexcept
try {
    for (; indexed < entries.size(); ++indexed) {
        if (entries[indexed] != nullptr) {
            names.try_emplace(entries[indexed]->getName(), entries[indexed]);
        }
    }
    const auto found = names.find(name);
    return found == names.end() ? nullptr : found->second;
} catch (const std::bad_alloc&) {
    const auto found = std::find_if(entries.begin(), entries.end(), [name](const TalIbisAMI_NodeData* entry) {
        return entry != nullptr && entry->getName() == name;
    });
    return found == entries.end() ? nullptr : *found;
}

void TalIbisAMI_NodeDataList::resize(std::size_t count) noexcept
{
    names.clear();
    indexed = 0;
    for (std::size_t i = count; i < entries.size(); ++i) {
        delete entries[i];
    }
    try {
        entries.resize(count, nullptr);
    } catch (const std::bad_alloc&) {
        return;
    }
}

void TalIbisAMI_NodeDataList::output(std::ostream& out) const
{
    for (const TalIbisAMI_NodeData* entry : entries) {
        if (entry == nullptr) {
            continue;
        }
        const TalIbisAMI_Node* const node = entry->getNode();
        const TalIbisAMI_ParamDef* const definition = entry->getParamDef();
        out << std::string(2 * (entry->getDimension() + (definition == nullptr ? 0 : 1)), ' ')
            << entry->getName();
        if (definition != nullptr) {
            out << ": ";
            definition->getValue().output(out);
        }
        out << '\n';
        if (node != nullptr) {
            node->getList().output(out);
        }
    }
}

bool TalIbisAMI_ParamList::append(TalIbisAMI_Param* param) noexcept
{
    return TakeOver(params, param);
}

const TalIbisAMI_Param* TalIbisAMI_ParamList::find(std::string_view name) const
{
    const auto found = std::find_if(params.begin(), params.end(), [name](const TalIbisAMI_Param* param) {
        return param->getParamName() == name;
    });
    return found == params.end() ? nullptr : *found;
}

void TalIbisAMI_ParamList::clear() noexcept
{
    DeleteAll(params);
}

bool TalIbisAMI_FileList::append(TalIbisAMI_File* file) noexcept
try {
    std::shared_ptr<TalIbisAMI_File> owner(file);
    if (file == nullptr) {
        return false;
    }
    files.push_back(std::move(owner));
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

TalIbisAMI_FileList::iterator TalIbisAMI_FileList::find(std::string_view modelName)
{
    return std::find_if(files.begin(), files.end(),
                        [modelName](const auto& file) { return file->getModelName() == modelName; });
}

bool TalIbisAMI_FileList::replace(iterator place, TalIbisAMI_File* file) noexcept
try {
    place->reset(file);
    if (file == nullptr) {
        files.erase(place);
    }
    return file != nullptr;
} catch (const std::bad_alloc&) {
    files.erase(place);
    return false;
}

// From the tree to the objects ----------------------------------------------------------------------------

namespace
{

// The leaves of a parameter that its definition is made of; the last of a kind counts.
struct ParamLeaves {
    const _tagLeafStruct* pUsage = nullptr;
    const _tagLeafStruct* pType = nullptr;
    const _tagLeafStruct* pFormat = nullptr;
    const _tagLeafStruct* pDefault = nullptr;
    const _tagLeafStruct* pDescription = nullptr;
    const _tagBranchStruct* pTable = nullptr;

    explicit ParamLeaves(const _tagBranchStruct& parameter)
    {
        for (const AMI_NODE& node : AMI_Children(parameter)) {
            if (const _tagLeafStruct* leaf = AMI_AsLeaf(node); leaf != nullptr) {
                take(*leaf);
            } else {
                pTable = AMI_AsBranch(node);
            }
        }
    }
    void take(const _tagLeafStruct& leaf)
    {
        switch (leaf.eLeafType) {
        case AMI_LEAF_USAGE:
            pUsage = &leaf;
            break;
        case AMI_LEAF_TYPE:
            pType = &leaf;
            break;
        case AMI_LEAF_FORMAT:
            pFormat = &leaf;
            break;
        case AMI_LEAF_DEFAULT:
            pDefault = &leaf;
            break;
        case AMI_LEAF_DESCRIPTION:
            pDescription = &leaf;
            break;
        default:
            break;
        }
    }
};

const char* FirstText(const _tagLeafStruct* leaf)
{
    return leaf == nullptr || leaf->iValueCount == 0 ? nullptr : leaf->pValues[0].pszText;
}

UsageType UsageOf(const _tagLeafStruct* leaf)
{
    static constexpr std::array<UsageType, 5> usages{UsageIn, UsageOut, UsageInfo, UsageInOut, UsageDep};
    const AMI_Keyword word = leaf == nullptr ? AMI_NO_KEYWORD : AMI_FirstKeyword(*leaf);
    return AMI_IsUsage(word) ? usages[static_cast<std::size_t>(word)] : UsageNone;
}

ParamDataType DataTypeOf(const _tagLeafStruct* leaf)
{
    static constexpr std::array<ParamDataType, 6> types{DataFloat,   DataInteger, DataString,
                                                        DataBoolean, DataTap,     DataUI};
    const AMI_Keyword word = leaf == nullptr ? AMI_NO_KEYWORD : AMI_FirstKeyword(*leaf);
    return AMI_IsType(word) ? types[static_cast<std::size_t>(word - AMI_FLOAT)] : DataNone;
}

FormatType FormatOf(AMI_Keyword word)
{
    static constexpr std::array<FormatType, 10> formats{
        FormatValue, FormatRange, FormatList,     FormatCorner,    FormatIncrement,
        FormatSteps, FormatTable, FormatGaussian, FormatDualDirac, FormatDjRj};
    return AMI_IsFormat(word) ? formats[static_cast<std::size_t>(word - AMI_VALUE_FORMAT)] : FormatNone;
}

// A usage, a type and one table of labels and rows, with a description at most beside them.
bool IsTableBranch(const _tagBranchStruct& parameter)
{
    bool usage = false;
    bool type = false;
    bool table = false;
    for (const AMI_NODE& node : AMI_Children(parameter)) {
        if (const _tagBranchStruct* branch = AMI_AsBranch(node); branch != nullptr) {
            const std::span<const AMI_NODE> rows = AMI_Children(*branch);
            const bool plain = std::all_of(rows.begin(), rows.end(), [](const AMI_NODE& row) {
                const _tagLeafStruct* const leaf = AMI_AsLeaf(row);
                return leaf != nullptr &&
                       (leaf->eLeafType == AMI_LEAF_LABELS || leaf->eLeafType == AMI_LEAF_ROW);
            });
            if (branch->pszName != TABLE || !plain) {
                return false;
            }
            table = true;
            continue;
        }
        const AMI_LeafType kind = AMI_AsLeaf(node)->eLeafType;
        usage |= kind == AMI_LEAF_USAGE;
        type |= kind == AMI_LEAF_TYPE;
        if (kind != AMI_LEAF_USAGE && kind != AMI_LEAF_TYPE && kind != AMI_LEAF_DESCRIPTION) {
            return false;
        }
    }
    return usage && type && table;
}

bool HasBranch(const _tagBranchStruct& branch)
{
    const std::span<const AMI_NODE> nodes = AMI_Children(branch);
    return std::any_of(nodes.begin(), nodes.end(),
                       [](const AMI_NODE& node) { return node.eKind == AMI_BRANCH; });
}

}  // namespace

// Builds nodes and definitions below a top node. Throws when memory is out.
class TalIbisAMI_TreeReader
{
  public:
    TalIbisAMI_TreeReader(const _tagBranchStruct& root, TalIbisAMI_Node& top,
                          std::vector<TalIbisAMI_ParamDef*>& definitions)
        : mDefinitions(definitions), mFrames{{&root, &top}}
    {
    }

    void read();

  private:
    // A branch whose children are being read into a node.
    struct Frame {
        const _tagBranchStruct* pBranch;
        TalIbisAMI_Node* pNode;
        int iNext = 0;
    };
    using Definition = std::unique_ptr<TalIbisAMI_ParamDef>;

    void readBranch(const _tagBranchStruct& child);
    Definition makeDefinition(const _tagBranchStruct& branch, const ParamLeaves& leaves) const;
    Definition makeParam(const _tagBranchStruct& branch) const;
    Definition makeTable(const _tagBranchStruct& branch) const;
    static void setFormat(TalIbisAMI_ParamDef& definition, const _tagLeafStruct& leaf);
    static void setDistribution(TalIbisAMI_ParamDef& definition, std::span<const AMI_VALUE> tokens);
    void add(Definition definition);

    std::vector<TalIbisAMI_ParamDef*>& mDefinitions;
    std::vector<Frame> mFrames;
};

void TalIbisAMI_TreeReader::read()
{
    while (!mFrames.empty()) {
        Frame& frame = mFrames.back();
        if (frame.iNext == frame.pBranch->iNodeCount) {
            mFrames.pop_back();
            continue;
        }
        const AMI_NODE& node = frame.pBranch->pNodes[frame.iNext++];
        if (const _tagBranchStruct* child = AMI_AsBranch(node); child != nullptr) {
            readBranch(*child);
        }
    }
}

void TalIbisAMI_TreeReader::readBranch(const _tagBranchStruct& child)
{
    if (!HasBranch(child)) {
        add(makeParam(child));
    } else if (IsTableBranch(child)) {
        add(makeTable(child));
    } else {
        auto* const node = new TalIbisAMI_Node(mFrames.size(), child.pszName);
        if (!mFrames.back().pNode->getList().append(node)) {
            throw std::bad_alloc();
        }
        mFrames.push_back({&child, node});
    }
}

TalIbisAMI_TreeReader::Definition TalIbisAMI_TreeReader::makeDefinition(const _tagBranchStruct& branch,
                                                                        const ParamLeaves& leaves) const
{
    std::vector<int> path;
    for (const Frame& frame : mFrames) {
        path.push_back(frame.iNext - 1);
    }
    auto definition = std::make_unique<TalIbisAMI_ParamDef>(branch.pszName, std::move(path),
                                                            mFrames.back().pBranch->pszName == RESERVED);
    const char* const description = FirstText(leaves.pDescription);
    definition->description = description == nullptr ? "" : description;
    definition->usage = UsageOf(leaves.pUsage);
    return definition;
}

void TalIbisAMI_TreeReader::setDistribution(TalIbisAMI_ParamDef& definition,
                                            std::span<const AMI_VALUE> tokens)
{
    const auto number = [&](std::size_t i) { return amiReal(tokens[i].pszText); };
    switch (definition.format) {
    case FormatGaussian:
        definition.value.setGaussianValue(number(1), number(2));
        break;
    case FormatDualDirac:
        definition.value.setDualDiracValue(number(1), number(2), number(3));
        break;
    default:
        definition.value.setDjRjValue(number(1), number(2), number(3));
        break;
    }
}

// A format with too few tokens is none.
void TalIbisAMI_TreeReader::setFormat(TalIbisAMI_ParamDef& definition, const _tagLeafStruct& leaf)
{
    const FormatType format = FormatOf(AMI_FirstKeyword(leaf));
    if (format == FormatNone) {
        return;
    }
    const std::span<const AMI_VALUE> tokens = AMI_Values(leaf).first(AMI_FormatTokenCount(leaf));
    for (const AMI_VALUE& token : tokens) {
        definition.formatData.emplace_back(token.pszText);
    }
    const bool distribution = format >= FormatGaussian && format <= FormatDjRj;
    const std::size_t least = !distribution ? 2 : format == FormatGaussian ? 3 : 4;
    if (tokens.size() < least || format == FormatTable) {
        return;
    }
    definition.format = format;
    if (distribution) {
        setDistribution(definition, tokens);
    } else if (format == FormatValue) {
        TalIbisAMI_File::setParamValue(&definition, definition.value, tokens[1].pszText);
    }
}

// The value of the format Value wins over the default, and any other format's first value gives way to it.
TalIbisAMI_TreeReader::Definition TalIbisAMI_TreeReader::makeParam(const _tagBranchStruct& branch) const
{
    const ParamLeaves leaves(branch);
    Definition definition = makeDefinition(branch, leaves);
    definition->dataType = DataTypeOf(leaves.pType);
    if (leaves.pFormat != nullptr) {
        setFormat(*definition, *leaves.pFormat);
    }
    const bool format = definition->format != FormatNone;
    const char* const defaultText = FirstText(leaves.pDefault);
    const char* const first = format ? definition->formatData[1].c_str() : nullptr;
    if (defaultText != nullptr) {
        definition->defaultText = defaultText;
    } else if (definition->format == FormatValue) {
        definition->defaultText = first;
    }
    const char* const text = defaultText != nullptr ? defaultText : first;
    const bool isSet = definition->format == FormatValue || definition->format >= FormatGaussian;
    if (!isSet && text != nullptr) {
        TalIbisAMI_File::setParamValue(definition.get(), definition->value, text);
    }
    return definition;
}

// Null for a table without rows or columns.
TalIbisAMI_TreeReader::Definition TalIbisAMI_TreeReader::makeTable(const _tagBranchStruct& branch) const
{
    const ParamLeaves leaves(branch);
    Definition definition = makeDefinition(branch, leaves);
    definition->format = FormatTable;
    definition->dataType = DataTable;
    AMI_Table table;
    if (!table.setTableDimensionsAndLabels(leaves.pTable)) {
        return nullptr;
    }
    const bool isJitter = definition->name == "Tx_Jitter" || definition->name == "Rx_Clock_PDF";
    table.setTableTypes(leaves.pType, isJitter);
    table.setTableData(leaves.pTable);
    definition->value.setTableValue(std::move(table));
    return definition;
}

void TalIbisAMI_TreeReader::add(Definition definition)
{
    if (definition == nullptr) {
        return;
    }
    definition->flattenedIndex = mDefinitions.size();
    TalIbisAMI_ParamDef* const added = definition.release();
    if (!mFrames.back().pNode->getList().append(added)) {
        throw std::bad_alloc();
    }
    mDefinitions.push_back(added);
}

// The file ------------------------------------------------------------------------------------------------

TalIbisAMI_File::TalIbisAMI_File(std::string_view modelName, std::string_view fileName,
                                 std::string_view directory)
    : modelName(modelName), fileName(fileName), directory(directory)
{
}

TalIbisAMI_File::~TalIbisAMI_File()
{
    release();
}

void TalIbisAMI_File::release() noexcept
{
    paramDefs.clear();
    topNode.reset();
    AMI_FreeTree(&paramTree);
}

std::string TalIbisAMI_File::getIbisFilePath() const
{
    return directory + fileName;
}

bool TalIbisAMI_File::readTree()
{
    std::string slashed = directory;
    std::replace(slashed.begin(), slashed.end(), '\\', '/');
    CMN_SetDirectory(slashed);
    if (!PARSE_ReadFile(fileName.c_str(), IBIS_FILE_AMI)) {
        PARSE_FreeFileText();
        return false;
    }
    paramTree = ALGMOD_ParseParamText(fileName.c_str(), IBIS_FILE_AMI);
    const _tagBranchStruct* const root = AMI_Root(paramTree);
    if (root == nullptr) {
        return false;
    }
    const bool deep =
        std::any_of(paramTree->pNodes, paramTree->pNodes + paramTree->iCount,
                    [](const AMI_NODE& node) { return node.iLevel > static_cast<int>(DEPTH_LIMIT); });
    if (deep) {
        MSG_ErrorText("Parameter file %s is nested deeper than %d levels", fileName.c_str(), DEPTH_LIMIT);
        return false;
    }
    topNode = std::make_unique<TalIbisAMI_Node>(0, root->pszName);
    TalIbisAMI_TreeReader(*root, *topNode, paramDefs).read();
    timeStamp = hst_time();
    return true;
}

bool TalIbisAMI_File::parseFile() noexcept
{
    const ContainerScope scope(errors);
    errors.clear();
    release();
    try {
        if (readTree()) {
            return true;
        }
    } catch (const std::bad_alloc&) {
        MSG_ErrorText("Unable to allocate memory for the parameters of %s", fileName.c_str());
    }
    release();
    return false;
}

// The directory in full, with "/" between its parts and none at its end. A path that begins with a drive is
// in full on the system that it comes from.
std::string TalIbisAMI_File::findCodePath() const
{
    std::string path = directory.empty() ? HostPath::currentDirectory() : directory;
    std::replace(path.begin(), path.end(), '\\', '/');
    const bool drive = path.size() > 1 && CMN_IsAlpha(path[0]) && path[1] == ':';
    if (!drive) {
        path = HostPath(path).absolute();
    }
    if (path.ends_with('/')) {
        path.pop_back();
    }
    return path;
}

void TalIbisAMI_File::instantiateParams(TalIbisAMI_ParamList& list, const std::string& dllId) const noexcept
try {
    list.clear();
    for (const TalIbisAMI_ParamDef* definition : paramDefs) {
        auto param = std::make_unique<TalIbisAMI_Param>(definition);
        if (definition->getName() == "DLL_Path") {
            param->setStringValue(findCodePath().c_str());
        } else if (definition->getName() == "DLL_ID") {
            param->setStringValue(dllId.c_str());
        }
        if (!list.append(param.release())) {
            throw std::bad_alloc();
        }
    }
} catch (const std::bad_alloc&) {
    list.clear();
}

const _tagBranchStruct* TalIbisAMI_File::getIndexedParamBranch(const std::vector<int>& path) const
{
    const _tagBranchStruct* branch = AMI_Root(paramTree);
    for (const int index : path) {
        if (branch == nullptr || index < 0 || index >= branch->iNodeCount) {
            return nullptr;
        }
        branch = AMI_AsBranch(branch->pNodes[index]);
    }
    return branch;
}

void TalIbisAMI_File::setParamValue(const TalIbisAMI_ParamDef* definition, TalIbisAMI_Value& value,
                                    const char* text)
{
    value.clearValue();
    switch (definition->getDataType()) {
    case DataInteger:
        value.setIntValue(amiInteger(text));
        break;
    case DataFloat:
    case DataTap:
    case DataUI:
        value.setRealValue(amiReal(text));
        break;
    case DataString:
        value.setStringValue(text);
        break;
    case DataBoolean:
        value.setBooleanValue(amiBoolean(text) ? 1 : 0);
        break;
    case DataNone:
    case DataTable:
        break;
    }
}

void TalIbisAMI_File::output(std::ostream& out) const
{
    out << "Model " << modelName << ", parameter file " << getIbisFilePath() << '\n';
    if (topNode != nullptr) {
        out << topNode->getName() << '\n';
        topNode->getList().output(out);
    }
}
