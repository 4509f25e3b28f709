#include "Tools/quorlin/Output.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "Packages/OS/Program.h"
#include "Tools/quorlin/CommandLine.h"

void ClOutput::Flush() {
    if (!m_failed && !WriteStandardOutput(m_block.get(), static_cast<size_t>(m_end - m_block.get()))) {
        m_failed = true;
        m_error = errno;
    }
    m_end = m_block.get();
}

void ClOutput::MakeRoom(size_t size) {
    Flush();
    if (size <= static_cast<size_t>(m_limit - m_end)) return;
    const size_t blockSize = std::max(size, kBlock);
    m_block = std::make_unique_for_overwrite<char[]>(blockSize);
    m_end = m_block.get();
    m_limit = m_end + blockSize;
}

size_t ClOutput::PutCleaned(std::string_view text) {
    const std::string printable = Printable(text);
    *this << printable;
    return printable.size();
}

bool ClOutput::Finish() {
    Flush();
    if (!m_failed || m_error == EPIPE) return true;
    SayError("standard output", std::string(std::strerror(m_error)) + "; try another place for the output");
    return false;
}

void SayError(std::string_view subject, std::string_view message) {
    std::string line("quorlin: ");
    // File names, too, may contain control characters.
    AppendPrintable(line, subject);
    line += ": ";
    AppendPrintable(line, message);
    line += '\n';
    std::fwrite(line.data(), 1, line.size(), stderr);
}

void ShowBytes(std::span<const uint8_t> bytes, ClOutput& output) {
    constexpr size_t kPerLine = 16;
    for (size_t begin = 0; begin < bytes.size(); begin += kPerLine) {
        const std::span<const uint8_t> line = bytes.subspan(begin, std::min(kPerLine, bytes.size() - begin));
        char text[8];
        std::snprintf(text, sizeof text, "  %04zX", begin & 0xFFFF);
        output << text;
        for (const uint8_t byte : line) {
            std::snprintf(text, sizeof text, " %02X", byte);
            output << text;
        }
        output.Pad(3 * (kPerLine - line.size()) + 2);
        for (const uint8_t byte : line) {
            output << (byte >= 0x20 && byte < 0x7F ? static_cast<char>(byte) : '.');
        }
        output << "\n";
    }
}

void SayNotMade(const std::string& path, int problem) {
    SayError(path, problem == EEXIST ? std::string("exists already, and nothing is overwritten; try another name")
                                     : std::string(std::strerror(problem)) + "; try another name or place");
}

bool WriteNewFile(const std::string& path, std::span<const uint8_t> bytes) {
    if (CreateWholeFile(path, bytes.data(), bytes.size())) return true;
    SayNotMade(path, errno);
    return false;
}

bool WriteFileOrStream(const std::string& path, std::span<const uint8_t> bytes) {
    if (path != kStandardStream) return WriteNewFile(path, bytes);
    ClOutput output;
    output << std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return output.Finish();
}

bool ReplaceFile(const std::string& path, const WritePieces_t& write) {
    if (ReplaceWholeFile(path, write)) return true;
    if (errno == EEXIST)
        SayError(path, "is no plain file, and nothing else is replaced; try another name");
    else
        SayNotMade(path, errno);
    return false;
}
