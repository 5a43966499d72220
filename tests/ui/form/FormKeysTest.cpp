// SPDX-License-Identifier: GPL-3.0-or-later
// Keys, the mouse wheel, and low windows.
#include "engine/texts/Texts.h"
#include "support/FormFixture.h"

#include <QCheckBox>
#include <QComboBox>
#include <QRadioButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>
#include <QtTest/qtestspontaneevent.h>

#include <map>

namespace lumetwin::test {
namespace {

using FormKeys = MainForm;

class Wheel : public MainForm {
protected:
    Wheel() {
        form.resize(720, 500);
        processPendingEvents();
    }
    void turn(QWidget &control) {
        QWheelEvent wheel(QPointF(5, 5), control.mapToGlobal(QPointF(5, 5)), QPoint(), QPoint(0, -120), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QSpontaneKeyEvent::setSpontaneous(&wheel); // only spontaneous wheel events are passed on to the parent
        QApplication::instance()->notify(&control, &wheel);
    }
    int scrollPosition() { return find<QScrollArea>("scrollView").verticalScrollBar()->value(); }
};

TEST_F(Wheel, ScrollsTheFormAndChangesNoControlThatWasNotClicked) {
    auto &popup = find<QComboBox>("formatPopup");
    auto &quality = slider("compressionSlider");
    for (QWidget *control : std::initializer_list<QWidget *>{&popup, &quality}) {
        EXPECT_EQ(control->focusPolicy(), Qt::StrongFocus) << "the wheel itself gives no focus";
        for (const Qt::FocusReason reason : {Qt::TabFocusReason, Qt::ShortcutFocusReason}) {
            control->clearFocus();
            control->setFocus(reason);
            turn(*control);
            EXPECT_EQ(popup.currentIndex(), 0);
            EXPECT_EQ(settings.compressionQuality, 0.75);
        }
    }
    popup.setFocus(Qt::TabFocusReason);
    find<QScrollArea>("scrollView").verticalScrollBar()->setValue(1);
    turn(popup);
    EXPECT_GT(scrollPosition(), 1) << "the form moves instead";
}

TEST_F(Wheel, ChangesTheClickedControlUntilTheFocusMoves) {
    auto &quality = slider("compressionSlider");
    quality.setFocus();
    QTest::mouseClick(&quality, Qt::LeftButton, {}, QPoint(quality.width() / 2, quality.height() / 2));
    const double clicked = settings.compressionQuality;
    turn(quality);
    EXPECT_LT(settings.compressionQuality, clicked);
    const double turned = settings.compressionQuality;
    find<QCheckBox>("halfWidthCheck").setFocus();
    turn(quality);
    EXPECT_EQ(settings.compressionQuality, turned);
}

TEST_F(FormKeys, EnterPressesTheButtonWithTheFocus) {
    for (const auto &[name, key] : {std::pair{"inputSelectBtn", Qt::Key_Return},
                                    {"outputSelectBtn", Qt::Key_Enter},
                                    {"checkSpatialBtn", Qt::Key_Return},
                                    {"startButton", Qt::Key_Return}}) {
        auto &button = find<QPushButton>(name);
        int presses = 0;
        const auto counted = QObject::connect(&button, &QPushButton::clicked, &form, [&presses] { ++presses; });
        button.setFocus();
        QTest::keyClick(&button, key);
        EXPECT_EQ(presses, 1) << name;
        QObject::disconnect(counted);
    }
}

TEST_F(FormKeys, StartButtonIsVisibleInALowWindowWithResizingOn) {
    find<QCheckBox>("enableResizeCheck").click();
    for (const int height : {690, 500, 400}) {
        form.resize(720, height);
        processPendingEvents();
        auto &start = find<QPushButton>("startButton");
        for (const char *direction : {"sbsToSpatialButton", "spatialToSBSButton"}) {
            find<QRadioButton>(direction).click();
            processPendingEvents();
            EXPECT_EQ(start.visibleRegion().boundingRect(), start.rect()) << height;
            EXPECT_FALSE(start.geometry().intersects(find<QScrollArea>("scrollView").geometry())) << height;
        }
        auto &last = find<QWidget>("resizeModePopup");
        last.setFocus();
        processPendingEvents();
        EXPECT_EQ(last.visibleRegion().boundingRect(), last.rect()) << "and nothing hides behind it";
    }
}

TEST_F(FormKeys, KeysPressTheButtonsThatShowThem) {
    for (const auto &[name, keys] : {std::pair{"inputSelectBtn", "Ctrl+O"},
                                     {"outputSelectBtn", "Ctrl+Shift+O"},
                                     {"checkSpatialBtn", "Ctrl+I"},
                                     {"startButton", "Ctrl+Return"}}) {
        auto &button = find<QPushButton>(name);
        EXPECT_EQ(button.shortcut(), QKeySequence(QLatin1String(keys)));
        EXPECT_EQ(button.toolTip(), button.shortcut().toString(QKeySequence::NativeText));
    }
    form.activateWindow();
    find<QCheckBox>("swapLRCheck").setFocus();
    QTest::keyClick(&form, Qt::Key_Return, Qt::ControlModifier);
    EXPECT_TRUE(waitUntil([this] { return !fakes.alerts->shown.empty(); }));
    EXPECT_EQ(fakes.alerts->shown.front().message, text("error.no.input.folder"));
}

TEST_F(FormKeys, EveryLetterForTheAltKeyIsUsedOnce) {
    find<QCheckBox>("enableResizeCheck").click();
    for (const char *direction : {"sbsToSpatialButton", "spatialToSBSButton"}) {
        find<QRadioButton>(direction).click();
        std::map<QString, std::string> seen;
        for (const QWidget *widget : form.findChildren<QWidget *>()) {
            const auto *label = qobject_cast<const QLabel *>(widget);
            const auto *button = qobject_cast<const QAbstractButton *>(widget);
            if (!widget->isVisible() || (!label && !button))
                continue;
            const QString keys = QKeySequence::mnemonic(label ? label->text() : button->text()).toString();
            if (keys.isEmpty())
                continue;
            EXPECT_TRUE(seen.emplace(keys, widget->objectName().toStdString()).second) << keys.toStdString();
        }
        EXPECT_GE(seen.size(), 10U);
        EXPECT_FALSE(seen.count(QStringLiteral("Alt+L"))) << "that is the menu's";
    }
}

} // namespace
} // namespace lumetwin::test
