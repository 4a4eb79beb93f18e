#include "tools/talibis/explain.h"

#include "ibis/source/nuibis_msg.h"
#include "tools/talibis/check.h"
#include "tools/talibis/exit_status.h"
#include "tools/talibis/explain_data.h"
#include "tools/talibis/explain_markdown.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <sys/ioctl.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;

// The terminal ----------------------------------------------------------------------------------------------

constexpr std::size_t PLAIN_WIDTH = 80;

std::size_t OutputWidth()
{
    winsize size{};
    const bool known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col != 0;
    return known ? size.ws_col : PLAIN_WIDTH;
}

bool IsPainted()
{
    const char* const noColour = std::getenv("NO_COLOR");
    return isatty(STDOUT_FILENO) != 0 && (noColour == nullptr || *noColour == '\0');
}

std::string Bold(const std::string& text)
{
    return IsPainted() ? "\033[1m" + text + "\033[0m" : text;
}

// Words in lines of the given width; a longer word has a line of its own.
std::string Wrapped(const std::string& text, std::size_t width)
{
    std::string out;
    std::size_t used = 0;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        if (used != 0) {
            const bool fits = used + 1 + word.size() <= width;
            out += fits ? ' ' : '\n';
            used = fits ? used + 1 : 0;
        }
        out += word;
        used += word.size();
    }
    return out + "\n";
}

// Examples on disk ------------------------------------------------------------------------------------------

void WriteFiles(const Explanation& entry, const fs::path& folder)
{
    fs::create_directories(folder);
    for (const ExampleFile& file : entry.files) {
        std::ofstream out(folder / file.name, std::ios::binary);
        out << file.text;
        if (!out.flush()) {
            throw std::runtime_error("cannot write " + (folder / file.name).string());
        }
    }
}

// A folder in which the example has its own name without a path; what was the current folder comes back.
class ExampleFolder
{
  public:
    explicit ExampleFolder(const Explanation& entry)
        : former_(fs::current_path()), folder_((fs::temp_directory_path() / "talibis_XXXXXX").string())
    {
        if (mkdtemp(folder_.data()) == nullptr) {
            throw std::runtime_error("cannot make a folder in " + fs::temp_directory_path().string());
        }
        WriteFiles(entry, folder_);
        fs::current_path(folder_);
    }
    ~ExampleFolder()
    {
        std::error_code ignored;
        fs::current_path(former_, ignored);
        fs::remove_all(folder_, ignored);
    }
    ExampleFolder(const ExampleFolder&) = delete;
    ExampleFolder& operator=(const ExampleFolder&) = delete;

  private:
    fs::path former_;
    std::string folder_;
};

// One message -----------------------------------------------------------------------------------------------

void PrintFile(const ExampleFile& file)
{
    std::cout << '\n' << Bold(file.name + (file.text.empty() ? " (empty)" : ":")) << '\n';
    if (!file.text.empty()) {
        std::cout << '\n' << file.text << (file.text.ends_with('\n') ? "" : "\n");
    }
}

// `talibis check` tells the kind of the file by its name, as it does for a user.
void PrintCheck(const Explanation& entry)
{
    const std::string& name = entry.files.front().name;
    std::cout << '\n' << Bold("talibis check --caution " + name + ":") << "\n\n" << std::flush;
    const ExampleFolder folder(entry);
    CheckOptions options;
    options.files = {name};
    options.caution = true;
    RunCheck(options);
}

void PrintEntry(const Explanation& entry)
{
    const std::size_t width = OutputWidth();
    std::cout << Bold(std::to_string(entry.code) + "  " + CatalogueText(entry.code)) << '\n';
    if (!entry.means.empty()) {
        std::cout << '\n' << Wrapped(entry.means, width);
        std::cout << '\n' << Bold("Why it matters:") << '\n' << Wrapped(entry.why, width);
        std::cout << '\n' << Bold("How to mend it:") << '\n' << Wrapped(entry.mend, width);
    }
    if (!entry.unraised.empty()) {
        std::cout << '\n' << Bold("No example:") << '\n' << Wrapped(entry.unraised, width);
        return;
    }
    for (const ExampleFile& file : entry.files) {
        PrintFile(file);
    }
    PrintCheck(entry);
}

// "119", "E0119", "w119"; -1 for anything else.
int NumberOf(std::string_view word)
{
    if (!word.empty() && std::string_view("BEWCNbewcn").find(word.front()) != std::string_view::npos) {
        word.remove_prefix(1);
    }
    int number = 0;
    const auto [end, fault] = std::from_chars(word.data(), word.data() + word.size(), number);
    return fault == std::errc() && end == word.data() + word.size() ? number : -1;
}

int ExplainCodes(const ExplainData& data, const std::vector<std::string>& words)
{
    std::vector<const Explanation*> entries;
    for (const std::string& word : words) {
        entries.push_back(data.Find(NumberOf(word)));
        if (entries.back() == nullptr) {
            std::cerr << "talibis: no message has the number " << word
                      << " (talibis explain --list prints all)\n";
        }
    }
    if (std::find(entries.begin(), entries.end(), nullptr) != entries.end()) {
        return EXIT_UNUSABLE;
    }
    for (const Explanation* const entry : entries) {
        std::cout << (entry == entries.front() ? "" : "\n");
        PrintEntry(*entry);
    }
    return EXIT_CLEAN;
}

// All messages ----------------------------------------------------------------------------------------------

void PrintList(const ExplainData& data)
{
    for (const Explanation& entry : data.messages) {
        const std::string number = std::to_string(entry.code);
        std::cout << std::string(4 - std::min<std::size_t>(number.size(), 4), ' ') << number << "  "
                  << CatalogueText(entry.code) << '\n';
    }
}

void WriteAll(const ExplainData& data, const fs::path& folder)
{
    for (const Explanation& entry : data.messages) {
        if (!entry.files.empty()) {
            WriteFiles(entry, folder / std::to_string(entry.code));
        }
    }
}

}  // namespace

int RunExplain(const ExplainOptions& options)
{
    const ExplainData data = BuiltInExplainData();
    if (options.list) {
        PrintList(data);
    } else if (options.markdown) {
        PrintExplainMarkdown(data);
    } else if (!options.folder.empty()) {
        WriteAll(data, options.folder);
    } else {
        return ExplainCodes(data, options.codes);
    }
    return EXIT_CLEAN;
}
