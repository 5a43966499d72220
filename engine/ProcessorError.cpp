// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/ProcessorError.h"

#include "engine/SpatialPhotoError.h"
#include "media/MediaError.h"

#include <new>
#include <system_error>

namespace lumetwin {
namespace {

std::string described(const std::string &domain, int code, const std::string &message) {
    return "Error Domain=" + domain + " Code=" + std::to_string(code) + " \"" + message + "\"";
}

} // namespace

std::string errorMessage(const std::exception &error) {
    return dynamic_cast<const std::bad_alloc *>(&error) ? "There is not enough memory." : error.what();
}

std::string errorText(const std::exception &error) {
    std::string message = errorMessage(error);
    if (dynamic_cast<const ProcessorError *>(&error))
        return described(ProcessorError::domain, ProcessorError::code, message);
    if (const auto *photo = dynamic_cast<const SpatialPhotoError *>(&error))
        return described(SpatialPhotoError::domain, photo->code(), message);
    if (const auto *media = dynamic_cast<const media::MediaError *>(&error))
        return described("Media", media->code(), message);
    if (const auto *system = dynamic_cast<const std::system_error *>(&error))
        return described(system->code().category().name(), system->code().value(), message);
    return message;
}

} // namespace lumetwin
