// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

#include <memory>

namespace lumetwin {

class MainWindowController;
struct LaunchOptions;

/// Creates the program's only window and its menu. The program ends when the window closes.
class AppDelegate : public QObject {
    Q_OBJECT

public:
    AppDelegate();
    ~AppDelegate() override;

    /// Opens the window.
    void applicationDidFinishLaunching(const LaunchOptions &options);
    bool applicationShouldTerminateAfterLastWindowClosed() const { return true; }
    /// Waits up to ten seconds until a stopped batch has removed its partial files.
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
