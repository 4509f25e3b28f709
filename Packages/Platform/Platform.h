// The platform's functions, by their Windows names. All lower code includes this header and no system header of its
// own. On Windows it is the system's headers; elsewhere it declares just the functions, types and codes that this
// project uses, and the provider folder beside it implements them.
#pragma once

#ifdef _WIN32
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#include <winsvc.h>
#else
#include "Packages/Platform/Linux/Windows.h"
#endif
