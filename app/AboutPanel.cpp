// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/AboutPanel.h"

#include "app/ApplicationIcon.h"
#include "ui/widgets/Localized.h"
#include "ui/widgets/Points.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace lumetwin {

namespace {

constexpr int iconSize = 96; // points

QLabel *centredLabel(const std::string &content, const QFont &font) {
    auto *label = new QLabel(toQString(content));
    label->setTextFormat(Qt::PlainText);
    label->setFont(font);
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

} // namespace

AboutPanel::AboutPanel(QWidget *window) : QDialog(window) {
    setObjectName(QStringLiteral("about"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(toQString(text("menu.about")));
    const PointScale scale = PointScale::current();
    auto *icon = new QLabel;
    icon->setAlignment(Qt::AlignCenter);
    icon->setPixmap(
        applicationIcon().pixmap(QSize(scale.vertical(iconSize), scale.vertical(iconSize)), devicePixelRatioF()));
    auto *buttons = new QDialogButtonBox;
    buttons->addButton(toQString(text("button.close")), QDialogButtonBox::RejectRole)->setDefault(true);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    const std::string libraries = std::string("Qt ") + qVersion() + ", " LUMETWIN_LIBRARIES;
    auto *layout = new QVBoxLayout(this);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    for (QWidget *part : std::initializer_list<QWidget *>{
             icon, centredLabel("Lumetwin", scale.font(20, QFont::Bold)),
             centredLabel(formatted("about.version.format", std::string(LUMETWIN_VERSION)), scale.font(13)),
             centredLabel(text("about.licence"), scale.font(12)),
             centredLabel(formatted("about.libraries.format", libraries), scale.font(12)), buttons}) {
        if (auto *label = qobject_cast<QLabel *>(part))
            label->setFixedWidth(scale.horizontal(420));
        layout->addWidget(part);
    }
}

void AboutPanel::orderFront(QWidget *window) {
    auto *panel = window->findChild<AboutPanel *>();
    if (!panel)
        panel = new AboutPanel(window);
    panel->show();
    panel->raise();
    panel->activateWindow();
}

} // namespace lumetwin
