// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/alerts/Alert.h"

#include <QElapsedTimer>

#include <functional>
#include <memory>

class QWidget;

namespace lumetwin {

/// Shows alerts. Tests replace it by one that answers at once.
class AlertPresenter {
public:
    /// The answer when an alert was closed without pressing a button: with Escape, or because the program quits.
    static constexpr int dismissed = -1;

    /// The answer when the alert's side button was pressed.
    static constexpr int sideButton = -2;

    virtual ~AlertPresenter() = default;

    /// Shows the alert as a sheet on the parent's window and returns at once. The position of the pressed button comes
    /// later. It never comes when the parent is destroyed first.
    virtual void present(const Alert &alert, QWidget *parent, std::function<void(int button)> answered) = 0;
};

/// Shows alerts as message boxes.
class MessageBoxPresenter : public AlertPresenter {
public:
    void present(const Alert &alert, QWidget *parent, std::function<void(int button)> answered) override;

private:
    /// Runs since an alert was closed because its parent was destroyed. Shared with the alerts, which may outlive this
    /// object.
    std::shared_ptr<QElapsedTimer> sinceAutomaticClose_ = std::make_shared<QElapsedTimer>();
};

} // namespace lumetwin
