// The names of PCI classes and devices, from the system's list.
#pragma once

#include <cstdint>
#include <span>
#include <string>

struct PciName_t {
    uint16_t vendor, device;
    uint32_t classCode;  // class, subclass and interface
    std::string className, vendorName, deviceName;
};

// Fills in the names of all that the list has. It isn't read if there is nothing to name.
void NamePciDevices(std::span<PciName_t> devices);
