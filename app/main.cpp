// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/AppDelegate.h"
#include "app/Appearance.h"
#include "app/ApplicationIcon.h"
#include "app/Language.h"
#include "app/LaunchOptions.h"
#include "engine/batch/ProgramEnd.h"
#include "ui/widgets/Accessibility.h"

#include <QApplication>

#include <cstdio>

namespace {

/// Prints the help, the version or an error. Returns the exit status: 1 if the output cannot be written.
int printInstead(const lumetwin::LaunchOptions &options) {
    if (options.error.isEmpty())
        return std::fputs(options.output.toLocal8Bit().constData(), stdout) < 0 || std::fflush(stdout) != 0 ? 1 : 0;
    std::fprintf(stderr, "lumetwin: %s\nTry 'lumetwin --help'.\n", options.error.toLocal8Bit().constData());
    return 2;
}

} // namespace

int main(int argc, char *argv[]) {
    using namespace lumetwin;
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Lumetwin"));
    QApplication::setApplicationVersion(QStringLiteral(LUMETWIN_VERSION));
    QGuiApplication::setDesktopFileName(QLatin1String(applicationId));
    const LaunchOptions options = launchOptions(QApplication::arguments());
    if (!options.error.isEmpty() || !options.output.isEmpty())
        return printInstead(options);
    QApplication::setWindowIcon(applicationIcon());
    followUserLanguage();
    followUserAppearance();
    installAccessibility();
    AppDelegate delegate;
    delegate.applicationDidFinishLaunching(options);
    const int status = QApplication::exec();
    delegate.applicationWillTerminate();
    return endProgram(status);
}
