#include "config/JobNameRules.h"

#include <algorithm>

#include "config/ConfigurationRecord.h"

namespace morvil {

namespace {

// The first "-" if it stands neither at the beginning nor at the end; npos otherwise.
std::size_t innerPosition(WStringView title, WCHAR c) {
    const std::size_t at = title.find(c);
    const bool inner = at != WStringView::npos && at > 0 && at + 1 < title.size();
    return inner ? at : WStringView::npos;
}

WStringView behindLast(WStringView title, WCHAR separator) {
    const std::size_t at = title.rfind(separator);
    return at == WStringView::npos ? title : title.substr(at + 1);
}

WString wholeTitle(WStringView title) {
    return WString(title.empty() || title.size() >= kNameCharacters ? viewOf(kDefaultJobName) : title);
}

// "Application - Document": the dash and the blank behind it go.
WString documentBehindDash(WStringView title) {
    const std::size_t dash = innerPosition(title, '-');
    return WString(dash == WStringView::npos ? title : title.substr(dash + 2));
}

// "Document - Application": the blank before the dash goes as well.
WString documentBeforeDash(WStringView title) {
    const std::size_t dash = innerPosition(title, '-');
    return WString(dash == WStringView::npos ? title : title.substr(0, dash - 1));
}

// A path, followed by words of the application.
WString fileOfPath(WStringView title) {
    const WStringView file = behindLast(title, '\\');
    return WString(file.substr(0, innerPosition(file, ' ')));
}

// An address or a path: the last part of it, decoded as far as a name needs.
WString lastPartOfAddress(WStringView title) {
    static constexpr WStringView kEncodedBlank = TEXT("%20");
    WString name(behindLast(title, '\\'));
    for (std::size_t at = name.find(kEncodedBlank); at != WString::npos; at = name.find(kEncodedBlank, at + 1)) {
        name.replace(at, kEncodedBlank.size(), 1, ' ');
    }
    std::erase_if(name, [](WCHAR c) { return c == ':' || c == '?' || c == '&'; });
    if (name.ends_with('/')) name.pop_back();
    return WString(behindLast(name, '/'));
}

}  // namespace

WString reduceTitle(WStringView title, int format) {
    WString reduced;
    switch (format) {
        case 1: reduced = documentBehindDash(title); break;
        case 2: reduced = documentBeforeDash(title); break;
        case 3: reduced = fileOfPath(title); break;
        case 4: reduced = lastPartOfAddress(title); break;
        default: return wholeTitle(title);
    }
    return reduced.empty() ? WString(title) : reduced;
}

WString replaceUnusable(WStringView name) {
    const auto unusable = [](WCHAR c) { return c > 0xFF; };
    const auto count = static_cast<std::size_t>(std::ranges::count_if(name, unusable));
    if (count > 0 && count >= name.size() / 3) return TEXT("ErrorJobname");
    WString usable(name);
    std::ranges::replace_if(usable, unusable, '_');
    return usable;
}

}  // namespace morvil
