#include "tools/talibis/explain_markdown.h"

#include "ibis/source/nuibis_msg.h"

#include <algorithm>
#include <iostream>

namespace
{

constexpr const char* HEAD =
    R"(# Messages

What `talibis explain --markdown` prints: each numbered message with what it means, why it matters, how to mend the
file, and a file that raises it. `%s`, `%d` and the like stand for what the message names in the file.

Of an example only those lines are shown that matter. The lines around them are
[at the end](#lines-around-the-examples); [IBIS Ver], [File Name], [File Rev] and [End] come on top of these. A line
`@@ 1 102 text` stands for 102 lines of that text, `#` being the numbers 1 to 102. `talibis explain NUMBER` prints
the whole file, and `talibis explain --write DIR` writes all of them.

For a number without an example the entry says why no file raises it: "No path" where nothing reports the number, or
where no file reaches the check; "Impossible state" where a check guards against what cannot be; "Out of memory"
where an allocation fails; "Query" where a call raises it and not a file. Such numbers are kept, so that a number
never changes its meaning.

)";

// What text of ours may hold that the document's format would take for its own.
std::string Escaped(std::string_view text)
{
    std::string out;
    for (const char c : text) {
        if (std::string_view("\\`*<>_").find(c) != std::string_view::npos) {
            out += '\\';
        }
        out += c;
    }
    return out;
}

// The name that readers of the format give to a heading.
std::string AnchorOf(std::string_view heading)
{
    std::string out;
    for (const char c : heading) {
        if (c >= 'A' && c <= 'Z') {
            out += static_cast<char>(c - 'A' + 'a');
        } else if (c == ' ' || c == '-') {
            out += '-';
        } else if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_') {
            out += c;
        }
    }
    return out;
}

std::string HeadingOf(const MessageFamily& family)
{
    return std::to_string(family.first) + " to " + std::to_string(family.last) + ": " + family.name;
}

std::string LinkTo(std::string_view heading)
{
    return "[" + std::string(heading) + "](#" + AnchorOf(heading) + ")";
}

void PrintBlock(std::string_view text)
{
    std::cout << "```\n" << text << (text.ends_with('\n') ? "" : "\n") << "```\n\n";
}

void PrintExample(const Explanation& entry)
{
    std::cout << '`' << entry.files.front().name << '`';
    if (entry.version != "5.1") {
        std::cout << " of version " << entry.version;
    }
    if (!entry.within.empty()) {
        std::cout << ", within " << LinkTo(entry.within);
    }
    std::cout << ":\n\n";
    PrintBlock(entry.lines);
    for (auto file = entry.files.begin() + 1; file != entry.files.end(); ++file) {
        std::cout << "Beside it `" << file->name << (file->text.empty() ? "`, empty.\n\n" : "`:\n\n");
        if (!file->text.empty()) {
            PrintBlock(file->text);
        }
    }
}

void PrintEntry(const Explanation& entry)
{
    std::cout << "### " << entry.code << "\n\n`" << CatalogueText(entry.code) << "`\n\n";
    if (!entry.means.empty()) {
        std::cout << Escaped(entry.means);
        if (entry.like == 0) {
            std::cout << "\n\n**Why:** " << Escaped(entry.why) << "\n\n**Mend:** " << Escaped(entry.mend)
                      << "\n\n";
        } else {
            std::cout << " See " << LinkTo(std::to_string(entry.like)) << ".\n\n";
        }
    }
    if (entry.unraised.empty()) {
        PrintExample(entry);
    } else {
        std::cout << Escaped(entry.unraised) << "\n\n";
    }
}

}  // namespace

std::string CatalogueText(int code)
{
    std::string text = gaMsgCatalogue[static_cast<std::size_t>(MSG_Lookup(code))].pszText;
    while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) {
        text.pop_back();
    }
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

void PrintExplainMarkdown(const ExplainData& data)
{
    std::cout << HEAD;
    for (const MessageFamily& family : data.families) {
        std::cout << "- "
                  << "[" << HeadingOf(family) << "](#" << AnchorOf(HeadingOf(family)) << ")\n";
    }
    for (const MessageFamily& family : data.families) {
        std::cout << "\n## " << HeadingOf(family) << "\n\n";
        for (const Explanation& entry : data.messages) {
            if (entry.code >= family.first && entry.code <= family.last) {
                PrintEntry(entry);
            }
        }
    }
    std::cout << "\n## Lines around the examples\n\nThe example's lines stand at the line `@`.\n";
    for (const auto& [name, text] : data.within) {
        std::cout << "\n### " << name << "\n\n```\n" << text << "```\n";
    }
}
