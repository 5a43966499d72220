// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariantList>

#include <functional>

namespace lumetwin {

/// The address of a D-Bus interface.
struct BusAddress {
    const char *service;
    const char *path;
    const char *interface;
};

/// The session bus, or an unconnected one when there is none. Never starts a bus.
QDBusConnection sessionBus();
/// The system bus, or an unconnected one when there is none.
QDBusConnection systemBus();

/// Calls a method without waiting. The answer, or the error, comes later on the calling thread through the event loop.
/// Without a connection the answer is an error.
void call(const QDBusConnection &bus, const BusAddress &address, const char *method, const QVariantList &arguments,
          const std::function<void(const QDBusMessage &answer)> &answered = {});

} // namespace lumetwin
