#include "Sources/VersionRecords.h"

static constexpr size_t kCount = 0x04, kRecords = 0x05, kRecordSize = 7;

uint8_t CountVersionRecords(const ClStructure& structure) { return structure.Byte(kCount); }

VersionRecord_t VersionRecordAt(const ClStructure& structure, size_t index) {
    const size_t at = kRecords + index * kRecordSize;
    return {
        structure.Byte(at),
        {structure.Byte(at + 2), structure.Byte(at + 3), structure.Byte(at + 4)},
        structure.Word(at + 5)
    };
}

bool HoldsVersionRecord(const ClStructure& structure, size_t index) {
    return kRecords + (index + 1) * kRecordSize <= structure.ReadableBytes();
}
