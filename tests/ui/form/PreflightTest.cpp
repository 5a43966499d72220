// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/texts/Texts.h"
#include "support/PreflightFixture.h"
#include "ui/form/PreflightChecks.h"
#include "ui/progress/ProgressViewController.h"
#include "ui/widgets/NumberField.h"
#include "ui/widgets/ValueSlider.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QTest>

#include <gtest/gtest.h>

#include <thread>

namespace lumetwin::test {
namespace {

namespace fs = std::filesystem;

TEST_F(Preflight, NeedsAnInputThenAnOutput) {
    open().settings->inputFolderURL.reset();
    form->settings->outputFolderURL.reset();
    start();
    EXPECT_EQ(alert().message, text("error.no.input.folder"));
    EXPECT_TRUE(alert().buttons.empty());
    EXPECT_EQ(alert().style, AlertStyle::warning);
    form->settings->inputFolderURL = input;
    start();
    EXPECT_EQ(alert().message, text("error.no.output.folder"));
    EXPECT_FALSE(form->progressSheet());
}

TEST_F(Preflight, CommitsTheFieldsEvenWhenALaterStepStops) {
    open().settings->inputFolderURL.reset();
    control<QCheckBox>(*form, "enableResizeCheck").click();
    ConversionSettings &settings = *form->settings;
    control<QLineEdit>(*form, "resizeWidthField").setText(QStringLiteral("640"));
    control<QLineEdit>(*form, "fovField").setText(QStringLiteral("90"));
    control<QLineEdit>(*form, "baselineField").setText(QStringLiteral("wide"));
    settings.resizeWidth = 1;
    settings.horizontalFOV = 10;
    settings.enableResize = false;
    start();
    EXPECT_EQ(settings.resizeWidth, 640);
    EXPECT_EQ(settings.horizontalFOV, 90);
    EXPECT_EQ(settings.stereoBaseline, 19.24);
    EXPECT_TRUE(settings.enableResize);
    EXPECT_EQ(settings.resizeHeight, 1080);
}

TEST_F(Preflight, ResizeSizesAreCommittedOnlyWhileResizing) {
    open();
    control<QLineEdit>(*form, "resizeWidthField").setText(QStringLiteral("640"));
    form->settings->resizeWidth = 1920;
    form->commitFields();
    EXPECT_EQ(form->settings->resizeWidth, 1920);
}

TEST_F(Preflight, StartNamesTheInvalidField) {
    open();
    control<QRadioButton>(*form, "sbsToSpatialButton").click();
    auto &field = control<NumberField>(*form, "fovField");
    field.setText(QStringLiteral("200"));
    fakes.alerts->answers = {0};
    start();
    EXPECT_EQ(alert().message, formatted("error.field.format", text("option.fov")));
    EXPECT_EQ(alert().informative, formatted("field.range.format", std::string("10"), std::string("180")));
    EXPECT_FALSE(form->progressSheet());
    EXPECT_EQ(form->focusWidget(), &field);
    field.setText(QStringLiteral("100"));
    control<QCheckBox>(*form, "enableResizeCheck").click();
    control<QLineEdit>(*form, "resizeHeightField").setText(QStringLiteral("tall"));
    start();
    EXPECT_EQ(alert().message, formatted("error.field.format", text("resize.eye.height")));
    control<QCheckBox>(*form, "enableResizeCheck").click();
    start();
    EXPECT_TRUE(form->progressSheet()) << "a field that is not in use is not asked about";
}

TEST_F(Preflight, OrdinaryVideosTowardsSBSAreQuestioned) {
    addInputs({"a.mp4", "b.mp4"});
    open();
    fakes.alerts->answers = {0};
    start();
    EXPECT_EQ(alert().message, text("alert.direction.spatial2sbs.title"));
    EXPECT_EQ(alert().informative, text("alert.direction.spatial2sbs.message"));
    EXPECT_EQ(alert().buttons, (std::vector{text("button.fix.direction"), text("button.convert.anyway.continue")}));
    EXPECT_FALSE(form->progressSheet());
    EXPECT_EQ(form->settings->direction, ConversionDirection::spatialToSBS) << "switching is left to the user";
    fakes.alerts->answers = {1};
    start();
    EXPECT_TRUE(waitUntil([&] { return form->progressSheet() != nullptr; }));
}

TEST_F(Preflight, OneSpatialVideoAmongOrdinaryOnesIsEnoughTowardsSBS) {
    addInputs({"a.mp4", "b.mp4", "spatial.mov"});
    open();
    start();
    EXPECT_TRUE(form->progressSheet());
    EXPECT_TRUE(fakes.alerts->shown.empty());
}

TEST_F(Preflight, OneSpatialVideoAmongTenIsQuestionedTowardsSpatial) {
    addInputs(
        {"0.mp4", "1.mp4", "2.mp4", "3.mp4", "4.mp4", "5.mp4", "6.mp4", "7.mp4", "8.mp4", "9.mp4", "spatial.mov"});
    open();
    control<QRadioButton>(*form, "sbsToSpatialButton").click();
    fakes.alerts->answers = {AlertPresenter::dismissed};
    start();
    EXPECT_EQ(alert().message, text("alert.direction.sbs2spatial.title"));
    EXPECT_EQ(alert().informative, text("alert.direction.sbs2spatial.message"));
    EXPECT_FALSE(form->progressSheet());
}

TEST_F(Preflight, PhotosAreNotQuestioned) {
    addInputs({"spatial.heic", "b.jpg", "notes.txt", ".hidden.mp4"});
    open();
    start();
    EXPECT_TRUE(form->progressSheet());
    EXPECT_TRUE(fakes.alerts->shown.empty());
    open();
    control<QRadioButton>(*form, "sbsToSpatialButton").click();
    start();
    EXPECT_TRUE(form->progressSheet());
    EXPECT_TRUE(fakes.alerts->shown.empty());
}

TEST_F(Preflight, AFolderThatCannotBeListedCountsAsEmpty) {
    open().settings->inputFolderURL = input / "missing";
    start();
    EXPECT_TRUE(form->progressSheet());
    EXPECT_TRUE(fakes.alerts->shown.empty());
}

TEST_F(Preflight, ChosenFilesAreTheCandidates) {
    addInputs({"spatial.mov"});
    open().settings->inputFiles = std::vector{input / "plain.mp4", input / "b.jpg"};
    form->settings->inputFolderURL.reset();
    fakes.alerts->answers = {0};
    start();
    EXPECT_EQ(alert().message, text("alert.direction.spatial2sbs.title"));
}

TEST_F(Preflight, AVIWithoutResizingTurnsResizingOnAndStops) {
    addInputs({"spatial.mov", "old.AVI"});
    open();
    fakes.alerts->answers = {0};
    start();
    EXPECT_EQ(alert().message, text("alert.avi.title"));
    EXPECT_EQ(alert().informative, text("alert.avi.noresize.message"));
    EXPECT_EQ(alert().buttons, (std::vector{text("alert.avi.enable.resize"), text("button.convert.anyway")}));
    EXPECT_TRUE(control<QCheckBox>(*form, "enableResizeCheck").isChecked());
    EXPECT_TRUE(form->settings->enableResize);
    EXPECT_TRUE(control<QLineEdit>(*form, "resizeWidthField").isVisible());
    EXPECT_FALSE(form->progressSheet());
    start();
    EXPECT_TRUE(form->progressSheet()) << "the next press goes past the AVI step";
    EXPECT_EQ(fakes.alerts->shown.size(), 1U);
}

TEST_F(Preflight, AVIMayBeConvertedAnyway) {
    addInputs({"spatial.mov", "old.avi"});
    open();
    fakes.alerts->answers = {1};
    start();
    EXPECT_TRUE(waitUntil([&] { return form->progressSheet() != nullptr; }));
    EXPECT_FALSE(form->settings->enableResize);
}

TEST_F(Preflight, ClosingTheAVIQuestionStopsAndChangesNothing) {
    addInputs({"spatial.mov", "old.avi"});
    open();
    fakes.alerts->answers = {AlertPresenter::dismissed};
    start();
    EXPECT_FALSE(form->progressSheet());
    EXPECT_FALSE(control<QCheckBox>(*form, "enableResizeCheck").isChecked());
}

TEST_F(Preflight, OddSizesAreRefused) {
    open();
    control<QCheckBox>(*form, "enableResizeCheck").click();
    control<QLineEdit>(*form, "resizeWidthField").setText(QStringLiteral("1921"));
    start();
    EXPECT_EQ(alert().message, formatted("error.resize.odd.format", std::int64_t(1936), std::int64_t(1088)));
    EXPECT_TRUE(alert().buttons.empty());
    EXPECT_FALSE(form->progressSheet());
    control<QCheckBox>(*form, "enableResizeCheck").click();
    start();
    EXPECT_TRUE(form->progressSheet()) << "without resizing the size does not matter";
}

TEST_F(Preflight, ExistingOutputsArePredictedByName) {
    addInputs({"trip.mov", "pair.heic", "new.mov", "notes.txt"});
    for (const char *name : {"trip_sbs.mp4", "pair_sbs.jpg", "notes_sbs.mp4"})
        std::ofstream(output / name) << "x";
    ConversionSettings settings;
    settings.outputFolderURL = output;
    const std::vector<fs::path> entries{input / "trip.mov", input / "pair.heic", input / "new.mov",
                                        input / "notes.txt"};
    EXPECT_EQ(existingOutputs(entries, settings), (std::vector<std::string>{"trip_sbs.mp4", "pair_sbs.jpg"}));
    settings.sbsOutputFormat = SBSOutputFormat::movHEVC;
    settings.sbsPhotoOutputFormat = SBSPhotoOutputFormat::png;
    EXPECT_TRUE(existingOutputs(entries, settings).empty());
    settings.direction = ConversionDirection::sbsToSpatial;
    std::ofstream(output / "new_spatial.mov") << "x";
    EXPECT_EQ(existingOutputs(entries, settings), (std::vector<std::string>{"new_spatial.mov"}));
}

TEST(OverwriteQuestion, ListsFiveNamesAndTheNumberOfTheRest) {
    const std::vector<std::string> seven{"1", "2", "3", "4", "5", "6", "7"};
    const std::string more = formatted("alert.overwrite.more.format", std::int64_t(2));
    const Alert question = overwriteQuestion(seven);
    EXPECT_EQ(question.message, text("alert.overwrite.title"));
    EXPECT_EQ(question.informative, formatted("alert.overwrite.message.format", "1\n2\n3\n4\n5\n" + more));
    EXPECT_EQ(question.buttons, (std::vector{text("button.overwrite"), text("button.cancel"), text("button.keep.both"),
                                             text("button.skip")}));
    EXPECT_EQ(question.defaultButton, 1) << "Enter replaces nothing";
    EXPECT_EQ(overwriteQuestion({seven.begin(), seven.begin() + 5}).informative,
              formatted("alert.overwrite.message.format", std::string("1\n2\n3\n4\n5")));
}

TEST(OverwriteQuestion, AllNamesAreListedInOrderOnDemand) {
    EXPECT_EQ(overwriteQuestion({"f", "b", "e", "a", "d", "c"}).details, "a\nb\nc\nd\ne\nf\n");
    EXPECT_TRUE(overwriteQuestion({"f", "b", "e", "a", "d"}).details.empty()) << "the message names them all";
}

TEST_F(Preflight, OverwritingIsAskedForLast) {
    addInputs({"spatial.mov"});
    std::ofstream(output / "spatial_sbs.mp4") << "x";
    open();
    fakes.alerts->answers = {1};
    start();
    EXPECT_EQ(alert().message, text("alert.overwrite.title"));
    EXPECT_FALSE(form->progressSheet());
    fakes.alerts->answers = {0};
    start();
    EXPECT_TRUE(waitUntil([&] { return form->progressSheet() != nullptr; }));
}

TEST_F(Preflight, ExistingFilesAreReplacedKeptOrSkippedAsTheUserChooses) {
    addInputs({"spatial.mov"});
    std::ofstream(output / "spatial_sbs.mp4") << "x";
    for (const auto &[button, wanted] :
         {std::pair{0, OnExisting::replace}, {2, OnExisting::keepBoth}, {3, OnExisting::skip}}) {
        open();
        fakes.alerts->answers = {button};
        start();
        EXPECT_TRUE(waitUntil([&] { return form->progressSheet() != nullptr; }));
        EXPECT_EQ(form->settings->onExisting, wanted);
    }
    fs::remove(output / "spatial_sbs.mp4");
    form->progressSheet()->conversionFinished(true, "done");
    form->progressSheet()->closeTapped();
    EXPECT_TRUE(waitUntil([&] { return control<QPushButton>(*form, "startButton").isEnabled(); }));
    start();
    EXPECT_EQ(form->settings->onExisting, OnExisting::replace) << "an earlier answer is not for later runs";
}

TEST_F(Preflight, AnAnswerAfterTheFormIsDestroyedDoesNothing) {
    addInputs({"spatial.mov"});
    std::ofstream(output / "spatial_sbs.mp4") << "x";
    open();
    start();
    const auto answer = fakes.alerts->open;
    form.reset();
    answer(0);
}

TEST_F(Preflight, TheSheetCoversTheFormUntilItIsClosed) {
    services.runBatch = [](VideoProcessor &processor) { processor.onComplete(true, "done"); };
    open();
    auto &scroll = control<QScrollArea>(*form, "scrollView");
    start();
    ASSERT_TRUE(form->progressSheet());
    EXPECT_FALSE(scroll.isEnabled());
    EXPECT_FALSE(control<QPushButton>(*form, "startButton").isEnabled());
    EXPECT_TRUE(form->progressSheet()->parentWidget()->geometry().contains(
        control<QPushButton>(*form, "startButton").geometry()));
    EXPECT_TRUE(waitUntil([&] { return !form->isConverting(); }));
    EXPECT_FALSE(scroll.isEnabled()) << "until the sheet is closed";
    form->progressSheet()->closeTapped();
    EXPECT_TRUE(waitUntil([&] { return scroll.isEnabled(); }));
    EXPECT_FALSE(form->progressSheet());
    EXPECT_EQ(form->focusWidget(), &control<QPushButton>(*form, "startButton"));
}

TEST_F(Preflight, AfterStopTheFormWaitsForTheBatchToEnd) {
    std::atomic<bool> hold{true};
    services.runBatch = [&](VideoProcessor &processor) {
        while (hold)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        EXPECT_TRUE(processor.cancelRequested);
        processor.onComplete(false, "stopped");
    };
    open();
    start();
    fakes.alerts->answers = {0};
    form->progressSheet()->cancelTapped();
    EXPECT_FALSE(form->progressSheet());
    EXPECT_FALSE(form->isConverting());
    auto &button = control<QPushButton>(*form, "startButton");
    EXPECT_FALSE(button.isEnabled()) << "two runs must not write the same files";
    EXPECT_EQ(button.text().toStdString(), text("button.stopping"));
    hold = false;
    EXPECT_TRUE(waitUntil([&] { return button.isEnabled(); }));
    EXPECT_EQ(button.accessibleName().toStdString(), text("button.start.conversion"));
    EXPECT_EQ(fakes.alerts->shown.size(), 1U) << "no alert about the end of a stopped run";
}

} // namespace
} // namespace lumetwin::test
