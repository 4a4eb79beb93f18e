#include "tools/talibis/check_files.h"

#include "tools/talibis/check_workers.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <glob.h>
#include <poll.h>
#include <system_error>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;

bool IsFolder(const std::string& path)
{
    std::error_code ignored;
    return fs::is_directory(path, ignored);
}

std::vector<std::string> Matches(const std::string& pattern)
{
    glob_t found = {};
    std::vector<std::string> paths;
    if (glob(pattern.c_str(), 0, nullptr, &found) == 0) {
        paths.assign(found.gl_pathv, found.gl_pathv + found.gl_pathc);
    }
    globfree(&found);
    std::sort(paths.begin(), paths.end());
    return paths;
}

bool IsPattern(const std::string& argument)
{
    std::error_code ignored;
    return argument.find_first_of("*?[") != std::string::npos && !fs::exists(argument, ignored);
}

// False when a signal ended the wait for input.
bool ReadStandardInput(std::string& all)
{
    std::array<pollfd, 2> polls{{{STDIN_FILENO, POLLIN, 0}, {SignalCatcher::descriptor(), POLLIN, 0}}};
    std::array<char, 65536> block;
    for (;;) {
        poll(polls.data(), polls.size(), -1);
        if (SignalCatcher::caught() != 0) {
            return false;
        }
        const ssize_t got = read(STDIN_FILENO, block.data(), block.size());
        if (got > 0) {
            all.append(block.data(), static_cast<std::size_t>(got));
        } else if (got == 0 || (errno != EINTR && errno != EAGAIN)) {
            return true;
        }
    }
}

// The bare name that the text gives itself in [File Name], so that it is not judged by a name that it never
// had.
std::string OwnName(std::string_view text, const std::string& extension)
{
    static constexpr std::string_view KEYWORD = "file name]";
    for (std::size_t at = text.find('['); at != std::string_view::npos; at = text.find('[', at + 1)) {
        std::string keyword(text.substr(at + 1, KEYWORD.size()));
        std::transform(keyword.begin(), keyword.end(), keyword.begin(), [](char c) {
            return c == '_' ? ' ' : c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        });
        if (keyword != KEYWORD) {
            continue;
        }
        std::string_view name = text.substr(at + 1 + KEYWORD.size());
        name.remove_prefix(std::min(name.find_first_not_of(" \t"), name.size()));
        name = name.substr(0, name.find_first_of(" \t\r\n|/"));
        const bool fits = name.size() > extension.size() && name.size() < 256 && name.ends_with(extension) &&
                          name.find('\0') == std::string_view::npos;
        return fits ? std::string(name) : std::string();
    }
    return {};
}

std::string SystemProblem(const std::string& what)
{
    return what + ": " + std::strerror(errno);
}

}  // namespace

FileList::~FileList()
{
    std::error_code ignored;
    if (!mFolder.empty()) {
        fs::remove_all(mFolder, ignored);
    }
}

bool FileList::add(const std::string& argument, ibis_file_type type, std::string& problem)
{
    if (argument == STDIN_ARGUMENT) {
        return addStandardInput(type, problem);
    }
    if (IsFolder(argument)) {
        return addFolder(argument, type, problem);
    }
    const std::vector<std::string> matches =
        IsPattern(argument) ? Matches(argument) : std::vector<std::string>();
    for (const std::string& path : matches) {
        if (!IsFolder(path)) {
            addFile(path, type);
        } else if (!addFolder(path, type, problem)) {
            return false;
        }
    }
    // What is neither is told by the reader, which tries other spellings too.
    if (matches.empty()) {
        addFile(argument, type);
    }
    return true;
}

void FileList::addFile(const std::string& path, ibis_file_type type)
{
    mFiles.push_back({path, path, type == IBIS_FILE_NONE ? TypeOfName(path) : type});
}

bool FileList::addFolder(const std::string& folder, ibis_file_type type, std::string& problem)
{
    std::vector<std::string> paths;
    std::error_code error;
    fs::recursive_directory_iterator entry(folder, fs::directory_options::skip_permission_denied, error);
    for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
        std::error_code ignored;
        const std::string path = entry->path().string();
        if (entry->is_directory(ignored)) {
            if (entry->path().filename().string().starts_with('.')) {
                entry.disable_recursion_pending();
            }
        } else if (IsModelFile(path)) {
            paths.push_back(path);
        }
    }
    if (error) {
        problem = folder + ": " + error.message();
    } else if (paths.empty()) {
        problem = folder + ": no model files (.ibs, .pkg, .ebd, .ami)";
    }
    std::sort(paths.begin(), paths.end());
    for (const std::string& path : paths) {
        addFile(path, type);
    }
    return problem.empty();
}

// The library opens files by name, so the standard input becomes a file in a folder that only this user
// reads.
bool FileList::addStandardInput(ibis_file_type type, std::string& problem)
{
    if (type == IBIS_FILE_NONE) {
        problem = "- (standard input) needs --type";
        return false;
    }
    if (!mFolder.empty()) {
        problem = "- (standard input) can be read once";
        return false;
    }
    std::string text;
    if (!ReadStandardInput(text)) {
        return true;
    }
    std::error_code error;
    std::string folder = (fs::temp_directory_path(error) / "talibis-XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr) {
        problem = SystemProblem(folder);
        return false;
    }
    mFolder = folder;
    const std::string extension = "." + std::string(NameOfType(type));
    const std::string own = OwnName(text, extension);
    const std::string path = folder + "/" + (own.empty() ? "stdin" + extension : own);
    std::ofstream file(path, std::ios::binary);
    if (!file.write(text.data(), static_cast<std::streamsize>(text.size())).flush()) {
        problem = SystemProblem(path);
        return false;
    }
    mFiles.push_back({path, STDIN_NAME, type});
    return true;
}
