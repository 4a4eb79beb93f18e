#include "tools/talibis/check_judge.h"

#include <algorithm>
#include <functional>
#include <map>
#include <numeric>
#include <tuple>
#include <utility>

namespace
{

using Kind = std::tuple<Severity, int, std::string>;

Kind KindOf(const Finding& finding)
{
    std::string text;
    if (finding.code == 0) {
        text = OneLine(finding);
        std::erase_if(text, [](char c) { return c >= '0' && c <= '9'; });
    }
    return {finding.severity, finding.code, std::move(text)};
}

class Cap
{
  public:
    explicit Cap(std::size_t limit) : mLimit(limit) {}

    /// True for a finding beyond the limit of its kind, which is counted in `capped`.
    bool takes(const Finding& finding, std::vector<CappedKind>& capped)
    {
        if (mLimit == 0) {
            return false;
        }
        Count& count = mCounts[KindOf(finding)];
        if (count.uiShown < mLimit) {
            ++count.uiShown;
            return false;
        }
        if (count.uiRow == NO_ROW) {
            count.uiRow = capped.size();
            capped.push_back({finding.severity, finding.code, OneLine(finding), 0});
        }
        ++capped[count.uiRow].count;
        return true;
    }

  private:
    static constexpr std::size_t NO_ROW = static_cast<std::size_t>(-1);
    struct Count {
        std::size_t uiShown = 0;
        std::size_t uiRow = NO_ROW;
    };

    std::size_t mLimit;
    std::map<Kind, Count> mCounts;
};

void Settle(Finding& finding, JudgedFile& file, const JudgeRules& rules, Waivers& waivers, Cap& cap)
{
    const Waiver* const waiver = waivers.find(file.report.path, finding);
    if (finding.severity == Severity::Caution && !rules.caution) {
        finding.fate = Fate::Hidden;
        ++file.tally.cautions;
    } else if (waiver != nullptr) {
        finding.fate = Fate::Waived;
        finding.waiverReason = waiver->reason;
        ++file.tally.waived;
    } else {
        ++file.tally.found[static_cast<std::size_t>(finding.severity)];
        if (cap.takes(finding, file.capped)) {
            finding.fate = Fate::Capped;
            ++file.tally.capped;
        }
    }
}

FileStatus StatusOf(const JudgedFile& file)
{
    if (!file.report.readable) {
        return FileStatus::Unreadable;
    }
    if (file.tally.of(Severity::Bug) + file.tally.of(Severity::Error) != 0) {
        return FileStatus::Errors;
    }
    return file.tally.total() != 0 ? FileStatus::Warnings : FileStatus::Clean;
}

}  // namespace

std::size_t Tally::total() const
{
    return std::accumulate(found.begin(), found.end(), std::size_t{0});
}

void Tally::add(const Tally& other)
{
    std::transform(found.begin(), found.end(), other.found.begin(), found.begin(), std::plus<>());
    cautions += other.cautions;
    capped += other.capped;
    waived += other.waived;
}

JudgedFile Judge(FileReport report, const JudgeRules& rules, Waivers& waivers)
{
    JudgedFile file;
    file.report = std::move(report);
    Cap cap(rules.maxPerCode);
    for (Finding& finding : file.report.findings) {
        Settle(finding, file, rules, waivers, cap);
    }
    file.status = StatusOf(file);
    return file;
}
