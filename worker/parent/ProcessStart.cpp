// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/parent/ProcessStart.h"

#include "media/Descriptor.h"
#include "worker/WorkerMain.h"

#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <cstdlib>
#include <deque>
#include <fcntl.h>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <pthread.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <vector>

namespace lumetwin::worker {
namespace {

void checkStart(int error, const char *what) {
    if (error != 0)
        throw std::system_error(error, std::generic_category(), what);
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int firstClosedStream = STDIN_FILENO;
constexpr int lastClosedStream = STDOUT_FILENO; // sanitizers write their reports to standard error
#else
constexpr int firstClosedStream = STDIN_FILENO;
constexpr int lastClosedStream = STDERR_FILENO;
#endif

/// What happens to descriptors before the new program starts.
class FileActions {
public:
    explicit FileActions(int descriptor) {
        checkStart(posix_spawn_file_actions_init(&actions_), "posix_spawn");
        for (int stream = firstClosedStream; stream <= lastClosedStream; ++stream)
            checkStart(posix_spawn_file_actions_addopen(&actions_, stream, "/dev/null", O_RDWR, 0), "posix_spawn");
        checkStart(posix_spawn_file_actions_adddup2(&actions_, descriptor, channelDescriptor), "posix_spawn");
    }
    ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }
    FileActions(const FileActions &) = delete;
    FileActions &operator=(const FileActions &) = delete;

    const posix_spawn_file_actions_t *get() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_{};
};

/// The variables that a worker may need, as "NAME=value": library paths, sanitizer options, and settings of the C
/// library's allocator. A new process gets all its memory from the kernel. In huge pages, for all threads together,
/// that takes a quarter of the time.
std::vector<std::string> environmentOfWorker() {
    std::vector<std::string> entries{"GLIBC_TUNABLES=glibc.malloc.hugetlb=1:glibc.malloc.arena_max=1"};
    for (const char *name : {"LD_LIBRARY_PATH", "ASAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS"})
        if (const char *value = std::getenv(name))
            entries.push_back(std::string(name) + "=" + value);
    return entries;
}

pid_t spawn(const std::filesystem::path &program, int descriptor) {
    // A number above those that the file actions use.
    const media::Descriptor high(fcntl(descriptor, F_DUPFD_CLOEXEC, channelDescriptor + 1));
    checkStart(!high ? errno : 0, "fcntl");
    const FileActions actions(high.get());
    std::string name = program.string();
    std::string parent = std::to_string(getpid());
    char *const arguments[] = {name.data(), parent.data(), nullptr};
    std::vector<std::string> entries = environmentOfWorker();
    std::vector<char *> environment;
    for (std::string &entry : entries)
        environment.push_back(entry.data());
    environment.push_back(nullptr);
    pid_t process = 0;
    checkStart(posix_spawn(&process, name.c_str(), actions.get(), nullptr, arguments, environment.data()),
               "posix_spawn");
    return process;
}

void collect(pid_t process) {
    while (waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
    }
}

/// A thread that runs tasks in order until the program ends.
class ProcessThread {
public:
    ProcessThread() : thread_([this] { run(); }) { pthread_setname_np(thread_.native_handle(), "workers"); }
    ~ProcessThread() {
        add([this] { ending_ = true; });
        thread_.join();
    }

    void add(std::function<void()> work) {
        {
            const std::scoped_lock lock(mutex_);
            works_.push_back(std::move(work));
        }
        added_.notify_one();
    }

private:
    void run() {
        while (!ending_)
            next()();
    }

    std::function<void()> next() {
        std::unique_lock lock(mutex_);
        added_.wait(lock, [this] { return !works_.empty(); });
        std::function<void()> work = std::move(works_.front());
        works_.pop_front();
        return work;
    }

    bool ending_ = false; // of the thread
    std::mutex mutex_;
    std::condition_variable added_;
    std::deque<std::function<void()>> works_; // guarded by mutex_
    std::thread thread_;
};

ProcessThread &processThread() {
    static ProcessThread one;
    return one;
}

} // namespace

pid_t startProcess(const std::filesystem::path &program, int descriptor) {
    const auto task = std::make_shared<std::packaged_task<pid_t()>>([=] { return spawn(program, descriptor); });
    std::future<pid_t> process = task->get_future();
    processThread().add([task] { (*task)(); });
    return process.get();
}

void endProcess(pid_t process) {
    kill(process, SIGKILL);
    processThread().add([process] { collect(process); });
}

} // namespace lumetwin::worker
