// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/texts/MediaErrorTexts.h"
#include "engine/photo/SpatialPhotoError.h"
#include "engine/texts/ProcessorError.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <set>

namespace lumetwin {
namespace {

using media::MediaError;
using media::MediaOperation;
using media::MediaReason;

/// Both languages are looked at by turns.
class MediaErrorTexts : public testing::Test {
protected:
    ~MediaErrorTexts() override { setTextLocale("en"); }

    static std::string japanese(std::string_view key) {
        setTextLocale("ja");
        return text(key);
    }
};

template <typename Kind> std::vector<Kind> all(Kind last) {
    std::vector<Kind> kinds;
    for (int number = 0; number <= static_cast<int>(last); ++number)
        kinds.push_back(static_cast<Kind>(number));
    return kinds;
}

TEST_F(MediaErrorTexts, everyOperationHasATextInBothLanguages) {
    std::set<std::string> texts;
    for (const MediaOperation operation : all(media::lastMediaOperation)) {
        const std::string_view key = keyOf(operation);
        EXPECT_EQ(englishText(key), std::string(media::words(operation)) + " %s");
        EXPECT_NE(japanese(key), key);
        EXPECT_NE(japanese(key), englishText(key)) << key;
        EXPECT_TRUE(texts.insert(japanese(key)).second) << key << " is like another one";
    }
}

TEST_F(MediaErrorTexts, everyReasonHasATextInBothLanguages) {
    std::set<std::string> texts;
    for (const MediaReason reason : all(media::lastMediaReason)) {
        const std::string_view key = keyOf(reason);
        EXPECT_EQ(englishText(key), media::words(reason)) << key;
        EXPECT_NE(japanese(key), key);
        EXPECT_NE(japanese(key), englishText(key)) << key;
        EXPECT_TRUE(texts.insert(japanese(key)).second) << key << " is like another one";
    }
}

TEST_F(MediaErrorTexts, theSystemsReasonsAreInItsWords) {
    for (const int number : {ENOENT, EACCES, EISDIR, ENOSPC, EROFS, EFBIG, EIO, ENXIO}) {
        const MediaError error = MediaError::ofSystem("/in/a.mov", MediaOperation::open, number);
        EXPECT_EQ(error.code(), -number);
        EXPECT_EQ(error.what(), std::string("Cannot open a.mov: ") + std::strerror(number));
    }
}

TEST_F(MediaErrorTexts, aMessageNamesFileReasonAndDetails) {
    const MediaError error("/in/a.jpg", MediaOperation::read, 117, MediaReason::damaged, "Premature end of JPEG file");
    EXPECT_STREQ(error.what(), "Cannot read a.jpg: it is damaged (Premature end of JPEG file)");
    EXPECT_EQ(errorMessage(error), error.what());
    EXPECT_EQ(causeOf(error).english, "it is damaged: Premature end of JPEG file");
    setTextLocale("ja");
    EXPECT_EQ(errorMessage(error), "a.jpg を読み込めません：破損しています（Premature end of JPEG file）");
    EXPECT_EQ(causeOf(error).shown, "破損しています：Premature end of JPEG file");
    EXPECT_EQ(causeOf(error).english, "it is damaged: Premature end of JPEG file");
}

TEST_F(MediaErrorTexts, aLibrarysWordsStandAsTheyAre) {
    const MediaError error("/in/a.mov", MediaOperation::decode, -5, "words of 100 % its own");
    EXPECT_STREQ(error.what(), "Cannot decode a.mov: words of 100 % its own");
    setTextLocale("ja");
    EXPECT_EQ(errorMessage(error), "a.mov をデコードできません：words of 100 % its own");
    EXPECT_EQ(causeOf(error).shown, "words of 100 % its own");
    EXPECT_EQ(errorMessage(MediaError("a.mov", MediaOperation::decode, -5, "")),
              "a.mov をデコードできません：不明なエラー");
}

TEST_F(MediaErrorTexts, fixedMessagesCarryTheirCauseInTheUsersLanguage) {
    setTextLocale("ja");
    const MediaError cause("/in/a.heic", MediaOperation::read, 0, MediaReason::imageSequence);
    const auto error = SpatialPhotoError::cannotOpenFile("/in/a.heic", causeOf(cause));
    EXPECT_STREQ(error.what(), "Could not open the file: a.heic (an image sequence, not a photo)");
    EXPECT_EQ(errorMessage(error), "ファイルを開けませんでした：a.heic（写真ではなく画像シーケンスです）");
    EXPECT_EQ(errorText(error), "Error Domain=SpatialPhotoError Code=0 \"" + std::string(error.what()) + "\"");
    const auto few = SpatialPhotoError::notASpatialPhoto(SpatialPhotoError::tooFewImages(1));
    EXPECT_EQ(errorMessage(few), "空間写真ではありません：画像が 2 枚以上含まれていません（1 枚）");
}

TEST_F(MediaErrorTexts, otherErrorsHaveTextsToo) {
    setTextLocale("ja");
    EXPECT_EQ(errorMessage(std::bad_alloc()), "メモリが足りません。");
    EXPECT_EQ(errorText(std::bad_alloc()), "There is not enough memory.");
    EXPECT_EQ(errorMessage(std::system_error(std::make_error_code(std::errc::no_space_on_device), "writing")),
              "空き容量がありません");
    EXPECT_EQ(causeOf(std::length_error("out of range")).shown, "画像が大きすぎます");
}

} // namespace
} // namespace lumetwin
