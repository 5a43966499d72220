// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/jpeg/MultiPicture.h"

#include "media/jpeg/JpegSegments.h"
#include "media/metadata/ExifBytes.h"
#include "media/metadata/TagDirectory.h"

#include <algorithm>
#include <cmath>

namespace lumetwin::media::images {

namespace {

// Fields of the index (CIPA DC-007, 5.2.3) and of a picture's attributes (5.2.4).
constexpr std::uint16_t entriesField = 0xB002;
constexpr std::uint16_t numberField = 0xB101;
constexpr std::uint16_t convergenceField = 0xB205;
constexpr std::uint16_t baselineField = 0xB206;

constexpr std::size_t entrySize = 16;
constexpr std::size_t mostPictures = 64;
constexpr std::uint32_t unknownNumber = 0xFFFFFFFF;

/// The TIFF structure of the image that begins at a place, and where it lies.
struct Structure {
    std::vector<std::uint8_t> bytes;
    std::uint64_t place = 0;
};

Structure structureOf(const bmff::Source &source, std::uint64_t image) {
    Structure found;
    visitSegments(source, image, [&](const JpegSegment &segment) {
        if (segment.marker != application2 || segment.size < multiPictureMark.size() || found.place != 0)
            return;
        std::vector<std::uint8_t> content = contentOf(source, segment);
        if (!std::equal(multiPictureMark.begin(), multiPictureMark.end(), content.begin()))
            return;
        content.erase(content.begin(), content.begin() + multiPictureMark.size());
        found = {std::move(content), segment.place + multiPictureMark.size()};
    });
    return found;
}

struct Eye {
    std::uint64_t place = 0;
    ViewpointFacts facts;
};

/// By their numbers where each has one of its own; otherwise as they are.
void orderFromTheLeft(std::vector<Eye> &eyes) {
    std::vector<std::uint32_t> numbers;
    for (const Eye &eye : eyes)
        numbers.push_back(eye.facts.number.value_or(unknownNumber));
    std::ranges::sort(numbers);
    const bool eachHasOne =
        !numbers.empty() && numbers.back() != unknownNumber && std::ranges::adjacent_find(numbers) == numbers.end();
    if (eachHasOne)
        std::ranges::stable_sort(eyes, {}, [](const Eye &eye) { return eye.facts.number.value(); });
}

/// The greater of the values that the two eyes say: that of the viewpoint from which the other is measured may be zero.
std::optional<double> greater(const std::optional<double> &one, const std::optional<double> &other) {
    if (!one || !other)
        return one ? one : other;
    return std::abs(*other) > std::abs(*one) ? other : one;
}

} // namespace

std::vector<IndexedPicture> pictureIndex(std::span<const std::uint8_t> structure, std::uint64_t place) {
    std::vector<IndexedPicture> pictures;
    const auto directory = TagDirectory::first(structure);
    if (!directory)
        return pictures;
    auto entries = directory->value(entriesField);
    for (; entries.size() >= entrySize && pictures.size() < mostPictures; entries = entries.subspan(entrySize)) {
        const std::uint32_t attributes = exif::readNumber(entries.data(), 4, directory->bigEndian());
        const std::uint32_t offset = exif::readNumber(entries.data() + 8, 4, directory->bigEndian());
        // Zero stands for the file's first image, which is the first entry.
        const bool isFirst = offset == 0 || pictures.empty();
        pictures.push_back({attributes & 0xFFFFFF, isFirst ? 0 : place + offset});
    }
    return pictures;
}

ViewpointFacts viewpointFacts(std::span<const std::uint8_t> structure) {
    auto directory = TagDirectory::first(structure);
    if (directory && !directory->value(entriesField).empty())
        directory = directory->next(); // the first image has the index before its own attributes
    if (!directory)
        return {};
    const auto baseline = directory->number(baselineField);
    return {directory->whole(numberField), directory->number(convergenceField),
            baseline && *baseline > 0 ? baseline : std::nullopt};
}

MultiPicture readMultiPicture(const bmff::Source &source) {
    const Structure structure = structureOf(source, 0);
    MultiPicture file;
    std::vector<Eye> eyes;
    for (const IndexedPicture &picture : pictureIndex(structure.bytes, structure.place)) {
        if (picture.isEye())
            eyes.push_back({picture.place, viewpointFacts(structureOf(source, picture.place).bytes)});
        else if (picture.isFrame())
            ++file.others;
        file.all.push_back(picture.place);
    }
    orderFromTheLeft(eyes);
    for (const Eye &eye : eyes)
        file.eyes.push_back(eye.place);
    if (eyes.size() >= 2) {
        file.convergence = greater(eyes[0].facts.convergence, eyes[1].facts.convergence);
        file.baseline = greater(eyes[0].facts.baseline, eyes[1].facts.baseline);
    }
    return file;
}

} // namespace lumetwin::media::images
