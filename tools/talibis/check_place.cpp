#include "tools/talibis/check_place.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <map>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace
{

// Lines are shown on a screen; what lies behind this is never seen.
constexpr std::size_t SOURCE_LIMIT = 1024;

// A keyword that opens a block with a name, and the words that texts use for such a block.
struct BlockKind {
    std::string_view sKeyword;
    std::array<std::string_view, 2> aWords;
};

constexpr std::array<BlockKind, 10> KINDS{{
    {"Component", {"component", "cmpt"}},
    {"Model", {"model", ""}},
    {"Model Selector", {"model selector", "selector"}},
    {"Submodel", {"submodel", ""}},
    {"Define Package Model", {"package model", "package"}},
    {"External Circuit", {"external circuit", "circuit"}},
    {"Test Data", {"test data", ""}},
    {"Test Load", {"test load", ""}},
    {"Begin Board Description", {"board description", "board"}},
    {"Path Description", {"path description", "path"}},
}};

constexpr std::string_view BLANKS = " \t\r\n\v\f";

char Lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string_view Trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(BLANKS);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(BLANKS) - first + 1);
}

// Case does not count in keywords, and a blank and an underscore are the same.
bool IsKeyword(std::string_view text, std::string_view keyword)
{
    return std::equal(text.begin(), text.end(), keyword.begin(), keyword.end(),
                      [](char a, char b) { return Lower(a == '_' ? ' ' : a) == Lower(b); });
}

bool IsWordCharacter(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) != 0;
}

// Blocks ---------------------------------------------------------------------------------------------------

// The named blocks of a file and some of its lines, gathered in one pass.
class Source
{
  public:
    bool read(const std::string& path, const std::unordered_set<unsigned>& wanted);
    const Block* blockOfLine(unsigned line) const;
    /// The block that a text names first.
    const Block* blockOfText(std::string_view text) const;
    std::string_view lineText(unsigned line) const;

  private:
    void readLine(std::string_view line, unsigned number);
    void readKeyword(std::string_view name, std::string_view rest, unsigned number);
    const Block* blockNamedBehind(const BlockKind& kind, std::string_view rest) const;
    const Block* find(const BlockKind& kind, std::string_view name) const;

    std::vector<Block> mBlocks;                                               // in the order of the file
    std::map<std::pair<std::string_view, std::string>, std::size_t> mByName;  // by keyword and name
    std::unordered_map<unsigned, std::string> mLines;
    char mCommentChar = '|';
};

bool Source::read(const std::string& path, const std::unordered_set<unsigned>& wanted)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return false;
    }
    std::string line;
    for (unsigned number = 1; std::getline(file, line); ++number) {
        if (wanted.contains(number)) {
            mLines.emplace(number, line.substr(0, SOURCE_LIMIT));
        }
        readLine(line, number);
    }
    return true;
}

// An indented bracket is text of the header, or a keyword out of place.
void Source::readLine(std::string_view line, unsigned number)
{
    const std::size_t bracket = line.find(']');
    if (line.starts_with('[') && bracket != std::string_view::npos) {
        readKeyword(line.substr(1, bracket - 1), line.substr(bracket + 1), number);
    }
}

void Source::readKeyword(std::string_view name, std::string_view rest, unsigned number)
{
    if (IsKeyword(name, "comment char")) {
        rest = Trimmed(rest);
        mCommentChar = rest.empty() ? mCommentChar : rest.front();
        return;
    }
    const auto* const kind = std::find_if(
        KINDS.begin(), KINDS.end(), [name](const BlockKind& row) { return IsKeyword(name, row.sKeyword); });
    if (kind != KINDS.end()) {
        const std::string object(Trimmed(rest.substr(0, rest.find(mCommentChar))));
        mByName.emplace(std::pair(kind->sKeyword, object), mBlocks.size());
        mBlocks.push_back({std::string(kind->sKeyword), object, number});
    }
}

std::string_view Source::lineText(unsigned line) const
{
    const auto found = mLines.find(line);
    return found == mLines.end() ? std::string_view() : std::string_view(found->second);
}

const Block* Source::blockOfLine(unsigned line) const
{
    const auto behind = std::upper_bound(mBlocks.begin(), mBlocks.end(), line,
                                         [](unsigned at, const Block& block) { return at < block.line; });
    return behind == mBlocks.begin() ? nullptr : &behind[-1];
}

const Block* Source::find(const BlockKind& kind, std::string_view name) const
{
    const auto found = mByName.find(std::pair(kind.sKeyword, std::string(name)));
    return found == mByName.end() || name.empty() ? nullptr : &mBlocks[found->second];
}

// The name behind the word for a block: quoted in one of several ways, or up to the next blank, perhaps with
// punctuation of the sentence at its end.
const Block* Source::blockNamedBehind(const BlockKind& kind, std::string_view rest) const
{
    static constexpr std::array<std::string_view, 3> QUOTES{"''", "\"\"", "<>"};
    rest.remove_prefix(std::min(rest.find_first_not_of(" ]:="), rest.size()));
    for (const std::string_view quotes : QUOTES) {
        if (rest.starts_with(quotes.front())) {
            return find(kind, rest.substr(1, rest.find(quotes.back(), 1) - 1));
        }
    }
    std::string_view name = rest.substr(0, rest.find(' '));
    const Block* block = find(kind, name);
    while (block == nullptr && !name.empty() &&
           std::string_view(".,:;)").find(name.back()) != std::string_view::npos) {
        name.remove_suffix(1);
        block = find(kind, name);
    }
    return block;
}

const Block* Source::blockOfText(std::string_view text) const
{
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), Lower);
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (at != 0 && IsWordCharacter(text[at - 1])) {
            continue;
        }
        for (const BlockKind& kind : KINDS) {
            for (const std::string_view word : kind.aWords) {
                const std::size_t end = at + word.size();
                if (word.empty() || lower.compare(at, word.size(), word) != 0 ||
                    (end < text.size() && IsWordCharacter(text[end]))) {
                    continue;
                }
                if (const Block* const block = blockNamedBehind(kind, text.substr(end)); block != nullptr) {
                    return block;
                }
            }
        }
    }
    return nullptr;
}

// Places ---------------------------------------------------------------------------------------------------

// The line that a finding has by itself: its own, that of its frame, or one that its text names.
unsigned LineOf(const Finding& finding)
{
    if (finding.hasLine) {
        return finding.line;
    }
    if (const unsigned framed = FrameLine(finding); framed != 0) {
        return framed;
    }
    std::size_t ignored = 0;
    return NamedLine(OneLine(finding), ignored);
}

void Place(Finding& finding, const Source& source)
{
    finding.placeLine = LineOf(finding);
    finding.source = source.lineText(finding.placeLine);
    const Block* const block =
        finding.placeLine != 0 ? source.blockOfLine(finding.placeLine) : source.blockOfText(OneLine(finding));
    if (block == nullptr) {
        return;
    }
    finding.block = *block;
    if (finding.placeLine == 0) {
        finding.placeLine = block->line;
        finding.blockPlace = true;
    }
}

std::string BaseName(std::string_view path)
{
    return std::string(path.substr(path.rfind('/') + 1));
}

// A file system that does not respect case gives the name in a spelling of its own.
bool SameName(std::string_view a, std::string_view b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return Lower(x) == Lower(y); });
}

// Findings by the file that was read when they came.
using ByFile = std::map<std::string, std::vector<Finding*>>;

ByFile Grouped(const std::string& path, std::span<Finding> findings)
{
    const std::string own = BaseName(path);
    const std::string folder = path.substr(0, path.size() - own.size());
    ByFile files;
    for (Finding& finding : findings) {
        if (finding.file.empty() || SameName(finding.file, own) ||
            !std::filesystem::is_regular_file(folder + finding.file)) {
            finding.file.clear();
        } else {
            finding.file.insert(0, folder);
        }
        files[finding.file.empty() ? path : finding.file].push_back(&finding);
    }
    return files;
}

}  // namespace

void FindPlaces(const std::string& path, std::span<Finding> findings)
{
    for (auto& [file, group] : Grouped(path, findings)) {
        std::unordered_set<unsigned> wanted;
        for (const Finding* finding : group) {
            wanted.insert(LineOf(*finding));
        }
        Source source;
        source.read(file, wanted);
        for (Finding* finding : group) {
            Place(*finding, source);
        }
    }
}
