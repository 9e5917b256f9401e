// CMciColorsBase.h - one colour list: the colours of a list file that pass the version filter, in the file's order, with a read
// cursor. File layout (dotted paths of elements, values in attributes):
//     MciColors                    Version                                            version text of the list
//     MciColors.Colors.Color       ID Target Level Red Green Blue Version ReplacedBy  one colour, repeated
//     MciColors.Colors.Color.Name  Lang value                                         its name, repeated for each language
// A missing or unreadable file is an empty list of version "0.0". Owns its document and colours; printing thread only.
#pragma once

#include <deque>
#include <memory>

#include "config/CXml.h"
#include "raster/CMciColor.h"

namespace morvil {

class CMciColorsBase {
  public:
    // An empty list without a file, for colours added in code.
    CMciColorsBase();
    // The list of the file at `path`; colours are read by load(). A path of 260 characters or more is ignored.
    explicit CMciColorsBase(const WCHAR* path);
    ~CMciColorsBase();
    CMciColorsBase(const CMciColorsBase&) = delete;
    CMciColorsBase& operator=(const CMciColorsBase&) = delete;

    void setLanguage(WStringView language) { copyText(m_language, language); }
    // 0 to 3; effective with the next load().
    void setFilter(DWORD mciVersion) { m_filter = mciVersion; }
    // Empties the list, then reads the document again in document order. False when there is no document.
    bool load();
    void add(const CMciColor& colour) { m_colours.push_back(colour); }

    // The cursor: getNext() gives the first colour after reset() and null once the end is reached.
    void reset() { m_next = 0; }
    const CMciColor* getNext();
    // Null for positions outside the list.
    [[nodiscard]] const CMciColor* getAt(std::size_t index) const;
    [[nodiscard]] bool contains(const CMciColor& colour) const;
    [[nodiscard]] std::size_t getCount() const { return m_colours.size(); }
    [[nodiscard]] const WCHAR* getVersion() const { return m_version.data(); }

  private:
    void destroy();
    void readVersion(const WCHAR* defaultVersion);
    void readColour(const XmlNode& node);
    void readName(const XmlNode& node, CMciColor& colour);
    const XmlNode* findName(const XmlNode& node, std::size_t characters);
    [[nodiscard]] bool passesFilter(const CMciColor& colour) const;

    std::unique_ptr<CXml> m_document;
    std::deque<CMciColor> m_colours;  // grows without moving colours, whose copies would be announced
    std::size_t m_next = 0;
    MciText m_version{};
    MciText m_language{};
    DWORD m_filter = 0;
};

}  // namespace morvil
