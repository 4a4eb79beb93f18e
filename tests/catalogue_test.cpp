// The catalogue of messages under audit: every number has its entry in docs/messages.toml, every example
// raises its number, and what is said to be raised by no file is raised by none.

#include "ibis/interface/talibis_tool.h"
#include "ibis/source/nuibis_msg.h"
#include "tests/builders.h"
#include "tools/talibis/explain_data.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>

namespace
{

namespace fs = std::filesystem;

using Codes = std::set<int>;

std::string FileText(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

const ExplainData& Data()
{
    static const ExplainData data =
        ParseExplainData(FileText(fs::path(TALIBIS_SOURCE_DIR) / "docs" / "messages.toml"));
    return data;
}

// The numbers of all messages that a read stores, cautions among them.
Codes CodesOfFile(const std::string& path, ibis_file_type type)
{
    Codes codes;
    talSetCautions(true);
    talSetListener([](void* context,
                      const TalIbisFinding& finding) { static_cast<Codes*>(context)->insert(finding.iCode); },
                   &codes);
    MessagesOfFile(path, type);
    talSetListener(nullptr, nullptr);
    talSetCautions(false);
    return codes;
}

// An example stands in a folder of its own with the files beside it.
Codes CodesOfExample(const Explanation& entry)
{
    const fs::path folder = fs::path(TestFolder()) / std::to_string(entry.code);
    fs::create_directory(folder);
    for (const ExampleFile& file : entry.files) {
        std::ofstream(folder / file.name, std::ios::binary) << file.text;
    }
    Codes codes = CodesOfFile((folder / entry.files.front().name).string(), entry.type);
    fs::remove_all(folder);
    if (codes.count(924) != 0) {  // an open string goes on in the next parameter file: one quote closes it
        CodesOfFile(WriteTestFile("quote.ami", "\""), IBIS_FILE_AMI);
    }
    return codes;
}

std::string Joined(const Codes& codes)
{
    std::ostringstream out;
    for (const int code : codes) {
        out << ' ' << code;
    }
    return out.str();
}

std::string KindOf(const std::string& reason)
{
    return reason.substr(0, reason.find(": "));
}

// The text of a source file without comments, strings and characters.
std::string CodeOnly(const std::string& source)
{
    std::string code;
    for (std::size_t i = 0; i < source.size(); ++i) {
        const char c = source[i];
        if (c == '/' && source.compare(i, 2, "//") == 0) {
            i = std::min(source.find('\n', i), source.size());
        } else if (c == '"' || (c == '\'' && (code.empty() || std::isalnum(code.back()) == 0))) {
            while (++i < source.size() && source[i] != c) {
                i += source[i] == '\\' ? 1 : 0;
            }
            code += '"';
        } else {
            code += c;
        }
    }
    return code;
}

// Plain integers that stand where a list or an argument begins: numbers of messages do, dimensions of arrays
// and values of enumerators do not.
void CollectSites(const std::string& code, Codes& sites)
{
    char before = ' ';
    for (std::size_t i = 0; i < code.size(); ++i) {
        const char c = code[i];
        if (std::isalnum(c) != 0 || c == '_' || c == '.') {
            const std::size_t first = i;
            while (i + 1 < code.size() && (std::isalnum(code[i + 1]) != 0 || code[i + 1] == '_' ||
                                           code[i + 1] == '.' || code[i + 1] == '\'')) {
                ++i;
            }
            const std::string word = code.substr(first, i + 1 - first);
            if (word.size() <= 4 && word.find_first_not_of("0123456789") == std::string::npos &&
                std::string("({,?:").find(before) != std::string::npos) {
                sites.insert(std::stoi(word));
            }
        }
        before = std::isspace(c) != 0 ? before : c;
    }
}

Codes SitesOfSources()
{
    Codes sites;
    for (const auto& file : fs::directory_iterator(fs::path(TALIBIS_SOURCE_DIR) / "ibis" / "source")) {
        const std::string name = file.path().filename().string();
        if (name != "nuibis_catalogue.h" && name != "nuibis_keyword.h") {
            CollectSites(CodeOnly(FileText(file.path())), sites);
        }
    }
    sites.erase(0);     // no message
    sites.erase(4608);  // the signals of an analog port that sends and receives
    return sites;
}

}  // namespace

TEST(MessageCatalogue, EveryNumberHasItsEntry)
{
    Codes rows;
    for (const MSG_Row& row : gaMsgCatalogue) {
        rows.insert(row.iCode);
        EXPECT_NE(Data().Find(row.iCode), nullptr) << "no entry in docs/messages.toml: " << row.iCode;
    }
    for (const Explanation& entry : Data().messages) {
        EXPECT_EQ(rows.count(entry.code), 1U) << "no such number in the catalogue: " << entry.code;
    }
}

// The catalogue names its blocks in comments.
TEST(MessageCatalogue, FamiliesAreTheBlocksOfTheCatalogue)
{
    std::ostringstream expected;
    for (const MessageFamily& family : Data().families) {
        expected << "    // " << family.first << " to " << family.last << ": " << family.name << '\n';
    }
    std::istringstream source(FileText(fs::path(TALIBIS_SOURCE_DIR) / "ibis/source/nuibis_catalogue.h"));
    std::string found;
    for (std::string line; std::getline(source, line);) {
        found += line.starts_with("    // ") ? line + '\n' : "";
    }
    EXPECT_EQ(found, expected.str());
    for (const Explanation& entry : Data().messages) {
        EXPECT_EQ(std::count_if(Data().families.begin(), Data().families.end(),
                                [&entry](const MessageFamily& family) {
                                    return family.first <= entry.code && entry.code <= family.last;
                                }),
                  1)
            << entry.code;
    }
}

TEST(MessageCatalogue, ExamplesRaiseTheirNumbersAndNoOtherFileDoes)
{
    Codes heard;
    std::map<std::string, int> counts;
    for (const Explanation& entry : Data().messages) {
        if (entry.files.empty()) {
            ++counts[KindOf(entry.unraised)];
            continue;
        }
        ++counts["raised"];
        const Codes codes = CodesOfExample(entry);
        EXPECT_EQ(codes.count(entry.code), 1U)
            << "the example of " << entry.code << " does not raise it, but:" << Joined(codes);
        heard.insert(codes.begin(), codes.end());
    }
    for (const Explanation& entry : Data().messages) {
        if (!entry.unraised.empty()) {
            EXPECT_EQ(heard.count(entry.code), 0U)
                << entry.code
                << " is raised by an example, but said to be raised by none: " << entry.unraised;
        }
    }
    for (const auto& [kind, count] : counts) {
        std::cout << "messages, " << kind << ": " << count << '\n';
    }
    RecordProperty("raised", counts["raised"]);
}

TEST(MessageCatalogue, NamesOfFilesAreRefused)
{
    const std::string folder = TestFolder();
    const struct {
        int code;
        std::string name;
        ibis_file_type type;
    } cases[] = {
        {1900, folder + "/buffer.txt", IBIS_FILE_IBS},
        {1901, std::string(1021, 'n'), IBIS_FILE_IBS},
        {1902, folder + "/board.ibs", IBIS_FILE_EBD},
        {1903, folder + "/package.ibs", IBIS_FILE_PKG},
        {1904, folder + std::string(1024 - folder.size(), '/') + "buffer.ibs", IBIS_FILE_IBS},
        {1924, folder + "/parameters.ibs", IBIS_FILE_AMI},
    };
    Codes covered;
    for (const auto& [code, name, type] : cases) {
        EXPECT_EQ(CodesOfFile(name, type), Codes{code});
        covered.insert(code);
    }
    for (const Explanation& entry : Data().messages) {
        EXPECT_EQ(KindOf(entry.unraised) == "Query", covered.count(entry.code) == 1) << entry.code;
    }
}

// A number that nothing reports is told from one whose check stands where no file comes.
TEST(MessageCatalogue, ReasonsAgreeWithTheSources)
{
    const Codes sites = SitesOfSources();
    const std::string stands = "No path: the check stands, but ";
    for (const Explanation& entry : Data().messages) {
        const std::string kind = KindOf(entry.unraised);
        const bool unreported = kind == "No path" && !entry.unraised.starts_with(stands);
        EXPECT_EQ(sites.count(entry.code) == 0, unreported)
            << entry.code
            << (unreported ? " is reported by the sources, but its reason is: "
                           : " stands nowhere in the sources, but its reason is: ")
            << entry.unraised;
        const std::set<std::string> kinds{"", "No path", "Impossible state", "Out of memory", "Query"};
        EXPECT_EQ(kinds.count(kind), 1U) << entry.code << ": " << entry.unraised;
    }
}

TEST(MessageCatalogue, FaultyDataAreRefused)
{
    const std::string texts = "means = \"a\"\nwhy = \"b\"\nmend = \"c\"\n";
    const struct {
        std::string toml;
        std::string fault;
    } cases[] = {
        {"code = 119\nmeens = \"x\"\n", "119: unknown key meens"},
        {"code = 119\n" + texts, "119: either an example or a reason why there is none is expected"},
        {"code = 119\nexample = \"\"\n",
         "119: either means, why and mend or the number with them is expected"},
        {"code = 119\nlike = 118\nexample = \"\"\n", "119: no texts at 118"},
        {"code = 119\nwithin = \"x\"\nexample = \"\"\n" + texts, "119: no lines are called x"},
        {"code = 119\ntype = \"doc\"\nexample = \"\"\n" + texts, "119: no kind of file is called doc"},
        {"code = \"119\"\n", "code: a value of another type is expected"},
        {"code = 119\nexample = \"@@ 1 x\"\n" + texts, "@@: two numbers and a text are expected"},
        {"code = 119\nunraised = \"x\"\n[[message]]\ncode = 119\nunraised = \"x\"\n",
         "119: each number is expected once, in ascending order"},
    };
    for (const auto& [toml, fault] : cases) {
        std::string told;
        try {
            ParseExplainData("[[message]]\n" + toml);
        } catch (const std::exception& failure) {
            told = failure.what();
        }
        EXPECT_EQ(told, "messages.toml: " + fault);
    }
}
