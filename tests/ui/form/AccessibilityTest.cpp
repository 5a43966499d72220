// SPDX-License-Identifier: GPL-3.0-or-later
// What a screen reader and the keyboard can reach: walks over the accessibility tree and along the tab order, in each
// state of the form and the sheet, in each language.
#include "engine/texts/Texts.h"
#include "support/Accessible.h"
#include "support/Scripted.h"
#include "ui/files/DropFolderView.h"
#include "ui/form/MainViewController.h"
#include "ui/progress/ProgressViewController.h"

#include <QAccessible>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QScrollArea>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace lumetwin::test {
namespace {

constexpr char16_t firstJapaneseCharacter = 0x3000; // Unicode: CJK symbols, kana, then ideographs

bool areInSameRow(const QRect &one, const QRect &other) {
    return one.center().y() >= other.top() && one.center().y() <= other.bottom();
}

/// Whether a label with exactly this text stands to the left of a control, in its row.
bool hasCaption(const QWidget &control, const QString &words) {
    const QList<QLabel *> labels = control.parentWidget()->findChildren<QLabel *>(Qt::FindDirectChildrenOnly);
    return std::any_of(labels.begin(), labels.end(), [&](const QLabel *label) {
        return label->isVisible() && withoutMnemonic(label->text()) == words && label->x() < control.x() &&
               areInSameRow(label->geometry(), control.geometry());
    });
}

void expectNumberInRange(const QAccessibleInterface &object) {
    auto *value = const_cast<QAccessibleInterface &>(object).valueInterface();
    ASSERT_TRUE(value) << accessibleName(object);
    EXPECT_LE(value->minimumValue().toDouble(), value->currentValue().toDouble()) << accessibleName(object);
    EXPECT_LE(value->currentValue().toDouble(), value->maximumValue().toDouble()) << accessibleName(object);
}

/// Expects that a control reports its value, in the way of its role.
void expectValue(const QAccessibleInterface &object) {
    const QString value = object.text(QAccessible::Value);
    const QWidget &widget = widgetOf(object);
    switch (object.role()) {
    case QAccessible::Slider:
        EXPECT_FALSE(value.isEmpty()) << accessibleName(object);
        return expectNumberInRange(object);
    case QAccessible::EditableText:
        EXPECT_FALSE(value.isEmpty()) << accessibleName(object);
        EXPECT_EQ(value, static_cast<const QLineEdit &>(widget).text());
        return;
    case QAccessible::ComboBox:
        EXPECT_FALSE(value.isEmpty()) << accessibleName(object);
        EXPECT_EQ(value, static_cast<const QComboBox &>(widget).currentText());
        return;
    case QAccessible::CheckBox:
    case QAccessible::RadioButton:
        EXPECT_TRUE(object.state().checkable) << accessibleName(object);
        EXPECT_EQ(object.state().checked, static_cast<const QAbstractButton &>(widget).isChecked())
            << accessibleName(object);
        return;
    case QAccessible::Button:
        return;
    default:
        ADD_FAILURE() << accessibleName(object) << " is a control of an unknown kind, " << object.role();
    }
}

/// Expects that the accessible name is the visible text: on the control, to its left, or the title of its section.
void expectVisibleName(const QAccessibleInterface &object) {
    const QString name = accessiblePurpose(object);
    QWidget &widget = widgetOf(object);
    if (const auto *button = qobject_cast<const QAbstractButton *>(&widget)) {
        EXPECT_TRUE(withoutMnemonic(button->text()).endsWith(name)) << accessibleName(object);
    } else if (qobject_cast<const DropFolderView *>(&widget)) {
        EXPECT_EQ(name, accessible(*widget.parentWidget()).text(QAccessible::Name));
    } else {
        EXPECT_TRUE(hasCaption(widget, name)) << name.toStdString() << " is written nowhere before it";
    }
}

void expectNamesAndValues(const AccessibleObjects &controls) {
    std::set<std::pair<QAccessible::Role, QString>> seen;
    for (const QAccessibleInterface *object : controls) {
        EXPECT_FALSE(accessibleName(*object).empty()) << widgetOf(*object).objectName().toStdString();
        EXPECT_FALSE(accessiblePurpose(*object).isEmpty()) << accessibleName(*object);
        EXPECT_TRUE(seen.emplace(object->role(), accessiblePurpose(*object)).second)
            << "two of one kind are called " << accessiblePurpose(*object).toStdString();
        expectValue(*object);
        expectVisibleName(*object);
    }
}

/// Order of reading: top to bottom, then left to right.
bool comesAfter(const QRect &later, const QRect &earlier) {
    return areInSameRow(later, earlier) ? later.left() > earlier.right() : later.center().y() > earlier.bottom();
}

class FormAccessibility : public testing::TestWithParam<const char *> {
protected:
    FormAccessibility() : form(makeForm()) {
        form->resize(720, 980);
        form->show();
        processPendingEvents();
    }
    ~FormAccessibility() override {
        form.reset();
        setTextLocale("en");
    }

    std::unique_ptr<MainViewController> makeForm() {
        setTextLocale(GetParam());
        FormServices services = fakes.services();
        services.runBatch = [](VideoProcessor &) {};
        return std::make_unique<MainViewController>(services);
    }

    template <typename Widget> Widget &find(const char *name) { return control<Widget>(*form, name); }

    /// Calls the check for both directions, with and without the resize rows.
    template <typename Check> void forEachState(Check check) {
        for (const bool resizing : {false, true})
            for (const char *direction : {"spatialToSBSButton", "sbsToSpatialButton"}) {
                SCOPED_TRACE(std::string(direction) + (resizing ? ", resizing" : ""));
                find<QCheckBox>("enableResizeCheck").setChecked(resizing);
                find<QRadioButton>(direction).setChecked(true);
                processPendingEvents();
                check();
            }
    }

    /// The controls that the key reaches, from the start button until it comes back to it.
    std::vector<QWidget *> focusOrder(Qt::Key key) {
        auto *start = &find<QWidget>("startButton");
        start->setFocus();
        std::vector<QWidget *> stops;
        do {
            QTest::keyClick(form->focusWidget(), key);
            stops.push_back(form->focusWidget());
        } while (stops.back() != start && stops.size() < 40);
        return stops;
    }

    QRect rectInForm(const QWidget &widget) const { return {widget.mapTo(form.get(), QPoint()), widget.size()}; }

    FakeServices fakes;
    std::unique_ptr<MainViewController> form;
};

TEST_P(FormAccessibility, EveryControlOfTheFormHasNameAndValue) {
    forEachState([this] {
        const AccessibleObjects controls = focusableControls(*form);
        EXPECT_EQ(controls.size(), 17U + (form->settings->enableResize ? 3 : 0) +
                                       (form->settings->direction == ConversionDirection::sbsToSpatial ? 3 : 0));
        expectNamesAndValues(controls);
    });
}

TEST_P(FormAccessibility, NamesAreInTheLanguageOfTheUser) {
    find<QCheckBox>("enableResizeCheck").setChecked(true);
    for (const QAccessibleInterface *object : focusableControls(*form)) {
        const QString name = accessiblePurpose(*object);
        const bool japanese = std::any_of(name.begin(), name.end(),
                                          [](QChar letter) { return letter.unicode() >= firstJapaneseCharacter; });
        EXPECT_EQ(japanese, GetParam() == std::string_view("ja")) << name.toStdString();
    }
}

TEST_P(FormAccessibility, CaptionsNameTheirControls) {
    find<QCheckBox>("enableResizeCheck").setChecked(true);
    find<QRadioButton>("sbsToSpatialButton").setChecked(true);
    for (const char *name :
         {"fovField", "disparityField", "baselineField", "resizeWidthField", "resizeHeightField", "inputLayoutPopup",
          "formatPopup", "photoFormatPopup", "compressionSlider", "resizeModePopup"}) {
        const auto captions = accessible(find<QWidget>(name)).relations(QAccessible::Label);
        ASSERT_EQ(captions.size(), 1) << name;
        EXPECT_EQ(captions.front().first->text(QAccessible::Name), find<QWidget>(name).accessibleName());
    }
}

TEST_P(FormAccessibility, ControlsStandInSectionsWithATitle) {
    for (const QAccessibleInterface *object : focusableControls(*form)) {
        const QAccessibleInterface *above = object->parent();
        while (above && above->role() != QAccessible::Grouping && above->object() != form.get())
            above = above->parent();
        ASSERT_TRUE(above);
        if (object->object() != &find<QWidget>("startButton")) {
            EXPECT_EQ(above->role(), QAccessible::Grouping) << accessibleName(*object);
            EXPECT_FALSE(accessibleName(*above).empty()) << accessibleName(*object);
        }
    }
}

TEST_P(FormAccessibility, SelectButtonsDescribeWhatTheySelect) {
    for (const auto &[button, section] :
         {std::pair{"inputSelectBtn", "inputSection"}, {"outputSelectBtn", "outputSection"}})
        EXPECT_EQ(accessible(find<QWidget>(button)).text(QAccessible::Description),
                  accessible(find<QWidget>(section)).text(QAccessible::Name));
}

TEST_P(FormAccessibility, TabKeyReachesEveryControlInReadingOrder) {
    forEachState([this] {
        const std::vector<QWidget *> stops = focusOrder(Qt::Key_Tab);
        for (std::size_t stop = 1; stop < stops.size(); ++stop)
            EXPECT_TRUE(comesAfter(rectInForm(*stops[stop]), rectInForm(*stops[stop - 1])))
                << stops[stop]->objectName().toStdString() << " after " << stops[stop - 1]->objectName().toStdString();
        std::vector<QWidget *> expected;
        for (const QAccessibleInterface *object : focusableControls(*form))
            // In a group of radio buttons the Tab key stops only at the checked one.
            if (object->role() != QAccessible::RadioButton || object->state().checked)
                expected.push_back(&widgetOf(*object));
        EXPECT_THAT(stops, testing::UnorderedElementsAreArray(expected));
        std::vector<QWidget *> back = focusOrder(Qt::Key_Backtab);
        std::reverse(back.begin(), back.end() - 1);
        EXPECT_EQ(back, stops) << "and the other way round";
    });
}

TEST_P(FormAccessibility, TabKeyStopsAtTheCheckedDirection) {
    auto &toSBS = find<QRadioButton>("spatialToSBSButton");
    auto &toSpatial = find<QRadioButton>("sbsToSpatialButton");
    toSBS.setFocus();
    accessible(toSpatial).actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_TRUE(toSpatial.isChecked());
    EXPECT_THAT(focusOrder(Qt::Key_Tab), testing::Contains(&toSpatial));
    EXPECT_THAT(focusOrder(Qt::Key_Tab), testing::Not(testing::Contains(&toSBS)));
}

TEST_P(FormAccessibility, AccessibilityTreeIsInReadingOrder) {
    forEachState([this] {
        AccessibleObjects leaves = visibleDescendants(accessible(find<QWidget>("documentView")));
        std::erase_if(leaves, [](const QAccessibleInterface *object) {
            return !visibleDescendants(*object).empty() || !object->object()->isWidgetType() ||
                   qobject_cast<DropFolderView *>(object->object()->parent());
        });
        for (std::size_t leaf = 1; leaf < leaves.size(); ++leaf)
            EXPECT_TRUE(comesAfter(leaves[leaf]->rect(), leaves[leaf - 1]->rect()))
                << accessibleName(*leaves[leaf]) << " after " << accessibleName(*leaves[leaf - 1]);
        EXPECT_GT(leaves.size(), focusableControls(*form).size()) << "labels are read as well";
    });
}

TEST_P(FormAccessibility, ArrowKeysReachTheOtherDirection) {
    find<QRadioButton>("spatialToSBSButton").setFocus();
    QTest::keyClick(form->focusWidget(), Qt::Key_Down);
    EXPECT_EQ(form->focusWidget(), &find<QRadioButton>("sbsToSpatialButton"));
}

TEST_P(FormAccessibility, DropTargetsReportTheirContent) {
    for (const char *name : {"inputDropView", "outputDropView"}) {
        auto &target = find<DropFolderView>(name);
        EXPECT_FALSE(accessibleName(accessible(target)).empty());
        EXPECT_EQ(accessible(target).text(QAccessible::Description), target.placeholder());
        target.showFolder("/x/Holiday");
        EXPECT_EQ(accessible(target).text(QAccessible::Description), QStringLiteral("Holiday"));
    }
}

TEST_P(FormAccessibility, WhileTheSheetIsShownOnlyItsButtonIsReachable) {
    form->presentProgressSheet();
    processPendingEvents();
    ProgressViewController &sheet = *form->progressSheet();
    EXPECT_EQ(accessible(sheet).role(), QAccessible::Dialog);
    EXPECT_EQ(accessibleName(accessible(sheet)), text("progress.title"));
    QWidget &button = control<QWidget>(sheet, "cancelButton");
    const auto expectOnlyTheButton = [&](const char *title) {
        const AccessibleObjects controls = focusableControls(*form);
        ASSERT_EQ(controls.size(), 1U);
        EXPECT_EQ(&widgetOf(*controls.front()), &button);
        EXPECT_EQ(accessibleName(*controls.front()), text(title));
        expectNamesAndValues(controls);
        QTest::keyClick(form->focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(form->focusWidget(), &button);
    };
    expectOnlyTheButton("button.cancel");
    sheet.conversionFinished(true, "done");
    expectOnlyTheButton("button.close");
    sheet.closeTapped();
    EXPECT_TRUE(waitUntil([this] { return focusableControls(*form).size() == 17; })) << "and then the form is back";
}

TEST_P(FormAccessibility, ProgressBarsHaveNamesAndValuesInEachOfTheirStates) {
    form->presentProgressSheet();
    processPendingEvents();
    ProgressViewController &sheet = *form->progressSheet();
    const auto expectBars = [&] {
        AccessibleObjects bars = visibleDescendants(accessible(sheet));
        std::erase_if(bars, [](const auto *object) { return object->role() != QAccessible::ProgressBar; });
        ASSERT_EQ(bars.size(), 2U);
        EXPECT_NE(accessibleName(*bars[0]), accessibleName(*bars[1]));
        for (const QAccessibleInterface *bar : bars) {
            EXPECT_FALSE(accessibleName(*bar).empty());
            expectNumberInRange(*bar);
        }
    };
    expectBars();
    sheet.updateProgress(1, 2, "a.mov");
    expectBars();
    sheet.updateFrameProgress(150, 100);
    expectBars();
    sheet.showSkipped("a.mov", "not spatial");
    expectBars();
    sheet.conversionFinished(false, "done");
    expectBars();
}

INSTANTIATE_TEST_SUITE_P(Languages, FormAccessibility, testing::Values("en", "ja"),
                         [](const auto &testInfo) { return std::string(testInfo.param); });

} // namespace
} // namespace lumetwin::test
