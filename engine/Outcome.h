// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Warning.h"

#include <cstdint>
#include <mutex>
#include <utility>
#include <vector>

namespace lumetwin {

/// The result of a converter that did not fail.
struct Outcome {
    bool written = false;            ///< false if the user cancelled; then there is no output
    std::int64_t framesWritten = 0;  ///< only for videos
    std::int64_t framesExpected = 0; ///< only for videos; 0 when unknown
    std::vector<Warning> warnings;

    /// The outcome of a photo that was written.
    static Outcome ofPhoto(std::vector<Warning> warnings) { return {true, 0, 0, std::move(warnings)}; }
};

/// Collects the warnings of a conversion. May be used by several threads.
class WarningList {
public:
    void add(WarningKind kind, std::vector<Warning::Value> values = {}) {
        const std::scoped_lock lock(mutex_);
        warnings_.push_back({kind, std::move(values)});
    }

    /// Returns all warnings in the order in which they were added, and empties the list.
    std::vector<Warning> take() {
        const std::scoped_lock lock(mutex_);
        return std::exchange(warnings_, {});
    }

private:
    std::mutex mutex_;
    std::vector<Warning> warnings_;
};

} // namespace lumetwin
