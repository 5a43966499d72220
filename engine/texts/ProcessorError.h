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

/// The engine's error with the given message, to be thrown.
inline ProcessorError processorError(const Words &message) {
    return ProcessorError(message);
}

/// As above, for a message that is already localized. The log contains it in that language.
inline ProcessorError processorError(const std::string &message) {
    return ProcessorError({message, message});
}

/// The message of an error for the user, in the user's language.
std::string errorMessage(const std::exception &error);

/// The cause of an error in the user's language, for a message that already names the file.
std::string errorCause(const std::exception &error);

/// The full text of an error for the log: its domain, code and message, as in Error Domain=VideoProcessor Code=-1
/// "message". For an error without a code, only its message.
std::string errorText(const std::exception &error);

} // namespace lumetwin
