// Standard output in large blocks, errors in one line.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

inline constexpr int kExitDone = 0;
inline constexpr int kExitNoTable = 1;
inline constexpr int kExitUsage = 2;
// For commands that answer a question by 0 and 1.
inline constexpr int kExitNo = 1;
inline constexpr int kExitTrouble = 2;

// Collects text and writes it in blocks. Once a write failed the rest is dropped, and Finish tells.
class ClOutput {
  public:
    ClOutput() { m_text.reserve(kBlock + kMargin); }

    // What is collected so far, to append to. Then FlushWhenFull.
    std::string& Text() { return m_text; }
    void FlushWhenFull() {
        if (m_text.size() >= kBlock) Flush();
    }
    ClOutput& operator<<(std::string_view text) {
        m_text += text;
        FlushWhenFull();
        return *this;
    }
    ClOutput& Pad(size_t count) {
        m_text.append(count, ' ');
        return *this;
    }
    // Whether a write failed, so that there is no use in going on.
    bool Failed() const { return m_failed; }
    // Writes what is left. False, with a line on standard error, when a write failed; a reader that went away is no
    // failure.
    bool Finish();

  private:
    static constexpr size_t kBlock = 64u << 10, kMargin = 4u << 10;

    void Flush();

    std::string m_text;
    bool m_failed = false;
    int m_error = 0;
};

// "quorlin: SUBJECT: MESSAGE" on standard error.
void SayError(std::string_view subject, std::string_view message);
inline constexpr char kOutOfMemory[] = "out of memory; try again with more, or a smaller table";

// Sixteen bytes a line: the offset, hexadecimal, and what of it is ASCII.
void ShowBytes(std::span<const uint8_t> bytes, ClOutput& output);
// Writes a file that doesn't exist yet, its owner's alone to read: whole or not at all. False with a line on standard
// error.
bool WriteNewFile(const std::string& path, std::span<const uint8_t> bytes);
