// MvPolygonClipping.h - replaces the parts of an outline that lie outside the job rectangle by points on its border and splits
// the outline into the open polylines that lie inside. Whole device pixels. Owned by the job writer; its lists are filled anew
// by each setPoints. Printing thread only.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <unordered_set>
#include <vector>

namespace morvil {

struct ClipPoint {
    std::int32_t x;
    std::int32_t y;
    std::uint8_t deleted;  // a border point that stands for an end point that was cut away
    std::uint8_t moved;    // computed where a segment crosses the border
    bool operator==(const ClipPoint&) const = default;
};

struct ClipPointHash {
    std::size_t operator()(const ClipPoint& point) const;
};

class MvPolygonClipping {
  public:
    MvPolygonClipping();
    ~MvPolygonClipping();
    MvPolygonClipping(const MvPolygonClipping&) = delete;
    MvPolygonClipping& operator=(const MvPolygonClipping&) = delete;

    // Width and height of the job in pixels.
    void setJobArea(std::int32_t width, std::int32_t height);
    // Takes a polygon and clips it; returns `count`. The arrays are only read.
    std::uint32_t setPoints(const std::int32_t* xs, const std::int32_t* ys, std::uint32_t count);
    // The number of pieces. Splitting happens at the first question after setPoints, the log lines at each.
    std::uint32_t getCntPolygons();
    // A piece may be empty. An index beyond the last piece yields the last list. REQUIRES: getCntPolygons was called.
    [[nodiscard]] std::span<const ClipPoint> getPolygon(std::uint32_t index) const;
    void dump() const;

    [[nodiscard]] std::span<const ClipPoint> corrected() const { return m_PointsCorrected; }

  private:
    struct Segment {
        std::int64_t startX;
        std::int64_t startY;
        std::int64_t dx;
        std::int64_t dy;
    };
    enum class DuplicateTest : std::uint8_t { No, Yes };

    [[nodiscard]] bool isInside(const ClipPoint& point) const;
    void clip();
    std::size_t intersect(const ClipPoint& from, const ClipPoint& to);
    void addIntersection(const ClipPoint& point);
    void moveIntersections(DuplicateTest test);
    void split();

    std::int32_t m_width = 0;
    std::int32_t m_height = 0;
    std::array<Segment, 4> m_edges{};  // top, right, bottom, left
    std::vector<ClipPoint> m_PointsOrg;
    std::vector<ClipPoint> m_intersections;  // of one segment
    std::vector<ClipPoint> m_PointsCorrected;
    std::unordered_set<ClipPoint, ClipPointHash> m_known;  // the points of m_PointsCorrected, for the duplicate test
    std::vector<ClipPoint> m_piecePoints;                  // the lists of points, one behind the other
    std::vector<std::size_t> m_pieceStarts;                // where each list begins; the last may lie behind the last piece
    std::uint32_t m_pieceCount = 0;
    bool m_isSplit = false;
};

}  // namespace morvil
