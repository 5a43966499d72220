// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/batch/EyeFiles.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <map>
#include <utility>

namespace lumetwin {

namespace {

constexpr std::array<std::pair<std::string_view, bool>, 4> endings{
    {{"left", false}, {"right", true}, {"l", false}, {"r", true}}};
constexpr std::string_view separators = "_-. ";

std::string lowerCased(std::string text) {
    std::ranges::transform(text, text.begin(),
                           [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return text;
}

struct Pair {
    std::vector<std::size_t> left;
    std::vector<std::size_t> right;

    bool isComplete() const { return left.size() == 1 && right.size() == 1; }
};

} // namespace

std::optional<EyeName> eyeName(const std::filesystem::path &file) {
    const std::string stem = file.stem().string();
    const std::string lower = lowerCased(stem);
    for (const auto &[ending, isRight] : endings) {
        if (!lower.ends_with(ending) || lower.size() < ending.size() + 2)
            continue;
        const std::size_t length = lower.size() - ending.size();
        if (separators.find(lower[length - 1]) != std::string_view::npos)
            return EyeName{stem.substr(0, length - 1) + file.extension().string(), isRight};
    }
    return std::nullopt;
}

std::vector<ListedFile> pairEyes(std::vector<ListedFile> files, const ConversionSettings &settings) {
    const bool isWanted =
        settings.inputLayout == InputLayout::automatic || settings.inputLayout == InputLayout::twoFiles;
    if (settings.direction != ConversionDirection::sbsToSpatial || !isWanted)
        return files;
    std::map<std::filesystem::path, Pair> pairs;
    std::vector<std::filesystem::path> keys(files.size());
    for (std::size_t index = 0; index < files.size(); ++index) {
        const std::optional<EyeName> name = eyeName(files[index].file);
        if (!name || !files[index].listingError.empty())
            continue;
        keys[index] = files[index].file.parent_path() / lowerCased(name->rest);
        (name->isRight ? pairs[keys[index]].right : pairs[keys[index]].left).push_back(index);
    }
    std::vector<ListedFile> joined;
    for (std::size_t index = 0; index < files.size(); ++index) {
        const auto pair = keys[index].empty() ? pairs.end() : pairs.find(keys[index]);
        if (pair == pairs.end() || !pair->second.isComplete()) {
            joined.push_back(std::move(files[index]));
        } else if (pair->second.left[0] == index) {
            const std::filesystem::path &left = files[index].file;
            joined.push_back({.file = left,
                              .folder = files[index].folder,
                              .rightEye = files[pair->second.right[0]].file,
                              .named = left.parent_path() / eyeName(left)->rest});
        }
    }
    return joined;
}

std::vector<ListedFile> inputsOfRun(std::vector<ListedFile> files, const ConversionSettings &settings) {
    std::vector<ListedFile> inputs = pairEyes(std::move(files), settings);
    std::erase_if(inputs, [&](const ListedFile &listed) { return settings.leftOut.contains(listed.file); });
    return inputs;
}

} // namespace lumetwin
