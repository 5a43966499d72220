// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

namespace lumetwin::batch {

/// The file that a report goes to. It is opened before the work, so that nobody waits for a report that cannot be
/// written. Until it is complete it is called NAME.partial, and what lay at its place stays. "-" is standard output;
/// devices and pipes are written as they are.
class ReportFile {
public:
    /// Throws UsageError when nothing can be written there, or when the name is that of a video or photo.
    explicit ReportFile(const std::filesystem::path &file);
    /// Takes away what was not completed.
    ~ReportFile();
    ReportFile(const ReportFile &) = delete;
    ReportFile &operator=(const ReportFile &) = delete;

    /// Writes the whole report and gives it its name. Throws std::system_error.
    void complete(const std::string &report);

private:
    struct Close {
        void operator()(std::FILE *stream) const { std::fclose(stream); }
    };

    void open(const std::filesystem::path &place);

    std::filesystem::path target_;  ///< empty: standard output
    std::filesystem::path partial_; ///< empty when there is nothing to rename
    std::unique_ptr<std::FILE, Close> stream_;
};

} // namespace lumetwin::batch
