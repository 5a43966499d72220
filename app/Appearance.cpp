// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Appearance.h"

#include "ui/Palettes.h"
#include "ui/ScaledStyle.h"
#include "ui/desktop/Bus.h"

#include <QApplication>
#include <QDBusVariant>
#include <QObject>
#include <QStyle>

namespace lumetwin {

namespace {

constexpr char portal[] = "org.freedesktop.portal.Desktop";
constexpr char portalPath[] = "/org/freedesktop/portal/desktop";
constexpr char settingsInterface[] = "org.freedesktop.portal.Settings";
constexpr char appearance[] = "org.freedesktop.appearance";
constexpr char colourScheme[] = "color-scheme";
constexpr uint preferDark = 1; // org.freedesktop.appearance: 0 no preference, 1 dark, 2 light

/// Read wraps the value in a variant of its own.
uint schemeOf(QVariant value) {
    while (value.canConvert<QDBusVariant>())
        value = qvariant_cast<QDBusVariant>(value).variant();
    return value.toUInt();
}

void apply(uint scheme) {
    const bool wantsDark = scheme == preferDark;
    if (wantsDark != isDark(QApplication::palette()))
        QApplication::setPalette(wantsDark ? darkPalette() : QApplication::style()->standardPalette());
}

class SchemeFollower : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

public slots:
    void settingChanged(const QString &group, const QString &key, const QDBusVariant &value) {
        if (group == QLatin1String(appearance) && key == QLatin1String(colourScheme))
            apply(schemeOf(value.variant()));
    }
};

} // namespace

QPalette darkPalette() {
    const QColor ground(43, 45, 48), field(30, 31, 34), text(223, 225, 229), faint(128, 130, 134), accent(53, 132, 228);
    QPalette palette(text, ground, ground.lighter(150), ground.darker(180), ground.lighter(120), text, Qt::white, field,
                     ground);
    palette.setColor(QPalette::Button, QColor(60, 63, 67));
    palette.setColor(QPalette::AlternateBase, ground);
    palette.setColor(QPalette::ToolTipBase, field);
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::PlaceholderText, faint);
    palette.setColor(QPalette::Highlight, accent);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, accent.lighter(130));
    for (const QPalette::ColorRole role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, faint);
    return palette;
}

void followUserAppearance() {
    // The desktop's own theme is left alone; Fusion is what there is without one.
    if (QApplication::style()->name() != QLatin1String("fusion"))
        return;
    QApplication::setStyle(new ScaledStyle);
    if (isDark(QApplication::palette()))
        return;
    auto *follower = new SchemeFollower(qApp);
    QDBusConnection bus = sessionBus();
    if (!bus.isConnected())
        return;
    bus.connect(QLatin1String(portal), QLatin1String(portalPath), QLatin1String(settingsInterface),
                QStringLiteral("SettingChanged"), follower, SLOT(settingChanged(QString, QString, QDBusVariant)));
    call(bus, {portal, portalPath, settingsInterface}, "Read", {QLatin1String(appearance), QLatin1String(colourScheme)},
         [](const QDBusMessage &answer) {
             if (answer.type() == QDBusMessage::ReplyMessage)
                 apply(schemeOf(answer.arguments().value(0)));
         });
}

} // namespace lumetwin

#include "Appearance.moc"
