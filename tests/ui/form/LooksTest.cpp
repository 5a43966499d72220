// SPDX-License-Identifier: GPL-3.0-or-later
// Checks that no text is cut off and no widgets overlap, in each language and at each text size.
#include "support/Looks.h"
#include "engine/texts/Texts.h"
#include "support/Scripted.h"
#include "ui/form/MainViewController.h"
#include "ui/form/PreflightChecks.h"
#include "ui/form/SpatialCheck.h"
#include "ui/progress/ProgressTexts.h"
#include "ui/progress/ProgressViewController.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/Palettes.h"
#include "ui/widgets/Points.h"
#include "ui/widgets/ScaledStyle.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionButton>

#include <gtest/gtest.h>

#include <algorithm>

namespace lumetwin::test {
namespace {

class Looks : public testing::TestWithParam<TextConditions> {
protected:
    /// Expects that the texts of a dialog have enough space.
    static void expectTextsHaveSpace(const QWidget &dialog) {
        for (const QLabel *label : dialog.findChildren<QLabel *>()) {
            if (label->text().isEmpty() || !label->isVisible())
                continue;
            if (label->wordWrap()) {
                EXPECT_GE(label->height(), label->heightForWidth(label->width())) << label->text().toStdString();
            } else {
                const QSize room = label->contentsRect().size(), needed = label->fontMetrics().size(0, label->text());
                EXPECT_GE(room.width(), needed.width()) << label->text().toStdString();
                EXPECT_GE(room.height(), needed.height()) << label->text().toStdString();
            }
        }
        for (const QAbstractButton *button : dialog.findChildren<QAbstractButton *>()) {
            EXPECT_GE(button->width(), button->sizeHint().width()) << button->text().toStdString();
        }
    }

    FakeServices fakes;

private:
    const TextsUnder texts_{GetParam()};
};

TEST_P(Looks, NothingInTheFormIsCutOffOrOverlaps) {
    MainViewController form(fakes.services());
    const PointScale scale = PointScale::current();
    form.resize(scale.horizontal(720), scale.vertical(860));
    form.show();
    control<QCheckBox>(form, "enableResizeCheck").click();
    for (const char *direction : {"sbsToSpatialButton", "spatialToSBSButton"}) {
        control<QRadioButton>(form, direction).click();
        for (const char *width : {"1921", "1000", "1920"}) {
            control<QLineEdit>(form, "resizeWidthField").setText(QLatin1String(width));
            processPendingEvents();
            expectNothingCutOff(form);
            expectNoOverlaps(form);
        }
    }
}

TEST_P(Looks, NothingIsCutOffAtTheSmallestWidth) {
    MainViewController form(fakes.services());
    const PointScale scale = PointScale::current();
    for (const double height : {760.0, 600.0}) {
        form.resize(scale.horizontal(680), scale.vertical(height));
        form.show();
        control<QCheckBox>(form, "enableResizeCheck").setChecked(true);
        for (const char *direction : {"sbsToSpatialButton", "spatialToSBSButton"}) {
            control<QRadioButton>(form, direction).click();
            processPendingEvents();
            expectNothingCutOff(form);
            expectNoOverlaps(form);
            EXPECT_EQ(control<QScrollArea>(form, "scrollView").horizontalScrollBar()->maximum(), 0);
        }
    }
}

TEST_P(Looks, NoAlertCutsItsTextsOff) {
    ConversionSettings odd;
    odd.enableResize = true;
    odd.resizeWidth = 1921;
    BatchResult skipped{.success = true, .skipped = 12};
    skipped.skipReasons = {text("status.skipped.not.spatial")};
    const std::string name = "A name of some length, as cameras and people give them.mov";
    for (const Alert &alert :
         {Alert{text("error.no.input.folder")}, Alert{text("error.no.output.folder")}, *oddResizeSizeError(odd),
          *directionMismatch(ConversionDirection::spatialToSBS, 2, 0),
          *directionMismatch(ConversionDirection::sbsToSpatial, 2, 1), overwriteQuestion({"a_sbs.mp4", name}),
          Alert{text("alert.avi.title"), text("alert.avi.noresize.message"), {text("alert.avi.enable.resize")}},
          Alert{formatted("error.output.unwritable.format", name), text("error.output.unwritable.message")},
          spatialCheckAlert(name, {}), spatialCheckAlert(name, {true, {63.4, 19.24, 2.0}}), resultAlert(skipped),
          stopQuestion()}) {
        QWidget window;
        window.show();
        MessageBoxPresenter().present(alert, &window, [](int) {});
        processPendingEvents();
        const auto *box = window.findChild<QMessageBox *>();
        ASSERT_TRUE(box);
        expectTextsHaveSpace(*box);
        expectNoOverlaps(*box);
    }
}

TEST_P(Looks, NothingInTheSheetIsCutOff) {
    FormServices services = fakes.services();
    services.runBatch = [](VideoProcessor &) {};
    MainViewController form(services);
    const PointScale scale = PointScale::current();
    form.resize(scale.horizontal(720), std::min(scale.vertical(860), 650));
    form.show();
    form.presentProgressSheet();
    processPendingEvents();
    ProgressViewController &sheet = *form.progressSheet();
    EXPECT_TRUE(sheet.parentWidget()->rect().contains(sheet.geometry()));
    sheet.updateProgress(998, 1000, "clip.mov");
    sheet.updateFrameProgress(123456, 234567);
    *sheet.startTime -= std::chrono::hours(30);
    sheet.updateElapsedTime();
    processPendingEvents();
    expectNoOverlaps(sheet);
    for (const QLabel *label : sheet.findChildren<QLabel *>())
        EXPECT_LE(label->fontMetrics().horizontalAdvance(label->text()), label->width()) << widgetName(*label);
    sheet.stop();
    processPendingEvents();
}

TEST_P(Looks, AlertsAreNotNarrowColumns) {
    QWidget window;
    window.show();
    const Alert alert{text("alert.direction.spatial2sbs.title"),
                      text("alert.direction.spatial2sbs.message"),
                      {text("button.fix.direction"), text("button.convert.anyway.continue")}};
    MessageBoxPresenter().present(alert, &window, [](int) {});
    processPendingEvents();
    const auto &label = control<QLabel>(window, "qt_msgbox_informativelabel");
    const int line = label.fontMetrics().horizontalAdvance(QString(45, QLatin1Char('n')));
    EXPECT_GE(label.width(), std::min(line, window.screen()->availableSize().width() / 2) * 3 / 4);
    EXPECT_GE(label.height(), label.heightForWidth(label.width())) << "and their text has room";
}

TEST_P(Looks, LongNamesInAlertsAreNotCutOff) {
    QWidget window;
    window.show();
    const std::string name(90, 'm');
    MessageBoxPresenter().present(overwriteQuestion({name + ".mov"}), &window, [](int) {});
    Alert check = spatialCheckAlert(name, {});
    check.informative += name;
    MessageBoxPresenter().present(check, &window, [](int) {});
    processPendingEvents();
    const QList<QLabel *> labels = window.findChildren<QLabel *>();
    ASSERT_GE(labels.size(), 4);
    for (QLabel *label : labels) {
        label->setWordWrap(true);
        const int unbreakable = QLabel(label->text(), label).minimumSizeHint().width();
        EXPECT_GE(label->width(), std::min(unbreakable, label->fontMetrics().horizontalAdvance(QString(24, u'm'))))
            << label->text().toStdString();
    }
}

TEST(DarkLooks, ARadioButtonWithTheFocusKeepsItsEdge) {
    QPalette dark;
    dark.setColor(QPalette::Window, QColor(45, 45, 48));
    dark.setColor(QPalette::WindowText, Qt::white);
    dark.setColor(QPalette::Base, QColor(30, 30, 32));
    ScaledStyle style;
    QStyleOptionButton option;
    option.palette = dark;
    option.rect = QRect(0, 0, 20, 20);
    option.state = QStyle::State_Enabled | QStyle::State_HasFocus | QStyle::State_Off;
    QImage picture(20, 20, QImage::Format_ARGB32_Premultiplied);
    picture.fill(sectionColour(dark));
    QPainter painter(&picture);
    style.drawPrimitive(QStyle::PE_IndicatorRadioButton, &option, &painter, nullptr);
    painter.end();
    EXPECT_GE(contrast(picture.pixelColor(10, 0), sectionColour(dark)), 2.5);
}

/// Whether the picture is a smaller one scaled up: each block of 2 × 2 pixels has one colour.
bool isUpscaled(const QImage &picture) {
    for (int y = 0; y + 1 < picture.height(); y += 2)
        for (int x = 0; x + 1 < picture.width(); x += 2)
            for (const QPoint next : {QPoint(1, 0), QPoint(0, 1), QPoint(1, 1)})
                if (picture.pixel(x, y) != picture.pixel(QPoint(x, y) + next))
                    return false;
    return true;
}

TEST(AlertLooks, SignsAreSharpAtHighResolutions) {
    const ScaledStyle style;
    for (const auto sign : {QStyle::SP_MessageBoxWarning, QStyle::SP_MessageBoxInformation}) {
        const QImage picture = style.standardIcon(sign, nullptr, nullptr).pixmap(QSize(64, 64), 2).toImage();
        EXPECT_EQ(picture.size(), QSize(128, 128)) << sign;
        EXPECT_EQ(picture.devicePixelRatio(), 2) << sign;
        EXPECT_EQ(qAlpha(picture.pixel(0, 0)), 0) << sign;
        EXPECT_EQ(qAlpha(picture.pixel(64, 80)), 255) << sign;
        EXPECT_FALSE(isUpscaled(picture)) << sign;
    }
}

TEST(AlertLooks, ButtonsHaveNoIcons) {
    QApplication::setStyle(new ScaledStyle);
    QMessageBox alert(QMessageBox::Warning, QString(), QStringLiteral("words"));
    alert.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel);
    for (const QAbstractButton *button : alert.buttons())
        EXPECT_TRUE(button->icon().isNull()) << button->text().toStdString();
}

INSTANTIATE_TEST_SUITE_P(Everywhere, Looks, testing::ValuesIn(allTextConditions), conditionsName);

} // namespace
} // namespace lumetwin::test
