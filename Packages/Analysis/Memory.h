// What a table's memory arrays, devices and mapped ranges say of each other.
#pragma once

#include <bitset>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
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
    struct Device_t {
        TableStructure_t structure;
        uint16_t array;
        uint64_t size;  // 0 if there is none, or if it isn't known
        bool isSizeKnown, isPersistent;
        uint64_t checkBits;
        std::string_view maker, serial;
    };
    struct Range_t {
        TableStructure_t structure;
        uint16_t array;
        uint64_t begin, end;
    };

    std::span<const Device_t> DevicesOf(const Array_t& array) const;
    void ReportArray(const Array_t& array, const ReportFinding_t& report) const;
    void ReportMapped(const ReportFinding_t& report);
    void ReportOverlaps(const ReportFinding_t& report);
    void ReportSerials(const ReportFinding_t& report);
    void Say(RuleId_t rule, const TableStructure_t& structure, std::string_view key, const std::string& found,
             const std::string& expected, const ReportFinding_t& report) const;

    std::span<const uint8_t> m_table;
    std::vector<Array_t> m_arrays;
    std::bitset<0x10000> m_known;  // handles of arrays; of several with one handle the first one counts
    std::vector<Device_t> m_devices;
    std::vector<Range_t> m_ranges;
};
