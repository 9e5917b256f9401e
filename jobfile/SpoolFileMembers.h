// SpoolFileMembers.h - what a job writer holds between calls, for the source files that implement it. Included by them alone.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "config/CJobName.h"
#include "config/CMvConfig.h"
#include "jobfile/CSpoolFile.h"
#include "jobfile/ColourMatching.h"
#include "jobfile/MvPolygonClipping.h"
#include "jobfile/NameClaim.h"
#include "jobfile/VectorSection.h"
#include "platform/common/FileStream.h"
#include "raster/CBM.h"

namespace morvil {

enum class JobState : std::uint8_t {
    None,        // no file of ours lies in the spool folder
    Unfinished,  // the .tsa is being written
    Finished     // given away: renamed, or left behind by a failed renaming
};

// A text of the configuration or of a colour list as part of a line: it comes from outside, and a line end among it would end
// the line of the file.
WString lineText(std::span<const WCHAR> buffer);

// Lends the bitmap store a stream for as long as it lives.
class LentStream {
  public:
    LentStream(CBM& store, FileStream& stream) : m_store(store) { store.setStream(&stream); }
    ~LentStream() { m_store.setStream(nullptr); }
    LentStream(const LentStream&) = delete;
    LentStream& operator=(const LentStream&) = delete;

  private:
    CBM& m_store;
};

struct CSpoolFile::Members {
    ConfigurationRecord config{};
    CMvConfig folders;
    CJobName naming;

    WString jobName;    // at most 50 characters
    WString builtName;  // what the name builder gave last; it knows its own name again. Others may hold a claim on it
    WString title;      // what builtName was made from
    WString driverVersion;
    WString spoolFolder;  // with its backslash
    WString jobFile;
    WString finishedFile;  // of the last job that was completed
    WString backupFile;
    NameClaim claim;  // on jobFile

    JobState state = JobState::None;
    bool isWhole = true;  // everything that belongs into the file has reached it

    // Byte positions in the job file; those of the vector section are its own.
    std::int64_t headerStart = 0;
    std::int64_t headerEnd = 0;
    std::int64_t bitmapStart = 0;
    std::int64_t bitmapPixel = 0;
    std::int64_t bitmapEnd = 0;

    CBM bitmap;
    VectorSection vectors;
    ColourMatching colours;
    MvPolygonClipping clipper;

    [[nodiscard]] bool hasBitmapSection() const { return config.vectorJob == 0; }
    [[nodiscard]] bool hasFlag(ConfigurationFlag flag) const { return (config.flags & flag) != 0; }
    // Width and height of the bitmap section in pixels; of the job when it has none.
    [[nodiscard]] std::uint32_t pixelWidth() const { return hasBitmapSection() ? bitmap.width() : config.size.pixelWidth; }
    [[nodiscard]] std::uint32_t pixelHeight() const { return hasBitmapSection() ? bitmap.height() : config.size.pixelHeight; }

    void chooseSpoolFolder();
    bool claimFileName();
    void announceHeader() const;
    // Makes the file anew with the header groups and the opening of the bitmap section. False when that was not done whole.
    bool writeHeaderFile();
    [[nodiscard]] WString headerLines(std::size_t& headerStartCharacters) const;
    void appendDiagnosticGroup(WString& lines) const;

    // Makes header and palette of the image anew at bitmapStart, in the type and for the size that it has.
    bool renewImage(FileStream& file);
    // Writes what closes the bitmap section at bitmapEnd. The position behind it, where the vector section belongs; nothing
    // when the file could not be opened there.
    std::optional<std::int64_t> closeBitmapSection();
    // Whether the line of a polygon of `count` points stands in the vector section.
    bool doPolygonAlreadyExist(std::string_view line, std::size_t count);
    void mirror(std::int32_t* xs, std::int32_t* ys, std::uint32_t count) const;
    void writeClipped(const std::int32_t* xs, const std::int32_t* ys, std::uint32_t count, std::uint32_t colour, bool checkDuplicates);

    // Renames the file to its final name, when it is whole.
    void giveAway();
    // Removes what is unfinished.
    void discard();
};

}  // namespace morvil
