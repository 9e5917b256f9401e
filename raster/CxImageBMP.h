// CxImageBMP.h - an image as a BMP file: file header, information header, palette, rows in the order in which they are stored.
#pragma once

#include "raster/CxFile.h"
#include "raster/CxImage.h"

namespace morvil {

class CxImageBMP {
  public:
    // The image must outlive this object.
    explicit CxImageBMP(const CxImage& image) : m_image(image) {}

    // False for an image without pixels and when the file takes no more.
    [[nodiscard]] bool Encode(CxFile& file) const;
    // Into a file of this name, made or emptied.
    [[nodiscard]] bool Save(const WCHAR* path) const;

  private:
    const CxImage& m_image;
};

}  // namespace morvil
