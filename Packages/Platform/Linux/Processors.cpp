// Processors, their groups, and the memory that is installed. Windows counts processors in groups of at most 64; here
// a group is the next 64 of the online ones.
#include "Packages/Platform/Linux/Processors.h"

#include <dirent.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr uint32_t kGroupSize = 64;
constexpr int kMostProcessors = 8192;  // what the kernel can be built for

// Calls visit(processor) for each online processor in rising order, until it gives false.
template <typename Visit>
void ForEachOnline(Visit visit) {
    char list[4096] = "";
    if (FILE* file = std::fopen("/sys/devices/system/cpu/online", "re")) {
        if (std::fgets(list, sizeof list, file) == nullptr) list[0] = '\0';
        std::fclose(file);
    }
    if (std::isdigit(static_cast<unsigned char>(list[0])) == 0)
        std::snprintf(list, sizeof list, "0-%ld", sysconf(_SC_NPROCESSORS_ONLN) - 1);
    // Ranges and single numbers: 0-3,6,8-11
    for (char* at = list; std::isdigit(static_cast<unsigned char>(*at)) != 0;) {
        const long first = std::strtol(at, &at, 10);
        const long last = *at == '-' ? std::strtol(at + 1, &at, 10) : first;
        for (long processor = first; processor <= last && processor < kMostProcessors; ++processor)
            if (!visit(static_cast<int>(processor))) return;
        if (*at == ',') ++at;
    }
}

// The memory that the firmware gave to the kernel, in its hot-plug blocks; 0 where it doesn't tell.
uint64_t MemoryInBlocks() {
    uint64_t blockSize = 0, blocks = 0;
    if (FILE* file = std::fopen("/sys/devices/system/memory/block_size_bytes", "re")) {
        char digits[32] = "";
        if (std::fgets(digits, sizeof digits, file) != nullptr) blockSize = std::strtoull(digits, nullptr, 16);
        std::fclose(file);
    }
    if (DIR* folder = opendir("/sys/devices/system/memory")) {
        while (const dirent* entry = readdir(folder))
            if (std::strncmp(entry->d_name, "memory", 6) == 0 &&
                std::isdigit(static_cast<unsigned char>(entry->d_name[6])) != 0)
                ++blocks;
        closedir(folder);
    }
    return blockSize * blocks;
}

}  // namespace

int SystemProcessor(uint32_t logical) {
    int found = -1;
    ForEachOnline([&](int processor) {
        if (logical-- != 0) return true;
        found = processor;
        return false;
    });
    return found;
}

ClProcessorSet::ClProcessorSet() : m_set(CPU_ALLOC(kMostProcessors)), m_size(CPU_ALLOC_SIZE(kMostProcessors)) {
    if (m_set != nullptr) CPU_ZERO_S(m_size, m_set);
}

ClProcessorSet::~ClProcessorSet() { CPU_FREE(m_set); }

bool ClProcessorSet::Add(int processor) {
    if (m_set == nullptr || processor < 0 || processor >= kMostProcessors) return false;
    CPU_SET_S(static_cast<size_t>(processor), m_size, m_set);
    return true;
}

bool ClProcessorSet::Has(int processor) const {
    return m_set != nullptr && processor >= 0 && processor < kMostProcessors &&
           CPU_ISSET_S(static_cast<size_t>(processor), m_size, m_set);
}

bool ClProcessorSet::ReadFromThread() {
    errno = ENOMEM;
    return m_set != nullptr && sched_getaffinity(0, m_size, m_set) == 0;
}

bool ClProcessorSet::ApplyToThread() const {
    errno = ENOMEM;
    return m_set != nullptr && sched_setaffinity(0, m_size, m_set) == 0;
}

DWORD GetActiveProcessorCount(WORD group) {
    uint32_t online = 0;
    ForEachOnline([&](int) { return ++online != 0; });
    if (group == ALL_PROCESSOR_GROUPS) return online;
    const uint32_t first = group * kGroupSize;
    if (first >= online) return static_cast<DWORD>(Fail(ERROR_INVALID_PARAMETER));
    return online - first < kGroupSize ? online - first : kGroupSize;
}

WORD GetActiveProcessorGroupCount() {
    return static_cast<WORD>((GetActiveProcessorCount(ALL_PROCESSOR_GROUPS) + kGroupSize - 1) / kGroupSize);
}

HANDLE GetCurrentThread() { return kCurrentThread; }

BOOL SetThreadGroupAffinity(HANDLE thread, const GROUP_AFFINITY* affinity, GROUP_AFFINITY* previous) {
    if (thread != kCurrentThread) return Fail(ERROR_INVALID_HANDLE);
    if (affinity == nullptr || affinity->Mask == 0) return Fail(ERROR_INVALID_PARAMETER);
    ClProcessorSet before, after;
    if (!before.ReadFromThread()) return FailWithErrno();
    GROUP_AFFINITY old = {};
    KAFFINITY wanted = affinity->Mask;
    uint32_t logical = 0;
    ForEachOnline([&](int processor) {
        const uint32_t group = logical / kGroupSize;
        const KAFFINITY bit = KAFFINITY{1} << logical % kGroupSize;
        if (before.Has(processor)) {
            if (old.Mask == 0) old.Group = static_cast<WORD>(group);
            if (old.Group == group) old.Mask |= bit;
        }
        if (group == affinity->Group && (wanted & bit) != 0 && after.Add(processor)) wanted &= ~bit;
        ++logical;
        return true;
    });
    if (wanted != 0) return Fail(ERROR_INVALID_PARAMETER);  // the group has no such processors
    if (!after.ApplyToThread()) return FailWithErrno();
    if (previous != nullptr) *previous = old;
    return TRUE;
}

BOOL GetPhysicallyInstalledSystemMemory(PULONGLONG kilobytes) {
    if (kilobytes == nullptr) return Fail(ERROR_INVALID_PARAMETER);
    uint64_t bytes = MemoryInBlocks();
    if (bytes == 0) {
        const long pages = sysconf(_SC_PHYS_PAGES), pageSize = sysconf(_SC_PAGESIZE);
        if (pages <= 0 || pageSize <= 0) return Fail(ERROR_GEN_FAILURE);
        bytes = static_cast<uint64_t>(pages) * static_cast<uint64_t>(pageSize);
    }
    *kilobytes = bytes / 1024;
    return TRUE;
}
