// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/InputFile.h"
#include "media/OutputFile.h"
#include "tests/support/TestMedia.h"
#include "worker/parent/Workers.h"

#include <fcntl.h>

namespace lumetwin::test {

/// A folder with an input, an output and a secret file, and test workers that get the first two.
class Handed {
public:
    explicit Handed(const std::string &behaviour, const char *program = TEST_WORKER, worker::Timeouts timeouts = {})
        : inputName(named(behaviour)), input(inputName), workers(program, timeouts) {}

    Outcome convert() {
        return workers.convert(ConversionKind::spatialVideoToSBS, settings, input, output, control,
                               SystemVersion::current());
    }

    /// What the conversion fails with; "" when it does not.
    std::string failure() {
        try {
            convert();
        } catch (const std::exception &error) {
            return error.what();
        }
        return {};
    }

    std::string written() const {
        const Bytes bytes = readFile(outputName);
        return {bytes.begin(), bytes.end()};
    }

    TemporaryFolder folder;
    std::filesystem::path inputName;
    std::filesystem::path outputName = folder / "output.mov";
    media::InputFile input;
    media::OutputFile output{open(outputName.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600), outputName};
    worker::Workers workers;
    ConversionSettings settings;
    ConversionControl control;

private:
    std::filesystem::path named(const std::string &behaviour) const {
        std::filesystem::create_directory(folder / ".ssh");
        writeFile(folder / ".ssh" / "id_ed25519", std::string("secret"));
        writeFile(folder / (behaviour + ".mov"), std::string("input"));
        return folder / (behaviour + ".mov");
    }
};

} // namespace lumetwin::test
