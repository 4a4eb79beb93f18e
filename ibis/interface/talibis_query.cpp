#include "ibis/interface/talibis_query.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <ostream>

namespace
{

constexpr std::size_t ERROR_TEXT_SIZE = 4096;

bool IsBlank(char c)
{
    return c == ' ' || (c >= 9 && c <= 13);
}

// A record never throws: without memory it holds an empty text.
void Assign(std::string& target, const char* text)
{
    try {
        target = text;
    } catch (const std::bad_alloc&) {
        target.clear();
    }
}

}  // namespace

TalIbisQueryData::~TalIbisQueryData() = default;

std::size_t TalIbisQueryData::size()
{
    return 1;
}

void TalIbisQueryData::clear()
{
    status = QueryOk;
    errorText.clear();
}

int TalIbisQueryData::getStatus() const
{
    return status >= QueryError && status <= QueryWarning ? status : QueryOk;
}

void TalIbisQueryData::setFormatedError(StatusType newStatus, const char* format, ...)
{
    std::array<char, ERROR_TEXT_SIZE> text;
    va_list args;
    va_start(args, format);
    std::vsnprintf(text.data(), text.size(), format, args);
    va_end(args);
    setUnformatedError(newStatus, text.data());
}

void TalIbisQueryData::setUnformatedError(StatusType newStatus, const char* text)
{
    status = newStatus;
    if (text != nullptr) {
        Assign(errorText, text);
    }
}

void TalIbisQueryData::outputError(std::ostream& out) const
{
    const int current = getStatus();
    if (current != QueryOk) {
        out << (current == QueryWarning ? "Warning: " : "Error: ") << errorText;
    }
}

QVALUE TalIbisQueryData::wrapQval(QVALUE payload) const
{
    const QVALUE header = qval_create_list(2);
    const QVALUE number = qval_create_raw_integer(getStatus());
    qval_put_list_item(header, 0, number);
    qval_free_value(number);
    const QVALUE text = qval_create_string(errorText.c_str());
    qval_put_list_item(header, 1, text);
    qval_free_value(text);

    const QVALUE value = qval_create_list(2);
    qval_put_list_item(value, 0, header);
    qval_put_list_item(value, 1, payload);
    qval_free_value(header);
    qval_free_value(payload);
    return value;
}

TalIbisListQueryData::~TalIbisListQueryData()
{
    freeStrings();
}

std::size_t TalIbisListQueryData::size()
{
    return strings.size();
}

void TalIbisListQueryData::freeStrings()
{
    for (char* text : strings) {
        std::free(text);
    }
    strings.clear();
}

void TalIbisListQueryData::clear()
{
    freeStrings();
    TalIbisQueryData::clear();
}

// The scan stops at the first character, so a text of blanks alone keeps one.
void TalIbisListQueryData::insert(char* text)
{
    if (text == nullptr) {
        return;
    }
    std::size_t length = std::strlen(text);
    while (length > 1 && IsBlank(text[length - 1])) {
        text[--length] = '\0';
    }
    try {
        strings.push_back(text);
    } catch (const std::bad_alloc&) {
        std::free(text);
        setUnformatedError(QueryError, nullptr);
    }
}

QVALUE TalIbisListQueryData::createQval() const
{
    const QVALUE payload = qval_create_list(strings.size());
    for (std::size_t i = 0; i < strings.size(); ++i) {
        const QVALUE text = qval_create_string(strings[i]);
        qval_put_list_item(payload, i, text);
        qval_free_value(text);
    }
    return wrapQval(payload);
}

void TalIbisListQueryData::output(std::ostream& out) const
{
    outputError(out);
    for (const char* text : strings) {
        out << "    " << text << std::endl;
    }
}

TalIbisStringQueryData::~TalIbisStringQueryData() = default;

void TalIbisStringQueryData::clear()
{
    result.clear();
    TalIbisQueryData::clear();
}

void TalIbisStringQueryData::setData(const char* text)
{
    Assign(result, text);
}

QVALUE TalIbisStringQueryData::createQval() const
{
    return wrapQval(qval_create_string(result.c_str()));
}

void TalIbisStringQueryData::output(std::ostream& out) const
{
    outputError(out);
    out << result;
}

TalIbisBooleanQueryData::~TalIbisBooleanQueryData() = default;

QVALUE TalIbisBooleanQueryData::createQval() const
{
    return wrapQval(qval_create_raw_integer(result ? 1 : 0));
}

void TalIbisBooleanQueryData::output(std::ostream& out) const
{
    outputError(out);
    out << result;
}
