// The store: opening and closing, making records from the table, and lookups.
#include <algorithm>
#include <cstdio>
#include <utility>

#include "Packages/Container/Container.h"
#include "Packages/FERROXExternal/StructureStore/Machine.h"
#include "Packages/FERROXExternal/StructureStore/ParsedRecords.h"
#include "Packages/FERROXExternal/StructureStore/StoreParts.h"
#include "Packages/Format/Structures.h"
#include "Packages/OS/Memory.h"
#include "Packages/OS/MemoryGuard.h"
#include "Packages/OS/OS.h"

DebugHandle_t storeTraceHandle = nullptr;

#define TRACE(function, level, ...) \
    QUORLIN_TRACE(storeTraceHandle, "StructureStore\\SMBIOSMain", function, level, __VA_ARGS__)

namespace {

constexpr uint32_t kTypes = 256;
constexpr uint32_t kMostRecords = 255;  // limit of a lookup with an 8-bit count

uint32_t instanceCount = 0;
ContainerHandle_t mySMBIOSLinkedListHdl = nullptr;
LibVersion_t libraryVersion = {};
TableFacts_t tableFacts = {};  // valid while the store is up

// An index by type, beside the list of all records: a sweep looks up some 50 types, and going through the whole list
// for each would be slow. Records of a type are in table order.
struct TypeRecords_t {
    uint8_t** records;
    uint32_t count;
    uint32_t room;
};
TypeRecords_t recordsOfType[kTypes] = {};

uint32_t RecordType(const void* record) {
    uint32_t type;
    std::memcpy(&type, record, sizeof type);
    return type;
}

int32_t CompareRecords(const void* first, const void* second) {
    return RecordType(first) == RecordType(second) ? 0 : -1;
}

// Records live until the store is closed, so they share blocks.
struct RecordBlock_t {
    RecordBlock_t* older;
    size_t left;  // bytes that no record has
};
constexpr size_t kBlockBytes = 16u << 10;
RecordBlock_t* newestBlock = nullptr;

// Returns room for a record that goes to no other one. Null if memory runs out.
uint8_t* RoomForRecord(size_t bytes) {
    constexpr size_t kAlignment = 8;
    const size_t room = (bytes + kGuardBytes + kAlignment - 1) / kAlignment * kAlignment;
    if (newestBlock == nullptr || newestBlock->left < room) {
        const size_t left = std::max(room, kBlockBytes);
        auto* block = static_cast<RecordBlock_t*>(os_malloc(sizeof(RecordBlock_t) + left));
        if (block == nullptr) return nullptr;
        *block = {newestBlock, left};
        newestBlock = block;
        ForbidBytes(block + 1, left);
    }
    newestBlock->left -= room;
    auto* record = reinterpret_cast<uint8_t*>(newestBlock + 1) + newestBlock->left;
    AllowBytes(record, bytes);
    return record;
}

// Empties the list and releases all records. Retries once if `Pop` can't take the lock.
void ReleaseRecords() {
    void* last;
    for (TypeRecords_t& type : recordsOfType) {
        if (type.records == nullptr) continue;
        for (uint32_t place = 0; place < type.count; place++)
            if (Pop(mySMBIOSLinkedListHdl, &last) != kSuccess) Pop(mySMBIOSLinkedListHdl, &last);
        os_free(type.records);
        type = {};
    }
    while (newestBlock != nullptr) os_free(std::exchange(newestBlock, newestBlock->older));
}

// Appends a record.
status_t StoreRecord(uint8_t* record) {
    TypeRecords_t& type = recordsOfType[RecordType(record)];
    if (type.count == type.room) {
        const uint32_t room = type.room == 0 ? 4 : 2 * type.room;
        auto** records = static_cast<uint8_t**>(os_realloc(type.records, room * sizeof(uint8_t*)));
        if (records == nullptr) return kNoMemory;
        type.records = records;
        type.room = room;
    }
    if (Insert(mySMBIOSLinkedListHdl, record) != kSuccess) return kFailure;
    type.records[type.count++] = record;
    return kSuccess;
}

// Returns a new record: the type word, `atHand` bytes of a structure, and zeros up to `bodySize`; null if out of
// memory.
uint8_t* NewRecord(uint32_t type, const uint8_t* bytes, size_t atHand, size_t bodySize) {
    uint8_t* record = RoomForRecord(sizeof type + bodySize);
    if (record == nullptr) return nullptr;
    std::memcpy(record, &type, sizeof type);
    std::memcpy(record + sizeof type, bytes, atHand);
    std::memset(record + sizeof type + atHand, 0, bodySize - atHand);
    return record;
}

// A structure's string area with its double NUL, or the part before the end of the table.
struct StringArea_t {
    const uint8_t* data;
    uint32_t size;
};

StringArea_t StringAreaOf(const TableStructure_t& structure) {
    if (structure.size <= structure.Length()) return {nullptr, 0};
    return {structure.data + structure.Length(), structure.size - structure.Length()};
}

// Stores a parsed record. If the structure is shorter than `bytes`, the missing bytes come from its string area, and
// then are zeros.
status_t ParseFixedStruct(const TableStructure_t& structure, uint8_t bytes, std::span<const uint8_t> indexOffsets,
                          const char* function, const char* insertTrace) {
    const StringArea_t area = StringAreaOf(structure);
    const size_t areaOffset = bytes + indexOffsets.size() * kPointerSize;
    const size_t atHand = structure.size < bytes ? structure.size : bytes;
    uint8_t* record = NewRecord(structure.Type(), structure.data, atHand, areaOffset + area.size + 2);
    if (record == nullptr) {
        TRACE(function, kErrorExit, "Error allocating memory");
        return kNoMemory;
    }
    uint8_t* body = record + sizeof(uint32_t);
    if (area.size != 0) std::memcpy(body + areaOffset, area.data, area.size);
    for (size_t place = 0; place < indexOffsets.size(); place++) {
        const char* text =
            FindStructString(reinterpret_cast<const char*>(body + areaOffset), body[indexOffsets[place]]);
        std::memcpy(body + bytes + place * kPointerSize, &text, sizeof text);
    }
    if (StoreRecord(record) != kSuccess) {
        TRACE(function, kErrorExit, "%s", insertTrace);
        return kFailure;
    }
    return kSuccess;
}

status_t ParseBIOSStruct(const TableStructure_t& structure) {
    return ParseFixedStruct(structure, kBiosBytes, kBiosStrings, "ParseBIOSStruct",
                            "Error Inserting mySMBIOSStructPtr ... Exiting");
}

status_t ParseSystemInfoStruct(const TableStructure_t& structure) {
    return ParseFixedStruct(structure, kSystemBytes, kSystemStrings, "ParseSystemInfoStruct",
                            "Error Inserting mySMBIOSStructPtr");
}

status_t ParseBaseBoardInfoStruct(const TableStructure_t& structure) {
    return ParseFixedStruct(structure, kBaseboardBytes, kBaseboardStrings, "ParseBaseBoardInfoStruct",
                            "Error Inserting mySMBIOSStructPtr");
}

// Stores a record of any other type. The zeros at its end replace the part of the formatted area, and the double NUL,
// that the end of the table may have cut off.
status_t ParseDefaultStruct(const TableStructure_t& structure) {
    const uint32_t size = structure.size > structure.Length() ? structure.size : structure.Length();
    uint8_t* record = NewRecord(structure.Type(), structure.data, structure.size, size + 2 + kSpareBytes);
    if (record == nullptr) {
        TRACE("ParseDefaultStruct", kErrorExit, "Error allocating memory ... Exiting");
        return kNoMemory;
    }
    if (StoreRecord(record) != kSuccess) {
        TRACE("ParseDefaultStruct", kErrorExit, "Error Inserting mySMBIOSStructPtr ... Exiting");
        return kFailure;
    }
    return kSuccess;
}

// Notes the first broken structure.
void NoteBroken(const TableStructure_t& structure, uint32_t offset, TableFacts_t& facts) {
    if (facts.brokenAt != TableFacts_t::kNowhere) return;
    if (structure.size != 0 && structure.Length() >= kHeaderSize && structure.IsWhole()) return;
    facts.brokenAt = offset;
    facts.isCut = structure.size == 0 || structure.Length() >= kHeaderSize;
}

// Notes what comes after the last structure: an End-of-Table structure, or less than a header.
void NoteEnd(std::span<const uint8_t> table, uint32_t offset, TableFacts_t& facts) {
    facts.hasEnd = offset < facts.length && table[offset] == kEndOfTable;
    if (offset < facts.length && !facts.hasEnd) NoteBroken({&table[offset], 0}, offset, facts);
}

// Stores a structure. One that is equal to the last of its type shares its record, so that repeated filler in a broken
// table costs little memory.
status_t ParseStructure(const TableStructure_t& structure, TableStructure_t& lastOfType) {
    const TableStructure_t last = std::exchange(lastOfType, structure);
    if (last.size == structure.size && std::memcmp(last.data, structure.data, last.size) == 0) {
        const TypeRecords_t& type = recordsOfType[structure.Type()];
        return StoreRecord(type.records[type.count - 1]);
    }
    switch (structure.Type()) {
        case 0: return ParseBIOSStruct(structure);
        case 1: return ParseSystemInfoStruct(structure);
        case 2: return ParseBaseBoardInfoStruct(structure);
        default: return ParseDefaultStruct(structure);
    }
}

status_t ParseAllStructures(uint32_t length, const uint8_t* table) {
    TableStructure_t lastOfType[kTypes] = {};
    tableFacts = {.length = length};
    uint32_t offset = 0;
    for (const TableStructure_t& structure : ClWalk({table, length})) {
        if (structure.Type() == kEndOfTable) break;
        NoteBroken(structure, offset, tableFacts);
        TRACE("ParseAllStructures", kInfo, "The present type is 0x%x myHeaderPtr->Length = 0x%x", structure.Type(),
              structure.Length());
        const status_t status = ParseStructure(structure, lastOfType[structure.Type()]);
        if (status != kSuccess) {
            ReleaseRecords();
            TRACE("ParseAllStructures", kErrorExit,
                  "Error parsing the specific structure type = %u ret =%u  ... Returning",
                  static_cast<unsigned>(structure.Type()), status);
            return status;
        }
        offset += structure.size;
    }
    NoteEnd({table, length}, offset, tableFacts);
    return kSuccess;
}

// Reads the table by the first access method that has it.
status_t GetTable(const char* function, uint8_t* entry, SMBIOSTableImage_t** image) {
    uint8_t dmiEntry[kDMIEntryBufferSize] = {};
    TRACE(function, kInfo, "Trying to Read SMBIOS OS Specific Way ");
    if (CurrentMachine()->osGetStructuresDataEFI(entry, dmiEntry, image) == kSuccess) return kSuccess;
    TRACE(function, kError, "Error reading the SMBIOS with OS-specific way");
    if (CurrentMachine()->osGetStructuresDataNonEFI(entry, dmiEntry, image) == kSuccess) return kSuccess;
    TRACE(function, kError, "Error reading the Table with Generic way as well");
    TRACE(function, kErrorExit, "Error getting SMBIOS Table ... Exiting ");
    return kFailure;
}

status_t InitRecordList() {
    ContainerParams_t params = {};
    os_strncpy(params.ListName, "SMBIOSStructList", sizeof params.ListName - 1);
    params.ContainerType = kPlainList;
    params.DataType = kOwnData;
    params.CompareFunction = CompareRecords;
    return InitContainer(&params, &mySMBIOSLinkedListHdl, 0);
}

void CloseMachineAndTrace() {
    CurrentMachine()->FERROXTerminate();
    DebugLibExit(storeTraceHandle);
    storeTraceHandle = nullptr;
}

}  // namespace

bool StoreIsUp() { return instanceCount != 0; }

const char* FindStructString(const char* area, uint8_t number) {
    const char* start = area;
    uint8_t current = 1;
    for (const char* byte = area;; byte++) {
        if (byte[0] == '\0' && byte[1] == '\0') return current == number ? start : nullptr;
        if (byte[0] != '\0') continue;
        if (current == number) return byte == start ? nullptr : start;
        current++;
        start = byte + 1;
    }
}

status_t LibSMBIOSInit(uint8_t* entry) {
    if (instanceCount != 0) {
        instanceCount++;
        entry[6] = tableFacts.major;
        entry[7] = tableFacts.minor;
        return kSuccess;
    }
    if (DebugLibInit("SMBIOSDbgHdl", &storeTraceHandle) != kSuccess) {
        std::fputs("\nError in Debug Library Intialization \n", stdout);
        std::fflush(stdout);  // keeps the order if the host writes by other means
        storeTraceHandle = nullptr;
    }
    if (CurrentMachine()->FERROXInitialize() != kSuccess) {
        TRACE("LibSMBIOSInit", kErrorExit, "Error in FERROXIntialize");
        DebugLibExit(storeTraceHandle);
        storeTraceHandle = nullptr;
        return kFailure;
    }
    libraryVersion = {"02", "00", "0", "1001"};
    SMBIOSTableImage_t* image = nullptr;
    if (GetTable("LibSMBIOSInit", entry, &image) != kSuccess) {
        CloseMachineAndTrace();
        return kFailure;
    }
    if (InitRecordList() != kSuccess) {
        TRACE("LibSMBIOSInit", kErrorExit, "Error in InitContainer ... Exiting ");
        CloseMachineAndTrace();
        os_free(image);
        return kFailure;
    }
    if (ParseAllStructures(image->Length, image->Data()) != kSuccess) {
        TRACE("LibSMBIOSInit", kErrorExit, "Error in Parsing all structures  ... Exiting ");
        UnInitContainer(mySMBIOSLinkedListHdl);
        mySMBIOSLinkedListHdl = nullptr;
        os_free(image);
        CloseMachineAndTrace();
        return kFailure;
    }
    instanceCount = 1;
    tableFacts.major = entry[6];
    tableFacts.minor = entry[7];
    os_free(image);
    return kSuccess;
}

status_t LibSMBIOSExit() {
    if (instanceCount == 0) {
        TRACE("LibSMBIOSExit", kErrorExit, "LibSMBIOSExit:No SMBIOS Instance present");
        return kFailure;
    }
    if (instanceCount > 1) {
        instanceCount--;
        TRACE("LibSMBIOSExit", kInfo, "LibSMBIOSExit: Multiple instances of SMBIOS present .. Not cleaning it");
        return kSuccess;
    }
    instanceCount = 0;
    ReleaseRecords();
    const status_t status = UnInitContainer(mySMBIOSLinkedListHdl);
    mySMBIOSLinkedListHdl = nullptr;
    if (status != kSuccess) {
        TRACE("LibSMBIOSExit", kErrorExit, "Error in UNInit mySMBIOSLinkedListHdl");
        return kFailure;
    }
    if (CurrentMachine()->FERROXTerminate() != kSuccess) {
        TRACE("LibSMBIOSExit", kErrorExit, "Error in FERROXTerminate");
        return kFailure;
    }
    DebugLibExit(storeTraceHandle);
    storeTraceHandle = nullptr;
    return kSuccess;
}

std::string TableFacts_t::Remark() const {
    if (brokenAt == kNowhere) return {};
    char text[96];
    os_snprintf(text, sizeof text, sizeof text - 1, "broken at offset %Xh: %s", brokenAt,
                isCut ? "the table ends within a structure" : "a structure's length is below a header's");
    return text;
}

bool StoreHasType(uint8_t type) { return recordsOfType[type].count != 0; }

const TableFacts_t* FactsOfTable() { return StoreIsUp() ? &tableFacts : nullptr; }

TableFacts_t FactsOf(std::span<const uint8_t> table) {
    TableFacts_t facts = {.length = static_cast<uint32_t>(table.size())};
    uint32_t offset = 0;
    for (const TableStructure_t& structure : ClWalk(table)) {
        if (structure.Type() == kEndOfTable) break;
        NoteBroken(structure, offset, facts);
        offset += structure.size;
    }
    NoteEnd(table, offset, facts);
    return facts;
}

status_t GetSMBIOSVersion(uint8_t* major, uint8_t* minor) {
    if (major == nullptr || minor == nullptr) return kNullPointer;
    if (!StoreIsUp()) return kFailure;
    *major = tableFacts.major;
    *minor = tableFacts.minor;
    return kSuccess;
}

namespace {

uint32_t CountOfType(uint32_t type) { return type < kTypes ? recordsOfType[type].count : 0; }

// Copies the addresses of `number` records, from instance `first` on. Returns 1 or 5.
status_t CopyRecords(uint32_t type, uint32_t first, uint32_t number, uint8_t*** records) {
    if (number == 0) {
        TRACE("GetSMBIOSStruture", kInfo, "No Structures found ");
        *records = nullptr;
        return kSuccess;
    }
    const size_t size = number * sizeof(uint8_t*);
    auto** array = static_cast<uint8_t**>(os_malloc(size));
    if (array == nullptr) {
        TRACE("GetSMBIOSStruture", kErrorExit, "Error allocating memory  .. Exiting ");
        return kFailure;
    }
    os_memcpy(array, size, recordsOfType[type].records + first, size);
    *records = array;
    return kSuccess;
}

}  // namespace

status_t GetSMBIOSStrutureFrom(uint32_t type, uint32_t first, uint8_t*** records, uint32_t* count) {
    *count = 0;
    const uint32_t all = CountOfType(type);
    const uint32_t number = all > first ? all - first : 0;
    const status_t status = CopyRecords(type, first, number, records);
    if (status == kSuccess) *count = number;
    return status;
}

status_t GetSMBIOSStruture(uint32_t type, uint8_t*** records, uint8_t* count) {
    *count = 0;
    const uint32_t all = CountOfType(type);
    const uint32_t number = all < kMostRecords ? all : kMostRecords;
    const status_t status = CopyRecords(type, 0, number, records);
    if (status != kSuccess) return status;
    if (all > kMostRecords)
        TRACE("GetSMBIOSStruture", kWarning, "%u structures of type %u, of which the first %u are given", all, type,
              kMostRecords);
    *count = static_cast<uint8_t>(number);
    return kSuccess;
}

status_t GetSMBIOSDump(uint8_t* entry, SMBIOSTableImage_t** image) {
    SMBIOSTableImage_t* table = nullptr;
    if (GetTable("GetSMBIOSDump", entry, &table) != kSuccess) {
        CloseMachineAndTrace();
        return kFailure;
    }
    *image = table;
    TRACE("GetSMBIOSDump", kExit, "SMBIOS Table populated correctly");
    return kSuccess;
}

status_t GetSMBIOSLibVersion(LibVersion_t* version) {
    if (version == nullptr) return kNullPointer;
    *version = libraryVersion;
    return kSuccess;
}
