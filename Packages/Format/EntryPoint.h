// The entry points of the SMBIOS standard (5.2.1, _SM_; 5.2.2, _SM3_), as they stand in memory and at the head of
// dumps.
#pragma once

#include <cstddef>
#include <cstdint>

struct EntryPoint_t {
    uint8_t major, minor;   // SMBIOS version
    uint8_t revision;       // BCD revision of _SM_, 0 in _SM3_
    uint64_t tableAddress;  // physical, or in a dump the file offset
    uint32_t tableLength;   // bytes of the table
    bool lengthIsBound;     // _SM3_: the table has at most so many
    size_t size;            // of the entry point itself
    bool checksumsFit;
};

// Reads the entry point that begins at `bytes`. False when there is none, or it is cut short; `point` stays then.
bool ParseEntryPoint(const uint8_t* bytes, size_t size, EntryPoint_t* point);
