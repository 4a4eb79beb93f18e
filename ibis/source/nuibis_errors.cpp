#include "ibis/source/nuibis_errors.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <ostream>

namespace
{

char* CopyText(const char* text) noexcept
{
    const std::size_t size = std::strlen(text) + 1;
    char* copy = static_cast<char*>(std::malloc(size));
    if (copy != nullptr) {
        std::memcpy(copy, text, size);
    }
    return copy;
}

}  // namespace

IbisErrorMessage::IbisErrorMessage(MessageType type, const char* text) noexcept
    : eType(type), pszText(type == MSG_TYPE_NONE || text == nullptr ? nullptr : CopyText(text))
{
}

IbisErrorMessage::IbisErrorMessage(const IbisErrorMessage& other) noexcept
    : IbisErrorMessage(other.eType, other.pszText)
{
}

IbisErrorMessage& IbisErrorMessage::operator=(const IbisErrorMessage& other) noexcept
{
    if (this != &other) {
        std::free(pszText);
        eType = other.eType;
        pszText = other.pszText == nullptr ? nullptr : CopyText(other.pszText);
    }
    return *this;
}

IbisErrorMessage::~IbisErrorMessage()
{
    std::free(pszText);
}

void IbisErrorMessage::output(std::ostream& out) const
{
    if (eType != MSG_TYPE_NONE && pszText != nullptr) {
        out << pszText << std::endl;
    }
}

IbisErrorContainer::IbisErrorContainer(const IbisErrorContainer& other) noexcept
{
    *this = other;
}

IbisErrorContainer& IbisErrorContainer::operator=(const IbisErrorContainer& other) noexcept
{
    if (this != &other) {
        clear();
        for (const IbisErrorMessage* message : other.messages) {
            add(message->getType(), message->getErrMsg());
        }
        eStatus = other.eStatus;
    }
    return *this;
}

IbisErrorContainer::~IbisErrorContainer()
{
    clear();
}

void IbisErrorContainer::addError(const char* text) noexcept
{
    add(MSG_TYPE_ERROR, text);
}

void IbisErrorContainer::addWarning(const char* text) noexcept
{
    add(MSG_TYPE_WARNING, text);
}

// The status rises even when there is no memory for the message: a failed file must not look clean.
void IbisErrorContainer::add(MessageType type, const char* text) noexcept
{
    if (text == nullptr) {
        return;
    }
    eStatus = std::max(eStatus, type == MSG_TYPE_ERROR ? IBIS_STATUS_ERROR : IBIS_STATUS_WARNING);
    auto* message = new (std::nothrow) IbisErrorMessage(type, text);
    if (message == nullptr || message->getErrMsg() == nullptr) {
        delete message;
        return;
    }
    try {
        messages.push_back(message);
    } catch (const std::bad_alloc&) {
        delete message;
    }
}

void IbisErrorContainer::clear() noexcept
{
    for (const IbisErrorMessage* message : messages) {
        delete message;
    }
    messages.clear();
    eStatus = IBIS_STATUS_CLEAN;
}

char* IbisErrorContainer::getErrMsg() const noexcept
{
    std::size_t size = 1;
    for (const IbisErrorMessage* message : messages) {
        size += std::strlen(message->getErrMsg());
    }
    char* all = static_cast<char*>(std::malloc(size));
    if (all == nullptr) {
        return nullptr;
    }
    char* end = all;
    for (const IbisErrorMessage* message : messages) {
        const std::size_t length = std::strlen(message->getErrMsg());
        std::memcpy(end, message->getErrMsg(), length);
        end += length;
    }
    *end = '\0';
    return all;
}

void IbisErrorContainer::output(std::ostream& out) const
{
    for (const IbisErrorMessage* message : messages) {
        message->output(out);
    }
}
