// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/Scripted.h"
#include "ui/form/MainViewController.h"
#include "ui/progress/ProgressViewController.h"
#include "ui/widgets/BackgroundThreads.h"

#include <QPushButton>

#include <gtest/gtest.h>

namespace lumetwin::test {

/// A form with folders of its own whose batches do nothing.
class Preflight : public testing::Test {
protected:
    Preflight() {
        services = stage.services();
        services.runBatch = [](VideoProcessor &) {};
    }
    ~Preflight() override {
        form.reset();
        BackgroundThreads::shared().waitForAll(patience);
        settle();
    }

    MainViewController &open() {
        form = std::make_unique<MainViewController>(services);
        form->resize(720, 860);
        form->show();
        form->settings->inputFolderURL = input;
        form->settings->outputFolderURL = output;
        return *form;
    }
    void put(std::initializer_list<const char *> names) const {
        for (const char *name : names)
            std::ofstream(input / name) << "x";
    }
    /// Presses start and waits until an alert or the sheet has come.
    void start() {
        const std::size_t before = stage.alerts->shown.size();
        control<QPushButton>(*form, "startButton").click();
        EXPECT_TRUE(until([&] { return form->progressSheet() || stage.alerts->shown.size() > before; }));
        settle();
    }
    const Alert &alert() { return stage.alerts->shown.back(); }

    Stage stage;
    FormServices services;
    ScratchFolder scratch;
    std::filesystem::path input = scratch.folder("in");
    std::filesystem::path output = scratch.folder("out");
    std::unique_ptr<MainViewController> form;
};

} // namespace lumetwin::test
