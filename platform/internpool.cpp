#include "platform/internpool.h"

#include <new>

const char* InternPoolDatabase::insertC(const char* text) noexcept
{
    return text == nullptr ? nullptr : insertC(std::string_view(text));
}

const char* InternPoolDatabase::insertC(std::string_view text) noexcept
{
    text = text.substr(0, text.find('\0'));
    try {
        const auto found = m_texts.find(text);
        return found != m_texts.end() ? found->c_str() : m_texts.emplace(text).first->c_str();
    } catch (...) {
        return nullptr;
    }
}

InternPoolDatabase& InternPool::Private::singleton() noexcept
{
    alignas(InternPoolDatabase) static std::byte storage[sizeof(InternPoolDatabase)];
    static InternPoolDatabase* const pool = ::new (storage) InternPoolDatabase;
    return *pool;
}
