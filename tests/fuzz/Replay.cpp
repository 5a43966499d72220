// SPDX-License-Identifier: GPL-3.0-or-later
// Feeds every file of the folders that are named to a fuzz target: the ordinary test run does without libFuzzer.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

int main(int count, char **folders) {
    int files = 0;
    for (int index = 1; index < count; ++index)
        for (const auto &entry : std::filesystem::directory_iterator(folders[index])) {
            std::ifstream stream(entry.path(), std::ios::binary);
            const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(bytes.data()), bytes.size());
            ++files;
        }
    std::printf("%d files\n", files);
    return files > 0 ? 0 : 1;
}
