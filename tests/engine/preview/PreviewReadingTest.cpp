// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/preview/PreviewReading.h"

#include "engine/preview/PreviewSize.h"
#include "media/MediaError.h"
#include "media/MemoryFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <sys/mman.h>
#include <unistd.h>

namespace lumetwin::test {
namespace {

const PreviewRequest request{
    .layout = {}, .position = 0, .detail = PreviewDetail::near, .maximumWidth = 40, .maximumHeight = 20};

PreviewFacts factsOf(int width, int height, bool hasBothEyes) {
    PreviewFacts facts;
    facts.width = width;
    facts.height = height;
    facts.hasBothEyes = hasBothEyes;
    return facts;
}

media::MediaReason reasonOf(const PreviewFacts &facts, const media::OutputFile &pixels) {
    try {
        readPixels(facts, request, pixels);
    } catch (const media::MediaError &error) {
        return error.reason();
    }
    return media::MediaReason::other;
}

TEST(PreviewReading, copiesTheEyes) {
    const media::OutputFile pixels = pixelFile(request, "a.jpg");
    const std::array<std::uint8_t, 8> left{1, 2, 3, 255, 4, 5, 6, 255};
    const std::array<std::uint8_t, 8> right{7, 8, 9, 255, 10, 11, 12, 255};
    pixels.writeAt(0, left);
    pixels.writeAt(left.size(), right);
    const StereoPreview preview = readPixels(factsOf(2, 1, true), request, pixels);
    EXPECT_TRUE(std::ranges::equal(*preview.left.pixels, left));
    EXPECT_TRUE(std::ranges::equal(*preview.right.pixels, right));
    EXPECT_EQ(preview.right.width, 2);
    EXPECT_EQ(preview.right.height, 1);
    EXPECT_TRUE(readPixels(factsOf(2, 1, false), request, pixels).right.isEmpty());
}

TEST(PreviewReading, sizesBeyondTheRequestAreRefused) {
    const media::OutputFile pixels = pixelFile(request, "a.jpg");
    EXPECT_NO_THROW(readPixels(factsOf(40, 20, true), request, pixels));
    for (const auto &[width, height] : {std::pair(41, 20), {40, 21}, {0, 20}, {40, 0}, {-4, 20}, {1 << 30, 1 << 30}})
        EXPECT_EQ(reasonOf(factsOf(width, height, true), pixels), media::MediaReason::contradictoryParameters);
}

TEST(PreviewReading, aCutOffFileIsAnError) {
    const media::OutputFile pixels = pixelFile(request, "a.jpg");
    pixels.truncate(2 * 40 * 20 * 4 - 1);
    EXPECT_EQ(reasonOf(factsOf(40, 20, true), pixels), media::MediaReason::endsEarly);
    EXPECT_NO_THROW(readPixels(factsOf(40, 20, false), request, pixels));
}

TEST(PreviewReading, theFileOfPixelsCannotGrow) {
    const media::OutputFile pixels = media::makeMemoryFile(100, "a.jpg");
    EXPECT_EQ(pixels.size(), 100U);
    EXPECT_THROW(pixels.truncate(101), media::MediaError);
    const std::array<std::uint8_t, 10> bytes{};
    EXPECT_NO_THROW(pixels.writeAt(90, bytes));
    EXPECT_THROW(pixels.writeAt(95, std::array<std::uint8_t, 10>{}), media::MediaError);
    EXPECT_EQ(pixels.size(), 100U);
}

TEST(PreviewReading, limitsAreThoseOfPictures) {
    PreviewRequest large = request;
    large.maximumWidth = large.maximumHeight = 1 << 30;
    const PreviewSize limits = previewLimits(large);
    EXPECT_EQ(limits.width, 65535);
    EXPECT_LE(limits.bytes(), std::uint64_t{4} << 28);
    large.maximumWidth = large.maximumHeight = -3;
    EXPECT_EQ(previewLimits(large), (PreviewSize{1, 1}));
}

TEST(PreviewReading, sizesKeepTheShape) {
    EXPECT_EQ(fittedPreview(4000, 3000, 1, 1280, 720), (PreviewSize{960, 720}));
    EXPECT_EQ(fittedPreview(4000, 1000, 1, 1280, 720), (PreviewSize{1280, 320}));
    EXPECT_EQ(fittedPreview(400, 100, 1, 1280, 720), (PreviewSize{400, 100})) << "never enlarged";
    EXPECT_EQ(fittedPreview(60000, 10, 1, 600, 600), (PreviewSize{600, 1}));
    EXPECT_EQ(fittedPreview(720, 576, 2, 4000, 4000), (PreviewSize{720, 288})) << "wide pixels";
    EXPECT_EQ(fittedPreview(720, 576, 0.5, 4000, 4000), (PreviewSize{360, 576})) << "narrow pixels";
}

} // namespace
} // namespace lumetwin::test
