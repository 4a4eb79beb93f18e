// The list of findings of a read, as a host gets it.

#pragma once

#include "ibis/source/nuibis_types.h"

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <vector>

/// Kind of a stored message. Bugs count as errors, cautions and notes as warnings.
enum MessageType : std::int32_t {
    MSG_TYPE_NONE = 0,     ///< no message
    MSG_TYPE_WARNING = 1,  ///< a warning, caution or note
    MSG_TYPE_ERROR = 2,    ///< an error or a bug
};

/// Worst kind of message that a container holds.
enum ErrorStatus : std::int32_t {
    IBIS_STATUS_CLEAN = 0,    ///< no message
    IBIS_STATUS_WARNING = 1,  ///< warnings only
    IBIS_STATUS_ERROR = 2,    ///< at least one error
};

/// One finding: its kind and its complete text, with the severity word ahead and a newline behind.
class TALIBIS_API IbisErrorMessage
{
  public:
    /// No type and no text.
    IbisErrorMessage() noexcept = default;
    /// Copies the text. A type of `MSG_TYPE_NONE` or a null text keeps no text.
    IbisErrorMessage(MessageType type, const char* text) noexcept;
    /// Copies the text; it is null when memory is out.
    IbisErrorMessage(const IbisErrorMessage& other) noexcept;
    /// Copies the text in place of the former one; it is null when memory is out.
    IbisErrorMessage& operator=(const IbisErrorMessage& other) noexcept;
    /// Releases the text.
    ~IbisErrorMessage();

    /// Kind of the message.
    MessageType getType() const noexcept { return eType; }
    /// The stored text, owned by the message; null when there is none.
    const char* getErrMsg() const noexcept { return pszText; }
    /// Writes the text, a newline and a flush; nothing for a message without type or text.
    void output(std::ostream& out) const;

  private:
    MessageType eType = MSG_TYPE_NONE;
    char* pszText = nullptr;
};

/// Findings in the order in which they were reported. The status only rises until `clear`.
class TALIBIS_API IbisErrorContainer
{
  public:
    /// Empty and clean.
    IbisErrorContainer() noexcept = default;
    /// Deep copy: the texts are copied too.
    IbisErrorContainer(const IbisErrorContainer& other) noexcept;
    /// Deep copy in place of what the container holds.
    IbisErrorContainer& operator=(const IbisErrorContainer& other) noexcept;
    /// Releases all messages.
    ~IbisErrorContainer();

    /// Appends a copy of `text` as an error. A null text does nothing.
    void addError(const char* text) noexcept;
    /// Appends a copy of `text` as a warning. A null text does nothing.
    void addWarning(const char* text) noexcept;
    /// Frees all messages; the status is clean again.
    void clear() noexcept;

    /// All texts joined, in a block that the caller releases with `free`. Null only when memory is out.
    char* getErrMsg() const noexcept;
    /// Text of message `i`; the index is not checked.
    const char* getErrMsg(std::size_t i) const noexcept { return messages[i]->getErrMsg(); }
    /// Message `i`, owned by the container; the index is not checked.
    const IbisErrorMessage* getError(std::size_t i) const noexcept { return messages[i]; }
    /// Number of stored messages, warnings included.
    std::size_t getNumErrors() const noexcept { return messages.size(); }
    /// Worst kind of message since the last `clear`.
    ErrorStatus getErrorStatus() const noexcept { return eStatus; }
    /// Writes each message with `IbisErrorMessage::output`.
    void output(std::ostream& out) const;

  private:
    void add(MessageType type, const char* text) noexcept;

    std::vector<IbisErrorMessage*> messages;
    ErrorStatus eStatus = IBIS_STATUS_CLEAN;
};
