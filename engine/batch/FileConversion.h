// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/ConversionInput.h"
#include "engine/MediaOperations.h"
#include "media/InputFile.h"

#include <filesystem>
#include <memory>

namespace lumetwin {

namespace media {
class PartialFile;
} // namespace media

/// Opens the input of a conversion. Throws the conversion's error when it cannot be opened.
media::InputFile openInput(ConversionKind kind, const std::filesystem::path &file);

/// One conversion, whose output has its partial name until finish(). The functions throw the conversion's errors. If
/// neither finish() nor discard() is called, for example because it has failed, the partial file stays.
class FileConversion {
public:
    /// Creates the partial output. The final name ends with the extension of the conversion ("mov", "heic").
    FileConversion(ConversionKind kind, const std::filesystem::path &output);
    ~FileConversion();
    FileConversion(FileConversion &&) = delete;
    FileConversion &operator=(FileConversion &&) = delete;

    /// Writes the partial output. If it was cancelled, discards it.
    Outcome run(const MediaOperations &operations, const ConversionSettings &settings, const ConversionInput &input,
                const ConversionControl &control, SystemVersion system);
    /// Gives the output its final name.
    void finish();
    void discard() noexcept;

private:
    ConversionKind kind_;
    std::filesystem::path output_;
    std::unique_ptr<media::PartialFile> partial_;
};

/// Converts a file to a partial output, which is renamed when complete; the final name ends with the extension of the
/// conversion ("mov", "heic"). A cancelled conversion leaves no file; a failed one leaves the partial file. Throws the
/// conversion's errors.
Outcome convertFile(const MediaOperations &operations, ConversionKind kind, const ConversionSettings &settings,
                    const ConversionInput &input, const std::filesystem::path &output, const ConversionControl &control,
                    SystemVersion system);

} // namespace lumetwin
