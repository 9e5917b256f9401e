// Region.h - a set of device pixels as rectangles in rows from top to bottom, left to right (pixman keeps them so).
// Right and bottom edges are exclusive.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "platform/platform.h"

namespace morvil::engine {

class Path;

class Region {
  public:
    Region();  // empty
    explicit Region(const RECTL& rectangle);
    explicit Region(std::span<const RECTL> rectangles);
    ~Region();
    Region(const Region& other);
    Region& operator=(const Region& other);
    Region(Region&& other) noexcept;
    Region& operator=(Region&& other) noexcept;

    // Pixels whose centre the path covers under the fill rule (left and top edges inside).
    static Region fromPath(const Path& path, bool alternate, const RECTL& within);

    void intersect(const Region& other);
    void unite(const Region& other);
    void subtract(const Region& other);
    void exclusiveOr(const Region& other);
    void translate(LONG dx, LONG dy);

    [[nodiscard]] bool empty() const;
    [[nodiscard]] bool contains(LONG x, LONG y) const;
    [[nodiscard]] RECTL bounds() const;
    [[nodiscard]] std::vector<RECTL> rectangles() const;

  private:
    struct Members;
    std::unique_ptr<Members> m;
};

}  // namespace morvil::engine
