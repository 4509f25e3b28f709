// Child processes, for tests on Linux only.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Tests/Support/Program.h"

// Runs `body` in a child process and returns its result (0 to 255), or -1 if a signal ended it.
int InChild(const std::function<int()>& body);

// Runs a program, words[0], in a child after `prepare`. The output is what reaches the child's original streams. The
// result is -1 also for a run of more than a minute.
ProgramRun_t RunPrepared(
    const std::vector<std::string>& words, const std::function<void()>& prepare = [] {});

// Makes the calling process an ordinary user without rights. Returns false unless it is root.
bool BecomeNobody();

// From here on the calling process can't make this system call: `action` (SECCOMP_RET_...) happens instead. With `bits`
// it concerns only calls that have one of these bits in the given argument. The process ends with 99 on kernels without
// filters.
struct SystemCall_t {
    uint32_t call, argument = 0, bits = 0;
};
void ForbidCall(const SystemCall_t& call, uint32_t action);

// Whether a sanitizer is built in, with its own heap and signal handlers.
constexpr bool IsSanitized() {
#ifdef QUORLIN_SANITIZED
    return true;
#else
    return false;
#endif
}

// Saves the coverage counters of a process that won't end by exit(). Does nothing in other builds.
void SaveCoverage();
bool HasCoverage();

// Mounts an empty folder over one of the system's, for this process and its children only, and unmounts it at the end.
// Needs mounts of the tests' own; see IsPossible.
class ClFolderOver {
  public:
    explicit ClFolderOver(const char* path, const char* options = "mode=755");
    ClFolderOver(const ClFolderOver&) = delete;
    ClFolderOver& operator=(const ClFolderOver&) = delete;
    ~ClFolderOver();
    static bool IsPossible();
    // Writes a file in it that only its owner can access, and creates the folders of its path.
    void Write(const std::string& name, const std::string& bytes) const;

  private:
    const std::string m_path;
};
