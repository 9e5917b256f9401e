// BezierLibrary.cpp - a curve-fitting library for tests, loaded by the driver as "MvBezier.dll". The accuracy tells it what to
// answer: 0 no arc, 1 an arc without parameters, 2 an arc that repeats what it was given.
#include <vector>

namespace {

struct Point {
    double x;
    double y;
    unsigned long long zero;
};

struct Arc {
    double coordinates[3];
    double unused;
    double values[2];
    int sixth;
};

int answer = 0;
std::vector<Point> given;

}  // namespace

extern "C" {

int InitBezier(int accuracy) {
    answer = accuracy;
    return 1;
}

int SetBezierPoints(const Point* points, int count) {
    given.assign(points, points + count);
    return answer >= 1 ? 1 : 0;
}

int GetArcParameter(Arc* arc) {
    if (answer < 2) return 0;
    *arc = {{static_cast<double>(given.size()), given.front().x, given.back().y}, 0.0, {10.0, 20.0}, 1};
    return 1;
}

}  // extern "C"
