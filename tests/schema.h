// Holds JSON documents against a schema, as far as the schemas of this project go.

#pragma once

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

/// What of `value` does not fit the schema, each with its place; empty if all does. A schema that uses a word
/// which is not checked here is a fault too.
std::vector<std::string> SchemaFaults(const nlohmann::json& schema, const nlohmann::json& value,
                                      const std::string& place = "$");
/// Reads a schema by its path within the project, with its parts of "$defs" put where they are referred to.
nlohmann::json ReadSchema(const std::string& path);
