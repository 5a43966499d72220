// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QStringList>

#include <memory>

namespace lumetwin {

class MainWindowController;

/// Starts the program's one window and its menu, and ends the program with it.
class AppDelegate : public QObject {
    Q_OBJECT

public:
    AppDelegate();
    ~AppDelegate() override;

    /// Opens the window. arguments: files, folders or file URLs that become its input.
    void applicationDidFinishLaunching(const QStringList &arguments);
    bool applicationShouldTerminateAfterLastWindowClosed() const { return true; }
    /// Waits for a stopped batch to clean up behind itself.
    void applicationWillTerminate();

    void showAbout();
    void openHelpJA();
    void openHelpEN();
    /// Quits; asks first while a batch runs.
    void terminate();

    MainWindowController *windowController() const { return mainWindowController.get(); }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void openHelp(const char *path);

    std::unique_ptr<MainWindowController> mainWindowController;
};

} // namespace lumetwin
