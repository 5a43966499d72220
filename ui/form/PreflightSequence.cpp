// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/form/PreflightSequence.h"

#include "ui/alerts/CheckingDialog.h"
#include "ui/form/MainViewController.h"
#include "ui/form/PreflightChecks.h"
#include "ui/widgets/BackgroundThreads.h"
#include "ui/widgets/Localized.h"
#include "ui/widgets/MainThreadQueue.h"
#include "ui/widgets/NumberField.h"

#include <QTimer>

#include <chrono>
#include <future>

namespace lumetwin {

namespace {

// The dialog is shown only when the test takes longer than this, so that it does not appear for a moment only.
constexpr std::chrono::milliseconds dialogDelay{40};
constexpr int refreshInterval = 50; // milliseconds

} // namespace

PreflightSequence::PreflightSequence(MainViewController &form, const FormServices &services)
    : QObject(&form), form_(form), services_(services) {}

PreflightSequence::~PreflightSequence() {
    if (test_)
        test_->cancelled = true;
}

void PreflightSequence::finish() {
    closeCheckingDialog();
    deleteLater();
}

void PreflightSequence::refuseStart(const Alert &alert) {
    services_.alerts->present(alert, &form_, [](int) {});
    finish();
}

void PreflightSequence::start() {
    form_.commitFields();
    checkInputAndOutput();
}

void PreflightSequence::checkInputAndOutput() {
    const ConversionSettings &settings = *form_.settings;
    if (!settings.inputFolderURL && !settings.inputFiles)
        return refuseStart({text("error.no.input.folder")});
    if (!settings.outputFolderURL)
        return refuseStart({text("error.no.output.folder")});
    if (NumberField *invalid = form_.firstInvalidField())
        return refuseInvalidField(*invalid);
    entries_ = inputEntries(settings);
    testCandidates();
}

/// Refuses the start, because a run must not use another value than the form shows.
void PreflightSequence::refuseInvalidField(NumberField &field) {
    const Alert alert{formatted("error.field.format", form_.fieldName(&field).toStdString()),
                      field.expectedInput().toStdString()};
    services_.alerts->present(alert, &form_, [field = QPointer(&field)](int) {
        if (!field)
            return;
        field->setFocus();
        field->selectAll();
    });
    finish();
}

/// Counts the spatial videos on a background thread, because opening a thousand files takes time. The form cannot be
/// used meanwhile.
void PreflightSequence::testCandidates() {
    test_ = std::make_shared<SpatialTest>();
    test_->candidates = candidateVideos(entries_);
    auto ended = std::make_shared<std::promise<void>>();
    std::future<void> endedFuture = ended->get_future();
    const QPointer<PreflightSequence> weak(this);
    BackgroundThreads::shared().run("check", [weak, ended, test = test_, isSpatial = services_.isSpatialVideo,
                                              operations = services_.operations,
                                              settings = std::shared_ptr<const ConversionSettings>(form_.settings)] {
        const VideoProcessor processor(settings, SystemVersion::current(), operations);
        for (const auto &video : test->candidates) {
            if (test->cancelled)
                break;
            if (isSpatial(processor, video))
                ++test->spatial;
            ++test->tested;
        }
        ended->set_value();
        MainThreadQueue::shared().post([weak] {
            if (weak && !weak->test_->cancelled)
                weak->candidatesTested();
        });
    });
    if (endedFuture.wait_for(dialogDelay) != std::future_status::ready)
        showCheckingDialog();
}

void PreflightSequence::showCheckingDialog() {
    checkingDialog_ = new CheckingDialog(static_cast<std::int64_t>(test_->candidates.size()), &form_);
    connect(checkingDialog_, &CheckingDialog::cancelled, this, [this] {
        test_->cancelled = true;
        finish();
    });
    auto *timer = new QTimer(checkingDialog_);
    connect(timer, &QTimer::timeout, checkingDialog_, [dialog = checkingDialog_.data(), test = test_] {
        dialog->setCheckedCount(static_cast<std::int64_t>(test->tested));
    });
    timer->start(refreshInterval);
    checkingDialog_->show();
}

/// The dialog deletes itself later, because this may be called from inside one of its functions.
void PreflightSequence::closeCheckingDialog() {
    if (checkingDialog_)
        checkingDialog_->dismiss();
    checkingDialog_ = nullptr;
}

void PreflightSequence::candidatesTested() {
    closeCheckingDialog();
    const auto question = directionMismatch(form_.settings->direction, test_->candidates.size(), test_->spatial);
    if (!question)
        return checkAVI();
    services_.alerts->present(*question, &form_, [weak = QPointer(this)](int button) {
        if (weak)
            button == 1 ? weak->checkAVI() : weak->finish();
    });
}

void PreflightSequence::checkAVI() {
    if (form_.settings->enableResize || form_.isAVIQuestionAnswered() || !containsAVI(entries_))
        return checkResizeSize();
    const Alert question{text("alert.avi.title"),
                         text("alert.avi.noresize.message"),
                         {text("alert.avi.enable.resize"), text("button.convert.anyway")}};
    services_.alerts->present(question, &form_, [weak = QPointer(this)](int button) {
        if (!weak)
            return;
        if (button != AlertPresenter::dismissed)
            weak->form_.setAVIQuestionAnswered();
        if (button == 1)
            return weak->checkResizeSize();
        if (button == 0)
            weak->form_.turnOnResize();
        weak->finish();
    });
}

void PreflightSequence::checkResizeSize() {
    if (const auto refusal = oddResizeSizeError(*form_.settings))
        return refuseStart(*refusal);
    checkOverwriting();
}

void PreflightSequence::checkOverwriting() {
    const std::vector<std::string> names = existingOutputs(entries_, *form_.settings);
    form_.settings->onExisting = OnExisting::replace;
    if (names.empty())
        return presentProgressSheet();
    services_.alerts->present(overwriteQuestion(names), &form_, [weak = QPointer(this)](int button) {
        if (!weak)
            return;
        const auto answer = overwriteAnswer(button);
        weak->form_.settings->onExisting = answer.value_or(OnExisting::replace);
        answer ? weak->presentProgressSheet() : weak->finish();
    });
}

void PreflightSequence::presentProgressSheet() {
    finish();
    form_.presentProgressSheet();
}

} // namespace lumetwin
