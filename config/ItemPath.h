// ItemPath.h - a dotted item path cut into the names of a chain of elements. Points into the text it was made of. The paths of
// the key table are cut when the program is built.
#pragma once

#include <algorithm>
#include <array>
#include <span>

#include "platform/common/Text.h"

namespace morvil {

class ItemPath {
  public:
    static constexpr std::size_t kMostCharacters = 260;
    static constexpr std::size_t kMostNames = 10;           // what follows is not looked at
    static constexpr std::size_t kMostNameCharacters = 19;  // a longer name is cut

    // Empty for a null path, for one that is too long and for one without a name.
    constexpr explicit ItemPath(const WCHAR* path) {
        if (path == nullptr) return;
        const WCHAR* start = path;
        for (const WCHAR* at = path;; ++at) {
            while (*at > TEXT('.')) ++at;  // what names are made of, and not the end
            if (*at != TEXT('.') && *at != 0) continue;
            if (static_cast<std::size_t>(at - path) > kMostCharacters) break;
            const auto length = static_cast<std::size_t>(at - start);
            if (length > 0 && m_count < kMostNames) m_names[m_count++] = {start, std::min(length, kMostNameCharacters)};
            if (*at == 0) {
                m_text = {path, static_cast<std::size_t>(at - path)};
                return;
            }
            start = at + 1;
        }
        m_count = 0;  // too long
        m_text = path;
    }

    [[nodiscard]] constexpr WStringView text() const { return m_text; }
    [[nodiscard]] constexpr std::span<const WStringView> names() const { return {m_names.data(), m_count}; }
    [[nodiscard]] constexpr bool empty() const { return m_count == 0; }

  private:
    WStringView m_text;
    std::array<WStringView, kMostNames> m_names{};
    std::size_t m_count = 0;
};

}  // namespace morvil
