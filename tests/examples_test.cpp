// The files of examples/: the clean ones give no message at all, and the broken ones exactly those that stand
// beside them.

#include "tests/builders.h"
#include "tests/programs.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

namespace
{

namespace fs = std::filesystem;

const fs::path EXAMPLES = fs::path(TALIBIS_SOURCE_DIR) / "examples";

// The findings, cautions too, a line each; `name` is relative to examples/.
std::string FindingsOf(const std::string& name)
{
    return RunProgram("env",
                      "-C '" + EXAMPLES.string() + "' '" TALIBIS_PROGRAM "' check --caution --format gcc '" +
                          name + "'",
                      true)
        .out;
}

std::string ContentOf(const fs::path& path)
{
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::set<std::string> ModelFiles()
{
    static const std::set<std::string> extensions{".ibs", ".pkg", ".ebd", ".ami"};
    std::set<std::string> names;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(EXAMPLES)) {
        if (extensions.contains(entry.path().extension().string())) {
            names.insert(fs::relative(entry.path(), EXAMPLES).string());
        }
    }
    return names;
}

}  // namespace

TEST(Examples, GiveTheListedFindings)
{
    std::size_t broken = 0;
    for (const std::string& name : ModelFiles()) {
        const fs::path expected = EXAMPLES / (name + ".expected");
        broken += fs::exists(expected) ? 1 : 0;
        EXPECT_EQ(FindingsOf(name), ContentOf(expected)) << name;
        EXPECT_EQ(fs::exists(expected), !ContentOf(expected).empty()) << name;
    }
    EXPECT_GE(broken, 4U);
    EXPECT_GE(ModelFiles().size(), broken + 4);
}

// A number in brackets in the comment of a fault is one of the findings, and the other way round.
TEST(Examples, CommentsTellTheNumbers)
{
    for (const std::string name : {"ddr_io.ibs", "diff_driver.ami", "soic8.pkg", "board.ebd"}) {
        const auto numbers = [](const std::string& text, bool comments) {
            std::set<std::string> found;
            std::istringstream lines(text);
            for (std::string line; std::getline(lines, line);) {
                if (comments && line[0] != '|') {
                    continue;
                }
                for (std::size_t at = line.find('['); at != std::string::npos; at = line.find('[', at + 1)) {
                    const std::string word = line.substr(at + 1, line.find(']', at) - at - 1);
                    if (word.find_first_not_of("0123456789") == std::string::npos) {
                        found.insert(word);
                    }
                }
            }
            return found;
        };
        const fs::path path = EXAMPLES / "broken" / name;
        EXPECT_EQ(numbers(ContentOf(path), true), numbers(ContentOf(path.string() + ".expected"), false))
            << name;
    }
}
