// SPDX-License-Identifier: GPL-3.0-or-later
// Measures the cost of placing two eyes on one frame, relative to copying the frame: the CPU time of the fastest of
// many rounds.
#include "engine/geometry/SBSComposition.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <random>

namespace {

using namespace lumetwin;
using media::Picture;
using media::PictureFormat;

double cpuMilliseconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) * 1e-6;
}

template <typename Work> double fastestTime(const Work &work) {
    double best = 1e9;
    for (int round = 0; round < 60; ++round) {
        const double began = cpuMilliseconds();
        work();
        if (round >= 3)
            best = std::min(best, cpuMilliseconds() - began);
    }
    return best;
}

Picture noisePicture(int width, int height, PictureFormat format) {
    Picture picture = media::makePicture(width, height, format);
    std::minstd_rand random(1);
    const unsigned mask = (1U << format.depth) - 1;
    for (int plane = 0; plane < format.planeCount(); ++plane)
        for (int y = 0; y < picture.planeHeight(plane); ++y)
            for (int x = 0; x < picture.planeWidth(plane); ++x) {
                std::uint8_t *row = picture.planes[plane].data + y * picture.planes[plane].stride;
                if (format.depth > 8)
                    reinterpret_cast<std::uint16_t *>(row)[x] = static_cast<std::uint16_t>((random() >> 8) & mask);
                else
                    row[x] = static_cast<std::uint8_t>((random() >> 8) & mask);
            }
    return picture;
}

double copyTime(const Picture &canvas) {
    Picture source = noisePicture(canvas.width, canvas.height, canvas.format);
    return fastestTime([&] {
        for (int plane = 0; plane < 3; ++plane)
            std::memcpy(canvas.planes[plane].data, source.planes[plane].data,
                        static_cast<std::size_t>(source.planes[plane].stride) *
                            static_cast<std::size_t>(source.planeHeight(plane)));
    });
}

void measure(const char *name, int width, int height, PictureFormat format, const ConversionSettings &settings) {
    const SBSGeometry geometry = sbsGeometry(settings, width, height);
    const Picture left = noisePicture(width, height, format);
    const Picture right = noisePicture(width, height, format);
    Picture canvas =
        media::makePicture(static_cast<int>(geometry.outW), static_cast<int>(geometry.outH), media::yuv420);
    SBSComposition composition(geometry);
    const double cost = fastestTime([&] { composition.compose(left, right, canvas); });
    std::printf("%-34s %4d x %-4d  %7.2f ms  %5.1f x copying\n", name, canvas.width, canvas.height, cost,
                cost / copyTime(canvas));
}

} // namespace

int main() {
    constexpr PictureFormat ten{media::ColourModel::yuv, 10, 1, 1};
    ConversionSettings settings;
    measure("as it is", 1920, 1080, media::yuv420, settings);
    measure("as it is, odd size", 1919, 1079, media::yuv420, settings);
    measure("as it is, 10 bits", 1920, 1080, ten, settings);
    settings.halfWidth = true;
    measure("half width", 1920, 1080, media::yuv420, settings);
    settings.halfWidth = false;
    settings.enableResize = true;
    settings.resizeWidth = 1440;
    settings.resizeHeight = 1440;
    for (const ResizeMode mode : allResizeModes) {
        constexpr const char *names[] = {"stretched to 1440 x 1440", "filling 1440 x 1440", "within 1440 x 1440"};
        settings.resizeMode = mode;
        measure(names[rawValue(mode)], 1920, 1080, media::yuv420, settings);
    }
    settings.resizeWidth = 3840;
    settings.resizeHeight = 2160;
    measure("twice as large", 1920, 1080, media::yuv420, settings);
    return 0;
}
