// What the files of the hardware library share: its trace handle, the driver's requests and their records, and the
// platform halves (prefix OS) that the front hands on to.
#pragma once

#include <cstddef>
#include <cstdint>

#include "Packages/Debug/Debug.h"
#include "Packages/FERROXExternal/FERROXLib/FERROXLib.h"
#include "Packages/Platform/Platform.h"

// Null while the library is closed, and when the trace library gave none. A file traces by
//     #define TRACE(function, level, ...) FERROX_TRACE("PCIRW", function, level, __VA_ARGS__)
extern DebugHandle_t ferroxTraceHandle;
#define FERROX_TRACE(file, function, level, ...) \
    QUORLIN_TRACE(ferroxTraceHandle, "FERROXLib\\Sources\\" file, function, level, __VA_ARGS__)

// ---- The driver's requests. Input and output share one record; all numbers are little-endian.

enum RequestCode_t : uint32_t {
    kRequestReadCPUID = 0x80240000,
    kRequestDriverVersion = 0x80240004,
    kRequestReadPort = 0x80240034,
    kRequestReadMSR = 0x80240040,
    kRequestPCIRead = 0x80240048,
    kRequestCPULibVersion = 0x80240090,
    kRequestIOLibVersion = 0x80240094,
    kRequestPCILibVersion = 0x80240098,
    kRequestNonTurbo = 0x8024009C,
    kRequestPCIReadHyperV = 0x802400F4,
    kRequestMMIOReadStored = 0x802400FC,
    kRequestMMIOReadGPIO = 0x80240104,
    kRequestMMIOWriteStored = 0x80240108,
    kRequestMMIOWriteDynamic = 0x8024010C,
    kRequestMMIOWriteGPIO = 0x80240110,
    kRequestMMIORead = 0x80240114,
    kRequestSystemTables = 0x80240118,
    kRequestWritePort = 0x80244074,
    kRequestWriteMSR = 0x80244080,
};

struct PortRequest_t {
    uint32_t Reserved;
    uint32_t Cpu;  // always kAnyProcessor
    uint32_t Port;
    uint32_t Size;    // in bytes, at most 4
    uint8_t Data[4];  // least significant byte first
};
static_assert(sizeof(PortRequest_t) == 20 && offsetof(PortRequest_t, Cpu) == 4 && offsetof(PortRequest_t, Port) == 8 &&
              offsetof(PortRequest_t, Size) == 12 && offsetof(PortRequest_t, Data) == 16);

struct PCIRequest_t {
    uint32_t Reserved;
    uint32_t Location;
    uint32_t RegisterOffset;  // a multiple of 4
    uint32_t Size;            // always 4
    uint8_t Data[4];
};
static_assert(sizeof(PCIRequest_t) == 20 && offsetof(PCIRequest_t, Location) == 4 &&
              offsetof(PCIRequest_t, RegisterOffset) == 8 && offsetof(PCIRequest_t, Size) == 12 &&
              offsetof(PCIRequest_t, Data) == 16);

struct CPUIDRequest_t {
    uint32_t Reserved;
    uint32_t Cpu;
    uint32_t Reserved1[2];
    CPUIDRecord_t Registers;
    uint8_t Reserved2[20];
};
static_assert(sizeof(CPUIDRequest_t) == 56 && offsetof(CPUIDRequest_t, Cpu) == 4 &&
              offsetof(CPUIDRequest_t, Registers) == 16 && offsetof(CPUIDRequest_t, Reserved2) == 36);

#pragma pack(push, 4)
struct MemoryPlace_t {
    uint64_t Address;  // physical
    uint32_t Offset;   // the caller's register offset
};
#pragma pack(pop)
static_assert(sizeof(MemoryPlace_t) == 12 && offsetof(MemoryPlace_t, Offset) == 8);

// The head of a memory request; Size bytes of data follow.
struct MemoryRequest_t {
    uint32_t Reserved;
    uint32_t Cpu;         // always kAnyProcessor
    MemoryPlace_t Place;  // of kRequestMMIOWriteDynamic: the caller's DynamicMMIORecord_t
    uint32_t Size;

    uint8_t* Data() { return reinterpret_cast<uint8_t*>(this + 1); }
};
static_assert(sizeof(MemoryRequest_t) == 24 && offsetof(MemoryRequest_t, Cpu) == 4 &&
              offsetof(MemoryRequest_t, Place) == 8 && offsetof(MemoryRequest_t, Size) == 20);
static_assert(sizeof(DynamicMMIORecord_t) == sizeof(MemoryPlace_t));

// ---- WinFERROX.cpp: life cycle of driver and device, and the one way to it

// 1 when the open library found a hypervisor.
extern uint8_t HyperVEnabled;

// Opens section, driver and device for this process. 1; 5 with all steps undone; or getHyperVStatus's status, with the
// device left open and the machine's count raised. On an open device it just raises the count.
status_t OSFERROXInitialize();
// Closes the device; at the machine's last user also stops and removes the driver, unless it loads by itself.
// 1; 2 not open; 5 when the driver can't be stopped or removed: section and view stay then, for the next try.
status_t OSFERROXTerminate();
status_t OSGetFERROXDriverVersion(uint32_t* version);

inline constexpr uint32_t kDriverPathSize = 256;

// The steps of the two. 1, or 0 on failure; each closes what it opened, but for the service manager: RegisterDriver and
// StopDriver open it anew and leave it open on success, and RemoveDriver, which opens it where there is none, closes
// it.
status_t RegisterDriver();  // also 1 when the service exists
status_t StartDriver();     // also 1 when it runs; replaces a service whose file is missing
status_t StopDriver();
status_t RemoveDriver();
status_t checkDriverAutoLoaded();  // 1 when the service exists and loads by itself

// The handle that keeps others from replacing the running driver's file. 1 or 5.
status_t lockInstallFile();
status_t unlockInstallFile();
// The driver file's path, from the registry; `path` has kDriverPathSize bytes. 1 or 5.
status_t getFERROXinstallPath(char* path);
// Whether a hypervisor is present, by CPUID leaf 1 through the driver. The status of OSReadCPUID.
status_t getHyperVStatus(uint8_t* enabled);

// Sends one request: `size` bytes of `record` go in, and the answer takes their place. Gives the device call's result,
// nonzero for success; `returned` gets the number of bytes of the answer, 0 on failure.
BOOL SendRequest(RequestCode_t code, void* record, uint32_t size, DWORD* returned);
// Asks for one of the driver's four version words in the name of `function`: 1, or 5 with a line.
status_t AskVersion(RequestCode_t code, const char* function, uint32_t* version);

// ---- PCIRW.cpp: configuration space and the memory-mapped registers of devices

status_t OSGetPCILibVersion(uint32_t* version);
status_t OSPCIRead(uint32_t location, uint32_t offset, DataBuffer_t* buffer);
status_t OSPCIExRead(uint32_t location, uint32_t offset, DataBuffer_t* buffer);
status_t OSPCIMMIORead(uint64_t bar, uint32_t offset, DataBuffer_t* buffer);
status_t OSPCIMMIOReadStored(uint64_t bar, uint32_t offset, DataBuffer_t* buffer);
status_t OSPCIMMIOWriteStored(uint64_t bar, uint32_t offset, DataBuffer_t* buffer);
status_t OSPCIMMIOReadDynamic(const DynamicMMIORecord_t* record, DataBuffer_t* buffer);
status_t OSPCIMMIOWriteDynamic(const DynamicMMIORecord_t* record, DataBuffer_t* buffer);

// ---- IORW.cpp: ports, and memory by address

status_t OSGetIOLibVersion(uint32_t* version);
status_t OSReadPort(uint16_t port, DataBuffer_t* buffer);
status_t OSWritePort(uint16_t port, DataBuffer_t* buffer);
status_t OSMMIOReadGPIO(uint64_t bar, uint32_t offset, DataBuffer_t* buffer);
status_t OSMMIOWriteGPIO(uint64_t bar, uint32_t offset, DataBuffer_t* buffer);
status_t OSGetSystemTables(uint64_t address, uint32_t offset, DataBuffer_t* buffer);

// Reads or writes buffer->Size bytes by a memory request of its own allocation, in the name of `function`: 1, 3, or 0
// when the driver refuses. The buffer is filled on success only.
status_t ReadMemory(RequestCode_t code, const char* function, const MemoryPlace_t& place, DataBuffer_t* buffer);
status_t WriteMemory(RequestCode_t code, const char* function, const MemoryPlace_t& place, const DataBuffer_t* buffer);

// ---- MSRRW.cpp: registers of a processor

status_t OSGetCPULibVersion(uint32_t* version);
status_t OSReadMSR(MSRRecord_t* record);
status_t OSWriteMSR(MSRRecord_t* record);
status_t OSReadCPUID(uint32_t processor, CPUIDRecord_t* record);
status_t OSCalcNonTurbo(NonTurboRecord_t* record);

// ---- Misc.cpp: ACPI tables and PCI segments, from the firmware-table service

status_t OSGetACPITable(const char* name, DataBuffer_t** table);
status_t OSGetACPITableEx(const char* name, DataBuffer_t* buffer, uint32_t* size);
status_t OSGetSegBusInfo(SegBusInfo_t* segments);
// As OSGetSegBusInfo, and `count` gets the number of entries, also when that is 0.
status_t OSGetSegBusInfoWithCount(SegBusInfo_t* segments, uint32_t* count);
status_t OSGetPCIExCfgBaseAddr(uint64_t* base, uint32_t location);
