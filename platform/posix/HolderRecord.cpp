#include "platform/posix/HolderRecord.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>

namespace morvil {

namespace {

constexpr char kHeld = 'H';
constexpr char kFree = 'F';

// The last byte alone: others may stand in the record already. Its block is then on the disk, so that no later write into the
// mapping can find the disk full.
bool provideBytes(int file) {
    struct stat status {};
    if (::fstat(file, &status) != 0) return false;
    constexpr auto kLast = static_cast<off_t>(HolderRecord::kBytes) - 1;
    return status.st_size > kLast || ::pwrite(file, "\n", 1, kLast) == 1;
}

// Right-aligned in ten characters behind a blank.
char* putNumber(char* out, DWORD number) {
    constexpr std::ptrdiff_t kWidth = 11;
    std::array<char, 10> digits{};
    char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    const std::ptrdiff_t blanks = kWidth - (end - digits.data());
    return std::copy(digits.data(), end, std::fill_n(out, blanks, ' '));
}

}  // namespace

bool HolderRecord::open(int file) {
    close();
    if (!provideBytes(file)) return false;
    void* const bytes = ::mmap(nullptr, kBytes, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (bytes == MAP_FAILED) return false;
    m_shared = static_cast<Text*>(bytes);
    return true;
}

void HolderRecord::close() {
    if (m_shared != nullptr) ::munmap(m_shared, kBytes);
    m_shared = nullptr;
}

// A file that has just been lengthened begins with a zero.
bool HolderRecord::isHeld() const { return m_shared->front() != kFree && m_shared->front() != '\0'; }

void HolderRecord::take(DWORD process, DWORD thread) {
    if (process != m_textProcess || thread != m_textThread) prepare(process, thread);
    *m_shared = m_text;
}

void HolderRecord::release() { m_shared->front() = kFree; }

void HolderRecord::prepare(DWORD process, DWORD thread) {
    m_text.front() = kHeld;
    *putNumber(putNumber(m_text.data() + 1, process), thread) = '\n';
    m_textProcess = process;
    m_textThread = thread;
}

}  // namespace morvil
