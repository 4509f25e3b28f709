// The records in which firmware lists versions: types 14 and 221 read them from structures of one form, whatever their
// type. A byte at 04h counts them; they follow unaligned, 7 bytes each.
#pragma once

#include <cstdint>
#include <vector>

struct VersionRecord_t {
    uint8_t name;  // a string number; the byte behind it numbers a text that nobody shows
    uint8_t parts[3];
    uint16_t lastPart;
};

// Copies the records of the structure at `pData`: as many as are counted and as the formatted area holds. Throws
// std::bad_alloc without memory.
std::vector<VersionRecord_t> VersionRecordsOf(const uint8_t* pData);
