// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Warning.h"

#include <cstdint>
#include <mutex>
#include <utility>
#include <vector>

namespace lumetwin {

/// What became of one file that a converter did not fail on.
struct Outcome {
    bool written = false;            ///< false: the user cancelled, and there is no output
    std::int64_t framesWritten = 0;  ///< of a film
    std::int64_t framesExpected = 0; ///< of a film, 0 when unknown
    std::vector<Warning> warnings;

    /// Of a photo.
    static Outcome ofPhoto(std::vector<Warning> warnings) { return {true, 0, 0, std::move(warnings)}; }
};

/// Gathers what a conversion has to tell; its threads add to it.
class WarningList {
public:
    void add(WarningKind kind, std::vector<Warning::Value> values = {}) {
        const std::scoped_lock lock(mutex_);
        warnings_.push_back({kind, std::move(values)});
    }

    /// All of them, in the order in which they were added; the list is empty then.
    std::vector<Warning> take() {
        const std::scoped_lock lock(mutex_);
        return std::exchange(warnings_, {});
    }

private:
    std::mutex mutex_;
    std::vector<Warning> warnings_;
};

} // namespace lumetwin
