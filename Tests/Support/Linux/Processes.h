// Other processes for tests that run on Linux alone.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Tests/Support/Program.h"

// Runs `body` in a child process and gives its result (0 to 255), or -1 when a signal ended it.
int InChild(const std::function<int()>& body);

// Runs a program, words[0], in a child that `prepare` has been called in. Its output counts as far as it goes to the
// streams that the child was given. A result of -1 also stands for a run of more than a minute.
ProgramRun_t RunPrepared(
    const std::vector<std::string>& words, const std::function<void()>& prepare = [] {});

// Makes the calling process an ordinary user without rights. Only root can; false otherwise.
bool BecomeNobody();

// Whether a sanitizer is built in, which has a heap and handlers of its own.
constexpr bool IsSanitized() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return true;
#else
    return false;
#endif
}

// Keeps the coverage counters of a process that isn't going to end by exit(). Does nothing in other builds.
void SaveCoverage();

// An empty folder in the place of one of the system's, which this process and its children alone see; the system's is
// back when the object goes. Only where the tests have mounts of their own.
class ClFolderOver {
  public:
    explicit ClFolderOver(const char* path, const char* options = "mode=755");
    ClFolderOver(const ClFolderOver&) = delete;
    ClFolderOver& operator=(const ClFolderOver&) = delete;
    ~ClFolderOver();
    static bool IsPossible();
    // A file in it that nobody but its owner can write; folders on the way are made.
    void Write(const std::string& name, const std::string& bytes) const;

  private:
    const std::string m_path;
};
