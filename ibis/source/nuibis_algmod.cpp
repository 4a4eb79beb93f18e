#include "ibis/source/nuibis_algmod.h"

#include "ibis/source/nuibis_amirules.h"
#include "ibis/source/nuibis_efile.h"
#include "ibis/source/nuibis_field.h"
#include "ibis/source/nuibis_list.h"
#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_parse.h"

#include <algorithm>
#include <array>
#include <tuple>

namespace
{

constexpr int ITEMS = 4;            // "Executable", platform, code file, parameter file
constexpr int PLATFORM_FIELDS = 5;  // platform "_" compiler "_" bits
constexpr std::size_t WORD_LIMIT = 44;
constexpr std::size_t EXCERPT = 31;  // characters that a message quotes of a faulty text

unsigned guiAlgmodLine = 0;  // line of the keyword last met, for messages when it is left

constexpr std::array<const char*, 4> KIND_WORDS{nullptr, "Executable", "Executable_Tx", "Executable_Rx"};

const char* KindWord(ALGMOD_Kind kind)
{
    return KIND_WORDS[kind];
}

ALGMOD_Kind KindOf(std::string_view word)
{
    const auto* const row = std::find(KIND_WORDS.begin() + 1, KIND_WORDS.end(), word);
    return row == KIND_WORDS.end() ? NOT_ALGMOD : static_cast<ALGMOD_Kind>(row - KIND_WORDS.begin());
}

// Reading a line ------------------------------------------------------------------------------------------

// What a name becomes; too long ones are reported as they are written.
std::string_view CutName(std::string_view name, std::size_t limit, MSG_Text1 tooLong)
{
    if (name.size() > limit) {
        MSG_ErrorLine(tooLong, name);
    }
    return name.substr(0, limit);
}

void ReadPlatform(ALGMOD& line, std::string_view text, const CMN_TokenList& fields)
{
    CMN_CopyText(line.szPlatform, CutName(fields[0], WORD_LIMIT, 4611));
    CMN_CopyText(line.szCompiler, CutName(fields[2], WORD_LIMIT, 4612));
    line.iBits = -1;
    if (int bits = 0; CMN_GetInt(fields[4], &bits) != CMN_INVALID) {
        line.iBits = bits;
    } else {
        MSG_ErrorLine(4613, text);
    }
}

void ReadCodeFile(ALGMOD& line, std::string_view text)
{
    const std::string_view name = CutName(text, PFILE_NAME_LIMIT, 4614);
    line.pCodeFile = EFILE_Find(name);
    if (line.pCodeFile == nullptr) {
        line.pCodeFile = EFILE_New(name);
    }
    line.bCodeFileUsable =
        line.pCodeFile != nullptr && EFILE_CheckPlatform(line.pCodeFile, line.iBits, line.szPlatform);
}

// The file of that name, read if this is the first to name it.
PFILE* FindOrRead(std::string_view name)
{
    if (PFILE* const known = PFILE_Find(name); known != nullptr) {
        return known;
    }
    PFILE* const file = PFILE_New(name);
    if (file != nullptr) {
        file->pTree = ALGMOD_ParseParamText(file->szName, file->eType);
    }
    return file;
}

void ReadParamFile(ALGMOD& line, std::string_view text)
{
    const std::string_view name = CutName(text, PFILE_NAME_LIMIT, 4614);
    if (!CMN_Equal(text.substr(std::min(text.rfind('.'), text.size())), ".ami")) {
        MSG_ErrorLine(4617, text);
        return;
    }
    line.pParamFile = FindOrRead(name);
    if (line.pParamFile == nullptr) {
        return;
    }
    if (line.eKind == ALGMOD_EXECUTABLE_RX && line.pParamFile->uiDirection == PFILE_TX_ONLY) {
        MSG_Error(4691, KindWord(line.eKind), line.pParamFile->szName, "Tx");
    }
    if (line.eKind == ALGMOD_EXECUTABLE_TX && line.pParamFile->uiDirection == PFILE_RX_ONLY) {
        MSG_Error(4691, KindWord(line.eKind), line.pParamFile->szName, "Rx");
    }
}

ALGMOD* ReadEntry(ALGMOD_Kind kind, const CMN_TokenList& tokens)
{
    const CMN_TokenList fields = CMN_SplitDelim(tokens[1], PLATFORM_FIELDS, '_');
    if (fields.iFound != PLATFORM_FIELDS) {
        MSG_ErrorLine(4610);
        return nullptr;
    }
    ALGMOD* line = nullptr;
    if (!CMN_Alloc(line)) {
        MSG_Bug(4602, __FILE_NAME__, __LINE__);
        return nullptr;
    }
    line->eKind = kind;
    ReadPlatform(*line, tokens[1], fields);
    ReadCodeFile(*line, tokens[2]);
    ReadParamFile(*line, tokens[3]);
    return line;
}

// Lines that repeat others --------------------------------------------------------------------------------

CMN_Vector<ALGMOD*> LinesOf(const ALGMOD_LIST& list)
{
    CMN_Vector<ALGMOD*> lines;
    for (ALGMOD* line = list.pFirst; line != nullptr; line = line->pNext) {
        lines.push_back(line);
    }
    return lines;
}

int CompareText(std::string_view a, std::string_view b)
{
    const CMN_CaseBlindLess less;
    return less(a, b) ? -1 : less(b, a) ? 1 : 0;
}

// Platform, compiler, bits and kind.
bool IsPlatformLess(const ALGMOD* a, const ALGMOD* b)
{
    return std::tuple(a->iBits, a->eKind, CompareText(a->szPlatform, b->szPlatform),
                      CompareText(a->szCompiler, b->szCompiler)) < std::tuple(b->iBits, b->eKind, 0, 0);
}

// Platform, bits and code file.
bool IsCodeLess(const ALGMOD* a, const ALGMOD* b)
{
    return std::tuple(a->iBits, CompareText(a->szPlatform, b->szPlatform), a->pCodeFile) <
           std::tuple(b->iBits, 0, b->pCodeFile);
}

// What a model type may have ------------------------------------------------------------------------------

struct LineOfModel {
    const nuibis_mdl& model;
    const ALGMOD& line;
    const char* type() const { return MDL_TypeName(model.eModelType); }
};

void RefuseKind(const LineOfModel& at)
{
    MSG_Error(4689, KindWord(at.line.eKind), at.model.szName, at.type());
}

void CheckOneWay(const LineOfModel& at)
{
    if (at.line.eKind != ALGMOD_EXECUTABLE) {
        RefuseKind(at);
    }
}

// A receiver of four levels needs their thresholds, which come from the parameters.
void CheckLevels(const LineOfModel& at)
{
    const PFILE* const file = at.line.pParamFile;
    if (file != nullptr && file->bPam4 && file->uiDirection == PFILE_BOTH) {
        MSG_Error(4700, at.model.szName, at.type(), file->szName);
    }
}

void CheckReceiver(const LineOfModel& at)
{
    const PFILE* const file = at.line.pParamFile;
    if (file != nullptr && file->uiDirection == PFILE_TX_ONLY) {
        MSG_Error(4699, at.model.szName, at.type(), file->szName, "Tx");
    }
    CheckLevels(at);
}

void CheckTransmitter(const LineOfModel& at)
{
    const PFILE* const file = at.line.pParamFile;
    if (file != nullptr && file->uiDirection == PFILE_RX_ONLY) {
        MSG_Error(4699, at.model.szName, at.type(), file->szName, "Rx");
    }
}

// From 6.1 on a buffer of both ways has a line for each.
void CheckBothWays(const LineOfModel& at)
{
    if (at.line.eKind == ALGMOD_EXECUTABLE && geIbisVersion >= IBIS_VER_6_1) {
        RefuseKind(at);
    }
    if (at.line.eKind == ALGMOD_EXECUTABLE_RX) {
        CheckLevels(at);
    }
}

struct TypeRule {
    MDL_TypeSet uiTypes;
    void (*check)(const LineOfModel& at);
};

// In the order of their messages; a differential input has its receiver's rule ahead of that of its lines.
constexpr std::array<TypeRule, 5> TYPE_RULES{{
    {MDL_Types({MODEL_INPUT, MODEL_INPUT_ECL}), CheckOneWay},
    {MDL_Types({MODEL_INPUT, MODEL_INPUT_ECL, MODEL_INPUT_DIFF}), CheckReceiver},
    {MDL_Types({MODEL_OUTPUT, MODEL_3STATE, MODEL_OPEN_DRAIN, MODEL_OPEN_SINK, MODEL_OPEN_SOURCE,
                MODEL_OUTPUT_ECL, MODEL_3STATE_ECL, MODEL_OUTPUT_DIFF, MODEL_INPUT_DIFF, MODEL_3STATE_DIFF}),
     CheckOneWay},
    {MDL_Types({MODEL_OUTPUT, MODEL_OUTPUT_ECL, MODEL_OUTPUT_DIFF}), CheckTransmitter},
    {MDL_Types({MODEL_IO, MODEL_IO_OPEN_DRAIN, MODEL_IO_OPEN_SINK, MODEL_IO_OPEN_SOURCE, MODEL_IO_ECL,
                MODEL_IO_DIFF}),
     CheckBothWays},
}};

void CheckModel(const nuibis_mdl& model)
{
    if (MDL_IsOneOf(model.eModelType, MDL_SERIES_TYPES)) {
        MSG_Error(4636, model.szName, MDL_TypeName(model.eModelType));
    }
    if (model.pAlgorithmicModel->pFirst == nullptr) {
        MSG_Error(4615, model.szName);
    }
    for (const ALGMOD* line = model.pAlgorithmicModel->pFirst; line != nullptr; line = line->pNext) {
        for (const TypeRule& rule : TYPE_RULES) {
            if (MDL_IsOneOf(model.eModelType, rule.uiTypes)) {
                rule.check({model, *line});
            }
        }
    }
}

// The text of a parameter file ----------------------------------------------------------------------------

void ReportFault(AMI_Result result, int position, std::string_view text, const char* fileName)
{
    if (position != AMI_NO_POSITION) {
        MSG_Error(4668, text.substr(static_cast<std::size_t>(position), EXCERPT));
        return;
    }
    switch (result) {
    case AMI_BAD_PARENTHESES:
        MSG_Error(4619, fileName);
        break;
    case AMI_NO_OPENING:
        MSG_Error(4620);
        break;
    case AMI_NO_PARENT:
    case AMI_NOT_OPEN:
        MSG_Error(4635);
        break;
    default:
        MSG_Bug(4621);
        break;
    }
}

// Judges a tree; false if anything but warnings came of it.
bool IsFaultless(const _tagTree& tree, ibis_file_type type)
{
    unsigned bugs[2];
    unsigned errors[2];
    MSG_GetCounts(&bugs[0], &errors[0], nullptr);
    AMI_CheckFile(AMI_Root(&tree), type);
    MSG_GetCounts(&bugs[1], &errors[1], nullptr);
    return bugs[0] == bugs[1] && errors[0] == errors[1];
}

// A parameter that is referred to -------------------------------------------------------------------------

const _tagBranchStruct* FindParameter(const _tagTree* tree, std::span<const std::string_view> names)
{
    const _tagBranchStruct* branch = AMI_Root(tree);
    if (branch == nullptr || names.size() < 2 || names[0] != branch->pszName) {
        return nullptr;
    }
    for (const std::string_view name : names.subspan(1)) {
        branch = AMI_FindBranch(*branch, name);
        if (branch == nullptr) {
            return nullptr;
        }
    }
    return branch;
}

void TakeFormat(const _tagLeafStruct& leaf, AMI_PARAMINFO& info)
{
    const AMI_Keyword word = AMI_FirstKeyword(leaf);
    info.iFormat = word;
    const bool one = word == AMI_VALUE_FORMAT;
    const bool several = word >= AMI_RANGE && word <= AMI_STEPS && info.pszValue == nullptr;
    if ((one || several) && leaf.iValueCount > 1) {
        info.pszValue = leaf.pValues[1].pszText;
    }
}

void TakeLeaf(const _tagLeafStruct& leaf, AMI_PARAMINFO& info)
{
    if (leaf.iValueCount == 0) {
        return;
    }
    switch (leaf.eLeafType) {
    case AMI_LEAF_USAGE:
        info.eUsage = AMI_FirstKeyword(leaf);
        break;
    case AMI_LEAF_TYPE:
        info.eType = AMI_FirstKeyword(leaf);
        break;
    case AMI_LEAF_FORMAT:
        TakeFormat(leaf, info);
        break;
    case AMI_LEAF_DEFAULT:
        info.pszValue = leaf.pValues[0].pszText;
        break;
    default:
        break;
    }
}

AMI_PARAMINFO InfoOf(const _tagBranchStruct& parameter)
{
    AMI_PARAMINFO info{AMI_NO_KEYWORD, AMI_NO_KEYWORD, 0, nullptr};
    for (const AMI_NODE& node : AMI_Children(parameter)) {
        if (const _tagLeafStruct* leaf = AMI_AsLeaf(node); leaf != nullptr) {
            TakeLeaf(*leaf, info);
        } else {
            info.iFormat = AMI_TABLE_FORMAT;
        }
    }
    return info;
}

bool IsNamedBy(const nuibis_mdl* model, const PFILE& file)
{
    const ALGMOD_LIST* const list = model == nullptr ? nullptr : model->pAlgorithmicModel;
    const ALGMOD* line = list == nullptr ? nullptr : list->pFirst;
    while (line != nullptr && line->pParamFile != &file) {
        line = line->pNext;
    }
    return line != nullptr;
}

// Only what holds for every simulation can be referred to.
void CheckReference(const AMI_PARAMINFO& info, const PFILE& file, const nuibis_mdl* model,
                    std::string_view parameter, std::string_view label, std::string_view name)
{
    if (file.eType == IBIS_FILE_PARAM) {
        if (info.eUsage != AMI_INFO) {
            MSG_ErrorLine(4687, parameter, label, name);
        }
    } else if (info.eUsage == AMI_DEP) {
        if (!IsNamedBy(model, file)) {
            MSG_ErrorLine(4693, label, name, parameter);
        }
        if (!file.bResolveExists) {
            MSG_ErrorLine(4694, label, name, parameter);
        }
    } else if (info.eUsage != AMI_INFO && info.eUsage != AMI_IN) {
        MSG_ErrorLine(4686, parameter, label, name);
    }
    if (info.iFormat >= AMI_TABLE_FORMAT) {
        MSG_ErrorLine(4688, parameter, label, name);
    }
}

}  // namespace

void ALGMOD_Init(std::string_view text, ALGMOD_LIST** list)
{
    static constexpr FIELD_BlockCodes codes{4603, 4605};
    if (*list != nullptr) {
        MSG_ErrorLine(4601);
        ALGMOD_Free(*list);
        *list = nullptr;
    }
    if (!CMN_Alloc(*list)) {
        MSG_Bug(4602, __FILE_NAME__, __LINE__);
        return;
    }
    FIELD_OpenBlock(text, "Algorithmic Model", codes);
    guiAlgmodLine = PARSE_GetLineNumber();
}

void ALGMOD_Line(std::string_view text, ALGMOD_LIST* list)
{
    if (list == nullptr) {
        return;
    }
    const CMN_TokenList tokens = CMN_Split(text, ITEMS);
    if (tokens.iFound != ITEMS) {
        MSG_ErrorLine(4605, tokens.iFound, "Algorithmic Model", ITEMS);
        return;
    }
    const ALGMOD_Kind kind = KindOf(tokens[0]);
    if (kind == NOT_ALGMOD) {
        MSG_Error(4609);
        return;
    }
    if (kind != ALGMOD_EXECUTABLE && geIbisVersion < IBIS_VER_6_1) {
        MSG_ErrorLine(4696, tokens[0]);
    }
    if (ALGMOD* const line = ReadEntry(kind, tokens); line != nullptr) {
        line->pNext = list->pFirst;
        list->pFirst = line;
    }
}

void ALGMOD_CheckBits(const ALGMOD_LIST* list)
try {
    if (list == nullptr) {
        return;
    }
    const CMN_Vector<ALGMOD*> lines = LinesOf(*list);
    const CMN_Vector<std::size_t> next = LIST_NextEqual(lines, IsPlatformLess);
    std::size_t pairs = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const ALGMOD& line = *lines[i];
        if (line.iBits != 32 && line.iBits != 64) {
            MSG_Error(4606, line.szPlatform, line.szCompiler, guiAlgmodLine);
        }
        for (std::size_t j = next[i]; j < lines.size() && pairs < LIST_PAIR_LIMIT; j = next[j], ++pairs) {
            MSG_Error(4607, line.szPlatform, line.szCompiler, line.iBits, guiAlgmodLine);
        }
    }
} catch (const std::bad_alloc&) {
    // Told by the allocation itself; the checks of this keyword fall away.
}

void ALGMOD_Free(ALGMOD_LIST* list)
{
    if (list == nullptr) {
        return;
    }
    CMN_FreeList(list->pFirst, [](ALGMOD& line) {
        if (line.pParamFile != nullptr) {
            AMI_FreeTree(&line.pParamFile->pTree);
        }
    });
    CMN_Free(list);
}

void ALGMOD_CheckModels(const nuibis_mdl* list)
try {
    CMN_Vector<const nuibis_mdl*> models;
    for (; list != nullptr; list = list->pNext) {
        models.push_back(list);
    }
    std::for_each(models.rbegin(), models.rend(), [](const nuibis_mdl* model) {
        if (model->pAlgorithmicModel != nullptr) {
            CheckModel(*model);
        }
    });
} catch (const std::bad_alloc&) {
    // Told by the allocation itself; the checks of the models fall away.
}

void ALGMOD_MarkDuplicates(ALGMOD_LIST* list)
try {
    CMN_Map<const ALGMOD*, bool, decltype(&IsCodeLess)> seen(&IsCodeLess);
    for (ALGMOD* const line : LinesOf(*list)) {
        line->bDuplicate = !seen.try_emplace(line, true).second || line->bDuplicate;
    }
} catch (const std::bad_alloc&) {
    // Told by the allocation itself; later lines stay unmarked.
}

void ALGMOD_MarkDuplicatesAcross(const ALGMOD_LIST* first, ALGMOD_LIST* second)
{
    const ALGMOD* const head = first->pFirst;
    for (ALGMOD* line = head == nullptr ? nullptr : second->pFirst; line != nullptr; line = line->pNext) {
        if (!IsCodeLess(head, line) && !IsCodeLess(line, head)) {
            line->bDuplicate = true;
        }
    }
}

_tagTree* ALGMOD_ParseParamText(const char* fileName, ibis_file_type type)
{
    const std::string_view text = PARSE_GetFileText();
    if (text.data() == nullptr) {
        return nullptr;
    }
    _tagTree* tree = nullptr;
    int position = AMI_NO_POSITION;
    const AMI_Result result = AMI_ParseTree(text, &tree, &position);
    if (result != AMI_OK) {
        ReportFault(result, position, text, fileName);
    }
    PARSE_FreeFileText();
    if (result == AMI_OK && !IsFaultless(*tree, type)) {
        AMI_FreeTree(&tree);
    }
    return tree;
}

void ALGMOD_ReadAmiFile(const char* fileName)
{
    _tagTree* tree = ALGMOD_ParseParamText(fileName, IBIS_FILE_AMI);
    AMI_FreeTree(&tree);
}

bool ALGMOD_ResolveParameter(std::span<const std::string_view> tokens, std::string_view name,
                             std::string_view label, const nuibis_mdl* model, AMI_PARAMINFO* out)
{
    const std::string_view fileName = tokens.front();
    const std::string_view parameter = tokens.back();
    const PFILE* const file = FindOrRead(CutName(fileName, PFILE_NAME_LIMIT, 4614));
    const _tagBranchStruct* const branch =
        file == nullptr ? nullptr : FindParameter(file->pTree, tokens.subspan(1));
    if (branch == nullptr) {
        MSG_ErrorLine(4683, parameter, fileName, label, name);
        return false;
    }
    *out = InfoOf(*branch);
    CheckReference(*out, *file, model, parameter, label, name);
    return true;
}
