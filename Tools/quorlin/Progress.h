// Shows the progress of a long run, on a terminal only.
#pragma once

#include <chrono>
#include <cstddef>

class ClProgress {
  public:
    explicit ClProgress(bool isWanted);
    bool IsShown() const { return m_isShown; }
    // Sets how many tables there are, for a bar. Without it, the line only counts.
    void SetTotal(size_t total) { m_total = total; }
    ~ClProgress();
    ClProgress(const ClProgress&) = delete;
    ClProgress& operator=(const ClProgress&) = delete;

    // Counts one table as done.
    void Step();

  private:
    bool m_isShown;
    size_t m_done = 0, m_total = 0;
    std::chrono::steady_clock::time_point m_begin, m_next;
};
