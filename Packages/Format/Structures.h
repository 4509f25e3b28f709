// Structures in a table, as the SMBIOS standard lays them out: header, formatted area, strings, double NUL.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

inline constexpr uint32_t kHeaderSize = 4;   // type, length, handle
inline constexpr uint8_t kEndOfTable = 127;  // the type that ends a table

// One structure of a table, found by the walk. `data` holds `size` bytes of it, up to and including the double NUL of
// its string area, or up to the table's end where that comes first.
struct TableStructure_t {
    const uint8_t* data;
    uint32_t size;

    uint8_t Type() const { return data[0]; }
    uint8_t Length() const { return data[1]; }
    // Whether the formatted area is there, and the double NUL that ends the string area.
    bool IsWhole() const { return size >= Length() + 2u && data[size - 1] == 0 && data[size - 2] == 0; }
    uint16_t Handle() const { return static_cast<uint16_t>(data[2] | data[3] << 8); }
};

// The structure at `offset` of a table of `length` bytes. Its size is 0 when the table ends before a whole header.
TableStructure_t StructureAt(const uint8_t* table, uint32_t length, uint32_t offset);

// Whether `bytes` look like a table: whether they begin with plausible structures, one at least, with headers,
// formatted areas and strings without control characters. Any file has bytes that could be read as a structure.
bool LooksLikeTable(std::span<const uint8_t> bytes);
