// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/form/FormServices.h"

#include <QMainWindow>
#include <QObject>
#include <QPointer>
#include <QStringList>

#include <functional>
#include <memory>

namespace lumetwin {

class DesktopPresence;
class MainViewController;

/// A window that calls shouldClose before it closes.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    std::function<bool()> shouldClose;

protected:
    void closeEvent(QCloseEvent *event) override;
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

    void showWindow();
    /// Closes the window and the alerts on it. While a batch runs, asks the user first.
    void closeWindow();
    /// Shows an alert whose answer does not matter.
    void showMessage(const Alert &alert);
    /// Uses files, folders or file URLs as if they had been dropped on the input.
    void openInput(const QStringList &arguments);

private:
    bool windowShouldClose();
    void showProgress(double fraction);

    FormServices services_;
    std::unique_ptr<MainWindow> window_;
    MainViewController *form_;
    std::unique_ptr<DesktopPresence> presence_;
    QPointer<QWidget> stopQuestionParent_; ///< parent of the question about closing while it is open
};

} // namespace lumetwin
