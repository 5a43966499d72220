// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/form/SpatialCheck.h"

#include "engine/inspection/MediaKinds.h"
#include "engine/texts/ProcessorError.h"
#include "engine/texts/Texts.h"
#include "ui/widgets/BackgroundThreads.h"
#include "ui/widgets/MainThreadQueue.h"

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

Alert notSpatialAlert(const std::string &name, const SpatialFinding &finding, const std::vector<std::string> &buttons) {
    if (!finding.failure.empty())
        return {formatted("alert.check.unreadable.format", name), finding.failure, buttons};
    if (finding.picture && finding.picture->looksSideBySide())
        return {formatted("alert.check.side.by.side.format", name),
                formatted("alert.check.side.by.side.size.format", finding.picture->width, finding.picture->height) +
                    "\n" + text("alert.check.side.by.side.message"),
                buttons,
                {},
                AlertStyle::informational};
    return {formatted("alert.spatial.check.no.title", name), text("alert.spatial.check.no.message"), buttons};
}

} // namespace

SpatialFinding inspectFile(const fs::path &file, const MediaOperations &operations) {
    SpatialFinding finding;
    try {
        const auto [facts, size, failure] = operations.inspectFile(file);
        const bool isPhoto = facts.kind == MediaFacts::Kind::photo;
        finding.isSpatial = isPhoto ? facts.isSpatial : facts.values.stereoBaseline.has_value();
        finding.picture = size;
        if (finding.isSpatial || !isPhoto)
            finding.values = facts.values;
        if (failure)
            std::rethrow_exception(failure);
    } catch (const std::exception &error) {
        finding.failure = errorMessage(error);
    }
    return finding;
}

Alert spatialCheckAlert(const fs::path &file, const SpatialFinding &finding) {
    const std::string name = file.filename().string();
    const std::vector<std::string> buttons{text("button.close")};
    if (!finding.isSpatial)
        return notSpatialAlert(name, finding, buttons);
    std::string lines = valueLines(finding.values);
    if (lines.empty())
        lines = text(isPhotoFile(file) ? "media.type.photo" : "media.type.video");
    return {formatted("alert.spatial.check.yes.title", name), lines, buttons, {}, AlertStyle::informational};
}

void checkSpatialFile(const fs::path &file, QWidget *form, const FormServices &services,
                      const std::function<void(const Alert &answer)> &answered) {
    const QPointer<QWidget> weak(form);
    BackgroundThreads::shared().run("inspect", [=, inspect = services.inspect, operations = services.operations] {
        const SpatialFinding finding = inspect ? inspect(file) : inspectFile(file, operations);
        MainThreadQueue::shared().post([=] {
            if (weak)
                answered(spatialCheckAlert(file, finding));
        });
    });
}

} // namespace lumetwin
