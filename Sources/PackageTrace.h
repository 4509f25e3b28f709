// The trace handle of package and decoders: one for the process, null until a package is initialised.
#pragma once

#include "Packages/Debug/Debug.h"

extern DebugHandle_t packageTraceHandle;

#define PACKAGE_TRACE(source, function, level, ...) \
    QUORLIN_TRACE(packageTraceHandle, source, function, level, __VA_ARGS__)
