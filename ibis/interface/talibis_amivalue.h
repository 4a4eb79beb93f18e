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
    /// Takes the two numbers as they are.
    AMI_Gaussian(double mean, double sigma) : mean(mean), sigma(sigma) {}
    /// "Gaussian( mean, sigma )".
    void output(std::ostream& out) const;

    double mean;   ///< centre
    double sigma;  ///< standard deviation
};

/// Two peaks, each spread by the same normal distribution.
class TALIBIS_API AMI_DualDirac
{
  public:
    /// Takes the three numbers as they are.
    AMI_DualDirac(double mean1, double mean2, double sigma) : mean1(mean1), mean2(mean2), sigma(sigma) {}
    /// "Dual-Dirac( mean1, mean2, sigma )".
    void output(std::ostream& out) const;

    double mean1;  ///< first peak
    double mean2;  ///< second peak
    double sigma;  ///< standard deviation about each peak
};

/// A uniform distribution between two bounds, spread by a normal one: deterministic and random jitter.
class TALIBIS_API AMI_DjRj
{
  public:
    /// Takes the three numbers as they are.
    AMI_DjRj(double minDj, double maxDj, double sigma) : minDj(minDj), maxDj(maxDj), sigma(sigma) {}
    /// "DjRj( minDj, maxDj, sigma )".
    void output(std::ostream& out) const;

    double minDj;  ///< lower bound
    double maxDj;  ///< upper bound
    double sigma;  ///< standard deviation of the random part
};

/// Kind of a cell of a table.
enum TableValueType : std::uint32_t {
    TableValueEmpty = 0,    ///< nothing
    TableValueInteger = 1,  ///< an integer
    TableValueReal = 2,     ///< a real number
    TableValueBoolean = 3,  ///< true or false
    TableValueString = 4,   ///< a text
};

/// One cell.
class TALIBIS_API TalIbisAMI_TableValue
{
  public:
    /// An empty cell.
    TalIbisAMI_TableValue() noexcept = default;
    /// Copies the text too; empty when memory is out.
    TalIbisAMI_TableValue(const TalIbisAMI_TableValue& other) noexcept;
    /// Takes the content over.
    TalIbisAMI_TableValue(TalIbisAMI_TableValue&& other) noexcept = default;
    /// Copies the text too; empty when memory is out.
    TalIbisAMI_TableValue& operator=(const TalIbisAMI_TableValue& other) noexcept;
    /// Takes the content over.
    TalIbisAMI_TableValue& operator=(TalIbisAMI_TableValue&& other) noexcept = default;

    /// Kind of the cell.
    TableValueType getValueType() const { return static_cast<TableValueType>(payload.index()); }
    /// An integer, or 0 or 1 of a boolean; 0 for any other kind.
    int getIntValue() const;
    /// A real; 0.0 for any other kind.
    double getRealValue() const;
    /// A text, owned by the cell; null for any other kind.
    const char* getStringValue() const;
    /// Keeps an integer.
    void setIntValue(int value) { payload = value; }
    /// Keeps a real number.
    void setRealValue(double value) { payload = value; }
    /// Keeps a boolean.
    void setBooleanValue(bool value) { payload = value; }
    /// Keeps a copy; null clears.
    void setStringValue(const char* text) noexcept;
    /// Empties the cell.
    void clearValue() { payload = std::monostate(); }
    /// A number, "True" or "False", the text without quotes, or nothing.
    std::string toString() const noexcept;

  private:
    std::variant<std::monostate, int, double, bool, std::string> payload;  // in the order of TableValueType
};

/// Type of a column of a table.
enum AMI_ColumnType : int {
    ColumnInteger = 1,  ///< Integer
    ColumnFloat = 2,    ///< Float
    ColumnString = 3,   ///< String
    ColumnBoolean = 4,  ///< Boolean
    ColumnUI = 5,       ///< UI: a number in unit intervals
};

/// A table of cells, row after row. The name of a row counts as its first cell.
class TALIBIS_API AMI_Table
{
  public:
    /// A table without cells.
    AMI_Table() noexcept = default;
    /// Copies everything; a table without cells when memory is out.
    AMI_Table(const AMI_Table& other) noexcept;
    /// Takes the content over.
    AMI_Table(AMI_Table&& other) noexcept = default;
    /// Copies everything; a table without cells when memory is out.
    AMI_Table& operator=(const AMI_Table& other) noexcept;
    /// Takes the content over.
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

    /// Number of rows.
    std::size_t getNumRows() const { return rowCount; }
    /// Number of columns, the names of the rows included.
    std::size_t getNumColumns() const { return columnCount; }
    /// Empty, or one for each column.
    const std::vector<std::string>& getLabels() const { return labels; }
    /// The types of the columns, numbers of `AMI_ColumnType`; a word that is no type is left out.
    const std::vector<int>& getColumnTypes() const { return columnTypes; }
    /// All cells, row after row.
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
    ValueEmpty = 0,      ///< nothing
    ValueInteger = 1,    ///< an integer
    ValueReal = 2,       ///< a real number
    ValueBoolean = 3,    ///< true or false
    ValueString = 4,     ///< a text
    ValueGaussian = 5,   ///< see `AMI_Gaussian`
    ValueDualDirac = 6,  ///< see `AMI_DualDirac`
    ValueDjRj = 7,       ///< see `AMI_DjRj`
    ValueTable = 8,      ///< see `AMI_Table`
};

/// The value of one parameter. Copies are deep; the value releases what it holds.
class TALIBIS_API TalIbisAMI_Value
{
  public:
    /// An empty value.
    TalIbisAMI_Value() noexcept = default;
    /// A deep copy; empty when memory is out.
    TalIbisAMI_Value(const TalIbisAMI_Value& other) noexcept { setValue(other); }
    /// Takes the content over.
    TalIbisAMI_Value(TalIbisAMI_Value&& other) noexcept = default;
    /// A deep copy; empty when memory is out.
    TalIbisAMI_Value& operator=(const TalIbisAMI_Value& other) noexcept;
    /// Takes the content over.
    TalIbisAMI_Value& operator=(TalIbisAMI_Value&& other) noexcept = default;

    /// Kind of the value.
    ValueType getValueType() const { return static_cast<ValueType>(payload.index()); }
    /// An integer, or 0 or 1 of a boolean; 0 for any other kind.
    int getIntValue() const;
    /// A real; 0.0 for any other kind.
    double getRealValue() const;
    /// A text, owned by the value; null for any other kind.
    const char* getStringValue() const;
    /// A normal distribution, owned by the value; null for any other kind.
    const AMI_Gaussian* getGaussianValue() const { return std::get_if<AMI_Gaussian>(&payload); }
    /// Two peaks, owned by the value; null for any other kind.
    const AMI_DualDirac* getDualDiracValue() const { return std::get_if<AMI_DualDirac>(&payload); }
    /// Bounds and spread of a jitter, owned by the value; null for any other kind.
    const AMI_DjRj* getDjRjValue() const { return std::get_if<AMI_DjRj>(&payload); }
    /// A table, owned by the value; null for any other kind.
    const AMI_Table* getTableValue() const { return std::get_if<AMI_Table>(&payload); }
    /// The same, to be changed in place.
    AMI_Table* getTableValue() { return std::get_if<AMI_Table>(&payload); }

    /// Keeps an integer.
    void setIntValue(int value) { payload = value; }
    /// Keeps a real number.
    void setRealValue(double value) { payload = value; }
    /// Any number but 0 is true.
    void setBooleanValue(int value) { payload = value != 0; }
    /// Keeps a copy; null clears.
    void setStringValue(const char* text) noexcept;
    /// Keeps a normal distribution.
    void setGaussianValue(double mean, double sigma) { payload = AMI_Gaussian(mean, sigma); }
    /// Keeps two peaks with one spread.
    void setDualDiracValue(double mean1, double mean2, double sigma)
    {
        payload = AMI_DualDirac(mean1, mean2, sigma);
    }
    /// Keeps the bounds and the spread of a jitter.
    void setDjRjValue(double minDj, double maxDj, double sigma) { payload = AMI_DjRj(minDj, maxDj, sigma); }
    /// Takes the table over.
    void setTableValue(AMI_Table&& table) { payload.emplace<AMI_Table>(std::move(table)); }
    /// Empties the value.
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
