#include "tools/talibis/json_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <ostream>
#include <string>
#include <string_view>

namespace
{

using json = nlohmann::ordered_json;

constexpr std::size_t FLAT_MEMBERS = 4;  // of an object that stands on one line

bool IsFlat(const json& value)
{
    return std::none_of(value.begin(), value.end(), [](const json& item) { return item.is_structured(); }) &&
           (!value.is_object() || value.size() <= FLAT_MEMBERS);
}

void PrintNumber(std::ostream& out, double number)
{
    if (!std::isfinite(number)) {
        out << "null";
        return;
    }
    std::array<char, 32> text;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
    out << std::string_view(text.data(), static_cast<std::size_t>(end - text.data()));
}

void PrintScalar(std::ostream& out, const json& value)
{
    if (value.is_number_float()) {
        PrintNumber(out, value.get<double>());
    } else {
        out << value.dump(-1, ' ', false, json::error_handler_t::replace);
    }
}

void PrintValue(std::ostream& out, const json& value, std::size_t depth)
{
    if (!value.is_structured()) {
        PrintScalar(out, value);
        return;
    }
    const bool flat = IsFlat(value);
    const auto feed = [&](std::size_t indent) {
        if (!flat) {
            out << '\n' << std::string(2 * indent, ' ');
        }
    };
    out << (value.is_object() ? '{' : '[');
    bool first = true;
    for (const auto& [key, item] : value.items()) {
        out << (first ? "" : flat ? ", " : ",");
        first = false;
        feed(depth + 1);
        if (value.is_object()) {
            PrintScalar(out, json(key));
            out << ": ";
        }
        PrintValue(out, item, depth + 1);
    }
    feed(depth);
    out << (value.is_object() ? '}' : ']');
}

}  // namespace

void PrintJson(std::ostream& out, const nlohmann::ordered_json& value)
{
    PrintValue(out, value, 0);
    out << '\n';
}
