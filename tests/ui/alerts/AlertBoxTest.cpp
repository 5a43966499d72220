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
        settle();
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

TEST_F(AlertBoxes, TellWhichButtonWasPressed) {
    press(present(question), "Second");
    settle();
    press(present(question), "First");
    settle();
    EXPECT_EQ(answers, (std::vector{1, 0}));
    EXPECT_FALSE(window.findChild<AlertBox *>()) << "and go away";
}

TEST_F(AlertBoxes, TheFirstButtonIsTheDefaultOne) {
    AlertBox &box = present(question);
    EXPECT_EQ(box.defaultButton()->text(), QStringLiteral("First"));
    QTest::keyClick(&box, Qt::Key_Return);
    settle();
    EXPECT_EQ(answers, std::vector{0});
}

TEST_F(AlertBoxes, EnterPressesTheSafeButtonWhereTheFirstOneIsNot) {
    Alert dangerous = question;
    dangerous.defaultButton = 1;
    AlertBox &box = present(dangerous);
    EXPECT_EQ(box.defaultButton()->text(), QStringLiteral("Second"));
    QTest::keyClick(&box, Qt::Key_Return);
    settle();
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
    settle();
    EXPECT_EQ(answers, std::vector{AlertPresenter::sideButton});
}

TEST_F(AlertBoxes, AClickMeantForAQuestionThatIsGoneHitsNothing) {
    auto *asking = new QWidget(&window);
    MessageBoxPresenter presenter;
    presenter.present(question, asking, [](int) { FAIL() << "nobody answered"; });
    settle();
    delete asking; // the run has ended
    presenter.present({.message = "Done", .buttons = {"Close"}}, &window,
                      [this](int button) { answers.push_back(button); });
    settle();
    auto *box = window.findChild<AlertBox *>();
    ASSERT_TRUE(box);
    QAbstractButton *button = box->buttons().constFirst();
    EXPECT_FALSE(button->isEnabled());
    QTest::mouseClick(button, Qt::LeftButton);
    QTest::keyClick(box, Qt::Key_Return);
    QTest::keyClick(box, Qt::Key_Escape);
    settle();
    EXPECT_TRUE(answers.empty());
    ASSERT_TRUE(until([button] { return button->isEnabled(); }));
    EXPECT_TRUE(box->isVisible());
    QTest::mouseClick(button, Qt::LeftButton);
    settle();
    EXPECT_EQ(answers, std::vector{0});
}

TEST_F(AlertBoxes, WithoutSuchAQuestionTheyAnswerAtOnce) {
    MessageBoxPresenter presenter;
    presenter.present(question, &window, [](int) {});
    settle();
    for (const QAbstractButton *button : window.findChild<AlertBox *>()->buttons())
        EXPECT_TRUE(button->isEnabled());
}

TEST_F(AlertBoxes, EachOfFourButtonsTellsItsPosition) {
    for (const auto &[title, position] : {std::pair{"Replace", 0}, {"Cancel", 1}, {"Keep", 2}, {"Skip", 3}}) {
        answers.clear();
        press(present({"Message", "More", {"Replace", "Cancel", "Keep", "Skip"}}), title);
        settle();
        EXPECT_EQ(answers, std::vector{position});
    }
}

TEST_F(AlertBoxes, EscapeAndClosingPressNoButton) {
    QTest::keyClick(&present(question), Qt::Key_Escape);
    settle();
    present(question).close();
    settle();
    EXPECT_EQ(answers, (std::vector{AlertPresenter::dismissed, AlertPresenter::dismissed}));
}

TEST_F(AlertBoxes, CloseWhateverTheirButtons) {
    for (const Alert &alert : {Alert{"Message"}, Alert{.message = "Message", .sideButton = "Show"},
                               Alert{"Message", "More", {"First"}}, Alert{"Message", "More", {"One", "Two", "Three"}}})
        present(alert).close(), settle();
    EXPECT_EQ(answers, std::vector<int>(4, AlertPresenter::dismissed));
    EXPECT_FALSE(window.findChild<AlertBox *>());
}

TEST_F(AlertBoxes, WithoutButtonsThereIsThePlatformsOwn) {
    AlertBox &box = present({"Message"});
    EXPECT_EQ(box.buttons().size(), 1);
    box.button(QMessageBox::Ok)->click();
    settle();
    EXPECT_EQ(answers, std::vector{0});
}

TEST_F(AlertBoxes, TheSideButtonAnswersForItself) {
    press(present({.message = "Message", .sideButton = "Show"}), "Show");
    settle();
    EXPECT_EQ(answers, std::vector{AlertPresenter::sideButton});
}

TEST_F(AlertBoxes, NamesOfFilesAreNoMarkup) {
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

TEST_F(AlertBoxes, EverythingInReachHasANameOfItsOwn) {
    AlertBox &box =
        present({.message = "Message", .buttons = {"First", "Second"}, .sideButton = "Show", .details = "a: b"});
    for (QAbstractButton *button : box.buttons())
        if (box.buttonRole(button) == QMessageBox::ActionRole && button->text() != QLatin1String("Show"))
            button->click(); // unfolds the details
    settle();
    Things controls = controlsBelow(box);
    // A label may take a click, but the tabulator passes it by.
    std::erase_if(controls, [](const auto *thing) { return !(widgetOf(*thing).focusPolicy() & Qt::TabFocus); });
    std::set<std::pair<QAccessible::Role, std::string>> seen;
    for (const QAccessibleInterface *thing : controls) {
        EXPECT_FALSE(nameOf(*thing).empty()) << thing->role();
        EXPECT_TRUE(seen.emplace(thing->role(), nameOf(*thing)).second) << nameOf(*thing);
    }
    EXPECT_EQ(seen.size(), 5U) << "four buttons and the details";
    EXPECT_EQ(seen.count({QAccessible::EditableText, text("spoken.details")}), 1U);
    EXPECT_EQ(nameOf(accessible(box)), "Message");
}

TEST_F(AlertBoxes, GoWithTheWidgetTheyWereShownOn) {
    auto *sheet = new QWidget(&window);
    MessageBoxPresenter().present(question, sheet, [this](int button) { answers.push_back(button); });
    settle();
    delete sheet;
    settle();
    EXPECT_FALSE(window.findChild<AlertBox *>());
    EXPECT_TRUE(answers.empty());
}

} // namespace
} // namespace lumetwin::test
