// Programs run as a user runs them.

#pragma once

#include <cstdio>
#include <string>

#include <sys/wait.h>

struct Result {
    int status;
    std::string out;
};

/// Runs a program with these shell words and gives its exit status and what it prints, with or without its
/// standard error.
inline Result RunProgram(const std::string& program, const std::string& words, bool withErrors = false)
{
    const std::string command = "'" + program + "' " + words + (withErrors ? " 2>&1" : " 2>/dev/null");
    std::FILE* const pipe = popen(command.c_str(), "r");
    std::string out;
    char block[4096];
    for (std::size_t got = 0; (got = std::fread(block, 1, sizeof block, pipe)) > 0;) {
        out.append(block, got);
    }
    const int status = pclose(pipe);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, out};
}
