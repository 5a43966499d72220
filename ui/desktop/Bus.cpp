// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/desktop/Bus.h"

#include <QCoreApplication>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QFile>
#include <QTimer>

namespace lumetwin {

namespace {

const char missingBusName[] = "missing";

bool hasSessionBus() {
    // Without these libdbus would start a new bus with dbus-launch.
    return qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS") ||
           QFile::exists(qEnvironmentVariable("XDG_RUNTIME_DIR") + QStringLiteral("/bus"));
}

} // namespace

QDBusConnection sessionBus() {
    return hasSessionBus() ? QDBusConnection::sessionBus() : QDBusConnection(QLatin1String(missingBusName));
}

QDBusConnection systemBus() {
    const bool exists = qEnvironmentVariableIsSet("DBUS_SYSTEM_BUS_ADDRESS") ||
                        QFile::exists(QStringLiteral("/run/dbus/system_bus_socket"));
    return exists ? QDBusConnection::systemBus() : QDBusConnection(QLatin1String(missingBusName));
}

void call(const QDBusConnection &bus, const BusAddress &address, const char *method, const QVariantList &arguments,
          const std::function<void(const QDBusMessage &answer)> &answered) {
    QDBusMessage message = QDBusMessage::createMethodCall(QLatin1String(address.service), QLatin1String(address.path),
                                                          QLatin1String(address.interface), QLatin1String(method));
    message.setArguments(arguments);
    if (!bus.isConnected()) {
        if (answered)
            QTimer::singleShot(0, qApp, [message, answered] {
                answered(message.createErrorReply(QDBusError::Disconnected, QStringLiteral("no bus")));
            });
        return;
    }
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(message), qApp);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, qApp, [watcher, answered] {
        watcher->deleteLater();
        if (answered)
            answered(watcher->reply());
    });
}

} // namespace lumetwin
