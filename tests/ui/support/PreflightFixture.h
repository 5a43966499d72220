// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/Scripted.h"
#include "ui/form/MainViewController.h"
#include "ui/progress/ProgressViewController.h"
#include "ui/widgets/BackgroundThreads.h"

#include <QPushButton>

#include <gtest/gtest.h>

namespace lumetwin::test {

/// A form with its own input and output folder. Its batches do nothing.
class Preflight : public testing::Test {
protected:
    Preflight() {
        services = fakes.services();
        services.runBatch = [](VideoProcessor &) {};
    }
    ~Preflight() override {
        form.reset();
        BackgroundThreads::shared().waitForAll(testTimeout);
        processPendingEvents();
    }

    MainViewController &open() {
        form = std::make_unique<MainViewController>(services);
        form->resize(720, 860);
        form->show();
        form->settings->inputFolderURL = input;
        form->settings->outputFolderURL = output;
        return *form;
    }
    void addInputs(std::initializer_list<const char *> names) const {
        for (const char *name : names)
            std::ofstream(input / name) << "x";
    }
    /// Presses start and waits until an alert or the sheet is shown.
    void start() {
        const std::size_t before = fakes.alerts->shown.size();
        control<QPushButton>(*form, "startButton").click();
        EXPECT_TRUE(waitUntil([&] { return form->progressSheet() || fakes.alerts->shown.size() > before; }));
        processPendingEvents();
    }
    const Alert &alert() { return fakes.alerts->shown.back(); }

    FakeServices fakes;
    FormServices services;
    ScratchFolder scratch;
    std::filesystem::path input = scratch.folder("in");
    std::filesystem::path output = scratch.folder("out");
    std::unique_ptr<MainViewController> form;
};

} // namespace lumetwin::test
