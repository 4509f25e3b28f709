#include "Tools/quorlin/Progress.h"

#include <cstdio>

#include "Packages/Platform/Program.h"

using std::chrono::steady_clock;

// Where the results go to the terminal too, they are progress enough.
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
    if (seconds > 0)
        std::fprintf(stderr, "\r%zu images, %.0f a second\x1b[K", m_done, static_cast<double>(m_done) / seconds);
}
