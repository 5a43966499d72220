// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/WorkerMain.h"

#include "engine/texts/ProcessorError.h"
#include "engine/texts/Texts.h"
#include "worker/WorkerLoop.h"
#include "worker/protocol/Answer.h"
#include "worker/protocol/Channel.h"
#include "worker/protocol/ProtocolError.h"
#include "worker/protocol/Request.h"

#include <cerrno>
#include <charconv>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <optional>
#include <sched.h>
#include <string_view>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#ifndef SYS_close_range
#define SYS_close_range 436
#endif

namespace lumetwin::worker {
namespace {

/// Closes what the parent had open without the close-on-exec flag.
void closeForeignDescriptors() {
    constexpr unsigned first = channelDescriptor + 1;
    if (syscall(SYS_close_range, first, UINT_MAX, 0) == 0)
        return;
    const long most = sysconf(_SC_OPEN_MAX); // before Linux 5.9
    for (long descriptor = first; descriptor < most; ++descriptor)
        close(static_cast<int>(descriptor));
}

/// Lets the kernel kill this process when the parent ends. Returns whether the parent is still there.
bool followParent(pid_t parent) {
    return prctl(PR_SET_PDEATHSIG, SIGKILL) == 0 && getppid() == parent;
}

/// 0 if the text is no number.
pid_t processNumber(std::string_view text) {
    pid_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? number : 0;
}

/// Ctrl+C in a terminal reaches the parent and the worker; the parent decides what to do. Writing beyond the file size
/// limit must be an error, not a signal.
void settleSignals() {
    for (const int number : {SIGINT, SIGQUIT, SIGHUP, SIGPIPE, SIGXFSZ})
        std::signal(number, SIG_IGN);
    for (const int number : {SIGTERM, SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGSYS})
        std::signal(number, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

template <typename Step> auto confined(const Step &step) {
    try {
        return step();
    } catch (const std::system_error &error) {
        throw processorError(lumetwin::words("error.worker.not.confined.format", std::string(error.what())));
    }
}

/// Forks with the same parent: workers are siblings of this process. (The C library has no function for this. It is
/// safe because this process has one thread.) Returns as fork() does.
pid_t forkSibling() {
    return static_cast<pid_t>(syscall(SYS_clone, CLONE_PARENT | SIGCHLD, nullptr, nullptr, nullptr, nullptr));
}

/// Forks a worker for each request and calls its main function there, with its channel.
void forkOnRequest(Channel &channel, const std::function<void(Channel)> &workerMain) {
    while (std::optional<Channel::Message> message = channel.receive(1)) {
        if (!std::holds_alternative<ForkRequest>(decodeRequest(message->content)) || message->descriptors.size() != 1)
            throw ProtocolError("no worker is asked for");
        const pid_t worker = forkSibling();
        if (worker == 0) {
            dup2(message->descriptors[0].get(), channelDescriptor);
            message->descriptors.clear();
            workerMain(Channel(media::Descriptor(channelDescriptor)));
            _exit(EXIT_SUCCESS);
        }
        channel.send(encode(Forked{worker < 0 ? -errno : worker}));
    }
}

/// The part of the confinement that all workers have in common, or why it failed.
struct Common {
    ConfinementReport report;
    std::exception_ptr failure;
};

Common prepareWorkers() {
    textLanguage(); // parses the text tables
    try {
        return {.report = confined(confineBeforeForking), .failure = nullptr};
    } catch (...) {
        return {.report = {}, .failure = std::current_exception()};
    }
}

void work(Channel channel, Common common, const MediaOperations &operations, const ConfinementOptions &options) {
    try {
        if (common.failure)
            std::rethrow_exception(common.failure);
        confined([&] { confineWorker(common.report, options); });
        channel.send(encode(Ready{LUMETWIN_VERSION, common.report}));
        WorkerLoop(channel, operations).run();
    } catch (...) {
        channel.send(encode(Failure{std::current_exception()}));
    }
}

} // namespace

int runWorker(int count, char **arguments, const MediaOperations &operations, const ConfinementOptions &options) {
    constexpr int wrongStart = 2;
    const pid_t parent = count == 2 ? processNumber(arguments[1]) : 0;
    if (fcntl(channelDescriptor, F_GETFD) < 0 || !followParent(parent))
        return wrongStart;
    closeForeignDescriptors();
    settleSignals();
    const Common common = prepareWorkers();
    Channel channel{media::Descriptor(channelDescriptor)};
    forkOnRequest(channel, [&](Channel own) {
        if (followParent(parent))
            work(std::move(own), common, operations, options);
    });
    return EXIT_SUCCESS;
}

} // namespace lumetwin::worker
