// What is known of each message beside its text: docs/messages.toml in memory.

#pragma once

#include "ibis/source/nuibis_types.h"

#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct ExampleFile {
    std::string name;
    std::string text;
};

struct Explanation {
    int code = 0;
    std::string means;  ///< empty, as are the next two, for most numbers that no file raises
    std::string why;
    std::string mend;
    int like = 0;                          ///< the number whose three texts these are; 0: its own
    std::string unraised;                  ///< why no file raises it; empty when there is an example
    ibis_file_type type = IBIS_FILE_NONE;  ///< kind of the example
    std::string version;                   ///< of its [IBIS Ver]
    std::string within;                    ///< name of the lines around its own; empty: none
    std::string lines;                     ///< its own lines, as they are written in the data
    std::vector<ExampleFile> files;        ///< the whole example, and behind it the files beside it
};

/// A block of numbers that are handed out together.
struct MessageFamily {
    int first = 0;
    int last = 0;
    std::string name;
};

struct ExplainData {
    std::vector<MessageFamily> families;        ///< by number
    std::map<std::string, std::string> within;  ///< shared lines; the example's own stand at the line "@"
    std::vector<Explanation> messages;          ///< by number

    /// Null for a number that is not there.
    const Explanation* Find(int code) const;
};

/// Throws a std::runtime_error that tells the entry when the text is not as its head describes it.
ExplainData ParseExplainData(std::string_view toml);

/// docs/messages.toml as it was when the program was built, in pieces.
std::span<const std::string_view> ExplainTextPieces();
/// The same, parsed.
ExplainData BuiltInExplainData();
