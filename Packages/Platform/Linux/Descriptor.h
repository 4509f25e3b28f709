// An open file that closes itself.
#pragma once

#include <unistd.h>

#include <utility>

class ClDescriptor {
  public:
    explicit ClDescriptor(int file) : file_(file) {}
    ClDescriptor(ClDescriptor&& other) noexcept : file_(std::exchange(other.file_, -1)) {}
    ClDescriptor& operator=(ClDescriptor&&) = delete;
    ~ClDescriptor() {
        if (file_ >= 0) close(file_);
    }
    bool IsOpen() const { return file_ >= 0; }
    int Get() const { return file_; }

  private:
    int file_;
};
