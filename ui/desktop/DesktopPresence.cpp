// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/desktop/DesktopPresence.h"

#include "ui/desktop/Bus.h"
#include "ui/desktop/PortalFiles.h"
#include "ui/widgets/Localized.h"

#include <QApplication>
#include <QDBusMessage>
#include <QVariantMap>
#include <QWidget>

namespace lumetwin {

namespace {

/// org.freedesktop.Notifications.Notify (Desktop Notifications Specification 1.2).
void notify(const QString &desktopId, const QString &title, const QString &message) {
    const QVariantMap hints{{QStringLiteral("desktop-entry"), desktopId},
                            {QStringLiteral("category"), QStringLiteral("transfer.complete")}};
    call(sessionBus(),
         {"org.freedesktop.Notifications", "/org/freedesktop/Notifications", "org.freedesktop.Notifications"}, "Notify",
         {QStringLiteral("Lumetwin"), 0U, desktopId, title, message.toHtmlEscaped(), QStringList(), hints, -1});
}

/// org.freedesktop.portal.Notification.AddNotification, for sandboxed programs.
void notifyThroughPortal(const QString &title, const QString &message) {
    const QVariantMap notification{{QStringLiteral("title"), title}, {QStringLiteral("body"), message}};
    call(sessionBus(),
         {"org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop", "org.freedesktop.portal.Notification"},
         "AddNotification", {QStringLiteral("batch"), notification});
}

} // namespace

DesktopPresence::DesktopPresence(QWidget *window, const QString &desktopId) : window_(window), desktopId_(desktopId) {}

DesktopPresence::~DesktopPresence() {
    batchEnded();
}

bool DesktopPresence::isInFront() const {
    return window_ && QApplication::activeWindow() && !window_->isMinimized();
}

void DesktopPresence::batchStarted() {
    inhibitor_.inhibit();
    updateLauncher(true, 0);
}

void DesktopPresence::batchProgressed(double fraction) {
    // Send only changes that can be seen.
    if (const int percent = static_cast<int>(fraction * 100); percent != shownPercent_)
        updateLauncher(true, fraction);
}

void DesktopPresence::batchFinished(bool success, const QString &message) {
    if (isInFront())
        return;
    const QString title = toQString(text(success ? "alert.conversion.success" : "alert.conversion.error"));
    if (window_)
        QApplication::alert(window_);
    if (isConfined())
        notifyThroughPortal(title, message);
    else
        notify(desktopId_, title, message);
}

void DesktopPresence::batchEnded() {
    inhibitor_.release();
    if (shownPercent_ >= 0)
        updateLauncher(false, 0);
    shownPercent_ = -1;
}

/// Sends com.canonical.Unity.LauncherEntry.Update, which most docks understand: a signal with the desktop entry's URI
/// and its properties.
void DesktopPresence::updateLauncher(bool visible, double fraction) {
    shownPercent_ = static_cast<int>(fraction * 100);
    QDBusMessage update =
        QDBusMessage::createSignal(QStringLiteral("/com/canonical/unity/launcherentry/lumetwin"),
                                   QStringLiteral("com.canonical.Unity.LauncherEntry"), QStringLiteral("Update"));
    const QVariantMap properties{{QStringLiteral("progress"), fraction}, {QStringLiteral("progress-visible"), visible}};
    update << QStringLiteral("application://%1.desktop").arg(desktopId_) << properties;
    if (QDBusConnection bus = sessionBus(); bus.isConnected())
        bus.send(update);
}

} // namespace lumetwin
