#include "Packages/OS/Processors.h"

#include <cpuid.h>

#include "Packages/OS/OSServices.h"
#include "Packages/OS/Windows/Windows.h"

namespace {

// The processor groups in order. Logical numbers run on from each group to the next.
struct ProcessorGroup_t {
    uint8_t number;  // kFree for a slot without a group
    uint32_t first, count;
};
constexpr size_t kMostGroups = 4;
constexpr uint8_t kFree = 255;

struct ProcessorGroups_t {
    ProcessorGroup_t groups[kMostGroups];

    ProcessorGroups_t() {
        uint32_t first = 0;
        const WORD present = GetActiveProcessorGroupCount();
        for (WORD number = 0; number < kMostGroups; ++number) {
            const uint32_t count = number < present ? GetActiveProcessorCount(number) : 0;
            groups[number] = {number < present ? static_cast<uint8_t>(number) : kFree, first, count};
            first += count;
        }
    }
};

}  // namespace

uint32_t os_GetProcessorCount() { return GetActiveProcessorCount(ALL_PROCESSOR_GROUPS); }

bool os_ReadCPUID(uint32_t registers[4]) {
    __cpuid_count(registers[0], registers[2], registers[0], registers[1], registers[2], registers[3]);
    return true;
}

status_t os_SetThreadAffinity(uint32_t processor) {
    GroupAffinity_t affinity;
    if (os_GetProcessorAffinity(processor, &affinity) != kSuccess) return kFailure;
    GROUP_AFFINITY wanted = {};
    wanted.Mask = affinity.Mask;
    wanted.Group = affinity.Group;
    if (!SetThreadGroupAffinity(GetCurrentThread(), &wanted, nullptr)) return kFailure;
    Sleep(1);  // lets the scheduler move the thread
    return kSuccess;
}

status_t os_GetProcessorAffinity(uint32_t processor, GroupAffinity_t* affinity) {
    if (affinity == nullptr) return kNullPointer;
    static const ProcessorGroups_t table;
    for (const ProcessorGroup_t& group : table.groups) {
        if (group.number == kFree || processor - group.first >= group.count) continue;
        *affinity = {uint64_t{1} << (processor - group.first), group.number};
        return kSuccess;
    }
    return kFailure;
}
