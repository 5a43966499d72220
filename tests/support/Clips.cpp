// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Clips.h"
#include "tests/support/MovieFileWriter.h"

#include "media/MovieWriter.h"
#include "tests/support/Drawing.h"
#include "tests/support/TestMedia.h"

namespace lumetwin::test {

namespace {

/// A filter expression for the luma of a drawn frame.
std::string luma(const Clip &clip) {
    const std::string half = std::to_string(clip.width / 2);
    const std::string mark = "lt(mod(X\\," + half + ")\\," + std::to_string(clip.width / 8) + ")*lt(Y\\," +
                             std::to_string(clip.height / 4) + ")";
    return "if(gte(X\\," + std::to_string(clip.width / 2 * 2) + ")\\,235\\,if(" + mark + "\\," +
           std::to_string(markLuma) + "\\,if(lt(X\\," + half + ")\\," + std::to_string(leftLuma) + "\\," +
           std::to_string(rightLuma) + ")))";
}

} // namespace

std::filesystem::path draw(const std::filesystem::path &file, const Clip &clip) {
    std::string graph = "color=c=gray:s=" + std::to_string(clip.width) + "x" + std::to_string(clip.height) +
                        ":r=" + clip.rate + ",trim=end_frame=" + std::to_string(clip.frames) +
                        ",format=yuv444p,geq=lum='" + luma(clip) + "':cb=128:cr=128,format=" + clip.format;
    if (!clip.filter.empty())
        graph += "," + clip.filter;
    std::vector<std::string> command{"-f", "lavfi", "-i", graph};
    if (!clip.sound.empty())
        command.insert(command.end(), {"-f", "lavfi", "-i", clip.sound});
    command.insert(command.end(), clip.video.begin(), clip.video.end());
    if (!clip.sound.empty())
        command.insert(command.end(), clip.audio.begin(), clip.audio.end());
    command.push_back(file.string());
    clip.everyEncoder ? systemFfmpeg(command) : ffmpeg(command);
    return file;
}

namespace {

media::Picture eyePicture(const StereoClip &clip, int luma) {
    return drawn(clip.width, clip.height, media::yuv420, [&](int plane, int x, int y) {
        const bool mark = x < clip.width / 4 && y < clip.height / 4;
        return plane > 0 ? 128 : mark ? markLuma : luma;
    });
}

} // namespace

std::filesystem::path remuxed(const std::filesystem::path &movie, const std::filesystem::path &copy,
                              const std::vector<std::string> &options) {
    std::vector<std::string> arguments{"-i", movie.string(), "-c", "copy", "-strict", "unofficial"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    arguments.push_back(copy.string());
    ffmpeg(arguments);
    return copy;
}

std::filesystem::path drawStereo(const std::filesystem::path &file, const StereoClip &clip) {
    media::StereoVideoEncoding encoding;
    encoding.width = clip.width;
    encoding.height = clip.height;
    encoding.averageBitRate = 2'000'000;
    encoding.frameRate = clip.rate;
    encoding.colour = {1, 1, 1, media::ColourRange::limited, media::ChromaLocation::left};
    encoding.baseline = 64000;
    encoding.horizontalFieldOfView = 63400;
    MovieFileWriter writer(file, media::Container::quickTime, {});
    writer.addVideo(encoding);
    writer.start(600);
    const auto duration = static_cast<std::int64_t>(600 / clip.rate);
    const media::Picture left = eyePicture(clip, leftLuma);
    const media::Picture right = eyePicture(clip, rightLuma);
    for (int frame = 0; frame < clip.frames; ++frame)
        writer.append(left, right, frame * duration, duration);
    writer.finishVideo();
    writer.finish();
    return file;
}

} // namespace lumetwin::test
