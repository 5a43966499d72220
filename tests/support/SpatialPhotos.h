// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/SpatialPhoto.h"
#include "tests/support/BoxEdits.h"
#include "tests/support/Photos.h"

namespace lumetwin::test {

/// Facts as a camera with the given field of view would have them.
media::SpatialPhotoFacts factsFor(int width, int height, double fieldOfView = 90);

/// Writes a spatial photo of two pictures.
void writeSpatialPhoto(const std::filesystem::path &file, const Raster &left, const Raster &right);

/// What the stack's heif-dec makes of each image of a file, in its order.
std::vector<Raster> decodedByJudge(const std::filesystem::path &file);
/// What the stack's heif-info says.
std::string heifInfo(const std::filesystem::path &file);

/// Replaces the ids of a file's first stereo group.
void setStereoGroup(const std::filesystem::path &file, const std::vector<std::uint32_t> &ids);
/// The ids of a file's first stereo group.
std::vector<std::uint32_t> stereoGroup(const std::filesystem::path &file);

/// Writes a HEIF file that holds an image sequence and no image.
void writeImageSequence(const std::filesystem::path &file);
/// Says that a photo's pictures are coded in another way than HEVC, by the type of their items.
void setCoding(const std::filesystem::path &file, const std::string &type);
/// Says that a photo's coded pictures are encrypted.
void encryptItems(const std::filesystem::path &file);

} // namespace lumetwin::test
