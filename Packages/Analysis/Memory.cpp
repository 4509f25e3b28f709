#include "Packages/Analysis/Memory.h"

#include <algorithm>
#include <bitset>
#include <tuple>

#include "Packages/Standard/Texts.h"

namespace {

// Codes of the standard's tables.
constexpr uint64_t kSystemMemory = 3;
constexpr uint64_t kSingleBitEcc = 5, kMultiBitEcc = 6;

}  // namespace

void ClMemory::Add(const TableStructure_t& structure, const ClValues& values) {
    const auto handle = [&](std::string_view key) {
        return static_cast<uint16_t>(values.Number(key).value_or(0xFFFF));
    };
    switch (structure.Type()) {
        case 16: {
            if (m_known[structure.Handle()]) break;
            m_known.set(structure.Handle());
            const uint64_t correction = values.Number("memory_error_correction").value_or(0);
            m_arrays.push_back({structure, values.Number("number_of_memory_devices"), values.Number("capacity"),
                                values.Number("use") == kSystemMemory,
                                correction == kSingleBitEcc || correction == kMultiBitEcc});
            break;
        }
        case 17: AddDevice(structure, handle("physical_memory_array_handle"), values); break;
        case 19: {
            const auto begin = values.Number("range_start"), end = values.Number("range_end");
            if (begin && end && *begin <= *end)
                m_ranges.push_back({structure, handle("memory_array_handle"), *begin, *end});
            break;
        }
        default: break;
    }
}

void ClMemory::AddDevice(const TableStructure_t& structure, uint16_t array, const ClValues& values) {
    const Value_t* known = values.Find("memory_size");
    const uint64_t size = values.Number("memory_size").value_or(0);
    const uint64_t total = values.Number("total_width").value_or(0);
    const uint64_t data = values.Number("data_width").value_or(0);
    Devices_t& devices = m_devices[array];
    devices.count++;
    devices.installed += size;
    devices.hasUnknownSize |= known == nullptr || known->state == FactState_t::kUnknown;
    devices.hasPersistent |= values.Number("non_volatile_size").value_or(0) != 0;
    devices.hasCheckBits |= total > data && data != 0;
    const std::string_view serial = values.Text("serial_number");
    if (size != 0 && !serial.empty()) m_serials.push_back({structure, array, values.Text("manufacturer"), serial});
}

ClMemory::Devices_t ClMemory::DevicesOf(const Array_t& array) const {
    const auto found = m_devices.find(array.structure.Handle());
    return found != m_devices.end() ? found->second : Devices_t();
}

void ClMemory::Say(RuleId_t rule, const TableStructure_t& structure, std::string_view key, const std::string& found,
                   const std::string& expected, const ReportFinding_t& report) const {
    const auto offset = static_cast<uint32_t>(structure.data - m_table.data());
    report({rule, &structure, key, offset, 0, found, expected});
}

void ClMemory::Report(const ReportFinding_t& report) {
    std::ranges::stable_sort(m_ranges, {}, [](const Range_t& range) { return std::pair(range.array, range.begin); });
    for (const Array_t& array : m_arrays) ReportArray(array, report);
    ReportOverlaps(report);
    ReportMapped(report);
    ReportSerials(report);
}

void ClMemory::ReportArray(const Array_t& array, const ReportFinding_t& report) const {
    const Devices_t devices = DevicesOf(array);
    if (array.devices && *array.devices != devices.count)
        Say(RuleId_t::kDeviceCount, array.structure, "number_of_memory_devices", std::to_string(*array.devices),
            std::to_string(devices.count) + " structures of type 17 refer to the array", report);
    if (array.capacity && *array.capacity != 0 && devices.installed > *array.capacity)
        Say(RuleId_t::kMoreThanMaximum, array.structure, "capacity", SizeText(*array.capacity),
            SizeText(devices.installed) + " are installed", report);
    if (array.isSystem && array.hasEcc && devices.installed != 0 && !devices.hasCheckBits)
        Say(RuleId_t::kEccWidth, array.structure, "memory_error_correction", "ECC",
            "a total width above the data width in its devices", report);
}

// Arrays may share a range, in which their memory takes turns, so that only the whole can be compared.
void ClMemory::ReportMapped(const ReportFinding_t& report) {
    constexpr uint64_t kBelowOneMiB = 0x100000;  // where firmware may leave out addresses that aren't memory
    std::bitset<0x10000> isSystem;               // by handle
    uint64_t installed = 0, mapped = 0, end = 0;
    for (const Array_t& array : m_arrays) {
        if (!array.isSystem) continue;
        isSystem.set(array.structure.Handle());
        const Devices_t devices = DevicesOf(array);
        if (devices.hasUnknownSize || devices.hasPersistent) return;
        installed += devices.installed;
    }
    std::erase_if(m_ranges, [&](const Range_t& range) { return !isSystem[range.array]; });
    std::ranges::sort(m_ranges, {}, &Range_t::begin);
    for (const Range_t& range : m_ranges) {
        if (range.end < end) continue;
        mapped += range.end + 1 - std::max(range.begin, end);
        end = range.end + 1;
    }
    const bool fits = mapped <= installed && installed - mapped < kBelowOneMiB;
    if (installed != 0 && mapped != 0 && !fits)
        Say(RuleId_t::kMappedSize, m_ranges.front().structure, "", SizeText(mapped) + " mapped in all",
            SizeText(installed) + " installed", report);
}

void ClMemory::ReportOverlaps(const ReportFinding_t& report) {
    for (size_t i = 1; i < m_ranges.size(); i++) {
        const Range_t &first = m_ranges[i - 1], &second = m_ranges[i];
        if (first.array == second.array && second.begin <= first.end)
            Say(RuleId_t::kRangesOverlap, second.structure, "range_start", CodeText(second.begin),
                "an address after " + CodeText(first.end), report);
    }
}

void ClMemory::ReportSerials(const ReportFinding_t& report) {
    std::ranges::stable_sort(m_serials, {},
                             [](const Serial_t& each) { return std::tuple(each.maker, each.serial, each.array); });
    // In the order of the table, which doesn't depend on what the serial numbers are.
    std::vector<std::pair<const Serial_t*, const Serial_t*>> pairs;
    for (size_t i = 1; i < m_serials.size(); i++) {
        const Serial_t &first = m_serials[i - 1], &second = m_serials[i];
        if (first.maker == second.maker && first.serial == second.serial) pairs.emplace_back(&second, &first);
    }
    std::ranges::sort(pairs, {}, [](const auto& pair) { return pair.first->structure.data; });
    for (const auto& [second, first] : pairs)
        Say(RuleId_t::kSameSerial, second->structure, "serial_number", std::string(second->serial),
            "another one than that of the structure with handle " + HandleText(first->structure.Handle()), report);
}
