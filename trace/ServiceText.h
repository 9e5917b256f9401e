// ServiceText.h - a call of the driver to a service of the engine on one line, for people. Objects are told by what they show
// of themselves, for to ask the engine about them would be another call; handles by numbers in the order in which they appear.
#pragma once

#include <map>
#include <string>

#include "trace/Recording.h"

namespace morvil::trace {

// A number of flags or a code.
struct Bits {
    ULONG value = 0;
};
struct Colour {
    ULONG rgb = 0;
};
// The result of a service without one.
struct NoResult {};

class ServiceText {
  public:
    void begin(const char* service) { m_line = service; }
    // An object that was not given (null) is left out; "surface 1" needs no name that says "surface".
    template <typename Value>
    void argument(const std::string& name, const Value& value) {
        const std::string text = given(value);
        if (!text.empty()) m_line += (text.starts_with(name + " ") ? " " : " " + name + " ") + text;
    }
    [[nodiscard]] std::string end(NoResult /*none*/) { return m_line; }
    template <typename Value>
    [[nodiscard]] std::string end(const Value& result) {
        return m_line + " = " + answered(result);
    }
    [[nodiscard]] std::string paletteName(HPALETTE palette) { return given(palette); }

  private:
    using Numbers = std::map<const void*, std::size_t>;
    static std::string nameOf(const char* kind, Numbers& numbers, const void* handle);

    static std::string given(NoResult /*none*/) { return {}; }
    static std::string given(std::int64_t value);
    static std::string given(Bits value);
    static std::string given(Colour value);
    static std::string given(const SIZEL& value);
    std::string given(HSURF surface) { return nameOf("surface", m_surfaces, surface); }
    std::string given(HPALETTE palette) { return nameOf("palette", m_palettes, palette); }
    std::string given(HDEV device) { return nameOf("device", m_devices, device); }
    std::string given(const SURFOBJ* surface);
    static std::string given(const PATHOBJ* path);
    static std::string given(const CLIPOBJ* clip);
    static std::string given(const BRUSHOBJ* brush);
    static std::string given(const XLATEOBJ* translation);
    static std::string given(const STROBJ* text);
    static std::string given(const RECTL* area);
    static std::string given(const POINTL* point);
    static std::string given(const COLORADJUSTMENT* adjustment);

    template <typename Value>
    std::string answered(const Value& value) {
        const std::string text = given(value);
        return text.empty() ? "none" : text;
    }

    std::string m_line;
    Numbers m_surfaces;
    Numbers m_palettes;
    Numbers m_devices;
};

}  // namespace morvil::trace
