// Query records: what a query of `TalIbis` answers into. The caller owns the record and reads its status, its
// error text and its result; the script layer turns it into a value of the host's language.

#pragma once

#include "ibis/source/nuibis_types.h"
#include "platform/qelrt.h"

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

/// Status of an answer. The numbers reach scripts.
enum StatusType : std::int32_t {
    QueryError = -1,   ///< the named thing is not in the file, or the argument is invalid
    QueryOk = 0,       ///< success
    QueryEmpty = 1,    ///< the file holds nothing of the kind asked for
    QueryWarning = 2,  ///< the answer is partial; the error text says what was skipped
};

/// Status and error text of an answer; its result is in the derived record.
class TALIBIS_API TalIbisQueryData
{
  public:
    /// Status 0, no error text.
    TalIbisQueryData() = default;
    /// Copies status and text.
    TalIbisQueryData(const TalIbisQueryData&) = default;
    /// Copies status and text.
    TalIbisQueryData& operator=(const TalIbisQueryData&) = default;
    /// Releases what the record holds.
    virtual ~TalIbisQueryData();
    /// Number of results: 1 for a string or a flag, the number of strings for a list.
    virtual std::size_t size();
    /// Status 0, no error text, no result.
    virtual void clear();

    /// One of `StatusType`; a value outside reads as 0.
    int getStatus() const;
    /// The error text; empty when nothing was reported.
    const std::string& getErrMsg() const { return errorText; }
    /// Stores the status and a text in printf's format, cut at 4,095 characters.
    void setFormatedError(StatusType status, const char* format, ...) __attribute__((format(printf, 3, 4)));
    /// Stores the status and, unless `text` is null, the text.
    void setUnformatedError(StatusType status, const char* text);

  protected:
    /// Writes "Warning: " or "Error: " and the error text, or nothing at status 0. No line end.
    void outputError(std::ostream& out) const;
    /// The value [[status, error text], payload]; takes the payload over.
    QVALUE wrapQval(QVALUE payload) const;

  private:
    StatusType status = QueryOk;
    std::string errorText;
};

/// A list of strings, owned by the record. A copy shares the strings with its source: a view of it, of which
/// only one may be destroyed with strings in it.
class TALIBIS_API TalIbisListQueryData : public TalIbisQueryData
{
  public:
    /// An empty list.
    TalIbisListQueryData() = default;
    /// Shares the strings with the source.
    TalIbisListQueryData(const TalIbisListQueryData&) = default;
    /// Shares the strings with the source; what this list held is not released.
    TalIbisListQueryData& operator=(const TalIbisListQueryData&) = default;
    /// Releases the strings.
    ~TalIbisListQueryData() override;
    /// Number of strings.
    std::size_t size() override;
    /// Releases the strings; status 0, no error text.
    void clear() override;

    /// Takes over a block of the C allocator and cuts its trailing white space. Null is ignored.
    void insert(char* text);
    /// The strings, owned by the list.
    const std::vector<char*>& getData() const { return strings; }
    /// [[status, error text], [string, ...]]; the caller owns it.
    QVALUE createQval() const;
    /// The error text, then each string behind four blanks on a line of its own.
    void output(std::ostream& out) const;

  private:
    void freeStrings();

    std::vector<char*> strings;
};

/// One string.
class TALIBIS_API TalIbisStringQueryData : public TalIbisQueryData
{
  public:
    /// Releases the string.
    ~TalIbisStringQueryData() override;
    /// The empty string, status 0, no error text.
    void clear() override;
    /// Replaces the result; `text` must not be null.
    void setData(const char* text);
    /// The result.
    const std::string& getData() const { return result; }
    /// [[status, error text], string]; the caller owns it.
    QVALUE createQval() const;
    /// The error text, then the string. No line end.
    void output(std::ostream& out) const;

  private:
    std::string result;
};

/// One flag. `clear` keeps it: every query sets it on every path.
class TALIBIS_API TalIbisBooleanQueryData : public TalIbisQueryData
{
  public:
    /// Releases the error text.
    ~TalIbisBooleanQueryData() override;
    /// Replaces the result.
    void setData(bool flag) { result = flag; }
    /// The flag, not the status of the answer.
    bool status() const { return result; }
    /// [[status, error text], 0 or 1]; the caller owns it.
    QVALUE createQval() const;
    /// The error text, then 0 or 1. No line end.
    void output(std::ostream& out) const;

  private:
    bool result = false;
};
