#include "ibis/source/nuibis_parse.h"

#include "ibis/source/nuibis_circuit.h"
#include "ibis/source/nuibis_cmn.h"
#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_ebdmdl.h"
#include "ibis/source/nuibis_hdr.h"
#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_msel.h"
#include "ibis/source/nuibis_pkgmdl.h"
#include "ibis/source/nuibis_sniff.h"
#include "ibis/source/nuibis_submdl.h"
#include "ibis/source/nuibis_testdata.h"
#include "ibis/source/nuibis_testload.h"

#include <algorithm>
#include <array>

namespace
{

constexpr std::size_t KEYWORD_LIMIT = 117;
constexpr unsigned LINE_LIMIT_OLD = 80;  // below 4.0
constexpr unsigned LINE_LIMIT = 120;

// Driver state of a keyword pass, reset by StartKeywordPass; a nested read overwrites it.
nuibis_keyword geCurrentKeyword = NOT_KEY;  // keyword in force
char gcCommentChar = '|';
bool gbEndSeen = false;
bool gbIbisVerSeen = false;
bool gbInSubmodel = false;  // the last head of the model family was [Submodel]

// State of the text pass. The quotes are never reset: an unterminated string of one parameter file goes on in
// the next one, and so does the line that is told for it.
ibis_file_type geSavedFileType = IBIS_FILE_NONE;
bool gbInQuotes = false;
unsigned guiQuoteLine = 0;
char* gpszFileText = nullptr;  // result of the text pass, released at the start of the next one
std::size_t guiFileTextLength = 0;
std::size_t guiFileTextCapacity = 0;

// The keyword table ---------------------------------------------------------------------------------------

constexpr ibis_ver V2 = IBIS_VER_NONE;  // admitted from the oldest keyword table on
constexpr ibis_ver V3 = IBIS_VER_3;
constexpr ibis_ver V4 = IBIS_VER_4;
constexpr ibis_ver V5 = IBIS_VER_5;
constexpr ibis_ver V60 = IBIS_VER_6_0;
constexpr ibis_ver V61 = IBIS_VER_6_1;

// clang-format off
// A later version holds all that an earlier one holds, but for two rows: the 6.1 table spells the version keyword
// "NUIBIS_VER", deliberately kept, and gives [Initial Delay] its newest grammar.
constexpr auto KEYWORDS = std::to_array<PARSE_Keyword>({
    {"IBIS_VER", KEY_IBIS_VER, V2, V60},
    {"NUIBIS_VER", KEY_IBIS_VER, V61, V61},
    {"COMMENT_CHAR", KEY_COMMENT_CHAR, V2, V61},
    {"FILE_NAME", KEY_FILE_NAME, V2, V61},
    {"FILE_REV", KEY_FILE_REV, V2, V61},
    {"DATE", KEY_DATE, V2, V61},
    {"SOURCE", KEY_SOURCE, V2, V61},
    {"NOTES", KEY_NOTES, V2, V61},
    {"DISCLAIMER", KEY_DISCLAIMER, V2, V61},
    {"COPYRIGHT", KEY_COPYRIGHT, V2, V61},
    {"COMPONENT", KEY_COMPONENT, V2, V61},
    {"MANUFACTURER", KEY_MANUFACTURER, V2, V61},
    {"PACKAGE", KEY_PACKAGE, V2, V61},
    {"PIN", KEY_PIN, V2, V61},
    {"PACKAGE_MODEL", KEY_PACKAGE_MODEL, V2, V61},
    {"PIN_MAPPING", KEY_PIN_MAPPING, V2, V61},
    {"DIFF_PIN", KEY_DIFF_PIN, V2, V61},
    {"REPEATER_PIN", KEY_REPEATER_PIN, V60, V61},
    {"SERIES_SWITCH_GROUPS", KEY_SERIES_SWITCH_GROUPS, V3, V61},
    {"SERIES_PIN_MAPPING", KEY_SERIES_PIN_MAPPING, V3, V61},
    {"ALTERNATE_PACKAGE_MODELS", KEY_ALTERNATE_PACKAGE_MODELS, V4, V61},
    {"END_ALTERNATE_PACKAGE_MODELS", KEY_END_ALTERNATE_PACKAGE_MODELS, V4, V61},
    {"NODE_DECLARATIONS", KEY_NODE_DECLARATIONS, V4, V61},
    {"END_NODE_DECLARATIONS", KEY_END_NODE_DECLARATIONS, V4, V61},
    {"CIRCUIT_CALL", KEY_CIRCUIT_CALL, V4, V61},
    {"END_CIRCUIT_CALL", KEY_END_CIRCUIT_CALL, V4, V61},
    {"EXTERNAL_CIRCUIT", KEY_EXTERNAL_CIRCUIT, V4, V61},
    {"END_EXTERNAL_CIRCUIT", KEY_END_EXTERNAL_CIRCUIT, V4, V61},
    {"BEGIN_EMI_COMPONENT", KEY_BEGIN_EMI_COMPONENT, V5, V61},
    {"END_EMI_COMPONENT", KEY_END_EMI_COMPONENT, V5, V61},
    {"PIN_EMI", KEY_PIN_EMI, V5, V61},
    {"PIN_DOMAIN_EMI", KEY_PIN_DOMAIN_EMI, V5, V61},
    {"EXTERNAL_MODEL", KEY_EXTERNAL_MODEL, V4, V61},
    {"END_EXTERNAL_MODEL", KEY_END_EXTERNAL_MODEL, V4, V61},
    {"MODEL", KEY_MODEL, V2, V61},
    {"INITIAL_DELAY", KEY_INITIAL_DELAY_OLD, V2, V60},
    {"TEMPERATURE_RANGE", KEY_TEMPERATURE_RANGE, V2, V61},
    {"VOLTAGE_RANGE", KEY_VOLTAGE_RANGE, V2, V61},
    {"PULLUP_REFERENCE", KEY_PULLUP_REFERENCE, V2, V61},
    {"PULLDOWN_REFERENCE", KEY_PULLDOWN_REFERENCE, V2, V61},
    {"POWER_CLAMP_REFERENCE", KEY_POWER_CLAMP_REFERENCE, V2, V61},
    {"GND_CLAMP_REFERENCE", KEY_GND_CLAMP_REFERENCE, V2, V61},
    {"EXTERNAL_REFERENCE", KEY_EXTERNAL_REFERENCE, V3, V61},
    {"PULLDOWN", KEY_PULLDOWN, V2, V61},
    {"PULLUP", KEY_PULLUP, V2, V61},
    {"GND_CLAMP", KEY_GND_CLAMP, V2, V61},
    {"POWER_CLAMP", KEY_POWER_CLAMP, V2, V61},
    {"RGND", KEY_RGND, V2, V61},
    {"RPOWER", KEY_RPOWER, V2, V61},
    {"RAC", KEY_RAC, V2, V61},
    {"CAC", KEY_CAC, V2, V61},
    {"RAMP", KEY_RAMP, V2, V61},
    {"RISING_WAVEFORM", KEY_RISING_WAVEFORM, V2, V61},
    {"FALLING_WAVEFORM", KEY_FALLING_WAVEFORM, V2, V61},
    {"TTGND", KEY_TTGND, V3, V61},
    {"TTPOWER", KEY_TTPOWER, V3, V61},
    {"MODEL_SPEC", KEY_MODEL_SPEC, V3, V61},
    {"RECEIVER_THRESHOLDS", KEY_RECEIVER_THRESHOLDS, V4, V61},
    {"DRIVER_SCHEDULE", KEY_DRIVER_SCHEDULE, V3, V61},
    {"ON", KEY_ON, V3, V61},
    {"OFF", KEY_OFF, V3, V61},
    {"R_SERIES", KEY_R_SERIES, V3, V61},
    {"L_SERIES", KEY_L_SERIES, V3, V61},
    {"RL_SERIES", KEY_RL_SERIES, V3, V61},
    {"C_SERIES", KEY_C_SERIES, V3, V61},
    {"LC_SERIES", KEY_LC_SERIES, V3, V61},
    {"RC_SERIES", KEY_RC_SERIES, V3, V61},
    {"SERIES_CURRENT", KEY_SERIES_CURRENT, V3, V61},
    {"SERIES_MOSFET", KEY_SERIES_MOSFET, V3, V61},
    {"ADD_SUBMODEL", KEY_ADD_SUBMODEL, V3, V61},
    {"ALGORITHMIC_MODEL", KEY_ALGORITHMIC_MODEL, V5, V61},
    {"END_ALGORITHMIC_MODEL", KEY_END_ALGORITHMIC_MODEL, V5, V61},
    {"ISSO_PD", KEY_ISSO_PD, V5, V61},
    {"ISSO_PU", KEY_ISSO_PU, V5, V61},
    {"COMPOSITE_CURRENT", KEY_COMPOSITE_CURRENT, V5, V61},
    {"BEGIN_EMI_MODEL", KEY_BEGIN_EMI_MODEL, V5, V61},
    {"END_EMI_MODEL", KEY_END_EMI_MODEL, V5, V61},
    {"C_COMP_CORNER", KEY_C_COMP_CORNER, V5, V61},
    {"INITIAL_DELAY", KEY_INITIAL_DELAY, V61, V61},
    {"DEFINE_PACKAGE_MODEL", KEY_DEFINE_PACKAGE_MODEL, V2, V61},
    {"OEM", KEY_OEM, V2, V61},
    {"DESCRIPTION", KEY_DESCRIPTION, V2, V61},
    {"NUMBER_OF_PINS", KEY_NUMBER_OF_PINS, V2, V61},
    {"PIN_NUMBERS", KEY_PIN_NUMBERS, V2, V61},
    {"MODEL_DATA", KEY_MODEL_DATA, V2, V61},
    {"RESISTANCE_MATRIX", KEY_RESISTANCE_MATRIX, V2, V61},
    {"INDUCTANCE_MATRIX", KEY_INDUCTANCE_MATRIX, V2, V61},
    {"CAPACITANCE_MATRIX", KEY_CAPACITANCE_MATRIX, V2, V61},
    {"BANDWIDTH", KEY_BANDWIDTH, V2, V61},
    {"ROW", KEY_ROW, V2, V61},
    {"END_MODEL_DATA", KEY_END_MODEL_DATA, V2, V61},
    {"END_PACKAGE_MODEL", KEY_END_PACKAGE_MODEL, V2, V61},
    {"NUMBER_OF_SECTIONS", KEY_NUMBER_OF_SECTIONS, V3, V61},
    {"BEGIN_BOARD_DESCRIPTION", KEY_BEGIN_BOARD_DESCRIPTION, V3, V61},
    {"PIN_LIST", KEY_PIN_LIST, V3, V61},
    {"PATH_DESCRIPTION", KEY_PATH_DESCRIPTION, V3, V61},
    {"REFERENCE_DESIGNATOR_MAP", KEY_REFERENCE_DESIGNATOR_MAP, V3, V61},
    {"END_BOARD_DESCRIPTION", KEY_END_BOARD_DESCRIPTION, V3, V61},
    {"MODEL_SELECTOR", KEY_MODEL_SELECTOR, V3, V61},
    {"SUBMODEL", KEY_SUBMODEL, V3, V61},
    {"SUBMODEL_SPEC", KEY_SUBMODEL_SPEC, V3, V61},
    {"GND_PULSE_TABLE", KEY_GND_PULSE_TABLE, V3, V61},
    {"POWER_PULSE_TABLE", KEY_POWER_PULSE_TABLE, V3, V61},
    {"TEST_DATA", KEY_TEST_DATA, V4, V61},
    {"RISING_WAVEFORM_NEAR", KEY_RISING_WAVEFORM_NEAR, V4, V61},
    {"RISING_WAVEFORM_FAR", KEY_RISING_WAVEFORM_FAR, V4, V61},
    {"FALLING_WAVEFORM_NEAR", KEY_FALLING_WAVEFORM_NEAR, V4, V61},
    {"FALLING_WAVEFORM_FAR", KEY_FALLING_WAVEFORM_FAR, V4, V61},
    {"DIFF_RISING_WAVEFORM_NEAR", KEY_DIFF_RISING_WAVEFORM_NEAR, V4, V61},
    {"DIFF_RISING_WAVEFORM_FAR", KEY_DIFF_RISING_WAVEFORM_FAR, V4, V61},
    {"DIFF_FALLING_WAVEFORM_NEAR", KEY_DIFF_FALLING_WAVEFORM_NEAR, V4, V61},
    {"DIFF_FALLING_WAVEFORM_FAR", KEY_DIFF_FALLING_WAVEFORM_FAR, V4, V61},
    {"TEST_LOAD", KEY_TEST_LOAD, V4, V61},
    {"END", END, V2, V61},
});

// Places of the rows in alphabetical order. Rows of the same text keep their order.
constexpr auto BY_TEXT = [] {
    std::array<std::uint8_t, KEYWORDS.size()> places{};
    for (std::size_t i = 0; i < places.size(); ++i) {
        places[i] = static_cast<std::uint8_t>(i);
    }
    std::sort(places.begin(), places.end(), [](std::uint8_t a, std::uint8_t b) {
        return KEYWORDS[a].sText != KEYWORDS[b].sText ? KEYWORDS[a].sText < KEYWORDS[b].sText : a < b;
    });
    return places;
}();
static_assert(KEYWORDS.size() <= UINT8_MAX);

// The row that the current version has for a name, or null. Case does not count, and a blank is an underscore.
const PARSE_Keyword* FindKeyword(std::string_view name)
{
    std::array<char, KEYWORD_LIMIT> buffer;
    std::transform(name.begin(), name.end(), buffer.begin(),
                   [](char c) { return c == ' ' ? '_' : CMN_Upper(c); });
    const std::string_view text(buffer.data(), name.size());
    const auto* place =
        std::lower_bound(BY_TEXT.begin(), BY_TEXT.end(), text,
                         [](std::uint8_t row, std::string_view wanted) { return KEYWORDS[row].sText < wanted; });
    for (; place != BY_TEXT.end() && KEYWORDS[*place].sText == text; ++place) {
        const PARSE_Keyword& keyword = KEYWORDS[*place];
        if (geIbisVersion >= keyword.eFirst && geIbisVersion <= keyword.eLast) {
            return &keyword;
        }
    }
    return nullptr;
}

// The group table -----------------------------------------------------------------------------------------

struct Module {
    void (*init)();
    void (*line)(line_type lineType, nuibis_keyword code, std::string_view text);
    void (*leave)(nuibis_keyword newCode);  // null where a group has nothing to finish
};


// What a group's head keyword gets in a file of some type. Lines of a group that is not admitted are dropped
// without a word after the head was refused.
struct Admission {
    bool bAdmitted;
    MSG_Plain refusal;
};

constexpr Admission ADMITTED{true, 0};
constexpr Admission DROPPED{false, 0};
constexpr Admission NOT_IN_IBS{false, 913};
constexpr Admission NOT_IN_PKG{false, 911};
constexpr Admission NOT_IN_EBD{false, 912};

struct Group {
    nuibis_keyword eFirst;
    nuibis_keyword eLast;
    nuibis_keyword eHead;
    ibis_ver eFrom;
    ibis_ver eTo;
    std::array<Admission, 4> aTypes;  // by file type: none of the three, .ibs, .pkg, .ebd
    Module module;
};

constexpr std::array EVERYWHERE{ADMITTED, ADMITTED, ADMITTED, ADMITTED};
constexpr std::array IBS_ONLY{DROPPED, ADMITTED, NOT_IN_PKG, NOT_IN_EBD};
constexpr std::array IBS_ONLY_2{NOT_IN_PKG, ADMITTED, NOT_IN_PKG, NOT_IN_PKG};  // 2.x knows no board files
constexpr std::array PACKAGES{DROPPED, ADMITTED, ADMITTED, NOT_IN_EBD};
constexpr std::array BOARDS{DROPPED, NOT_IN_IBS, NOT_IN_PKG, ADMITTED};
constexpr std::array CIRCUITS{DROPPED, ADMITTED, NOT_IN_PKG, NOT_IN_PKG};  // the wording is that of a package file

constexpr Module CMPNT{CMPNT_Init, CMPNT_Line, CMPNT_Leave};
constexpr Module CIRCUIT{CIRCUIT_Init, CIRCUIT_Line, nullptr};
constexpr Module MDL{MDL_Init, MDL_Line, MDL_Leave};
constexpr Module TESTDATA{TESTDATA_Init, TESTDATA_Line, TESTDATA_Leave};
constexpr Module TESTLOAD{TESTLOAD_Init, TESTLOAD_Line, TESTLOAD_Leave};
constexpr Module PKGMDL{PKGMDL_Init, PKGMDL_Line, PKGMDL_Leave};
constexpr Module EBDMDL{EBDMDL_Init, EBDMDL_Line, EBDMDL_Leave};

// The first row that holds a code in a version is its group. [External Circuit] lies within the component's range.
constexpr auto GROUPS = std::to_array<Group>({
    {KEY_IBIS_VER, KEY_COPYRIGHT, KEY_IBIS_VER, V2, V61, EVERYWHERE, {HDR_Init, HDR_Line, HDR_Leave}},
    {KEY_EXTERNAL_CIRCUIT, KEY_END_EXTERNAL_CIRCUIT, KEY_EXTERNAL_CIRCUIT, V3, V61, CIRCUITS, CIRCUIT},
    {KEY_COMPONENT, KEY_PIN_DOMAIN_EMI, KEY_COMPONENT, V2, IBIS_VER_2, IBS_ONLY_2, CMPNT},
    {KEY_COMPONENT, KEY_PIN_DOMAIN_EMI, KEY_COMPONENT, V3, V61, IBS_ONLY, CMPNT},
    {KEY_EXTERNAL_MODEL, KEY_INITIAL_DELAY, KEY_MODEL, V2, IBIS_VER_2, IBS_ONLY_2, MDL},
    {KEY_EXTERNAL_MODEL, KEY_INITIAL_DELAY, KEY_MODEL, V3, V61, IBS_ONLY, MDL},
    {KEY_DEFINE_PACKAGE_MODEL, KEY_MERGED_PINS, KEY_DEFINE_PACKAGE_MODEL, V2, IBIS_VER_2, EVERYWHERE, PKGMDL},
    {KEY_DEFINE_PACKAGE_MODEL, KEY_MERGED_PINS, KEY_DEFINE_PACKAGE_MODEL, V3, V61, PACKAGES, PKGMDL},
    {KEY_BEGIN_BOARD_DESCRIPTION, KEY_END_BOARD_DESCRIPTION, KEY_BEGIN_BOARD_DESCRIPTION, V3, V61, BOARDS, EBDMDL},
    {KEY_MODEL_SELECTOR, KEY_MODEL_SELECTOR, KEY_MODEL_SELECTOR, V3, V61, IBS_ONLY, {MSEL_Init, MSEL_Line, nullptr}},
    {KEY_SUBMODEL, KEY_SUB_INITIAL_DELAY, KEY_SUBMODEL, V3, V61, IBS_ONLY, {SUBMDL_Init, SUBMDL_Line, SUBMDL_Leave}},
    {KEY_TEST_DATA, KEY_DIFF_FALLING_WAVEFORM_FAR, KEY_TEST_DATA, V3, V61, IBS_ONLY, TESTDATA},
    {KEY_TEST_LOAD, KEY_TEST_LOAD, KEY_TEST_LOAD, V3, V61, IBS_ONLY, TESTLOAD},
});
// clang-format on

const Group* GroupOf(nuibis_keyword code, ibis_ver version = geIbisVersion)
{
    const auto* const row = std::find_if(GROUPS.begin(), GROUPS.end(), [code, version](const Group& g) {
        return code >= g.eFirst && code <= g.eLast && version >= g.eFrom && version <= g.eTo;
    });
    return row == GROUPS.end() ? nullptr : row;
}

const Admission& AdmissionOf(const Group& group, ibis_file_type type)
{
    return group.aTypes[type >= IBIS_FILE_IBS && type <= IBIS_FILE_EBD ? static_cast<std::size_t>(type) : 0];
}

// Recognising a keyword -----------------------------------------------------------------------------------

bool IsInPackageModel(nuibis_keyword old)
{
    return old >= KEY_DEFINE_PACKAGE_MODEL && old <= KEY_DESCRIPTION;
}

bool IsInBoard(nuibis_keyword old)
{
    return old == KEY_BEGIN_BOARD_DESCRIPTION || old == KEY_EBD_MANUFACTURER;
}

bool IsBoardFile(nuibis_keyword)
{
    return geFileType == IBIS_FILE_EBD;
}

bool IsInSubmodel(nuibis_keyword)
{
    return gbInSubmodel;
}

// Of the texts that serve several keywords, the place of the line decides which one is meant.
struct Meaning {
    nuibis_keyword eFirst;  // of the codes that the keyword table gives
    nuibis_keyword eLast;
    nuibis_keyword eMeant;  // for the first of them; the others follow it
    bool (*isMeant)(nuibis_keyword old);

    bool concerns(nuibis_keyword code) const { return code >= eFirst && code <= eLast; }
    nuibis_keyword of(nuibis_keyword code) const
    {
        return static_cast<nuibis_keyword>(code - eFirst + eMeant);
    }
};

constexpr std::array<Meaning, 6> MEANINGS{{
    {KEY_MANUFACTURER, KEY_MANUFACTURER, KEY_PKG_MANUFACTURER, IsInPackageModel},
    {KEY_MANUFACTURER, KEY_MANUFACTURER, KEY_EBD_MANUFACTURER, IsInBoard},
    {KEY_NUMBER_OF_PINS, KEY_NUMBER_OF_PINS, KEY_EBD_NUMBER_OF_PINS, IsBoardFile},
    {KEY_PULLDOWN, KEY_POWER_CLAMP, KEY_SUB_PULLDOWN, IsInSubmodel},
    {KEY_RAMP, KEY_FALLING_WAVEFORM, KEY_SUB_RAMP, IsInSubmodel},
    {KEY_INITIAL_DELAY, KEY_INITIAL_DELAY, KEY_SUB_INITIAL_DELAY, IsInSubmodel},
}};

nuibis_keyword Remap(nuibis_keyword code, nuibis_keyword old)
{
    const auto* const row = std::find_if(MEANINGS.begin(), MEANINGS.end(), [=](const Meaning& meaning) {
        return meaning.concerns(code) && meaning.isMeant(old);
    });
    return row == MEANINGS.end() ? code : row->of(code);
}

// [End] belongs to no group: the driver reads it itself, in every file.
bool IsAdmitted(nuibis_keyword code, ibis_ver version, ibis_file_type type)
{
    const Group* const group = GroupOf(code, version);
    return code == END || (group != nullptr && AdmissionOf(*group, type).bAdmitted);
}

// Dispatch ------------------------------------------------------------------------------------------------

void EndOfFileKeyword(std::string_view text)
{
    CMN_SkipKeyword(text);
    if (!text.empty()) {
        MSG_ErrorLine(920);
    }
    gbEndSeen = true;
}

void OpenGroup(const Group& group, ibis_file_type type)
{
    if (group.eHead == KEY_IBIS_VER) {
        if (gbIbisVerSeen) {
            MSG_ErrorLine(910);
        }
        gbIbisVerSeen = true;
    }
    const Admission& admission = AdmissionOf(group, type);
    if (admission.bAdmitted) {
        if (group.module.init != nullptr) {
            group.module.init();
        }
    } else if (admission.refusal) {
        MSG_ErrorLine(admission.refusal);
    }
}

// A keyword line: closes the keyword in force and opens the group of a head keyword. False for an invalid
// keyword, which swallows the end of the group before it.
bool ChangeKeyword(ibis_file_type type, std::string_view text)
{
    if (gbExpectContinuation && geIbisVersion >= IBIS_VER_3) {
        MSG_ErrorLine(909);
        gbExpectContinuation = false;
    }
    const Group* const oldGroup = GroupOf(geCurrentKeyword);
    if (!PARSE_GetKeyword(text, geCurrentKeyword, &geCurrentKeyword)) {
        return false;
    }
    if (oldGroup != nullptr && oldGroup->module.leave != nullptr) {
        oldGroup->module.leave(geCurrentKeyword);
    }
    if (const Group* group = GroupOf(geCurrentKeyword);
        group != nullptr && geCurrentKeyword == group->eHead) {
        OpenGroup(*group, type);
    }
    return true;
}

void Dispatch(ibis_file_type type, line_type lineType, std::string_view text)
{
    if (lineType == LINE_KEYWORD && !ChangeKeyword(type, text)) {
        return;
    }
    if (geCurrentKeyword == END) {
        EndOfFileKeyword(text);
        return;
    }
    if (geCurrentKeyword == NOT_KEY) {
        MSG_ErrorLine(907, text);
        return;
    }
    if (geCurrentKeyword == KEY_MODEL || geCurrentKeyword == KEY_SUBMODEL) {
        gbInSubmodel = geCurrentKeyword == KEY_SUBMODEL;
    }
    const Group* const group = GroupOf(geCurrentKeyword);
    if (group == nullptr) {
        MSG_BugLine(908, __FILE_NAME__, __LINE__);
    } else if (AdmissionOf(*group, type).bAdmitted && group->module.line != nullptr) {
        group->module.line(lineType, geCurrentKeyword, text);
    }
}

// The keyword pass ----------------------------------------------------------------------------------------

bool IsCommentKeyword(std::string_view text)
{
    return CMN_EqualN(text, "[COMMENT_CHAR]", 14) || CMN_EqualN(text, "[COMMENT CHAR]", 14);
}

// "[Comment Char] X_char". Taken ahead of the comment cut; the keyword in force goes on behind it.
void ReadCommentChar(std::string_view text)
{
    static constexpr std::string_view mark = "_char";
    static constexpr std::string_view forbidden =
        "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ[]._/=+-";
    CMN_SkipKeyword(text);
    if (text.empty() || !text.substr(1).starts_with(mark)) {
        MSG_ErrorLine(917);
        return;
    }
    const char wanted = text.front();
    if (forbidden.find(wanted) != std::string_view::npos) {
        MSG_ErrorLine(918, wanted);
    } else {
        gcCommentChar = wanted;
    }
    text.remove_prefix(1 + mark.size());
    CMN_SkipSpace(text);
    if (!text.empty() && text.front() != gcCommentChar) {
        MSG_ErrorLine(919);
    }
}

void CheckLineLength(std::size_t length)
{
    const unsigned limit = geIbisVersion < IBIS_VER_4 ? LINE_LIMIT_OLD : LINE_LIMIT;
    if (length > limit) {
        MSG_ErrorLine(905, limit);
    }
}

bool IsHeaderText(nuibis_keyword code)
{
    return code >= KEY_SOURCE && code <= KEY_COPYRIGHT;
}

// `text` begins at the first character of `line` that is no white space.
line_type Classify(std::string_view line, std::string_view text)
{
    if (text.empty() || text.front() == gcCommentChar) {
        return LINE_BLANK;
    }
    if (text.front() != '[') {
        return LINE_DATA;
    }
    if (text.size() != line.size()) {
        if (IsHeaderText(geCurrentKeyword)) {
            return LINE_DATA;
        }
        MSG_ErrorLine(906);
    }
    return LINE_KEYWORD;
}

void ReadKeywordPassLine(ibis_file_type type, std::string_view line)
{
    ++guiLineNumber;
    CheckLineLength(line.size());
    std::string_view text = line;
    CMN_SkipSpace(text);
    const line_type lineType = Classify(line, text);
    if (lineType == LINE_BLANK) {
        return;
    }
    if (gbEndSeen) {
        MSG_ErrorLine(902);
        return;
    }
    if (lineType == LINE_KEYWORD && IsCommentKeyword(text)) {
        ReadCommentChar(text);
        return;
    }
    Dispatch(type, lineType, CMN_TrimEnd(text.substr(0, text.find(gcCommentChar))));
}

void StartKeywordPass()
{
    geCurrentKeyword = NOT_KEY;
    gcCommentChar = '|';
    gbEndSeen = false;
    gbIbisVerSeen = false;
    gbInSubmodel = false;
    guiLineNumber = 0;
    gszFileName[0] = '\0';
}

int ReadKeywordPass(const char* name, ibis_file_type type)
{
    int lines = 0;
    const ibis_ver sniffed = CMN_SniffVersion(name, &lines, type);
    if (sniffed < IBIS_VER_2) {
        MSG_Error(900, name);
        return 0;
    }
    StartKeywordPass();
    CMN_Stream stream;
    if (!CMN_OpenFile(name, type, stream, gszFileName)) {
        return 0;
    }
    std::string_view line;
    // The line counter moves behind the read, so an illegal character is told with the number of the line
    // before.
    while (CMN_ReadLine(stream, CMN_LINE_LIMIT, line)) {
        ReadKeywordPassLine(type, line);
    }
    if (!gbEndSeen) {
        MSG_Error(903);
        Dispatch(type, LINE_KEYWORD, "[END]");
    }
    return 1;
}

// The text pass -------------------------------------------------------------------------------------------

// Length of a line up to its comment. Quotes protect the comment character here, unlike in the keyword pass.
std::size_t FindComment(std::string_view line)
{
    // Looked for again only when the place has moved behind it, so that many quotes cost no walk each.
    std::size_t comment = gbInQuotes ? 0 : line.find(gcCommentChar);
    for (std::size_t at = 0;; ++at) {
        const std::size_t quote = line.find('"', at);
        if (!gbInQuotes) {
            comment = comment < at ? line.find(gcCommentChar, at) : comment;
            if (comment < quote || quote == std::string_view::npos) {
                return std::min(comment, line.size());
            }
            guiQuoteLine = guiParamLineNumber;
        } else if (quote == std::string_view::npos) {
            return line.size();
        }
        gbInQuotes = !gbInQuotes;
        at = quote;
    }
}

bool AppendText(std::span<const char> text, bool blank)
{
    const std::size_t needed = guiFileTextLength + text.size() + 2;
    if (needed > guiFileTextCapacity) {
        const std::size_t capacity = std::max(needed, 2 * guiFileTextCapacity);
        if (!CMN_Realloc(gpszFileText, capacity)) {
            MSG_Error(922, __FILE_NAME__, __LINE__);
            return false;
        }
        guiFileTextCapacity = capacity;
    }
    std::copy(text.begin(), text.end(), gpszFileText + guiFileTextLength);
    guiFileTextLength += text.size();
    if (blank) {
        gpszFileText[guiFileTextLength++] = ' ';
    }
    gpszFileText[guiFileTextLength] = '\0';
    return true;
}

void StartTextPass()
{
    PARSE_FreeFileText();
    guiParamLineNumber = 0;
    gcCommentChar = '|';
    gszFileName[0] = '\0';
}

int ReadTextPass(const char* name, ibis_file_type type)
{
    StartTextPass();
    CMN_Stream stream;
    if (!CMN_OpenFile(name, type, stream, gszFileName)) {
        return 0;
    }
    std::span<char> line;
    bool lineFeed = false;
    while (CMN_ReadLongLine(stream, line, lineFeed)) {
        ++guiParamLineNumber;
        const std::size_t length = FindComment({line.data(), line.size()});
        if (!AppendText(line.first(length), lineFeed || length != line.size())) {
            break;
        }
    }
    if (gbInQuotes) {
        MSG_Error(924, guiQuoteLine);
    }
    geFileType = geSavedFileType;
    return 1;
}

}  // namespace

std::span<const PARSE_Keyword> PARSE_GetKeywords()
{
    return KEYWORDS;
}

bool PARSE_IsRead(const PARSE_Keyword& keyword, ibis_ver version, ibis_file_type type)
{
    if (version < keyword.eFirst || version > keyword.eLast || !CMN_HasFileType(version, type)) {
        return false;
    }
    return IsAdmitted(keyword.eCode, version, type) ||
           std::any_of(MEANINGS.begin(), MEANINGS.end(), [&](const Meaning& meaning) {
               return meaning.concerns(keyword.eCode) && IsAdmitted(meaning.of(keyword.eCode), version, type);
           });
}

int PARSE_GetKeyword(std::string_view text, nuibis_keyword old, nuibis_keyword* out)
{
    CMN_ASSERT(text.starts_with('['));
    *out = NOT_KEY;
    const std::size_t bracket = text.find(']');
    if (bracket == std::string_view::npos) {
        MSG_ErrorLine(914);
        return 0;
    }
    const std::string_view name = text.substr(1, bracket - 1);
    if (name.empty() || name.size() > KEYWORD_LIMIT) {
        MSG_ErrorLine(915);
        return 0;
    }
    const PARSE_Keyword* const row = FindKeyword(name);
    if (row == nullptr) {
        std::array<char, KEYWORD_LIMIT + 1> normalised;
        CMN_CopyText(normalised, name);
        std::replace(normalised.begin(), normalised.begin() + static_cast<std::ptrdiff_t>(name.size()), ' ',
                     '_');
        MSG_ErrorLine(916, normalised.data());
        return 0;
    }
    *out = Remap(row->eCode, old);
    return 1;
}

std::string_view PARSE_GetKeywordName(nuibis_keyword code)
{
    const auto* const row =
        std::find_if(KEYWORDS.begin(), KEYWORDS.end(), [code](const PARSE_Keyword& keyword) {
            return keyword.eCode == code && keyword.eFirst == V2;
        });
    if (row == KEYWORDS.end()) {
        MSG_BugLine(904);
        return "Unknown enumerated keyword code";
    }
    return row->sText;
}

char PARSE_GetCommentChar()
{
    return gcCommentChar;
}

std::string_view PARSE_GetFileText()
{
    return {gpszFileText, guiFileTextLength};
}

void PARSE_FreeFileText()
{
    CMN_Release(gpszFileText);
    guiFileTextLength = guiFileTextCapacity = 0;
}

int PARSE_ReadFile(const char* name, ibis_file_type type)
{
    geSavedFileType = geFileType;
    geFileType = type;
    const bool parameters = type == IBIS_FILE_AMI || type == IBIS_FILE_PARAM;
    return parameters ? ReadTextPass(name, type) : ReadKeywordPass(name, type);
}
