#include "tools/talibis/call.h"

#include "ibis/interface/talibis_qel.h"
#include "platform/qelrt_inspect.h"
#include "tools/talibis/exit_status.h"

#include <charconv>
#include <iostream>
#include <nlohmann/json.hpp>
#include <optional>
#include <span>
#include <string_view>

namespace
{

using nlohmann::json;

constexpr std::string_view INTEGER_MARK = "int:";

// The integer of "int:3"; nothing for any other text.
std::optional<int> IntegerOf(const std::string& parameter)
{
    if (!parameter.starts_with(INTEGER_MARK)) {
        return std::nullopt;
    }
    int number = 0;
    const char* const end = parameter.data() + parameter.size();
    const auto result = std::from_chars(parameter.data() + INTEGER_MARK.size(), end, number);
    return result.ec == std::errc() && result.ptr == end ? std::optional(number) : std::nullopt;
}

QVALUE CreateParameter(const std::string& parameter)
{
    const std::optional<int> number = IntegerOf(parameter);
    return number ? qval_create_raw_integer(*number) : qval_create_string(parameter.c_str());
}

json ScalarJson(QVALUE value)
{
    int number = 0;
    if (qval_integer_value(value, &number)) {
        return number;
    }
    const char* const text = qval_value_data(value);
    return text == nullptr ? json() : json(text);
}

// A value of the script functions is at most lists of lists of scalars: [[status, text], payload].
json ToJson(QVALUE value, int depth = 0)
{
    constexpr int maxDepth = 8;
    if (!qval_is_list(value) || depth == maxDepth) {
        return ScalarJson(value);
    }
    json list = json::array();
    for (std::size_t i = 0; i < qval_list_size(value); ++i) {
        list.push_back(ToJson(qval_list_item(value, i), depth + 1));
    }
    return list;
}

}  // namespace

int RunCall(const std::string& function, const std::vector<std::string>& parameters)
{
    talIbis_qel_initialize();
    std::vector<QVALUE> values;
    values.reserve(parameters.size());
    for (const std::string& parameter : parameters) {
        values.push_back(CreateParameter(parameter));
    }
    std::vector<QEL_PARM_ERROR> errors;
    const QVALUE result = qel_call(function.c_str(), values, &errors);
    for (const QVALUE value : values) {
        qval_free_value(value);
    }
    for (const QEL_PARM_ERROR& error : errors) {
        std::cerr << "talibis: parameter " << error.index << " of " << function << ": " << error.text << " ("
                  << error.code << ")\n";
    }
    if (result == nullptr) {
        std::cerr << "talibis: there is no function '" << function << "'\n";
        return EXIT_UNUSABLE;
    }
    std::cout << ToJson(result).dump(-1, ' ', false, json::error_handler_t::replace) << '\n';
    qval_free_value(result);
    return EXIT_CLEAN;
}

int RunFunctions()
{
    const QEL_TABLE& table = *talIbis_qel_table();
    for (const QEL_ROW& row : std::span(table.rows, table.count)) {
        const std::string_view parameters = talIbis_qel_parameters(row.name);
        std::cout << row.name << " file type" << (parameters.empty() ? "" : " ") << parameters << '\n';
    }
    return EXIT_CLEAN;
}
