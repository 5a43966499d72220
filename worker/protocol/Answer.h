// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/Outcome.h"
#include "engine/preview/StereoPreview.h"
#include "model/MediaFacts.h"
#include "model/PictureSize.h"
#include "model/StereoFindings.h"
#include "worker/confinement/Confinement.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <exception>
#include <string>
#include <variant>

namespace lumetwin::worker {

// Answers of a worker.

/// The answer to a ForkRequest.
struct Forked {
    int process = 0; ///< its number, or the system's error number (errno) below 0
};

/// The first message of a worker: it is confined and waits for a request.
struct Ready {
    std::string version; ///< of the program; it must be the same on both sides
    ConfinementReport confinement;
};

/// A frame is done.
struct Progress {
    std::int64_t frame = 0;
    std::int64_t frames = 0; ///< 0 if unknown
};

/// The conversion makes progress, but no frame is done.
struct SignOfLife {};

/// The operation has thrown this error.
struct Failure {
    std::exception_ptr error;
};

using Answer = std::variant<Forked, Ready, Progress, SignOfLife, MediaFacts, StereoFindings, PictureSize, PreviewFacts,
                            Outcome, Failure>;

nlohmann::json encode(const Answer &answer);
/// Throws ProtocolError.
Answer decodeAnswer(const nlohmann::json &content);

} // namespace lumetwin::worker
