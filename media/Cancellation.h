// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/SignsOfLife.h"

#include <functional>
#include <utility>

namespace lumetwin::media {

/// Thrown when work stops because it was cancelled. It is not an error, and error handlers do not catch it.
struct Cancelled {};

/// Long work calls this before each piece (a tile, a strip of rows) to find out whether to continue. The predicate is
/// called often, on all threads of the work.
class Cancellation {
public:
    /// Never cancels.
    Cancellation() = default;
    explicit Cancellation(std::function<bool()> requested) : requested_(std::move(requested)) {}

    bool requested() const { return requested_ && requested_(); }

    /// Throws Cancelled if requested. Counts as a sign of life, because it is called before each further step.
    void check() const {
        giveSignOfLife();
        if (requested())
            throw Cancelled{};
    }

private:
    std::function<bool()> requested_;
};

} // namespace lumetwin::media
