// PlayerObjects.cpp - creating, selecting and deleting objects.
#include <algorithm>

#include "engine/metafile/Player.h"

namespace morvil::engine {

void Player::selectObject(const Record& record) {
    const ObjectPointer object = m_objects.find(record.u32(8));
    if (const auto* pen = std::get_if<std::shared_ptr<const PenObject>>(&object)) m_state.pen = *pen;
    if (const auto* brush = std::get_if<std::shared_ptr<const BrushObject>>(&object)) m_state.brush = *brush;
    if (const auto* font = std::get_if<std::shared_ptr<const FontObject>>(&object)) m_state.font = *font;
    if (const auto* palette = std::get_if<std::shared_ptr<const PaletteObject>>(&object)) m_state.palette = *palette;
}

// What is selected stays in use.
void Player::deleteObject(const Record& record) { m_objects.remove(record.u32(8)); }

void Player::createPen(const Record& record) { m_objects.store(record.u32(8), readPen(record)); }
void Player::createExtendedPen(const Record& record) { m_objects.store(record.u32(8), readExtendedPen(record, *m_state.palette)); }
void Player::createBrush(const Record& record) { m_objects.store(record.u32(8), readBrush(record)); }

void Player::createMonochromeBrush(const Record& record) {
    m_objects.store(record.u32(8), readPatternBrush(record, *m_state.palette, BrushStyle::Monochrome));
}

void Player::createPatternBrush(const Record& record) {
    m_objects.store(record.u32(8), readPatternBrush(record, *m_state.palette, BrushStyle::Pattern));
}

void Player::createFont(const Record& record) { m_objects.store(record.u32(8), readFont(record)); }
void Player::createPalette(const Record& record) { m_objects.store(record.u32(8), readPalette(record)); }

void Player::selectPalette(const Record& record) {
    const ObjectPointer object = m_objects.find(record.u32(8));
    const auto* palette = std::get_if<std::shared_ptr<const PaletteObject>>(&object);
    if (palette == nullptr) throw DamagedRecord("handle " + std::to_string(record.u32(8)) + " is no palette");
    m_state.palette = *palette;
}

namespace {

PaletteObject copyOfPalette(const ObjectPointer& object) {
    const auto* palette = std::get_if<std::shared_ptr<const PaletteObject>>(&object);
    if (palette == nullptr) throw DamagedRecord("the handle is no palette");
    return **palette;
}

}  // namespace

void Player::setPaletteEntries(const Record& record) {
    constexpr std::size_t kEntries = 20;
    const ULONG handle = record.u32(8);
    const ObjectPointer old = m_objects.find(handle);
    PaletteObject palette = copyOfPalette(old);
    const std::size_t start = record.u32(12);
    const std::size_t count = record.u32(16);
    record.require(kEntries, count, 4, "palette entries");
    if (start > palette.entries.size() || count > palette.entries.size() - start) throw DamagedRecord("entries beyond the palette's end");
    for (std::size_t i = 0; i < count; ++i) palette.entries[start + i] = record.u32(kEntries + 4 * i) & 0xFFFFFFU;
    auto changed = std::make_shared<const PaletteObject>(std::move(palette));
    if (std::get<std::shared_ptr<const PaletteObject>>(old) == m_state.palette) m_state.palette = changed;
    m_objects.store(handle, std::move(changed));
}

void Player::resizePalette(const Record& record) {
    constexpr std::size_t kMostEntries = 65535;
    const ULONG handle = record.u32(8);
    const std::size_t count = record.u32(12);
    if (count > kMostEntries) throw DamagedRecord("a palette of " + std::to_string(count) + " entries");
    const ObjectPointer old = m_objects.find(handle);
    PaletteObject palette = copyOfPalette(old);
    palette.entries.resize(count, 0);
    auto changed = std::make_shared<const PaletteObject>(std::move(palette));
    if (std::get<std::shared_ptr<const PaletteObject>>(old) == m_state.palette) m_state.palette = changed;
    m_objects.store(handle, std::move(changed));
}

void Player::createColourSpace(const Record& record) { m_objects.store(record.u32(8), OtherObject{}); }
void Player::deleteColourSpace(const Record& record) { m_objects.remove(record.u32(8)); }

}  // namespace morvil::engine
