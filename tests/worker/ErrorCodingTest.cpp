// SPDX-License-Identifier: GPL-3.0-or-later
// Errors do not change on their way through the channel.
#include "worker/protocol/ErrorCoding.h"

#include "engine/photo/SpatialPhotoError.h"
#include "engine/texts/ProcessorError.h"
#include "media/Cancellation.h"
#include "media/MediaError.h"
#include "worker/protocol/Channel.h"

#include <gtest/gtest.h>
#include <new>
#include <system_error>
#include <typeinfo>

namespace lumetwin::worker {
namespace {

/// The type of an error and all its texts.
std::string portrait(const std::exception_ptr &error) {
    try {
        std::rethrow_exception(error);
    } catch (const std::exception &caught) {
        return std::string(typeid(caught).name()) + "|" + caught.what() + "|" + errorText(caught) + "|" +
               errorMessage(caught);
    } catch (const media::Cancelled &) {
        return "cancelled";
    }
}

std::exception_ptr sent(const std::exception_ptr &error) {
    return decodeError(contentOf(nlohmann::json::to_cbor(encodeError(error))));
}

template <typename Error> void expectUnchanged(const Error &error) {
    const std::exception_ptr before = std::make_exception_ptr(error);
    EXPECT_EQ(portrait(sent(before)), portrait(before));
}

TEST(ErrorCoding, KeepsTypeAndText) {
    setTextLocale("ja");
    expectUnchanged(processorError(lumetwin::words("error.no.video.track")));
    expectUnchanged(SpatialPhotoError::cannotOpenFile("a.heic", lumetwin::words("reason.damaged")));
    expectUnchanged(SpatialPhotoError::invalidImage());
    expectUnchanged(media::MediaError("/a/b.mov", media::MediaOperation::decodeSound, -5, media::MediaReason::damaged));
    expectUnchanged(media::MediaError("/a/b.mov", media::MediaOperation::read, -1094995529, "a library's words"));
    expectUnchanged(media::MediaError::ofSystem("b.mov", media::MediaOperation::write, ENOSPC));
    expectUnchanged(media::Cancelled{});
    expectUnchanged(std::bad_alloc());
    expectUnchanged(std::length_error("too long"));
    expectUnchanged(std::runtime_error("words"));
    expectUnchanged(std::system_error(ENOSPC, std::generic_category()));
    expectUnchanged(std::system_error(ENOSPC, std::generic_category(), "write"));
    setTextLocale("en");
}

TEST(ErrorCoding, LongWordsFitIntoAMessage) {
    const auto error = std::make_exception_ptr(
        media::MediaError(std::string(100'000, 'n'), media::MediaOperation::read, 0, std::string(100'000, 'w')));
    EXPECT_LT(nlohmann::json::to_cbor(encodeError(error)).size(), Channel::largestMessage);
    const auto other = std::make_exception_ptr(std::runtime_error(std::string(100'000, 'w')));
    EXPECT_LT(nlohmann::json::to_cbor(encodeError(other)).size(), Channel::largestMessage);
}

} // namespace
} // namespace lumetwin::worker
