#include "Tools/quorlin/Output.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "Packages/Platform/Program.h"

void ClOutput::Flush() {
    if (!m_failed && !WriteStandardOutput(m_text.data(), m_text.size())) {
        m_failed = true;
        m_error = errno;
    }
    m_text.clear();
}

bool ClOutput::Finish() {
    if (!m_text.empty()) Flush();
    if (!m_failed || m_error == EPIPE) return true;
    SayError("standard output", std::strerror(m_error));
    return false;
}

void SayError(std::string_view subject, std::string_view message) {
    std::string line("quorlin: ");
    line.append(subject).append(": ").append(message).append("\n");
    std::fwrite(line.data(), 1, line.size(), stderr);
}
