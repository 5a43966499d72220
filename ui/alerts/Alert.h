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
    std::vector<std::string> buttons = {}; ///< empty: one button, named by the toolkit
    std::string sideButton = {};           ///< a button that does something, but does not answer the question
    AlertStyle style = AlertStyle::warning;
    std::string details = {}; ///< hidden until the user opens them
    int defaultButton =
        0; ///< position of the button that Enter presses; never one that replaces, stops or loses something
    std::string detailsName = {}; ///< what screen readers call the details
};

} // namespace lumetwin
