// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/texts/ProcessorError.h"
#include "media/MediaError.h"
#include "media/MovieWriter.h"
#include "tests/engine/preview/PreviewFixture.h"
#include "tests/support/Drawing.h"
#include "tests/support/MovieFileWriter.h"
#include "tests/support/StereoScenes.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace lumetwin::test {
namespace {

using Arrangement = EyeArrangement;

// The brightness of an eye tells the number of the frame, and which eye it is.
constexpr int frames = 40;
constexpr int rate = 30;

int leftGrey(int frame) {
    return 20 + frame * 2;
}

int rightGrey(int frame) {
    return 235 - frame * 2;
}

std::vector<Picture> packed(int width, int height, Arrangement arrangement, bool rightFirst = false) {
    std::vector<Picture> pictures;
    for (int frame = 0; frame < frames; ++frame)
        pictures.push_back(drawn(width, height, grey8, [&](int, int x, int y) {
            const bool isFirst = arrangement == Arrangement::overUnder ? y < height / 2 : x < width / 2;
            return isFirst != rightFirst ? leftGrey(frame) : rightGrey(frame);
        }));
    return pictures;
}

std::vector<Picture> eyeFrames(bool right, int count = frames) {
    std::vector<Picture> pictures;
    for (int frame = 0; frame < count; ++frame)
        pictures.push_back(flat(64, 48, grey8, right ? rightGrey(frame) : leftGrey(frame)));
    return pictures;
}

/// A random access picture every ten frames, with pictures in between that are coded in another order.
const std::vector<std::string> reordered{"-c:v",        "libx264", "-qp",           "4", "-g",  "10",
                                         "-keyint_min", "10",      "-sc_threshold", "0", "-bf", "3"};

class FilmPreview : public PreviewTest {
protected:
    StereoPreview at(const std::string &name, double frame) {
        request.position = frame / frames;
        return preview(name);
    }

    void expectFrame(const StereoPreview &found, int frame, const std::string &what) {
        ASSERT_TRUE(found.hasBothEyes) << what;
        EXPECT_NEAR(middleOf(found.left), leftGrey(frame), 1.4) << what << ", left eye of frame " << frame;
        EXPECT_NEAR(middleOf(found.right), rightGrey(frame), 1.4) << what << ", right eye of frame " << frame;
        EXPECT_NEAR(found.seconds, static_cast<double>(frame) / rate, 0.002) << what;
        EXPECT_NEAR(found.frameRate, rate, 0.01) << what;
        EXPECT_NEAR(found.duration, static_cast<double>(frames) / rate, 0.06) << what;
    }

    /// Two views with the frame's number in their brightness.
    void writeSpatialFilm(const std::string &name, int width = 128, int height = 96, int count = frames) {
        media::StereoVideoEncoding encoding;
        encoding.width = width;
        encoding.height = height;
        encoding.averageBitRate = 4'000'000;
        encoding.frameRate = rate;
        encoding.colour = {1, 1, 1, media::ColourRange::limited, media::ChromaLocation::left};
        encoding.baseline = 64000;
        encoding.horizontalFieldOfView = 63400;
        MovieFileWriter writer(file(name), media::Container::quickTime, {});
        writer.addVideo(encoding);
        writer.start(600);
        const auto limited = [](int grey) { return 16 + grey * 219 / 255; };
        for (int frame = 0; frame < count; ++frame)
            writer.append(flat(width, height, media::yuv420, limited(leftGrey(frame))),
                          flat(width, height, media::yuv420, limited(rightGrey(frame))), std::int64_t{20} * frame, 20);
        writer.finishVideo();
        writer.finish();
    }
};

TEST_F(FilmPreview, showsTheFrameAtThePosition) {
    for (const char *name : {"a.mp4", "a.mov", "a.mkv"}) {
        writeFilm(packed(128, 48, Arrangement::sideBySide), file(name), reordered);
        for (const int frame : {0, 1, 5, 9, 10, 11, 19, 29, 30, 38, 39}) {
            expectFrame(at(name, frame), frame, name);
            expectFrame(at(name, frame + 0.5), frame, name);
        }
        expectFrame(at(name, frames), frames - 1, name);
    }
}

TEST_F(FilmPreview, showsARandomAccessPictureWhereThatIsEnough) {
    writeFilm(packed(128, 48, Arrangement::sideBySide), file("a.mp4"), reordered);
    request.detail = PreviewDetail::near;
    for (const auto &[asked, shown] : {std::pair(0, 0), {9, 0}, {10, 10}, {15, 10}, {29, 20}, {39, 30}, {40, 30}})
        expectFrame(at("a.mp4", asked), shown, "a.mp4");
}

TEST_F(FilmPreview, picturesThatLeadARandomAccessPictureAreShown) {
    // Open groups: these pictures need the group before.
    writeFilm(packed(128, 48, Arrangement::sideBySide), file("a.mp4"),
              {"-c:v", "libx265", "-x265-params",
               "keyint=10:min-keyint=10:open-gop=1:bframes=3:scenecut=0:qp=4:log-level=none"});
    for (const int frame : {0, 7, 8, 9, 10, 18, 19, 20, 29, 39})
        expectFrame(at("a.mp4", frame), frame, "open groups");
}

TEST_F(FilmPreview, framesOfUnevenDurationAreFound) {
    // Each tenth frame is shown for ten times as long, and frames that no other one needs are between them.
    auto options = reordered;
    options.insert(options.end(),
                   {"-vf", "setpts='(N+9*floor(N/10))/30/TB'", "-fps_mode", "vfr", "-video_track_timescale", "600"});
    writeFilm(packed(128, 48, Arrangement::sideBySide), file("a.mp4"), options);
    for (const int frame : {3, 8, 9, 10, 13, 19, 20, 27, 38}) {
        const double seconds = (frame + 9 * (frame / 10)) / static_cast<double>(rate);
        const double total = preview("a.mp4").duration;
        for (const double later : {0.0, frame % 10 == 9 ? 0.25 : 0.01}) {
            request.position = (seconds + later) / total;
            const StereoPreview found = preview("a.mp4");
            EXPECT_NEAR(found.seconds, seconds, 0.002) << frame;
            EXPECT_NEAR(middleOf(found.left), leftGrey(frame), 1.4) << frame;
        }
    }
}

TEST_F(FilmPreview, ofOtherContainers) {
    for (const char *name : {"a.avi", "a.m4v"}) {
        writeFilm(packed(128, 48, Arrangement::sideBySide), file(name),
                  {"-c:v", "libx264", "-qp", "4", "-g", "10", "-keyint_min", "10", "-sc_threshold", "0", "-bf", "0"});
        for (const int frame : {0, 5, 10, 25, 39}) {
            const StereoPreview found = at(name, frame);
            EXPECT_NEAR(middleOf(found.left), leftGrey(frame), 3) << name << " " << frame;
            EXPECT_NEAR(middleOf(found.right), rightGrey(frame), 3) << name << " " << frame;
        }
    }
}

TEST_F(FilmPreview, ofTransportStreams) {
    // They are sought to any picture, so that the random access picture lies farther back.
    for (const char *name : {"a.ts", "a.m2ts"})
        for (const char *distance : {"10", "99"}) {
            auto options = reordered;
            options[5] = options[7] = distance;
            writeFilm(packed(128, 48, Arrangement::sideBySide), file(name), options);
            for (const int frame : {0, 1, 9, 10, 15, 25, 39})
                expectFrame(at(name, frame), frame, std::string(name) + " " + distance);
        }
}

TEST_F(FilmPreview, ofARawStream) {
    writeFilm(
        packed(128, 48, Arrangement::sideBySide), file("a.hevc"),
        {"-c:v", "libx265", "-x265-params", "keyint=10:min-keyint=10:scenecut=0:log-level=none:qp=6", "-f", "hevc"});
    for (const double frame : {0.0, 20.0, 36.0}) {
        const StereoPreview found = at("a.hevc", frame);
        EXPECT_TRUE(found.hasBothEyes);
        EXPECT_EQ(found.seconds, 0) << "it has no times";
        EXPECT_EQ(found.duration, 0);
        EXPECT_NEAR(middleOf(found.left) + middleOf(found.right), 255, 4);
    }
}

TEST_F(FilmPreview, ofALongGroupIsTheNearestReached) {
    std::vector<Picture> steps;
    for (int second = 0; second < 14; ++second)
        steps.push_back(flat(128, 48, grey8, 20 + second * 10));
    writeFilm(steps, file("raw.mp4"));
    // One picture a second, and only the first one can be decoded alone.
    systemFfmpeg({"-i", file("raw.mp4").string(), "-vf", "setpts=30*PTS", "-r", "1", "-c:v", "libx264", "-qp", "4",
                  "-g", "100", "-bf", "0", "-sc_threshold", "0", file("a.mp4").string()});
    request.position = 8.5 / 14;
    EXPECT_NEAR(middleOf(preview("a.mp4").left), 100, 3);
    request.position = 13.5 / 14;
    const StereoPreview found = preview("a.mp4");
    EXPECT_NEAR(found.seconds, 10, 0.01) << "ten seconds behind the random access picture";
    EXPECT_NEAR(middleOf(found.left), 120, 3);
}

TEST_F(FilmPreview, ofASpatialFilm) {
    writeSpatialFilm("a.mov");
    request.layout = {.arrangement = Arrangement::overUnder, .rightEyeFirst = true}; // the file knows it itself
    for (const int frame : {0, 1, 7, 20, 38, 39}) {
        const StereoPreview found = at("a.mov", frame);
        expectFrame(found, frame, "spatial");
        EXPECT_EQ(found.eyeWidth, 128);
        EXPECT_EQ(found.eyeHeight, 96);
        EXPECT_EQ(found.width, 128);
    }
    request.detail = PreviewDetail::near;
    expectFrame(at("a.mov", 0), 0, "spatial");
    const StereoPreview near = at("a.mov", 35);
    EXPECT_LE(near.seconds, 35.0 / rate);
    expectFrame(near, static_cast<int>(std::lround(near.seconds * rate)), "spatial, not exact");
}

TEST_F(FilmPreview, oneEyeOfALargeSpatialFilmComesSooner) {
    writeSpatialFilm("small.mov");
    writeSpatialFilm("large.mov", 4096, 2880, 1);
    request.maximumWidth = request.maximumHeight = 100;
    for (const bool isLarge : {false, true})
        for (const PreviewDetail detail : {PreviewDetail::soon, PreviewDetail::near, PreviewDetail::exact}) {
            request.detail = detail;
            const StereoPreview found = at(isLarge ? "large.mov" : "small.mov", 0);
            ASSERT_TRUE(found.hasBothEyes);
            EXPECT_EQ(found.isFlat, isLarge && detail == PreviewDetail::soon);
            EXPECT_NEAR(middleOf(found.left), leftGrey(0), 1.4);
            EXPECT_NEAR(middleOf(found.right), found.isFlat ? leftGrey(0) : rightGrey(0), 1.4);
            EXPECT_EQ(found.eyeWidth, isLarge ? 4096 : 128);
        }
}

TEST_F(FilmPreview, layoutsOfOneStream) {
    const Arrangement arrangements[] = {Arrangement::sideBySide, Arrangement::overUnder};
    for (const Arrangement arrangement : arrangements)
        for (const bool isHalf : {false, true})
            for (const bool rightFirst : {false, true}) {
                writeFilm(packed(96, 64, arrangement, rightFirst), file("a.mp4"), reordered);
                request.layout = {arrangement, isHalf, rightFirst, LayoutSource::user};
                const StereoPreview found = at("a.mp4", 12);
                expectFrame(found, 12, std::string(rawValue(arrangement)));
                const bool beside = arrangement == Arrangement::sideBySide;
                EXPECT_EQ(found.eyeWidth, beside && !isHalf ? 48 : 96);
                EXPECT_EQ(found.eyeHeight, !beside && !isHalf ? 32 : 64);
                EXPECT_EQ(found.width, found.eyeWidth);
                EXPECT_EQ(found.height, found.eyeHeight);
            }
}

TEST_F(FilmPreview, pixelsBecomeSquare) {
    auto options = reordered;
    options.insert(options.end(), {"-vf", "setsar=3/2"});
    writeFilm(packed(128, 48, Arrangement::sideBySide), file("a.mp4"), options);
    const StereoPreview wide = at("a.mp4", 3);
    EXPECT_EQ(wide.eyeWidth, 64);
    EXPECT_EQ(wide.eyeHeight, 48);
    EXPECT_NEAR(wide.pixelAspect, 1.5, 1e-9);
    EXPECT_EQ(wide.width, 64);
    EXPECT_EQ(wide.height, 32);
    request.detail = PreviewDetail::near; // only the headers are read, and these pixels are told by the stream alone
    options.back() = "format=yuv420p";
    options.insert(options.end(), {"-x264-params", "sar=3/2"});
    writeFilm(packed(128, 48, Arrangement::sideBySide), file("c.mp4"), options);
    EXPECT_NEAR(at("c.mp4", 3).pixelAspect, 1.5, 1e-9);
    options.resize(options.size() - 2);
    request.detail = PreviewDetail::exact;
    // Pixels that are twice as wide tell of halves; those have their true shape already.
    options.back() = "setsar=2/1";
    writeFilm(packed(128, 48, Arrangement::sideBySide), file("b.mp4"), options);
    request.layout.isHalf = true;
    const StereoPreview half = at("b.mp4", 3);
    EXPECT_EQ(half.pixelAspect, 1);
    EXPECT_EQ(half.width, 128);
    EXPECT_EQ(half.height, 48);
}

TEST_F(FilmPreview, ofTwoStreamsAndTwoFilms) {
    writeFilm(eyeFrames(false), file("a_L.mp4"), reordered);
    writeFilm(eyeFrames(true), file("a_R.mp4"),
              {"-c:v", "libx264", "-qp", "4", "-g", "7", "-keyint_min", "7", "-sc_threshold", "0"});
    const ConversionInput pair(media::InputFile(file("a_L.mp4")), media::InputFile(file("a_R.mp4")));
    request.layout.arrangement = Arrangement::twoFiles;
    for (const int frame : {0, 13, 39}) {
        request.position = (frame + 0.3) / frames;
        request.layout.rightEyeFirst = false;
        expectFrame(preview(pair), frame, "two files");
        request.layout.rightEyeFirst = true;
        const StereoPreview exchanged = preview(pair);
        EXPECT_NEAR(middleOf(exchanged.left), rightGrey(frame), 1.4);
    }
    request.detail = PreviewDetail::near;
    request.layout.rightEyeFirst = false;
    request.position = 25.0 / frames;
    expectFrame(preview(pair), 20, "two files, not exact: still the same moment");
    request.detail = PreviewDetail::exact;
    systemFfmpeg({"-i", file("a_L.mp4").string(), "-i", file("a_R.mp4").string(), "-map", "0:v", "-map", "1:v", "-c",
                  "copy", file("two.mkv").string()});
    request.layout.arrangement = Arrangement::twoStreams;
    for (const int frame : {0, 13, 39})
        expectFrame(at("two.mkv", frame + 0.3), frame, "two streams");
}

TEST_F(FilmPreview, withoutASecondEyeIsOnePicture) {
    writeFilm(eyeFrames(false), file("a.mp4"), reordered);
    writeFilm(eyeFrames(true, 20), file("short.mp4"), reordered);
    for (const Arrangement arrangement : {Arrangement::twoStreams, Arrangement::twoFiles, Arrangement::alternating,
                                          Arrangement::interleaved, Arrangement::secondUnread}) {
        request.layout.arrangement = arrangement;
        const StereoPreview found = at("a.mp4", 12);
        EXPECT_FALSE(found.hasBothEyes);
        EXPECT_TRUE(found.right.isEmpty());
        EXPECT_EQ(found.eyeWidth, 64);
        EXPECT_NEAR(middleOf(found.left), leftGrey(12), 1.4);
    }
    request.layout.arrangement = Arrangement::twoFiles;
    request.position = 30.0 / frames;
    EXPECT_FALSE(preview({media::InputFile(file("a.mp4")), media::InputFile(file("short.mp4"))}).hasBothEyes)
        << "the second film has ended";
}

TEST_F(FilmPreview, eyesOfDifferentSizeAreRefused) {
    writeFilm(eyeFrames(false), file("a.mp4"), reordered);
    writeFilm(packed(96, 48, Arrangement::sideBySide), file("b.mp4"), reordered);
    request.layout.arrangement = Arrangement::twoFiles;
    EXPECT_THROW(preview({media::InputFile(file("a.mp4")), media::InputFile(file("b.mp4"))}), ProcessorError);
}

TEST_F(FilmPreview, ofOddSizesAndDeepSamples) {
    writeFilm(packed(131, 49, Arrangement::sideBySide), file("a.mkv"),
              {"-c:v", "libx264", "-qp", "4", "-g", "10", "-pix_fmt", "yuv444p"});
    const StereoPreview odd = at("a.mkv", 3);
    EXPECT_EQ(odd.width, 65);
    EXPECT_EQ(odd.height, 49);
    EXPECT_NEAR(middleOf(odd.right), rightGrey(3), 1.4);
    writeFilm(packed(128, 48, Arrangement::sideBySide), file("b.mp4"),
              {"-c:v", "libx265", "-x265-params", "qp=4:log-level=none", "-pix_fmt", "yuv420p10le"});
    expectFrame(at("b.mp4", 21), 21, "10 bits");
}

TEST_F(FilmPreview, isReducedToTheLimits) {
    writeFilm(packed(640, 180, Arrangement::sideBySide), file("a.mp4"), reordered);
    request.maximumWidth = 100;
    request.maximumHeight = 45;
    const StereoPreview found = at("a.mp4", 17);
    EXPECT_EQ(found.width, 80);
    EXPECT_EQ(found.height, 45);
    expectFrame(found, 17, "reduced");
}

TEST_F(FilmPreview, damagedFilmsAreErrorsOrShown) {
    writeFile(file("a.mp4"), std::string("no film"));
    EXPECT_THROW(preview("a.mp4"), media::MediaError);
    writeSpatialFilm("b.mov");
    writeFilm(packed(128, 48, Arrangement::sideBySide), file("b.mkv"), reordered);
    for (const char *name : {"b.mov", "b.mkv"}) {
        const Bytes whole = readFile(file(name));
        for (int part = 1; part < 12; ++part) {
            Bytes bytes = whole;
            if (part % 2 == 0)
                bytes.resize(bytes.size() * static_cast<std::size_t>(part) / 12);
            else
                std::fill_n(bytes.begin() +
                                static_cast<std::ptrdiff_t>(bytes.size() * static_cast<std::size_t>(part) / 14),
                            200, std::uint8_t{0x5A});
            writeFile(file(name), bytes);
            for (const PreviewDetail detail : {PreviewDetail::exact, PreviewDetail::near, PreviewDetail::soon}) {
                request.detail = detail;
                request.position = 0.6;
                try {
                    EXPECT_FALSE(preview(name).left.isEmpty());
                } catch (const media::MediaError &) {
                }
            }
        }
    }
}

TEST_F(FilmPreview, encryptedFilmsAreErrors) {
    writeFilm(packed(128, 48, Arrangement::sideBySide), file("raw.mp4"), reordered);
    ffmpeg({"-i", file("raw.mp4").string(), "-c", "copy", "-encryption_scheme", "cenc-aes-ctr", "-encryption_key",
            "00112233445566778899aabbccddeeff", "-encryption_kid", "00112233445566778899aabbccddeeff",
            file("a.mp4").string()});
    try {
        preview("a.mp4");
        FAIL() << "no error";
    } catch (const media::MediaError &error) {
        EXPECT_EQ(error.reason(), media::MediaReason::encryptedMovie);
    }
}

} // namespace
} // namespace lumetwin::test
