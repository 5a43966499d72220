// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/form/FormServices.h"

#include <QPointer>
#include <QWidget>

namespace lumetwin {

/// Whether a file is spatial media, and its stereo values. Photos are told by their extension; everything else is
/// examined as a video, which is spatial exactly when it tells its camera baseline.
SpatialFinding inspectFile(const std::filesystem::path &file, const MediaOperations &operations);

/// The alert that tells what was found.
Alert spatialCheckAlert(const std::filesystem::path &file, const SpatialFinding &finding);

/// Inspects a file beside the interface thread; the answer comes on it, unless the form has gone.
void checkSpatialFile(const std::filesystem::path &file, QWidget *form, const FormServices &services,
                      const std::function<void(const Alert &answer)> &answered);

} // namespace lumetwin
