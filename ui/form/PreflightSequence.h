// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/form/FormServices.h"

#include <QObject>
#include <QPointer>

#include <atomic>
#include <memory>
#include <vector>

namespace lumetwin {

class CheckingDialog;
class MainViewController;
class NumberField;
struct Alert;

/// Runs the checks in their order after a press of the start button. Each check stops the start or runs the next one;
/// the last one shows the progress sheet. The object deletes itself at the end.
class PreflightSequence : public QObject {
    Q_OBJECT

public:
    PreflightSequence(MainViewController &form, const FormServices &services);
    ~PreflightSequence() override;

    void start();

private:
    /// Shared by the interface thread and the thread of the spatial test.
    struct SpatialTest {
        std::vector<std::filesystem::path> candidates;
        std::atomic<std::size_t> tested{0};
        std::atomic<std::size_t> spatial{0};
        std::atomic<bool> cancelled{false};
    };

    void checkInputAndOutput();
    void testCandidates();
    void showCheckingDialog();
    void closeCheckingDialog();
    void candidatesTested();
    void checkAVI();
    void checkResizeSize();
    void checkOverwriting();
    void presentProgressSheet();
    void refuseStart(const Alert &alert);
    void refuseInvalidField(NumberField &field);
    void finish();

    MainViewController &form_;
    FormServices services_;
    std::vector<std::filesystem::path> entries_;
    std::shared_ptr<SpatialTest> test_;
    QPointer<CheckingDialog> checkingDialog_;
};

} // namespace lumetwin
