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
    // The desktop of whoever runs the tests is none of their business.
    qputenv("DBUS_SESSION_BUS_ADDRESS", qEnvironmentVariable("LUMETWIN_TEST_BUS").toUtf8());
    testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    lumetwin::setTextLocale("en");
    lumetwin::installAccessibility();
    lumetwin::MainThreadQueue::shared(); // made here, where the thread sanitizer sees who made it
    const int status = RUN_ALL_TESTS();
    lumetwin::BackgroundThreads::shared().waitForAll(lumetwin::test::patience);
    return status;
}
