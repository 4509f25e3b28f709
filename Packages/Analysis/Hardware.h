// What the hardware says, from the parts of a machine as a record has them.
#pragma once

#include <span>

#include "Packages/Analysis/Verify.h"
#include "Packages/Format/AcpiDat.h"
#include "Packages/Format/CpuidDump.h"
#include "Packages/Format/MachineJson.h"
#include "Packages/Format/PciDump.h"

// What is missing in the parts is absent in the facts.
HardwareFacts_t HardwareFactsOf(const MachineFacts_t& machine, std::span<const CpuidLeaves_t> processors,
                                std::span<const AcpiTable_t> tables, std::span<const PciFunction_t> functions);
