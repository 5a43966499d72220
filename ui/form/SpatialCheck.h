// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/form/FormServices.h"

#include <QPointer>
#include <QWidget>

namespace lumetwin {

/// Reads whether a file is spatial media, and its stereo values. A file with a photo extension is read as a photo. Any
/// other file is read as a video, which is spatial if it has a camera baseline.
SpatialFinding inspectFile(const std::filesystem::path &file, const MediaOperations &operations);

/// The alert that shows the finding.
Alert spatialCheckAlert(const std::filesystem::path &file, const SpatialFinding &finding);

/// Inspects a file on a background thread. The answer comes on the interface thread, unless the form is gone by then.
void checkSpatialFile(const std::filesystem::path &file, QWidget *form, const FormServices &services,
                      const std::function<void(const Alert &answer)> &answered);

} // namespace lumetwin
