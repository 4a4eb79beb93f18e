#include "tools/talibis/explain_data.h"

#include <toml++/toml.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <stdexcept>

namespace
{

struct TypeWord {
    std::string_view word;
    ibis_file_type type;
    std::string_view exampleName;
    bool keywords;  // the file has [IBIS Ver] and [End]
};

constexpr std::array<TypeWord, 5> TYPES{{
    {"ibs", IBIS_FILE_IBS, "example.ibs", true},
    {"pkg", IBIS_FILE_PKG, "example.pkg", true},
    {"ebd", IBIS_FILE_EBD, "example.ebd", true},
    {"ami", IBIS_FILE_AMI, "example.ami", false},
    {"param", IBIS_FILE_PARAM, "example.txt", false},
}};

constexpr std::array<std::string_view, 12> KEYS{"code",   "means",   "why",  "mend",  "like",  "example",
                                                "within", "version", "type", "whole", "files", "unraised"};

[[noreturn]] void Refuse(const std::string& place, const std::string& fault)
{
    throw std::runtime_error("messages.toml: " + place + ": " + fault);
}

// A value of one type out of a table; the given one when the key is missing.
template <class Value> Value Get(const toml::table& table, std::string_view key, const Value& missing)
{
    const toml::node* const node = table.get(key);
    if (node == nullptr) {
        return missing;
    }
    const auto value = node->value_exact<Value>();
    if (!value) {
        Refuse(std::string(key), "a value of another type is expected");
    }
    return *value;
}

std::string GetText(const toml::table& table, std::string_view key)
{
    return Get<std::string>(table, key, "");
}

int GetNumber(const toml::table& table, std::string_view key)
{
    return static_cast<int>(Get<std::int64_t>(table, key, 0));
}

// The tables of an array of tables.
std::vector<const toml::table*> TablesOf(const toml::table& root, std::string_view key)
{
    std::vector<const toml::table*> tables;
    if (const toml::array* const array = root.get_as<toml::array>(key)) {
        for (const toml::node& node : *array) {
            if (const toml::table* const table = node.as_table()) {
                tables.push_back(table);
            }
        }
    }
    return tables;
}

// Examples --------------------------------------------------------------------------------------------------

int TakeNumber(std::string_view& rest)
{
    int number = 0;
    const auto [end, fault] = std::from_chars(rest.data(), rest.data() + rest.size(), number);
    if (fault != std::errc() || end == rest.data() + rest.size() || *end != ' ') {
        Refuse("@@", "two numbers and a text are expected");
    }
    rest.remove_prefix(static_cast<std::size_t>(end - rest.data()) + 1);
    return number;
}

// "@@ 1 102 text": the text for each number, which "#" stands for.
void AppendRepeated(std::string& out, std::string_view rest)
{
    const int first = TakeNumber(rest);
    const int last = TakeNumber(rest);
    for (int number = first; number <= last; ++number) {
        for (const char c : rest) {
            out += c == '#' ? std::to_string(number) : std::string(1, c);
        }
    }
}

template <class Take> void ForEachLine(std::string_view text, Take take)
{
    while (!text.empty()) {
        const std::size_t length = std::min(text.find('\n'), text.size() - 1) + 1;
        take(text.substr(0, length));
        text.remove_prefix(length);
    }
}

std::string Expanded(std::string_view lines)
{
    std::string out;
    ForEachLine(lines, [&out](std::string_view line) {
        if (line.starts_with("@@ ")) {
            AppendRepeated(out, line.substr(3));
        } else {
            out += line;
        }
    });
    return out;
}

std::string Surrounded(std::string_view block, const std::string& lines)
{
    std::string out;
    ForEachLine(block, [&](std::string_view line) { out += line == "@\n" ? lines : line; });
    return out;
}

std::string ComposeExample(const ExplainData& data, const Explanation& entry, const TypeWord& type,
                           bool whole)
{
    std::string text = Expanded(entry.lines);
    if (!entry.within.empty()) {
        const auto block = data.within.find(entry.within);
        if (block == data.within.end()) {
            Refuse(std::to_string(entry.code), "no lines are called " + entry.within);
        }
        text = Surrounded(block->second, text);
    }
    if (whole || !type.keywords) {
        return text;
    }
    return "[IBIS Ver]   " + entry.version + "\n[File Name]  " + std::string(type.exampleName) +
           "\n[File Rev]   1.0\n" + text + "[End]\n";
}

void ReadExample(const ExplainData& data, Explanation& entry, const toml::table& table)
{
    const std::string word = Get<std::string>(table, "type", "ibs");
    const auto* const type =
        std::find_if(TYPES.begin(), TYPES.end(), [&word](const TypeWord& row) { return row.word == word; });
    if (type == TYPES.end()) {
        Refuse(std::to_string(entry.code), "no kind of file is called " + word);
    }
    entry.type = type->type;
    entry.version = Get<std::string>(table, "version", "5.1");
    entry.within = GetText(table, "within");
    entry.lines = GetText(table, "example");
    const bool whole = Get<bool>(table, "whole", false);
    entry.files.push_back({std::string(type->exampleName), ComposeExample(data, entry, *type, whole)});
    if (const toml::table* const files = table.get_as<toml::table>("files")) {
        for (const auto& [name, text] : *files) {
            entry.files.push_back({std::string(name.str()), text.value_or(std::string())});
        }
    }
}

// Entries ---------------------------------------------------------------------------------------------------

void RefuseOtherKeys(const toml::table& table, int code)
{
    for (const auto& [key, node] : table) {
        if (std::find(KEYS.begin(), KEYS.end(), key.str()) == KEYS.end()) {
            Refuse(std::to_string(code), "unknown key " + std::string(key.str()));
        }
    }
}

Explanation ReadEntry(const ExplainData& data, const toml::table& table)
{
    Explanation entry;
    entry.code = GetNumber(table, "code");
    RefuseOtherKeys(table, entry.code);
    entry.means = GetText(table, "means");
    entry.why = GetText(table, "why");
    entry.mend = GetText(table, "mend");
    entry.like = GetNumber(table, "like");
    entry.unraised = GetText(table, "unraised");
    const bool example = table.contains("example");
    if (example == !entry.unraised.empty()) {
        Refuse(std::to_string(entry.code), "either an example or a reason why there is none is expected");
    }
    const bool anyText = !entry.means.empty() || !entry.why.empty() || !entry.mend.empty();
    const bool allTexts = !entry.means.empty() && !entry.why.empty() && !entry.mend.empty();
    if (anyText != allTexts || (anyText && entry.like != 0) || (example && !anyText && entry.like == 0)) {
        Refuse(std::to_string(entry.code), "either means, why and mend or the number with them is expected");
    }
    if (example) {
        ReadExample(data, entry, table);
    }
    return entry;
}

void ResolveLikes(ExplainData& data)
{
    for (Explanation& entry : data.messages) {
        if (entry.like == 0) {
            continue;
        }
        const Explanation* const source = data.Find(entry.like);
        if (source == nullptr || source->like != 0 || source->means.empty()) {
            Refuse(std::to_string(entry.code), "no texts at " + std::to_string(entry.like));
        }
        entry.means = source->means;
        entry.why = source->why;
        entry.mend = source->mend;
    }
}

}  // namespace

const Explanation* ExplainData::Find(int code) const
{
    const auto found = std::lower_bound(messages.begin(), messages.end(), code,
                                        [](const Explanation& entry, int key) { return entry.code < key; });
    return found == messages.end() || found->code != code ? nullptr : &*found;
}

ExplainData ParseExplainData(std::string_view toml)
{
    const toml::table root = toml::parse(toml);
    ExplainData data;
    for (const toml::table* const table : TablesOf(root, "family")) {
        data.families.push_back(
            {GetNumber(*table, "first"), GetNumber(*table, "last"), GetText(*table, "name")});
    }
    if (const toml::table* const blocks = root.get_as<toml::table>("within")) {
        for (const auto& [name, block] : *blocks) {
            data.within[std::string(name.str())] = block.is_table() ? GetText(*block.as_table(), "text") : "";
        }
    }
    for (const toml::table* const table : TablesOf(root, "message")) {
        data.messages.push_back(ReadEntry(data, *table));
    }
    const auto disorder =
        std::adjacent_find(data.messages.begin(), data.messages.end(),
                           [](const Explanation& a, const Explanation& b) { return a.code >= b.code; });
    if (disorder != data.messages.end()) {
        Refuse(std::to_string(disorder->code), "each number is expected once, in ascending order");
    }
    ResolveLikes(data);
    return data;
}

ExplainData BuiltInExplainData()
{
    std::string text;
    for (const std::string_view piece : ExplainTextPieces()) {
        text += piece;
    }
    return ParseExplainData(text);
}
