#include "platform/posix/HandleTable.h"

#include <utility>

namespace morvil {

namespace {

// A handle is (generation, slot + 1) * 4: a multiple of four that fits 32 bits, as on Windows.
constexpr std::uint32_t kSlotBits = 16;
constexpr std::uint32_t kSlotMask = (1U << kSlotBits) - 1;
constexpr std::uint32_t kGenerationMask = (1U << 12) - 1;

HANDLE handleOf(std::uint32_t slot, std::uint32_t generation) {
    const std::uintptr_t number = (static_cast<std::uintptr_t>(generation) << kSlotBits) | (slot + 1);
    return reinterpret_cast<HANDLE>(number * 4);
}

std::size_t indexOf(HandleKind kind) { return static_cast<std::size_t>(kind); }

}  // namespace

HANDLE HandleTable::add(HandleEntry entry) {
    const std::lock_guard guard(m_lock);
    if (m_free.empty()) {
        if (m_slots.size() >= kSlotMask) return INVALID_HANDLE_VALUE;
        m_free.push_back(static_cast<std::uint32_t>(m_slots.size()));
        m_slots.emplace_back();
    }
    const std::uint32_t slot = m_free.back();
    m_free.pop_back();
    ++m_counts[indexOf(entry.kind)];
    m_slots[slot].entry = std::move(entry);
    return handleOf(slot, m_slots[slot].generation);
}

HandleTable::Slot* HandleTable::find(HANDLE handle) {
    const auto number = reinterpret_cast<std::uintptr_t>(handle);
    const std::uintptr_t slot = ((number / 4) & kSlotMask) - 1;
    if (number % 4 != 0 || slot >= m_slots.size()) return nullptr;
    Slot& found = m_slots[slot];
    if (found.entry.kind == HandleKind::Free || handleOf(static_cast<std::uint32_t>(slot), found.generation) != handle) return nullptr;
    return &found;
}

int HandleTable::file(HANDLE handle) {
    const std::lock_guard guard(m_lock);
    const Slot* const slot = find(handle);
    return slot != nullptr && slot->entry.kind == HandleKind::File ? slot->entry.file : -1;
}

std::shared_ptr<HandleObject> HandleTable::object(HANDLE handle, HandleKind kind) {
    const std::lock_guard guard(m_lock);
    const Slot* const slot = find(handle);
    return slot != nullptr && slot->entry.kind == kind ? slot->entry.object : nullptr;
}

std::optional<HandleEntry> HandleTable::take(HANDLE handle) {
    const std::lock_guard guard(m_lock);
    Slot* const slot = find(handle);
    if (slot == nullptr) return std::nullopt;
    --m_counts[indexOf(slot->entry.kind)];
    slot->generation = (slot->generation + 1) & kGenerationMask;
    m_free.push_back(static_cast<std::uint32_t>(slot - m_slots.data()));
    return std::exchange(slot->entry, HandleEntry{});
}

std::size_t HandleTable::count(HandleKind kind) {
    const std::lock_guard guard(m_lock);
    return m_counts[indexOf(kind)];
}

std::size_t HandleTable::countAll() {
    const std::lock_guard guard(m_lock);
    return m_slots.size() - m_free.size();
}

std::vector<HandleEntry> HandleTable::takeAll() {
    const std::lock_guard guard(m_lock);
    std::vector<HandleEntry> taken;
    for (std::uint32_t slot = 0; slot < m_slots.size(); ++slot) {
        if (m_slots[slot].entry.kind == HandleKind::Free) continue;
        taken.push_back(std::exchange(m_slots[slot].entry, HandleEntry{}));
        m_slots[slot].generation = (m_slots[slot].generation + 1) & kGenerationMask;
        m_free.push_back(slot);
    }
    m_counts = {};
    return taken;
}

}  // namespace morvil
