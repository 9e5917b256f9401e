#include "support/ClippingCases.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace morvil::test {

namespace {

ClippingPoints parsePoints(std::istringstream& fields) {
    ClippingPoints points;
    for (std::string field; fields >> field;) {
        ClippingPoint point{};
        char comma = 0;
        std::istringstream text(field);
        std::string flags;
        text >> point.x >> comma >> point.y;
        EXPECT_TRUE(!text.fail() && comma == ',') << "not a point: " << field;
        text >> flags;
        point.deleted = flags.find('d') != std::string::npos;
        point.moved = flags.find('m') != std::string::npos;
        points.push_back(point);
    }
    return points;
}

}  // namespace

std::vector<ClippingCase> loadClippingCases(const std::string& file) {
    std::ifstream in(file);
    EXPECT_TRUE(in.is_open()) << file;
    std::vector<ClippingCase> cases;
    int number = 0;
    for (std::string line; std::getline(in, line);) {
        ++number;
        if (line.empty() || line.front() == '#') continue;
        std::istringstream fields(line);
        std::string key;
        fields >> key;
        if (key == "CASE:") {
            cases.push_back({});
            cases.back().line = number;
            cases.back().name = line.substr(std::string("CASE: ").size());
            continue;
        }
        if (cases.empty()) {
            ADD_FAILURE() << file << ":" << number << ": outside a case";
            return cases;
        }
        ClippingCase& current = cases.back();
        if (key == "AREA:")
            fields >> current.width >> current.height;
        else if (key == "POLYGON:")
            current.polygon = parsePoints(fields);
        else if (key == "CORRECTED:")
            current.corrected = parsePoints(fields);
        else if (key == "PIECE:")
            current.pieces.push_back(parsePoints(fields));
        else
            ADD_FAILURE() << file << ":" << number << ": " << key;
    }
    return cases;
}

std::string textOf(const ClippingPoints& points) {
    std::ostringstream out;
    for (const ClippingPoint& point : points) {
        if (&point != &points.front()) out << ' ';
        out << point.x << ',' << point.y << (point.deleted ? "d" : "") << (point.moved ? "m" : "");
    }
    return out.str();
}

}  // namespace morvil::test
