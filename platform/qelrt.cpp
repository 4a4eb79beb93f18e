#include "platform/qelrt.h"

#include "platform/qelrt_inspect.h"

#include <functional>
#include <map>
#include <new>
#include <optional>
#include <string_view>
#include <utility>
#include <variant>

struct QvalType {
};

const QvalType QvalString{};
const QvalType QvalInteger{};

using LIST = std::vector<QVALUE>;
using TEXT = std::optional<std::string>;

struct VALUE_HEADER {
    std::variant<int, TEXT, LIST> content;
    std::size_t uiReferences = 1;
    VALUE_HEADER* pNextDead = nullptr;  // chain of the values that qval_free_value is about to delete
};

namespace
{

struct FRAME {
    std::span<const QVALUE> parameters;
    std::vector<QEL_PARM_ERROR>* pErrors = nullptr;
};

// The frame of the innermost running call; qel_call sets it and puts the former one back.
FRAME gFrame;

// The registered functions: never reset. Made at the first use, for libraries that register while being
// loaded.
using FUNCTION_MAP = std::map<std::string, QVALUE (*)(), std::less<>>;
FUNCTION_MAP& Functions() noexcept
{
    static FUNCTION_MAP functions;
    return functions;
}

template <class CONTENT> CONTENT* Content(QVALUE value) noexcept
{
    return value == nullptr ? nullptr : std::get_if<CONTENT>(&value->content);
}

template <class CONTENT> QVALUE Create(CONTENT content) noexcept
{
    return new (std::nothrow) VALUE_HEADER{std::move(content)};
}

bool IsOfType(QVALUE value, const QvalType& type) noexcept
{
    return (&type == &QvalString && Content<TEXT>(value) != nullptr) ||
           (&type == &QvalInteger && Content<int>(value) != nullptr);
}

void Release(QVALUE value, QVALUE& dead) noexcept
{
    if (value != nullptr && --value->uiReferences == 0) {
        value->pNextDead = std::exchange(dead, value);
    }
}

}  // namespace

QVALUE qval_create_list(std::size_t count) noexcept
{
    try {
        return Create(LIST(count));
    } catch (...) {
        return nullptr;
    }
}

QVALUE qval_create_raw_integer(int number) noexcept
{
    return Create(number);
}

QVALUE qval_create_string(const char* text) noexcept
{
    try {
        return Create(text == nullptr ? TEXT() : TEXT(text));
    } catch (...) {
        return nullptr;
    }
}

int qval_put_list_item(QVALUE list, std::size_t index, QVALUE value) noexcept
{
    LIST* items = Content<LIST>(list);
    if (items == nullptr || index >= items->size() || value == nullptr) {
        return 0;
    }
    ++value->uiReferences;
    qval_free_value(std::exchange((*items)[index], value));
    return 1;
}

const char* qval_value_data(QVALUE value) noexcept
{
    const TEXT* text = Content<TEXT>(value);
    return text != nullptr && text->has_value() ? (*text)->c_str() : nullptr;
}

int qval_integer_value(QVALUE value, int* out) noexcept
{
    const int* number = Content<int>(value);
    if (number == nullptr || out == nullptr) {
        return 0;
    }
    *out = *number;
    return 1;
}

void qval_free_value(QVALUE value) noexcept
{
    QVALUE dead = nullptr;
    Release(value, dead);
    while (dead != nullptr) {
        QVALUE current = std::exchange(dead, dead->pNextDead);
        if (const LIST* items = Content<LIST>(current)) {
            for (QVALUE item : *items) {
                Release(item, dead);
            }
        }
        delete current;
    }
}

int qrun_num_parm() noexcept
{
    return static_cast<int>(gFrame.parameters.size());
}

int qrun_get_typed_parm(int index, const QvalType& type, QVALUE* out) noexcept
{
    if (index < 0 || index >= qrun_num_parm() || out == nullptr) {
        return 0;
    }
    QVALUE value = gFrame.parameters[static_cast<std::size_t>(index)];
    if (!IsOfType(value, type)) {
        return 0;
    }
    ++value->uiReferences;
    *out = value;
    return 1;
}

void qrun_parm_error(int code, int index, const char* text) noexcept
{
    if (gFrame.pErrors == nullptr) {
        return;
    }
    try {
        gFrame.pErrors->push_back({code, index, text == nullptr ? "" : text});
    } catch (...) {
        // The call goes on without the report: the handler tells of the failure in its result as well.
    }
}

int qutil_initialize(int, int, int, int, const QEL_TABLE* table) noexcept
{
    using namespace std::string_view_literals;
    if (table == nullptr || table->language == nullptr || table->language != "QEL"sv ||
        table->rows == nullptr) {
        return 0;
    }
    const std::span rows(table->rows, table->count);
    for (const QEL_ROW& row : rows) {
        if (row.name == nullptr || row.handler == nullptr) {
            return 0;
        }
    }
    try {
        for (const QEL_ROW& row : rows) {
            Functions().insert_or_assign(row.name, row.handler);
        }
    } catch (...) {
        return 0;
    }
    return 1;
}

QVALUE qel_call(const char* function, std::span<const QVALUE> parameters,
                std::vector<QEL_PARM_ERROR>* errors) noexcept
{
    const auto found = function == nullptr ? Functions().end() : Functions().find(std::string_view(function));
    if (found == Functions().end()) {
        return nullptr;
    }
    const FRAME outer = std::exchange(gFrame, FRAME{parameters, errors});
    QVALUE result = found->second();
    gFrame = outer;
    return result;
}

bool qval_is_list(QVALUE value) noexcept
{
    return Content<LIST>(value) != nullptr;
}

std::size_t qval_list_size(QVALUE value) noexcept
{
    const LIST* items = Content<LIST>(value);
    return items == nullptr ? 0 : items->size();
}

QVALUE qval_list_item(QVALUE value, std::size_t index) noexcept
{
    return index < qval_list_size(value) ? (*Content<LIST>(value))[index] : nullptr;
}
