// A stand-in for the kernel driver Ravelink; see README.md. It runs in Wine's user-mode driver host, where neither
// ports nor physical memory are to be had, so that all but CPUID comes from tables.
#include <ntddk.h>

#include <cpuid.h>  // after the kernel's header, which has a function of the name

typedef unsigned char Byte_t;
typedef unsigned int Word_t;

// Records, as the hardware library sends them.
typedef struct { Word_t Reserved, Eax, Ebx, Ecx, Edx; } CPUIDRecord_t;
typedef struct { Word_t Reserved, Cpu, Reserved2, Reserved3; CPUIDRecord_t Cpuid; Word_t Reserved4[5]; } CPUIDRequest_t;
typedef struct { Word_t Reserved, Cpu, Port, Size, Data; } Port_t;
typedef struct { Word_t Reserved, Location, RegisterOffset, Size, Data; } PCI_t;
typedef struct { Word_t Reserved, Cpu, Msr, Hi, Lo; } MSR_t;
typedef struct { Word_t Core, Msr, PMTimerAddress, Result[2]; } NonTurbo_t;
typedef struct { Word_t Reserved, Cpu; unsigned long long Address; Word_t Offset, Size; Byte_t Data[]; } Memory_t;
typedef struct { Word_t Device, PCIRegisterOffset, MMIOOffset; } Dynamic_t;  // in Memory_t, from Address on
_Static_assert(sizeof(CPUIDRequest_t) == 56 && sizeof(Port_t) == 20 && sizeof(PCI_t) == 20 && sizeof(MSR_t) == 20 &&
                   sizeof(NonTurbo_t) == 20 && sizeof(Memory_t) == 24,
               "the sizes of the requests");

enum { kBiosBase = 0xF0000, kBiosSize = 0x10000, kRegisterBase = 0xFED00000, kRegisterSize = 256 };
enum { kTableOffset = 0x200, kHypervisorFromProcessor = 2 };

static Byte_t bios[kBiosSize];
static Byte_t registers[kRegisterSize];
static Word_t hypervisor = kHypervisorFromProcessor;

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
    CPUIDRecord_t* record = &request->Cpuid;
    const Word_t leaf = record->Eax;
    __cpuid_count(leaf, record->Ecx, record->Eax, record->Ebx, record->Ecx, record->Edx);
    if (leaf == 1 && hypervisor != kHypervisorFromProcessor)
        record->Ecx = (record->Ecx & 0x7FFFFFFF) | (hypervisor << 31);
    return STATUS_SUCCESS;
}

static NTSTATUS Port(Port_t* request, int write) {
    if (request->Size == 0 || request->Size > 4 || request->Port < 0x80 || request->Port - 0x80 + request->Size > 4)
        return STATUS_UNSUCCESSFUL;
    Byte_t* port = ports + (request->Port - 0x80);
    RtlCopyMemory(write ? port : (Byte_t*)&request->Data, write ? (Byte_t*)&request->Data : port, request->Size);
    return STATUS_SUCCESS;
}

static NTSTATUS Msr(MSR_t* request, int write) {
    const Word_t place = request->Msr - 0x10;
    if (place >= 4) return STATUS_UNSUCCESSFUL;
    if (write) {
        msrs[place].hi = request->Hi;
        msrs[place].lo = request->Lo;
    }
    request->Hi = msrs[place].hi;
    request->Lo = msrs[place].lo;
    return STATUS_SUCCESS;
}

// One function, at location 0: byte n of its configuration space reads n. Bit 31 of its first word tells the road.
static NTSTATUS Pci(PCI_t* request, int underHypervisor) {
    const Word_t offset = request->RegisterOffset;
    if (request->Size != 4 || offset % 4 != 0 || offset > 252) return STATUS_INVALID_PARAMETER;
    request->Data = request->Location != 0 ? 0xFFFFFFFF : offset * 0x01010101u + 0x03020100u;
    if (offset == 0 && underHypervisor) request->Data |= 0x80000000;
    return STATUS_SUCCESS;
}

// The simulated bytes of physical memory from `address` on; null where there are none.
static Byte_t* MemoryAt(unsigned long long address, Word_t size) {
    if (address >= kBiosBase && size <= kBiosSize && address - kBiosBase <= kBiosSize - size)
        return bios + (address - kBiosBase);
    if (address >= kRegisterBase && size <= kRegisterSize && address - kRegisterBase <= kRegisterSize - size)
        return registers + (address - kRegisterBase);
    return NULL;
}

static NTSTATUS Memory(Memory_t* request, Byte_t* place, int write) {
    if (place == NULL) return STATUS_UNSUCCESSFUL;
    RtlCopyMemory(write ? place : request->Data, write ? request->Data : place, request->Size);
    return STATUS_SUCCESS;
}

// Device 1 has its registers where all are.
static Byte_t* DynamicPlace(const Memory_t* request) {
    Dynamic_t record;
    RtlCopyMemory(&record, &request->Address, sizeof record);
    return record.Device == 1 ? MemoryAt(kRegisterBase + (unsigned long long)record.MMIOOffset, request->Size) : NULL;
}

// The bytes that a request takes, in and out; 24 and more for memory.
static NTSTATUS CheckSizes(Word_t code, const void* buffer, ULONG in, ULONG out) {
    ULONG wantIn = 20, wantOut = 20;
    switch (code) {
        case 0x80240000: wantIn = wantOut = sizeof(CPUIDRequest_t); break;
        case 0x80240004: case 0x80240090: case 0x80240094: case 0x80240098: wantIn = 0, wantOut = 4; break;
        case 0x802400FC: case 0x80240104: case 0x80240108: case 0x8024010C: case 0x80240110: case 0x80240114:
        case 0x80240118:
            if (in < sizeof(Memory_t)) return STATUS_BUFFER_TOO_SMALL;
            if (((const Memory_t*)buffer)->Size != in - sizeof(Memory_t)) return STATUS_INVALID_PARAMETER;
            wantIn = wantOut = in;
            break;
        default: break;
    }
    return in == wantIn && out == wantOut ? STATUS_SUCCESS : STATUS_INVALID_BUFFER_SIZE;
}

static NTSTATUS Answer(Word_t code, void* buffer) {
    Memory_t* memory = buffer;
    NonTurbo_t* nonTurbo = buffer;
    switch (code) {
        case 0x80240000: return Cpuid(buffer);
        case 0x80240004: return Version(buffer, 0x01000001);
        case 0x80240090: return Version(buffer, 0x01000002);
        case 0x80240094: return Version(buffer, 0x01000003);
        case 0x80240098: return Version(buffer, 0x01000004);
        case 0x80240034: return Port(buffer, 0);
        case 0x80244074: return Port(buffer, 1);
        case 0x80240040: return Msr(buffer, 0);
        case 0x80244080: return Msr(buffer, 1);
        case 0x80240048: return Pci(buffer, 0);
        case 0x802400F4: return Pci(buffer, 1);
        case 0x8024009C:
            nonTurbo->Result[0] = 2400;
            nonTurbo->Result[1] = nonTurbo->Core;
            return STATUS_SUCCESS;
        case 0x80240114: case 0x80240118: return Memory(memory, MemoryAt(memory->Address, memory->Size), 0);
        case 0x802400FC: case 0x80240104:
            return Memory(memory, MemoryAt(memory->Address + memory->Offset, memory->Size), 0);
        case 0x80240108: case 0x80240110:
            return Memory(memory, MemoryAt(memory->Address + memory->Offset, memory->Size), 1);
        case 0x8024010C: return Memory(memory, DynamicPlace(memory), 1);
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

static void ReadSettings(void) {
    UNICODE_STRING path, name;
    OBJECT_ATTRIBUTES attributes;
    HANDLE key;
    union { KEY_VALUE_PARTIAL_INFORMATION information; Byte_t room[32]; } value;
    ULONG size;
    RtlInitUnicodeString(&path, L"\\Registry\\Machine\\SOFTWARE\\Wow6432Node\\Lumetra\\Ravelink");
    RtlInitUnicodeString(&name, L"TestHypervisor");
    InitializeObjectAttributes(&attributes, &path, OBJ_CASE_INSENSITIVE, NULL, NULL);
    if (ZwOpenKey(&key, KEY_READ, &attributes) != STATUS_SUCCESS) return;
    if (ZwQueryValueKey(key, &name, KeyValuePartialInformation, &value, sizeof value, &size) == STATUS_SUCCESS &&
        value.information.Type == REG_DWORD && value.information.DataLength == sizeof hypervisor)
        hypervisor = value.information.Data[0] & 1;
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
