// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariantList>

#include <functional>

namespace lumetwin {

/// Where a service's methods are.
struct BusAddress {
    const char *service;
    const char *path;
    const char *interface;
};

/// The session bus where there is one. An unconnected one otherwise; no bus is ever started.
QDBusConnection sessionBus();
/// The system bus where there is one.
QDBusConnection systemBus();

/// Calls a method and never waits. The answer, an error included, comes on the calling thread through the event loop;
/// without a connection it is an error as well.
void call(const QDBusConnection &bus, const BusAddress &address, const char *method, const QVariantList &arguments,
          const std::function<void(const QDBusMessage &answer)> &answered = {});

} // namespace lumetwin
