// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/MediaOperations.h"
#include "engine/preview/StereoPreview.h"
#include "model/StereoFindings.h"

#include <QImage>
#include <QObject>

#include <filesystem>
#include <memory>

namespace lumetwin {

/// How a preview shows two eyes. The position in the menu.
enum class PreviewMode { sideBySide, left, right, anaglyph, wiggle, difference, asWritten };

/// What is to be shown.
struct PreviewWish {
    std::filesystem::path file;
    std::filesystem::path rightEye; ///< empty when one file has both eyes
    PreviewRequest request;         ///< its limits are those of an eye's picture
    PreviewMode mode = PreviewMode::sideBySide;
    QSize room;                                         ///< pixels: what is shown is reduced to fit; empty: not reduced
    std::shared_ptr<const ConversionSettings> settings; ///< for swapped eyes, and for the result as it will be written
};

/// Whether both need the same decoded eyes.
bool isSamePicture(const PreviewWish &one, const PreviewWish &other);

/// What is shown.
struct PreviewShow {
    QImage picture;
    QImage second; ///< wiggle: the right eye's picture, which alternates with the first; otherwise null
    PreviewFacts facts;
    bool isLast = true; ///< false: what could be drawn soon, before what was wished
};

/// Draws previews on a background thread. While one is drawn, only the newest wish waits. The decoded eyes are kept, so
/// that another mode or setting needs no decoding. First, what can be drawn soon is drawn: of a film, a frame near the
/// wanted one; of large spatial media, one eye.
class PreviewLoader : public QObject {
    Q_OBJECT

public:
    explicit PreviewLoader(MediaOperations operations, QObject *parent = nullptr);
    ~PreviewLoader() override;

    void load(PreviewWish wish);
    /// Forgets what was asked for; no signal follows.
    void clear();

signals:
    void drawn(const PreviewShow &show);
    /// After each newly decoded picture: what its eyes look like.
    void examined(const StereoFindings &findings);
    void failed(const QString &reason);

private:
    struct Task;

    static void run(const std::shared_ptr<Task> &task);

    std::shared_ptr<Task> task_;
};

} // namespace lumetwin
