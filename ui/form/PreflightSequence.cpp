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

// A test that ends this soon is waited for, so that no dialog flashes up.
constexpr std::chrono::milliseconds patience{40};
constexpr int refreshInterval = 50; // milliseconds

} // namespace

PreflightSequence::PreflightSequence(MainViewController &form, const FormServices &services)
    : QObject(&form), form_(form), services_(services) {}

PreflightSequence::~PreflightSequence() {
    if (test_)
        test_->cancelled = true;
}

void PreflightSequence::finish() {
    endWaiting();
    deleteLater();
}

void PreflightSequence::refuse(const Alert &alert) {
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
        return refuse({text("error.no.input.folder")});
    if (!settings.outputFolderURL)
        return refuse({text("error.no.output.folder")});
    if (NumberField *wrong = form_.wrongField())
        return refuseField(*wrong);
    entries_ = inputEntries(settings);
    testCandidates();
}

/// Nothing is converted with another value than the one that the form shows.
void PreflightSequence::refuseField(NumberField &field) {
    const Alert alert{formatted("error.field.format", form_.nameOf(&field).toStdString()), field.takes().toStdString()};
    services_.alerts->present(alert, &form_, [field = QPointer(&field)](int) {
        if (!field)
            return;
        field->setFocus();
        field->selectAll();
    });
    finish();
}

/// Opening a thousand files takes its time: it happens beside the interface thread, with the form out of reach.
void PreflightSequence::testCandidates() {
    test_ = std::make_shared<SpatialTest>();
    test_->candidates = candidateVideos(entries_);
    auto ended = std::make_shared<std::promise<void>>();
    std::future<void> soon = ended->get_future();
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
    if (soon.wait_for(patience) != std::future_status::ready)
        showWaiting();
}

void PreflightSequence::showWaiting() {
    waiting_ = new CheckingDialog(static_cast<std::int64_t>(test_->candidates.size()), &form_);
    connect(waiting_, &CheckingDialog::givenUp, this, [this] {
        test_->cancelled = true;
        finish();
    });
    auto *timer = new QTimer(waiting_);
    connect(timer, &QTimer::timeout, waiting_,
            [dialog = waiting_.data(), test = test_] { dialog->setTested(static_cast<std::int64_t>(test->tested)); });
    timer->start(refreshInterval);
    waiting_->show();
}

/// The dialog deletes itself later: it may be at work when it goes.
void PreflightSequence::endWaiting() {
    if (waiting_)
        waiting_->dismiss();
    waiting_ = nullptr;
}

void PreflightSequence::candidatesTested() {
    endWaiting();
    const auto question = directionMismatch(form_.settings->direction, test_->candidates.size(), test_->spatial);
    if (!question)
        return checkAVI();
    services_.alerts->present(*question, &form_, [weak = QPointer(this)](int button) {
        if (weak)
            button == 1 ? weak->checkAVI() : weak->finish();
    });
}

void PreflightSequence::checkAVI() {
    if (form_.settings->enableResize || form_.aviSettled() || !holdsAVI(entries_))
        return checkResizeSize();
    const Alert question{text("alert.avi.title"),
                         text("alert.avi.noresize.message"),
                         {text("alert.avi.enable.resize"), text("button.convert.anyway")}};
    services_.alerts->present(question, &form_, [weak = QPointer(this)](int button) {
        if (!weak)
            return;
        if (button != AlertPresenter::dismissed)
            weak->form_.settleAVI();
        if (button == 1)
            return weak->checkResizeSize();
        if (button == 0)
            weak->form_.turnOnResize();
        weak->finish();
    });
}

void PreflightSequence::checkResizeSize() {
    if (const auto refusal = oddResizeSize(*form_.settings))
        return refuse(*refusal);
    checkOverwriting();
}

void PreflightSequence::checkOverwriting() {
    const std::vector<std::string> names = existingOutputs(entries_, *form_.settings);
    form_.settings->onExisting = OnExisting::replace;
    if (names.empty())
        return present();
    services_.alerts->present(overwriteQuestion(names), &form_, [weak = QPointer(this)](int button) {
        if (!weak)
            return;
        const auto answer = overwriteAnswer(button);
        weak->form_.settings->onExisting = answer.value_or(OnExisting::replace);
        answer ? weak->present() : weak->finish();
    });
}

void PreflightSequence::present() {
    finish();
    form_.presentProgressSheet();
}

} // namespace lumetwin
