// ItemPath.h - a dotted item path cut into the names of a chain of elements. Points into the text it was made of.
#pragma once

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
    explicit ItemPath(const WCHAR* path);

    [[nodiscard]] std::span<const WStringView> names() const { return {m_names.data(), m_count}; }
    [[nodiscard]] bool empty() const { return m_count == 0; }

  private:
    std::array<WStringView, kMostNames> m_names{};
    std::size_t m_count = 0;
};

}  // namespace morvil
