// What the files of the store share with each other and with its tests.
#pragma once

#include <cstdint>

#include "Packages/Debug/Debug.h"
#include "Packages/FERROXExternal/StructureStore/StoreHost.h"

// Null while the store is down, and when DebugLibInit failed.
extern DebugHandle_t storeTraceHandle;

// String `number`, counted from 1, of a string area that ends in a double NUL; null if the area has no such string.
const char* FindStructString(const char* area, uint8_t number);
