// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/Scripted.h"
#include "ui/progress/ProgressViewController.h"
#include "ui/widgets/BackgroundThreads.h"
#include "ui/widgets/BarIndicator.h"
#include "ui/widgets/ColouredButton.h"

#include <QLabel>
#include <QPointer>
#include <QTimer>

#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>

namespace lumetwin::test {

/// A batch waits at this gate until the test opens it.
class Gate {
public:
    void open() {
        const std::lock_guard guard(lock_);
        isOpen_ = true;
        opened_.notify_all();
    }
    void wait() {
        std::unique_lock guard(lock_);
        opened_.wait(guard, [this] { return isOpen_; });
    }

private:
    std::mutex lock_;
    std::condition_variable opened_;
    bool isOpen_ = false;
};

class ProgressSheet : public testing::Test {
protected:
    ~ProgressSheet() override {
        gate->open();
        delete sheet;
        BackgroundThreads::shared().waitForAll(testTimeout);
        processPendingEvents();
    }

    /// Starts a sheet whose batch waits at the gate and then runs the given function.
    void start(BatchRun batch = [](VideoProcessor &) {}) {
        services.alerts = &alerts;
        services.run = [gate = gate, batch](VideoProcessor &processor) {
            gate->wait();
            batch(processor);
        };
        services.runEnded = [ended = ended] { *ended = true; };
        auto settings = std::make_shared<ConversionSettings>();
        settings->outputFolderURL = "/x/out";
        sheet = new ProgressViewController(settings, services);
        QObject::connect(sheet, &ProgressViewController::dismissed, sheet, [this] { ++dismissals; });
        sheet->viewDidLoad();
        sheet->show();
    }
    std::string label(const char *name) { return control<QLabel>(*sheet, name).text().toStdString(); }
    BarIndicator &bar(const char *name) { return control<BarIndicator>(*sheet, name); }
    ColouredButton &button() { return control<ColouredButton>(*sheet, "cancelButton"); }
    bool timerRuns() { return sheet->findChild<QTimer *>()->isActive(); }

    ScriptedAlerts alerts;
    ProgressViewController::Services services;
    std::shared_ptr<Gate> gate = std::make_shared<Gate>();
    std::shared_ptr<bool> ended = std::make_shared<bool>(false);
    QPointer<ProgressViewController> sheet;
    int dismissals = 0;
};

} // namespace lumetwin::test
