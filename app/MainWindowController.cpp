// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/MainWindowController.h"

#include "app/ApplicationIcon.h"
#include "app/SidePanel.h"
#include "app/WindowSizes.h"
#include "ui/desktop/DesktopPresence.h"
#include "ui/desktop/FileManager.h"
#include "ui/files/DroppedFiles.h"
#include "ui/files/FilesPanel.h"
#include "ui/form/MainViewController.h"
#include "ui/progress/ProgressTexts.h"
#include "ui/progress/ProgressViewController.h"
#include "ui/widgets/Localized.h"
#include "worker/ConfinedOperations.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QDialog>
#include <QDragEnterEvent>
#include <QFile>
#include <QMenuBar>
#include <QMimeData>
#include <QScreen>
#include <QShortcut>
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

FilesPanelServices panelServices(const FormServices &services) {
    return {.operations = services.operations,
            .openFile =
                [](const std::filesystem::path &file) {
                    QDesktopServices::openUrl(QUrl::fromLocalFile(QFile::decodeName(file.c_str())));
                },
            .showInFolder =
                [show = services.showInFolder](const std::filesystem::path &file) {
                    if (show)
                        show(file.parent_path(), {file});
                },
            .chooseReport =
                [panels = services.panels](QWidget *parent, const auto &chosen) {
                    panels->chooseReport(parent, [chosen](const auto &paths) { chosen(paths.front()); });
                }};
}

} // namespace

void MainWindow::closeEvent(QCloseEvent *event) {
    event->setAccepted(!shouldClose || shouldClose());
}

void MainWindow::dragEnterEvent(QDragEnterEvent *event) {
    if (holdsFiles(*event->mimeData()))
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent *event) {
    event->setDropAction(Qt::CopyAction);
    event->setAccepted(receiveFiles(*event->mimeData(), this, filesDropped));
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
      files_(new FilesPanel(form_->settings, panelServices(services_))),
      side_(new SidePanel(window_.get(), form_, files_)),
      presence_(std::make_unique<DesktopPresence>(window_.get(), QLatin1String(applicationId))) {
    window_->setWindowTitle(title);
    window_->setCentralWidget(side_->content());
    form_->focusFirstControl(); // in its new parent
    window_->setContextMenuPolicy(Qt::NoContextMenu);
    window_->shouldClose = [this] { return windowShouldClose(); };
    window_->filesDropped = [this](const auto &files) { return form_->addToInput(files); };
    connectBatch();
    connectFiles();
}

void MainWindowController::connectBatch() {
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

void MainWindowController::connectFiles() {
    connect(form_, &MainViewController::filesPanelAsked, this, &MainWindowController::toggleFiles);
    connect(files_, &FilesPanel::closeAsked, side_, &SidePanel::close);
    connect(side_, &SidePanel::changed, this, [this](bool open, bool beside) {
        form_->showFilesPanelState(open);
        if (!open && !form_->isAncestorOf(window_->focusWidget()))
            form_->focusFirstControl();
        files_->setReplacesForm(!beside);
        files_->setActive(open);
    });
    connect(form_, &MainViewController::inputChanged, files_, &FilesPanel::setInput);
    connect(form_, &MainViewController::inputChanged, this, [this] {
        if (side_->hasRoomForBoth())
            side_->open();
    });
    connect(form_, &MainViewController::settingsChanged, files_, &FilesPanel::settingsChanged);
    connect(form_, &MainViewController::batchStarted, files_, &FilesPanel::runBegan);
    connect(form_, &MainViewController::batchStarted, this, [this] {
        form_->progressSheet()->setFrames(framesOfRun(files_->model().rows(), files_->model().settings()));
    });
    connect(form_, &MainViewController::startRefused, files_, &FilesPanel::takeBackIn);
    connect(form_, &MainViewController::fileBegan, files_, &FilesPanel::fileBegan);
    connect(form_, &MainViewController::fileProgressed, files_, &FilesPanel::fileProgressed);
    connect(form_, &MainViewController::fileEnded, files_, &FilesPanel::fileEnded);
    connect(form_, &MainViewController::batchLeft, files_, &FilesPanel::runEnded);
    connect(files_, &FilesPanel::leftOutChanged, form_, &MainViewController::setLeftOut);
    connect(files_, &FilesPanel::swapAsked, form_, &MainViewController::setSwapped);
    connect(files_, &FilesPanel::adjustmentAsked, form_, &MainViewController::setDisparityAdjustment);
    connect(files_, &FilesPanel::turnDirectionAsked, form_, &MainViewController::turnDirection);
    connect(files_, &FilesPanel::startAsked, form_, [this] {
        if (!side_->isBeside())
            side_->close(); // the progress is shown on the form
        form_->startConversion();
    });
    auto *toggle = new QShortcut(Qt::Key_F9, window_.get());
    connect(toggle, &QShortcut::activated, this, &MainWindowController::toggleFiles);
}

void MainWindowController::toggleFiles() {
    if (side_->isOpen())
        return side_->close();
    side_->open();
    files_->focusFiles();
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
    services_.alerts->present(quitQuestion(), stopQuestionParent_, [this](int button) {
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
