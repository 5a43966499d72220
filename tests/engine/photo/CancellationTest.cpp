// SPDX-License-Identifier: GPL-3.0-or-later
// Work that is cancelled stops before its next piece and leaves nothing behind. What counts is how often the work asks
// after it was told to stop, not the time that it takes.
#include "engine/photo/SBSImageToSpatial.h"
#include "engine/photo/SpatialPhotoToSBS.h"
#include "media/Abandonable.h"
#include "media/ColourConversion.h"
#include "media/Compositor.h"
#include "media/SRGB.h"
#include "tests/support/Paths.h"
#include "tests/support/SpatialPhotos.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <future>
#include <stdexcept>
#include <thread>

namespace lumetwin::test {
namespace {

using media::Cancellation;
using media::ImageKind;

/// Says stop from a certain question on.
struct Countdown {
    int left = 0;
    std::atomic<int> asked = 0;

    explicit Countdown(int questions) : left(questions) {}
    Cancellation cancellation() {
        return Cancellation([this] { return asked++ >= left; });
    }
};

using Work = std::function<void(const Cancellation &)>;

/// How often the work asks when it is never told to stop.
int questionsOf(const Work &work) {
    Countdown never(1 << 30);
    work(never.cancellation());
    return never.asked;
}

/// Each thread of the work may ask once more, and the one that gathers their results.
int latecomers() {
    return 2 * static_cast<int>(std::max(2u, std::thread::hardware_concurrency())) + 2;
}

class Cancelling : public testing::Test {
protected:
    std::filesystem::path file(const std::string &name) const { return folder_.path() / name; }

    /// Stops the work at its first and its second question, and at the last that it is sure to ask.
    void stopsEverywhere(const Work &work, int fewest, const std::function<void()> &afterwards = {}) {
        const int questions = questionsOf(work);
        ASSERT_GE(questions, fewest) << "the work does not ask before each piece";
        for (const int at : {0, 1, fewest - 1}) {
            Countdown countdown(at);
            EXPECT_THROW(work(countdown.cancellation()), media::Cancelled) << "at question " << at;
            EXPECT_LE(countdown.asked, at + latecomers()) << "the work went on after question " << at;
            if (afterwards)
                afterwards();
        }
    }

    void expectNothing(const std::string &name) {
        EXPECT_FALSE(std::filesystem::exists(file(name))) << name;
        EXPECT_FALSE(std::filesystem::exists(file(name + ".partial"))) << name;
    }

    TemporaryFolder folder_;
};

constexpr int rows = 600;

TEST_F(Cancelling, readersStopBetweenRows) {
    const auto reading = [](const std::filesystem::path &path) {
        return [path](const Cancellation &cancellation) { media::readImage(path, cancellation); };
    };
    const Raster drawing = drawn(200, rows);
    writeWithMagick(drawing, file("a.jpg"), {"-sampling-factor", "4:2:0"});
    writeWithMagick(drawing, file("a.png"));
    writeWithMagick(drawing, file("a.tiff"), {"-compress", "LZW"});
    stopsEverywhere(reading(file("a.jpg")), rows / 16);
    stopsEverywhere(reading(file("a.png")), rows);
    stopsEverywhere(reading(file("a.tiff")), rows);
}

TEST_F(Cancelling, readersStopInFilesThatAreDecodedWhole) {
    const Raster drawing = drawn(200, rows);
    writeWithMagick(drawing, file("a.jpg"), {"-interlace", "JPEG"});
    writeWithMagick(drawing, file("a.png"), {"-interlace", "PNG"});
    writeWithMagick(drawing, file("a.tiff"), {"-type", "Palette", "-define", "tiff:rows-per-strip=20"});
    for (const auto &[name, fewest] : {std::pair("a.jpg", rows / 16), {"a.png", rows}, {"a.tiff", rows / 20}})
        stopsEverywhere([&, path = file(name)](const Cancellation &asked) { media::readImage(path, asked); }, fewest);
}

TEST_F(Cancelling, whatALibraryDoesInOnePieceIsAbandoned) {
    std::promise<void> release;
    std::promise<bool> told;
    Countdown countdown(3);
    const auto work = [held = release.get_future().share(), &told](const Cancellation &asked) {
        held.wait();
        told.set_value(asked.requested());
        return 1;
    };
    EXPECT_THROW(media::abandonable(countdown.cancellation(), work), media::Cancelled);
    release.set_value(); // had it been waited for, this would not be reached
    EXPECT_TRUE(told.get_future().get()) << "the work may see that nobody waits for it";
    EXPECT_EQ(media::abandonable({}, [](const Cancellation &) { return 7; }), 7);
    const auto failing = [](const Cancellation &) -> int { throw std::runtime_error("no luck"); };
    EXPECT_THROW(media::abandonable({}, failing), std::runtime_error);
}

TEST_F(Cancelling, aGridThatIsCancelledIsNotRead) {
    media::writeImage(file("a.heic"), ImageKind::heif, {pictureOf(drawn(5000, 700)), {}}, 0.3);
    Countdown countdown(0);
    EXPECT_THROW(media::readImage(file("a.heic"), countdown.cancellation()), media::Cancelled);
    EXPECT_LE(countdown.asked, latecomers());
}

TEST_F(Cancelling, writersStopAndLeaveNothing) {
    const std::array outputs{std::tuple("a.jpg", ImageKind::jpeg, 3), std::tuple("a.png", ImageKind::png, rows),
                             std::tuple("a.tiff", ImageKind::tiff, rows), std::tuple("a.heic", ImageKind::heif, 5)};
    for (const auto &[name, kind, fewest] : outputs) {
        const Raster drawing = drawn(kind == ImageKind::heif ? 5000 : 200, rows);
        const auto write = [&, name = name, kind = kind](const Cancellation &asked) {
            media::writeImage(file(name), kind, {pictureOf(drawing), {}}, 0.3, asked);
        };
        write({});
        std::filesystem::remove(file(name));
        const int questions = questionsOf(write);
        std::filesystem::remove(file(name));
        ASSERT_GE(questions, fewest) << name;
        for (const int at : {0, 1, fewest - 1}) {
            Countdown countdown(at);
            EXPECT_THROW(write(countdown.cancellation()), media::Cancelled) << name << " at question " << at;
            EXPECT_LE(countdown.asked, at + latecomers()) << name << " went on after question " << at;
            expectNothing(name);
        }
    }
}

TEST_F(Cancelling, anOlderOutputStays) {
    writeFile(file("a.png"), Bytes{1, 2, 3});
    Countdown countdown(100);
    EXPECT_THROW(
        media::writeImage(file("a.png"), ImageKind::png, {pictureOf(drawn(64, rows)), {}}, 1, countdown.cancellation()),
        media::Cancelled);
    EXPECT_EQ(readFile(file("a.png")), (Bytes{1, 2, 3}));
    EXPECT_FALSE(std::filesystem::exists(file("a.png.partial")));
}

TEST_F(Cancelling, aPairStopsBetweenItsTiles) {
    const Raster eye = drawn(5000, 300);
    const auto write = [&](const Cancellation &asked) {
        media::writeSpatialPhoto(file("a.heic"), pictureOf(eye), pictureOf(eye), factsFor(5000, 300), {}, asked);
    };
    ASSERT_GE(questionsOf(write), 5);
    std::filesystem::remove(file("a.heic"));
    for (const int at : {0, 1, 4}) {
        Countdown countdown(at);
        EXPECT_THROW(write(countdown.cancellation()), media::Cancelled) << "at question " << at;
        EXPECT_LE(countdown.asked, at + latecomers());
        expectNothing("a.heic");
    }
}

TEST_F(Cancelling, picturesStopBetweenRows) {
    const media::Picture picture = pictureOf(drawn(300, rows));
    stopsEverywhere(
        [&](const Cancellation &asked) { media::convertColour(picture, media::yuv420, media::jpegColour, asked); }, 20);
    media::Picture canvas = media::makePicture(200, 400, picture.format, picture.colour);
    const media::Rect whole{0, 0, 200, 400};
    stopsEverywhere(
        [&](const Cancellation &asked) {
            media::Compositor(asked).place(picture, {{0, 0, 300, rows}, whole, whole}, canvas);
        },
        20);
    media::Picture wide = pictureOf(drawn(300, rows));
    wide.colour.primaries = 12;
    stopsEverywhere([&](const Cancellation &asked) { media::inSRGB(wide, {}, "a.png", asked); }, rows / 64);
}

TEST_F(Cancelling, aCancelledPhotoIsNotWritten) {
    const std::atomic<bool> stop = true;
    const ConversionControl control{.cancelRequested = &stop, .onFrameProgress = {}};
    writeWithMagick(drawn(200, 100), file("in.png"));
    EXPECT_FALSE(convertSBSImageToSpatial({}, file("in.png"), file("out.heic"), control).written);
    expectNothing("out.heic");
    writeSpatialPhoto(file("in.heic"), drawn(64, 64), drawn(64, 64, 2));
    for (const char *name : {"out.jpg", "out.png", "out.tiff", "out.heic"}) {
        EXPECT_FALSE(convertSpatialPhotoToSBS({}, file("in.heic"), file(name), control).written);
        expectNothing(name);
    }
}

} // namespace
} // namespace lumetwin::test
