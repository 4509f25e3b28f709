#include "Packages/OS/Processors.h"

#include <unistd.h>

#include <cctype>
#include <cstdio>
#include <cstdlib>

#include "Packages/OS/Linux/Descriptor.h"
#include "Packages/OS/Linux/Processors.h"
#include "Packages/OS/OSServices.h"

namespace {

constexpr uint32_t kGroupSize = 64;
constexpr uint32_t kMostGroups = 4;

constexpr char kActive[] = "/sys/devices/system/cpu/online";

}  // namespace

void ForEachProcessor(const char* path, const std::function<bool(int processor)>& visit) {
    char list[4096] = "";
    if (std::FILE* file = OpenStreamAbove(path, "re")) {
        if (std::fgets(list, sizeof list, file) == nullptr) list[0] = '\0';
        std::fclose(file);
    }
    if (std::isdigit(static_cast<unsigned char>(list[0])) == 0)
        std::snprintf(list, sizeof list, "0-%ld", sysconf(_SC_NPROCESSORS_ONLN) - 1);
    // The list has ranges and single numbers, such as 0-3,6,8-11.
    for (char* at = list; std::isdigit(static_cast<unsigned char>(*at)) != 0;) {
        const long first = std::strtol(at, &at, 10);
        const long last = *at == '-' ? std::strtol(at + 1, &at, 10) : first;
        for (long processor = first; processor <= last; ++processor)
            if (!visit(static_cast<int>(processor))) return;
        if (*at == ',') ++at;
    }
}

int SystemProcessor(uint32_t logical) {
    int found = -1;
    ForEachProcessor(kActive, [&](int processor) {
        if (logical-- != 0) return true;
        found = processor;
        return false;
    });
    return found;
}

uint32_t os_GetProcessorCount() {
    uint32_t count = 0;
    ForEachProcessor(kActive, [&](int) { return ++count != 0; });
    return count;
}

// Linux has no groups: 64 processors count as one.
status_t os_GetProcessorAffinity(uint32_t processor, GroupAffinity_t* affinity) {
    if (affinity == nullptr) return kNullPointer;
    if (processor >= kGroupSize * kMostGroups || SystemProcessor(processor) < 0) return kFailure;
    *affinity = {uint64_t{1} << processor % kGroupSize, static_cast<uint16_t>(processor / kGroupSize)};
    return kSuccess;
}

status_t os_SetThreadAffinity(uint32_t processor) {
    GroupAffinity_t affinity;
    ClProcessorSet one;
    if (os_GetProcessorAffinity(processor, &affinity) != kSuccess || !one.Add(SystemProcessor(processor)))
        return kFailure;
    return one.ApplyToThread() ? kSuccess : kFailure;
}
