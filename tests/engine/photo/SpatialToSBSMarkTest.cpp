// SPDX-License-Identifier: GPL-3.0-or-later
// A side-by-side JPEG says that it is one, and harms nobody who does not ask.
#include "media/PhotoPackings.h"
#include "tests/engine/photo/SpatialToSBSFixture.h"

#include <gmock/gmock.h>

namespace lumetwin::test {
namespace {

using media::StereoPacking;
using testing::HasSubstr;
using testing::Not;

std::optional<StereoPacking> packingOf(const std::filesystem::path &file) {
    return media::readPhotoPackings(media::InputFile(file)).packing;
}

TEST_F(SpatialToSBS, aJpegSaysHowItHasItsEyes) {
    writeMarkers(64, 48);
    for (const bool swap : {false, true})
        for (const bool half : {false, true}) {
            settings_.swapLeftRight = swap;
            settings_.halfWidth = half;
            convert("out.jpg");
            EXPECT_EQ(packingOf(file("out.jpg")), (StereoPacking{StereoPacking::Arrangement::sideBySide, swap, half}));
            const std::string facts = output({"exiftool", "-G1", "-s", file("out.jpg").string()});
            EXPECT_THAT(facts, HasSubstr("JPSType                         : Stereo"));
            EXPECT_THAT(facts, HasSubstr("JPSLayout                       : Side By Side"));
            const std::string flags = facts.substr(facts.find("JPSFlags"), 80);
            EXPECT_EQ(flags.find("Left field first") != flags.npos, !swap) << flags;
            EXPECT_EQ(flags.find("Half width") != flags.npos, half) << flags;
            EXPECT_THAT(facts, Not(HasSubstr("Warning")));
        }
}

TEST_F(SpatialToSBS, aMarkedJpegIsReadAsBefore) {
    writeMarkers(64, 48);
    const Raster picture = convert("out.jpg"); // with another program
    EXPECT_LE(largestDifference(picture, readWithOurs(file("out.jpg"))), 2);
    EXPECT_THAT(output({"identify", "-verbose", file("out.jpg").string()}), HasSubstr("Geometry: 128x48"));
    const MediaFacts facts = lookAt(file("out.jpg"));
    EXPECT_EQ(facts.kind, MediaFacts::Kind::photo);
    EXPECT_FALSE(facts.isSpatial);
    const std::string frame = output({"ffprobe", "-v", "error", "-show_frames", file("out.jpg").string()});
    EXPECT_THAT(frame, HasSubstr("width=128"));
    EXPECT_THAT(frame, HasSubstr("side_data_type=Stereo 3D"));
}

TEST_F(SpatialToSBS, theMarkIsTheOnlyDifference) {
    const media::Picture picture = pictureOf(drawn(640, 700)); // in several strips
    media::writeImage(file("plain.jpg"), media::ImageKind::jpeg, {picture, {}}, 0.75);
    media::writeImage(file("marked.jpg"), media::ImageKind::jpeg, {picture, {}}, 0.75, {}, StereoPacking{});
    const Bytes plain = readFile(file("plain.jpg"));
    Bytes marked = readFile(file("marked.jpg"));
    const std::string mark = "_JPSJPS_";
    const auto at = std::search(marked.begin(), marked.end(), mark.begin(), mark.end());
    ASSERT_NE(at, marked.end());
    marked.erase(at - 4, at + 16);
    EXPECT_EQ(marked, plain);
}

TEST_F(SpatialToSBS, otherFormatsHaveNoMark) {
    writeMarkers(64, 48);
    for (const std::string name : {"out.png", "out.tiff", "out.heic"}) {
        convertSpatialPhotoToSBS(settings_, file("in.heic"), file(name));
        EXPECT_EQ(packingOf(file(name)), std::nullopt) << name;
    }
}

} // namespace
} // namespace lumetwin::test
