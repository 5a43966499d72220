// SPDX-License-Identifier: GPL-3.0-or-later
// Runs only the two-view encoder, for the benchmarks. Input: raw 8-bit 4:2:0 side-by-side frames. Output: Annex B.
//
//   lumetwin-two-views FRAMES WIDTH HEIGHT RATE PRESET BITRATE STREAM
//
// WIDTH and HEIGHT are of the whole frame, even; RATE is in whole frames per second, BITRATE in bits per second.

#include "media/x265/StereoEncoder.h"

#include <cstdio>
#include <exception>
#include <fstream>
#include <optional>
#include <string>

using namespace lumetwin::media;

namespace {

std::optional<Picture> readFrame(std::ifstream &frames, PicturePool &pool) {
    Picture picture = pool.take();
    for (int plane = 0; plane < 3; ++plane)
        for (int row = 0; row < picture.planeHeight(plane); ++row)
            if (!frames.read(reinterpret_cast<char *>(picture.planes[plane].data + row * picture.planes[plane].stride),
                             picture.planeWidth(plane)))
                return std::nullopt;
    return picture;
}

void write(std::ofstream &stream, const std::vector<std::uint8_t> &bytes) {
    stream.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

void encode(char **words) {
    const int width = std::stoi(words[2]);
    x265::StereoFormat format;
    format.width = width / 2;
    format.height = std::stoi(words[3]);
    format.timeScale = std::stoi(words[4]);
    format.frameDuration = 1;
    format.preset = words[5];
    format.averageBitRate = std::stoll(words[6]);
    std::ifstream frames(words[1], std::ios::binary);
    std::ofstream stream(words[7], std::ios::binary);
    x265::StereoEncoder encoder(words[7], format);
    write(stream, encoder.parameterSets());
    const auto sink = [&](const x265::AccessUnit &unit) { write(stream, unit.bytes); };
    PicturePool pool(width, format.height, yuv420);
    std::int64_t time = 0;
    while (const auto frame = readFrame(frames, pool)) {
        encoder.encode(cropped(*frame, 0, 0, format.width, format.height),
                       cropped(*frame, format.width, 0, format.width, format.height), time, sink);
        time += format.frameDuration;
    }
    encoder.finish(sink);
}

} // namespace

int main(int count, char **words) {
    if (count != 8)
        return std::fprintf(stderr, "usage: lumetwin-two-views FRAMES WIDTH HEIGHT RATE PRESET BITRATE STREAM\n"), 2;
    try {
        encode(words);
    } catch (const std::exception &error) {
        return std::fprintf(stderr, "%s\n", error.what()), 1;
    }
    return 0;
}
