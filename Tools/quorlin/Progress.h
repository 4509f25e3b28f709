// How far a long run is, on a terminal only.
#pragma once

#include <chrono>
#include <cstddef>

class ClProgress {
  public:
    explicit ClProgress(bool isWanted);
    bool IsShown() const { return m_isShown; }
    // How many tables there will be, for a bar; without it the line counts alone.
    void SetTotal(size_t total) { m_total = total; }
    ~ClProgress();
    ClProgress(const ClProgress&) = delete;
    ClProgress& operator=(const ClProgress&) = delete;

    // One more table is done.
    void Step();

  private:
    bool m_isShown;
    size_t m_done = 0, m_total = 0;
    std::chrono::steady_clock::time_point m_begin, m_next;
};
