// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/alerts/AlertPresenter.h"

#include "ui/alerts/AlertBox.h"

namespace lumetwin {

void MessageBoxPresenter::present(const Alert &alert, QWidget *parent, std::function<void(int button)> answered) {
    auto *box = new AlertBox(alert, parent->window());
    // Answered once, after the box has gone: what follows may show the next alert.
    QObject::connect(box, &AlertBox::answered, parent, answered,
                     static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
    QObject::connect(parent, &QObject::destroyed, box, [box, since = sinceWithdrawal_] {
        since->start();
        box->close();
    });
    box->open();
    constexpr qint64 justNow = 500; // milliseconds
    if (sinceWithdrawal_->isValid() && !sinceWithdrawal_->hasExpired(justNow))
        box->holdBack();
}

} // namespace lumetwin
