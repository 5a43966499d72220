// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/batch/OutputPlace.h"
#include "engine/video/OutputSpace.h"

#include "engine/texts/ProcessorError.h"
#include "engine/texts/Texts.h"
#include "tests/support/TestMedia.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <sstream>

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fcntl.h>

namespace lumetwin {
namespace {

using Path = std::filesystem::path;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::MatchesRegex;

class Place : public testing::Test {
protected:
    Place() {
        setTextLocale("en");
        std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));
        std::filesystem::create_directory(out);
    }

    test::TemporaryFolder folder;
    const Path out = folder / "out";
};

std::string complaint(const std::function<void()> &action) {
    try {
        action();
    } catch (const ProcessorError &error) {
        return error.what();
    }
    return {};
}

/// The complaint that a user gets who has no rights of root; the work is done in a process of its own.
std::string complaintOfAUser(const std::function<void()> &action, const Path &note) {
    const pid_t user = fork();
    if (user == 0) {
        constexpr unsigned nobody = 65534;
        std::ofstream stream(note);
        const bool ready = geteuid() != 0 || (setgroups(0, nullptr) == 0 && setgid(nobody) == 0 && setuid(nobody) == 0);
        stream << (ready ? complaint(action) : "cannot become another user") << std::flush;
        _exit(0);
    }
    int status = 0;
    waitpid(user, &status, 0);
    EXPECT_TRUE(WIFEXITED(status));
    const auto bytes = test::readFile(note);
    return {bytes.begin(), bytes.end()};
}

TEST_F(Place, FreePlaceIsTakenWhateverTheWish) {
    for (const OnExisting wish : allOnExisting)
        EXPECT_EQ(chooseOutputPath(out / "a_sbs.mp4", wish), out / "a_sbs.mp4");
}

TEST_F(Place, TakenPlaceIsReplacedNumberedOrLeft) {
    test::writeFile(out / "a.b_sbs.mp4", std::string("older"));
    EXPECT_EQ(chooseOutputPath(out / "a.b_sbs.mp4", OnExisting::replace), out / "a.b_sbs.mp4");
    EXPECT_EQ(chooseOutputPath(out / "a.b_sbs.mp4", OnExisting::skip), std::nullopt);
    EXPECT_EQ(chooseOutputPath(out / "a.b_sbs.mp4", OnExisting::keepBoth), out / "a.b_sbs 2.mp4");
    test::writeFile(out / "a.b_sbs 2.mp4", std::string("older"));
    EXPECT_EQ(chooseOutputPath(out / "a.b_sbs.mp4", OnExisting::keepBoth), out / "a.b_sbs 3.mp4");
}

TEST_F(Place, TakenPlacesCountNumbersOnlyWhereThereAreSome) {
    for (const char *name : {"a_sbs.mp4", "a_sbs 2.mp4", "a_sbs 4.mp4"})
        test::writeFile(out / name, std::string("older"));
    EXPECT_THAT(existingOutputPaths(out / "a_sbs.mp4", OnExisting::keepBoth),
                testing::ElementsAre(out / "a_sbs.mp4", out / "a_sbs 2.mp4"));
    EXPECT_THAT(existingOutputPaths(out / "a_sbs.mp4", OnExisting::replace), testing::ElementsAre(out / "a_sbs.mp4"));
    EXPECT_THAT(existingOutputPaths(out / "b_sbs.mp4", OnExisting::keepBoth), testing::IsEmpty());
}

TEST_F(Place, LinkThatLeadsNowhereTakesThePlace) {
    std::filesystem::create_symlink(folder / "gone", out / "a_sbs.mp4");
    EXPECT_EQ(chooseOutputPath(out / "a_sbs.mp4", OnExisting::skip), std::nullopt);
    EXPECT_EQ(chooseOutputPath(out / "a_sbs.mp4", OnExisting::keepBoth), out / "a_sbs 2.mp4");
}

TEST_F(Place, MissingOutputFolderIsNamed) {
    const Path gone = folder / "gone";
    EXPECT_EQ(complaint([&] { prepareOutputPath(gone / "a_sbs.mp4", gone); }),
              "The output folder gone does not exist.");
    EXPECT_EQ(complaint([&] { prepareOutputPath(gone / "deep/a_sbs.mp4", gone); }),
              "The output folder gone does not exist.");
    test::writeFile(folder / "a.mov", std::string("x"));
    const Path file = folder / "a.mov";
    EXPECT_EQ(complaint([&] { prepareOutputPath(file / "a_sbs.mp4", file); }),
              "The output folder a.mov does not exist.");
    EXPECT_FALSE(std::filesystem::exists(gone)) << "only what lies below the output folder is made";
}

TEST_F(Place, FoldersOfTheTreeAreMade) {
    prepareOutputPath(out / "2024/may/a_sbs.mp4", out);
    EXPECT_TRUE(std::filesystem::is_directory(out / "2024/may"));
    prepareOutputPath(out / "2024/may/b_sbs.mp4", out);
}

TEST_F(Place, FileInTheWayOfAFolderIsNamed) {
    test::writeFile(out / "2024", std::string("x"));
    EXPECT_EQ(complaint([&] { prepareOutputPath(out / "2024/a_sbs.mp4", out); }),
              "The folder 2024 cannot be written to (Not a directory).");
}

TEST_F(Place, FolderOfTheNameIsNotReplaced) {
    std::filesystem::create_directory(out / "a_sbs.mp4");
    EXPECT_EQ(complaint([&] { prepareOutputPath(out / "a_sbs.mp4", out); }),
              "There is a folder of the name a_sbs.mp4.");
}

TEST_F(Place, FolderThatMayNotBeWrittenToSaysSo) {
    std::filesystem::permissions(out, std::filesystem::perms(0555));
    EXPECT_EQ(complaintOfAUser([&] { prepareOutputPath(out / "a_sbs.mp4", out); }, folder / "note"),
              "The folder out cannot be written to (Permission denied).");
    EXPECT_EQ(complaintOfAUser([&] { prepareOutputPath(out / "deep/a_sbs.mp4", out); }, folder / "note"),
              "The folder deep cannot be written to (Permission denied).");
    std::filesystem::permissions(out, std::filesystem::perms(0777));
    EXPECT_EQ(complaintOfAUser([&] { prepareOutputPath(out / "a_sbs.mp4", out); }, folder / "note"), "");
}

/// A mounted folder that even root cannot write to.
std::optional<Path> readOnlyFolder() {
    std::ifstream mounts("/proc/self/mounts");
    for (std::string line; std::getline(mounts, line);) {
        std::istringstream words(line);
        std::string device, place, kind, options;
        words >> device >> place >> kind >> options;
        if ((options == "ro" || options.starts_with("ro,")) && std::filesystem::is_directory(place))
            return place;
    }
    return std::nullopt;
}

TEST_F(Place, ReadOnlyFileSystemSaysSo) {
    const auto place = readOnlyFolder();
    if (!place)
        GTEST_SKIP() << "no read-only file system is mounted here";
    EXPECT_THAT(complaint([&] { prepareOutputPath(*place / "a_sbs.mp4", *place); }),
                HasSubstr("cannot be written to (Read-only file system)."));
}

media::OutputFile opened(const std::filesystem::path &file) {
    return {::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666), file};
}

TEST_F(Place, TooLittleSpaceIsToldInNumbers) {
    EXPECT_EQ(complaint([&] { requireSpace(opened(out / "a_sbs.mp4"), 1); }), "");
    // A million TiB, and a tenth more.
    EXPECT_THAT(complaint([&] { requireSpace(opened(out / "a_sbs.mp4"), 1024.0 * 1024 * 1024 * 1024 * 1e6); }),
                MatchesRegex("There is not enough space for a_sbs.mp4: about 1153433600016 MiB are needed, "
                             "[0-9]+ MiB are free."));
}

TEST_F(Place, UnknownSpaceIsNoObstacle) {
    const media::OutputFile closed(-1, folder / "a_sbs.mp4");
    EXPECT_EQ(complaint([&] { requireSpace(closed, 1e30); }), "");
    const media::OutputFile inProc(::open("/proc/self/status", O_RDONLY | O_CLOEXEC), "/proc/a_sbs.mp4");
    EXPECT_EQ(complaint([&] { requireSpace(inProc, 1e30); }), "") << "a file system that states no size";
}

} // namespace
} // namespace lumetwin
