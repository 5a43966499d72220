// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/protocol/Request.h"

#include "worker/protocol/FactsCoding.h"
#include "worker/protocol/PreviewCoding.h"
#include "worker/protocol/Reading.h"
#include "worker/protocol/SettingsCoding.h"

namespace lumetwin::worker {
namespace {

using Json = nlohmann::json;

constexpr int highestVersion = std::numeric_limits<int>::max();

using Path = std::filesystem::path;

Json encodePath(const std::optional<Path> &path) {
    return path ? Json(path->string()) : Json(nullptr);
}

std::optional<Path> decodePath(const Json &value) {
    return value.is_null() ? std::nullopt : std::optional<Path>(string(value));
}

Json encodeOne(const LookRequest &request) {
    return {{"request", "look"},
            {"kind", numberOf(request.kind)},
            {"input", request.input.string()},
            {"language", request.language},
            {"rightEye", encodePath(request.rightEye)},
            {"layout", encodeLayout(request.layout)}};
}

Json encodeOne(const DrawRequest &request) {
    return {{"request", "draw"},
            {"preview", encodePreviewRequest(request.preview)},
            {"input", request.input.string()},
            {"language", request.language},
            {"rightEye", encodePath(request.rightEye)}};
}

Json encodeOne(const ConvertRequest &request) {
    return {{"request", "convert"},
            {"kind", numberOf(request.kind)},
            {"settings", encodeSettings(*request.settings)},
            {"system", {request.system.major, request.system.minor, request.system.patch}},
            {"input", request.input.string()},
            {"output", request.output.string()},
            {"language", request.language},
            {"oneDecodingThread", request.oneDecodingThread},
            {"rightEye", encodePath(request.rightEye)},
            {"disparityAdjustment", encodeValue(request.disparityAdjustment)}};
}

Json encodeOne(const CancelRequest &) {
    return {{"request", "cancel"}};
}

Json encodeOne(const ForkRequest &) {
    return {{"request", "fork"}};
}

SystemVersion systemVersion(const Json &value) {
    if (array(value).size() != 3)
        throw ProtocolError("no version");
    const auto part = [&](std::size_t index) { return static_cast<int>(integer(value[index], 0, highestVersion)); };
    return {part(0), part(1), part(2)};
}

ConvertRequest convertRequest(const Json &content) {
    return {.kind = caseOf(field(content, "kind"), ConversionKind::sbsImageToSpatial),
            .settings = decodeSettings(field(content, "settings")),
            .system = systemVersion(field(content, "system")),
            .input = string(field(content, "input")),
            .output = string(field(content, "output")),
            .language = string(field(content, "language")),
            .oneDecodingThread = boolean(field(content, "oneDecodingThread")),
            .rightEye = decodePath(field(content, "rightEye")),
            .disparityAdjustment = decodeValue(field(content, "disparityAdjustment"))};
}

LookRequest lookRequest(const Json &content) {
    LookRequest request{.kind = caseOf(field(content, "kind"), LookRequest::Kind::examine),
                        .input = string(field(content, "input")),
                        .language = string(field(content, "language")),
                        .rightEye = decodePath(field(content, "rightEye")),
                        .layout = decodeLayout(field(content, "layout"))};
    if (request.layout.has_value() != (request.kind == LookRequest::Kind::examine))
        throw ProtocolError("a layout for another look, or none");
    return request;
}

DrawRequest drawRequest(const Json &content) {
    return {.preview = decodePreviewRequest(field(content, "preview")),
            .input = string(field(content, "input")),
            .language = string(field(content, "language")),
            .rightEye = decodePath(field(content, "rightEye"))};
}

} // namespace

Json encode(const Request &request) {
    return std::visit([](const auto &one) { return encodeOne(one); }, request);
}

Request decodeRequest(const Json &content) {
    const std::string &type = string(field(content, "request"));
    if (type == "look")
        return lookRequest(content);
    if (type == "draw")
        return drawRequest(content);
    if (type == "convert")
        return convertRequest(content);
    if (type == "cancel")
        return CancelRequest{};
    if (type == "fork")
        return ForkRequest{};
    throw ProtocolError("an unknown request");
}

} // namespace lumetwin::worker
