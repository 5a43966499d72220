// SPDX-License-Identifier: GPL-3.0-or-later
// What the list says of a file, before, during and after a run.
#include "engine/texts/Texts.h"
#include "support/Scripted.h"
#include "ui/files/RowTexts.h"
#include "ui/form/PreflightChecks.h"

#include <gtest/gtest.h>

namespace lumetwin::test {
namespace {

FileRow lookedAt(const std::string &name, bool isSpatial) {
    FileRow row;
    row.file = row.named = "/x/" + name;
    row.kind = FileRow::Kind::video;
    row.bytes = 1'500'000;
    row.look.emplace();
    row.look->facts.isReadable = true;
    row.look->facts.isSpatial = isSpatial;
    return row;
}

StereoFindings seen(std::optional<EyeArrangement> arrangement, bool probablySwapped = false) {
    StereoFindings findings;
    findings.wasExamined = true;
    findings.seen = arrangement;
    findings.probablySwapped = probablySwapped;
    return findings;
}

class FileRows : public testing::Test {
protected:
    FileRows() { setTextLocale("en"); }
    std::string state(const FileRow &row, const std::set<std::string> &outputs = {}) const {
        return rowState(row, settings, outputs).text.toStdString();
    }
    void towardsSpatial() { settings.direction = ConversionDirection::sbsToSpatial; }

    ConversionSettings settings;
};

TEST_F(FileRows, TellTheNameOfTheResult) {
    EXPECT_EQ(state(lookedAt("trip.mov", true)), "Becomes trip_sbs.mp4");
    towardsSpatial();
    EXPECT_EQ(state(lookedAt("trip.mp4", false)), "Becomes trip_spatial.mov");
}

TEST_F(FileRows, TellHowManyFramesARunConverts) {
    towardsSpatial();
    FileRow film = lookedAt("a.mp4", false), photo = lookedAt("b.jpg", false), spatial = lookedAt("c.mov", true);
    photo.kind = FileRow::Kind::photo;
    EXPECT_TRUE(framesOfRun({film, photo}, settings).empty()) << "nobody knows how long the film is";
    film.look->picture.emplace();
    film.look->picture->duration = 20;
    film.look->picture->frameRate = 30;
    FileRow other = photo, leftOut = film;
    other.kind = FileRow::Kind::unsupported;
    leftOut.isLeftOut = true;
    EXPECT_EQ(framesOfRun({film, leftOut, photo, spatial, other}, settings), (std::vector<double>{600, 1, 0}));
}

TEST_F(FileRows, TellThatAFileIsAgainstTheDirection) {
    const FileRow flat = lookedAt("flat.mp4", false), spatial = lookedAt("trip.mov", true);
    EXPECT_EQ(state(flat), "Will be skipped: not spatial media");
    EXPECT_TRUE(isAgainstDirection(flat, settings));
    EXPECT_FALSE(willBeConverted(flat, settings));
    EXPECT_TRUE(willBeConverted(spatial, settings));
    towardsSpatial();
    EXPECT_EQ(state(spatial), "Will be skipped: already spatial media");
    EXPECT_FALSE(willBeConverted(spatial, settings));
    EXPECT_TRUE(willBeConverted(flat, settings));
}

TEST_F(FileRows, TellWhatIsReplaced) {
    EXPECT_EQ(state(lookedAt("trip.mov", true), {"trip_sbs.mp4"}), "trip_sbs.mp4 exists already");
    EXPECT_EQ(rowState(lookedAt("trip.mov", true), settings, {"trip_sbs.mp4"}).tone, RowTone::warning);
}

TEST_F(FileRows, TellWhyAFileCannotBeRead) {
    FileRow row = lookedAt("torn.mov", false);
    row.look->failure = "the file ends too early";
    EXPECT_EQ(state(row), "Cannot be read: the file ends too early");
    EXPECT_FALSE(willBeConverted(row, settings));
    EXPECT_FALSE(isAgainstDirection(row, settings)) << "nobody knows what it is";
}

TEST_F(FileRows, TellThatALayoutCannotBeRead) {
    towardsSpatial();
    FileRow row = lookedAt("disc.mkv", false);
    row.look->facts.layout = StereoLayout{.arrangement = EyeArrangement::secondUnread, .source = LayoutSource::stream};
    EXPECT_EQ(rowState(row, settings, {}).tone, RowTone::error);
    EXPECT_NE(state(row).find("no free decoder"), std::string::npos) << state(row);
}

TEST_F(FileRows, WarnOfAnOrdinaryPicture) {
    towardsSpatial();
    FileRow row = lookedAt("cat.mp4", false);
    EXPECT_FALSE(isNoStereo(row, settings)) << "not examined yet";
    row.findings = seen(std::nullopt);
    EXPECT_TRUE(isNoStereo(row, settings));
    EXPECT_EQ(state(row), "The picture does not look like two eyes.");
    EXPECT_EQ(rowLayout(row, settings).toStdString(), "does not look like stereo");
    settings.direction = ConversionDirection::spatialToSBS;
    EXPECT_FALSE(isNoStereo(row, settings)) << "it is skipped anyway";
}

TEST_F(FileRows, TellHowTheEyesLieAndWhoSaysSo) {
    towardsSpatial();
    FileRow row = lookedAt("film.mkv", false);
    row.look->facts.layout =
        StereoLayout{.arrangement = EyeArrangement::overUnder, .isHalf = true, .source = LayoutSource::container};
    EXPECT_EQ(rowLayout(row, settings).toStdString(), "over-under, half height, says the file");
    row.look->facts.layout.reset();
    row.findings = seen(EyeArrangement::overUnder);
    EXPECT_EQ(rowLayout(row, settings).toStdString(), "looks over-under");
    EXPECT_EQ(rowLayout(lookedAt("trip.mov", true), settings).toStdString(), "spatial");
}

TEST_F(FileRows, SwappedEyesThatAreSwappedBackAreNotWarnedOf) {
    towardsSpatial();
    FileRow row = lookedAt("film.mp4", false);
    row.findings = seen(EyeArrangement::sideBySide, true);
    EXPECT_EQ(warningsOf(row, settings).size(), 1u);
    settings.swapLeftRight = true;
    EXPECT_TRUE(warningsOf(row, settings).empty()) << warningsOf(row, settings).size();
}

TEST_F(FileRows, ShowWhatBecameOfAFile) {
    FileRow row = lookedAt("trip.mov", true);
    row.fraction = 0.426;
    EXPECT_EQ(state(row), "Converting… 42%");
    row.fraction.reset();
    row.result = result("/x/trip.mov", FileState::failed);
    row.result->reason = "the disk is full";
    EXPECT_EQ(state(row), "Failed: the disk is full");
    row.result->state = FileState::converted;
    row.result->bytes = 2'500'000;
    row.result->seconds = 75;
    EXPECT_EQ(state(row), "Converted · 2.5 MB · 1:15");
    row.result->state = FileState::notReached;
    EXPECT_EQ(state(row), "Not reached");
}

TEST_F(FileRows, ReportNamesEveryWarning) {
    FileRow row = lookedAt("trip.mov", true);
    row.result = result("/x/trip.mov", FileState::convertedWithWarnings);
    row.result->output = "/y/trip_sbs.mp4";
    row.result->warnings = {{WarningKind::framesMissing, {std::int64_t(90), std::int64_t(100)}},
                            {WarningKind::soundTracksLeft, {std::int64_t(2)}}};
    const std::string report = runReport({row, lookedAt("other.mov", true)}, settings).toStdString();
    EXPECT_NE(report.find("/x/trip.mov\n"), std::string::npos) << report;
    EXPECT_NE(report.find("90 frames written, 100 expected"), std::string::npos) << report;
    EXPECT_NE(report.find("/y/trip_sbs.mp4"), std::string::npos) << report;
    EXPECT_EQ(report.find("other.mov"), std::string::npos) << "it took no part in the run";
}

TEST_F(FileRows, CountForTheTotals) {
    EXPECT_EQ(totalsText({}, settings).toStdString(), "");
    EXPECT_EQ(totalsText({lookedAt("a.mov", true)}, settings).toStdString(), "1 file");
    FileRow leftOut = lookedAt("c.mov", true);
    leftOut.isLeftOut = true;
    const std::vector<FileRow> rows{lookedAt("a.mov", true), lookedAt("b.mov", false), leftOut, FileRow()};
    EXPECT_EQ(totalsText(rows, settings).toStdString(), "4 files, 1 left out, 2 will be skipped");
}

TEST_F(FileRows, CountResultsAfterARun) {
    std::vector<FileRow> rows{lookedAt("a.mov", true), lookedAt("b.mov", true), lookedAt("c.mov", true),
                              lookedAt("d.mov", true)};
    rows[0].result = result("/x/a.mov", FileState::converted);
    rows[1].result = result("/x/b.mov", FileState::convertedWithWarnings);
    rows[2].result = result("/x/c.mov", FileState::failed);
    rows[3].result = result("/x/d.mov", FileState::notReached);
    EXPECT_EQ(totalsText(rows, settings).toStdString(), "2 converted, 1 with warnings, 1 failed, 1 not converted");
}

TEST(Durations, AreShownInMinutesAndHours) {
    EXPECT_EQ(durationText(0).toStdString(), "0:00");
    EXPECT_EQ(durationText(59.6).toStdString(), "1:00");
    EXPECT_EQ(durationText(3723).toStdString(), "1:02:03");
    EXPECT_EQ(durationText(-1).toStdString(), "0:00");
}

TEST(InputRows, ShowUnsupportedFilesAndJoinPairs) {
    const ScratchFolder scratch;
    for (const char *name : {"b.mov", "notes.txt", "house_R.jpg", "house_L.jpg", ".hidden.mov"})
        scratch.file(name);
    scratch.folder("sub");
    ConversionSettings settings;
    settings.direction = ConversionDirection::sbsToSpatial;
    settings.inputFolderURL = scratch.path;
    settings.leftOut = {scratch.path / "b.mov"};
    const std::vector<FileRow> rows = rowsOf(settings);
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[0].file.filename(), "b.mov");
    EXPECT_TRUE(rows[0].isLeftOut);
    EXPECT_EQ(rows[1].file.filename(), "house_L.jpg");
    EXPECT_EQ(rows[1].rightEye.filename(), "house_R.jpg");
    EXPECT_EQ(rows[1].bytes, 2u);
    EXPECT_EQ(rows[2].file.filename(), "notes.txt");
    EXPECT_EQ(rows[2].kind, FileRow::Kind::unsupported);
    settings.direction = ConversionDirection::spatialToSBS;
    EXPECT_EQ(rowsOf(settings).size(), 4u) << "only eyes of the way to spatial media are joined";
    settings.inputFolderURL.reset();
    settings.inputFiles = {scratch.path / "b.mov"};
    settings.otherFiles = {scratch.path / "notes.txt"};
    ASSERT_EQ(rowsOf(settings).size(), 2u);
    EXPECT_EQ(rowsOf(settings)[1].kind, FileRow::Kind::unsupported) << "selected along with the media";
}

TEST(InputRows, TheEyesOfAPairAreLeftOutOfTheChecksTogether) {
    const ScratchFolder scratch;
    for (const char *name : {"house_R.jpg", "house_L.jpg", "b.avi"})
        scratch.file(name);
    ConversionSettings settings;
    settings.direction = ConversionDirection::sbsToSpatial;
    settings.inputFolderURL = settings.outputFolderURL = scratch.path;
    settings.leftOut = {scratch.path / "house_L.jpg"};
    EXPECT_EQ(inputEntries(settings), std::vector{scratch.path / "b.avi"});
    settings.leftOut = {scratch.path / "b.avi"};
    EXPECT_FALSE(containsAVI(inputEntries(settings)));
}

} // namespace
} // namespace lumetwin::test
