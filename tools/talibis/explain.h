// talibis explain: what a message means, why it matters, how to mend the file, and a file that raises it.

#pragma once

#include <string>
#include <vector>

struct ExplainOptions {
    std::vector<std::string> codes;  ///< "119", or with the letter of a severity: "E0119", "W119"
    bool list = false;               ///< number and text of every message
    bool markdown = false;           ///< docs/messages.md
    std::string folder;              ///< where to write the examples, each to a folder called by its number
};

/// Exit status of the program: 0, or 2 for a number that no message has or a folder that cannot be written.
int RunExplain(const ExplainOptions& options);
