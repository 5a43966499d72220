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

/// A window that asks whether it may close.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    std::function<bool()> shouldClose;

protected:
    void closeEvent(QCloseEvent *event) override;
};

/// The program's one window; its content is the main form.
class MainWindowController : public QObject {
    Q_OBJECT

public:
    explicit MainWindowController(FormServices services = standardServices());
    ~MainWindowController() override;

    static FormServices standardServices();

    QMainWindow *window() const { return window_.get(); }
    MainViewController *form() const { return form_; }

    void showWindow();
    /// Closes the window and the alerts on it; asks first while a batch runs.
    void closeWindow();
    /// Shows an alert that asks nothing.
    void tell(const Alert &alert);
    /// Files, folders or file URLs, taken as if they had been dropped on the input.
    void openInput(const QStringList &arguments);

private:
    bool windowShouldClose();
    void showProgress(double fraction);

    FormServices services_;
    std::unique_ptr<MainWindow> window_;
    MainViewController *form_;
    std::unique_ptr<DesktopPresence> presence_;
    QPointer<QWidget> question_; ///< stands for the question about closing while that is open
};

} // namespace lumetwin
