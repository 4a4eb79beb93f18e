// What becomes of the findings of a file: waived, hidden, capped or shown, and how many there are of each.

#pragma once

#include "tools/talibis/check_finding.h"
#include "tools/talibis/check_waiver.h"

#include <array>
#include <cstddef>
#include <string>
#include <vector>

struct Tally {
    std::array<std::size_t, SEVERITIES> found{};  ///< by severity: what is shown and what is capped
    std::size_t cautions = 0;                     ///< hidden since nobody asked for them
    std::size_t capped = 0;
    std::size_t waived = 0;

    std::size_t of(Severity severity) const { return found[static_cast<std::size_t>(severity)]; }
    std::size_t total() const;
    void add(const Tally& other);
};

/// Findings of one kind beyond the number that is shown.
struct CappedKind {
    Severity severity = Severity::Error;
    int code = 0;
    std::string sample;  ///< text of one of them
    std::size_t count = 0;
};

enum class FileStatus { Clean, Warnings, Errors, Unreadable };

struct JudgedFile {
    FileReport report;
    Tally tally;
    std::vector<CappedKind> capped;  ///< in the order in which they were met
    FileStatus status = FileStatus::Clean;
};

struct JudgeRules {
    bool caution = false;
    std::size_t maxPerCode = 0;  ///< 0: all
};

/// Settles the fate of each finding. A kind is a number with a severity; findings without a number are of one
/// kind when they differ in nothing but digits. The first of a kind is always shown.
JudgedFile Judge(FileReport report, const JudgeRules& rules, Waivers& waivers);
