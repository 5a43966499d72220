// SPDX-License-Identifier: GPL-3.0-or-later
// The preview of the selected file.
#include "support/PanelFixture.h"

namespace lumetwin::test {
namespace {

class PreviewPaneTest : public FilesPanelTest {};

TEST_F(PreviewPaneTest, PreviewShowsEachEyeAndFollowsTheSwap) {
    pair("a.jpg");
    open();
    waitForLooks();
    select(0);
    const QImage left = shown(PreviewMode::left), right = shown(PreviewMode::right);
    EXPECT_NE(left, right);
    part<QCheckBox>("previewSwapCheck").click();
    EXPECT_TRUE(form().settings->swapLeftRight) << "the form's own setting";
    EXPECT_TRUE(control<QCheckBox>(form(), "swapLRCheck").isChecked());
    EXPECT_EQ(shown(PreviewMode::left), right);
    EXPECT_EQ(shown(PreviewMode::right), left);
}

TEST_F(PreviewPaneTest, PreviewOfEqualEyesHasNoDifference) {
    const media::Picture wall = drawnTexture(640, 360);
    writePicture(besideEachOther(media::EyePair<media::Picture>{wall, wall}), input.path / "a.png");
    open();
    waitForLooks();
    select(0);
    const QImage difference = shown(PreviewMode::difference);
    int brightest = 0;
    for (int y = 0; y < difference.height(); ++y)
        for (int x = 0; x < difference.width(); ++x)
            brightest = std::max(brightest, qGray(difference.pixel(x, y)));
    EXPECT_LE(brightest, 2);
    EXPECT_NE(shown(PreviewMode::anaglyph).pixel(100, 100), qRgb(0, 0, 0));
}

TEST_F(PreviewPaneTest, KeysChangeTheViewOfThePreview) {
    pair("a.jpg");
    open();
    waitForLooks();
    select(0);
    static_cast<void>(shown(PreviewMode::sideBySide));
    QTest::keyClick(&canvas(), Qt::Key_4);
    EXPECT_EQ(part<QComboBox>("previewModePopup").currentIndex(), static_cast<int>(PreviewMode::anaglyph));
    QTest::keyClick(&canvas(), Qt::Key_2);
    QTest::keyClick(&canvas(), Qt::Key_Z);
    EXPECT_TRUE(canvas().isActualSize());
    EXPECT_TRUE(waitUntil([this] { return canvas().picture().size() == QSize(640, 360); })) << "every pixel";
}

TEST_F(PreviewPaneTest, SuggestedAdjustmentIsSetInTheForm) {
    pair("a.jpg");
    open();
    waitForLooks();
    select(0);
    static_cast<void>(shown(PreviewMode::sideBySide));
    auto &suggest = part<QPushButton>("suggestAdjustmentButton");
    ASSERT_TRUE(waitUntil([&] { return suggest.isVisible(); }));
    suggest.click();
    EXPECT_NEAR(form().settings->disparityAdjustment, 1.0, 0.15) << "the wall is 1 % behind the screen";
}

TEST_F(PreviewPaneTest, BothEyesFollowWhereOneWasShownForBoth) {
    pair("a.jpg");
    const auto draw = services.operations.drawPreview;
    for (const bool isFlat : {false, true}) {
        std::vector<PreviewDetail> drawn;
        services.operations.drawPreview = [&, isFlat](const ConversionInput &file, const PreviewRequest &request,
                                                      const media::OutputFile &pixels) {
            PreviewFacts facts = draw(file, request, pixels);
            if (request.maximumWidth > 200) // not the small picture of the list
                drawn.push_back(request.detail);
            facts.isFlat = isFlat && request.detail == PreviewDetail::soon;
            return facts;
        };
        open();
        waitForLooks();
        select(0);
        static_cast<void>(shown(PreviewMode::sideBySide));
        EXPECT_TRUE(waitUntil([this] { return part<QPushButton>("suggestAdjustmentButton").isVisible(); }))
            << "examined";
        drawn.clear();
        QTest::keyClick(&canvas(), Qt::Key_Z);
        EXPECT_TRUE(waitUntil([this] { return canvas().picture().size() == QSize(1280, 360); })) << "every pixel";
        BackgroundThreads::shared().waitForAll(testTimeout);
        const std::vector<PreviewDetail> once{PreviewDetail::soon};
        const std::vector<PreviewDetail> twice{PreviewDetail::soon, PreviewDetail::near};
        EXPECT_EQ(drawn, isFlat ? twice : once);
        controller.reset();
    }
}

TEST_F(PreviewPaneTest, NothingIsDrawnAgainWhileNothingChanges) {
    pair("a.jpg");
    std::atomic<int> drawings{0};
    services.operations.drawPreview =
        [&drawings, draw = services.operations.drawPreview](const ConversionInput &file, const PreviewRequest &request,
                                                            const media::OutputFile &pixels) {
            ++drawings;
            return draw(file, request, pixels);
        };
    open();
    waitForLooks();
    static_cast<void>(shown(PreviewMode::left));
    const int before = drawings;
    files().runBegan();
    files().fileBegan("a.jpg");
    for (const double fraction : {0.2, 0.4, 0.6})
        files().fileProgressed(fraction);
    static_cast<void>(shown(PreviewMode::right));
    EXPECT_EQ(drawings, before) << "the decoded eyes are still there";
    controller->sidePanel()->close();
    form().setSwapped(true);
    BackgroundThreads::shared().waitForAll(testTimeout);
    EXPECT_EQ(drawings, before) << "nobody sees it";
    files().runEnded();
}

} // namespace
} // namespace lumetwin::test
