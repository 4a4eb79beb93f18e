// The same bytes give the same findings: twice, behind another file, from another folder, in another locale
// and with the line ends of another system.

#include "tests/builders.h"
#include "tools/talibis/explain_data.h"

#include <clocale>
#include <filesystem>
#include <fstream>
#include <utility>

namespace
{

namespace fs = std::filesystem;

const std::vector<Explanation>& Examples()
{
    static const ExplainData data = BuiltInExplainData();
    return data.messages;
}

// Findings of an example whose files have `from` replaced by `to`.
Lines FindingsOf(const Explanation& entry, std::string_view from = "", std::string_view to = "")
{
    const fs::path folder = fs::path(TestFolder()) / "example";
    fs::create_directory(folder);
    for (const ExampleFile& file : entry.files) {
        std::string text = file.text;
        for (std::size_t at = 0; !from.empty() && (at = text.find(from, at)) != std::string::npos;
             at += to.size()) {
            text.replace(at, from.size(), to);
        }
        std::ofstream(folder / file.name, std::ios::binary) << text;
    }
    Lines lines = MessagesOfFile((folder / entry.files.front().name).string(), entry.type);
    if (!lines.empty() && lines.back().find("Unterminated string") != std::string::npos) {
        Messages("\"", "quote.ami");  // an open string goes on in the next parameter file
    }
    fs::remove_all(folder);
    return lines;
}

template <class Check> void ForEachExample(Check check)
{
    const QuietTotals quiet;
    for (const Explanation& entry : Examples()) {
        if (!entry.files.empty()) {
            check(entry);
        }
    }
}

}  // namespace

// Each file is read twice, with another file ahead of it: the second time they come from last to first.
TEST(Determinism, ASecondReadInAnotherOrderSaysTheSame)
{
    std::vector<std::pair<const Explanation*, Lines>> first;
    ForEachExample([&](const Explanation& entry) { first.emplace_back(&entry, FindingsOf(entry)); });
    const QuietTotals quiet;
    for (auto read = first.rbegin(); read != first.rend(); ++read) {
        EXPECT_EQ(FindingsOf(*read->first), read->second) << read->first->code;
    }
}

// Control characters stand at another place where a carriage return is one of them.
TEST(Determinism, LineEndsDoNotMatter)
{
    ForEachExample([](const Explanation& entry) {
        if (entry.files.front().text.find('\r') == std::string::npos) {
            EXPECT_EQ(FindingsOf(entry, "\n", "\r\n"), FindingsOf(entry)) << entry.code;
        }
    });
}

TEST(Determinism, FolderAndLocaleDoNotMatter)
{
    std::vector<Lines> first;
    ForEachExample([&](const Explanation& entry) { first.push_back(FindingsOf(entry)); });
    const fs::path former = fs::current_path();
    const bool comma = std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
    fs::current_path("/");
    auto expected = first.begin();
    ForEachExample(
        [&](const Explanation& entry) { EXPECT_EQ(FindingsOf(entry), *expected++) << entry.code; });
    fs::current_path(former);
    std::setlocale(LC_ALL, "C");
    RecordProperty("decimal comma", comma ? "yes" : "no such locale here");
}
