// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/form/FormServices.h"

#include <QMainWindow>
#include <QObject>
#include <QPointer>
#include <QStringList>

#include <filesystem>
#include <functional>
#include <memory>
#include <vector>

namespace lumetwin {

class DesktopPresence;
class FilesPanel;
class MainViewController;
class SidePanel;

/// A window that calls shouldClose before it closes, and takes dropped files.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    MainWindow() { setAcceptDrops(true); }

    std::function<bool()> shouldClose;
    /// Returns whether any of the files can be used.
    std::function<bool(const std::vector<std::filesystem::path> &files)> filesDropped;

protected:
    void closeEvent(QCloseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;
};

/// Owns the program's only window, which contains the main form.
class MainWindowController : public QObject {
    Q_OBJECT

public:
    explicit MainWindowController(FormServices services = standardServices());
    ~MainWindowController() override;

    static FormServices standardServices();

    QMainWindow *window() const { return window_.get(); }
    MainViewController *form() const { return form_; }
    FilesPanel *filesPanel() const { return files_; }
    SidePanel *sidePanel() const { return side_; }

    void showWindow();
    /// Closes the window and the alerts on it. While a batch runs, asks the user first.
    void closeWindow();
    /// Shows an alert whose answer does not matter.
    void showMessage(const Alert &alert);
    /// Uses files, folders or file URLs as if they had been dropped on the input.
    void openInput(const QStringList &arguments);

private:
    void connectBatch();
    void connectFiles();
    void toggleFiles();
    bool windowShouldClose();
    void showProgress(double fraction);

    FormServices services_;
    std::unique_ptr<MainWindow> window_;
    MainViewController *form_;
    FilesPanel *files_;
    SidePanel *side_;
    std::unique_ptr<DesktopPresence> presence_;
    QPointer<QWidget> stopQuestionParent_; ///< parent of the question about closing while it is open
};

} // namespace lumetwin
