#include "Packages/Debug/Debug.h"
status_t DebugLibInit(const char*, DebugHandle_t*) { return kFailure; }
status_t DebugLibExit(DebugHandle_t) { return kNullPointer; }
status_t DebugTrace(DebugHandle_t, const char*, const char*, uint32_t, uint32_t, const char*, ...) { return kNullPointer; }
