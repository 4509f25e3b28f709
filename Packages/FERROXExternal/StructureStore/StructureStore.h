// The structure store: reads the table once for all packages of the process, and keeps one record for each structure.
//
// Record     The type as a 32-bit word, then the body, which a decoder gets. The body of types 0 to 2 is a parsed one
//            (ParsedRecords.h). Any other body is the structure itself: formatted area, string area, double NUL, and
//            after that kSpareBytes zeros. However broken the table is, a body has as many bytes as its Length says,
//            and its string area ends in a double NUL. Source: the SMBIOS standard, "structure standards".
// Ownership  The store owns its records from the first LibSMBIOSInit to the last LibSMBIOSExit. They don't change
//            meanwhile. The caller releases what a function allocates for it, with os_FreeBlock.
// Threads    LibSMBIOSInit and LibSMBIOSExit must not run at the same time as any other function of the store. Lookups
//            may run on several threads at once.
#pragma once

#include <cstdint>

#include "Packages/OS/Export.h"
#include "Packages/OS/Status.h"

inline constexpr uint32_t kEntryBufferSize = 16;     // start of the _SM_ entry point; bytes 6 and 7 are the version
inline constexpr uint32_t kDMIEntryBufferSize = 15;  // the _DMI_ entry point
inline constexpr uint32_t kSpareBytes = 71;

// A raw table: one heap block with the number of bytes, then the bytes.
struct SMBIOSTableImage_t {
    uint32_t Length;

    uint8_t* Data() { return reinterpret_cast<uint8_t*>(this + 1); }
    const uint8_t* Data() const { return reinterpret_cast<const uint8_t*>(this + 1); }
};

extern "C" {
// Reads the table into the store. If the store is up already, counts one more use of it.
// entry   16 bytes; bytes 6 and 7 are set to SMBIOS major and minor, in either case
// Status  1; 5 the machine can't be opened, has no table, or out of memory; everything is undone then
QUORLIN_API status_t LibSMBIOSInit(uint8_t* entry);
// Ends one use of the store. The last one releases the records and the machine. Uses are only counted, so one call too
// many releases records that others still read.
// Status  1; 5 the store is down, or its list or machine couldn't be closed
QUORLIN_API status_t LibSMBIOSExit();

// Returns the SMBIOS version of the table.
// Status  1; 4 null pointer; 5 the store is down
QUORLIN_API status_t GetSMBIOSVersion(uint8_t* major, uint8_t* minor);

// Returns the records of one type, in table order.
// records  is set to a new array of record addresses; null if the table has none of the type
// count    is set to their number. If there are more than 255, returns the first 255 and traces a warning
// Status   1, even if the table has none; 5 out of memory
QUORLIN_API status_t GetSMBIOSStruture(uint32_t type, uint8_t*** records, uint8_t* count);
// The same from instance `first` of the type on, with a 32-bit count.
QUORLIN_API status_t GetSMBIOSStrutureFrom(uint32_t type, uint32_t first, uint8_t*** records, uint32_t* count);

// Reads the raw table again, into a new block. `entry` as for LibSMBIOSInit. The store must be up.
// Status  1; 5 no table
QUORLIN_API status_t GetSMBIOSDump(uint8_t* entry, SMBIOSTableImage_t** image);
// Returns the library's version; empty before the first LibSMBIOSInit.
// Status  1; 4 null pointer
QUORLIN_API status_t GetSMBIOSLibVersion(LibVersion_t* version);
}
