// VectorCommands.cpp - the vector commands of the job writer: polygons (matched in colour, mirrored, clipped, kept unique),
// Bezier curves and arcs, each inserted in front of the closing line.
#include "driver/log/Log.h"
#include "jobfile/CSpoolFile.h"
#include "jobfile/CommandText.h"
#include "jobfile/JobFileFormat.h"
#include "jobfile/SpoolFileMembers.h"
#include "platform/common/Format.h"

namespace morvil {

namespace {

// A whole polygon line with its line end.
std::string polygonLine(const std::int32_t* xs, const std::int32_t* ys, std::uint32_t count, std::uint32_t colour) {
    std::string line;
    appendOpening(line, kPolygonOpening, count, colour);
    for (std::uint32_t i = 0; i < count; ++i) appendPoint(line, xs[i], ys[i]);
    appendClosing(line);
    return line;
}

std::string polygonLine(std::span<const ClipPoint> points, std::uint32_t colour) {
    std::string line;
    appendOpening(line, kPolygonOpening, points.size(), colour);
    for (const ClipPoint& point : points) appendPoint(line, point.x, point.y);
    appendClosing(line);
    return line;
}

std::string_view withoutLineEnd(std::string_view line) { return line.substr(0, line.size() - 2); }

// Coordinates wrap as 32-bit numbers do.
std::int32_t mirrored(std::uint32_t extent, std::int32_t coordinate) {
    return static_cast<std::int32_t>(extent - static_cast<std::uint32_t>(coordinate));
}

}  // namespace

bool CSpoolFile::WriteVectorSection() {
    logMorvil(1, kInformation, TEXT("CSpoolFile::WriteVectorSection"), kLogEnd);
    logMorvil(1, kInformation, TEXT("WriteVectorSection"), kLogEnd);
    const bool hasPath = !m->jobFile.empty();
    if (!hasPath || !m->vectors.writeEmpty(m->jobFile.c_str())) m->isWhole = false;
    logMorvil(1, kInformation, TEXT("WriteVectorSection finshed"), kLogEnd);
    logMorvil(1, kInformation, TEXT("CSpoolFile::WriteVectorSection finished"), kLogEnd);
    return hasPath;
}

bool CSpoolFile::WritePolygon(std::int32_t* xs, std::int32_t* ys, std::uint32_t count, std::uint32_t colour, bool checkDuplicates) {
    if (logEnabled() || debugOutputWanted()) {
        const WString text = format(TEXT("WritePolygon, cntPoints=%d, bCheck=%d"), count, checkDuplicates);
        logMorvil(1, kInformation, TEXT("%s"), text, kLogEnd);
        debugPrint(TEXT("%s\n"), text);
    }
    if (xs == nullptr || ys == nullptr) count = 0;
    if (!m->colours.checkPolygonColor(colour)) logMorvil(1, kNotice, TEXT("WritePolygon, Colorcorrection has been done"), kLogEnd);

    const bool opened = m->vectors.open(m->jobFile.c_str());
    if (checkDuplicates && m->doPolygonAlreadyExist(polygonLine(xs, ys, count, colour), count)) {
        m->vectors.close();
        logMorvil(1, kInformation, TEXT("WritePolygon, Polygon already exist in Tsf"), kLogEnd);
        return false;
    }
    if (!opened || count == 0) {
        m->vectors.close();
        m->isWhole = m->isWhole && opened;
        logMorvil(1, kError, TEXT("Error WritePolygon"), kLogEnd);
        return true;
    }
    if (!m->vectors.findPlace()) {
        m->vectors.close();
        m->isWhole = false;
        logMorvil(1, kError, TEXT("Error WritePolygon <BeginGroup: DrawCommands> not found"), kLogEnd);
        return true;
    }
    m->mirror(xs, ys, count);
    if (m->hasFlag(MV_FL_POLYGON_CLIPPING)) {
        m->writeClipped(xs, ys, count, colour, checkDuplicates);
    } else {
        logMorvil(1, kInformation, TEXT("WritePolygon (Raw), cntPoints=%d"), count, kLogEnd);
        m->vectors.add(polygonLine(xs, ys, count, colour));
    }
    m->isWhole = m->vectors.commit() && m->isWhole;
    logMorvil(1, kInformation, TEXT("WritePolygon finished"), kLogEnd);
    return true;
}

void CSpoolFile::Members::mirror(std::int32_t* xs, std::int32_t* ys, std::uint32_t count) const {
    if (hasFlag(MV_FL_IMAGEOP_FLIP_VERTICAL)) {
        for (std::uint32_t i = 0; i < count; ++i) ys[i] = mirrored(pixelHeight(), ys[i]);
    }
    if (hasFlag(MV_FL_IMAGEOP_FLIP_HORIZONTAL)) {
        for (std::uint32_t i = 0; i < count; ++i) xs[i] = mirrored(pixelWidth(), xs[i]);
    }
}

void CSpoolFile::Members::writeClipped(const std::int32_t* xs, const std::int32_t* ys, std::uint32_t count, std::uint32_t colour,
                                       bool checkDuplicates) {
    clipper.setJobArea(config.size.pixelWidth, config.size.pixelHeight);
    clipper.setPoints(xs, ys, count);
    if (clipper.getCntPolygons() > 1) logMorvil(1, kNotice, TEXT("WritePolygon, some Polygons have been set tho job boundaries."), kLogEnd);
    for (std::uint32_t piece = 0; piece < clipper.getCntPolygons(); ++piece) {
        const std::span<const ClipPoint> points = clipper.getPolygon(piece);
        logMorvil(1, kInformation, TEXT("WritePolygon (Clipping), poly=%d, cntPoints=%d"), piece, points.size(), kLogEnd);
        const std::string line = polygonLine(points, colour);
        if (checkDuplicates && doPolygonAlreadyExist(line, points.size())) {
            logMorvil(1, kError, TEXT("WritePolygon Polygon already exists"), kLogEnd);
            continue;
        }
        logMorvil(1, kInformation, TEXT("WritePolygon DrawPoly"), kLogEnd);
        vectors.add(line);
    }
}

bool CSpoolFile::Members::doPolygonAlreadyExist(std::string_view line, std::size_t count) {
    logMorvil(1, kInformation, TEXT("CSpoolFile::doPolygonAlreadyExist, uiCount=%d"), count, kLogEnd);
    const bool exists = vectors.contains(withoutLineEnd(line));
    logMorvil(1, kInformation, TEXT("CSpoolFile::doPolygonAlreadyExist finished"), kLogEnd);
    return exists;
}

bool CSpoolFile::WriteBezier(const std::int32_t* xs, const std::int32_t* ys, std::uint32_t count, std::uint32_t colour) {
    logMorvil(1, kInformation, TEXT("WriteBezier"), kLogEnd);
    if (xs == nullptr || ys == nullptr) count = 0;
    const bool opened = m->vectors.open(m->jobFile.c_str());
    if (!opened || count == 0) {
        m->vectors.close();
        m->isWhole = m->isWhole && opened;
        logMorvil(1, kError, TEXT("Error WriteBezier"), kLogEnd);
        return true;
    }
    if (!m->vectors.findPlace()) {
        m->vectors.close();
        m->isWhole = false;
        logMorvil(1, kError, TEXT("Error WriteBezier <BeginGroup: DrawCommands> not found"), kLogEnd);
        return true;
    }
    std::string line;
    appendOpening(line, kBezierOpening, count, colour);
    for (std::uint32_t i = 0; i < count; ++i) appendPoint(line, xs[i], ys[i]);
    appendClosing(line);
    m->vectors.add(line);
    m->isWhole = m->vectors.commit() && m->isWhole;
    logMorvil(1, kInformation, TEXT("WriteBezier finished"), kLogEnd);
    return true;
}

bool CSpoolFile::WriteArc(const ArcRecord& arc, std::uint32_t colour) {
    logMorvil(1, kInformation, TEXT("WriteArc"), kLogEnd);
    if (!m->vectors.open(m->jobFile.c_str())) {
        m->isWhole = false;
        logMorvil(1, kError, TEXT("Error WriteArc"), kLogEnd);
        return true;
    }
    if (!m->vectors.findPlace()) {
        m->vectors.close();
        m->isWhole = false;
        logMorvil(1, kError, TEXT("Error WriteArc <BeginGroup: DrawCommands> not found"), kLogEnd);
        return true;
    }
    std::string line;
    appendArc(line, arc, colour);
    m->vectors.add(line);
    m->isWhole = m->vectors.commit() && m->isWhole;
    logMorvil(1, kInformation, TEXT("WriteArc finished"), kLogEnd);
    return true;
}

}  // namespace morvil
