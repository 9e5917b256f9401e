// Pictures of all records, and gradients.
#include <gtest/gtest.h>

#include "engine/ImageColours.h"
#include "support/PlayedMetafile.h"

namespace morvil::test {
namespace {

namespace emr = engine::emr;
using Kind = CanvasCall::Kind;

constexpr std::int32_t kSourceCopy = 0x00CC0020;

// A blit's members up to the places: bounds, target, code, source corner, source transform, background, usage.
Bytes blit(std::initializer_list<std::int32_t> target, std::int32_t code, std::int32_t x = 0, std::int32_t y = 0) {
    return Bytes().zeros(16).all32(target).i32(code).i32(x).i32(y).floats({1, 0, 0, 1, 0, 0}).u32(0).u32(0);
}

const Bytes& picture() {  // 4 x 2 pixels, upper row first
    static const Bytes header = dibHeader(4, -2, 24);
    return header;
}
Bytes pictureBits() {
    Bytes bits;
    for (unsigned i = 0; i < 8; ++i) bits.u8(i).u8(i).u8(i);
    return bits;
}

CanvasCall onlyCall(const PlayedMetafile& played) {
    EXPECT_EQ(played.calls.size(), 1U) << played.reason();
    return played.calls.empty() ? CanvasCall{} : played.calls[0];
}

TEST(MetafileImages, bitBlt_givesImageAndCode) {
    MetafileBuilder builder;
    builder.add(emr::kSETSTRETCHBLTMODE, {4}).addPicture(emr::kBITBLT, blit({10, 20, 3, 2}, 0x008800C6, 1, 0), picture(), pictureBits());
    const CanvasCall call = onlyCall(playCleanly(builder, {0, 0, 1999, 1999}));
    EXPECT_EQ(call.kind, Kind::Image);
    EXPECT_EQ(describe(call.target), "20,40 26,44");
    EXPECT_EQ(describe(call.source), "1,0 4,2");
    EXPECT_EQ(call.rop4, 0x8888U);
    EXPECT_EQ(call.stretchMode, 4);
    EXPECT_FALSE(call.mask);
    EXPECT_EQ(colourAt(call.image, 3, 1), 0x070707U);
}

TEST(MetafileImages, stretchBlt_placesMirrorsAndCuts) {
    const auto stretched = [](std::initializer_list<std::int32_t> target, std::int32_t x, std::int32_t y, std::int32_t width,
                              std::int32_t height) {
        MetafileBuilder builder;
        builder.addPicture(emr::kSTRETCHBLT, blit(target, kSourceCopy, x, y), picture(), pictureBits(), Bytes().all32({width, height}));
        const auto played = playCleanly(builder);
        if (played.calls.empty()) return std::string("nothing");
        return describe(played.calls[0].target) + " from " + describe(played.calls[0].source);
    };
    EXPECT_EQ(stretched({0, 0, 40, 20}, 0, 0, 4, 2), "0,0 40,20 from 0,0 4,2");
    EXPECT_EQ(stretched({40, 20, -40, -20}, 0, 0, 4, 2), "40,20 0,0 from 0,0 4,2");
    EXPECT_EQ(stretched({0, 0, 40, 20}, 4, 0, -4, 2), "40,0 0,20 from 0,0 4,2");
    EXPECT_EQ(stretched({0, 0, 40, 20}, 0, 2, 4, -2), "0,20 40,0 from 0,0 4,2");
    EXPECT_EQ(stretched({40, 0, -40, 20}, 4, 0, -4, 2), "0,0 40,20 from 0,0 4,2");  // mirrored twice
    EXPECT_EQ(stretched({0, 0, 80, 20}, -4, 0, 8, 2), "40,0 80,20 from 0,0 4,2");   // half of the source does not exist
    EXPECT_EQ(stretched({0, 0, 80, 40}, 2, 1, 8, 4), "0,0 20,10 from 2,1 4,2");
    EXPECT_EQ(stretched({0, 0, 80, 20}, 4, 0, 8, 2), "nothing");
    EXPECT_EQ(stretched({0, 0, 80, 20}, 0, 0, 0, 2), "nothing");
    EXPECT_EQ(stretched({0, 0, 0, 20}, 0, 0, 4, 2), "nothing");
}

TEST(MetafileImages, codesWithoutSource_fillWithTheBrush) {
    const auto filled = [](ULONG type, std::int32_t code) {
        MetafileBuilder builder;
        builder.add(emr::kCREATEBRUSHINDIRECT, {1, 0, 0xFF, 0}).add(emr::kSELECTOBJECT, {1});
        Bytes body = blit({30, 20, -20, 10}, code).zeros(16);
        if (type == emr::kSTRETCHBLT) body.zeros(8);
        return play(builder.add(type, body));
    };
    for (const ULONG type : {emr::kBITBLT, emr::kSTRETCHBLT}) {
        const auto copied = filled(type, 0x00F00021);
        EXPECT_EQ(describe(onlyCall(copied).target), "10,20 30,30");
        EXPECT_EQ(onlyCall(copied).kind, Kind::PatBlt);
        EXPECT_EQ(onlyCall(copied).brush.colour, 0xFFU);
        EXPECT_EQ(onlyCall(filled(type, 0x00000042)).rop3, 0x00);
        EXPECT_EQ(onlyCall(filled(type, 0x00550009)).rop3, 0x55);
        const auto nothing = filled(type, 0x00AA0029);
        EXPECT_TRUE(nothing.calls.empty());
        EXPECT_FALSE(nothing.damage);
        EXPECT_NE(filled(type, kSourceCopy).reason().find("needs a picture"), std::string::npos);
    }
}

Bytes maskHeader(std::int32_t width, std::int32_t height) { return dibHeader(width, height, 1, {0, 0xFFFFFF}); }

// MaskBlt and PlgBlt carry two pictures: `fixed` up to the first places, then `between`, then the second places.
MetafileBuilder& addMasked(MetafileBuilder& builder, ULONG type, Bytes fixed, const Bytes& between, const Bytes& mask,
                           const Bytes& maskBits) {
    const auto start = static_cast<std::uint32_t>(8 + fixed.size() + 16 + between.size() + 16);
    const auto header = static_cast<std::uint32_t>(picture().size());
    const auto bits = static_cast<std::uint32_t>(pictureBits().size());
    const auto maskSize = static_cast<std::uint32_t>(mask.size());
    fixed.u32(start).u32(header).u32(start + header).u32(bits).append(between);
    fixed.u32(mask.size() == 0 ? 0 : start + header + bits).u32(maskSize);
    fixed.u32(start + header + bits + maskSize).u32(static_cast<std::uint32_t>(maskBits.size()));
    return builder.add(type, fixed.append(picture()).append(pictureBits()).append(mask).append(maskBits));
}

TEST(MetafileImages, maskBlt_givesBothCodesAndTheMask) {
    const std::int32_t code = static_cast<std::int32_t>(0xAACC0020);
    MetafileBuilder builder;
    addMasked(builder, emr::kMASKBLT, blit({10, 20, 3, 2}, code, 1, 0), Bytes().all32({2, 1, 0}), maskHeader(8, 8), Bytes().zeros(32));
    const CanvasCall call = onlyCall(playCleanly(builder));
    EXPECT_EQ(call.rop4, 0xAACCU);
    ASSERT_TRUE(call.mask);
    EXPECT_EQ(call.mask->width, 8);
    EXPECT_EQ(call.maskOrigin.x, 2);
    EXPECT_EQ(call.maskOrigin.y, 1);

    MetafileBuilder small;  // a mask that ends early cuts the picture
    addMasked(small, emr::kMASKBLT, blit({10, 20, 4, 2}, code), Bytes().all32({1, 0, 0}), maskHeader(3, 1), Bytes().zeros(4));
    EXPECT_EQ(describe(onlyCall(playCleanly(small)).source), "0,0 2,1");

    MetafileBuilder none;  // without a mask it is a plain blit
    addMasked(none, emr::kMASKBLT, blit({10, 20, 4, 2}, code), Bytes().all32({0, 0, 0}), Bytes(), Bytes());
    EXPECT_EQ(onlyCall(playCleanly(none)).rop4, 0xCCCCU);

    MetafileBuilder deep;
    addMasked(deep, emr::kMASKBLT, blit({10, 20, 4, 2}, code), Bytes().all32({0, 0, 0}), dibHeader(4, 2, 24), Bytes().zeros(24));
    EXPECT_NE(play(deep).reason().find("the mask has more than one bit per pixel"), std::string::npos);
}

Bytes parallelogram(std::initializer_list<std::int32_t> corners) {
    return Bytes().zeros(16).all32(corners).all32({0, 0, 4, 2}).floats({1, 0, 0, 1, 0, 0}).u32(0).u32(0);
}

TEST(MetafileImages, parallelogramBlt_uprightAndFlipped_isGivenAsItIs) {
    MetafileBuilder builder;
    addMasked(builder, emr::kPLGBLT, parallelogram({40, 20, 0, 20, 40, 0}), Bytes().all32({0, 0, 0}), Bytes(), Bytes());
    const CanvasCall call = onlyCall(playCleanly(builder));
    EXPECT_EQ(describe(call.target), "40,20 0,0");
    EXPECT_EQ(describe(call.source), "0,0 4,2");
    EXPECT_EQ(call.rop4, 0xCCCCU);
}

// A quarter turn to the right: the upper row of the source stands at the right.
TEST(MetafileImages, turnedPictures_areComputedPixelByPixel) {
    MetafileBuilder direct;
    addMasked(direct, emr::kPLGBLT, parallelogram({102, 100, 102, 104, 100, 100}), Bytes().all32({0, 0, 0}), Bytes(), Bytes());
    MetafileBuilder world;
    world.add(emr::kSETWORLDTRANSFORM, Bytes().floats({0, 1, -1, 0, 102, 100}));
    world.addPicture(emr::kBITBLT, blit({0, 0, 4, 2}, kSourceCopy), picture(), pictureBits());
    for (const MetafileBuilder& builder : {direct, world}) {
        const CanvasCall call = onlyCall(playCleanly(builder));
        EXPECT_EQ(call.rop4, 0xAACCU);
        ASSERT_TRUE(call.mask);
        std::map<std::pair<LONG, LONG>, COLORREF> pixels;  // by place on the page
        for (LONG y = 0; y < call.image.height; ++y) {
            for (LONG x = 0; x < call.image.width; ++x) {
                if (engine::pixelAt(*call.mask, x, y) == 1)
                    pixels[{call.target.left + x, call.target.top + y}] = colourAt(call.image, x, y);
            }
        }
        const std::map<std::pair<LONG, LONG>, COLORREF> expected{{{101, 100}, 0x000000}, {{101, 101}, 0x010101}, {{101, 102}, 0x020202},
                                                                 {{101, 103}, 0x030303}, {{100, 100}, 0x040404}, {{100, 101}, 0x050505},
                                                                 {{100, 102}, 0x060606}, {{100, 103}, 0x070707}};
        EXPECT_EQ(pixels, expected);
    }
}

TEST(MetafileImages, turnedWithMask_drawsOnlyWhereTheMaskIsSet) {
    MetafileBuilder builder;
    const Bytes maskBits = Bytes().u32(0x00).u32(0x80);  // lower row first: only the upper left pixel
    addMasked(builder, emr::kPLGBLT, parallelogram({102, 100, 102, 104, 100, 100}), Bytes().all32({0, 0, 0}), maskHeader(4, 2), maskBits);
    const CanvasCall call = onlyCall(playCleanly(builder));
    LONG set = 0;
    for (LONG y = 0; y < call.mask->height; ++y) {
        for (LONG x = 0; x < call.mask->width; ++x) set += static_cast<LONG>(engine::pixelAt(*call.mask, x, y));
    }
    EXPECT_EQ(set, 1);
    EXPECT_EQ(engine::pixelAt(*call.mask, 101 - call.target.left, 100 - call.target.top), 1U);
}

TEST(MetafileImages, stretchBits_countsBottomUpSourcesFromBelow) {
    const auto source = [](std::int32_t height, std::int32_t y) {
        MetafileBuilder builder;
        const Bytes fixed = Bytes().zeros(16).all32({10, 20, 0, y, 4, 1});
        builder.addPicture(emr::kSTRETCHDIBITS, fixed, dibHeader(4, height, 24), pictureBits(),
                           Bytes().u32(0).i32(kSourceCopy).all32({40, 10}));
        const CanvasCall call = onlyCall(playCleanly(builder));
        EXPECT_EQ(describe(call.target), "10,20 50,30");
        return describe(call.source);
    };
    EXPECT_EQ(source(2, 0), "0,1 4,2");
    EXPECT_EQ(source(2, 1), "0,0 4,1");
    EXPECT_EQ(source(-2, 0), "0,0 4,1");
    EXPECT_EQ(source(-2, 1), "0,1 4,2");
    MetafileBuilder filled;
    filled.add(emr::kSTRETCHDIBITS, Bytes().zeros(16).all32({10, 20, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x00FF0062, 5, 6}));
    EXPECT_EQ(describe(onlyCall(playCleanly(filled)).target), "10,20 15,26");
}

TEST(MetafileImages, setBitsToDevice_drawsTheRowsThatAreThere) {
    // A bitmap of 4 x 8 pixels of which the bits hold two rows.
    const auto drawn = [](std::int32_t height, std::int32_t firstRow, std::int32_t y, std::int32_t rows) {
        MetafileBuilder builder;
        builder.add(emr::kSETWORLDTRANSFORM, Bytes().floats({3, 0, 0, 3, 0, 0}));  // moves the corner, not the size
        const Bytes fixed = Bytes().zeros(16).all32({10, 20, 0, y, 4, rows});
        builder.addPicture(emr::kSETDIBITSTODEVICE, fixed, dibHeader(4, height, 24), pictureBits(), Bytes().all32({0, firstRow, 2}));
        const auto played = play(builder, {0, 0, 1999, 1999});
        if (played.damage) return played.reason().substr(played.reason().rfind(": ") + 2);
        return played.calls.empty() ? std::string("nothing")
                                    : describe(played.calls[0].target) + " from " + describe(played.calls[0].source);
    };
    EXPECT_EQ(drawn(8, 0, 0, 2), "60,120 68,124 from 0,0 4,2");
    EXPECT_EQ(drawn(8, 0, 0, 8), "60,132 68,136 from 0,0 4,2");  // the whole bitmap asked for, its lowest two rows given
    EXPECT_EQ(drawn(8, 6, 0, 8), "60,120 68,124 from 0,0 4,2");  // its highest two
    EXPECT_EQ(drawn(-8, 2, 0, 8), "60,124 68,128 from 0,0 4,2");
    EXPECT_EQ(drawn(8, 7, 0, 8), "rows that the bitmap does not have");
    EXPECT_EQ(drawn(8, -1, 0, 8), "rows that the bitmap does not have");
}

TEST(MetafileImages, alphaBlend_opaqueMixedAndTransparent) {
    const auto blended = [](unsigned constantAlpha, unsigned format, const Bytes& header, const Bytes& bits) {
        MetafileBuilder builder;
        const std::int32_t function = static_cast<std::int32_t>(constantAlpha << 16 | format << 24);
        builder.addPicture(emr::kALPHABLEND, blit({10, 20, 2, 1}, function), header, bits, Bytes().all32({2, 1}));
        return play(builder);
    };
    const Bytes header = dibHeader(2, -1, 32);
    const Bytes bits = Bytes().u32(0x80400000).u32(0x00000000);  // half-transparent dark red, fully transparent
    const CanvasCall opaque = onlyCall(blended(255, 0, header, bits));
    EXPECT_EQ(opaque.rop4, 0xCCCCU);
    EXPECT_FALSE(opaque.mask);
    EXPECT_EQ(colourAt(opaque.image, 0, 0), 0x000040U);

    const CanvasCall perPixel = onlyCall(blended(255, 1, header, bits));
    EXPECT_EQ(perPixel.rop4, 0xAACCU);
    ASSERT_TRUE(perPixel.mask);
    EXPECT_EQ(engine::pixelAt(*perPixel.mask, 0, 0), 1U);
    EXPECT_EQ(engine::pixelAt(*perPixel.mask, 1, 0), 0U);              // stays as it is
    EXPECT_EQ(colourAt(perPixel.image, 0, 0), RGB(0xBF, 0x7F, 0x7F));  // over white

    const CanvasCall constant = onlyCall(blended(128, 0, header, bits));
    EXPECT_EQ(colourAt(constant.image, 1, 0), RGB(0x7F, 0x7F, 0x7F));
    EXPECT_TRUE(blended(0, 0, header, bits).calls.empty());
    EXPECT_NE(blended(255, 1, dibHeader(2, -1, 24), Bytes().zeros(8)).reason().find("has no transparency"), std::string::npos);
}

TEST(MetafileImages, transparentBlt_masksTheKeyColour) {
    MetafileBuilder builder;
    builder.addPicture(emr::kTRANSPARENTBLT, blit({10, 20, 4, 2}, 0x020202), picture(), pictureBits(), Bytes().all32({4, 2}));
    const CanvasCall call = onlyCall(playCleanly(builder));
    EXPECT_EQ(call.rop4, 0xAACCU);
    ASSERT_TRUE(call.mask);
    for (LONG i = 0; i < 8; ++i) EXPECT_EQ(engine::pixelAt(*call.mask, i % 4, i / 4), i == 2 ? 0U : 1U) << i;
}

TEST(MetafileImages, hugeTargets_areCutToThePage) {
    MetafileBuilder builder;
    builder.addPicture(emr::kSTRETCHBLT, blit({-30000000, -30000000, 60000000, 60000000}, kSourceCopy), picture(), pictureBits(),
                       Bytes().all32({4, 2}));
    const CanvasCall call = onlyCall(playCleanly(builder));
    EXPECT_EQ(describe(call.target), "0,0 1000,1000");
    EXPECT_EQ(call.image.width, 1000);
    EXPECT_EQ(colourAt(call.image, 999, 999), 0x060606U);
}

TEST(MetafileImages, withoutEnd_areStopped) {
    MetafileBuilder builder;
    const Bytes turned = Bytes().floats({0.8F, 0.6F, -0.6F, 0.8F, 0, 0});
    builder.add(emr::kSETWORLDTRANSFORM, turned);
    for (int i = 0; i < 400; ++i) builder.addPicture(emr::kBITBLT, blit({0, 0, 4, 2}, kSourceCopy), picture(), pictureBits());
    EXPECT_FALSE(play(builder).damage);
    MetafileBuilder large;
    large.add(emr::kSETWORLDTRANSFORM, turned);
    const Bytes tail = Bytes().all32({4, 2});
    for (int i = 0; i < 500; ++i) {
        large.addPicture(emr::kSTRETCHBLT, blit({-4000, -4000, 8000, 8000}, kSourceCopy), picture(), pictureBits(), tail);
    }
    engine::MetafilePage page(large.metafile(), {0, 0, 199, 199});
    RecordingCanvas canvas({200, 200});
    page.play(canvas);
    ASSERT_TRUE(page.damage());
    EXPECT_NE(page.damage()->reason.find("too many pixels"), std::string::npos);
    EXPECT_GT(canvas.calls.size(), 400U);
}

TEST(MetafileImages, textColours_areToldToTheCanvas) {
    MetafileBuilder builder;
    builder.add(emr::kSETTEXTCOLOR, {0xFF}).add(emr::kSETBKCOLOR, {0xFF00});
    builder.addPicture(emr::kBITBLT, blit({10, 20, 4, 2}, kSourceCopy), picture(), pictureBits());
    const CanvasCall call = onlyCall(playCleanly(builder));
    EXPECT_EQ(call.textForeground, 0xFFU);
    EXPECT_EQ(call.textBackground, 0xFF00U);
}

Bytes vertex(std::int32_t x, std::int32_t y, unsigned red, unsigned green, unsigned blue) {
    return Bytes().i32(x).i32(y).u16(red).u16(green).u16(blue).u16(0);
}

Bytes gradient(std::uint32_t vertices, std::uint32_t figures, std::uint32_t mode) {
    return Bytes().zeros(16).u32(vertices).u32(figures).u32(mode);
}

TEST(MetafileGradient, rectangles_runAlongOneDirection) {
    const auto drawn = [](std::uint32_t mode, bool swapped) {
        MetafileBuilder builder;
        const Bytes first = vertex(10, 20, 0, 0, 0);
        const Bytes second = vertex(18, 24, 0x8000, 0x4000, 0xFF00);
        Bytes body = gradient(2, 1, mode);
        body.append(swapped ? second : first).append(swapped ? first : second).all32({0, 1});
        return onlyCall(playCleanly(builder.add(emr::kGRADIENTFILL, body)));
    };
    const CanvasCall across = drawn(0, false);
    EXPECT_EQ(describe(across.target), "10,20 18,24");
    EXPECT_EQ(across.image.width, 8);
    EXPECT_EQ(across.image.height, 1);
    EXPECT_EQ(colourAt(across.image, 0, 0), RGB(0x08, 0x04, 0x0F));
    EXPECT_EQ(colourAt(across.image, 7, 0), RGB(0x78, 0x3C, 0xEF));
    EXPECT_EQ(colourAt(drawn(0, true).image, 0, 0), RGB(0x08, 0x04, 0x0F));  // the order of the corners does not matter
    const CanvasCall down = drawn(1, false);
    EXPECT_EQ(down.image.width, 1);
    EXPECT_EQ(down.image.height, 4);
    EXPECT_EQ(colourAt(down.image, 0, 3), RGB(0x70, 0x38, 0xDF));
}

TEST(MetafileGradient, triangle_isFilledInsideOnly) {
    MetafileBuilder builder;
    Bytes body = gradient(3, 1, 2);
    body.append(vertex(10, 10, 0xFF00, 0, 0)).append(vertex(30, 10, 0, 0xFF00, 0)).append(vertex(10, 30, 0, 0, 0xFF00)).all32({0, 1, 2});
    const CanvasCall call = onlyCall(playCleanly(builder.add(emr::kGRADIENTFILL, body)));
    ASSERT_TRUE(call.mask);
    const auto at = [&](LONG x, LONG y) { return engine::pixelAt(*call.mask, x - call.target.left, y - call.target.top); };
    EXPECT_EQ(at(10, 10), 1U);
    EXPECT_EQ(at(28, 10), 1U);
    EXPECT_EQ(at(9, 10), 0U);
    EXPECT_EQ(at(25, 25), 0U);
    const COLORREF corner = colourAt(call.image, 10 - call.target.left, 10 - call.target.top);
    EXPECT_GT(GetRValue(corner), 0xF0);
    EXPECT_LT(GetGValue(corner), 0x10);
}

TEST(MetafileGradient, damaged_drawsNothing) {
    const Bytes two = vertex(0, 0, 0, 0, 0).append(vertex(9, 9, 0, 0, 0));
    const struct {
        const char* reason;
        Bytes body;
    } cases[] = {
        {"there is no gradient mode 3", gradient(2, 1, 3).append(two).all32({0, 1})},
        {"there is no vertex 2", gradient(2, 1, 0).append(two).all32({0, 2})},
        {"vertices from byte 36 do not fit", gradient(0x10000001, 1, 0).append(two).all32({0, 1})},
        {"figures from byte 68 do not fit", gradient(2, 0x20000001, 0).append(two).all32({0, 1})},
    };
    for (const auto& c : cases) {
        const auto played = play(MetafileBuilder().add(emr::kGRADIENTFILL, c.body));
        EXPECT_NE(played.reason().find(c.reason), std::string::npos) << played.reason();
        EXPECT_TRUE(played.calls.empty());
    }
}

TEST(MetafileImages, placesThatLie_areDamage) {
    // Offset and size of header and bits, each beyond the record in turn.
    for (int which = 0; which < 4; ++which) {
        for (const std::uint32_t value : {0xFFFFFFFFU, 0x80000000U, 100000U}) {
            MetafileBuilder builder;
            builder.addPicture(emr::kBITBLT, blit({10, 20, 4, 2}, kSourceCopy), picture(), pictureBits());
            auto file = builder.file();
            const std::size_t at = builder.lastRecord() + 84 + 4 * static_cast<std::size_t>(which);
            for (std::size_t i = 0; i < 4; ++i) file[at + i] = static_cast<std::uint8_t>(value >> (8 * i));
            engine::MetafileError error;
            engine::MetafilePage page(engine::Metafile::parse(file, error), {0, 0, 999, 999});
            RecordingCanvas canvas;
            page.play(canvas);
            EXPECT_TRUE(canvas.calls.empty());
            ASSERT_TRUE(page.damage());
            EXPECT_NE(page.damage()->reason.find("do not fit"), std::string::npos);
        }
    }
}

}  // namespace
}  // namespace morvil::test
