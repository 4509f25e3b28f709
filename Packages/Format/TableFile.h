// The forms in which tables are kept, recognised by their content. Nothing here touches a file.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Far above any table: 65,536 structures, as many as there are handles, of 64 bytes each. What is larger is no table,
// and its pieces would fill the memory.
inline constexpr size_t kMostTableBytes = 4u << 20;
inline constexpr size_t kTableOffset = 32;  // in dumps whose entry point keeps the table's physical address
// What is larger holds no table, and is read no further.
inline constexpr size_t kMostFileBytes = kMostTableBytes + kTableOffset;

enum class TableForm_t : uint8_t {
    kAny,            // as the content tells
    kDump,           // an entry point, and the table where its address says, taken as an offset, or at kTableOffset
    kBareTable,      // structures from the first byte on
    kWindowsAnswer,  // what the system's firmware-table call gives: an 8-byte head (calling method, major, minor,
                     // revision, length of 32 bits), and the table
    kFolder,         // the two files that Linux shows: the entry point and the table
};

// The names that users give: "any", "dump", "table", "windows", "sysfs".
std::string_view NameOfForm(TableForm_t form);
// False for a name that is none; `form` stays then.
bool FormByName(std::string_view name, TableForm_t* form);

// Where in some bytes a table lies. The span points into those bytes.
struct TableFound_t {
    bool isFound = false;
    std::string problem{};  // if not found: what is wrong and what to try, without a file's name
    TableForm_t form = TableForm_t::kAny;
    std::span<const uint8_t> table{};
    uint8_t major = 0, minor = 0;  // the SMBIOS version, 0.0 where the form states none
    uint32_t missing = 0;          // table bytes that the form promises and that aren't there
    bool checksumsFit = true;      // of the entry point, where there is one
};

// Finds the table in a file's bytes, which must not be compressed. `as` other than kAny takes the form as said, and
// looks at the content only as far as that form needs it; kFolder is no form of one file, and gives 5.
TableFound_t FindTable(std::span<const uint8_t> bytes, TableForm_t as);
// The same from the two files of a folder.
TableFound_t FindTableInFolder(std::span<const uint8_t> entryPoint, std::span<const uint8_t> table);

// Files compressed with gzip. Inflate gives null and the bytes, or why it can't; at most kMostFileBytes come out.
bool IsCompressed(std::span<const uint8_t> bytes);
const char* Inflate(std::span<const uint8_t> bytes, std::vector<uint8_t>* inflated);

// The bytes of a dump: an entry point with its checksums (_SM3_ from version 3 on, _SM_ below), and the table at
// kTableOffset. An _SM_ entry point counts to 65,535 bytes; a longer table gets an _SM3_ one. `table` is at most
// kMostTableBytes long.
std::vector<uint8_t> MakeDump(std::span<const uint8_t> table, uint8_t major, uint8_t minor);
