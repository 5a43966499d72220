// SPDX-License-Identifier: GPL-3.0-or-later
// What a screen reader and a keyboard find: a walk over the accessibility tree and one with the tabulator, in each
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

constexpr char16_t firstOfJapanese = 0x3000; // Unicode: CJK symbols, kana, then ideographs

bool sameRow(const QRect &one, const QRect &other) {
    return one.center().y() >= other.top() && one.center().y() <= other.bottom();
}

/// Whether a label with exactly these words stands before a control, in its row.
bool hasCaption(const QWidget &control, const QString &words) {
    const QList<QLabel *> labels = control.parentWidget()->findChildren<QLabel *>(Qt::FindDirectChildrenOnly);
    return std::any_of(labels.begin(), labels.end(), [&](const QLabel *label) {
        return label->isVisible() && plain(label->text()) == words && label->x() < control.x() &&
               sameRow(label->geometry(), control.geometry());
    });
}

void expectNumberInItsRange(const QAccessibleInterface &thing) {
    auto *value = const_cast<QAccessibleInterface &>(thing).valueInterface();
    ASSERT_TRUE(value) << nameOf(thing);
    EXPECT_LE(value->minimumValue().toDouble(), value->currentValue().toDouble()) << nameOf(thing);
    EXPECT_LE(value->currentValue().toDouble(), value->maximumValue().toDouble()) << nameOf(thing);
}

/// That a control tells what it holds, each kind in its own way.
void expectItsValue(const QAccessibleInterface &thing) {
    const QString value = thing.text(QAccessible::Value);
    const QWidget &widget = widgetOf(thing);
    switch (thing.role()) {
    case QAccessible::Slider:
        EXPECT_FALSE(value.isEmpty()) << nameOf(thing);
        return expectNumberInItsRange(thing);
    case QAccessible::EditableText:
        EXPECT_FALSE(value.isEmpty()) << nameOf(thing);
        EXPECT_EQ(value, static_cast<const QLineEdit &>(widget).text());
        return;
    case QAccessible::ComboBox:
        EXPECT_FALSE(value.isEmpty()) << nameOf(thing);
        EXPECT_EQ(value, static_cast<const QComboBox &>(widget).currentText());
        return;
    case QAccessible::CheckBox:
    case QAccessible::RadioButton:
        EXPECT_TRUE(thing.state().checkable) << nameOf(thing);
        EXPECT_EQ(thing.state().checked, static_cast<const QAbstractButton &>(widget).isChecked()) << nameOf(thing);
        return;
    case QAccessible::Button:
        return;
    default:
        ADD_FAILURE() << nameOf(thing) << " is a control of an unknown kind, " << thing.role();
    }
}

/// That it is called what the eye reads: on the control, or before it in its row, or as its section's title.
void expectTheNameThatTheEyeReads(const QAccessibleInterface &thing) {
    const QString name = purposeOf(thing);
    QWidget &widget = widgetOf(thing);
    if (const auto *button = qobject_cast<const QAbstractButton *>(&widget)) {
        EXPECT_TRUE(plain(button->text()).endsWith(name)) << nameOf(thing);
    } else if (qobject_cast<const DropFolderView *>(&widget)) {
        EXPECT_EQ(name, accessible(*widget.parentWidget()).text(QAccessible::Name));
    } else {
        EXPECT_TRUE(hasCaption(widget, name)) << name.toStdString() << " is written nowhere before it";
    }
}

void expectNamesAndValues(const Things &controls) {
    std::set<std::pair<QAccessible::Role, QString>> seen;
    for (const QAccessibleInterface *thing : controls) {
        EXPECT_FALSE(nameOf(*thing).empty()) << widgetOf(*thing).objectName().toStdString();
        EXPECT_FALSE(purposeOf(*thing).isEmpty()) << nameOf(*thing);
        EXPECT_TRUE(seen.emplace(thing->role(), purposeOf(*thing)).second)
            << "two of one kind are called " << purposeOf(*thing).toStdString();
        expectItsValue(*thing);
        expectTheNameThatTheEyeReads(*thing);
    }
}

/// Top to bottom, left to right.
bool readsAfter(const QRect &later, const QRect &earlier) {
    return sameRow(later, earlier) ? later.left() > earlier.right() : later.center().y() > earlier.bottom();
}

class Reading : public testing::TestWithParam<const char *> {
protected:
    Reading() : form(makeForm()) {
        form->resize(720, 980);
        form->show();
        settle();
    }
    ~Reading() override {
        form.reset();
        setTextLocale("en");
    }

    std::unique_ptr<MainViewController> makeForm() {
        setTextLocale(GetParam());
        FormServices services = stage.services();
        services.runBatch = [](VideoProcessor &) {};
        return std::make_unique<MainViewController>(services);
    }

    template <typename Widget> Widget &find(const char *name) { return control<Widget>(*form, name); }

    /// Both directions, with and without the rows of resizing.
    template <typename Look> void inEachState(Look look) {
        for (const bool resizing : {false, true})
            for (const char *direction : {"spatialToSBSButton", "sbsToSpatialButton"}) {
                SCOPED_TRACE(std::string(direction) + (resizing ? ", resizing" : ""));
                find<QCheckBox>("enableResizeCheck").setChecked(resizing);
                find<QRadioButton>(direction).setChecked(true);
                settle();
                look();
            }
    }

    /// Where that key leads to, from the start button around and back to it.
    std::vector<QWidget *> round(Qt::Key key) {
        auto *start = &find<QWidget>("startButton");
        start->setFocus();
        std::vector<QWidget *> stops;
        do {
            QTest::keyClick(form->focusWidget(), key);
            stops.push_back(form->focusWidget());
        } while (stops.back() != start && stops.size() < 40);
        return stops;
    }

    QRect place(const QWidget &widget) const { return {widget.mapTo(form.get(), QPoint()), widget.size()}; }

    Stage stage;
    std::unique_ptr<MainViewController> form;
};

TEST_P(Reading, EveryControlOfTheFormHasItsNameAndItsValue) {
    inEachState([this] {
        const Things controls = controlsBelow(*form);
        EXPECT_EQ(controls.size(), 16U + (form->settings->enableResize ? 3 : 0) +
                                       (form->settings->direction == ConversionDirection::sbsToSpatial ? 2 : 0));
        expectNamesAndValues(controls);
    });
}

TEST_P(Reading, NamesAreInTheLanguageOfTheUser) {
    find<QCheckBox>("enableResizeCheck").setChecked(true);
    for (const QAccessibleInterface *thing : controlsBelow(*form)) {
        const QString name = purposeOf(*thing);
        const bool japanese =
            std::any_of(name.begin(), name.end(), [](QChar letter) { return letter.unicode() >= firstOfJapanese; });
        EXPECT_EQ(japanese, GetParam() == std::string_view("ja")) << name.toStdString();
    }
}

TEST_P(Reading, CaptionsNameTheirControls) {
    find<QCheckBox>("enableResizeCheck").setChecked(true);
    find<QRadioButton>("sbsToSpatialButton").setChecked(true);
    for (const char *name : {"fovField", "disparityField", "baselineField", "resizeWidthField", "resizeHeightField",
                             "formatPopup", "photoFormatPopup", "compressionSlider", "resizeModePopup"}) {
        const auto captions = accessible(find<QWidget>(name)).relations(QAccessible::Label);
        ASSERT_EQ(captions.size(), 1) << name;
        EXPECT_EQ(captions.front().first->text(QAccessible::Name), find<QWidget>(name).accessibleName());
    }
}

TEST_P(Reading, ControlsStandInSectionsWithATitle) {
    for (const QAccessibleInterface *thing : controlsBelow(*form)) {
        const QAccessibleInterface *above = thing->parent();
        while (above && above->role() != QAccessible::Grouping && above->object() != form.get())
            above = above->parent();
        ASSERT_TRUE(above);
        if (thing->object() != &find<QWidget>("startButton")) {
            EXPECT_EQ(above->role(), QAccessible::Grouping) << nameOf(*thing);
            EXPECT_FALSE(nameOf(*above).empty()) << nameOf(*thing);
        }
    }
}

TEST_P(Reading, ButtonsThatSayOnlySelectTellWhat) {
    for (const auto &[button, section] :
         {std::pair{"inputSelectBtn", "inputSection"}, {"outputSelectBtn", "outputSection"}})
        EXPECT_EQ(accessible(find<QWidget>(button)).text(QAccessible::Description),
                  accessible(find<QWidget>(section)).text(QAccessible::Name));
}

TEST_P(Reading, TheTabulatorFollowsTheEyeAndReachesEverything) {
    inEachState([this] {
        const std::vector<QWidget *> stops = round(Qt::Key_Tab);
        for (std::size_t stop = 1; stop < stops.size(); ++stop)
            EXPECT_TRUE(readsAfter(place(*stops[stop]), place(*stops[stop - 1])))
                << stops[stop]->objectName().toStdString() << " after " << stops[stop - 1]->objectName().toStdString();
        std::vector<QWidget *> expected;
        for (const QAccessibleInterface *thing : controlsBelow(*form))
            // Of a group of radio buttons, the tabulator stops at the chosen one.
            if (thing->role() != QAccessible::RadioButton || thing->state().checked)
                expected.push_back(&widgetOf(*thing));
        EXPECT_THAT(stops, testing::UnorderedElementsAreArray(expected));
        std::vector<QWidget *> back = round(Qt::Key_Backtab);
        std::reverse(back.begin(), back.end() - 1);
        EXPECT_EQ(back, stops) << "and the other way round";
    });
}

TEST_P(Reading, TheTabulatorStopsAtTheChosenDirectionHoweverItWasChosen) {
    auto &toSBS = find<QRadioButton>("spatialToSBSButton");
    auto &toSpatial = find<QRadioButton>("sbsToSpatialButton");
    toSBS.setFocus();
    accessible(toSpatial).actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_TRUE(toSpatial.isChecked());
    EXPECT_THAT(round(Qt::Key_Tab), testing::Contains(&toSpatial));
    EXPECT_THAT(round(Qt::Key_Tab), testing::Not(testing::Contains(&toSBS)));
}

TEST_P(Reading, TheTreeReadsAsTheEyeDoes) {
    inEachState([this] {
        Things leaves = shownBelow(accessible(find<QWidget>("documentView")));
        std::erase_if(leaves, [](const QAccessibleInterface *thing) {
            return !shownBelow(*thing).empty() || !thing->object()->isWidgetType() ||
                   qobject_cast<DropFolderView *>(thing->object()->parent());
        });
        for (std::size_t leaf = 1; leaf < leaves.size(); ++leaf)
            EXPECT_TRUE(readsAfter(leaves[leaf]->rect(), leaves[leaf - 1]->rect()))
                << nameOf(*leaves[leaf]) << " after " << nameOf(*leaves[leaf - 1]);
        EXPECT_GT(leaves.size(), controlsBelow(*form).size()) << "labels are read as well";
    });
}

TEST_P(Reading, ArrowKeysReachTheOtherDirection) {
    find<QRadioButton>("spatialToSBSButton").setFocus();
    QTest::keyClick(form->focusWidget(), Qt::Key_Down);
    EXPECT_EQ(form->focusWidget(), &find<QRadioButton>("sbsToSpatialButton"));
}

TEST_P(Reading, DropTargetsTellWhatTheyHold) {
    for (const char *name : {"inputDropView", "outputDropView"}) {
        auto &target = find<DropFolderView>(name);
        EXPECT_FALSE(nameOf(accessible(target)).empty());
        EXPECT_EQ(accessible(target).text(QAccessible::Description), target.placeholder());
        target.showFolder("/x/Holiday");
        EXPECT_EQ(accessible(target).text(QAccessible::Description), QStringLiteral("Holiday"));
    }
}

TEST_P(Reading, WhileTheSheetIsUpItsButtonIsAllThereIsToReach) {
    form->presentProgressSheet();
    settle();
    ProgressViewController &sheet = *form->progressSheet();
    EXPECT_EQ(accessible(sheet).role(), QAccessible::Dialog);
    EXPECT_EQ(nameOf(accessible(sheet)), text("progress.title"));
    QWidget &button = control<QWidget>(sheet, "cancelButton");
    const auto expectOnlyTheButton = [&](const char *title) {
        const Things controls = controlsBelow(*form);
        ASSERT_EQ(controls.size(), 1U);
        EXPECT_EQ(&widgetOf(*controls.front()), &button);
        EXPECT_EQ(nameOf(*controls.front()), text(title));
        expectNamesAndValues(controls);
        QTest::keyClick(form->focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(form->focusWidget(), &button);
    };
    expectOnlyTheButton("button.cancel");
    sheet.conversionFinished(true, "done");
    expectOnlyTheButton("button.close");
    sheet.closeTapped();
    EXPECT_TRUE(until([this] { return controlsBelow(*form).size() == 16; })) << "and then the form is back";
}

TEST_P(Reading, ProgressBarsHaveNamesAndValuesInEachOfTheirStates) {
    form->presentProgressSheet();
    settle();
    ProgressViewController &sheet = *form->progressSheet();
    const auto expectBars = [&] {
        Things bars = shownBelow(accessible(sheet));
        std::erase_if(bars, [](const auto *thing) { return thing->role() != QAccessible::ProgressBar; });
        ASSERT_EQ(bars.size(), 2U);
        EXPECT_NE(nameOf(*bars[0]), nameOf(*bars[1]));
        for (const QAccessibleInterface *bar : bars) {
            EXPECT_FALSE(nameOf(*bar).empty());
            expectNumberInItsRange(*bar);
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

INSTANTIATE_TEST_SUITE_P(Languages, Reading, testing::Values("en", "ja"),
                         [](const auto &testInfo) { return std::string(testInfo.param); });

} // namespace
} // namespace lumetwin::test
