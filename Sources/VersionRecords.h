// The records in which firmware lists versions: types 14 and 221 read them from structures of one form, whatever their
// type. A byte at 04h counts them; they follow unaligned, 7 bytes each. Nothing holds the count against Length: what
// isn't in the structure's record reads 0.
#pragma once

#include <cstdint>

#include "Sources/SMBIOSType.h"

struct VersionRecord_t {
    uint8_t name;  // a string number; the byte after it numbers a text that nobody shows
    uint8_t parts[3];
    uint16_t lastPart;
};

uint8_t CountVersionRecords(const ClStructure& structure);
VersionRecord_t VersionRecordAt(const ClStructure& structure, size_t index);
// Whether the whole of it is in the structure's record.
bool HoldsVersionRecord(const ClStructure& structure, size_t index);
