// The text of a traced call: arguments by name, texts as texts, bits in hexadecimal, colours by their parts, what was
// not given left out.
#include "trace/TextTrace.h"

#include <gtest/gtest.h>

#include <cstring>

namespace morvil::trace {
namespace {

template <typename T>
Bytes bytesOf(const T& value) {
    Bytes bytes(sizeof(value));
    std::memcpy(bytes.data(), &value, sizeof(value));
    return bytes;
}

Bytes wide(WStringView text, bool ended) {
    Bytes bytes;
    for (const WCHAR unit : text) bytes.insert(bytes.end(), {static_cast<std::uint8_t>(unit), static_cast<std::uint8_t>(unit >> 8)});
    if (ended) bytes.insert(bytes.end(), {0, 0});
    return bytes;
}

Bytes narrow(const std::string& text) { return {text.begin(), text.end()}; }

const SurfaceArgument kPage{.isPage = 1, .size = {10, 20}, .rowStep = 4, .format = 1, .bytes = 80, .flags = 1};

TEST(TextTrace, tells_an_instance_with_its_device_mode) {
    DEVMODEW mode{};
    mode.dmDriverExtra = 1788;
    mode.dmPaperSize = 256;
    mode.dmPaperWidth = 1000;
    mode.dmPaperLength = 500;
    mode.dmOrientation = DMORIENT_LANDSCAPE;
    mode.dmCopies = 3;
    Event event{.function = INDEX_DrvEnablePDEV, .result = 1, .numbers = {6, 320, 312}};
    event.blocks = {bytesOf(mode), {}, wide(TEXT("M\u00F6rvil"), true)};
    EXPECT_EQ(toText(event),
              "DrvEnablePDEV patterns 6 caps bytes 320 info bytes 312 device mode [220 bytes, private 1788, paper 256 1000x500 landscape, copies 3] log address [none] "
              "device [\"M\u00F6rvil\"] = instance 1");
    event.blocks = {{}, wide(TEXT("LPT1:"), true), narrow("odd")};
    EXPECT_EQ(toText(event), "DrvEnablePDEV patterns 6 caps bytes 320 info bytes 312 device mode [none] log address [\"LPT1:\"] device [3 bytes] = instance 1");
}

TEST(TextTrace, tells_documents_and_pages) {
    Event start{.function = INDEX_DrvStartDoc, .result = 1, .numbers = {7}, .blocks = {wide(TEXT("Plan"), true)}};
    start.surfaces[0] = kPage;
    EXPECT_EQ(toText(start), "DrvStartDoc job 7 title [\"Plan\"] target {page 10x20 1 bit} = 1");
    Event band{.function = INDEX_DrvNextBand, .blocks = {Bytes(80)}};
    band.points[0] = POINTL{0, -1};
    EXPECT_EQ(toText(band), "DrvNextBand bits [80 bytes] origin {(0,-1)} = 0");
    EXPECT_EQ(toText({.function = INDEX_DrvEndDoc, .result = 1, .numbers = {1}}), "DrvEndDoc flags 0x1 = 1");
    EXPECT_EQ(toText({.function = INDEX_DrvResetPDEV, .result = 1, .numbers = {1, 2}}), "DrvResetPDEV from instance 1 to instance 2 = 1");
}

TEST(TextTrace, tells_strokes) {
    Event event{.function = INDEX_DrvStrokePath, .result = 1, .numbers = {0, 0xD0D}};
    event.path = PathArgument{.flags = 0, .curves = 1, .parts = {{PD_BEGINSUBPATH, {{16, 40}, {-8, 0}}}}};
    event.line = LineArgument{.flags = LA_STYLED, .width = 1, .style = {2, 3}};
    event.brushes[0] = BrushArgument{.solidColour = 0xFFFFFFFF, .rgb = 0xFF8000};
    event.points[0] = POINTL{1, 2};
    EXPECT_EQ(toText(event), "DrvStrokePath mix 0xD0D path {1 segment: begin [1,2.5 -0.5,0]} line {cosmetic width 1 flags 0x8 2 dashes} "
                             "brush {index none rgb (0,128,255)} brush origin {(1,2)} = 1");
    event.line = LineArgument{.flags = LA_GEOMETRIC, .width = 0x3FC00000};
    EXPECT_NE(toText(event).find("line {geometric width 1.5}"), std::string::npos);
}

TEST(TextTrace, tells_pieces_of_paths) {
    Event event{.function = INDEX_DrvFillPath, .result = 0, .numbers = {0xD0D, 1}};
    const std::vector<POINTFIX> point{{16, 16}};
    event.path = PathArgument{.flags = PO_BEZIERS,
                              .curves = 4,
                              .parts = {{PD_BEGINSUBPATH | PD_RESETSTYLE, point}, {PD_BEZIERS, point}, {PD_ENDSUBPATH | PD_CLOSEFIGURE, point}, {PD_BEGINSUBPATH | PD_ENDSUBPATH, {}}}};
    event.brushes[0] = BrushArgument{.solidColour = 3, .rgb = 0xFFFFFFFF};
    EXPECT_EQ(toText(event), "DrvFillPath mix 0xD0D options 0x1 path {4 segments flags 0x1: begin style reset [1,1] middle curves [1,1] end closed [1,1] figure []} "
                             "brush {index 3 rgb none} = 0, handed back");
}

TEST(TextTrace, tells_results) {
    EXPECT_EQ(toText({.function = INDEX_DrvEnablePDEV}), "DrvEnablePDEV = none");
    EXPECT_EQ(toText({.function = INDEX_DrvEnableSurface, .result = 1, .numbers = {2}}), "DrvEnableSurface instance 2 = surface");
    EXPECT_EQ(toText({.function = INDEX_DrvEnableSurface, .numbers = {2}}), "DrvEnableSurface instance 2 = none");
    for (const ULONG function : std::initializer_list<ULONG>{INDEX_DrvCompletePDEV, INDEX_DrvDisablePDEV, INDEX_DrvDisableSurface, INDEX_DrvDisableDriver}) {
        EXPECT_EQ(toText({.function = function}), functionName(function)) << "has none";
    }
    EXPECT_EQ(toText({.function = INDEX_DrvBitBlt}), "DrvBitBlt = 0");
    EXPECT_EQ(toText({.function = INDEX_DrvStrokePath, .result = -1, .numbers = {1, 0xD0D}}), "DrvStrokePath transform given mix 0xD0D = -1");
}

TEST(TextTrace, tells_surfaces_and_clips_of_every_kind) {
    const char* const depths[] = {"format 0", "1 bit", "4 bits", "8 bits", "16 bits", "24 bits", "32 bits", "format 7"};
    for (std::uint32_t format = 0; format < 8; ++format) {
        Event event{.function = INDEX_DrvStartPage, .result = 1};
        event.surfaces[0] = SurfaceArgument{.size = {1, 2}, .format = format};
        EXPECT_EQ(toText(event), std::string("DrvStartPage target {1x2 ") + depths[format] + "} = 1");
    }
    const std::pair<std::uint8_t, const char*> kinds[] = {{DC_TRIVIAL, "trivial"}, {DC_RECT, "rectangle"}, {2, "kind 2"}, {DC_COMPLEX, "complex"}};
    for (const auto& [kind, name] : kinds) {
        Event event{.function = INDEX_DrvCopyBits, .result = 1};
        event.clip = ClipArgument{.bounds = {0, 0, 1, 1}, .kinds = {kind, 0, 0, 0}};
        EXPECT_EQ(toText(event), std::string("DrvCopyBits clip {") + name + " (0,0)-(1,1)} = 1");
    }
}

TEST(TextTrace, tells_transfers) {
    Event stretch{.function = INDEX_DrvStretchBlt, .result = 1, .numbers = {4}};
    stretch.surfaces = {kPage, SurfaceArgument{.size = {2, 2}, .rowStep = -4, .format = 6}, std::nullopt};
    stretch.adjustment = COLORADJUSTMENT{24, 1, 0, 10000, 20000, 30000, 5, 9995, -10, 20, 30, -40};
    stretch.rectangles = {RECTL{0, 0, 10, 20}, RECTL{0, 0, 2, 2}};
    stretch.points = {POINTL{0, 0}, POINTL{3, 4}, std::nullopt};
    stretch.clip = ClipArgument{.bounds = {1, 1, 9, 19}, .kinds = {1, 0, 0, 0}};
    EXPECT_EQ(toText(stretch),
              "DrvStretchBlt mode 4 target {page 10x20 1 bit} source {2x2 32 bits bottom-up} clip {rectangle (1,1)-(9,19)} adjustment {gamma 10000 20000 30000, black 5, "
              "white 9995, contrast -10, brightness 20, colourfulness 30, tint -40 flags 0x1} area {(0,0)-(10,20)} source area {(0,0)-(2,2)} brush origin {(0,0)} mask from {(3,4)} = 1");
    Event blit{.function = INDEX_DrvBitBlt, .result = 1, .numbers = {0xCCCC}};
    blit.points[0] = POINTL{5, 6};
    blit.translation = TranslationArgument{.flags = 2, .table = {0, 1}, .sourcePalette = {7}};
    EXPECT_EQ(toText(blit), "DrvBitBlt rop 0xCCCC translation {table of 2 flags 0x2, source palette of 1} from {(5,6)} = 1");
}

TEST(TextTrace, tells_texts) {
    Event event{.function = INDEX_DrvTextOut, .result = 1, .numbers = {0xD0D}, .blocks = {wide(TEXT("Pump 7"), false)}};
    event.rectangles[1] = RECTL{0, 0, 3, 4};
    event.brushes[1] = BrushArgument{.solidColour = 1, .rgb = 0xFFFFFF};
    event.clip = ClipArgument{.bounds = {0, 0, 9, 9}, .kinds = {3, 0, 0, 0}};
    EXPECT_EQ(toText(event), "DrvTextOut mix 0xD0D text [\"Pump 7\"] back brush {index 1 rgb (255,255,255)} clip {complex (0,0)-(9,9)} opaque area {(0,0)-(3,4)} = 1");
    event.blocks = {wide(TEXT("a\nb"), false)};
    EXPECT_NE(toText(event).find("text [6 bytes]"), std::string::npos) << "nothing breaks the line";
}

TEST(TextTrace, tells_escapes) {
    const auto told = [](const Bytes& in) { return toText({.function = INDEX_DrvEscape, .result = 1, .numbers = {9100, 0}, .blocks = {in}}); };
    EXPECT_EQ(told(narrow("Wood")), "DrvEscape code 9100 out bytes 0 in [\"Wood\"] = 1");
    EXPECT_EQ(told(bytesOf(std::uint32_t{17})), "DrvEscape code 9100 out bytes 0 in [17] = 1");
    EXPECT_EQ(told({'B', 0xE4, 'r'}), "DrvEscape code 9100 out bytes 0 in [\"B\u00E4r\"] = 1");
    EXPECT_EQ(told({}), "DrvEscape code 9100 out bytes 0 in [none] = 1");
    EXPECT_EQ(told({1, 2}), "DrvEscape code 9100 out bytes 0 in [2 bytes] = 1");
}

TEST(TextTrace, tells_what_it_does_not_know) {
    EXPECT_EQ(toText({.function = 99, .result = -1, .numbers = {5}, .blocks = {{1}}}), "function 99 5 block [1 byte] = -1");
    EXPECT_EQ(toText({.function = INDEX_DrvDitherColor, .result = 2, .numbers = {1, 0, 0xFF}}), "DrvDitherColor instance 1 mode 0 rgb (255,0,0) = 2");
}

}  // namespace
}  // namespace morvil::trace
