// The structure store: the table, read once for all packages of the process, as one record for each structure.
//
// Record     One heap block: the type as a 32-bit word, then the body, which is what a decoder gets. The body of types
//            0 to 2 is a parsed record (ParsedRecords.h). Any other is the structure itself: formatted area, string
//            area, closing double NUL, and kSpareBytes zeros behind it. Whatever the table held, a body holds as many
//            bytes as its Length says and its string area ends in a double NUL. Source: the SMBIOS standard,
//            "structure standards".
// Ownership  The store owns its records from the first LibSMBIOSInit to the last LibSMBIOSExit. They don't change
//            meanwhile. What a function allocates for its caller is the caller's, to be released with os_FreeBlock.
// Threads    LibSMBIOSInit and LibSMBIOSExit are for one thread at a time; lookups on a store that is up are not.
#pragma once

#include <cstdint>

#include "Packages/OS/Export.h"
#include "Packages/OS/Status.h"

inline constexpr uint32_t kEntryBufferSize = 16;     // head of the _SM_ entry point; bytes 6 and 7 hold the version
inline constexpr uint32_t kDMIEntryBufferSize = 15;  // the _DMI_ entry point
inline constexpr uint32_t kSpareBytes = 71;

// A table on its way to the store, or out of it: one heap block, the number of bytes and then the bytes.
struct SMBIOSTableImage_t {
    uint32_t Length;

    uint8_t* Data() { return reinterpret_cast<uint8_t*>(this + 1); }
    const uint8_t* Data() const { return reinterpret_cast<const uint8_t*>(this + 1); }
};

extern "C" {
// Brings the store up, or counts one more user of it.
// entry   16 bytes; bytes 6 and 7 get SMBIOS major and minor, also for a later user
// Status  1; 5 when the machine can't be reached, has no table, or memory is out: nothing is left behind then
QUORLIN_API status_t LibSMBIOSInit(uint8_t* entry);
// Gives one use back; the last one releases the records and the machine. 5 on a store that is down. Uses are counted
// and not told apart: one call too many frees the records that others still read.
QUORLIN_API status_t LibSMBIOSExit();

// The SMBIOS version of the table, without one more use of the store. 1; 4 for a null pointer, 5 on a store that is
// down.
QUORLIN_API status_t GetSMBIOSVersion(uint8_t* major, uint8_t* minor);

// The records of one type, in table order.
// records  gets a new array of record addresses, or null when the table has none of the type
// count    gets their number, at most 255: a type with more is cut there, with a warning line
// Status   1, also for a type that the table doesn't hold; 5 without memory
QUORLIN_API status_t GetSMBIOSStruture(uint32_t type, uint8_t*** records, uint8_t* count);
// The same with a 32-bit count, from instance `first` of the type on, so that no structure is out of reach.
QUORLIN_API status_t GetSMBIOSStrutureFrom(uint32_t type, uint32_t first, uint8_t*** records, uint32_t* count);

// The raw table, read anew. `entry` as above; the image is the caller's. Expects a store that is up. 1 or 5.
QUORLIN_API status_t GetSMBIOSDump(uint8_t* entry, SMBIOSTableImage_t** image);
// 4 for a null pointer; empty before the first LibSMBIOSInit.
QUORLIN_API status_t GetSMBIOSLibVersion(LibVersion_t* version);
}
