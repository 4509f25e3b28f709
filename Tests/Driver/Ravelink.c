// A stand-in for the kernel driver Ravelink; see README.md. It runs in Wine's user-mode driver host, which has no
// physical memory, so that all answers but CPUID's come from tables.
#include <ntddk.h>

#include <cpuid.h>  // after the kernel's header, which declares a function of the same name

#include "Packages/FERROXExternal/FERROXLib/Sources/Protocol.h"

typedef uint8_t Byte_t;
typedef uint32_t Word_t;

enum { kBiosBase = 0xF0000, kBiosSize = 0x10000, kTableOffset = 0x200, kHypervisorFromProcessor = 2 };

static Byte_t bios[kBiosSize];
static Word_t hypervisor = kHypervisorFromProcessor;
static Word_t cpuidAnswers = 0xFFFFFFFF;  // that are left to answer

// clang-format off
// One enclosure of the maker "Simulated", and the end of the table.
static const Byte_t kTable[] = {3, 9, 3, 0, 1, 0x17, 0, 0, 0, 'S', 'i', 'm', 'u', 'l', 'a', 't', 'e', 'd', 0, 0,
                                127, 4, 4, 0, 0, 0};
static const Byte_t kEntryPoint[] = {
    '_', 'S', 'M', '_', 0, 0x1F, 2, 7, 20, 0, 0, 0, 0, 0, 0, 0,
    '_', 'D', 'M', 'I', '_', 0, sizeof kTable, 0,
    kTableOffset & 0xFF, kTableOffset >> 8, kBiosBase >> 16, 0, 2, 0, 0x27};
// clang-format on

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

// One function, at location 0: byte n of its configuration space reads n. Bit 31 of its first word tells the request.
static NTSTATUS Pci(PCIRequest_t* request, int underHypervisor) {
    const Word_t offset = request->RegisterOffset;
    if (request->Size != 4 || offset % 4 != 0 || offset > 252) return STATUS_INVALID_PARAMETER;
    Word_t word = request->Location != 0 ? 0xFFFFFFFF : offset * 0x01010101u + 0x03020100u;
    if (offset == 0 && underHypervisor) word |= 0x80000000;
    RtlCopyMemory(request->Data, &word, sizeof word);
    return STATUS_SUCCESS;
}

static NTSTATUS ReadBios(MemoryRequest_t* request) {
    const unsigned long long address = request->Place.Address;
    if (address < kBiosBase || request->Size > kBiosSize || address - kBiosBase > kBiosSize - request->Size)
        return STATUS_UNSUCCESSFUL;
    RtlCopyMemory(request + 1, bios + (address - kBiosBase), request->Size);
    return STATUS_SUCCESS;
}

// The bytes that a request takes, in and out; 24 and more for memory.
static NTSTATUS CheckSizes(Word_t code, const void* buffer, ULONG in, ULONG out) {
    ULONG wantIn = 20, wantOut = 20;
    switch (code) {
        case kRequestReadCPUID: wantIn = wantOut = sizeof(CPUIDRequest_t); break;
        case kRequestDriverVersion:
        case kRequestCPULibVersion:
        case kRequestIOLibVersion:
        case kRequestPCILibVersion: wantIn = 0, wantOut = 4; break;
        case kRequestSystemTables:
            if (in < sizeof(MemoryRequest_t)) return STATUS_BUFFER_TOO_SMALL;
            if (((const MemoryRequest_t*)buffer)->Size != in - sizeof(MemoryRequest_t)) return STATUS_INVALID_PARAMETER;
            wantIn = wantOut = in;
            break;
        default: break;
    }
    return in == wantIn && out == wantOut ? STATUS_SUCCESS : STATUS_INVALID_BUFFER_SIZE;
}

static NTSTATUS Answer(Word_t code, void* buffer) {
    switch (code) {
        case kRequestReadCPUID: return Cpuid(buffer);
        case kRequestDriverVersion: return Version(buffer, 0x01000001);
        case kRequestCPULibVersion: return Version(buffer, 0x01000002);
        case kRequestIOLibVersion: return Version(buffer, 0x01000003);
        case kRequestPCILibVersion: return Version(buffer, 0x01000004);
        case kRequestPCIRead: return Pci(buffer, 0);
        case kRequestPCIReadHyperV: return Pci(buffer, 1);
        case kRequestSystemTables: return ReadBios(buffer);
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
    union {
        KEY_VALUE_PARTIAL_INFORMATION information;
        Byte_t room[32];
    } value;
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
