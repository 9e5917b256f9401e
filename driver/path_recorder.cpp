#include "driver/path_recorder.h"

#include <ctime>

#include "config/CMvConfig.h"
#include "driver/State.h"
#include "driver/log/Log.h"
#include "driver/path_points.h"
#include "platform/common/FileStream.h"

namespace morvil {

namespace {

constexpr int kClosingPoint = -1;  // flags of the point that closes a figure
constexpr PixelOffset kNoOffset{0, 0};

CMvPath& recorder() {
    if (!state().path) state().path = std::make_unique<CMvPath>(CMvConfig().driverDataFolder());
    return *state().path;
}

// A curve ends only where a figure is closed; open figures run on in the same curve.
void recordPath(PATHOBJ& path, CMvPath& store) {
    int curve = 0;
    int index = 0;
    std::int32_t firstX = 0;
    std::int32_t firstY = 0;
    forEachRecord(path, [&](const PATHDATA& record) {
        for (ULONG i = 0; i < record.count; ++i) {
            const std::int32_t x = toPixels(record.pptfx[i].x, kNoOffset.x);
            const std::int32_t y = toPixels(record.pptfx[i].y, kNoOffset.y);
            if (i == 0 && (record.flags & PD_BEGINSUBPATH) != 0) {
                firstX = x;
                firstY = y;
            }
            store.addPoint(index++, x, y, static_cast<int>(record.flags), curve);
        }
        if ((record.flags & PD_CLOSEFIGURE) == 0) return;
        store.addPoint(index, firstX, firstY, kClosingPoint, curve++);
        index = 0;
    });
}

bool writeCurve(CMvPath& store, int curve, std::uint32_t colour, bool banded) {
    logRend(1, kInformation, TEXT("DrvStrokePath cCurve=%d"), curve, kLogEnd);
    std::uint32_t count = 0;
    store.getPointsToCurve(curve, nullptr, nullptr, &count);
    if (count == 0) return true;
    logRend(1, kInformation, TEXT("Curve(%d) contains %d points"), curve, count, kLogEnd);
    PointArrays points(count);
    if (!points.allocated()) return false;
    store.getPointsToCurve(curve, points.xs.get(), points.ys.get(), nullptr, count);
    if (state().spoolFile) state().spoolFile->WritePolygon(points.xs.get(), points.ys.get(), count, colour, banded);
    return true;
}

bool writeCurves(CMvPath& store, std::uint32_t colour, bool banded) {
    for (int curve = 0; curve <= store.lastCurve(); ++curve) {
        if (!writeCurve(store, curve, colour, banded)) return false;
    }
    return true;
}

// The next path starts an empty file; a diagnostic job keeps this one under a name of its own.
void putStoreAway(CMvPath& store) {
    store.resetCounters();
    const WCHAR* const file = store.filePath();
    if (state().configuration.diagnostic.enabled < 1) {
        DeleteFileW(file);
        return;
    }
    const auto now = static_cast<std::int32_t>(std::time(nullptr));
    WString kept;
    for (int number = 1; kept.empty() || fileExists(kept.c_str()); ++number) kept = format(TEXT("%s.%ld.%d"), file, now, number);
    MoveFileExW(file, kept.c_str(), 0);
}

}  // namespace

BOOL strokeRecorded(PATHOBJ& path, std::uint32_t colour, bool banded) {
    CMvPath& store = recorder();
    recordPath(path, store);
    logRend(1, kInformation, TEXT("DrvStrokePath 2, cPoint=%u, cCurves=%d"), store.pointCount(), path.cCurves, kLogEnd);
    const bool written = writeCurves(store, colour, banded);
    putStoreAway(store);
    return written ? TRUE : FALSE;
}

}  // namespace morvil
