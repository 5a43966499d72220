// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/MediaOperations.h"
#include "ui/files/FileRow.h"

#include <QObject>

#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace lumetwin {

/// Lists the files of an input and looks at each one on a background thread: first at all headers, with a small
/// picture, then at the pictures of those that are cut into two eyes. A new list ends the looks at the old one.
class FileLooks : public QObject {
    Q_OBJECT

public:
    explicit FileLooks(MediaOperations operations, QObject *parent = nullptr);
    ~FileLooks() override;

    /// Begins. Signals follow, on the interface thread. known: files that need no further look.
    void begin(const ConversionSettings &settings, std::set<std::filesystem::path> known = {});
    /// Forgets the files, and sends no more signals about them.
    void end();
    /// These files are on the screen, so they are looked at first.
    void prefer(const std::vector<std::filesystem::path> &files);

    /// Size of an eye in a small picture, in pixels.
    static constexpr int thumbnailWidth = 112;
    static constexpr int thumbnailHeight = 84;

signals:
    /// failure: why the folder cannot be listed; empty when it can. outputs: the names in the output folder.
    void listed(const std::vector<FileRow> &rows, const std::set<std::string> &outputs, const QString &failure);
    void looked(const std::filesystem::path &file, const FileLook &look);
    void examined(const std::filesystem::path &file, const StereoFindings &findings);

private:
    struct Task;

    static void run(const std::shared_ptr<Task> &task);

    MediaOperations operations_;
    std::shared_ptr<Task> task_;
};

} // namespace lumetwin
