#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>

/// Texts kept once: equal text gives an equal pointer, so that names compare by address. Not for use from
/// several threads at a time.
class InternPoolDatabase
{
  public:
    InternPoolDatabase() = default;
    InternPoolDatabase(const InternPoolDatabase&) = delete;
    InternPoolDatabase& operator=(const InternPoolDatabase&) = delete;

    /// Gives the pool's own zero-terminated copy of `text`, made at the first request. The pool owns it and
    /// keeps it unchanged as long as the pool lives. Null for a null text, and when memory runs out.
    const char* insertC(const char* text) noexcept;

    /// The same for a text that need not be terminated; a NUL within it ends it.
    const char* insertC(std::string_view text) noexcept;

  private:
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const noexcept
        {
            return std::hash<std::string_view>{}(text);
        }
    };

    std::unordered_set<std::string, Hash, std::equal_to<>> m_texts;
};

namespace InternPool::Private
{

/// The pool of the process. It is there for static initialisers too, and is never destroyed: its pointers
/// hold to the very end of the process.
InternPoolDatabase& singleton() noexcept;

}  // namespace InternPool::Private
