// The kernel's own numbers of processors, which have gaps where processors are offline.
#pragma once

#include <sched.h>

#include <cstdint>

// The kernel's number of the active processor with that logical number; -1 for none.
int SystemProcessor(uint32_t logical);

// Processors by the kernel's numbers, as many as it can be built for.
class ClProcessorSet {
  public:
    bool Add(int processor) {
        if (processor < 0 || processor >= kMost) return false;
        CPU_SET_S(static_cast<size_t>(processor), sizeof m_bits, m_bits);
        return true;
    }
    // The calling thread's processors. False with errno set.
    bool ReadFromThread() { return sched_getaffinity(0, sizeof m_bits, m_bits) == 0; }
    bool ApplyToThread() const { return sched_setaffinity(0, sizeof m_bits, m_bits) == 0; }

  private:
    static constexpr int kMost = 8192;
    cpu_set_t m_bits[kMost / (8 * sizeof(cpu_set_t))] = {};
};
