// The firmware's tables, as the operating system serves them.
#pragma once

#include <cstdint>
#include <vector>

inline constexpr uint32_t kSMBIOSProvider = 0x52534D42;  // "RSMB"; its one table has number 0
inline constexpr uint32_t kACPIProvider = 0x41435049;    // "ACPI"; a table's number is its name, first letter lowest

// Fills `buffer` with the table if `room` bytes hold all of it; a null buffer asks for the size alone. The SMBIOS table
// follows a FirmwareAnswer_t (Packages/Format/FirmwareAnswer.h).
// Result   the table's size, also when the room is too small; 0 when it can't be read
// refused  if not null, tells whether a result of 0 is for want of rights
// Threads  any number at once
uint32_t os_GetFirmwareTable(uint32_t provider, uint32_t table, void* buffer, uint32_t room, bool* refused);

// The numbers of the ACPI tables that there are, in the system's order; a number comes once for each table of its name.
// Empty also where the system doesn't tell. Throws std::bad_alloc.
std::vector<uint32_t> os_ListACPITables();
