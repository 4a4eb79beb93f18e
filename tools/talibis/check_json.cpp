// One JSON object a file, each on a line: docs/schema/check.schema.json describes it.

#include "tools/talibis/check_print.h"

#include <array>
#include <iostream>
#include <nlohmann/json.hpp>

namespace
{

using json = nlohmann::ordered_json;

std::string_view WordOf(FileStatus status)
{
    static constexpr std::array<std::string_view, 4> WORDS{"clean", "warnings", "errors", "unreadable"};
    return WORDS[static_cast<std::size_t>(status)];
}

json MessageOf(const Finding& finding)
{
    json message{{"severity", WordOf(finding.severity)},
                 {"code", finding.code == 0 ? json() : json(finding.code)},
                 {"line", finding.hasLine ? json(finding.line) : json()},
                 {"text", finding.text}};
    if (finding.fate == Fate::Waived) {
        message["waived"] = finding.waiverReason;
    }
    return message;
}

class JsonPrinter : public Printer
{
  public:
    JsonPrinter(std::ostream& out, const PrintStyle& style) : mOut(out), mStyle(style) {}

    void file(const JudgedFile& file) override
    {
        json messages = json::array();
        for (const Finding& finding : file.report.findings) {
            if (finding.fate == Fate::Shown || (finding.fate == Fate::Waived && mStyle.showWaived)) {
                messages.push_back(MessageOf(finding));
            }
        }
        json object{{"path", file.report.path},
                    {"type", file.report.type},
                    {"status", WordOf(file.status)},
                    {"messages", std::move(messages)}};
        if (mStyle.waivers) {
            object["waived"] = file.tally.waived;
        }
        if (mStyle.cap) {
            object["capped"] = CappedOf(file);
        }
        mOut << object.dump(-1, ' ', false, json::error_handler_t::replace) << '\n';
    }
    void end(const Totals&) override {}

  private:
    static json CappedOf(const JudgedFile& file)
    {
        json kinds = json::array();
        for (const CappedKind& kind : file.capped) {
            kinds.push_back({{"severity", WordOf(kind.severity)},
                             {"code", kind.code == 0 ? json() : json(kind.code)},
                             {"count", kind.count}});
        }
        return kinds;
    }

    std::ostream& mOut;
    PrintStyle mStyle;
};

}  // namespace

std::unique_ptr<Printer> MakeJsonPrinter(std::ostream& out, const PrintStyle& style)
{
    return std::make_unique<JsonPrinter>(out, style);
}
