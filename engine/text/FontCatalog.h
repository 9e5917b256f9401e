// FontCatalog.h - which font file of this machine stands for a font that a document asks for. Asks fontconfig, whose
// configuration says what replaces a family that is not installed. Owns that configuration, which is loaded when the first font is
// asked for; printing thread only.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/platform.h"

namespace morvil::engine {

struct FontFile {
    std::string path;
    int index = 0;  // of the face within the file
    bool bold = false;
    bool italic = false;
};

class FontCatalog {
  public:
    FontCatalog();
    ~FontCatalog();
    FontCatalog(const FontCatalog&) = delete;
    FontCatalog& operator=(const FontCatalog&) = delete;

    // The nearest scalable font; none only on a machine without any.
    [[nodiscard]] std::optional<FontFile> find(const LOGFONTW& wanted);
    // The nearest one that holds the character; may be one that does not when no font does.
    [[nodiscard]] std::optional<FontFile> findWith(const LOGFONTW& wanted, char32_t character);

  private:
    struct Members;
    std::unique_ptr<Members> m;
};

}  // namespace morvil::engine
