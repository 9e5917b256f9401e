// HolderRecord.h - the bytes of a lock file that tell who holds it, mapped into memory: a mutex is taken for every stroke, and
// this way its record costs no call of the system. What a process that is killed leaves there stays, as bytes of the file do.
// The record is text for people who look into the file: "H", process and thread; "F" when nobody holds it.
// Owns the mapping, not the file. Written by whoever has the file's lock. The file must not be cut while it is open.
#pragma once

#include <array>
#include <cstddef>

#include "platform/posix/base_types.h"

namespace morvil {

class HolderRecord {
  public:
    static constexpr std::size_t kBytes = 24;  // the mark, two numbers of ten digits, their blanks and a line end

    HolderRecord() = default;
    ~HolderRecord() { close(); }
    HolderRecord(const HolderRecord&) = delete;
    HolderRecord& operator=(const HolderRecord&) = delete;

    // Makes room in a file that is too short, which leaves it a record of nobody. False with errno set.
    bool open(int file);
    void close();
    [[nodiscard]] bool isOpen() const { return m_shared != nullptr; }

    // REQUIRES for what follows: open.
    [[nodiscard]] bool isHeld() const;
    void take(DWORD process, DWORD thread);
    void release();

  private:
    using Text = std::array<char, kBytes>;
    void prepare(DWORD process, DWORD thread);

    Text* m_shared = nullptr;
    Text m_text{};  // as the last taker of this process needs it
    DWORD m_textProcess = 0;
    DWORD m_textThread = 0;
};

}  // namespace morvil
