// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/texts/ProcessorError.h"

#include "engine/photo/SpatialPhotoError.h"
#include "engine/texts/MediaErrorTexts.h"

#include <new>
#include <system_error>

namespace lumetwin {
namespace {

std::string described(const std::string &domain, int code, const std::string &message) {
    return "Error Domain=" + domain + " Code=" + std::to_string(code) + " \"" + message + "\"";
}

/// Common system errors have a text of ours; rare ones use the text of the system.
std::string systemMessage(const std::system_error &error) {
    const bool ofSystem =
        error.code().category() == std::generic_category() || error.code().category() == std::system_category();
    const media::MediaReason reason = ofSystem ? media::systemReason(error.code().value()) : media::MediaReason::other;
    return reason == media::MediaReason::other ? error.what() : text(keyOf(reason));
}

} // namespace

std::string errorMessage(const std::exception &error) {
    if (const auto *processor = dynamic_cast<const ProcessorError *>(&error))
        return processor->shown();
    if (const auto *photo = dynamic_cast<const SpatialPhotoError *>(&error))
        return photo->shown();
    if (const auto *media = dynamic_cast<const media::MediaError *>(&error))
        return errorWords(*media).shown;
    if (dynamic_cast<const std::bad_alloc *>(&error))
        return text("error.no.memory");
    if (const auto *system = dynamic_cast<const std::system_error *>(&error))
        return systemMessage(*system);
    return error.what();
}

std::string errorCause(const std::exception &error) {
    const auto *media = dynamic_cast<const media::MediaError *>(&error);
    return media ? causeOf(*media).shown : errorMessage(error);
}

std::string errorText(const std::exception &error) {
    if (dynamic_cast<const ProcessorError *>(&error))
        return described(ProcessorError::domain, ProcessorError::code, error.what());
    if (const auto *photo = dynamic_cast<const SpatialPhotoError *>(&error))
        return described(SpatialPhotoError::domain, photo->code(), error.what());
    if (const auto *media = dynamic_cast<const media::MediaError *>(&error))
        return described("Media", media->code(), error.what());
    if (const auto *system = dynamic_cast<const std::system_error *>(&error))
        return described(system->code().category().name(), system->code().value(), error.what());
    return dynamic_cast<const std::bad_alloc *>(&error) ? englishText("error.no.memory") : error.what();
}

} // namespace lumetwin
