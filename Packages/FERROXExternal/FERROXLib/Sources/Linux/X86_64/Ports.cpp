// I/O ports, through ioperm.
#include "Packages/FERROXExternal/FERROXLib/Sources/Linux/Ports.h"

#include <sys/io.h>

#include <cerrno>
#include <cstring>

#include "Packages/FERROXExternal/FERROXLib/Sources/Linux/LinuxFERROX.h"

bool ClPorts::Open(uint32_t port, uint32_t size) {
    errno = EINVAL;
    if (port + uint64_t{size} > 0x10000 || ioperm(port, size, 1) != 0) return false;
    m_port = port;
    m_size = size;
    return true;
}

ClPorts::~ClPorts() {
    if (m_size != 0) ioperm(m_port, m_size, 0);
}

static status_t MovePort(const char* function, Direction_t direction, uint16_t port, DataBuffer_t* buffer) {
    const uint32_t size = buffer->Size;
    uint32_t value = 0;
    if (size > sizeof value) return kBadValue;
    if (NeedsOpen() != kSuccess) return 0;
    if (size != 1 && size != 2 && size != 4) return Refused(function, "a port is accessed by 1, 2 or 4 bytes");
    ClPorts ports;
    if (!ports.Open(port, size)) return Refused(function);
    if (direction == Direction_t::kRead) {
        value = size == 1 ? inb(port) : size == 2 ? inw(port) : inl(port);
        std::memcpy(buffer->Data(), &value, size);
        return kSuccess;
    }
    std::memcpy(&value, buffer->Data(), size);
    if (size == 1) outb(static_cast<uint8_t>(value), port);
    if (size == 2) outw(static_cast<uint16_t>(value), port);
    if (size == 4) outl(value, port);
    return kSuccess;
}

status_t OSReadPort(uint16_t port, DataBuffer_t* buffer) {
    return MovePort("OSReadPort", Direction_t::kRead, port, buffer);
}

status_t OSWritePort(uint16_t port, DataBuffer_t* buffer) {
    return MovePort("OSWritePort", Direction_t::kWrite, port, buffer);
}
