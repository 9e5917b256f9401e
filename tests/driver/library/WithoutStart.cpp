// WithoutStart.cpp - a curve-fitting library that lacks InitBezier and finds an arc in everything.
namespace {

struct Arc {
    double coordinates[3];
    double unused;
    double values[2];
    int sixth;
};

}  // namespace

extern "C" {

int SetBezierPoints(const void* /*points*/, int /*count*/) { return 1; }

int GetArcParameter(Arc* arc) {
    *arc = {{3.0, 1.0, 2.0}, 0.0, {4.0, 5.0}, 6};
    return 1;
}

}  // extern "C"
