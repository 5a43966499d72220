// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/VideoPackings.h"

#include "media/hevc/FramePackingUnit.h"
#include "tests/media/bmff/BoxBuilder.h"
#include "tests/support/BoxEdits.h"
#include "tests/support/Clips.h"
#include "tests/support/Paths.h"

#include <gtest/gtest.h>

namespace lumetwin::media {
namespace {

using Arrangement = StereoPacking::Arrangement;
using Packing = std::optional<StereoPacking>;
using test::TemporaryFolder;

constexpr StereoPacking sideBySide{Arrangement::sideBySide, false, false};
constexpr StereoPacking overUnder{Arrangement::overUnder, false, false};

StereoPacking half(StereoPacking packing) {
    packing.isHalf = true;
    return packing;
}

StereoPacking rightFirst(StereoPacking packing) {
    packing.rightEyeFirst = true;
    return packing;
}

VideoPackings packingsOf(const std::filesystem::path &file) {
    return readVideoPackings(InputFile(file));
}

/// A drawn clip with more options for its video stream.
std::filesystem::path clip(const std::filesystem::path &file, int width, int height,
                           const std::vector<std::string> &options) {
    test::Clip drawing;
    drawing.width = width;
    drawing.height = height;
    drawing.video.insert(drawing.video.end(), options.begin(), options.end());
    return test::draw(file, drawing);
}

TEST(VideoPackings, areNoneInAnOrdinaryFilm) {
    const TemporaryFolder folder;
    for (const char *name : {"a.mp4", "a.mov", "a.mkv", "a.avi", "a.h264"})
        EXPECT_EQ(packingsOf(clip(folder / name, 384, 96, {})), VideoPackings{}) << name;
}

TEST(VideoPackings, ofMatroskaAreItsStereoMode) {
    const std::vector<std::pair<std::string, Packing>> modes{
        {"mono", std::nullopt},
        {"left_right", sideBySide},
        {"right_left", rightFirst(sideBySide)},
        {"top_bottom", overUnder},
        {"bottom_top", rightFirst(overUnder)},
        {"checkerboard_lr", StereoPacking{Arrangement::interleaved}},
        {"row_interleaved_rl", StereoPacking{Arrangement::interleaved, true}},
        {"col_interleaved_lr", StereoPacking{Arrangement::interleaved}},
        {"anaglyph_cyan_red", std::nullopt},
        {"block_lr", StereoPacking{Arrangement::secondUnread}},
        {"block_rl", StereoPacking{Arrangement::secondUnread, true}}};
    const TemporaryFolder folder;
    for (const auto &[mode, expected] : modes) {
        const auto file = clip(folder / "a.mkv", 192, 192, {"-metadata:s:v", "stereo_mode=" + mode});
        EXPECT_EQ(packingsOf(file).container, expected) << mode;
        EXPECT_FALSE(packingsOf(file).stream) << mode;
    }
}

TEST(VideoPackings, ofWebmAreItsStereoMode) {
    const TemporaryFolder folder;
    for (const auto &[mode, expected] : std::vector<std::pair<std::string, StereoPacking>>{
             {"left_right", sideBySide}, {"right_left", rightFirst(sideBySide)}, {"top_bottom", overUnder}}) {
        test::Clip drawing;
        drawing.everyEncoder = true;
        drawing.video = {"-c:v", "libvpx", "-metadata:s:v", "stereo_mode=" + mode};
        EXPECT_EQ(packingsOf(test::draw(folder / "a.webm", drawing)).container, expected) << mode;
    }
}

TEST(VideoPackings, ofAMovieAreItsStereoBoxes) {
    using test::box;
    using test::Bytes;
    using test::fullBox;
    using test::letters;
    const auto frameMode = [](std::uint8_t mode) { return fullBox("st3d", {mode}); };
    const auto usage = [](const char *kind, std::uint8_t eyes) {
        return box("vexu",
                   test::joined({box("eyes", fullBox("stri", {eyes})), box("pack", fullBox("pkin", letters(kind)))}));
    };
    const std::vector<std::pair<Bytes, Packing>> boxes{
        {frameMode(0), std::nullopt},
        {frameMode(1), overUnder},
        {frameMode(2), sideBySide},
        {frameMode(3), std::nullopt},
        {frameMode(4), rightFirst(sideBySide)},
        {usage("side", 3), sideBySide},
        {usage("side", 11), rightFirst(sideBySide)},
        {usage("over", 3), overUnder},
        {usage("over", 11), rightFirst(overUnder)},
        {usage("none", 3), std::nullopt},
        {box("mvcC", Bytes(8, 1)), StereoPacking{Arrangement::secondUnread}}};
    const TemporaryFolder folder;
    for (const char *name : {"a.mp4", "a.mov"})
        for (const auto &[added, expected] : boxes) {
            const auto file = clip(folder / name, 192, 192, {});
            test::addToSampleEntry(file, added);
            EXPECT_EQ(packingsOf(file).container, expected) << name;
        }
}

struct Shape {
    int width;
    int height;
    std::string shown; ///< the shape in which the whole frame is shown
    bool isHalf;
};

// The second of each was meant for both eyes: it lies.
const std::vector<Shape> besideEachOther{
    {384, 108, "32/9", false}, {384, 108, "64/9", false}, {192, 108, "16/9", false},
    {192, 108, "32/9", true},  {288, 108, "32/9", false}, {180, 144, "32/9", true},
    {160, 120, "8/3", true},   {320, 120, "16/3", false}, {192, 80, "24/5", true}};
const std::vector<Shape> aboveEachOther{{192, 216, "8/9", false}, {192, 216, "4/9", false}, {192, 108, "16/9", false},
                                        {192, 108, "8/9", true},  {144, 216, "8/9", false}, {192, 80, "6/5", true}};

TEST(VideoPackings, knowHalfTheWidthByTheShapeOfThePixels) {
    const TemporaryFolder folder;
    for (const Shape &shape : besideEachOther)
        for (const char *mode : {"left_right", "right_left"}) {
            const auto file = clip(folder / "a.mkv", shape.width, shape.height,
                                   {"-aspect", shape.shown, "-metadata:s:v", std::string("stereo_mode=") + mode});
            const Packing container = packingsOf(file).container;
            ASSERT_TRUE(container);
            EXPECT_EQ(container->isHalf, shape.isHalf) << shape.width << " x " << shape.height << ": " << shape.shown;
        }
}

TEST(VideoPackings, knowHalfTheHeightByTheShapeOfThePixels) {
    const TemporaryFolder folder;
    for (const Shape &shape : aboveEachOther) {
        const auto file = clip(folder / "a.mkv", shape.width, shape.height,
                               {"-aspect", shape.shown, "-metadata:s:v", "stereo_mode=top_bottom"});
        const Packing container = packingsOf(file).container;
        ASSERT_TRUE(container);
        EXPECT_EQ(container->isHalf, shape.isHalf) << shape.width << " x " << shape.height << ": " << shape.shown;
    }
}

TEST(VideoPackings, ofAStreamAreItsMessage) {
    const std::vector<std::pair<std::string, Packing>> types{{"0", StereoPacking{Arrangement::interleaved}},
                                                             {"1", StereoPacking{Arrangement::interleaved}},
                                                             {"2", StereoPacking{Arrangement::interleaved}},
                                                             {"3", sideBySide},
                                                             {"4", overUnder},
                                                             {"5", StereoPacking{Arrangement::alternating}},
                                                             {"6", std::nullopt}};
    const TemporaryFolder folder;
    for (const char *name : {"a.mp4", "a.mov", "a.mkv", "a.avi", "a.h264"})
        for (const auto &[type, expected] : types) {
            const auto file = clip(folder / name, 384, 96, {"-x264-params", "frame-packing=" + type});
            EXPECT_EQ(packingsOf(file).stream, expected) << name << " " << type;
            EXPECT_FALSE(packingsOf(file).container) << name << " " << type;
        }
}

TEST(VideoPackings, ofAStreamAreHalfByTheShapeOfThePixels) {
    const TemporaryFolder folder;
    for (const char *name : {"a.mp4", "a.mkv", "a.h264"}) {
        const auto squeezed = clip(folder / name, 192, 108, {"-aspect", "32/9", "-x264-params", "frame-packing=3"});
        EXPECT_EQ(packingsOf(squeezed).stream, half(sideBySide)) << name;
    }
}

/// A raw stream whose first picture has a message of its own before it.
std::filesystem::path withMessage(const std::filesystem::path &stream, const StereoPacking &packing,
                                  hevc::Coding coding) {
    test::Bytes bytes = test::readFile(stream);
    test::Bytes unit;
    hevc::appendAnnexB(unit, hevc::framePackingUnit(packing, coding));
    const auto place = static_cast<std::ptrdiff_t>(hevc::beforeFirstSlice(bytes, coding));
    bytes.insert(bytes.begin() + place, unit.begin(), unit.end());
    test::writeFile(stream, bytes);
    return stream;
}

TEST(VideoPackings, ofAStreamAreFoundInEveryContainer) {
    const TemporaryFolder folder;
    for (const StereoPacking &packing :
         {sideBySide, rightFirst(sideBySide), overUnder, rightFirst(overUnder), half(sideBySide), half(overUnder)})
        for (const bool isHevc : {false, true}) {
            const char *raw = isHevc ? "a.hevc" : "a.h264";
            test::Clip drawing;
            drawing.width = drawing.height = 128;
            drawing.video = {"-c:v", isHevc ? "libx265" : "libx264"};
            const auto stream = withMessage(test::draw(folder / raw, drawing), packing,
                                            isHevc ? hevc::Coding::hevc : hevc::Coding::avc);
            StereoPacking expected = packing;
            expected.isHalf = packing.isHalf && isHevc; // H.264 cannot say it
            EXPECT_EQ(packingsOf(stream).stream, expected) << raw;
            const auto timed = test::remuxed(stream, folder / "a.mp4");
            EXPECT_EQ(packingsOf(timed).stream, expected) << raw;
            for (const char *name : {"b.mov", "b.mkv", "b.avi"})
                EXPECT_EQ(packingsOf(test::remuxed(timed, folder / name)).stream, expected) << raw << ", " << name;
        }
}

TEST(VideoPackings, ofContainerAndStreamMayDisagree) {
    const TemporaryFolder folder;
    const auto file = clip(folder / "a.mkv", 192, 192,
                           {"-x264-params", "frame-packing=4", "-metadata:s:v", "stereo_mode=right_left"});
    EXPECT_EQ(packingsOf(file).container, rightFirst(sideBySide));
    EXPECT_EQ(packingsOf(file).stream, overUnder);
}

TEST(VideoPackings, nameASecondStreamLikeTheFirst) {
    const TemporaryFolder folder;
    const auto left = clip(folder / "left.mp4", 192, 96, {});
    const auto small = clip(folder / "small.mp4", 96, 96, {});
    test::Clip longer;
    longer.frames = 30;
    longer.width = 192;
    const auto late = test::draw(folder / "late.mp4", longer);
    const auto other = clip(folder / "other.mp4", 192, 96, {"-c:v", "libx265"});
    const auto joined = [&](const std::filesystem::path &second, const std::string &name) {
        test::ffmpeg({"-i", left.string(), "-i", second.string(), "-map", "0:v", "-map", "1:v", "-c", "copy",
                      (folder / name).string()});
        return packingsOf(folder / name).secondStream;
    };
    for (const char *name : {"two.mp4", "two.mov", "two.mkv", "two.avi"})
        EXPECT_EQ(joined(left, name), 1) << name;
    for (const char *name : {"two.mp4", "two.mkv"}) {
        EXPECT_EQ(joined(small, name), std::nullopt) << name;
        EXPECT_EQ(joined(other, name), std::nullopt) << name;
    }
    EXPECT_EQ(joined(late, "two.mp4"), std::nullopt);
}

TEST(VideoPackings, doNotTakeACoverForASecondStream) {
    const TemporaryFolder folder;
    test::Clip drawing;
    drawing.frames = 1;
    drawing.video = {"-c:v", "mjpeg"};
    const std::string film = test::draw(folder / "film.mkv", drawing).string();
    const std::vector<std::string> both{"-i", film, "-i", film, "-map", "0:v", "-map", "1:v", "-c", "copy"};
    const auto written = [&](const char *name, const std::vector<std::string> &options) {
        std::vector<std::string> arguments = both;
        arguments.insert(arguments.end(), options.begin(), options.end());
        arguments.push_back((folder / name).string());
        test::ffmpeg(arguments);
        return packingsOf(folder / name).secondStream;
    };
    EXPECT_EQ(written("streams.mp4", {}), 1);
    EXPECT_EQ(written("cover.mp4", {"-disposition:v:1", "attached_pic"}), std::nullopt);
}

test::Bytes sphericalBox() {
    using test::box;
    using test::fullBox;
    return box("sv3d",
               test::joined({fullBox("svhd", {0}), box("proj", test::joined({fullBox("prhd", test::Bytes(12, 0)),
                                                                             fullBox("equi", test::Bytes(16, 0))}))}));
}

TEST(VideoPackings, nameTheProjection) {
    using test::box;
    using test::fullBox;
    using test::letters;
    const auto usage = [](const char *kind) { return box("vexu", box("proj", fullBox("prji", letters(kind)))); };
    const test::Bytes spherical = sphericalBox();
    const TemporaryFolder folder;
    for (const auto &[added, expected] : std::vector<std::pair<test::Bytes, std::string>>{{usage("rect"), "rect"},
                                                                                          {usage("equi"), "equi"},
                                                                                          {usage("hequ"), "hequ"},
                                                                                          {usage("fish"), "fish"},
                                                                                          {spherical, "equi"}}) {
        const auto file = clip(folder / "a.mp4", 192, 192, {});
        test::addToSampleEntry(file, added);
        EXPECT_EQ(packingsOf(file).projection, expected);
    }
}

TEST(VideoPackings, ofSphericalFilmsAreNeverHalf) {
    const TemporaryFolder folder;
    const auto film = clip(folder / "a.mp4", 192, 96, {});
    const auto inMatroska = [&](const std::filesystem::path &from) {
        return packingsOf(
            test::remuxed(from, folder / "b.mkv", {"-aspect", "4", "-metadata:s:v", "stereo_mode=left_right"}));
    };
    EXPECT_EQ(inMatroska(film).container, half(sideBySide));
    test::addToSampleEntry(film, sphericalBox());
    EXPECT_EQ(inMatroska(film).container, sideBySide);
    EXPECT_EQ(inMatroska(film).projection, "equi");
}

TEST(VideoPackings, ofDamagedFilesAreNone) {
    const TemporaryFolder folder;
    const auto file = clip(folder / "a.mkv", 192, 192, {"-metadata:s:v", "stereo_mode=left_right"});
    const test::Bytes whole = test::readFile(file);
    for (std::size_t size = 0; size < whole.size(); size += whole.size() / 40) {
        test::writeFile(folder / "cut.mkv",
                        test::Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
        const VideoPackings found = packingsOf(folder / "cut.mkv");
        EXPECT_TRUE(!found.container || found.container == sideBySide) << size;
    }
    test::writeFile(folder / "text.mp4", std::string("no film"));
    EXPECT_EQ(packingsOf(folder / "text.mp4"), VideoPackings{});
}

} // namespace
} // namespace lumetwin::media
