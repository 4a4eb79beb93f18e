// SARIF 2.1.0: one run for all files. Results are written as they come, the rules behind them.

#include "ibis/source/nuibis_msg.h"
#include "tools/talibis/check_print.h"

#include <cctype>
#include <iostream>
#include <map>
#include <nlohmann/json.hpp>
#include <unordered_map>

namespace
{

using json = nlohmann::ordered_json;

std::string Dump(const json& value)
{
    return value.dump(-1, ' ', false, json::error_handler_t::replace);
}

// The identity of a message never changes, and neither does this.
std::string RuleId(int code)
{
    const std::string digits = std::to_string(code);
    return "TAL" + std::string(digits.size() < 4 ? 4 - digits.size() : 0, '0') + digits;
}

// The catalogue's text with "..." for what a finding fills in.
std::string RuleText(int code)
{
    const int row = MSG_Lookup(code);
    if (code == 0 || row < 0) {
        return "A finding without a number";
    }
    std::string text;
    for (const char* p = gaMsgCatalogue[static_cast<std::size_t>(row)].pszText; *p != '\0'; ++p) {
        if (*p != '%') {
            text += *p == '\n' ? ' ' : *p;
        } else if (*++p == '%') {
            text += '%';
        } else {
            while (MSG_Detail::IsFlag(*p)) {
                ++p;
            }
            text += "...";
        }
    }
    return text;
}

// A path as a URI: relative ones stay so, to be found from where the check was run.
std::string UriOf(std::string_view path)
{
    std::string uri = path.starts_with('/') ? "file://" : "";
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80 &&
            (std::isalnum(byte) != 0 || std::string_view("/-._~").find(c) != std::string_view::npos)) {
            uri += c;
        } else {
            uri += '%';
            uri += "0123456789ABCDEF"[byte >> 4U];
            uri += "0123456789ABCDEF"[byte & 15U];
        }
    }
    return uri;
}

json LocationOf(const JudgedFile& file, const Finding& finding)
{
    json physical{{"artifactLocation", {{"uri", UriOf(PathOf(file, finding))}}}};
    if (finding.placeLine != 0) {
        physical["region"]["startLine"] = finding.placeLine;
        if (!finding.source.empty()) {
            physical["region"]["snippet"]["text"] = finding.source;
        }
    }
    json location{{"physicalLocation", std::move(physical)}};
    if (finding.block.line != 0) {
        const Block& block = finding.block;
        location["logicalLocations"] = json::array(
            {{{"name", block.name}, {"fullyQualifiedName", "[" + block.keyword + "] " + block.name}}});
    }
    return location;
}

class SarifPrinter : public Printer
{
  public:
    SarifPrinter(std::ostream& out, const PrintStyle& style) : mOut(out), mStyle(style)
    {
        mOut << R"({"$schema":"https://docs.oasis-open.org/sarif/sarif/v2.1.0/errata01/os/schemas/)"
             << R"(sarif-schema-2.1.0.json","version":"2.1.0","runs":[{"results":[)";
    }

    void file(const JudgedFile& file) override;
    void end(const Totals& totals) override;

  private:
    json resultOf(const JudgedFile& file, const Finding& finding);
    std::size_t ruleIndex(int code);
    json ruleList() const;

    std::ostream& mOut;
    PrintStyle mStyle;
    std::size_t mResults = 0;
    std::map<int, std::size_t> mRules;                      // index by number
    std::vector<int> mCodes;                                // number by index
    std::unordered_map<std::string, std::size_t> mRepeats;  // of a fingerprint within the file
};

std::size_t SarifPrinter::ruleIndex(int code)
{
    const auto [entry, fresh] = mRules.try_emplace(code, mCodes.size());
    if (fresh) {
        mCodes.push_back(code);
    }
    return entry->second;
}

json SarifPrinter::resultOf(const JudgedFile& file, const Finding& finding)
{
    const std::string fingerprint = FingerprintOf(finding);
    const std::size_t repeat = ++mRepeats[fingerprint];
    json result{{"ruleId", RuleId(finding.code)},
                {"ruleIndex", ruleIndex(finding.code)},
                {"level", CommonWordOf(finding.severity)},
                {"message", {{"text", OneLine(finding)}}},
                {"locations", json::array({LocationOf(file, finding)})},
                {"partialFingerprints", {{"finding/v1", fingerprint + ":" + std::to_string(repeat)}}},
                {"properties", {{"severity", WordOf(finding.severity)}}}};
    if (finding.fate == Fate::Waived) {
        result["suppressions"] =
            json::array({{{"kind", "external"}, {"justification", finding.waiverReason}}});
    }
    return result;
}

// A finding that is not shown still counts its repeats, so that options do not change the fingerprints.
void SarifPrinter::file(const JudgedFile& file)
{
    mRepeats.clear();
    for (const Finding& finding : file.report.findings) {
        if (finding.fate == Fate::Shown || finding.fate == Fate::Waived) {
            mOut << (mResults++ == 0 ? "\n" : ",\n") << Dump(resultOf(file, finding));
        } else if (finding.fate == Fate::Capped) {
            ++mRepeats[FingerprintOf(finding)];
        }
    }
}

json SarifPrinter::ruleList() const
{
    json rules = json::array();
    for (const int code : mCodes) {
        rules.push_back({{"id", RuleId(code)}, {"shortDescription", {{"text", RuleText(code)}}}});
    }
    return rules;
}

void SarifPrinter::end(const Totals& totals)
{
    json invocation{{"executionSuccessful", !totals.interrupted && totals.unreadable == 0},
                    {"exitCode", totals.exitStatus}};
    for (const std::string& unused : totals.unusedWaivers) {
        invocation["toolExecutionNotifications"].push_back(
            {{"level", "warning"}, {"message", {{"text", unused}}}});
    }
    const json driver{{"name", "talibis"}, {"version", TALIBIS_VERSION}, {"rules", ruleList()}};
    mOut << "\n],\n\"tool\":" << Dump({{"driver", driver}})
         << ",\n\"invocations\":" << Dump(json::array({invocation})) << ",\n\"properties\":"
         << Dump({{"files", totals.files},
                  {"hiddenCautions", totals.tally.cautions},
                  {"capped", totals.tally.capped},
                  {"waived", totals.tally.waived}})
         << "}]}\n";
}

}  // namespace

std::unique_ptr<Printer> MakeSarifPrinter(std::ostream& out, const PrintStyle& style)
{
    return std::make_unique<SarifPrinter>(out, style);
}
