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

/// One press of the start button: the checks in their order. Each stops the start or lets the next one run; the last
/// presents the progress sheet. It destroys itself at its end.
class PreflightSequence : public QObject {
    Q_OBJECT

public:
    PreflightSequence(MainViewController &form, const FormServices &services);
    ~PreflightSequence() override;

    void start();

private:
    /// What the interface thread and the thread of the spatial test share.
    struct SpatialTest {
        std::vector<std::filesystem::path> candidates;
        std::atomic<std::size_t> tested{0};
        std::atomic<std::size_t> spatial{0};
        std::atomic<bool> cancelled{false};
    };

    void checkInputAndOutput();
    void testCandidates();
    void showWaiting();
    void endWaiting();
    void candidatesTested();
    void checkAVI();
    void checkResizeSize();
    void checkOverwriting();
    void present();
    void refuse(const Alert &alert);
    void refuseField(NumberField &field);
    void finish();

    MainViewController &form_;
    FormServices services_;
    std::vector<std::filesystem::path> entries_;
    std::shared_ptr<SpatialTest> test_;
    QPointer<CheckingDialog> waiting_;
};

} // namespace lumetwin
