// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/alerts/Alert.h"

#include <QElapsedTimer>

#include <functional>
#include <memory>

class QWidget;

namespace lumetwin {

/// Shows alerts. Replaced in tests by one that answers.
class AlertPresenter {
public:
    /// The answer of an alert that was put away without pressing a button: with Escape, or because the program quits.
    static constexpr int dismissed = -1;

    /// The answer of an alert's side button.
    static constexpr int sideButton = -2;

    virtual ~AlertPresenter() = default;

    /// Shows the alert as a sheet on the parent's window and returns at once. The pressed button's position comes
    /// later; it never comes when the parent is destroyed first.
    virtual void present(const Alert &alert, QWidget *parent, std::function<void(int button)> answered) = 0;
};

/// Alerts as message boxes of the desktop.
class MessageBoxPresenter : public AlertPresenter {
public:
    void present(const Alert &alert, QWidget *parent, std::function<void(int button)> answered) override;

private:
    /// Since an alert went unanswered with its parent. Shared with the alerts, which may outlive this.
    std::shared_ptr<QElapsedTimer> sinceWithdrawal_ = std::make_shared<QElapsedTimer>();
};

} // namespace lumetwin
