#include "raster/Halftone.h"

#include <algorithm>
#include <array>
#include <limits>

#include "driver/log/Log.h"
#include "raster/CxImageBMP.h"

namespace morvil {

namespace {

constexpr DWORD kFirstDiffusion = 3;
constexpr std::array<unsigned, 4> kMethods{0, 4, 3, 2};  // of CxImage::Dither, by algorithm from the first diffusion on
constexpr DWORD kAlgorithms = kFirstDiffusion + kMethods.size();

void logSource(const std::uint8_t* source, const std::uint8_t* destination, const BITMAPINFOHEADER& header, DWORD scanLine, bool ordered) {
    debugPrint(ordered ? TEXT("Dither ORDERED_DITHERING, CreateFromArray pSrc=%X, pDst=%X, Width=%d, Height=%d, BitCount=%d, "
                              "SizeScanLine=%d, SizeImage=%d\n")
                       : TEXT("Dither Error Diffusion, CreateFromArray pSrc=%X, pDst=%X, Width=%d, Height=%d, BitCount=%d, "
                              "SizeScanLine=%d, SizeImage=%d\n"),
               low32(source), low32(destination), header.biWidth, header.biHeight, header.biBitCount, scanLine, header.biSizeImage);
}

void dumpResult(const CxImage& image) {
    for (int n = 0; n < std::numeric_limits<int>::max(); ++n) {
        const WString path = format(TEXT("C:\\result_%d.bmp"), n);
        if (fileExists(path.c_str())) continue;
        if (!CxImageBMP(image).Save(path.c_str())) {
            logMorvil(1, kError, TEXT("Dither, %s not written, Error=%d"), path, GetLastError(), kLogEnd);
            DeleteFileW(path.c_str());  // no half picture
        }
        return;
    }
}

}  // namespace

int Dither(CxImage& image, const std::uint8_t* source, std::uint8_t* destination, std::uint32_t* sizeOut, const BITMAPINFOHEADER* header,
           const HalftoneBlock* parameters, int dump) {
    if (source == nullptr || destination == nullptr || sizeOut == nullptr || header == nullptr || parameters == nullptr) return 0;
    const DWORD algorithm = parameters->algorithm;
    if (algorithm >= kAlgorithms) return 1;

    const bool ordered = algorithm < kFirstDiffusion;
    const auto width = static_cast<std::uint32_t>(header->biWidth);
    const auto height = static_cast<std::uint32_t>(header->biHeight);
    const DWORD scanLine = height == 0 ? 0 : header->biSizeImage / height;
    logSource(source, destination, *header, scanLine, ordered);
    if (!image.AttachArray(source, width, height, header->biBitCount, scanLine, destination)) return 1;

    debugPrint(TEXT("DitherOrdered, PatternSize=%d\n"), parameters->patternSize);
    const bool done = ordered ? image.DitherOrdered(parameters->patternSize) : image.Dither(kMethods[algorithm - kFirstDiffusion]);
    if (!done) return 1;

    const std::span<const std::uint8_t> rows = image.GetBits();
    const bool inPlace = rows.data() == destination;
    if (!inPlace) std::copy(rows.begin(), rows.end(), destination);
    *sizeOut = static_cast<std::uint32_t>(rows.size());
    debugPrint(TEXT("Dither, Save buffer size=%d\n"), *sizeOut);
    if (dump >= 1) dumpResult(image);
    if (inPlace) image.Destroy();  // the rows are the surface's, and go with it
    debugPrint(TEXT("Dither, finished\n"));
    return 1;
}

}  // namespace morvil
