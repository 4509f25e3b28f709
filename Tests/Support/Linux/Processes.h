// Other processes for tests that run on Linux alone.
#pragma once

#include <functional>

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
