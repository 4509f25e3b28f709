// The firmware's tables, as the operating system provides them.
#pragma once

#include <cstdint>
#include <vector>

#include "Packages/OS/Status.h"

inline constexpr uint32_t kSMBIOSProvider = 0x52534D42;  // "RSMB"; its one table has number 0
inline constexpr uint32_t kACPIProvider = 0x41435049;    // "ACPI"; a table's number is its name, first letter lowest

// Reads a table into `buffer`, if it fits in `room` bytes. With a null buffer, only returns the size. The SMBIOS table
// follows a FirmwareAnswer_t (Packages/Format/FirmwareAnswer.h).
// Returns the size of the table, even if it doesn't fit; 0 if it can't be read.
// refused  if not null, is set to whether the user lacks the rights to read it
// Threads  any number at once
uint32_t os_GetFirmwareTable(uint32_t provider, uint32_t table, void* buffer, uint32_t room, bool* refused);

// Returns the numbers of all ACPI tables, in the system's order. Several tables of one name repeat its number. Empty if
// the system provides no list. Throws std::bad_alloc.
std::vector<uint32_t> os_ListACPITables();

// Reads one of the ACPI tables with a number: the one at `place`, from 0, in the list above. Windows only provides the
// first. False if it can't be read; `refused` then says whether the user lacks the rights. Throws std::bad_alloc.
bool os_ReadACPITable(uint32_t table, uint32_t place, std::vector<uint8_t>* bytes, bool* refused);

// Physical addresses of SMBIOS entry points, as UEFI firmware gave them to the system. 0 is none.
struct EntryAddresses_t {
    uint64_t smbios3;  // of the 64-bit one
    uint64_t smbios;   // of the 32-bit one
};
// Reads the addresses.
// refused  is set to whether the user lacks the rights to read them
// Status   1; 3 out of memory; 5 the firmware isn't UEFI, or they can't be read; 6 this system doesn't show them
status_t os_GetEntryAddresses(EntryAddresses_t* addresses, bool* refused);
