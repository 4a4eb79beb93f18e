#include "tests/runtime/other_runtime.h"

#include <algorithm>
#include <optional>
#include <set>

struct QvalType {
    char kind;
};

const QvalType QvalString{'s'};
const QvalType QvalInteger{'i'};

struct VALUE_HEADER {
    char kind = 'l';
    int number = 0;
    std::optional<std::string> text;
    std::vector<QVALUE> items;
};

namespace
{

OtherRuntime gRuntime;
std::set<QVALUE> gAlive;
std::vector<QVALUE> gParameters;  // of the running call

QVALUE Create(VALUE_HEADER value)
{
    const QVALUE created = *gAlive.insert(new VALUE_HEADER(std::move(value))).first;
    gRuntime.uiAlive = gAlive.size();
    return created;
}

QVALUE Copy(const VALUE_HEADER& value)
{
    VALUE_HEADER copy = value;
    for (QVALUE& item : copy.items) {
        item = item == nullptr ? nullptr : Copy(*item);
    }
    return Create(std::move(copy));
}

std::string Print(QVALUE value)
{
    if (value == nullptr) {
        return "-";
    }
    if (value->kind != 'l') {
        return value->kind == 'i' ? std::to_string(value->number) : '"' + value->text.value_or("null") + '"';
    }
    std::string text = "[";
    for (const QVALUE item : value->items) {
        text += (text.size() > 1 ? " " : "") + Print(item);
    }
    return text + "]";
}

}  // namespace

OtherRuntime& otherRuntime()
{
    return gRuntime;
}

std::string callOther(const std::string& function, std::vector<QVALUE> parameters)
{
    std::string text;
    gParameters = std::move(parameters);
    for (std::size_t i = 0; gRuntime.pTable != nullptr && i < gRuntime.pTable->count; ++i) {
        if (gRuntime.pTable->rows[i].name == function) {
            const QVALUE result = gRuntime.pTable->rows[i].handler();
            text = Print(result);
            qval_free_value(result);
        }
    }
    std::for_each(gParameters.begin(), gParameters.end(), qval_free_value);
    gParameters.clear();
    return text;
}

QVALUE qval_create_list(std::size_t count) noexcept
{
    return Create({'l', 0, {}, std::vector<QVALUE>(count)});
}

QVALUE qval_create_raw_integer(int number) noexcept
{
    return Create({'i', number, {}, {}});
}

QVALUE qval_create_string(const char* text) noexcept
{
    return Create({'s', 0, text == nullptr ? std::nullopt : std::optional<std::string>(text), {}});
}

int qval_put_list_item(QVALUE list, std::size_t index, QVALUE value) noexcept
{
    list->items.at(index) = Copy(*value);
    return 1;
}

const char* qval_value_data(QVALUE value) noexcept
{
    return value->text ? value->text->c_str() : nullptr;
}

int qval_integer_value(QVALUE value, int* out) noexcept
{
    *out = value->number;
    return value->kind == 'i' ? 1 : 0;
}

void qval_free_value(QVALUE value) noexcept
{
    if (gAlive.erase(value) == 0) {
        ++gRuntime.uiFaults;
        return;
    }
    for (const QVALUE item : value->items) {
        if (item != nullptr) {
            qval_free_value(item);
        }
    }
    delete value;
    gRuntime.uiAlive = gAlive.size();
}

int qrun_num_parm() noexcept
{
    return static_cast<int>(gParameters.size());
}

int qrun_get_typed_parm(int index, const QvalType& type, QVALUE* out) noexcept
{
    const auto place = static_cast<std::size_t>(index);
    if (place >= gParameters.size() || gParameters[place]->kind != type.kind) {
        return 0;
    }
    *out = Copy(*gParameters[place]);
    return 1;
}

void qrun_parm_error(int code, int index, const char* text) noexcept
{
    gRuntime.errors.push_back(std::to_string(code) + " " + std::to_string(index) + " " + text);
}

int qutil_initialize(int a, int b, int c, int d, const QEL_TABLE* table) noexcept
{
    gRuntime.startUp = {a, b, c, d};
    gRuntime.pTable = gRuntime.bRefuse ? nullptr : table;
    return gRuntime.bRefuse ? 0 : 1;
}
