// Open files. None of them is descriptor 0, 1 or 2: in a process that was started without standard streams a file of
// ours would take the place of one.
#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <cstdio>
#include <utility>

// As open, closed on exec. -1 with errno set.
int OpenAbove(const char* path, int flags, mode_t mode = 0);
// Moves a descriptor up if it has taken a standard stream's place, and closes the lower one. -1 with errno set, also
// for -1.
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
    // The file, which stays open from here on.
    int Release() { return std::exchange(m_file, -1); }
    // The file as a stream, which closes it. Null with errno set, also for no file.
    std::FILE* OpenStream(const char* mode) {
        std::FILE* stream = fdopen(m_file, mode);
        if (stream != nullptr) Release();
        return stream;
    }

  private:
    int m_file;
};
