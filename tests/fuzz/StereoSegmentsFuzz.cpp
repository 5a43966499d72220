// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/bmff/BoxReader.h"
#include "media/jpeg/JpegHeaders.h"
#include "media/jpeg/StereoSegments.h"
#include "media/metadata/FieldOfView.h"

#include <cmath>
#include <cstdlib>

using namespace lumetwin::media;

namespace {

void require(bool holds) {
    if (!holds)
        std::abort();
}

/// What is read of a block is what a block of our own says.
void checkJps(std::span<const std::uint8_t> content) {
    const auto packing = images::jpsPacking(content);
    if (packing && packing->arrangement != StereoPacking::Arrangement::interleaved)
        require(images::jpsPacking(images::jpsContent(*packing)) == packing);
}

void checkStim(std::span<const std::uint8_t> content) {
    const images::StimFacts stim = images::stimFacts(content);
    require(!stim.baseline || (*stim.baseline > 0 && std::isfinite(*stim.baseline)));
    require(!stim.packing || !stim.packing->isHalf);
}

} // namespace

/// The bytes as the content of a segment, and as a file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::span<const std::uint8_t> bytes(data, size);
    checkJps(bytes);
    checkStim(bytes);
    const images::StillHeaders headers = images::readJpegHeaders(*bmff::fromMemory(bytes));
    require(headers.width <= 65535 && headers.height <= 65535);
    const auto degrees = images::horizontalFieldOfView(bytes, 4, 3);
    require(!degrees || (*degrees >= 1 && *degrees <= 179));
    return 0;
}
