// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/OptionTable.h"

#include "tools/BatchOptions.h"
#include "tools/CaseNames.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

namespace lumetwin::batch {
namespace {

template <typename Case, std::size_t count>
Case parseCase(const CaseNames<Case, count> &names, std::string_view value, const std::string &option) {
    std::string known;
    for (const auto &[name, result] : names) {
        if (name == value)
            return result;
        known += known.empty() ? "" : ", ";
        known += name;
    }
    throw UsageError(fmt::format("{}: \"{}\" is none of {}", option, value, known));
}

/// Parses the whole text as a number with an optional sign.
template <typename Number> bool parseNumber(std::string_view text, Number &number) {
    if (text.starts_with('+') && !text.starts_with("+-"))
        text.remove_prefix(1);
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

double parseInRange(std::string_view value, const NumberRange &range, const std::string &option) {
    double number = 0;
    if (!parseNumber(value, number) || !std::isfinite(number))
        throw UsageError(fmt::format("{}: \"{}\" is not a number", option, value));
    if (!range.accepts(number))
        throw UsageError(fmt::format("{}: {} is not between {} and {}", option, value, range.minimum, range.maximum));
    return number;
}

constexpr std::int64_t maximumSide = 65535; // pixels, the maximum of JPEG

std::int64_t parseSize(std::string_view value, const std::string &option) {
    std::int64_t size = 0;
    if (!parseNumber(value, size) || size < smallestSide)
        throw UsageError(fmt::format("{}: \"{}\" is not a number of pixels", option, value));
    if (size > maximumSide)
        throw UsageError(
            fmt::format("{}: {} is more than {}, the most that any format holds", option, value, maximumSide));
    return size;
}

template <typename Case, std::size_t count>
constexpr std::array<std::string_view, count> firstOfEach(const CaseNames<Case, count> &names) {
    std::array<std::string_view, count> words{};
    std::ranges::transform(names, words.begin(), [](const auto &entry) { return entry.first; });
    return words;
}

/// The names of the cases, which the option takes as its value.
template <const auto &names> constexpr auto wordsOf = firstOfEach(names);
constexpr std::array<std::string_view, 1> automaticWord{"auto"};

using Options = BatchOptions;
using Value = std::string_view;
using Name = const std::string &;

// First the options of ConversionSettings, in the order of its fields. The ranges are the same as in the window.
constexpr std::array options{
    Option{"--direction", "DIRECTION", "spatialToSBS (default) or sbsToSpatial",
           [](Options &o, Value v, Name n) { o.settings->direction = parseCase(directionNames, v, n); }, nullptr,
           wordsOf<directionNames>},
    Option{"--output", "FOLDER", "receives the results",
           [](Options &o, Value v, Name n) {
               if (v.empty())
                   throw UsageError(n + ": the folder has no name");
               o.settings->outputFolderURL = std::filesystem::path(v);
           }},
    Option{"--horizontal-fov", "DEGREES", "field of view to write, ",
           [](Options &o, Value v, Name n) { o.settings->horizontalFOV = parseInRange(v, fovRange, n); }, &fovRange},
    Option{"--disparity-adjustment", "PERCENT", "disparity adjustment to write: auto, or ",
           [](Options &o, Value v, Name n) {
               o.settings->automaticDisparity = v == automaticWord[0];
               if (!o.settings->automaticDisparity)
                   o.settings->disparityAdjustment = parseInRange(v, disparityRange, n);
           },
           &disparityRange, automaticWord},
    Option{"--stereo-baseline", "MILLIMETRES", "distance of the lenses to write, ",
           [](Options &o, Value v, Name n) { o.settings->stereoBaseline = parseInRange(v, baselineRange, n); },
           &baselineRange},
    Option{"--stereo-values", "WHENCE", "from-options (default), or from-file where the file has them",
           [](Options &o, Value v, Name n) { o.settings->stereoValuesSource = parseCase(stereoValuesNames, v, n); },
           nullptr, wordsOf<stereoValuesNames>},
    Option{"--input-layout", "LAYOUT", "automatic (default), side-by-side, half-side-by-side, over-under, ...",
           [](Options &o, Value v, Name n) { o.settings->inputLayout = parseCase(inputLayoutNames, v, n); }, nullptr,
           wordsOf<inputLayoutNames>},
    Option{"--sbs-output-format", "FORMAT", "of side-by-side video: mp4H264 (default), movHEVC, mkvH264, ...",
           [](Options &o, Value v, Name n) { o.settings->sbsOutputFormat = parseCase(videoFormatNames, v, n); },
           nullptr, wordsOf<videoFormatNames>},
    Option{"--sbs-photo-output-format", "FORMAT", "of side-by-side photos: jpg (default), png, tiff, heic",
           [](Options &o, Value v, Name n) { o.settings->sbsPhotoOutputFormat = parseCase(photoFormatNames, v, n); },
           nullptr, wordsOf<photoFormatNames>},
    Option{"--compression-quality", "QUALITY", "",
           [](Options &o, Value v, Name n) { o.settings->compressionQuality = parseInRange(v, qualityRange, n); },
           &qualityRange},
    Option{"--half-width", "", "pack each eye at half its width",
           [](Options &o, Value, Name) { o.settings->halfWidth = true; }},
    Option{"--swap-left-right", "", "exchange the eyes",
           [](Options &o, Value, Name) { o.settings->swapLeftRight = true; }},
    Option{"--enable-resize", "", "resize each eye", [](Options &o, Value, Name) { o.settings->enableResize = true; }},
    Option{"--resize-width", "PIXELS", "width of one eye, even (1920)",
           [](Options &o, Value v, Name n) { o.settings->resizeWidth = parseSize(v, n); }},
    Option{"--resize-height", "PIXELS", "height of one eye, even (1080)",
           [](Options &o, Value v, Name n) { o.settings->resizeHeight = parseSize(v, n); }},
    Option{"--resize-mode", "MODE", "stretch, cropFill or letterbox (default)",
           [](Options &o, Value v, Name n) { o.settings->resizeMode = parseCase(resizeModeNames, v, n); }, nullptr,
           wordsOf<resizeModeNames>},
    Option{"--no-copy-audio", "", "leave the sound out",
           [](Options &o, Value, Name) { o.settings->copyAudio = false; }},
    Option{"--keep-timing", "", "show each frame at its own time, instead of at a constant rate",
           [](Options &o, Value, Name) { o.settings->keepTiming = true; }},
    Option{"--bit-depth", "BITS", "of video: auto (default: 10 for deeper sources, otherwise 8), 8, 10",
           [](Options &o, Value v, Name n) { o.settings->bitDepth = parseCase(bitDepthNames, v, n); }, nullptr,
           wordsOf<bitDepthNames>},
    Option{"--no-check-stereo", "", "do not look for mistakes in the picture before converting",
           [](Options &o, Value, Name) { o.settings->checkStereo = false; }},
    Option{"--dry-run", "", "do everything up to the conversions, and write nothing",
           [](Options &o, Value, Name) { o.settings->dryRun = true; }},
    Option{"--recursive", "", "take the folders below, too, and keep their tree in the output",
           [](Options &o, Value, Name) { o.settings->recursive = true; }},
    Option{"--skip-existing", "", "leave alone what an earlier run finished from the same source",
           [](Options &o, Value, Name) { o.settings->skipExisting = true; }},
    Option{"--on-existing", "WHAT", "a file of a result's name: replace (default), keep-both, skip",
           [](Options &o, Value v, Name n) { o.settings->onExisting = parseCase(onExistingNames, v, n); }, nullptr,
           wordsOf<onExistingNames>},
    Option{"--report", "FILE", "write what became of each file as JSON; - is standard output",
           [](Options &o, Value v, Name n) {
               if (v.empty())
                   throw UsageError(n + ": the file has no name");
               o.report = std::filesystem::path(v);
           }},
    Option{"--strict", "", "a warning counts as a failure for the exit status",
           [](Options &o, Value, Name) { o.strict = true; }},
    Option{"--in-process", "", "work on files in this process, not in a confined one",
           [](Options &o, Value, Name) { o.inProcess = true; }},
};

} // namespace

std::span<const Option> optionTable() {
    return options;
}

const Option *findOption(std::string_view name) {
    const auto found = std::ranges::find(options, name, &Option::name);
    return found == options.end() ? nullptr : &*found;
}

std::string description(const Option &option) {
    std::string text(option.help);
    if (option.range)
        text += fmt::format("{} to {} ({})", option.range->minimum, option.range->maximum, option.range->start);
    return text;
}

std::string helpText() {
    std::string text = "Usage: lumetwin-batch [OPTION]... --output FOLDER INPUT...\n"
                       "       lumetwin-batch inspect [--json] [--in-process] FILE...\n"
                       "       lumetwin-batch completion bash|zsh|fish\n"
                       "\n"
                       "Converts stereoscopic videos and photos between spatial media (MV-HEVC movies, stereo HEIC\n"
                       "photos) and side-by-side media. INPUT is one folder, whose files are taken, or files. Files\n"
                       "that do not suit the direction are skipped.\n"
                       "\n";
    for (const Option &option : optionTable())
        text += fmt::format("  {:<38} {}\n", fmt::format("{} {}", option.name, option.argument), description(option));
    return text + "\n"
                  "inspect tells whether files are spatial media, and their stereo values; with --json, for programs.\n"
                  "completion prints the script that completes this program's options in a shell.\n"
                  "\n"
                  "  -h, --help                             this text\n"
                  "  --version                              the version, how files are confined, and what is coded\n"
                  "\n"
                  "Ctrl+C stops cleanly, a second one at once. Exit status: 0 all files were converted or skipped,\n"
                  "1 some failed (or, with --strict, have warnings), 2 wrong usage, 130 stopped.\n";
}

} // namespace lumetwin::batch
