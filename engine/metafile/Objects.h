// Objects.h - what a metafile creates and selects: pens, brushes, fonts, palettes, and the table of their handles.
// Objects never change once made (a changed palette is a new object), so that states can share them.
#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <variant>
#include <vector>

#include "engine/Drawing.h"
#include "engine/metafile/Record.h"
#include "platform/platform.h"

namespace morvil::engine {

struct PaletteObject {
    std::vector<COLORREF> entries;
};

// Colours stay as the file gives them (plain, palette index or palette-relative) until they are used.
enum class BrushStyle : std::uint8_t { Null, Solid, Hatched, Monochrome, Pattern };

struct BrushObject {
    BrushStyle style = BrushStyle::Solid;
    COLORREF colour = 0;
    ULONG hatch = 0;
    std::shared_ptr<const Image> pattern;
};

struct PenObject {
    enum class Kind : std::uint8_t { Old, Cosmetic, Geometric };
    Kind kind = Kind::Old;
    ULONG lineStyle = 0;  // PS_SOLID to PS_ALTERNATE
    double width = 0.0;   // logical units
    ULONG endCap = ENDCAP_ROUND;
    ULONG join = JOIN_ROUND;
    BrushObject brush;
    std::vector<float> userStyle;
};

struct FontObject {
    LOGFONTW description{};
};

// Colour spaces and whatever else has a handle but no effect on the picture.
struct OtherObject {};

using ObjectPointer = std::variant<std::monostate, std::shared_ptr<const PenObject>, std::shared_ptr<const BrushObject>,
                                   std::shared_ptr<const FontObject>, std::shared_ptr<const PaletteObject>, OtherObject>;

// Line styles of pens.
inline constexpr ULONG kPenStyleMask = 0xF;
enum PenLine : ULONG { kPenSolid, kPenDash, kPenDot, kPenDashDot, kPenDashDotDot, kPenNull, kPenInsideFrame, kPenUserStyle, kPenAlternate };

// The handles of one metafile. Throws DamagedRecord for indexes that no metafile may use and objects that do not exist.
class ObjectTable {
  public:
    void store(ULONG index, ObjectPointer object);
    void remove(ULONG index);
    // Stock objects have the highest bit set.
    [[nodiscard]] ObjectPointer find(ULONG index) const;

  private:
    std::unordered_map<ULONG, ObjectPointer> m_objects;
};

std::shared_ptr<const PenObject> readPen(const Record& record);
std::shared_ptr<const PenObject> readExtendedPen(const Record& record, const PaletteObject& palette);
std::shared_ptr<const BrushObject> readBrush(const Record& record);
std::shared_ptr<const BrushObject> readPatternBrush(const Record& record, const PaletteObject& palette, BrushStyle style);
std::shared_ptr<const FontObject> readFont(const Record& record);
std::shared_ptr<const PaletteObject> readPalette(const Record& record);

// The sixteen and four static colours that a device context starts with.
std::shared_ptr<const PaletteObject> defaultPalette();

// The plain colour behind a palette index (0x01 in the highest byte) or a palette-relative colour (0x02).
COLORREF resolveColour(COLORREF colour, const PaletteObject& palette);

}  // namespace morvil::engine
