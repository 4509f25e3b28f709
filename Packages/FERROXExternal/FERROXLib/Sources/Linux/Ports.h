// Access to I/O ports.
#pragma once

#include <cstdint>

// Gives the calling thread access to a range of ports during its lifetime.
class ClPorts {
  public:
    ClPorts() = default;
    ClPorts(const ClPorts&) = delete;
    ClPorts& operator=(const ClPorts&) = delete;
    ~ClPorts();
    // Returns false, with errno set, on failure.
    bool Open(uint32_t port, uint32_t size);

  private:
    uint32_t m_port = 0, m_size = 0;
};
