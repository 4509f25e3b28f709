// ACPI tables as text, in the form that acpidump writes and acpixtract reads. Works on bytes.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct AcpiTable_t {
    std::string name;  // four letters; tables may share one
    std::vector<uint8_t> bytes;
    bool operator==(const AcpiTable_t&) const = default;
};

// Whether a text can be a table's name in this form: four visible ASCII characters.
bool IsAcpiName(std::string_view name);

// Tables must have names as above, and bytes.
std::string WriteAcpiDat(std::span<const AcpiTable_t> tables);
// Returns what is wrong, with the line's number, or an empty text. Throws std::bad_alloc.
std::string ParseAcpiDat(std::string_view text, std::vector<AcpiTable_t>* tables);
