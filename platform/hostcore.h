#pragma once

#include <string>

/// Removes the file `path` (UTF-8); of a symbolic link the link. Directories are refused. Gives 0, or -1 with
/// `errno` set. A null path is a failure (EINVAL).
int hst_remove(const char* path) noexcept;

/// Makes a new empty file that only this user can read, under the directory that TMPDIR names or, where that
/// can't take it, under /tmp, and gives its path. The name begins with `prefix`, a bare name. The file is
/// there already when the path is known, so nobody else can slip one in under it. Empty with `errno` set on
/// failure. The caller removes the file.
std::string hst_tempnam(const char* prefix) noexcept;

/// A file made by `hst_tempnam` that goes away with its holder.
class HostTempFile
{
  public:
    explicit HostTempFile(const char* prefix) noexcept : m_szPath(hst_tempnam(prefix)) {}
    ~HostTempFile() { remove(); }
    HostTempFile(const HostTempFile&) = delete;
    HostTempFile& operator=(const HostTempFile&) = delete;

    /// Path of the file; empty when it couldn't be made, and after `remove`.
    const std::string& path() const noexcept { return m_szPath; }

    /// Removes the file now. False when there is none to remove, or the system refuses; either way the
    /// holder lets go of it.
    bool remove() noexcept;

  private:
    std::string m_szPath;
};
