// The strings between a host and the code file of an algorithmic model.

#include "ibis/interface/talibis_ami.h"
#include "ibis/interface/talibis_amitext.h"
#include "platform/hostport.h"

#include <array>
#include <new>
#include <span>

namespace
{

// Branches of the file that the code file does not know of: what stands in them rises to their parent, but
// for its indentation.
constexpr std::array<std::string_view, 2> WRAPPERS{"Model_Specific", "Reserved_Parameters"};

bool IsWrapper(std::string_view name)
{
    return name == WRAPPERS[0] || name == WRAPPERS[1];
}

// Writing -------------------------------------------------------------------------------------------------

struct InputWriter {
    const TalIbisAMI_ParamList& params;
    std::string& out;
    bool bInputsOnly;

    void indent(const TalIbisAMI_Node& parent) const { out.append(2 * (parent.getDimension() + 1), ' '); }
    void open(const TalIbisAMI_Node& node) const
    {
        if (!IsWrapper(node.getName())) {
            out += '(' + node.getName() + '\n';
        }
    }
    void write(const TalIbisAMI_Node& top) const;
    void writeParam(const TalIbisAMI_ParamDef& definition, const TalIbisAMI_Node& parent) const;
};

void InputWriter::writeParam(const TalIbisAMI_ParamDef& definition, const TalIbisAMI_Node& parent) const
{
    if (bInputsOnly && definition.getUsage() != UsageIn && definition.getUsage() != UsageInOut) {
        return;
    }
    const bool table = definition.getDataType() == DataTable;
    const std::size_t index = definition.getFlattenedIndex();
    if (!table && index >= params.size()) {
        return;
    }
    const std::string text = table ? definition.getValue().toString() : params[index]->getValue().toString();
    if (!text.empty()) {
        indent(parent);
        out += '(' + definition.getName() + ' ' + text + ")\n";
    }
}

void InputWriter::write(const TalIbisAMI_Node& top) const
{
    struct Frame {
        const TalIbisAMI_Node* pNode;
        std::size_t uiNext = 0;
    };
    std::vector<Frame> frames{{&top}};
    open(top);
    while (!frames.empty()) {
        Frame& frame = frames.back();
        const TalIbisAMI_Node& node = *frame.pNode;
        if (frame.uiNext < node.getList().size()) {
            const TalIbisAMI_NodeData& entry = *node.getList()[frame.uiNext++];
            if (const TalIbisAMI_ParamDef* definition = entry.getParamDef(); definition != nullptr) {
                writeParam(*definition, node);
            } else if (const TalIbisAMI_Node* child = entry.getNode(); child != nullptr) {
                if (!IsWrapper(child->getName())) {
                    indent(node);
                }
                open(*child);
                frames.push_back({child});
            }
            continue;
        }
        frames.pop_back();
        if (!frames.empty() && !IsWrapper(node.getName())) {
            indent(*frames.back().pNode);
            out += ")\n";
        }
    }
    out += ')';
}

// Reading -------------------------------------------------------------------------------------------------

// The part of a token that a string value keeps: without the quotes, up to the next of them.
std::string Unquoted(const std::string& token)
{
    static constexpr std::string_view blanks = " \"\t\n\r";
    const std::size_t begin = std::min(token.find_first_not_of(blanks), token.size());
    return token.substr(begin, token.find_first_of(blanks, begin) - begin);
}

// Walks the groups of a string behind its root, "(name ...)", along the tree.
class OutputReader
{
  public:
    OutputReader(TalIbisAMI_ParamList& params, std::span<const std::string> tokens, std::string& warnings,
                 std::string& errors)
        : mParams(params), mTokens(tokens), mWarnings(warnings), mErrors(errors)
    {
    }

    bool read(const TalIbisAMI_Node& top);

  private:
    struct Frame {
        const TalIbisAMI_Node* pNode;
        bool bWrapped = false;  // within a wrapper of the string that the tree does not have there
    };

    bool atEnd() const { return mAt == mTokens.size(); }
    const std::string& token() const { return mTokens[mAt]; }
    bool isAt(std::string_view text) const { return !atEnd() && token() == text; }
    bool hasValue() const { return !atEnd() && token() != ")"; }
    bool fail(std::string text)
    {
        mErrors = std::move(text);
        return false;
    }
    bool enter(const TalIbisAMI_Node& node);
    bool closeGroup();
    bool readGroup();
    const TalIbisAMI_NodeData* findEntry();
    void skipGroup();
    void skipToClose();

    bool readParam(const TalIbisAMI_ParamDef& definition);
    bool readTable(const TalIbisAMI_ParamDef& definition, TalIbisAMI_Value& value);
    bool readNumbers(const TalIbisAMI_ParamDef& definition, std::string_view word, std::string_view second,
                     std::span<double> numbers);
    bool readDistribution(const TalIbisAMI_ParamDef& definition, TalIbisAMI_Value& value);
    void readScalar(const TalIbisAMI_ParamDef& definition, TalIbisAMI_Value& value) const;

    TalIbisAMI_ParamList& mParams;
    std::span<const std::string> mTokens;
    std::string& mWarnings;
    std::string& mErrors;
    std::size_t mAt = 0;
    std::vector<Frame> mFrames;
};

bool OutputReader::read(const TalIbisAMI_Node& top)
{
    if (!enter(top)) {
        return false;
    }
    while (!mFrames.empty()) {
        if (!readGroup()) {
            return false;
        }
    }
    return true;
}

bool OutputReader::enter(const TalIbisAMI_Node& node)
{
    mFrames.push_back({&node});
    return !atEnd() || fail("Unmatched parentheses found.");
}

// Steps over the ")" of a group of the current node, and over that of a wrapper around it.
bool OutputReader::closeGroup()
{
    if (!isAt(")")) {
        return fail("Missing `)' is detected in the AMI DLL output string.");
    }
    ++mAt;
    if (mFrames.back().bWrapped && isAt(")")) {
        mFrames.back().bWrapped = false;
        ++mAt;
    }
    return !atEnd() || fail("Unmatched parentheses found.");
}

// One group of the current node, up to its children, or the end of that node.
bool OutputReader::readGroup()
{
    if (isAt(")")) {
        mFrames.pop_back();
        return mFrames.empty() || closeGroup();
    }
    if (!isAt("(")) {
        return fail("`(' is missing before AMI parameter branch " + token() + ".");
    }
    ++mAt;
    if (atEnd()) {
        return fail("Incomplete AMI DLL output string detected.");
    }
    const TalIbisAMI_NodeData* const entry = findEntry();
    if (entry == nullptr) {
        mWarnings += token() + " could not be found in AMI parameter tree. It was ignored.\n";
        skipGroup();
        return closeGroup();
    }
    ++mAt;
    if (const TalIbisAMI_Node* node = entry->getNode(); node != nullptr) {
        return enter(*node);
    }
    return readParam(*entry->getParamDef()) && closeGroup();
}

// What the name at this place stands for: a child of the current node or, at the top, of a wrapper there.
const TalIbisAMI_NodeData* OutputReader::findEntry()
{
    Frame& frame = mFrames.back();
    const TalIbisAMI_NodeDataList& list = frame.pNode->getList();
    if (const TalIbisAMI_NodeData* entry = list.find(token()); entry != nullptr) {
        return entry;
    }
    for (const std::string_view wrapper : WRAPPERS) {
        if (frame.pNode->getDimension() != 0 || token() == wrapper) {
            continue;
        }
        const TalIbisAMI_NodeData* const child = list.find(wrapper);
        const TalIbisAMI_Node* const node = child == nullptr ? nullptr : child->getNode();
        if (const TalIbisAMI_NodeData* entry = node == nullptr ? nullptr : node->getList().find(token());
            entry != nullptr) {
            return entry;
        }
    }
    if (!IsWrapper(token()) || mTokens.size() - mAt <= 2) {
        return nullptr;
    }
    mAt += 2;
    frame.bWrapped = true;
    return list.find(token());
}

// To the ")" that closes this group, or to the end.
void OutputReader::skipGroup()
{
    std::size_t open = 0;
    for (; !atEnd() && (open != 0 || token() != ")"); ++mAt) {
        open += token() == "(" ? 1 : 0;
        open -= token() == ")" ? 1 : 0;
    }
}

void OutputReader::skipToClose()
{
    while (hasValue()) {
        ++mAt;
    }
}

// A parameter that the code file may not set is passed over.
bool OutputReader::readParam(const TalIbisAMI_ParamDef& definition)
{
    const UsageType usage = definition.getUsage();
    const std::size_t index = definition.getFlattenedIndex();
    const bool settable = usage == UsageOut || usage == UsageInOut || usage == UsageDep;
    if (!settable || index >= mParams.size()) {
        skipToClose();
        return true;
    }
    if (!hasValue()) {
        return fail("Value for parameter `" + definition.getName() + "' is not given in DLL output string.");
    }
    TalIbisAMI_Value& value = mParams[index]->getValue();
    bool good = true;
    switch (definition.getFormat()) {
    case FormatTable:
        good = readTable(definition, value);
        break;
    case FormatGaussian:
    case FormatDualDirac:
    case FormatDjRj:
        good = readDistribution(definition, value);
        break;
    default:
        readScalar(definition, value);
        break;
    }
    skipToClose();
    return good;
}

bool OutputReader::readTable(const TalIbisAMI_ParamDef& definition, TalIbisAMI_Value& value)
{
    const std::string subject = "For the Table parameter '" + definition.getName() + "' ";
    std::size_t last = mAt;
    while (last < mTokens.size() && mTokens[last] != "(" && mTokens[last] != ")") {
        ++last;
    }
    if (last == mTokens.size() || mTokens[last] == "(") {
        return fail(subject + "a missing `)' is detected in the AMI DLL output string.");
    }
    AMI_Table* const table = value.getTableValue();
    const std::size_t columns = table == nullptr ? 0 : table->getNumColumns();
    if (columns == 0) {
        return true;
    }
    if ((last - mAt) % columns != 0) {
        return fail(subject + "the DLL output string contains an incomplete last row. ");
    }
    const std::vector<std::string> cells(mTokens.begin() + static_cast<std::ptrdiff_t>(mAt),
                                         mTokens.begin() + static_cast<std::ptrdiff_t>(last));
    table->setTableData(cells.begin(), cells.end(), columns, cells.size() / columns);
    mAt = last;
    return true;
}

// The first number is there; `second` is the name of the second of three.
bool OutputReader::readNumbers(const TalIbisAMI_ParamDef& definition, std::string_view word,
                               std::string_view second, std::span<double> numbers)
{
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (!hasValue()) {
            const std::string missing = i == 1 && numbers.size() == 3
                                            ? std::string(second) + " and Sigma value are missing"
                                            : "Sigma value is missing";
            return fail("Parameter '" + definition.getName() + "' is format of " + std::string(word) + ". " +
                        missing + " in DLL output string. ");
        }
        numbers[i] = amiReal(mTokens[mAt++].c_str());
    }
    return true;
}

bool OutputReader::readDistribution(const TalIbisAMI_ParamDef& definition, TalIbisAMI_Value& value)
{
    std::array<double, 3> numbers{};
    switch (definition.getFormat()) {
    case FormatGaussian:
        if (!readNumbers(definition, "Gaussian", "", std::span(numbers).first(2))) {
            return false;
        }
        value.setGaussianValue(numbers[0], numbers[1]);
        return true;
    case FormatDualDirac:
        if (!readNumbers(definition, "Dual-Dirac", "Mean2", numbers)) {
            return false;
        }
        value.setDualDiracValue(numbers[0], numbers[1], numbers[2]);
        return true;
    default:
        if (!readNumbers(definition, "DjRj", "MaxDj", numbers)) {
            return false;
        }
        value.setDjRjValue(numbers[0], numbers[1], numbers[2]);
        return true;
    }
}

// A boolean comes back as an integer, 0 or 1.
void OutputReader::readScalar(const TalIbisAMI_ParamDef& definition, TalIbisAMI_Value& value) const
{
    const char* const text = token().c_str();
    switch (definition.getDataType()) {
    case DataFloat:
    case DataTap:
    case DataUI:
        value.setRealValue(amiReal(text));
        break;
    case DataBoolean:
        value.setIntValue(amiBoolean(text) ? 1 : 0);
        break;
    case DataInteger:
        value.setIntValue(amiInteger(text));
        break;
    case DataString:
        value.setStringValue(Unquoted(token()).c_str());
        break;
    case DataNone:
    case DataTable:
        break;
    }
}

}  // namespace

void TalIbisAMI_File::generateAMI_DLL_Input(const TalIbisAMI_ParamList& params, std::string& out,
                                            bool inputsOnly) const noexcept
{
    if (topNode == nullptr) {
        return;
    }
    const std::size_t before = out.size();
    try {
        InputWriter{params, out, inputsOnly}.write(*topNode);
    } catch (const std::bad_alloc&) {
        out.resize(before);
    }
}

void TalIbisAMI_File::tokenize_DLL_Output(const std::string& text,
                                          std::vector<std::string>& tokens) const noexcept
try {
    static constexpr std::string_view blanks = " \t\n\r";
    tokens.clear();
    std::size_t at = 0;
    while ((at = text.find_first_not_of(blanks, at)) != std::string::npos) {
        std::size_t end = at + 1;
        if (text[at] == '|') {
            at = std::min(text.find_first_of("\n\r", at), text.size());
            continue;
        }
        if (text[at] != '(' && text[at] != ')') {
            end = std::min(text.find_first_of("\t\n\r ()", at), text.size());
        }
        tokens.push_back(text.substr(at, end - at));
        at = end;
    }
} catch (const std::bad_alloc&) {
    tokens.clear();
}

bool TalIbisAMI_File::parseAMI_DLL_Output(TalIbisAMI_ParamList& params, const std::string& text,
                                          std::string& warnings, std::string& errorText) const noexcept
try {
    errorText.clear();
    if (topNode == nullptr) {
        return false;
    }
    std::vector<std::string> tokens;
    tokenize_DLL_Output(text, tokens);
    if (tokens.size() < 3) {
        errorText = "Incomplete AMI DLL output string.";
    } else if (tokens[0] != "(") {
        errorText = "`(' is missing in the AMI DLL output string.";
    } else if (hst_stricmp(tokens[1].c_str(), topNode->getName().c_str()) != 0) {
        errorText = "Top branch name in AMI DLL output string doesn't match that in the AMI parameter file .";
    } else {
        return tokens[2] != "(" ||
               OutputReader(params, std::span(tokens).subspan(2), warnings, errorText).read(*topNode);
    }
    return false;
} catch (const std::exception&) {
    return false;
}
