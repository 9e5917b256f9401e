// HandleTable.h - every open handle of the process: small numbers that are checked on use, so that a closed or made-up
// handle fails with ERROR_INVALID_HANDLE instead of touching freed memory. Any thread; a short lock around each look-up.
// A file costs no allocation: its descriptor lies in the table itself.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "platform/posix/base_types.h"

namespace morvil {

enum class HandleKind : std::uint8_t { Free, File, Search, Mutex, Process, Token, Printer };

// What a handle of another kind than File refers to.
struct HandleObject {
    HandleObject() = default;
    HandleObject(const HandleObject&) = delete;
    HandleObject& operator=(const HandleObject&) = delete;
    virtual ~HandleObject() = default;
};

struct HandleEntry {
    HandleKind kind = HandleKind::Free;
    int file = -1;
    std::shared_ptr<HandleObject> object;
};

class HandleTable {
  public:
    // INVALID_HANDLE_VALUE when 65535 handles are open.
    HANDLE add(HandleEntry entry);
    // The descriptor behind a file handle, -1 for anything else.
    int file(HANDLE handle);
    // The object behind a handle of `kind`; empty for anything else.
    std::shared_ptr<HandleObject> object(HANDLE handle, HandleKind kind);
    template <typename T>
    std::shared_ptr<T> get(HANDLE handle, HandleKind kind) {
        return std::static_pointer_cast<T>(object(handle, kind));
    }
    // Takes the entry out; nothing for an unknown handle.
    std::optional<HandleEntry> take(HANDLE handle);
    std::size_t count(HandleKind kind);
    std::size_t countAll();
    // Takes out everything.
    std::vector<HandleEntry> takeAll();

  private:
    struct Slot {
        HandleEntry entry;
        std::uint32_t generation = 0;  // stale handles to a reused slot do not match
    };
    Slot* find(HANDLE handle);

    std::mutex m_lock;
    std::vector<Slot> m_slots;
    std::vector<std::uint32_t> m_free;
    std::array<std::size_t, 7> m_counts{};
};

}  // namespace morvil
