// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Appearance.h"

#include "ui/desktop/Bus.h"
#include "ui/widgets/Palettes.h"
#include "ui/widgets/ScaledStyle.h"

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
constexpr char contrastKey[] = "contrast";
constexpr uint preferDark = 1; // org.freedesktop.appearance: 0 no preference, 1 dark, 2 light
constexpr uint preferMore = 1; // 0 no preference, 1 higher contrast

/// Removes the variants around a value. The portal's method Read adds one.
uint unwrappedNumber(QVariant value) {
    while (value.canConvert<QDBusVariant>())
        value = qvariant_cast<QDBusVariant>(value).variant();
    return value.toUInt();
}

/// Applies the user's preferences for dark colours and for contrast. The portal reports them one by one.
class PreferenceFollower : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    void applyPreference(const QString &key, uint value) {
        if (key == QLatin1String(colourScheme))
            dark_ = value == preferDark;
        else if (key == QLatin1String(contrastKey))
            moreContrast_ = value == preferMore;
        else
            return;
        const QPalette now = QApplication::palette();
        if (dark_ != isDark(now) || moreContrast_ != isHighContrast(now))
            QApplication::setPalette(moreContrast_ ? highContrastPalette(dark_)
                                     : dark_       ? darkPalette()
                                                   : QApplication::style()->standardPalette());
    }

public slots:
    void settingChanged(const QString &group, const QString &key, const QDBusVariant &value) {
        if (group == QLatin1String(appearance))
            applyPreference(key, unwrappedNumber(value.variant()));
    }

private:
    bool dark_ = false;
    bool moreContrast_ = false;
};

} // namespace

QPalette darkPalette() {
    const QColor background(43, 45, 48), field(30, 31, 34), text(223, 225, 229), faded(150, 152, 156),
        accent(53, 132, 228);
    QPalette palette(text, background, background.lighter(150), background.darker(180), background.lighter(120), text,
                     Qt::white, field, background);
    palette.setColor(QPalette::Button, QColor(60, 63, 67));
    palette.setColor(QPalette::AlternateBase, background);
    palette.setColor(QPalette::ToolTipBase, field);
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::PlaceholderText, faded);
    palette.setColor(QPalette::Highlight, accent);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, accent.lighter(130));
    for (const QPalette::ColorRole role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, faded);
    return palette;
}

QPalette highContrastPalette(bool dark) {
    const QColor background = dark ? Qt::black : Qt::white, foreground = dark ? Qt::white : Qt::black;
    const QColor selection = dark ? QColor(255, 255, 0) : QColor(0, 0, 128);
    QPalette palette(foreground, background, foreground, foreground, foreground, foreground, foreground, background,
                     background);
    palette.setColor(QPalette::Button, background);
    for (const QPalette::ColorRole role : {QPalette::AlternateBase, QPalette::ToolTipBase})
        palette.setColor(role, background);
    for (const QPalette::ColorRole role : {QPalette::ToolTipText, QPalette::PlaceholderText})
        palette.setColor(role, foreground);
    palette.setColor(QPalette::Highlight, selection);
    palette.setColor(QPalette::HighlightedText, background);
    palette.setColor(QPalette::Link, selection);
    const QColor faded = dark ? QColor(170, 170, 170) : QColor(90, 90, 90);
    for (const QPalette::ColorRole role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, faded);
    return palette;
}

void followUserAppearance() {
    // Qt uses Fusion when the desktop has no theme of its own for Qt. Leave any other theme alone.
    if (QApplication::style()->name() != QLatin1String("fusion"))
        return;
    QApplication::setStyle(new ScaledStyle);
    if (isDark(QApplication::palette()) || isHighContrast(QApplication::palette()))
        return;
    auto *follower = new PreferenceFollower(qApp);
    QDBusConnection bus = sessionBus();
    if (!bus.isConnected())
        return;
    bus.connect(QLatin1String(portal), QLatin1String(portalPath), QLatin1String(settingsInterface),
                QStringLiteral("SettingChanged"), follower, SLOT(settingChanged(QString, QString, QDBusVariant)));
    for (const char *key : {colourScheme, contrastKey})
        call(bus, {portal, portalPath, settingsInterface}, "Read", {QLatin1String(appearance), QLatin1String(key)},
             [follower, key](const QDBusMessage &answer) {
                 if (answer.type() == QDBusMessage::ReplyMessage)
                     follower->applyPreference(QLatin1String(key), unwrappedNumber(answer.arguments().value(0)));
             });
}

} // namespace lumetwin

#include "Appearance.moc"
