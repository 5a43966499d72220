// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/texts/Words.h"

#include <exception>
#include <stdexcept>
#include <string>

namespace lumetwin {

/// The engine's own error: domain "VideoProcessor", code -1, and a message.
class ProcessorError : public std::runtime_error {
public:
    static constexpr const char *domain = "VideoProcessor";
    static constexpr int code = -1;

    /// The message is English for the log.
    explicit ProcessorError(const Words &message) : std::runtime_error(message.english), shown_(message.shown) {}

    /// The message in the user's language.
    const std::string &shown() const { return shown_; }

private:
    std::string shown_;
};

/// The engine error with the given message, to be thrown.
inline ProcessorError processorError(const Words &message) {
    return ProcessorError(message);
}

/// As above; the message is localized already, and the log has it so.
inline ProcessorError processorError(const std::string &message) {
    return ProcessorError({message, message});
}

/// An error in words for the user.
std::string errorMessage(const std::exception &error);

/// Why something failed, in words for the user, for a message that names the file already.
std::string errorCause(const std::exception &error);

/// An error's full text for the log: its domain, code and message, as in
/// Error Domain=VideoProcessor Code=-1 "message". Errors without a code are their message.
std::string errorText(const std::exception &error);

} // namespace lumetwin
