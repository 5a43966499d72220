// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/parent/WorkerFailure.h"

#include "engine/texts/FileNames.h"

#include <csignal>
#include <cstdint>
#include <cstring>
#include <system_error>

namespace lumetwin::worker {
namespace {

/// Always in English; both languages show it after the number.
std::string signalName(int number) {
#if defined(__GLIBC_PREREQ)
#if __GLIBC_PREREQ(2, 32)
    if (const char *name = sigdescr_np(number))
        return name;
#endif
#endif
    return "?";
}

} // namespace

bool WorkerFailure::isCrash() const {
    // A kill is no crash: the system kills processes when memory runs out.
    return kind == Kind::signal && number != SIGKILL && number != SIGTERM;
}

Words words(const WorkerFailure &failure) {
    const auto number = static_cast<std::int64_t>(failure.number);
    switch (failure.kind) {
    case WorkerFailure::Kind::signal:
        return lumetwin::words("worker.signal.format", number, signalName(failure.number));
    case WorkerFailure::Kind::exited:
        return lumetwin::words("worker.exited.format", number);
    case WorkerFailure::Kind::invalidAnswer:
        return lumetwin::words("worker.rubbish");
    case WorkerFailure::Kind::timeout:
        return lumetwin::words("worker.silence.format", number);
    case WorkerFailure::Kind::noStart: {
        const std::string reason = std::generic_category().message(failure.number);
        return lumetwin::words("worker.no.start.format", reason);
    }
    }
    return {};
}

Words words(const WorkerFailure &failure, const std::filesystem::path &file) {
    return lumetwin::words("error.worker.format", lastPathComponent(file), words(failure));
}

} // namespace lumetwin::worker
