// The description of a recorded machine, machine.json. Works on bytes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Packages/Format/SystemFacts.h"

inline constexpr char kMachineJson[] = "machine.json";
// The other files of a record. The first holds the SMBIOS table as a dump (TableFile.h); each of the others has a form
// of its own in this folder.
inline constexpr char kRecordFiles[][10] = {"dmi.bin", "acpi.dat", "pci.txt", "cpuid.txt", "msr.txt"};
enum RecordFile_t { kTableRecord, kAcpiRecord, kPciRecord, kCpuidRecord, kMsrRecord, kRecordFileCount };
// Returns kRecordFileCount for another name.
RecordFile_t RecordFileByName(std::string_view name);

struct RecordedFile_t {
    std::string name, sha256;  // 64 digits in lower case
    bool operator==(const RecordedFile_t&) const = default;
};
// What couldn't be read, and why.
struct Unread_t {
    std::string what, why;
    bool operator==(const Unread_t&) const = default;
};

struct MachineFacts_t {
    bool isRedacted = false;
    std::string system, kernel, host, firmware;  // empty if unknown
    std::optional<uint64_t> processors, memory;  // their number; bytes
    SystemFacts_t known;
    // Of the driver and its libraries for PCI, ports and processors; empty if the hardware library couldn't be opened.
    std::vector<uint32_t> versions;
    std::vector<uint32_t> segments;    // PCI segments of which all functions are recorded
    bool hasExtendedSpace = false;     // what a function has past its recorded 256 bytes is ones
    std::vector<std::string> leftOut;  // ACPI tables that the machine has and the record hasn't
    std::vector<RecordedFile_t> files;
    std::vector<Unread_t> unread;
    bool operator==(const MachineFacts_t&) const = default;
};

std::string WriteMachineJson(const MachineFacts_t& facts);
// Reads what WriteMachineJson writes, and other JSON with these members; ignores members that it doesn't know. Returns
// what is wrong, or an empty text. Throws std::bad_alloc.
std::string ParseMachineJson(std::string_view text, MachineFacts_t* facts);
