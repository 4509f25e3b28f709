// PCI configuration space, through sysfs.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "Packages/FERROXExternal/FERROXLib/Sources/Linux/LinuxFERROX.h"
#include "Packages/OS/Linux/Descriptor.h"

bool MoveConfiguration(Direction_t direction, uint32_t location, uint32_t offset, uint8_t* data, uint32_t size) {
    const bool isRead = direction == Direction_t::kRead;
    char path[64];
    std::snprintf(path, sizeof path, "/sys/bus/pci/devices/%04x:%02x:%02x.%x/config", Segment(location), Bus(location),
                  Device(location), Function(location));
    const ClDescriptor file(path, isRead ? O_RDONLY : O_WRONLY);
    struct stat facts = {};
    if (file.IsOpen() ? fstat(file.Get(), &facts) != 0 : errno != ENOENT || access("/sys/bus/pci/devices", F_OK) != 0)
        return false;
    while (size != 0) {
        ssize_t moved = size;
        if (static_cast<off_t>(offset) < facts.st_size) {
            moved = isRead ? pread(file.Get(), data, size, offset) : pwrite(file.Get(), data, size, offset);
            if (moved == 0) errno = EACCES;  // the rest needs privileges
            if (moved <= 0) return false;
        } else if (isRead) {
            std::memset(data, 0xFF, size);
        }
        data += moved;
        offset += static_cast<uint32_t>(moved);
        size -= static_cast<uint32_t>(moved);
    }
    return true;
}

static status_t Read(const char* function, uint32_t location, uint32_t offset, DataBuffer_t* buffer) {
    return MoveConfiguration(Direction_t::kRead, location, offset, buffer->Data(), buffer->Size) ? kSuccess
                                                                                                 : Refused(function);
}

status_t OSPCIRead(uint32_t location, uint32_t offset, DataBuffer_t* buffer) {
    if (NeedsOpen() != kSuccess) return 0;
    return buffer->Size == 0 ? kSuccess : Read("OSPCIRead", location, offset, buffer);
}

status_t OSPCIExRead(uint32_t location, uint32_t offset, DataBuffer_t* buffer) {
    if (NeedsOpen() != kSuccess) return 0;
    const auto read = [](uint64_t, uint32_t place, uint32_t from, DataBuffer_t* into) {
        return Read("OSPCIExRead", place, from, into);
    };
    return ReadExtendedSpace(HasHypervisor(), read, location, offset, buffer);
}
