// The records in which firmware lists versions, for types 14 and 221. The byte at 04h counts them, and they follow it
// unaligned, 7 bytes each. The count isn't checked against Length: what isn't in the structure's record reads 0.
#pragma once

#include <cstdint>

#include "Sources/SMBIOSType.h"

struct VersionRecord_t {
    uint8_t name;  // a string number; the byte after it numbers a string that isn't shown
    uint8_t parts[3];
    uint16_t lastPart;
};

uint8_t CountVersionRecords(const ClStructure& structure);
VersionRecord_t VersionRecordAt(const ClStructure& structure, size_t index);
// Whether the whole version record is in the structure's record.
bool HoldsVersionRecord(const ClStructure& structure, size_t index);
