// The driver's 19 requests and their records. Input and output use the same record. Numbers are little-endian. Compiles
// as C too, for drivers.
#ifndef QUORLIN_PROTOCOL_H
#define QUORLIN_PROTOCOL_H

#include <stddef.h>
#include <stdint.h>

enum RequestCode_t {
    kRequestReadCPUID = 0x80240000,      // CPUIDRequest_t
    kRequestDriverVersion = 0x80240004,  // nothing in, 4 bytes out
    kRequestReadPort = 0x80240034,       // PortRequest_t
    kRequestReadMSR = 0x80240040,        // MSRRecord_t
    kRequestPCIRead = 0x80240048,        // PCIRequest_t
    kRequestCPULibVersion = 0x80240090,  // nothing in, 4 bytes out; so are the next two
    kRequestIOLibVersion = 0x80240094,
    kRequestPCILibVersion = 0x80240098,
    kRequestNonTurbo = 0x8024009C,        // NonTurboRecord_t
    kRequestPCIReadHyperV = 0x802400F4,   // PCIRequest_t, under a hypervisor
    kRequestMMIOReadStored = 0x802400FC,  // MemoryRequest_t and data; so are all below but the last two
    kRequestMMIOReadGPIO = 0x80240104,
    kRequestMMIOWriteStored = 0x80240108,
    kRequestMMIOWriteDynamic = 0x8024010C,  // with a DynamicMMIORecord_t for address and offset
    kRequestMMIOWriteGPIO = 0x80240110,
    kRequestMMIORead = 0x80240114,
    kRequestSystemTables = 0x80240118,
    kRequestWritePort = 0x80244074,  // PortRequest_t
    kRequestWriteMSR = 0x80244080,   // MSRRecord_t
};

// One model-specific register of one processor.
typedef struct MSRRecord_t {
    uint32_t Reserved;
    uint32_t Cpu;        // processor number, from 0
    uint32_t Msr;        // register number
    uint32_t HiContent;  // bits 63 to 32
    uint32_t LoContent;  // bits 31 to 0
} MSRRecord_t;

// In: the leaf in Eax and the sub-leaf in Ecx. Out: all four registers.
typedef struct CPUIDRecord_t {
    uint32_t Reserved;
    uint32_t Eax;
    uint32_t Ebx;
    uint32_t Ecx;
    uint32_t Edx;
} CPUIDRecord_t;

typedef struct CPUIDRequest_t {
    uint32_t Reserved;
    uint32_t Cpu;
    uint32_t Reserved1[2];
    CPUIDRecord_t Registers;
    uint8_t Reserved2[20];
} CPUIDRequest_t;

// A measurement of a processor's non-turbo frequency.
typedef struct NonTurboRecord_t {
    uint32_t Core;
    uint32_t Msr;
    uint32_t PMTimerAddress;
    uint8_t Result[8];  // in the driver's own form; on Linux the count per second, 64 bits
} NonTurboRecord_t;

typedef struct PortRequest_t {
    uint32_t Reserved;
    uint32_t Cpu;  // always 256
    uint32_t Port;
    uint32_t Size;    // in bytes, at most 4
    uint8_t Data[4];  // least significant byte first
} PortRequest_t;

typedef struct PCIRequest_t {
    uint32_t Reserved;
    uint32_t Location;
    uint32_t RegisterOffset;  // a multiple of 4
    uint32_t Size;            // always 4
    uint8_t Data[4];
} PCIRequest_t;

// A register of a device whose base address the driver looks up.
typedef struct DynamicMMIORecord_t {
    uint32_t Device;  // in the driver's own form; on Linux a PCI location
    uint32_t PCIRegisterOffset;
    uint32_t MMIOOffset;
} DynamicMMIORecord_t;

#pragma pack(push, 4)
typedef struct MemoryPlace_t {
    uint64_t Address;  // physical
    uint32_t Offset;   // the caller's register offset
} MemoryPlace_t;
#pragma pack(pop)

// The start of a memory request. Size bytes of data follow.
typedef struct MemoryRequest_t {
    uint32_t Reserved;
    uint32_t Cpu;         // always 256
    MemoryPlace_t Place;  // of kRequestMMIOWriteDynamic: a DynamicMMIORecord_t
    uint32_t Size;
} MemoryRequest_t;

#ifdef __cplusplus
static_assert(sizeof(MSRRecord_t) == 20 && offsetof(MSRRecord_t, Msr) == 8 && offsetof(MSRRecord_t, LoContent) == 16);
static_assert(sizeof(CPUIDRecord_t) == 20 && offsetof(CPUIDRecord_t, Eax) == 4 && offsetof(CPUIDRecord_t, Ecx) == 12);
static_assert(sizeof(CPUIDRequest_t) == 56 && offsetof(CPUIDRequest_t, Registers) == 16);
static_assert(sizeof(NonTurboRecord_t) == 20 && offsetof(NonTurboRecord_t, Result) == 12);
static_assert(sizeof(PortRequest_t) == 20 && offsetof(PortRequest_t, Data) == 16);
static_assert(sizeof(PCIRequest_t) == 20 && offsetof(PCIRequest_t, Data) == 16);
static_assert(sizeof(MemoryPlace_t) == 12 && sizeof(DynamicMMIORecord_t) == sizeof(MemoryPlace_t));
static_assert(sizeof(MemoryRequest_t) == 24 && offsetof(MemoryRequest_t, Place) == 8 &&
              offsetof(MemoryRequest_t, Size) == 20);
#endif

#endif
