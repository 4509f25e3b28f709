// An open file that closes itself.
#pragma once

#include <unistd.h>

#include <utility>

class ClDescriptor {
  public:
    explicit ClDescriptor(int file) : m_file(file) {}
    ClDescriptor(ClDescriptor&& other) noexcept : m_file(std::exchange(other.m_file, -1)) {}
    ClDescriptor& operator=(ClDescriptor&&) = delete;
    ~ClDescriptor() {
        if (m_file >= 0) close(m_file);
    }
    bool IsOpen() const { return m_file >= 0; }
    int Get() const { return m_file; }
    // The file, which stays open from here on.
    int Release() { return std::exchange(m_file, -1); }

  private:
    int m_file;
};
