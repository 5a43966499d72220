// SPDX-License-Identifier: GPL-3.0-or-later
// Previews by workers, and by workers that lie about them.
#include "engine/ConversionInput.h"
#include "engine/texts/ProcessorError.h"
#include "media/MediaError.h"
#include "tests/support/Clips.h"
#include "tests/worker/Handed.h"
#include "worker/ConfinedOperations.h"

#include <chrono>
#include <cstring>
#include <gtest/gtest.h>
#include <thread>

namespace lumetwin::test {
namespace {

const PreviewRequest request{
    .layout = {}, .position = 0.5, .detail = PreviewDetail::exact, .maximumWidth = 32, .maximumHeight = 16};

/// Operations whose worker draws as the name of its input says.
class Painted {
public:
    explicit Painted(const std::string &behaviour) {
        for (const std::string &name : {behaviour, std::string("draws")})
            writeFile(folder_ / (name + ".mov"), std::string("input"));
    }

    StereoPreview preview(const std::string &name) const { return operations_.preview(file(name), request); }
    std::filesystem::path file(const std::string &name) const { return folder_ / (name + ".mov"); }
    const MediaOperations &operations() const { return operations_; }

    /// The id of the process that draws.
    pid_t painter() const {
        const StereoPreview drawn = preview("draws");
        pid_t number = 0;
        std::memcpy(&number, drawn.left.pixels->data(), sizeof number);
        return number;
    }

private:
    TemporaryFolder folder_;
    MediaOperations operations_ = worker::confinedOperations(std::make_shared<worker::Workers>(TEST_WORKER));
};

TEST(WorkerPreview, comesFromOneLongLivedWorker) {
    const Painted painted("draws");
    const StereoPreview drawn = painted.preview("draws");
    EXPECT_EQ(drawn.width, 32);
    EXPECT_EQ(drawn.height, 16);
    EXPECT_EQ(drawn.left.pixels->size(), 32U * 16 * 4);
    EXPECT_EQ(drawn.right.pixels->front(), 0);
    EXPECT_NE(painted.painter(), getpid());
    EXPECT_EQ(painted.painter(), painted.painter());
    EXPECT_NE(painted.painter(), painted.operations().lookAtFile(painted.file("draws")).values.horizontalFOV)
        << "not the worker that looks";
}

TEST(WorkerPreview, getsTheRightEye) {
    const Painted painted("other");
    const ConversionInput pair(media::InputFile(painted.file("draws")), media::InputFile(painted.file("other")));
    EXPECT_EQ(painted.operations().preview(pair, request).right.pixels->front(), 1);
}

TEST(WorkerPreview, doesNotWaitForAnother) {
    const Painted painted("waits with a preview");
    std::thread waiting([&] { EXPECT_EQ(painted.preview("waits with a preview").width, 32); });
    std::this_thread::sleep_for(std::chrono::milliseconds(300)); // so that it has most likely begun
    EXPECT_EQ(painted.preview("draws").width, 32);
    writeFile(painted.file("waits with a preview"), std::string("go"));
    waiting.join();
}

TEST(WorkerPreview, liesAboutItsSizeAreErrors) {
    for (const char *name :
         {"lies about the width", "lies about the height", "cuts the pixels off", "makes the pixels larger"}) {
        const Painted painted(name);
        EXPECT_THROW(painted.preview(name), media::MediaError) << name;
        EXPECT_EQ(painted.preview("draws").width, 32) << "the next one is drawn";
    }
    EXPECT_THROW(Painted("tells of no picture").preview("tells of no picture"), ProcessorError);
}

TEST(WorkerPreview, errorsKeepTheirType) {
    const Painted painted("fails in media");
    const pid_t painter = painted.painter();
    try {
        painted.preview("fails in media");
        FAIL() << "no error";
    } catch (const media::MediaError &error) {
        EXPECT_EQ(error.reason(), media::MediaReason::endsEarly);
        EXPECT_EQ(error.file(), painted.file("fails in media"));
    }
    EXPECT_EQ(painted.painter(), painter) << "the worker stays";
}

TEST(WorkerPreview, aWorkerThatFallsOverIsReplaced) {
    const Painted painted("falls over at a look");
    const pid_t painter = painted.painter();
    EXPECT_THROW(painted.preview("falls over at a look"), ProcessorError);
    EXPECT_NE(painted.painter(), painter);
}

TEST(WorkerPreview, isTheSameAsWithoutAWorker) {
    const TemporaryFolder folder;
    draw(folder / "a.mp4", {});
    drawStereo(folder / "b.mov", {});
    output({"convert", "-size", "640x240", "plasma:tomato-navy", (folder / "c.jpg").string()});
    const MediaOperations confined =
        worker::confinedOperations(std::make_shared<worker::Workers>(LUMETWIN_WORKER_PROGRAM));
    for (const char *name : {"a.mp4", "b.mov", "c.jpg"}) {
        const StereoPreview one = confined.preview(folder / name, request);
        const StereoPreview other = MediaOperations::inProcess().preview(folder / name, request);
        ASSERT_TRUE(one.hasBothEyes) << name;
        EXPECT_EQ(one.width, other.width) << name;
        EXPECT_EQ(one.seconds, other.seconds) << name;
        EXPECT_EQ(one.duration, other.duration) << name;
        EXPECT_EQ(*one.left.pixels, *other.left.pixels) << name;
        EXPECT_EQ(*one.right.pixels, *other.right.pixels) << name;
        EXPECT_NE(*one.left.pixels, *one.right.pixels) << name;
    }
    writeFile(folder / "d.jpg", std::string("no picture"));
    EXPECT_THROW(confined.preview(folder / "d.jpg", request), media::MediaError);
}

} // namespace
} // namespace lumetwin::test
