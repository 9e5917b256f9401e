// Objects.h - the public part of the driver interface's objects from recorded arguments, for the engines that play recordings.
#pragma once

#include "trace/Recording.h"

namespace morvil::trace {

inline void restore(CLIPOBJ& clip, const ClipArgument& recorded) {
    clip.rclBounds = recorded.bounds;
    clip.iDComplexity = recorded.kinds[0];
    clip.iFComplexity = recorded.kinds[1];
    clip.iMode = recorded.kinds[2];
    clip.fjOptions = recorded.kinds[3];
}

inline void restore(BRUSHOBJ& brush, const BrushArgument& recorded) {
    brush.iSolidColor = recorded.solidColour;
    brush.flColorType = recorded.colourType;
}

// The object's table is the caller's copy and lives as long as the object.
inline void restore(XLATEOBJ& translation, const TranslationArgument& recorded, std::vector<ULONG>& table) {
    table = recorded.table;
    translation.flXlate = recorded.flags;
    translation.iSrcType = static_cast<USHORT>(recorded.sourceType);
    translation.iDstType = static_cast<USHORT>(recorded.targetType);
    translation.cEntries = static_cast<ULONG>(table.size());
    translation.pulXlate = table.empty() ? nullptr : table.data();
}

}  // namespace morvil::trace
