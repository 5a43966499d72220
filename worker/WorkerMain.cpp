// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/WorkerMain.h"

#include "engine/texts/ProcessorError.h"
#include "engine/texts/Texts.h"
#include "worker/WorkerLoop.h"
#include "worker/protocol/Answer.h"
#include "worker/protocol/Channel.h"

#include <charconv>
#include <climits>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <system_error>
#include <unistd.h>

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
bool followParent(std::string_view number) {
    int parent = 0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), parent);
    if (error != std::errc() || end != number.data() + number.size() || prctl(PR_SET_PDEATHSIG, SIGKILL) != 0)
        return false;
    return getppid() == parent;
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

ConfinementReport confined(const ConfinementOptions &options) {
    try {
        return confine(options);
    } catch (const std::system_error &error) {
        throw processorError(words("error.worker.not.confined.format", std::string(error.what())));
    }
}

} // namespace

int runWorker(int count, char **arguments, const MediaOperations &operations, const ConfinementOptions &options) {
    constexpr int wrongStart = 2;
    if (count != 2 || fcntl(channelDescriptor, F_GETFD) < 0 || !followParent(arguments[1]))
        return wrongStart;
    closeForeignDescriptors();
    settleSignals();
    Channel channel{media::Descriptor(channelDescriptor)};
    try {
        channel.send(encode(Ready{LUMETWIN_VERSION, confined(options)}));
        textLanguage(); // parses the text tables now, while nobody waits
        return WorkerLoop(channel, operations).run();
    } catch (...) {
        channel.send(encode(Failure{std::current_exception()}));
        return wrongStart;
    }
}

} // namespace lumetwin::worker
