// The object model of a parameter file of an algorithmic model (`.ami`): the tree of its branches with the
// definitions of its parameters, instances of the parameters, and the strings that pass to and from the
// model's code file.
//
// No exception leaves the functions of these classes. Making an object that holds text may throw
// `std::bad_alloc`.

#pragma once

#include "ibis/interface/talibis_amivalue.h"
#include "ibis/source/nuibis_errors.h"

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

struct _tagTree;

/// Who gives a parameter its value: the host (In), the code file (Out), both in turn (InOut), nobody (Info),
/// or the code file from other parameters (Dep).
enum UsageType : std::uint32_t {
    UsageNone = 0,
    UsageInfo = 1,
    UsageIn = 2,
    UsageOut = 3,
    UsageInOut = 4,
    UsageDep = 5,
};

enum ParamDataType : std::uint32_t {
    DataNone = 0,
    DataInteger = 1,
    DataFloat = 2,
    DataString = 3,
    DataBoolean = 4,
    DataTap = 5,
    DataUI = 6,
    DataTable = 7,
};

/// How the values are given that a parameter may take.
enum FormatType : std::uint32_t {
    FormatNone = 0,
    FormatValue = 1,
    FormatRange = 2,
    FormatCorner = 3,
    FormatList = 4,
    FormatSteps = 5,
    FormatIncrement = 6,
    FormatGaussian = 7,
    FormatDualDirac = 8,
    FormatDjRj = 9,
    FormatTable = 10,
};

/// What a file says of one parameter.
class TALIBIS_API TalIbisAMI_ParamDef
{
  public:
    TalIbisAMI_ParamDef(std::string_view name, std::vector<int> indexPath, bool reserved);

    const std::string& getName() const { return name; }
    /// Position among its sisters for each level of the tree, from the root's children down.
    const std::vector<int>& getIndexPath() const { return indexPath; }
    /// Position in the file's list of definitions.
    std::size_t getFlattenedIndex() const { return flattenedIndex; }
    UsageType getUsage() const { return usage; }
    ParamDataType getDataType() const { return dataType; }
    FormatType getFormat() const { return format; }
    /// Stands directly below Reserved_Parameters.
    bool isReserved() const { return reserved; }
    /// The value that an instance starts with.
    const TalIbisAMI_Value& getValue() const { return value; }
    const std::string& getDefaultText() const { return defaultText; }
    /// The tokens of the format, its word first.
    const std::vector<std::string>& getFormatData() const { return formatData; }
    const std::string& getDescription() const { return description; }
    bool isArrayData() const { return format == FormatList || format == FormatTable; }

  private:
    friend class TalIbisAMI_TreeReader;

    std::string name;
    std::vector<int> indexPath;
    std::size_t flattenedIndex = 0;
    UsageType usage = UsageNone;
    ParamDataType dataType = DataNone;
    FormatType format = FormatNone;
    bool reserved;
    TalIbisAMI_Value value;
    std::string defaultText;
    std::vector<std::string> formatData;
    std::string description;
};

class TalIbisAMI_Node;

/// What a node's list holds, owned: a node or a definition.
class TALIBIS_API TalIbisAMI_NodeData
{
  public:
    enum Kind : std::uint32_t { Empty = 0, Node = 1, ParamDef = 2 };

    TalIbisAMI_NodeData() noexcept = default;
    explicit TalIbisAMI_NodeData(TalIbisAMI_Node* node) noexcept;
    explicit TalIbisAMI_NodeData(TalIbisAMI_ParamDef* definition) noexcept;
    ~TalIbisAMI_NodeData();
    TalIbisAMI_NodeData(const TalIbisAMI_NodeData&) = delete;
    TalIbisAMI_NodeData& operator=(const TalIbisAMI_NodeData&) = delete;

    Kind getKind() const { return static_cast<Kind>(data.index()); }
    /// Null for another kind.
    TalIbisAMI_Node* getNode() const;
    /// Null for another kind.
    TalIbisAMI_ParamDef* getParamDef() const;
    /// The name of what it holds.
    std::string_view getName() const;
    /// Depth of the node, or of the node that a definition belongs to.
    std::size_t getDimension() const;

  private:
    // In the order of Kind.
    std::variant<std::monostate, std::unique_ptr<TalIbisAMI_Node>, std::unique_ptr<TalIbisAMI_ParamDef>> data;
};

/// The children of a node, in text order, owned.
class TALIBIS_API TalIbisAMI_NodeDataList
{
  public:
    using const_iterator = std::vector<TalIbisAMI_NodeData*>::const_iterator;

    TalIbisAMI_NodeDataList() noexcept = default;
    ~TalIbisAMI_NodeDataList() { clear(); }
    TalIbisAMI_NodeDataList(const TalIbisAMI_NodeDataList&) = delete;
    TalIbisAMI_NodeDataList& operator=(const TalIbisAMI_NodeDataList&) = delete;

    // Take their argument over; false, with the argument released, when memory is out.
    bool append(TalIbisAMI_NodeData* entry) noexcept;
    bool append(TalIbisAMI_Node* node) noexcept;
    bool append(TalIbisAMI_ParamDef* definition) noexcept;
    /// The first entry of exactly that name, or null.
    TalIbisAMI_NodeData* find(std::string_view name) const noexcept;
    TalIbisAMI_NodeData* operator[](std::size_t i) const { return entries[i]; }
    std::size_t size() const { return entries.size(); }
    bool empty() const { return entries.empty(); }
    /// Releases what is too much, or fills up with null; nothing changes when memory is out.
    void resize(std::size_t count) noexcept;
    void clear() noexcept { resize(0); }
    const_iterator begin() const { return entries.begin(); }
    const_iterator end() const { return entries.end(); }
    /// For people: a line for each entry, indented by its depth.
    void output(std::ostream& out) const;

  private:
    std::vector<TalIbisAMI_NodeData*> entries;
    // Entries by name, of those that were looked at so far.
    mutable std::unordered_map<std::string_view, TalIbisAMI_NodeData*> names;
    mutable std::size_t indexed = 0;
};

/// A branch that is no parameter: the root, Reserved_Parameters, Model_Specific, or a group of parameters.
class TALIBIS_API TalIbisAMI_Node
{
  public:
    TalIbisAMI_Node(std::size_t dimension, std::string_view name) : dimension(dimension), name(name) {}

    /// Depth; that of the root is 0.
    std::size_t getDimension() const { return dimension; }
    TalIbisAMI_NodeDataList& getList() { return list; }
    const TalIbisAMI_NodeDataList& getList() const { return list; }
    const std::string& getName() const { return name; }
    std::size_t getNumPts() const { return list.size(); }

  private:
    std::size_t dimension;
    TalIbisAMI_NodeDataList list;
    std::string name;
};

/// One parameter of one use of a model: a definition and a value of its own.
class TALIBIS_API TalIbisAMI_Param
{
  public:
    /// Starts with a copy of the definition's value. The definition must outlive this.
    explicit TalIbisAMI_Param(const TalIbisAMI_ParamDef* definition) noexcept
        : definition(definition), value(definition->getValue())
    {
    }

    const std::string& getParamName() const { return definition->getName(); }
    const TalIbisAMI_ParamDef* getParamDef() const { return definition; }
    ParamDataType getParamDataType() const { return definition->getDataType(); }
    bool isOfUsageIn() const { return definition->getUsage() == UsageIn; }
    bool isOfUsageInOut() const { return definition->getUsage() == UsageInOut; }

    // See TalIbisAMI_Value.
    ValueType getValueType() const { return value.getValueType(); }
    const TalIbisAMI_Value& getValue() const { return value; }
    TalIbisAMI_Value& getValue() { return value; }
    int getIntValue() const { return value.getIntValue(); }
    double getRealValue() const { return value.getRealValue(); }
    const char* getStringValue() const { return value.getStringValue(); }
    const AMI_Gaussian* getGaussianValue() const { return value.getGaussianValue(); }
    const AMI_DualDirac* getDualDiracValue() const { return value.getDualDiracValue(); }
    const AMI_DjRj* getDjRjValue() const { return value.getDjRjValue(); }
    void setIntValue(int number) { value.setIntValue(number); }
    void setRealValue(double number) { value.setRealValue(number); }
    void setBooleanValue(int flag) { value.setBooleanValue(flag); }
    void setStringValue(const char* text) { value.setStringValue(text); }
    void setGaussianValue(double mean, double sigma) { value.setGaussianValue(mean, sigma); }
    void setDualDiracValue(double mean1, double mean2, double sigma)
    {
        value.setDualDiracValue(mean1, mean2, sigma);
    }
    void setDjRjValue(double minDj, double maxDj, double sigma) { value.setDjRjValue(minDj, maxDj, sigma); }

  private:
    const TalIbisAMI_ParamDef* definition;
    TalIbisAMI_Value value;
};

/// The parameters of one use of a model, one for each definition and in their order, owned.
class TALIBIS_API TalIbisAMI_ParamList
{
  public:
    using const_iterator = std::vector<TalIbisAMI_Param*>::const_iterator;

    TalIbisAMI_ParamList() noexcept = default;
    ~TalIbisAMI_ParamList() { clear(); }
    TalIbisAMI_ParamList(const TalIbisAMI_ParamList&) = delete;
    TalIbisAMI_ParamList& operator=(const TalIbisAMI_ParamList&) = delete;

    /// Takes the parameter over; false, with the parameter released, when memory is out.
    bool append(TalIbisAMI_Param* param) noexcept;
    /// The first parameter of exactly that name, or null.
    const TalIbisAMI_Param* find(std::string_view name) const;
    TalIbisAMI_Param* operator[](std::size_t i) const { return params[i]; }
    std::size_t size() const { return params.size(); }
    bool empty() const { return params.empty(); }
    void clear() noexcept;
    const_iterator begin() const { return params.begin(); }
    const_iterator end() const { return params.end(); }

  private:
    std::vector<TalIbisAMI_Param*> params;
};

/// The parameter file of one model.
class TALIBIS_API TalIbisAMI_File
{
  public:
    /// `directory` has its trailing separator, or is empty. Nothing is read yet.
    TalIbisAMI_File(std::string_view modelName, std::string_view fileName, std::string_view directory);
    ~TalIbisAMI_File();
    TalIbisAMI_File(const TalIbisAMI_File&) = delete;
    TalIbisAMI_File& operator=(const TalIbisAMI_File&) = delete;

    /// Reads the file and builds the objects. False if the file cannot be read, has an error, or is nested
    /// too deep to be of use; the container then says why, and there are no objects.
    bool parseFile() noexcept;

    const std::string& getModelName() const { return modelName; }
    /// Without its directory.
    const std::string& getFileName() const { return fileName; }
    /// Directory and file name.
    std::string getIbisFilePath() const;
    /// The root branch; null until the file was parsed.
    const TalIbisAMI_Node* getTopNode() const { return topNode.get(); }
    /// Owned by the file; null until it was parsed.
    const _tagTree* getParamTree() const { return paramTree; }
    /// In tree order; owned by the nodes.
    const std::vector<TalIbisAMI_ParamDef*>& getParamDefList() const { return paramDefs; }
    std::size_t getNumParams() const { return paramDefs.size(); }
    /// The findings of the parse.
    const IbisErrorContainer* getErrContainer() const { return &errors; }
    /// Seconds since the epoch: when the file was parsed.
    std::int64_t getFileTimeStamp() const { return timeStamp; }

    /// Makes a parameter of each definition, clearing the list first. "DLL_Path" gets the directory of the
    /// file, in full and with "/" between its parts, and "DLL_ID" the text of the host. Empty when memory is
    /// out.
    void instantiateParams(TalIbisAMI_ParamList& list, const std::string& dllId) const noexcept;
    /// The branch that a path of child positions leads to; null if it leads nowhere.
    const _tagBranchStruct* getIndexedParamBranch(const std::vector<int>& path) const;
    /// Sets a value from a text by the type of a definition; a table or no type leaves the value empty.
    static void setParamValue(const TalIbisAMI_ParamDef* definition, TalIbisAMI_Value& value,
                              const char* text);
    /// For people: the tree with its parameters.
    void output(std::ostream& out) const;

    /// Appends the string that the code file takes: the tree with a "(name value)" line for each parameter
    /// that has a value. Reserved_Parameters and Model_Specific themselves do not appear. With `inputsOnly`
    /// only the usages In and InOut take part. Tables are those of the definitions. Nothing without a tree.
    void generateAMI_DLL_Input(const TalIbisAMI_ParamList& params, std::string& out,
                               bool inputsOnly) const noexcept;
    /// Takes the values of the usages Out, InOut and Dep from a string of the code file. False at the first
    /// fault of its structure, told in `errors`; the values ahead of it are set. A name that is not in the
    /// tree adds a line to `warnings` and is skipped. `errors` is empty after a success.
    bool parseAMI_DLL_Output(TalIbisAMI_ParamList& params, const std::string& text, std::string& warnings,
                             std::string& errors) const noexcept;
    /// The tokens of such a string: parentheses and words. A "|" begins a comment up to the end of its line.
    void tokenize_DLL_Output(const std::string& text, std::vector<std::string>& tokens) const noexcept;

  private:
    bool readTree();
    void release() noexcept;
    std::string findCodePath() const;

    std::string modelName;
    std::string fileName;
    std::string directory;
    std::unique_ptr<TalIbisAMI_Node> topNode;
    std::vector<TalIbisAMI_ParamDef*> paramDefs;
    IbisErrorContainer errors;
    _tagTree* paramTree = nullptr;
    std::int64_t timeStamp = 0;
};

/// The parameter files of a handle, one for each model that was asked for. Copies share the files, each of
/// which lives as long as a list holds it.
class TALIBIS_API TalIbisAMI_FileList
{
  public:
    using iterator = std::vector<std::shared_ptr<TalIbisAMI_File>>::iterator;

    /// Takes the file over; false, with the file released, for null and when memory is out.
    bool append(TalIbisAMI_File* file) noexcept;
    /// The file of exactly that model name, or `end()`.
    iterator find(std::string_view modelName);
    /// Puts another file at a place and releases the former one. A null file gives the place up, and so does
    /// one for which memory is out; false then.
    bool replace(iterator place, TalIbisAMI_File* file) noexcept;
    std::size_t size() const { return files.size(); }
    iterator begin() { return files.begin(); }
    iterator end() { return files.end(); }

  private:
    std::vector<std::shared_ptr<TalIbisAMI_File>> files;
};
