// SPDX-License-Identifier: GPL-3.0-or-later
// The form's numbers: what fields accept and refuse, the steps of sliders, and that both agree with the settings.
#include "engine/texts/Texts.h"
#include "support/FormFixture.h"
#include "ui/widgets/Palettes.h"

#include <QAccessible>
#include <QCheckBox>
#include <QRadioButton>
#include <QToolButton>

namespace lumetwin::test {
namespace {

using FormFields = MainForm;

TEST_F(FormFields, AcceptsAFieldOfViewUpTo180) {
    find<QRadioButton>("sbsToSpatialButton").click();
    settings.horizontalFOV = 63.4;
    type("fovField", "180");
    EXPECT_EQ(settings.horizontalFOV, 180);
    EXPECT_EQ(slider("fovSlider").doubleValue(), 180);
}

TEST_F(FormFields, TwoHundredIsRefusedAndNotReadAsTwenty) {
    find<QRadioButton>("sbsToSpatialButton").click();
    type("fovField", "200");
    EXPECT_EQ(field("fovField").text(), QStringLiteral("200"));
    EXPECT_EQ(settings.horizontalFOV, 63.4) << "\"20\" on the way was in the range";
    EXPECT_EQ(slider("fovSlider").doubleValue(), 63.4);
    EXPECT_FALSE(field("fovField").isValid());
    type("fovField", "90");
    EXPECT_EQ(settings.horizontalFOV, 90);
    find<QPushButton>("startButton").setFocus(); // the editing ends
    type("fovField", "900");
    EXPECT_EQ(settings.horizontalFOV, 90);
}

TEST_F(FormFields, InvalidTextIsMarkedAtOnce) {
    find<QRadioButton>("sbsToSpatialButton").click();
    processPendingEvents();
    NumberField &fov = field("fovField");
    const QString usual = fov.toolTip();
    const auto edge = [&fov] { return fov.grab().toImage().pixelColor(fov.width() / 2, 1); };
    const QColor usualEdge = edge();
    fov.setText(QStringLiteral("9,9"));
    EXPECT_NE(edge(), usualEdge);
    EXPECT_EQ(fov.toolTip().toStdString(), formatted("field.range.format", std::string("10"), std::string("180")));
    EXPECT_EQ(fov.accessibleDescription(), fov.toolTip()) << "for those who do not see the mark";
    fov.setText(QStringLiteral("99,9"));
    EXPECT_EQ(settings.horizontalFOV, 99.9);
    EXPECT_EQ(fov.toolTip(), usual);
    EXPECT_EQ(edge(), usualEdge);
}

TEST_F(FormFields, ToolTipsNameRangeMeaningAndDefault) {
    find<QRadioButton>("sbsToSpatialButton").click();
    for (const auto &[name, low, high, usual] : {std::tuple{"fovField", "10", "180", "63.4"},
                                                 {"disparityField", "-100", "100", "2"},
                                                 {"baselineField", "1", "200", "19.24"}})
        for (const char *number : {low, high, usual})
            EXPECT_TRUE(field(name).toolTip().contains(QLatin1String(number))) << name << ' ' << number;
    EXPECT_EQ(slider("fovSlider").toolTip(), field("fovField").toolTip());
}

TEST_F(FormFields, ResetButtonsRestoreTheDefault) {
    find<QRadioButton>("sbsToSpatialButton").click();
    auto &reset = find<QToolButton>("baselineReset");
    EXPECT_FALSE(reset.isEnabled()) << "nothing to put back";
    type("baselineField", "63");
    EXPECT_TRUE(reset.isEnabled());
    reset.click();
    EXPECT_EQ(settings.stereoBaseline, 19.24);
    EXPECT_EQ(field("baselineField").text(), QStringLiteral("19.24"));
    EXPECT_EQ(slider("baselineSlider").doubleValue(), 19.24);
    EXPECT_FALSE(reset.isEnabled());
}

TEST_F(FormFields, TextOutOfTheRangeChangesNothing) {
    field("fovField").setText(QStringLiteral("200"));
    EXPECT_EQ(settings.horizontalFOV, 63.4);
    EXPECT_EQ(slider("fovSlider").doubleValue(), 63.4);
    for (const char *text : {"9.9", "180.1", "", "wide", "6,3,4"}) {
        field("fovField").setText(QLatin1String(text));
        EXPECT_EQ(settings.horizontalFOV, 63.4) << text;
        EXPECT_EQ(field("fovField").text(), QLatin1String(text)) << "the text stays as typed";
    }
    field("disparityField").setText(QStringLiteral("-100"));
    EXPECT_EQ(settings.disparityAdjustment, -100);
    EXPECT_EQ(slider("disparitySlider").doubleValue(), -100);
    field("disparityField").setText(QStringLiteral("-100.5"));
    EXPECT_EQ(settings.disparityAdjustment, -100);
    field("baselineField").setText(QStringLiteral("0.5"));
    EXPECT_EQ(settings.stereoBaseline, 19.24);
    field("baselineField").setText(QStringLiteral("1"));
    EXPECT_EQ(settings.stereoBaseline, 1);
}

TEST_F(FormFields, FieldsAcceptMoreDecimalsThanTheSlidersShow) {
    field("fovField").setText(QStringLiteral("63.4567"));
    EXPECT_EQ(settings.horizontalFOV, 63.4567);
    EXPECT_EQ(slider("fovSlider").doubleValue(), 63.4567);
    EXPECT_EQ(field("fovField").text(), QStringLiteral("63.4567"));
}

TEST_F(FormFields, ZeroAndLettersLeaveTheResizeSize) {
    for (const char *text : {"0", "-5", "abc", "", "12.5", "99999999999999999999"}) {
        field("resizeWidthField").setText(QLatin1String(text));
        field("resizeHeightField").setText(QLatin1String(text));
        EXPECT_EQ(settings.resizeWidth, 1920) << text;
        EXPECT_EQ(settings.resizeHeight, 1080) << text;
    }
    field("resizeWidthField").setText(QStringLiteral("+640"));
    EXPECT_EQ(settings.resizeWidth, 640);
}

TEST_F(FormFields, TheDefaultSizeHasNoWarningColour) {
    find<QCheckBox>("enableResizeCheck").click();
    const auto ink = [this] { return find<QLabel>("resizeWarningLabel").palette().color(QPalette::WindowText); };
    EXPECT_EQ(ink(), secondaryTextColour(form.palette()));
    type("resizeWidthField", "1921");
    EXPECT_EQ(ink(), warningColour(form.palette()));
    type("resizeWidthField", "1920");
    EXPECT_EQ(ink(), secondaryTextColour(form.palette()));
}

TEST_F(FormFields, SlidersWriteIntoSettingAndField) {
    slider("fovSlider").setValue(905);
    EXPECT_EQ(settings.horizontalFOV, 90.5);
    EXPECT_EQ(field("fovField").text(), QStringLiteral("90.5"));
    slider("disparitySlider").setValue(-1234);
    EXPECT_EQ(settings.disparityAdjustment, -12.34);
    EXPECT_EQ(field("disparityField").text(), QStringLiteral("-12.34"));
    slider("baselineSlider").setValue(slider("baselineSlider").maximum());
    EXPECT_EQ(settings.stereoBaseline, 200);
    EXPECT_EQ(field("baselineField").text(), QStringLiteral("200.00"));
}

TEST_F(FormFields, ArrowKeysStepByWhatTheFieldShows) {
    find<QRadioButton>("sbsToSpatialButton").click();
    const auto press = [this](const char *name, Qt::Key key) { QTest::keyClick(&slider(name), key); };
    press("fovSlider", Qt::Key_Right);
    EXPECT_EQ(field("fovField").text(), QStringLiteral("63.5"));
    press("fovSlider", Qt::Key_PageUp);
    EXPECT_EQ(field("fovField").text(), QStringLiteral("64.5"));
    press("disparitySlider", Qt::Key_Left);
    EXPECT_EQ(field("disparityField").text(), QStringLiteral("1.99"));
    press("baselineSlider", Qt::Key_PageDown);
    EXPECT_EQ(field("baselineField").text(), QStringLiteral("19.14"));
    for (const auto &[name, step] : {std::pair{"fovSlider", 0.1}, {"disparitySlider", 0.01}, {"baselineSlider", 0.01}})
        EXPECT_EQ(QAccessible::queryAccessibleInterface(&slider(name))->valueInterface()->minimumStepSize().toDouble(),
                  step);
}

TEST_F(FormFields, SlidersReportTheirDecimalValue) {
    auto *interface = QAccessible::queryAccessibleInterface(&slider("fovSlider"));
    ASSERT_TRUE(interface->valueInterface());
    EXPECT_EQ(interface->valueInterface()->currentValue().toDouble(), 63.4);
    EXPECT_EQ(interface->valueInterface()->maximumValue().toDouble(), 180);
    interface->valueInterface()->setCurrentValue(90.0);
    EXPECT_EQ(settings.horizontalFOV, 90);
}

} // namespace
} // namespace lumetwin::test
