// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/ConfinedOperations.h"

#include "engine/ConversionInput.h"
#include "worker/parent/WorkerProgram.h"
#include "worker/parent/Workers.h"

#include <utility>

namespace lumetwin::worker {
namespace {

MediaOperations::Converter converter(const std::shared_ptr<Workers> &workers, ConversionKind kind) {
    return [workers, kind](const ConversionSettings &settings, const ConversionInput &input,
                           const media::OutputFile &output, const ConversionControl &control, SystemVersion system) {
        return workers->convert(kind, settings, input, output, control, system);
    };
}

} // namespace

MediaOperations confinedOperations(std::shared_ptr<Workers> workers) {
    return {.look = [workers](const media::InputFile &input) { return workers->look(input); },
            .lookClosely = [workers](const ConversionInput &input) { return workers->lookClosely(input); },
            .examine = [workers](const ConversionInput &input,
                                 const StereoLayout &layout) { return workers->examine(input, layout); },
            .measure = [workers](const media::InputFile &input) { return workers->measure(input); },
            .drawPreview = [workers](const ConversionInput &input, const PreviewRequest &request,
                                     const media::OutputFile &pixels) { return workers->draw(input, request, pixels); },
            .convertSpatialVideoToSBS = converter(workers, ConversionKind::spatialVideoToSBS),
            .convertSBSVideoToSpatial = converter(workers, ConversionKind::sbsVideoToSpatial),
            .convertSpatialPhotoToSBS = converter(workers, ConversionKind::spatialPhotoToSBS),
            .convertSBSImageToSpatial = converter(workers, ConversionKind::sbsImageToSpatial)};
}

MediaOperations confinedOperations() {
    return confinedOperations(std::make_shared<Workers>(workerProgram()));
}

std::string confinementDescription() {
    return describe(Workers(workerProgram()).confinement());
}

} // namespace lumetwin::worker
