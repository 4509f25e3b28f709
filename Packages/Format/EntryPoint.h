// Entry points (SMBIOS standard, 5.2.1 and 5.2.2): in memory and at the start of dumps they tell where a table is.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

// The texts that begin an entry point: the 32-bit one, its intermediate part, and the 64-bit one.
inline constexpr std::string_view kAnchor32 = "_SM_";
inline constexpr std::string_view kAnchorDMI = "_DMI_";
inline constexpr std::string_view kAnchor64 = "_SM3_";

// Sizes of whole entry points, and of the part that kAnchorDMI begins within the 32-bit one.
inline constexpr size_t kEntryPointSize32 = 0x1F;
inline constexpr size_t kEntryPointSize64 = 0x18;
inline constexpr size_t kDMIPartOffset = 0x10;

struct EntryPoint_t {
    uint8_t major, minor;   // SMBIOS version
    uint8_t revision;       // BCD revision of a 32-bit entry point; 0 in a 64-bit one
    uint64_t tableAddress;  // physical; in a dump the offset in the file
    uint32_t tableLength;   // bytes of the table
    bool lengthIsBound;     // the table may be shorter than tableLength, as a 64-bit entry point allows
    size_t size;            // of the entry point itself
    bool checksumsFit;
    uint16_t structures;  // how many a 32-bit one states, and the size of the largest; 0 in a 64-bit one
    uint16_t largest;
};

bool BeginsWith(std::span<const uint8_t> bytes, std::string_view text);

// Reads the entry point that begins at `bytes`. Returns false, and leaves `point` alone, if there is no whole one.
bool ParseEntryPoint(const uint8_t* bytes, size_t size, EntryPoint_t* point);
