// Arguments.h - from the objects of the driver interface to plain records. Asks the engine's public services where an object
// does not show what it holds: the pieces of a path, the colour of a brush, the palette of a translation.
#pragma once

#include "trace/Recording.h"

namespace morvil::trace {

std::optional<SurfaceArgument> describe(const SURFOBJ* surface);
std::optional<PathArgument> describe(PATHOBJ* path);
std::optional<BrushArgument> describe(BRUSHOBJ* brush);
std::optional<ClipArgument> describe(const CLIPOBJ* clip);
std::optional<TranslationArgument> describe(XLATEOBJ* translation);
std::optional<LineArgument> describe(const LINEATTRS* line);

template <typename T>
std::optional<T> copyOf(const T* record) {
    return record == nullptr ? std::nullopt : std::optional<T>(*record);
}
// With its terminator; empty for null.
Bytes textBytes(const WCHAR* text);
Bytes blockBytes(const void* data, std::size_t bytes);

}  // namespace morvil::trace
