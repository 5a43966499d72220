// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/texts/ProcessorError.h"

#include "engine/photo/SpatialPhotoError.h"
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
    const media::MediaError error("/in/clip.mov", media::MediaOperation::open, -1094995529, "Invalid data found");
    EXPECT_EQ(errorText(error), "Error Domain=Media Code=-1094995529 \"Cannot open clip.mov: Invalid data found\"");
}

TEST(ErrorText, PhotoErrorHasItsCaseAndDescription) {
    EXPECT_EQ(errorText(SpatialPhotoError::notASpatialPhoto(SpatialPhotoError::noStereoGroup())),
              "Error Domain=SpatialPhotoError Code=1 \"This is not a spatial photo: No stereo pair group found\"");
}

TEST(SpatialPhotoErrors, haveTheirCasesAndDescriptions) {
    const std::vector<std::pair<SpatialPhotoError, std::string>> cases{
        {SpatialPhotoError::cannotOpenFile("/in/a.heic"), "Could not open the file: a.heic"},
        {SpatialPhotoError::notASpatialPhoto(SpatialPhotoError::noStereoGroup()),
         "This is not a spatial photo: No stereo pair group found"},
        {SpatialPhotoError::notASpatialPhoto(SpatialPhotoError::tooFewImages(1)),
         "This is not a spatial photo: Does not contain two or more images (count=1)"},
        {SpatialPhotoError::notASpatialPhoto(SpatialPhotoError::noContainerProperties()),
         "This is not a spatial photo: The container property cannot be retrieved."},
        {SpatialPhotoError::cannotCreateDestination("/out/a.heic"), "Could not create the output destination: a.heic"},
        {SpatialPhotoError::finalizationFailed("/out/a.heic"), "Failed to write spatial photo: a.heic"},
        {SpatialPhotoError::imageExtractionFailed(), "Failed to retrieve left and right images."},
        {SpatialPhotoError::invalidImage(), "Could not convert NSImage to CGImage"},
    };
    for (const auto &[error, description] : cases) {
        EXPECT_EQ(error.what(), description);
        EXPECT_EQ(errorText(error),
                  "Error Domain=SpatialPhotoError Code=" + std::to_string(error.code()) + " \"" + description + "\"");
    }
    EXPECT_EQ(cases.front().first.code(), 0);
    EXPECT_EQ(cases.back().first.code(), 5);
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
