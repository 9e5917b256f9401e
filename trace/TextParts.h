// TextParts.h - records and numbers as pieces of a line for people: what calls of the driver and of the engine's services have
// in common. Geometry in pixels, colours as red, green and blue, flags in hexadecimal and left out when there are none.
#pragma once

#include <string>

#include "trace/Recording.h"

namespace morvil::trace {

std::string number(std::int64_t value);
std::string hex(std::uint64_t value);
// "2 dashes", "1 dash".
std::string counted(std::uint64_t count, const std::string& what);
// "1 bit", "24 bits"; "format 7" of one without a fixed depth.
std::string depthText(std::uint32_t format);
// "(255,128,0)"; "none" for what engines answer when there is no one colour.
std::string colourText(ULONG rgb);
// "index 3"; a pixel of direct colour, which is no index, in hexadecimal; "index none" of a brush of more than one pixel value.
std::string pixelText(ULONG solidColour);
// " flags 0x2"; nothing for none.
std::string flagsText(FLONG flags);

std::string toText(const SIZEL& size);
std::string toText(const RECTL& area);
std::string toText(const POINTL& point);
std::string toText(const SurfaceArgument& surface);
std::string toText(const PathArgument& path);
std::string toText(const BrushArgument& brush);
std::string toText(const LineArgument& line);
std::string toText(const ClipArgument& clip);
std::string toText(const TranslationArgument& translation);
std::string toText(const COLORADJUSTMENT& adjustment);

// Whether it can stand in a line.
bool isPrintable(WCHAR character);
// UTF-16 in quotation marks, with or without a terminator; what is none of it by its size.
std::string wideText(const Bytes& block);

}  // namespace morvil::trace
