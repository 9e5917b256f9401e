// JobFile.h - a job file taken apart, with every departure from the format noted on the way. The format is described in
// docs/job-file-format.md. Refers to the bytes it was read from; they must outlive it.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace morvil::tool {

struct Violation {
    std::size_t position = 0;  // byte position in the file
    std::string group;         // Comments, Header, Diagnostic, Mci, Bitmap, DrawCommands
    std::string rule;          // what the format asks for
    std::string found;         // what stands there, shortened
};

// One line with a keyword: "<Keyword: value>". Texts are the file's Latin-1 bytes.
struct Entry {
    std::string keyword;
    std::string value;
    std::size_t position = 0;
};

struct BitmapFacts {
    std::size_t position = 0;       // of "BM"
    std::size_t pixelPosition = 0;  // of row 0
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    int bitsPerPixel = 0;
    std::uint32_t stride = 0;
    std::vector<std::uint32_t> palette;  // 0x00RRGGBB
    std::uint64_t imageBytes = 0;
};

enum class VectorKind : std::uint8_t { Polygon, Bezier, Arc };

struct Vector {
    VectorKind kind = VectorKind::Polygon;
    std::array<std::uint8_t, 3> colour{};    // red, green, blue
    std::vector<std::int32_t> coordinates;   // x and y in turn; for an arc its three whole coordinates
    std::array<double, 2> arcValues{};
    std::int32_t arcFlag = 0;
    std::size_t position = 0;
};

struct JobFile {
    std::span<const std::uint8_t> bytes;
    std::string version;
    std::string application;
    std::vector<Entry> header;
    std::vector<Entry> diagnostic;
    std::vector<Entry> mci;
    bool hasDiagnostic = false;
    bool hasMci = false;
    std::optional<BitmapFacts> bitmap;
    std::vector<Vector> vectors;
    std::vector<Violation> violations;
    std::size_t violationCount = 0;  // all of them; `violations` keeps the first ones

    // The value behind a keyword of the header; empty when it is missing.
    [[nodiscard]] std::string_view headerValue(std::string_view keyword) const;
    [[nodiscard]] unsigned resolution() const;
};

inline constexpr std::size_t kKeptViolations = 20;

// Never fails: what cannot be read is a violation. A file without a header is a violation too.
JobFile readJobFile(std::span<const std::uint8_t> bytes);

}  // namespace morvil::tool
