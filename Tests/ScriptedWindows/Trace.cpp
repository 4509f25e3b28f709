// Stand-in: the trace library. Keeps each line, and counts the handles.
#include <cstdarg>
#include <cstdio>

#include "Packages/Debug/Debug.h"
#include "Tests/ScriptedWindows/ScriptedWindows.h"

// The tests' only trace handle, with every level on.
static DebugRecord_t record = {};

status_t DebugLibInit(const char* name, DebugHandle_t* handle) {
    if (!Machine().Call("DebugLibInit") || name[0] == '\0') return kFailure;
    ++Machine().traceHandles;
    record.TraceMask = kAllLevels;
    record.OutputType = kConsoleOutput;
    *handle = &record;
    return kSuccess;
}

status_t DebugLibExit(DebugHandle_t handle) {
    if (handle != &record) return kNullPointer;
    --Machine().traceHandles;
    return kSuccess;
}

status_t DebugTrace(DebugHandle_t, const char*, const char*, uint32_t, uint32_t level, const char* format, ...) {
    char text[512];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof(text), format, arguments);
    va_end(arguments);
    Machine().lines.push_back({level, text});
    return kSuccess;
}
