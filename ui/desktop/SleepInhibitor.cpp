// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/desktop/SleepInhibitor.h"

#include "ui/desktop/Bus.h"
#include "ui/widgets/Localized.h"

#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QVariantMap>

namespace lumetwin {

/// The logind lock lasts as long as its file descriptor is open. The portal's lock lasts until its request is closed.
struct SleepInhibitor::Locks {
    QDBusUnixFileDescriptor logind;
    QString portalRequest;

    Locks() = default;
    Locks(const Locks &) = delete;
    Locks &operator=(const Locks &) = delete;

    ~Locks() { close(portalRequest); }

    static void close(const QString &request) {
        if (const QByteArray path = request.toUtf8(); !path.isEmpty())
            call(sessionBus(), {"org.freedesktop.portal.Desktop", path.constData(), "org.freedesktop.portal.Request"},
                 "Close", {});
    }
};

namespace {

constexpr unsigned portalSuspend = 4; // org.freedesktop.portal.Inhibit, flags

} // namespace

SleepInhibitor::SleepInhibitor() = default;
SleepInhibitor::~SleepInhibitor() = default;

void SleepInhibitor::inhibit() {
    locks_ = std::make_shared<Locks>();
    const QString reason = toQString(text("reason.converting"));
    const std::weak_ptr<Locks> weak = locks_;
    call(systemBus(), {"org.freedesktop.login1", "/org/freedesktop/login1", "org.freedesktop.login1.Manager"},
         "Inhibit", {QStringLiteral("sleep:idle"), QStringLiteral("Lumetwin"), reason, QStringLiteral("block")},
         [weak](const QDBusMessage &answer) {
             if (const auto locks = weak.lock(); locks && answer.type() == QDBusMessage::ReplyMessage)
                 locks->logind = qvariant_cast<QDBusUnixFileDescriptor>(answer.arguments().value(0));
         });
    call(sessionBus(),
         {"org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop", "org.freedesktop.portal.Inhibit"},
         "Inhibit", {QString(), portalSuspend, QVariantMap{{QStringLiteral("reason"), reason}}},
         [weak](const QDBusMessage &answer) {
             if (answer.type() != QDBusMessage::ReplyMessage)
                 return;
             const QString request = qvariant_cast<QDBusObjectPath>(answer.arguments().value(0)).path();
             if (const auto locks = weak.lock())
                 locks->portalRequest = request;
             else
                 Locks::close(request);
         });
}

void SleepInhibitor::release() {
    locks_.reset();
}

} // namespace lumetwin
