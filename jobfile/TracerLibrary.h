// TracerLibrary.h - the partner programs' library that finds the outlines of a picture. Loaded for one page and freed with this
// object, so that it can be replaced while applications print. Its answers are not trusted: counts that no picture can have are
// refused before anything is reserved for them. Whatever is missing or fails is logged.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/common/LocalBlock.h"
#include "platform/common/Text.h"

namespace morvil {

class TracerLibrary {
  public:
    struct Outline {
        LocalBlock<std::int32_t> xs;
        LocalBlock<std::int32_t> ys;
        std::uint32_t count = 0;
    };

    // Loads "FOLDER\MvTracer"; the log says so.
    explicit TracerLibrary(const WCHAR* folder);
    ~TracerLibrary();
    TracerLibrary(const TracerLibrary&) = delete;
    TracerLibrary& operator=(const TracerLibrary&) = delete;

    // All four functions are there.
    [[nodiscard]] bool isUsable() const;
    // The number of outlines in the picture; nothing when the library fails or names a number that cannot be.
    std::optional<std::int32_t> trace(const WCHAR* picture);
    // Nothing when the library fails, names a number that cannot be, or there is no memory.
    std::optional<Outline> outline(std::int32_t index);

  private:
    using Trace = BOOL (*)(const WCHAR* path);
    using GetCntPolygons = BOOL (*)(std::int32_t* count);
    using GetCntPoints = BOOL (*)(std::int32_t index, std::int32_t* count);
    using GetPoints = BOOL (*)(std::int32_t index, std::int32_t* xs, std::int32_t* ys);

    template <typename Function>
    Function find(const char* name) const;  // of the library, which is loaded

    HMODULE m_library;
    Trace m_trace = nullptr;
    GetCntPolygons m_cntPolygons = nullptr;
    GetCntPoints m_cntPoints = nullptr;
    GetPoints m_points = nullptr;
};

}  // namespace morvil
