// Redacts what is recorded of a machine, not only its SMBIOS table.
#pragma once

#include <vector>

#include "Packages/Analysis/Redact.h"
#include "Packages/Format/AcpiDat.h"
#include "Packages/Format/CpuidDump.h"
#include "Packages/Format/PciDump.h"

// Whether an ACPI table exists to hold serial numbers, addresses or names. A redacted record has none of them.
bool IsNamingTable(std::string_view name);

// Redacts a table as RedactTable does. The table's values, and MAC addresses and UUIDs as text, get the same pseudonyms
// in ACPI tables and past the header of PCI functions; so do MAC addresses that firmware passes to docks, and the
// serial numbers of PCI devices. Checksums that fitted fit again. Serial numbers of processors become zeros.
bool RedactMachine(std::span<uint8_t> table, const RedactOptions_t& options, const Hmac_t& hmac,
                   std::vector<AcpiTable_t>& tables, std::vector<PciFunction_t>& functions,
                   std::vector<CpuidLeaves_t>& processors);
