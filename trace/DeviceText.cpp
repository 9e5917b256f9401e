#include "trace/DeviceText.h"

#include <algorithm>

#include "trace/TextParts.h"

namespace morvil::trace {

namespace {

template <typename Record, typename Value>
struct Member {
    const char* name;
    Value Record::*value;
};

constexpr Member<GDIINFO, ULONG> kSizes[] = {{"ulTechnology", &GDIINFO::ulTechnology},
                                             {"ulHorzSize", &GDIINFO::ulHorzSize},
                                             {"ulVertSize", &GDIINFO::ulVertSize},
                                             {"ulHorzRes", &GDIINFO::ulHorzRes},
                                             {"ulVertRes", &GDIINFO::ulVertRes},
                                             {"cBitsPixel", &GDIINFO::cBitsPixel},
                                             {"cPlanes", &GDIINFO::cPlanes},
                                             {"ulNumColors", &GDIINFO::ulNumColors},
                                             {"ulLogPixelsX", &GDIINFO::ulLogPixelsX},
                                             {"ulLogPixelsY", &GDIINFO::ulLogPixelsY},
                                             {"ulDACRed", &GDIINFO::ulDACRed},
                                             {"ulDACGreen", &GDIINFO::ulDACGreen},
                                             {"ulDACBlue", &GDIINFO::ulDACBlue},
                                             {"ulAspectX", &GDIINFO::ulAspectX},
                                             {"ulAspectY", &GDIINFO::ulAspectY},
                                             {"ulAspectXY", &GDIINFO::ulAspectXY},
                                             {"ulNumPalReg", &GDIINFO::ulNumPalReg},
                                             {"ulDevicePelsDPI", &GDIINFO::ulDevicePelsDPI},
                                             {"ulPrimaryOrder", &GDIINFO::ulPrimaryOrder},
                                             {"ulHTPatternSize", &GDIINFO::ulHTPatternSize},
                                             {"ulHTOutputFormat", &GDIINFO::ulHTOutputFormat},
                                             {"ulVRefresh", &GDIINFO::ulVRefresh},
                                             {"ulBltAlignment", &GDIINFO::ulBltAlignment},
                                             {"ulPanningHorzRes", &GDIINFO::ulPanningHorzRes},
                                             {"ulPanningVertRes", &GDIINFO::ulPanningVertRes},
                                             {"xPanningAlignment", &GDIINFO::xPanningAlignment},
                                             {"yPanningAlignment", &GDIINFO::yPanningAlignment},
                                             {"cxHTPat", &GDIINFO::cxHTPat},
                                             {"cyHTPat", &GDIINFO::cyHTPat},
                                             {"ulPhysicalPixelCharacteristics", &GDIINFO::ulPhysicalPixelCharacteristics},
                                             {"ulPhysicalPixelGamma", &GDIINFO::ulPhysicalPixelGamma}};

constexpr Member<GDIINFO, ULONG> kFlags[] = {{"flRaster", &GDIINFO::flRaster},
                                             {"flTextCaps", &GDIINFO::flTextCaps},
                                             {"flHTFlags", &GDIINFO::flHTFlags},
                                             {"flShadeBlend", &GDIINFO::flShadeBlend}};

constexpr Member<GDIINFO, LONG> kSteps[] = {
    {"xStyleStep", &GDIINFO::xStyleStep}, {"yStyleStep", &GDIINFO::yStyleStep}, {"denStyleStep", &GDIINFO::denStyleStep}};

constexpr Member<COLORINFO, CIECHROMA> kChromas[] = {{"Red", &COLORINFO::Red},
                                                     {"Green", &COLORINFO::Green},
                                                     {"Blue", &COLORINFO::Blue},
                                                     {"Cyan", &COLORINFO::Cyan},
                                                     {"Magenta", &COLORINFO::Magenta},
                                                     {"Yellow", &COLORINFO::Yellow},
                                                     {"AlignmentWhite", &COLORINFO::AlignmentWhite}};

constexpr Member<COLORINFO, LDECI4> kDyes[] = {{"RedGamma", &COLORINFO::RedGamma},
                                               {"GreenGamma", &COLORINFO::GreenGamma},
                                               {"BlueGamma", &COLORINFO::BlueGamma},
                                               {"MagentaInCyanDye", &COLORINFO::MagentaInCyanDye},
                                               {"YellowInCyanDye", &COLORINFO::YellowInCyanDye},
                                               {"CyanInMagentaDye", &COLORINFO::CyanInMagentaDye},
                                               {"YellowInMagentaDye", &COLORINFO::YellowInMagentaDye},
                                               {"CyanInYellowDye", &COLORINFO::CyanInYellowDye},
                                               {"MagentaInYellowDye", &COLORINFO::MagentaInYellowDye}};

void add(std::string& line, const char* name, const std::string& value) { line += std::string(" ") + name + " " + value; }
void addNumber(std::string& line, const char* name, std::int64_t value) {
    if (value != 0) add(line, name, number(value));
}
// Where all bits are set there is no number.
void addCount(std::string& line, const char* name, ULONG value) {
    constexpr ULONG kNone = 0xFFFFFFFF;
    if (value != 0) add(line, name, value == kNone ? hex(value) : number(value));
}
void addBits(std::string& line, const char* name, ULONG value) {
    if (value != 0) add(line, name, hex(value));
}

std::string capsText(const GDIINFO& caps) {
    std::string line = "GDIINFO";
    addBits(line, "ulVersion", caps.ulVersion);
    for (const auto& member : kSizes) addCount(line, member.name, caps.*member.value);
    for (const auto& member : kFlags) addBits(line, member.name, caps.*member.value);
    for (const auto& member : kSteps) addNumber(line, member.name, caps.*member.value);
    if (caps.ptlPhysOffset.x != 0 || caps.ptlPhysOffset.y != 0) add(line, "ptlPhysOffset", toText(caps.ptlPhysOffset));
    if (caps.szlPhysSize.cx != 0 || caps.szlPhysSize.cy != 0) add(line, "szlPhysSize", toText(caps.szlPhysSize));
    if (caps.pHTPatA != nullptr) add(line, "pHTPatA", "given");
    if (caps.pHTPatB != nullptr) add(line, "pHTPatB", "given");
    if (caps.pHTPatC != nullptr) add(line, "pHTPatC", "given");
    return line;
}

// Chromaticities and gammas in ten thousandths.
std::string coloursText(const COLORINFO& colours) {
    std::string line;
    for (const auto& member : kChromas) {
        const CIECHROMA& chroma = colours.*member.value;
        if (chroma.x != 0 || chroma.y != 0 || chroma.Y != 0)
            add(line, member.name, number(chroma.x) + "," + number(chroma.y) + "," + number(chroma.Y));
    }
    for (const auto& member : kDyes) addNumber(line, member.name, colours.*member.value);
    return line;
}

// A face name of full length has no terminator.
void addFont(std::string& line, const char* name, const LOGFONTW& font) {
    const WCHAR* const end = std::find(std::begin(font.lfFaceName), std::end(font.lfFaceName), WCHAR{0});
    if (font.lfFaceName[0] == 0 && font.lfHeight == 0) return;
    add(line, name,
        "{\"" + toUtf8(WStringView(font.lfFaceName, static_cast<std::size_t>(end - font.lfFaceName))) + "\" height " +
            number(font.lfHeight) + " weight " + number(font.lfWeight) + "}");
}

}  // namespace

std::vector<std::string> toLines(const GDIINFO& caps) {
    std::vector<std::string> lines{capsText(caps)};
    const std::string colours = coloursText(caps.ciDevice);
    if (!colours.empty()) lines.push_back("GDIINFO ciDevice" + colours);
    return lines;
}

std::string toText(const DEVINFO& info, const std::string& palette) {
    std::string line = "DEVINFO";
    addBits(line, "flGraphicsCaps", info.flGraphicsCaps);
    addBits(line, "flGraphicsCaps2", info.flGraphicsCaps2);
    addFont(line, "lfDefaultFont", info.lfDefaultFont);
    addFont(line, "lfAnsiVarFont", info.lfAnsiVarFont);
    addFont(line, "lfAnsiFixFont", info.lfAnsiFixFont);
    addNumber(line, "cFonts", info.cFonts);
    addNumber(line, "iDitherFormat", info.iDitherFormat);
    addNumber(line, "cxDither", info.cxDither);
    addNumber(line, "cyDither", info.cyDither);
    if (info.hpalDefault != nullptr) add(line, "hpalDefault", palette);
    return line;
}

}  // namespace morvil::trace
