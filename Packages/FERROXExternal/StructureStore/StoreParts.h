// What the files of the store share with each other and with its tests.
#pragma once

#include <cstdint>

#include "Packages/Debug/Debug.h"
#include "Packages/FERROXExternal/StructureStore/StoreHost.h"
#include "Packages/OS/FirmwareTables.h"

// Null while the store is down, and when DebugLibInit failed.
extern DebugHandle_t storeTraceHandle;

// As os_GetEntryAddresses, of the machine under the hardware library.
status_t GetEntryAddresses(EntryAddresses_t* addresses, bool* refused);

// String `number`, counted from 1, of a string area that ends in a double NUL; null if the area has no such string.
const char* FindStructString(const char* area, uint8_t number);
