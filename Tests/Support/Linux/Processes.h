// Other processes for tests that run on Linux alone.
#pragma once

#include <functional>
#include <string>

// Runs `body` in a child process and gives its result (0 to 255), or -1 when a signal ended it.
int InChild(const std::function<int()>& body);

// A child that runs `body` and then waits until it is killed. The constructor returns when `body` is done.
class ClHolder {
  public:
    explicit ClHolder(const std::function<void()>& body);
    ClHolder(const ClHolder&) = delete;
    ClHolder& operator=(const ClHolder&) = delete;
    ~ClHolder() { Kill(); }
    void Kill();

  private:
    int m_process;
};

// Makes the calling process an ordinary user without rights. Only root can; false otherwise.
bool BecomeNobody();

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
