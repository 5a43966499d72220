// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/texts/Texts.h"
#include "tests/ui/support/Scripted.h"
#include "ui/widgets/Accessibility.h"
#include "ui/widgets/BackgroundThreads.h"
#include "ui/widgets/MainThreadQueue.h"

#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char **argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" LUMETWIN_SOURCE_DIR "/tests/ui/support/laptop.json");
    // The tests must not use the session bus of the person who runs them.
    qputenv("DBUS_SESSION_BUS_ADDRESS", qEnvironmentVariable("LUMETWIN_TEST_BUS").toUtf8());
    testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    lumetwin::setTextLocale("en");
    lumetwin::installAccessibility();
    lumetwin::MainThreadQueue::shared(); // created on the main thread, for the thread sanitizer
    const int status = RUN_ALL_TESTS();
    lumetwin::BackgroundThreads::shared().waitForAll(lumetwin::test::testTimeout);
    return status;
}
