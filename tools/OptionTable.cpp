// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/OptionTable.h"

#include "tools/BatchOptions.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

namespace lumetwin::batch {
namespace {

template <typename Case, std::size_t count> using Names = std::array<std::pair<std::string_view, Case>, count>;

constexpr Names<ConversionDirection, 2> directions{
    {{"spatialToSBS", ConversionDirection::spatialToSBS}, {"sbsToSpatial", ConversionDirection::sbsToSpatial}}};
constexpr Names<SBSOutputFormat, 3> videoFormats{{{"mp4H264", SBSOutputFormat::mp4H264},
                                                  {"mp4H265", SBSOutputFormat::mp4H265},
                                                  {"movHEVC", SBSOutputFormat::movHEVC}}};
constexpr Names<SBSPhotoOutputFormat, 4> photoFormats{{{"jpg", SBSPhotoOutputFormat::jpg},
                                                       {"png", SBSPhotoOutputFormat::png},
                                                       {"tiff", SBSPhotoOutputFormat::tiff},
                                                       {"heic", SBSPhotoOutputFormat::heic}}};
constexpr Names<ResizeMode, 3> resizeModes{
    {{"stretch", ResizeMode::stretch}, {"cropFill", ResizeMode::cropFill}, {"letterbox", ResizeMode::letterbox}}};

template <typename Case, std::size_t count>
Case caseOf(const Names<Case, count> &names, std::string_view value, const std::string &option) {
    std::string known;
    for (const auto &[name, result] : names) {
        if (name == value)
            return result;
        known += known.empty() ? "" : ", ";
        known += name;
    }
    throw UsageError(fmt::format("{}: \"{}\" is none of {}", option, value, known));
}

/// A whole number text, with an optional sign.
template <typename Number> bool parse(std::string_view text, Number &number) {
    if (text.starts_with('+') && !text.starts_with("+-"))
        text.remove_prefix(1);
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

double numberOf(std::string_view value, double lowest, double highest, const std::string &option) {
    double number = 0;
    if (!parse(value, number) || !std::isfinite(number))
        throw UsageError(fmt::format("{}: \"{}\" is not a number", option, value));
    if (number < lowest || number > highest)
        throw UsageError(fmt::format("{}: {} is not between {} and {}", option, value, lowest, highest));
    return number;
}

constexpr std::int64_t largestSide = 65535; // of a JPEG

std::int64_t sizeOf(std::string_view value, const std::string &option) {
    std::int64_t size = 0;
    if (!parse(value, size) || size < 1)
        throw UsageError(fmt::format("{}: \"{}\" is not a number of pixels", option, value));
    if (size > largestSide)
        throw UsageError(
            fmt::format("{}: {} is more than {}, the most that any format holds", option, value, largestSide));
    return size;
}

using Settings = ConversionSettings;
using Value = std::string_view;
using Name = const std::string &;

// In the order of the record's fields. The ranges are those of the window's controls.
constexpr std::array options{
    Option{"--direction", "DIRECTION", "spatialToSBS (default) or sbsToSpatial",
           [](Settings &s, Value v, Name n) { s.direction = caseOf(directions, v, n); }},
    Option{"--output", "FOLDER", "receives the results; files of the same names are replaced",
           [](Settings &s, Value v, Name n) {
               if (v.empty())
                   throw UsageError(n + ": the folder has no name");
               s.outputFolderURL = std::filesystem::path(v);
           }},
    Option{"--horizontal-fov", "DEGREES", "field of view to write, 10 to 180 (63.4)",
           [](Settings &s, Value v, Name n) { s.horizontalFOV = numberOf(v, 10, 180, n); }},
    Option{"--disparity-adjustment", "PERCENT", "disparity adjustment to write, -100 to 100 (2)",
           [](Settings &s, Value v, Name n) { s.disparityAdjustment = numberOf(v, -100, 100, n); }},
    Option{"--stereo-baseline", "MILLIMETRES", "distance of the lenses to write, 1 to 200 (19.24)",
           [](Settings &s, Value v, Name n) { s.stereoBaseline = numberOf(v, 1, 200, n); }},
    Option{"--sbs-output-format", "FORMAT", "of side-by-side video: mp4H264 (default), mp4H265, movHEVC",
           [](Settings &s, Value v, Name n) { s.sbsOutputFormat = caseOf(videoFormats, v, n); }},
    Option{"--sbs-photo-output-format", "FORMAT", "of side-by-side photos: jpg (default), png, tiff, heic",
           [](Settings &s, Value v, Name n) { s.sbsPhotoOutputFormat = caseOf(photoFormats, v, n); }},
    Option{"--compression-quality", "QUALITY", "0 to 1 (0.75)",
           [](Settings &s, Value v, Name n) { s.compressionQuality = numberOf(v, 0, 1, n); }},
    Option{"--half-width", "", "pack each eye at half its width", [](Settings &s, Value, Name) { s.halfWidth = true; }},
    Option{"--swap-left-right", "", "exchange the eyes", [](Settings &s, Value, Name) { s.swapLeftRight = true; }},
    Option{"--enable-resize", "", "resize each eye", [](Settings &s, Value, Name) { s.enableResize = true; }},
    Option{"--resize-width", "PIXELS", "width of one eye, even (1920)",
           [](Settings &s, Value v, Name n) { s.resizeWidth = sizeOf(v, n); }},
    Option{"--resize-height", "PIXELS", "height of one eye, even (1080)",
           [](Settings &s, Value v, Name n) { s.resizeHeight = sizeOf(v, n); }},
    Option{"--resize-mode", "MODE", "stretch, cropFill or letterbox (default)",
           [](Settings &s, Value v, Name n) { s.resizeMode = caseOf(resizeModes, v, n); }},
    Option{"--no-copy-audio", "", "leave the sound out", [](Settings &s, Value, Name) { s.copyAudio = false; }},
};

} // namespace

std::span<const Option> optionTable() {
    return options;
}

const Option *findOption(std::string_view name) {
    const auto found = std::ranges::find(options, name, &Option::name);
    return found == options.end() ? nullptr : &*found;
}

std::string helpText() {
    std::string text = "Usage: lumetwin-batch [OPTION]... --output FOLDER INPUT...\n"
                       "       lumetwin-batch inspect [--json] FILE...\n"
                       "\n"
                       "Converts stereoscopic videos and photos between spatial media (MV-HEVC movies, stereo HEIC\n"
                       "photos) and side-by-side media. INPUT is one folder, whose files are taken, or files. Files\n"
                       "that do not suit the direction are skipped.\n"
                       "\n";
    for (const Option &option : optionTable())
        text += fmt::format("  {:<38} {}\n", fmt::format("{} {}", option.name, option.argument), option.help);
    return text + "\n"
                  "inspect tells whether files are spatial media, and their stereo values; with --json, for programs.\n"
                  "\n"
                  "  -h, --help                             this text\n"
                  "  --version                              the version\n"
                  "\n"
                  "Ctrl+C stops cleanly, a second one at once. Exit status: 0 all files were converted or skipped,\n"
                  "1 some failed, 2 wrong usage, 130 stopped.\n";
}

} // namespace lumetwin::batch
