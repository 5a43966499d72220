// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/MediaOperations.h"
#include "model/ConversionSettings.h"
#include "model/SystemVersion.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <variant>

namespace lumetwin::worker {

// Requests to a worker. The descriptors are sent with the message, in the order of the paths. The paths are only used
// in error messages.

/// Asks for facts about a file. Descriptors: the file; and the file of the right eye, where there is one.
struct LookRequest {
    enum class Kind { look, lookClosely, measure, examine }; ///< of MediaOperations

    Kind kind = Kind::look;
    std::filesystem::path input;
    std::string language; ///< for texts that users read
    std::optional<std::filesystem::path> rightEye = {};
    std::optional<StereoLayout> layout = {}; ///< for examine
};

/// Asks for a preview. Descriptors: the file; the file of the right eye, where there is one; and the output for the
/// pixels.
struct DrawRequest {
    PreviewRequest preview;
    std::filesystem::path input;
    std::string language;
    std::optional<std::filesystem::path> rightEye = {};
};

/// Asks for a conversion. Descriptors: the input (read-only), the output; and the file of the right eye, where there is
/// one.
struct ConvertRequest {
    ConversionKind kind = ConversionKind::spatialVideoToSBS;
    std::shared_ptr<const ConversionSettings> settings; ///< inputs and output folder are not sent
    SystemVersion system;
    std::filesystem::path input;
    std::filesystem::path output;
    std::string language;
    bool oneDecodingThread = false; ///< set after a crash
    std::optional<std::filesystem::path> rightEye = {};
    std::optional<double> disparityAdjustment = {}; ///< of ConversionInput
};

/// Asks to stop the conversion.
struct CancelRequest {};

/// Asks the program's first process for a worker. Descriptor: the worker's end of its channel.
struct ForkRequest {};

using Request = std::variant<LookRequest, DrawRequest, ConvertRequest, CancelRequest, ForkRequest>;

nlohmann::json encode(const Request &request);
/// Throws ProtocolError.
Request decodeRequest(const nlohmann::json &content);

} // namespace lumetwin::worker
