// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/media/heif/CodedPictures.h"

#include "media/heif/HevcConfiguration.h"
#include "tests/support/TestMedia.h"

#include <algorithm>
#include <stdexcept>

namespace lumetwin::test {

using media::heif::Bytes;
using media::heif::CodedImage;

namespace {

std::vector<Bytes> encode(int width, int height, const Drawing &drawing) {
    Bytes samples;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            samples.push_back(static_cast<std::uint8_t>(drawing(x, y)));
    samples.resize(samples.size() * 3 / 2, 128);
    const TemporaryFolder folder;
    writeFile(folder / "in.yuv", samples);
    const ProgramResult result = runProgram({stackProgram("x265"),
                                             "--input",
                                             (folder / "in.yuv").string(),
                                             "--input-res",
                                             std::to_string(width) + "x" + std::to_string(height),
                                             "--fps",
                                             "1",
                                             "--frames",
                                             "1",
                                             "--profile",
                                             "mainstillpicture",
                                             "--qp",
                                             "8",
                                             "--no-info",
                                             "--range",
                                             "full",
                                             "--colormatrix",
                                             "bt709",
                                             "--log-level",
                                             "none",
                                             "-o",
                                             (folder / "out.hevc").string()});
    if (result.status != 0)
        throw std::runtime_error("x265: " + result.errors);
    return nalUnits(readFile(folder / "out.hevc"));
}

} // namespace

std::vector<Bytes> nalUnits(const Bytes &stream) {
    std::vector<Bytes> units;
    const Bytes mark{0, 0, 1};
    auto begin = std::search(stream.begin(), stream.end(), mark.begin(), mark.end());
    while (begin != stream.end()) {
        begin += 3;
        const auto next = std::search(begin, stream.end(), mark.begin(), mark.end());
        auto end = next;
        while (end != begin && next != stream.end() && end[-1] == 0)
            --end; // a longer start code
        units.emplace_back(begin, end);
        begin = next;
    }
    return units;
}

CodedImage codedImage(int width, int height, int tileWidth, int tileHeight, const Drawing &drawing) {
    CodedImage image;
    image.width = static_cast<std::uint32_t>(width);
    image.height = static_cast<std::uint32_t>(height);
    image.tileWidth = static_cast<std::uint32_t>(tileWidth);
    image.tileHeight = static_cast<std::uint32_t>(tileHeight);
    image.columns = static_cast<std::uint32_t>((width + tileWidth - 1) / tileWidth);
    image.rows = static_cast<std::uint32_t>((height + tileHeight - 1) / tileHeight);
    image.colour = media::heif::HeifColour{1, 13, 1, true};
    for (int top = 0; top < height; top += tileHeight)
        for (int left = 0; left < width; left += tileWidth) {
            std::vector<Bytes> sets;
            std::vector<Bytes> slices;
            const auto part = [&](int x, int y) {
                return drawing(std::min(x + left, width - 1), std::min(y + top, height - 1));
            };
            for (Bytes &unit : encode(tileWidth, tileHeight, part))
                ((unit[0] >> 1) >= 32 ? sets : slices).push_back(std::move(unit));
            image.tiles.push_back(std::move(slices));
            image.configuration = media::heif::hevcConfiguration(sets);
        }
    return image;
}

} // namespace lumetwin::test
