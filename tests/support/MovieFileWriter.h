// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/MovieWriter.h"
#include "media/PartialFile.h"

#include <filesystem>
#include <utility>

namespace lumetwin::test {

/// A movie writer with its partial file.
class MovieFileWriter : private media::PartialFile, public media::MovieWriter {
public:
    MovieFileWriter(const std::filesystem::path &file, media::Container container, media::MovieTags tags)
        : PartialFile(file), MovieWriter(PartialFile::file(), container, std::move(tags)) {}

    void finish() {
        MovieWriter::finish();
        PartialFile::finish();
    }

    void cancel() {
        MovieWriter::cancel();
        discard();
    }
};

} // namespace lumetwin::test
