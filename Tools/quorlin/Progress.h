// Shows the progress of a long run, on a terminal only.
#pragma once

#include <chrono>
#include <cstddef>
#include <string_view>

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

// Shows what a run is doing, on a terminal only.
class ClStage {
  public:
    ClStage();
    ClStage(const ClStage&) = delete;
    ClStage& operator=(const ClStage&) = delete;
    ~ClStage();

    void Show(std::string_view what);

  private:
    bool m_isShown;
};
