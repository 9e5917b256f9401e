#include "platform/posix/NamePattern.h"

#include "platform/posix/CaseFold.h"

namespace morvil {

NamePattern::NamePattern(WStringView pattern) {
    if (pattern == TEXT("*.*")) pattern = TEXT("*");
    const bool endsInPoint = pattern.ends_with(TEXT('.'));
    while (pattern.ends_with(TEXT('.'))) pattern.remove_suffix(1);
    m_items.reserve(pattern.size());
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const WCHAR behindLast = endsInPoint ? TEXT('.') : WCHAR{0};
        const WCHAR next = i + 1 < pattern.size() ? pattern[i + 1] : behindLast;
        const bool wildNext = next == TEXT('?') || next == TEXT('*');
        switch (pattern[i]) {
            case TEXT('?'): m_items.push_back({Kind::One, 0}); break;
            case TEXT('*'): m_items.push_back({next == TEXT('.') ? Kind::AnyToLast : Kind::Any, 0}); break;
            case TEXT('.'): m_items.push_back({wildNext ? Kind::Point : Kind::Literal, TEXT('.')}); break;
            default: m_items.push_back({Kind::Literal, upperOf(pattern[i])});
        }
    }
}

// Walks the name once with the set of pattern positions that may come next.
bool NamePattern::matches(WStringView name) const {
    const std::size_t end = m_items.size();
    const std::size_t lastPoint = name.rfind(TEXT('.'));
    std::vector<bool> now(end + 1, false);
    std::vector<bool> next(end + 1, false);
    // Positions that are reached without taking a character at `at`.
    const auto skipEmpty = [&](std::vector<bool>& set, std::size_t at) {
        const bool atEnd = at == name.size();
        const bool atStop = atEnd || name[at] == TEXT('.');
        for (std::size_t i = 0; i < end; ++i) {
            if (!set[i]) continue;
            const Kind kind = m_items[i].kind;
            const bool empty =
                kind == Kind::Any || kind == Kind::AnyToLast || (kind == Kind::One && atStop) || (kind == Kind::Point && atEnd);
            if (empty) set[i + 1] = true;
        }
    };
    now[0] = true;
    for (std::size_t at = 0; at < name.size(); ++at) {
        skipEmpty(now, at);
        next.assign(end + 1, false);
        for (std::size_t i = 0; i < end; ++i) {
            if (!now[i]) continue;
            switch (m_items[i].kind) {
                case Kind::Literal: next[i + 1] = next[i + 1] || upperOf(name[at]) == m_items[i].unit; break;
                case Kind::Point: next[i + 1] = next[i + 1] || name[at] == TEXT('.'); break;
                case Kind::One: next[i + 1] = next[i + 1] || name[at] != TEXT('.'); break;
                case Kind::Any: next[i] = true; break;
                case Kind::AnyToLast: next[i] = next[i] || at != lastPoint; break;
            }
        }
        now.swap(next);
    }
    skipEmpty(now, name.size());
    return now[end];
}

}  // namespace morvil
