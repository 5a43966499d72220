// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/SpatialCheck.h"

#include "engine/MediaKinds.h"
#include "engine/Texts.h"
#include "ui/BackgroundThreads.h"
#include "ui/MainThreadQueue.h"

namespace lumetwin {

namespace fs = std::filesystem;

namespace {

std::string valueLines(const StereoValues &values) {
    std::string lines;
    if (values.horizontalFOV)
        lines += formatted("alert.spatial.fov.format", *values.horizontalFOV) + "\n";
    if (values.stereoBaseline)
        lines += formatted("alert.spatial.baseline.format", *values.stereoBaseline) + "\n";
    if (values.disparity)
        lines += formatted("alert.spatial.disparity.format", *values.disparity);
    return lines;
}

} // namespace

SpatialFinding inspectFile(const fs::path &file, const std::shared_ptr<const ConversionSettings> &settings) {
    if (!isPhotoFile(file)) {
        const StereoValues values = videoStereoValues(file);
        return {values.stereoBaseline.has_value(), values};
    }
    if (!VideoProcessor(settings).isSpatialPhoto(file))
        return {};
    return {true, photoStereoValues(file)};
}

Alert spatialCheckAlert(const fs::path &file, const SpatialFinding &finding) {
    const std::string name = file.filename().string();
    const std::vector<std::string> buttons{text("button.close")};
    if (!finding.isSpatial)
        return {formatted("alert.spatial.check.no.title", name), text("alert.spatial.check.no.message"), buttons};
    std::string lines = valueLines(finding.values);
    if (lines.empty())
        lines = text(isPhotoFile(file) ? "media.type.photo" : "media.type.video");
    return {formatted("alert.spatial.check.yes.title", name), lines, buttons, {}, AlertStyle::informational};
}

void checkSpatialFile(const fs::path &file, QWidget *form, const std::shared_ptr<const ConversionSettings> &settings,
                      const FormServices &services) {
    const QPointer<QWidget> weak(form);
    BackgroundThreads::shared().run("inspect", [=, inspect = services.inspect, alerts = services.alerts] {
        const SpatialFinding finding = inspect ? inspect(file) : inspectFile(file, settings);
        MainThreadQueue::shared().post([=] {
            if (weak)
                alerts->present(spatialCheckAlert(file, finding), weak, [](int) {});
        });
    });
}

} // namespace lumetwin
