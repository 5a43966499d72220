// SPDX-License-Identifier: GPL-3.0-or-later
// Checks that nothing in the panel of files is cut off or overlaps, in each language and at each text size.
#include "support/Looks.h"
#include "support/PanelFixture.h"

namespace lumetwin::test {
namespace {

class PanelLooks : public FilesPanelTest, public testing::WithParamInterface<TextConditions> {
protected:
    /// Opens the panel in a window of this many points.
    void openAt(double width, double height) {
        open();
        const PointScale scale = PointScale::current();
        window().resize(scale.horizontal(width), scale.vertical(height));
        if (!files().isVisible())
            emit form().filesPanelAsked(); // large texts leave no room beside the form
        processPendingEvents();
        waitForLooks();
    }
    void expectGoodLooks() {
        processPendingEvents();
        expectNothingCutOff(window());
        expectNoOverlaps(window());
    }

private:
    const TextsUnder texts_{GetParam()};
};

TEST_P(PanelLooks, NothingOfAPhotoIsCutOffOrOverlaps) {
    pair("a.jpg");
    flat("b.jpg");
    text("c.jpg");
    text("d.txt");
    openAt(1280, 760);
    for (int row = 0; row < 4; ++row) {
        select(row);
        BackgroundThreads::shared().waitForAll(testTimeout);
        expectGoodLooks();
    }
}

TEST_P(PanelLooks, NothingOfResultsIsCutOffOrOverlaps) {
    pair("a.jpg");
    pair("b.jpg", 2);
    openAt(1280, 760);
    files().runBegan();
    files().fileEnded(result(input.path / "a.jpg", FileState::failed));
    files().runEnded();
    select(0);
    expectGoodLooks();
}

TEST_P(PanelLooks, NothingIsCutOffInTheSmallestWindow) {
    pair("a.jpg");
    flat("b.jpg");
    openAt(680, 600);
    select(0);
    expectGoodLooks();
}

INSTANTIATE_TEST_SUITE_P(Everywhere, PanelLooks, testing::ValuesIn(allTextConditions), conditionsName);

} // namespace
} // namespace lumetwin::test
