// The queries of a handle about algorithmic models.

#include "ibis/interface/talibis.h"
#include "ibis/interface/talibis_amitext.h"
#include "ibis/interface/talibis_print.h"
#include "ibis/source/nuibis_algmod.h"
#include "ibis/source/nuibis_efile.h"
#include "ibis/source/nuibis_mdl.h"
#include "platform/hostport.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

namespace
{

#if defined(_WIN32)
constexpr std::string_view PLATFORM = "Windows";
#else
constexpr std::string_view PLATFORM = "Linux";
#endif

constexpr int CODE_FILE_BITS = 64;
// Most values that the choices of an increment or of steps are written out for.
constexpr std::size_t CHOICE_LIMIT = 10'000;

constexpr const char* QUOTE = "\"";

// Length of the directory of a path of this or another system, with its separator.
std::size_t DirectoryLength(std::string_view path)
{
    std::size_t separator = path.rfind('/');
    if (separator == std::string_view::npos) {
        separator = path.rfind('\\');
    }
    return separator == std::string_view::npos ? 0 : separator + 1;
}

std::string_view WithoutDirectory(std::string_view path)
{
    return path.substr(DirectoryLength(path));
}

const ALGMOD* FirstLine(const nuibis_mdl* model)
{
    return TalIbis::isAMIModel(model) ? model->pAlgorithmicModel->pFirst : nullptr;
}

std::string_view ParamFileName(const ALGMOD& line)
{
    return line.pParamFile == nullptr ? std::string_view() : line.pParamFile->szName;
}

// The file's text, joined from its values from the first one on.
std::string Joined(std::span<const AMI_VALUE> values, const char* separator)
{
    std::string text;
    for (std::size_t i = 0; i < values.size(); ++i) {
        text += (i == 0 ? "" : separator) + std::string(values[i].pszText);
    }
    return text;
}

bool IsDistribution(AMI_Keyword word)
{
    return word >= AMI_GAUSSIAN && word <= AMI_DJRJ;
}

std::span<const AMI_VALUE> FormatTokens(const _tagLeafStruct& format)
{
    return AMI_Values(format).first(AMI_FormatTokenCount(format));
}

}  // namespace

// Files ---------------------------------------------------------------------------------------------------

bool TalIbis::isAMIModel(const nuibis_mdl* model)
{
    return model != nullptr && model->pAlgorithmicModel != nullptr &&
           model->pAlgorithmicModel->pFirst != nullptr;
}

bool TalIbis::isAMIModel(const char* name) const
{
    return isAMIModel(findModel(name));
}

bool TalIbis::findAMI_DLL_Name(const nuibis_mdl* model, const char* ibisPath, std::string& dllName) noexcept
try {
    const ALGMOD* line = FirstLine(model);
    while (line != nullptr && (line->iBits != CODE_FILE_BITS || !CMN_Equal(line->szPlatform, PLATFORM))) {
        line = line->pNext;
    }
    if (line == nullptr || line->pCodeFile == nullptr) {
        return false;
    }
    const std::string_view path = ibisPath == nullptr ? "" : ibisPath;
    const std::size_t length = DirectoryLength(path);
    std::string name(length == 0 ? std::string_view(dllName) : path.substr(0, length));
    name += WithoutDirectory(line->pCodeFile->szName);
    dllName = std::move(name);
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

TalIbisAMI_File* TalIbis::readAMI_File(const nuibis_mdl* model, const char* ibisPath) noexcept
try {
    const ALGMOD* const line = FirstLine(model);
    if (line == nullptr) {
        return nullptr;
    }
    const std::string_view path = ibisPath == nullptr ? "" : ibisPath;
    auto* const file = new TalIbisAMI_File(model->szName, WithoutDirectory(ParamFileName(*line)),
                                           path.substr(0, DirectoryLength(path)));
    file->parseFile();
    return file;
} catch (const std::bad_alloc&) {
    return nullptr;
}

TalIbisAMI_File* TalIbis::parseAMI_File(const nuibis_mdl* model) const noexcept
try {
    if (!isAMIModel(model)) {
        return nullptr;
    }
    const auto place = amiFiles.find(model->szName);
    if (place == amiFiles.end()) {
        TalIbisAMI_File* const file = readAMI_File(model, pszFileName);
        return amiFiles.append(file) ? file : nullptr;
    }
    std::string path = (*place)->getIbisFilePath();
    std::replace(path.begin(), path.end(), '\\', '/');
    hst_stat_t info;
    if (hst_stat(path.c_str(), &info) == 0 && info.tModified <= tTimeStamp) {
        return place->get();
    }
    TalIbisAMI_File* const file = readAMI_File(model, pszFileName);
    return amiFiles.replace(place, file) ? file : nullptr;
} catch (const std::bad_alloc&) {
    return nullptr;
}

TalIbisAMI_File* TalIbis::parseAMI_File(const char* name) const noexcept
{
    return parseAMI_File(findModel(name));
}

const IbisErrorContainer* TalIbis::testAMIModel(const nuibis_mdl* model) const
{
    const ALGMOD* const line = FirstLine(model);
    if (line == nullptr) {
        return nullptr;
    }
    if (const TalIbisAMI_File* file = parseAMI_File(model); file != nullptr) {
        return file->getErrContainer();
    }
    MSG_ErrorText("Failed to parse AMI parameter file `%s' for model '%s' in the IBIS file '%s'",
                  ParamFileName(*line), model->szName, pszFileName);
    return MSG_GetContainer();
}

const IbisErrorContainer* TalIbis::testAMIModel(const char* name) const
{
    const nuibis_mdl* const model = findModel(name);
    if (!isAMIModel(model)) {
        return nullptr;
    }
    MSG_GetContainer()->clear();
    return testAMIModel(model);
}

// What the queries begin with -----------------------------------------------------------------------------

namespace
{

void MissModel(TalIbisQueryData& record, const char* name, const char* file)
{
    record.setFormatedError(QueryError, "Model '%s' is not found in the IBIS file '%s'", name, file);
}

// `words` make one query say "does not" twice.
void MissAlgorithm(TalIbisQueryData& record, const char* name, const char* file, const char* words)
{
    record.setFormatedError(QueryError,
                            "Either model '%s' in the IBIS file '%s'%s\n"
                            " does not have Algorithm Model or IBIS Parser detected\n"
                            " error when parsing Algorithm Model",
                            name, file, words);
}

}  // namespace

const TalIbisAMI_File* TalIbis::findAMI_File(const char* name, TalIbisQueryData& record,
                                             const char* words) const
{
    if (name == nullptr || pszFileName == nullptr) {
        return nullptr;
    }
    const nuibis_mdl* const model = findModel(name);
    if (model == nullptr) {
        MissModel(record, name, pszFileName);
    } else if (!isAMIModel(model)) {
        MissAlgorithm(record, name, pszFileName, words);
    } else {
        return parseAMI_File(model);
    }
    return nullptr;
}

// A query gets the file once: each look may read it anew and release the former one.
TalIbis::AmiParam TalIbis::findAMI_Param(const char* name, int index, TalIbisQueryData& record) const
{
    const TalIbisAMI_File* const file = findAMI_File(name, record, "");
    if (file == nullptr) {
        return {};
    }
    if (index < 0 || static_cast<std::size_t>(index) >= file->getNumParams()) {
        record.setFormatedError(QueryError,
                                "Error indexing AMI parameters from the AMI file '%s'.\n"
                                " Please check the AMI file and/or reset the AMI component.",
                                file->getFileName().c_str());
        return {};
    }
    const TalIbisAMI_ParamDef* const definition = file->getParamDefList()[static_cast<std::size_t>(index)];
    return {file, definition, file->getIndexedParamBranch(definition->getIndexPath())};
}

// File and number of parameters ---------------------------------------------------------------------------

void TalIbis::getAMIFileName(const char* name, TalIbisStringQueryData& result) const
{
    answerQuery(result, [&] {
        if (name == nullptr || pszFileName == nullptr) {
            return;
        }
        const nuibis_mdl* const model = findModel(name);
        const ALGMOD* const line = FirstLine(model);
        if (model == nullptr) {
            result.setFormatedError(QueryError, "Model '%s' not found in the IBIS file '%s'", name,
                                    pszFileName);
        } else if (line == nullptr) {
            MissAlgorithm(result, name, pszFileName, "");
        } else {
            result.setData(std::string(ParamFileName(*line)).c_str());
        }
    });
}

std::size_t TalIbis::getAMIParamNum(const char* name) const
{
    const TalIbisAMI_File* const file = parseAMI_File(name);
    return file == nullptr ? 0 : file->getNumParams();
}

void TalIbis::getAMIParamNum(const char* name, TalIbisStringQueryData& result) const
{
    answerQuery(result, [&] {
        const TalIbisAMI_File* const file = findAMI_File(name, result, " does not");
        if (file != nullptr) {
            result.setData(std::to_string(file->getNumParams()).c_str());
        }
    });
}

void TalIbis::getAMIParamTree(const char* name, int index, TalIbisListQueryData& list) const
{
    answerQuery(list, [&] {
        const AmiParam parameter = findAMI_Param(name, index, list);
        if (parameter.pBranch == nullptr) {
            return;
        }
        std::vector<int> path;
        for (const int step : parameter.pDefinition->getIndexPath()) {
            insertRow(list, parameter.pFile->getIndexedParamBranch(path)->pszName);
            path.push_back(step);
        }
        insertRow(list, parameter.pBranch->pszName);
    });
}

// Attributes ----------------------------------------------------------------------------------------------

namespace
{

struct Attributes {
    std::string sUsage = "null";
    std::string sType = "null";
    std::string sFormat = "null";
    std::string sValue = "null";
    std::string sSource = "null";
    bool bDefault = false;

    void take(const _tagLeafStruct& leaf);
    void takeFormat(const _tagLeafStruct& leaf);
};

// The value of a default goes ahead of that of a format.
void Attributes::takeFormat(const _tagLeafStruct& leaf)
{
    const AMI_Keyword word = AMI_FirstKeyword(leaf);
    const std::span<const AMI_VALUE> tokens = FormatTokens(leaf);
    if (!AMI_IsFormat(word) || tokens.size() < 2) {
        return;
    }
    sFormat = tokens[0].pszText;
    if (bDefault || word == AMI_TABLE_FORMAT) {
        return;
    }
    const bool distribution = IsDistribution(word);
    sValue = distribution ? Joined(tokens.subspan(1), ",") : tokens[1].pszText;
    sSource = distribution ? "User specified" : word == AMI_VALUE_FORMAT ? "Value" : "null";
}

void Attributes::take(const _tagLeafStruct& leaf)
{
    const AMI_Keyword word = AMI_FirstKeyword(leaf);
    switch (leaf.eLeafType) {
    case AMI_LEAF_USAGE:
        sUsage = AMI_IsUsage(word) ? leaf.pValues[0].pszText : sUsage;
        break;
    case AMI_LEAF_TYPE:
        sType = AMI_IsType(word) ? leaf.pValues[0].pszText : sType;
        break;
    case AMI_LEAF_FORMAT:
        takeFormat(leaf);
        break;
    case AMI_LEAF_DEFAULT:
        if (leaf.iValueCount > 0) {
            bDefault = true;
            sValue = leaf.pValues[0].pszText;
            sSource = "Default";
        }
        break;
    default:
        break;
    }
}

}  // namespace

void TalIbis::getAMIParamAttrs(const char* name, int index, TalIbisListQueryData& list) const
{
    answerQuery(list, [&] {
        const _tagBranchStruct* const parameter = findAMI_Param(name, index, list).pBranch;
        if (parameter == nullptr) {
            return;
        }
        Attributes attributes;
        for (const AMI_NODE& node : AMI_Children(*parameter)) {
            if (const _tagLeafStruct* leaf = AMI_AsLeaf(node); leaf != nullptr) {
                attributes.take(*leaf);
            }
        }
        for (const std::string& text : {attributes.sUsage, attributes.sType, attributes.sFormat,
                                        attributes.sValue, attributes.sSource}) {
            insertRow(list, text);
        }
    });
}

// The text of a parameter ---------------------------------------------------------------------------------

namespace
{

struct InfoText {
    std::string sText;
    std::string sNotes;  // on words that are not understood

    void takeLeaf(const _tagLeafStruct& leaf);
    void takeTable(const _tagBranchStruct& table);
    void write(const char* name, const std::string& content)
    {
        sText += std::string("(") + name + content + ") ";
    }
    void writeKnown(bool known, const char* name, const std::string& content, const char* note)
    {
        if (known) {
            write(name, content);
        } else {
            sNotes += note;
        }
    }
};

void InfoText::takeLeaf(const _tagLeafStruct& leaf)
{
    const std::span<const AMI_VALUE> values = AMI_Values(leaf);
    const AMI_Keyword word = AMI_FirstKeyword(leaf);
    const std::string first = values.empty() ? "" : values[0].pszText;
    const bool types =
        !values.empty() && std::all_of(values.begin(), values.end(),
                                       [](const AMI_VALUE& value) { return AMI_IsType(value.eKeyword); });
    switch (leaf.eLeafType) {
    case AMI_LEAF_USAGE:
        writeKnown(AMI_IsUsage(word), "Usage ", first, "Wrong usage value\n");
        break;
    case AMI_LEAF_TYPE:
        writeKnown(types, "Type ", Joined(values, " "), "Wrong type value\n");
        break;
    case AMI_LEAF_FORMAT:
        writeKnown(AMI_IsFormat(word), "Format ", Joined(values, " "), "Wrong format entry\n");
        break;
    case AMI_LEAF_DEFAULT:
        write("Default ", first);
        break;
    case AMI_LEAF_DESCRIPTION:
        write("Description ", first);
        break;
    default:
        break;
    }
}

void InfoText::takeTable(const _tagBranchStruct& table)
{
    sText += "(Format Table";
    for (const AMI_NODE& node : AMI_Children(table)) {
        const _tagLeafStruct* const leaf = AMI_AsLeaf(node);
        if (leaf == nullptr) {
            continue;
        }
        if (leaf->eLeafType != AMI_LEAF_LABELS) {
            sText += " (" + Joined(AMI_Values(*leaf), " ") + ")";
            continue;
        }
        sText += " (Labels";
        for (const AMI_VALUE& label : AMI_Values(*leaf)) {
            sText += std::string(" \"") + label.pszText + QUOTE;
        }
        sText += ")";
    }
    sText += ") ";
}

}  // namespace

void TalIbis::getAMIParamInfo(const char* name, int index, TalIbisStringQueryData& result) const
{
    answerQuery(result, [&] {
        const AmiParam parameter = findAMI_Param(name, index, result);
        if (parameter.pBranch == nullptr) {
            return;
        }
        InfoText info;
        for (const AMI_NODE& node : AMI_Children(*parameter.pBranch)) {
            const _tagBranchStruct* const branch = AMI_AsBranch(node);
            if (branch == nullptr) {
                info.takeLeaf(*AMI_AsLeaf(node));
            } else if (std::string_view(branch->pszName) == "Table") {
                info.takeTable(*branch);
            }
        }
        result.setData(info.sText.c_str());
        if (!info.sNotes.empty()) {
            result.setFormatedError(QueryEmpty, "Error detected in parameter '%s' in the AMI file '%s': %s",
                                    parameter.pBranch->pszName, parameter.pFile->getFileName().c_str(),
                                    info.sNotes.c_str());
        }
    });
}

// Choices -------------------------------------------------------------------------------------------------

namespace
{

// Labels of the values to choose from, behind "Default" if there is one.
struct ChoiceLabels {
    AMI_Keyword eWord;
    bool bDefault;  // a default is a choice of its own
    std::array<const char*, 4> aLabels;
};

constexpr std::array<ChoiceLabels, 9> CHOICES{{
    {AMI_VALUE_FORMAT, false, {"Value"}},
    {AMI_RANGE, true, {"Typ", "Min", "Max", "User specified"}},
    {AMI_CORNER, true, {"Typ", "Slow", "Fast", "User specified"}},
    {AMI_LIST, true, {"Typ", "User specified"}},
    {AMI_INCREMENT, true, {"User specified"}},
    {AMI_STEPS, true, {"User specified"}},
    {AMI_GAUSSIAN, false, {"User specified"}},
    {AMI_DUAL_DIRAC, false, {"User specified"}},
    {AMI_DJRJ, false, {"User specified"}},
}};

// The values from min to max in steps. False if there are too many.
bool GenerateValues(std::span<const AMI_VALUE> tokens, std::vector<std::string>& out)
{
    double low = amiReal(tokens[2].pszText);
    double high = amiReal(tokens[3].pszText);
    if (low > high) {
        std::swap(low, high);
    }
    const double last = amiReal(tokens[4].pszText);
    const double step = tokens[0].eKeyword == AMI_INCREMENT ? last : (high - low) / last;
    // The last step may miss the end by rounding.
    const auto isNear = [high](double v) {
        return std::abs(v - high) <= 1e-15 * std::max(std::abs(v), std::abs(high));
    };
    for (double v = low; v < high || isNear(v); v += step) {
        if (out.size() == CHOICE_LIMIT) {
            return false;
        }
        out.push_back(printNumber(v));
        if (!(v + step > v) || std::isinf(step)) {
            break;
        }
    }
    return true;
}

// One parameter's choices.
class Choices
{
  public:
    explicit Choices(const _tagBranchStruct& parameter)
    {
        for (const AMI_NODE& node : AMI_Children(parameter)) {
            if (const _tagLeafStruct* leaf = AMI_AsLeaf(node); leaf != nullptr) {
                take(*leaf);
            }
        }
    }
    bool hasFormat() const { return mpFormat != nullptr; }
    /// False if there are more choices than are written.
    bool write(TalIbisListQueryData& list) const;

  private:
    void take(const _tagLeafStruct& leaf)
    {
        if (leaf.eLeafType == AMI_LEAF_FORMAT) {
            mpFormat = &leaf;
        } else if (leaf.eLeafType == AMI_LEAF_DEFAULT && leaf.iValueCount > 0) {
            mpszDefault = leaf.pValues[0].pszText;
        } else if (leaf.eLeafType == AMI_LEAF_TYPE) {
            mpszQuote = AMI_FirstKeyword(leaf) == AMI_STRING ? QUOTE : "";
        }
    }
    void insertValue(TalIbisListQueryData& list, const char* text) const
    {
        insertRow(list, mpszQuote + std::string(text) + mpszQuote);
    }
    bool writeValues(TalIbisListQueryData& list, std::span<const AMI_VALUE> tokens) const;

    const _tagLeafStruct* mpFormat = nullptr;
    const char* mpszDefault = nullptr;
    const char* mpszQuote = "";
};

bool Choices::write(TalIbisListQueryData& list) const
{
    const std::span<const AMI_VALUE> tokens = FormatTokens(*mpFormat);
    const auto* const row = std::find_if(CHOICES.begin(), CHOICES.end(), [&](const ChoiceLabels& labels) {
        return labels.eWord == AMI_FirstKeyword(*mpFormat);
    });
    if (row == CHOICES.end() || tokens.size() < 2) {
        return true;
    }
    if (row->bDefault && mpszDefault != nullptr) {
        insertRow(list, "Default");
    }
    for (const char* label : row->aLabels) {
        if (label != nullptr) {
            insertRow(list, label);
        }
    }
    return writeValues(list, tokens);
}

bool Choices::writeValues(TalIbisListQueryData& list, std::span<const AMI_VALUE> tokens) const
{
    const AMI_Keyword word = tokens[0].eKeyword;
    const char* const typ = tokens[1].pszText;
    const char* const user = mpszDefault != nullptr ? mpszDefault : typ;
    if (IsDistribution(word)) {
        insertRow(list, Joined(tokens.subspan(1), ","));
        return true;
    }
    if (word == AMI_INCREMENT || word == AMI_STEPS) {
        if (tokens.size() < 5) {
            return true;
        }
        std::vector<std::string> values;
        const bool whole = GenerateValues(tokens, values);
        for (int pass = 0; pass < 2; ++pass) {  // a value is its own label
            for (const std::string& value : values) {
                insertRow(list, value);
            }
        }
        return whole;
    }
    if (word == AMI_VALUE_FORMAT) {
        insertValue(list, typ);
        insertValue(list, typ);
        return true;
    }
    if (word == AMI_LIST) {
        for (const AMI_VALUE& value : tokens.subspan(1)) {
            insertValue(list, value.pszText);
        }
    }
    if (mpszDefault != nullptr) {
        insertValue(list, mpszDefault);
    }
    for (const AMI_VALUE& value : word == AMI_LIST ? tokens.subspan(1, 1) : tokens.subspan(1)) {
        insertValue(list, value.pszText);
    }
    insertValue(list, user);
    return true;
}

}  // namespace

void TalIbis::getAMIDataChoices(const char* name, int index, TalIbisListQueryData& list) const
{
    answerQuery(list, [&] {
        const _tagBranchStruct* const parameter = findAMI_Param(name, index, list).pBranch;
        if (parameter == nullptr) {
            return;
        }
        const Choices choices(*parameter);
        if (!choices.hasFormat()) {
            list.setUnformatedError(QueryWarning, "Format is not found");
        } else if (!choices.write(list)) {
            list.setUnformatedError(QueryWarning, "Only the first values are listed");
        }
    });
}
