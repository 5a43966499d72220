// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/media/jpeg/MultiPictureFixture.h"

namespace lumetwin::test {
namespace {

using media::StereoPacking;
using Arrangement = media::StereoPacking::Arrangement;

constexpr int application1 = 0xE1;
constexpr int application3 = 0xE3;

class StereoTags : public testing::Test {
protected:
    std::filesystem::path file(const std::string &name = "a.jpg") const { return folder_.path() / name; }

    static PhotoPackings packings(const std::filesystem::path &path) {
        return media::readPhotoPackings(media::InputFile(path));
    }

    void drawJpeg() const {
        static Bytes drawnOnce;
        if (drawnOnce.empty()) {
            writeWithMagick(drawn(96, 32), file());
            drawnOnce = readFile(file());
        }
        writeFile(file(), drawnOnce);
    }

    PhotoPackings withApplication(int marker, const Bytes &content) const {
        drawJpeg();
        writeFile(file(), withSegment(readFile(file()), marker, content));
        return packings(file());
    }

    PhotoPackings tagged(const std::vector<std::string> &tags, const std::string &name = "a.jpg") const {
        std::vector<std::string> command{"exiftool", "-q", "-overwrite_original"};
        command.insert(command.end(), tags.begin(), tags.end());
        command.push_back(file(name).string());
        output(command);
        return packings(file(name));
    }

    TemporaryFolder folder_;
};

TEST_F(StereoTags, ofTheJpsBlock) {
    constexpr int halfHeight = 1;
    constexpr int halfWidth = 2;
    constexpr int leftFirst = 4;
    for (int flags = 0; flags < 8; ++flags) {
        SCOPED_TRACE(flags);
        const bool rightFirst = (flags & leftFirst) == 0;
        EXPECT_EQ(withApplication(application3, jpsBlock(flags, 2)).packing,
                  (StereoPacking{Arrangement::sideBySide, rightFirst, (flags & halfWidth) != 0}));
        EXPECT_EQ(withApplication(application3, jpsBlock(flags, 3)).packing,
                  (StereoPacking{Arrangement::overUnder, rightFirst, (flags & halfHeight) != 0}));
        EXPECT_EQ(withApplication(application3, jpsBlock(flags, 1)).packing,
                  (StereoPacking{Arrangement::interleaved, rightFirst, false}));
    }
}

TEST_F(StereoTags, ofJpsBlocksThatSayNothing) {
    Bytes noStart = jpsBlock(4, 2);
    noStart[0] = 'x';
    Bytes cut = jpsBlock(4, 2);
    cut.resize(13);
    for (const Bytes &block : {jpsBlock(4, 4), jpsBlock(4, 0), jpsBlock(4, 9), jpsBlock(4, 2, 0), jpsBlock(4, 2, 2),
                               jpsBlock(4, 2, 1, 0), jpsBlock(4, 2, 1, 3), noStart, cut, Bytes{}, letters("_JPSJPS_")})
        EXPECT_EQ(withApplication(application3, block).packing, std::nullopt);
    EXPECT_EQ(withApplication(application1, jpsBlock(4, 2)).packing, std::nullopt);
}

TEST_F(StereoTags, ofJpsBlocksWithAComment) {
    Bytes block = jpsBlock(4, 2);
    block.back() = 7;
    block = joined({block, letters("A walk.")});
    EXPECT_EQ(withApplication(application3, block).packing, (StereoPacking{Arrangement::sideBySide, false, false}));
    EXPECT_THAT(output({"exiftool", file().string()}), testing::HasSubstr("A walk."));
    block = jpsBlock(4, 2, 1, 0xFFFF); // a length that reaches far beyond the segment
    EXPECT_EQ(withApplication(application3, block).packing, (StereoPacking{Arrangement::sideBySide, false, false}));
}

TEST_F(StereoTags, ofStim) {
    for (const bool bigEndian : {false, true}) {
        const TiffBuilder tiff{bigEndian};
        for (const int crossed : {0, 1}) {
            const PhotoPackings found = withApplication(
                application3, stimBlock(tiff, {tiff.byteField(2, crossed), tiff.fraction(18, 650, 10)}));
            EXPECT_EQ(found.packing, (StereoPacking{Arrangement::sideBySide, crossed == 1, false}));
            EXPECT_DOUBLE_EQ(found.baseline.value_or(0), 0.065);
        }
        EXPECT_THAT(output({"exiftool", file().string()}), testing::HasSubstr("65 mm")); // an outside judge
        EXPECT_EQ(withApplication(application3, stimBlock(tiff, {tiff.byteField(2, 2)})).packing, std::nullopt);
    }
}

TEST_F(StereoTags, ofStimThatIsDamaged) {
    const TiffBuilder tiff{true};
    const Bytes whole = stimBlock(tiff, {tiff.byteField(2, 1), tiff.fraction(18, 60, 1)});
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_EQ(withApplication(application3, cut).baseline, std::nullopt) << size;
    }
    for (const auto &[above, below] : {std::pair{0, 1}, {5, 0}, {0, 0}})
        EXPECT_EQ(withApplication(application3, stimBlock(tiff, {tiff.fraction(18, above, below)})).baseline,
                  std::nullopt);
    Bytes manyFields = whole;
    manyFields[14] = manyFields[15] = 0xFF;
    EXPECT_EQ(withApplication(application3, manyFields).packing, std::nullopt);
}

TEST_F(StereoTags, jpsIsBelievedBeforeStim) {
    const TiffBuilder tiff{true};
    drawJpeg();
    const Bytes withJps = withSegment(readFile(file()), application3, jpsBlock(0, 3));
    writeFile(file(), withSegment(withJps, application3, stimBlock(tiff, {tiff.byteField(2, 0)})));
    EXPECT_EQ(packings(file()).packing, (StereoPacking{Arrangement::overUnder, true, false}));
}

TEST_F(StereoTags, ofPanoramas) {
    for (const auto &[value, code] :
         {std::pair{"equirectangular", "equi"}, {"cylindrical", "cyli"}, {"fisheye", "fish"}, {"rectilinear", ""}}) {
        for (const std::string name : {"a.jpg", "a.png"}) {
            writeWithMagick(drawn(96, 32), file(name));
            const PhotoPackings found = tagged({std::string("-XMP-GPano:ProjectionType=") + value}, name);
            EXPECT_EQ(found.projection, code) << name;
            EXPECT_EQ(found.packing, std::nullopt);
        }
    }
}

TEST_F(StereoTags, ofPanoramasWithTwoEyes) {
    const auto packet = [](const char *mode) {
        return joined({letters({"http://ns.adobe.com/xap/1.0/\0", 29}),
                       letters("<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description "
                               "xmlns:GSpherical='http://ns.google.com/videos/1.0/spherical/' GSpherical:StereoMode='"),
                       letters(mode),
                       letters("'><GSpherical:ProjectionType>equirectangular</GSpherical:ProjectionType>"
                               "</rdf:Description></rdf:RDF>")});
    };
    const PhotoPackings above = withApplication(application1, packet("top-bottom"));
    EXPECT_EQ(above.packing, (StereoPacking{Arrangement::overUnder, false, false}));
    EXPECT_EQ(above.projection, "equi");
    EXPECT_EQ(withApplication(application1, packet("left-right")).packing,
              (StereoPacking{Arrangement::sideBySide, false, false}));
    EXPECT_EQ(withApplication(application1, packet("mono")).packing, std::nullopt);
}

TEST_F(StereoTags, tellTheFieldOfView) {
    drawJpeg(); // without a word, two eyes of 48 x 32 side by side
    EXPECT_EQ(packings(file()).horizontalFieldOfView, std::nullopt);
    // The diagonal of 48 x 32 is that of 36 x 24, so 18 mm show a width of 36 mm.
    EXPECT_NEAR(tagged({"-FocalLengthIn35mmFormat=18"}).horizontalFieldOfView.value_or(0), 90, 0.01);
    EXPECT_EQ(tagged({"-FocalLengthIn35mmFormat=0"}).horizontalFieldOfView, std::nullopt);
    // 48 pixels at 10 a millimetre are 4.8 mm.
    for (const std::vector<std::string> &unit :
         {std::vector<std::string>{"-FocalPlaneXResolution=100", "-FocalPlaneResolutionUnit=cm"},
          {"-FocalPlaneXResolution=254", "-FocalPlaneResolutionUnit=inches"}}) {
        std::vector<std::string> tags{"-FocalLengthIn35mmFormat=", "-FocalLength=2.4"};
        tags.insert(tags.end(), unit.begin(), unit.end());
        EXPECT_NEAR(tagged(tags).horizontalFieldOfView.value_or(0), 90, 0.01);
    }
    EXPECT_EQ(tagged({"-FocalLength="}).horizontalFieldOfView, std::nullopt);
}

TEST_F(StereoTags, tellTheFieldOfViewOfAnEyeInItsShape) {
    drawJpeg();
    tagged({"-FocalLengthIn35mmFormat=18"});
    const Bytes plain = readFile(file());
    const auto degrees = [&](int flags, int layout) {
        writeFile(file(), withSegment(plain, application3, jpsBlock(flags, layout)));
        return packings(file()).horizontalFieldOfView.value_or(0);
    };
    EXPECT_NEAR(degrees(4, 2), 90, 0.01);
    EXPECT_NEAR(degrees(4 | 2, 2), 97.495, 0.01); // 96 x 32
    EXPECT_NEAR(degrees(4, 3), 99.703, 0.01);     // 96 x 16
    EXPECT_NEAR(degrees(4 | 1, 3), 97.495, 0.01); // 96 x 32
}

} // namespace
} // namespace lumetwin::test
