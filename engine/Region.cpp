// Region.cpp - regions by pixman, which keeps rectangles in rows and merges what it can.
#include "engine/Region.h"

#include <pixman.h>

#include <algorithm>

#include "engine/pixels/Coverage.h"

namespace morvil::engine {
namespace {

bool isEmpty(const RECTL& r) { return r.left >= r.right || r.top >= r.bottom; }

pixman_box32_t boxOf(const RECTL& r) { return {r.left, r.top, r.right, r.bottom}; }

}  // namespace

struct Region::Members {
    Members() { pixman_region32_init(&region); }
    ~Members() { pixman_region32_fini(&region); }
    Members(const Members& other) {
        pixman_region32_init(&region);
        pixman_region32_copy(&region, &other.region);
    }
    Members& operator=(const Members&) = delete;

    pixman_region32_t region;
};

Region::Region() : m(std::make_unique<Members>()) {}

Region::Region(const RECTL& rectangle) : Region(std::span<const RECTL>(&rectangle, 1)) {}

Region::Region(std::span<const RECTL> rectangles) : Region() {
    std::vector<pixman_box32_t> boxes;
    boxes.reserve(rectangles.size());
    for (const RECTL& rectangle : rectangles) {
        if (!isEmpty(rectangle)) boxes.push_back(boxOf(rectangle));
    }
    if (boxes.empty()) return;
    pixman_region32_fini(&m->region);
    pixman_region32_init_rects(&m->region, boxes.data(), static_cast<int>(boxes.size()));
}

Region::~Region() = default;
Region::Region(const Region& other) : m(std::make_unique<Members>(*other.m)) {}
Region& Region::operator=(const Region& other) {
    if (this != &other) m = std::make_unique<Members>(*other.m);
    return *this;
}
// A region that was moved from is empty, not unusable.
Region::Region(Region&& other) noexcept : Region() { m.swap(other.m); }
Region& Region::operator=(Region&& other) noexcept {
    m.swap(other.m);
    return *this;
}

Region Region::fromPath(const Path& path, bool alternate, const RECTL& within) {
    std::vector<RECTL> rectangles;
    coverPath(path, alternate, within, [&rectangles](const RECTL& covered) {
        // Rows that repeat the one above grow it, as long as each row is a single span.
        if (!rectangles.empty()) {
            RECTL& last = rectangles.back();
            if (last.left == covered.left && last.right == covered.right && last.bottom == covered.top) {
                last.bottom = covered.bottom;
                return;
            }
        }
        rectangles.push_back(covered);
    });
    return Region(rectangles);
}

void Region::intersect(const Region& other) { pixman_region32_intersect(&m->region, &m->region, &other.m->region); }
void Region::unite(const Region& other) { pixman_region32_union(&m->region, &m->region, &other.m->region); }
void Region::subtract(const Region& other) { pixman_region32_subtract(&m->region, &m->region, &other.m->region); }

void Region::exclusiveOr(const Region& other) {
    Region both = *this;
    both.intersect(other);
    unite(other);
    subtract(both);
}

void Region::translate(LONG dx, LONG dy) { pixman_region32_translate(&m->region, dx, dy); }

bool Region::empty() const { return pixman_region32_not_empty(&m->region) == 0; }

bool Region::contains(LONG x, LONG y) const { return pixman_region32_contains_point(&m->region, x, y, nullptr) != 0; }

RECTL Region::bounds() const {
    const pixman_box32_t* box = pixman_region32_extents(&m->region);
    return empty() ? RECTL{} : RECTL{box->x1, box->y1, box->x2, box->y2};
}

std::vector<RECTL> Region::rectangles() const {
    int count = 0;
    const pixman_box32_t* boxes = pixman_region32_rectangles(&m->region, &count);
    std::vector<RECTL> result;
    result.reserve(static_cast<std::size_t>(count));
    std::transform(boxes, boxes + count, std::back_inserter(result), [](const pixman_box32_t& b) { return RECTL{b.x1, b.y1, b.x2, b.y2}; });
    return result;
}

}  // namespace morvil::engine
