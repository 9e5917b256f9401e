// OtherLibrary.cpp - a library that lacks the last of the tracer's functions.
extern "C" {

int Trace(const char16_t*) { return 1; }
int GetCntPolygons(int* count) {
    *count = 1;
    return 1;
}
int GetCntPoints(int, int* count) {
    *count = 1;
    return 1;
}

}  // extern "C"
