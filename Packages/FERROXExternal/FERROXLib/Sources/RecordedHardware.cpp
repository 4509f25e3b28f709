#include "Packages/FERROXExternal/FERROXLib/RecordedHardware.h"

#include <algorithm>
#include <cstring>
#include <tuple>

#include "Packages/FERROXExternal/FERROXLib/Sources/FERROXInternal.h"
#include "Packages/OS/FirmwareTables.h"

namespace {

const RecordedHardware_t* current = nullptr;

// Any operation that no record answers.
template <class... Arguments_t>
status_t NotRecorded(Arguments_t...) {
    NoteRefusal(Refusal_t::kNotRecorded);
    return kNotSupported;
}

// CPUID and model-specific registers of a machine that has none.
status_t NotInArchitecture() {
    NoteRefusal(Refusal_t::kArchitecture);
    return kNotSupported;
}

status_t Open() { return kSuccess; }

template <size_t place>
status_t GetVersion(uint32_t* version) {
    if (place >= current->facts.versions.size()) return NotRecorded();
    *version = current->facts.versions[place];
    return kSuccess;
}

// Functions that aren't there, and extended space that isn't, read as ones.
status_t ReadSpace(uint32_t location, uint32_t offset, DataBuffer_t* buffer) {
    constexpr size_t kLegacySpace = 256;
    const std::vector<PciFunction_t>& functions = current->functions;
    const auto order = [](const PciFunction_t& function) { return PciOrder(function.location); };
    const auto found = std::ranges::lower_bound(functions, PciOrder(location), {}, order);
    std::span<const uint8_t> bytes;
    if (found != functions.end() && found->location == location)
        bytes = found->bytes;
    else if (std::ranges::find(current->facts.segments, Segment(location)) == current->facts.segments.end())
        return NotRecorded();
    const size_t end = size_t{offset} + buffer->Size;
    const bool isWhole = bytes.size() == kLegacySpace && (end <= kLegacySpace || current->facts.hasExtendedSpace);
    if (!bytes.empty() && end > bytes.size() && !isWhole) return NotRecorded();
    for (size_t place = offset; place < end; place++)
        buffer->Data()[place - offset] = place < bytes.size() ? bytes[place] : 0xFF;
    return kSuccess;
}

status_t ReadExtended(uint32_t location, uint32_t offset, DataBuffer_t* buffer) {
    CPUIDRecord_t record = {0, 1, 0, 0, 0};
    if (current->facts.known.IsArm64())
        record = {};
    else if (ReadRecordedCPUID(*current, kAnyProcessor, &record) != kSuccess)
        return NotRecorded();
    const auto read = [](uint64_t, uint32_t place, uint32_t from, DataBuffer_t* into) {
        return ReadSpace(place, from, into);
    };
    return ReadExtendedSpace(record.Ecx >> 31 != 0, read, location, offset, buffer);
}

status_t ReadRegister(MSRRecord_t* record) {
    if (current->facts.known.IsArm64()) return NotInArchitecture();
    const uint32_t processor = record->Cpu == kAnyProcessor ? 0 : record->Cpu;
    const auto key = [](const RecordedMsr_t& each) { return uint64_t{each.number} << 32 | each.processor; };
    const uint64_t wanted = uint64_t{record->Msr} << 32 | processor;
    const auto found = std::ranges::lower_bound(current->registers, wanted, {}, key);
    if (found == current->registers.end() || key(*found) != wanted) return NotRecorded();
    NoteRefusal(Refusal_t::kOther);
    if (!found->value) return 0;
    record->HiContent = static_cast<uint32_t>(*found->value >> 32);
    record->LoContent = static_cast<uint32_t>(*found->value);
    return kSuccess;
}

status_t ReadProcessor(uint32_t processor, CPUIDRecord_t* record) {
    return ReadRecordedCPUID(*current, processor, record);
}

// ---- ACPI tables

std::string NameOf(uint32_t table) { return {reinterpret_cast<const char*>(&table), sizeof table}; }

const AcpiTable_t* FindTable(uint32_t table, uint32_t place) {
    const std::string name = NameOf(table);
    for (const AcpiTable_t& each : current->tables)
        if (each.name == name && place-- == 0) return &each;
    if (!current->Has(kAcpiRecord) || std::ranges::find(current->facts.leftOut, name) != current->facts.leftOut.end())
        NotRecorded();
    return nullptr;
}

uint32_t GetTable(uint32_t provider, uint32_t table, void* buffer, uint32_t room, bool* refused) {
    if (refused != nullptr) *refused = false;
    const AcpiTable_t* const found = provider == kACPIProvider ? FindTable(table, 0) : nullptr;
    if (found == nullptr) return 0;
    const auto size = static_cast<uint32_t>(found->bytes.size());
    if (buffer != nullptr && size <= room) std::memcpy(buffer, found->bytes.data(), size);
    return size;
}

bool ReadTable(uint32_t table, uint32_t place, std::vector<uint8_t>* bytes, bool* refused) {
    *refused = false;
    const AcpiTable_t* const found = FindTable(table, place);
    if (found != nullptr) *bytes = found->bytes;
    return found != nullptr;
}

// Those that were left out too, at the end.
std::vector<uint32_t> ListTables() {
    if (!current->Has(kAcpiRecord)) NotRecorded();
    std::vector<uint32_t> numbers;
    const auto add = [&numbers](const std::string& name) {
        if (name.size() != sizeof(uint32_t)) return;
        numbers.emplace_back();
        std::memcpy(&numbers.back(), name.data(), sizeof(uint32_t));
    };
    for (const AcpiTable_t& table : current->tables) add(table.name);
    for (const std::string& name : current->facts.leftOut) add(name);
    return numbers;
}

constexpr HardwareServices_t kRecordedHardware = {
    Open,         Open,        GetVersion<0>, GetVersion<1>, GetVersion<2>, GetVersion<3>, ReadSpace,
    ReadExtended, NotRecorded, NotRecorded,   NotRecorded,   NotRecorded,   NotRecorded,   NotRecorded,
    NotRecorded,  NotRecorded, NotRecorded,   NotRecorded,   ReadRegister,  NotRecorded,   ReadProcessor,
    NotRecorded,  GetTable,    nullptr,       ListTables,    ReadTable,     nullptr,       nullptr,
};

}  // namespace

bool RecordedHardware_t::Has(RecordFile_t file) const {
    return std::ranges::find(facts.files, std::string_view(kRecordFiles[file]), &RecordedFile_t::name) !=
           facts.files.end();
}

void UseRecordedHardware(const RecordedHardware_t& recorded) {
    current = &recorded;
    UseHardware(kRecordedHardware);
}

status_t ReadRecordedCPUID(const RecordedHardware_t& recorded, uint32_t processor, CPUIDRecord_t* record) {
    if (record == nullptr) return kNullPointer;
    if (recorded.facts.known.IsArm64()) return NotInArchitecture();
    const size_t number = processor == kAnyProcessor ? 0 : processor;
    if (number >= recorded.processors.size())
        return number >= recorded.facts.processors.value_or(UINT64_MAX) ? kBadValue : NotRecorded();
    const CpuidLeaves_t& leaves = recorded.processors[number];
    const auto begin = std::ranges::lower_bound(leaves, record->Eax, {}, &CpuidLeaf_t::leaf);
    const auto end = std::ranges::upper_bound(leaves, record->Eax, {}, &CpuidLeaf_t::leaf);
    // A leaf without sub-leaves is recorded as sub-leaf 0, and answers so for all of them.
    const bool isForAll = end - begin == 1 && begin->subleaf == 0;
    const auto found = isForAll ? begin : std::ranges::find(begin, end, record->Ecx, &CpuidLeaf_t::subleaf);
    if (found == end) return NotRecorded();
    *record = {record->Reserved, found->eax, found->ebx, found->ecx, found->edx};
    return kSuccess;
}
