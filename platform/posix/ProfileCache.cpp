#include "platform/posix/ProfileCache.h"

#include <algorithm>
#include <utility>

#include "platform/posix/PlatformCalls.h"

namespace morvil {

namespace {

using std::chrono::milliseconds;
using std::chrono::system_clock;

constexpr milliseconds kRest{100};  // the stamps' clock ticks every ten milliseconds at the least
constexpr std::size_t kMostCharacters = std::size_t{64} << 10;

system_clock::time_point timeOf(const std::array<std::int64_t, 2>& stamp) {
    const auto sinceEpoch = std::chrono::seconds(stamp[0]) + std::chrono::nanoseconds(stamp[1]);
    return system_clock::time_point(std::chrono::duration_cast<system_clock::duration>(sinceEpoch));
}

}  // namespace

FileStamp::FileStamp(const struct stat& status)
    : device(status.st_dev),
      number(status.st_ino),
      size(status.st_size),
      written{status.st_mtim.tv_sec, status.st_mtim.tv_nsec},
      changed{status.st_ctim.tv_sec, status.st_ctim.tv_nsec} {}

bool FileStamp::hadRested(system_clock::time_point moment) const { return changed[1] != 0 && timeOf(changed) + kRest <= moment; }

ProfileCache::Entry* ProfileCache::entryOf(std::string_view path) {
    const auto found = std::ranges::find_if(m_entries, [path](const Entry& entry) { return entry.text != nullptr && entry.path == path; });
    return found == m_entries.end() ? nullptr : &*found;
}

ProfileCache::Text ProfileCache::find(std::string_view path) {
    const std::lock_guard guard(m_lock);
    const Entry* const entry = entryOf(path);
    struct stat status {};
    if (entry == nullptr || platformCalls().status(entry->path.c_str(), &status) != 0) return nullptr;
    return FileStamp(status) == entry->stamp ? entry->text : nullptr;
}

void ProfileCache::keep(std::string_view path, const FileStamp& stamp, system_clock::time_point moment, Text text) {
    if (!stamp.hadRested(moment) || text->text.size() > kMostCharacters) return;
    const std::lock_guard guard(m_lock);
    Entry* entry = entryOf(path);
    if (entry == nullptr) {
        entry = &m_entries[m_next];
        m_next = (m_next + 1) % m_entries.size();
    }
    *entry = {.path = std::string(path), .stamp = stamp, .text = std::move(text)};
}

void ProfileCache::clear() {
    const std::lock_guard guard(m_lock);
    m_entries = {};
    m_next = 0;
}

}  // namespace morvil
