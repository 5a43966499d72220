// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace lumetwin::test {

/// A folder of its own for one test, removed with everything in it at the end.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;
    const std::filesystem::path &path() const { return path_; }
    std::filesystem::path operator/(const std::string &name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};

/// While it lives, this process cannot write files beyond a size: what a disk does that fills up meanwhile.
class FileSizeLimit {
public:
    explicit FileSizeLimit(std::uint64_t bytes);
    ~FileSizeLimit();
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;
};

struct ProgramResult {
    int status = -1;    ///< exit status
    std::string output; ///< standard output
    std::string errors; ///< standard error
};

/// Runs a program with arguments, no shell in between.
ProgramResult runProgram(const std::vector<std::string> &command);
/// The same without root's right to read and write everything.
ProgramResult runProgramAsUser(std::vector<std::string> command);

/// Runs a program that must succeed; its standard output.
std::string output(const std::vector<std::string> &command);

/// A program of the media stack: "ffmpeg", "ffprobe", "x265", "heif-info", "heif-dec".
std::string stackProgram(const std::string &name);

/// Runs the stack's ffmpeg with the given arguments ("-y -v error" come before); fails the test when it fails.
void ffmpeg(const std::vector<std::string> &arguments);

/// The same with the distribution's ffmpeg, which has encoders that the stack does without.
void systemFfmpeg(const std::vector<std::string> &arguments);

/// What the stack's ffprobe says: `-show_entries ENTRIES -of default` lines "key=value".
std::string ffprobe(const std::filesystem::path &file, const std::string &entries,
                    const std::vector<std::string> &more = {});

/// One video stream decoded by the stack's ffmpeg to 8-bit luma, frame after frame.
struct LumaFrames {
    int width = 0;
    int height = 0;
    std::vector<std::vector<std::uint8_t>> frames;
    /// Mean of a rectangle of one frame.
    double mean(std::size_t frame, int x, int y, int w, int h) const;
};

/// `map` selects the stream or view, such as "0:v:0" or "0:v:0:vpos:right".
LumaFrames decodeLuma(const std::filesystem::path &file, const std::string &map = "0:v:0");

/// Peak signal-to-noise ratio of two equally sized sample arrays, in dB; infinity when they are equal.
double psnr(const std::vector<std::uint8_t> &first, const std::vector<std::uint8_t> &second);

/// The folder of real sample media, where it is present.
std::optional<std::filesystem::path> sampleMedia();

using Bytes = std::vector<std::uint8_t>;

/// A file's bytes.
Bytes readFile(const std::filesystem::path &file);
void writeFile(const std::filesystem::path &file, const Bytes &bytes);
void writeFile(const std::filesystem::path &file, const std::string &text);

} // namespace lumetwin::test
