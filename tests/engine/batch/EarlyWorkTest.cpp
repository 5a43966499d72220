// SPDX-License-Identifier: GPL-3.0-or-later
// Photos are worked on beside each other, and nothing but the time tells.
#include "engine/texts/Texts.h"
#include "tests/engine/batch/BatchRun.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <condition_variable>
#include <new>

namespace lumetwin::test {
namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace fs = std::filesystem;

/// A place where conversions wait for each other.
class Meeting {
public:
    /// Returns whether this many have come, now or within a minute.
    bool come(int expected) {
        std::unique_lock lock(mutex_);
        ++present_;
        changed_.notify_all();
        return changed_.wait_for(lock, std::chrono::minutes(1), [&] { return present_ >= expected; });
    }
    int present() {
        const std::scoped_lock lock(mutex_);
        return present_;
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    int present_ = 0;
};

class EarlyPhotos : public BatchRun {
protected:
    EarlyPhotos() {
        photosAtOnce = 3;
        settings->direction = ConversionDirection::sbsToSpatial;
        useFolder();
    }

    void beside(const std::string &name, std::function<void()> action) {
        onConvert(name, [action = std::move(action)](const ConversionControl *) { action(); });
    }

    std::vector<FileState> states() const {
        std::vector<FileState> found;
        for (const FileResult &result : results)
            found.push_back(result.state);
        return found;
    }

    std::vector<std::string> written() const {
        std::vector<std::string> names;
        for (const auto &entry : fs::directory_iterator(output.path()))
            names.push_back(entry.path().filename().string());
        std::ranges::sort(names);
        return names;
    }
};

TEST_F(EarlyPhotos, AsManyAsAllowedAreWorkedOnAtOnce) {
    Meeting meeting;
    for (const char *name : {"1.jpg", "2.jpg", "3.jpg"}) {
        file(name);
        beside(name, [&] { EXPECT_TRUE(meeting.come(3)); });
    }
    run();
    EXPECT_EQ(meeting.present(), 3);
    EXPECT_THAT(states(), Each(FileState::converted));
}

TEST_F(EarlyPhotos, OneAtATimeIsNotEarly) {
    photosAtOnce = 1;
    for (const char *name : {"1.jpg", "2.jpg"}) {
        file(name);
        beside(name, [&] { addEvent("convert"); });
    }
    run();
    EXPECT_THAT(events, ElementsAre("begin 1.jpg", "convert", "end 1.jpg", "begin 2.jpg", "convert", "end 2.jpg"));
}

TEST_F(EarlyPhotos, AreReportedInTheOrderOfTheRunWhenALaterOneIsDoneFirst) {
    Meeting second;
    for (const char *name : {"1.jpg", "2.jpg", "3.jpg", "4.jpg"})
        file(name);
    beside("1.jpg", [&] { EXPECT_TRUE(second.come(2)); });
    beside("2.jpg", [&] { second.come(1); });
    run();
    EXPECT_THAT(events, ElementsAre("begin 1.jpg", "end 1.jpg", "begin 2.jpg", "end 2.jpg", "begin 3.jpg", "end 3.jpg",
                                    "begin 4.jpg", "end 4.jpg"));
    EXPECT_THAT(progress, ElementsAre(Progress{0, 4, "1.jpg"}, Progress{1, 4, "2.jpg"}, Progress{2, 4, "3.jpg"},
                                      Progress{3, 4, "4.jpg"}));
    EXPECT_THAT(converted, ElementsAre("1.jpg|1_spatial.heic", "2.jpg|2_spatial.heic", "3.jpg|3_spatial.heic",
                                       "4.jpg|4_spatial.heic"));
}

TEST_F(EarlyPhotos, OutputGetsItsNameInItsTurn) {
    Meeting second;
    file("1.jpg");
    file("2.jpg");
    beside("1.jpg", [&] {
        EXPECT_TRUE(second.come(2));
        EXPECT_FALSE(fs::exists(output / "2_spatial.heic"));
    });
    beside("2.jpg", [&] { second.come(1); });
    run();
    EXPECT_THAT(written(), ElementsAre("1_spatial.heic", "2_spatial.heic"));
}

TEST_F(EarlyPhotos, OneThatFailsBesideAnotherIsItsOwnError) {
    Meeting both;
    for (const char *name : {"1.jpg", "2.jpg", "3.jpg"})
        file(name);
    beside("1.jpg", [&] { EXPECT_TRUE(both.come(2)); });
    beside("2.jpg", [&] {
        EXPECT_TRUE(both.come(2));
        throw std::runtime_error("crashed");
    });
    run();
    EXPECT_THAT(states(), ElementsAre(FileState::converted, FileState::failed, FileState::converted));
    EXPECT_THAT(log, Contains("[VP] ❌ 2.jpg: crashed"));
    EXPECT_THAT(written(), ElementsAre("1_spatial.heic", "3_spatial.heic")) << "an empty partial file is removed";
}

TEST_F(EarlyPhotos, LogLinesWaitForTheTurn) {
    Meeting second;
    file("1.jpg");
    file("2.jpg");
    beside("1.jpg", [&] { EXPECT_TRUE(second.come(2)); });
    onConvert("2.jpg", [&](const ConversionControl *control) {
        control->onLog("tried once more");
        second.come(1);
    });
    run();
    EXPECT_THAT(events, ElementsAre("begin 1.jpg", "end 1.jpg", "begin 2.jpg", "log [VP] ⚠️ 2.jpg: tried once more",
                                    "end 2.jpg"));
}

TEST_F(EarlyPhotos, StopDiscardsWhatHadNotItsTurn) {
    Meeting three;
    for (const char *name : {"1.jpg", "2.jpg", "3.jpg", "4.jpg", "5.jpg"})
        file(name);
    for (const char *name : {"1.jpg", "2.jpg", "3.jpg"})
        beside(name, [&] {
            EXPECT_TRUE(three.come(3));
            processor->cancelRequested = true;
        });
    run();
    EXPECT_THAT(states(), ElementsAre(FileState::cancelled, FileState::notReached, FileState::notReached,
                                      FileState::notReached, FileState::notReached));
    EXPECT_THAT(progress, ElementsAre(Progress{0, 5, "1.jpg"}));
    EXPECT_THAT(completions, ElementsAre(Completion{false, text("status.cancelled")}));
    EXPECT_THAT(written(), IsEmpty());
}

TEST_F(EarlyPhotos, StopDiscardsWhatWasDoneEarly) {
    Meeting second;
    file("1.jpg");
    file("2.jpg");
    beside("1.jpg", [&] {
        EXPECT_TRUE(second.come(2));
        processor->cancelRequested = true;
    });
    onConvert("2.jpg", [&](const ConversionControl *) { second.come(1); });
    run();
    EXPECT_THAT(states(), ElementsAre(FileState::cancelled, FileState::notReached));
    EXPECT_THAT(written(), IsEmpty());
}

TEST_F(EarlyPhotos, InputsWithOneOutputNameAreConvertedInTurn) {
    settings->onExisting = OnExisting::keepBoth;
    for (const char *name : {"1.jpg", "1.png", "1.tif", "2.jpg"}) {
        file(name);
        beside(name, [] {});
    }
    beside("1.png", [&] { EXPECT_TRUE(fs::exists(output / "1_spatial.heic")); });
    beside("1.tif", [&] { EXPECT_TRUE(fs::exists(output / "1_spatial 2.heic")); });
    run();
    EXPECT_THAT(converted, ElementsAre("1.jpg|1_spatial.heic", "1.png|1_spatial 2.heic", "1.tif|1_spatial 3.heic",
                                       "2.jpg|2_spatial.heic"));
}

TEST_F(EarlyPhotos, TheLastOfInputsWithOneOutputNameReplacesTheOthers) {
    settings->onExisting = OnExisting::replace;
    file("1.jpg");
    file("1.png");
    beside("1.png", [&] { EXPECT_TRUE(fs::exists(output / "1_spatial.heic")); });
    run();
    EXPECT_THAT(results.at(0).warnings, Contains(Warning{WarningKind::sameOutputName, {std::string("1.png")}}));
    EXPECT_THAT(converted, ElementsAre("1.jpg|1_spatial.heic", "1.png|1_spatial.heic"));
}

TEST_F(EarlyPhotos, OneWhosePartialNameIsTakenIsConvertedInTurn) {
    // As on a file system that ignores case, where another photo's output has it.
    writeFile(output / "2_spatial.heic.partial", std::string("other"));
    file("1.jpg");
    file("2.jpg");
    beside("2.jpg", [&] { EXPECT_TRUE(fs::exists(output / "1_spatial.heic")); });
    run();
    EXPECT_THAT(states(), ElementsAre(FileState::converted, FileState::converted));
}

TEST_F(EarlyPhotos, FilmIsConvertedAlone) {
    for (const char *name : {"1.jpg", "2.mov", "3.jpg"}) {
        file(name);
        beside(name, [this, name] { addEvent(std::string("convert ") + name); });
    }
    run();
    EXPECT_THAT(events, ElementsAre("begin 1.jpg", "convert 1.jpg", "end 1.jpg", "begin 2.mov", "convert 2.mov",
                                    "end 2.mov", "begin 3.jpg", "convert 3.jpg", "end 3.jpg"));
}

TEST_F(EarlyPhotos, SkippedOnesDoNotHoldUpTheOthers) {
    Meeting meeting;
    settings->onExisting = OnExisting::skip;
    writeFile(output / "3_spatial.heic", std::string("older"));
    file("1.jpg");
    spatial("2.heic");
    file("3.jpg");
    file("4.jpg");
    for (const char *name : {"1.jpg", "4.jpg"})
        beside(name, [&] { EXPECT_TRUE(meeting.come(2)); });
    run();
    EXPECT_THAT(states(),
                ElementsAre(FileState::converted, FileState::skipped, FileState::skipped, FileState::converted));
}

TEST_F(EarlyPhotos, LargeOnesAreConvertedOneByOne) {
    measure = [](const media::InputFile &) { return PictureSize{10'000, 4'000}; };
    for (const char *name : {"1.jpg", "2.jpg"}) {
        file(name);
        beside(name, [this, name] { addEvent(std::string("convert ") + name); });
    }
    run();
    const auto first = std::ranges::find(events, "convert 1.jpg");
    const auto second = std::ranges::find(events, "convert 2.jpg");
    EXPECT_LT(first, second);
    EXPECT_THAT(events, Contains("convert 2.jpg").Times(1));
}

TEST_F(EarlyPhotos, OneWhoseSizeIsUnknownIsConvertedInItsTurn) {
    measure = [](const media::InputFile &) -> PictureSize { throw std::runtime_error("no picture"); };
    for (const char *name : {"1.jpg", "2.jpg"}) {
        file(name);
        beside(name, [this, name] { addEvent(std::string("convert ") + name); });
    }
    run();
    EXPECT_THAT(events,
                ElementsAre("begin 1.jpg", "convert 1.jpg", "end 1.jpg", "begin 2.jpg", "convert 2.jpg", "end 2.jpg"));
}

TEST_F(EarlyPhotos, FolderOfAFileIsMadeInItsTurn) {
    settings->recursive = true;
    fs::create_directory(input / "trip");
    file("a.jpg");
    file("trip/b.jpg");
    beside("a.jpg", [&] {
        processor->cancelRequested = true;
        EXPECT_FALSE(fs::exists(output / "trip"));
    });
    run();
    EXPECT_THAT(written(), IsEmpty());
}

TEST_F(EarlyPhotos, DryRunWritesNothing) {
    settings->dryRun = true;
    settings->direction = ConversionDirection::spatialToSBS;
    spatial("1.heic");
    spatial("2.heic");
    run();
    EXPECT_THAT(states(), Each(FileState::wouldBeConverted));
    EXPECT_THAT(calls, IsEmpty());
    EXPECT_THAT(written(), IsEmpty());
}

TEST_F(EarlyPhotos, CallbackThatThrowsLeavesNothingOfTheOthers) {
    Meeting second;
    file("1.jpg");
    file("2.jpg");
    beside("1.jpg", [&] { EXPECT_TRUE(second.come(2)); });
    onConvert("2.jpg", [&](const ConversionControl *) { second.come(1); });
    throwAtResult = true;
    run();
    EXPECT_EQ(completions.size(), 1u);
    EXPECT_THAT(written(), ElementsAre("1_spatial.heic"));
}

} // namespace
} // namespace lumetwin::test
