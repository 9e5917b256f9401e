#include "config/JobNumber.h"

#include <algorithm>

#include "config/CJobName.h"
#include "config/ConfigurationRecord.h"
#include "platform/common/Format.h"

namespace morvil {

namespace {

constexpr const WCHAR* kExtension = TEXT("tsf");
constexpr std::size_t kDigits = 4;
constexpr int kBehindFourDigits = 10000;
constexpr std::size_t kMostDigits = 8;

// An open search of a folder; closes it.
class FolderSearch {
  public:
    explicit FolderSearch(const WString& pattern) : m_handle(FindFirstFileW(pattern.c_str(), &m_found)) {}
    ~FolderSearch() {
        if (m_handle != INVALID_HANDLE_VALUE) FindClose(m_handle);
    }
    FolderSearch(const FolderSearch&) = delete;
    FolderSearch& operator=(const FolderSearch&) = delete;

    [[nodiscard]] bool any() const { return m_handle != INVALID_HANDLE_VALUE; }
    [[nodiscard]] bool isFolder() const { return (m_found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0; }
    [[nodiscard]] WStringView name() const { return viewOf(m_found.cFileName); }
    bool next() { return FindNextFileW(m_handle, &m_found) != FALSE; }

  private:
    WIN32_FIND_DATAW m_found{};
    HANDLE m_handle;
};

bool isDigit(WCHAR c) { return c >= '0' && c <= '9'; }

// The last run of exactly so many digits, as a number; 0 when there is none.
int lastNumber(WStringView name, std::size_t digits) {
    int number = 0;
    for (std::size_t begin = 0; begin < name.size();) {
        std::size_t end = begin;
        while (end < name.size() && isDigit(name[end])) ++end;
        if (end - begin == digits) {
            number = 0;
            for (const WCHAR digit : name.substr(begin, digits)) number = number * 10 + (digit - '0');
        }
        begin = std::max(end, begin + 1);
    }
    return number;
}

// The name as far as `behind` more characters leave room for it.
WStringView cutName(WStringView name, std::size_t behind) { return name.substr(0, kLongestJobName - behind); }

// One more than the largest number of so many digits behind the name; 1 when there is none.
int behindLargest(const WString& folder, WStringView name, std::size_t digits) {
    // Converted together with a number: what ends a name, and therefore changes, does not end the numbered one.
    WString pattern = CJobName::asFileName(format(TEXT("%s %s"), cutName(name, digits + 1), WString(digits, '0')));
    pattern.replace(pattern.size() - digits, digits, digits, '?');
    FolderSearch search(format(TEXT("%s%s.%s"), folder, pattern, kExtension));
    int largest = 0;
    for (bool more = search.any(); more; more = search.next()) {
        if (!search.isFolder()) largest = std::max(largest, lastNumber(search.name(), digits));
    }
    return largest + 1;
}

}  // namespace

// In the patterns each "?" also stands for no character, as it does before a point.
int nextFreeNumber(const WString& folder, WStringView name) {
    if (folder.empty()) return 0;
    const WString whole = CJobName::asFileName(cutName(name, 0));
    if (!FolderSearch(format(TEXT("%s%s?????.%s"), folder, whole, kExtension)).any()) return 0;
    int next = behindLargest(folder, name, kDigits);
    // Behind 9999 the numbers go on with five digits and more, each length with a search of its own, so that no earlier job
    // is overwritten.
    int limit = kBehindFourDigits;
    for (std::size_t digits = kDigits + 1; next >= limit && digits <= kMostDigits; ++digits, limit *= 10) {
        next = std::max(limit, behindLargest(folder, name, digits));
    }
    return next;
}

WString numberedName(WStringView name, int number) {
    WString digits = TEXT("0000");
    const WString text = format(TEXT("%d"), number);
    if (text.size() >= digits.size()) {
        digits = text;
    } else {
        digits.replace(digits.size() - text.size(), text.size(), text);
    }
    return format(TEXT("%s %s"), cutName(name, digits.size() + 1), digits);
}

}  // namespace morvil
