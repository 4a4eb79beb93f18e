#include "tests/schema.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <regex.h>

namespace
{

using nlohmann::json;
using Faults = std::vector<std::string>;

bool IsType(const std::string& type, const json& value)
{
    return type == "integer" ? value.is_number_integer() : type == value.type_name();
}

void CheckType(const json& types, const json& value, const std::string& place, Faults& faults)
{
    const json list = types.is_array() ? types : json::array({types});
    if (std::none_of(list.begin(), list.end(), [&](const json& type) { return IsType(type, value); })) {
        faults.push_back(place + " is no " + types.dump());
    }
}

void CheckRequired(const json& names, const json& value, const std::string& place, Faults& faults)
{
    for (const std::string name : names) {
        if (value.is_object() && !value.contains(name)) {
            faults.push_back(place + " lacks " + name);
        }
    }
}

void CheckEnum(const json& values, const json& value, const std::string& place, Faults& faults)
{
    if (std::find(values.begin(), values.end(), value) == values.end()) {
        faults.push_back(place + " is not one of " + values.dump());
    }
}

// The patterns keep to what is the same in all dialects.
bool Matches(const std::string& pattern, const std::string& text)
{
    regex_t compiled;
    if (regcomp(&compiled, pattern.c_str(), REG_EXTENDED | REG_NOSUB) != 0) {
        return false;
    }
    const bool found = regexec(&compiled, text.c_str(), 0, nullptr, 0) == 0;
    regfree(&compiled);
    return found;
}

void CheckPattern(const json& pattern, const json& value, const std::string& place, Faults& faults)
{
    if (value.is_string() && !Matches(pattern.get<std::string>(), value.get<std::string>())) {
        faults.push_back(place + " does not match " + pattern.dump());
    }
}

void CheckMinimum(const json& least, const json& value, const std::string& place, Faults& faults)
{
    if (value.is_number() && value < least) {
        faults.push_back(place + " is below " + least.dump());
    }
}

void CheckMinItems(const json& least, const json& value, const std::string& place, Faults& faults)
{
    if (value.is_array() && value.size() < least.get<std::size_t>()) {
        faults.push_back(place + " has too few items");
    }
}

void Append(Faults& faults, const Faults& more)
{
    faults.insert(faults.end(), more.begin(), more.end());
}

void CheckItems(const json& schema, const json& value, const std::string& place, Faults& faults)
{
    for (std::size_t i = 0; value.is_array() && i < value.size(); ++i) {
        Append(faults, SchemaFaults(schema, value[i], place + "[" + std::to_string(i) + "]"));
    }
}

void CheckProperties(const json& schemas, const json& value, const std::string& place, Faults& faults)
{
    for (const auto& [name, schema] : schemas.items()) {
        if (value.is_object() && value.contains(name)) {
            Append(faults, SchemaFaults(schema, value[name], place + "." + name));
        }
    }
}

void CheckNoOthers(const json& schema, const json& value, const std::string& place, Faults& faults)
{
    if (!value.is_object()) {
        return;
    }
    for (const auto& [name, ignored] : value.items()) {
        if (!schema["properties"].contains(name)) {
            faults.push_back(place + " must not have " + name);
        }
    }
}

// Puts the named parts in the place of the references to them. No part refers to itself.
void PutParts(json& schema, const json& parts)
{
    if (schema.is_object() && schema.contains("$ref")) {
        const json part = parts.at(schema["$ref"].get<std::string>().substr(std::string("#/$defs/").size()));
        schema.erase("$ref");
        schema.update(part);
    }
    for (json& item : schema) {
        if (item.is_structured()) {
            PutParts(item, parts);
        }
    }
}

void CheckNothing(const json&, const json&, const std::string&, Faults&) {}

using Checker = void (*)(const json& rule, const json& value, const std::string& place, Faults& faults);
const std::map<std::string, Checker> CHECKERS{
    {"type", CheckType},           {"required", CheckRequired},     {"enum", CheckEnum},
    {"pattern", CheckPattern},     {"minimum", CheckMinimum},       {"minItems", CheckMinItems},
    {"items", CheckItems},         {"properties", CheckProperties}, {"title", CheckNothing},
    {"description", CheckNothing}, {"$schema", CheckNothing}};

}  // namespace

std::vector<std::string> SchemaFaults(const json& schema, const json& value, const std::string& place)
{
    Faults faults;
    for (const auto& [word, rule] : schema.items()) {
        const auto checker = CHECKERS.find(word);
        if (checker != CHECKERS.end()) {
            checker->second(rule, value, place, faults);
        } else if (word == "additionalProperties" && rule == false) {
            CheckNoOthers(schema, value, place, faults);
        } else {
            faults.push_back("the schema uses " + word);
        }
    }
    return faults;
}

json ReadSchema(const std::string& path)
{
    std::ifstream file(std::string(TALIBIS_SOURCE_DIR) + "/" + path);
    json schema = json::parse(file);
    const json parts = schema.value("$defs", json::object());
    schema.erase("$defs");
    PutParts(schema, parts);
    return schema;
}
