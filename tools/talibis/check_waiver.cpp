#include "tools/talibis/check_waiver.h"

#include <algorithm>
#include <array>
#include <limits>
#include <toml++/toml.h>
#include <utility>

namespace
{

// A text that a waiver may have.
struct TextKey {
    std::string_view sKey;
    std::string Waiver::*pText;
};

constexpr std::array<TextKey, 4> TEXT_KEYS{{
    {"file", &Waiver::file},
    {"object", &Waiver::object},
    {"text", &Waiver::text},
    {"reason", &Waiver::reason},
}};

struct WaiverError {
    unsigned uiLine;
    std::string text;
};

[[noreturn]] void Refuse(const toml::node& node, std::string text)
{
    throw WaiverError{node.source().begin.line, std::move(text)};
}

void ReadCode(const toml::node& value, Waiver& waiver)
{
    const auto number = value.value_exact<std::int64_t>();
    if (!number || *number < 1 || *number > std::numeric_limits<int>::max()) {
        Refuse(value, "code is the number of a message");
    }
    waiver.code = static_cast<int>(*number);
}

void ReadText(const TextKey& key, const toml::node& value, Waiver& waiver)
{
    const auto text = value.value_exact<std::string>();
    if (!text || text->empty()) {
        Refuse(value, std::string(key.sKey) + " is a text in quotes");
    }
    waiver.*key.pText = *text;
}

Waiver ReadWaiver(const toml::node& node)
{
    const toml::table* const table = node.as_table();
    if (table == nullptr) {
        Refuse(node, "a waiver begins with [[waiver]]");
    }
    Waiver waiver;
    waiver.line = node.source().begin.line;
    for (const auto& [key, value] : *table) {
        const std::string_view name = key.str();
        const auto* const row = std::find_if(TEXT_KEYS.begin(), TEXT_KEYS.end(),
                                             [name](const TextKey& text) { return text.sKey == name; });
        if (name == "code") {
            ReadCode(value, waiver);
        } else if (row != TEXT_KEYS.end()) {
            ReadText(*row, value, waiver);
        } else {
            Refuse(value, "a waiver has no \"" + std::string(name) + "\"");
        }
    }
    if (waiver.reason.empty()) {
        Refuse(node, "the waiver has no reason");
    }
    if (!waiver.code && waiver.file.empty() && waiver.object.empty() && waiver.text.empty()) {
        Refuse(node, "the waiver names nothing: code, file, object or text");
    }
    return waiver;
}

std::vector<Waiver> ReadWaivers(const toml::table& root)
{
    std::vector<Waiver> waivers;
    for (const auto& [key, value] : root) {
        if (key.str() != "waiver" || !value.is_array()) {
            Refuse(value, "a file of waivers holds [[waiver]] and nothing else");
        }
        for (const toml::node& node : *value.as_array()) {
            waivers.push_back(ReadWaiver(node));
        }
    }
    return waivers;
}

// The pattern fits the path or what follows one of its slashes.
bool MatchesPath(std::string_view pattern, std::string_view path)
{
    for (;;) {
        if (MatchesPattern(pattern, path)) {
            return true;
        }
        const std::size_t slash = path.find('/');
        if (slash == std::string_view::npos) {
            return false;
        }
        path.remove_prefix(slash + 1);
    }
}

bool MatchesObject(std::string_view pattern, const Finding& finding, std::string_view text)
{
    if (!finding.block.name.empty() && MatchesPattern(pattern, finding.block.name)) {
        return true;
    }
    for (const char quote : {'\'', '"'}) {
        std::string_view rest = text;
        for (std::size_t open = rest.find(quote); open != std::string_view::npos; open = rest.find(quote)) {
            const std::size_t close = rest.find(quote, open + 1);
            if (close == std::string_view::npos) {
                break;
            }
            if (MatchesPattern(pattern, rest.substr(open + 1, close - open - 1))) {
                return true;
            }
            rest.remove_prefix(close + 1);
        }
    }
    return false;
}

bool Fits(const Waiver& waiver, std::string_view path, const Finding& finding, std::string_view text)
{
    return (!waiver.code || *waiver.code == finding.code) &&
           (waiver.file.empty() || MatchesPath(waiver.file, path)) &&
           text.find(waiver.text) != std::string_view::npos &&
           (waiver.object.empty() || MatchesObject(waiver.object, finding, text));
}

std::string At(const std::string& path, unsigned line)
{
    return line == 0 ? path + ": " : path + ":" + std::to_string(line) + ": ";
}

}  // namespace

bool Waivers::read(const std::string& path, std::string& problem)
{
    mPath = path;
    try {
        mWaivers = ReadWaivers(toml::parse_file(path));
        return true;
    } catch (const toml::parse_error& error) {
        problem = At(path, error.source().begin.line) + std::string(error.description());
    } catch (const WaiverError& error) {
        problem = At(path, error.uiLine) + error.text;
    }
    return false;
}

// Each one that fits counts as used, also behind another one.
const Waiver* Waivers::find(std::string_view path, const Finding& finding)
{
    const Waiver* first = nullptr;
    const std::string text = mWaivers.empty() ? std::string() : OneLine(finding);
    for (Waiver& waiver : mWaivers) {
        if (Fits(waiver, finding.file.empty() ? path : std::string_view(finding.file), finding, text)) {
            ++waiver.uses;
            first = first == nullptr ? &waiver : first;
        }
    }
    return first;
}

std::vector<std::string> Waivers::unused() const
{
    std::vector<std::string> lines;
    for (const Waiver& waiver : mWaivers) {
        if (waiver.uses == 0) {
            lines.push_back(At(mPath, waiver.line) + "the waiver fits no finding (" + waiver.reason + ")");
        }
    }
    return lines;
}

// Goes back to the last "*" only, so that the time is at most the product of the two lengths.
bool MatchesPattern(std::string_view pattern, std::string_view text)
{
    std::size_t p = 0;
    std::size_t t = 0;
    std::size_t star = std::string_view::npos;
    std::size_t behindStar = 0;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            behindStar = t;
        } else if (p < pattern.size() && (pattern[p] == '?' || pattern[p] == text[t])) {
            ++p;
            ++t;
        } else if (star != std::string_view::npos) {
            p = star + 1;
            t = ++behindStar;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == std::string_view::npos;
}
