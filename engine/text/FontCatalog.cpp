// FontCatalog.cpp - font requests as fontconfig patterns.
#include "engine/text/FontCatalog.h"

#include <fontconfig/fontconfig.h>

#include <memory>

#include "platform/common/Text.h"

namespace morvil::engine {

namespace {

struct PatternDeleter {
    void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
};
struct ConfigDeleter {
    void operator()(FcConfig* config) const { FcConfigDestroy(config); }
};
struct CharSetDeleter {
    void operator()(FcCharSet* set) const { FcCharSetDestroy(set); }
};
using Pattern = std::unique_ptr<FcPattern, PatternDeleter>;
using CharSet = std::unique_ptr<FcCharSet, CharSetDeleter>;

constexpr int kBoldFrom = 600;

// A language that needs the characters of a Windows character set; null where any font will do.
const char* languageOf(BYTE charSet) {
    switch (charSet) {
        case 128: return "ja";
        case 129:
        case 130: return "ko";
        case 134: return "zh-cn";
        case 136: return "zh-tw";
        case 161: return "el";
        case 162: return "tr";
        case 163: return "vi";
        case 177: return "he";
        case 178: return "ar";
        case 186: return "lt";
        case 204: return "ru";
        case 222: return "th";
        case 238: return "pl";
        default: return nullptr;
    }
}

// What kind of font to take when the family itself is unknown, from the family bits of the request.
const char* genericFamily(BYTE pitchAndFamily) {
    constexpr unsigned kFixedPitch = 1;
    if ((pitchAndFamily & 3U) == kFixedPitch) return "monospace";
    switch (pitchAndFamily >> 4) {
        case 1: return "serif";
        case 3: return "monospace";
        case 4: return "cursive";
        default: return "sans-serif";
    }
}

void addText(FcPattern* pattern, const char* object, const char* text) {
    FcPatternAddString(pattern, object, reinterpret_cast<const FcChar8*>(text));
}

std::optional<FontFile> match(FcConfig* config, const LOGFONTW& wanted, std::optional<char32_t> character) {
    constexpr int kNormal = 400;
    constexpr int kHeaviest = 1000;
    const Pattern pattern(FcPatternCreate());
    if (!pattern) return std::nullopt;
    const std::string family = toUtf8(viewOf(wanted.lfFaceName));
    if (!family.empty()) addText(pattern.get(), FC_FAMILY, family.c_str());
    addText(pattern.get(), FC_FAMILY, genericFamily(wanted.lfPitchAndFamily));
    const bool weighted = wanted.lfWeight > 0 && wanted.lfWeight <= kHeaviest;
    FcPatternAddInteger(pattern.get(), FC_WEIGHT, FcWeightFromOpenType(weighted ? wanted.lfWeight : kNormal));
    FcPatternAddInteger(pattern.get(), FC_SLANT, wanted.lfItalic != 0 ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    FcPatternAddBool(pattern.get(), FC_SCALABLE, FcTrue);
    FcPatternAddBool(pattern.get(), FC_OUTLINE, FcTrue);
    if (const char* language = languageOf(wanted.lfCharSet)) addText(pattern.get(), FC_LANG, language);
    if (character) {
        const CharSet set(FcCharSetCreate());
        FcCharSetAddChar(set.get(), *character);
        FcPatternAddCharSet(pattern.get(), FC_CHARSET, set.get());
    }
    FcConfigSubstitute(config, pattern.get(), FcMatchPattern);
    FcDefaultSubstitute(pattern.get());
    FcResult result = FcResultNoMatch;
    const Pattern found(FcFontMatch(config, pattern.get(), &result));
    FcChar8* path = nullptr;
    if (!found || FcPatternGetString(found.get(), FC_FILE, 0, &path) != FcResultMatch) return std::nullopt;

    FontFile file;
    file.path = reinterpret_cast<const char*>(path);
    FcPatternGetInteger(found.get(), FC_INDEX, 0, &file.index);
    int weight = FC_WEIGHT_NORMAL;
    int slant = FC_SLANT_ROMAN;
    FcPatternGetInteger(found.get(), FC_WEIGHT, 0, &weight);
    FcPatternGetInteger(found.get(), FC_SLANT, 0, &slant);
    file.bold = FcWeightToOpenType(weight) >= kBoldFrom;
    file.italic = slant != FC_SLANT_ROMAN;
    return file;
}

}  // namespace

struct FontCatalog::Members {
    std::unique_ptr<FcConfig, ConfigDeleter> config;

    // A machine whose configuration cannot be read has no fonts.
    std::optional<FontFile> find(const LOGFONTW& wanted, std::optional<char32_t> character) {
        if (!config) config.reset(FcInitLoadConfigAndFonts());
        return config ? match(config.get(), wanted, character) : std::nullopt;
    }
};

FontCatalog::FontCatalog() : m(std::make_unique<Members>()) {}
FontCatalog::~FontCatalog() = default;

std::optional<FontFile> FontCatalog::find(const LOGFONTW& wanted) { return m->find(wanted, std::nullopt); }

std::optional<FontFile> FontCatalog::findWith(const LOGFONTW& wanted, char32_t character) { return m->find(wanted, character); }

}  // namespace morvil::engine
