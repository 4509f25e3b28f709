// Logical processors: the online ones, counted through from 0, as Windows counts them. The system's own numbers may
// have gaps where processors are switched off.
#pragma once

#include <sched.h>

#include "Packages/Platform/Linux/Handles.h"

// The system's number of the online processor with that logical number, or -1.
int SystemProcessor(uint32_t logical);

// A set of processors that is as large as this system's kernel needs, by the system's numbers.
class ClProcessorSet {
  public:
    ClProcessorSet();
    ClProcessorSet(const ClProcessorSet&) = delete;
    ClProcessorSet& operator=(const ClProcessorSet&) = delete;
    ~ClProcessorSet();
    bool Add(int processor);
    bool Has(int processor) const;
    // The calling thread's processors. On failure errno says why.
    bool ReadFromThread();
    bool ApplyToThread() const;

  private:
    cpu_set_t* m_set;
    size_t m_size;
};
