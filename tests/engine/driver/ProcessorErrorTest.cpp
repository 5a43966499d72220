// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/ProcessorError.h"

#include "engine/SpatialPhotoError.h"
#include "media/MediaError.h"

#include <gtest/gtest.h>

#include <new>

namespace lumetwin {
namespace {

TEST(ErrorText, EngineErrorHasDomainCodeAndMessage) {
    const ProcessorError error = processorError("Failed to render SBS image");
    EXPECT_EQ(errorText(error), "Error Domain=VideoProcessor Code=-1 \"Failed to render SBS image\"");
    EXPECT_STREQ(error.what(), "Failed to render SBS image");
}

TEST(ErrorText, MediaErrorHasTheLibrarysCodeAndWords) {
    const media::MediaError error("/in/clip.mov", "Cannot open", -1094995529, "Invalid data found");
    EXPECT_EQ(errorText(error), "Error Domain=Media Code=-1094995529 \"Cannot open clip.mov: Invalid data found\"");
}

TEST(ErrorText, PhotoErrorHasItsCaseAndDescription) {
    EXPECT_EQ(errorText(SpatialPhotoError::notASpatialPhoto("No stereo pair group found")),
              "Error Domain=SpatialPhotoError Code=1 \"This is not a spatial photo: No stereo pair group found\"");
}

TEST(ErrorText, SystemErrorHasItsCode) {
    const std::system_error error(std::make_error_code(std::errc::permission_denied), "reading");
    EXPECT_EQ(errorText(error), "Error Domain=generic Code=13 \"reading: Permission denied\"");
}

TEST(ErrorText, OtherErrorsAreTheirDescription) {
    EXPECT_EQ(errorText(std::runtime_error("something else")), "something else");
    EXPECT_EQ(errorText(std::bad_alloc()), "There is not enough memory.");
    EXPECT_EQ(errorMessage(processorError("words")), "words");
}

} // namespace
} // namespace lumetwin
