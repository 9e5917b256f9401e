// StrokeFixture.h - strokes through DrvStrokePath, with all switches off and no colour list, for tests of each of its routes.
#pragma once

#include "config/CPrinterConfig.h"
#include "driver/DriverFixture.h"

namespace morvil::test {

inline constexpr FLONG kWholeFigure = PD_BEGINSUBPATH | PD_ENDSUBPATH;
inline constexpr FLONG kClosedFigure = kWholeFigure | PD_CLOSEFIGURE;

class Stroke : public DriverTest {
  protected:
    Stroke() {
        configuration().flags = 0;
        for (VectorColour& colour : configuration().colours) colour = {};
        turnColourMatchingOff();
    }
    // The working copy rules strokes; the page has taken it from the instance.
    static ConfigurationRecord& working() { return state().configuration; }

    BOOL stroke(FakePath* path, FakeBrush* brush = nullptr, LINEATTRS* attributes = nullptr) {
        return DrvStrokePath(pso, path, nullptr, nullptr, brush, nullptr, attributes, 0);
    }
    static FakePath triangle() { return FakePath({{kClosedFigure, {fixedPoint(10, 10), fixedPoint(90, 10), fixedPoint(50, 70)}}}); }
    static FakePath curve() {
        FakePath path({{kWholeFigure | PD_BEZIERS, {fixedPoint(1, 1), fixedPoint(2, 9), fixedPoint(8, 9), fixedPoint(9, 1)}}});
        path.fl = PO_BEZIERS;
        path.cCurves = 1;
        return path;
    }
    [[nodiscard]] static std::vector<std::string> written() { return drawCommands(".tsa"); }

  private:
    void turnColourMatchingOff() { CPrinterConfig().setConfig(TEXT(""), CPrinterConfig::defaultConfiguration()); }
};

}  // namespace morvil::test
