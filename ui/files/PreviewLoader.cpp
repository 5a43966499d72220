// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/files/PreviewLoader.h"

#include "engine/preview/PreviewModes.h"
#include "engine/texts/ProcessorError.h"
#include "ui/files/PreviewImages.h"
#include "ui/widgets/BackgroundThreads.h"
#include "ui/widgets/Localized.h"
#include "ui/widgets/MainThreadQueue.h"

#include <QPointer>

#include <mutex>
#include <optional>
#include <utility>

namespace lumetwin {

/// Shared by the interface thread and the thread that draws.
struct PreviewLoader::Task {
    MediaOperations operations;
    QPointer<PreviewLoader> owner; // used on the interface thread only

    std::mutex lock;
    std::optional<PreviewWish> waiting; // guarded by lock
    bool isRunning = false;             // guarded by lock
    std::uint64_t generation = 0;       // guarded by lock; grows when all wishes are forgotten

    // Of the thread that draws; only one runs at a time.
    std::optional<PreviewWish> decoded;
    StereoPreview eyes;
    bool isExamined = false;

    bool isDecoded(const PreviewWish &wish) const { return decoded && isSamePicture(*decoded, wish); }
    void decode(const PreviewWish &wish);
    void draw(const std::shared_ptr<Task> &self, std::uint64_t number, const PreviewWish &wish, bool isLast);
    bool drawSoon(const std::shared_ptr<Task> &self, std::uint64_t number, const PreviewWish &wish);
    void examine(const std::shared_ptr<Task> &self, std::uint64_t number);
    template <typename Send> void post(const std::shared_ptr<Task> &self, std::uint64_t number, Send send);

    bool isWished() {
        const std::scoped_lock guard(lock);
        return waiting.has_value();
    }

    std::optional<std::pair<PreviewWish, std::uint64_t>> next() {
        const std::scoped_lock guard(lock);
        isRunning = waiting.has_value();
        if (!waiting)
            return std::nullopt;
        return std::pair(*std::exchange(waiting, {}), generation);
    }
};

namespace {

bool isSameRequest(const PreviewRequest &one, const PreviewRequest &other) {
    return one.layout == other.layout && one.position == other.position && one.detail == other.detail &&
           one.maximumWidth == other.maximumWidth && one.maximumHeight == other.maximumHeight;
}

QImage fitted(const QImage &image, QSize room) {
    if (image.isNull() || room.isEmpty() || (image.width() <= room.width() && image.height() <= room.height()))
        return image;
    return image.scaled(room, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

/// The pictures of a mode. Swapped eyes are shown swapped, as a viewer of the result will see them.
PreviewShow show(const PreviewWish &wish, const StereoPreview &eyes) {
    PreviewShow show{.picture = {}, .second = {}, .facts = eyes};
    PreviewPicture left = eyes.left, right = eyes.right;
    if (wish.mode == PreviewMode::asWritten) {
        const int width = wish.room.isEmpty() ? 2 * wish.request.maximumWidth : wish.room.width();
        const int height = wish.room.isEmpty() ? wish.request.maximumHeight : wish.room.height();
        show.picture = imageOf(asWritten(*wish.settings, eyes, left, right, width, height));
        return show;
    }
    if (!eyes.hasBothEyes) {
        show.picture = fitted(imageOf(left), wish.room);
        return show;
    }
    if (wish.settings->swapLeftRight)
        std::swap(left, right);
    switch (wish.mode) {
    case PreviewMode::left:
        show.picture = imageOf(left);
        break;
    case PreviewMode::right:
        show.picture = imageOf(right);
        break;
    case PreviewMode::anaglyph:
        show.picture = imageOf(anaglyph(left, right));
        break;
    case PreviewMode::difference:
        show.picture = imageOf(difference(left, right));
        break;
    case PreviewMode::wiggle:
        show.picture = imageOf(left);
        show.second = fitted(imageOf(right), wish.room);
        break;
    default:
        show.picture = besideEachOther(imageOf(left), imageOf(right));
    }
    show.picture = fitted(show.picture, wish.room);
    return show;
}

} // namespace

bool isSamePicture(const PreviewWish &one, const PreviewWish &other) {
    return one.file == other.file && one.rightEye == other.rightEye && isSameRequest(one.request, other.request);
}

PreviewLoader::PreviewLoader(MediaOperations operations, QObject *parent)
    : QObject(parent), task_(std::make_shared<Task>()) {
    task_->operations = std::move(operations);
    task_->owner = this;
}

PreviewLoader::~PreviewLoader() {
    clear();
}

void PreviewLoader::clear() {
    const std::scoped_lock guard(task_->lock);
    task_->waiting.reset();
    ++task_->generation;
}

void PreviewLoader::load(PreviewWish wish) {
    {
        const std::scoped_lock guard(task_->lock);
        task_->waiting = std::move(wish);
        if (std::exchange(task_->isRunning, true))
            return;
    }
    BackgroundThreads::shared().run("preview", [task = task_] { run(task); });
}

/// Sends something to the loader, unless it is gone or has forgotten its wishes meanwhile.
template <typename Send>
void PreviewLoader::Task::post(const std::shared_ptr<Task> &self, std::uint64_t number, Send send) {
    MainThreadQueue::shared().post([self, number, send = std::move(send)] {
        const bool isCurrent = [&] {
            const std::scoped_lock guard(self->lock);
            return number == self->generation;
        }();
        if (self->owner && isCurrent)
            send(*self->owner);
    });
}

/// Decodes the eyes, unless they are there from the last wish.
void PreviewLoader::Task::decode(const PreviewWish &wish) {
    if (isDecoded(wish))
        return;
    decoded.reset();
    eyes = operations.preview(InputPaths{wish.file, wish.rightEye}, wish.request);
    decoded = wish;
    isExamined = false;
}

void PreviewLoader::Task::draw(const std::shared_ptr<Task> &self, std::uint64_t number, const PreviewWish &wish,
                               bool isLast) {
    decode(wish);
    PreviewShow drawn = show(wish, eyes);
    drawn.isLast = isLast;
    post(self, number, [drawn](PreviewLoader &loader) { emit loader.drawn(drawn); });
}

/// Draws what can be shown soon: of a film, a frame near the wanted one; of large spatial media, one eye. True when it
/// is all that was wished.
bool PreviewLoader::Task::drawSoon(const std::shared_ptr<Task> &self, std::uint64_t number, const PreviewWish &wish) {
    PreviewWish soon = wish;
    soon.request.detail = PreviewDetail::soon;
    decode(soon);
    const bool isAll = wish.request.detail == PreviewDetail::near && !eyes.isFlat;
    draw(self, number, soon, isAll);
    if (isAll)
        decoded = wish;
    return isAll;
}

void PreviewLoader::Task::examine(const std::shared_ptr<Task> &self, std::uint64_t number) {
    const StereoFindings findings = eyes.hasBothEyes ? findingsOf(eyes.left, eyes.right) : StereoFindings();
    isExamined = true;
    post(self, number, [findings](PreviewLoader &loader) { emit loader.examined(findings); });
}

void PreviewLoader::run(const std::shared_ptr<Task> &task) {
    while (const auto next = task->next()) {
        const auto &[wish, number] = *next;
        try {
            if (task->isDecoded(wish) || !task->drawSoon(task, number, wish)) {
                if (task->isWished())
                    continue;
                task->draw(task, number, wish, true);
            }
            // Not while the user moves on.
            if (!task->isExamined && !task->isWished())
                task->examine(task, number);
        } catch (const std::exception &error) {
            task->post(task, number,
                       [reason = toQString(errorMessage(error))](PreviewLoader &self) { emit self.failed(reason); });
        }
    }
}

} // namespace lumetwin
