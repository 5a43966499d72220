// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/texts/Texts.h"
#include "support/FormFixture.h"
#include "ui/files/DropFolderView.h"
#include "ui/form/MainViewController.h"
#include "ui/form/PreflightChecks.h"
#include "ui/form/ResizePreview.h"
#include "ui/form/SectionView.h"
#include "ui/progress/ProgressViewController.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/NumberField.h"
#include "ui/widgets/Palettes.h"
#include "ui/widgets/ValueSlider.h"

#include <QAccessible>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>
#include <QToolButton>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace lumetwin::test {
namespace {

namespace fs = std::filesystem;

TEST_F(MainForm, StartsWithTheDefaultsOfTheSettings) {
    EXPECT_TRUE(find<QRadioButton>("spatialToSBSButton").isChecked());
    EXPECT_EQ(field("fovField").text(), QStringLiteral("63.4"));
    EXPECT_EQ(field("disparityField").text(), QStringLiteral("2.00"));
    EXPECT_EQ(field("baselineField").text(), QStringLiteral("19.24"));
    EXPECT_EQ(slider("fovSlider").doubleValue(), settings.horizontalFOV);
    EXPECT_EQ(slider("disparitySlider").doubleValue(), settings.disparityAdjustment);
    EXPECT_EQ(slider("baselineSlider").doubleValue(), settings.stereoBaseline);
    EXPECT_EQ(slider("compressionSlider").doubleValue(), settings.compressionQuality);
    EXPECT_EQ(label("compressionLabel"), QStringLiteral("75%"));
    EXPECT_EQ(find<QComboBox>("formatPopup").currentIndex(), 0);
    EXPECT_EQ(find<QComboBox>("photoFormatPopup").currentIndex(), 0);
    EXPECT_EQ(find<QComboBox>("resizeModePopup").currentIndex(), 2);
    EXPECT_EQ(find<QComboBox>("inputLayoutPopup").currentIndex(), 0);
    EXPECT_EQ(find<QComboBox>("inputLayoutPopup").count(), static_cast<int>(allInputLayouts.size()));
    EXPECT_TRUE(find<QCheckBox>("copyAudioCheck").isChecked());
    EXPECT_FALSE(find<QCheckBox>("keepTimingCheck").isChecked());
    for (const char *off : {"halfWidthCheck", "swapLRCheck", "enableResizeCheck"})
        EXPECT_FALSE(find<QCheckBox>(off).isChecked()) << off;
    EXPECT_EQ(field("resizeWidthField").text(), QStringLiteral("1920"));
    EXPECT_EQ(field("resizeHeightField").text(), QStringLiteral("1080"));
    EXPECT_EQ(label("titleLabel"), QStringLiteral("Lumetwin"));
    EXPECT_EQ(label("inputPathLabel"), QStringLiteral("Nothing selected"));
    EXPECT_EQ(find<QPushButton>("startButton").text(), QStringLiteral("▶  Start Conversion"));
}

TEST_F(MainForm, EveryTextFadesWhileTheFormIsDisabled) {
    for (const QLabel *label : form.findChildren<QLabel *>())
        EXPECT_NE(label->palette().color(QPalette::Disabled, QPalette::WindowText),
                  label->palette().color(QPalette::Active, QPalette::WindowText))
            << label->objectName().toStdString() << ": " << label->text().toStdString();
}

TEST_F(MainForm, MenusHoldTheFormatsInOrder) {
    const auto items = [](QComboBox &popup) {
        QStringList list;
        for (int i = 0; i < popup.count(); ++i)
            list << popup.itemText(i);
        return list.join(QLatin1Char('|')).toStdString();
    };
    EXPECT_EQ(items(find<QComboBox>("formatPopup")),
              "MP4 (H.264)|MP4 (H.265/HEVC)|MOV (HEVC)|MKV (H.264)|MKV (H.265/HEVC)");
    EXPECT_EQ(items(find<QComboBox>("photoFormatPopup")), "JPEG|PNG|TIFF|HEIC");
    EXPECT_EQ(items(find<QComboBox>("resizeModePopup")),
              "Stretch to output size (ignore aspect ratio)|Preserve aspect ratio (center crop)|"
              "Preserve aspect ratio (letterbox)");
}

TEST_F(MainForm, DirectionSwitchesTheOptions) {
    EXPECT_TRUE(find<QWidget>("sbsOptionsView").isVisible());
    EXPECT_FALSE(find<QWidget>("spatialOptionsView").isVisible());
    find<QRadioButton>("sbsToSpatialButton").click();
    EXPECT_EQ(settings.direction, ConversionDirection::sbsToSpatial);
    EXPECT_FALSE(find<QWidget>("sbsOptionsView").isVisible());
    EXPECT_TRUE(find<QWidget>("spatialOptionsView").isVisible());
    EXPECT_EQ(find<SectionView>("optionsSection").height(), 160);
    find<QRadioButton>("sbsToSpatialButton").setFocus();
    QTest::keyClick(&find<QRadioButton>("sbsToSpatialButton"), Qt::Key_Up);
    EXPECT_EQ(settings.direction, ConversionDirection::spatialToSBS) << "arrow keys choose as well";
    EXPECT_EQ(find<SectionView>("optionsSection").height(), 180);
}

TEST_F(MainForm, ResizePreviewFollowsEveryChange) {
    find<QCheckBox>("enableResizeCheck").click();
    EXPECT_TRUE(settings.enableResize);
    const auto shown = [this] { return label("resizeWarningLabel").toStdString(); };
    EXPECT_EQ(shown(), resizePreview(settings));
    type("resizeWidthField", "1921");
    EXPECT_EQ(settings.resizeWidth, 1921);
    EXPECT_EQ(shown(), resizePreview(settings));
    EXPECT_NE(shown().find("3842"), std::string::npos);
    find<QCheckBox>("halfWidthCheck").click();
    EXPECT_EQ(shown(), resizePreview(settings));
    EXPECT_EQ(shown().find("3842"), std::string::npos);
    find<QRadioButton>("sbsToSpatialButton").click();
    EXPECT_EQ(shown(), resizePreview(settings));
}

TEST_F(MainForm, ResizeRowsAppearOnlyWhileResizing) {
    const std::vector<const char *> rows{"resizeWidthField", "resizeHeightField", "resizeModePopup",
                                         "resizeWarningLabel"};
    for (const char *row : rows)
        EXPECT_FALSE(find<QWidget>(row).isVisible()) << row;
    find<QCheckBox>("enableResizeCheck").click();
    for (const char *row : rows)
        EXPECT_TRUE(find<QWidget>(row).isVisible()) << row;
    EXPECT_EQ(find<SectionView>("commonSection").height(), 248);
    find<QCheckBox>("enableResizeCheck").click();
    EXPECT_FALSE(settings.enableResize);
    EXPECT_EQ(find<SectionView>("commonSection").height(), 138);
}

TEST_F(MainForm, ChecksAndMenusStoreTheirChoice) {
    find<QCheckBox>("swapLRCheck").click();
    find<QCheckBox>("copyAudioCheck").click();
    find<QCheckBox>("keepTimingCheck").click();
    find<QCheckBox>("halfWidthCheck").click();
    EXPECT_TRUE(settings.swapLeftRight);
    EXPECT_FALSE(settings.copyAudio);
    EXPECT_TRUE(settings.keepTiming);
    EXPECT_TRUE(settings.halfWidth);
    find<QComboBox>("formatPopup").setCurrentIndex(2);
    EXPECT_EQ(settings.sbsOutputFormat, SBSOutputFormat::movHEVC);
    find<QComboBox>("formatPopup").setCurrentIndex(4);
    EXPECT_EQ(settings.sbsOutputFormat, SBSOutputFormat::mkvH265);
    find<QComboBox>("photoFormatPopup").setCurrentIndex(3);
    EXPECT_EQ(settings.sbsPhotoOutputFormat, SBSPhotoOutputFormat::heic);
    EXPECT_TRUE(slider("compressionSlider").isEnabled()) << "quality stays available for every format";
    find<QComboBox>("inputLayoutPopup").setCurrentIndex(4);
    EXPECT_EQ(settings.inputLayout, InputLayout::halfOverUnder);
    find<QComboBox>("resizeModePopup").setCurrentIndex(0);
    EXPECT_EQ(settings.resizeMode, ResizeMode::stretch);
    form.resizeModeChanged(7);
    EXPECT_EQ(settings.resizeMode, ResizeMode::letterbox);
}

TEST_F(MainForm, QualityIsShownTruncated) {
    form.compressionChanged(0.756);
    EXPECT_EQ(settings.compressionQuality, 0.756);
    EXPECT_EQ(label("compressionLabel"), QStringLiteral("75%"));
    for (int percent = 0; percent <= 100; ++percent) {
        slider("compressionSlider").setValue(percent);
        EXPECT_EQ(label("compressionLabel"), QStringLiteral("%1%").arg(percent));
    }
}

TEST_F(MainForm, NamesTheUnitsOfItsValues) {
    std::vector<std::string> words;
    for (const QLabel *label : form.findChildren<QLabel *>())
        words.push_back(label->text().toStdString());
    for (const char *unit : {"\u00B0", "%", "mm", "px"})
        EXPECT_THAT(words, testing::Contains(unit)) << unit;
}

TEST_F(MainForm, PartsAreAtTheirPositions) {
    EXPECT_EQ(find<QWidget>("startButton").geometry(), QRect(20, 764, 680, 48));
    EXPECT_EQ(find<QWidget>("commonSection").geometry(), QRect(20, 612, 680, 138));
    EXPECT_EQ(find<QWidget>("optionsSection").geometry(), QRect(20, 418, 680, 180));
    EXPECT_EQ(find<QWidget>("outputSection").geometry(), QRect(20, 304, 680, 100));
    EXPECT_EQ(find<QWidget>("inputSection").geometry(), QRect(20, 190, 680, 100));
    EXPECT_EQ(find<QWidget>("directionSection").geometry(), QRect(20, 100, 680, 76));
    EXPECT_EQ(find<QWidget>("headerView").geometry(), QRect(0, 18, 720, 68));
    EXPECT_EQ(find<QWidget>("inputDropView").geometry(), QRect(14, 24, 320, 36));
    EXPECT_EQ(find<QWidget>("inputSelectBtn").geometry(), QRect(344, 26, 150, 32));
    EXPECT_EQ(find<QWidget>("checkSpatialBtn").geometry(), QRect(504, 26, 150, 32));
    EXPECT_EQ(find<QWidget>("inputPathLabel").geometry(), QRect(14, 70, 650, 18));
    EXPECT_EQ(find<QWidget>("spatialToSBSButton").geometry(), QRect(16, 22, 380, 22));
    EXPECT_EQ(find<QWidget>("sbsToSpatialButton").geometry(), QRect(16, 46, 380, 22));
}

TEST_F(MainForm, ScrollsToTheTopAfterLayingOut) {
    form.resize(720, 500);
    processPendingEvents();
    auto *bar = find<QScrollArea>("scrollView").verticalScrollBar();
    bar->setValue(bar->maximum());
    EXPECT_GT(bar->value(), 0);
    find<QRadioButton>("sbsToSpatialButton").click();
    EXPECT_EQ(bar->value(), 0);
}

TEST_F(MainForm, SizeFieldsBecomeVisibleInALowWindow) {
    form.resize(720, 500);
    processPendingEvents();
    find<QCheckBox>("enableResizeCheck").setFocus();
    QTest::keyClick(&find<QCheckBox>("enableResizeCheck"), Qt::Key_Space);
    processPendingEvents();
    EXPECT_FALSE(field("resizeWidthField").visibleRegion().isEmpty());
    EXPECT_FALSE(find<QWidget>("enableResizeCheck").visibleRegion().isEmpty());
}

TEST_F(MainForm, NeedsNoSidewaysScrolling) {
    for (const int height : {860, 500}) {
        form.resize(720, height);
        processPendingEvents();
        EXPECT_FALSE(find<QScrollArea>("scrollView").horizontalScrollBar()->isVisible()) << height;
        EXPECT_EQ(find<QWidget>("startButton").width(), 680);
    }
}

TEST_F(MainForm, AFolderReplacesFilesAndFilesReplaceAFolder) {
    const fs::path folder = scratch.folder("in");
    choose({folder});
    EXPECT_EQ(settings.inputFolderURL, folder);
    EXPECT_FALSE(settings.inputFiles);
    EXPECT_EQ(label("inputPathLabel").toStdString(), folder.string());
    const fs::path file = scratch.file("clip.mov");
    choose({file});
    EXPECT_FALSE(settings.inputFolderURL);
    EXPECT_EQ(settings.inputFiles, std::vector{file});
    EXPECT_EQ(label("inputPathLabel").toStdString(), file.string());
    EXPECT_TRUE(find<DropFolderView>("inputDropView").hasContent());
}

TEST_F(MainForm, OneChosenFileOfAnyTypeIsAccepted) {
    const fs::path file = scratch.file("notes.txt");
    choose({file});
    EXPECT_EQ(settings.inputFiles, std::vector{file});
}

TEST_F(MainForm, SeveralChosenItemsAreReducedToMediaSortedByName) {
    const fs::path folder = scratch.folder("mixed");
    for (const char *name : {"b.heic", "notes.txt", ".hidden.mov"})
        std::ofstream(folder / name) << "x";
    const fs::path late = scratch.file("z.mp4"), text = scratch.file("a.txt"), early = scratch.file("B.MOV");
    choose({late, folder, text, early});
    EXPECT_EQ(settings.inputFiles, (std::vector{early, folder / "b.heic", late}));
    EXPECT_EQ(label("inputPathLabel"), QStringLiteral("3 files selected"));
    choose({text, scratch.file("b.txt")});
    EXPECT_EQ(settings.inputFiles->size(), 3U) << "a selection without media is ignored";
}

TEST_F(MainForm, OutputIsAFolder) {
    const fs::path folder = scratch.folder("out");
    fakes.panels->choice = {folder};
    find<QPushButton>("outputSelectBtn").click();
    EXPECT_EQ(settings.outputFolderURL, folder);
    EXPECT_EQ(label("outputPathLabel").toStdString(), folder.string());
    EXPECT_FALSE(find<DropFolderView>("outputDropView").onFilesDropped) << "files dropped there choose nothing";
}

TEST_F(MainForm, DropsFillInputAndOutput) {
    const fs::path folder = scratch.folder("in");
    EXPECT_TRUE(form.openInput({folder}));
    EXPECT_EQ(settings.inputFolderURL, folder);
    EXPECT_TRUE(form.openInput({scratch.file("b.mov"), scratch.file("a.mov")}));
    ASSERT_TRUE(settings.inputFiles);
    EXPECT_EQ(settings.inputFiles->front().filename(), "a.mov");
    EXPECT_FALSE(settings.inputFolderURL);
    EXPECT_TRUE(find<DropFolderView>("outputDropView").acceptPaths({folder}));
    EXPECT_EQ(settings.outputFolderURL, folder);
}

TEST_F(MainForm, WarnsAtOnceAboutAVIWithoutResizing) {
    const fs::path folder = scratch.folder("in");
    std::ofstream(folder / "old.AVI") << "x";
    fakes.alerts->answers = {1};
    choose({folder});
    ASSERT_EQ(fakes.alerts->shown.size(), 1U);
    const Alert &alert = fakes.alerts->shown.front();
    EXPECT_EQ(alert.message, text("alert.avi.title"));
    EXPECT_EQ(alert.informative, text("alert.avi.message"));
    EXPECT_EQ(alert.buttons, (std::vector{text("alert.avi.enable.resize"), text("button.continue")}));
    EXPECT_FALSE(settings.enableResize) << "continuing changes nothing";
    fakes.alerts->answers = {0};
    EXPECT_TRUE(form.openInput({folder / "old.AVI", scratch.file("b.mov")}));
    EXPECT_EQ(fakes.alerts->shown.size(), 2U);
    EXPECT_TRUE(settings.enableResize);
    EXPECT_TRUE(find<QCheckBox>("enableResizeCheck").isChecked());
    EXPECT_TRUE(field("resizeWidthField").isVisible());
    EXPECT_TRUE(form.openInput({folder}));
    EXPECT_EQ(fakes.alerts->shown.size(), 2U) << "with resizing on there is nothing to warn of";
}

TEST_F(MainForm, AnOutputFolderThatCannotBeWrittenToIsRefusedWhenItIsChosen) {
    fakes.panels->choice = {"/proc"};
    find<QPushButton>("outputSelectBtn").click();
    ASSERT_EQ(fakes.alerts->shown.size(), 1U);
    EXPECT_EQ(fakes.alerts->shown.front().message, formatted("error.output.unwritable.format", std::string("proc")));
    EXPECT_FALSE(settings.outputFolderURL);
    auto &box = find<DropFolderView>("outputDropView");
    EXPECT_FALSE(box.hasContent());
    EXPECT_FALSE(box.acceptPaths({"/proc"})) << "nor when it is dropped";
    EXPECT_FALSE(settings.outputFolderURL);
    EXPECT_TRUE(box.isRefusing());
}

TEST_F(MainForm, AVIFilesAreAskedAboutOnce) {
    const fs::path file = scratch.file("old.avi");
    fakes.alerts->answers = {1};
    choose({file});
    settings.outputFolderURL = scratch.folder("out");
    EXPECT_EQ(fakes.alerts->shown.size(), 1U);
    fakes.alerts->answers = {1, 1};
    find<QPushButton>("startButton").click();
    EXPECT_TRUE(waitUntil([this] { return form.progressSheet() || fakes.alerts->shown.size() > 2; }));
    for (std::size_t later = 1; later < fakes.alerts->shown.size(); ++later)
        EXPECT_NE(fakes.alerts->shown[later].message, text("alert.avi.title"));
    ASSERT_TRUE(waitUntil([this] { return form.progressSheet() && !form.isConverting(); }));
    form.progressSheet()->closeTapped();
    ASSERT_TRUE(waitUntil([this] { return find<QPushButton>("startButton").isEnabled(); }));
    fakes.alerts->answers = {1};
    choose({scratch.file("another.avi")});
    EXPECT_EQ(fakes.alerts->shown.back().message, text("alert.avi.title")) << "of another input again";
}

TEST(SectionView, TitleFitsItsText) {
    SectionView box(QStringLiteral("Title"));
    box.resize(680, 100);
    box.show();
    const QLabel &title = *box.titleLabel;
    EXPECT_EQ(title.x(), 12);
    EXPECT_EQ(title.y(), 6);
    EXPECT_EQ(title.width(), title.fontMetrics().horizontalAdvance(title.text()) + 4);
    SectionView wide(QStringLiteral("A title that is a good deal longer than the other one"));
    wide.resize(680, 100);
    wide.show();
    EXPECT_GT(wide.titleLabel->width(), title.width());
    EXPECT_EQ(wide.titleLabel->y(), 6);
}

} // namespace
} // namespace lumetwin::test
