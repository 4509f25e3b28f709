// A stand-in for the kernel driver Ravelink; see README.md. It runs in Wine's user-mode driver host, where ports and
// physical memory aren't available, so all answers but CPUID come from tables.
#include <ntddk.h>

#include <cpuid.h>  // after the kernel's header, which declares a function of the same name

#include "Packages/FERROXExternal/FERROXLib/Sources/Protocol.h"

typedef uint8_t Byte_t;
typedef uint32_t Word_t;

enum { kBiosBase = 0xF0000, kBiosSize = 0x10000, kRegisterBase = 0xFED00000, kRegisterSize = 256 };
enum { kTableOffset = 0x200, kHypervisorFromProcessor = 2 };

static const Word_t kNonTurbo[2] = {2400, 1};

static Byte_t bios[kBiosSize];
static Byte_t registers[kRegisterSize];
static Word_t hypervisor = kHypervisorFromProcessor;
static Word_t cpuidAnswers = 0xFFFFFFFF;  // that are left to answer

// Ports 80h to 83h, and MSRs 10h to 13h.
static Byte_t ports[4] = {0x11, 0x22, 0x33, 0x44};
static struct { Word_t hi, lo; } msrs[4] = {{1, 0x10}, {2, 0x11}, {3, 0x12}, {4, 0x13}};

// One enclosure of the maker "Simulated", and the end of the table.
static const Byte_t kTable[] = {3, 9, 3, 0, 1, 0x17, 0, 0, 0, 'S', 'i', 'm', 'u', 'l', 'a', 't', 'e', 'd', 0, 0,
                                127, 4, 4, 0, 0, 0};
static const Byte_t kEntryPoint[] = {
    '_', 'S', 'M', '_', 0, 0x1F, 2, 7, 20, 0, 0, 0, 0, 0, 0, 0,
    '_', 'D', 'M', 'I', '_', 0, sizeof kTable, 0, kTableOffset & 0xFF, kTableOffset >> 8, kBiosBase >> 16, 0, 2, 0, 0x27};

static void FillBios(void) {
    Byte_t entry = 0, dmi = 0;
    RtlCopyMemory(bios + 0x100, kEntryPoint, sizeof kEntryPoint);
    RtlCopyMemory(bios + kTableOffset, kTable, sizeof kTable);
    for (int i = 16; i < 31; i++) dmi = (Byte_t)(dmi + bios[0x100 + i]);
    bios[0x115] = (Byte_t)-dmi;
    for (int i = 0; i < 31; i++) entry = (Byte_t)(entry + bios[0x100 + i]);
    bios[0x104] = (Byte_t)-entry;
}

static NTSTATUS Version(Word_t* out, Word_t version) {
    *out = version;
    return STATUS_SUCCESS;
}

static NTSTATUS Cpuid(CPUIDRequest_t* request) {
    CPUIDRecord_t* record = &request->Registers;
    const Word_t leaf = record->Eax;
    if (cpuidAnswers == 0) return STATUS_UNSUCCESSFUL;
    cpuidAnswers--;
    __cpuid_count(leaf, record->Ecx, record->Eax, record->Ebx, record->Ecx, record->Edx);
    if (leaf == 1 && hypervisor != kHypervisorFromProcessor)
        record->Ecx = (record->Ecx & 0x7FFFFFFF) | (hypervisor << 31);
    return STATUS_SUCCESS;
}

static NTSTATUS Port(PortRequest_t* request, int write) {
    if (request->Size == 0 || request->Size > 4 || request->Port < 0x80 || request->Port - 0x80 + request->Size > 4)
        return STATUS_UNSUCCESSFUL;
    Byte_t* port = ports + (request->Port - 0x80);
    RtlCopyMemory(write ? port : request->Data, write ? request->Data : port, request->Size);
    return STATUS_SUCCESS;
}

static NTSTATUS Msr(MSRRecord_t* request, int write) {
    const Word_t place = request->Msr - 0x10;
    if (place >= 4) return STATUS_UNSUCCESSFUL;
    if (write) {
        msrs[place].hi = request->HiContent;
        msrs[place].lo = request->LoContent;
    }
    request->HiContent = msrs[place].hi;
    request->LoContent = msrs[place].lo;
    return STATUS_SUCCESS;
}

// There is one function, at location 0: byte n of its configuration space reads n. Bit 31 of the first word shows which
// request read it.
static NTSTATUS Pci(PCIRequest_t* request, int underHypervisor) {
    const Word_t offset = request->RegisterOffset;
    if (request->Size != 4 || offset % 4 != 0 || offset > 252) return STATUS_INVALID_PARAMETER;
    Word_t word = request->Location != 0 ? 0xFFFFFFFF : offset * 0x01010101u + 0x03020100u;
    if (offset == 0 && underHypervisor) word |= 0x80000000;
    RtlCopyMemory(request->Data, &word, sizeof word);
    return STATUS_SUCCESS;
}

// The simulated physical memory from `address` on, or null.
static Byte_t* MemoryAt(unsigned long long address, Word_t size) {
    if (address >= kBiosBase && size <= kBiosSize && address - kBiosBase <= kBiosSize - size)
        return bios + (address - kBiosBase);
    if (address >= kRegisterBase && size <= kRegisterSize && address - kRegisterBase <= kRegisterSize - size)
        return registers + (address - kRegisterBase);
    return NULL;
}

static NTSTATUS Memory(MemoryRequest_t* request, Byte_t* place, int write) {
    Byte_t* data = (Byte_t*)(request + 1);
    if (place == NULL) return STATUS_UNSUCCESSFUL;
    RtlCopyMemory(write ? place : data, write ? data : place, request->Size);
    return STATUS_SUCCESS;
}

// Device 1 has its registers in the one block of registers.
static Byte_t* DynamicPlace(const MemoryRequest_t* request) {
    DynamicMMIORecord_t record;
    RtlCopyMemory(&record, &request->Place, sizeof record);
    return record.Device == 1 ? MemoryAt(kRegisterBase + (unsigned long long)record.MMIOOffset, request->Size) : NULL;
}

// The size of a request's record; 24 and more for memory.
static NTSTATUS CheckSizes(Word_t code, const void* buffer, ULONG in, ULONG out) {
    ULONG wantIn = 20, wantOut = 20;
    switch (code) {
        case kRequestReadCPUID: wantIn = wantOut = sizeof(CPUIDRequest_t); break;
        case kRequestDriverVersion: case kRequestCPULibVersion: case kRequestIOLibVersion: case kRequestPCILibVersion:
            wantIn = 0, wantOut = 4;
            break;
        case kRequestMMIOReadStored: case kRequestMMIOReadGPIO: case kRequestMMIOWriteStored:
        case kRequestMMIOWriteDynamic: case kRequestMMIOWriteGPIO: case kRequestMMIORead: case kRequestSystemTables:
            if (in < sizeof(MemoryRequest_t)) return STATUS_BUFFER_TOO_SMALL;
            if (((const MemoryRequest_t*)buffer)->Size != in - sizeof(MemoryRequest_t)) return STATUS_INVALID_PARAMETER;
            wantIn = wantOut = in;
            break;
        default: break;
    }
    return in == wantIn && out == wantOut ? STATUS_SUCCESS : STATUS_INVALID_BUFFER_SIZE;
}

static NTSTATUS Answer(Word_t code, void* buffer) {
    MemoryRequest_t* memory = buffer;
    NonTurboRecord_t* nonTurbo = buffer;
    switch (code) {
        case kRequestReadCPUID: return Cpuid(buffer);
        case kRequestDriverVersion: return Version(buffer, 0x01000001);
        case kRequestCPULibVersion: return Version(buffer, 0x01000002);
        case kRequestIOLibVersion: return Version(buffer, 0x01000003);
        case kRequestPCILibVersion: return Version(buffer, 0x01000004);
        case kRequestReadPort: return Port(buffer, 0);
        case kRequestWritePort: return Port(buffer, 1);
        case kRequestReadMSR: return Msr(buffer, 0);
        case kRequestWriteMSR: return Msr(buffer, 1);
        case kRequestPCIRead: return Pci(buffer, 0);
        case kRequestPCIReadHyperV: return Pci(buffer, 1);
        case kRequestNonTurbo:
            RtlCopyMemory(nonTurbo->Result, &kNonTurbo, sizeof kNonTurbo);
            return STATUS_SUCCESS;
        case kRequestMMIORead: case kRequestSystemTables: return Memory(memory, MemoryAt(memory->Place.Address, memory->Size), 0);
        case kRequestMMIOReadStored: case kRequestMMIOReadGPIO:
            return Memory(memory, MemoryAt(memory->Place.Address + memory->Place.Offset, memory->Size), 0);
        case kRequestMMIOWriteStored: case kRequestMMIOWriteGPIO:
            return Memory(memory, MemoryAt(memory->Place.Address + memory->Place.Offset, memory->Size), 1);
        case kRequestMMIOWriteDynamic: return Memory(memory, DynamicPlace(memory), 1);
        default: return STATUS_INVALID_DEVICE_REQUEST;
    }
}

static NTSTATUS Complete(IRP* irp, NTSTATUS status, ULONG_PTR bytes) {
    irp->IoStatus.Status = status;
    irp->IoStatus.Information = bytes;
    IoCompleteRequest(irp, IO_NO_INCREMENT);
    return status;
}

static NTSTATUS NTAPI OpenOrClose(DEVICE_OBJECT* device, IRP* irp) {
    (void)device;
    return Complete(irp, STATUS_SUCCESS, 0);
}

static NTSTATUS NTAPI Control(DEVICE_OBJECT* device, IRP* irp) {
    (void)device;
    const IO_STACK_LOCATION* call = IoGetCurrentIrpStackLocation(irp);
    const ULONG in = call->Parameters.DeviceIoControl.InputBufferLength,
                out = call->Parameters.DeviceIoControl.OutputBufferLength;
    const Word_t code = call->Parameters.DeviceIoControl.IoControlCode;
    void* buffer = irp->AssociatedIrp.SystemBuffer;
    NTSTATUS status = CheckSizes(code, buffer, in, out);
    if (status == STATUS_SUCCESS) status = Answer(code, buffer);
    return Complete(irp, status, status == STATUS_SUCCESS ? out : 0);
}

static void ReadSetting(HANDLE key, const WCHAR* text, Word_t* setting) {
    UNICODE_STRING name;
    union { KEY_VALUE_PARTIAL_INFORMATION information; Byte_t room[32]; } value;
    ULONG size;
    RtlInitUnicodeString(&name, text);
    if (ZwQueryValueKey(key, &name, KeyValuePartialInformation, &value, sizeof value, &size) == STATUS_SUCCESS &&
        value.information.Type == REG_DWORD && value.information.DataLength == sizeof *setting)
        RtlCopyMemory(setting, value.information.Data, sizeof *setting);
}

static void ReadSettings(void) {
    UNICODE_STRING path;
    OBJECT_ATTRIBUTES attributes;
    HANDLE key;
    RtlInitUnicodeString(&path, L"\\Registry\\Machine\\SOFTWARE\\Wow6432Node\\Lumetra\\Ravelink");
    InitializeObjectAttributes(&attributes, &path, OBJ_CASE_INSENSITIVE, NULL, NULL);
    if (ZwOpenKey(&key, KEY_READ, &attributes) != STATUS_SUCCESS) return;
    ReadSetting(key, L"TestHypervisor", &hypervisor);
    ReadSetting(key, L"TestCPUIDAnswers", &cpuidAnswers);
    ZwClose(key);
}

static void NTAPI Unload(DRIVER_OBJECT* driver) {
    UNICODE_STRING link;
    RtlInitUnicodeString(&link, L"\\DosDevices\\Ravelink");
    IoDeleteSymbolicLink(&link);
    IoDeleteDevice(driver->DeviceObject);
}

NTSTATUS NTAPI DriverEntry(DRIVER_OBJECT* driver, UNICODE_STRING* registryPath) {
    (void)registryPath;
    UNICODE_STRING name, link;
    DEVICE_OBJECT* device;
    RtlInitUnicodeString(&name, L"\\Device\\Ravelink");
    RtlInitUnicodeString(&link, L"\\DosDevices\\Ravelink");
    FillBios();
    ReadSettings();
    NTSTATUS status = IoCreateDevice(driver, 0, &name, 0x8024, 0, FALSE, &device);
    if (status != STATUS_SUCCESS) return status;
    status = IoCreateSymbolicLink(&link, &name);
    if (status != STATUS_SUCCESS) {
        IoDeleteDevice(device);
        return status;
    }
    driver->MajorFunction[IRP_MJ_CREATE] = OpenOrClose;
    driver->MajorFunction[IRP_MJ_CLOSE] = OpenOrClose;
    driver->MajorFunction[IRP_MJ_DEVICE_CONTROL] = Control;
    driver->DriverUnload = Unload;
    return STATUS_SUCCESS;
}
