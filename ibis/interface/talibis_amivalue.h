// Values of the parameters of an algorithmic model, and the texts by which they pass to its code file.
//
// No exception leaves these classes: what needs memory and gets none ends empty. Numbers print as "%g" and
// "%d" do,
// "." being the decimal point in every locale.

#pragma once

#include "ibis/source/nuibis_types.h"

#include <cstddef>
#include <iosfwd>
#include <string>
#include <variant>
#include <vector>

struct _tagBranchStruct;
struct _tagLeafStruct;

/// A normal distribution.
class TALIBIS_API AMI_Gaussian
{
  public:
    AMI_Gaussian(double mean, double sigma) : mean(mean), sigma(sigma) {}
    /// "Gaussian( mean, sigma )".
    void output(std::ostream& out) const;

    double mean;
    double sigma;
};

/// Two peaks, each spread by the same normal distribution.
class TALIBIS_API AMI_DualDirac
{
  public:
    AMI_DualDirac(double mean1, double mean2, double sigma) : mean1(mean1), mean2(mean2), sigma(sigma) {}
    /// "Dual-Dirac( mean1, mean2, sigma )".
    void output(std::ostream& out) const;

    double mean1;
    double mean2;
    double sigma;
};

/// A uniform distribution between two bounds, spread by a normal one: deterministic and random jitter.
class TALIBIS_API AMI_DjRj
{
  public:
    AMI_DjRj(double minDj, double maxDj, double sigma) : minDj(minDj), maxDj(maxDj), sigma(sigma) {}
    /// "DjRj( minDj, maxDj, sigma )".
    void output(std::ostream& out) const;

    double minDj;
    double maxDj;
    double sigma;
};

/// Kind of a cell of a table.
enum TableValueType : std::uint32_t {
    TableValueEmpty = 0,
    TableValueInteger = 1,
    TableValueReal = 2,
    TableValueBoolean = 3,
    TableValueString = 4,
};

/// One cell.
class TALIBIS_API TalIbisAMI_TableValue
{
  public:
    TalIbisAMI_TableValue() noexcept = default;
    TalIbisAMI_TableValue(const TalIbisAMI_TableValue& other) noexcept;
    TalIbisAMI_TableValue(TalIbisAMI_TableValue&& other) noexcept = default;
    TalIbisAMI_TableValue& operator=(const TalIbisAMI_TableValue& other) noexcept;
    TalIbisAMI_TableValue& operator=(TalIbisAMI_TableValue&& other) noexcept = default;

    TableValueType getValueType() const { return static_cast<TableValueType>(payload.index()); }
    /// An integer, or 0 or 1 of a boolean; 0 for any other kind.
    int getIntValue() const;
    /// A real; 0.0 for any other kind.
    double getRealValue() const;
    /// A text, owned by the cell; null for any other kind.
    const char* getStringValue() const;
    void setIntValue(int value) { payload = value; }
    void setRealValue(double value) { payload = value; }
    void setBooleanValue(bool value) { payload = value; }
    /// Keeps a copy; null clears.
    void setStringValue(const char* text) noexcept;
    void clearValue() { payload = std::monostate(); }
    /// A number, "True" or "False", the text without quotes, or nothing.
    std::string toString() const noexcept;

  private:
    std::variant<std::monostate, int, double, bool, std::string> payload;  // in the order of TableValueType
};

/// Type of a column of a table.
enum AMI_ColumnType : int {
    ColumnInteger = 1,
    ColumnFloat = 2,
    ColumnString = 3,
    ColumnBoolean = 4,
    ColumnUI = 5,
};

/// A table of cells, row after row. The name of a row counts as its first cell.
class TALIBIS_API AMI_Table
{
  public:
    AMI_Table() noexcept = default;
    AMI_Table(const AMI_Table& other) noexcept;
    AMI_Table(AMI_Table&& other) noexcept = default;
    AMI_Table& operator=(const AMI_Table& other) noexcept;
    AMI_Table& operator=(AMI_Table&& other) noexcept = default;

    /// Counts the rows of a branch, and the columns by its first row; takes the labels. False, with nothing
    /// stored, if there is no row or no column.
    bool setTableDimensionsAndLabels(const _tagBranchStruct* table) noexcept;
    /// Takes the types of the columns. One type serves all columns, but in a table of jitter, which has a bin
    /// number and two columns of numbers, the middle one alone.
    void setTableTypes(const _tagLeafStruct* types, bool isJitter) noexcept;
    /// Takes the cells of a branch. A cell behind the last column type, or missing in the row, is empty.
    void setTableData(const _tagBranchStruct* table) noexcept;
    /// Takes `rows` times `columns` tokens of a code file's text as the new cells.
    void setTableData(std::vector<std::string>::const_iterator first,
                      std::vector<std::string>::const_iterator last, std::size_t columns,
                      std::size_t rows) noexcept;

    std::size_t getNumRows() const { return rowCount; }
    std::size_t getNumColumns() const { return columnCount; }
    /// Empty, or one for each column.
    const std::vector<std::string>& getLabels() const { return labels; }
    const std::vector<int>& getColumnTypes() const { return columnTypes; }
    const std::vector<TalIbisAMI_TableValue>& getCells() const { return cells; }
    /// All cells, with a blank between them.
    std::string toString() const noexcept;
    /// "Table( ) ".
    void output(std::ostream& out) const;

  private:
    TalIbisAMI_TableValue makeCell(std::size_t column, const char* text) const;

    std::size_t rowCount = 0;
    std::size_t columnCount = 0;
    std::vector<std::string> labels;
    std::vector<int> columnTypes;
    std::vector<TalIbisAMI_TableValue> cells;
};

/// Kind of a value.
enum ValueType : std::uint32_t {
    ValueEmpty = 0,
    ValueInteger = 1,
    ValueReal = 2,
    ValueBoolean = 3,
    ValueString = 4,
    ValueGaussian = 5,
    ValueDualDirac = 6,
    ValueDjRj = 7,
    ValueTable = 8,
};

/// The value of one parameter. Copies are deep; the value releases what it holds.
class TALIBIS_API TalIbisAMI_Value
{
  public:
    TalIbisAMI_Value() noexcept = default;
    TalIbisAMI_Value(const TalIbisAMI_Value& other) noexcept { setValue(other); }
    TalIbisAMI_Value(TalIbisAMI_Value&& other) noexcept = default;
    TalIbisAMI_Value& operator=(const TalIbisAMI_Value& other) noexcept;
    TalIbisAMI_Value& operator=(TalIbisAMI_Value&& other) noexcept = default;

    ValueType getValueType() const { return static_cast<ValueType>(payload.index()); }
    /// An integer, or 0 or 1 of a boolean; 0 for any other kind.
    int getIntValue() const;
    /// A real; 0.0 for any other kind.
    double getRealValue() const;
    // Owned by the value; null for any other kind.
    const char* getStringValue() const;
    const AMI_Gaussian* getGaussianValue() const { return std::get_if<AMI_Gaussian>(&payload); }
    const AMI_DualDirac* getDualDiracValue() const { return std::get_if<AMI_DualDirac>(&payload); }
    const AMI_DjRj* getDjRjValue() const { return std::get_if<AMI_DjRj>(&payload); }
    const AMI_Table* getTableValue() const { return std::get_if<AMI_Table>(&payload); }
    AMI_Table* getTableValue() { return std::get_if<AMI_Table>(&payload); }

    void setIntValue(int value) { payload = value; }
    void setRealValue(double value) { payload = value; }
    /// Any number but 0 is true.
    void setBooleanValue(int value) { payload = value != 0; }
    /// Keeps a copy; null clears.
    void setStringValue(const char* text) noexcept;
    void setGaussianValue(double mean, double sigma) { payload = AMI_Gaussian(mean, sigma); }
    void setDualDiracValue(double mean1, double mean2, double sigma)
    {
        payload = AMI_DualDirac(mean1, mean2, sigma);
    }
    void setDjRjValue(double minDj, double maxDj, double sigma) { payload = AMI_DjRj(minDj, maxDj, sigma); }
    /// Takes the table over.
    void setTableValue(AMI_Table&& table) { payload.emplace<AMI_Table>(std::move(table)); }
    void clearValue() { payload = std::monostate(); }

    /// The text that passes to the code file: a number, "True" or "False", a string within double quotes, the
    /// numbers of a distribution, the cells of a table; nothing for an empty value.
    std::string toString() const noexcept;
    /// For people: the value with its kind.
    void output(std::ostream& out) const;

  private:
    void setValue(const TalIbisAMI_Value& other) noexcept;

    // In the order of ValueType.
    std::variant<std::monostate, int, double, bool, std::string, AMI_Gaussian, AMI_DualDirac, AMI_DjRj,
                 AMI_Table>
        payload;
};
