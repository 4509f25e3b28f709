// Child processes, for tests on Linux only.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Tests/Support/Program.h"

// Runs `body` in a child process. Returns its result (0 to 255), or -1 if a signal ended it.
int InChild(const std::function<int()>& body);

// Calls `prepare` in a child, which then becomes the program words[0]. Returns what it writes to the child's standard
// streams. The result is also -1 if it runs for more than a minute.
ProgramRun_t RunPrepared(
    const std::vector<std::string>& words, const std::function<void()>& prepare = [] {});

// Changes the user of this process to one without rights. Fails unless root calls it.
bool BecomeNobody();

// Whether this build has a sanitizer, which replaces the heap and signal handlers.
constexpr bool IsSanitized() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return true;
#else
    return false;
#endif
}

// Saves the coverage counters of a process that won't end with exit(). Does nothing in other builds.
void SaveCoverage();

// Mounts an empty folder over one of the system's while it lives, visible to this process and its children only. Works
// only if IsPossible.
class ClFolderOver {
  public:
    explicit ClFolderOver(const char* path, const char* options = "mode=755");
    ClFolderOver(const ClFolderOver&) = delete;
    ClFolderOver& operator=(const ClFolderOver&) = delete;
    ~ClFolderOver();
    static bool IsPossible();
    // Writes a file that only its owner can write, and creates its parent folders.
    void Write(const std::string& name, const std::string& bytes) const;

  private:
    const std::string m_path;
};
