// Processors by the kernel's numbers, which have gaps where processors are offline.
#pragma once

#include <sched.h>

#include <cstdint>
#include <functional>

// Returns the kernel's number of a processor from its logical number; -1 if there is none.
int SystemProcessor(uint32_t logical);

// Calls visit(processor) for each processor of a list of the kernel's, such as /sys/devices/system/cpu/online, in
// ascending order, until it returns false. Without the file, the processors are numbered from 0.
void ForEachProcessor(const char* list, const std::function<bool(int processor)>& visit);

// A set of as many processors as a kernel can support.
class ClProcessorSet {
  public:
    bool Add(int processor) {
        if (processor < 0 || processor >= kMost) return false;
        CPU_SET_S(static_cast<size_t>(processor), sizeof m_bits, m_bits);
        return true;
    }
    // These two return false, with errno set, on failure.
    bool ReadFromThread() { return sched_getaffinity(0, sizeof m_bits, m_bits) == 0; }
    bool ApplyToThread() const { return sched_setaffinity(0, sizeof m_bits, m_bits) == 0; }

  private:
    static constexpr int kMost = 8192;
    cpu_set_t m_bits[kMost / (8 * sizeof(cpu_set_t))] = {};
};
