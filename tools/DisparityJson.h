// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/StereoFindings.h"
#include "tools/Json.h"

#include <optional>

namespace lumetwin::batch {

/// The figures in percent of the width of an eye; null where there are none.
inline Json disparityJson(const std::optional<DisparityFigures> &figures) {
    if (!figures)
        return nullptr;
    return {{"nearest", figures->nearest},
            {"middle", figures->middle},
            {"farthest", figures->farthest},
            {"vertical", figures->vertical}};
}

} // namespace lumetwin::batch
