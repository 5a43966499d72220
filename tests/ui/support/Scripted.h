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
#include <vector>

namespace lumetwin::test {

/// What became of a file, without its details. An output of its name where it was converted.
inline FileResult result(const std::filesystem::path &input, FileState state) {
    FileResult result;
    result.input = input;
    result.state = state;
    if (result.wasConverted())
        result.output = input;
    return result;
}

/// Answers alerts from a list, in order, and remembers them. Without an answer an alert stays open.
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

    /// Answers the alert that stayed open, unless what it was shown on is gone.
    void answer(int button) {
        const auto answered = std::exchange(open, {});
        if (anchor && answered)
            answered(button);
    }

    std::function<void(int)> open;
    QPointer<QWidget> anchor;
};

/// Chooses what it is told.
class ScriptedPanels : public FilePanels {
public:
    std::vector<std::filesystem::path> choice;

    void chooseInput(QWidget *, Chosen chosen) override { give(chosen); }
    void chooseOutputFolder(QWidget *, Chosen chosen) override { give(chosen); }
    void chooseFileToCheck(QWidget *, Chosen chosen) override { give(chosen); }

private:
    void give(const Chosen &chosen) const {
        if (!choice.empty())
            chosen(choice);
    }
};

/// A folder of its own that goes with it.
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

/// When a test gives up: late enough for a machine that is busy with other things.
constexpr std::chrono::minutes patience{1};

/// Lets the interface work until the condition holds; false when it does not within `patience`.
template <typename Condition> bool until(Condition holds) {
    QElapsedTimer time;
    time.start();
    while (!holds()) {
        if (std::chrono::milliseconds(time.elapsed()) > patience)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return true;
}

/// Lets the interface do what is waiting.
inline void settle() {
    for (int turn = 0; turn < 5; ++turn) {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

/// Services that convert nothing: no video is spatial, and a run ends at once.
struct Stage {
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

/// Words as they are shown: without the mark of the letter that the Alt key uses, and the letter in brackets.
inline QString plain(QString words) {
    static const QRegularExpression added(QStringLiteral("\\(&.\\)$"));
    return words.remove(added).remove(QLatin1Char('&'));
}

/// The control of an object name; its absence ends the test.
template <typename Widget> Widget &control(QWidget &parent, const char *name) {
    auto *found = parent.findChild<Widget *>(QLatin1String(name));
    if (!found)
        qFatal("no control %s", name);
    return *found;
}

} // namespace lumetwin::test
