// preview_command.cpp - a picture of a job: its raster, made smaller, with the vectors drawn over it in their colours.
#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <ostream>
#include <string>
#include <system_error>

#include "tool/Commands.h"
#include "tool/JobFile.h"
#include "tool/JobSummary.h"
#include "tool/MappedFile.h"
#include "tool/OutputFile.h"

namespace morvil::tool {

namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kPictureSide = 2000;  // pixels of the longer side without --scale
constexpr std::uint32_t kMaxSide = 32767;     // what the picture library takes

struct SurfaceDeleter {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
struct ContextDeleter {
    void operator()(cairo_t* context) const { cairo_destroy(context); }
};
using Surface = std::unique_ptr<cairo_surface_t, SurfaceDeleter>;
using Context = std::unique_ptr<cairo_t, ContextDeleter>;

struct JobSize {
    std::uint32_t width;
    std::uint32_t height;
};

// The bitmap's size; without a bitmap the header's at its resolution.
JobSize sizeOf(const JobFile& job) {
    if (job.bitmap) return {job.bitmap->width, job.bitmap->height};
    const std::string size(job.headerValue("Size"));
    const std::size_t separator = size.find(';');
    if (separator == std::string::npos) return {0, 0};
    const auto pixels = [&job](const std::string& text) {
        const double value = std::strtod(text.c_str(), nullptr) / 25.4 * job.resolution();
        return value > 0.0 && value < 1e6 ? static_cast<std::uint32_t>(std::ceil(value)) : 0U;
    };
    return {pixels(size.substr(0, separator)), pixels(size.substr(separator + 1))};
}

std::uint32_t colourAt(std::span<const std::uint8_t> row, const BitmapFacts& bitmap, std::uint32_t x) {
    if (bitmap.bitsPerPixel == 1) return bitmap.palette[(row[x / 8] >> (7 - x % 8)) & 1U];
    if (bitmap.bitsPerPixel == 8) return bitmap.palette[row[x]];
    return static_cast<std::uint32_t>(row[3 * std::size_t{x}] | (row[3 * std::size_t{x} + 1] << 8) | (row[3 * std::size_t{x} + 2] << 16));
}

struct Sum {
    std::uint32_t red = 0;
    std::uint32_t green = 0;
    std::uint32_t blue = 0;
    std::uint32_t count = 0;
};

// Averages squares of scale x scale pixels, one band of `scale` rows at a time.
void drawRaster(const JobFile& job, std::uint32_t scale, cairo_surface_t* picture) {
    const BitmapFacts& bitmap = *job.bitmap;
    const auto width = static_cast<std::uint32_t>(cairo_image_surface_get_width(picture));
    const auto height = static_cast<std::uint32_t>(cairo_image_surface_get_height(picture));
    unsigned char* const data = cairo_image_surface_get_data(picture);
    const auto stride = static_cast<std::size_t>(cairo_image_surface_get_stride(picture));
    std::vector<Sum> sums(width);
    for (std::uint32_t y = 0; y < height; ++y) {
        std::fill(sums.begin(), sums.end(), Sum{});
        for (std::uint32_t row = y * scale; row < std::min((y + 1) * scale, bitmap.height); ++row) {
            const auto bytes = job.bytes.subspan(bitmap.pixelPosition + static_cast<std::size_t>(row) * bitmap.stride, bitmap.stride);
            for (std::uint32_t x = 0; x < bitmap.width; ++x) {
                const std::uint32_t colour = colourAt(bytes, bitmap, x);
                Sum& sum = sums[x / scale];
                sum.red += (colour >> 16) & 0xFF;
                sum.green += (colour >> 8) & 0xFF;
                sum.blue += colour & 0xFF;
                ++sum.count;
            }
        }
        auto* const line = reinterpret_cast<std::uint32_t*>(data + y * stride);
        for (std::uint32_t x = 0; x < width; ++x) {
            const std::uint32_t n = std::max(1U, sums[x].count);
            line[x] = ((sums[x].red / n) << 16) | ((sums[x].green / n) << 8) | (sums[x].blue / n);
        }
    }
    cairo_surface_mark_dirty(picture);
}

void addPolygon(cairo_t* context, const Vector& vector) {
    for (std::size_t i = 0; i + 1 < vector.coordinates.size(); i += 2) {
        const double x = vector.coordinates[i] + 0.5;
        const double y = vector.coordinates[i + 1] + 0.5;
        if (i == 0) cairo_move_to(context, x, y);
        else cairo_line_to(context, x, y);
    }
}

// First point, then three points for each curve; points that do not make up a curve are joined by lines.
void addBezier(cairo_t* context, const Vector& vector) {
    const auto& c = vector.coordinates;
    if (c.size() < 2) return;
    cairo_move_to(context, c[0] + 0.5, c[1] + 0.5);
    std::size_t i = 2;
    for (; i + 5 < c.size(); i += 6) cairo_curve_to(context, c[i] + 0.5, c[i + 1] + 0.5, c[i + 2] + 0.5, c[i + 3] + 0.5, c[i + 4] + 0.5, c[i + 5] + 0.5);
    for (; i + 1 < c.size(); i += 2) cairo_line_to(context, c[i] + 0.5, c[i + 1] + 0.5);
}

// The meaning of an arc's values belongs to the curve-fitting library, so an arc shows as a cross at its coordinates.
void addArc(cairo_t* context, const Vector& vector, double reach) {
    const double x = vector.coordinates[0] + 0.5;
    const double y = vector.coordinates[1] + 0.5;
    cairo_move_to(context, x - reach, y);
    cairo_line_to(context, x + reach, y);
    cairo_move_to(context, x, y - reach);
    cairo_line_to(context, x, y + reach);
}

void drawVectors(const JobFile& job, std::uint32_t scale, cairo_surface_t* picture) {
    const Context context(cairo_create(picture));
    cairo_scale(context.get(), 1.0 / scale, 1.0 / scale);
    cairo_set_line_width(context.get(), 1.25 * scale);
    for (const Vector& vector : job.vectors) {
        cairo_set_source_rgb(context.get(), vector.colour[0] / 255.0, vector.colour[1] / 255.0, vector.colour[2] / 255.0);
        if (vector.kind == VectorKind::Polygon) addPolygon(context.get(), vector);
        if (vector.kind == VectorKind::Bezier) addBezier(context.get(), vector);
        if (vector.kind == VectorKind::Arc) addArc(context.get(), vector, 4.0 * scale);
        cairo_stroke(context.get());
    }
}

cairo_status_t append(void* bytes, const unsigned char* data, unsigned length) {
    static_cast<std::string*>(bytes)->append(reinterpret_cast<const char*>(data), length);
    return CAIRO_STATUS_SUCCESS;
}

int writePicture(cairo_surface_t& picture, const PreviewOptions& options, const Streams& streams) {
    std::string bytes;
    const cairo_status_t made = cairo_surface_write_to_png_stream(&picture, &append, &bytes);
    if (made != CAIRO_STATUS_SUCCESS) {
        streams.err << "morvil preview: " << options.output << ": " << cairo_status_to_string(made) << "\n";
        return kSystemFailed;
    }
    const int error = writeOutputFile(options.output, bytes);
    if (error == 0) return kDone;
    streams.err << "morvil preview: " << options.output << ": " << std::generic_category().message(error) << "\n";
    return kSystemFailed;
}

std::uint32_t pictureSide(std::uint32_t pixels, std::uint32_t scale) { return std::max(1U, (pixels + scale - 1) / scale); }

int drawPreview(const JobFile& job, const PreviewOptions& options, const Streams& streams) {
    if (std::error_code unknown; fs::equivalent(options.file, options.output, unknown)) {
        streams.err << "morvil preview: " << options.output << ": is the job itself; the picture needs a file of its own\n";
        return kUsage;
    }
    const JobSize size = sizeOf(job);
    if (size.width == 0 || size.height == 0) {
        streams.err << "morvil preview: " << options.file << ": the job's size cannot be read (see morvil check)\n";
        return kUsage;
    }
    const std::uint32_t longer = std::max(size.width, size.height);
    const std::uint32_t scale = options.scale > 0 ? static_cast<std::uint32_t>(options.scale) : std::max(1U, (longer + kPictureSide - 1) / kPictureSide);
    if (pictureSide(longer, scale) > kMaxSide) {
        streams.err << "morvil preview: at scale " << scale << " the picture would be larger than " << kMaxSide << " pixels a side; use --scale " << (longer + kMaxSide - 1) / kMaxSide << " or more\n";
        return kUsage;
    }
    const Surface picture(cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(pictureSide(size.width, scale)), static_cast<int>(pictureSide(size.height, scale))));
    {
        const Context white(cairo_create(picture.get()));
        cairo_set_source_rgb(white.get(), 1.0, 1.0, 1.0);
        cairo_paint(white.get());
    }
    cairo_surface_flush(picture.get());
    if (job.bitmap) drawRaster(job, scale, picture.get());
    drawVectors(job, scale, picture.get());
    return writePicture(*picture, options, streams);
}

}  // namespace

int runPreview(const PreviewOptions& options, const Streams& streams) {
    try {
        const MappedFile mapped(options.file);
        return drawPreview(readJobFile(mapped.bytes()), options, streams);
    } catch (const std::system_error& error) {
        streams.err << "morvil preview: " << error.what() << "\n";
        return kUsage;
    }
}

}  // namespace morvil::tool
