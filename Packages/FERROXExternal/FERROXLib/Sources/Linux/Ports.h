// I/O ports of the calling thread.
#pragma once

#include <cstdint>

// Opens a range of ports to the calling thread, and shuts it again.
class ClPorts {
  public:
    ClPorts() = default;
    ClPorts(const ClPorts&) = delete;
    ClPorts& operator=(const ClPorts&) = delete;
    ~ClPorts();
    // False with errno set.
    bool Open(uint32_t port, uint32_t size);

  private:
    uint32_t m_port = 0, m_size = 0;
};
