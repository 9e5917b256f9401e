// TracerLibrary.cpp - a tracer library for tests, loaded by the driver as "MvTracer". What it answers is told to it by the
// environment variable MORVIL_TEST_TRACER: "POLYGONS POINTS" are the counts that it reports, a third word names the function
// that fails. Without it: two polygons, of three points and of one.
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

struct Answers {
    int polygons = 2;
    int points = 0;  // 0: polygon i has 3 - 2 * i
    std::string failing;
    bool given = false;
};

Answers answers() {
    Answers answer;
    const char* const told = std::getenv("MORVIL_TEST_TRACER");
    if (told == nullptr) return answer;
    char failing[32] = "";
    answer.given = std::sscanf(told, "%d %d %31s", &answer.polygons, &answer.points, failing) >= 2;
    answer.failing = failing;
    return answer;
}

bool endsAsExpected(const char16_t* path) {
    const std::u16string text(path);
    return text.find(u"\\tracer.extracted.") != std::u16string::npos && text.ends_with(u".bmp");
}

}  // namespace

extern "C" {

int Trace(const char16_t* path) { return answers().failing != "Trace" && endsAsExpected(path) ? 1 : 0; }

int GetCntPolygons(int* count) {
    *count = answers().polygons;
    return answers().failing != "GetCntPolygons" ? 1 : 0;
}

int GetCntPoints(int index, int* count) {
    *count = answers().given ? answers().points : 3 - 2 * index;
    return answers().failing != "GetCntPoints" ? 1 : 0;
}

// Point p of polygon i stands at (10 i + p, 20 + p).
int GetPoints(int index, int* xs, int* ys) {
    int count = 0;
    GetCntPoints(index, &count);
    for (int p = 0; p < count; ++p) {
        xs[p] = 10 * index + p;
        ys[p] = 20 + p;
    }
    return answers().failing != "GetPoints" ? 1 : 0;
}

}  // extern "C"
