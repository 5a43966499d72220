// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/AppDelegate.h"
#include "app/Appearance.h"
#include "app/ApplicationIcon.h"
#include "app/Language.h"
#include "engine/batch/ProgramEnd.h"
#include "ui/widgets/Accessibility.h"

#include <QApplication>

int main(int argc, char *argv[]) {
    using namespace lumetwin;
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Lumetwin"));
    QApplication::setApplicationVersion(QStringLiteral(LUMETWIN_VERSION));
    QGuiApplication::setDesktopFileName(QLatin1String(applicationId));
    QApplication::setWindowIcon(applicationIcon());
    followUserLanguage();
    followUserAppearance();
    installAccessibility();
    AppDelegate delegate;
    delegate.applicationDidFinishLaunching(QApplication::arguments().mid(1));
    const int status = QApplication::exec();
    delegate.applicationWillTerminate();
    return endProgram(status);
}
