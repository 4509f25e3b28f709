// How a stand-in takes a system function's place when a test program is linked: it is the function itself, and the
// system has none.
//
//     STAND_IN(BOOL, ReleaseMutex, (HANDLE mutex)) { ... }
#pragma once

#include "Packages/OS/Windows/Windows.h"

#define STAND_IN(result, name, parameters) extern "C" result name parameters

// The system function that a stand-in replaces, for calls by the language's runtime. On Linux it makes none.
template <typename Function>
Function* SystemFunction(const char*) {
    return nullptr;
}
