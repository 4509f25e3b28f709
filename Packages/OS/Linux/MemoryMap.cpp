#include "Packages/OS/MemoryMap.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <memory>
#include <new>
#include <string_view>
#include <vector>

#include "Packages/OS/Linux/Descriptor.h"

namespace {

struct Range_t {
    uint64_t first, last;
    bool isMemory;

    bool Holds(uint64_t address) const { return first <= address && address <= last; }
};

constexpr std::string_view kSystemROM = "System ROM";
constexpr std::string_view kMemory[] = {
    kSystemROM, "System RAM", "Reserved", "reserved", "ACPI Tables", "ACPI Non-volatile Storage",
};

// Removes an address and the text `after` from the start of the line. Returns false if they aren't there.
bool TakeAddress(std::string_view* line, std::string_view after, uint64_t* address) {
    const auto [end, error] = std::from_chars(line->data(), line->data() + line->size(), *address, 16);
    line->remove_prefix(static_cast<size_t>(end - line->data()));
    if (error != std::errc() || !line->starts_with(after)) return false;
    line->remove_prefix(after.size());
    return true;
}

// Parses a line of the map: "  FIRST-LAST : NAME". A range that contains others comes before them. For users without
// rights all addresses read 0.
bool ParseLine(std::string_view line, const std::vector<Range_t>& before, Range_t* range) {
    if (!line.ends_with('\n')) return false;
    line.remove_suffix(1);
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    if (!TakeAddress(&line, "-", &range->first) || !TakeAddress(&line, " : ", &range->last) ||
        range->last < range->first || range->last == 0)
        return false;
    range->isMemory = std::ranges::find(kMemory, line) != std::end(kMemory);
    // Ranges within a device's range belong to the device, except the ROM, which is within the bus's range.
    if (line != kSystemROM)
        range->isMemory &= std::ranges::all_of(before, [range](const Range_t& other) {
            return other.isMemory || !other.Holds(range->first) || !other.Holds(range->last);
        });
    return true;
}

// Returns false if the map can't be read completely.
bool ReadMap(std::vector<Range_t>* map) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(OpenStreamAbove("/proc/iomem", "r"), std::fclose);
    if (file == nullptr) return false;
    char line[512];
    while (std::fgets(line, sizeof line, file.get()) != nullptr) {
        Range_t range = {};
        if (!ParseLine(line, *map, &range)) return false;
        map->push_back(range);
    }
    return std::ferror(file.get()) == 0;
}

}  // namespace

bool os_IsMemory(uint64_t address, uint64_t size) try {
    if (size > UINT64_MAX - address) return false;
    std::vector<Range_t> map;
    if (!ReadMap(&map)) return false;
    // Steps from border to border. The innermost range at an address is the last one in the map.
    for (uint64_t at = address; at != address + size;) {
        const Range_t* innermost = nullptr;
        uint64_t border = address + size;
        for (const Range_t& range : map) {
            if (range.first > at) border = std::min(border, range.first);
            if (range.last >= at && range.last < border) border = range.last + 1;
            if (range.Holds(at)) innermost = &range;
        }
        if (innermost == nullptr || !innermost->isMemory) return false;
        at = border;
    }
    return true;
} catch (const std::bad_alloc&) {
    return false;
}
