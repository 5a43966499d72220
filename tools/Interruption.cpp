// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/Interruption.h"

namespace lumetwin::batch {
namespace {

std::atomic<std::atomic<bool> *> activeFlag = nullptr;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler sets it");

extern "C" void onSignal(int signal) {
    std::atomic<bool> *flag = activeFlag;
    if (flag && !flag->exchange(true))
        return;
    std::signal(signal, SIG_DFL);
    std::raise(signal); // is delivered when this handler returns
}

} // namespace

Interruption::Interruption(std::atomic<bool> &flag) {
    activeFlag = &flag;
    struct sigaction action {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_RESTART;
    for (std::size_t index = 0; index < signals.size(); ++index) {
        sigaction(signals[index], nullptr, &previousActions_[index]);
        if (previousActions_[index].sa_handler != SIG_IGN)
            sigaction(signals[index], &action, nullptr);
    }
}

Interruption::~Interruption() {
    for (std::size_t index = 0; index < signals.size(); ++index)
        sigaction(signals[index], &previousActions_[index], nullptr);
    activeFlag = nullptr;
}

} // namespace lumetwin::batch
