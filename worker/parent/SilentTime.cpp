// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/parent/SilentTime.h"

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

namespace lumetwin::worker {
namespace {

using namespace std::chrono_literals;

/// How often the state of a silent process is looked at.
constexpr std::chrono::milliseconds shortestPeriod = 500ms;

/// Nothing when the process has ended.
std::optional<std::chrono::milliseconds> processorTimeOf(pid_t process) {
    clockid_t clock{};
    timespec time{};
    if (clock_getcpuclockid(process, &clock) != 0 || clock_gettime(clock, &time) != 0)
        return std::nullopt;
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::seconds(time.tv_sec) +
                                                                 std::chrono::nanoseconds(time.tv_nsec));
}

/// Whether the thread of this folder in /proc runs or is ready to run. See proc(5): the state follows the name, which
/// is in brackets and may contain any character.
bool isReady(const std::filesystem::path &thread) {
    std::ifstream file(thread / "stat");
    const std::string facts((std::istreambuf_iterator<char>(file)), {});
    const std::size_t end = facts.rfind(") ");
    return end != std::string::npos && facts.compare(end + 2, 1, "R") == 0;
}

bool hasReadyThread(pid_t process) {
    std::error_code code;
    std::filesystem::directory_iterator threads("/proc/" + std::to_string(process) + "/task", code);
    for (; !code && threads != std::filesystem::directory_iterator(); threads.increment(code))
        if (isReady(threads->path()))
            return true;
    return false;
}

} // namespace

std::chrono::milliseconds countedSilence(const LifePeriod &period) {
    return period.isReady ? std::min(period.length, period.processorTime) : period.length;
}

std::chrono::milliseconds SilentTime::add(std::chrono::milliseconds waited) {
    if (!processorTime_)
        processorTime_ = processorTimeOf(process_);
    waited_ += waited;
    if (waited_ < shortestPeriod)
        return counted_;
    const auto now = processorTimeOf(process_);
    const bool isKnown = processorTime_ && now;
    counted_ += countedSilence({waited_, isKnown ? *now - *processorTime_ : 0ms, isKnown && hasReadyThread(process_)});
    waited_ = 0ms;
    processorTime_ = now;
    return counted_;
}

void SilentTime::reset() {
    counted_ = waited_ = 0ms;
    processorTime_.reset();
}

} // namespace lumetwin::worker
