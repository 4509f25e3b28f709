// The forms in which tables are stored in files. Works on bytes; opens no files.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// The largest size of a table. Room for 65,536 structures, as many as there are handles, of 64 bytes each: far more
// than any real table. The limit bounds memory use.
inline constexpr size_t kMostTableBytes = 4u << 20;
// Offset of the table in dumps whose entry point has a physical address.
inline constexpr size_t kTableOffset = 32;
// The largest size of a file.
inline constexpr size_t kMostFileBytes = kMostTableBytes + kTableOffset;

enum class TableForm_t : uint8_t {
    kAny,            // the content decides
    kDump,           // an entry point, and the table at its address, taken as an offset, or at kTableOffset
    kBareTable,      // structures only
    kWindowsAnswer,  // a FirmwareAnswer_t and the table
    kFolder,         // a folder of two files, as Linux shows them: the entry point and the table
};

// Names of forms for users: "any", "dump", "table", "windows", "sysfs".
std::string_view NameOfForm(TableForm_t form);
// Returns false, and leaves `form` alone, for an unknown name.
bool FormByName(std::string_view name, TableForm_t* form);

// A table found in some bytes.
struct TableFound_t {
    bool isFound = false;
    std::string problem{};  // if not found: what is wrong and what to try, without a file's name
    TableForm_t form = TableForm_t::kAny;
    std::span<const uint8_t> table{};  // points into the bytes
    uint8_t major = 0, minor = 0;      // SMBIOS version; 0.0 if the form has none
    uint32_t missing = 0;              // bytes by which the table is shorter than its form says
    bool checksumsFit = true;          // of the entry point, if there is one
    uint16_t structures = 0;           // what it states: how many, and the size of the largest; 0 for nothing
    uint16_t largest = 0;
};

// Finds the table in the bytes of a file, which must not be compressed. `as` sets the form; with kAny the content
// decides. With kFolder nothing is found, because that isn't one file.
TableFound_t FindTable(std::span<const uint8_t> bytes, TableForm_t as);
// The same from the two files of a folder.
TableFound_t FindTableInFolder(std::span<const uint8_t> entryPoint, std::span<const uint8_t> table);

// Whether the bytes are compressed with gzip.
bool IsCompressed(std::span<const uint8_t> bytes);
// Decompresses to at most kMostFileBytes. Returns null, or what is wrong.
const char* Inflate(std::span<const uint8_t> bytes, std::vector<uint8_t>* inflated);

// Makes a dump: an entry point with checksums, and the table at kTableOffset. The entry point is _SM_ for versions
// below 3 and tables of at most 65,535 bytes, otherwise _SM3_. `table` must not be longer than kMostTableBytes. The
// entry point states a table that is longer by `missing` bytes, for one that is known to be cut off.
std::vector<uint8_t> MakeDump(std::span<const uint8_t> table, uint8_t major, uint8_t minor, uint32_t missing = 0);
