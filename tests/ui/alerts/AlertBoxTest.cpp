// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/alerts/AlertBox.h"
#include "engine/texts/Texts.h"
#include "support/Accessible.h"
#include "support/Scripted.h"

#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTextEdit>

#include <gtest/gtest.h>

#include <set>

namespace lumetwin::test {
namespace {

class AlertBoxes : public testing::Test {
protected:
    AlertBoxes() { window.show(); }

    AlertBox &present(const Alert &alert) {
        MessageBoxPresenter().present(alert, &window, [this](int button) { answers.push_back(button); });
        processPendingEvents();
        return *window.findChild<AlertBox *>();
    }
    static void press(AlertBox &box, const char *title) {
        for (QAbstractButton *button : box.buttons())
            if (button->text() == QLatin1String(title))
                return button->click();
        ADD_FAILURE() << "no button " << title;
    }

    QWidget window;
    std::vector<int> answers;
    const Alert question{"Message", "More", {"First", "Second"}};
};

TEST_F(AlertBoxes, ReportThePressedButton) {
    press(present(question), "Second");
    processPendingEvents();
    press(present(question), "First");
    processPendingEvents();
    EXPECT_EQ(answers, (std::vector{1, 0}));
    EXPECT_FALSE(window.findChild<AlertBox *>()) << "and go away";
}

TEST_F(AlertBoxes, TheFirstButtonIsTheDefaultOne) {
    AlertBox &box = present(question);
    EXPECT_EQ(box.defaultButton()->text(), QStringLiteral("First"));
    QTest::keyClick(&box, Qt::Key_Return);
    processPendingEvents();
    EXPECT_EQ(answers, std::vector{0});
}

TEST_F(AlertBoxes, EnterPressesTheSafeButtonWhereTheFirstOneIsNot) {
    Alert dangerous = question;
    dangerous.defaultButton = 1;
    AlertBox &box = present(dangerous);
    EXPECT_EQ(box.defaultButton()->text(), QStringLiteral("Second"));
    QTest::keyClick(&box, Qt::Key_Return);
    processPendingEvents();
    EXPECT_EQ(answers, std::vector{1});
}

TEST_F(AlertBoxes, EnterPressesTheButtonThatHasTheFocus) {
    AlertBox &box = present({.message = "Message", .buttons = {"First", "Second"}, .sideButton = "Show"});
    for (QAbstractButton *button : box.buttons())
        if (button->text() == QLatin1String("Show")) {
            button->setFocus();
            QTest::keyClick(button, Qt::Key_Return);
            break;
        }
    processPendingEvents();
    EXPECT_EQ(answers, std::vector{AlertPresenter::sideButton});
}

TEST_F(AlertBoxes, IgnoreAClickMeantForAClosedQuestion) {
    auto *asking = new QWidget(&window);
    MessageBoxPresenter presenter;
    presenter.present(question, asking, [](int) { FAIL() << "nobody answered"; });
    processPendingEvents();
    delete asking; // the run has ended
    presenter.present({.message = "Done", .buttons = {"Close"}}, &window,
                      [this](int button) { answers.push_back(button); });
    processPendingEvents();
    auto *box = window.findChild<AlertBox *>();
    ASSERT_TRUE(box);
    QAbstractButton *button = box->buttons().constFirst();
    EXPECT_FALSE(button->isEnabled());
    QTest::mouseClick(button, Qt::LeftButton);
    QTest::keyClick(box, Qt::Key_Return);
    QTest::keyClick(box, Qt::Key_Escape);
    processPendingEvents();
    EXPECT_TRUE(answers.empty());
    ASSERT_TRUE(waitUntil([button] { return button->isEnabled(); }));
    EXPECT_TRUE(box->isVisible());
    QTest::mouseClick(button, Qt::LeftButton);
    processPendingEvents();
    EXPECT_EQ(answers, std::vector{0});
}

TEST_F(AlertBoxes, AcceptClicksAtOnceWithoutAClosedQuestion) {
    MessageBoxPresenter presenter;
    presenter.present(question, &window, [](int) {});
    processPendingEvents();
    for (const QAbstractButton *button : window.findChild<AlertBox *>()->buttons())
        EXPECT_TRUE(button->isEnabled());
}

TEST_F(AlertBoxes, ReportThePositionOfEachOfFourButtons) {
    for (const auto &[title, position] : {std::pair{"Replace", 0}, {"Cancel", 1}, {"Keep", 2}, {"Skip", 3}}) {
        answers.clear();
        press(present({"Message", "More", {"Replace", "Cancel", "Keep", "Skip"}}), title);
        processPendingEvents();
        EXPECT_EQ(answers, std::vector{position});
    }
}

TEST_F(AlertBoxes, EscapeAndClosingPressNoButton) {
    QTest::keyClick(&present(question), Qt::Key_Escape);
    processPendingEvents();
    present(question).close();
    processPendingEvents();
    EXPECT_EQ(answers, (std::vector{AlertPresenter::dismissed, AlertPresenter::dismissed}));
}

TEST_F(AlertBoxes, CloseWhateverTheirButtons) {
    for (const Alert &alert : {Alert{"Message"}, Alert{.message = "Message", .sideButton = "Show"},
                               Alert{"Message", "More", {"First"}}, Alert{"Message", "More", {"One", "Two", "Three"}}})
        present(alert).close(), processPendingEvents();
    EXPECT_EQ(answers, std::vector<int>(4, AlertPresenter::dismissed));
    EXPECT_FALSE(window.findChild<AlertBox *>());
}

TEST_F(AlertBoxes, WithoutButtonsHaveTheToolkitsButton) {
    AlertBox &box = present({"Message"});
    EXPECT_EQ(box.buttons().size(), 1);
    box.button(QMessageBox::Ok)->click();
    processPendingEvents();
    EXPECT_EQ(answers, std::vector{0});
}

TEST_F(AlertBoxes, SideButtonHasItsOwnAnswer) {
    press(present({.message = "Message", .sideButton = "Show"}), "Show");
    processPendingEvents();
    EXPECT_EQ(answers, std::vector{AlertPresenter::sideButton});
}

TEST_F(AlertBoxes, FileNamesAreNotMarkup) {
    AlertBox &box = present({"<b>bold</b>.mov", "<i>italic</i>\n&amp;", {"First"}});
    for (const QLabel *label : box.findChildren<QLabel *>())
        if (!label->text().isEmpty()) {
            EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->text().toStdString();
        }
}

TEST_F(AlertBoxes, LongNamesDoNotWidenTheBoxBeyondTheScreen) {
    AlertBox &box = present({"Message", std::string(400, 'm') + ".mov", {"First"}});
    EXPECT_LT(box.width(), 720);
}

TEST_F(AlertBoxes, EveryReachableControlHasItsOwnName) {
    AlertBox &box =
        present({.message = "Message", .buttons = {"First", "Second"}, .sideButton = "Show", .details = "a: b"});
    for (QAbstractButton *button : box.buttons())
        if (box.buttonRole(button) == QMessageBox::ActionRole && button->text() != QLatin1String("Show"))
            button->click(); // opens the details
    processPendingEvents();
    AccessibleObjects controls = focusableControls(box);
    // A label can accept clicks, but the Tab key skips it.
    std::erase_if(controls, [](const auto *object) { return !(widgetOf(*object).focusPolicy() & Qt::TabFocus); });
    std::set<std::pair<QAccessible::Role, std::string>> seen;
    for (const QAccessibleInterface *object : controls) {
        EXPECT_FALSE(accessibleName(*object).empty()) << object->role();
        EXPECT_TRUE(seen.emplace(object->role(), accessibleName(*object)).second) << accessibleName(*object);
    }
    EXPECT_EQ(seen.size(), 5U) << "four buttons and the details";
    EXPECT_EQ(seen.count({QAccessible::EditableText, text("spoken.details")}), 1U);
    EXPECT_EQ(accessibleName(accessible(box)), "Message");
}

TEST_F(AlertBoxes, CloseWithTheWidgetTheyWereShownOn) {
    auto *sheet = new QWidget(&window);
    MessageBoxPresenter().present(question, sheet, [this](int button) { answers.push_back(button); });
    processPendingEvents();
    delete sheet;
    processPendingEvents();
    EXPECT_FALSE(window.findChild<AlertBox *>());
    EXPECT_TRUE(answers.empty());
}

} // namespace
} // namespace lumetwin::test
