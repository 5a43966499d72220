// SPDX-License-Identifier: GPL-3.0-or-later
// Saves a picture of every state of the window: both themes, both languages, several text sizes.
// screenshots FOLDER [--theme light|dark|contrast|contrast-dark] [--language en|ja] [--text PERCENT] [--screen
// WIDTHxHEIGHT]
#include "app/AboutPanel.h"
#include "app/AppDelegate.h"
#include "app/Appearance.h"
#include "app/ApplicationIcon.h"
#include "app/Language.h"
#include "app/MainMenu.h"
#include "app/MainWindowController.h"
#include "app/SidePanel.h"
#include "app/WindowSizes.h"
#include "support/Scripted.h"
#include "tests/app/DrawnInput.h"
#include "ui/alerts/CheckingDialog.h"
#include "ui/files/DropFolderView.h"
#include "ui/files/FilesPanel.h"
#include "ui/files/PreviewLoader.h"
#include "ui/form/MainViewController.h"
#include "ui/form/PreflightChecks.h"
#include "ui/form/SpatialCheck.h"
#include "ui/progress/ProgressTexts.h"
#include "ui/progress/ProgressViewController.h"
#include "ui/widgets/BackgroundThreads.h"
#include "ui/widgets/Localized.h"
#include "ui/widgets/ScaledStyle.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCommandLineParser>
#include <QDir>
#include <QDragEnterEvent>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>
#include <QUrl>

#include <iostream>

namespace lumetwin::test {
namespace {

namespace fs = std::filesystem;

class Photographer {
public:
    Photographer(QString folder, QSize screen) : folder_(std::move(folder)), screen_(screen) { QDir().mkpath(folder_); }

    void form() {
        Window window(*this, {});
        window.saveWindow("form");
        control<QRadioButton>(window.form(), "sbsToSpatialButton").click();
        window.saveWindow("form-to-spatial");
        control<QCheckBox>(window.form(), "enableResizeCheck").click();
        control<QLineEdit>(window.form(), "resizeWidthField").setText(QStringLiteral("1921"));
        window.saveWindow("form-to-spatial-odd");
        control<QRadioButton>(window.form(), "spatialToSBSButton").click();
        window.saveWindow("form-resize-odd");
        control<QLineEdit>(window.form(), "resizeWidthField").setText(QStringLiteral("1000"));
        window.saveWindow("form-resize-not16");
        window.scrollDown();
        window.saveWindow("form-resize-not16-lower");
        control<QRadioButton>(window.form(), "sbsToSpatialButton").click();
        control<QLineEdit>(window.form(), "resizeWidthField").setText(QStringLiteral("1920"));
        window.saveWindow("form-to-spatial-resize");
        control<QLineEdit>(window.form(), "fovField").setText(QStringLiteral("200"));
        control<QLineEdit>(window.form(), "baselineField").setText(QStringLiteral("63"));
        window.saveWindow("form-to-spatial-wrong-value");
        window.window()->resize(window.window()->minimumSize());
        window.saveWindow("form-smallest");
    }

    void drops() {
        Window window(*this, {});
        auto &input = control<DropFolderView>(window.form(), "inputDropView");
        QMimeData mime;
        mime.setUrls({QUrl::fromLocalFile(QStringLiteral("/tmp"))});
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&input, &enter);
        window.saveWindow("drop-hover");
        QDragLeaveEvent leave;
        QCoreApplication::sendEvent(&input, &leave);
        window.form().openInput({"/home/hana/Videos/Holiday in Kyoto 2026.mov", "/home/hana/Videos/寺.heic"});
        window.chooseOutput("/home/hana/Videos/Side by side");
        input.setFocus();
        window.saveWindow("filled");
        window.form().openInput({"/home/hana/Videos/" + std::string(180, 'n') + ".mov"});
        window.saveWindow("filled-long-name");
        control<DropFolderView>(window.form(), "outputDropView").acceptPaths({"/tmp/a.mov", "/tmp/b.mov"});
        window.saveWindow("drop-refused");
    }

    void alerts() {
        ConversionSettings settings;
        settings.enableResize = true;
        settings.resizeWidth = 1921;
        alert("alert-no-input", {text("error.no.input.folder")});
        alert("alert-no-output", {text("error.no.output.folder")});
        alert("alert-direction-to-sbs", *directionMismatch(ConversionDirection::spatialToSBS, 2, 0));
        alert("alert-direction-to-spatial", *directionMismatch(ConversionDirection::sbsToSpatial, 2, 1));
        alert("alert-odd-size", *oddResizeSizeError(settings));
        alert("alert-avi-chosen", {text("alert.avi.title"),
                                   text("alert.avi.message"),
                                   {text("alert.avi.enable.resize"), text("button.continue")}});
        alert("alert-avi-start", {text("alert.avi.title"),
                                  text("alert.avi.noresize.message"),
                                  {text("alert.avi.enable.resize"), text("button.convert.anyway")}});
        alert("alert-overwrite", overwriteQuestion({"arrival_sbs.mp4", "bridge_sbs.mp4", "寺_sbs.jpg"}));
        alert("alert-overwrite-long", overwriteQuestion({"arrival_sbs.mp4", "橋_sbs.jpg",
                                                         std::string(90, 'm') + "_sbs.mp4", "d", "e", "x", "y"}));
        alert("alert-quit", quitQuestion());
        const SpatialFinding finding{true, {63.4, 19.24, 2.0}};
        alert("alert-unwritable", {formatted("error.output.unwritable.format", std::string("Archive")),
                                   text("error.output.unwritable.message")});
        alert("alert-wrong-value", {formatted("error.field.format", text("option.fov")),
                                    formatted("field.range.format", std::string("10"), std::string("180"))});
        BatchResult skipped{.success = true, .details = "a.mov: x\n", .skipped = 3};
        skipped.skipReasons = {text("status.skipped.not.spatial")};
        alert("alert-all-skipped", resultAlert(skipped));
        alert("alert-nothing-to-convert", resultAlert({.message = text("error.no.media.files")}));
        alert("alert-check-spatial", spatialCheckAlert("/x/clip.mov", finding));
        alert("alert-check-photo", spatialCheckAlert("/x/pair.HEIC", {true, {}}));
        alert("alert-check-not-spatial", spatialCheckAlert("/x/clip.mov", {}));
    }

    void sheet() {
        FakeServices fakes;
        FormServices services = fakes.services();
        services.alerts = std::make_shared<MessageBoxPresenter>();
        services.runBatch = [](VideoProcessor &) {};
        services.showInFolder = [](const fs::path &, const std::vector<fs::path> &) {};
        Window window(*this, services);
        window.form().presentProgressSheet();
        ProgressViewController &sheet = *window.form().progressSheet();
        window.saveWindow("sheet-starting");
        sheet.updateProgress(1, 4,
                             "Holiday in Kyoto 2026, a name that is rather longer than the line has room for.mov");
        window.saveWindow("sheet-file-begins");
        sheet.updateProgress(1, 4, "Holiday in Kyoto 2026.mov");
        sheet.updateFrameProgress(832, 1800);
        *sheet.startTime -= std::chrono::seconds(83);
        sheet.updateElapsedTime();
        window.saveWindow("sheet-running");
        sheet.showSkipped("arrival.mov", text("status.skipped.not.spatial"));
        window.saveWindow("sheet-skipped");
        sheet.cancelTapped();
        window.saveDialog("sheet-stop-question");
        FileResult converted = result("/x/a.mov", FileState::convertedWithWarnings);
        converted.output = "/x/a_sbs.mp4";
        converted.warnings = {{WarningKind::speedChanged, {4.2}}};
        sheet.runningProcessor()->onResult(converted);
        FileResult failed = result("/x/b.mov", FileState::failed);
        failed.reason = "the file ends too early";
        sheet.runningProcessor()->onResult(failed);
        processPendingEvents();
        sheet.conversionFinished(false, formatted("status.complete", std::int64_t(3), std::int64_t(1)));
        processPendingEvents();
        window.waitForButtons();
        window.saveDialog("sheet-finished-problems");
        window.closeDialogs();
        window.saveWindow("sheet-finished");
    }

    void checking() {
        Window window(*this, {});
        auto *dialog = new CheckingDialog(240, &window.form());
        dialog->setCheckedCount(91);
        dialog->show();
        window.saveDialog("checking");
        dialog->dismiss();
    }

    /// The panel of files, with drawn photos.
    void files() {
        ScratchFolder input, output;
        drawInput(input.path);
        FormServices services = FakeServices().services();
        services.runBatch = [](VideoProcessor &) {};
        Window window(*this, services);
        window.chooseOutput(output.path);
        window.makeRoomForFiles();
        window.saveWindow("files-none");
        control<QRadioButton>(window.form(), "sbsToSpatialButton").click();
        window.form().openInput({input.path});
        window.waitForLooks();
        window.saveWindow("files-list");
        control<QComboBox>(window.files(), "previewModePopup").setCurrentIndex(static_cast<int>(PreviewMode::anaglyph));
        control<QPushButton>(window.files(), "filesLeaveOutButton").click();
        window.waitForLooks();
        window.saveWindow("files-left-out-anaglyph");
        window.files().runBegan();
        FileResult converted = result(input.path / "Arrival.png", FileState::converted);
        converted.bytes = 2'400'000;
        converted.seconds = 3;
        window.files().fileEnded(converted);
        window.files().fileBegan("Bridge, from the other side of the river.png");
        window.files().fileProgressed(0.4);
        window.waitForLooks();
        window.saveWindow("files-running");
        FileResult failed = result(input.path / "Bridge, from the other side of the river.png", FileState::failed);
        failed.reason = "the disk is full";
        window.files().fileEnded(failed);
        window.files().fileEnded(result(input.path / "寺.png", FileState::notReached));
        window.files().runEnded();
        window.waitForLooks();
        window.saveWindow("files-results");
    }

    void about() {
        Window window(*this, {});
        AboutPanel::orderFront(window.window());
        window.saveDialog("about");
        window.closeDialogs();
        const auto menus = window.window()->menuBar()->actions();
        if (!menus.isEmpty())
            save(menus.first()->menu()->grab(), "menu");
    }

private:
    /// The whole window at the size that it has on a screen.
    class Window {
    public:
        Window(Photographer &photographer, const std::optional<FormServices> &services)
            : photographer_(photographer), controller_(withPanels(services.value_or(FakeServices().services()))) {
            installMainMenu(*window(), delegate_);
            const WindowSizes sizes =
                windowSizes(PointScale::current(), photographer.screen_, window()->menuBar()->sizeHint().height());
            window()->setMinimumSize(sizes.minimum);
            window()->resize(sizes.initial);
            window()->show();
            processPendingEvents();
        }

        QMainWindow *window() const { return controller_.window(); }
        MainViewController &form() const { return *controller_.form(); }

        FilesPanel &files() const { return *controller_.filesPanel(); }

        void makeRoomForFiles() const {
            const int width = PointScale::current().horizontal(1280);
            if (width <= photographer_.screen_.width())
                window()->resize(width, window()->height());
            controller_.sidePanel()->open();
        }
        /// Waits until all files were looked at, and until the preview is drawn.
        void waitForLooks() const {
            for (int turn = 0; turn < 3; ++turn) {
                processPendingEvents();
                BackgroundThreads::shared().waitForAll(testTimeout);
                QTest::qWait(120); // totals and advice follow a little later
            }
        }
        void chooseOutput(const fs::path &folder) const {
            panels_->choice = {folder};
            control<QPushButton>(form(), "outputSelectBtn").click();
        }
        void scrollDown() const {
            auto *bar = control<QScrollArea>(form(), "scrollView").verticalScrollBar();
            bar->setValue(bar->maximum());
        }
        void saveWindow(const char *name) const {
            processPendingEvents();
            photographer_.save(window()->grab(), name);
        }
        /// Saves the window together with the dialog that is open on it.
        void saveDialog(const char *name) const {
            processPendingEvents();
            QPixmap picture = window()->grab();
            for (QDialog *dialog : window()->findChildren<QDialog *>())
                if (dialog->isVisible()) {
                    const QPixmap front = dialog->grab();
                    const QSize size = front.deviceIndependentSize().toSize();
                    QPainter painter(&picture);
                    const QPoint place((window()->width() - size.width()) / 2,
                                       (window()->height() - size.height()) / 2);
                    painter.drawPixmap(place, front);
                    painter.setPen(Qt::gray);
                    painter.drawRect(QRect(place, size));
                }
            photographer_.save(picture, name);
        }
        /// Waits until an alert that follows another one accepts clicks.
        void waitForButtons() const {
            const auto *alert = window()->findChild<QMessageBox *>();
            if (!alert || !waitUntil([alert] { return alert->buttons().constFirst()->isEnabled(); }))
                qFatal("an alert that cannot be answered");
        }
        void closeDialogs() const {
            for (QDialog *dialog : window()->findChildren<QDialog *>())
                dialog->close();
            processPendingEvents();
        }

    private:
        FormServices withPanels(FormServices services) const {
            services.panels = panels_;
            return services;
        }

        Photographer &photographer_;
        std::shared_ptr<ScriptedPanels> panels_ = std::make_shared<ScriptedPanels>();
        AppDelegate delegate_;
        MainWindowController controller_;
    };

    void alert(const char *name, const Alert &alert) {
        Window window(*this, {});
        MessageBoxPresenter().present(alert, window.window(), [](int) {});
        window.saveDialog(name);
    }

    void save(const QPixmap &picture, const char *name) const {
        if (isBlank(picture.toImage()))
            qFatal("%s is blank", name);
        const QString file = QDir(folder_).filePath(QLatin1String(name) + QStringLiteral(".png"));
        constexpr int compressed = 85; // a little: zlib's level 1
        if (!picture.save(file, nullptr, compressed))
            qFatal("cannot write %s", qPrintable(file));
    }

    /// Whether a picture shows nothing: all its pixels have one colour.
    static bool isBlank(const QImage &picture) {
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                if (picture.pixel(x, y) != picture.pixel(0, 0))
                    return false;
        return true;
    }

    QString folder_;
    QSize screen_;
};

QString option(QCommandLineParser &parser, const char *name, const char *standard) {
    const QString key = QLatin1String(name);
    return parser.value(key).isEmpty() ? QLatin1String(standard) : parser.value(key);
}

void takePictures(QCommandLineParser &parser) {
    const QString theme = option(parser, "theme", "light"), language = option(parser, "language", "en");
    const QStringList screen = option(parser, "screen", "1920x1080").split(QLatin1Char('x'));
    setTextLocale(language.toStdString());
    translateToolkit();
    QApplication::setStyle(new ScaledStyle);
    if (theme == QLatin1String("dark"))
        QApplication::setPalette(darkPalette());
    else if (theme.startsWith(QLatin1String("contrast")))
        QApplication::setPalette(highContrastPalette(theme == QLatin1String("contrast-dark")));
    QFont font = QApplication::font();
    font.setPointSizeF(10.0 * option(parser, "text", "100").toDouble() / 100);
    QApplication::setFont(font);
    Photographer photographer(parser.positionalArguments().value(0),
                              QSize(screen.value(0).toInt(), screen.value(1).toInt()));
    photographer.form();
    photographer.drops();
    photographer.alerts();
    photographer.sheet();
    photographer.checking();
    photographer.files();
    photographer.about();
}

} // namespace
} // namespace lumetwin::test

int main(int argc, char **argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("DBUS_SESSION_BUS_ADDRESS", "");
    QApplication application(argc, argv);
    QApplication::setWindowIcon(lumetwin::applicationIcon());
    QCommandLineParser parser;
    for (const char *name : {"theme", "language", "text", "screen"})
        parser.addOption({QLatin1String(name), QString(), QLatin1String(name)});
    parser.process(application);
    if (parser.positionalArguments().size() != 1) {
        std::cerr << "usage: screenshots FOLDER [--theme light|dark|contrast|contrast-dark] [--language en|ja] [--text "
                     "PERCENT] "
                     "[--screen WIDTHxHEIGHT]\n";
        return 2;
    }
    lumetwin::test::takePictures(parser);
    return 0;
}
