#include "jobfile/TracerLibrary.h"

#include "driver/log/Log.h"
#include "platform/common/Format.h"

namespace morvil {

namespace {

// More than the outlines of any page; a count beyond them is no count.
constexpr std::int32_t kMostPolygons = 1'000'000;
constexpr std::int32_t kMostPoints = 10'000'000;

std::nullopt_t reportFailure(const char* function) {
    logMorvil(1, kError, TEXT("MvTracer.dll %s failed"), fromUtf8(function), kLogEnd);
    return std::nullopt;
}

}  // namespace

template <typename Function>
Function TracerLibrary::find(const char* name) const {
    const auto function = reinterpret_cast<Function>(reinterpret_cast<void (*)()>(GetProcAddress(m_library, name)));
    if (function == nullptr) logMorvil(1, kError, TEXT("MvTracer.dll has no %s"), fromUtf8(name), kLogEnd);
    return function;
}

TracerLibrary::TracerLibrary(const WCHAR* folder) : m_library(LoadLibraryW(format(TEXT("%s\\MvTracer"), folder).c_str())) {
    if (m_library == nullptr) {
        logMorvil(1, kError, TEXT("MvTracer.dll not loaded, Error=%d"), GetLastError(), kLogEnd);
        return;
    }
    logMorvil(1, kInformation, TEXT("MvTracer.dll loaded"), kLogEnd);
    m_trace = find<Trace>("Trace");
    m_cntPolygons = find<GetCntPolygons>("GetCntPolygons");
    m_cntPoints = find<GetCntPoints>("GetCntPoints");
    m_points = find<GetPoints>("GetPoints");
}

TracerLibrary::~TracerLibrary() {
    if (m_library != nullptr) FreeLibrary(m_library);
}

bool TracerLibrary::isUsable() const {
    return m_trace != nullptr && m_cntPolygons != nullptr && m_cntPoints != nullptr && m_points != nullptr;
}

std::optional<std::int32_t> TracerLibrary::trace(const WCHAR* picture) {
    std::int32_t count = 0;
    if (m_trace(picture) == FALSE) return reportFailure("Trace");
    if (m_cntPolygons(&count) == FALSE) return reportFailure("GetCntPolygons");
    if (count >= 0 && count <= kMostPolygons) return count;
    logMorvil(1, kError, TEXT("MvTracer.dll reports %d polygons"), count, kLogEnd);
    return std::nullopt;
}

std::optional<TracerLibrary::Outline> TracerLibrary::outline(std::int32_t index) {
    std::int32_t count = 0;
    if (m_cntPoints(index, &count) == FALSE) return reportFailure("GetCntPoints");
    if (count < 0 || count > kMostPoints) {
        logMorvil(1, kError, TEXT("MvTracer.dll reports %d points in polygon %d"), count, index, kLogEnd);
        return std::nullopt;
    }
    const auto points = static_cast<std::uint32_t>(count);
    Outline outline{LocalBlock<std::int32_t>(points), LocalBlock<std::int32_t>(points), points};
    if (!outline.xs || !outline.ys) {
        logMorvil(1, kError, TEXT("MvTracer.dll, no memory for %d points"), count, kLogEnd);
        return std::nullopt;
    }
    if (m_points(index, outline.xs.get(), outline.ys.get()) == FALSE) return reportFailure("GetPoints");
    return outline;
}

}  // namespace morvil
