// talibis ami-input and ami-output: the strings that a host exchanges with the code file of an algorithmic
// model.

#pragma once

#include <string>

struct AmiOptions {
    std::string file;   ///< a component file
    std::string model;  ///< one of its models, with an [Algorithmic Model]
    bool inputsOnly = false;
};

/// Prints the string that the model's code file takes, and nothing else.
int RunAmiInput(const AmiOptions& options);
/// Reads the string that the model's code file gives from the standard input and prints what came of it as
/// one line of JSON.
int RunAmiOutput(const AmiOptions& options);
