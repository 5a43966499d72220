// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/files/FileRow.h"

#include <QString>

#include <set>
#include <string>
#include <vector>

namespace lumetwin {

// The texts of the list of files, as functions of what is known of a file.

/// How a text is meant, for its colour and symbol.
enum class RowTone { plain, faded, good, warning, error };

struct RowState {
    RowTone tone = RowTone::plain;
    QString text;
};

/// "Video · side by side, says the file · 1920 × 1080 per eye · 0:42 · 38.2 MB"
QString rowDetails(const FileRow &row, const ConversionSettings &settings);

/// How it has its eyes, and who says so: "spatial", "side by side, says the file", "looks over-under". Empty while that
/// is not known.
QString rowLayout(const FileRow &row, const ConversionSettings &settings);

/// What will happen to it in the next run; while it is converted and after that, what became of it. outputs: the names
/// of the files in the output folder.
RowState rowState(const FileRow &row, const ConversionSettings &settings, const std::set<std::string> &outputs);

/// All that is to be said of it, one in each line: the state, the reason, and every warning.
QString rowReport(const FileRow &row, const ConversionSettings &settings, const std::set<std::string> &outputs);

/// "212 files, 9 will be skipped"; after a run how many were converted, have warnings, were skipped and failed.
QString totalsText(const std::vector<FileRow> &rows, const ConversionSettings &settings);

/// Minutes and seconds, and hours where there are any: 0:42, 1:02:03.
QString durationText(double seconds);

/// The results of a run for reading, one file in each line, followed by its reason and warnings.
QString runReport(const std::vector<FileRow> &rows, const ConversionSettings &settings);

} // namespace lumetwin
