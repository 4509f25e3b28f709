#include "Sources/VersionRecords.h"

#include "Sources/SMBIOSType.h"

std::vector<VersionRecord_t> VersionRecordsOf(const uint8_t* pData) {
    constexpr size_t kCount = 0x04, kRecords = 0x05, kRecordSize = 7;
    const ClStructure structure = ClStructure::WholeRecord(pData);
    std::vector<VersionRecord_t> records;
    records.reserve(structure.Byte(kCount));
    for (size_t at = kRecords; records.size() < structure.Byte(kCount); at += kRecordSize) {
        if (!structure.Holds(at, kRecordSize)) break;
        records.push_back({
            structure.Byte(at),
            {structure.Byte(at + 2), structure.Byte(at + 3), structure.Byte(at + 4)},
            structure.Word(at + 5)
        });
    }
    return records;
}
