// CommandText.h - builds the lines of vector commands as bytes of the job file. The templates are those of JobFileFormat.h;
// only their whole-number conversions are understood here, because a stroke may have very many points and each costs time.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>

#include "jobfile/PolygonPoints.h"
#include "platform/common/Text.h"

namespace morvil {

// Appends a template whose conversions are all %i, each replaced by the next number.
void appendNumbers(std::string& out, WStringView text, std::initializer_list<std::int32_t> numbers);

// The opening of a polygon or Bezier line: point count, red, green, blue.
void appendOpening(std::string& out, const WCHAR* opening, std::size_t count, std::uint32_t colour);
void appendPoint(std::string& out, std::int32_t x, std::int32_t y);
// ">" and the line end.
void appendClosing(std::string& out);

// A whole arc line.
void appendArc(std::string& out, const ArcRecord& arc, std::uint32_t colour);

// Toward zero; what 32 bits cannot hold gives the smallest number, as the processor's own conversion does.
std::int32_t truncated(double value);

}  // namespace morvil
