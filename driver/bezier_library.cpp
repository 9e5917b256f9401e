#include "driver/bezier_library.h"

#include "driver/State.h"
#include "driver/log/Log.h"
#include "platform/common/LocalBlock.h"

namespace morvil {

namespace {

struct BezierPoint {
    double x;
    double y;
    std::uint64_t zero;
};
static_assert(sizeof(BezierPoint) == 24);
static_assert(sizeof(ArcRecord) == 56);

using InitBezierFunction = int (*)(int accuracy);
using SetBezierPointsFunction = int (*)(const BezierPoint* points, int count);
using GetArcParameterFunction = int (*)(ArcRecord* arc);

class BezierLibrary {
  public:
    explicit BezierLibrary(const WCHAR* name) : m_library(LoadLibraryW(name)) {
        initBezier = find<InitBezierFunction>("InitBezier");
        setBezierPoints = find<SetBezierPointsFunction>("SetBezierPoints");
        getArcParameter = find<GetArcParameterFunction>("GetArcParameter");
        logRend(1, kInformation, TEXT("DrvStrokePath Load Bezier-DLL h=%X"), low32(m_library), kLogEnd);
    }
    ~BezierLibrary() {
        if (m_library != nullptr) FreeLibrary(m_library);
    }
    BezierLibrary(const BezierLibrary&) = delete;
    BezierLibrary& operator=(const BezierLibrary&) = delete;

    InitBezierFunction initBezier = nullptr;
    SetBezierPointsFunction setBezierPoints = nullptr;
    GetArcParameterFunction getArcParameter = nullptr;

  private:
    template <typename Function>
    Function find(const char* name) const {
        if (m_library == nullptr) return nullptr;
        return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(GetProcAddress(m_library, name)));
    }

    HMODULE m_library;
};

const WCHAR* libraryName(const BezierBlock& bezier) { return bezier.library[0] != 0 ? bezier.library : TEXT("MvBezier.dll"); }

BOOL fitAndWrite(const BezierLibrary& library, std::span<const BezierPoint> points, std::uint32_t colour) {
    if (library.setBezierPoints(points.data(), static_cast<int>(points.size())) < 1) return FALSE;
    ArcRecord arc{};
    if (library.getArcParameter == nullptr || library.getArcParameter(&arc) < 1) return TRUE;
    if (state().spoolFile) state().spoolFile->WriteArc(arc, colour);
    return TRUE;
}

}  // namespace

BOOL writeFittedArc(std::span<const std::int32_t> xs, std::span<const std::int32_t> ys, std::uint32_t colour) {
    const BezierBlock& bezier = state().configuration.bezier;
    const BezierLibrary library(libraryName(bezier));
    if (library.initBezier != nullptr) library.initBezier(bezier.accuracy);
    if (library.setBezierPoints == nullptr) return TRUE;
    LocalBlock<BezierPoint> points(xs.size());
    if (!points) return FALSE;
    for (std::size_t i = 0; i < xs.size(); ++i) points.span()[i] = {static_cast<double>(xs[i]), static_cast<double>(ys[i]), 0};
    return fitAndWrite(library, points.span(), colour);
}

}  // namespace morvil
