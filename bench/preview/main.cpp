// SPDX-License-Identifier: GPL-3.0-or-later
// Draws previews of a file, one after another, and prints the seconds of each as a JSON list; in process, of the
// processors' time.
//
//   lumetwin-preview [--in-process] [--exact | --soon] [--over-under] WIDTH HEIGHT FILE POSITION...
//
// The first one includes the start of the worker and opening the file.
#include "engine/MediaOperations.h"
#include "worker/ConfinedOperations.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <string_view>
#include <vector>

namespace {

using namespace lumetwin;

struct Wishes {
    PreviewRequest request;
    bool inProcess = false;
    std::vector<const char *> words;
};

Wishes wishesOf(int count, char **arguments) {
    Wishes wishes;
    for (int index = 1; index < count; ++index) {
        const std::string_view word = arguments[index];
        if (word == "--in-process")
            wishes.inProcess = true;
        else if (word == "--exact")
            wishes.request.detail = PreviewDetail::exact;
        else if (word == "--soon")
            wishes.request.detail = PreviewDetail::soon;
        else if (word == "--over-under")
            wishes.request.layout.arrangement = EyeArrangement::overUnder;
        else
            wishes.words.push_back(arguments[index]);
    }
    return wishes;
}

/// Seconds: of all threads of this process, or on the wall's clock.
double now(bool ofProcessors) {
    if (ofProcessors)
        return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

nlohmann::json draw(const MediaOperations &operations, Wishes &wishes) {
    nlohmann::json seconds = nlohmann::json::array();
    wishes.request.maximumWidth = std::atoi(wishes.words[0]);
    wishes.request.maximumHeight = std::atoi(wishes.words[1]);
    for (std::size_t index = 3; index < wishes.words.size(); ++index) {
        wishes.request.position = std::atof(wishes.words[index]);
        const double began = now(wishes.inProcess);
        const StereoPreview preview = operations.preview(std::filesystem::path(wishes.words[2]), wishes.request);
        seconds.push_back(now(wishes.inProcess) - began);
        if (!preview.hasBothEyes)
            std::fputs("only one eye\n", stderr);
    }
    return seconds;
}

} // namespace

int main(int count, char **arguments) {
    Wishes wishes = wishesOf(count, arguments);
    if (wishes.words.size() < 4) {
        std::fputs(
            "usage: lumetwin-preview [--in-process] [--exact | --soon] [--over-under] WIDTH HEIGHT FILE POSITION...\n",
            stderr);
        return 2;
    }
    try {
        const MediaOperations operations =
            wishes.inProcess ? MediaOperations::inProcess() : worker::confinedOperations();
        std::printf("%s\n", draw(operations, wishes).dump().c_str());
    } catch (const std::exception &error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
