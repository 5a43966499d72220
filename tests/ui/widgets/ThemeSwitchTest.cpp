// SPDX-License-Identifier: GPL-3.0-or-later
// The desktop changes to dark or light while the program runs. The window must then look as if it had started so.
#include "app/Appearance.h"
#include "support/Scripted.h"
#include "ui/files/DropFolderView.h"
#include "ui/form/MainViewController.h"
#include "ui/progress/ProgressViewController.h"
#include "ui/widgets/ColouredButton.h"
#include "ui/widgets/Palettes.h"
#include "ui/widgets/ScaledStyle.h"

#include <QCheckBox>
#include <QDragEnterEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QRadioButton>
#include <QStyle>
#include <QTimer>
#include <QUrl>

#include <gtest/gtest.h>

namespace lumetwin::test {
namespace {

enum class Theme { light, dark };

void switchTo(Theme theme) {
    QApplication::setPalette(theme == Theme::dark ? darkPalette() : QApplication::style()->standardPalette());
    processPendingEvents();
}

void hover(DropFolderView &target) {
    QMimeData mime;
    mime.setUrls({QUrl::fromLocalFile(QStringLiteral("/tmp"))});
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&target, &enter);
}

/// A form in one of its states.
class Window {
public:
    Window() : form(services()) {
        form.resize(720, 960);
        form.show();
        control<QRadioButton>(form, "spatialToSBSButton").setFocus();
        processPendingEvents();
    }

    QImage picture() {
        processPendingEvents();
        return form.grab().toImage();
    }
    QColor backgroundColour(const char *name) {
        return picture().pixelColor(control<QWidget>(form, name).mapTo(&form, QPoint(6, 12)));
    }
    QColor textColour(const char *name) {
        return control<QLabel>(form, name).palette().color(QPalette::Active, QPalette::WindowText);
    }

    void resizeToOddSizes() {
        control<QCheckBox>(form, "enableResizeCheck").setChecked(true);
        control<QLineEdit>(form, "resizeWidthField").setText(QStringLiteral("1921"));
    }
    void turnToSpatial() { control<QRadioButton>(form, "sbsToSpatialButton").setChecked(true); }
    void addInputs() {
        control<DropFolderView>(form, "inputDropView").acceptPaths({"/tmp"});
        hover(control<DropFolderView>(form, "outputDropView"));
    }
    void startBatch() {
        form.presentProgressSheet();
        control<QWidget>(form, "progressSheet").findChild<QTimer *>()->stop();
        form.progressSheet()->updateProgress(1, 2, "a.mov");
        form.progressSheet()->updateFrameProgress(30, 100);
    }
    void finishBatch() {
        startBatch();
        form.progressSheet()->conversionFinished(true, "done");
    }

private:
    static FormServices services() {
        FormServices result = FakeServices().services();
        result.runBatch = [](VideoProcessor &) {};
        return result;
    }

public:
    MainViewController form;
};

struct Scene {
    const char *name;
    void (*enter)(Window &window);
};

void PrintTo(const Scene &scene, std::ostream *stream) {
    *stream << scene.name;
}

class ThemeSwitch : public testing::Test {
protected:
    ThemeSwitch() {
        QApplication::setStyle(new ScaledStyle);
        switchTo(Theme::light);
    }
    ~ThemeSwitch() override {
        switchTo(Theme::light);
        QApplication::setPalette(QPalette());
    }
};

class ThemeSwitchOf : public ThemeSwitch, public testing::WithParamInterface<Scene> {};

TEST_P(ThemeSwitchOf, LooksAsIfStartedInThatTheme) {
    for (const auto &[before, after] : {std::pair{Theme::light, Theme::dark}, {Theme::dark, Theme::light}}) {
        switchTo(before);
        QImage switched;
        {
            Window window;
            GetParam().enter(window);
            const QImage earlier = window.picture();
            switchTo(after);
            switched = window.picture();
            EXPECT_NE(switched, earlier) << "the theme shows";
        }
        Window fresh;
        GetParam().enter(fresh);
        EXPECT_EQ(switched, fresh.picture()) << (after == Theme::dark ? "dark" : "light");
    }
}

INSTANTIATE_TEST_SUITE_P(EveryState, ThemeSwitchOf,
                         testing::Values(Scene{"ToSBS", [](Window &) {}},
                                         Scene{"Resizing", [](Window &window) { window.resizeToOddSizes(); }},
                                         Scene{"ToSpatial", [](Window &window) { window.turnToSpatial(); }},
                                         Scene{"Filled", [](Window &window) { window.addInputs(); }},
                                         Scene{"Working", [](Window &window) { window.startBatch(); }},
                                         Scene{"Finished", [](Window &window) { window.finishBatch(); }}),
                         [](const auto &testInfo) { return std::string(testInfo.param.name); });

TEST_F(ThemeSwitch, AnOpenAlertChangesToo) {
    const auto picture = [](Theme before, Theme after) {
        switchTo(before);
        QWidget window;
        window.show();
        MessageBoxPresenter().present({"Message", "More", {"First", "Second"}}, &window, [](int) {});
        switchTo(after);
        return window.findChild<QMessageBox *>()->grab().toImage();
    };
    EXPECT_EQ(picture(Theme::light, Theme::dark), picture(Theme::dark, Theme::dark));
    EXPECT_EQ(picture(Theme::dark, Theme::light), picture(Theme::light, Theme::light));
    EXPECT_NE(picture(Theme::light, Theme::light), picture(Theme::dark, Theme::dark));
}

TEST_F(ThemeSwitch, ColoursThatFollowThePaletteAreReadable) {
    Window window;
    window.resizeToOddSizes();
    window.addInputs();
    for (const Theme theme : {Theme::light, Theme::dark, Theme::light}) {
        switchTo(theme);
        const QPalette palette = QApplication::palette();
        EXPECT_EQ(isDark(palette), theme == Theme::dark);
        EXPECT_EQ(window.backgroundColour("commonSection").rgba(), sectionColour(palette).rgba());
        EXPECT_EQ(window.textColour("inputPathLabel"), palette.color(QPalette::WindowText)) << "a chosen path";
        EXPECT_EQ(window.textColour("outputPathLabel"), secondaryTextColour(palette)) << "nothing chosen";
        EXPECT_EQ(window.textColour("subtitleLabel"), bandTextColour(palette));
        EXPECT_GE(contrast(window.textColour("subtitleLabel"), window.backgroundColour("headerView")), 4.5);
        EXPECT_EQ(window.textColour("compressionLabel"), accentTextColour(palette));
        EXPECT_EQ(window.textColour("resizeWarningLabel"), warningColour(palette));
        for (const char *label : {"inputPathLabel", "outputPathLabel", "compressionLabel", "resizeWarningLabel"})
            EXPECT_GE(contrast(window.textColour(label), sectionColour(palette)), 4.5) << label;
        EXPECT_EQ(control<ColouredButton>(window.form, "startButton").colour(), accentColour(palette));
    }
}

TEST_F(ThemeSwitch, ColoursOfDropTargetsAndSheetStayTheirOwn) {
    Window window;
    auto &target = control<DropFolderView>(window.form, "outputDropView");
    const auto text = [&] { return control<QLabel>(target, "label").palette().color(QPalette::WindowText).rgba(); };
    for (const Theme theme : {Theme::dark, Theme::light}) {
        switchTo(theme);
        EXPECT_EQ(window.backgroundColour("outputDropView").rgba(), colour(0.1, 0.11, 0.15).rgba());
        EXPECT_GE(contrast(QColor(text()), colour(0.1, 0.11, 0.15)), 4.5);
    }
    hover(target);
    for (const Theme theme : {Theme::dark, Theme::light}) {
        switchTo(theme);
        EXPECT_EQ(window.backgroundColour("outputDropView").rgba(), colour(0.1, 0.25, 0.5).rgba());
    }
    target.acceptPaths({"/tmp"});
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(&target, &leave);
    for (const Theme theme : {Theme::dark, Theme::light}) {
        switchTo(theme);
        EXPECT_EQ(window.backgroundColour("outputDropView").rgba(), colour(0.08, 0.18, 0.1).rgba());
        EXPECT_EQ(text(), colour(0.4, 0.8, 0.4).rgba());
    }
    window.startBatch();
    for (const Theme theme : {Theme::dark, Theme::light}) {
        switchTo(theme);
        EXPECT_EQ(window.backgroundColour("progressSheet").rgba(), colour(0.08, 0.09, 0.12).rgba());
        EXPECT_EQ(window.textColour("titleLabel").rgba(), QApplication::palette().color(QPalette::WindowText).rgba());
        QWidget &sheet = *window.form.progressSheet();
        const auto labelColour = [&](const char *name) {
            return control<QLabel>(sheet, name).palette().color(QPalette::Active, QPalette::WindowText).rgba();
        };
        EXPECT_EQ(labelColour("titleLabel"), greyColour(1).rgba());
        EXPECT_EQ(labelColour("fileProgressLabel"), colour(0.4, 0.85, 0.6).rgba());
        EXPECT_EQ(labelColour("fileCountLabel"), colour(0.5, 0.75, 1.0).rgba());
        EXPECT_EQ(control<ColouredButton>(sheet, "cancelButton").colour().rgba(), colour(0.7, 0.15, 0.15).rgba());
    }
}

} // namespace
} // namespace lumetwin::test
