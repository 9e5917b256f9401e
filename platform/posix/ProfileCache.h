// ProfileCache.h - the texts of the ini files that were read last, each beside what the system said of its file at that time.
// A text is given out again as long as the system says the same of the file. Promises: what was written since is seen, whoever
// wrote it and whether by replacing the file or in place; a text is kept only once its file has rested, for the system's
// stamps may miss a second change within one tick of their clock; file systems that count whole seconds are never trusted.
// Refuses: writers that change a file through a mapping of their memory, of which the system tells late. Any thread.
#pragma once

#include <sys/stat.h>

#include <array>
#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "platform/posix/ProfileText.h"

namespace morvil {

// What tells one state of a file from every other.
struct FileStamp {
    FileStamp() = default;
    explicit FileStamp(const struct stat& status);
    bool operator==(const FileStamp&) const = default;
    // Whether a change after `moment` gives another stamp for certain.
    [[nodiscard]] bool hadRested(std::chrono::system_clock::time_point moment) const;

    dev_t device = 0;
    ino_t number = 0;
    off_t size = 0;
    std::array<std::int64_t, 2> written{};  // seconds and nanoseconds, of the bytes
    std::array<std::int64_t, 2> changed{};  // and of anything about the file; no program can set this one
};

class ProfileCache {
  public:
    using Text = std::shared_ptr<const ProfileText>;

    // The kept text of this host's path, if its file is still as it was. Asks the system only for a path that is kept.
    Text find(std::string_view path);
    // Keeps the text of a file whose stamp was taken before it was read, at `moment` or later.
    void keep(std::string_view path, const FileStamp& stamp, std::chrono::system_clock::time_point moment, Text text);
    void clear();

  private:
    struct Entry {
        std::string path;
        FileStamp stamp;
        Text text;
    };
    Entry* entryOf(std::string_view path);

    static constexpr std::size_t kFiles = 8;
    std::mutex m_lock;
    std::array<Entry, kFiles> m_entries;
    std::size_t m_next = 0;  // the entry that a further file takes
};

}  // namespace morvil
