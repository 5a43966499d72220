// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/SignsOfLife.h"

#include <functional>
#include <utility>

namespace lumetwin::media {

/// Thrown where work stops because nobody wants it any longer. It is no error, and no handler of errors takes it.
struct Cancelled {};

/// Asked by work that can last, before each further piece of it (a tile, a strip of rows): whether to go on. The
/// predicate is called on all threads of the work, often.
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
