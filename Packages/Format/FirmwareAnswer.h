// The answer of a firmware-table call for the SMBIOS table, in the form of Windows: this head, then the table.
#pragma once

#include <cstdint>

struct FirmwareAnswer_t {
    uint8_t method;        // how the firmware is called; 0 or 1
    uint8_t major, minor;  // SMBIOS version
    uint8_t revision;      // BCD revision of the entry point
    uint32_t length;       // bytes of the table
};
static_assert(sizeof(FirmwareAnswer_t) == 8);
