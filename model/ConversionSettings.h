// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/BitDepth.h"
#include "model/ConversionDirection.h"
#include "model/InputLayout.h"
#include "model/OnExisting.h"
#include "model/ResizeMode.h"
#include "model/SBSOutputFormat.h"
#include "model/SBSPhotoOutputFormat.h"
#include "model/SettingsRules.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <set>
#include <vector>

namespace lumetwin {

/// All settings of the user for one batch. The form or the command line writes single fields; the engine reads them.
/// There is one instance, which is passed by reference and never copied. Values are not checked on assignment.
class ConversionSettings {
public:
    ConversionSettings() = default;
    ConversionSettings(const ConversionSettings &) = delete;
    ConversionSettings &operator=(const ConversionSettings &) = delete;

    ConversionDirection direction = ConversionDirection::spatialToSBS;
    std::optional<std::filesystem::path> inputFolderURL;          ///< the input, when it is a folder
    std::optional<std::vector<std::filesystem::path>> inputFiles; ///< the input, when it is a set of files
    std::vector<std::filesystem::path>
        otherFiles;                          ///< selected along with inputFiles, but of kinds that are not converted
    std::set<std::filesystem::path> leftOut; ///< files of the input that are not converted; of a pair, the left eye's
    std::optional<std::filesystem::path> outputFolderURL; ///< receives the outputs
    double horizontalFOV = fovRange.start;                ///< degrees, written as stereo metadata
    double disparityAdjustment = disparityRange.start;    ///< percent of the image width
    double stereoBaseline = baselineRange.start;          ///< millimetres
    bool automaticDisparity = false; ///< choose the disparity adjustment from the picture of each file
    StereoValuesSource stereoValuesSource = StereoValuesSource::settings;
    InputLayout inputLayout = InputLayout::automatic;
    SBSOutputFormat sbsOutputFormat = SBSOutputFormat::mp4H264;
    SBSPhotoOutputFormat sbsPhotoOutputFormat = SBSPhotoOutputFormat::jpg;
    double compressionQuality = qualityRange.start; ///< 0.0 to 1.0
    bool halfWidth = false;                         ///< pack each eye at half width
    bool swapLeftRight = false;                     ///< exchange the eyes
    bool enableResize = false;                      ///< resize each eye to the size below
    std::int64_t resizeWidth = startWidth;          ///< pixels of one eye
    std::int64_t resizeHeight = startHeight;        ///< pixels of one eye
    ResizeMode resizeMode = ResizeMode::letterbox;
    bool copyAudio = true;   ///< copy the source's audio track
    bool keepTiming = false; ///< keep the time of each frame, instead of a constant rate in units of 1/600 s
    BitDepth bitDepth = BitDepth::automatic; ///< of videos
    bool checkStereo = true;                 ///< look at the picture before a conversion to spatial media, and warn
    bool recursive = false;                  ///< also convert the subfolders of the input folder, and keep their tree
    bool skipExisting = false;               ///< skip inputs whose output an earlier run has finished
    bool dryRun = false;                     ///< do everything up to the conversion of each file, and write nothing
    OnExisting onExisting = OnExisting::replace;
};

} // namespace lumetwin
