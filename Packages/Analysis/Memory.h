// What a table's memory arrays, devices and mapped ranges say of each other.
#pragma once

#include <bitset>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Packages/Analysis/Check.h"
#include "Packages/Analysis/Values.h"

class ClMemory {
  public:
    explicit ClMemory(std::span<const uint8_t> table) : m_table(table) {}

    // Adds a structure of type 16, 17 or 19.
    void Add(const TableStructure_t& structure, const ClValues& values);
    // Compares what was added.
    void Report(const ReportFinding_t& report);

  private:
    struct Array_t {
        TableStructure_t structure;
        std::optional<uint64_t> devices, capacity;
        bool isSystem, hasEcc;
    };
    // The devices of an array together, as a table may have very many.
    struct Devices_t {
        uint64_t count = 0, installed = 0;
        bool hasUnknownSize = false, hasPersistent = false, hasCheckBits = false;
    };
    // The serial number of a device with a size.
    struct Serial_t {
        TableStructure_t structure;
        uint16_t array;
        std::string_view maker, serial;
    };
    struct Range_t {
        TableStructure_t structure;
        uint16_t array;
        uint64_t begin, end;
    };

    void AddDevice(const TableStructure_t& structure, uint16_t array, const ClValues& values);
    Devices_t DevicesOf(const Array_t& array) const;
    void ReportArray(const Array_t& array, const ReportFinding_t& report) const;
    void ReportMapped(const ReportFinding_t& report);
    void ReportOverlaps(const ReportFinding_t& report);
    void ReportSerials(const ReportFinding_t& report);
    void Say(RuleId_t rule, const TableStructure_t& structure, std::string_view key, const std::string& found,
             const std::string& expected, const ReportFinding_t& report) const;

    std::span<const uint8_t> m_table;
    std::vector<Array_t> m_arrays;
    std::bitset<0x10000> m_known;  // handles of arrays; of several with one handle the first one counts
    std::unordered_map<uint16_t, Devices_t> m_devices;  // by the handle of their array
    std::vector<Serial_t> m_serials;
    std::vector<Range_t> m_ranges;
};
