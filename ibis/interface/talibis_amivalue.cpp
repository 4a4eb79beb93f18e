#include "ibis/interface/talibis_amivalue.h"

#include "ibis/interface/talibis_amitext.h"
#include "ibis/interface/talibis_print.h"
#include "ibis/source/nuibis_tree.h"
#include "platform/hostport.h"

#include <algorithm>
#include <array>
#include <climits>
#include <ostream>

double amiReal(const char* text)
{
    return hst_strtod(text, nullptr);
}

int amiInteger(const char* text)
{
    std::string_view rest = text;
    CMN_SkipSpace(rest);
    const bool negative = rest.starts_with('-');
    rest.remove_prefix(negative || rest.starts_with('+') ? 1 : 0);
    long long value = 0;
    for (std::size_t i = 0; i < rest.size() && CMN_IsDigit(rest[i]) && value <= INT_MAX; ++i) {
        value = value * 10 + (rest[i] - '0');
    }
    return static_cast<int>(std::clamp<long long>(negative ? -value : value, INT_MIN, INT_MAX));
}

bool amiBoolean(const char* text)
{
    return hst_stricmp(text, "True") == 0;
}

namespace
{

const char* BooleanText(bool value)
{
    return value ? "True" : "False";
}

std::string NumbersText(std::initializer_list<double> numbers, const char* separator)
{
    std::string text;
    for (const double number : numbers) {
        text += (text.empty() ? "" : separator) + printNumber(number);
    }
    return text;
}

// The text of the kinds that a value and a cell have in common.
struct PlainText {
    std::string operator()(std::monostate) const { return {}; }
    std::string operator()(int value) const { return std::to_string(value); }
    std::string operator()(double value) const { return printNumber(value); }
    std::string operator()(bool value) const { return BooleanText(value); }
    std::string operator()(const std::string& value) const { return value; }
};

struct ExchangeText : PlainText {
    using PlainText::operator();
    std::string operator()(const std::string& value) const { return '"' + value + '"'; }
    std::string operator()(const AMI_Gaussian& value) const
    {
        return NumbersText({value.mean, value.sigma}, " ");
    }
    std::string operator()(const AMI_DualDirac& value) const
    {
        return NumbersText({value.mean1, value.mean2, value.sigma}, " ");
    }
    std::string operator()(const AMI_DjRj& value) const
    {
        return NumbersText({value.minDj, value.maxDj, value.sigma}, " ");
    }
    std::string operator()(const AMI_Table& value) const { return value.toString(); }
};

struct Writer {
    std::ostream& out;
    void operator()(std::monostate) const { out << "Unknown data"; }
    void operator()(int value) const { out << std::to_string(value) << "(int)"; }
    void operator()(double value) const { out << printNumber(value) << "(real)"; }
    void operator()(bool value) const { out << (value ? "1" : "0") << "(int)"; }
    void operator()(const std::string& value) const { out << value << "(string)"; }
    void operator()(const AMI_Table& value) const { out << value.toString(); }
    template <class Distribution> void operator()(const Distribution& value) const { value.output(out); }
};

template <class Payload> int IntegerOf(const Payload& payload)
{
    if (const bool* boolean = std::get_if<bool>(&payload); boolean != nullptr) {
        return *boolean ? 1 : 0;
    }
    const int* const value = std::get_if<int>(&payload);
    return value == nullptr ? 0 : *value;
}

template <class Payload> double RealOf(const Payload& payload)
{
    const double* const value = std::get_if<double>(&payload);
    return value == nullptr ? 0.0 : *value;
}

template <class Payload> const char* StringOf(const Payload& payload)
{
    const std::string* const value = std::get_if<std::string>(&payload);
    return value == nullptr ? nullptr : value->c_str();
}

// The text may be the one that is held already.
template <class Payload> void SetString(Payload& payload, const char* text)
{
    try {
        payload = text == nullptr ? Payload() : Payload(std::string(text));
    } catch (const std::bad_alloc&) {
        payload = std::monostate();
    }
}

template <class Payload> void CopyPayload(Payload& payload, const Payload& other)
{
    try {
        payload = other;
    } catch (const std::bad_alloc&) {
        payload = std::monostate();
    }
}

}  // namespace

// Distributions -------------------------------------------------------------------------------------------

void AMI_Gaussian::output(std::ostream& out) const
{
    out << "Gaussian( " << NumbersText({mean, sigma}, ", ") << " )";
}

void AMI_DualDirac::output(std::ostream& out) const
{
    out << "Dual-Dirac( " << NumbersText({mean1, mean2, sigma}, ", ") << " )";
}

void AMI_DjRj::output(std::ostream& out) const
{
    out << "DjRj( " << NumbersText({minDj, maxDj, sigma}, ", ") << " )";
}

// Cells ---------------------------------------------------------------------------------------------------

TalIbisAMI_TableValue::TalIbisAMI_TableValue(const TalIbisAMI_TableValue& other) noexcept
{
    CopyPayload(payload, other.payload);
}

TalIbisAMI_TableValue& TalIbisAMI_TableValue::operator=(const TalIbisAMI_TableValue& other) noexcept
{
    CopyPayload(payload, other.payload);
    return *this;
}

int TalIbisAMI_TableValue::getIntValue() const
{
    return IntegerOf(payload);
}

double TalIbisAMI_TableValue::getRealValue() const
{
    return RealOf(payload);
}

const char* TalIbisAMI_TableValue::getStringValue() const
{
    return StringOf(payload);
}

void TalIbisAMI_TableValue::setStringValue(const char* text) noexcept
{
    SetString(payload, text);
}

std::string TalIbisAMI_TableValue::toString() const noexcept
try {
    return std::visit(PlainText(), payload);
} catch (const std::exception&) {
    return {};
}

// Tables --------------------------------------------------------------------------------------------------

AMI_Table::AMI_Table(const AMI_Table& other) noexcept
{
    *this = other;
}

AMI_Table& AMI_Table::operator=(const AMI_Table& other) noexcept
{
    if (this == &other) {
        return *this;
    }
    try {
        labels = other.labels;
        columnTypes = other.columnTypes;
        cells = other.cells;
        rowCount = other.rowCount;
        columnCount = other.columnCount;
    } catch (const std::bad_alloc&) {
        *this = AMI_Table();
    }
    return *this;
}

bool AMI_Table::setTableDimensionsAndLabels(const _tagBranchStruct* table) noexcept
try {
    std::vector<std::string> names;
    std::size_t rows = 0;
    std::size_t columns = 0;
    for (const AMI_NODE& node : AMI_Children(*table)) {
        const _tagLeafStruct* const leaf = AMI_AsLeaf(node);
        if (leaf == nullptr) {
            continue;
        }
        if (leaf->eLeafType == AMI_LEAF_LABELS) {
            for (const AMI_VALUE& label : AMI_Values(*leaf)) {
                names.emplace_back(label.pszText);
            }
        } else if (rows++ == 0) {
            columns = static_cast<std::size_t>(leaf->iValueCount);
        }
    }
    if (rows == 0 || columns == 0) {
        return false;
    }
    if (!names.empty()) {
        names.resize(columns);
    }
    labels = std::move(names);
    rowCount = rows;
    columnCount = columns;
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

void AMI_Table::setTableTypes(const _tagLeafStruct* types, bool isJitter) noexcept
try {
    static constexpr std::array<std::string_view, 5> words{"Integer", "Float", "String", "Boolean", "UI"};
    columnTypes.clear();
    for (const AMI_VALUE& value : AMI_Values(*types)) {
        const auto* const word = std::find(words.begin(), words.end(), value.pszText);
        if (word != words.end()) {
            columnTypes.push_back(ColumnInteger + static_cast<int>(word - words.begin()));
        }
    }
    if (types->iValueCount != 1 || columnCount < 2 || columnTypes.empty()) {
        return;
    }
    if (isJitter) {
        columnTypes = {ColumnInteger, columnTypes.front(), ColumnFloat};
    } else {
        columnTypes.assign(columnCount, columnTypes.front());
    }
} catch (const std::bad_alloc&) {
    columnTypes.clear();
}

TalIbisAMI_TableValue AMI_Table::makeCell(std::size_t column, const char* text) const
{
    TalIbisAMI_TableValue cell;
    switch (column < columnTypes.size() ? columnTypes[column] : 0) {
    case ColumnInteger:
        cell.setIntValue(amiInteger(text));
        break;
    case ColumnFloat:
    case ColumnUI:
        cell.setRealValue(amiReal(text));
        break;
    case ColumnString:
        cell.setStringValue(text);
        break;
    case ColumnBoolean:
        cell.setBooleanValue(amiBoolean(text));
        break;
    default:
        break;
    }
    return cell;
}

void AMI_Table::setTableData(const _tagBranchStruct* table) noexcept
try {
    cells.clear();
    for (const AMI_NODE& node : AMI_Children(*table)) {
        const _tagLeafStruct* const leaf = AMI_AsLeaf(node);
        if (leaf == nullptr || leaf->eLeafType == AMI_LEAF_LABELS) {
            continue;
        }
        const std::span<const AMI_VALUE> values = AMI_Values(*leaf);
        for (std::size_t column = 0; column < columnCount; ++column) {
            cells.push_back(column < values.size() ? makeCell(column, values[column].pszText)
                                                   : TalIbisAMI_TableValue());
        }
    }
} catch (const std::bad_alloc&) {
    *this = AMI_Table();
}

void AMI_Table::setTableData(std::vector<std::string>::const_iterator first,
                             std::vector<std::string>::const_iterator last, std::size_t columns,
                             std::size_t rows) noexcept
try {
    cells.clear();
    rowCount = rows;
    columnCount = columns;
    for (std::size_t i = 0; i < rows * columns && first != last; ++i, ++first) {
        cells.push_back(makeCell(i % columns, first->c_str()));
    }
} catch (const std::bad_alloc&) {
    *this = AMI_Table();
}

std::string AMI_Table::toString() const noexcept
try {
    std::string text;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        text += (i == 0 ? "" : " ") + cells[i].toString();
    }
    return text;
} catch (const std::bad_alloc&) {
    return {};
}

void AMI_Table::output(std::ostream& out) const
{
    out << "Table( ) ";
}

// Values --------------------------------------------------------------------------------------------------

TalIbisAMI_Value& TalIbisAMI_Value::operator=(const TalIbisAMI_Value& other) noexcept
{
    setValue(other);
    return *this;
}

void TalIbisAMI_Value::setValue(const TalIbisAMI_Value& other) noexcept
{
    CopyPayload(payload, other.payload);
}

int TalIbisAMI_Value::getIntValue() const
{
    return IntegerOf(payload);
}

double TalIbisAMI_Value::getRealValue() const
{
    return RealOf(payload);
}

const char* TalIbisAMI_Value::getStringValue() const
{
    return StringOf(payload);
}

void TalIbisAMI_Value::setStringValue(const char* text) noexcept
{
    SetString(payload, text);
}

std::string TalIbisAMI_Value::toString() const noexcept
try {
    return std::visit(ExchangeText(), payload);
} catch (const std::exception&) {
    return {};
}

void TalIbisAMI_Value::output(std::ostream& out) const
{
    std::visit(Writer{out}, payload);
}
