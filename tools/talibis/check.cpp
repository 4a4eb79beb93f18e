#include "tools/talibis/check.h"

#include "ibis/interface/talibis_tool.h"
#include "tools/talibis/exit_status.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <iostream>
#include <nlohmann/json.hpp>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using json = nlohmann::ordered_json;

struct TypeName {
    std::string_view sName;
    std::string_view sExtension;
    ibis_file_type eType;
};

constexpr std::array<TypeName, 5> TYPES{{
    {"ibs", ".ibs", IBIS_FILE_IBS},
    {"pkg", ".pkg", IBIS_FILE_PKG},
    {"ebd", ".ebd", IBIS_FILE_EBD},
    {"ami", ".ami", IBIS_FILE_AMI},
    {"param", "", IBIS_FILE_PARAM},
}};

// Whatever has none of the known extensions is a parameter file.
const TypeName& TypeOf(const std::string& path)
{
    std::string extension = path.substr(std::min(path.rfind('.'), path.size()));
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    const auto* const row = std::find_if(TYPES.begin(), TYPES.end(),
                                         [&](const TypeName& t) { return t.sExtension == extension; });
    return row == TYPES.end() ? TYPES.back() : *row;
}

const TypeName& NameOf(ibis_file_type type)
{
    return *std::find_if(TYPES.begin(), TYPES.end(), [type](const TypeName& t) { return t.eType == type; });
}

// Reading, in the child process ---------------------------------------------------------------------------

struct Finding {
    std::string severity;
    int code;
    unsigned line;
    bool hasLine;
    std::string text;
};

void Collect(void* context, const TalIbisFinding& finding)
{
    static_cast<std::vector<Finding>*>(context)->push_back(
        {finding.pszSeverity, finding.iCode, finding.uiLine, finding.bLine, std::string(finding.sText)});
}

struct ReadResult {
    const IbisErrorContainer* findings;
    bool readable;
};

ReadResult Read(const std::string& path, ibis_file_type type)
{
    if (type == IBIS_FILE_AMI || type == IBIS_FILE_PARAM) {
        const IbisErrorContainer* const findings = talReadParameterFile(path.c_str(), type);
        return {findings == nullptr ? talGetIbisError(nullptr) : findings, findings != nullptr};
    }
    TalIbis* handle = nullptr;
    const IbisErrorContainer* const findings = talReadIbisFile(path.c_str(), type, &handle);
    // Files of version 1.x are checked by a reader that keeps no records, so they have no handle.
    return {findings, handle != nullptr || TalIbisFileManager::getSniffedVersion() == IBIS_VER_1};
}

const char* StatusWord(const ReadResult& result)
{
    static constexpr std::array<const char*, 3> words{"clean", "warnings", "errors"};
    return result.readable ? words[static_cast<std::size_t>(result.findings->getErrorStatus())]
                           : "unreadable";
}

json MessageJson(const Finding& finding)
{
    return {{"severity", finding.severity},
            {"code", finding.code == 0 ? json() : json(finding.code)},
            {"line", finding.hasLine ? json(finding.line) : json()},
            {"text", finding.text}};
}

// The stored messages with the structure that was told while they came. The listener also hears what went
// into other containers, so the two are matched in order.
json MessagesJson(const IbisErrorContainer& container, const std::vector<Finding>& heard)
{
    json messages = json::array();
    auto next = heard.begin();
    for (std::size_t i = 0; i < container.getNumErrors(); ++i) {
        const std::string_view text = container.getErrMsg(i);
        const auto found =
            std::find_if(next, heard.end(), [text](const Finding& f) { return f.text == text; });
        if (found != heard.end()) {
            messages.push_back(MessageJson(*found));
            next = found + 1;
        } else {
            const bool error = container.getError(i)->getType() == MSG_TYPE_ERROR;
            messages.push_back(MessageJson({error ? "error" : "warning", 0, 0, false, std::string(text)}));
        }
    }
    return messages;
}

json ReportOf(const std::string& path, const TypeName& type, const char* status, json messages)
{
    return {{"path", path}, {"type", type.sName}, {"status", status}, {"messages", std::move(messages)}};
}

std::string Dump(const json& value)
{
    return value.dump(-1, ' ', false, json::error_handler_t::replace);
}

std::string CheckOne(const std::string& path, const TypeName& type, bool caution)
{
    std::vector<Finding> heard;
    talSetListener(Collect, &heard);
    talSetCautions(caution);
    const ReadResult result = Read(path, type.eType);
    return Dump(ReportOf(path, type, StatusWord(result), MessagesJson(*result.findings, heard)));
}

// One process a file --------------------------------------------------------------------------------------

bool WriteAll(int fd, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = write(fd, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
    }
    return true;
}

std::string ReadAll(int fd)
{
    std::string all;
    std::array<char, 65536> block;
    for (;;) {
        const ssize_t got = read(fd, block.data(), block.size());
        if (got > 0) {
            all.append(block.data(), static_cast<std::size_t>(got));
        } else if (got == 0 || errno != EINTR) {
            return all;
        }
    }
}

[[noreturn]] void RunChild(int fd, const std::string& path, const TypeName& type, bool caution)
{
    int status = EXIT_UNUSABLE;
    try {
        status = WriteAll(fd, CheckOne(path, type, caution)) ? EXIT_CLEAN : EXIT_UNUSABLE;
    } catch (const std::exception& failure) {
        std::cerr << "talibis: " << path << ": " << failure.what() << '\n';
    }
    _exit(status);
}

json Failure(const std::string& path, const TypeName& type, const std::string& reason)
{
    const Finding finding{"error", 0, 0, false, "ERROR - " + reason + "\n"};
    return ReportOf(path, type, "unreadable", json::array({MessageJson(finding)}));
}

// What the child wrote, or what became of it.
json CheckInChild(const std::string& path, const TypeName& type, bool caution)
{
    std::array<int, 2> ends;
    if (pipe(ends.data()) != 0) {
        return Failure(path, type, std::string("No pipe to the reading process: ") + std::strerror(errno));
    }
    const pid_t child = fork();
    if (child < 0) {
        close(ends[0]);
        close(ends[1]);
        return Failure(path, type, std::string("No process to read the file: ") + std::strerror(errno));
    }
    if (child == 0) {
        close(ends[0]);
        RunChild(ends[1], path, type, caution);
    }
    close(ends[1]);
    const std::string report = ReadAll(ends[0]);
    close(ends[0]);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    if (WIFSIGNALED(status)) {
        return Failure(path, type, std::string("The reading process ended: ") + strsignal(WTERMSIG(status)));
    }
    json parsed = json::parse(report, nullptr, false);
    return parsed.is_discarded() ? Failure(path, type, "The reading process gave no result.") : parsed;
}

// Printing ------------------------------------------------------------------------------------------------

struct Paint {
    const char* pszOn;
    const char* pszOff;
};

Paint ColourOf(const std::string& status, bool terminal)
{
    if (!terminal) {
        return {"", ""};
    }
    const char* const on = status == "clean" ? "\033[32m" : status == "warnings" ? "\033[33m" : "\033[31m";
    return {on, "\033[0m"};
}

std::string Plural(std::size_t count, const std::string& word)
{
    return std::to_string(count) + " " + word + (count == 1 ? "" : "s");
}

std::string SummaryOf(const json& report)
{
    const std::string status = report["status"];
    if (status == "unreadable") {
        return "could not be read";
    }
    if (status == "clean") {
        return "no findings";
    }
    const auto count = [&](std::initializer_list<std::string_view> severities) {
        return static_cast<std::size_t>(
            std::count_if(report["messages"].begin(), report["messages"].end(), [&](const json& message) {
                const auto severity = message["severity"].get<std::string>();
                return std::find(severities.begin(), severities.end(), severity) != severities.end();
            }));
    };
    std::string summary = Plural(count({"error", "bug"}), "error");
    summary += ", " + Plural(count({"warning"}), "warning");
    if (const std::size_t rest = count({"note", "caution"}); rest != 0) {
        summary += ", " + Plural(rest, "note");
    }
    return summary;
}

void PrintText(const json& report)
{
    for (const json& message : report["messages"]) {
        std::cout << message["text"].get_ref<const std::string&>();
    }
    const std::string status = report["status"];
    std::ostream& out = status == "unreadable" ? std::cerr : std::cout;
    const Paint paint = ColourOf(status, isatty(status == "unreadable" ? STDERR_FILENO : STDOUT_FILENO) != 0);
    std::cout.flush();
    out << paint.pszOn << report["path"].get_ref<const std::string&>() << ": " << SummaryOf(report)
        << paint.pszOff << '\n';
}

int ExitStatusOf(const json& report)
{
    const std::string status = report["status"];
    return status == "unreadable" ? EXIT_UNUSABLE : status == "errors" ? EXIT_ERRORS : EXIT_CLEAN;
}

}  // namespace

int RunCheck(const CheckOptions& options)
{
    int worst = EXIT_CLEAN;
    for (const std::string& path : options.files) {
        const TypeName& type = options.type == IBIS_FILE_NONE ? TypeOf(path) : NameOf(options.type);
        const json report = CheckInChild(path, type, options.caution);
        if (options.format == OutputFormat::Json) {
            std::cout << Dump(report) << '\n';
        } else {
            PrintText(report);
        }
        std::cout.flush();
        worst = std::max(worst, ExitStatusOf(report));
    }
    return worst;
}
