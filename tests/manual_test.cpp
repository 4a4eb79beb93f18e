// The manual page and the completions that are made from the table of options.

#include "tests/builders.h"
#include "tests/programs.h"

#include <set>
#include <sstream>

namespace
{

// What bash offers behind these words; the last one is being typed.
std::string Completed(const std::string& words, int index)
{
    const std::string script = "source <('" TALIBIS_PROGRAM "' manual --form bash); COMP_WORDS=(" + words +
                               "); COMP_CWORD=" + std::to_string(index) + "; _talibis; echo ${COMPREPLY[*]}";
    return RunProgram("/bin/bash", "-c '" + Edit(script, {{"'" TALIBIS_PROGRAM "'", TALIBIS_PROGRAM}}) + "'")
        .out;
}

std::string Manual(const std::string& form)
{
    const Result result = RunProgram(TALIBIS_PROGRAM, "manual --form " + form);
    EXPECT_EQ(result.status, 0);
    return result.out;
}

}  // namespace

TEST(Manual, BashOffersCommandsOptionsAndWords)
{
    EXPECT_EQ(Completed("talibis e", 1), "explain export\n");
    EXPECT_EQ(Completed("talibis check --w", 2), "--waivers\n");
    EXPECT_EQ(Completed("talibis check --format s", 3), "sarif\n");
    EXPECT_EQ(Completed("talibis check x", 2), "\n");  // files are bash's own business
}

TEST(Manual, EveryFormKnowsEveryCommandAndItsOptions)
{
    const std::string help = RunProgram(TALIBIS_PROGRAM, "--help").out;
    for (const char* form : {"man", "bash", "zsh", "fish"}) {
        const std::string text = Manual(form);
        for (const char* word :
             {"check", "explain", "show", "export", "call", "functions", "keywords", "manual"}) {
            EXPECT_NE(help.find(std::string("  ") + word), std::string::npos) << word;
            EXPECT_NE(text.find(word), std::string::npos) << form << " " << word;
        }
        for (const char* word : {"waivers", "sarif", "jobs"}) {
            EXPECT_NE(text.find(word), std::string::npos) << form << " " << word;
        }
    }
}

// A line of text that begins with a dot would be an order to the formatter.
TEST(Manual, ThePageIsWellFormed)
{
    std::istringstream page(Manual("man"));
    for (std::string line; std::getline(page, line);) {
        if (line.starts_with('.')) {
            const std::string order = line.substr(0, line.find(' '));
            EXPECT_TRUE(
                (std::set<std::string>{".TH", ".SH", ".SS", ".TP", ".PP", ".I", ".B"}).contains(order))
                << line;
        }
    }
}
