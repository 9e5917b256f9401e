// ColourMatching.h - maps the colour of a stroke onto the few colours that the job application understands as instructions: a
// table of colour ranges from PrinterDriver.xml, and one rule for every other grey. The configuration file is read under its
// lock for every colour; the table is built anew only when the file's bytes changed. Owned by the job writer.
#pragma once

#include <cstdint>
#include <memory>

namespace morvil {

class ColourMatching {
  public:
    ColourMatching();
    ~ColourMatching();
    ColourMatching(const ColourMatching&) = delete;
    ColourMatching& operator=(const ColourMatching&) = delete;

    // `colour` is 0x00BBGGRR and changed in place. True when it was left as it was, false when it was replaced.
    bool checkPolygonColor(std::uint32_t& colour);

  private:
    struct Members;
    std::unique_ptr<Members> m;
};

}  // namespace morvil
