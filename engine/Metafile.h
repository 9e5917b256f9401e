// Metafile.h - enhanced metafiles: reading with every size checked before use, and playing onto a canvas.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "engine/Canvas.h"

namespace morvil::engine {

struct MetafileError {
    std::size_t position = 0;  // byte position in the file
    std::string reason;
};

struct MetafileHeader {
    RECTL bounds{};  // device units of the reference device, inclusive
    RECTL frame{};   // 0.01 mm, inclusive
    SIZEL devicePixels{};
    SIZEL deviceMillimetres{};
    ULONG records = 0;        // counted, header and end included
    std::string description;  // application and title as far as given
    bool plusOnly = false;    // holds only the newer plus-form of drawing
    bool hasPlus = false;
    [[nodiscard]] double widthMillimetres() const;
    [[nodiscard]] double heightMillimetres() const;
};

class Metafile {
  public:
    // Checks header and the whole chain of records. On failure `error` tells place and reason.
    static std::shared_ptr<Metafile> parse(std::vector<std::uint8_t> bytes, MetafileError& error);

    [[nodiscard]] const MetafileHeader& header() const { return m_header; }
    [[nodiscard]] std::span<const std::uint8_t> bytes() const { return m_bytes; }

  private:
    std::vector<std::uint8_t> m_bytes;
    MetafileHeader m_header;
};

class FontLibrary;

// Plays the metafile so that its frame fills `target` (page pixels, edges included: right and bottom name the last pixel).
class MetafilePage : public PageSource {
  public:
    MetafilePage(std::shared_ptr<const Metafile> metafile, RECTL target);
    ~MetafilePage() override;
    MetafilePage(const MetafilePage&) = delete;
    MetafilePage& operator=(const MetafilePage&) = delete;
    void play(Canvas& canvas) override;
    // Record types met that nothing is done for, with their number, counted over the first play.
    [[nodiscard]] const std::map<ULONG, ULONG>& skipped() const { return m_skipped; }
    // The first damaged record met while playing (it is skipped, playing goes on).
    [[nodiscard]] const std::optional<MetafileError>& damage() const { return m_damage; }

  private:
    std::shared_ptr<const Metafile> m_metafile;
    RECTL m_target;
    std::unique_ptr<FontLibrary> m_fonts;  // kept from band to band
    bool m_played = false;
    std::map<ULONG, ULONG> m_skipped;
    std::optional<MetafileError> m_damage;
};

// "EMR_LINETO" for 54; "unknown record" for types that the format does not know.
const char* recordName(ULONG type);

}  // namespace morvil::engine
