// The machines that package and store can use.
#include "Packages/FERROXExternal/StructureStore/Machine.h"

#include "Packages/FERROXExternal/FERROXLib/HardwareServices.h"
#include "Packages/FERROXExternal/StructureStore/Record.h"
#include "Packages/FERROXExternal/StructureStore/StoreParts.h"
#include "Packages/OS/Memory.h"
#include "Packages/OS/OS.h"
#include "Packages/OS/Processors.h"

namespace {

status_t NothingToDo() { return kSuccess; }

status_t NoTable(uint8_t*, uint8_t*, SMBIOSTableImage_t**) { return kFailure; }

status_t ReadCPUIDByInstruction(uint32_t, CPUIDRecord_t* record) {
    if (record == nullptr) return kNullPointer;
    uint32_t registers[4] = {record->Eax, record->Ebx, record->Ecx, record->Edx};
    os_ReadCPUID(registers);
    *record = {record->Reserved, registers[0], registers[1], registers[2], registers[3]};
    return kSuccess;
}

// A processor without the instruction has the signature 0.
status_t ReadCPUIDIfThere(uint32_t processor, CPUIDRecord_t* record) {
    const status_t status = ReadCPUID(processor, record);
    if (status != kNotSupported || LastRefusal() != Refusal_t::kArchitecture) return status;
    *record = {};
    return kSuccess;
}

// A system that doesn't show the addresses needs no driver to say so.
status_t OpenForAddresses() {
    EntryAddresses_t addresses;
    bool refused;
    return GetEntryAddresses(&addresses, &refused) == kNotSupported ? kNotSupported : FERROXInitialize();
}

ImageSource_t imageSource = {};

status_t CopyImage(const ImageSource_t& source, uint8_t* entry, uint8_t* dmiEntry, SMBIOSTableImage_t** image) {
    auto* table = static_cast<SMBIOSTableImage_t*>(os_malloc(sizeof(SMBIOSTableImage_t) + source.length));
    if (table == nullptr) return kNoMemory;
    table->Length = source.length;
    if (source.length != 0) std::memcpy(table->Data(), source.table, source.length);
    entry[6] = source.major;
    entry[7] = source.minor;
    dmiEntry[14] = 0;
    *image = table;
    return kSuccess;
}

status_t GetImage(uint8_t* entry, uint8_t* dmiEntry, SMBIOSTableImage_t** image) {
    return CopyImage(imageSource, entry, dmiEntry, image);
}

status_t ReadImageCPUID(uint32_t, CPUIDRecord_t* record) {
    if (record == nullptr) return kNullPointer;
    *record = {record->Reserved, imageSource.signature, 0, 0, 0};
    return kSuccess;
}

const Record_t* machineRecord = nullptr;

status_t GetRecordedTable(uint8_t* entry, uint8_t* dmiEntry, SMBIOSTableImage_t** image) {
    if (!machineRecord->hardware.Has(kTableRecord)) return kFailure;
    return CopyImage(machineRecord->table.source, entry, dmiEntry, image);
}

status_t ReadRecordCPUID(uint32_t processor, CPUIDRecord_t* record) {
    const RecordedHardware_t& hardware = machineRecord->hardware;
    if (record == nullptr || !hardware.facts.known.IsArm64()) return ReadRecordedCPUID(hardware, processor, record);
    *record = {};  // a processor without CPUID has the signature 0
    return kSuccess;
}

constexpr MachineServices_t kThisMachine = {
    FERROXInitialize, FERROXTerminate, osGetStructuresDataEFI, osGetStructuresDataNonEFI, ReadCPUIDIfThere,
};
constexpr MachineServices_t kThisMachineByScan = {
    FERROXInitialize, FERROXTerminate, NoTable, osGetStructuresDataNonEFI, ReadCPUIDIfThere,
};
constexpr MachineServices_t kThisMachineByEfi = {
    OpenForAddresses, FERROXTerminate, NoTable, osGetStructuresDataByAddress, ReadCPUIDIfThere,
};
constexpr MachineServices_t kThisMachineWithoutDriver = {
    NothingToDo, NothingToDo, osGetStructuresDataEFI, NoTable, ReadCPUIDByInstruction,
};
constexpr MachineServices_t kImageMachine = {NothingToDo, NothingToDo, GetImage, NoTable, ReadImageCPUID};
constexpr MachineServices_t kRecordedMachine = {NothingToDo, NothingToDo, GetRecordedTable, NoTable, ReadRecordCPUID};

MachineServices_t currentMachine = kThisMachine;

}  // namespace

const MachineServices_t* CurrentMachine() { return &currentMachine; }

const MachineServices_t* ThisMachine() { return &kThisMachine; }

const MachineServices_t* ThisMachineByScan() { return &kThisMachineByScan; }

const MachineServices_t* ThisMachineByEfi() { return &kThisMachineByEfi; }

const MachineServices_t* ThisMachineWithoutDriver() { return &kThisMachineWithoutDriver; }

status_t SetMachine(const MachineServices_t* services) {
    if (services == nullptr) return kNullPointer;
    if (StoreIsUp()) return kFailure;
    currentMachine = *services;
    return kSuccess;
}

status_t SetImageMachine(const ImageSource_t* source) {
    if (source == nullptr || (source->table == nullptr && source->length != 0)) return kNullPointer;
    if (StoreIsUp()) return kFailure;
    imageSource = *source;
    return SetMachine(&kImageMachine);
}

status_t SetRecordedMachine(const Record_t& record) {
    if (StoreIsUp()) return kFailure;
    machineRecord = &record;
    return SetMachine(&kRecordedMachine);
}

MachineChoice_t ChosenMachine() { return {currentMachine, imageSource, machineRecord}; }

void ChooseMachine(const MachineChoice_t& choice) {
    currentMachine = choice.services;
    imageSource = choice.image;
    machineRecord = choice.record;
}
