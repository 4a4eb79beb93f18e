// The files of a check: what the arguments stand for, one by one, and the standard input as a file.

#pragma once

#include "tools/talibis/check_read.h"

#include <span>
#include <string>
#include <vector>

/// How the standard input is asked for and shown.
inline constexpr const char* STDIN_ARGUMENT = "-";
inline constexpr const char* STDIN_NAME = "<stdin>";

class FileList
{
  public:
    FileList() = default;
    /// Removes the copy of the standard input.
    ~FileList();
    FileList(const FileList&) = delete;
    FileList& operator=(const FileList&) = delete;

    /// Adds what the argument stands for: a file as it is; of a folder all model files in it and the folders
    /// within, hidden folders left out, in the order of their paths; of a pattern that names no file what it
    /// matches. `type` none: by extension. False with `problem` told.
    bool add(const std::string& argument, ibis_file_type type, std::string& problem);

    std::span<const CheckFile> files() const { return mFiles; }

  private:
    bool addStandardInput(ibis_file_type type, std::string& problem);
    bool addFolder(const std::string& folder, ibis_file_type type, std::string& problem);
    void addFile(const std::string& path, ibis_file_type type);

    std::vector<CheckFile> mFiles;
    std::string mFolder;  // private, holds the copy of the standard input; empty without one
};
