// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

namespace lumetwin::batch {

/// The output file of a report. It is opened before the run, so that a path that cannot be written fails at once. Until
/// the report is complete, the file is called NAME.partial, and an existing file of the final name is kept. "-" is
/// standard output. Devices and pipes are written directly.
class ReportFile {
public:
    /// Throws UsageError when the file cannot be opened for writing, or has the extension of a video or photo.
    explicit ReportFile(const std::filesystem::path &file);
    /// Removes the partial file if the report was not completed.
    ~ReportFile();
    ReportFile(const ReportFile &) = delete;
    ReportFile &operator=(const ReportFile &) = delete;

    /// Writes the whole report and renames the file. Throws std::system_error.
    void complete(const std::string &report);

private:
    struct Close {
        void operator()(std::FILE *stream) const { std::fclose(stream); }
    };

    void open(const std::filesystem::path &path);

    std::filesystem::path target_;  ///< empty: standard output
    std::filesystem::path partial_; ///< empty when there is nothing to rename
    std::unique_ptr<std::FILE, Close> stream_;
};

} // namespace lumetwin::batch
