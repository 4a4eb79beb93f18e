// The XML that build servers show as test results: a suite a file, a case a finding. What `--fail-on` names
// is a failure, what is waived is skipped, a file that could not be read is an error.

#include "tools/talibis/check_print.h"

#include <algorithm>
#include <iostream>

namespace
{

std::string Escaped(std::string_view text)
{
    std::string out;
    for (const char c : Harmless(text)) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        default:
            out += c;
        }
    }
    return out;
}

class JunitPrinter : public Printer
{
  public:
    JunitPrinter(std::ostream& out, const PrintStyle& style) : mOut(out), mStyle(style)
    {
        mOut << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites name=\"talibis check\">\n";
    }

    void file(const JudgedFile& file) override;
    void end(const Totals&) override { mOut << "</testsuites>\n"; }

  private:
    enum class Outcome { Passed, Failed, Broken, Skipped };

    Outcome outcomeOf(const JudgedFile& file, const Finding& finding) const;
    void testCase(const JudgedFile& file, const Finding& finding);

    std::ostream& mOut;
    PrintStyle mStyle;
};

bool IsListed(const Finding& finding)
{
    return finding.fate == Fate::Shown || finding.fate == Fate::Waived;
}

JunitPrinter::Outcome JunitPrinter::outcomeOf(const JudgedFile& file, const Finding& finding) const
{
    if (finding.fate == Fate::Waived) {
        return Outcome::Skipped;
    }
    if (file.status == FileStatus::Unreadable) {
        return Outcome::Broken;
    }
    return Fails(finding.severity, mStyle.failOn) ? Outcome::Failed : Outcome::Passed;
}

void JunitPrinter::testCase(const JudgedFile& file, const Finding& finding)
{
    const std::string text = Escaped(OneLine(finding));
    const std::string severity(WordOf(finding.severity));
    const std::string number = finding.code == 0 ? "" : " " + std::to_string(finding.code);
    mOut << "    <testcase classname=\"" << Escaped(file.report.path) << "\" name=\"" << severity << number
         << ": " << text << "\" file=\"" << Escaped(PathOf(file, finding)) << '"';
    if (finding.placeLine != 0) {
        mOut << " line=\"" << finding.placeLine << '"';
    }
    mOut << ">\n      ";
    switch (outcomeOf(file, finding)) {
    case Outcome::Failed:
        mOut << "<failure type=\"" << severity << "\" message=\"" << text << "\">" << Escaped(finding.source)
             << "</failure>";
        break;
    case Outcome::Broken:
        mOut << "<error type=\"" << severity << "\" message=\"" << text << "\"/>";
        break;
    case Outcome::Skipped:
        mOut << "<skipped message=\"" << Escaped(finding.waiverReason) << "\"/>";
        break;
    case Outcome::Passed:
        mOut << "<system-out>" << Escaped(finding.source) << "</system-out>";
        break;
    }
    mOut << "\n    </testcase>\n";
}

void JunitPrinter::file(const JudgedFile& file)
{
    const std::vector<Finding>& findings = file.report.findings;
    const auto count = [&](Outcome outcome) {
        return std::count_if(findings.begin(), findings.end(), [&](const Finding& finding) {
            return IsListed(finding) && outcomeOf(file, finding) == outcome;
        });
    };
    const auto listed = std::count_if(findings.begin(), findings.end(), IsListed);
    const std::string path = Escaped(file.report.path);
    mOut << "  <testsuite name=\"" << path << "\" tests=\"" << std::max<std::ptrdiff_t>(listed, 1)
         << "\" failures=\"" << count(Outcome::Failed) << "\" errors=\"" << count(Outcome::Broken)
         << "\" skipped=\"" << count(Outcome::Skipped) << "\">\n";
    if (listed == 0) {
        mOut << "    <testcase classname=\"" << path << "\" name=\"no findings\"/>\n";
    }
    for (const Finding& finding : findings) {
        if (IsListed(finding)) {
            testCase(file, finding);
        }
    }
    for (const CappedKind& kind : file.capped) {
        mOut << "    <system-out>" << Escaped(CappedText(kind)) << "</system-out>\n";
    }
    mOut << "  </testsuite>\n";
}

}  // namespace

std::unique_ptr<Printer> MakeJunitPrinter(std::ostream& out, const PrintStyle& style)
{
    return std::make_unique<JunitPrinter>(out, style);
}
