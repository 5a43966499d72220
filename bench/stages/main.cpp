// SPDX-License-Identifier: GPL-3.0-or-later
// Runs the stages of one conversion separately, for the benchmarks: measures their CPU time, and the memory of a long
// film. Prints one JSON object.
//
//   lumetwin-stages decode|compose|encode FILE     CPU seconds of one stage of spatial video to side-by-side video
//   lumetwin-stages encode-stereo FILE             the same for the two-view encoder, for a side-by-side FILE
//   lumetwin-stages decode|… FILE PROCESSORS OUT   the same, planned for so many processors; encoders leave OUT
//   lumetwin-stages memory sbs|spatial FILE OUT    resident KiB at every 1000th frame of a whole conversion
//   lumetwin-stages inspect FILE…                  seconds to find out which of the files are spatial

#include "engine/batch/FileConversion.h"
#include "engine/geometry/SBSComposition.h"
#include "engine/inspection/Inspection.h"
#include "engine/inspection/VideoInfo.h"
#include "engine/stereo/EyeExtraction.h"
#include "engine/video/VideoConversion.h"
#include "media/PartialFile.h"
#include "media/Processors.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <fstream>
#include <string>
#include <vector>

#include <sys/resource.h>
#include <unistd.h>

using namespace lumetwin;

namespace {

double cpuSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval &time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

double wallSeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

long residentKiB() {
    long pages = 0;
    long resident = 0;
    std::ifstream("/proc/self/statm") >> pages >> resident;
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

std::vector<media::Frame> decodeAll(const char *file, VideoInfo &info, media::Views views, bool keep) {
    media::MovieFile movie{media::InputFile(file)};
    info = loadVideoInfo(movie);
    media::FrameReader reader(movie, info.track, views);
    std::vector<media::Frame> frames;
    while (auto frame = reader.next())
        if (keep)
            frames.push_back(std::move(*frame));
    return frames;
}

void print(double cpu, double wall) {
    std::printf("{\"cpu\": %.3f, \"wall\": %.3f}\n", cpu, wall);
}

void decode(const char *file) {
    VideoInfo info;
    const double cpu = cpuSeconds();
    const double wall = wallSeconds();
    decodeAll(file, info, media::Views::all, false);
    print(cpuSeconds() - cpu, wallSeconds() - wall);
}

std::vector<media::Picture> composeAll(const std::vector<media::Frame> &frames, const VideoInfo &info, bool keep) {
    const ConversionSettings settings;
    const SBSGeometry geometry = sbsGeometry(settings, info.width, info.height);
    SBSComposition composition(geometry);
    media::PicturePool pool(static_cast<int>(geometry.outW), static_cast<int>(geometry.outH), media::yuv420,
                            info.track.colour);
    std::vector<media::Picture> canvases;
    for (const media::Frame &frame : frames) {
        media::Picture canvas = pool.take();
        composition.compose(frame.pictures[0].picture, frame.pictures[frame.count - 1].picture, canvas);
        if (keep)
            canvases.push_back(std::move(canvas));
    }
    return canvases;
}

void compose(const char *file) {
    VideoInfo info;
    const auto frames = decodeAll(file, info, media::Views::all, true);
    composeAll(frames, info, false); // the first round also pays for memory that is used for the first time
    const double cpu = cpuSeconds();
    const double wall = wallSeconds();
    composeAll(frames, info, false);
    print(cpuSeconds() - cpu, wallSeconds() - wall);
}

void encode(const char *file, const char *kept) {
    VideoInfo info;
    std::vector<media::Picture> canvases;
    {
        const auto frames = decodeAll(file, info, media::Views::all, true);
        canvases = composeAll(frames, info, true);
    }
    const VideoTiming timing = videoTiming(info);
    const std::string output = kept ? kept : std::string(file) + ".encode.mp4";
    const double cpu = cpuSeconds();
    const double wall = wallSeconds();
    media::PartialFile partial(output);
    media::MovieWriter writer(partial.file(), media::Container::mpeg4, {});
    media::VideoEncoding encoding;
    encoding.width = canvases.front().width;
    encoding.height = canvases.front().height;
    encoding.averageBitRate = averageBitRate(timing.rate, static_cast<double>(encoding.width) * encoding.height,
                                             ConversionSettings().compressionQuality);
    encoding.frameRate = timing.rate;
    encoding.colour = info.track.colour;
    writer.addVideo(encoding);
    writer.start(videoTimeScale);
    std::int64_t time = 0;
    for (const media::Picture &canvas : canvases)
        writer.append(canvas, time++ * timing.frameDuration, timing.frameDuration);
    writer.finishVideo();
    writer.finish();
    partial.finish();
    print(cpuSeconds() - cpu, wallSeconds() - wall);
    if (!kept)
        std::remove(output.c_str());
}

void encodeStereo(const char *file, const char *kept) {
    VideoInfo info;
    const auto frames = decodeAll(file, info, media::Views::base, true);
    const VideoTiming timing = videoTiming(info);
    const std::string output = kept ? kept : std::string(file) + ".encode.mov";
    const int width = static_cast<int>(info.width / 2);
    const double cpu = cpuSeconds();
    const double wall = wallSeconds();
    media::PartialFile partial(output);
    media::MovieWriter writer(partial.file(), media::Container::quickTime, {});
    media::StereoVideoEncoding encoding;
    encoding.width = width;
    encoding.height = static_cast<int>(info.height);
    encoding.averageBitRate = averageBitRate(static_cast<double>(width) * encoding.height, timing.rate,
                                             ConversionSettings().compressionQuality);
    encoding.frameRate = timing.rate;
    encoding.colour = info.track.colour;
    encoding.baseline = 64000;
    writer.addVideo(encoding);
    writer.start(videoTimeScale);
    std::int64_t time = 0;
    for (const media::Frame &frame : frames) {
        const media::Picture &picture = frame.pictures[0].picture;
        writer.append(media::cropped(picture, 0, 0, width, encoding.height),
                      media::cropped(picture, width, 0, width, encoding.height), time++ * timing.frameDuration,
                      timing.frameDuration);
    }
    writer.finishVideo();
    writer.finish();
    partial.finish();
    print(cpuSeconds() - cpu, wallSeconds() - wall);
    if (!kept)
        std::remove(output.c_str());
}

void memory(const std::string &direction, const char *file, const char *output) {
    const ConversionSettings settings;
    ConversionControl control;
    std::string separator = "{";
    control.onFrameProgress = [&](std::int64_t frame, std::int64_t) {
        if (frame % 1000 == 0 && frame > 0) {
            std::printf("%s\"%lld\": %ld", separator.c_str(), static_cast<long long>(frame), residentKiB());
            separator = ", ";
        }
    };
    const ConversionKind kind =
        direction == "sbs" ? ConversionKind::spatialVideoToSBS : ConversionKind::sbsVideoToSpatial;
    convertFile(MediaOperations::inProcess(), kind, settings, openInput(kind, file), output, control,
                SystemVersion::current());
    std::printf("}\n");
}

void inspect(char **files, int count) {
    const double wall = wallSeconds();
    int spatial = 0;
    for (int index = 0; index < count; ++index)
        spatial += isSpatialVideo(lookAt(media::InputFile(files[index])));
    std::printf("{\"wall\": %.4f, \"files\": %d, \"spatial\": %d}\n", wallSeconds() - wall, count, spatial);
}

} // namespace

int main(int count, char **words) {
    const std::string stage = count > 1 ? words[1] : "";
    try {
        const bool isPlanned = count == 5 && stage != "memory" && stage != "inspect";
        const char *kept = isPlanned ? words[4] : nullptr;
        if (isPlanned)
            media::assumeProcessors(std::atoi(words[3]));
        if (stage == "decode" && (count == 3 || isPlanned))
            decode(words[2]);
        else if (stage == "compose" && count == 3)
            compose(words[2]);
        else if (stage == "encode" && (count == 3 || isPlanned))
            encode(words[2], kept);
        else if (stage == "encode-stereo" && (count == 3 || isPlanned))
            encodeStereo(words[2], kept);
        else if (stage == "memory" && count == 5)
            memory(words[2], words[3], words[4]);
        else if (stage == "inspect" && count > 2)
            inspect(words + 2, count - 2);
        else
            return std::fprintf(stderr, "usage: lumetwin-stages STAGE FILE…\n"), 2;
    } catch (const std::exception &error) {
        return std::fprintf(stderr, "%s\n", error.what()), 1;
    }
    return 0;
}
