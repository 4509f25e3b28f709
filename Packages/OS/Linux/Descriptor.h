// Open files with descriptors above 2. In a process that was started without standard streams, a file would otherwise
// become one.
#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <cstdio>
#include <utility>

// As open, with O_CLOEXEC. Returns -1, with errno set, on failure.
int OpenAbove(const char* path, int flags, mode_t mode = 0);
// If the descriptor is that of a standard stream, duplicates it above 2 and closes the old one. Returns the descriptor
// to use; -1, with errno set, on failure. -1 returns -1.
int MoveAbove(int file);
// As fopen.
std::FILE* OpenStreamAbove(const char* path, const char* mode);

// An open file that closes itself.
class ClDescriptor {
  public:
    explicit ClDescriptor(int file) : m_file(file) {}
    ClDescriptor(const char* path, int flags, mode_t mode = 0) : m_file(OpenAbove(path, flags, mode)) {}
    ClDescriptor(const ClDescriptor&) = delete;
    ClDescriptor& operator=(const ClDescriptor&) = delete;
    ~ClDescriptor() {
        if (m_file >= 0) close(m_file);
    }
    bool IsOpen() const { return m_file >= 0; }
    int Get() const { return m_file; }
    // Returns the descriptor, which the caller now has to close.
    int Release() { return std::exchange(m_file, -1); }
    // Returns a stream that takes over the descriptor; null, with errno set, on failure or if no file is open.
    std::FILE* OpenStream(const char* mode) {
        std::FILE* stream = fdopen(m_file, mode);
        if (stream != nullptr) Release();
        return stream;
    }

  private:
    int m_file;
};
