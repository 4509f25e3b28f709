// Processes. A handle to a process or to its thread shares what is known of the child; the system's record of a child
// that has ended is taken away when its end is asked for, or with one of the next calls after its handles are closed.
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "Packages/Platform/Linux/Descriptor.h"
#include "Packages/Platform/Linux/Handles.h"

namespace {

// Children whose handles are closed and that had not ended then.
struct Orphans_t {
    std::mutex lock;
    std::vector<pid_t> processes;
};
Orphans_t& Orphans() {
    static auto& orphans = *new Orphans_t;  // outlives every handle, also those that a host closes at its very end
    return orphans;
}

void ReapOrphans() {
    auto& orphans = Orphans();
    const std::lock_guard<std::mutex> guard(orphans.lock);
    std::erase_if(orphans.processes, [](pid_t process) { return waitpid(process, nullptr, WNOHANG) != 0; });
}

class ClChild {
  public:
    explicit ClChild(pid_t process)
        : m_process(process), m_descriptor(static_cast<int>(syscall(SYS_pidfd_open, process, 0))) {}
    ClChild(const ClChild&) = delete;
    ClChild& operator=(const ClChild&) = delete;
    ~ClChild() {
        if (Reap() || m_exitCode.has_value()) return;
        auto& orphans = Orphans();
        const std::lock_guard<std::mutex> guard(orphans.lock);
        try {
            orphans.processes.push_back(m_process);
        } catch (...) {  // one dead child more in the system's list
        }
    }

    DWORD Wait(DWORD milliseconds) {
        if (m_exitCode.has_value()) return WAIT_OBJECT_0;
        pollfd ended = {m_descriptor.Get(), POLLIN, 0};
        timespec timeout = {milliseconds / 1000, milliseconds % 1000 * 1'000'000L};
        const int result = ppoll(&ended, 1, milliseconds == INFINITE ? nullptr : &timeout, nullptr);
        if (result == 0) return WAIT_TIMEOUT;
        if (result < 0 && errno == EINTR) return Wait(milliseconds);
        if (result > 0 && Reap()) return WAIT_OBJECT_0;
        FailWithErrno();
        return WAIT_FAILED;
    }

    BOOL Terminate(UINT exitCode) {
        if (Reap()) return Fail(ERROR_ACCESS_DENIED);  // as Windows answers for one that has ended
        if (kill(m_process, SIGKILL) != 0) return FailWithErrno();
        m_terminatedWith = exitCode;
        return TRUE;
    }

    DWORD ExitCode() { return Reap() ? *m_exitCode : STILL_ACTIVE; }

  private:
    // Whether the child has ended; its exit code is known then. One that a signal ended has 128 and the signal's
    // number, as shells have it, or the code that it was terminated with.
    bool Reap() {
        int status = 0;
        if (m_exitCode.has_value()) return true;
        const pid_t reaped = waitpid(m_process, &status, WNOHANG);
        if (reaped == 0) return false;
        if (reaped < 0)
            m_exitCode = 0;  // somebody else in this process has waited for it
        else if (WIFEXITED(status))
            m_exitCode = static_cast<DWORD>(WEXITSTATUS(status));
        else
            m_exitCode = WTERMSIG(status) == SIGKILL && m_terminatedWith.has_value()
                             ? *m_terminatedWith
                             : static_cast<DWORD>(128 + WTERMSIG(status));
        return true;
    }

    pid_t m_process;
    ClDescriptor m_descriptor;
    std::optional<DWORD> m_exitCode;
    std::optional<UINT> m_terminatedWith;
};

class ClProcess : public ClObject {
  public:
    explicit ClProcess(std::shared_ptr<ClChild> started) : child(std::move(started)) {}
    DWORD Wait(DWORD milliseconds) override { return child->Wait(milliseconds); }
    const std::shared_ptr<ClChild> child;
};

// A command line's arguments, as a Windows program splits its own: at blanks outside quotes; 2n backslashes before a
// quote are n, one more than that makes the quote an ordinary character. The first one, the program, knows no
// backslash, and is empty where the line begins with a blank.
std::vector<std::string> SplitCommandLine(const char* at) {
    const auto isBlank = [](char character) { return character == ' ' || character == '\t'; };
    std::vector<std::string> arguments(1);
    bool isQuoted = false;
    for (; *at != '\0' && (isQuoted || !isBlank(*at)); ++at) {
        if (*at == '"')
            isQuoted = !isQuoted;
        else
            arguments[0] += *at;
    }
    for (;;) {
        while (isBlank(*at)) ++at;
        if (*at == '\0') return arguments;
        std::string argument;
        isQuoted = false;
        while (*at != '\0' && (isQuoted || !isBlank(*at))) {
            const size_t slashes = std::strspn(at, "\\");
            at += slashes;
            const bool isBeforeQuote = *at == '"';
            argument.append(isBeforeQuote ? slashes / 2 : slashes, '\\');
            if (isBeforeQuote && slashes % 2 == 0)
                isQuoted = !isQuoted;
            else if (*at != '\0' && (isBeforeQuote || isQuoted || !isBlank(*at)))
                argument += *at;
            else
                continue;
            ++at;
        }
        arguments.push_back(std::move(argument));
    }
}

// Texts that follow each other, up to an empty one.
std::vector<char*> SplitEnvironment(char* block) {
    std::vector<char*> texts;
    for (; *block != '\0'; block += std::strlen(block) + 1) texts.push_back(block);
    texts.push_back(nullptr);
    return texts;
}

// Starts the program with the standard streams and no other open file, no signal blocked.
int Spawn(const char* program, char* const* arguments, char* const* environment, const char* directory,
          pid_t* process) {
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    int error = posix_spawn_file_actions_init(&actions);
    if (error != 0) return error;
    error = posix_spawnattr_init(&attributes);
    if (error != 0) {
        posix_spawn_file_actions_destroy(&actions);
        return error;
    }
    sigset_t none;
    sigemptyset(&none);
    if (directory != nullptr) error = posix_spawn_file_actions_addchdir_np(&actions, directory);
    if (error == 0) error = posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    if (error == 0) error = posix_spawnattr_setsigmask(&attributes, &none);
    if (error == 0) error = posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    if (error == 0) error = posix_spawnp(process, program, &actions, &attributes, arguments, environment);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return error;
}

}  // namespace

// `application` is taken as a path; without it the command line's first word is the program, looked for in PATH unless
// it has a separator.
BOOL CreateProcessA(LPCSTR application, LPSTR commandLine, LPSECURITY_ATTRIBUTES, LPSECURITY_ATTRIBUTES, BOOL, DWORD,
                    LPVOID environment, LPCSTR directory, LPSTARTUPINFOA, LPPROCESS_INFORMATION information) try {
    if ((application == nullptr && commandLine == nullptr) || information == nullptr)
        return Fail(ERROR_INVALID_PARAMETER);
    ReapOrphans();
    std::vector<std::string> arguments = SplitCommandLine(commandLine == nullptr ? "" : commandLine);
    std::string program = application == nullptr ? arguments[0] : application;
    if (program.empty()) return Fail(ERROR_FILE_NOT_FOUND);
    if (application != nullptr && program.find('/') == std::string::npos) program.insert(0, "./");
    if (arguments[0].empty()) arguments[0] = program;
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    const std::vector<char*> texts =
        environment == nullptr ? std::vector<char*>() : SplitEnvironment(static_cast<char*>(environment));
    pid_t process = 0;
    const int error =
        Spawn(program.c_str(), pointers.data(), environment == nullptr ? environ : texts.data(), directory, &process);
    if (error != 0) return Fail(error == ENOEXEC ? ERROR_BAD_EXE_FORMAT : ErrorFromErrno(error));
    const auto child = std::make_shared<ClChild>(process);
    auto ofProcess = std::make_unique<ClProcess>(child), ofThread = std::make_unique<ClProcess>(child);
    *information = {ofProcess.release(), ofThread.release(), static_cast<DWORD>(process), static_cast<DWORD>(process)};
    return TRUE;
} catch (const std::bad_alloc&) {
    return Fail(ERROR_NOT_ENOUGH_MEMORY);
}

BOOL TerminateProcess(HANDLE handle, UINT exitCode) {
    const ClProcess* process = ObjectOf<ClProcess>(handle);
    return process == nullptr ? FALSE : process->child->Terminate(exitCode);
}

BOOL GetExitCodeProcess(HANDLE handle, LPDWORD exitCode) {
    const ClProcess* process = ObjectOf<ClProcess>(handle);
    if (process == nullptr) return FALSE;
    if (exitCode == nullptr) return Fail(ERROR_INVALID_PARAMETER);
    *exitCode = process->child->ExitCode();
    return TRUE;
}
