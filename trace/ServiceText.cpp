#include "trace/ServiceText.h"

#include "trace/Arguments.h"
#include "trace/TextParts.h"

namespace morvil::trace {

namespace {

std::string inBraces(const std::string& text) { return "{" + text + "}"; }

template <typename Record>
std::string recordText(const Record* record) {
    return record == nullptr ? std::string() : inBraces(toText(*record));
}

}  // namespace

std::string ServiceText::nameOf(const char* kind, Numbers& numbers, const void* handle) {
    if (handle == nullptr) return "none";
    return std::string(kind) + " " + std::to_string(numbers.try_emplace(handle, numbers.size() + 1).first->second);
}

std::string ServiceText::given(std::int64_t value) { return number(value); }
std::string ServiceText::given(Bits value) { return hex(value.value); }
std::string ServiceText::given(Colour value) { return colourText(value.rgb); }
std::string ServiceText::given(const SIZEL& value) { return toText(value); }

std::string ServiceText::given(const SURFOBJ* surface) { return surface == nullptr ? std::string() : given(surface->hsurf); }

std::string ServiceText::given(const PATHOBJ* path) {
    if (path == nullptr) return {};
    return inBraces(toText(PathArgument{.flags = path->fl, .curves = path->cCurves, .parts = {}}));
}

std::string ServiceText::given(const CLIPOBJ* clip) { return clip == nullptr ? std::string() : inBraces(toText(*describe(clip))); }

std::string ServiceText::given(const BRUSHOBJ* brush) { return brush == nullptr ? std::string() : inBraces(pixelText(brush->iSolidColor)); }

std::string ServiceText::given(const XLATEOBJ* translation) {
    if (translation == nullptr) return {};
    return inBraces("table of " + number(translation->pulXlate != nullptr ? translation->cEntries : 0) + flagsText(translation->flXlate));
}

std::string ServiceText::given(const STROBJ* text) {
    if (text == nullptr) return {};
    const std::string characters = wideText(blockBytes(text->pwszOrg, text->cGlyphs * sizeof(WCHAR)));
    return inBraces(characters + " " + toText(text->rclBkGround));
}

std::string ServiceText::given(const RECTL* area) { return recordText(area); }
std::string ServiceText::given(const POINTL* point) { return recordText(point); }
std::string ServiceText::given(const COLORADJUSTMENT* adjustment) { return recordText(adjustment); }

}  // namespace morvil::trace
