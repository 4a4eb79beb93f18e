// What is told of single messages, as a user asks for it.

#include "tests/builders.h"
#include "tests/programs.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace
{

Result Explain(const std::string& words, bool withErrors = false)
{
    return RunProgram(TALIBIS_PROGRAM, "explain " + words, withErrors);
}

std::string FileText(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

TEST(Explain, TellsMeaningExampleAndFinding)
{
    const Result result = Explain("5304 E0119 W119");
    EXPECT_EQ(result.status, 0);
    const std::string second = "\n119  %s Already Defined For Model '%s'\n"
                               "\n"
                               "A subparameter or a one-line keyword of a model is given a second time.\n"
                               "\n"
                               "Why it matters:\n"
                               "The first value stays and this line is dropped. If the two differ, the\n"
                               "simulation runs with a value that the author may have meant to replace.\n"
                               "\n"
                               "How to mend it:\n"
                               "Keep the line with the right value and delete the other.\n"
                               "\n"
                               "example.ibs:\n"
                               "\n"
                               "[IBIS Ver]   5.1\n"
                               "[File Name]  example.ibs\n"
                               "[File Rev]   1.0\n"
                               "[Component]     U1\n";
    const std::string finding = "[Voltage Range]  5.0  4.5  5.5\n"
                                "[End]\n"
                                "\n"
                                "talibis check --caution example.ibs:\n"
                                "\n";
    const std::size_t at = result.out.find(second);
    EXPECT_EQ(result.out.substr(0, at),
              "5304  Incorrect Number of Line Items (%d) For %s: Expecting %d\n"
              "\n"
              "No example:\n"
              "No path: the check stands, but no version has the keyword [Merged Pins], so no\n"
              "package has merged pins.\n");
    EXPECT_NE(result.out.find(finding, at), std::string::npos);
    EXPECT_NE(
        result.out.find("example.ibs:18: error: Voltage Range Already Defined For Model 'M' [119]\n", at),
        std::string::npos);
    EXPECT_NE(result.out.find(second, at + 1), std::string::npos);
}

TEST(Explain, UnknownNumbersAndWrongUsageAreToldOnStandardError)
{
    for (const std::string word : {"99999", "119x", "X119", "E"}) {
        const Result result = Explain(word, true);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out,
                  "talibis: no message has the number " + word + " (talibis explain --list prints all)\n");
    }
    for (const char* words : {"", "--list 119", "--list --markdown"}) {
        const Result result = Explain(words, true);
        EXPECT_EQ(result.status, 2) << words;
        EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 1) << result.out;
    }
    EXPECT_EQ(Explain("--write /dev/null/x").status, 2);
}

TEST(Explain, ListHasALineForEachNumber)
{
    const std::string list = Explain("--list").out;
    EXPECT_TRUE(list.starts_with("   0  Error code doesn't exist.\n 100  Unable to Allocate Memory: %s %d\n"))
        << list.substr(0, 200);
    EXPECT_EQ(std::count(list.begin(), list.end(), '\n'), 1322);
    EXPECT_NE(list.find("\n 907  Data for unknown keyword. %s\n"), std::string::npos);
}

// docs/messages.md is written by the command.
TEST(Explain, MarkdownIsTheDocument)
{
    const std::string document = FileText(std::string(TALIBIS_SOURCE_DIR) + "/docs/messages.md");
    const Result result = Explain("--markdown");
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.out == document)
        << "write it anew: talibis explain --markdown >docs/messages.md; it differs from character "
        << std::mismatch(document.begin(), document.end(), result.out.begin(), result.out.end()).first -
               document.begin();
}

TEST(Explain, WritesEachExampleWithTheFilesBesideIt)
{
    const std::string folder = TestFolder() + "/examples";
    EXPECT_EQ(Explain("--write '" + folder + "'").status, 0);
    EXPECT_TRUE(std::filesystem::exists(folder + "/4601/example.ibs"));
    EXPECT_TRUE(FileText(folder + "/4601/rx.ami").starts_with("(rx\n"));
    EXPECT_FALSE(std::filesystem::exists(folder + "/5304"));
    // A repeated line is written in full.
    const std::string repeated = FileText(folder + "/2000/example.ibs");
    EXPECT_EQ(repeated.find('@'), std::string::npos);
    EXPECT_GT(std::count(repeated.begin(), repeated.end(), '\n'), 100);
    std::filesystem::remove_all(folder);
}
