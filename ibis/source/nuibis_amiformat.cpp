#include "ibis/source/nuibis_amiformat.h"

#include "ibis/source/nuibis_list.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace
{

// Base types ----------------------------------------------------------------------------------------------

// A set of base types.
using TypeSet = unsigned;

constexpr TypeSet Types(std::initializer_list<AMI_Keyword> types)
{
    TypeSet set = 0;
    for (const AMI_Keyword type : types) {
        set |= 1U << type;
    }
    return set;
}

constexpr bool IsOneOf(AMI_Keyword type, TypeSet set)
{
    return AMI_IsType(type) && ((set >> type) & 1U) != 0;
}

// A base type: the kinds of values that it takes, as bits, and its words.
struct BaseType {
    unsigned uiKinds;
    const char* pszWord;   // in a message on a value
    const char* pszClash;  // in a message on a format
};

constexpr unsigned ANY_KIND = ~0U;
constexpr unsigned KIND_INTEGER = 1U << AMI_KIND_INTEGER;
constexpr unsigned KIND_NUMBER = KIND_INTEGER | 1U << AMI_KIND_REAL;

constexpr std::array<BaseType, 6> BASE_TYPES{{
    {KIND_NUMBER, "Float", "Type/Float"},
    {KIND_INTEGER, "Integer", "Type/Integer"},
    {ANY_KIND, "String", "Type/String"},
    {1U << AMI_KIND_BOOLEAN, "Boolean", "Type/Boolean"},
    {KIND_NUMBER, "Tap", "Type/Tap"},
    {KIND_NUMBER, "NUIBIS_UI", "Type/UI"},
}};

const BaseType& BaseTypeOf(AMI_Keyword type)
{
    return BASE_TYPES[static_cast<std::size_t>(type - AMI_FLOAT)];
}

// One value against a base type; none is given if the parameter has no valid type.
bool CheckValueType(const AMI_VALUE& value, AMI_Keyword type, const char* label, const char* parameter)
{
    if (!AMI_IsType(type)) {
        return true;
    }
    const BaseType& base = BaseTypeOf(type);
    if (base.uiKinds == ANY_KIND ||
        (value.eValueKind != AMI_KIND_NONE && ((base.uiKinds >> value.eValueKind) & 1U) != 0)) {
        return true;
    }
    MSG_Error(4648, parameter, label, value.pszText, base.pszWord);
    return false;
}

// Formats -------------------------------------------------------------------------------------------------

enum class Wrong { Number, Literal, Literals };  // how a wrong count is told

enum class Step { None, Delta, Count };  // the last value of a series of numbers

constexpr TypeSet TEXTS = Types({AMI_STRING, AMI_BOOLEAN});
constexpr TypeSet UNDISTRIBUTED = Types({AMI_INTEGER, AMI_STRING, AMI_BOOLEAN, AMI_TAP});

struct FormatRule {
    AMI_Keyword eWord;
    const char* pszWord;
    const char* pszClash;  // the word in a message on the type
    int iValues;           // values behind the word
    std::array<const char*, 4> aLabels;
    Wrong eWrong;
    TypeSet uiRefused;  // base types that it does not go with
    bool bTypeFirst;    // a wrong type is told ahead of a wrong count
    bool bOrdered;      // typ lies between min and max
    Step eStep;
};

// clang-format off
constexpr std::array<FormatRule, 9> FORMATS{{
    {AMI_VALUE_FORMAT, "Format/Value", "", 1, {"Value"}, Wrong::Literal, 0, false, false, Step::None},
    {AMI_RANGE, "Range", "Format/Range", 3, {"Range/typ", "Range/min", "Range/max"},
     Wrong::Number, TEXTS, false, true, Step::None},
    {AMI_LIST, "List", "", 1, {"List"}, Wrong::Number, 0, false, false, Step::None},
    {AMI_CORNER, "Corner", "", 3, {"Corner/typ", "Corner/min", "Corner/max"},
     Wrong::Literals, 0, false, false, Step::None},
    {AMI_INCREMENT, "Increment", "Format/Increment", 4,
     {"Increment/typ", "Increment/min", "Increment/max", "Increment/delta"},
     Wrong::Number, TEXTS, false, true, Step::Delta},
    {AMI_STEPS, "Steps", "Format/Steps", 4, {"Steps/typ", "Steps/min", "Steps/max", "Steps/#steps"},
     Wrong::Number, TEXTS, false, true, Step::Count},
    {AMI_GAUSSIAN, "Gaussian", "Format/Gaussian", 2, {"Gaussian/mean", "Gaussian/sigma"},
     Wrong::Number, UNDISTRIBUTED, true, false, Step::None},
    {AMI_DUAL_DIRAC, "Dual-Dirac", "Format/Dual-Dirac", 3,
     {"Dual-Dirac/mean1", "Dual-Dirac/mean2", "Dual-Dirac/sigma"},
     Wrong::Number, UNDISTRIBUTED, true, false, Step::None},
    {AMI_DJRJ, "DjRj", "Format/DjRj", 3, {"DjRj/minDj", "DjRj/maxDj", "DjRj/sigma"},
     Wrong::Number, UNDISTRIBUTED, true, false, Step::None},
}};
// clang-format on

// A leaf of a format with the parameter that it belongs to.
struct Format {
    const FormatRule& rule;
    std::span<const AMI_VALUE> values;  // the word first
    AMI_Keyword eType;
    const char* pszParameter;

    const char* text(std::size_t i) const { return values[i].pszText; }
    double number(std::size_t i) const
    {
        double value = 0.0;
        CMN_ReadDouble(text(i), &value);
        return value;
    }
};

bool HasGoodCount(const Format& format)
{
    const int count = static_cast<int>(format.values.size()) - 1;
    const FormatRule& rule = format.rule;
    if (count == rule.iValues || (rule.eWord == AMI_LIST && count > 0)) {
        return true;
    }
    switch (rule.eWrong) {
    case Wrong::Number:
        MSG_Error(4632, rule.pszWord, format.pszParameter, rule.iValues);
        break;
    case Wrong::Literal:
        MSG_Error(4645, rule.pszWord, format.pszParameter, rule.iValues, "literal");
        break;
    case Wrong::Literals:
        MSG_Error(4645, rule.pszWord, format.pszParameter, rule.iValues, "literals");
        break;
    }
    return false;
}

bool HasGoodType(const Format& format)
{
    if (!IsOneOf(format.eType, format.rule.uiRefused)) {
        return true;
    }
    MSG_Error(4650, format.pszParameter, BaseTypeOf(format.eType).pszClash, format.rule.pszClash);
    return false;
}

bool HasGoodValues(const Format& format)
{
    bool good = true;
    for (std::size_t i = 1; i < format.values.size(); ++i) {
        const bool count = format.rule.eStep == Step::Count && i == 4;
        const char* const label = format.rule.aLabels[format.rule.eWord == AMI_LIST ? 0 : i - 1];
        good &=
            CheckValueType(format.values[i], count ? AMI_INTEGER : format.eType, label, format.pszParameter);
    }
    return good;
}

void CheckOrder(const Format& format)
{
    const double typ = format.number(1);
    const double min = format.number(2);
    const double max = format.number(3);
    if (min > typ || typ > max) {
        MSG_Error(4657, format.pszParameter, format.rule.pszWord, format.text(1), format.text(2),
                  format.text(3));
    }
    if (min > max) {
        MSG_Error(4658, format.pszParameter, format.rule.pszWord, format.text(2), format.text(3));
    }
}

void CheckFormatValues(const Format& format)
{
    const bool admitted = format.rule.bTypeFirst ? HasGoodType(format) && HasGoodCount(format)
                                                 : HasGoodCount(format) && HasGoodType(format);
    if (!admitted) {
        return;
    }
    if (HasGoodValues(format) && format.rule.bOrdered) {
        CheckOrder(format);
    }
    if (format.rule.eStep != Step::None && format.number(4) < 0.0) {
        MSG_Error(4659, format.pszParameter, format.rule.pszWord,
                  format.rule.eStep == Step::Delta ? "Delta" : "#steps", format.text(4));
    }
}

// Tables --------------------------------------------------------------------------------------------------

// The rows of one table, against the leaf of types and the labels, which both may be missing.
class Table
{
  public:
    Table(const _tagLeafStruct* types, const char* parameter) : mpTypes(types), mpszParameter(parameter) {}

    void addLabels(const _tagLeafStruct& leaf);
    void addRow(const _tagLeafStruct& row);
    void finish() const;

  private:
    // One type serves all columns.
    bool fits(int count) const { return mpTypes->iValueCount == count || mpTypes->iValueCount == 1; }
    void reportCount(const char* what, int count, const char* other, int otherCount) const
    {
        MSG_Error(4651, mpszParameter, what, count, other, otherCount);
    }
    void checkTypes(const _tagLeafStruct& row) const;

    const _tagLeafStruct* mpTypes;
    const char* mpszParameter;
    int miLabels = 0;
    int miRows = 0;
    int miLastCount = 0;
    bool mbLabelsSeen = false;
    bool mbUneven = false;
};

void Table::addLabels(const _tagLeafStruct& leaf)
{
    if (mbLabelsSeen) {
        MSG_Error(4640, mpszParameter, "Labels");
    }
    mbLabelsSeen = true;
    if (miRows > 0) {
        MSG_Error(4653, mpszParameter);
    }
    if (mpTypes != nullptr && !fits(leaf.iValueCount)) {
        reportCount("Labels", leaf.iValueCount, "Types", mpTypes->iValueCount);
    } else {
        miLabels = leaf.iValueCount;
    }
}

// What is wrong with all rows is told for the first.
void Table::checkTypes(const _tagLeafStruct& row) const
{
    if (!fits(row.iValueCount)) {
        if (miRows == 0) {
            reportCount("Row entries", row.iValueCount, "Types", mpTypes->iValueCount);
        }
        return;
    }
    for (int column = 0; column < row.iValueCount; ++column) {
        const AMI_Keyword type = mpTypes->pValues[mpTypes->iValueCount == 1 ? 0 : column].eKeyword;
        if (type == AMI_TAP) {
            if (miRows == 0) {
                MSG_Error(4650, mpszParameter, "Type/Tap", "Format/Table");
            }
            return;
        }
        CheckValueType(row.pValues[column], type, "Table", mpszParameter);
    }
}

void Table::addRow(const _tagLeafStruct& row)
{
    if (miLabels != 0 && row.iValueCount != miLabels) {
        reportCount("Row entries", row.iValueCount, "Labels", miLabels);
    }
    if (mpTypes != nullptr) {
        checkTypes(row);
    }
    mbUneven |= miRows > 0 && row.iValueCount != miLastCount;
    miLastCount = row.iValueCount;
    ++miRows;
}

void Table::finish() const
{
    if (miRows == 0) {
        MSG_Error(4654, mpszParameter);
    }
    if (mbUneven) {
        MSG_Error(4655, mpszParameter);
    }
}

// Tips ----------------------------------------------------------------------------------------------------

// Values of a list that bear the same tip are the same; numbers so within rounding.
bool IsSameValue(const AMI_VALUE& a, const AMI_VALUE& b, AMI_Keyword type)
{
    if (IsOneOf(type, TEXTS)) {
        return std::string_view(a.pszText) == b.pszText;
    }
    double first = 0.0;
    double second = 0.0;
    CMN_ReadDouble(a.pszText, &first);
    CMN_ReadDouble(b.pszText, &second);
    return std::abs(first) * 1e-9 >= std::abs(first - second);
}

void CheckEqualTips(std::span<const AMI_VALUE> tips, std::span<const AMI_VALUE> list, AMI_Keyword type,
                    const char* parameter, std::size_t& pairs)
{
    CMN_Vector<std::string_view> texts;
    for (const AMI_VALUE& tip : tips) {
        texts.push_back(tip.pszText);
    }
    const CMN_Vector<std::size_t> next = LIST_NextEqual(texts, std::less<>());
    for (std::size_t i = 0; i < tips.size(); ++i) {
        for (std::size_t j = next[i]; j < tips.size() && pairs < LIST_PAIR_LIMIT; j = next[j], ++pairs) {
            if (!IsSameValue(list[i], list[j], type)) {
                MSG_Error(4671, parameter, tips[i].pszText, list[i].pszText, list[j].pszText);
            }
        }
    }
}

}  // namespace

// "Table" is no word of a leaf.
void AMI_CheckFormat(const _tagLeafStruct& leaf, AMI_Keyword type, const char* parameter)
{
    const auto* const rule = std::find_if(FORMATS.begin(), FORMATS.end(), [&](const FormatRule& row) {
        return row.eWord == AMI_FirstKeyword(leaf);
    });
    if (leaf.iValueCount == 0) {
        MSG_Error(4626, leaf.pszName, parameter);
    } else if (rule == FORMATS.end()) {
        MSG_Error(4627, "Format", leaf.pValues[0].pszText, parameter);
    } else {
        CheckFormatValues({*rule, AMI_Values(leaf), type, parameter});
    }
}

void AMI_CheckTable(const _tagBranchStruct& branch, const _tagLeafStruct* types, const char* parameter)
{
    Table table(types, parameter);
    for (const AMI_NODE& node : AMI_Children(branch)) {
        const _tagLeafStruct* const leaf = AMI_AsLeaf(node);
        if (leaf == nullptr) {
            MSG_Error(4656, parameter);
            return;
        }
        if (leaf->eLeafType == AMI_LEAF_LABELS) {
            table.addLabels(*leaf);
        } else {
            table.addRow(*leaf);
        }
    }
    table.finish();
}

void AMI_CheckListTip(const _tagLeafStruct& tipLeaf, const _tagLeafStruct& listLeaf, AMI_Keyword type,
                      const char* parameter, std::size_t& pairs)
{
    const std::span<const AMI_VALUE> tips = AMI_Values(tipLeaf);
    const std::span<const AMI_VALUE> list = AMI_Values(listLeaf).subspan(1);
    if (tips.size() != list.size()) {
        MSG_Error(4670, parameter, tips.size(), list.size());
        return;
    }
    for (const AMI_VALUE& tip : tips) {
        if (tip.eValueKind == AMI_KIND_QUOTED && std::string_view(tip.pszText) == "\"\"") {
            MSG_Error(4681, parameter);
        }
    }
    CheckEqualTips(tips, list, type, parameter, pairs);
}
