// Why this process can't get at something of this machine. For the programs of this tree only: not installed.
#pragma once

#include <cstdint>
#include <string>

#include "Packages/OS/Status.h"

// What stands in the way; Obstacles.inc has the words.
enum class Obstacle_t : uint8_t {
#define OBSTACLE(name, word, problem, advice) k##name,
#include "Packages/FERROXExternal/FERROXLib/Obstacles.inc"
#undef OBSTACLE
};

// The ways to what this machine has.
enum class Way_t : uint8_t {
    kFirmwareTable,  // the SMBIOS table, from the system's firmware-table service
    kEntryPoint,     // the SMBIOS entry point, from the same
    kACPI,           // ACPI tables
    kService,        // the driver's service
    kDriver,         // the driver itself
    kScan,           // the SMBIOS table, by the scan of memory
    kByAddress,      // the SMBIOS table, at the address that UEFI firmware gave to the system
    kMemory,         // the BIOS area, at F0000h
    kRAM,            // memory that the system uses
    kPCI,            // all 256 bytes of PCI configuration space
    kExtendedPCI,    // what comes after them
    kPorts,          // I/O ports
    kMSR,            // model-specific registers of a processor
    kCPUID,          // the CPUID instruction on a processor
    kNewFiles,       // new files in the working folder, which FindObstacle doesn't know
};

struct Finding_t {
    Obstacle_t obstacle = Obstacle_t::kNone;
    std::string detail = {};  // such as a file and the system's own message; may be empty

    bool operator==(const Finding_t&) const = default;
};

// Looks for what keeps this process from going a way; kNone if the system shows nothing. Changes nothing, and touches
// no memory and no port. Where the hardware library has an operation for the way, that tells whether it works, and this
// tells why not. Throws std::bad_alloc.
// processor  for kMSR and kCPUID; from 0
Finding_t FindObstacle(Way_t way, uint32_t processor);

// Opens the hardware library so that nothing stays changed after EndTrial, which must follow whatever the status is.
// Where the library needs a driver, that is started only with `startsDriver`.
// Status  as that of FERROXInitialize; 5 if the driver isn't to be started
status_t BeginTrial(bool startsDriver);
void EndTrial();
