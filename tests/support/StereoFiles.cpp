// SPDX-License-Identifier: GPL-3.0-or-later
// The functions of StereoScenes.h that write files.
#include "tests/support/StereoScenes.h"
#include "tests/support/TestMedia.h"

namespace lumetwin::test {

namespace {

using media::Picture;

void addSamples(const Picture &picture, Bytes &bytes) {
    for (int y = 0; y < picture.height; ++y) {
        const std::uint8_t *row = picture.planes[0].data + y * picture.planes[0].stride;
        bytes.insert(bytes.end(), row, row + picture.width);
    }
}

std::string sizeOf(const Picture &picture) {
    return std::to_string(picture.width) + "x" + std::to_string(picture.height);
}

} // namespace

void writePicture(const Picture &picture, const std::filesystem::path &file) {
    const TemporaryFolder folder;
    Bytes bytes;
    addSamples(picture, bytes);
    writeFile(folder / "raw.gray", bytes);
    output(
        {"convert", "-size", sizeOf(picture), "-depth", "8", "gray:" + (folder / "raw.gray").string(), file.string()});
}

void writeFilm(std::span<const Picture> pictures, const std::filesystem::path &file,
               const std::vector<std::string> &options) {
    const TemporaryFolder folder;
    Bytes bytes;
    for (const Picture &picture : pictures)
        addSamples(picture, bytes);
    writeFile(folder / "raw.gray", bytes);
    std::vector<std::string> words{"-f",       "rawvideo",
                                   "-pix_fmt", "gray",
                                   "-s",       sizeOf(pictures.front()),
                                   "-r",       "30",
                                   "-i",       (folder / "raw.gray").string(),
                                   "-pix_fmt", "yuv420p"};
    words.insert(words.end(), options.begin(), options.end());
    words.push_back(file.string());
    systemFfmpeg(words);
}

} // namespace lumetwin::test
