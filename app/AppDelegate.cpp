// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/AppDelegate.h"

#include "app/AboutPanel.h"
#include "app/HelpPages.h"
#include "app/LaunchOptions.h"
#include "app/MainMenu.h"
#include "app/MainWindowController.h"
#include "engine/texts/Texts.h"
#include "ui/form/MainViewController.h"
#include "ui/widgets/BackgroundThreads.h"
#include "ui/widgets/MainThreadQueue.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMainWindow>

namespace lumetwin {

AppDelegate::AppDelegate() {
    QApplication::setQuitOnLastWindowClosed(applicationShouldTerminateAfterLastWindowClosed());
    qApp->installEventFilter(this);
}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching(const LaunchOptions &options) {
    mainWindowController = std::make_unique<MainWindowController>();
    QMainWindow *window = mainWindowController->window();
    installMainMenu(*window, *this);
    mainWindowController->showWindow();
    window->raise();
    window->activateWindow();
    if (options.direction)
        mainWindowController->form()->setDirection(*options.direction);
    mainWindowController->openInput(options.inputs);
}

void AppDelegate::applicationWillTerminate() {
    using namespace std::chrono_literals;
    mainWindowController.reset();
    BackgroundThreads::shared().waitForAll(10s);
    MainThreadQueue::shared().drain();
}

void AppDelegate::showAbout() {
    AboutPanel::orderFront(mainWindowController->window());
}

void AppDelegate::openHelpJA() {
    openHelp(helpPathJA);
}

void AppDelegate::openHelpEN() {
    openHelp(helpPathEN);
}

void AppDelegate::openHelp(const char *path) {
    if (!openHelpPage(path))
        mainWindowController->showMessage({text("alert.help.title"), text("alert.help.message")});
}

void AppDelegate::terminate() {
    mainWindowController->closeWindow();
}

/// Makes Ctrl+Q quit everywhere, even when a modal dialog blocks the menu.
bool AppDelegate::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() == QEvent::KeyPress && mainWindowController) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->key() == Qt::Key_Q && key->modifiers() == Qt::ControlModifier) {
            terminate();
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

} // namespace lumetwin
