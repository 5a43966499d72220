// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/files/FileLooks.h"

#include "engine/texts/ProcessorError.h"
#include "ui/files/PreviewImages.h"
#include "ui/widgets/BackgroundThreads.h"
#include "ui/widgets/Localized.h"
#include "ui/widgets/MainThreadQueue.h"

#include <QPointer>

#include <atomic>
#include <map>
#include <mutex>

namespace lumetwin {

namespace fs = std::filesystem;

namespace {

using Waiting = std::map<fs::path, FileRow>; ///< by file

} // namespace

/// Shared by the interface thread and the thread of the looks.
struct FileLooks::Task {
    MediaOperations operations;
    std::shared_ptr<const ConversionSettings> settings;
    std::set<fs::path> known;
    QPointer<FileLooks> owner; // used on the interface thread only
    std::atomic<bool> cancelled{false};

    std::mutex lock;
    std::set<fs::path> preferred; // guarded by lock

    /// Takes a preferred file out of the ones that wait, or else the first one.
    FileRow next(Waiting &waiting) {
        const std::scoped_lock guard(lock);
        auto chosen = waiting.begin();
        for (const fs::path &file : preferred)
            if (const auto found = waiting.find(file); found != waiting.end()) {
                chosen = found;
                break;
            }
        FileRow row = std::move(chosen->second);
        waiting.erase(chosen);
        return row;
    }

    template <typename Send> void post(const std::shared_ptr<Task> &self, Send send) {
        MainThreadQueue::shared().post([self, send = std::move(send)] {
            if (self->owner && !self->cancelled)
                send(*self->owner);
        });
    }
};

namespace {

InputPaths pathsOf(const FileRow &row) {
    return {row.file, row.rightEye};
}

FileLook lookAt(const FileRow &row, const ConversionSettings &settings, const MediaOperations &operations) {
    FileLook look;
    try {
        look.facts = operations.lookCloselyAt(pathsOf(row));
        PreviewRequest request;
        request.layout = layoutToShow(look.facts, settings);
        request.position = 0.1;
        request.maximumWidth = FileLooks::thumbnailWidth;
        request.maximumHeight = FileLooks::thumbnailHeight;
        const StereoPreview preview = operations.preview(pathsOf(row), request);
        look.picture = preview;
        look.thumbnail = besideEachOther(imageOf(preview.left), imageOf(preview.right));
    } catch (const std::exception &error) {
        look.failure = errorMessage(error);
    }
    return look;
}

std::set<std::string> namesIn(const std::optional<fs::path> &folder) {
    std::set<std::string> names;
    std::error_code failed;
    if (folder)
        for (fs::directory_iterator entry(*folder, failed), end; !failed && entry != end; entry.increment(failed))
            names.insert(entry->path().filename().string());
    return names;
}

} // namespace

FileLooks::FileLooks(MediaOperations operations, QObject *parent)
    : QObject(parent), operations_(std::move(operations)) {}

FileLooks::~FileLooks() {
    end();
}

void FileLooks::end() {
    if (task_)
        task_->cancelled = true;
    task_ = nullptr;
}

void FileLooks::begin(const ConversionSettings &settings, std::set<fs::path> known) {
    end();
    task_ = std::make_shared<Task>();
    task_->operations = operations_;
    task_->settings = snapshotOf(settings);
    task_->known = std::move(known);
    task_->owner = this;
    BackgroundThreads::shared().run("looks", [task = task_] { run(task); });
}

void FileLooks::prefer(const std::vector<fs::path> &files) {
    if (!task_)
        return;
    const std::scoped_lock guard(task_->lock);
    task_->preferred = {files.begin(), files.end()};
}

void FileLooks::run(const std::shared_ptr<Task> &task) {
    std::vector<FileRow> rows;
    QString failure;
    try {
        rows = rowsOf(*task->settings);
    } catch (const fs::filesystem_error &error) {
        failure = toQString(formatted("error.read.input.folder", error.code().message()));
    }
    task->post(task, [rows, outputs = namesIn(task->settings->outputFolderURL), failure](FileLooks &self) {
        emit self.listed(rows, outputs, failure);
    });
    Waiting toLookAt, toExamine;
    for (FileRow &row : rows)
        if (row.kind != FileRow::Kind::unsupported && !task->known.contains(row.file))
            toLookAt.emplace(row.file, std::move(row));
    while (!toLookAt.empty() && !task->cancelled) {
        FileRow row = task->next(toLookAt);
        row.look = lookAt(row, *task->settings, task->operations);
        task->post(task, [file = row.file, look = *row.look](FileLooks &self) { emit self.looked(file, look); });
        row.look->thumbnail = {};
        if (!row.look->facts.isSpatial && row.look->failure.empty())
            toExamine.emplace(row.file, std::move(row));
    }
    while (!toExamine.empty() && !task->cancelled) {
        const FileRow row = task->next(toExamine);
        try {
            const StereoFindings findings = task->operations.examineAt(pathsOf(row), layoutOf(row, *task->settings));
            task->post(task, [file = row.file, findings](FileLooks &self) { emit self.examined(file, findings); });
        } catch (const std::exception &) {
            continue; // what cannot be examined is shown without findings
        }
    }
}

} // namespace lumetwin
