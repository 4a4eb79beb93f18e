#pragma once

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

/// A path in UTF-8, absolute or relative to the working directory. An empty path names nothing: every
/// operation on it fails.
class HostPath
{
  public:
    /// Keeps a copy of `utf8`; a NUL within it ends it. Without memory for the copy the path is empty.
    explicit HostPath(std::string_view utf8) noexcept;

    /// `fopen` on this path. The caller closes the stream; null with `errno` set on failure.
    ///
    /// Reading ("r", "rb") takes regular files and pipes only. A directory is refused (EISDIR) where the
    /// system's own `fopen` opens it and only the first read fails. Terminals and all other devices are
    /// refused (ENODEV): a model file may name further files, and one that names an endless device must not
    /// fill the memory. Opening never waits: a FIFO that nobody writes to reads as an empty file, while the
    /// pipe of a shell's process substitution is read to its end.
    std::FILE* fopen(const char* mode) const noexcept;

    /// Removes the file. False with `errno` set on failure; a directory is one.
    bool remove() const noexcept;

    /// This path with the working directory in front unless it is absolute already; "." and ".." stay as
    /// they are. Empty on failure.
    std::string absolute() const noexcept;

    /// Names of all entries of this directory but "." and "..", without the directory, sorted bytewise so
    /// that the order is the same on every file system. Empty on failure.
    std::vector<std::string> list() const noexcept;

    /// The working directory. Empty on failure.
    static std::string currentDirectory() noexcept;

  private:
    std::string m_szPath;
};
