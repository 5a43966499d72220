// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/protocol/Answer.h"

#include "worker/protocol/ErrorCoding.h"
#include "worker/protocol/FactsCoding.h"
#include "worker/protocol/OutcomeCoding.h"
#include "worker/protocol/PreviewCoding.h"
#include "worker/protocol/Reading.h"

namespace lumetwin::worker {
namespace {

using Json = nlohmann::json;

constexpr std::int64_t newestLandlock = 1000;

Json encodeOne(const Forked &forked) {
    return {{"answer", "forked"}, {"process", forked.process}};
}

Json encodeOne(const Ready &ready) {
    return {{"answer", "ready"},
            {"version", ready.version},
            {"landlock", ready.confinement.landlock},
            {"systemCalls", ready.confinement.systemCalls},
            {"memoryLimited", ready.confinement.memoryLimited}};
}

Json encodeOne(const Progress &progress) {
    return {{"answer", "progress"}, {"frame", progress.frame}, {"frames", progress.frames}};
}

Json encodeOne(const SignOfLife &) {
    return {{"answer", "alive"}};
}

Json encodeOne(const MediaFacts &facts) {
    return {{"answer", "facts"}, {"facts", encodeFacts(facts)}};
}

Json encodeOne(const StereoFindings &findings) {
    return {{"answer", "findings"}, {"findings", encodeFindings(findings)}};
}

Json encodeOne(const PictureSize &size) {
    return {{"answer", "size"}, {"size", encodeSize(size)}};
}

Json encodeOne(const PreviewFacts &facts) {
    return {{"answer", "preview"}, {"preview", encodePreviewFacts(facts)}};
}

Json encodeOne(const Outcome &outcome) {
    return {{"answer", "outcome"}, {"outcome", encodeOutcome(outcome)}};
}

Json encodeOne(const Failure &failure) {
    return {{"answer", "failure"}, {"error", encodeError(failure.error)}};
}

Forked forked(const Json &content) {
    constexpr std::int64_t highest = std::numeric_limits<int>::max();
    return {static_cast<int>(integer(field(content, "process"), -highest, highest))};
}

Ready ready(const Json &content) {
    return {.version = string(field(content, "version")),
            .confinement = {.landlock = static_cast<int>(integer(field(content, "landlock"), 0, newestLandlock)),
                            .systemCalls = boolean(field(content, "systemCalls")),
                            .memoryLimited = boolean(field(content, "memoryLimited"))}};
}

} // namespace

Json encode(const Answer &answer) {
    return std::visit([](const auto &one) { return encodeOne(one); }, answer);
}

Answer decodeAnswer(const Json &content) {
    const std::string &type = string(field(content, "answer"));
    if (type == "forked")
        return forked(content);
    if (type == "ready")
        return ready(content);
    if (type == "progress")
        return Progress{integer(field(content, "frame"), 0), integer(field(content, "frames"), 0)};
    if (type == "alive")
        return SignOfLife{};
    if (type == "facts")
        return decodeFacts(field(content, "facts"));
    if (type == "findings")
        return decodeFindings(field(content, "findings"));
    if (type == "size")
        return decodeSize(field(content, "size"));
    if (type == "preview")
        return decodePreviewFacts(field(content, "preview"));
    if (type == "outcome")
        return decodeOutcome(field(content, "outcome"));
    if (type == "failure")
        return Failure{decodeError(field(content, "error"))};
    throw ProtocolError("an unknown answer");
}

} // namespace lumetwin::worker
