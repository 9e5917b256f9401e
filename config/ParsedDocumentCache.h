// ParsedDocumentCache.h - remembers what the last load of PrinterDriver.xml read and made of it. The job writer opens a store
// for every vector: each of them still reads the file under its lock, but bytes that did not change are not parsed again.
// Owned by the job writer, used by one CXml at a time; a CXml that is changed leaves the shared document alone.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "config/DebugSwitches.h"
#include "config/XmlDocument.h"

namespace morvil {

class ParsedDocumentCache {
  public:
    // The path of the configuration file, worked out once: finding it touches every shared folder, and within the life of a
    // job writer (one document) the file does not move.
    const WCHAR* path();

    // Reads the file; the document of its bytes, null when it is missing, empty or too large. REQUIRES: the mutex is held.
    std::shared_ptr<const XmlDocument> load();
    // A document of its own of the bytes that were loaded last; null when there is no memory.
    [[nodiscard]] std::shared_ptr<XmlDocument> copy() const;

    // The debug switches. Whether there is a file of them is asked ten times a second at the most: the question costs as much as
    // reading the configuration, and whoever puts the file there does it by hand.
    const DebugSwitches& switches();

    // Goes up by one each time the bytes of the file have changed: what was worked out from them holds as long as it stays.
    [[nodiscard]] std::uint64_t generation() const { return m_generation; }

  private:
    struct CloseMutex {
        void operator()(HANDLE mutex) const { CloseHandle(mutex); }
    };

    bool readsTheSame();

    WString m_path;
    std::vector<std::uint8_t> m_bytes;
    std::vector<std::uint8_t> m_fresh;  // the two change places, so that a load takes no memory
    std::shared_ptr<const XmlDocument> m_document;
    std::uint64_t m_generation = 0;
    std::optional<DebugSwitches> m_switches;
    DWORD m_switchesTick = 0;
    // Never waited for: as long as somebody has the mutex open, opening it again is quick.
    std::unique_ptr<void, CloseMutex> m_keptOpen;
};

// A file beyond this size is no configuration and counts as missing: every change of an item writes the whole file anew.
inline constexpr std::uint64_t kLargestConfigurationFile = std::uint64_t{8} << 20;

// The tree of a file's bytes; null when there are none or no memory. `spent`: a document that is given up for it, or null.
std::shared_ptr<XmlDocument> parseFileBytes(const std::vector<std::uint8_t>& bytes, std::shared_ptr<XmlDocument> spent = nullptr);

}  // namespace morvil
