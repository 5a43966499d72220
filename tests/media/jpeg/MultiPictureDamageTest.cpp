// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/media/jpeg/MultiPictureFixture.h"

namespace lumetwin::test {
namespace {

class MultiPictureDamage : public MultiPicture {
protected:
    /// A pair whose second entry is changed.
    MultiPictureBuilder bent(const std::function<void(IndexEntry &)> &change) const {
        MultiPictureBuilder builder = pair();
        builder.bend = [change](std::vector<IndexEntry> &index) { change(index.at(1)); };
        return builder;
    }
};

TEST_F(MultiPictureDamage, eyeBeyondTheEnd) {
    for (const std::uint32_t offset : {0x00100000u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        const Bytes bytes = bent([offset](IndexEntry &entry) { entry.offset = offset; }).file();
        EXPECT_EQ(packings(bytes).eyePictures, 2); // the file says so
        const auto error = failure(bytes);
        ASSERT_TRUE(error);
        EXPECT_EQ(error->reason(), MediaReason::endsEarly);
        EXPECT_THAT(error->what(), testing::HasSubstr("an eye lies beyond the end"));
    }
}

TEST_F(MultiPictureDamage, eyeThatIsCutOff) {
    const Bytes whole = pair().file();
    for (const int missing : {2000, 500, 40}) {
        const auto error = failure({whole.begin(), whole.end() - missing});
        ASSERT_TRUE(error) << missing;
        EXPECT_EQ(error->reason(), MediaReason::endsEarly);
    }
}

TEST_F(MultiPictureDamage, eyeThatIsNoPicture) {
    const Bytes bytes = bent([](IndexEntry &entry) { entry.offset += 30; }).file();
    EXPECT_EQ(packings(bytes).eyePictures, 2);
    const auto error = failure(bytes);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->reason(), MediaReason::damaged);
}

TEST_F(MultiPictureDamage, eyesAtOnePlace) {
    const auto error = failure(bent([](IndexEntry &entry) { entry.offset = 0; }).file());
    ASSERT_TRUE(error);
    EXPECT_EQ(error->reason(), MediaReason::damaged);
}

/// The second picture begins inside the first one: in its thumbnail.
TEST_F(MultiPictureDamage, eyesThatOverlap) {
    MultiPictureBuilder builder = pair();
    const Bytes inner = jpeg(drawn(96, 64, 5));
    builder.parts[0].jpeg = withSegment(builder.parts[0].jpeg, 0xE5, inner);
    builder.bend = [&](std::vector<IndexEntry> &index) {
        // The index is the first segment; the inner picture is the content of the next.
        const Bytes whole = builder.parts[0].jpeg;
        index[1].offset = index[0].size - static_cast<std::uint32_t>(whole.size()) + 6 - 10;
    };
    const Bytes bytes = builder.file();
    EXPECT_EQ(packings(bytes).eyePictures, 2);
    const auto error = failure(bytes);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->reason(), MediaReason::endsEarly);
}

TEST_F(MultiPictureDamage, eyesOfTwoSizes) {
    MultiPictureBuilder builder = pair();
    builder.parts[1].jpeg = jpeg(drawn(96, 48, 2));
    const auto error = failure(builder.file());
    ASSERT_TRUE(error);
    EXPECT_EQ(error->reason(), MediaReason::contradictoryParameters);
    EXPECT_THAT(error->what(), testing::HasSubstr("96 x 64, 96 x 48"));
}

/// Programs that change a picture's metadata leave its size in the index as it was.
TEST_F(MultiPictureDamage, sizesThatLieDoNoHarm) {
    for (const std::uint32_t size : {0u, 100u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        MultiPictureBuilder builder = pair();
        builder.bend = [size](std::vector<IndexEntry> &index) {
            for (IndexEntry &entry : index)
                entry.size = size;
        };
        expectEyes(builder, left_, right_);
    }
}

TEST_F(MultiPictureDamage, indexSizesThatLie) {
    MultiPictureBuilder builder = pair();
    for (const std::uint32_t size : {0u, 15u, 16u, 1000u, 0x7FFFFFF0u, 0xFFFFFFFFu}) {
        builder.claimedIndexSize = size;
        const Bytes bytes = builder.file();
        EXPECT_LT(packings(bytes).eyePictures, 2) << size;
        EXPECT_EQ(failure(bytes)->reason(), MediaReason::noImage);
    }
}

TEST_F(MultiPictureDamage, tensOfThousandsOfEntries) {
    MultiPictureBuilder builder = pair();
    builder.bend = [](std::vector<IndexEntry> &index) { index.resize(4000, index.back()); };
    // The places lie, because the index is longer than it was; what counts is the time and the bound.
    EXPECT_LE(packings(builder.file()).eyePictures, 64);
    EXPECT_TRUE(failure(builder.file()));
}

TEST_F(MultiPictureDamage, everyByteOfTheIndex) {
    const Bytes whole = pair().file();
    for (std::size_t at = 2; at < 160; ++at)
        for (const int change : {0xFF, 0x01, 0x80}) {
            Bytes bytes = whole;
            bytes[at] ^= static_cast<std::uint8_t>(change);
            packings(bytes);
            failure(bytes);
        }
}

TEST_F(MultiPictureDamage, cutAtEveryPlace) {
    const Bytes whole = pair().file();
    for (std::size_t size = 0; size < 200; ++size) {
        const Bytes bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        writeFile(file(), bytes);
        const PhotoPackings found = media::readPhotoPackings(media::InputFile(file()));
        EXPECT_TRUE(found.eyePictures == 0 || found.eyePictures == 2);
    }
}

TEST_F(MultiPictureDamage, otherFilesHaveNoEyes) {
    writeWithMagick(left_, file("a.png"));
    EXPECT_EQ(media::readPhotoPackings(media::InputFile(file("a.png"))), PhotoPackings{});
    writeFile(file("empty"), Bytes{});
    EXPECT_EQ(media::readPhotoPackings(media::InputFile(file("empty"))), PhotoPackings{});
    EXPECT_EQ(packings(jpeg(left_)), PhotoPackings{});
}

TEST_F(MultiPictureDamage, readingStopsWhenAsked) {
    writeFile(file(), pair().file());
    const media::Cancellation cancelled([] { return true; });
    EXPECT_THROW(media::readEyePictures(
                     media::ImageFile(media::InputFile(file())), [](Eye, const media::StillImage &) {}, cancelled),
                 media::Cancelled);
}

} // namespace
} // namespace lumetwin::test
