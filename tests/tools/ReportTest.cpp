// SPDX-License-Identifier: GPL-3.0-or-later
// The JSON report of a run, as programs read it.
#include "tests/tools/BatchFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <regex>

#include <sys/stat.h>

namespace lumetwin::test {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class Report : public BatchFixture {
protected:
    /// Converts the input folder with the given options.
    ProgramResult convert(std::vector<std::string> options) {
        options.insert(options.end(), {"--output", folder / "out", folder / "in"});
        return run(options);
    }

    json parsedReport() {
        const auto bytes = readFile(report);
        return json::parse(bytes.begin(), bytes.end());
    }

    std::vector<std::string> states(const json &document) {
        std::vector<std::string> all;
        for (const json &entry : document["files"])
            all.push_back(entry["state"]);
        return all;
    }

    const std::string report = folder / "report.json";
};

TEST_F(Report, DescribesTheRunAndItsFiles) {
    for (const char *name : {"a.mov", "fail.heic", "note.jpg", "plain.mov", "warn.mov"})
        file(name);
    EXPECT_EQ(convert({"--report", report, "--keep-timing", "--on-existing", "keep-both"}).status, 1);
    const json document = parsedReport();
    EXPECT_EQ(document["formatVersion"], 1);
    EXPECT_EQ(document["program"], "lumetwin-batch");
    EXPECT_EQ(document["programVersion"], LUMETWIN_VERSION);
    const std::regex moment(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ)");
    EXPECT_TRUE(std::regex_match(document["started"].get<std::string>(), moment)) << document["started"];
    EXPECT_TRUE(std::regex_match(document["finished"].get<std::string>(), moment));
    EXPECT_EQ(document["stopped"], false);
    EXPECT_EQ(document["exitStatus"], 1);
    EXPECT_EQ(document["direction"], "spatialToSBS");
    EXPECT_EQ(document["outputFolder"], (folder / "out").string());
    EXPECT_EQ(document["settings"]["keepTiming"], true);
    EXPECT_EQ(document["settings"]["onExisting"], "keep-both");
    EXPECT_EQ(document["settings"]["resizeWidth"], 1920);
    EXPECT_EQ(document["settings"]["sbsOutputFormat"], "mp4H264");
    EXPECT_EQ(
        document["totals"],
        json::parse(R"({"files": 5, "converted": 3, "wouldBeConverted": 0, "convertedWithWarnings": 1, "skipped": 1,
        "upToDate": 0, "failed": 1, "cancelled": 0, "notReached": 0})"));
    EXPECT_THAT(states(document), ElementsAre("converted", "failed", "converted", "skipped", "convertedWithWarnings"));
}

TEST_F(Report, DescribesEachFile) {
    for (const char *name : {"a.mov", "fail.heic", "note.jpg", "plain.mov", "warn.mov"})
        file(name);
    convert({"--report", report});
    json files = parsedReport()["files"];
    EXPECT_GE(files[0]["seconds"], 0);
    for (json &entry : files)
        entry.erase("seconds");
    const auto place = [&](const std::string &name) { return (folder / name).string(); };
    const json chapters{{"kind", "chaptersLeft"}, {"note", true}, {"values", {3}}, {"text", "Chapters left out: 3"}};
    const json damage{{"kind", "framesMissing"},
                      {"note", false},
                      {"values", {90, 120}},
                      {"text", "The data is damaged or ends early: 90 frames written, 120 expected."}};
    const json frames{{"written", 90}, {"expected", 120}};
    EXPECT_EQ(files[0], (json{{"input", place("in/a.mov")},
                              {"rightEye", nullptr},
                              {"output", place("out/a_sbs.mp4")},
                              {"state", "converted"},
                              {"reason", nullptr},
                              {"warnings", json::array()},
                              {"disparity", nullptr},
                              {"frames", frames},
                              {"bytes", 9}}));
    EXPECT_EQ(files[1], (json{{"input", place("in/fail.heic")},
                              {"rightEye", nullptr},
                              {"output", nullptr},
                              {"state", "failed"},
                              {"reason", "acted failure"},
                              {"warnings", json::array()},
                              {"disparity", nullptr},
                              {"frames", nullptr},
                              {"bytes", nullptr}}));
    EXPECT_EQ(files[2]["frames"], nullptr) << "of a photo";
    EXPECT_EQ(files[2]["warnings"], json::array({chapters}));
    EXPECT_EQ(files[3]["reason"], "Skipped: not spatial");
    EXPECT_EQ(files[4]["warnings"], json::array({damage, chapters}));
}

TEST_F(Report, StandardOutputContainsOnlyTheReport) {
    file("a.mov");
    file("warn.mov");
    const ProgramResult result = convert({"--report", "-"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(states(json::parse(result.output)), ElementsAre("converted", "convertedWithWarnings"));
    EXPECT_THAT(result.errors, StartsWith("[1/2] a.mov\na.mov → a_sbs.mp4\n[2/2] warn.mov\n"));
    EXPECT_THAT(result.errors, HasSubstr("Converted: 2 (1 with warnings)"));
}

TEST_F(Report, IsValidJsonForAnyFileNames) {
    const std::string name = "plain \"quoted\\\" 写真 \n\x1b[2J\x7f\xc2\x9b \xff.mov";
    file(name);
    convert({"--report", report});
    const ProgramResult judged = runProgram({"python3", "-c",
                                             "import json, sys\n"
                                             "text = open(sys.argv[1], 'rb').read()\n"
                                             "assert all(byte == 10 or 32 <= byte < 127 for byte in text)\n"
                                             "print(ascii(json.loads(text)['files'][0]['input'].split('/')[-1]))",
                                             report});
    EXPECT_EQ(judged.output, R"('plain "quoted\\" \u5199\u771f \n\x1b[2J\x7f\x9b \ufffd.mov')"
                             "\n")
        << judged.errors;
}

TEST_F(Report, ReportsThatThereWasNothingToDo) {
    EXPECT_EQ(convert({"--report", report}).status, 1);
    const json document = parsedReport();
    EXPECT_EQ(document["files"], json::array());
    EXPECT_EQ(document["message"], "There are no videos or photos to convert.");
    EXPECT_EQ(document["exitStatus"], 1);
}

TEST_F(Report, StrictIsInTheExitStatus) {
    file("warn.mov");
    EXPECT_EQ(convert({"--report", report, "--strict"}).status, 1);
    EXPECT_EQ(parsedReport()["exitStatus"], 1);
    EXPECT_EQ(parsedReport()["totals"]["failed"], 0);
}

TEST_F(Report, PathThatCannotBeWrittenFailsBeforeTheRun) {
    file("a.mov");
    const std::string gone = folder / "gone/report.json";
    const std::string directory = folder / "in";
    const std::vector<std::pair<std::string, std::string>> cases{
        {gone, "the report cannot be written: " + gone + ".partial: No such file or directory"},
        {directory, "the report cannot be written: " + directory + ": Is a directory"},
        {folder / "in/a.mov", "the report would have the name of a video or photo: " + (folder / "in/a.mov").string()},
    };
    for (const auto &[place, complaint] : cases) {
        const ProgramResult result = convert({"--report", place});
        EXPECT_EQ(result.status, 2) << place;
        EXPECT_EQ(result.errors, "lumetwin-batch: " + complaint + "\nTry 'lumetwin-batch --help'.\n");
        EXPECT_TRUE(std::filesystem::is_empty(folder / "out"));
    }
    EXPECT_EQ(convert({"--report="}).errors,
              "lumetwin-batch: --report: the file has no name\nTry 'lumetwin-batch --help'.\n");
}

TEST_F(Report, AnOutputThatCannotBeWrittenIsAFailure) {
    file("a.mov");
    const ProgramResult result = convert({"--report", "/dev/full"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "lumetwin-batch: the report cannot be written: No space left on device\n");
    EXPECT_THAT(result.output, HasSubstr("Converted: 1"));
}

TEST_F(Report, OldReportIsReplacedOnlyByARun) {
    writeFile(report, std::string("former"));
    file("a.mov");
    EXPECT_EQ(runProgram({ACTED_BATCH, "--report", report, "--output", folder / "gone", folder / "in"}).status, 2);
    EXPECT_EQ(readFile(report).size(), 6u);
    EXPECT_EQ(convert({"--report", report}).status, 0);
    EXPECT_EQ(parsedReport()["exitStatus"], 0);
    EXPECT_FALSE(std::filesystem::exists(report + ".partial"));
}

TEST_F(Report, LinkStaysALink) {
    writeFile(folder / "target.json", std::string("former"));
    std::filesystem::create_symlink(folder / "target.json", report);
    file("a.mov");
    EXPECT_EQ(convert({"--report", report}).status, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(report));
    EXPECT_EQ(parsedReport()["exitStatus"], 0);
}

TEST_F(Report, LinkOfThePartialNameIsNotFollowed) {
    writeFile(folder / "precious", std::string("kept"));
    std::filesystem::create_symlink(folder / "precious", report + ".partial");
    file("a.mov");
    EXPECT_EQ(convert({"--report", report}).status, 2);
    EXPECT_EQ(readFile(folder / "precious").size(), 4u);
}

TEST_F(Report, PipeIsWrittenDirectly) {
    ASSERT_EQ(mkfifo(report.c_str(), 0600), 0);
    file("a.mov");
    const ProgramResult result =
        runProgram({"sh", "-c", R"("$0" --report "$1" --output "$2" "$3" >/dev/null & cat "$1"; wait)", ACTED_BATCH,
                    report, folder / "out", folder / "in"});
    EXPECT_THAT(states(json::parse(result.output)), ElementsAre("converted"));
    EXPECT_TRUE(std::filesystem::is_fifo(report));
}

} // namespace
} // namespace lumetwin::test
