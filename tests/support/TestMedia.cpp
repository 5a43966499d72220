// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/TestMedia.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace lumetwin::test {

TemporaryFolder::TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "lumetwin-test-XXXXXX").string();
    if (!mkdtemp(name.data()))
        throw std::runtime_error("no temporary folder");
    path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

namespace {

void limitFiles(rlim_t bytes, void (*onExcess)(int)) {
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = std::min(bytes, limit.rlim_max);
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, onExcess);
}

} // namespace

FileSizeLimit::FileSizeLimit(std::uint64_t bytes) {
    limitFiles(bytes, SIG_IGN);
}

FileSizeLimit::~FileSizeLimit() {
    limitFiles(RLIM_INFINITY, SIG_DFL);
}

namespace {

std::string drain(int descriptor) {
    std::string text;
    char buffer[65536];
    for (ssize_t count; (count = read(descriptor, buffer, sizeof buffer)) > 0;)
        text.append(buffer, static_cast<std::size_t>(count));
    close(descriptor);
    return text;
}

} // namespace

ProgramResult runProgram(const std::vector<std::string> &command) {
    int output[2];
    int errors[2];
    if (pipe2(output, O_CLOEXEC) != 0 || pipe2(errors, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    std::vector<char *> arguments;
    for (const std::string &argument : command)
        arguments.push_back(const_cast<char *>(argument.c_str()));
    arguments.push_back(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        dup2(open("/dev/null", O_RDONLY), 0);
        dup2(output[1], 1);
        dup2(errors[1], 2);
        execvp(arguments[0], arguments.data());
        _exit(127);
    }
    close(output[1]);
    close(errors[1]);
    ProgramResult result;
    std::thread reader([&] { result.errors = drain(errors[0]); });
    result.output = drain(output[0]);
    reader.join();
    int status = 0;
    waitpid(child, &status, 0);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return result;
}

ProgramResult runProgramAsUser(std::vector<std::string> command) {
    if (geteuid() == 0)
        command.insert(command.begin(), {"setpriv", "--bounding-set", "-dac_override,-dac_read_search", "--"});
    return runProgram(command);
}

std::string output(const std::vector<std::string> &command) {
    const ProgramResult result = runProgram(command);
    if (result.status != 0)
        throw std::runtime_error(command.front() + " failed: " + result.errors);
    return result.output;
}

std::string stackProgram(const std::string &name) {
    return std::string(LUMETWIN_STACK) + "/bin/" + name;
}

namespace {

void runFfmpeg(const std::string &program, const std::vector<std::string> &arguments) {
    std::vector<std::string> command{program, "-nostdin", "-y", "-v", "error"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    output(command);
}

} // namespace

void ffmpeg(const std::vector<std::string> &arguments) {
    runFfmpeg(stackProgram("ffmpeg"), arguments);
}

void systemFfmpeg(const std::vector<std::string> &arguments) {
    runFfmpeg("ffmpeg", arguments);
}

std::string ffprobe(const std::filesystem::path &file, const std::string &entries,
                    const std::vector<std::string> &more) {
    std::vector<std::string> command{stackProgram("ffprobe"),     "-v", "error", "-show_entries", entries, "-of",
                                     "default=noprint_wrappers=1"};
    command.insert(command.end(), more.begin(), more.end());
    command.push_back(file.string());
    return runProgram(command).output;
}

double LumaFrames::mean(std::size_t frame, int x, int y, int w, int h) const {
    const std::vector<std::uint8_t> &samples = frames.at(frame);
    double sum = 0;
    for (int row = y; row < y + h; ++row)
        for (int column = x; column < x + w; ++column)
            sum += samples.at(static_cast<std::size_t>(row) * width + column);
    return sum / (static_cast<double>(w) * h);
}

namespace {

struct Aperture {
    int top = 0;
    int bottom = 0;
    int left = 0;
    int right = 0;
};

/// The clean aperture, as ffprobe reads it. (ffmpeg's own cropping rounds it to whole chroma samples.)
Aperture aperture(const std::filesystem::path &file) {
    const std::string facts = ffprobe(file, "stream_side_data=crop_top,crop_bottom,crop_left,crop_right");
    const auto number = [&](const std::string &key) {
        const std::size_t at = facts.find(key + "=");
        return at == std::string::npos ? 0 : std::atoi(facts.c_str() + at + key.size() + 1);
    };
    return {number("crop_top"), number("crop_bottom"), number("crop_left"), number("crop_right")};
}

void applyAperture(LumaFrames &frames, const Aperture &cut) {
    const int width = frames.width - cut.left - cut.right;
    const int height = frames.height - cut.top - cut.bottom;
    for (std::vector<std::uint8_t> &frame : frames.frames) {
        std::vector<std::uint8_t> part;
        for (int row = 0; row < height; ++row) {
            const auto begin = frame.begin() + static_cast<std::ptrdiff_t>(row + cut.top) * frames.width + cut.left;
            part.insert(part.end(), begin, begin + width);
        }
        frame = std::move(part);
    }
    frames.width = width;
    frames.height = height;
}

} // namespace

LumaFrames decodeLuma(const std::filesystem::path &file, const std::string &map) {
    LumaFrames result;
    // A YUV4MPEG stream tells the size that a viewer sees.
    const ProgramResult decoded = runProgram({stackProgram("ffmpeg"), "-nostdin", "-v", "error", "-apply_cropping",
                                              "codec", "-i", file.string(), "-map", map, "-fps_mode", "passthrough",
                                              "-pix_fmt", "yuv444p", "-strict", "-1", "-f", "yuv4mpegpipe", "-"});
    if (decoded.status != 0)
        throw std::runtime_error("ffmpeg: " + decoded.errors);
    const std::string &data = decoded.output;
    const std::size_t headerEnd = data.find('\n');
    if (headerEnd == std::string::npos ||
        std::sscanf(data.c_str(), "YUV4MPEG2 W%d H%d", &result.width, &result.height) != 2)
        throw std::runtime_error("no frames in " + file.string() + decoded.errors);
    const auto size = static_cast<std::size_t>(result.width) * result.height;
    for (std::size_t at = headerEnd + 1; at < data.size();) {
        at = data.find('\n', at) + 1;
        result.frames.emplace_back(data.begin() + static_cast<std::ptrdiff_t>(at),
                                   data.begin() + static_cast<std::ptrdiff_t>(at + size));
        at += 3 * size;
    }
    applyAperture(result, aperture(file));
    return result;
}

double psnr(const std::vector<std::uint8_t> &first, const std::vector<std::uint8_t> &second) {
    EXPECT_EQ(first.size(), second.size());
    double sum = 0;
    for (std::size_t index = 0; index < std::min(first.size(), second.size()); ++index) {
        const double difference = static_cast<double>(first[index]) - second[index];
        sum += difference * difference;
    }
    if (sum == 0)
        return std::numeric_limits<double>::infinity();
    return 10 * std::log10(255.0 * 255.0 * static_cast<double>(first.size()) / sum);
}

std::optional<std::filesystem::path> sampleMedia() {
    std::filesystem::path folder = std::filesystem::path(LUMETWIN_SOURCE_DIR) / ".." / "shared" / "samples";
    if (const char *named = std::getenv("LUMETWIN_SAMPLES"))
        folder = named;
    std::error_code ignored;
    if (!std::filesystem::is_directory(folder, ignored))
        return std::nullopt;
    return std::filesystem::weakly_canonical(folder);
}

Bytes readFile(const std::filesystem::path &file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void writeFile(const std::filesystem::path &file, const Bytes &bytes) {
    writeFile(file, std::string(bytes.begin(), bytes.end()));
}

void writeFile(const std::filesystem::path &file, const std::string &text) {
    std::ofstream stream(file, std::ios::binary);
    stream << text;
    if (!stream.flush())
        throw std::runtime_error("cannot write " + file.string());
}

} // namespace lumetwin::test
