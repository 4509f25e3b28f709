// What the files of the store share with each other and with its tests.
#pragma once

#include <cstdint>

#include "Packages/Debug/Debug.h"
#include "Packages/FERROXExternal/StructureStore/StructureStore.h"

extern DebugHandle_t storeTraceHandle;

// Whether the store is up, which is when the machine can't be changed.
bool StoreIsUp();

// One structure of a table, found by the walk. `data` holds `size` bytes of it, up to and including the double NUL of
// its string area, or up to the table's end where that comes first.
struct TableStructure_t {
    const uint8_t* data;
    uint32_t size;

    uint8_t Type() const { return data[0]; }
    uint8_t Length() const { return data[1]; }
};

// The structure at `offset` of a table of `length` bytes. Its size is 0 when the table ends before a whole header.
TableStructure_t StructureAt(const uint8_t* table, uint32_t length, uint32_t offset);

// The text of string `number` of a string area that ends in a double NUL, or null when the area has no such string.
const char* FindStructString(const char* area, uint8_t number);
