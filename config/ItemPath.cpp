#include "config/ItemPath.h"

#include <algorithm>

namespace morvil {

ItemPath::ItemPath(const WCHAR* path) {
    WStringView left = viewOf(path);
    if (left.size() > kMostCharacters) return;
    while (!left.empty() && m_count < kMostNames) {
        const std::size_t end = std::min(left.find(TEXT('.')), left.size());
        if (end > 0) m_names[m_count++] = left.substr(0, std::min(end, kMostNameCharacters));
        left.remove_prefix(std::min(end + 1, left.size()));
    }
}

}  // namespace morvil
