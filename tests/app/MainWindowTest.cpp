// SPDX-License-Identifier: GPL-3.0-or-later
// The window and its menu: closing, quitting, the keys of the menu, small sizes.
#include "app/AppDelegate.h"
#include "app/LaunchOptions.h"
#include "app/MainMenu.h"
#include "app/MainWindowController.h"
#include "app/WindowSizes.h"
#include "engine/texts/Texts.h"
#include "support/Scripted.h"
#include "tests/support/Paths.h"
#include "ui/alerts/CheckingDialog.h"
#include "ui/form/MainViewController.h"
#include "ui/widgets/BackgroundThreads.h"
#include "ui/widgets/Points.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace lumetwin::test {
namespace {

class MainWindowTest : public testing::Test {
protected:
    MainWindowTest() : services(fakes.services()) {}
    ~MainWindowTest() override {
        hold = false;
        controller.reset();
        BackgroundThreads::shared().waitForAll(testTimeout);
        processPendingEvents();
    }
    void open() {
        controller = std::make_unique<MainWindowController>(services);
        installMainMenu(window(), delegate);
        controller->showWindow();
        processPendingEvents();
    }
    QMainWindow &window() { return *controller->window(); }
    MainViewController &form() { return *controller->form(); }

    FakeServices fakes;
    FormServices services;
    std::atomic<bool> hold{true};
    AppDelegate delegate;
    std::unique_ptr<MainWindowController> controller;
};

TEST_F(MainWindowTest, AnIdleWindowClosesWithoutAQuestion) {
    open();
    EXPECT_TRUE(window().close());
    EXPECT_FALSE(window().isVisible());
    EXPECT_TRUE(fakes.alerts->shown.empty());
}

TEST_F(MainWindowTest, TheFirstFocusIsNotOnTheStart) {
    open();
    window().activateWindow();
    processPendingEvents();
    EXPECT_NE(form().focusWidget(), &control<QPushButton>(form(), "startButton"));
}

TEST_F(MainWindowTest, QuittingClosesTheAlertThatIsOpen) {
    services.alerts = std::make_shared<MessageBoxPresenter>();
    open();
    control<QPushButton>(form(), "startButton").click();
    ASSERT_TRUE(waitUntil([this] { return window().findChild<QDialog *>() != nullptr; }));
    controller->closeWindow();
    processPendingEvents();
    EXPECT_FALSE(window().isVisible());
    EXPECT_FALSE(window().findChild<QDialog *>());
}

TEST_F(MainWindowTest, QuittingWhileTheInputIsCheckedUsesNoFreedMemory) {
    const ScratchFolder scratch;
    scratch.file("a.mov");
    services.isSpatialVideo = [this](const VideoProcessor &, const std::filesystem::path &) {
        while (hold)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        return true;
    };
    open();
    form().settings->inputFolderURL = form().settings->outputFolderURL = scratch.path;
    control<QPushButton>(form(), "startButton").click();
    ASSERT_TRUE(waitUntil([this] { return window().findChild<CheckingDialog *>() != nullptr; }));
    controller->closeWindow();
    EXPECT_FALSE(window().isVisible());
    hold = false;
    processPendingEvents();
    EXPECT_FALSE(window().findChild<CheckingDialog *>());
    EXPECT_FALSE(form().progressSheet()) << "no batch begins in a window that is gone";
}

TEST_F(MainWindowTest, F10OpensTheMenu) {
    open();
    window().activateWindow();
    QTest::keyClick(&window(), Qt::Key_F10);
    QMenu *menu = window().menuBar()->actions().constFirst()->menu();
    EXPECT_TRUE(waitUntil([menu] { return menu->isVisible(); }));
    menu->close();
}

TEST_F(MainWindowTest, TheHelpKeyOpensThePageInTheUsersLanguage) {
    for (const auto &[language, own, other] : {std::tuple{"en", "menu.help.english", "menu.help.japanese"},
                                               {"ja", "menu.help.japanese", "menu.help.english"}}) {
        setTextLocale(language);
        open();
        EXPECT_EQ(control<QAction>(window(), own).shortcut(), QKeySequence(Qt::Key_F1));
        EXPECT_TRUE(control<QAction>(window(), other).shortcut().isEmpty());
    }
    setTextLocale("en");
}

TEST_F(MainWindowTest, ShowsEverythingAtItsMinimumSize) {
    open();
    const QSize smallest = window().minimumSize();
    const WindowSizes wanted =
        windowSizes(PointScale::current(), window().screen()->availableSize(), window().menuBar()->sizeHint().height());
    EXPECT_EQ(smallest, wanted.minimum);
    window().resize(smallest);
    processPendingEvents();
    auto &scroll = control<QScrollArea>(form(), "scrollView");
    EXPECT_EQ(scroll.horizontalScrollBar()->maximum(), 0);
    const QWidget &document = *scroll.widget();
    for (const QWidget *section : document.findChildren<QWidget *>(Qt::FindDirectChildrenOnly))
        if (section->isVisible() && section->objectName() != QStringLiteral("headerView")) {
            EXPECT_GE(section->x(), 0) << section->objectName().toStdString();
            EXPECT_LE(section->geometry().right(), document.width()) << section->objectName().toStdString();
        }
}

TEST(LaunchOptions, TakeADirectionAndInputs) {
    const auto parsed = [](const QStringList &arguments) {
        return launchOptions(QStringList{QStringLiteral("lumetwin")} + arguments);
    };
    const LaunchOptions plain = parsed({QStringLiteral("a.mov"), QStringLiteral("file:///b.heic")});
    EXPECT_FALSE(plain.direction);
    EXPECT_EQ(plain.inputs, (QStringList{QStringLiteral("a.mov"), QStringLiteral("file:///b.heic")}));
    EXPECT_EQ(plain.error + plain.output, QString());
    const LaunchOptions spatial = parsed({QStringLiteral("--direction"), QStringLiteral("sbsToSpatial"),
                                          QStringLiteral("--"), QStringLiteral("-odd name.jpg")});
    EXPECT_EQ(spatial.direction, ConversionDirection::sbsToSpatial);
    EXPECT_EQ(spatial.inputs, QStringList{QStringLiteral("-odd name.jpg")});
    EXPECT_EQ(parsed({QStringLiteral("--direction=spatialToSBS")}).direction, ConversionDirection::spatialToSBS);
    EXPECT_TRUE(parsed({QStringLiteral("--direction=up")}).error.contains(QStringLiteral("\"up\"")));
    EXPECT_FALSE(parsed({QStringLiteral("--direction")}).error.isEmpty()) << "without a value";
    EXPECT_FALSE(parsed({QStringLiteral("--unknown")}).error.isEmpty());
    EXPECT_TRUE(parsed({QStringLiteral("--help")}).output.contains(QStringLiteral("--direction")));
    EXPECT_EQ(parsed({QStringLiteral("--version")}).output, QStringLiteral("lumetwin " LUMETWIN_VERSION "\n"));
}

TEST(LaunchOptions, TheDirectionIsChosenInTheForm) {
    for (const auto direction : {ConversionDirection::sbsToSpatial, ConversionDirection::spatialToSBS}) {
        AppDelegate delegate;
        delegate.applicationDidFinishLaunching({.direction = direction});
        EXPECT_EQ(delegate.windowController()->form()->settings->direction, direction);
        delegate.applicationWillTerminate();
    }
}

} // namespace
} // namespace lumetwin::test
