// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/FileResult.h"
#include "ui/alerts/AlertPresenter.h"
#include "ui/files/FilePanels.h"
#include "ui/form/FormServices.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QPointer>
#include <QRegularExpression>
#include <QWidget>

#include <chrono>
#include <deque>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace lumetwin::test {

/// The result of a file without details. A converted file has an output of the same name.
inline FileResult result(const std::filesystem::path &input, FileState state) {
    FileResult result;
    result.input = input;
    result.state = state;
    if (result.wasConverted())
        result.output = input;
    return result;
}

/// Answers alerts from a list, in order, and records them. When the list is empty, an alert stays open.
class ScriptedAlerts : public AlertPresenter {
public:
    std::vector<Alert> shown;
    std::deque<int> answers;

    void present(const Alert &alert, QWidget *parent, std::function<void(int)> answered) override {
        shown.push_back(alert);
        anchor = parent;
        if (answers.empty()) {
            open = std::move(answered);
            return;
        }
        const int answer = answers.front();
        answers.pop_front();
        answered(answer);
    }

    /// Answers the open alert, unless the widget that it was shown on is destroyed.
    void answer(int button) {
        const auto answered = std::exchange(open, {});
        if (anchor && answered)
            answered(button);
    }

    std::function<void(int)> open;
    QPointer<QWidget> anchor;
};

/// Chooses the paths in `choice`.
class ScriptedPanels : public FilePanels {
public:
    std::vector<std::filesystem::path> choice;

    void chooseInput(QWidget *, ChosenCallback chosen) override { callWithChoice(chosen); }
    void chooseOutputFolder(QWidget *, ChosenCallback chosen) override { callWithChoice(chosen); }
    void chooseFileToCheck(QWidget *, ChosenCallback chosen) override { callWithChoice(chosen); }
    void chooseReport(QWidget *, ChosenCallback chosen) override { callWithChoice(chosen); }

private:
    void callWithChoice(const ChosenCallback &chosen) const {
        if (!choice.empty())
            chosen(choice);
    }
};

/// A temporary folder that the destructor removes.
class ScratchFolder {
public:
    ScratchFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "lumetwin-ui-XXXXXX").string();
        path = mkdtemp(name.data());
    }
    ~ScratchFolder() { std::filesystem::remove_all(path); }
    ScratchFolder(const ScratchFolder &) = delete;
    ScratchFolder &operator=(const ScratchFolder &) = delete;

    std::filesystem::path file(const std::string &name) const {
        std::ofstream(path / name) << "x";
        return path / name;
    }
    std::filesystem::path folder(const std::string &name) const {
        std::filesystem::create_directories(path / name);
        return path / name;
    }

    std::filesystem::path path;
};

/// A wait that takes longer than this fails. Long enough for a busy machine.
constexpr std::chrono::minutes testTimeout{1};

/// Processes events until the condition is true. Returns false when that takes longer than `testTimeout`.
template <typename Condition> bool waitUntil(Condition holds) {
    QElapsedTimer time;
    time.start();
    while (!holds()) {
        if (std::chrono::milliseconds(time.elapsed()) > testTimeout)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        // Without events processEvents returns at once, whatever its time: leave the processor to what is waited for.
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

/// Processes pending events, including deferred deletions.
inline void processPendingEvents() {
    for (int turn = 0; turn < 5; ++turn) {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

/// Fake services: a video is spatial when its name begins with "spatial", and a run ends at once without converting.
struct FakeServices {
    std::shared_ptr<ScriptedAlerts> alerts = std::make_shared<ScriptedAlerts>();
    std::shared_ptr<ScriptedPanels> panels = std::make_shared<ScriptedPanels>();

    FormServices services() const {
        FormServices result;
        result.alerts = alerts;
        result.panels = panels;
        result.runBatch = [](VideoProcessor &processor) { processor.onComplete(true, "Converted: 0, failed: 0"); };
        result.isSpatialVideo = [](const VideoProcessor &, const std::filesystem::path &file) {
            return file.filename().string().starts_with("spatial");
        };
        result.inspect = [](const std::filesystem::path &) { return SpatialFinding{}; };
        return result;
    }
};

/// A control's text without the mark of its Alt letter, and without an Alt letter in brackets.
inline QString withoutMnemonic(QString words) {
    static const QRegularExpression added(QStringLiteral("\\(&.\\)$"));
    return words.remove(added).remove(QLatin1Char('&'));
}

/// The control with that object name. Ends the program when there is none.
template <typename Widget> Widget &control(QWidget &parent, const char *name) {
    auto *found = parent.findChild<Widget *>(QLatin1String(name));
    if (!found)
        qFatal("no control %s", name);
    return *found;
}

} // namespace lumetwin::test
