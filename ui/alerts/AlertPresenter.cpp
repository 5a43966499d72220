// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/alerts/AlertPresenter.h"

#include "ui/alerts/AlertBox.h"

namespace lumetwin {

void MessageBoxPresenter::present(const Alert &alert, QWidget *parent, std::function<void(int button)> answered) {
    auto *box = new AlertBox(alert, parent->window());
    // The answer is delivered once, after the box has closed, because the receiver may show the next alert.
    QObject::connect(box, &AlertBox::answered, parent, answered,
                     static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
    QObject::connect(parent, &QObject::destroyed, box, [box, since = sinceAutomaticClose_] {
        since->start();
        box->close();
    });
    box->open();
    constexpr qint64 recently = 500; // milliseconds
    if (sinceAutomaticClose_->isValid() && !sinceAutomaticClose_->hasExpired(recently))
        box->ignoreInputBriefly();
}

} // namespace lumetwin
