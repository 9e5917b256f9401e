// LocalBlock.h - owns a zero-filled block taken with LocalAlloc, the memory that may cross to the engine. Empty when the
// allocation failed, which callers test first.
#pragma once

#include <cstddef>
#include <limits>
#include <span>
#include <utility>

#include "platform/platform.h"

namespace morvil {

template <typename T>
class LocalBlock {
  public:
    LocalBlock() = default;
    explicit LocalBlock(std::size_t count) {
        if (count > std::numeric_limits<std::size_t>::max() / sizeof(T)) return;
        m_data = static_cast<T*>(LocalAlloc(LPTR, count * sizeof(T)));
        m_count = m_data == nullptr ? 0 : count;
    }
    ~LocalBlock() { reset(); }
    LocalBlock(LocalBlock&& other) noexcept : m_data(std::exchange(other.m_data, nullptr)), m_count(std::exchange(other.m_count, 0)) {}
    LocalBlock& operator=(LocalBlock&& other) noexcept {
        if (this == &other) return *this;
        reset();
        m_data = std::exchange(other.m_data, nullptr);
        m_count = std::exchange(other.m_count, 0);
        return *this;
    }
    LocalBlock(const LocalBlock&) = delete;
    LocalBlock& operator=(const LocalBlock&) = delete;

    explicit operator bool() const { return m_data != nullptr; }
    [[nodiscard]] T* get() const { return m_data; }
    [[nodiscard]] std::span<T> span() const { return {m_data, m_count}; }
    // Gives the block away; the receiver frees it with LocalFree.
    [[nodiscard]] T* release() {
        m_count = 0;
        return std::exchange(m_data, nullptr);
    }
    void reset() {
        if (m_data != nullptr) LocalFree(std::exchange(m_data, nullptr));
        m_count = 0;
    }

  private:
    T* m_data = nullptr;
    std::size_t m_count = 0;
};

}  // namespace morvil
