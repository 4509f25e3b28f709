// A stand-in for the kernel driver Ravelink; see README.md. It runs in Wine's user-mode driver host, which has no
// physical memory, so that all answers but CPUID's come from tables.
#include <ntddk.h>

#include <cpuid.h>  // after the kernel's header, which declares a function of the same name

#include "Packages/FERROXExternal/FERROXLib/Sources/Protocol.h"

typedef uint8_t Byte_t;
typedef uint32_t Word_t;

enum { kBiosBase = 0xF0000, kBiosSize = 0x10000, kTableOffset = 0x200 };

static Byte_t bios[kBiosSize];
static BOOLEAN refusesCPUID = FALSE;

// clang-format off
// One enclosure of the maker "Simulated", and the end of the table.
static const Byte_t kTable[] = {3, 9, 3, 0, 1, 0x17, 0, 0, 0, 'S', 'i', 'm', 'u', 'l', 'a', 't', 'e', 'd', 0, 0,
                                127, 4, 4, 0, 0, 0};
static const Byte_t kEntryPoint[] = {
    '_', 'S', 'M', '_', 0x66, 0x1F, 2, 7, 20, 0, 0, 0, 0, 0, 0, 0,
    '_', 'D', 'M', 'I', '_', 0x14, sizeof kTable, 0,
    kTableOffset & 0xFF, kTableOffset >> 8, kBiosBase >> 16, 0, 2, 0, 0x27};
// clang-format on

static NTSTATUS Cpuid(CPUIDRequest_t* request) {
    CPUIDRecord_t* record = &request->Registers;
    if (refusesCPUID) return STATUS_UNSUCCESSFUL;
    __cpuid_count(record->Eax, record->Ecx, record->Eax, record->Ebx, record->Ecx, record->Edx);
    return STATUS_SUCCESS;
}

static NTSTATUS ReadBios(MemoryRequest_t* request) {
    const unsigned long long address = request->Place.Address;
    if (address < kBiosBase || request->Size > kBiosSize || address - kBiosBase > kBiosSize - request->Size)
        return STATUS_UNSUCCESSFUL;
    RtlCopyMemory(request + 1, bios + (address - kBiosBase), request->Size);
    return STATUS_SUCCESS;
}

// The one PCI function, at 0000:00:00.0. Others read as ones.
static NTSTATUS ReadPCI(PCIRequest_t* request) {
    for (Word_t i = 0; i < sizeof request->Data; i++)
        request->Data[i] = request->Location == 0 ? (Byte_t)(request->RegisterOffset + i + 1) : 0xFF;
    return STATUS_SUCCESS;
}

// The one register that the processors have.
static NTSTATUS ReadMSR(MSRRecord_t* record) {
    if (record->Msr != 0x1B) return STATUS_UNSUCCESSFUL;
    record->HiContent = 0;
    record->LoContent = 0xFEE00800 + record->Cpu;
    return STATUS_SUCCESS;
}

// A request has the same size in and out.
static NTSTATUS Answer(Word_t code, void* buffer, ULONG size) {
    if (code == kRequestReadCPUID && size == sizeof(CPUIDRequest_t)) return Cpuid(buffer);
    if ((code == kRequestPCIRead || code == kRequestPCIReadHyperV) && size == sizeof(PCIRequest_t))
        return ReadPCI(buffer);
    if (code == kRequestReadMSR && size == sizeof(MSRRecord_t)) return ReadMSR(buffer);
    if (code == kRequestSystemTables && size >= sizeof(MemoryRequest_t) &&
        ((const MemoryRequest_t*)buffer)->Size == size - sizeof(MemoryRequest_t))
        return ReadBios(buffer);
    return STATUS_INVALID_DEVICE_REQUEST;
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
    const NTSTATUS status =
        in != out ? STATUS_INVALID_BUFFER_SIZE
                  : Answer(call->Parameters.DeviceIoControl.IoControlCode, irp->AssociatedIrp.SystemBuffer, in);
    return Complete(irp, status, status == STATUS_SUCCESS ? out : 0);
}

static void ReadSetting(void) {
    UNICODE_STRING path, name;
    OBJECT_ATTRIBUTES attributes;
    HANDLE key;
    KEY_VALUE_PARTIAL_INFORMATION value[2];
    ULONG size;
    RtlInitUnicodeString(&path, L"\\Registry\\Machine\\SOFTWARE\\Wow6432Node\\Lumetra\\Ravelink");
    RtlInitUnicodeString(&name, L"TestNoCPUID");
    InitializeObjectAttributes(&attributes, &path, OBJ_CASE_INSENSITIVE, NULL, NULL);
    if (ZwOpenKey(&key, KEY_READ, &attributes) != STATUS_SUCCESS) return;
    refusesCPUID =
        ZwQueryValueKey(key, &name, KeyValuePartialInformation, value, sizeof value, &size) == STATUS_SUCCESS;
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
    RtlCopyMemory(bios + 0x100, kEntryPoint, sizeof kEntryPoint);
    RtlCopyMemory(bios + kTableOffset, kTable, sizeof kTable);
    ReadSetting();
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
