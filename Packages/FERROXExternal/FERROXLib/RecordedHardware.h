// The hardware of a recorded machine, as a table of operations. For the libraries and programs of this tree only: not
// installed.
#pragma once

#include <vector>

#include "Packages/FERROXExternal/FERROXLib/HardwareServices.h"
#include "Packages/Format/AcpiDat.h"
#include "Packages/Format/CpuidDump.h"
#include "Packages/Format/MachineJson.h"
#include "Packages/Format/MsrDump.h"
#include "Packages/Format/PciDump.h"

// What was recorded. A list is empty if none of its kind was.
struct RecordedHardware_t {
    MachineFacts_t facts;
    std::vector<AcpiTable_t> tables;
    std::vector<PciFunction_t> functions;
    std::vector<CpuidLeaves_t> processors;
    std::vector<RecordedMsr_t> registers;

    bool Has(RecordFile_t file) const;
};

// Answers from `recorded`, which must outlive its use. What wasn't recorded is refused with status 6, or 5 for ACPI
// tables, and the reason kNotRecorded. Writes, memory and ports are never recorded. The library must be closed.
void UseRecordedHardware(const RecordedHardware_t& recorded);

// CPUID as `recorded` has it, with the status of ReadCPUID, or 6 if it wasn't recorded or the machine has none.
status_t ReadRecordedCPUID(const RecordedHardware_t& recorded, uint32_t processor, CPUIDRecord_t* record);
