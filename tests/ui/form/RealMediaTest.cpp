// SPDX-License-Identifier: GPL-3.0-or-later
// The form and its checks with real media instead of fake answers.
#include "engine/batch/VideoProcessor.h"
#include "engine/texts/Texts.h"
#include "support/Scripted.h"
#include "tests/support/BoxEdits.h"
#include "tests/support/Clips.h"
#include "tests/support/Paths.h"
#include "tests/support/TestMedia.h"
#include "ui/form/MainViewController.h"
#include "ui/form/SpatialCheck.h"
#include "ui/progress/ProgressViewController.h"
#include "ui/widgets/BackgroundThreads.h"

#include <QImage>
#include <QPushButton>
#include <QRadioButton>

#include <gtest/gtest.h>

namespace lumetwin::test {
namespace {

namespace fs = std::filesystem;

class RealMedia : public testing::Test {
protected:
    fs::path spatialMovie(const std::string &name) {
        const fs::path clip = draw(folder / "clip.mp4");
        VideoProcessor(settings).convertVideo(clip, folder / "written_spatial.mov");
        fs::rename(folder / "written_spatial.mov", folder / name);
        return folder / name;
    }
    fs::path sideBySidePhoto(const std::string &name, int width = 640, int height = 180) {
        QImage picture(width, height, QImage::Format_RGB32);
        picture.fill(Qt::gray);
        const fs::path photo = folder / name;
        EXPECT_TRUE(picture.save(QString::fromStdString(photo.string())));
        return photo;
    }

    static std::shared_ptr<ConversionSettings> toSpatial() {
        auto made = std::make_shared<ConversionSettings>();
        made->direction = ConversionDirection::sbsToSpatial;
        return made;
    }

    TemporaryFolder folder;
    std::shared_ptr<ConversionSettings> settings = toSpatial();
};

TEST_F(RealMedia, ASpatialMovieIsShownWithItsValues) {
    const SpatialFinding finding = inspectFile(spatialMovie("clip.MOV"), MediaOperations::inProcess());
    EXPECT_TRUE(finding.isSpatial);
    EXPECT_EQ(finding.values.horizontalFOV, 63.4);
    EXPECT_EQ(finding.values.stereoBaseline, 19.24);
    EXPECT_EQ(finding.values.disparity, 2.0);
}

TEST_F(RealMedia, AFieldOfViewWithoutABaselineIsNotSpatial) {
    const fs::path movie = remuxed(spatialMovie("written.mov"), folder / "clip.mov");
    renameBox(movie, "blin", "free");
    const SpatialFinding finding = inspectFile(movie, MediaOperations::inProcess());
    EXPECT_FALSE(finding.isSpatial);
    EXPECT_EQ(finding.values.horizontalFOV, 63.4);
    EXPECT_EQ(spatialCheckAlert(movie, finding).style, AlertStyle::warning);
}

TEST_F(RealMedia, ASpatialPhotoIsShownWithItsValues) {
    const fs::path photo = folder / "pair.HEIC";
    VideoProcessor(settings).convertPhoto(sideBySidePhoto("pair.png"), folder / "pair_spatial.heic");
    fs::rename(folder / "pair_spatial.heic", photo);
    const SpatialFinding finding = inspectFile(photo, MediaOperations::inProcess());
    EXPECT_TRUE(finding.isSpatial);
    ASSERT_TRUE(finding.values.stereoBaseline);
    EXPECT_NEAR(*finding.values.stereoBaseline, 19.24, 0.01);
}

TEST_F(RealMedia, ASideBySidePictureIsNamedAsSuch) {
    for (const fs::path &file : {sideBySidePhoto("pair.png"), draw(folder / "clip.mp4")}) {
        const Alert alert = spatialCheckAlert(file, inspectFile(file, MediaOperations::inProcess()));
        EXPECT_EQ(alert.message, formatted("alert.check.side.by.side.format", file.filename().string()));
    }
    const fs::path single = sideBySidePhoto("single.png", 320, 180);
    EXPECT_EQ(spatialCheckAlert(single, inspectFile(single, MediaOperations::inProcess())).message,
              formatted("alert.spatial.check.no.title", std::string("single.png")));
}

TEST_F(RealMedia, TheDirectionIsQuestionedByWhatTheFilesAre) {
    FakeServices fakes;
    FormServices services = fakes.services();
    services.isSpatialVideo = FormServices().isSpatialVideo;
    services.runBatch = [](VideoProcessor &) {};
    MainViewController form(services);
    const fs::path movie = spatialMovie("clip_spatial.mov");
    form.settings->inputFiles = {folder / "clip.mp4"};
    form.settings->outputFolderURL = folder.path();
    fakes.alerts->answers = {0, 0};
    control<QPushButton>(form, "startButton").click();
    ASSERT_TRUE(waitUntil([&] { return fakes.alerts->shown.size() == 1; }));
    EXPECT_EQ(fakes.alerts->shown.back().message, text("alert.direction.spatial2sbs.title"));
    processPendingEvents();
    control<QRadioButton>(form, "sbsToSpatialButton").click();
    form.settings->inputFiles = {folder / "clip.mp4", movie};
    control<QPushButton>(form, "startButton").click();
    ASSERT_TRUE(waitUntil([&] { return fakes.alerts->shown.size() == 2; }));
    EXPECT_EQ(fakes.alerts->shown.back().message, text("alert.direction.sbs2spatial.title"));
    processPendingEvents();
    EXPECT_FALSE(form.progressSheet());
    BackgroundThreads::shared().waitForAll(testTimeout);
}

} // namespace
} // namespace lumetwin::test
