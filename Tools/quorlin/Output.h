// Standard output in large blocks, errors in one line.
#pragma once

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "Packages/OS/Program.h"
#include "Tools/quorlin/Text.h"

inline constexpr int kExitDone = 0;
inline constexpr int kExitNoTable = 1;
inline constexpr int kExitUsage = 2;
// For commands that answer a question by 0 and 1.
inline constexpr int kExitNo = 1;
inline constexpr int kExitTrouble = 2;

// Collects text and writes it in blocks. After a write failed, the rest is dropped and Finish returns false.
class ClOutput {
  public:
    // Room for `size` bytes at the end of the text. They belong to it once SetEnd is called with the place after them.
    char* Room(size_t size) {
        if (size > static_cast<size_t>(m_limit - m_end)) MakeRoom(size);
        return m_end;
    }
    void SetEnd(char* end) { m_end = end; }
    ClOutput& operator<<(std::string_view text) {
        if (text.empty()) return *this;
        char* place = Room(text.size());
        std::memcpy(place, text.data(), text.size());
        SetEnd(place + text.size());
        return *this;
    }
    ClOutput& operator<<(char character) {
        char* place = Room(1);
        *place = character;
        SetEnd(place + 1);
        return *this;
    }
    ClOutput& Number(uint64_t number) {
        constexpr size_t kMostDigits = 20;
        char* place = Room(kMostDigits);
        SetEnd(std::to_chars(place, place + kMostDigits, number).ptr);
        return *this;
    }
    ClOutput& Pad(size_t count) {
        constexpr size_t kUsual = 16;  // a known number of blanks takes no call
        char* place = Room(std::max(count, kUsual));
        std::memset(place, ' ', kUsual);
        if (count > kUsual) std::memset(place + kUsual, ' ', count - kUsual);
        SetEnd(place + count);
        return *this;
    }
    // Writes a text if it is plain, and otherwise nothing. Returns whether it is.
    template <char... specials>
    bool Plain(std::string_view text) {
        char* end = CopyPlain<specials...>(Room(text.size()), text);
        if (end != nullptr) SetEnd(end);
        return end != nullptr;
    }
    // Writes what AppendPrintable appends, and returns its size.
    size_t PutPrintable(std::string_view text) {
        const std::string_view trimmed = Trimmed(text);
        return Plain(trimmed) ? trimmed.size() : PutCleaned(trimmed);
    }
    // Whether a write failed, so that more output is useless.
    bool Failed() const { return m_failed; }
    // Writes what is left. False, with a line on standard error, if a write failed. A reader that went away is not a
    // failure.
    bool Finish();

  private:
    static constexpr size_t kBlock = 64u << 10;

    void Flush();
    void MakeRoom(size_t size);
    size_t PutCleaned(std::string_view text);

    std::unique_ptr<char[]> m_block;
    char *m_end = nullptr, *m_limit = nullptr;  // of the text, and of the block
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
// Writes a file that all users can read, in place of a plain file with the name, piece by piece, whole or not at all.
// False, with a line on standard error, if it can't be written.
bool ReplaceFile(const std::string& path, const WritePieces_t& write);
