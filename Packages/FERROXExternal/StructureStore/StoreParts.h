// What the files of the store share with each other and with its tests.
#pragma once

#include <cstdint>

#include "Packages/Debug/Debug.h"
#include "Packages/FERROXExternal/StructureStore/Machine.h"
#include "Packages/FERROXExternal/StructureStore/StructureStore.h"
#include "Packages/Format/Structures.h"

extern DebugHandle_t storeTraceHandle;

// Whether the store is up, which is when the machine can't be changed.
bool StoreIsUp();

// The choice of a machine, kept while another one is in use for a while. Both are for a store that is down.
struct MachineChoice_t {
    MachineServices_t services;
    ImageSource_t image;
};
MachineChoice_t ChosenMachine();
void ChooseMachine(const MachineChoice_t& choice);

// The text of string `number` of a string area that ends in a double NUL, or null when the area has no such string.
const char* FindStructString(const char* area, uint8_t number);
