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
    UsageNone = 0,   ///< no usage, or none that is understood
    UsageInfo = 1,   ///< a fixed fact of the model
    UsageIn = 2,     ///< from the host to the code file
    UsageOut = 3,    ///< from the code file to the host
    UsageInOut = 4,  ///< both ways
    UsageDep = 5,    ///< computed by the code file from other parameters
};

/// Type of the values of a parameter.
enum ParamDataType : std::uint32_t {
    DataNone = 0,     ///< no type, or none that is understood
    DataInteger = 1,  ///< Integer
    DataFloat = 2,    ///< Float
    DataString = 3,   ///< String
    DataBoolean = 4,  ///< Boolean: True or False
    DataTap = 5,      ///< Tap: a coefficient of a filter
    DataUI = 6,       ///< UI: a number in unit intervals
    DataTable = 7,    ///< a table: its columns have types of their own
};

/// How the values are given that a parameter may take.
enum FormatType : std::uint32_t {
    FormatNone = 0,       ///< no format, or none that is understood
    FormatValue = 1,      ///< Value: a single value
    FormatRange = 2,      ///< Range: typ, min and max
    FormatCorner = 3,     ///< Corner: typ, slow and fast
    FormatList = 4,       ///< List: values to choose from
    FormatSteps = 5,      ///< Steps: typ, min, max and number of steps
    FormatIncrement = 6,  ///< Increment: typ, min, max and size of a step
    FormatGaussian = 7,   ///< Gaussian: mean and sigma
    FormatDualDirac = 8,  ///< Dual-Dirac: two means and sigma
    FormatDjRj = 9,       ///< DjRj: two bounds and sigma
    FormatTable = 10,     ///< Table
};

/// What a file says of one parameter.
class TALIBIS_API TalIbisAMI_ParamDef
{
  public:
    /// A parameter without usage, type, format and value; the reader of the tree adds them.
    TalIbisAMI_ParamDef(std::string_view name, std::vector<int> indexPath, bool reserved);

    /// Name of the parameter, the word behind its parenthesis.
    const std::string& getName() const { return name; }
    /// Position among its sisters for each level of the tree, from the root's children down.
    const std::vector<int>& getIndexPath() const { return indexPath; }
    /// Position in the file's list of definitions.
    std::size_t getFlattenedIndex() const { return flattenedIndex; }
    /// Who gives the value.
    UsageType getUsage() const { return usage; }
    /// Type of the values.
    ParamDataType getDataType() const { return dataType; }
    /// How the values are given.
    FormatType getFormat() const { return format; }
    /// Stands directly below Reserved_Parameters.
    bool isReserved() const { return reserved; }
    /// The value that an instance starts with.
    const TalIbisAMI_Value& getValue() const { return value; }
    /// The text of Default, or that of the format Value; empty without either.
    const std::string& getDefaultText() const { return defaultText; }
    /// The tokens of the format, its word first.
    const std::vector<std::string>& getFormatData() const { return formatData; }
    /// The text of Description; empty without one.
    const std::string& getDescription() const { return description; }
    /// The format gives several values at once: a list or a table.
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
    /// What an entry holds.
    enum Kind : std::uint32_t {
        Empty = 0,    ///< nothing
        Node = 1,     ///< a branch that is no parameter
        ParamDef = 2  ///< the definition of a parameter
    };

    /// Holds nothing.
    TalIbisAMI_NodeData() noexcept = default;
    /// Takes the node over.
    explicit TalIbisAMI_NodeData(TalIbisAMI_Node* node) noexcept;
    /// Takes the definition over.
    explicit TalIbisAMI_NodeData(TalIbisAMI_ParamDef* definition) noexcept;
    /// Releases what it holds.
    ~TalIbisAMI_NodeData();
    /// Has one owner: not copied.
    TalIbisAMI_NodeData(const TalIbisAMI_NodeData&) = delete;
    /// Has one owner: not copied.
    TalIbisAMI_NodeData& operator=(const TalIbisAMI_NodeData&) = delete;

    /// What the entry holds.
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
    /// Position of an entry, in text order.
    using const_iterator = std::vector<TalIbisAMI_NodeData*>::const_iterator;

    /// An empty list.
    TalIbisAMI_NodeDataList() noexcept = default;
    /// Releases the entries.
    ~TalIbisAMI_NodeDataList() { clear(); }
    /// The entries have one owner: not copied.
    TalIbisAMI_NodeDataList(const TalIbisAMI_NodeDataList&) = delete;
    /// The entries have one owner: not copied.
    TalIbisAMI_NodeDataList& operator=(const TalIbisAMI_NodeDataList&) = delete;

    /// Takes the entry over; false, with the entry released, when memory is out.
    bool append(TalIbisAMI_NodeData* entry) noexcept;
    /// Takes the node over; false, with the node released, when memory is out.
    bool append(TalIbisAMI_Node* node) noexcept;
    /// Takes the definition over; false, with the definition released, when memory is out.
    bool append(TalIbisAMI_ParamDef* definition) noexcept;
    /// The first entry of exactly that name, or null.
    TalIbisAMI_NodeData* find(std::string_view name) const noexcept;
    /// Entry `i`, owned by the list; the index is not checked.
    TalIbisAMI_NodeData* operator[](std::size_t i) const { return entries[i]; }
    /// Number of entries.
    std::size_t size() const { return entries.size(); }
    /// There is no entry.
    bool empty() const { return entries.empty(); }
    /// Releases what is too much, or fills up with null; nothing changes when memory is out.
    void resize(std::size_t count) noexcept;
    /// Releases all entries.
    void clear() noexcept { resize(0); }
    /// The first entry, in text order.
    const_iterator begin() const { return entries.begin(); }
    /// The place behind the last entry.
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
    /// A branch of that depth without children.
    TalIbisAMI_Node(std::size_t dimension, std::string_view name) : dimension(dimension), name(name) {}

    /// Depth; that of the root is 0.
    std::size_t getDimension() const { return dimension; }
    /// The children, owned by the node.
    TalIbisAMI_NodeDataList& getList() { return list; }
    /// The children, owned by the node.
    const TalIbisAMI_NodeDataList& getList() const { return list; }
    /// Name of the branch.
    const std::string& getName() const { return name; }
    /// Number of children.
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

    /// Name of the parameter.
    const std::string& getParamName() const { return definition->getName(); }
    /// What the file says of it, owned by the file.
    const TalIbisAMI_ParamDef* getParamDef() const { return definition; }
    /// Type of its values.
    ParamDataType getParamDataType() const { return definition->getDataType(); }
    /// The host gives the value.
    bool isOfUsageIn() const { return definition->getUsage() == UsageIn; }
    /// The host and the code file give the value in turn.
    bool isOfUsageInOut() const { return definition->getUsage() == UsageInOut; }

    /// @name Value
    /// As in `TalIbisAMI_Value`.
    /// @{

    /// Kind of the value.
    ValueType getValueType() const { return value.getValueType(); }
    /// The value, owned by the parameter.
    const TalIbisAMI_Value& getValue() const { return value; }
    /// The value, to be changed in place.
    TalIbisAMI_Value& getValue() { return value; }
    /// An integer, or 0 or 1 of a boolean; 0 for any other kind.
    int getIntValue() const { return value.getIntValue(); }
    /// A real; 0.0 for any other kind.
    double getRealValue() const { return value.getRealValue(); }
    /// A text, owned by the parameter; null for any other kind.
    const char* getStringValue() const { return value.getStringValue(); }
    /// A normal distribution, owned by the parameter; null for any other kind.
    const AMI_Gaussian* getGaussianValue() const { return value.getGaussianValue(); }
    /// Two peaks, owned by the parameter; null for any other kind.
    const AMI_DualDirac* getDualDiracValue() const { return value.getDualDiracValue(); }
    /// Bounds and spread of a jitter, owned by the parameter; null for any other kind.
    const AMI_DjRj* getDjRjValue() const { return value.getDjRjValue(); }
    /// Keeps an integer.
    void setIntValue(int number) { value.setIntValue(number); }
    /// Keeps a real number.
    void setRealValue(double number) { value.setRealValue(number); }
    /// Any number but 0 is true.
    void setBooleanValue(int flag) { value.setBooleanValue(flag); }
    /// Keeps a copy; null clears.
    void setStringValue(const char* text) { value.setStringValue(text); }
    /// Keeps a normal distribution.
    void setGaussianValue(double mean, double sigma) { value.setGaussianValue(mean, sigma); }
    /// Keeps two peaks with one spread.
    void setDualDiracValue(double mean1, double mean2, double sigma)
    {
        value.setDualDiracValue(mean1, mean2, sigma);
    }
    /// Keeps the bounds and the spread of a jitter.
    void setDjRjValue(double minDj, double maxDj, double sigma) { value.setDjRjValue(minDj, maxDj, sigma); }
    /// @}

  private:
    const TalIbisAMI_ParamDef* definition;
    TalIbisAMI_Value value;
};

/// The parameters of one use of a model, one for each definition and in their order, owned.
class TALIBIS_API TalIbisAMI_ParamList
{
  public:
    /// Position of a parameter.
    using const_iterator = std::vector<TalIbisAMI_Param*>::const_iterator;

    /// An empty list.
    TalIbisAMI_ParamList() noexcept = default;
    /// Releases the parameters.
    ~TalIbisAMI_ParamList() { clear(); }
    /// The parameters have one owner: not copied.
    TalIbisAMI_ParamList(const TalIbisAMI_ParamList&) = delete;
    /// The parameters have one owner: not copied.
    TalIbisAMI_ParamList& operator=(const TalIbisAMI_ParamList&) = delete;

    /// Takes the parameter over; false, with the parameter released, when memory is out.
    bool append(TalIbisAMI_Param* param) noexcept;
    /// The first parameter of exactly that name, or null.
    const TalIbisAMI_Param* find(std::string_view name) const;
    /// Parameter `i`, owned by the list; the index is not checked.
    TalIbisAMI_Param* operator[](std::size_t i) const { return params[i]; }
    /// Number of parameters.
    std::size_t size() const { return params.size(); }
    /// There is no parameter.
    bool empty() const { return params.empty(); }
    /// Releases all parameters.
    void clear() noexcept;
    /// The first parameter.
    const_iterator begin() const { return params.begin(); }
    /// The place behind the last parameter.
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
    /// Releases the tree, the nodes and the definitions.
    ~TalIbisAMI_File();
    /// The tree has one owner: not copied.
    TalIbisAMI_File(const TalIbisAMI_File&) = delete;
    /// The tree has one owner: not copied.
    TalIbisAMI_File& operator=(const TalIbisAMI_File&) = delete;

    /// Reads the file and builds the objects. False if the file cannot be read, has an error, or is nested
    /// too deep to be of use; the container then says why, and there are no objects.
    bool parseFile() noexcept;

    /// Name of the model that the file belongs to.
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
    /// Number of definitions.
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
    /// Position of a file.
    using iterator = std::vector<std::shared_ptr<TalIbisAMI_File>>::iterator;

    /// Takes the file over; false, with the file released, for null and when memory is out.
    bool append(TalIbisAMI_File* file) noexcept;
    /// The file of exactly that model name, or `end()`.
    iterator find(std::string_view modelName);
    /// Puts another file at a place and releases the former one. A null file gives the place up, and so does
    /// one for which memory is out; false then.
    bool replace(iterator place, TalIbisAMI_File* file) noexcept;
    /// Number of files.
    std::size_t size() const { return files.size(); }
    /// The first file.
    iterator begin() { return files.begin(); }
    /// The place behind the last file.
    iterator end() { return files.end(); }

  private:
    std::vector<std::shared_ptr<TalIbisAMI_File>> files;
};
