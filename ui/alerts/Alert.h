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
    std::vector<std::string> buttons = {}; ///< none: the platform's single button
    std::string sideButton = {};           ///< a further button that answers nothing, but does something
    AlertStyle style = AlertStyle::warning;
    std::string details = {};     ///< shown on demand
    int defaultButton = 0;        ///< pressed by Enter: never one that replaces, stops or loses something
    std::string detailsName = {}; ///< of the details, for screen readers
};

} // namespace lumetwin
