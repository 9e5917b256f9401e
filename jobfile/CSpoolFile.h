// CSpoolFile.h - writes one job file: header, bitmap section, vector commands; completes and renames it. The format is in
// docs/job-file-format.md. Never keeps the file open between operations: each opens it, works at a remembered byte position and
// closes it, so the file is consistent on disk after every call. One writer per document; printing thread only.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "config/ConfigurationRecord.h"
#include "jobfile/PolygonPoints.h"
#include "platform/common/Text.h"

namespace morvil {

class FileStream;
class VectorBackup;

class CSpoolFile {
  public:
    CSpoolFile();
    ~CSpoolFile();
    CSpoolFile(const CSpoolFile&) = delete;
    CSpoolFile& operator=(const CSpoolFile&) = delete;

    // `copyOut`, when given, receives at most 50 characters of the resulting name; a terminator follows a shorter one.
    bool SetJobName(const WCHAR* name, WCHAR* copyOut = nullptr);
    bool SetPrinterConfig(const ConfigurationRecord* config);
    bool BuildSpoolFileName(const WCHAR* jobName);
    bool WriteHeader();
    // Bit 0 creates the bitmap section, bit 1 creates it and fills it with white. Always false; callers ignore it.
    bool CreateBitmap(int modeBits);
    bool WriteVectorSection();
    // The whole page as stored rows; `bytes` is the size of the surface's bits, checked against the section's.
    bool WriteBitmap(const std::uint8_t* pageBits, std::size_t bytes);
    bool WriteBitmapBand(const std::uint8_t* buffer, std::uint32_t size, std::uint32_t offset);

    // The colour group of a colour stamp, in front of the bitmap section, with the entries of the palette indices that the page
    // uses. The bitmap section must be made anew behind it. False when nothing was written.
    bool WriteMciHeader(std::span<const std::uint8_t> colourList);
    // Keeps three pictures of a 24-bit page in the spool folder and lets the tracer library make red polygons of its outlines.
    // `bytes` is the size of the page's bits; rows take whole groups of 4 bytes. False when there are no outlines to be had.
    bool TraceBitmap(const std::uint8_t* pageBits, std::size_t bytes, std::uint32_t width, std::uint32_t height, std::uint32_t yOffset);

    // False only when the polygon was dropped as a duplicate before anything was written. Mirroring changes the arrays.
    bool WritePolygon(std::int32_t* xs, std::int32_t* ys, std::uint32_t count, std::uint32_t colour, bool checkDuplicates);
    bool WriteBezier(const std::int32_t* xs, const std::int32_t* ys, std::uint32_t count, std::uint32_t colour);
    bool WriteArc(const ArcRecord& arc, std::uint32_t colour);

    // Finishes the page's job: the process mode's work, shrinking, the final name.
    bool Complete();
    // The document was aborted: an unfinished file is removed.
    void Abort();
    // Something that belongs into the page's file was lost outside the writer: the file is not given to the job application.
    void MarkDamaged();

    [[nodiscard]] const WCHAR* jobName() const;
    [[nodiscard]] const WCHAR* jobFilePath() const;       // while the file is written
    [[nodiscard]] const WCHAR* finishedFilePath() const;  // the last file that Complete gave away; empty when none

  private:
    struct Members;

    void completeBorder();
    // Makes the file anew with nothing but the box of what was drawn and the configured margins.
    void doShrinkToBoundigbox();
    struct ShrinkPlan;
    bool measure(FileStream& file, const VectorBackup& vectors, ShrinkPlan& plan);
    void rewrite(const VectorBackup& vectors, const ShrinkPlan& plan);
    void rewriteBitmap(const ShrinkPlan& plan);
    // Writes the polygons of the copy moved by (dx, dy); other commands are dropped.
    void AddOffstToVectors(const VectorBackup& vectors, std::int32_t dx, std::int32_t dy);

    std::unique_ptr<Members> m;
};

}  // namespace morvil
