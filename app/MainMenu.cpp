// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/MainMenu.h"

#include "app/AppDelegate.h"
#include "ui/widgets/Localized.h"

#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QShortcut>

namespace lumetwin {

namespace {

QAction *addItem(QMenu &menu, const char *key, AppDelegate &delegate, void (AppDelegate::*action)()) {
    QAction *item = menu.addAction(toQString(text(key)));
    item->setObjectName(QLatin1String(key));
    QObject::connect(item, &QAction::triggered, &delegate, action);
    return item;
}

} // namespace

void installMainMenu(QMainWindow &window, AppDelegate &delegate) {
    QMenuBar *bar = window.menuBar();
    QMenu &menu = *bar->addMenu(QStringLiteral("&Lumetwin"));
    auto *open = new QShortcut(Qt::Key_F10, &window);
    QObject::connect(open, &QShortcut::activated, bar, [bar, &menu] { bar->setActiveAction(menu.menuAction()); });
    addItem(menu, "menu.about", delegate, &AppDelegate::showAbout)->setMenuRole(QAction::AboutRole);
    menu.addSeparator();
    QMenu &help = *menu.addMenu(toQString(text("menu.help.web")));
    QAction *japanese = addItem(help, "menu.help.japanese", delegate, &AppDelegate::openHelpJA);
    QAction *english = addItem(help, "menu.help.english", delegate, &AppDelegate::openHelpEN);
    (textLanguage() == "ja" ? japanese : english)->setShortcut(QKeySequence::HelpContents);
    menu.addSeparator();
    QAction *quit = addItem(menu, "menu.quit", delegate, &AppDelegate::terminate);
    quit->setShortcut(Qt::CTRL | Qt::Key_Q);
    quit->setMenuRole(QAction::QuitRole);
}

} // namespace lumetwin
