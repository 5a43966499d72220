// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/BitDepth.h"
#include "model/ConversionDirection.h"
#include "model/InputLayout.h"
#include "model/OnExisting.h"
#include "model/ResizeMode.h"
#include "model/SBSOutputFormat.h"
#include "model/SBSPhotoOutputFormat.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

namespace lumetwin::batch {

/// The names of enumerators in options and reports. They must not change, because scripts use them.
template <typename Case, std::size_t count> using CaseNames = std::array<std::pair<std::string_view, Case>, count>;

inline constexpr CaseNames<ConversionDirection, 2> directionNames{
    {{"spatialToSBS", ConversionDirection::spatialToSBS}, {"sbsToSpatial", ConversionDirection::sbsToSpatial}}};
inline constexpr CaseNames<InputLayout, 8> inputLayoutNames{{{"automatic", InputLayout::automatic},
                                                             {"side-by-side", InputLayout::sideBySide},
                                                             {"half-side-by-side", InputLayout::halfSideBySide},
                                                             {"over-under", InputLayout::overUnder},
                                                             {"half-over-under", InputLayout::halfOverUnder},
                                                             {"two-pictures", InputLayout::twoPictures},
                                                             {"two-streams", InputLayout::twoStreams},
                                                             {"two-files", InputLayout::twoFiles}}};
inline constexpr CaseNames<StereoValuesSource, 2> stereoValuesNames{
    {{"from-options", StereoValuesSource::settings}, {"from-file", StereoValuesSource::file}}};
inline constexpr CaseNames<SBSOutputFormat, 5> videoFormatNames{{{"mp4H264", SBSOutputFormat::mp4H264},
                                                                 {"mp4H265", SBSOutputFormat::mp4H265},
                                                                 {"movHEVC", SBSOutputFormat::movHEVC},
                                                                 {"mkvH264", SBSOutputFormat::mkvH264},
                                                                 {"mkvH265", SBSOutputFormat::mkvH265}}};
inline constexpr CaseNames<SBSPhotoOutputFormat, 4> photoFormatNames{{{"jpg", SBSPhotoOutputFormat::jpg},
                                                                      {"png", SBSPhotoOutputFormat::png},
                                                                      {"tiff", SBSPhotoOutputFormat::tiff},
                                                                      {"heic", SBSPhotoOutputFormat::heic}}};
inline constexpr CaseNames<ResizeMode, 3> resizeModeNames{
    {{"stretch", ResizeMode::stretch}, {"cropFill", ResizeMode::cropFill}, {"letterbox", ResizeMode::letterbox}}};
inline constexpr CaseNames<BitDepth, 3> bitDepthNames{
    {{"auto", BitDepth::automatic}, {"8", BitDepth::eight}, {"10", BitDepth::ten}}};
inline constexpr CaseNames<OnExisting, 3> onExistingNames{
    {{"replace", OnExisting::replace}, {"keep-both", OnExisting::keepBoth}, {"skip", OnExisting::skip}}};

template <typename Case, std::size_t count> std::string_view caseName(Case value, const CaseNames<Case, count> &names) {
    return std::ranges::find(names, value, [](const auto &entry) { return entry.second; })->first;
}

} // namespace lumetwin::batch
