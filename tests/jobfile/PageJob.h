// PageJob.h - a job writer's fixture for jobs of any size and mode: pages as rows of byte values, images taken out of the file.
#pragma once

#include "jobfile/JobFixture.h"
#include "platform/common/Format.h"

namespace morvil::test {

class PageJob : public JobFixture {
  protected:
    // 254 dpi: ten pixels are a millimetre.
    void setPage(WORD mode, WORD width, WORD height) {
        config.processMode = mode;
        config.resolution = 254;
        config.size.pixelWidth = width;
        config.size.pixelHeight = height;
        config.size.width = static_cast<FLOAT>(width) / 10.0F;
        config.size.height = static_cast<FLOAT>(height) / 10.0F;
    }
    static bool sendPage(CSpoolFile& writer, const std::string& rows) {
        return writer.WriteBitmap(reinterpret_cast<const std::uint8_t*>(rows.data()), rows.size());
    }
    // A page begun, its pixels sent and the job completed; the finished file.
    std::string printed(const std::string& rows) {
        const auto writer = begin(1);
        sendPage(*writer, rows);
        writer->Complete();
        return finished(*writer);
    }
    static std::string finished(const CSpoolFile& writer) {
        const WStringView path = viewOf(writer.finishedFilePath());
        return path.empty() ? std::string("no finished job") : readBytes(path);
    }
    void setMargins(int left, int top, int right, int bottom) {
        const RECT margins{left, top, right, bottom};
        CPrinterConfig().setBoundingBoxOffset(margins);
        clearLog();
    }
    static void polygon(CSpoolFile& writer, std::vector<std::int32_t> xs, std::vector<std::int32_t> ys, std::uint32_t colour = 0xFF) {
        writer.WritePolygon(xs.data(), ys.data(), static_cast<std::uint32_t>(xs.size()), colour, false);
    }
    // The messages that begin so, in order.
    [[nodiscard]] std::vector<std::string> messagesFrom(const std::string& start) const {
        std::vector<std::string> found;
        for (const std::string& message : messages()) {
            if (message.starts_with(start)) found.push_back(message);
        }
        return found;
    }
};

// Rows of bytes, each filled up with zeros to a multiple of four.
inline std::string storedRows(const std::vector<std::string>& rows) {
    std::string stored;
    for (const std::string& row : rows) stored += row + std::string((4 - row.size() % 4) % 4, '\0');
    return stored;
}
// Rows of "#" (0) and "." (1) as one-bit pixels; the bits behind the last pixel are 1.
inline std::string bitRows(const std::vector<std::string>& rows) {
    std::vector<std::string> bytes;
    for (const std::string& row : rows) {
        std::string packed;
        for (std::size_t at = 0; at < row.size(); at += 8) {
            unsigned byte = 0;
            for (std::size_t bit = at; bit < at + 8; ++bit) byte = byte << 1 | (bit < row.size() && row[bit] == '#' ? 0U : 1U);
            packed.push_back(static_cast<char>(static_cast<unsigned char>(byte)));
        }
        bytes.push_back(packed);
    }
    return storedRows(bytes);
}

struct StoredImage {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::string pixels;  // all stored rows
};
// The image of a job; empty when there is none, or when it does not end where "<EOBmp>" stands.
inline StoredImage imageOf(const std::string& job) {
    const std::size_t tag = job.find("<STBmp: 0;0>BM");
    if (tag == std::string::npos) return {};
    const std::string image = job.substr(tag + 12);
    const auto number = [&image](std::size_t at) {
        std::uint32_t value = 0;
        for (std::size_t i = 4; i-- > 0;) value = value << 8 | static_cast<unsigned char>(image.at(at + i));
        return value;
    };
    const std::size_t end = number(2);
    if (image.substr(end, 28) != "<EOBmp>\r\n<EndGroup: Bitmap>\r") return {};
    return {number(18), number(22), image.substr(number(10), end - number(10))};
}

}  // namespace morvil::test
