#include "ibis/source/nuibis_pkgmdl.h"

#include "ibis/source/nuibis_field.h"
#include "ibis/source/nuibis_fork.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_list.h"
#include "ibis/source/nuibis_mpins.h"
#include "ibis/source/nuibis_mtx.h"
#include "ibis/source/nuibis_names.h"
#include "ibis/source/nuibis_parse.h"
#include "ibis/source/nuibis_sect.h"
#include "platform/hostpath.h"
#include "platform/hostport.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace
{

constexpr unsigned PIN_LIMIT = 5;

// Module state, reset by PKGMDL_Init. There is one package model at a time.
PKGMDL* gpCurPkgMdl = nullptr;  // model being read, null between models
bool gbPinNumbersSeen = false;
bool gbModelDataSeen = false;
bool gbEndModelDataSeen = false;
bool gbEndPackageModelSeen = false;
bool gbSectionsSeen = false;                  // [Number Of Sections]: pin lines carry paths
nuibis_keyword geLastKeyword = NOT_KEY;       // data lines belong to it
nuibis_keyword gePrevKeyword = NOT_KEY;       // the one before, for [Bandwidth]
nuibis_keyword geCurMatrixKeyword = NOT_KEY;  // owner of [Row] lines
unsigned guiPinIndex = 0;                     // pins stored so far
bool gbPinStarted = false;                    // the path being read has a pin
FORK_Chain<PKGSECTNODE> gChain;               // end of that path
NAMES_Places gPinIndex;                       // first index, from 1, of each pin name
unsigned guiFoundPin = 0;                     // index of the pin that was looked up last

// Follows the list that was last looked into.
LIST_Index<PKGMDL, &PKGMDL::szName> gPackages;

struct Matrix {
    nuibis_keyword eCode;
    MTX* PKGMDL::*ppField;
    std::string_view sName;
    MSG_Plain duplicate;
    MSG_Text1 withSections;
    MSG_Text1 missing;  // 0: optional
};

constexpr std::array<Matrix, 3> MATRICES{{
    {KEY_RESISTANCE_MATRIX, &PKGMDL::pResistance, "Resistance", 3460, 3411, 0},
    {KEY_INDUCTANCE_MATRIX, &PKGMDL::pInductance, "Inductance", 3461, 3412, 3413},
    {KEY_CAPACITANCE_MATRIX, &PKGMDL::pCapacitance, "Capacitance", 3462, 3414, 3415},
}};

const Matrix* MatrixOf(nuibis_keyword code)
{
    const auto* const row =
        std::find_if(MATRICES.begin(), MATRICES.end(), [code](const Matrix& m) { return m.eCode == code; });
    return row == MATRICES.end() ? nullptr : row;
}

// The matrix that a keyword opened, or null.
MTX* OpenMatrix(nuibis_keyword code)
{
    const Matrix* const matrix = MatrixOf(code);
    return matrix == nullptr ? nullptr : gpCurPkgMdl->*matrix->ppField;
}

// Keyword lines; `text` is what follows the bracket ------------------------------------------------------

void ReadName(std::string_view text)
{
    CMN_SetString(gpCurPkgMdl->szName, text, 40, "Define_Package_Model");
    CMN_CheckReserved(gpCurPkgMdl->szName);
}

void ReadManufacturer(std::string_view text)
{
    CMN_SetString(gpCurPkgMdl->szManufacturer, text, 40, "Manufacturer");
}

void ReadOEM(std::string_view text)
{
    CMN_SetString(gpCurPkgMdl->szOEM, text, 40, "OEM");
}

void ReadDescription(std::string_view text)
{
    CMN_SetString(gpCurPkgMdl->szDescription, text, 60, "Description");
}

void ReadPinCount(std::string_view text)
{
    FIELD_ReadCount(text, {3420, 3421, 3422, 3423, 3424}, &gpCurPkgMdl->uiPinCount);
}

// From here on pin lines carry paths, also when the count itself is bad.
void ReadSectionCount(std::string_view text)
{
    const bool taken = !text.empty() && gpCurPkgMdl->uiSectionCount == 0;
    if (taken && gpCurPkgMdl->ppszPinNames != nullptr) {
        MSG_ErrorLine(3427);
    }
    FIELD_ReadCount(text, {3425, 3426, 3428, 3429, 3430}, &gpCurPkgMdl->uiSectionCount);
    gbSectionsSeen |= taken;
}

void OpenBlock(std::string_view text, std::string_view label, bool& seen)
{
    if (seen) {
        MSG_ErrorLine(3468, label);
        return;
    }
    if (!text.empty()) {
        MSG_ErrorLine(3469, label);
    }
    seen = true;
}

void OpenPinNumbers(std::string_view text)
{
    OpenBlock(text, "Pin_Numbers", gbPinNumbersSeen);
}

void OpenModelData(std::string_view text)
{
    OpenBlock(text, "Model_Data", gbModelDataSeen);
}

void EndModelData(std::string_view text)
{
    geCurMatrixKeyword = NOT_KEY;
    OpenBlock(text, "End_Model_Data", gbEndModelDataSeen);
}

void EndPackageModel(std::string_view text)
{
    OpenBlock(text, "End_Package_Model", gbEndPackageModelSeen);
}

// Rows behind a repeated keyword go on in the matrix that is there.
void OpenMatrixKeyword(std::string_view text)
{
    geCurMatrixKeyword = geLastKeyword;
    const Matrix& matrix = *MatrixOf(geLastKeyword);
    MTX*& field = gpCurPkgMdl->*matrix.ppField;
    if (field != nullptr) {
        MSG_ErrorLine(matrix.duplicate);
    } else {
        MTX_New(&field, text, gpCurPkgMdl->uiPinCount);
    }
}

void ReadBandwidth(std::string_view text)
{
    if (gePrevKeyword == KEY_BANDWIDTH) {
        MSG_ErrorLine(3464);
    } else if (MatrixOf(gePrevKeyword) == nullptr) {
        MSG_ErrorLine(3465);
    } else if (MTX* const matrix = OpenMatrix(gePrevKeyword); matrix != nullptr) {
        MTX_SetBandwidth(matrix, text);
    }
}

void OpenRow(std::string_view text)
{
    if (MatrixOf(geCurMatrixKeyword) == nullptr) {
        MSG_ErrorLine(3466);
    } else if (MTX* const matrix = OpenMatrix(geCurMatrixKeyword); matrix != nullptr) {
        MTX_AddRow(matrix, text);
    }
}

// A merging pin is a pin of the package (`mustExist`), its connecting pins are not.
void CheckMergedPin(std::string_view pin, bool mustExist)
{
    if (gpCurPkgMdl == nullptr || gpCurPkgMdl->ppszPinNames == nullptr || pin.empty()) {
        return;
    }
    unsigned index = 0;
    const bool exists = PKGMDL_FindPinIndex(pin, &index) != 0;
    if (mustExist && !exists) {
        MSG_ErrorLine(3473, pin);
    } else if (!mustExist && exists) {
        MSG_Error(3474, pin);
    }
}

void OpenMergedPins(std::string_view text)
{
    if (!gbPinNumbersSeen || gbModelDataSeen) {
        MSG_ErrorLine(3471);
    }
    if (const MPIN* record = MPIN_New(text, gpCurPkgMdl->pMergedPins); record != nullptr) {
        CheckMergedPin(record->szName, true);
    }
}

// Pins ----------------------------------------------------------------------------------------------------

void FreePath(PKGSECTNODE*& path)
{
    FORK_Free(path, [](PKGSECTNODE& node) { SECT_Free(static_cast<SECT*>(node.pData)); });
}

void FreePins(PKGMDL& package)
{
    for (std::size_t i = 0; package.ppSections != nullptr && package.ppszPinNames[i] != nullptr; ++i) {
        FreePath(package.ppSections[i]);
    }
    BLOCK_Free(package.pinNames);
    CMN_Release(package.ppszPinNames);
    CMN_Release(package.ppSections);
}

bool MakeRoomForPin(bool sections)
{
    PKGMDL& package = *gpCurPkgMdl;
    if (package.uiPinCount == 0) {
        MSG_ErrorLine(3433);
        return false;
    }
    if (guiPinIndex >= package.uiPinCount) {
        MSG_ErrorLine(3435);
        return false;
    }
    if (!CMN_GrowPointers(package.ppszPinNames, guiPinIndex)) {
        MSG_ErrorLine(3434);
        return false;
    }
    if (sections && !CMN_GrowPointers(package.ppSections, guiPinIndex)) {
        MSG_ErrorLine(3448);
        return false;
    }
    return true;
}

bool AddPin(std::string_view name, bool sections)
{
    if (!MakeRoomForPin(sections)) {
        return false;
    }
    char* const pin = BLOCK_CopyText(gpCurPkgMdl->pinNames, name);
    if (pin == nullptr) {
        MSG_ErrorLine(3436);
        return false;
    }
    gpCurPkgMdl->ppszPinNames[guiPinIndex++] = pin;
    if (!gPinIndex.add(pin, guiPinIndex)) {
        MSG_ErrorLine(3437, pin);
    }
    return true;
}

// Rows come in the order of the pins, nearly always: the pin behind the one found last needs no lookup where
// all names differ.
bool IsBehindFound(std::string_view pin)
{
    return guiFoundPin < guiPinIndex && gPinIndex.size() == guiPinIndex &&
           pin == gpCurPkgMdl->ppszPinNames[guiFoundPin];
}

std::string_view CutName(std::string_view name)
{
    if (name.size() > PIN_LIMIT) {
        MSG_ErrorLine(3432);
    }
    return name.substr(0, PIN_LIMIT);
}

// Null, with the record released, when memory is out.
PKGSECTNODE* ChainNode(PKGSECT_Kind kind, SECT* section)
{
    PKGSECTNODE* node = nullptr;
    if (!CMN_Alloc(node)) {
        SECT_Free(section);
        return nullptr;
    }
    node->eKind = kind;
    node->pData = section;
    gChain.append(gpCurPkgMdl->ppSections[guiPinIndex - 1], node);
    return node;
}

void ReadSections(std::string_view text)
{
    SECT* section = nullptr;
    while (SECT_ParseNext(text, &section)) {
        if (section == nullptr) {
            if (!gChain.hasTail()) {
                MSG_ErrorLine(3449);
            }
            return;
        }
        if (ChainNode(PKGSECT_SECTION, section) == nullptr) {
            return;
        }
    }
}

void OpenFork()
{
    if (gChain.hasOpenFork()) {
        MSG_ErrorLine(3439);
    }
    if (!gbPinStarted) {
        MSG_ErrorLine(3440);
    } else if (ChainNode(PKGSECT_FORK, nullptr) != nullptr) {
        gChain.openFork();
    }
}

void CloseFork()
{
    if (!gbPinStarted) {
        MSG_ErrorLine(3441);
    } else if (!gChain.hasOpenFork()) {
        MSG_ErrorLine(3443);
    } else if (!gChain.closeFork()) {
        MSG_ErrorLine(3442);
    }
}

// A list that was begun without paths starts anew: a path belongs to a pin of its own line.
void DropPlainPins()
{
    if (gpCurPkgMdl->ppszPinNames != nullptr && gpCurPkgMdl->ppSections == nullptr) {
        for (const Matrix& matrix : MATRICES) {
            MTX_NameRows(gpCurPkgMdl->*matrix.ppField);
        }
        gPinIndex.clear();
        guiPinIndex = 0;
        FreePins(*gpCurPkgMdl);
    }
}

void ReadPinWithPath(std::string_view text)
{
    std::string_view rest = text;
    const std::string_view name = CMN_NextToken(rest);
    gChain.forgetTail();
    gbPinStarted = false;
    if (gChain.hasOpenFork()) {
        MSG_ErrorLine(3444, name);
        gChain.forgetForks();
    }
    const std::string_view cut = CutName(name);
    SECT_WarnName(cut, {3445, 3446, 3447});
    DropPlainPins();
    if (AddPin(cut, true)) {
        gbPinStarted = true;
        ReadSections(rest);
    }
}

// "Len" and a "=": further sections of the pin's path. Anything else that begins so is a name.
bool ContinuesPath(std::string_view text)
{
    if (!text.starts_with("Len")) {
        return false;
    }
    text.remove_prefix(3);
    const std::size_t next = text.find_first_not_of(" \t");
    return next != std::string_view::npos && text[next] == '=';
}

void ReadPathLine(std::string_view text)
{
    if (ContinuesPath(text)) {
        if (gChain.hasTail()) {
            ReadSections(text);
        } else {
            MSG_ErrorLine(3438);
        }
    } else if (text == "Fork") {
        OpenFork();
    } else if (text == "Endfork") {
        CloseFork();
    } else {
        ReadPinWithPath(text);
    }
}

// Data lines ----------------------------------------------------------------------------------------------

void ReadPinLine(std::string_view text)
{
    if (geIbisVersion >= IBIS_VER_3 && gbSectionsSeen) {
        ReadPathLine(text);
    } else {
        AddPin(CutName(text), false);
    }
}

void ReadRowLine(std::string_view text)
{
    if (MatrixOf(geCurMatrixKeyword) == nullptr) {
        MSG_ErrorLine(3404);
    } else if (MTX* const matrix = OpenMatrix(geCurMatrixKeyword); matrix != nullptr) {
        MTX_AddRowData(matrix, text);
    }
}

void ReadMergedPinsLine(std::string_view text)
{
    MPIN_AddPins(gpCurPkgMdl->pMergedPins, text);
}

void RefuseData(std::string_view)
{
    MSG_ErrorLine(3404);
}

// The keyword table ---------------------------------------------------------------------------------------

using Reader = void (*)(std::string_view text);

struct Keyword {
    nuibis_keyword eCode;
    Reader keywordLine;
    Reader dataLine;
};

constexpr std::array<Keyword, 16> KEYWORDS{{
    {KEY_DEFINE_PACKAGE_MODEL, ReadName, RefuseData},
    {KEY_PKG_MANUFACTURER, ReadManufacturer, RefuseData},
    {KEY_OEM, ReadOEM, RefuseData},
    {KEY_DESCRIPTION, ReadDescription, RefuseData},
    {KEY_NUMBER_OF_PINS, ReadPinCount, RefuseData},
    {KEY_PIN_NUMBERS, OpenPinNumbers, ReadPinLine},
    {KEY_MODEL_DATA, OpenModelData, RefuseData},
    {KEY_RESISTANCE_MATRIX, OpenMatrixKeyword, RefuseData},
    {KEY_INDUCTANCE_MATRIX, OpenMatrixKeyword, RefuseData},
    {KEY_CAPACITANCE_MATRIX, OpenMatrixKeyword, RefuseData},
    {KEY_BANDWIDTH, ReadBandwidth, RefuseData},
    {KEY_ROW, OpenRow, ReadRowLine},
    {KEY_END_MODEL_DATA, EndModelData, RefuseData},
    {KEY_END_PACKAGE_MODEL, EndPackageModel, RefuseData},
    {KEY_NUMBER_OF_SECTIONS, ReadSectionCount, RefuseData},
    {KEY_MERGED_PINS, OpenMergedPins, ReadMergedPinsLine},
}};

const Keyword* FindKeyword(nuibis_keyword code)
{
    const auto* const row =
        std::find_if(KEYWORDS.begin(), KEYWORDS.end(), [code](const Keyword& k) { return k.eCode == code; });
    return row == KEYWORDS.end() ? nullptr : row;
}

void ReadKeyword(nuibis_keyword code, std::string_view text)
{
    const Keyword* const keyword = FindKeyword(code);
    if (keyword == nullptr) {
        MSG_BugLine(3403, __FILE_NAME__, __LINE__);
        return;
    }
    CMN_SkipKeyword(text);
    gePrevKeyword = geLastKeyword;
    geLastKeyword = code;
    keyword->keywordLine(text);
}

// End of a model ------------------------------------------------------------------------------------------

void CheckConnectingPins()
{
    const MPIN* const record = MPIN_GetCurrent();
    if (record == nullptr) {
        return;
    }
    if (record->iCount == 0) {
        MSG_Error(3475, MPIN_GetLine());
    }
    for (int i = 0; i < record->iCount; ++i) {
        CheckMergedPin(record->ppszPins[i], false);
    }
}

void CheckNames(const PKGMDL& package)
{
    if (package.szName[0] == '\0') {
        MSG_Error(3417);
    }
    if (package.szManufacturer[0] == '\0') {
        MSG_Error(3467, "Manufacturer", package.szName);
    }
    if (package.szOEM[0] == '\0') {
        MSG_Error(3418, package.szName);
    }
    if (package.szDescription[0] == '\0') {
        MSG_Error(3419, package.szName);
    }
}

void CheckPinCount(const PKGMDL& package)
{
    if (package.uiPinCount == 0) {
        MSG_Error(3431, package.szName);
    }
    if (!gbPinNumbersSeen) {
        MSG_Error(3452, package.szName);
    } else if (package.uiPinCount != 0) {
        if (package.ppszPinNames == nullptr) {
            MSG_Error(3453, package.szName);
        } else if (guiPinIndex != package.uiPinCount) {
            MSG_Error(3454, package.uiPinCount, guiPinIndex, package.szName);
        }
    }
}

void CheckPaths(const PKGMDL& package)
{
    if (!gbSectionsSeen || package.uiPinCount == 0 || package.ppSections == nullptr) {
        return;
    }
    if (gChain.hasOpenFork()) {
        MSG_Error(3450);
        gChain.forgetForks();
    }
    for (unsigned i = 0; i < guiPinIndex; ++i) {
        unsigned sections = 0;
        FORK_ForEach(
            static_cast<const PKGSECTNODE*>(package.ppSections[i]),
            [&sections](const PKGSECTNODE& node) { sections += node.eKind == PKGSECT_SECTION ? 1 : 0; });
        if (sections > package.uiSectionCount) {
            MSG_Error(3451, package.ppszPinNames[i], sections, package.uiSectionCount);
        }
    }
}

// A package has either paths or matrices.
void CheckKeyword(const PKGMDL& package, bool seen, MSG_Text1 withSections, MSG_Text1 missing)
{
    if (seen && gbSectionsSeen) {
        MSG_Error(withSections, package.szName);
    } else if (!seen && !gbSectionsSeen && missing) {
        MSG_Error(missing, package.szName);
    }
}

void CheckMatrices(const PKGMDL& package)
{
    for (const Matrix& matrix : MATRICES) {
        MTX* const field = package.*matrix.ppField;
        CheckKeyword(package, field != nullptr, matrix.withSections, matrix.missing);
        if (field != nullptr && !gbSectionsSeen) {
            MTX_CheckAtEnd(matrix.sName, field, package.szName);
        }
    }
}

void EndModel()
{
    const PKGMDL& package = *gpCurPkgMdl;
    CheckNames(package);
    CheckPinCount(package);
    CheckPaths(package);
    CheckKeyword(package, gbModelDataSeen, 3456, 3455);
    CheckMatrices(package);
    CheckKeyword(package, gbEndModelDataSeen, 3458, 3457);
    if (!gbEndPackageModelSeen) {
        MSG_Error(3459);
    }
    gpCurPkgMdl = nullptr;
}

// The .pkg files beside a component file ------------------------------------------------------------------

// Names of the regular, visible package files of a directory, in their order.
std::vector<std::string> ListPkgFiles(std::string_view directory)
{
    std::vector<std::string> names = HostPath(directory.empty() ? "." : directory).list();
    std::erase_if(names, [directory](const std::string& name) {
        constexpr std::string_view extension = ".pkg";
        hst_stat_t info{};
        return name.starts_with('.') || name.size() < extension.size() ||
               !CMN_Equal(std::string_view(name).substr(name.size() - extension.size()), extension) ||
               hst_stat((std::string(directory) + name).c_str(), &info) != 0 || !info.bRegular;
    });
    return names;
}

// The comparison takes the beginning of a name for the whole: a file too many is read rather than one missed.
bool FileHasModel(std::string_view file, std::string_view package)
{
    constexpr std::string_view head = "[DEFINE_PACKAGE_MODEL]";
    constexpr std::size_t lineLimit = 120;
    CMN_Stream stream;
    CMN_Path baseName;
    if (!CMN_OpenFile(file, IBIS_FILE_PKG, stream, baseName)) {
        return false;
    }
    std::string_view line;
    while (CMN_ReadLine(stream, lineLimit, line)) {
        CMN_SkipSpace(line);
        if (CMN_KeywordEqual(head, line.substr(0, head.size()))) {
            CMN_SkipKeyword(line);
            if (line.starts_with(package)) {
                return true;
            }
        }
    }
    return false;
}

}  // namespace

void PKGMDL_Init()
{
    gpCurPkgMdl = nullptr;
    gbPinNumbersSeen = gbModelDataSeen = gbEndModelDataSeen = gbEndPackageModelSeen = gbSectionsSeen = false;
    geLastKeyword = gePrevKeyword = geCurMatrixKeyword = NOT_KEY;
    guiPinIndex = 0;
    gbPinStarted = false;
    gChain.reset();
    gPinIndex.clear();
    MTX_Init();
    MPIN_Init();
    ibis* root = nullptr;
    if (!IBIS_GetCurrent(&root)) {
        MSG_BugLine(3400, __FILE_NAME__, __LINE__);
        return;
    }
    if (!CMN_Alloc(gpCurPkgMdl)) {
        MSG_ErrorLine(3416);
        return;
    }
    IBIS_Add<&ibis::pPackageModels>(root, gpCurPkgMdl);
}

void PKGMDL_Line(line_type lineType, nuibis_keyword code, std::string_view text)
try {
    if (lineType != LINE_KEYWORD && lineType != LINE_DATA) {
        MSG_BugLine(3405, __FILE_NAME__, __LINE__);
    } else if (gpCurPkgMdl == nullptr) {
        if (lineType == LINE_KEYWORD) {
            MSG_ErrorLine(3401);
        } else {
            MSG_ErrorLine(3402);
        }
    } else if (lineType == LINE_KEYWORD) {
        ReadKeyword(code, text);
    } else if (const Keyword* keyword = FindKeyword(geLastKeyword); keyword != nullptr) {
        keyword->dataLine(text);
    } else {
        MSG_ErrorLine(3404);
    }
} catch (const std::bad_alloc&) {
    // Told by the allocation itself; what was being read of the line is lost.
}

// [Define Package Model] itself lies outside, so that a new model ends the one before. The keywords that end
// a block close the matrix being read; the model ends with the first keyword of another family.
void PKGMDL_Leave(nuibis_keyword newCode)
try {
    if (geLastKeyword == KEY_MERGED_PINS) {
        CheckConnectingPins();
    }
    const bool ends = newCode == KEY_END_MODEL_DATA || newCode == KEY_END_PACKAGE_MODEL;
    if (newCode > KEY_DEFINE_PACKAGE_MODEL && newCode <= KEY_MERGED_PINS && !ends) {
        return;
    }
    if (ends) {
        MTX_CloseCurrent();
    } else if (gpCurPkgMdl != nullptr) {
        MTX_CloseCurrent();
        EndModel();
    }
} catch (const std::bad_alloc&) {
    gpCurPkgMdl = nullptr;
}

PKGMDL* PKGMDL_Find(PKGMDL* list, std::string_view name)
{
    return gPackages.find(list, name);
}

int PKGMDL_FindPinIndex(std::string_view pin, unsigned* index)
{
    *index = 0;
    if (gpCurPkgMdl == nullptr) {
        return 0;
    }
    *index = IsBehindFound(pin) ? guiFoundPin + 1 : gPinIndex.find(pin);
    guiFoundPin = *index;
    return *index != 0 ? 1 : 0;
}

const char* PKGMDL_GetPinName(unsigned index)
{
    return gpCurPkgMdl != nullptr && index < guiPinIndex ? gpCurPkgMdl->ppszPinNames[index] : nullptr;
}

int PKGMDL_GetNextPinNumber(PKGMDL* list, std::string_view package, bool first, const char** out)
{
    static unsigned next = 0;
    next = first ? 0 : next + 1;
    const PKGMDL* const model = PKGMDL_Find(list, package);
    if (model == nullptr || model->ppszPinNames == nullptr || next == model->uiPinCount ||
        model->ppszPinNames[next] == nullptr) {
        --next;  // a further call stays at the end
        return 0;
    }
    *out = model->ppszPinNames[next];
    return 1;
}

int PKGMDL_GetNextMergedPin(PKGMDL* list, std::string_view package, bool first, const char** out,
                            bool* isMergingPin)
{
    static const MPIN* record = nullptr;
    static int next = 0;  // connecting pin that comes next
    if (first) {
        const PKGMDL* const model = PKGMDL_Find(list, package);
        record = model == nullptr ? nullptr : model->pMergedPins;
    } else if (record != nullptr && next < record->iCount) {
        *out = record->ppszPins[next++];
        *isMergingPin = false;
        return 1;
    } else if (record != nullptr) {
        record = record->pNext;
    }
    if (record == nullptr) {
        return 0;
    }
    next = 0;
    *out = record->szName;
    *isMergingPin = true;
    return 1;
}

int PKGMDL_SearchPkgFiles(std::string_view package)
try {
    const CMN_PlaceKeeper keeper;
    int result = 0;
    for (const std::string& file : ListPkgFiles(keeper.directory())) {
        CMN_SetDirectory(keeper.directory());
        if (FileHasModel(file, package)) {
            PARSE_ReadFile(file.c_str(), IBIS_FILE_PKG);
            result = 1;
        }
    }
    return result;
} catch (const std::bad_alloc&) {
    return 0;
}

void PKGMDL_CheckAll(const PKGMDL* list)
try {
    LIST_Pairs<PKGMDL, &PKGMDL::szName> repeats(list);
    for (; list != nullptr; list = list->pNext) {
        for (unsigned pairs = repeats.behind(*list); pairs > 0; --pairs) {
            MSG_Error(3410, list->szName);
        }
    }
} catch (const std::bad_alloc&) {
    // Told by the allocation itself.
}

void PKGMDL_FreeList(PKGMDL* list)
{
    gpCurPkgMdl = nullptr;
    gPinIndex.clear();
    gPackages.reset();
    CMN_FreeList(list, [](PKGMDL& package) {
        FreePins(package);
        MTX_Free(package.pResistance);
        MTX_Free(package.pCapacitance);
        MTX_Free(package.pInductance);
        MPIN_Free(package.pMergedPins);
    });
}
