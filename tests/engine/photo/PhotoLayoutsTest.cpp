// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/ConversionInput.h"
#include "engine/texts/ProcessorError.h"
#include "engine/texts/WarningTexts.h"
#include "tests/support/Paths.h"
#include "tests/support/SpatialPhotos.h"
#include "tests/support/TestMedia.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace lumetwin::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

Raster above(const Raster &upper, const Raster &lower) {
    Raster both(upper.width, upper.height * 2);
    std::copy(upper.samples.begin(), upper.samples.end(), both.samples.begin());
    std::copy(lower.samples.begin(), lower.samples.end(),
              both.samples.begin() + static_cast<std::ptrdiff_t>(upper.samples.size()));
    return both;
}

class PhotoLayouts : public testing::Test {
protected:
    Raster left = drawn(160, 100, 1);
    Raster right = drawn(160, 100, 2);
    ConversionSettings settings;
    TemporaryFolder folder;

    std::vector<Warning> convert(const ConversionInput &input) {
        return convertFile(MediaOperations::inProcess(), ConversionKind::sbsImageToSpatial, settings, input,
                           folder / "out.heic", {}, SystemVersion::current())
            .warnings;
    }

    std::vector<Warning> convert(const Raster &picture, const std::string &name,
                                 const std::vector<std::string> &options = {}) {
        const std::string kind = name.ends_with("jps") ? "in.jpg" : name.ends_with("pns") ? "in.png" : name;
        writeWithMagick(picture, folder / kind, options);
        if (kind != name)
            std::filesystem::rename(folder / kind, folder / name);
        return convert(media::InputFile(folder / name));
    }

    /// The eyes of the result are those of the source.
    void expectEyes(const Raster &first, const Raster &second, double quality = 30) {
        const std::vector<Raster> eyes = decodedByJudge(folder / "out.heic");
        ASSERT_EQ(eyes.size(), 2U);
        ASSERT_EQ(eyes[0].width, 160);
        ASSERT_EQ(eyes[0].height, 100);
        EXPECT_GT(psnr(eyes[0], first), quality);
        EXPECT_GT(psnr(eyes[1], second), quality);
    }
};

TEST_F(PhotoLayouts, overUnder) {
    settings.inputLayout = InputLayout::overUnder;
    convert(above(left, right), "in.png");
    expectEyes(left, right, 34);
    convert(above(left, right), "in.jpg", {"-quality", "98"});
    expectEyes(left, right, 34);
    settings.swapLeftRight = true;
    convert(above(left, right), "in.png");
    expectEyes(right, left, 34);
}

TEST_F(PhotoLayouts, anOddLastRowBelongsToNeitherEye) {
    settings.inputLayout = InputLayout::overUnder;
    Raster odd(160, 201);
    const Raster both = above(left, right);
    std::copy(both.samples.begin(), both.samples.end(), odd.samples.begin());
    convert(odd, "in.png");
    expectEyes(left, right, 34);
}

TEST_F(PhotoLayouts, halvesGetTheirTrueShape) {
    settings.inputLayout = InputLayout::halfSideBySide;
    convert(sideBySide(left, right), "in.png", {"-resize", "50%x100%!"});
    expectEyes(left, right, 24);
    settings.inputLayout = InputLayout::halfOverUnder;
    convert(above(left, right), "in.png", {"-resize", "100%x50%!"});
    expectEyes(left, right, 24);
}

TEST_F(PhotoLayouts, aHalfIsResizedByItsTrueShape) {
    settings.inputLayout = InputLayout::halfSideBySide;
    settings.enableResize = true;
    settings.resizeWidth = 160;
    settings.resizeHeight = 100;
    settings.resizeMode = ResizeMode::letterbox;
    convert(sideBySide(left, right), "in.png", {"-resize", "50%x100%!"});
    expectEyes(left, right, 24);
}

TEST_F(PhotoLayouts, formatsForCrossedEyesArePutRight) {
    for (const char *name : {"in.jps", "in.pns"}) {
        const std::vector<Warning> warnings = convert(sideBySide(right, left), name, {"-quality", "97"});
        ASSERT_EQ(warnings.size(), 1U) << name;
        EXPECT_EQ(warnings[0].kind, WarningKind::eyesPutRight);
        expectEyes(left, right);
    }
}

TEST_F(PhotoLayouts, twoFiles) {
    writeWithMagick(left, folder / "a_L.png");
    writeWithMagick(right, folder / "a_R.jpg", {"-quality", "98"});
    const ConversionInput pair(media::InputFile(folder / "a_L.png"), media::InputFile(folder / "a_R.jpg"));
    convert(pair);
    expectEyes(left, right, 34);
    settings.swapLeftRight = true;
    convert(pair);
    expectEyes(right, left, 34);
}

TEST_F(PhotoLayouts, twoFilesOfDifferentSizeAreRefused) {
    writeWithMagick(left, folder / "a_L.png");
    writeWithMagick(drawn(150, 100), folder / "a_R.png");
    try {
        convert({media::InputFile(folder / "a_L.png"), media::InputFile(folder / "a_R.png")});
        FAIL() << "no error";
    } catch (const ProcessorError &error) {
        EXPECT_THAT(error.what(), HasSubstr("160 × 100 and 150 × 100"));
    }
}

TEST_F(PhotoLayouts, withoutASecondEyeAreRefused) {
    for (const InputLayout layout : {InputLayout::twoPictures, InputLayout::twoStreams, InputLayout::twoFiles}) {
        settings.inputLayout = layout;
        EXPECT_THROW(convert(sideBySide(left, right), "in.png"), ProcessorError);
    }
}

TEST_F(PhotoLayouts, ofANameOnlyWarn) {
    const std::vector<Warning> warnings = convert(sideBySide(left, right), "in.half-sbs.png");
    ASSERT_EQ(warnings.size(), 1U);
    EXPECT_THAT(warningText(warnings[0]), HasSubstr("side by side, half width"));
    expectEyes(left, right, 34);
    EXPECT_THAT(convert(sideBySide(left, right), "in.png"), IsEmpty());
}

TEST_F(PhotoLayouts, theSampleOfACameraWithTwoLenses) {
    const auto samples = sampleMedia();
    if (!samples)
        GTEST_SKIP() << "no folder of samples";
    const std::filesystem::path layouts = *samples / "other-layouts";
    convert(media::InputFile(layouts / "Panasonic-DMC-GX8.mpo"));
    const std::vector<Raster> eyes = decodedByJudge(folder / "out.heic");
    ASSERT_EQ(eyes.size(), 2U);
    // The pictures beside it have lost their last row.
    const auto withoutLastRow = [](const Raster &eye) { return part(eye, 0, 0, eye.width, eye.height - 1); };
    EXPECT_GT(psnr(withoutLastRow(eyes[0]), readWithMagick(layouts / "Panasonic-DMC-GX8-left.jpg")), 30);
    EXPECT_GT(psnr(withoutLastRow(eyes[1]), readWithMagick(layouts / "Panasonic-DMC-GX8-right.jpg")), 30);
}

} // namespace
} // namespace lumetwin::test
