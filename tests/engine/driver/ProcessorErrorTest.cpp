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

TEST(SpatialPhotoErrors, haveTheirCasesAndDescriptions) {
    const std::vector<std::pair<SpatialPhotoError, std::string>> cases{
        {SpatialPhotoError::cannotOpenFile("/in/a.heic"), "Could not open the file: a.heic"},
        {SpatialPhotoError::notASpatialPhoto("No stereo pair group found"),
         "This is not a spatial photo: No stereo pair group found"},
        {SpatialPhotoError::cannotCreateDestination("/out/a.heic"), "Could not create the output destination: a.heic"},
        {SpatialPhotoError::finalizationFailed("/out/a.heic"), "Failed to write spatial photo: a.heic"},
        {SpatialPhotoError::imageExtractionFailed(), "Failed to retrieve left and right images."},
        {SpatialPhotoError::invalidImage(), "Could not convert NSImage to CGImage"},
    };
    for (std::size_t index = 0; index < cases.size(); ++index) {
        EXPECT_EQ(cases[index].first.what(), cases[index].second);
        EXPECT_EQ(errorText(cases[index].first),
                  "Error Domain=SpatialPhotoError Code=" + std::to_string(index) + " \"" + cases[index].second + "\"");
    }
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
