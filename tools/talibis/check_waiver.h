// Waivers: findings that somebody has looked at and accepts, each with its reason.
//
//     [[waiver]]
//     code = 1503              # number of the message
//     file = "vendor/*.ibs"    # pattern for the path, or for its last parts
//     object = "dq_*"          # pattern for the name of the block, or for a name that the text quotes
//     text = "non-monotonic"   # part of the text
//     reason = "Accepted by the vendor"
//
// The reason is required, and one of the others; all that are given have to fit. In a pattern "*" stands for
// any characters, also "/", and "?" for one.

#pragma once

#include "tools/talibis/check_finding.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct Waiver {
    std::optional<int> code;
    std::string file;
    std::string object;
    std::string text;
    std::string reason;
    unsigned line = 0;  ///< where it stands in its file
    std::size_t uses = 0;
};

class Waivers
{
  public:
    /// Reads a file of waivers; false with `problem` told: file, line and what is wrong there.
    bool read(const std::string& path, std::string& problem);
    /// The first waiver that fits, null without one. Counts the use.
    const Waiver* find(std::string_view path, const Finding& finding);
    /// One line for each waiver that nothing fitted.
    std::vector<std::string> unused() const;

  private:
    std::vector<Waiver> mWaivers;
    std::string mPath;
};

/// Whether `text` is what the pattern describes: "*" any characters, "?" one, anything else itself.
bool MatchesPattern(std::string_view pattern, std::string_view text);
