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

// Collects text and writes it in blocks. After a write failed, the rest is dropped and Finish returns false.
class ClOutput {
  public:
    ClOutput() { m_text.reserve(kBlock + kMargin); }

    // What is collected so far, to append to. Call FlushWhenFull afterwards.
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
    // Whether a write failed, so that more output is useless.
    bool Failed() const { return m_failed; }
    // Writes what is left. False, with a line on standard error, if a write failed. A reader that went away is not a
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
// Says why a file or folder can't be made; `problem` is an errno.
void SayNotMade(const std::string& path, int problem);
inline constexpr char kOutOfMemory[] = "out of memory; try again with more, or a smaller table";

// Writes a hex dump, sixteen bytes a line.
void ShowBytes(std::span<const uint8_t> bytes, ClOutput& output);
// Writes a new file that only its owner can read, whole or not at all. False, with a line on standard error, if it
// exists or can't be written.
bool WriteNewFile(const std::string& path, std::span<const uint8_t> bytes);
// The same, but to standard output for "-".
bool WriteFileOrStream(const std::string& path, std::span<const uint8_t> bytes);
// Writes a file that all users can read, in place of a plain file with the name, whole or not at all. False, with a
// line on standard error, if it can't be written.
bool ReplaceFile(const std::string& path, std::string_view text);
