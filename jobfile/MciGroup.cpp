// MciGroup.cpp - the colour group of a colour stamp: which entries of the colour lists the page uses. It stands between the
// header groups and the bitmap section, and closes the header a second time: readers expect that line twice.
#include <algorithm>
#include <array>
#include <vector>

#include "config/CMvString.h"
#include "config/SizeTemplates.h"
#include "driver/log/Log.h"
#include "jobfile/CSpoolFile.h"
#include "jobfile/JobFileFormat.h"
#include "jobfile/SpoolFileMembers.h"
#include "platform/common/Format.h"
#include "raster/CMciColorHandler.h"

namespace morvil {

namespace {

constexpr std::size_t kNumberCharacters = 261;
constexpr int kNoMciId = -1;

// The line with the identifier of the size template that has the job's size; nothing when there is none, or it has none.
WString identifierLine(const SizeTemplate& size) {
    CSizeTemplate templates;
    if (templates.findBySize(size.width, size.height) == 0 || templates.mciId() == kNoMciId) return {};
    return format(kMciIdLine, templates.mciId());
}

// A colour whose list names no target has the target 0.
WString colourLine(std::size_t number, const CMciColor& colour) {
    std::array<WCHAR, kNumberCharacters> target{};
    CMvString().asPWchar(std::uint32_t{colour.target}, target.data());
    return format(kMciColourLine, number, lineText(colour.name), colour.red, colour.green, colour.blue, target.data(),
                  lineText(colour.level));
}

// Each entry once, in the order in which the page uses them; two entries that agree in every field are one.
WString colourLines(const CMciColorHandler& lists, std::span<const std::uint8_t> colourList) {
    std::vector<const CMciColor*> written;
    WString lines;
    for (const std::uint8_t index : colourList) {
        const CMciColor* const colour = lists[index];
        if (colour == nullptr) continue;
        if (std::any_of(written.begin(), written.end(), [colour](const CMciColor* known) { return *known == *colour; })) continue;
        lines += colourLine(written.size(), *colour);
        written.push_back(colour);
    }
    return lines;
}

WString mciGroup(const ConfigurationRecord& config, std::span<const std::uint8_t> colourList) {
    CMciColorHandler lists;  // the files as they are now, as the palette of the image behind the group has them
    lists.setMciVersion(config.mciVersion);
    WString lines = format(kTextLine, kBeginKeyword, kMciGroup);
    lines += identifierLine(config.size);
    lines += format(kGaspenVersionLine, lineText(viewOf(lists.colorsGaspen().getVersion())));
    lines += format(kCustomerVersionLine, lineText(viewOf(lists.colorsCustomer().getVersion())));
    lines += format(kSystemVersionLine, lineText(viewOf(lists.colorsSystem().getVersion())));
    lines += kParametersLine;
    lines += colourLines(lists, colourList);
    lines += format(kTextLine, kEndKeyword, kMciGroup);
    lines += format(kTextLine, kEndKeyword, kHeaderGroup);
    return lines;
}

}  // namespace

bool CSpoolFile::WriteMciHeader(std::span<const std::uint8_t> colourList) {
    if (colourList.empty()) return false;
    WString lines = mciGroup(m->config, colourList);
    lines += format(kTextLine, kBeginKeyword, kBitmapGroup);
    lines += kBitmapOpening;
    const std::string bytes = toFileBytes(lines);

    FileStream file(m->jobFile.c_str(), OpenMode::Update);
    const bool written = file.isOpen() && file.seek(m->headerEnd) && file.write(bytes) && file.close();
    m->isWhole = m->isWhole && written;
    if (!written) return false;
    const std::int64_t end = m->headerEnd + static_cast<std::int64_t>(bytes.size());
    m->headerEnd = end;
    m->bitmapStart = end;
    m->bitmapEnd = end;
    m->vectors.placeAt(end);
    return true;
}

}  // namespace morvil
