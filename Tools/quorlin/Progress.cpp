#include "Tools/quorlin/Progress.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include "Packages/OS/Program.h"

using std::chrono::steady_clock;

// Results that go to the terminal are progress enough.
ClProgress::ClProgress(bool isWanted)
    : m_isShown(isWanted && IsStandardErrorTerminal() && !IsStandardOutputTerminal()) {
    if (m_isShown) m_begin = m_next = steady_clock::now();
}

ClProgress::~ClProgress() {
    if (m_isShown) std::fputs("\r\x1b[K", stderr);
}

void ClProgress::Step() {
    m_done++;
    if (!m_isShown || m_done % 16 != 0) return;
    const steady_clock::time_point now = steady_clock::now();
    if (now < m_next) return;
    m_next = now + std::chrono::milliseconds(200);
    const double seconds = std::chrono::duration<double>(now - m_begin).count();
    if (seconds <= 0) return;
    std::fputs("\r", stderr);
    if (m_total != 0) {
        constexpr size_t kBar = 30;
        const size_t filled = std::min(kBar, kBar * m_done / m_total);
        std::fprintf(stderr, "[%s%s] ", std::string(filled, '#').c_str(), std::string(kBar - filled, '.').c_str());
    }
    std::fprintf(stderr, "%zu images, %.0f a second\x1b[K", m_done, static_cast<double>(m_done) / seconds);
}

ClStage::ClStage() : m_isShown(IsStandardErrorTerminal()) {}

ClStage::~ClStage() {
    if (m_isShown) std::fputs("\r\x1b[K", stderr);
}

void ClStage::Show(std::string_view what) {
    if (m_isShown) std::fprintf(stderr, "\rReading %.*s\x1b[K", static_cast<int>(what.size()), what.data());
}
