// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace lumetwin {

enum class AlertStyle { informational, warning };

/// A question or a message to the user.
struct Alert {
    std::string message;
    std::string informative = {};
    std::vector<std::string> buttons = {}; ///< the first is the default one; none: the platform's single button
    std::string sideButton = {};           ///< a further button that answers nothing, but does something
    AlertStyle style = AlertStyle::warning;
    std::string details = {}; ///< shown on demand
};

} // namespace lumetwin
