// Processes. The handles of a record are the child's process number.
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

#include "Packages/OS/OSServices.h"

namespace {

constexpr size_t kMostBytes = 1024;  // in arguments or environment

// Returns the error as a status; kFailure for an error that has the number of success.
status_t StatusOf(int error) { return error == 0 || error == int{kSuccess} ? kFailure : static_cast<status_t>(error); }

// Whether the total size of the texts, with `extra` bytes for each, is below the limit.
bool Fit(const char* const* texts, size_t extra, size_t used = 0) {
    for (; texts != nullptr && *texts != nullptr; ++texts) used += std::strlen(*texts) + extra;
    return used < kMostBytes;
}

// Starts the program with the standard streams, no other open files, and no blocked signals. Returns 0 or the error.
int Spawn(const char* program, const char* const* arguments, const char* const* environment, pid_t* process) {
    std::vector<char*> words = {const_cast<char*>(program)};
    for (; arguments != nullptr && *arguments != nullptr; ++arguments) words.push_back(const_cast<char*>(*arguments));
    words.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    sigset_t none;
    sigemptyset(&none);
    posix_spawn_file_actions_init(&actions);
    posix_spawnattr_init(&attributes);
    int error = posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    if (error == 0) error = posix_spawnattr_setsigmask(&attributes, &none);
    if (error == 0) error = posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    char* const* texts = environment == nullptr ? environ : const_cast<char* const*>(environment);
    if (error == 0) error = posix_spawn(process, program, &actions, &attributes, words.data(), texts);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return error;
}

// Waits for the child. Returns false, with errno set, on failure.
bool Reap(pid_t process, int* status) {
    while (waitpid(process, status, 0) < 0)
        if (errno != EINTR) return false;
    return true;
}

pid_t NumberOf(const ProcessRecord_t& process) {
    return static_cast<pid_t>(reinterpret_cast<intptr_t>(process.Process));
}

// Calls `action` on the record's child, waits for the child, and clears both handles.
template <typename Action>
status_t Finish(ProcessRecord_t* process, Action action) {
    if (process == nullptr) return kNullPointer;
    int status;
    const pid_t number = NumberOf(*process);
    process->Process = process->Thread = nullptr;
    if (number <= 0) return StatusOf(ECHILD);
    return action(number) && Reap(number, &status) ? kSuccess : StatusOf(errno);
}

}  // namespace

status_t os_StartProcess(const char* application, const char* const* arguments, const char* const* environment,
                         ProcessRecord_t* process) try {
    if (application == nullptr || process == nullptr) return kNullPointer;
    if (arguments != nullptr && *arguments != nullptr) ++arguments;
    if (!Fit(arguments, 5) || !Fit(environment, 1)) return kNoMemory;
    pid_t number = 0;
    const int error = Spawn(application, arguments, environment, &number);
    if (error != 0) return StatusOf(error);
    void* handle = reinterpret_cast<void*>(static_cast<intptr_t>(number));
    *process = {handle, handle, static_cast<uint32_t>(number), static_cast<uint32_t>(number)};
    return kSuccess;
} catch (const std::bad_alloc&) {
    return kNoMemory;
}

// An intermediate child starts the program and ends, so that the system reaps the program.
status_t os_StartProcessDetached(const char* program, const char* const* arguments) {
    if (program == nullptr || !Fit(arguments, 5, std::strlen(program))) return kFailure;
    const pid_t between = fork();
    if (between == 0) {
        pid_t ignored;
        _exit(Spawn(program, arguments, nullptr, &ignored) == 0 ? 0 : 1);
    }
    int status;
    return between > 0 && Reap(between, &status) && status == 0 ? kSuccess : kFailure;
}

status_t os_KillProcess(ProcessRecord_t* process) {
    return Finish(process, [](pid_t number) { return kill(number, SIGKILL) == 0; });
}

status_t os_WaitProcess(ProcessRecord_t* process) {
    return Finish(process, [](pid_t) { return true; });
}
