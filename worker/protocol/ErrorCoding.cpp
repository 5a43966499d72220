// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/protocol/ErrorCoding.h"

#include "engine/photo/SpatialPhotoError.h"
#include "engine/texts/ProcessorError.h"
#include "media/Cancellation.h"
#include "media/MediaError.h"
#include "worker/protocol/Reading.h"

#include <new>
#include <stdexcept>
#include <system_error>

namespace lumetwin::worker {
namespace {

using Json = nlohmann::json;
using media::MediaError;

/// Longer texts are cut so that they fit into a message.
constexpr std::size_t mostBytes = 4096;

std::string cut(const std::string &words) {
    return words.substr(0, mostBytes);
}

Json encodeOne(const MediaError &error) {
    return {{"type", "media"},
            {"file", cut(error.file().string())},
            {"operation", numberOf(error.operation())},
            {"reason", numberOf(error.reason())},
            {"details", cut(error.details())},
            {"code", error.code()}};
}

Json encodeOne(const SpatialPhotoError &error) {
    return {{"type", "photo"},
            {"case", numberOf(error.kind())},
            {"english", cut(error.what())},
            {"shown", cut(error.shown())}};
}

Json encodeOne(const ProcessorError &error) {
    return {{"type", "processor"}, {"english", cut(error.what())}, {"shown", cut(error.shown())}};
}

Json encodeOne(const std::system_error &error) {
    const bool ofSystem =
        error.code().category() == std::generic_category() || error.code().category() == std::system_category();
    if (!ofSystem)
        return {{"type", "other"}, {"words", cut(error.what())}};
    return {{"type", "system"}, {"number", error.code().value()}, {"words", cut(error.what())}};
}

MediaError mediaError(const Json &content) {
    constexpr int lowest = std::numeric_limits<int>::min();
    constexpr int highest = std::numeric_limits<int>::max();
    return {string(field(content, "file")), caseOf(field(content, "operation"), media::lastMediaOperation),
            static_cast<int>(integer(field(content, "code"), lowest, highest)),
            caseOf(field(content, "reason"), media::lastMediaReason), string(field(content, "details"))};
}

Words wordsOf(const Json &content) {
    return {string(field(content, "english")), string(field(content, "shown"))};
}

/// Removes the description of the error number, because the constructor appends it again.
std::system_error systemError(const Json &content) {
    const int number = static_cast<int>(integer(field(content, "number"), 0, std::numeric_limits<int>::max()));
    const std::error_code code(number, std::generic_category());
    std::string words = string(field(content, "words"));
    if (words == code.message())
        return std::system_error(code);
    if (const std::string ending = ": " + code.message(); words.ends_with(ending))
        words.resize(words.size() - ending.size());
    return std::system_error(code, words);
}

} // namespace

Json encodeError(const std::exception_ptr &error) {
    try {
        std::rethrow_exception(error);
    } catch (const MediaError &caught) {
        return encodeOne(caught);
    } catch (const SpatialPhotoError &caught) {
        return encodeOne(caught);
    } catch (const ProcessorError &caught) {
        return encodeOne(caught);
    } catch (const media::Cancelled &) {
        return {{"type", "cancelled"}};
    } catch (const std::system_error &caught) {
        return encodeOne(caught);
    } catch (const std::bad_alloc &) {
        return {{"type", "memory"}};
    } catch (const std::length_error &caught) {
        return {{"type", "length"}, {"words", cut(caught.what())}};
    } catch (const std::exception &caught) {
        return {{"type", "other"}, {"words", cut(caught.what())}};
    } catch (...) {
        return {{"type", "other"}, {"words", "unknown error"}};
    }
}

std::exception_ptr decodeError(const Json &content) {
    const std::string &type = string(field(content, "type"));
    if (type == "media")
        return std::make_exception_ptr(mediaError(content));
    if (type == "photo")
        return std::make_exception_ptr(SpatialPhotoError::restored(
            caseOf(field(content, "case"), SpatialPhotoError::Case::invalidImage), wordsOf(content)));
    if (type == "processor")
        return std::make_exception_ptr(ProcessorError(wordsOf(content)));
    if (type == "cancelled")
        return std::make_exception_ptr(media::Cancelled{});
    if (type == "system")
        return std::make_exception_ptr(systemError(content));
    if (type == "memory")
        return std::make_exception_ptr(std::bad_alloc());
    if (type == "length")
        return std::make_exception_ptr(std::length_error(string(field(content, "words"))));
    if (type == "other")
        return std::make_exception_ptr(std::runtime_error(string(field(content, "words"))));
    throw ProtocolError("an unknown error");
}

} // namespace lumetwin::worker
