// SPDX-License-Identifier: GPL-3.0-or-later
// The panel of files with real pictures.
#include "support/PanelFixture.h"

namespace lumetwin::test {
namespace {

TEST_F(FilesPanelTest, SaysWhatEachFileIsAndWhatWillHappenToIt) {
    pair("a.jpg");
    flat("b.jpg");
    text("c.jpg");
    text("d.txt");
    open();
    waitForLooks();
    EXPECT_TRUE(files().isVisible());
    EXPECT_EQ(state("a.jpg"), "Becomes a_spatial.heic");
    EXPECT_EQ(state("b.jpg"), "The picture does not look like two eyes.");
    EXPECT_EQ(state("c.jpg").find("Cannot be read: "), 0u) << state("c.jpg");
    EXPECT_EQ(state("d.txt"), "Not supported, will not be converted");
    EXPECT_EQ(totals().toStdString(), "4 files, 1 will be skipped, 1 cannot be read");
    EXPECT_EQ(rows()[0].look->thumbnail.width() / 2, rows()[0].look->picture->width) << "both eyes";
}

TEST_F(FilesPanelTest, DeleteTakesAFileOutOfTheRun) {
    pair("a.jpg");
    pair("b.jpg", 2);
    open();
    waitForLooks();
    select(0);
    QTest::keyClick(&part<FileListView>("fileList"), Qt::Key_Delete);
    EXPECT_EQ(state("a.jpg"), "Left out");
    EXPECT_EQ(form().settings->leftOut, std::set<fs::path>{input.path / "a.jpg"});
    form().startConversion();
    ASSERT_TRUE(waitUntil([this] { return rows()[1].result.has_value(); }));
    ASSERT_TRUE(waitUntil([this] {
        return form().progressSheet() && form().progressSheet()->state() == ProgressViewController::State::finished;
    }));
    EXPECT_FALSE(rows()[0].result);
    EXPECT_TRUE(fs::exists(output.path / "b_spatial.heic"));
    EXPECT_FALSE(fs::exists(output.path / "a_spatial.heic"));
    QTest::keyClick(&part<FileListView>("fileList"), Qt::Key_Space);
    EXPECT_EQ(state("a.jpg"), "Becomes a_spatial.heic") << "taken back in";
}

TEST_F(FilesPanelTest, AdviceLeavesOutWhatIsNoStereo) {
    pair("a.jpg");
    flat("b.jpg");
    open();
    waitForLooks();
    ASSERT_TRUE(waitUntil([this] { return part<QWidget>("filesAdvice").isVisible(); }));
    EXPECT_FALSE(part<QPushButton>("filesTurnButton").isVisible());
    part<QPushButton>("filesLeaveOutButton").click();
    EXPECT_EQ(state("b.jpg"), "Left out");
    EXPECT_EQ(form().settings->leftOut, std::set<fs::path>{input.path / "b.jpg"});
    EXPECT_TRUE(waitUntil([this] { return !part<QWidget>("filesAdvice").isVisible(); }));
}

TEST_F(FilesPanelTest, AdviceTurnsTheDirectionRound) {
    pair("a.jpg");
    open(ConversionDirection::spatialToSBS);
    waitForLooks();
    EXPECT_EQ(state("a.jpg"), "Will be skipped: not spatial media");
    ASSERT_TRUE(waitUntil([this] { return part<QPushButton>("filesTurnButton").isVisible(); }));
    part<QPushButton>("filesTurnButton").click();
    EXPECT_EQ(form().settings->direction, ConversionDirection::sbsToSpatial);
    EXPECT_EQ(state("a.jpg"), "Becomes a_spatial.heic");
}

TEST_F(FilesPanelTest, ConvertsAgainWhatFailed) {
    pair("a.jpg");
    text("b.jpg");
    open();
    waitForLooks();
    form().startConversion();
    const auto isOver = [this] {
        return form().progressSheet() && form().progressSheet()->state() == ProgressViewController::State::finished;
    };
    ASSERT_TRUE(waitUntil(isOver));
    form().progressSheet()->closeTapped();
    ASSERT_TRUE(waitUntil([this] { return !files().model().isRunning() && form().isVisible(); }));
    EXPECT_EQ(state("b.jpg").find("Failed: "), 0u) << state("b.jpg");
    const auto written = fs::last_write_time(output.path / "a_spatial.heic");
    pair("b.jpg", 3); // now it is a picture
    ASSERT_TRUE(waitUntil([this] { return part<QPushButton>("filesAgainButton").isVisible(); }));
    part<QPushButton>("filesAgainButton").click();
    ASSERT_TRUE(waitUntil(isOver));
    ASSERT_TRUE(waitUntil([this] { return !files().model().isRunning(); }));
    EXPECT_TRUE(fs::exists(output.path / "b_spatial.heic"));
    EXPECT_EQ(fs::last_write_time(output.path / "a_spatial.heic"), written) << "it was converted already";
    EXPECT_EQ(state("b.jpg").find("Converted"), 0u) << state("b.jpg");
    EXPECT_TRUE(rows()[0].result->wasConverted()) << "the first result stays";
    EXPECT_TRUE(form().settings->leftOut.empty()) << "the next run takes all files";
}

TEST_F(FilesPanelTest, TheRunCountsFilesByTheirFrames) {
    pair("a.jpg");
    text("b.jpg"); // will not be converted
    open();
    waitForLooks();
    double last = 0;
    QObject::connect(&form(), &MainViewController::batchProgressed, [&](double fraction) { last = fraction; });
    std::vector<double> begins;
    QObject::connect(&form(), &MainViewController::fileBegan, [&] { begins.push_back(last); });
    form().startConversion();
    ASSERT_TRUE(waitUntil([&] { return !begins.empty() && !files().model().isRunning(); }));
    EXPECT_EQ(begins, (std::vector<double>{0, 1}));
}

TEST_F(FilesPanelTest, ARunOfFailedFilesThatIsRefusedLeavesNothingOut) {
    pair("a.jpg");
    pair("b.jpg", 2);
    open();
    waitForLooks();
    files().runBegan();
    files().fileEnded(result(input.path / "a.jpg", FileState::converted));
    files().fileEnded(result(input.path / "b.jpg", FileState::failed));
    files().runEnded();
    waitForLooks();
    std::ofstream(output.path / "b_spatial.heic") << "it exists";
    fakes.alerts->answers = {1}; // cancels at the question whether to replace it
    ASSERT_TRUE(waitUntil([this] { return part<QPushButton>("filesAgainButton").isVisible(); }));
    part<QPushButton>("filesAgainButton").click();
    ASSERT_TRUE(waitUntil([this] { return form().settings->leftOut.empty(); }));
    EXPECT_EQ(fakes.alerts->shown.size(), 1u);
    EXPECT_FALSE(form().progressSheet());
}

TEST_F(FilesPanelTest, ResultsStayAfterAStopUntilTheInputChanges) {
    pair("a.jpg");
    pair("b.jpg", 2);
    open();
    waitForLooks();
    services.runBatch = {};
    files().runBegan();
    files().fileBegan("a.jpg");
    files().fileProgressed(0.5);
    EXPECT_EQ(state("a.jpg"), "Converting… 50%");
    files().fileEnded(result(input.path / "a.jpg", FileState::cancelled));
    files().fileEnded(result(input.path / "b.jpg", FileState::notReached));
    files().runEnded();
    EXPECT_EQ(state("a.jpg"), "Stopped");
    EXPECT_EQ(state("b.jpg"), "Not reached");
    form().openInput({input.path});
    waitForLooks();
    EXPECT_EQ(state("a.jpg"), "Becomes a_spatial.heic");
}

TEST_F(FilesPanelTest, ResultsOfARunBeforeThePanelWasOpenedAreShown) {
    pair("a.jpg");
    open();
    controller->sidePanel()->close();
    form().openInput({input.path});
    controller->sidePanel()->close();
    files().runBegan();
    files().fileEnded(result(input.path / "a.jpg", FileState::failed));
    files().runEnded();
    controller->sidePanel()->open();
    waitForLooks();
    EXPECT_EQ(state("a.jpg").find("Failed: "), 0u) << state("a.jpg");
}

TEST_F(FilesPanelTest, FilesStayInTheRunWhileItGoesOn) {
    pair("a.jpg");
    open();
    waitForLooks();
    files().runBegan();
    select(0);
    QTest::keyClick(&part<FileListView>("fileList"), Qt::Key_Delete);
    EXPECT_TRUE(form().settings->leftOut.empty());
    files().runEnded();
}

TEST_F(FilesPanelTest, DropsOnTheWindowAddToTheInput) {
    pair("a.jpg");
    open();
    waitForLooks();
    ScratchFolder other;
    StereoScene scene;
    scene.seed = 9;
    writePicture(besideEachOther(drawnEyes(scene)), other.path / "z.jpg");
    QMimeData mime;
    const fs::path notes = other.file("notes.txt");
    mime.setUrls({QUrl::fromLocalFile(QString::fromStdString((other.path / "z.jpg").string())),
                  QUrl::fromLocalFile(QString::fromStdString(notes.string()))});
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&part<QLabel>("filesTotals"), &enter); // anywhere in the window
    QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&part<QLabel>("filesTotals"), &drop);
    EXPECT_TRUE(drop.isAccepted());
    waitForLooks();
    ASSERT_EQ(rows().size(), 3u);
    EXPECT_EQ(rows()[1].file.filename(), "z.jpg");
    EXPECT_EQ(rows()[2].file.filename(), "notes.txt");
    EXPECT_EQ(rows()[2].kind, FileRow::Kind::unsupported);
}

TEST_F(FilesPanelTest, CopiesTheReport) {
    pair("a.jpg");
    open();
    files().fileEnded(result(input.path / "a.jpg", FileState::failed));
    waitForLooks();
    files().fileEnded(result(input.path / "a.jpg", FileState::failed));
    emit part<FileListView>("fileList").reportAsked();
    EXPECT_TRUE(QGuiApplication::clipboard()->text().contains(QStringLiteral("a.jpg")));
}

TEST_F(FilesPanelTest, SavesTheReportOrSaysWhyNot) {
    pair("a.jpg");
    open();
    waitForLooks();
    files().fileEnded(result(input.path / "a.jpg", FileState::failed));
    QAction *save = part<QPushButton>("filesReportButton").menu()->actions().constLast();
    fakes.panels->choice = {output.path / "report.txt"};
    save->trigger();
    std::ifstream report(output.path / "report.txt");
    EXPECT_NE(std::string(std::istreambuf_iterator<char>(report), {}).find("a.jpg"), std::string::npos);
    fakes.panels->choice = {output.path / "no such folder/report.txt"};
    save->trigger();
    EXPECT_EQ(totals().toStdString().find("The report was not saved: "), 0u) << totals().toStdString();
}

TEST_F(FilesPanelTest, OpensBesideTheFormAndGivesTheWindowItsSizeBack) {
    pair("a.jpg");
    controller = std::make_unique<MainWindowController>(services);
    window().resize(720, 860);
    window().show();
    processPendingEvents();
    SidePanel &side = *controller->sidePanel();
    side.open();
    EXPECT_TRUE(form().isVisible() && files().isVisible());
    EXPECT_GE(window().width(), 1280);
    EXPECT_EQ(form().width(), 720) << "the form keeps its width";
    side.close();
    EXPECT_TRUE(form().isVisible());
    EXPECT_FALSE(files().isVisible());
    EXPECT_EQ(window().size(), QSize(720, 860));
}

TEST_F(FilesPanelTest, TakesThePlaceOfTheFormWhereTextsAreLarge) {
    const QFont before = QApplication::font();
    QFont large = before;
    large.setPointSizeF(before.pointSizeF() * 2);
    QApplication::setFont(large);
    controller = std::make_unique<MainWindowController>(services);
    window().resize(1200, 700);
    window().show();
    window().activateWindow();
    processPendingEvents();
    ASSERT_FALSE(controller->sidePanel()->hasRoomForBoth());
    QTest::keyClick(&window(), Qt::Key_F9);
    EXPECT_FALSE(form().isVisible());
    auto &back = part<QPushButton>("filesBackButton");
    EXPECT_TRUE(back.isVisible());
    back.click();
    EXPECT_TRUE(form().isVisible());
    EXPECT_EQ(window().size(), QSize(1200, 700));
    QApplication::setFont(before);
}

} // namespace
} // namespace lumetwin::test
