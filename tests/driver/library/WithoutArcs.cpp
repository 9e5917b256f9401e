// WithoutArcs.cpp - a curve-fitting library that takes points and lacks GetArcParameter.
extern "C" {

int InitBezier(int /*accuracy*/) { return 1; }

int SetBezierPoints(const void* /*points*/, int /*count*/) { return 1; }

}  // extern "C"
