// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/MainWindowController.h"

#include "app/ApplicationIcon.h"
#include "app/WindowSizes.h"
#include "ui/desktop/DesktopPresence.h"
#include "ui/desktop/FileManager.h"
#include "ui/form/MainViewController.h"
#include "ui/progress/ProgressViewController.h"
#include "ui/widgets/Localized.h"
#include "worker/ConfinedOperations.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QFile>
#include <QMenuBar>
#include <QScreen>
#include <QUrl>

namespace lumetwin {

namespace {

const QString title = QStringLiteral("Lumetwin");

std::filesystem::path argumentPath(const QString &argument) {
    const QUrl url(argument);
    const QString file = url.isLocalFile() ? url.toLocalFile() : argument;
    std::filesystem::path path = std::filesystem::absolute(QFile::encodeName(file).toStdString()).lexically_normal();
    return path.has_filename() ? path : path.parent_path();
}

} // namespace

void MainWindow::closeEvent(QCloseEvent *event) {
    event->setAccepted(!shouldClose || shouldClose());
}

FormServices MainWindowController::standardServices() {
    FormServices services;
    services.operations = worker::confinedOperations();
    services.showInFolder = showInFileManager;
    return services;
}

MainWindowController::MainWindowController(FormServices services)
    : services_(std::move(services)), window_(std::make_unique<MainWindow>()),
      form_(new MainViewController(services_, window_.get())),
      presence_(std::make_unique<DesktopPresence>(window_.get(), QLatin1String(applicationId))) {
    window_->setWindowTitle(title);
    window_->setCentralWidget(form_);
    window_->setContextMenuPolicy(Qt::NoContextMenu);
    window_->shouldClose = [this] { return windowShouldClose(); };
    DesktopPresence *presence = presence_.get();
    connect(form_, &MainViewController::batchStarted, presence, &DesktopPresence::batchStarted);
    connect(form_, &MainViewController::batchProgressed, presence, &DesktopPresence::batchProgressed);
    connect(form_, &MainViewController::batchFinished, presence, &DesktopPresence::batchFinished);
    connect(form_, &MainViewController::batchEnded, presence, &DesktopPresence::batchEnded);
    connect(form_, &MainViewController::batchStarted, this, [this] { showProgress(0); });
    connect(form_, &MainViewController::batchProgressed, this, &MainWindowController::showProgress);
    connect(form_, &MainViewController::batchEnded, this, [this] {
        window_->setWindowTitle(title);
        delete stopQuestionParent_;
    });
}

MainWindowController::~MainWindowController() {
    presence_.reset();
}

void MainWindowController::showWindow() {
    const QRect available = window_->screen()->availableGeometry();
    const WindowSizes sizes =
        windowSizes(PointScale::current(), available.size(), window_->menuBar()->sizeHint().height());
    window_->setMinimumSize(sizes.minimum);
    window_->resize(sizes.initial);
    window_->move(available.center() - window_->rect().center());
    window_->show();
}

void MainWindowController::showProgress(double fraction) {
    window_->setWindowTitle(toQString(formatted("window.progress.format", static_cast<std::int64_t>(fraction * 100))));
}

bool MainWindowController::windowShouldClose() {
    if (!form_->isConverting())
        return true;
    if (stopQuestionParent_)
        return false;
    stopQuestionParent_ = new QWidget(window_.get());
    Alert question{
        text("alert.quit.title"), text("alert.quit.message"), {text("button.stop.quit"), text("button.continue")}};
    question.defaultButton = 1;
    services_.alerts->present(question, stopQuestionParent_, [this](int button) {
        delete stopQuestionParent_;
        if (button != 0)
            return;
        if (form_->isConverting())
            form_->progressSheet()->stop();
        window_->close();
    });
    return false;
}

void MainWindowController::closeWindow() {
    // Closing one dialog may delete others.
    QList<QPointer<QDialog>> dialogs;
    if (!form_->isConverting())
        for (QDialog *dialog : window_->findChildren<QDialog *>())
            dialogs << dialog;
    for (const QPointer<QDialog> &dialog : dialogs)
        if (dialog && dialog->isVisible())
            dialog->close();
    window_->close();
}

void MainWindowController::showMessage(const Alert &alert) {
    services_.alerts->present(alert, window_.get(), [](int) {});
}

void MainWindowController::openInput(const QStringList &arguments) {
    std::vector<std::filesystem::path> paths;
    for (const QString &argument : arguments)
        paths.push_back(argumentPath(argument));
    if (!paths.empty())
        form_->openInput(paths);
}

} // namespace lumetwin
