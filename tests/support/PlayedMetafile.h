// PlayedMetafile.h - a metafile played onto a recording canvas of 1000 x 1000 pixels, its frame filling the page.
#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "support/MetafileBuilder.h"
#include "support/RecordingCanvas.h"

namespace morvil::test {

struct PlayedMetafile {
    std::vector<CanvasCall> calls;
    std::map<ULONG, ULONG> skipped;
    std::optional<engine::MetafileError> damage;

    [[nodiscard]] std::string paths() const {
        std::string text;
        for (const CanvasCall& call : calls) text += (text.empty() ? "" : "\n") + describe(call.path);
        return text;
    }
    [[nodiscard]] std::string reason() const { return damage ? damage->reason : ""; }
};

inline PlayedMetafile play(const MetafileBuilder& builder, RECTL target = {0, 0, 999, 999}) {
    engine::MetafileError error;
    const auto metafile = engine::Metafile::parse(builder.file(), error);
    EXPECT_NE(metafile, nullptr) << error.reason;
    if (!metafile) return {};
    engine::MetafilePage page(metafile, target);
    RecordingCanvas canvas;
    page.play(canvas);
    return {std::move(canvas.calls), page.skipped(), page.damage()};
}

// For tests in which nothing may be damaged or skipped.
inline PlayedMetafile playCleanly(const MetafileBuilder& builder, RECTL target = {0, 0, 999, 999}) {
    PlayedMetafile played = play(builder, target);
    EXPECT_FALSE(played.damage) << played.reason();
    EXPECT_TRUE(played.skipped.empty());
    return played;
}

}  // namespace morvil::test
