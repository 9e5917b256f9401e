#include "config/ItemPath.h"

#include <algorithm>

namespace morvil {

// One pass over the text, its end included: an item is looked up some hundred times for each configuration that is loaded.
ItemPath::ItemPath(const WCHAR* path) {
    if (path == nullptr) return;
    const WCHAR* start = path;
    for (const WCHAR* at = path;; ++at) {
        while (*at > TEXT('.')) ++at;  // what names are made of, and not the end
        if (*at != TEXT('.') && *at != 0) continue;
        if (static_cast<std::size_t>(at - path) > kMostCharacters) break;
        const auto length = static_cast<std::size_t>(at - start);
        if (length > 0 && m_count < kMostNames) m_names[m_count++] = {start, std::min(length, kMostNameCharacters)};
        if (*at == 0) return;
        start = at + 1;
    }
    m_count = 0;  // too long
}

}  // namespace morvil
